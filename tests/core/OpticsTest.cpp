#include <Xcvr/XcvrOptics.h>

#include <gtest/gtest.h>

#include <limits>

using namespace Xcvr;

namespace {
constexpr double none = -std::numeric_limits<double>::infinity();
} // namespace

TEST( OpticsTest, ChannelsAndFrequenciesAreUnsigned32Bit ) {
   EXPECT_EQ( decodeItuFrequency( 191200000, 0, 50000 ), 191150000u );
   EXPECT_EQ( decodeItuFrequency( 0, 0, 1 ), 0xffffffffu );
   EXPECT_EQ( decodeItuChannel( 191200000, 50000, 193100000 ), 39u );
   EXPECT_EQ( decodeItuChannel( 191200000, 50000, 193149999 ), 39u );
   EXPECT_EQ( decodeItuChannel( 191200000, 50000, 191199999 ), 0xffffffffu / 50000 + 1 );
   EXPECT_EQ( decodeItuChannel( 191200000, 0, 193100000 ), 0u );
}

TEST( OpticsTest, TheFinestGridIs50GHzUnlessAFlagSaysLess ) {
   using Grids = GridSpacingCapabilities;
   EXPECT_EQ( getMinGridSpacing( Grids( true, true, true, true, true, true ) ), 6250u );
   EXPECT_EQ( getMinGridSpacing( Grids( true, true, true, true, true, false ) ), 12500u );
   EXPECT_EQ( getMinGridSpacing( Grids( true, true, true, true, false, false ) ), 25000u );
   EXPECT_EQ( getMinGridSpacing( Grids( true, true, true, false, false, false ) ), 33000u );
   EXPECT_EQ( getMinGridSpacing( Grids( true, false, false, false, false, false ) ), 50000u );
}

TEST( OpticsTest, WavelengthComesFromWholeGigahertz ) {
   EXPECT_EQ( computeWavelength( 193100000 ), 299792458.0 / 193100 );
   EXPECT_EQ( computeWavelength( 193100999 ), computeWavelength( 193100000 ) );
   EXPECT_EQ( computeWavelength( 0 ), 0.0 );
}

TEST( OpticsTest, PowersAddInWatts ) {
   EXPECT_DOUBLE_EQ( wattsToDbm( 1 ), 30.0 );
   EXPECT_EQ( wattsToDbm( 0 ), none );
   EXPECT_DOUBLE_EQ( dbmToWatts( -10 ), 0.0001 );
   EXPECT_EQ( dbmToWatts( none ), 0.0 );
   EXPECT_NEAR( addFourPower( 0, 0, 0, 0 ), 6.0206, 1e-4 );
   EXPECT_NEAR( addFourPower( -3, none, none, none ), -3, 1e-12 );
   EXPECT_EQ( addFourPower( none, none, none, none ), none );
   // A direction that is not valid is unreadable.
   EXPECT_EQ( aggQsfpCfp2Power( 0, 0, 0, 0, 0, 0, 0, 0, true, false, 0 ).aggRxPower(), none );
   EXPECT_EQ( aggQsfpCfp2Power( 0, 0, 0, 0, 0, 0, 0, 0, false, true, 0 ).aggTxPower(), none );
}
