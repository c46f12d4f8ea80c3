#include "tests/support/TraceCapture.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

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
   } const settings[] = { { "Red", 1, "1", "" },     { "Blue", 9, "1", "123456789" },
                          { "*", 2, "12", "12" },    { "Red", 4, "1234", "12" },
                          { "Re", 9, "1234", "12" }, { "Blue", 0, "1234", "" } };
   for ( auto const & [source, level, ofRed, ofBlue] : settings ) {
      Vel::traceLevelIs( source, level );
      EXPECT_EQ( levelsOf( capture, red ), ofRed ) << source;
      EXPECT_EQ( levelsOf( capture, blue ), ofBlue ) << source;
   }
   // Handles that are made later take the level that was set.
   Vel::traceLevelIs( "Green", 3 );
   std::optional<Vel::TraceHandle> early( std::in_place, "Green" );
   Vel::TraceHandle const other( "Grey" );
   EXPECT_EQ( levelsOf( capture, *early ), "123" );
   EXPECT_EQ( levelsOf( capture, other ), "12" );
   early.reset(); // from the middle of the list of handles
   Vel::traceLevelIs( "*", 1 );
   EXPECT_EQ( levelsOf( capture, Vel::TraceHandle( "Green" ) ), "1" );
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
   std::string all;
   for ( auto const & record : capture.takeRecords() ) {
      all += record.source + " " + std::to_string( record.level ) + " " +
             std::to_string( record.line - line ) + " " + record.operation + " '" + record.text +
             "' ";
   }
   EXPECT_EQ( all, "Red 8 0 operator() '' Blue 5 1 operator() 'a note' " );
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
