#include "tests/support/CfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrCfp2.h>

#include <gmock/gmock.h>

#include <functional>
#include <limits>
#include <string>
#include <vector>

using namespace Xcvr;
using testing::ElementsAre;
using testing::IsEmpty;
using XcvrTest::CfpImageBuilder;

namespace {

using Contents = CfpMsaMisIdEepromContents;

/// What could not be read: the operations that the trace names.
std::vector<std::string> unreadIn( std::function<void()> const & operation ) {
   TraceCapture capture( "XcvrCfp2" );
   operation();
   std::vector<std::string> names;
   for ( TraceCapture::Record const & record : capture.takeRecords() ) {
      if ( !record.text.empty() ) {
         names.push_back( record.operation );
      }
   }
   return names;
}

std::string hostWords( std::initializer_list<uint16_t> words ) {
   return { reinterpret_cast<char const *>( std::data( words ) ), 2 * words.size() };
}

Vel::Ptr<CfpMsaMisMemoryTable> tableOf( uint8_t width, std::string_view bytes,
                                        uint16_t first = 0xA000 ) {
   Vel::Ptr<CfpMsaMisMemoryTable> const table =
      cfpMsaMisMemoryTableFactory( tableA000, first, width );
   table->contentsIs( bytes );
   return table;
}

} // namespace

// ---------------------------------------------------------------------------------------------
// The read primitives

TEST( CfpPrimitives, BytesWithinTheirTable ) {
   auto const table = tableOf( 16, "\xA5\x3C" );
   // Index of bytes, whatever the width of a register.
   EXPECT_EQ( getU8FromTable( { 0xA001, 8, 0 }, table ), 0x3C );
   EXPECT_EQ( getU8FromTable( { 0xA000, 4, 4 }, table ), 0xA );
   EXPECT_EQ( getU8FromTable( { 0xA000, 3, 5 }, table ), 5 );
   EXPECT_EQ( getU8FromTable( { 0xA000, 7, 6 }, table ), 2 );
   EXPECT_EQ( getU8FromTable( { 0xA000, 0, 0 }, table ), 0 );
   EXPECT_EQ( getU8FromTable( { 0xA000, 1, 200 }, table ), 0 );
   auto const fails = [&table]( FieldDescriptor field ) {
      return unreadIn( [&] { EXPECT_EQ( getU8FromTable( field, table ), 0 ); } );
   };
   EXPECT_THAT( fails( { 0xA002, 8, 0 } ), ElementsAre( "getU8FromTable" ) );
   EXPECT_THAT( fails( { 0x9FFF, 8, 0 } ), ElementsAre( "getU8FromTable" ) );
   EXPECT_THAT( fails( { 0xA000, 9, 0 } ), ElementsAre( "getU8FromTable" ) );
}

TEST( CfpPrimitives, WordsOfATableOfWords ) {
   auto const table = tableOf( 16, hostWords( { 0x1234, 0xABCD } ) + "x" );
   EXPECT_EQ( getU16FromTable( { 0xA000, 16, 0 }, table ), 0x1234 );
   EXPECT_EQ( getU16FromTable( { 0xA001, 16, 9 }, table ), 0xABCD );
   EXPECT_EQ( getU16FromTable( { 0xA001, 2, 14 }, table ), 2 );
   EXPECT_EQ( getU16FromTable( { 0xA001, 8, 8 }, table ), 0xAB );
   EXPECT_EQ( getU16FromTable( { 0xA001, 0, 0 }, table ), 0 );
   EXPECT_EQ( getU16FromTable( { 0xA001, 1, 16 }, table ), 0 );
   auto const fails = [&table]( FieldDescriptor field ) {
      return unreadIn( [&] { EXPECT_EQ( getU16FromTable( field, table ), 0 ); } );
   };
   EXPECT_THAT( fails( { 0xA002, 16, 0 } ),
                ElementsAre( "getU16FromTable" ) ); // half of it is there
   EXPECT_THAT( fails( { 0xA000, 17, 0 } ), ElementsAre( "getU16FromTable" ) );
   EXPECT_THAT( fails( { 0x9FFF, 16, 0 } ), ElementsAre( "getU16FromTable" ) );
}

TEST( CfpPrimitives, WordsOfATableOfBytes ) {
   auto const table = tableOf( 8, "\x12\x34\xEE" );
   EXPECT_EQ( getU16FromTable( { 0xA000, 16, 0 }, table ), 0x1234 );
   // The second byte lies past the end.
   EXPECT_EQ( getU16FromTable( { 0xA002, 16, 0 }, table ), 0xEE00 );
   auto const fails = [&table]( FieldDescriptor field ) {
      return unreadIn( [&] { EXPECT_EQ( getU16FromTable( field, table ), 0 ); } );
   };
   EXPECT_THAT( fails( { 0xA003, 16, 0 } ), ElementsAre( "getU16FromTable" ) );
   EXPECT_THAT( fails( { 0xA000, 8, 0 } ), ElementsAre( "getU16FromTable" ) );
}

