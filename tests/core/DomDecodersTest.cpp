#include "tests/support/StatusValues.h"

#include <Xcvr/XcvrDomDecoders.h>

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <tuple>

namespace Xcvr {
namespace {

using XcvrTest::dBm;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

constexpr uint8_t msb( unsigned word ) {
   return static_cast<uint8_t>( word >> 8 );
}
constexpr uint8_t lsb( unsigned word ) {
   return static_cast<uint8_t>( word );
}

/// The five coefficients as an externally calibrated module states them.
struct Polynomial {
   float c0 = 0, c1 = 0, c2 = 0, c3 = 0, c4 = 0;
};

double rxPower( unsigned raw, Polynomial const & p ) {
   std::array<uint8_t, 22> bytes = { msb( raw ), lsb( raw ) };
   auto * at = &bytes[2];
   for ( float coefficient : { p.c0, p.c1, p.c2, p.c3, p.c4 } ) {
      for ( int shift = 24; shift >= 0; shift -= 8 ) {
         *at++ = static_cast<uint8_t>( std::bit_cast<uint32_t>( coefficient ) >> shift );
      }
   }
   return std::apply( decodeDomECRxPower, bytes );
}

TEST( InternalCalibration, NumbersInTheirUnits ) {
   EXPECT_EQ( decodeDomICTemperature( 0x19, 0x80 ), 25.5 );
   EXPECT_EQ( decodeDomICTemperature( 0x80, 0x00 ), -128.0 );
   EXPECT_EQ( decodeDomICTemperature( 0xff, 0xff ), -1 / 256. );
   EXPECT_DOUBLE_EQ( decodeDomICSupplyVoltage( 0x80, 0xe8 ), 3.3 );
   EXPECT_DOUBLE_EQ( decodeDomICTxBias( 0x0b, 0xb8 ), 6.0 );
   EXPECT_EQ( decodeDomICPower( 0, 0 ), -infinity );
   EXPECT_NEAR( decodeDomICPower( msb( 5012 ), lsb( 5012 ) ), -2.99989, 1e-5 );
}

// Every register code survives the way to dBm and back, but for the cut to a whole number.
TEST( InternalCalibration, PowerCodesRoundTrip ) {
   for ( unsigned code = 1; code <= 0xffff; ++code ) {
      unsigned const back = decibelTo16BitDomValue( decodeDomICPower( msb( code ), lsb( code ) ) );
      ASSERT_TRUE( back == code || back == code - 1 ) << code << " came back as " << back;
   }
}

TEST( Ratios, AreDecimalFloatingPointNumbers ) {
   std::pair<unsigned, double> const cases[] = { { 0x0000, 0 },        { 0xC001, 1 },
                                                 { 0x8064, 1e-6 },     { 0xA00C, 1.2e-3 },
                                                 { 0xFFFF, 2.047e10 }, { 0x07FF, 2.047e-21 } };
   for ( auto const & [code, value] : cases ) {
      EXPECT_DOUBLE_EQ( decodeDomF16( msb( code ), lsb( code ) ), value ) << code;
   }
}

TEST( ExternalCalibration, Constants ) {
   EXPECT_EQ( decodeDomECSlope( 0xff, 0xc0 ), 255.75 );
   EXPECT_EQ( decodeDomECOffset( 0xff, 0x9c ), -100 );
   EXPECT_EQ( decodeDomECIEEEFloat( 0x40, 0x49, 0x0f, 0xdb ), 3.14159274f );
   EXPECT_TRUE( std::isnan( decodeDomECIEEEFloat( 0x7f, 0xc0, 0, 0 ) ) );
}

// Slope 1, offset 0 and the polynomial r are no calibration at all.
TEST( ExternalCalibration, IdentityIsTheInternalForm ) {
   for ( unsigned raw = 0; raw <= 0xffff; ++raw ) {
      uint8_t const m = msb( raw ), l = lsb( raw );
      ASSERT_EQ( decodeDomECTemperature( m, l, 1, 0, 0, 0 ), decodeDomICTemperature( m, l ) );
      ASSERT_EQ( decodeDomECSupplyVoltage( m, l, 1, 0, 0, 0 ), decodeDomICSupplyVoltage( m, l ) );
      ASSERT_EQ( decodeDomECTxBias( m, l, 1, 0, 0, 0 ), decodeDomICTxBias( m, l ) );
      ASSERT_EQ( decodeDomECTxPower( m, l, 1, 0, 0, 0 ), decodeDomICPower( m, l ) );
      // Known from the call above.
      ASSERT_EQ( decodeDomICPower( m, l ), decodeDomECTxPower( m, l, 1, 0, 0, 0 ) );
      ASSERT_EQ( rxPower( raw, { .c1 = 1 } ), decodeDomICPower( m, l ) );
   }
}

// Slope 1.5; the offset is signed and counts in raw units.
TEST( ExternalCalibration, SlopeAndOffset ) {
   EXPECT_DOUBLE_EQ( decodeDomECTemperature( 20, 0, 1, 0x80, 0xff, 0x00 ), 29.0 );
   EXPECT_DOUBLE_EQ( decodeDomECTemperature( 0xec, 0, 1, 0x80, 0x01, 0x00 ), -29.0 );
   EXPECT_DOUBLE_EQ( decodeDomECSupplyVoltage( msb( 20000 ), lsb( 20000 ), 1, 0x80, 0x0b, 0xb8 ),
                     3.3 );
   EXPECT_DOUBLE_EQ( decodeDomECTxBias( msb( 2000 ), lsb( 2000 ), 1, 0x80, 0xfe, 0x0c ), 5.0 );
   EXPECT_DOUBLE_EQ( decodeDomECTxPower( msb( 4000 ), lsb( 4000 ), 1, 0x80, 0x00, 0x64 ),
                     dBm( 6100 ) );
   EXPECT_EQ( decodeDomECTxPower( 0, 10, 1, 0, 0xff, 0x00 ), -infinity ); // negative power
   // A raw temperature is signed; what calibration lifts to 128 °C or more reads as negative.
   EXPECT_DOUBLE_EQ( decodeDomECTemperature( 100, 0, 1, 0x80, 0, 0 ), 150 - 256 );
   EXPECT_DOUBLE_EQ( decodeDomECTemperature( 127, 0, 1, 0, 1, 0 ), -128 );
   EXPECT_DOUBLE_EQ( decodeDomECTemperature( 0x80, 0, 2, 0, 0, 0 ), -256 );
}

TEST( ExternalCalibration, RxPowerTakesTheCoefficientsInTheirOrder ) {
   EXPECT_DOUBLE_EQ( rxPower( 10, { 1, 2, 3, 4, 5 } ), dBm( 54321 ) );
   // A power that cannot be is minus infinity, an endless one is not.
   auto const nan = static_cast<float>( notANumber );
   auto const infinite = static_cast<float>( infinity );
   EXPECT_EQ( rxPower( 100, {} ), -infinity );
   EXPECT_EQ( rxPower( 100, { .c0 = -1 } ), -infinity );
   EXPECT_EQ( rxPower( 100, { .c2 = nan } ), -infinity );
   EXPECT_EQ( rxPower( 0, { .c4 = infinite } ), -infinity ); // infinity × 0
   EXPECT_EQ( rxPower( 100, { .c1 = infinite, .c4 = -infinite } ), -infinity );
   EXPECT_EQ( rxPower( 100, { .c4 = infinite } ), infinity );
}

TEST( Tuning, FrequencyGridAndChannel ) {
   EXPECT_EQ( decodeTuningFrequency( 0, 191, msb( 3000 ), lsb( 3000 ) ), 191300u );
   EXPECT_EQ( decodeTuningFrequency( 0, 196, msb( 1009 ), lsb( 1009 ) ), 196100u ); // 100.9 GHz cut
   EXPECT_EQ( decodeTuningFrequency( 0xff, 0xff, 0xff, 0xff ), 65541553u );
   EXPECT_EQ( decodeTuningGridSpacing( msb( 500 ), lsb( 500 ) ), 50u );
   EXPECT_EQ( decodeTuningGridSpacing( 0, 125 ), 12u );
   EXPECT_EQ( decodeTuningGridSpacing( 0xff, 0xff ), 6553u ); // unsigned
   EXPECT_EQ( decodeTuningChannel( 0x01, 0x02 ), 258 );
}

TEST( PowerCode, CutsAndSaturates ) {
   std::pair<double, uint16_t> const cases[] = {
      { 0.0, 10000 },  { -10.0, 1000 },  { -3.0, 5011 },      { -40.1, 0 },     { 8.16, 65463 },
      { 8.17, 65535 }, { 1e300, 65535 }, { infinity, 65535 }, { -infinity, 0 }, { notANumber, 0 } };
   for ( auto const & [power, code] : cases ) {
      EXPECT_EQ( decibelTo16BitDomValue( power ), code ) << power << " dBm";
   }
}

} // namespace
} // namespace Xcvr
