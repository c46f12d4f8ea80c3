#include "tests/platform/SampleTypes.h"

#include <Vel/Define.h>

#include <gtest/gtest.h>

#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
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
   struct {
      std::string form, expected;
   } const cases[] = {
      { std::string( stringValue( filledAll() ) ), allForm },
      { std::string( stringValue( All() ) ),
        "Value('Sample::All', ** {'flag': False, 'byte': 0, 'word': 0, 'shift': 0, 'count': 0, "
        "'total': 0, 'level': 0, 'label': '', 'mode': off, "
        "'point': Value('Sample::Point', ** {'x': 0, 'mode': off}), "
        "'nibble': Value('Vel::U4', ** {'value': 0})})" },
      { std::string( stringValue( filledMaps() ) ), mapsForm },
      { std::string( stringValue( Maps() ) ),
        "Value('Sample::Maps', ** {'sizes': {}, 'points': {}, 'labels': {}})" },
   };
   for ( auto const & [form, expected] : cases )
      EXPECT_EQ( form, expected );
   std::ostringstream out;
   out << filledAll();
   EXPECT_EQ( out.str(), allForm );
   EXPECT_EQ( All( allForm ), filledAll() );
   EXPECT_EQ( fromStringForm<Maps>( mapsForm ), filledMaps() );
   EXPECT_EQ( fromStringForm<Maps>( stringForm( Maps() ) ), Maps() );
}

TEST( StringForm, EveryByteSurvivesInATextAndPrintsAsAscii ) {
   std::string all;
   for ( int byte = 0; byte < 256; ++byte ) {
      std::string const one( 1, static_cast<char>( byte ) );
      all += one;
      EXPECT_EQ( fromStringForm<Vel::String>( stringForm( Vel::String( one ) ) ), one ) << byte;
   }
   std::string long_; // well beyond what is printed on the stack
   for ( int i = 0; i < 40; ++i )
      long_ += all.substr( static_cast<std::size_t>( 6 * i ) ) + std::string( 100, 'x' );
   for ( std::string const & text : { std::string(), all, long_ } ) {
      Vel::String const form = stringForm( Vel::String( text ) );
      EXPECT_EQ( fromStringForm<Vel::String>( form ), text );
      for ( char c : form )
         ASSERT_TRUE( c >= ' ' && c <= '~' );
   }
}

// ---------------------------------------------------------------------------------------------
// Doubles

std::vector<double> notableDoubles() {
   using Limits = std::numeric_limits<double>;
   std::vector<double> found = { 0.0,           Limits::denorm_min(), Limits::min(),
                                 Limits::max(), Limits::epsilon(),    Limits::infinity() };
   // Where the shorter of the two notations changes, and with it the way in which they are printed.
   for ( double edge :
         { 0.0001, 0.001, 1.0, 9999.0, 1e5, 1e6, 1e10, 1e11, 1e15, 1e16, 1e21, 1e22 } ) {
      double below = edge, above = edge;
      for ( int step = 0; step < 20; ++step ) {
         found.push_back( below = std::nextafter( below, 0 ) );
         found.push_back( above = std::nextafter( above, Limits::infinity() ) );
         for ( double offset : { 0.0, 0.0001, 0.5, 1.0, 10.0 } ) {
            found.push_back( edge + step * offset );
            found.push_back( edge - step * offset );
         }
      }
   }
   std::mt19937_64 random( 2 );
   for ( int i = 0; i < 100000; ++i ) {
      found.push_back( std::bit_cast<double>( random() ) );
      // A short decimal, the double before it and the double after it.
      double const decimal =
         static_cast<double>( random() >> ( random() % 54 + 10 ) ) / std::pow( 10.0, random() % 7 );
      found.insert( found.end(), { decimal, std::nextafter( decimal, 0 ),
                                   std::nextafter( decimal, Limits::infinity() ) } );
   }
   return found;
}

TEST( StringForm, DoublesPrintShortestAndReadBackBitByBit ) {
   for ( double magnitude : notableDoubles() )
      for ( double v : { magnitude, -magnitude } ) {
         if ( std::isnan( v ) )
            continue;
         char shortest[32];
         char const * const end = std::to_chars( shortest, std::end( shortest ), v ).ptr;
         Vel::String const form = stringForm( v );
         ASSERT_EQ( form.view(), std::string_view( shortest, end ) );
         ASSERT_EQ( std::bit_cast<uint64_t>( fromStringForm<double>( form ) ),
                    std::bit_cast<uint64_t>( v ) )
            << form;
      }
}

