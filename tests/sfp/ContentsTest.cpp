#include "tests/support/AllocationCount.h"
#include "tests/support/SfpImageBuilder.h"

#include <Vel/AttrLog.h>
#include <Vel/Exception.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrSfpPlus.h>

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace Xcvr {
namespace {

using Contents = XcvrSff8472IdEepromContents;
using XcvrTest::SfpImageBuilder;

/// A byte that tells its address, and never is one that has a meaning of its own by chance.
constexpr uint8_t byteAt( unsigned at ) {
   return static_cast<uint8_t>( at * 167 + 29 );
}

Contents numberedContents( size_t size = 256 ) {
   std::string page;
   for ( unsigned at = 0; at < size; ++at ) {
      page += static_cast<char>( byteAt( at ) );
   }
   return { std::string_view( page ), std::string_view( page ), 1.0 };
}

// The addresses here are those of the standard, not of the field table: they check the table.

struct NumberCase {
   char const * name;
   std::function<uint64_t( Contents const & )> read;
   std::vector<unsigned> bytes; // most significant first
};

NumberCase const numbers[] = {
   { "identifier", &Contents::identifier, { 0 } },
   { "extIdentifier", &Contents::extIdentifier, { 1 } },
   { "connector", &Contents::connector, { 2 } },
   { "compliance",
     []( Contents const & c ) { return c.compliance().value(); },
     { 3, 4, 5, 6, 7, 8, 9, 10 } },
   { "encoding", &Contents::encoding, { 11 } },
   { "bitrateNominal", &Contents::bitrateNominal, { 12 } },
   { "length9umKm", &Contents::length9umKm, { 14 } },
   { "length9um100m", &Contents::length9um100m, { 15 } },
   { "lengthOm2", &Contents::lengthOm2, { 16 } },
   { "lengthOm1", &Contents::lengthOm1, { 17 } },
   { "lengthCopper", &Contents::lengthCopper, { 18 } },
   { "lengthOm3", &Contents::lengthOm3, { 19 } },
   { "complianceExtended", &Contents::complianceExtended, { 36 } },
   { "vendorOui", &Contents::vendorOui, { 37, 38, 39 } },
   { "laserWavelengthInteger", &Contents::laserWavelengthInteger, { 60, 61 } },
   { "passiveAttenuation",
     []( Contents const & c ) { return c.passiveAttenuation().value(); },
     { 60, 61 } },
   { "activeAttenuation",
     []( Contents const & c ) { return c.activeAttenuation().value(); },
     { 60, 61 } },
   { "laserWavelengthFractional", &Contents::laserWavelengthFractional, { 62 } },
   { "storedCcBase", &Contents::storedCcBase, { 63 } },
   { "options", &Contents::options, { 64, 65 } },
   { "bitrateMax", &Contents::bitrateMax, { 66 } },
   { "bitrateMin", &Contents::bitrateMin, { 67 } },
   { "diagsMonitoringType", &Contents::diagsMonitoringType, { 92 } },
   { "enhancedOptions", &Contents::enhancedOptions, { 93 } },
   { "revision", &Contents::revision, { 94 } },
   { "storedCcExt", &Contents::storedCcExt, { 95 } },
   { "storedCcDmi", &Contents::storedCcDmi, { 95 } },
};

struct TextCase {
   char const * name;
   Vel::String ( Contents::*read )() const;
   void ( Contents::*write )( std::string_view );
   size_t at, width;
};

TextCase const texts[] = {
   { "vendorName", &Contents::vendorName, &Contents::vendorNameIs, 20, 16 },
   { "vendorPn", &Contents::vendorPn, &Contents::vendorPnIs, 40, 16 },
   { "vendorRev", &Contents::vendorRev, &Contents::vendorRevIs, 56, 4 },
   { "vendorSn", &Contents::vendorSn, &Contents::vendorSnIs, 68, 16 },
   { "dateCode", &Contents::dateCode, &Contents::dateCodeIs, 84, 8 },
};

TEST( Contents, NumbersLieWhereTheStandardPutsThem ) {
   Contents const contents = numberedContents();
   for ( NumberCase const & number : numbers ) {
      uint64_t expected = 0;
      for ( unsigned at : number.bytes ) {
         expected = expected << 8 | byteAt( at );
      }
      EXPECT_EQ( number.read( contents ), expected ) << number.name;
      // One byte less, and the last byte of the field is not there.
      EXPECT_EQ( number.read( numberedContents( number.bytes.back() ) ), 0u ) << number.name;
      EXPECT_EQ( number.read( Contents() ), 0u ) << number.name;
   }
}

TEST( Contents, TextsLieWhereTheStandardPutsThem ) {
   Contents const contents = numberedContents();
   for ( TextCase const & text : texts ) {
      SCOPED_TRACE( text.name );
      std::string_view const page = contents.buf();
      EXPECT_EQ( ( contents.*text.read )(), page.substr( text.at, text.width ) );
      EXPECT_EQ( ( numberedContents( text.at + 3 ).*text.read )(), page.substr( text.at, 3 ) );
      EXPECT_EQ( ( numberedContents( text.at ).*text.read )(), "" );
      EXPECT_EQ( ( Contents().*text.read )(), "Unknown" );
   }
}

TEST( Contents, TextSettersPadCutAndKeepTheRest ) {
   for ( TextCase const & text : texts ) {
      for ( size_t size : { size_t{ 256 }, text.at + 3, text.at, size_t{ 0 } } ) {
         for ( std::string const & value : { std::string( "AB" ), std::string( 40, 'x' ) } ) {
            SCOPED_TRACE( text.name + std::to_string( size ) + value );
            std::string padded = value;
            padded.resize( text.width, ' ' );
            std::string expected( numberedContents( size ).buf().view() );
            for ( size_t i = 0; i < text.width && text.at + i < size; ++i ) {
               expected[text.at + i] = padded[i];
            }
            Contents contents = numberedContents( size );
            ( contents.*text.write )( value );
            EXPECT_EQ( contents.buf(), expected );
            EXPECT_EQ( contents.eepromPageA2Data(), numberedContents( size ).eepromPageA2Data() );
         }
      }
   }
}

TEST( Contents, MonitoringTypeBits ) {
   auto const with = []( uint64_t type ) {
      return SfpImageBuilder().raw( "diagsMonitoringType", type ).contents();
   };
   EXPECT_TRUE( with( 0x40 ).domSupported() );
   EXPECT_FALSE( with( 0xbf ).domSupported() );
   EXPECT_TRUE( with( 0x20 ).domInternallyCalibrated() );
   EXPECT_FALSE( with( 0xdf ).domInternallyCalibrated() );
   EXPECT_TRUE( with( 0x10 ).domExternallyCalibrated() );
   EXPECT_FALSE( with( 0xef ).domExternallyCalibrated() );
   EXPECT_FALSE( Contents().domSupported() );
}

TEST( Contents, WavelengthPrecision ) {
   auto const with = []( uint64_t identifier, uint64_t extIdentifier ) {
      return SfpImageBuilder()
         .raw( "identifier", identifier )
         .raw( "extIdentifier", extIdentifier )
         .contents()
         .laserWavelengthPrecision();
   };
   EXPECT_EQ( Contents().laserWavelengthPrecision(), laserWavelengthPrecisionUnknown );
   EXPECT_EQ( with( 11, 0x20 ), laserWavelengthPrecisionPm );
   EXPECT_EQ( with( 11, 0xef ), laserWavelengthPrecisionPm ); // other bits do not matter
   EXPECT_EQ( with( 11, 0x30 ), laserWavelengthPrecisionNm );
   EXPECT_EQ( with( 3, 0x20 ), laserWavelengthPrecisionNm );
}

TEST( Contents, AttenuationOfTheVendorArea ) {
   auto const with = []( double minuend, double subtrahend ) {
      return SfpImageBuilder()
         .value( "quorelAttnMinuend", minuend )
         .value( "quorelAttnSubtrahend", subtrahend )
         .contents();
   };
   EXPECT_EQ( with( 10, 4 ).quorelAttnValue(), 6.0 );
   EXPECT_EQ( with( 0.5, 63.5 ).quorelAttnValue(), -63.0 );
   EXPECT_EQ( with( -64, 63.5 ).quorelAttnValue(), -127.5 );
   EXPECT_EQ( with( 0, 4 ).quorelAttnValue(), 0.0 );
   EXPECT_EQ( with( 10, 4 ).buf().substr( 118, 2 ), "\x14\x08" );
   EXPECT_EQ( Contents().quorelAttnValue(), 0.0 );
   EXPECT_EQ( Contents( with( 10, 4 ).buf().substr( 0, 119 ), "", 0 ).quorelAttnValue(), 0.0 );
}

TEST( Checksums, ValidUntilAGuardedByteChanges ) {
   Contents const good = SfpImageBuilder().text( "vendorName", "NORTHLIGHT" ).contents();
   EXPECT_TRUE( good.checksumsValid( pageA0h ) && good.checksumsValid( pageA2h ) );
   for ( unsigned at = 0; at < 256; ++at ) {
      Contents bad = good;
      Vel::String page = good.buf();
      page.byteIs( at, static_cast<uint8_t>( page[at] + 1 ) );
      bad.bufIs( page );
      EXPECT_EQ( bad.ccBaseValid(), at >= 64 ) << at;
      EXPECT_EQ( bad.ccExtValid(), at < 64 || at >= 96 ) << at;
      EXPECT_EQ( bad.checksumsValid( pageA0h ), at >= 96 ) << at;
      page = good.eepromPageA2Data();
      page.byteIs( at, static_cast<uint8_t>( page[at] + 1 ) );
      bad.eepromPageA2DataIs( page );
      EXPECT_EQ( bad.checksumsValid( pageA2h ), at >= 96 ) << at;
   }
}

TEST( Checksums, AreSumsOfSignedBytes ) {
   Contents const ones( Vel::String( size_t{ 256 }, '\xff' ), Vel::String( size_t{ 256 }, '\x7f' ),
                        0 );
   EXPECT_EQ( ones.computedCcBase(), -63 );
   EXPECT_EQ( ones.computedCcExt(), -31 );
   EXPECT_EQ( ones.computedCcDmi(), 95 * 127 );
}

TEST( Checksums, SettersMendWhatIsBroken ) {
   Contents contents = SfpImageBuilder()
                          .text( "vendorSn", "OF2403170042" )
                          .checksumBroken( "storedCcExt" )
                          .contents();
   EXPECT_TRUE( contents.ccBaseValid() );
   EXPECT_FALSE( contents.ccExtValid() );
   contents.storedCcExtIs( static_cast<uint8_t>( contents.computedCcExt() ) );
   EXPECT_TRUE( contents.checksumsValid( pageA0h ) );
   contents.storedCcBaseIs( 1 );
   contents.storedCcDmiIs( 2 );
   EXPECT_EQ( contents.buf()[63], 1 );
   EXPECT_EQ( contents.eepromPageA2Data()[95], 2 );
}

// A page of zeros sums up to its stored sum only if it holds that.
TEST( Checksums, OfAShortPageAreNotValid ) {
   auto const zeros = []( size_t size ) {
      return Contents( Vel::String( size, '\0' ), Vel::String( size, '\0' ), 0 );
   };
   EXPECT_FALSE( zeros( 63 ).ccBaseValid() );
   EXPECT_TRUE( zeros( 64 ).ccBaseValid() );
   EXPECT_FALSE( zeros( 95 ).checksumsValid( pageA0h ) || zeros( 95 ).checksumsValid( pageA2h ) );
   EXPECT_TRUE( zeros( 96 ).checksumsValid( pageA0h ) && zeros( 96 ).checksumsValid( pageA2h ) );
   for ( Sff8472PageId page : { pageA0h, pageA2h } ) {
      EXPECT_FALSE( Contents().checksumsValid( page ) );
   }
   for ( Sff8472PageId page : { maxSfpPages, sff8472PageInvalid } ) {
      EXPECT_FALSE( zeros( 256 ).checksumsValid( page ) );
   }
}

TEST( Contents, AreAValue ) {
   Contents const contents( "\x03 'a\"", "\xff", 1.5 );
   EXPECT_EQ( stringValue( Contents() ),
              "Value('Xcvr::XcvrSff8472IdEepromContents', ** {'buf': '', 'eepromPageA2Data': '', "
              "'lastValidData': 0})" );
   EXPECT_EQ( Contents( stringValue( contents ) ), contents );
   EXPECT_TRUE( !Contents() );
   EXPECT_FALSE( !Contents( "", "", 1 ) );
   EXPECT_FALSE( !contents );
   EXPECT_LT( Sff8472TransceiverCompliance( 1 ),
              Sff8472TransceiverCompliance( uint64_t{ 1 } << 63 ) );
}

TEST( Registers, NamesAndKeys ) {
   using enum Sff8472::RegisterId;
   auto const key = []( char const * name ) {
      return static_cast<unsigned>( Sff8472::RegisterIdInstance( name ) );
   };
   EXPECT_EQ( key( "domTempHighAlarmMsb" ), 0xA200u );
   EXPECT_EQ( key( "domRxPowerLowWarnLsb" ), 0xA200u + 39 );
   EXPECT_EQ( key( "domRxPower4Msb" ), 0xA200u + 56 );
   EXPECT_EQ( key( "domRxPower3SecondLsb" ), 0xA200u + 62 );
   EXPECT_EQ( key( "domRxPower0Lsb" ), 0xA200u + 75 );
   EXPECT_EQ( key( "domBiasCurrentSlopeMsb" ), 0xA200u + 76 );
   EXPECT_EQ( key( "domSupplyVoltageOffsetLsb" ), 0xA200u + 91 );
   EXPECT_EQ( key( "domTemperatureMsb" ), 0xA200u + 96 );
   EXPECT_EQ( key( "tuningPageSelect" ), 0xA200u + 127 );
   EXPECT_EQ( key( "tuningFirstFrequencyTHzMsb" ), 0xA200u + 132 );
   EXPECT_EQ( key( "tuningWavelengthLsb" ), 0xA293u );
   // Two names of one register.
   EXPECT_EQ( domStatusBits, optionalStatusCtrl );
   EXPECT_EQ( key( "optionalStatusCtrl" ), 0xA26Eu );
   EXPECT_EQ( stringValue( optionalStatusCtrl ), "domStatusBits" );
   EXPECT_THROW( key( "domTempHighAlarm" ), Vel::ParseException );
}

// The bits that decisions rest on, and of the others the first and last of each field.
TEST( FieldTable, BitsLieWhereTheStandardPutsThem ) {
   struct Case {
      char const * field;
      char const * bit;
      unsigned at, number;
   };
   Case const cases[] = {
      { "compliance", "10GBASE-ER", 3, 7 },
      { "compliance", "10GBASE-LRM", 3, 6 },
      { "compliance", "10GBASE-LR", 3, 5 },
      { "compliance", "10GBASE-SR", 3, 4 },
      { "compliance", "InfiniBand 1X copper passive", 3, 0 },
      { "compliance", "OC-48 short reach", 4, 0 },
      { "compliance", "OC-3 short reach", 5, 0 },
      { "compliance", "BASE-BX10", 6, 6 },
      { "compliance", "100BASE-FX", 6, 5 },
      { "compliance", "100BASE-LX10", 6, 4 },
      { "compliance", "1000BASE-T", 6, 3 },
      { "compliance", "1000BASE-LX", 6, 1 },
      { "compliance", "1000BASE-SX", 6, 0 },
      { "compliance", "FC very long distance", 7, 7 },
      { "compliance", "active cable", 8, 3 },
      { "compliance", "passive cable", 8, 2 },
      { "compliance", "FC twin axial pair", 9, 7 },
      { "compliance", "FC 100 MB/s", 10, 0 },
      { "options", "power level 4", 64, 6 },
      { "options", "tunable transmitter", 65, 6 },
      { "options", "Tx disable", 65, 4 },
      { "options", "Tx fault", 65, 3 },
      { "options", "Rx LOS", 65, 1 },
      { "diagsMonitoringType", "digital diagnostics", 92, 6 },
      { "diagsMonitoringType", "internally calibrated", 92, 5 },
      { "diagsMonitoringType", "externally calibrated", 92, 4 },
      { "enhancedOptions", "alarm and warning flags", 93, 7 },
      { "domStatusBits", "Tx disable state", 110, 7 },
      { "domStatusBits", "data not ready", 110, 0 },
      { "alarmFlags", "temperature high", 112, 7 },
      { "alarmFlags", "Tx power low", 112, 0 },
      { "warningFlags", "Rx power low", 117, 6 },
   };
   for ( Case const & c : cases ) {
      size_t const row = memoryFieldIndex( sff8472Fields(), c.field );
      ASSERT_LT( row, sff8472Fields().size() ) << c.field;
      MemoryBitPlace const place = findMemoryBit( sff8472Fields()[row], c.bit );
      EXPECT_EQ( place.at, c.at ) << c.bit;
      EXPECT_EQ( place.mask, 1 << c.number ) << c.bit;
   }
}

TEST( FieldTable, RowsHoldOnlyWhereTheyAreInUse ) {
   auto const inUse = []( SfpImageBuilder const & module ) {
      std::set<std::string_view> names;
      for ( MemoryField const & field : sff8472Fields() ) {
         if ( module.contents().fieldInUse( field ) ) {
            names.insert( field.name );
         }
      }
      return names;
   };
   SfpImageBuilder module;
   EXPECT_TRUE( inUse( module ).contains( "vendorName" ) );
   EXPECT_FALSE( inUse( module ).contains( "domTemperature" ) );
   EXPECT_FALSE( inUse( module ).contains( "tuningChannel" ) );
   module.bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "options", "tunable transmitter" );
   EXPECT_TRUE( inUse( module ).contains( "domTemperature" ) );
   EXPECT_FALSE( inUse( module ).contains( "domRxPower4" ) );
   module.bit( "diagsMonitoringType", "externally calibrated" )
      .bit( "enhancedOptions", "alarm and warning flags" );
   EXPECT_FALSE( inUse( module ).contains( "tuningChannel" ) ); // another page is selected
   module.raw( "tuningPageSelect", 2 );
   // Everything but what cables, DWDM modules and rates beyond byte 12 have.
   std::set<std::string_view> const others{ "dwdmLength", "passiveAttenuation", "activeAttenuation",
                                            "bitrateHigh", "bitrateHighTolerance" };
   EXPECT_EQ( inUse( module ).size(), sff8472Fields().size() - others.size() );
   module.raw( "identifier", 11 ).raw( "bitrateNominal", 255 ).bit( "compliance", "passive cable" );
   std::set<std::string_view> const names = inUse( module );
   for ( char const * name : { "dwdmLength", "passiveAttenuation", "bitrateHigh" } ) {
      EXPECT_TRUE( names.contains( name ) ) << name;
   }
   for ( char const * name : { "laserWavelengthInteger", "laserWavelengthFractional",
                               "activeAttenuation", "bitrateMax", "bitrateMin" } ) {
      EXPECT_FALSE( names.contains( name ) ) << name;
   }
}

TEST( FieldTable, MoreBytesThanANumberHasAreNone ) {
   constexpr MemoryField field = Sff8472Table::row( "vendorSpecific" );
   std::string const bytes( Sff8472Table::pageSize, '\1' );
   EXPECT_EQ( PageView( bytes ).value( field ), 0.0 );
}

TEST( Thresholds, AreRewrittenInPlace ) {
   Vel::String const before = SfpImageBuilder().contents().eepromPageA2Data();
   Vel::String page = before;
   auto const dBm = []( double value ) { return Units::Decibels( value ); };
   updateSfpDomThresholdWithQuorixData( page, dBm( 0 ), dBm( -10 ), dBm( 20 ), dBm( -20 ), dBm( 3 ),
                                        dBm( -30 ), dBm( 8 ), dBm( -40 ) );
   std::string expected( before.view() );
   expected.replace( 24, 16,
                     std::string( "\xff\xff\x00\x64\x27\x10\x03\xe8"
                                  "\xf6\x77\x00\x01\x4d\xf0\x00\x0a",
                                  16 ) );
   EXPECT_EQ( page, expected );
}

TEST( Thresholds, BeyondTheEndAreNotWritten ) {
   Vel::String page( size_t{ 11 }, '.' );
   editDomThresholdRegisterData( page, 8, 0x4142 );
   editDomThresholdRegisterData( page, 10, 0x4344 );
   editDomThresholdRegisterData( page, 255, 0x4546 );
   EXPECT_EQ( page, "........ABC" );
   Vel::String none;
   editDomThresholdRegisterData( none, 0, 1 );
   EXPECT_TRUE( none.empty() );
}

TEST( Traces, NameTheOperation ) {
   std::vector<std::string> operations;
   Vel::traceSinkIs( [&operations]( Vel::TraceRecord const & record ) {
      operations.push_back( std::string( record.source ) + " " + std::to_string( record.level ) +
                            " " + std::string( record.operation ) );
   } );
   Contents const contents = SfpImageBuilder().contents();
   auto const readAll = [&contents] {
      static_cast<void>( contents.mediaType() );
      static_cast<void>( contents.vendorName() ); // can be read, so is no news
      static_cast<void>( Contents().vendorName() );
      static_cast<void>( Contents().bitrateNominal() );
      static_cast<void>( Contents().quorelAttnValue() ); // is entered, and cannot read
   };
   readAll();
   EXPECT_TRUE( operations.empty() );
   Vel::traceLevelIs( "XcvrSfpPlus", 8 );
   readAll();
   Vel::traceLevelIs( "XcvrSfpPlus", 0 );
   Vel::traceSinkIs( {} );
   EXPECT_EQ( operations, ( std::vector<std::string>{
                             "XcvrSfpPlus 8 mediaType", "XcvrSfpPlus 8 vendorName",
                             "XcvrSfpPlus 8 bitrateNominal", "XcvrSfpPlus 8 quorelAttnValue",
                             "XcvrSfpPlus 8 quorelAttnValue" } ) );
}

TEST( Contents, IdentityAndMediaTypeDoNotAllocate ) {
   Contents const contents = SfpImageBuilder().text( "vendorName", "OAKFIBER" ).contents();
   Contents const empty;
   AllocationCount const allocations;
   size_t length = 0;
   for ( Contents const * c : { &contents, &empty } ) {
      length += c->vendorName().size() + c->vendorPn().size() + c->vendorRev().size() +
                c->vendorSn().size() + c->dateCode().size() + static_cast<size_t>( c->mediaType() );
   }
   size_t const calls = allocations.calls();
   EXPECT_EQ( calls, 0u );
   EXPECT_EQ( length, 60u + 5 * 7 );
}

} // namespace
} // namespace Xcvr
