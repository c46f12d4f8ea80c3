#pragma once

#include <Xcvr/XcvrDirs.h>

// The operator's threshold table, matched with a module.
namespace Xcvr {

/// The row for a module: of those whose texts, but for empty ones, are the module's (padding does
/// not count), the one with the serial number, else the part number, else the vendor name. Null for
/// none; among equals the first in name order.
[[nodiscard]] Vel::Ptr<DomThresholdOverride const>
closestThresholdOverride( Xgc const * global, VendorInfo const & vendor );

/// The thresholds with the optical powers of a row.
[[nodiscard]] DomThreshold withOverride( DomThreshold thresholds,
                                         DomThresholdOverride const & row );

/// What `domThresholdInForce` of a status is.
template <typename Status>
[[nodiscard]] DomThreshold thresholdInForce( Status const & status ) {
   // Whether overrides apply at all (Xgc::domThresholdOverrideEnabled) is the agent's decision,
   // which domThresholdOverridden carries.
   Vel::Ptr<DomThresholdOverride const> const row =
      status.domThresholdOverridden() ? status.domThresholdOverride() : nullptr;
   return row ? withOverride( status.domThreshold(), *row ) : status.domThreshold();
}

} // namespace Xcvr