TEST( StringForm, DoublesThatAreNoDecimals ) {
   double const nan = std::numeric_limits<double>::quiet_NaN();
   EXPECT_EQ( stringForm( nan ), "nan" );
   EXPECT_EQ( stringForm( -nan ), "nan" );
   EXPECT_TRUE( std::isnan( fromStringForm<double>( "nan" ) ) );
   EXPECT_EQ( stringForm( -0.0 ), "-0" );
   EXPECT_EQ( fromStringForm<double>( "inf" ), std::numeric_limits<double>::infinity() );
   EXPECT_EQ( fromStringForm<double>( "-inf" ), -std::numeric_limits<double>::infinity() );
}

// ---------------------------------------------------------------------------------------------
// Malformed text

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
      { "Value('Sample::All'", "^ Value('Sample::All'", head },
      { "** {'flag'", "** {^ 'flag'", "'flag': " },
      { "True", "^true", "True or False" },
      { "True", "True^False", ", 'byte': " },
      { ", 'byte': 255", "^", ", 'byte': " },
      { ", 'byte': 255, 'word': 65535", "^, 'word': 65535, 'byte': 255", ", 'byte': " },
      { "'byte': 255", "'byte': ^256", "an unsigned 8-bit integer" },
      { "'byte': 255", "'byte': ^+1", "an unsigned 8-bit integer" },
      { "'byte': 255", "'byte': ^ 255", "an unsigned 8-bit integer" },
      { "'byte': 255", "'byte': 255^.0", ", 'word': " },
      { "'byte': 255", "'byte': 0^xff", ", 'word': " },
      { "'word': 65535", "'word': ^65536", "an unsigned 16-bit integer" },
      { "-32768", "^32768", "a signed 16-bit integer" },
      { "19088743", "^4294967296", "an unsigned 32-bit integer" },
      { "18446744073709551615", "^18446744073709551616", "an unsigned 64-bit integer" },
      { "-inf", "^-Inf", "a double" },
      { "-inf", "inf^inity", ", 'label': " },
      { "-inf", "^-nan", "a double" },
      { "-inf", "^+1", "a double" },
      { "-inf", "^.5", "a double" },
      { "-inf", "^1e400", "a double" },
      { "-inf", "^", "a double" },
      { "-inf", "0^x10", ", 'label': " },
      { "'it", "^it", "'" },
      { "\\x0a", "^\\q", character },
      { "\\x0a", "^\n", character },
      { "\\x0a", "\\x^0A", "two hexadecimal digits" },
      { "\\x0a", "\\x^", "two hexadecimal digits" },
      { "remote", "^Remote", "a name of Sample::Mode" },
      { "remote", "^remote2", "a name of Sample::Mode" },
      { "remote", "^8", "a name of Sample::Mode" },
      { "remote", "^'remote'", "a name of Sample::Mode" },
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
      { "9: 1", "^", "an unsigned 8-bit integer" },
      { "{0: ", "{^, 0: ", "an unsigned 8-bit integer" },
      { "0: 256", "0^:256", ": " },
      { "256, 9", "256^,9", "}" },
      { "{0: ", "^0: ", "{" },
      { "'value': 3", "'value': ^30", "a number of 0 to 15" },
      { "'three'}})", "'three'}^)", "})" },
   };
   for ( Malformation const & change : mapChanges )
      expectRefused<Maps>( mapsForm, change );
}

template <typename T>
void expectRefusalOrValue( std::string_view text ) {
   T value;
   try {
      value = fromStringForm<T>( text );
   } catch ( Vel::ParseException const & error ) {
      ASSERT_LE( error.position(), text.size() );
      return;
   }
   ASSERT_EQ( fromStringForm<T>( stringForm( value ) ), value ) << text;
}

template <typename T>
void tamperWith( std::string const & form ) {
   for ( std::size_t size = 0; size < form.size(); ++size ) {
      // Vectors, so that a sanitizer sees a read beyond the end.
      std::vector<char> text( form.data(), form.data() + size );
      EXPECT_THROW( fromStringForm<T>( { text.data(), size } ), Vel::ParseException ) << size;
   }
   std::vector<char> text( form.begin(), form.end() );
   for ( std::size_t at = 0; at < form.size(); ++at ) {
      std::string bytes( "09-.en'\\{},: x\0\xff", 17 );
      for ( int bit = 0; bit < 8; ++bit )
         bytes += static_cast<char>( form[at] ^ 1 << bit );
      for ( char byte : bytes ) {
         text[at] = byte;
         expectRefusalOrValue<T>( { text.data(), text.size() } );
      }
      text[at] = form[at];
   }
}

TEST( StringForm, CutOrChangedAnywhereItIsRefusedOrAnotherValue ) {
   tamperWith<All>( allForm );
   tamperWith<Maps>( mapsForm );
}

} // namespace
} // namespace Sample
