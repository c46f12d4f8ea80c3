#pragma once

#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>

// Frequencies, wavelengths and powers, as all families compute them.
namespace Xcvr {

/// MHz of a channel, counted from 1, on a grid whose channel 1 lies at `base`. 32-bit, wraps.
[[nodiscard]] constexpr uint32_t decodeItuFrequency( uint32_t base, uint32_t channel,
                                                     uint32_t grid ) {
   return base + ( channel - 1 ) * grid;
}
/// The channel at or next below a frequency; all in MHz. 0 for a grid of 0.
[[nodiscard]] constexpr uint32_t decodeItuChannel( uint32_t base, uint32_t grid,
                                                   uint32_t frequency ) {
   return grid == 0 ? 0 : ( frequency - base ) / grid + 1;
}
/// Whole GHz; the rest is cut off.
[[nodiscard]] constexpr uint32_t mhzFreqToGhz( uint32_t mhz ) {
   return mhz / 1000;
}
[[nodiscard]] constexpr uint32_t ghzFreqToMhz( uint32_t ghz ) {
   return ghz * 1000;
}
/// The finest grid spacing in MHz that a module has; 50000 when it has none finer, whatever its
/// flags for 50000 and 100000 say.
[[nodiscard]] XCVR_API uint32_t getMinGridSpacing( GridSpacingCapabilities const & capabilities );
/// nm in vacuum, from the frequency cut to whole GHz on purpose; 0 for 0, infinity below 1 GHz.
[[nodiscard]] XCVR_API double computeWavelength( uint32_t mhz );

/// dBm of a power in W; minus infinity for 0.
[[nodiscard]] XCVR_API double wattsToDbm( double watts );
[[nodiscard]] XCVR_API double dbmToWatts( double dBm );
/// The sum, in dBm, of four powers in dBm.
[[nodiscard]] XCVR_API double addFourPower( double a, double b, double c, double d );
/// The power of four lanes together. A direction that is not valid is minus infinity.
[[nodiscard]] XCVR_API DomAggPower aggQsfpCfp2Power( double tx0, double tx1, double tx2, double tx3,
                                                     double rx0, double rx1, double rx2, double rx3,
                                                     bool txValid, bool rxValid,
                                                     Vel::Seconds time );

} // namespace Xcvr