TEST( CfpPrimitives, TextsDoubleInATableOfWords ) {
   auto const bytes = tableOf( 8, "abcdefghij" ), words = tableOf( 16, "abcdefghij" );
   EXPECT_EQ( getStringFromU8Table( { 0xA002, 24, 0 }, bytes ), "cde" );
   EXPECT_EQ( getStringFromU8Table( { 0xA002, 31, 0 }, bytes ), "cde" ); // whole bytes
   EXPECT_EQ( getStringFromU8Table( { 0xA002, 24, 0 }, words ), "cdefgh" );
   EXPECT_EQ( getStringFromU8Table( { 0xA008, 128, 0 }, bytes ), "ij" ); // what there is
   EXPECT_EQ( getStringFromU8Table( { 0xA00A, 128, 0 }, bytes ), "" );
}

TEST( CfpPrimitives, NoTableIsTracedAndAnEmptyOneIsNot ) {
   Vel::Ptr<CfpMsaMisMemoryTable const> const none;
   auto const untabled = unreadIn( [&] {
      EXPECT_EQ( getU8FromTable( { 0xA000, 8, 0 }, none ), 0 );
      EXPECT_EQ( getU16FromTable( { 0xA000, 16, 0 }, none ), 0 );
      EXPECT_EQ( getStringFromU8Table( { 0xA000, 8, 0 }, none ), "" );
   } );
   EXPECT_THAT( untabled,
                ElementsAre( "getU8FromTable", "getU16FromTable", "getStringFromU8Table" ) );
   auto const empty = tableOf( 16, "" );
   auto const emptied = unreadIn( [&] {
      EXPECT_EQ( getU8FromTable( { 0xB000, 9, 0 }, empty ), 0 );
      EXPECT_EQ( getU16FromTable( { 0xB000, 17, 0 }, empty ), 0 );
      EXPECT_EQ( getStringFromU8Table( { 0xB000, 8, 0 }, empty ), "" );
   } );
   EXPECT_THAT( emptied, IsEmpty() );
}

// ---------------------------------------------------------------------------------------------
// The tables of a module

TEST( CfpContents, ANewTableReplacesTheOldOne ) {
   class Observer : public Contents::Notifiee {
    public:
      std::vector<std::string> heard;
      void onMemory( CfpMsaMisTableId id ) override {
         heard.push_back( std::string( stringValue( id ) ) );
      }
   };
   auto const contents = cfpMsaMisIdEepromContentsFactory( "cfp" );
   Observer observer;
   observer.notifierIs( contents );

   auto const first = contents->memoryIs( table9000, 0x9000, 16 );
   first->contentsIs( "ab" );
   EXPECT_EQ( first->fullName(), "cfp/memory/table9000" );
   EXPECT_EQ( contents->entity( "memory/table9000" ), first );
   TraceCapture capture( "XcvrCfp2" );
   auto const second = contents->memoryIs( table9000, 0x9001, 8 );
   ASSERT_EQ( capture.takeRecords().at( 0 ).text,
              "Reinstantiating the entity with fullName cfp/memory/table9000" );
   EXPECT_EQ( contents->memory( table9000 ), second );
   EXPECT_EQ( first->parent(), nullptr );
   EXPECT_EQ( second->parent(), contents.get() );
   EXPECT_EQ( second->contents(), "" );
   EXPECT_EQ( second->firstAddress(), 0x9001 );
   EXPECT_EQ( second->registerWidth(), 8 );

   EXPECT_EQ( contents->memoryIs( maxCfpTables, 0, 8 ), nullptr );
   EXPECT_EQ( contents->memoryIs( tableInvalid, 0, 8 ), nullptr );
   contents->memoryIs( table8080, 0x8080, 8 );
   contents->memoryDel( table8000 ); // is not there
   contents->memoryDel( table9000 );
   EXPECT_FALSE( contents->memoryHas( table9000 ) );
   EXPECT_EQ( contents->memory( table9000 ), nullptr );
   contents->memoryIs( table8100, 0x8100, 8 );
   std::vector<CfpMsaMisTableId> ids;
   for ( auto const & [id, table] : contents->memoryMap() ) {
      ids.push_back( id );
   }
   EXPECT_THAT( ids, ElementsAre( table8080, table8100 ) );
   contents->memoryDelAll();
   EXPECT_TRUE( contents->memoryMap().empty() );
   EXPECT_THAT( observer.heard, ElementsAre( "table9000", "table9000", "table8080", "table9000",
                                             "table8100", "table8080", "table8100" ) );
}

TEST( CfpContents, StandardAddressesOfTables ) {
   EXPECT_EQ( cfpFirstAddress( table8420 ), 0x8420 );
   EXPECT_EQ( cfpFirstAddress( tableBB80 ), 0xBB80 );
   EXPECT_EQ( cfpFirstAddress( table9280 ), 0x9280 );
   EXPECT_EQ( cfpFirstAddress( tableInvalid ), 0 );
   EXPECT_EQ( cfpTableLabel( tableBB80 ), "BB80h" );
   EXPECT_EQ( cfpTableLabel( maxCfpTables ), "" );
   EXPECT_EQ( cfpTableAt( 0xA280 ), tableA280 );
   EXPECT_EQ( cfpTableAt( 0xA281 ), tableInvalid );
   EXPECT_EQ( cfpRegisterWidth( table8420 ), 8 );
   EXPECT_EQ( cfpRegisterWidth( tableA000 ), 16 );
   EXPECT_EQ( cfpRegisterWidth( table9280 ), 16 );
}

