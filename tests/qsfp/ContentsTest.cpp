#include "tests/support/AccessorCases.h"
#include "tests/support/QsfpImageBuilder.h"

#include <Xcvr/XcvrQsfpPlus.h>

#include <gmock/gmock.h>

#include <string>

namespace Xcvr {
namespace {

using Contents = Sff8436IdEepromContents;
using testing::AnyOf;
using testing::Contains;
using testing::IsSupersetOf;
using testing::Not;
using XcvrTest::QsfpImageBuilder;

Contents onlyUpper( Vel::String const & page ) {
   Contents contents;
   contents.eepromPage00UpperDataIs( page );
   return contents;
}

Contents numberedContents( size_t size ) {
   return onlyUpper( std::string_view( XcvrTest::numberedPage( size ) ) );
}

/// Upper page 00h of zeros, but for the bytes from a byte of the module on.
Contents withBytes( size_t byte, std::string_view bytes, size_t size = 128 ) {
   std::string page( size, '\0' );
   return onlyUpper( std::string_view( page.replace( byte - 128, bytes.size(), bytes ) ) );
}

TEST( QsfpContents, FieldsLieWhereTheStandardPutsThem ) {
   using C = Contents;
   XcvrTest::AccessorCheck<C> const check{ numberedContents, 128 };
   check.bytes(
      128, { &C::identifier, &C::identifierExtended, &C::connector, &C::complianceEth10And40G } );
   check.bytes( 139, { &C::encoding, &C::bitrateNominal, &C::extendedRateSelectCompliance,
                       &C::lengthSmf, &C::lengthOm3, &C::lengthOm2, &C::lengthOm1,
                       &C::lengthCableOrOm4, &C::deviceTech } );
   check.text( 148, 16, &C::vendorName, "" );
   check.number( 165, 3, &C::vendorOui );
   check.text( 168, 16, &C::vendorPn, "" );
   check.text( 184, 2, &C::vendorRev, "" );
   check.number( 186, 2, &C::laserWavelength, 50 );
   check.number( 186, 4, &C::cableAttn );
   check.bytes( 186, { &C::attenuation2p5GHz, &C::attenuation5GHz, &C::attenuation7GHz,
                       &C::attenuation12p9GHz, &C::maxCaseTemp } );
   check.number( 188, 2, &C::wavelengthTolerance );
   check.bytes( 192, { &C::complianceExtended } );
   check.number( 193, 3, &C::options );
   check.text( 196, 16, &C::vendorSn, "" );
   check.text( 212, 8, &C::dateCode, "" );
   check.bytes( 220, { &C::diagsMonitoringType, &C::enhancedOptions, &C::bitrateExtended } );
}

TEST( QsfpContents, ComplianceIsPackedWithSignExtension ) {
   auto const packed = []( std::string_view bytes ) {
      return withBytes( 131, bytes ).compliance();
   };
   EXPECT_EQ( packed( "\x01\x23\x45\x67\x09\x2b\x4d\x6f" ), 0x01234567092b4d6fu );
   EXPECT_EQ( packed( "\x80" ), 0x8000000000000000u );     // shifted out
   EXPECT_EQ( packed( "\x04\x80" ), 0xff80000000000000u ); // covers the first
   EXPECT_EQ( numberedContents( 10 ).compliance(), 0u );   // its last byte is not there
}

TEST( QsfpContents, TestsAreTheBitsTheyName ) {
   struct {
      bool ( Contents::*read )() const;
      unsigned byte, bit;
   } const cases[] = { { &Contents::txInputEqualizationAutoSupported, 193, 3 },
                       { &Contents::txInputEqualizationFixedSupported, 193, 2 },
                       { &Contents::rxOutputEmphasisSupported, 193, 1 },
                       { &Contents::rxOutputAmplitudeSupported, 193, 0 },
                       { &Contents::rateSelectImplemented, 195, 5 },
                       { &Contents::txPowerSupported, 220, 2 },
                       { &Contents::rxPowerIsAverage, 220, 3 },
                       { &Contents::extendedRateSelectSupported, 221, 3 } };
   for ( auto const & c : cases ) {
      std::string const mask( 1, static_cast<char>( 1u << c.bit ) );
      EXPECT_TRUE( ( withBytes( c.byte, mask ).*c.read )() ) << c.byte << "." << c.bit;
      std::string page( 128, '\xff' );
      page[c.byte - 128] = static_cast<char>( ~mask[0] );
      EXPECT_FALSE( ( withBytes( 128, page ).*c.read )() ) << c.byte << "." << c.bit;
   }
   // Both bits, 15 and 14 of the options, or none.
   for ( char const byte : { '\x40', '\x80', '\xc0' } ) {
      Contents const contents = withBytes( 194, std::string( 1, byte ) );
      EXPECT_EQ( contents.cdrTxRxControlImplemented(), byte == '\xc0' );
   }
   EXPECT_TRUE( withBytes( 140, "\xff" ).higherBitrate() && !Contents().higherBitrate() );
}

TEST( QsfpContents, ChecksumsGuardTheirBytesOfUpperPage00h ) {
   Sff8436PageId const page00h = eepromPage00Upper;
   Vel::String const good = QsfpImageBuilder().vendor().contents().eepromPage00UpperData();
   XcvrTest::expectGuarded( good, 0, 63, [&]( Vel::String const & page ) {
      Contents const c = onlyUpper( page );
      return c.baseChecksum( page00h ) == c.baseChecksumCalculated( page00h );
   } );
   XcvrTest::expectGuarded( good, 64, 95, [&]( Vel::String const & page ) {
      Contents const c = onlyUpper( page );
      return c.extendedChecksum( page00h ) == c.extendedChecksumCalculated( page00h );
   } );
   XcvrTest::expectGuarded( good, 0, 95, [&]( Vel::String const & page ) {
      return onlyUpper( page ).checksumsValid( page00h );
   } );
   Contents const high = onlyUpper( Vel::String( size_t{ 128 }, '\xff' ) );
   EXPECT_EQ( high.baseChecksumCalculated( page00h ), 63 * 255 % 256 );
   EXPECT_EQ( high.extendedChecksumCalculated( page00h ), 31 * 255 % 256 );

   // No other page has any. A page without its stored sums, or without bytes, is not valid.
   EXPECT_TRUE( high.checksumsValid( eepromPage03Upper ) );
   EXPECT_EQ( high.baseChecksum( eepromPage03Upper ), 0 );
   EXPECT_FALSE( Contents().checksumsValid( page00h ) );
   EXPECT_FALSE( withBytes( 128, "", 95 ).checksumsValid( page00h ) );
   EXPECT_TRUE( withBytes( 128, "", 96 ).checksumsValid( page00h ) );
}

TEST( QsfpContents, PowerClassAndMaximumPower ) {
   auto const expectPower = []( unsigned byte129, unsigned revision, unsigned byte107,
                                PowerClass powerClass, double watts ) {
      Contents const contents = QsfpImageBuilder()
                                   .raw( "identifierExtended", byte129, "revisionCompliance",
                                         revision, "maxPower", byte107 )
                                   .contents();
      EXPECT_EQ( contents.powerClass(), powerClass ) << byte129 << " revision " << revision;
      EXPECT_DOUBLE_EQ( contents.maxPower(), watts ) << byte129 << " revision " << revision;
   };
   double const watts[] = { 1.5, 2.0, 2.5, 3.5 };
   for ( unsigned i = 0; i < 4; ++i ) {
      expectPower( i << 6, 8, 0, PowerClass( unsigned( xcvrPowerClass1 ) + i ), watts[i] );
   }
   expectPower( 0xdd, 8, 0, xcvrPowerClass5, 4.0 ); // beside other bits
   expectPower( 0xc2, 0, 0, xcvrPowerClass6, 4.5 ); // revision not given
   expectPower( 0xc3, 3, 0, xcvrPowerClass7, 5.0 );
   expectPower( 0xc3, 8, 47, xcvrPowerClass7, 4.7 ); // the module's own figure
   expectPower( 0x43, 8, 0, xcvrPowerClassUnknown, 0 );
   expectPower( 0xe3, 8, 0, xcvrPowerClassUnknown, 0 ); // class 8
   // Of SFF-8436 the low bits are no classes.
   expectPower( 0x63, 2, 0, xcvrPowerClass2, 2.0 );
   EXPECT_EQ( Contents().powerClass(), xcvrPowerClassUnknown );
   // What the reader knows comes before what the module says.
   Contents known = withBytes( 129, "\xc3" );
   known.sff8636RevisionIs( 1 );
   EXPECT_EQ( known.revisionCompliance(), 1 );
   EXPECT_EQ( known.powerClass(), xcvrPowerClass4 );
}

TEST( QsfpContents, PagesAreThoseThatTheModuleHas ) {
   QsfpImageBuilder module;
   module.text( "userText", "Rack 7, row B" );
   auto const held = [&module] {
      std::string pages; // a digit each
      for ( unsigned code = 0; code <= static_cast<unsigned>( sff8436PageInvalid ); ++code ) {
         auto const page = static_cast<Sff8436PageId>( code );
         EXPECT_EQ( module.contents().hasPage( page ), !module.contents().page( page ).empty() );
         pages += module.contents().hasPage( page ) ? std::to_string( code ) : "";
      }
      return pages;
   };
   EXPECT_EQ( held(), "013" );
   EXPECT_EQ( module.contents().userText(), "" );
   EXPECT_EQ( ( module.bit( "options", "page 02h" ), held() ), "0123" );
   EXPECT_EQ( module.contents().userText(), "Rack 7, row B" + std::string( 115, ' ' ) );
   module.bit( "identifierExtended", "CLEI code" ).text( "cleiCode", "CLEI123456" );
   EXPECT_EQ( module.contents().cleiCode(), "CLEI123456" );
   EXPECT_EQ( module.contents().userText(), "" );
   EXPECT_EQ( ( module.bit( "options", "pages 20h and 21h" ), held() ), "012345" );
   // What lies in the pages of a module of flat memory is none of its own.
   EXPECT_EQ( ( module.bit( "moduleStatus", "flat memory" ), held() ), "01" );
   EXPECT_EQ( module.contents().cleiCode(), "" );
}

TEST( QsfpContents, RowsHoldOnlyWhereTheyAreInUse ) {
   auto const used = []( QsfpImageBuilder const & module ) {
      std::vector<std::string_view> names;
      for ( MemoryField const & field : sff8436Fields() ) {
         if ( module.contents().fieldInUse( field ) ) {
            names.push_back( field.name );
         }
      }
      return names;
   };
   EXPECT_THAT( used( QsfpImageBuilder() ),
                IsSupersetOf( { "laserWavelength", "wavelengthTolerance", "lengthOm4", "rxPower1",
                                "rxPowerFlags", "tempHighAlarm" } ) );
   EXPECT_THAT( used( QsfpImageBuilder() ),
                Not( Contains( AnyOf( "attenuation5GHz", "lengthCableOrOm4", "lengthActiveCable",
                                      "txPower1", "txPowerFlags", "txPowerLowWarn", "userText",
                                      "parameter1Value", "bitrateExtended" ) ) ) );
   auto const activeCable = used( QsfpImageBuilder().raw( "connector", 0x23 ) );
   EXPECT_THAT( activeCable, Contains( "lengthActiveCable" ) );
   EXPECT_THAT( activeCable, Not( Contains( AnyOf( "lengthOm4", "lengthCableOrOm4" ) ) ) );
   auto const copper = used( QsfpImageBuilder().flat().raw( "deviceTech", 0xa0 ) );
   EXPECT_THAT( copper, IsSupersetOf( { "attenuation12p9GHz", "lengthCableOrOm4" } ) );
   EXPECT_THAT( copper, Not( Contains( AnyOf( "laserWavelength", "lengthOm4", "temperature",
                                              "txBias4", "tempHighAlarm", "thresholdSet0" ) ) ) );
}

} // namespace
} // namespace Xcvr
