#pragma once

#include "tools/xcvr/Report.h"

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
   char const * member; // in JSON
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

/// What came of it.
struct ControlSetOutcome {
   std::string image;      // the 29 bytes
   unsigned applyMask = 0; // a bit for each lane of which a setting has changed
   std::string refusal;    // why nothing has changed; empty: done
};

/// The 29 bytes of a control set in a file: as they are, or as a hex dump. Throws ImageError.
[[nodiscard]] std::string readControlSet( std::string const & path );

/// The control set with the settings of the lanes that are named changed, or as it is.
[[nodiscard]] ControlSetOutcome changedControlSet( std::string const & image,
                                                   ControlSetChange const & change );

/// The lanes of a control set and, of one that was to be changed, the bytes that differ, the lanes to
/// be applied and the new image.
[[nodiscard]] std::string controlSetText( std::string const & before,
                                          ControlSetOutcome const & after, bool isChange,
                                          Style const & style );
[[nodiscard]] Json controlSetJson( std::string const & before, ControlSetOutcome const & after );

} // namespace XcvrTool