// ---------------------------------------------------------------------------------------------
// The accessors

namespace {

struct AccessorCase {
   char const * name;
   std::function<double( Contents const & )> read;
   CfpMsaMisIdentifier identifier;
   CfpMsaMisTableId table;
   uint16_t address; // of the register; in a table of bytes the word starts here
   uint16_t word;
   double expected;
};

#define READS( accessor ) #accessor, []( Contents const & c ) { return double( c.accessor ); }
#define READS_REGISTER( accessor )                                                                 \
#accessor, []( Contents const & c ) { return double( c.accessor().value() ); }

constexpr CfpMsaMisIdentifier cfp2 = identifierCfp2, cfpx = identifierCfpx, dco = identifierCfp2Dco;

// In a table of bytes `word` is written as two bytes, so a single byte is the high half.
AccessorCase const accessorCases[] = {
   { READS( identifierExtended() ), cfp2, table8000, 0x8001, 0x8500, 0x85 },
   { READS( connector() ), cfp2, table8000, 0x8002, 0x0700, 7 },
   { READS( networkLanes() ), cfp2, table8000, 0x8009, 0x4A00, 4 },
   { READS( hostLanes() ), cfp2, table8000, 0x8009, 0x4A00, 10 },
   { READS( networkLaneBitRateMax() ), cfp2, table8000, 0x800B, 0x8200, 0x82 },
   { READS( networkLaneBitRateMax() ), dco, table8000, 0x800B, 0x8200, 0x82 },
   { READS( networkLaneBitRateMax() ), cfpx, table8180, 0x8184, 0x8282, 0 },
   { READS( networkLaneBitRateMax() ), cfpx, table8000, 0x800B, 0x8200, 0 },
   { READS( smfFiberLengthMax() ), cfp2, table8000, 0x800D, 0x0A00, 10 },
   { READS( mmfFiberLengthMax() ), cfp2, table8000, 0x800E, 0x0F00, 15 },
   { READS( mmfFiberLengthMax() ), dco, table8000, 0x800E, 0x0F00, 15 },
   { READS( mmfFiberLengthMax() ), cfpx, table8180, 0x8181, 0x0F00, 15 },
   { READS( laserWavelengthInteger() ), cfp2, table8000, 0x8012, 0x0001, 12 },
   { READS( laserWavelengthInteger() ), cfp2, table8000, 0x8014, 0xFFFF, 819187 },
   { READS( mgmtRevSupported() ), cfp2, table8000, 0x8069, 0x1A00, 26 },
   { READS( tempSupported() ), cfp2, table8000, 0x806F, 0x0100, 1 },
   { READS( voltageSupported() ), cfp2, table8000, 0x806F, 0x0200, 1 },
   { READS( txBiasSupported() ), cfp2, table8000, 0x8070, 0x0200, 1 },
   { READS( txPowerSupported() ), cfp2, table8000, 0x8070, 0x0400, 1 },
   { READS( rxPowerSupported() ), cfp2, table8000, 0x8070, 0x0800, 1 },
   { READS( rxPowerSupported() ), cfp2, table8000, 0x8070, 0xF700, 0 },
   { READS( timeHighPowerUpMax() ), cfp2, table8000, 0x8072, 0x0A00, 10 },
   { READS( timeTxTurnOnMax() ), cfp2, table8000, 0x8073, 0x0B00, 11 },
   { READS( tempHighAlarm() ), cfp2, table8080, 0x8080, 0x1234, 0x1234 },
   { READS( tempHighWarn() ), cfp2, table8080, 0x8082, 0x1234, 0x1234 },
   { READS( tempLowWarn() ), cfp2, table8080, 0x8084, 0x1234, 0x1234 },
   { READS( tempLowAlarm() ), cfp2, table8080, 0x8086, 0x1234, 0x1234 },
   { READS( voltageHighAlarm() ), cfp2, table8080, 0x8088, 0x1234, 0x1234 },
   { READS( voltageHighWarn() ), cfp2, table8080, 0x808A, 0x1234, 0x1234 },
   { READS( voltageLowWarn() ), cfp2, table8080, 0x808C, 0x1234, 0x1234 },
   { READS( voltageLowAlarm() ), cfp2, table8080, 0x808E, 0x1234, 0x1234 },
   { READS( txBiasHighAlarm() ), cfp2, table8080, 0x80A8, 0x1234, 0x1234 },
   { READS( txBiasHighWarn() ), cfp2, table8080, 0x80AA, 0x1234, 0x1234 },
   { READS( txBiasLowWarn() ), cfp2, table8080, 0x80AC, 0x1234, 0x1234 },
   { READS( txBiasLowAlarm() ), cfp2, table8080, 0x80AE, 0x1234, 0x1234 },
   { READS( txPowerHighAlarm() ), cfp2, table8080, 0x80B0, 0x1234, 0x1234 },
   { READS( txPowerHighWarn() ), cfp2, table8080, 0x80B2, 0x1234, 0x1234 },
   { READS( txPowerLowWarn() ), cfp2, table8080, 0x80B4, 0x1234, 0x1234 },
   { READS( txPowerLowAlarm() ), cfp2, table8080, 0x80B6, 0x1234, 0x1234 },
   { READS( rxPowerHighAlarm() ), cfp2, table8080, 0x80C0, 0x1234, 0x1234 },
   { READS( rxPowerHighWarn() ), cfp2, table8080, 0x80C2, 0x1234, 0x1234 },
   { READS( rxPowerLowWarn() ), cfp2, table8080, 0x80C4, 0x1234, 0x1234 },
   { READS( rxPowerLowAlarm() ), cfp2, table8080, 0x80C6, 0x1234, 0x1234 },
   { READS( minFrequency() ), dco, table8180, 0x818A, 191, 191000 },
   { READS( minFrequency() ), dco, table8180, 0x818C, 6999, 349 },
   { READS( maxFrequency() ), dco, table8180, 0x818E, 196, 196000 },
   { READS( maxFrequency() ), dco, table8180, 0x8190, 0xFFFF, 3276 },
   { READS( txFineTuneRange() ), dco, table8180, 0x8194, 6000, 6000 },
   { READS( tuningCapabilities() ), dco, table8180, 0x8196, 0xFC60, 0xFC60 },
   { READS( globalAlarmSummary() ), cfp2, tableA000, 0xA018, 0x8001, 0x8001 },
   { READS( globalAlarmSummary() ), dco, tableA000, 0xA018, 0x8001, 0x8001 },
   { READS( globalAlarmSummary() ), cfpx, tableB000, 0xB018, 0x8001, 0x8001 },
   { READS( networkLaneAWSummary() ), dco, tableA000, 0xA019, 0x8001, 0x8001 },
   { READS( networkLaneAWSummary() ), cfpx, tableB000, 0xB019, 0x8001, 0x8001 },
   { READS( networkLaneFSSummary() ), dco, tableA000, 0xA01A, 0x8001, 0x8001 },
   { READS( networkLaneFSSummary() ), cfpx, tableB000, 0xB01A, 0x8001, 0x8001 },
   { READS( hostLaneFSSummary() ), dco, tableA000, 0xA01B, 0x8001, 0x8001 },
   { READS( hostLaneFSSummary() ), cfpx, tableB000, 0xB01B, 0x8001, 0x8001 },
   { READS( temperature( 15 ) ), cfp2, tableA000, 0xA02F, 0xFFFF, 0xFFFF },
   { READS( temperature( 15 ) ), cfpx, tableB000, 0xB02F, 0xFFFF, 0xFFFF },
   { READS( temperature( 15 ) ), dco, tableB000, 0xB02F, 0xFFFF, 0xFFFF },
   { READS( temperature( 16 ) ), cfp2, tableA000, 0xA02F, 0xFFFF, 0 },
   { READS( voltage() ), cfp2, tableA000, 0xA030, 0x1234, 0x1234 },
   { READS( voltage() ), cfpx, tableB000, 0xB030, 0x1234, 0x1234 },
   { READS( voltage() ), dco, tableB000, 0xB030, 0x1234, 0x1234 },
   { READS( txBias( 0 ) ), cfp2, tableA280, 0xA2A0, 0x1234, 0x1234 },
   { READS( txBias( 15 ) ), dco, tableA280, 0xA2AF, 0x1234, 0x1234 },
   { READS( txBias( 15 ) ), cfpx, tableB300, 0xB32F, 0x1234, 0x1234 },
   { READS( txBias( 16 ) ), cfp2, tableA280, 0xA2B0, 0x1234, 0 },
   { READS( txPower( 3 ) ), cfp2, tableA280, 0xA2B3, 0x1234, 0x1234 },
   { READS( txPower( 16 ) ), cfp2, tableA280, 0xA2C0, 0x1234, 0 },
   { READS( rxPower( 15 ) ), cfp2, tableA280, 0xA2DF, 0x1234, 0x1234 },
   { READS( rxPower( 16 ) ), cfp2, tableA280, 0xA2E0, 0x1234, 0 },
   { READS( txPowerCfpx( 2 ) ), cfpx, tableB480, 0xB4A2, 0x1234, 0x1234 },
   { READS( rxPowerCfpx( 2 ) ), cfpx, tableB480, 0xB4E2, 0x1234, 0x1234 },
   { READS( txPowerCfpx( 0x40 ) ), cfpx, tableB480, 0xB4E0, 0x1234, 0x1234 },
   { READS( rxOutputPreEmphasis( 15 ) ), cfp2, tableA400, 0xA44F, 0xABCD, 0xD },
   { READS( txInputEqualization( 15 ) ), cfp2, tableA400, 0xA44F, 0xABCD, 0xAB },
   { READS( rxOutputPreEmphasis( 16 ) ), cfp2, tableA400, 0xA450, 0xABCD, 0 },
   { READS( txInputEqualization( 16 ) ), cfp2, tableA400, 0xA450, 0xABCD, 0 },
   { READS( moduleGeneralControl() ), cfpx, tableB000, 0xB010, 0x1234, 0x1234 },
   { READS( moduleState() ), dco, tableB000, 0xB016, 0x0020, 0x0020 },
   { READS( moduleGeneralStatus() ), cfpx, tableB000, 0xB01D, 0x1234, 0x1234 },
   { READS( moduleFaultStatus() ), dco, tableB000, 0xB01E, 0x1234, 0x1234 },
   { READS( vendorSpecificFAWS() ), cfpx, tableB000, 0xB021, 0x1234, 0x1234 },
   { READS( moduleGeneralStatusLatched() ), cfpx, tableB000, 0xB023, 0x1234, 0x1234 },
   { READS( moduleFaultStatusLatched() ), dco, tableB000, 0xB024, 0x1234, 0x1234 },
   { READS( vendorSpecificFAWSLatched() ), cfpx, tableB000, 0xB027, 0x1234, 0x1234 },
   { READS( txChannel() ), cfp2, tableB400, 0xB400, 0x1234, 0x1234 },
   { READS( txPowerConfig() ), dco, tableB400, 0xB410, 0xFF38, 0xFF38 },
   { READS( txFineTuneFreq() ), cfpx, tableB400, 0xB430, 0x1234, 0x1234 },
   { READS( txRfDriverType() ), cfp2, tableBB00, 0xBB04, 0x7FFF, 1 },
   { READS_REGISTER( modFormatSel ), cfpx, tableBB00, 0xBB06, 0x1234, 0x1234 },
   { READS_REGISTER( modFormatSel ), dco, tableBB00, 0xBB06, 0x1234, 0 },
   { READS_REGISTER( txRfEnabledStatus ), cfpx, tableBB00, 0xBB54, 0x1234, 0x1234 },
   { READS_REGISTER( txDriverCtrl ), cfpx, tableBB00, 0xBB5F, 0x1234, 0x1234 },
   { READS_REGISTER( rxSubsystemCtrl ), cfpx, tableBB80, 0xBB8D, 0x1234, 0x1234 },
   { READS( txHvSwap() ), cfp2, tableBB00, 0xBB00, 0x8000, 1 },
   { READS( txHvSwap() ), cfp2, tableBB00, 0xBB00, 0x7FFF, 0 },
   { READS( txHiqSwap() ), cfp2, tableBB00, 0xBB00, 0x2000, 1 },
   { READS( txHiqSwap() ), cfp2, tableBB00, 0xBB00, 0x4000, 0 },
   { READS( txHiqSwap() ), cfp2, tableBB00, 0xBB00, 0x6000, 1 },
   { READS( txViqSwap() ), cfp2, tableBB00, 0xBB00, 0x2000, 1 },
   { READS( txViqSwap() ), cfp2, tableBB00, 0xBB00, 0x4000, 1 },
   { READS( txViqSwap() ), cfp2, tableBB00, 0xBB00, 0x6000, 0 },
   { READS( txSkewAvailable() ), cfp2, tableBB00, 0xBB00, 0x0200, 1 },
   { READS( rxHvSwap() ), cfp2, tableBB80, 0xBB8A, 0x8000, 1 },
   { READS( rxHiqSwap() ), cfp2, tableBB80, 0xBB8A, 0x6000, 1 },
   { READS( rxViqSwap() ), cfp2, tableBB80, 0xBB8A, 0x4000, 1 },
   { READS( rxViqSwap() ), cfp2, tableBB80, 0xBB8A, 0x6000, 0 },
   { READS( rxSkewAvailable() ), cfp2, tableBB80, 0xBB8A, 0x0200, 1 },
   { READS( maxRxAttenuation() ), cfp2, tableBB80, 0xBB95, 0x1234, 0x1234 },
   { READS( currRxAttenuation() ), cfp2, tableBB80, 0xBB97, 0x1234, 0x1234 },
   { READS( perChannelRxPower() ), cfp2, tableBB80, 0xBBF4, 0x1234, 0x1234 },
   { READS( txSkew( 0 ) ), cfp2, tableBA80, 0xBAE0, 0xFFFE, double( -0.2f ) },
   { READS( txSkew( 1 ) ), cfp2, tableBA80, 0xBAE2, 25, 2.5 },
   { READS( txSkew( 2 ) ), cfp2, tableBA80, 0xBAE1, 25, 2.5 },
   { READS( txSkew( 3 ) ), cfp2, tableBA80, 0xBAE3, 25, 2.5 },
   { READS( txSkew( 4 ) ), cfp2, tableBA80, 0xBAE4, 25, 0 },
   { READS( rxSkew( 1 ) ), cfp2, tableBA80, 0xBAEA, 0x8000, double( -3276.8f ) },
   { READS( rxSkew( 3 ) ), cfp2, tableBA80, 0xBAEB, 25, 2.5 },
   { READS( rxLosStatus() ), cfp2, tableA200, 0xA21F, 0xFF10, 0x8000 },
   { READS( rxLosStatus() ), cfp2, tableA200, 0xA213, 0xFFEF, 0 },
   { READS( rxLosStatus() ), cfpx, tableB000, 0xB01D, 0x0020, 1 },
   { READS( rxLosStatus() ), dco, tableB000, 0xB01D, 0xFFDF, 0 },
   { READS( txFaultStatus() ), cfp2, tableA200, 0xA211, 0x0040, 2 },
   { READS( txFaultStatus() ), cfp2, tableA200, 0xA212, 0x0080, 4 },
   { READS( txFaultStatus() ), cfp2, tableA200, 0xA212, 0xFF3F, 0 },
   { READS( txFaultStatus() ), cfp2, tableA400, 0xA40F, 0x0001, 0x8000 },
   { READS( txFaultStatus() ), cfp2, tableA400, 0xA40F, 0xFFFE, 0 },
   { READS( txFaultStatus() ), cfpx, tableB000, 0xB01D, 0x0200, 1 },
   { READS( txFaultStatus() ), dco, tableB000, 0xB01D, 0x0040, 1 },
   { READS( txFaultStatus() ), dco, tableB000, 0xB01D, 0xFD3F, 0 },
};

} // namespace

