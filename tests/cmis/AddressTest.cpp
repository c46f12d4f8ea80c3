#include "tests/cmis/CmisModule.h"

#include <Vel/Exception.h>

#include <gmock/gmock.h>

using namespace Xcvr;

TEST( CmisAddressTest, LaneIsBoundedInEveryForm ) {
   EXPECT_DEATH( OsfpLane( 8 ), "OsfpLane::value < 0 or > 7 not allowed" );
   OsfpApplicationAddress const list( OsfpPage::upperPage01, 223, 7 );
   EXPECT_EQ( list.value( 6 ), OsfpRegAddr( OsfpBank::bankNa, OsfpPage::upperPage01, 247, 4 ) );
   EXPECT_DEATH( static_cast<void>( list.value( 8 ) ),
                 "OsfpApplicationOffset::value < 0 or > 7 not allowed" );
   for ( char const * text : { "8", "", "3 ", "Value('Xcvr::OsfpLane', ** {'value': 3})" } ) {
      EXPECT_THROW( OsfpLane( Vel::String( text ) ), Vel::ParseException ) << text;
   }
   EXPECT_EQ( stringValue( OsfpLane( 7 ) ), "7" );
}

TEST( CmisAddressTest, LaneFieldsOfARegister ) {
   OsfpLaneBitmaskCtrlReg8 bits( 0x81 );
   bits.laneValIs( OsfpLane( 0 ), true );
   EXPECT_TRUE( bits.laneValDel( OsfpLane( 7 ) ) );
   EXPECT_EQ( bits.value(), 0x01 );
   OsfpLaneBitmaskCtrlReg32 fields( 0x87654321 );
   EXPECT_EQ( fields.laneValDel( OsfpLane( 1 ) ), 2 );
   EXPECT_EQ( fields.value(), 0x87654301 );
}

TEST( CmisAddressTest, RegistersOfAPage ) {
   CmisModule const module;
   module.raw->memoryIs( OsfpBankAndPage( OsfpBank::bank1, OsfpPage::upperPage11 ),
                         Vel::String( "\x01\x82\x03\x84\x05", 5 ) );
   auto const at = []( uint8_t addr, uint8_t size, OsfpPage page = OsfpPage::upperPage11,
                       OsfpBank bank = OsfpBank::bank1 ) {
      return OsfpRegAddr( bank, page, addr, size );
   };
   OsfpEepromParser const & parser = *module.parser;
   EXPECT_EQ( parser.registerOffset( at( 5, 1, OsfpPage::lowerPage00 ) ), 5 );
   EXPECT_EQ( parser.registerOffset( at( 130, 1 ) ), 2 );
   EXPECT_EQ( parser.reg8( at( 129, 1 ) ), 0x82 );
   EXPECT_EQ( parser.reg16( at( 128, 2 ) ), 0x0182 );
   EXPECT_EQ( parser.reg32( at( 129, 4 ), true ), 0x82038405u );
   EXPECT_EQ( parser.reg32( at( 129, 4 ), false ), 0x05840382u );
   // Beyond the end, and of a page that was not read.
   EXPECT_EQ( parser.reg8( at( 133, 1 ) ), 0 );
   EXPECT_EQ( parser.reg16( at( 132, 2 ) ), 0x0500 );
   EXPECT_EQ( parser.reg( at( 131, 29 ) ).size(), 2u );
   EXPECT_EQ( parser.reg16( at( 128, 2, OsfpPage::upperPage11, OsfpBank::bank0 ) ), 0 );

   auto const sum = [&]( uint8_t checksum, uint8_t start ) {
      module.parser->computePageChecksum( at( checksum, 1 ), start );
      return int( module.decoded->checksumCalculated( OsfpPage::upperPage11 ) );
   };
   EXPECT_EQ( sum( 132, 1 ), 0x09 );
   EXPECT_FALSE( module.decoded->checksumValid( OsfpPage::upperPage11 ) );
   EXPECT_EQ( sum( 255, 0 ), 0x0f ); // what a short page lacks counts as 0
   EXPECT_DEATH( static_cast<void>( parser.reg8( at( 128, 2 ) ) ), "reg.size\\(\\) == 1" );
   EXPECT_DEATH( static_cast<void>( parser.reg16( at( 128, 1 ) ) ), "reg.size\\(\\) == 2" );
   EXPECT_DEATH( static_cast<void>( parser.reg32( at( 128, 2 ), true ) ), "reg.size\\(\\) == 4" );
   EXPECT_DEATH(
      static_cast<void>( parser.registerOffset( at( 130, 1, OsfpPage::upperPageInvalid ) ) ),
      "reg.page\\(\\) != OsfpPage::upperPageInvalid_" );
}
