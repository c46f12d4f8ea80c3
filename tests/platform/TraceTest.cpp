#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

Vel::TraceHandle red( "Red" );
Vel::TraceHandle blue( "Blue" );

/// The levels of what a handle writes, as one text, when it tries every level.
std::string levelsOf( TraceCapture & capture, Vel::TraceHandle const & handle ) {
   for ( int level = 1; level <= 9; ++level )
      VEL_TRACE( handle, level, "note" );
   std::string levels;
   for ( TraceCapture::Record const & record : capture.takeRecords() )
      levels += std::to_string( record.level );
   return levels;
}

TEST( Trace, OffUntilItIsAskedForAndThenUpToItsLevel ) {
   TraceCapture capture( "Red", 3 );
   EXPECT_EQ( levelsOf( capture, red ), "123" );
   EXPECT_EQ( levelsOf( capture, blue ), "" );
   struct {
      char const * source;
      int level;
      char const * red;
      char const * blue;
   } const settings[] = {
      { "Red", 1, "1", "" },    { "Blue", 9, "1", "123456789" }, { "Other", 9, "1", "123456789" },
      { "*", 2, "12", "12" },   { "Red", 4, "1234", "12" },      { "Re", 9, "1234", "12" },
      { "Blue", 0, "1234", "" } };
   for ( auto const & [source, level, ofRed, ofBlue] : settings ) {
      SCOPED_TRACE( source );
      Vel::traceLevelIs( source, level );
      EXPECT_EQ( levelsOf( capture, red ), ofRed );
      EXPECT_EQ( levelsOf( capture, blue ), ofBlue );
   }
}

TEST( Trace, HandlesMadeLaterTakeTheLevelThatWasSet ) {
   TraceCapture capture( "Green", 2 );
   std::optional<Vel::TraceHandle> early( std::in_place, "Green" );
   Vel::TraceHandle const other( "Grey" );
   EXPECT_EQ( levelsOf( capture, *early ), "12" );
   EXPECT_EQ( levelsOf( capture, other ), "" );
   early.reset(); // from the middle of the list of handles
   Vel::traceLevelIs( "*", 1 );
   Vel::TraceHandle const late( "Green" );
   EXPECT_EQ( levelsOf( capture, late ), "1" );
   EXPECT_EQ( levelsOf( capture, other ), "1" );
}

TEST( Trace, RecordsSayWhereTheyComeFrom ) {
   TraceCapture capture;
   int const line = __LINE__ + 2;
   auto const operation = [] {
      VEL_TRACE_SCOPE( red );
      VEL_TRACE( blue, 5, "a " + std::string( "note" ) );
   };
   operation();
   std::vector<TraceCapture::Record> const records = capture.takeRecords();
   ASSERT_EQ( records.size(), 2U );
   EXPECT_EQ( records[0].source, "Red" );
   EXPECT_EQ( records[0].level, 8 );
   EXPECT_EQ( records[0].line, line );
   EXPECT_EQ( records[0].operation, "operator()" );
   EXPECT_EQ( records[0].text, "" );
   EXPECT_EQ( records[1].source, "Blue" );
   EXPECT_EQ( records[1].level, 5 );
   EXPECT_EQ( records[1].line, line + 1 );
   EXPECT_EQ( records[1].text, "a note" );
}

TEST( Trace, TextIsMadeOnlyForARecordThatPasses ) {
   TraceCapture const capture( "Red", 4 );
   int made = 0;
   auto const text = [&made] { return std::to_string( ++made ); };
   VEL_TRACE( red, 5, text() );
   EXPECT_EQ( made, 0 );
   VEL_TRACE( red, 4, text() );
   EXPECT_EQ( made, 1 );
   Vel::traceSinkIs( {} );
   VEL_TRACE( red, 4, text() ); // nobody listens, nothing breaks
}

TEST( Trace, SinkMayReplaceItself ) {
   TraceCapture const restored;
   int first = 0, second = 0;
   Vel::traceSinkIs( [&first, &second, kept = std::string( 100, 'x' )]( auto const & ) {
      Vel::traceSinkIs( [&second]( auto const & ) { ++second; } );
      first += kept.size() == 100;
   } );
   VEL_TRACE( red, 1, "one" );
   VEL_TRACE( red, 1, "two" );
   EXPECT_EQ( first, 1 );
   EXPECT_EQ( second, 1 );
}

} // namespace
