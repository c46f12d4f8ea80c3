#include "tests/support/AllocationCount.h"

#include <Vel/String.h>

#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>

namespace {

using Vel::String;

std::string letters( std::size_t count, std::size_t first = 0 ) {
   std::string text( count, '\0' );
   for ( std::size_t at = 0; at < count; ++at )
      text[at] = static_cast<char>( 'a' + ( first + at ) % 26 );
   return text;
}

TEST( String, LongContentIsSharedUntilOneOfItsHoldersChanges ) {
   String const inside( letters( 23 ) ), outside( letters( 24 ) );
   AllocationCount const count;
   String insideCopy = inside, outsideCopy = outside;
   EXPECT_EQ( outsideCopy.data(), outside.data() );
   insideCopy.byteIs( 22, 'X' );
   EXPECT_EQ( count.calls(), 0U );
   outsideCopy.byteIs( 23, 'X' );
   outsideCopy.byteIs( 0, 'X' );
   EXPECT_EQ( count.calls(), 1U ) << "its own by then";
   EXPECT_EQ( inside, letters( 23 ) );
   EXPECT_EQ( outside, letters( 24 ) );
   EXPECT_EQ( insideCopy, letters( 22 ) + "X" );
   EXPECT_EQ( outsideCopy, "X" + letters( 22, 1 ) + "X" );
}

TEST( String, PartsAndPlaces ) {
   String const text( "Example Optics  EO-10G-SR" );
   EXPECT_EQ( text.substr( 16 ), "EO-10G-SR" );
   EXPECT_EQ( text.find( "E", 1 ), 16U );
   EXPECT_EQ( text.find( "X" ), String::npos );
   EXPECT_EQ( String( nullptr ), "" );
   EXPECT_EQ( "a" + String( "b" ) + "c" + std::string_view(), "abc" );
}

// A few strings under every operation in a long seeded sequence, each beside a std::string.
TEST( String, BehavesAsAByteStringUnderAnySequenceOfOperations ) {
   std::mt19937 random( 1 );
   std::array<String, 4> strings;
   std::array<std::string, 4> models;
   for ( int step = 0; step < 100000; ++step ) {
      String &to = strings[random() % 4], &from = strings[random() % 4];
      std::string & model = models[static_cast<std::size_t>( &to - strings.data() )];
      std::string & source = models[static_cast<std::size_t>( &from - strings.data() )];
      std::size_t const at = random() % 60, count = random() % 30;
      std::size_t const begin = std::min( at, source.size() );
      std::string const part = source.substr( begin, count );
      switch ( random() % 7 ) {
      case 0:
         to = String( model = letters( at, count ) );
         break;
      case 1:
         model = source, to = from;
         break;
      case 2:
         to = std::move( from );
         if ( &to != &from ) {
            model = std::exchange( source, {} );
         }
         break;
      case 3:
         model = part, to = from.substr( at, count );
         break;
      case 4:
         model += part, to += std::string_view( from ).substr( begin, count );
         break;
      case 5:
         if ( at < model.size() ) {
            model[at] = static_cast<char>( step );
         }
         to.byteIs( at, static_cast<uint8_t>( step ) );
         break;
      default:
         std::swap( model, source ), std::swap( to, from );
      }
      for ( std::size_t i = 0; i < strings.size(); ++i ) {
         ASSERT_EQ( strings[i].view(), models[i] ) << "step " << step;
         ASSERT_EQ( strings[i] == from, models[i] == source ) << "step " << step;
         ASSERT_EQ( strings[i].hash() == from.hash(), models[i] == source ) << "step " << step;
         ASSERT_EQ( strings[i] <=> from, models[i] <=> source ) << "step " << step;
         ASSERT_EQ( strings[i][at], at < models[i].size() ? models[i][at] : '\0' );
      }
   }
}

} // namespace
