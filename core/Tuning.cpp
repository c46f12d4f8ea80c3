#include "core/Tuning.h"

#include <Xcvr/XcvrOptics.h>

namespace Xcvr {

uint32_t wantedFrequency( ItuTuningConfig const & tuning ) {
   if ( tuning.grid() == 0 ) {
      return 0;
   }
   return tuning.laserEnabled() && tuning.frequency() != 0
             ? tuning.frequency()
             : decodeItuFrequency( TuningConstants::baseFrequencyCBand, tuning.channel(),
                                   tuning.grid() );
}

uint32_t channelOnGrid( uint32_t base, uint32_t grid, uint32_t frequency ) {
   return grid != 0 && frequency >= base && ( frequency - base ) % grid == 0
             ? decodeItuChannel( base, grid, frequency )
             : 0;
}

ResolvedTuningStatus resolvedTuning( TuningConfig const * config, ItuTuningConfig const & tuning,
                                     uint32_t operational, GridSpacingCapabilities const & grids ) {
   uint32_t const wanted = wantedFrequency( tuning );
   // The operational channel is counted as the configured one is: from the base of the C band, on
   // the resolved grid. A frequency beside that grid has none.
   uint32_t const channel =
      channelOnGrid( TuningConstants::baseFrequencyCBand, tuning.grid(), operational );
   return { config ? config->channel() : 0,   config ? config->grid() : 0,
            config ? config->frequency() : 0, wanted,
            computeWavelength( wanted ),      channel,
            channel != 0 ? tuning.grid() : 0, operational,
            computeWavelength( operational ), grids };
}

} // namespace Xcvr
