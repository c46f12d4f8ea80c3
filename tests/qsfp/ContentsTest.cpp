#include "tests/support/AllocationCount.h"
#include "tests/support/QsfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

#include <Vel/AttrLog.h>
#include <Xcvr/XcvrQsfpPlus.h>

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace Xcvr {
namespace {

using Contents = Sff8436IdEepromContents;
using XcvrTest::QsfpImageBuilder;

/// A byte that tells its address, and is never one that has a meaning of its own by chance.
constexpr uint8_t byteAt( unsigned at ) {
   return static_cast<uint8_t>( at * 167 + 29 );
}

Contents onlyUpper( Vel::String const & page ) {
   Contents contents;
   contents.eepromPage00UpperDataIs( page );
   return contents;
}

Contents numberedContents( size_t size = 128 ) {
   std::string page;
   for ( unsigned at = 0; at < size; ++at ) {
      page += static_cast<char>( byteAt( at ) );
   }
   return onlyUpper( std::string_view( page ) );
}

// The places here are those of the standard, as the module's bytes: they check the field table.

struct NumberCase {
   char const * name;
   std::function<uint64_t( Contents const & )> read;
   std::vector<unsigned> bytes; // most significant first
   unsigned factor = 1;
};

NumberCase const numbers[] = {
   { "identifier", &Contents::identifier, { 128 } },
   { "identifierExtended", &Contents::identifierExtended, { 129 } },
   { "connector", &Contents::connector, { 130 } },
   { "complianceEth10And40G", &Contents::complianceEth10And40G, { 131 } },
   { "encoding", &Contents::encoding, { 139 } },
   { "bitrateNominal", &Contents::bitrateNominal, { 140 } },
   { "extendedRateSelectCompliance", &Contents::extendedRateSelectCompliance, { 141 } },
   { "lengthSmf", &Contents::lengthSmf, { 142 } },
   { "lengthOm3", &Contents::lengthOm3, { 143 } },
   { "lengthOm2", &Contents::lengthOm2, { 144 } },
   { "lengthOm1", &Contents::lengthOm1, { 145 } },
   { "lengthCableOrOm4", &Contents::lengthCableOrOm4, { 146 } },
   { "deviceTech", &Contents::deviceTech, { 147 } },
   { "vendorOui", &Contents::vendorOui, { 165, 166, 167 } },
   { "laserWavelength", &Contents::laserWavelength, { 186, 187 }, 50 },
   { "cableAttn", &Contents::cableAttn, { 186, 187, 188, 189 } },
   { "attenuation2p5GHz", &Contents::attenuation2p5GHz, { 186 } },
   { "attenuation5GHz", &Contents::attenuation5GHz, { 187 } },
   { "attenuation7GHz", &Contents::attenuation7GHz, { 188 } },
   { "attenuation12p9GHz", &Contents::attenuation12p9GHz, { 189 } },
   { "wavelengthTolerance", &Contents::wavelengthTolerance, { 188, 189 } },
   { "maxCaseTemp", &Contents::maxCaseTemp, { 190 } },
   { "baseChecksum",
     []( Contents const & c ) { return c.baseChecksum( eepromPage00Upper ); },
     { 191 } },
   { "complianceExtended", &Contents::complianceExtended, { 192 } },
   { "options", &Contents::options, { 193, 194, 195 } },
   { "diagsMonitoringType", &Contents::diagsMonitoringType, { 220 } },
   { "enhancedOptions", &Contents::enhancedOptions, { 221 } },
   { "bitrateExtended", &Contents::bitrateExtended, { 222 } },
   { "extendedChecksum",
     []( Contents const & c ) { return c.extendedChecksum( eepromPage00Upper ); },
     { 223 } },
};

struct TextCase {
   char const * name;
   Vel::String ( Contents::*read )() const;
   size_t byte, width;
};

TextCase const texts[] = {
   { "vendorName", &Contents::vendorName, 148, 16 }, { "vendorPn", &Contents::vendorPn, 168, 16 },
   { "vendorRev", &Contents::vendorRev, 184, 2 },    { "vendorSn", &Contents::vendorSn, 196, 16 },
   { "dateCode", &Contents::dateCode, 212, 8 },
};

TEST( QsfpContents, NumbersLieWhereTheStandardPutsThem ) {
   Contents const contents = numberedContents();
   for ( NumberCase const & number : numbers ) {
      uint64_t expected = 0;
      for ( unsigned byte : number.bytes ) {
         expected = expected << 8 | byteAt( byte - 128 );
      }
      EXPECT_EQ( number.read( contents ), expected * number.factor ) << number.name;
      // One byte less, and the last byte of the field is not there.
      EXPECT_EQ( number.read( numberedContents( number.bytes.back() - 128 ) ), 0u ) << number.name;
      EXPECT_EQ( number.read( Contents() ), 0u ) << number.name;
   }
}

TEST( QsfpContents, TextsLieWhereTheStandardPutsThem ) {
   for ( TextCase const & text : texts ) {
      SCOPED_TRACE( text.name );
      size_t const at = text.byte - 128;
      std::string const page( numberedContents().eepromPage00UpperData().view() );
      EXPECT_EQ( ( numberedContents().*text.read )(), page.substr( at, text.width ) );
      EXPECT_EQ( ( numberedContents( at + 1 ).*text.read )(), page.substr( at, 1 ) );
      EXPECT_EQ( ( numberedContents( at ).*text.read )(), "" );
      EXPECT_EQ( ( Contents().*text.read )(), "" );
   }
}

TEST( QsfpContents, ComplianceIsPackedWithSignExtension ) {
   auto const packed = []( std::initializer_list<uint8_t> bytes ) {
      Vel::String page( size_t{ 128 }, '\0' );
      size_t at = 3;
      for ( uint8_t byte : bytes ) {
         page.byteIs( at++, byte );
      }
      return onlyUpper( page ).compliance();
   };
   EXPECT_EQ( packed( { 0x01, 0x23, 0x45, 0x67, 0x09, 0x2b, 0x4d, 0x6f } ), 0x01234567092b4d6fu );
   EXPECT_EQ( packed( { 0x80 } ), 0x8000000000000000u );       // shifted out
   EXPECT_EQ( packed( { 0x04, 0x80 } ), 0xff80000000000000u ); // covers the first
   EXPECT_EQ( packed( { 1, 2, 3, 4, 5, 6, 7, 0x80 } ), 0xffffffffffffff80u );
   EXPECT_EQ( packed( { 1, 2, 3, 4, 5, 6, 0xff, 1 } ), 0xffffffffffffff01u );
   EXPECT_EQ( numberedContents( 10 ).compliance(), 0u ); // its last byte is not there
   EXPECT_EQ( Contents().compliance(), 0u );
}

TEST( QsfpContents, TestsAreTheBitsTheyName ) {
   struct Case {
      char const * name;
      bool ( Contents::*read )() const;
      unsigned byte, bit;
   };
   Case const cases[] = {
      { "txInputEqualizationAuto", &Contents::txInputEqualizationAutoSupported, 193, 3 },
      { "txInputEqualizationFixed", &Contents::txInputEqualizationFixedSupported, 193, 2 },
      { "rxOutputEmphasis", &Contents::rxOutputEmphasisSupported, 193, 1 },
      { "rxOutputAmplitude", &Contents::rxOutputAmplitudeSupported, 193, 0 },
      { "rateSelect", &Contents::rateSelectImplemented, 195, 5 },
      { "txPower", &Contents::txPowerSupported, 220, 2 },
      { "rxPowerIsAverage", &Contents::rxPowerIsAverage, 220, 3 },
      { "extendedRateSelect", &Contents::extendedRateSelectSupported, 221, 3 },
   };
   for ( Case const & c : cases ) {
      for ( unsigned byte : { 193u, 194u, 195u, 220u, 221u } ) {
         for ( unsigned bit = 0; bit < 8; ++bit ) {
            Vel::String page( size_t{ 128 }, '\0' );
            page.byteIs( byte - 128, static_cast<uint8_t>( 1u << bit ) );
            EXPECT_EQ( ( onlyUpper( page ).*c.read )(), byte == c.byte && bit == c.bit )
               << c.name << ": " << byte << "." << bit;
         }
      }
      EXPECT_FALSE( ( Contents().*c.read )() ) << c.name;
   }
   // Both bits, 15 and 14 of the options, or none.
   for ( unsigned byte194 : { 0x00u, 0x40u, 0x80u, 0xc0u } ) {
      Contents const contents = QsfpImageBuilder().raw( "options", byte194 << 8 ).contents();
      EXPECT_EQ( contents.cdrTxRxControlImplemented(), byte194 == 0xc0 );
   }
   Contents fast;
   EXPECT_FALSE( fast.higherBitrate() );
   EXPECT_FALSE( QsfpImageBuilder().raw( "bitrateNominal", 254 ).contents().higherBitrate() );
   EXPECT_TRUE( QsfpImageBuilder().raw( "bitrateNominal", 255 ).contents().higherBitrate() );
}

TEST( QsfpContents, ChecksumsGuardTheirBytesOfUpperPage00h ) {
   Contents const good = QsfpImageBuilder().text( "vendorName", "NORTHLIGHT" ).contents();
   EXPECT_TRUE( good.checksumsValid( eepromPage00Upper ) );
   for ( unsigned at = 0; at < 128; ++at ) {
      Vel::String page = good.eepromPage00UpperData();
      page.byteIs( at, static_cast<uint8_t>( page[at] + 1 ) );
      Contents const bad = onlyUpper( page );
      bool const base =
         bad.baseChecksum( eepromPage00Upper ) == bad.baseChecksumCalculated( eepromPage00Upper );
      bool const extended = bad.extendedChecksum( eepromPage00Upper ) ==
                            bad.extendedChecksumCalculated( eepromPage00Upper );
      EXPECT_EQ( base, at >= 64 ) << at;
      EXPECT_EQ( extended, at < 64 || at >= 96 ) << at;
      EXPECT_EQ( bad.checksumsValid( eepromPage00Upper ), at >= 96 ) << at;
   }
   Contents const high = onlyUpper( Vel::String( size_t{ 128 }, '\xff' ) );
   EXPECT_EQ( high.baseChecksumCalculated( eepromPage00Upper ), 63 * 255 % 256 );
   EXPECT_EQ( high.extendedChecksumCalculated( eepromPage00Upper ), 31 * 255 % 256 );

   // No other page has any. A page without its stored sums, or without bytes, is not valid.
   for ( Sff8436PageId other : { eepromPage00Lower, eepromPage02Upper, eepromPage03Upper,
                                 eepromPage20hUpper, eepromPage21hUpper } ) {
      EXPECT_EQ( high.baseChecksum( other ) + high.baseChecksumCalculated( other ), 0 );
      EXPECT_EQ( high.extendedChecksum( other ) + high.extendedChecksumCalculated( other ), 0 );
      EXPECT_TRUE( high.checksumsValid( other ) && Contents().checksumsValid( other ) );
   }
   EXPECT_FALSE( Contents().checksumsValid( eepromPage00Upper ) );
   EXPECT_FALSE(
      onlyUpper( Vel::String( size_t{ 95 }, '\0' ) ).checksumsValid( eepromPage00Upper ) );
   EXPECT_TRUE(
      onlyUpper( Vel::String( size_t{ 96 }, '\0' ) ).checksumsValid( eepromPage00Upper ) );
}

TEST( QsfpContents, PowerClassAndMaximumPower ) {
   struct Case {
      unsigned byte129, revision, byte107;
      PowerClass powerClass;
      double watts;
   };
   for ( Case const & c : std::initializer_list<Case>{
            { 0x00, 8, 0, xcvrPowerClass1, 1.5 },
            { 0x40, 8, 0, xcvrPowerClass2, 2.0 },
            { 0x80, 8, 0, xcvrPowerClass3, 2.5 },
            { 0xc0, 8, 0, xcvrPowerClass4, 3.5 },
            { 0xdd, 8, 0, xcvrPowerClass5, 4.0 }, // beside other bits
            { 0xc2, 0, 0, xcvrPowerClass6, 4.5 }, // revision not given
            { 0xc3, 3, 0, xcvrPowerClass7, 5.0 },
            { 0xc3, 8, 47, xcvrPowerClass7, 4.7 }, // the module's own figure
            { 0x43, 8, 0, xcvrPowerClassUnknown, 0 },
            { 0xe3, 8, 0, xcvrPowerClassUnknown, 0 }, // class 8
            { 0x20, 8, 120, xcvrPowerClassUnknown, 12 },
            // Of SFF-8436 the low bits are no classes.
            { 0xc3, 1, 0, xcvrPowerClass4, 3.5 },
            { 0x63, 2, 0, xcvrPowerClass2, 2.0 } } ) {
      Contents const contents = QsfpImageBuilder()
                                   .raw( "identifierExtended", c.byte129 )
                                   .raw( "revisionCompliance", c.revision )
                                   .raw( "maxPower", c.byte107 )
                                   .contents();
      SCOPED_TRACE( testing::Message() << std::hex << c.byte129 << " revision " << c.revision );
      EXPECT_EQ( contents.powerClass(), c.powerClass );
      EXPECT_DOUBLE_EQ( contents.maxPower(), c.watts );
   }
   EXPECT_EQ( Contents().powerClass(), xcvrPowerClassUnknown );
   EXPECT_EQ( Contents().maxPower(), 0 );
   // What the reader knows comes before what the module says.
   Contents known = QsfpImageBuilder()
                       .raw( "revisionCompliance", 8 )
                       .raw( "identifierExtended", 0xc3 )
                       .contents();
   known.sff8636RevisionIs( 1 );
   EXPECT_EQ( known.revisionCompliance(), 1 );
   EXPECT_EQ( known.powerClass(), xcvrPowerClass4 );
}

TEST( QsfpContents, PassiveCopperHasNoMonitors ) {
   for ( unsigned technology = 0; technology < 16; ++technology ) {
      Contents const contents = QsfpImageBuilder().raw( "deviceTech", technology << 4 ).contents();
      EXPECT_EQ( static_cast<unsigned>( contents.deviceTechnology() ), technology );
      EXPECT_EQ( contents.domSupported(), technology != 10 && technology != 11 );
   }
   EXPECT_EQ(
      stringValue( QsfpImageBuilder().raw( "deviceTech", 0xbf ).contents().deviceTechnology() ),
      "copperPassiveEqualized" );
   EXPECT_FALSE( Contents().domSupported() );
}

TEST( QsfpContents, PagesAreThoseThatTheModuleHas ) {
   QsfpImageBuilder module;
   module.text( "userText", "Rack 7, row B" );
   auto const held = [&module] {
      std::set<Sff8436PageId> pages;
      for ( unsigned code = 0; code <= static_cast<unsigned>( sff8436PageInvalid ); ++code ) {
         auto const page = static_cast<Sff8436PageId>( code );
         EXPECT_EQ( module.contents().hasPage( page ), !module.contents().page( page ).empty() );
         if ( module.contents().hasPage( page ) ) {
            pages.insert( page );
         }
      }
      return pages;
   };
   std::set<Sff8436PageId> expected{ eepromPage00Lower, eepromPage00Upper, eepromPage03Upper };
   EXPECT_EQ( held(), expected );
   EXPECT_EQ( module.contents().userText(), "" );
   module.bit( "options", "page 02h" );
   expected.insert( eepromPage02Upper );
   EXPECT_EQ( held(), expected );
   EXPECT_EQ( module.contents().userText().substr( 0, 14 ), "Rack 7, row B " );
   EXPECT_EQ( module.contents().userText().size(), 128u );
   EXPECT_EQ( module.contents().cleiCode(), "" );
   module.bit( "identifierExtended", "CLEI code" ).text( "cleiCode", "CLEI123456" );
   EXPECT_EQ( module.contents().cleiCode(), "CLEI123456" );
   EXPECT_EQ( module.contents().userText(), "" );
   module.bit( "options", "pages 20h and 21h" );
   expected.insert( { eepromPage20hUpper, eepromPage21hUpper } );
   EXPECT_EQ( held(), expected );
   // What lies in the pages of a module of flat memory is none of its own.
   module.bit( "moduleStatus", "flat memory" );
   expected = { eepromPage00Lower, eepromPage00Upper };
   EXPECT_EQ( held(), expected );
   EXPECT_EQ( module.contents().cleiCode(), "" );
}

TEST( QsfpContents, RowsHoldOnlyWhereTheyAreInUse ) {
   auto const inUse = []( QsfpImageBuilder const & module ) {
      std::set<std::string_view> names;
      for ( MemoryField const & field : sff8436Fields() ) {
         if ( module.contents().fieldInUse( field ) ) {
            names.insert( field.name );
         }
      }
      return names;
   };
   auto const optical = inUse( QsfpImageBuilder() );
   for ( char const * name : { "laserWavelength", "wavelengthTolerance", "lengthOm4", "rxPower1",
                               "rxPowerFlags", "tempHighAlarm" } ) {
      EXPECT_TRUE( optical.contains( name ) ) << name;
   }
   for ( char const * name :
         { "attenuation5GHz", "lengthCableOrOm4", "txPower1", "txPowerFlags", "txPowerLowWarn",
           "userText", "parameter1Value", "rxOutputEmphasis", "bitrateExtended" } ) {
      EXPECT_FALSE( optical.contains( name ) ) << name;
   }
   auto const activeCable = inUse( QsfpImageBuilder().raw( "connector", 0x23 ) );
   EXPECT_TRUE( activeCable.contains( "lengthActiveCable" ) &&
                !optical.contains( "lengthActiveCable" ) );
   EXPECT_FALSE( activeCable.contains( "lengthOm4" ) ||
                 activeCable.contains( "lengthCableOrOm4" ) );
   auto const copper = inUse( QsfpImageBuilder().flat().raw( "deviceTech", 0xa0 ) );
   for ( char const * name : { "attenuation2p5GHz", "attenuation12p9GHz", "lengthCableOrOm4" } ) {
      EXPECT_TRUE( copper.contains( name ) ) << name;
   }
   for ( char const * name : { "laserWavelength", "wavelengthTolerance", "lengthOm4", "temperature",
                               "txBias4", "tempHighAlarm", "thresholdSet0" } ) {
      EXPECT_FALSE( copper.contains( name ) ) << name;
   }
   EXPECT_TRUE(
      inUse( QsfpImageBuilder().raw( "deviceTech", 0x9f ) ).contains( "laserWavelength" ) );
   EXPECT_TRUE( inUse( QsfpImageBuilder().raw( "deviceTech", 0xc0 ) ).contains( "temperature" ) );
   EXPECT_TRUE(
      inUse( QsfpImageBuilder().raw( "deviceTech", 0x10 ) ).contains( "lengthCableOrOm4" ) );
   EXPECT_TRUE( inUse( QsfpImageBuilder().bit( "diagsMonitoringType", "Tx power monitor" ) )
                   .contains( "txPower4" ) );
}

TEST( QsfpContents, AreAValue ) {
   Contents const contents( "\x11", "u'0", "\"2", "\xff", "x", "y", 1.5, uint8_t( 7 ) );
   EXPECT_EQ( stringValue( Contents( "a", "b", "c", "d", "e", "f", 2, uint8_t( 3 ) ) ),
              "Value('Xcvr::Sff8436IdEepromContents', ** {'eepromPage00LowerData': 'a', "
              "'eepromPage00UpperData': 'b', 'eepromPage02UpperData': 'c', "
              "'eepromPage03UpperData': 'd', 'eepromPage20hUpperData': 'e', "
              "'eepromPage21hUpperData': 'f', 'lastValidData': 2, 'sff8636Revision': 3})" );
   EXPECT_EQ( Contents( stringValue( contents ) ), contents );
   Vel::NboAttrLog log;
   contents.velWrite( log );
   EXPECT_EQ( Contents( log ), contents );
   EXPECT_TRUE( !Contents() );
   EXPECT_FALSE( !contents );
}

TEST( QsfpContents, AnAccessorThatCannotReadTracesItsName ) {
   TraceCapture capture( "XcvrQsfpPlus", 8 );
   static_cast<void>( numberedContents( 20 ).vendorName() );
   static_cast<void>( Contents().connector() );
   static_cast<void>( numberedContents().vendorSn() );
   // Ends behind the byte, but within the other compliance bytes.
   static_cast<void>( numberedContents( 4 ).complianceEth10And40G() );
   static_cast<void>( numberedContents( 3 ).complianceEth10And40G() );
   auto const records = capture.takeRecords();
   ASSERT_EQ( records.size(), 3u );
   EXPECT_EQ( records[0].operation, "vendorName" );
   EXPECT_EQ( records[1].operation, "connector" );
   EXPECT_EQ( records[2].operation, "complianceEth10And40G" );
}

TEST( QsfpContents, DecodingAllocatesNothing ) {
   Contents const contents = QsfpImageBuilder()
                                .text( "vendorName", "NORTHLIGHT OPTIC" )
                                .text( "vendorSn", "NL24100001AAAAAA" )
                                .raw( "complianceExtended", 6 )
                                .bit( "compliance", "extended compliance" )
                                .contents();
   AllocationCount const count;
   VendorInfo const vendor( contents.vendorName(), contents.vendorPn(), contents.vendorSn(),
                            contents.vendorRev(), contents.dateCode() );
   MediaType const mediaType = contents.mediaType();
   bool const valid = contents.checksumsValid( eepromPage00Upper );
   EXPECT_EQ( count.calls(), 0u );
   EXPECT_EQ( vendor.vendorSn(), "NL24100001AAAAAA" );
   EXPECT_EQ( mediaType, xcvr100GBaseCwdm4 );
   EXPECT_TRUE( valid );
}

} // namespace
} // namespace Xcvr
