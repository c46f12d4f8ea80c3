#include <Vel/Exception.h>
#include <Xcvr/XcvrOsfp.h>

#include <gmock/gmock.h>

using namespace Xcvr;

namespace {

/// An image of zeros but for some bytes from an offset on.
Vel::String imageWith( size_t at, std::initializer_list<int> bytes ) {
   Vel::String image( OsfpControlSet::imageSize, '\0' );
   for ( int byte : bytes ) {
      image.byteIs( at++, static_cast<uint8_t>( byte ) );
   }
   return image;
}

} // namespace

TEST( OsfpControlSetTest, AFieldSetterKeepsTheOthers ) {
   auto const set = osfpControlSetFactory( imageWith( 3, { 0x1f } ) );
   EXPECT_TRUE( set->applicationCodeIs( OsfpLane( 3 ), Vel::U4( 2 ) ) );
   EXPECT_FALSE( set->applicationCodeIs( OsfpLane( 3 ), Vel::U4( 2 ) ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 3 ) ), 0x2f );
   EXPECT_TRUE( set->dataPathCodeIs( OsfpLane( 3 ), Vel::U3( 0 ) ) );
   EXPECT_TRUE( set->explicitTuningControlIs( OsfpLane( 3 ), Vel::U1( 0 ) ) );
   EXPECT_TRUE( set->dataPathCodeIs( OsfpLane( 7 ), Vel::U3( 7 ) ) );
   EXPECT_TRUE( set->txInputAdaptiveEqEnableIs( OsfpLane( 7 ), Vel::U1( 1 ) ) );
   EXPECT_TRUE( set->txInputEqualizationIs( OsfpLane( 1 ), 5 ) );
   EXPECT_FALSE( set->txInputEqualizationIs( OsfpLane( 1 ), 5 ) );
   EXPECT_TRUE( set->txInputEqualizationIs( OsfpLane( 0 ), 4 ) );
   EXPECT_EQ( set->image(), imageWith( 3, { 0x20, 0, 0, 0, 0x0e, 0x80, 0, 0, 0x54 } ) );
}

TEST( OsfpControlSetTest, ReadingExtendsSignsAndWritingKeepsThem ) {
   auto const set = osfpControlSetFactory( imageWith( 11, { 0x80 } ) );
   EXPECT_EQ( set->getU32FromControlSetString( 11 ), 0xffffff80u );
   EXPECT_TRUE( set->txInputEqualizationIs( OsfpLane( 2 ), 0 ) );
   EXPECT_EQ( set->image(), imageWith( 11, { 0x80, 0xf0, 0xff, 0xff } ) );

   // The field reads as 15 already, so nothing has changed as far as this object knows.
   auto const again = osfpControlSetFactory( imageWith( 11, { 0x80 } ) );
   EXPECT_FALSE( again->txInputEqualizationIs( OsfpLane( 2 ), 15 ) );
   EXPECT_EQ( again->image(), imageWith( 11, { 0x80, 0xff, 0xff, 0xff } ) );

   // A whole tuning reads what is stored.
   auto const stored = osfpControlSetFactory( imageWith( 11, { 0x80, 0x21 } ) );
   EXPECT_EQ( stored->tuning( OsfpLane( 1 ) ).txInputEqualization(), 8 );
   EXPECT_EQ( stored->tuning( OsfpLane( 7 ) ).txInputEqualization(), 0 );
}

TEST( OsfpControlSetTest, AWholeTuning ) {
   auto const set = osfpControlSetFactory( imageWith( 0, {} ) );
   OsfpLane const lane( 6 );
   OsfpTuningParamValue const tuning( 1, 2, 3, 4, 5 );
   EXPECT_TRUE( set->tuningIs( lane, tuning ) );
   EXPECT_EQ( set->image(), imageWith( 6, { 0x01, 0, 0x40, 0, 0, 0, 0,    0, 0x02, 0, 0,   0,
                                            0,    0, 0x04, 0, 0, 0, 0x03, 0, 0,    0, 0x05 } ) );
   EXPECT_EQ( set->tuning( lane ), tuning );
   EXPECT_EQ( set->applyControl(), 0x40 );

   // With the values there already, the lane needs nothing any more, but is told to use them.
   set->explicitTuningControlIs( lane, Vel::U1( 0 ) );
   EXPECT_TRUE( set->applyControlIs( 0xff ) );
   EXPECT_FALSE( set->tuningIs( lane, tuning ) );
   EXPECT_EQ( set->laneApSel( lane ), 0x01 );
   EXPECT_EQ( set->applyControl(), 0xbf );
   EXPECT_FALSE( set->applyTuningIs( OsfpLane( 0 ), Vel::U1( 1 ) ) );
   EXPECT_TRUE( set->applyTuningIs( OsfpLane( 0 ), Vel::U1( 0 ) ) );
   EXPECT_EQ( set->applyControl(), 0xbe );
}

TEST( OsfpControlSetTest, ACodeTooLargeChangesNothing ) {
   auto const set = osfpControlSetFactory( imageWith( 11, { 0x80 } ) );
   auto const tuning = [&]( OsfpTuningParamValue const & tried ) {
      return [&set, tried] { set->tuningIs( OsfpLane( 0 ), tried ); };
   };
   EXPECT_THAT( tuning( { 1, 1, 1, 1, 16 } ), testing::ThrowsMessage<Vel::RangeException>(
                                                 "U4::value < 0 or > 0x0f not allowed" ) );
   EXPECT_THAT( tuning( { 2, 16, 1, 1, 1 } ), testing::ThrowsMessage<Vel::RangeException>(
                                                 "U1::value < 0 or > 0x01 not allowed" ) );
   EXPECT_THROW( set->txInputEqualizationIs( OsfpLane( 0 ), 16 ), Vel::RangeException );
   EXPECT_EQ( set->image(), imageWith( 11, { 0x80 } ) );
   EXPECT_EQ( set->applyControl(), 0 );
}

TEST( OsfpControlSetTest, AShortImageReadsAsZeroAndIsNotWritten ) {
   auto const set = osfpControlSetFactory( Vel::String( "\x21\x22\x23\x24", 4 ) );
   EXPECT_EQ( set->laneApSel( OsfpLane( 4 ) ), 0 );
   EXPECT_EQ( set->getU32FromControlSetString( 2 ), 0x2423u );
   EXPECT_EQ( set->tuning( OsfpLane( 0 ) ), OsfpTuningParamValue() );
   EXPECT_DEATH( set->laneApSelIs( OsfpLane( 4 ), 0 ), "offset < image.size\\(\\)" );
   EXPECT_DEATH( set->setU32ToControlSetString( 1, 0 ), "offset \\+ 4 <= image.size\\(\\)" );
   // A copy without explicit control of what there is.
   EXPECT_EQ( set->apSelString(), "\x20\x22\x22\x24" );
   EXPECT_EQ( set->laneApSel( OsfpLane( 0 ) ), 0x21 );
   EXPECT_EQ( osfpControlSetFactory( imageWith( 7, { 0x11, 0xff } ) )->apSelString(),
              Vel::String( "\0\0\0\0\0\0\0\x10", 8 ) );
}
