#include "tests/cmis/CmisModule.h"

#include <Vel/AttrLog.h>
#include <Vel/Exception.h>

#include <gmock/gmock.h>

using namespace Xcvr;

TEST( CmisAddressTest, StringFormsReadBack ) {
   struct Case {
      Vel::String form;
      Vel::String again;
      char const * expected;
   };
   auto const form = []<typename T>( T const & value, char const * expected ) {
      return Case{ stringValue( value ), stringValue( T( stringValue( value ) ) ), expected };
   };
   OsfpRegAddr const reg( OsfpBank::bank0, OsfpPage::upperPage11, 154, 2 );
   Case const cases[] = {
      form( OsfpBankAndPage( OsfpBank::bankNa, OsfpPage::lowerPage00 ),
            "Value('Xcvr::OsfpBankAndPage', ** {'bank': bankNa, 'page': lowerPage00})" ),
      form( reg, "Value('Xcvr::OsfpRegAddr', ** {'bank': bank0, 'page': upperPage11, 'addr': 154, "
                 "'size': 2})" ),
      form( OsfpDomRegAddr( OsfpBank::bank1, OsfpPage::upperPage10, 1, 2 ),
            "Value('Xcvr::OsfpDomRegAddr', ** {'bank': bank1, 'page': upperPage10, 'addr': 1, "
            "'size': 2})" ),
      form( OsfpMediaLaneAssignmentAddress( OsfpBank::bankNa, OsfpPage::upperPage01, 176, 1 ),
            "Value('Xcvr::OsfpMediaLaneAssignmentAddress', ** {'bank': bankNa, 'page': "
            "upperPage01, 'addr': 176, 'size': 1})" ),
      form( OsfpApplicationAddress( OsfpPage::lowerPage00, 86, 8 ),
            "Value('Xcvr::OsfpApplicationAddress', ** {'page': lowerPage00, 'baseAddr': 86, "
            "'numApplications': 8})" ),
      form( OsfpControlSetAddress( OsfpBank::bankNa, OsfpPage::upperPageInvalid, 0 ),
            "Value('Xcvr::OsfpControlSetAddress', ** {'bank': bankNa, 'page': upperPageInvalid, "
            "'baseAddr': 0})" ),
      form( OsfpLane( 7 ), "7" ),
   };
   for ( Case const & c : cases ) {
      EXPECT_EQ( c.form, c.expected );
      EXPECT_EQ( c.again, c.expected );
   }
}

TEST( CmisAddressTest, LaneIsBoundedInEveryForm ) {
   EXPECT_DEATH( OsfpLane( 8 ), "OsfpLane::value < 0 or > 7 not allowed" );
   OsfpApplicationAddress const list( OsfpPage::lowerPage00, 86, 8 );
   EXPECT_DEATH( static_cast<void>( list.value( 8 ) ),
                 "OsfpApplicationOffset::value < 0 or > 7 not allowed" );
   for ( char const * text : { "8", "", "3 ", "Value('Xcvr::OsfpLane', ** {'value': 3})" } ) {
      EXPECT_THROW( OsfpLane( Vel::String( text ) ), Vel::ParseException ) << text;
   }
   Vel::NboAttrLog log;
   OsfpLane( 5 ).velWrite( log );
   EXPECT_EQ( OsfpLane( log ), OsfpLane( 5 ) );
}

TEST( CmisAddressTest, IndexedAddressesAdvance ) {
   EXPECT_EQ( OsfpDomRegAddr( OsfpBank::bank0, OsfpPage::upperPage11, 170, 2 ).value( 7 ),
              OsfpRegAddr( OsfpBank::bank0, OsfpPage::upperPage11, 184, 2 ) );
   EXPECT_EQ(
      OsfpMediaLaneAssignmentAddress( OsfpBank::bankNa, OsfpPage::upperPage01, 176, 1 ).value( 15 ),
      OsfpRegAddr( OsfpBank::bankNa, OsfpPage::upperPage01, 191, 1 ) );
   EXPECT_EQ( OsfpApplicationAddress( OsfpPage::upperPage01, 223, 7 ).value( 6 ),
              OsfpRegAddr( OsfpBank::bankNa, OsfpPage::upperPage01, 247, 4 ) );
   EXPECT_EQ( OsfpControlSetAddress( OsfpBank::bank0, OsfpPage::upperPage11, 206 )
                 .laneApSelCode( OsfpLane( 3 ) ),
              OsfpRegAddr( OsfpBank::bank0, OsfpPage::upperPage11, 209, 1 ) );
   EXPECT_LT( OsfpRegAddr( OsfpBank::bank0, OsfpPage::upperPage11, 9, 2 ),
              OsfpRegAddr( OsfpBank::bank0, OsfpPage::upperPage11, 10, 1 ) );
}