TEST( CfpContents, AccessorsReadTheirRegister ) {
   for ( AccessorCase const & c : accessorCases ) {
      SCOPED_TRACE( testing::Message()
                    << c.name << " of " << c.identifier << " at " << std::hex << c.address );
      CfpImageBuilder image( c.identifier );
      if ( cfpRegisterWidth( c.table ) == 8 ) {
         image.at( c.table, c.address, c.word >> 8 );
         if ( ( c.address & 0x7f ) != 0x7f ) {
            image.at( c.table, static_cast<uint16_t>( c.address + 1 ), c.word & 0xff );
         }
      } else {
         image.at( c.table, c.address, c.word );
      }
      EXPECT_EQ( c.read( *image.contents() ), c.expected );
      // Nothing else is read: without the table there is nothing.
      EXPECT_EQ( c.read( *image.missing( c.table ).contents() ), 0 );
   }
}

TEST( CfpContents, ForeignRegistersAreTraced ) {
   auto const a = CfpImageBuilder( identifierCfp2 ).contents();
   EXPECT_THAT( unreadIn( [&] { static_cast<void>( a->moduleState() ); } ),
                ElementsAre( "moduleState" ) );
   EXPECT_THAT( unreadIn( [&] { static_cast<void>( a->rxSubsystemCtrl() ); } ),
                ElementsAre( "rxSubsystemCtrl" ) );
   auto const b = CfpImageBuilder( identifierCfp2Dco ).contents();
   EXPECT_THAT( unreadIn( [&] { static_cast<void>( b->txDriverCtrl() ); } ),
                ElementsAre( "txDriverCtrl" ) );
   // It has this one, but not the table.
   EXPECT_THAT( unreadIn( [&] { static_cast<void>( b->moduleState() ); } ),
                ElementsAre( "getU16FromTable" ) );
   auto const c = CfpImageBuilder( identifierCfpx ).contents();
   EXPECT_THAT( unreadIn( [&] { static_cast<void>( c->networkLaneBitRateMax() ); } ),
                ElementsAre( "getU8FromTable" ) );
   for ( uint8_t channel : std::initializer_list<uint8_t>{ 0, 2, 4 } ) {
      auto const unread = unreadIn( [&] { EXPECT_EQ( a->rxSkew( channel ), 0 ); } );
      EXPECT_THAT( unread, ElementsAre( "rxSkew" ) );
   }
   auto const unread = unreadIn( [&] { EXPECT_EQ( a->txSkew( 4 ), 0 ); } );
   EXPECT_THAT( unread, IsEmpty() );
}

