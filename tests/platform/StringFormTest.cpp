#include "tests/platform/SampleTypes.h"

#include <Vel/Define.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace Sample {

VEL_ENUM_DEFINE( Mode )
VEL_VALUE_DEFINE( Point )
VEL_VALUE_DEFINE( All )
VEL_VALUE_DEFINE( Maps )

namespace {

using Vel::fromStringForm;
using Vel::stringForm;

// What filledAll and filledMaps look like.
constexpr char const allForm[] =
   "Value('Sample::All', ** {'flag': True, 'byte': 255, 'word': 65535, 'shift': -32768, "
   "'count': 19088743, 'total': 18446744073709551615, 'level': -inf, "
   "'label': 'it\\'s \\\\ a\\x0a', 'mode': remote, "
   "'point': Value('Sample::Point', ** {'x': 32767, 'mode': on}), "
   "'nibble': Value('Vel::U4', ** {'value': 15})})";
constexpr char const mapsForm[] =
   "Value('Sample::Maps', ** {'sizes': {0: 256, 9: 1}, "
   "'points': {'': Value('Sample::Point', ** {'x': 0, 'mode': off}), "
   "'b': Value('Sample::Point', ** {'x': -1, 'mode': on})}, "
   "'labels': {Value('Vel::U4', ** {'value': 3}): 'three'}})";

TEST( StringForm, FieldsInOrderEachInItsOwnForm ) {
   EXPECT_EQ( stringValue( filledAll() ), allForm );
   EXPECT_EQ( stringValue( filledMaps() ), mapsForm );
   EXPECT_EQ( stringValue( Maps() ),
              "Value('Sample::Maps', ** {'sizes': {}, 'points': {}, 'labels': {}})" );
   EXPECT_EQ( testing::PrintToString( filledAll() ), allForm );
   EXPECT_EQ( All( allForm ), filledAll() );
   EXPECT_EQ( fromStringForm<Maps>( mapsForm ), filledMaps() );
}

TEST( StringForm, EveryByteSurvivesInATextAndPrintsAsAscii ) {
   std::string all;
   for ( int byte = 0; byte < 256; ++byte ) {
      all += static_cast<char>( byte );
   }
   // The last one is well beyond what is printed on the stack.
   for ( std::string const & text : { std::string(), all, all + std::string( 9000, 'x' ) + all } ) {
      Vel::String const form = stringForm( Vel::String( text ) );
      EXPECT_EQ( fromStringForm<Vel::String>( form ), text );
      EXPECT_TRUE( std::ranges::all_of( form, []( char c ) { return c >= ' ' && c <= '~'; } ) );
   }
}

TEST( StringForm, DoublesPrintShortestAndReadBackBitByBit ) {
   using Limits = std::numeric_limits<double>;
   std::vector<double> notable = { 0.0,           Limits::denorm_min(), Limits::min(),
                                   Limits::max(), Limits::epsilon(),    Limits::infinity() };
   // Where the shorter of the two notations changes, and with it the way in which they are printed.
   for ( double edge : { 1e-4, 1e-3, 1., 9999., 1e5, 1e6, 1e10, 1e11, 1e15, 1e16, 1e21, 1e22 } ) {
      double below = edge, above = edge;
      for ( int step = 0; step < 20; ++step ) {
         notable.insert( notable.end(), { edge + step, edge - step, edge + step * 0.0001,
                                          below = std::nextafter( below, 0 ),
                                          above = std::nextafter( above, Limits::infinity() ) } );
      }
   }
   std::mt19937_64 random( 2 );
   for ( int i = 0; i < 100000; ++i ) {
      // A short decimal, and the double behind it.
      double const decimal =
         static_cast<double>( random() >> ( random() % 54 + 10 ) ) / std::pow( 10.0, random() % 7 );
      notable.insert( notable.end(), { std::bit_cast<double>( random() ), decimal,
                                       std::nextafter( decimal, Limits::infinity() ) } );
   }
   for ( double magnitude : notable ) {
      for ( double v : { magnitude, -magnitude } ) {
         char shortest[32];
         char const * const end = std::to_chars( shortest, std::end( shortest ), v ).ptr;
         Vel::String const form = stringForm( v );
         if ( std::isnan( v ) ) {
            EXPECT_EQ( form, "nan" );
            continue;
         }
         ASSERT_EQ( form.view(), std::string_view( shortest, end ) );
         ASSERT_EQ( std::bit_cast<uint64_t>( fromStringForm<double>( form ) ),
                    std::bit_cast<uint64_t>( v ) )
            << form;
      }
   }
   EXPECT_TRUE( std::isnan( fromStringForm<double>( "nan" ) ) );
}

/// In a valid form, `valid` becomes `malformed`; the ^ in it is where the parser has to stop.
struct Malformation {
   char const * valid;
   char const * malformed;
   char const * expected;
};

template <typename T>
void expectRefused( std::string form, Malformation const & change ) {
   SCOPED_TRACE( change.malformed );
   std::size_t const at = form.find( change.valid );
   ASSERT_NE( at, std::string::npos );
   form.replace( at, std::string_view( change.valid ).size(), change.malformed );
   std::size_t const position = form.find( '^' );
   ASSERT_NE( position, std::string::npos );
   form.erase( position, 1 );
   try {
      FAIL() << "was read as " << fromStringForm<T>( form );
   } catch ( Vel::ParseException const & error ) {
      EXPECT_EQ( error.position(), position );
      EXPECT_EQ( error.expected(), change.expected );
   }
}

TEST( StringForm, MalformedTextIsRefusedWhereItGoesWrong ) {
   constexpr char const *head = "Value('Sample::All', ** {",
                        *character = "a printing character, an escape or the closing quote";
   constexpr Malformation changes[] = {
      { "Value('Sample::All'", "^Value('Sample::Any'", head },
      { "True", "^true", "True or False" },
      { ", 'byte': 255, 'word': 65535", "^, 'word': 65535, 'byte': 255", ", 'byte': " },
      { "'byte': 255", "'byte': ^256", "an unsigned 8-bit integer" },
      { "18446744073709551615", "^18446744073709551616", "an unsigned 64-bit integer" },
      { "-inf", "inf^inity", ", 'label': " },
      { "-inf", "^-nan", "a double" },
      { "-inf", "^1e400", "a double" },
      { "\\x0a", "^\\q", character },
      { "\\x0a", "\\x^0A", "two hexadecimal digits" },
      { "remote", "^remote2", "a name of Sample::Mode" },
      { "Value('Sample::Point'", "^Value('Vel::U4'", "Value('Sample::Point', ** {" },
      { "15})", "^16})", "a number of 0 to 15" },
      { "15})})", "15})^", "})" },
      { "15})})", "15})})^ ", "the end of the text" },
   };
   for ( Malformation const & change : changes )
      expectRefused<All>( allForm, change );
   constexpr Malformation mapChanges[] = {
      { "0: 256, 9", "0: 256, ^0", "a key that has not been given before" },
      { "'b': ", "^'': ", "a key that has not been given before" },
      { "0: 256", "0^:256", ": " },
      { "'value': 3", "'value': ^30", "a number of 0 to 15" },
   };
   for ( Malformation const & change : mapChanges )
      expectRefused<Maps>( mapsForm, change );
}

} // namespace
} // namespace Sample
