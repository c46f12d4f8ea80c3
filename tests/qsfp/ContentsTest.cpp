#include "tests/support/AccessorCases.h"
#include "tests/support/QsfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

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
   struct Case {
      bool ( Contents::*read )() const;
      unsigned byte, bit;
   };
   Case const cases[] = { { &Contents::txInputEqualizationAutoSupported, 193, 3 },
                          { &Contents::txInputEqualizationFixedSupported, 193, 2 },
                          { &Contents::rxOutputEmphasisSupported, 193, 1 },
                          { &Contents::rxOutputAmplitudeSupported, 193, 0 },
                          { &Contents::rateSelectImplemented, 195, 5 },
                          { &Contents::txPowerSupported, 220, 2 },
                          { &Contents::rxPowerIsAverage, 220, 3 },
                          { &Contents::extendedRateSelectSupported, 221, 3 } };
   for ( Case const & c : cases ) {
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
   Contents const good = QsfpImageBuilder().text( "vendorName", "NORTHLIGHT" ).contents();
   EXPECT_TRUE( good.checksumsValid( page00h ) );
   for ( unsigned at = 0; at < 128; ++at ) {
      Vel::String page = good.eepromPage00UpperData();
      page.byteIs( at, static_cast<uint8_t>( page[at] + 1 ) );
      Contents const bad = onlyUpper( page );
      EXPECT_EQ( bad.baseChecksum( page00h ) == bad.baseChecksumCalculated( page00h ), at >= 64 );
      EXPECT_EQ( bad.extendedChecksum( page00h ) == bad.extendedChecksumCalculated( page00h ),
                 at < 64 || at >= 96 );
      EXPECT_EQ( bad.checksumsValid( page00h ), at >= 96 ) << at;
   }
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
                                   .raw( "identifierExtended", byte129 )
                                   .raw( "revisionCompliance", revision )
                                   .raw( "maxPower", byte107 )
                                   .contents();
      EXPECT_EQ( contents.powerClass(), powerClass ) << byte129 << " revision " << revision;
      EXPECT_DOUBLE_EQ( contents.maxPower(), watts ) << byte129 << " revision " << revision;
   };
   expectPower( 0x00, 8, 0, xcvrPowerClass1, 1.5 );
   expectPower( 0x40, 8, 0, xcvrPowerClass2, 2.0 );
   expectPower( 0x80, 8, 0, xcvrPowerClass3, 2.5 );
   expectPower( 0xc0, 8, 0, xcvrPowerClass4, 3.5 );
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
      return XcvrTest::fieldsInUse( module.contents(), sff8436Fields() );
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

TEST( QsfpContents, AnAccessorThatCannotReadTracesItsName ) {
   TraceCapture capture( "XcvrQsfpPlus", 8 );
   static_cast<void>( numberedContents( 20 ).vendorName() );
   // Ends behind the byte, but within the other compliance bytes.
   static_cast<void>( numberedContents( 4 ).complianceEth10And40G() );
   static_cast<void>( numberedContents( 3 ).complianceEth10And40G() );
   EXPECT_THAT( capture.operations(),
                testing::ElementsAre( "vendorName", "complianceEth10And40G" ) );
}

} // namespace
} // namespace Xcvr
