#include <Vel/StringForm.h>

#include <algorithm>

namespace Vel::Internal {

void TextBuffer::grow( std::size_t count ) {
   std::size_t const size = view().size();
   std::size_t const capacity = std::max( 2 * size, size + count );
   std::unique_ptr<char[]> wider( new char[capacity] );
   std::memcpy( wider.get(), start_, size );
   outside_ = std::move( wider );
   start_ = outside_.get();
   at_ = start_ + size;
   limit_ = start_ + capacity;
}

namespace {

char * printDigits( char * to, uint64_t number ) {
   return std::to_chars( to, to + 20, number ).ptr;
}

/// Most monitored values are short decimals such as 3.3 or -12.5. Where v is the double nearest to
/// such a decimal of at most four places, its digits are found with integers: the same text as the
/// general algorithm's, in a fraction of the time. Returns null for any other value.
char * printShortDecimal( char * to, double v ) {
   constexpr double scale = 10000;
   double const magnitude = std::fabs( v );
   // Outside this range the general algorithm may choose an exponent for the shorter text.
   if ( !( magnitude >= 0.001 && magnitude < 1e11 ) ) {
      return nullptr;
   }
   double const scaled = magnitude * scale;
   auto const digits = static_cast<uint64_t>( scaled );
   // Division of two exact numbers rounds correctly: the quotient is v only if v is nearest.
   if ( static_cast<double>( digits ) != scaled || scaled / scale != magnitude ) {
      return nullptr;
   }
   uint64_t const whole = digits / 10000;
   auto fraction = static_cast<uint32_t>( digits % 10000 );
   if ( fraction == 0 && whole >= 100000 ) {
      return nullptr;
   }
   if ( v < 0 ) {
      *to++ = '-';
   }
   to = printDigits( to, whole );
   if ( fraction != 0 ) {
      *to++ = '.';
      for ( uint32_t place = 1000; fraction != 0; place /= 10 ) {
         *to++ = static_cast<char>( '0' + fraction / place );
         fraction %= place;
      }
   }
   return to;
}

} // namespace

char * printDouble( char * to, double v ) {
   if ( char * end = printShortDecimal( to, v ) ) {
      return end;
   }
   if ( std::isnan( v ) ) {
      v = std::fabs( v ); // the sign of a NaN says nothing
   }
   return std::to_chars( to, to + 32, v ).ptr;
}

namespace {

bool printsAsItIs( char c ) {
   return c >= ' ' && c <= '~' && c != '\'' && c != '\\';
}

constexpr std::string_view hexDigits = "0123456789abcdef";

} // namespace

void printText( TextBuffer & out, std::string_view text ) {
   char * to = out.room( 4 * text.size() + 2 ); // at the most `\xHH` a byte
   *to++ = '\'';
   for ( char c : text ) {
      if ( printsAsItIs( c ) ) {
         *to++ = c;
         continue;
      }
      *to++ = '\\';
      if ( c == '\'' || c == '\\' ) {
         *to++ = c;
         continue;
      }
      auto const byte = static_cast<unsigned char>( c );
      *to++ = 'x';
      *to++ = hexDigits[byte >> 4];
      *to++ = hexDigits[byte & 15];
   }
   *to++ = '\'';
   out.used( to );
}

void TextCursor::fail( std::string_view expected, std::size_t back ) const {
   throw ParseException( static_cast<std::size_t>( at_ - begin_ ) - back, expected );
}

std::string_view TextCursor::word() {
   auto const inWord = []( char c ) {
      return ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' ) || ( c >= '0' && c <= '9' ) ||
             c == '_';
   };
   char const * start = at_;
   at_ = std::find_if_not( at_, end_, inWord );
   return { start, static_cast<std::size_t>( at_ - start ) };
}

namespace {

/// Whether a number starts here, as the form writes it: digits, and no 0 in front of another.
bool startsNumber( char const * at, char const * end ) {
   auto const digitAt = [end]( char const * c ) { return c < end && *c >= '0' && *c <= '9'; };
   char const * const digits = at + ( at < end && *at == '-' );
   return digitAt( digits ) && !( *digits == '0' && digitAt( digits + 1 ) );
}

void parseNoNumber( TextCursor & in, double & v ) {
   constexpr double infinity = std::numeric_limits<double>::infinity();
   if ( in.take( "-inf" ) ) {
      v = -infinity;
   } else if ( in.take( "inf" ) ) {
      v = infinity;
   } else if ( in.take( "nan" ) ) {
      v = std::numeric_limits<double>::quiet_NaN();
   } else {
      in.fail( "a double" );
   }
}

} // namespace

void parseDouble( TextCursor & in, double & v ) {
   std::string_view const text = in.rest();
   char const * const start = text.data();
   char const * const limit = start + text.size();
   // from_chars also takes words such as "infinity"; only our own are part of the form.
   if ( !startsNumber( start, limit ) ) [[unlikely]] {
      return parseNoNumber( in, v );
   }
   auto const [end, error] = std::from_chars( start, limit, v );
   if ( error != std::errc{} || end[-1] == '.' ) [[unlikely]] {
      in.fail( "a double" );
   }
   in.skip( static_cast<std::size_t>( end - start ) );
}

String parseText( TextCursor & in ) {
   in.expect( "'" );
   std::string_view const text = in.rest();
   std::size_t const plain = static_cast<std::size_t>(
      std::find_if_not( text.begin(), text.end(), printsAsItIs ) - text.begin() );
   if ( plain < text.size() && text[plain] == '\'' ) {
      in.skip( plain + 1 );
      return { text.data(), plain };
   }
   TextBuffer bytes;
   for ( ;; ) {
      std::string_view const rest = in.rest();
      if ( in.take( "'" ) ) {
         return bytes.view();
      }
      if ( !rest.empty() && printsAsItIs( rest[0] ) ) {
         bytes.append( rest.substr( 0, 1 ) );
         in.skip( 1 );
      } else if ( in.take( "\\'" ) || in.take( "\\\\" ) ) {
         bytes.append( rest.substr( 1, 1 ) );
      } else if ( in.take( "\\x" ) ) {
         std::size_t const high =
            rest.size() < 4 ? std::string_view::npos : hexDigits.find( rest[2] );
         std::size_t const low =
            rest.size() < 4 ? std::string_view::npos : hexDigits.find( rest[3] );
         if ( high == std::string_view::npos || low == std::string_view::npos ) {
            in.fail( "two hexadecimal digits" );
         }
         char const byte = static_cast<char>( high << 4 | low );
         bytes.append( { &byte, 1 } );
         in.skip( 2 );
      } else {
         in.fail( "a printing character, an escape or the closing quote" );
      }
   }
}

uint32_t parseEnumerator( TextCursor & in, EnumModel const & model ) {
   std::string_view const name = in.word();
   if ( Enumerator const * found = model.byName( name ) ) {
      return found->code;
   }
   in.fail( "a name of " + std::string( model.typeName ), name.size() );
}

} // namespace Vel::Internal
