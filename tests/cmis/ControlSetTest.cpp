#include <Vel/Exception.h>
#include <Xcvr/XcvrOsfp.h>

#include <gmock/gmock.h>

#include <functional>

using namespace Xcvr;

namespace {

Vel::String zeros() {
   return Vel::String( OsfpControlSet::imageSize, '\0' );
}

/// An image with some bytes from an offset on.
Vel::String imageWith( size_t at, std::initializer_list<int> bytes ) {
   Vel::String image = zeros();
   for ( int byte : bytes ) {
      image.byteIs( at++, static_cast<uint8_t>( byte ) );
   }
   return image;
}

Vel::String bytes( OsfpControlSet const & set, size_t at, size_t count ) {
   return set.image().substr( at, count );
}

} // namespace

TEST( OsfpControlSetTest, EverySetterHasItsPlace ) {
   using Set = OsfpControlSet;
   OsfpLane const lane( 3 );
   struct Case {
      std::function<bool( Set & )> set;
      Vel::String expected;
   };
   Case const cases[] = {
      { [&]( Set & s ) { return s.txInputAdaptiveEqEnableIs( lane, Vel::U1( 1 ) ); },
        imageWith( 8, { 0x08 } ) },
      { [&]( Set & s ) { return s.txInputEqualizationIs( lane, 5 ); },
        imageWith( 11, { 0, 0x50 } ) },
      { [&]( Set & s ) { return s.rxOutputPreEmphasisIs( lane, 6 ); },
        imageWith( 17, { 0, 0x60 } ) },
      { [&]( Set & s ) { return s.rxOutputPostEmphasisIs( lane, 7 ); },
        imageWith( 21, { 0, 0x70 } ) },
      { [&]( Set & s ) { return s.rxOutputAmplitudeIs( lane, 2 ); }, imageWith( 25, { 0, 0x20 } ) },
      { [&]( Set & s ) { return s.laneApSelIs( lane, 0xab ); }, imageWith( 3, { 0xab } ) },
      { [&]( Set & s ) { return s.applicationCodeIs( lane, Vel::U4( 15 ) ); },
        imageWith( 3, { 0xf0 } ) },
      { [&]( Set & s ) { return s.dataPathCodeIs( lane, Vel::U3( 7 ) ); },
        imageWith( 3, { 0x0e } ) },
      { [&]( Set & s ) { return s.explicitTuningControlIs( lane, Vel::U1( 1 ) ); },
        imageWith( 3, { 0x01 } ) },
      { [&]( Set & s ) { return s.setU32ToControlSetString( 17, 0x87654321 ); },
        imageWith( 17, { 0x21, 0x43, 0x65, 0x87 } ) },
   };
   for ( Case const & c : cases ) {
      auto const set = osfpControlSetFactory( zeros() );
      EXPECT_TRUE( c.set( *set ) );
      EXPECT_EQ( set->image(), c.expected ) << &c - cases;
      EXPECT_FALSE( c.set( *set ) );
      EXPECT_EQ( set->image(), c.expected );
      EXPECT_EQ( set->applyControl(), 0 );
   }
}

TEST( OsfpControlSetTest, AFieldSetterKeepsTheOthers ) {
   auto const set = osfpControlSetFactory( imageWith( 3, { 0x1f, 0x00 } ) );
   set->applicationCodeIs( OsfpLane( 3 ), Vel::U4( 2 ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 3 ) ), 0x2f );
   set->dataPathCodeIs( OsfpLane( 3 ), Vel::U3( 0 ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 3 ) ), 0x21 );
   set->explicitTuningControlIs( OsfpLane( 3 ), Vel::U1( 0 ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 3 ) ), 0x20 );
   set->txInputEqualizationIs( OsfpLane( 1 ), 5 );
   set->txInputEqualizationIs( OsfpLane( 0 ), 4 );
   EXPECT_EQ( bytes( *set, 11, 4 ), Vel::String( "\x54\0\0\0", 4 ) );
}

TEST( OsfpControlSetTest, ReadingExtendsSignsAndWritingKeepsThem ) {
   auto const set = osfpControlSetFactory( imageWith( 11, { 0x80 } ) );
   EXPECT_EQ( set->getU32FromControlSetString( 11 ), 0xffffff80u );
   EXPECT_TRUE( set->txInputEqualizationIs( OsfpLane( 2 ), 0 ) );
   EXPECT_EQ( bytes( *set, 11, 4 ), Vel::String( "\x80\xf0\xff\xff", 4 ) );

   // The field reads as 15 already, so nothing has changed as far as this object knows.
   auto const again = osfpControlSetFactory( imageWith( 11, { 0x80 } ) );
   EXPECT_FALSE( again->txInputEqualizationIs( OsfpLane( 2 ), 15 ) );
   EXPECT_EQ( bytes( *again, 11, 4 ), Vel::String( "\x80\xff\xff\xff", 4 ) );

   // A whole tuning reads what is stored.
   auto const stored = osfpControlSetFactory( imageWith( 11, { 0x80, 0x21 } ) );
   EXPECT_EQ( stored->tuning( OsfpLane( 1 ) ).txInputEqualization(), 8 );
   EXPECT_EQ( stored->tuning( OsfpLane( 2 ) ).txInputEqualization(), 1 );
   EXPECT_EQ( stored->tuning( OsfpLane( 7 ) ).txInputEqualization(), 0 );
}