TEST( CfpContents, TextsAndCodes ) {
   CfpImageBuilder image( static_cast<CfpMsaMisIdentifier>( 0x0E ) );
   image.text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "dateCode", "20260101" )
      .raw( "ethernetApplicationCode", 0x0D );
   auto const contents = image.contents();
   EXPECT_EQ( contents->vendorName(), "Vendor          " );
   EXPECT_EQ( contents->vendorPn(), "PN-1            " );
   EXPECT_EQ( contents->vendorSn(), "SN-1            " );
   EXPECT_EQ( contents->dateCode(), "20260101" );
   EXPECT_EQ( static_cast<int>( contents->identifier() ), 0x0E );
   EXPECT_EQ( static_cast<int>( contents->ethernetApplicationCode() ), 0x0D );
   contents->memory( table8000 )->contentsIs( image.bytes( table8000 ).substr( 0, 0x23 ) );
   EXPECT_EQ( contents->vendorName(), "Ve" );
   EXPECT_EQ( contents->vendorPn(), "" );

   auto const revision = [&image]( uint32_t first, uint32_t second ) {
      return image.raw( "vendorRevFirst", first )
         .raw( "vendorRevSecond", second )
         .contents()
         ->vendorRev();
   };
   EXPECT_EQ( revision( 'A', '2' ), "A2" );
   EXPECT_EQ( revision( 'A', 0 ), "A" );
   EXPECT_EQ( revision( 0, '2' ), "" );
   EXPECT_EQ( revision( 0, 0 ), "01" );
   EXPECT_EQ( image.missing( table8420 ).contents()->vendorRev(), "01" );
}

