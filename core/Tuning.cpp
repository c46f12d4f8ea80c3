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

Vel::Ptr<TuningConfig const> resolveConfiguredTuning( XcvrNewStatus & status, Xgc const * global ) {
   Vel::Ptr<TuningConfig const> config =
      global ? global->tuningConfig( status.name() ) : Vel::Ptr<TuningConfig>();
   status.updateItuTuningConfig( config );
   return config;
}

ResolvedTuningStatus resolvedTuning( XcvrNewStatus const & status, TuningConfig const * config,
                                     uint32_t operational ) {
   ItuTuningConfig const & tuning = status.ituTuningConfig();
   uint32_t const wanted = wantedFrequency( tuning );
   // The operational channel is counted as the configured one is: from the base of the C band, on
   // the resolved grid. A frequency beside that grid has none.
   uint32_t const channel =
      channelOnGrid( TuningConstants::baseFrequencyCBand, tuning.grid(), operational );
   return {
      config ? config->channel() : 0,   config ? config->grid() : 0,
      config ? config->frequency() : 0, wanted,
      computeWavelength( wanted ),      channel,
      channel != 0 ? tuning.grid() : 0, operational,
      computeWavelength( operational ), status.tuningCapabilities().gridSpacingCapabilities() };
}

} // namespace Xcvr