TEST( OsfpControlSetTest, AWholeTuning ) {
   auto const set = osfpControlSetFactory( zeros() );
   OsfpTuningParamValue const tuning( 1, 2, 3, 4, 5 );
   EXPECT_TRUE( set->tuningIs( OsfpLane( 6 ), tuning ) );
   EXPECT_EQ( set->tuning( OsfpLane( 6 ) ), tuning );
   EXPECT_EQ( set->tuning( OsfpLane( 5 ) ), OsfpTuningParamValue() );
   EXPECT_EQ( set->laneApSel( OsfpLane( 6 ) ), 0x01 );
   EXPECT_EQ( set->applyControl(), 0x40 );
   EXPECT_EQ( bytes( *set, 20, 1 ), Vel::String( "\x04" ) ) << "pre-emphasis";
   EXPECT_EQ( bytes( *set, 24, 1 ), Vel::String( "\x03" ) ) << "post-emphasis";

   // With the values there already, the lane needs nothing any more, but is told to use them.
   set->explicitTuningControlIs( OsfpLane( 6 ), Vel::U1( 0 ) );
   set->applyControlIs( 0xff );
   EXPECT_FALSE( set->tuningIs( OsfpLane( 6 ), tuning ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 6 ) ), 0x01 );
   EXPECT_EQ( set->applyControl(), 0xbf );

   EXPECT_EQ( stringValue( tuning ),
              "Value('Xcvr::OsfpTuningParamValue', ** {'txInputAdaptiveEqEnable': 1, "
              "'txInputEqualization': 2, 'rxOutputPostEmphasis': 3, 'rxOutputPreEmphasis': 4, "
              "'rxOutputAmplitude': 5})" );
}

TEST( OsfpControlSetTest, ApplyMaskLaneByLane ) {
   auto const set = osfpControlSetFactory( zeros() );
   EXPECT_TRUE( set->applyTuningIs( OsfpLane( 7 ), Vel::U1( 1 ) ) );
   EXPECT_TRUE( set->applyTuningIs( OsfpLane( 0 ), Vel::U1( 1 ) ) );
   EXPECT_FALSE( set->applyTuningIs( OsfpLane( 0 ), Vel::U1( 1 ) ) );
   EXPECT_EQ( set->applyControl(), 0x81 );
   EXPECT_TRUE( set->applyTuningIs( OsfpLane( 7 ), Vel::U1( 0 ) ) );
   EXPECT_EQ( set->applyControl(), 0x01 );
   EXPECT_EQ( set->image(), zeros() );
}

TEST( OsfpControlSetTest, ACodeTooLargeChangesNothing ) {
   auto const set = osfpControlSetFactory( imageWith( 11, { 0x80 } ) );
   Vel::String const before = set->image();
   auto const textOf = []( std::function<void()> const & op ) {
      try {
         op();
      } catch ( Vel::RangeException const & e ) {
         return std::string( e.what() );
      }
      return std::string( "nothing thrown" );
   };
   EXPECT_EQ( textOf( [&] { set->txInputEqualizationIs( OsfpLane( 0 ), 16 ); } ),
              "U4::value < 0 or > 0x0f not allowed" );
   EXPECT_EQ( textOf( [&] {
                 set->tuningIs( OsfpLane( 0 ), { 1, 1, 1, 1, 16 } );
              } ),
              "U4::value < 0 or > 0x0f not allowed" );
   EXPECT_EQ( textOf( [&] {
                 set->tuningIs( OsfpLane( 0 ), { 2, 16, 1, 1, 1 } );
              } ),
              "U1::value < 0 or > 0x01 not allowed" );
   EXPECT_EQ( set->image(), before );
   EXPECT_EQ( set->applyControl(), 0 );
}

TEST( OsfpControlSetTest, ApSelStringIsACopy ) {
   auto const set =
      osfpControlSetFactory( imageWith( 0, { 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11, 0x11 } ) );
   EXPECT_EQ( set->apSelString(), Vel::String( 8, '\x10' ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 7 ) ), 0x11 );
}

TEST( OsfpControlSetTest, AShortImageReadsAsZeroAndIsNotWritten ) {
   auto const set = osfpControlSetFactory( Vel::String( "\x21\x22\x23\x24", 4 ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 3 ) ), 0x24 );
   EXPECT_EQ( set->laneApSel( OsfpLane( 4 ) ), 0 );
   EXPECT_EQ( set->getU32FromControlSetString( 2 ), 0x2423u );
   EXPECT_EQ( set->apSelString(), "\x20\x22\x22\x24" );
   EXPECT_EQ( set->tuning( OsfpLane( 0 ) ), OsfpTuningParamValue() );
   EXPECT_TRUE( set->applicationCodeIs( OsfpLane( 3 ), Vel::U4( 1 ) ) );
   EXPECT_DEATH( set->laneApSelIs( OsfpLane( 4 ), 0 ), "offset < image.size\\(\\)" );
   EXPECT_DEATH( set->setU32ToControlSetString( 1, 0 ), "offset \\+ 4 <= image.size\\(\\)" );
}
