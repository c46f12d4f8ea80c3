#pragma once

#include <Vel/Exception.h>
#include <Vel/TypeName.h>
#include <Vel/Value.h>

#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <memory>
#include <system_error>

/// The string form of values, and its strict parser:
///
///    integer   decimal                          double   shortest that reads back, `-inf`, `nan`
///    bool      True, False                      enum     its name
///    text      '…' with \\, \' and \xHH for what does not print
///    map       {key: value, key: value}
///    value     Value('Xcvr::TuningValue', ** {'valid': True, 'val': 3, 'moduleDefault': False})
///
/// Included by the .cpp files that define model types.
namespace Vel {

namespace Internal {

/// Bytes of text in the making: on the stack until they outgrow it.
class TextBuffer {
 public:
   TextBuffer() = default;
   TextBuffer( TextBuffer const & ) = delete;
   TextBuffer & operator=( TextBuffer const & ) = delete;

   /// Where the next `count` bytes go; `used` says afterwards how far they went.
   [[gnu::always_inline]] char * room( std::size_t count ) {
      if ( static_cast<std::size_t>( limit_ - at_ ) < count ) [[unlikely]] {
         grow( count );
      }
      return at_;
   }
   void used( char * end ) { at_ = end; }
   void append( std::string_view text ) {
      char * to = room( text.size() );
      text.copy( to, text.size() );
      used( to + text.size() );
   }
   [[nodiscard]] std::string_view view() const {
      return { start_, static_cast<std::size_t>( at_ - start_ ) };
   }

 private:
   VEL_API void grow( std::size_t count );

   char inside_[1024];
   std::unique_ptr<char[]> outside_;
   char * start_ = inside_;
   char * at_ = inside_;
   char * limit_ = inside_ + sizeof inside_;
};

/// Writes the shortest decimal that reads back as `v`; at most 24 bytes.
VEL_API char * printDouble( char * to, double v );
VEL_API void printText( TextBuffer & out, std::string_view text );

/// A place in a string form that is being read.
class TextCursor {
 public:
   explicit TextCursor( std::string_view text )
      : begin_( text.data() ), at_( begin_ ), end_( begin_ + text.size() ) {}

   [[nodiscard]] std::string_view rest() const {
      return { at_, static_cast<std::size_t>( end_ - at_ ) };
   }
   void skip( std::size_t count ) { at_ += count; }
   [[gnu::always_inline]] bool take( std::string_view literal ) {
      if ( static_cast<std::size_t>( end_ - at_ ) < literal.size() ||
           std::memcmp( at_, literal.data(), literal.size() ) != 0 ) {
         return false;
      }
      at_ += literal.size();
      return true;
   }
   [[gnu::always_inline]] void expect( std::string_view literal ) {
      if ( !take( literal ) ) [[unlikely]] {
         fail( literal, 0 );
      }
   }
   /// The identifier that starts here: letters, digits and underscores.
   VEL_API std::string_view word();
   /// Throws for what should have stood `back` bytes before this place.
   [[noreturn]] VEL_API void fail( std::string_view expected, std::size_t back = 0 ) const;

