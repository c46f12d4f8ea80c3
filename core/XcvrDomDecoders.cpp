#include <Xcvr/XcvrDomDecoders.h>

#include "core/DomCodes.h"

#include <algorithm>
#include <bit>
#include <cmath>

// Pure functions of their arguments on the hottest path there is; they trace nothing.
namespace Xcvr {
namespace {

constexpr uint16_t word( uint8_t msb, uint8_t lsb ) {
   return static_cast<uint16_t>( msb << 8 | lsb );
}

constexpr int16_t signedWord( uint8_t msb, uint8_t lsb ) {
   return static_cast<int16_t>( word( msb, lsb ) );
}

DomCodes::Calibration calibration( uint8_t slopeMsb, uint8_t slopeLsb, uint8_t offsetMsb,
                                   uint8_t offsetLsb ) {
   return { decodeDomECSlope( slopeMsb, slopeLsb ),
            static_cast<double>( decodeDomECOffset( offsetMsb, offsetLsb ) ) };
}

} // namespace

double decodeDomICTemperature( uint8_t msb, uint8_t lsb ) {
   return DomCodes::temperature( word( msb, lsb ) );
}

double decodeDomICSupplyVoltage( uint8_t msb, uint8_t lsb ) {
   return DomCodes::supplyVoltage( word( msb, lsb ) );
}

double decodeDomICTxBias( uint8_t msb, uint8_t lsb ) {
   return DomCodes::txBias( word( msb, lsb ) );
}

double decodeDomICPower( uint8_t msb, uint8_t lsb ) {
   return DomCodes::power( word( msb, lsb ) );
}

double decodeDomF16( uint8_t msb, uint8_t lsb ) {
   return DomCodes::f16( word( msb, lsb ) );
}

double decodeDomECSlope( uint8_t msb, uint8_t lsb ) {
   return DomCodes::slope( word( msb, lsb ) );
}

int16_t decodeDomECOffset( uint8_t msb, uint8_t lsb ) {
   return signedWord( msb, lsb );
}

float decodeDomECIEEEFloat( uint8_t b0, uint8_t b1, uint8_t b2, uint8_t b3 ) {
   return std::bit_cast<float>( uint32_t{ word( b0, b1 ) } << 16 | word( b2, b3 ) );
}

double decodeDomECTemperature( uint8_t msb, uint8_t lsb, uint8_t slopeMsb, uint8_t slopeLsb,
                               uint8_t offsetMsb, uint8_t offsetLsb ) {
   return DomCodes::temperature(
      calibration( slopeMsb, slopeLsb, offsetMsb, offsetLsb )( signedWord( msb, lsb ) ) );
}

double decodeDomECSupplyVoltage( uint8_t msb, uint8_t lsb, uint8_t slopeMsb, uint8_t slopeLsb,
                                 uint8_t offsetMsb, uint8_t offsetLsb ) {
   return DomCodes::supplyVoltage(
      calibration( slopeMsb, slopeLsb, offsetMsb, offsetLsb )( word( msb, lsb ) ) );
}

double decodeDomECTxBias( uint8_t msb, uint8_t lsb, uint8_t slopeMsb, uint8_t slopeLsb,
                          uint8_t offsetMsb, uint8_t offsetLsb ) {
   return DomCodes::txBias(
      calibration( slopeMsb, slopeLsb, offsetMsb, offsetLsb )( word( msb, lsb ) ) );
}

double decodeDomECTxPower( uint8_t msb, uint8_t lsb, uint8_t slopeMsb, uint8_t slopeLsb,
                           uint8_t offsetMsb, uint8_t offsetLsb ) {
   return DomCodes::power(
      calibration( slopeMsb, slopeLsb, offsetMsb, offsetLsb )( word( msb, lsb ) ) );
}

double decodeDomECRxPower( uint8_t msb, uint8_t lsb,                               //
                           uint8_t c0b0, uint8_t c0b1, uint8_t c0b2, uint8_t c0b3, //
                           uint8_t c1b0, uint8_t c1b1, uint8_t c1b2, uint8_t c1b3, //
                           uint8_t c2b0, uint8_t c2b1, uint8_t c2b2, uint8_t c2b3, //
                           uint8_t c3b0, uint8_t c3b1, uint8_t c3b2, uint8_t c3b3, //
                           uint8_t c4b0, uint8_t c4b1, uint8_t c4b2, uint8_t c4b3 ) {
   double const c0 = decodeDomECIEEEFloat( c0b0, c0b1, c0b2, c0b3 );
   double const c1 = decodeDomECIEEEFloat( c1b0, c1b1, c1b2, c1b3 );
   double const c2 = decodeDomECIEEEFloat( c2b0, c2b1, c2b2, c2b3 );
   double const c3 = decodeDomECIEEEFloat( c3b0, c3b1, c3b2, c3b3 );
   double const c4 = decodeDomECIEEEFloat( c4b0, c4b1, c4b2, c4b3 );
   return DomCodes::power( DomCodes::rxPolynomial( word( msb, lsb ), c0, c1, c2, c3, c4 ) );
}

uint32_t decodeTuningFrequency( uint8_t thzMsb, uint8_t thzLsb, uint8_t ghzMsb, uint8_t ghzLsb ) {
   return static_cast<uint32_t>( word( thzMsb, thzLsb ) * 1000 + word( ghzMsb, ghzLsb ) * 0.1 );
}

uint32_t decodeTuningGridSpacing( uint8_t msb, uint8_t lsb ) {
   return static_cast<uint32_t>( word( msb, lsb ) * 0.1 );
}

uint16_t decodeTuningChannel( uint8_t msb, uint8_t lsb ) {
   return word( msb, lsb );
}

uint16_t decibelTo16BitDomValue( double dBm ) {
   double const code = std::pow( 10, dBm / 10 ) * 10000;
   // Compared before the cast: a double outside the integer's range must not be converted.
   return std::isnan( code ) ? 0 : static_cast<uint16_t>( std::min( code, 65535. ) );
}

} // namespace Xcvr
