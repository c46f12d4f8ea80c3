#include "tests/support/AccessorCases.h"
#include "tests/support/CfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrCfp2.h>

#include <gmock/gmock.h>

#include <functional>
#include <string>
#include <vector>

using namespace Xcvr;
using testing::ElementsAre;
using XcvrTest::CfpImageBuilder;

namespace {

using Contents = CfpMsaMisIdEepromContents;

/// What could not be read: the operations that the trace names.
std::vector<std::string> unreadIn( std::function<void()> const & operation ) {
   TraceCapture const capture( "XcvrCfp2" );
   operation();
   return capture.operations();
}

Vel::Ptr<CfpMsaMisMemoryTable> tableOf( uint8_t width, std::string_view bytes ) {
   Vel::Ptr<CfpMsaMisMemoryTable> const table =
      cfpMsaMisMemoryTableFactory( tableA000, 0xA000, width );
   table->contentsIs( bytes );
   return table;
}

constexpr int unread = -1;

// Of the bytes 12h 12h EEh, which in a table of words are a word and a half.
constexpr struct {
   int bytes; // 1: read as a byte, 2: as a word
   FieldDescriptor field;
   int wide, narrow; // in a table of words and in one of bytes
} primitiveCases[] = {
   { 1, { 0xA001, 8, 5 }, 0x12, 0x12 }, // bytes, whatever the width of a register
   { 1, { 0xA002, 7, 6 }, 3, 3 },       // five of them lie beyond the byte
   { 1, { 0xA002, 1, 200 }, 0, 0 },
   { 1, { 0xA003, 8, 0 }, unread, unread },
   { 1, { 0x9FFF, 8, 0 }, unread, unread },
   { 1, { 0xA000, 9, 0 }, unread, unread },
   { 2, { 0xA000, 16, 9 }, 0x1212, 0x1212 },
   { 2, { 0xA000, 5, 4 }, 1, unread },
   { 2, { 0xA000, 1, 16 }, 0, unread },
   { 2, { 0xA000, 17, 0 }, unread, unread },
   { 2, { 0xA001, 16, 0 }, unread, 0x12EE }, // half of the word is there
   { 2, { 0xA002, 16, 0 }, unread, 0xEE00 }, // the low byte lies past the end
   { 2, { 0xA003, 16, 0 }, unread, unread },
   { 2, { 0x9FFF, 16, 0 }, unread, unread },
};

TEST( CfpPrimitives, NumbersInTheirTable ) {
   for ( auto const & [bytes, field, wide, narrow] : primitiveCases ) {
      for ( bool const isWide : { false, true } ) {
         SCOPED_TRACE( testing::Message() << isWide << std::hex << " " << field.address );
         int const expected = isWide ? wide : narrow;
         auto const table = tableOf( isWide ? 16 : 8, "\x12\x12\xEE" );
         int got = 0;
         auto const traced = unreadIn( [&, bytes = bytes, field = field] {
            got = bytes == 1 ? getU8FromTable( field, table ) : getU16FromTable( field, table );
         } );
         EXPECT_EQ( got, expected == unread ? 0 : expected );
         EXPECT_EQ( traced.empty(), expected != unread );
         auto const kind = bytes == 1 ? CfpRegisterKind::byte : CfpRegisterKind::word;
         // A word whose low byte is missing can be read, but is not there.
         EXPECT_EQ( table->holds( field, kind ), expected != unread && expected != 0xEE00 );
      }
   }
}

TEST( CfpPrimitives, TextsDoubleInATableOfWords ) {
   auto const bytes = tableOf( 8, "abcdefghij" ), words = tableOf( 16, "abcdefghij" );
   EXPECT_EQ( getStringFromU8Table( { 0xA002, 31, 0 }, bytes ), "cde" ); // whole bytes
   EXPECT_EQ( getStringFromU8Table( { 0xA002, 24, 0 }, words ), "cdefgh" );
   EXPECT_EQ( getStringFromU8Table( { 0xA008, 128, 0 }, bytes ), "ij" ); // what there is
   EXPECT_EQ( getStringFromU8Table( { 0xA00A, 128, 0 }, bytes ), "" );
}

TEST( CfpContents, ANewTableReplacesTheOldOne ) {
   struct Observer : Contents::Notifiee {
      void onMemory( CfpMsaMisTableId id ) override { heard.push_back( id ); }
      std::vector<CfpMsaMisTableId> heard;
   } observer;
   auto const contents = cfpMsaMisIdEepromContentsFactory( "cfp" );
   observer.notifierIs( contents );
   contents->memoryIs( table9000, 0x9000, 16 )->contentsIs( "ab" ); // gone with it
   TraceCapture capture( "XcvrCfp2" );
   auto const second = contents->memoryIs( table9000, 0x9001, 8 );
   ASSERT_EQ( capture.takeRecords().at( 0 ).text,
              "Reinstantiating the entity with fullName cfp/memory/table9000" );
   EXPECT_EQ( contents->entity( "memory/table9000" ), second );
   EXPECT_EQ( second->contents(), "" );
   EXPECT_EQ( second->firstAddress() + second->registerWidth(), 0x9001 + 8 );
   EXPECT_EQ( contents->memoryIs( cfpTableAt( 0xA281 ), 0, 8 ), nullptr ); // no such table
   contents->memoryDel( table8000 );                                       // is not there
   contents->memoryDel( table9000 );
   contents->memoryIs( table8100, 0x8100, 8 );
   contents->memoryDelAll();
   EXPECT_THAT( observer.heard,
                ElementsAre( table9000, table9000, table9000, table8100, table8100 ) );
}

double numberIn( double number ) {
   return number;
}
double numberIn( Hal::Reg16 word ) {
   return word.value();
}

Cfp2DcoEepromContents line( Contents const & contents ) {
   return Cfp2DcoEepromContents( &contents );
}

struct Register {
   char const * accessor;
   double ( *read )( Contents const & );
   // Where it is in a module of each kind; 0 where it reads as 0.
   uint16_t cfp2, cfpx = cfp2, dco = cfp2;
};

#define READS( expression ) #expression, []( Contents const & c ) { return numberIn( expression ); }
#define AT( expression, ... ) Register( { READS( expression ), __VA_ARGS__ } )
#define LIMITS( monitor, first )                                                                   \
   AT( c.monitor##HighAlarm(), first ), AT( c.monitor##HighWarn(), first + 2 ),                    \
      AT( c.monitor##LowWarn(), first + 4 ), AT( c.monitor##LowAlarm(), first + 6 )

template <typename Row, typename... Rows>
std::vector<Row> listOf( Row const & first, Rows const &... rest ) {
   return { first, rest... };
}

std::vector<Register> const places = listOf(
   AT( c.identifierExtended(), 0x8001 ), AT( c.connector(), 0x8002 ),
   AT( c.networkLaneBitRateMax(), 0x800B, 0 ), AT( c.smfFiberLengthMax(), 0x800D ),
   AT( c.mmfFiberLengthMax(), 0x800E, 0x8181 ), AT( c.mgmtRevSupported(), 0x8069 ),
   AT( c.timeHighPowerUpMax(), 0x8072 ), AT( c.timeTxTurnOnMax(), 0x8073 ), LIMITS( temp, 0x8080 ),
   LIMITS( voltage, 0x8088 ), LIMITS( txBias, 0x80A8 ), LIMITS( txPower, 0x80B0 ),
   LIMITS( rxPower, 0x80C0 ), AT( c.txFineTuneRange(), 0x8194 ),
   AT( c.tuningCapabilities(), 0x8196 ), AT( c.globalAlarmSummary(), 0xA018, 0xB018 ),
   AT( c.networkLaneAWSummary(), 0xA019, 0xB019 ), AT( c.networkLaneFSSummary(), 0xA01A, 0xB01A ),
   AT( c.hostLaneFSSummary(), 0xA01B, 0xB01B ), AT( c.temperature( 15 ), 0xA02F, 0xB02F, 0xB02F ),
   AT( c.voltage(), 0xA030, 0xB030, 0xB030 ), AT( c.txBias( 15 ), 0xA2AF, 0xB32F ),
   AT( c.txPower( 15 ), 0xA2BF ), AT( c.rxPower( 15 ), 0xA2DF ), AT( c.txPowerCfpx( 2 ), 0xB4A2 ),
   AT( c.txPowerCfpx( 0x40 ), 0xB4E0 ), AT( c.rxPowerCfpx( 2 ), 0xB4E2 ),
   AT( c.moduleGeneralControl(), 0, 0xB010, 0xB010 ), AT( c.moduleState(), 0, 0xB016, 0xB016 ),
   AT( c.moduleGeneralStatus(), 0, 0xB01D, 0xB01D ), AT( c.moduleFaultStatus(), 0, 0xB01E, 0xB01E ),
   AT( c.vendorSpecificFAWS(), 0, 0xB021, 0xB021 ),
   AT( c.moduleGeneralStatusLatched(), 0, 0xB023, 0xB023 ),
   AT( c.moduleFaultStatusLatched(), 0, 0xB024, 0xB024 ),
   AT( c.vendorSpecificFAWSLatched(), 0, 0xB027, 0xB027 ), AT( c.txChannel(), 0xB400 ),
   AT( c.txPowerConfig(), 0xB410 ), AT( c.txFineTuneFreq(), 0xB430 ),
   AT( c.modFormatSel(), 0, 0xBB06, 0 ), AT( c.txRfEnabledStatus(), 0, 0xBB54, 0 ),
   AT( c.txDriverCtrl(), 0, 0xBB5F, 0 ), AT( c.rxSubsystemCtrl(), 0, 0xBB8D, 0 ),
   AT( c.maxRxAttenuation(), 0xBB95 ), AT( c.currRxAttenuation(), 0xBB97 ),
   AT( c.perChannelRxPower(), 0xBBF4 ), AT( line( c ).txTurnUpState(), 0x9008 ),
   AT( line( c ).rxTurnUpState(), 0x9009 ), AT( line( c ).laserAge(), 0x9104 ),
   AT( line( c ).laserFaultCode(), 0x9105 ), AT( line( c ).networkOsnrEstimate(), 0x9130 ),
   AT( line( c ).netLaneRxChannelPower(), 0x9176 ),
   AT( line( c ).clientIntfPcsAlarmStatus( 1 ), 0x9239 ),
   AT( line( c ).clientIntfPcsAlarmStatusLatched( 1 ), 0x923B ),
   AT( line( c ).moduleExtendedFunctionStatusLatched(), 0xB054 ),
   AT( line( c ).networkLaneVendorSpecificFAWS(), 0xB100 ),
   AT( line( c ).networkLaneVendorSpecificFAWSLatched(), 0xB110 ),
   AT( line( c ).rxDiffGroupDelay(), 0xB880 ), AT( line( c ).rxStateOfPolarization(), 0xB900 ),
   AT( line( c ).rxQFactor(), 0xB980 ), AT( line( c ).rxCarrierFreqOffset(), 0xB9C0 ),
   AT( line( c ).rxSnr(), 0xBA00 ) );

/// In a table of bytes the two halves of its address, mixed.
uint16_t heldAt( unsigned address ) {
   return static_cast<uint16_t>( address < 0x9000 ? ( address ^ address >> 8 ) & 0xff : address );
}

/// Every register of every table holds its own address.
Vel::Ptr<Contents> selfAddressed( CfpMsaMisIdentifier identifier ) {
   CfpImageBuilder image( identifier );
   for ( unsigned id = 0; id < static_cast<unsigned>( maxCfpTables ); ++id ) {
      auto const table = static_cast<CfpMsaMisTableId>( id );
      for ( uint16_t i = 0; i < CfpTable::tableRegisters; ++i ) {
         auto const address = static_cast<uint16_t>( cfpFirstAddress( table ) + i );
         image.at( table, address, heldAt( address ) );
      }
   }
   return image.raw( "identifier", static_cast<uint32_t>( identifier ) ).contents();
}

TEST( CfpContents, RegistersOfTheThreeLayouts ) {
   auto const expected = []( uint16_t address ) {
      bool const isWordOfBytes = address >= 0x8080 && address < 0x9000 && address != 0x8181;
      return address == 0    ? 0
             : isWordOfBytes ? heldAt( address ) << 8 | heldAt( address + 1u )
                             : heldAt( address );
   };
   auto const cfp2 = selfAddressed( identifierCfp2 ), cfpx = selfAddressed( identifierCfpx ),
              dco = selfAddressed( identifierCfp2Dco );
   auto const none = CfpImageBuilder().missing( table8000 ).contents();
   for ( Register const & reg : places ) {
      SCOPED_TRACE( reg.accessor );
      EXPECT_EQ( reg.read( *cfp2 ), expected( reg.cfp2 ) );
      EXPECT_EQ( reg.read( *cfpx ), expected( reg.cfpx ) );
      EXPECT_EQ( reg.read( *dco ), expected( reg.dco ) );
      EXPECT_EQ( reg.read( *none ), 0 );
   }
   EXPECT_EQ( cfp2->temperature( 16 ) | cfp2->txBias( 16 ) | cfp2->txInputEqualization( 16 ), 0 );
   Cfp2DcoEepromContents const line( dco ), detached( nullptr );
   EXPECT_EQ( line.clientIntfPcsAlarmStatus( 2 ) | line.clientIntfPcsAlarmStatusLatched( 2 ), 0 );
   EXPECT_EQ( line.networkBer(), 0x90509051 );
   EXPECT_EQ( line.netFecUncBlkCount(), 0x90589059 );
   EXPECT_EQ( line.rxChromDispersion(), 0xB800B810 ); // the halves are apart
   dco->memory( table9000 )->contentsIs( dco->memory( table9000 )->contents().substr( 0, 0xA2 ) );
   EXPECT_EQ( line.networkBer(), 0x90500000 ); // each half by itself
   EXPECT_EQ( detached.networkBer() + detached.rxSnr() + detached.clientIntfPcsAlarmStatus(), 0u );
}

struct FieldCase {
   char const * accessor;
   double ( *read )( Contents const & );
   CfpMsaMisIdentifier identifier;
   uint16_t address, number; // in the register, all others being 0
   double expected;
};

constexpr CfpMsaMisIdentifier cfp2 = identifierCfp2, cfpx = identifierCfpx, dco = identifierCfp2Dco;

#define GIVES( expression, ... ) FieldCase( { READS( expression ), __VA_ARGS__ } )

std::vector<FieldCase> const fieldCases = listOf(
   GIVES( c.networkLanes(), cfp2, 0x8009, 0x4A, 4 ), GIVES( c.hostLanes(), cfp2, 0x8009, 0x4A, 10 ),
   GIVES( c.laserWavelengthInteger(), cfp2, 0x8013, 1, 12 ),
   GIVES( c.laserWavelengthInteger(), cfp2, 0x8014, 0xFF, 816000 ),
   GIVES( c.tempSupported(), cfp2, 0x806F, 0x01, 1 ),
   GIVES( c.voltageSupported(), cfp2, 0x806F, 0x02, 1 ),
   GIVES( c.txBiasSupported(), cfp2, 0x8070, 0x02, 1 ),
   GIVES( c.txPowerSupported(), cfp2, 0x8070, 0x04, 1 ),
   GIVES( c.rxPowerSupported(), cfp2, 0x8070, 0x08, 1 ),
   GIVES( c.rxPowerSupported(), cfp2, 0x8070, 0xF7, 0 ),
   GIVES( c.decodeDomVoltage( c.voltage() ), cfp2, 0xA030, 10000, 1 ),
   GIVES( c.decodeDomVoltage( c.voltage() ), cfpx, 0xB030, 10000, 10 ),
   GIVES( c.decodeDomVoltage( c.voltage() ), dco, 0xB030, 10000, 10 ),
   GIVES( c.minFrequency(), dco, 0x818B, 191, 191000 ),
   GIVES( c.minFrequency(), dco, 0x818D, 139, 6 ),
   GIVES( c.maxFrequency(), dco, 0x818F, 196, 196000 ),
   GIVES( c.maxFrequency(), dco, 0x8190, 0xFF, 3264 ),
   GIVES( c.rxOutputPreEmphasis( 15 ), cfp2, 0xA44F, 0xABCD, 0xD ),
   GIVES( c.txInputEqualization( 15 ), cfp2, 0xA44F, 0xABCD, 0xAB ),
   GIVES( c.txRfDriverType(), cfp2, 0xBB04, 0x7FFF, 1 ),
   GIVES( c.txHvSwap(), cfp2, 0xBB00, 0x8000, 1 ), GIVES( c.txHiqSwap(), cfp2, 0xBB00, 0x2000, 1 ),
   GIVES( c.txHiqSwap(), cfp2, 0xBB00, 0x4000, 0 ), GIVES( c.txHiqSwap(), cfp2, 0xBB00, 0x6000, 1 ),
   GIVES( c.txViqSwap(), cfp2, 0xBB00, 0x2000, 1 ), GIVES( c.txViqSwap(), cfp2, 0xBB00, 0x4000, 1 ),
   GIVES( c.txViqSwap(), cfp2, 0xBB00, 0x6000, 0 ),
   GIVES( c.txSkewAvailable(), cfp2, 0xBB00, 0x0200, 1 ),
   GIVES( c.rxHvSwap(), cfp2, 0xBB8A, 0x8000, 1 ), GIVES( c.rxHiqSwap(), cfp2, 0xBB8A, 0x6000, 1 ),
   GIVES( c.rxViqSwap(), cfp2, 0xBB8A, 0x4000, 1 ),
   GIVES( c.rxSkewAvailable(), cfp2, 0xBB8A, 0x0200, 1 ),
   GIVES( c.txSkew( 0 ), cfp2, 0xBAE0, 0xFFF6, -1 ), GIVES( c.txSkew( 1 ), cfp2, 0xBAE2, 25, 2.5 ),
   GIVES( c.txSkew( 2 ), cfp2, 0xBAE1, 25, 2.5 ), GIVES( c.txSkew( 3 ), cfp2, 0xBAE3, 25, 2.5 ),
   GIVES( c.txSkew( 4 ), cfp2, 0xBAE4, 25, 0 ), GIVES( c.rxSkew( 1 ), cfp2, 0xBAEA, 0xFFF6, -1 ),
   GIVES( c.rxSkew( 3 ), cfp2, 0xBAEB, 25, 2.5 ),
   GIVES( c.rxLosStatus(), cfp2, 0xA21F, 0xFF10, 0x8000 ),
   GIVES( c.rxLosStatus(), cfp2, 0xA213, 0xFFEF, 0 ),
   GIVES( c.rxLosStatus(), cfpx, 0xB01D, 0x0020, 1 ),
   GIVES( c.rxLosStatus(), dco, 0xB01D, 0xFFDF, 0 ),
   GIVES( c.txFaultStatus(), cfp2, 0xA211, 0x0040, 2 ),
   GIVES( c.txFaultStatus(), cfp2, 0xA212, 0x0080, 4 ),
   GIVES( c.txFaultStatus(), cfp2, 0xA212, 0xFF3F, 0 ),
   GIVES( c.txFaultStatus(), cfp2, 0xA40F, 0x0001, 0x8000 ),
   GIVES( c.txFaultStatus(), cfp2, 0xA40F, 0xFFFE, 0 ),
   GIVES( c.txFaultStatus(), cfpx, 0xB01D, 0x0200, 1 ),
   GIVES( c.txFaultStatus(), dco, 0xB01D, 0x0040, 1 ),
   GIVES( c.txFaultStatus(), dco, 0xB01D, 0xFD3F, 0 ) );

TEST( CfpContents, FieldsAndFlags ) {
   for ( FieldCase const & c : fieldCases ) {
      CfpImageBuilder image( c.identifier );
      image.at( cfpTableAt( c.address & 0xff80 ), c.address, c.number );
      EXPECT_EQ( c.read( *image.contents() ), c.expected ) << c.accessor << std::hex << c.address;
   }
}

TEST( CfpContents, WhatAModuleLacksIsTraced ) {
   using C = Contents const &;
   struct {
      CfpMsaMisIdentifier identifier;
      void ( *read )( C );
      std::vector<std::string> traced;
   } const cases[] = {
      { cfp2, []( C c ) { (void)c.rxSubsystemCtrl(); }, { "rxSubsystemCtrl" } },
      { dco, []( C c ) { (void)c.txDriverCtrl(); }, { "txDriverCtrl" } },
      { dco, []( C c ) { (void)c.moduleState(); }, { "getU16FromTable" } }, // no table
      { cfpx, []( C c ) { (void)c.networkLaneBitRateMax(); }, { "getU8FromTable" } },
      { cfpx, []( C c ) { (void)c.rxSkew( 2 ); }, { "rxSkew" } },
      { dco, []( C c ) { (void)line( c ).clientIntfPcsAlarmStatus( 2 ); }, {} },
      { cfp2, []( C c ) { (void)c.txSkew( 4 ); }, {} },
   };
   for ( auto const & [identifier, read, traced] : cases ) {
      auto const contents = CfpImageBuilder( identifier ).contents();
      EXPECT_EQ( unreadIn( [&, read = read] { read( *contents ); } ), traced );
   }
}

TEST( CfpContents, TextsAndCodes ) {
   std::string bytes( 0x80, '\0' );
   bytes.replace( 0, 4, "\x0E__\x0D" ).replace( 0x21, 16, "Vendor 16 bytes." );
   bytes.replace( 0x34, 16, "Part 16 bytes..." ).replace( 0x44, 16, "Serial 16 bytes." );
   bytes.replace( 0x54, 8, "20260101" );
   auto const contents = cfpMsaMisIdEepromContentsFactory( "cfp" );
   contents->memoryIs( table8000 )->contentsIs( std::string_view( bytes ) );
   EXPECT_EQ( contents->vendorName(), "Vendor 16 bytes." );
   EXPECT_EQ( contents->vendorPn(), "Part 16 bytes..." );
   EXPECT_EQ( contents->vendorSn(), "Serial 16 bytes." );
   EXPECT_EQ( contents->dateCode(), "20260101" );
   EXPECT_EQ( contents->identifier(), CfpMsaMisIdentifier( 0x0E ) );
   EXPECT_EQ( static_cast<int>( contents->ethernetApplicationCode() ), 0x0D );
   contents->memory( table8000 )->contentsIs( std::string_view( bytes ).substr( 0, 0x23 ) );
   EXPECT_EQ( contents->vendorName(), "Ve" );
   EXPECT_EQ( contents->vendorPn(), "" );

   EXPECT_EQ( contents->vendorRev(), "01" );
   auto const revision = [&contents]( std::string_view registers ) {
      contents->memoryIs( table8420 )->contentsIs( registers );
      return contents->vendorRev();
   };
   EXPECT_EQ( revision( "A2" ), "A2" );
   EXPECT_EQ( revision( { "\0B", 2 } ), "" );
   EXPECT_EQ( revision( "" ), "01" );
}

TEST( CfpContents, LinearDriversByMaker ) {
   auto const maker = []( uint32_t driver, char const * name, char const * serialNumber ) {
      CfpImageBuilder image( cfpx );
      image.raw( "txRfDriverType", driver ).text( "vendorName", name );
      auto const module = image.text( "vendorSn", serialNumber ).contents();
      return std::string( module->isOclaroLinear() ? "oclaro" : "" ) +
             ( module->isAcaciaLinear() ? "acacia" : "" );
   };
   EXPECT_EQ( maker( 1, "", "AP123" ), "oclaro" );
   EXPECT_EQ( maker( 1, "", "TC123" ), "acacia" );
   EXPECT_EQ( maker( 1, "The OCLARO inc.", "1AP" ), "oclaro" );
   EXPECT_EQ( maker( 1, "\xE1\x43\xC1\xC3IA", "" ), "acacia" ); // seven bits of each
   EXPECT_EQ( maker( 1, "Oclar", "" ), "" );
   EXPECT_EQ( maker( 0, "Oclaro", "AP123" ), "" );
}

TEST( CfpChecksums, GuardEveryByteOfTheirRange ) {
   auto const contents =
      CfpImageBuilder().at( table8100, 0x8100, 0xC3 ).raw( "minFrequencyTHz", 191 ).contents();
   for ( CfpMsaMisTableId id : { table8000, table8080, table8100, table8180 } ) {
      // The first register of table 8180h has the sum of the table in front of it.
      unsigned const first = id == table8180 ? 1 : 0;
      auto const table = contents->memory( id );
      Vel::String const bytes = table->contents();
      XcvrTest::expectGuarded( bytes, first, 127, [&]( Vel::String const & changed ) {
         table->contentsIs( changed );
         return contents->checksumValid( id );
      } );
      table->contentsIs( bytes );
   }
   auto const next = contents->memory( table8180 );
   XcvrTest::expectGuarded( next->contents(), 0, 0, [&]( Vel::String const & changed ) {
      next->contentsIs( changed );
      return contents->checksumValid( table8100 );
   } );
}

TEST( CfpChecksums, OfWhatIsNotThere ) {
   CfpImageBuilder image;
   auto const halved = image.at( table8100, 0x8150, 9 ).missing( table8180 ).contents();
   EXPECT_EQ( halved->checksumCalculated( table8100 ), 9 );
   EXPECT_FALSE( halved->checksumValid( table8100 ) ); // its sum is in table 8180h
   // Of a table without one, of no table, and of one that is not there.
   for ( CfpMsaMisTableId id : { table8420, tableInvalid, table8180 } ) {
      EXPECT_EQ( halved->checksum( id ) + halved->checksumCalculated( id ), 0 );
      EXPECT_FALSE( halved->checksumValid( id ) );
   }
   halved->memory( table8080 )->contentsIs( "abc" ); // a table that ends before its checksum
   EXPECT_EQ( halved->checksumCalculated( table8080 ), uint8_t( 'a' + 'b' + 'c' ) );
   EXPECT_FALSE( halved->checksumValid( table8080 ) );
}

} // namespace