 private:
   char const * begin_;
   char const * at_;
   char const * end_;
};

/// Whether a number starts with a zero that it need not have: 007, or -0 of an integer.
[[nodiscard]] constexpr bool hasLeadingZero( std::string_view number ) {
   auto const isDigit = []( char c ) { return c >= '0' && c <= '9'; };
   return number.starts_with( "-0" ) ||
          ( number.size() > 1 && number[0] == '0' && isDigit( number[1] ) );
}
VEL_API void parseDouble( TextCursor & in, double & v );
VEL_API String parseText( TextCursor & in );
VEL_API uint32_t parseEnumerator( TextCursor & in, EnumModel const & model );

/// The start of a value's form, as a literal: Value('Xcvr::DomInfo', ** {
template <typename T>
inline constexpr auto valueHead = [] {
   constexpr std::string_view lead = "Value('", name = typeName<T>(), trail = "', ** {";
   std::array<char, lead.size() + name.size() + trail.size()> head{};
   char * at = head.data();
   for ( std::string_view part : { lead, name, trail } ) {
      for ( char c : part ) {
         *at++ = c;
      }
   }
   return head;
}();

template <typename T>
constexpr std::string_view valueHeadView{ valueHead<T>.data(), valueHead<T>.size() };

template <typename T>
[[gnu::always_inline]] inline void print( TextBuffer & out, T const & v );

template <typename T>
struct FieldPrinter {
   template <std::size_t N, typename F>
   [[gnu::always_inline]] void operator()( char const ( &label )[N], F T::*field ) {
      // The first label's separator is left out.
      std::size_t const lead = first ? 2 : 0;
      char * to = out.room( N );
      std::memcpy( to, label + lead, N - 1 - lead );
      out.used( to + N - 1 - lead );
      first = false;
      print( out, v.*field );
   }
   TextBuffer & out;
   T const & v;
   bool first = true;
};

template <typename T>
[[gnu::always_inline]] inline void print( TextBuffer & out, T const & v ) {
   constexpr std::size_t longestNumber = 32;
   if constexpr ( std::is_same_v<T, bool> ) {
      out.append( v ? "True" : "False" );
   } else if constexpr ( std::is_same_v<T, double> ) {
      out.used( printDouble( out.room( longestNumber ), v ) );
   } else if constexpr ( std::is_integral_v<T> ) {
      char * to = out.room( longestNumber );
      out.used( std::to_chars( to, to + longestNumber, v ).ptr );
   } else if constexpr ( std::is_same_v<T, String> ) {
      printText( out, v );
   } else if constexpr ( ModelEnum<T> ) {
      out.append( velEnumModel( v ).stringValue( static_cast<uint32_t>( v ) ) );
   } else if constexpr ( ModelValue<T> ) {
      out.append( valueHeadView<T> );
      T::velFields( FieldPrinter<T>{ out, v } );
      out.append( "})" );
   } else {
      char const * separator = "{";
      for ( auto const & [key, value] : v ) {
         out.append( separator );
         print( out, key );
         out.append( ": " );
         print( out, value );
         separator = ", ";
      }
      out.append( v.empty() ? "{}" : "}" );
   }
}

template <typename T>
void parse( TextCursor & in, T & v );

template <typename T>
struct FieldParser {
   template <std::size_t N, typename F>
   [[gnu::always_inline]] void operator()( char const ( &label )[N], F T::*field ) {
      std::size_t const lead = first ? 2 : 0;
      in.expect( { label + lead, N - 1 - lead } );
      first = false;
      parse( in, v.*field );
   }
   TextCursor & in;
   T & v;
   bool first = true;
};

template <typename T>
void parse( TextCursor & in, T & v ) {
   if constexpr ( std::is_same_v<T, bool> ) {
      v = in.take( "True" );
      if ( !v && !in.take( "False" ) ) {
         in.fail( "True or False" );
      }
   } else if constexpr ( std::is_same_v<T, double> ) {
      parseDouble( in, v );
   } else if constexpr ( std::is_integral_v<T> ) {
      std::string_view const text = in.rest();
      auto const [end, error] = std::from_chars( text.data(), text.data() + text.size(), v );
      if ( error != std::errc{} || hasLeadingZero( text ) ) {
         constexpr unsigned bits = 8 * sizeof( T );
         in.fail( ( std::is_signed_v<T> ? "a signed " : "an unsigned " ) + std::to_string( bits ) +
                  "-bit integer" );
      }
      in.skip( static_cast<std::size_t>( end - text.data() ) );
   } else if constexpr ( std::is_same_v<T, String> ) {
      v = parseText( in );
   } else if constexpr ( ModelEnum<T> ) {
      v = static_cast<T>( parseEnumerator( in, velEnumModel( v ) ) );
   } else if constexpr ( ModelValue<T> ) {
      in.expect( valueHeadView<T> );
      T::velFields( FieldParser<T>{ in, v } );
      if constexpr ( requires { T::velBound; } ) {
         if ( v.value() > T::velBound ) {
            in.fail( "a number of 0 to " + std::to_string( T::velBound ),
                     std::to_string( v.value() ).size() );
         }
      }
      in.expect( "})" );
   } else {
      v.clear();
      in.expect( "{" );
      if ( in.take( "}" ) ) {
         return;
      }
      do {
         typename T::key_type key{};
         typename T::mapped_type value{};
         TextCursor const atKey = in;
         parse( in, key );
         in.expect( ": " );
         parse( in, value );
         if ( !v.emplace( std::move( key ), std::move( value ) ).second ) {
            atKey.fail( "a key that has not been given before" );
         }
      } while ( in.take( ", " ) );
      in.expect( "}" );
   }
}

/// Whether a value's field is a collection, at whatever depth.
template <typename T>
constexpr bool hasCollection = false;
template <typename K, typename V, typename... Rest>
constexpr bool hasCollection<std::map<K, V, Rest...>> = true;
template <ModelValue T>
constexpr bool hasCollection<T> = [] {
   bool any = false;
   T::velFields( [&any]<typename F>( auto const &, F T::* ) { any = any || hasCollection<F>; } );
   return any;
}();

} // namespace Internal

/// The string form of anything that a model type's field can be.
template <typename T>
String stringForm( T const & v ) {
   Internal::TextBuffer out;
   Internal::print( out, v );
   return out.view();
}

/// The value of a string form; throws ParseException with the place and what was expected there.
template <typename T>
void fromStringForm( std::string_view text, T & v ) {
   Internal::TextCursor in( text );
   Internal::parse( in, v );
   if ( !in.rest().empty() ) {
      in.fail( "the end of the text" );
   }
}
template <typename T>
T fromStringForm( std::string_view text ) {
   T v{};
   fromStringForm( text, v );
   return v;
}

} // namespace Vel
