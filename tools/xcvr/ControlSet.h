#pragma once

#include "tools/xcvr/Text.h"

#include <Xcvr/XcvrOsfpControlSet.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

// The `control-set` command: the control set of a QSFP-DD or OSFP, which is no whole module.
namespace XcvrTool {

/// One setting of a lane.
struct LaneSetting {
   char const * option; // of the command line
   char const * label;
   unsigned largest;
   unsigned ( *get )( Xcvr::OsfpControlSet const & set, Xcvr::OsfpLane lane );
   /// Whether the image has changed.
   bool ( *set )( Xcvr::OsfpControlSet & set, Xcvr::OsfpLane lane, unsigned value );
};

constexpr std::size_t laneSettingCount = 8;
extern std::array<LaneSetting, laneSettingCount> const laneSettings;

/// What to change.
struct ControlSetChange {
   std::vector<unsigned> lanes;                                  // from 1, as people count them
   std::array<std::optional<unsigned>, laneSettingCount> values; // in the order of laneSettings
   bool force = false;                                           // even if another lane changes too
};

struct ControlSetOutcome {
   std::string text;    // what the command prints
   std::string refusal; // empty: done
};

/// The 29 bytes of a control set in a file: as they are, or as a hex dump. Throws ImageError.
[[nodiscard]] std::string readControlSet( std::string const & path );

/// Shows a control set of 29 bytes lane by lane or, if lanes are named, changes it and shows what
/// came of it: the lanes, the bytes that differ, the lanes to be applied, the new image.
[[nodiscard]] ControlSetOutcome
editControlSet( std::string const & image, ControlSetChange const & change, Style const & style );

} // namespace XcvrTool