TEST( CfpContents, LinearDriversByMaker ) {
   auto const module = []( uint32_t driver, char const * name, char const * serialNumber ) {
      return CfpImageBuilder( identifierCfpx )
         .raw( "txRfDriverType", driver )
         .text( "vendorName", name )
         .text( "vendorSn", serialNumber )
         .contents();
   };
   EXPECT_TRUE( module( 1, "", "AP123" )->isOclaroLinear() );
   EXPECT_FALSE( module( 1, "", "AP123" )->isAcaciaLinear() );
   EXPECT_TRUE( module( 1, "", "TC123" )->isAcaciaLinear() );
   EXPECT_TRUE( module( 1, "The OCLARO inc.", "1AP" )->isOclaroLinear() );
   EXPECT_TRUE( module( 1,
                        "\xE1"
                        "cac\xC9"
                        "A",
                        "" )
                   ->isAcaciaLinear() );
   EXPECT_FALSE( module( 1, "Oclar", "" )->isOclaroLinear() );
   EXPECT_FALSE( module( 0, "Oclaro", "AP123" )->isOclaroLinear() );
   EXPECT_FALSE( module( 2, "Acacia", "TC123" )->isAcaciaLinear() );
}

TEST( CfpContents, DecodersScale ) {
   auto const a = CfpImageBuilder( identifierCfp2 ).contents();
   EXPECT_EQ( a->decodeTemperature( -128 ), -0.5 );
   EXPECT_EQ( a->decodeTemperature( INT16_MIN ), -128 );
   EXPECT_DOUBLE_EQ( a->decodeVoltage( 33000 ), 3.3 );
   EXPECT_DOUBLE_EQ( a->decodeDomVoltage( 33000 ), 3.3 );
   EXPECT_DOUBLE_EQ( CfpImageBuilder( identifierCfpx ).contents()->decodeDomVoltage( 3300 ), 3.3 );
   EXPECT_DOUBLE_EQ( CfpImageBuilder( identifierCfp2Dco ).contents()->decodeDomVoltage( 3300 ),
                     3.3 );
   EXPECT_DOUBLE_EQ( a->decodeTxBias( 65535 ), 131.07 );
   EXPECT_DOUBLE_EQ( a->decodeTxBiasCfpx( 65535 ), 6553.5 );
   EXPECT_NEAR( a->decodePower( 10000 ), 0, 1e-12 );
   EXPECT_EQ( a->decodePower( 0 ), -std::numeric_limits<double>::infinity() );
   EXPECT_DOUBLE_EQ( a->decodePowerCfpx( -1234 ), -12.34 );
   EXPECT_DOUBLE_EQ( a->decodeAttenuation( 65535 ), 655.35 );
   EXPECT_EQ( a->laserWavelengthPrecision(), laserWavelengthPrecisionNm );
}

