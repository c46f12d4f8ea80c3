#include "tests/support/AccessorCases.h"
#include "tests/support/SfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrSfpPlus.h>

#include <gmock/gmock.h>

#include <string>

namespace Xcvr {
namespace {

using Contents = XcvrSff8472IdEepromContents;
using XcvrTest::numberedPage;
using XcvrTest::SfpImageBuilder;

Contents numberedContents( size_t size ) {
   std::string const page = numberedPage( size );
   return { std::string_view( page ), std::string_view( page ), 1.0 };
}

template <auto read>
uint64_t valueOf( Contents const & contents ) {
   return ( contents.*read )().value();
}

TEST( SfpContents, FieldsLieWhereTheStandardPutsThem ) {
   using C = Contents;
   XcvrTest::AccessorCheck<C> const check{ numberedContents };
   check.bytes( 0, { &C::identifier, &C::extIdentifier, &C::connector } );
   check.number( 3, 8, valueOf<&C::compliance> );
   check.bytes( 11, { &C::encoding, &C::bitrateNominal } );
   check.bytes( 14, { &C::length9umKm, &C::length9um100m, &C::lengthOm2, &C::lengthOm1,
                      &C::lengthCopper, &C::lengthOm3 } );
   check.text( 20, 16, &C::vendorName, "Unknown" );
   check.bytes( 36, { &C::complianceExtended } );
   check.number( 37, 3, &C::vendorOui );
   check.text( 40, 16, &C::vendorPn, "Unknown" );
   check.text( 56, 4, &C::vendorRev, "Unknown" );
   check.number( 60, 2, &C::laserWavelengthInteger );
   check.number( 60, 2, valueOf<&C::passiveAttenuation> );
   check.number( 60, 2, valueOf<&C::activeAttenuation> );
   check.bytes( 62, { &C::laserWavelengthFractional, &C::storedCcBase } );
   check.number( 64, 2, &C::options );
   check.bytes( 66, { &C::bitrateMax, &C::bitrateMin } );
   check.text( 68, 16, &C::vendorSn, "Unknown" );
   check.text( 84, 8, &C::dateCode, "Unknown" );
   check.bytes( 92, { &C::diagsMonitoringType, &C::enhancedOptions, &C::revision } );
   check.bytes( 95, { &C::storedCcExt } );
   check.bytes( 95, { &C::storedCcDmi } );
}

TEST( SfpContents, TextSettersPadCutAndKeepTheRest ) {
   struct Case {
      void ( Contents::*write )( std::string_view );
      size_t at;
      std::string text, stored;
   };
   std::string const endless( 40, 'x' );
   Case const cases[] = { { &Contents::vendorNameIs, 20, "AB", "AB              " },
                          { &Contents::vendorPnIs, 40, endless, std::string( 16, 'x' ) },
                          { &Contents::vendorRevIs, 56, "A", "A   " },
                          { &Contents::vendorSnIs, 68, endless, std::string( 16, 'x' ) },
                          { &Contents::dateCodeIs, 84, "2601", "2601    " } };
   for ( auto const & c : cases ) {
      for ( size_t size : { size_t{ 256 }, c.at + 3, c.at, size_t{ 0 } } ) {
         Contents contents = numberedContents( size );
         ( contents.*c.write )( c.text );
         std::string const page = numberedPage( 256 ).replace( c.at, c.stored.size(), c.stored );
         EXPECT_EQ( contents.buf(), page.substr( 0, size ) ) << c.at << " " << size;
      }
   }
}

TEST( SfpContents, AttenuationOfTheVendorArea ) {
   auto const attenuation = []( uint8_t minuend, uint8_t subtrahend, size_t size ) {
      std::string page = std::string( 118, '\1' ) + char( minuend ) + char( subtrahend );
      page.resize( size );
      return Contents( std::string_view( page ), "", 0 ).quorelAttnValue();
   };
   EXPECT_EQ( attenuation( 0x80, 0x7f, 256 ), -127.5 );
   EXPECT_EQ( attenuation( 0, 8, 256 ), 0.0 );
   EXPECT_EQ( attenuation( 20, 8, 119 ), 0.0 );
}

TEST( SfpContents, ChecksumsAreValidUntilAGuardedByteChanges ) {
   Vel::String const page( std::string_view( SfpImageBuilder().vendor().a0h() ) );
   using C = Contents const &;
   struct {
      size_t first, last;
      bool ( *isValid )( C );
   } const sums[] = { { 0, 63, []( C c ) { return c.ccBaseValid(); } },
                      { 64, 95, []( C c ) { return c.ccExtValid(); } },
                      { 0, 95, []( C c ) { return c.checksumsValid( pageA0h ); } } };
   for ( auto const & sum : sums ) {
      XcvrTest::expectGuarded( page, sum.first, sum.last, [&sum]( Vel::String const & changed ) {
         return sum.isValid( Contents( changed, "", 0 ) );
      } );
   }
   Vel::String const diagnostics = SfpImageBuilder().contents().eepromPageA2Data();
   XcvrTest::expectGuarded( diagnostics, 0, 95, []( Vel::String const & changed ) {
      return Contents( "", changed, 0 ).checksumsValid( pageA2h );
   } );
   // A page of zeros sums up to its stored sum only if it holds that.
   for ( size_t size : { 63u, 64u, 95u, 96u } ) {
      Vel::String const zeros( size, '\0' );
      Contents const contents( zeros, zeros, 0 );
      EXPECT_EQ( contents.ccBaseValid(), size >= 64 ) << size;
      EXPECT_EQ( contents.checksumsValid( pageA0h ), size >= 96 ) << size;
      EXPECT_EQ( contents.checksumsValid( pageA2h ), size >= 96 ) << size;
   }
}

TEST( SfpContents, ChecksumsAreSumsOfSignedBytesAndCanBeMended ) {
   Contents contents( Vel::String( size_t{ 256 }, '\xff' ), Vel::String( size_t{ 256 }, '\x7f' ),
                      0 );
   EXPECT_EQ( contents.computedCcBase(), -63 );
   EXPECT_EQ( contents.computedCcExt(), -31 );
   EXPECT_EQ( contents.computedCcDmi(), 95 * 127 );
   contents.storedCcBaseIs( static_cast<uint8_t>( contents.computedCcBase() ) );
   contents.storedCcExtIs( static_cast<uint8_t>( contents.computedCcExt() ) );
   contents.storedCcDmiIs( static_cast<uint8_t>( contents.computedCcDmi() ) );
   EXPECT_TRUE( contents.checksumsValid( pageA0h ) && contents.checksumsValid( pageA2h ) );
   EXPECT_FALSE( contents.checksumsValid( maxSfpPages ) );
}

// Those that something rests on.
TEST( SfpContents, BitsLieWhereTheStandardPutsThem ) {
   struct Bit {
      unsigned at, number;
      char const * name;
   };
   for ( Bit const & bit :
         { Bit{ 3, 7, "10GBASE-ER" }, Bit{ 3, 6, "10GBASE-LRM" }, Bit{ 3, 5, "10GBASE-LR" },
           Bit{ 3, 4, "10GBASE-SR" }, Bit{ 3, 0, "InfiniBand 1X copper passive" },
           Bit{ 6, 4, "100BASE-LX10" }, Bit{ 6, 3, "1000BASE-T" }, Bit{ 6, 1, "1000BASE-LX" },
           Bit{ 6, 0, "1000BASE-SX" }, Bit{ 8, 3, "active cable" }, Bit{ 8, 2, "passive cable" },
           Bit{ 9, 7, "FC twin axial pair" }, Bit{ 10, 0, "FC 100 MB/s" },
           Bit{ 65, 6, "tunable transmitter" }, Bit{ 65, 1, "Rx LOS" } } ) {
      std::string const page =
         SfpImageBuilder().bit( bit.at > 10 ? "options" : "compliance", bit.name ).a0h();
      EXPECT_EQ( static_cast<uint8_t>( page[bit.at] ), 1u << bit.number ) << bit.name;
   }
}

TEST( SfpContents, ThresholdsAreRewrittenInPlace ) {
   Vel::String page = SfpImageBuilder().contents().eepromPageA2Data();
   std::string expected( page.view() );
   expected.replace( 24, 16,
                     std::string( "\xff\xff\x00\x64\x27\x10\x03\xe8"
                                  "\xf6\x77\x00\x01\x4d\xf0\x00\x0a",
                                  16 ) );
   auto const dBm = []( double value ) { return Units::Decibels( value ); };
   updateSfpDomThresholdWithQuorixData( page, dBm( 0 ), dBm( -10 ), dBm( 20 ), dBm( -20 ), dBm( 3 ),
                                        dBm( -30 ), dBm( 8 ), dBm( -40 ) );
   EXPECT_EQ( page, expected );
   Vel::String shortPage( size_t{ 11 }, '.' );
   editDomThresholdRegisterData( shortPage, 8, 0x4142 );
   editDomThresholdRegisterData( shortPage, 10, 0x4344 );
   editDomThresholdRegisterData( shortPage, 255, 0x4546 );
   EXPECT_EQ( shortPage, "........ABC" );
}

TEST( SfpContents, AnAccessorThatCannotReadTracesItsName ) {
   Contents const contents = SfpImageBuilder().contents();
   TraceCapture capture( "XcvrSfpPlus", 8 );
   static_cast<void>( contents.vendorName() ); // can be read, so is no news
   static_cast<void>( Contents().vendorName() );
   static_cast<void>( Contents().bitrateNominal() );
   static_cast<void>( Contents().quorelAttnValue() ); // is entered, which is none
   EXPECT_THAT( capture.operations(),
                testing::ElementsAre( "vendorName", "bitrateNominal", "quorelAttnValue" ) );
}

} // namespace
} // namespace Xcvr
