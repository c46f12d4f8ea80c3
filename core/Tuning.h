#pragma once

#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrTypes.h>

// What the families whose modules can be tuned share.
namespace Xcvr {

/// The frequency, MHz, that a resolved tuning asks for; 0 before any. A failed resolution asks for
/// its channel, though it may still carry the frequency that was configured.
[[nodiscard]] uint32_t wantedFrequency( ItuTuningConfig const & tuning );

/// The number of a frequency on a grid that starts at `base`; 0 when it is none of the grid's.
[[nodiscard]] uint32_t channelOnGrid( uint32_t base, uint32_t grid, uint32_t frequency );

/// The tuning that is configured under the slot's name, null for none, now resolved in its
/// `ituTuningConfig`.
[[nodiscard]] Vel::Ptr<TuningConfig const> resolveConfiguredTuning( XcvrNewStatus & status,
                                                                    Xgc const * global );

/// The tuning of a slot: as configured (null for not at all), as resolved, and as the module runs,
/// at the frequency `operational`; 0 for none.
[[nodiscard]] ResolvedTuningStatus
resolvedTuning( XcvrNewStatus const & status, TuningConfig const * config, uint32_t operational );

} // namespace Xcvr