// ---------------------------------------------------------------------------------------------
// Checksums

TEST( CfpChecksums, GuardEveryByteOfTheirRange ) {
   struct Range {
      CfpMsaMisTableId table;
      uint16_t first, last;
   };
   for ( Range const & range : { Range{ table8000, 0x8000, 0x807E },
                                 { table8080, 0x8080, 0x80FE },
                                 { table8100, 0x8100, 0x817F },
                                 { table8180, 0x8181, 0x81FE } } ) {
      SCOPED_TRACE( stringValue( range.table ) );
      CfpImageBuilder image;
      image.at( table8100, 0x8100, 0xC3 ).raw( "minFrequencyTHz", 191 );
      auto const contents = image.contents();
      EXPECT_TRUE( contents->checksumValid( range.table ) );
      EXPECT_EQ( contents->checksumCalculated( range.table ), contents->checksum( range.table ) );
      auto const table = contents->memory( range.table );
      Vel::String const bytes = table->contents();
      for ( size_t at = 0; at < bytes.size(); ++at ) {
         uint16_t const address = static_cast<uint16_t>( table->firstAddress() + at );
         Vel::String changed = bytes;
         changed.byteIs( at, static_cast<uint8_t>( bytes[at] + 1 ) );
         table->contentsIs( changed );
         bool const stored = address == range.last + 1 && range.table != table8100;
         bool const guarded = ( address >= range.first && address <= range.last ) || stored;
         EXPECT_EQ( contents->checksumValid( range.table ), !guarded ) << std::hex << address;
      }
   }
}

TEST( CfpChecksums, OfWhatIsNotThere ) {
   auto const whole = CfpImageBuilder().at( table8100, 0x8150, 9 ).contents();
   EXPECT_EQ( whole->checksum( table8100 ), 9 );
   EXPECT_EQ( whole->checksumCalculated( table8100 ), 9 );
   // Stored in the next table.
   auto const halved = CfpImageBuilder().at( table8100, 0x8150, 9 ).missing( table8180 ).contents();
   EXPECT_EQ( halved->checksumCalculated( table8100 ), 9 );
   EXPECT_EQ( halved->checksum( table8100 ), 0 );
   EXPECT_FALSE( halved->checksumValid( table8100 ) );
   // Of a table without one, of no table, and of one that ends before its checksum.
   for ( CfpMsaMisTableId id : { table8420, tableA000, tableInvalid, table8180 } ) {
      EXPECT_EQ( halved->checksum( id ), 0 );
      EXPECT_EQ( halved->checksumCalculated( id ), 0 );
      EXPECT_FALSE( halved->checksumValid( id ) );
   }
   halved->memory( table8080 )->contentsIs( "abc" );
   EXPECT_EQ( halved->checksumCalculated( table8080 ), uint8_t( 'a' + 'b' + 'c' ) );
   EXPECT_FALSE( halved->checksumValid( table8080 ) );
   EXPECT_FALSE(
      CfpImageBuilder().checksumBroken( table8000 ).contents()->checksumValid( table8000 ) );
}