TEST( CmisAddressTest, LaneFieldsOfARegister ) {
   OsfpLaneBitmaskCtrlReg8 bits( 0x81 );
   bits.laneValIs( OsfpLane( 0 ), true );
   bits.laneValIs( OsfpLane( 4 ), true );
   EXPECT_TRUE( bits.laneValDel( OsfpLane( 7 ) ) );
   EXPECT_FALSE( bits.laneValDel( OsfpLane( 6 ) ) );
   EXPECT_EQ( bits.value(), 0x11 );

   OsfpLaneBitmaskCtrlReg32 fields( 0x87654321 );
   EXPECT_EQ( fields.laneVal( OsfpLane( 0 ) ), 1 );
   EXPECT_EQ( fields.laneVal( OsfpLane( 7 ) ), 8 );
   fields.laneValIs( OsfpLane( 7 ), Vel::U4( 0xf ) );
   EXPECT_EQ( fields.laneValDel( OsfpLane( 1 ) ), 2 );
   EXPECT_EQ( fields.value(), 0xf7654301 );
}

TEST( CmisAddressTest, TxBiasMultiplier ) {
   unsigned const multipliers[] = { 1, 2, 4, 1 };
   for ( unsigned code = 0; code < 4; ++code ) {
      auto const image = static_cast<uint16_t>( 0xffe7 | code << 3 );
      EXPECT_EQ( OsfpImplMonitorsAdvertisement( image ).txBiasMultiplerValue(), multipliers[code] );
   }
}

TEST( CmisRegisterTest, OffsetsOnPages ) {
   CmisModule const module;
   auto const offset = [&]( OsfpPage page, uint8_t addr ) {
      return module.parser->registerOffset( OsfpRegAddr( OsfpBank::bankNa, page, addr, 1 ) );
   };
   EXPECT_EQ( offset( OsfpPage::lowerPage00, 5 ), 5 );
   EXPECT_EQ( offset( OsfpPage::upperPage00, 130 ), 2 );
   EXPECT_EQ( offset( OsfpPage::upperPage11, 255 ), 127 );
   EXPECT_DEATH( offset( OsfpPage::upperPageInvalid, 130 ),
                 "reg.page\\(\\) != OsfpPage::upperPageInvalid_" );
}

TEST( CmisRegisterTest, NumbersAndBytes ) {
   CmisModule const module;
   module.raw->memoryIs( OsfpBankAndPage( OsfpBank::bank1, OsfpPage::upperPage11 ),
                         Vel::String( "\x01\x82\x03\x84\x05", 5 ) );
   auto const at = []( uint8_t addr, uint8_t size, OsfpBank bank = OsfpBank::bank1 ) {
      return OsfpRegAddr( bank, OsfpPage::upperPage11, addr, size );
   };
   OsfpEepromParser const & parser = *module.parser;
   EXPECT_EQ( parser.reg8( at( 129, 1 ) ), 0x82 );
   EXPECT_EQ( parser.reg16( at( 128, 2 ) ), 0x0182 );
   EXPECT_EQ( parser.reg32( at( 129, 4 ), true ), 0x82038405u );
   EXPECT_EQ( parser.reg32( at( 129, 4 ), false ), 0x05840382u );
   EXPECT_EQ( parser.reg( at( 130, 2 ) ), Vel::String( "\x03\x84", 2 ) );
   // Beyond the end, and of a page that was not read.
   EXPECT_EQ( parser.reg8( at( 133, 1 ) ), 0 );
   EXPECT_EQ( parser.reg16( at( 132, 2 ) ), 0x0500 );
   EXPECT_EQ( parser.reg32( at( 131, 4 ), false ), 0x00000584u );
   EXPECT_EQ( parser.reg( at( 131, 29 ) ).size(), 2u );
   EXPECT_EQ( parser.reg16( at( 128, 2, OsfpBank::bank0 ) ), 0 );

   EXPECT_DEATH( static_cast<void>( parser.reg8( at( 128, 2 ) ) ), "reg.size\\(\\) == 1" );
   EXPECT_DEATH( static_cast<void>( parser.reg16( at( 128, 1 ) ) ), "reg.size\\(\\) == 2" );
   EXPECT_DEATH( static_cast<void>( parser.reg32( at( 128, 2 ), true ) ), "reg.size\\(\\) == 4" );
}
