#pragma once

#include <Vel/String.h>

// Where the tree of an agent has what its readers mount: for each set of slots, "fixed" or
// "slice/NAME", three entities.
namespace XcvrTool::StatusPaths {

inline Vel::Name const agents = "hardware/xcvr/agent";
inline Vel::Name const fixed = "fixed";
inline Vel::Name const slice = "slice";

/// An AllConfigDir.
inline Vel::Name config( Vel::Name const & set ) {
   return "hardware/xcvr/config/" + set;
}
/// An XcvrSliceStatus.
inline Vel::Name agent( Vel::Name const & set ) {
   return agents + "/" + set;
}
/// A directory of XcvrNewStatus.
inline Vel::Name status( Vel::Name const & set ) {
   return "hardware/xcvr/status/" + set;
}

} // namespace XcvrTool::StatusPaths