// ---------------------------------------------------------------------------------------------
// The line of a CFP2-DCO

namespace {

struct LineCase {
   char const * name;
   std::function<uint32_t( Cfp2DcoEepromContents const & )> read;
   CfpMsaMisTableId table;
   uint16_t address, further; // of both halves; 0 for a value of one register
};
#define LINE( accessor )                                                                           \
#accessor, []( Cfp2DcoEepromContents const & c ) -> uint32_t { return c.accessor; }

LineCase const lineCases[] = {
   { LINE( txTurnUpState() ), table9000, 0x9008, 0 },
   { LINE( rxTurnUpState() ), table9000, 0x9009, 0 },
   { LINE( networkBer() ), table9000, 0x9050, 0x9051 },
   { LINE( netFecUncBlkCount() ), table9000, 0x9058, 0x9059 },
   { LINE( laserAge() ), table9100, 0x9104, 0 },
   { LINE( laserFaultCode() ), table9100, 0x9105, 0 },
   { LINE( networkOsnrEstimate() ), table9100, 0x9130, 0 },
   { LINE( netLaneRxChannelPower() ), table9100, 0x9176, 0 },
   { LINE( clientIntfPcsAlarmStatus( 0 ) ), table9200, 0x9238, 0 },
   { LINE( clientIntfPcsAlarmStatus( 1 ) ), table9200, 0x9239, 0 },
   { LINE( clientIntfPcsAlarmStatusLatched( 0 ) ), table9200, 0x923A, 0 },
   { LINE( clientIntfPcsAlarmStatusLatched( 1 ) ), table9200, 0x923B, 0 },
   { LINE( moduleExtendedFunctionStatusLatched() ), tableB000, 0xB054, 0 },
   { LINE( networkLaneVendorSpecificFAWS() ), tableB100, 0xB100, 0 },
   { LINE( networkLaneVendorSpecificFAWSLatched() ), tableB100, 0xB110, 0 },
   { LINE( rxChromDispersion() ), tableB800, 0xB800, 0xB810 },
   { LINE( rxDiffGroupDelay() ), tableB880, 0xB880, 0 },
   { LINE( rxStateOfPolarization() ), tableB900, 0xB900, 0 },
   { LINE( rxQFactor() ), tableB980, 0xB980, 0 },
   { LINE( rxCarrierFreqOffset() ), tableB980, 0xB9C0, 0 },
   { LINE( rxSnr() ), tableBA00, 0xBA00, 0 },
};

} // namespace

TEST( CfpLine, AccessorsReadTheirRegisters ) {
   Cfp2DcoEepromContents const detached( nullptr );
   for ( LineCase const & c : lineCases ) {
      SCOPED_TRACE( c.name );
      CfpImageBuilder image( identifierCfp2Dco );
      image.at( c.table, c.address, 0x8001 );
      if ( c.further != 0 ) {
         image.at( c.table, c.further, 0x8002 );
      }
      auto const contents = image.contents();
      auto const view = cfp2DcoEepromContentsFactory( contents );
      EXPECT_EQ( c.read( *view ), c.further != 0 ? 0x80018002 : 0x8001 );
      EXPECT_EQ( c.read( detached ), 0u );
      if ( c.further != 0 ) { // each half by itself
         size_t const end = 2u * ( c.further - cfpFirstAddress( c.table ) );
         contents->memory( c.table )->contentsIs( image.bytes( c.table ).substr( 0, end ) );
         EXPECT_EQ( c.read( *view ), 0x80010000 );
      }
      contents->memoryDel( c.table );
      EXPECT_EQ( c.read( *view ), 0u );
   }
}

TEST( CfpLine, OnlyTwoClientLanes ) {
   auto const contents = CfpImageBuilder( identifierCfp2Dco )
                            .at( table9200, 0x923A, 5 )
                            .at( table9200, 0x923C, 6 )
                            .contents();
   Cfp2DcoEepromContents const line( contents );
   auto const unread = unreadIn( [&] {
      EXPECT_EQ( line.clientIntfPcsAlarmStatus( 2 ), 0 );
      EXPECT_EQ( line.clientIntfPcsAlarmStatusLatched( 2 ), 0 );
   } );
   EXPECT_THAT( unread, IsEmpty() );
}

TEST( CfpLine, AttributesInTheirOrder ) {
   std::vector<std::string> names;
   for ( Vel::AttrInfo const & attribute : Cfp2DcoEepromContents::velTypeModel() ) {
      names.push_back( std::string( attribute.name ) );
   }
   EXPECT_THAT( names, ElementsAre( "networkOsnrEstimate", "networkLaneVendorSpecificFAWS",
                                    "clientIntfPcsAlarmStatus", "netLaneRxChannelPower",
                                    "moduleExtendedFunctionStatusLatched",
                                    "networkLaneVendorSpecificFAWSLatched",
                                    "clientIntfPcsAlarmStatusLatched" ) );
}
