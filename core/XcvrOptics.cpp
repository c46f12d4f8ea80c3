#include <Xcvr/XcvrOptics.h>

#include "core/DomNeutral.h"

#include <cmath>

namespace Xcvr {

uint32_t getMinGridSpacing( GridSpacingCapabilities const & capabilities ) {
   return capabilities.gridSpacing6250M()    ? 6250
          : capabilities.gridSpacing12500M() ? 12500
          : capabilities.gridSpacing25000M() ? 25000
          : capabilities.gridSpacing33000M() ? 33000
                                             : 50000;
}

double computeWavelength( uint32_t mhz ) {
   constexpr double speedOfLight = 299792458.0; // m/s, and so nm times GHz
   return mhz == 0 ? 0.0 : speedOfLight / mhzFreqToGhz( mhz );
}

double wattsToDbm( double watts ) {
   return 10 * std::log10( watts ) + 30;
}

double dbmToWatts( double dBm ) {
   return std::pow( 10, ( dBm - 30 ) / 10 );
}

double addFourPower( double a, double b, double c, double d ) {
   return wattsToDbm( dbmToWatts( a ) + dbmToWatts( b ) + dbmToWatts( c ) + dbmToWatts( d ) );
}

DomAggPower aggQsfpCfp2Power( double tx0, double tx1, double tx2, double tx3, double rx0,
                              double rx1, double rx2, double rx3, bool txValid, bool rxValid,
                              Vel::Seconds time ) {
   return { time, domCalibrationInternal, txValid ? addFourPower( tx0, tx1, tx2, tx3 ) : unreadable,
            rxValid ? addFourPower( rx0, rx1, rx2, rx3 ) : unreadable };
}

} // namespace Xcvr
