#include "tools/xcvr/Text.h"

#include <algorithm>
#include <cstdint>

namespace XcvrTool {

namespace {

/// The length of the valid UTF-8 sequence at the front; 0 if there is none.
std::size_t utf8Length( std::string_view bytes ) {
   auto const byte = [&]( std::size_t at ) { return static_cast<std::uint8_t>( bytes[at] ); };
   // The range of the second byte is narrower after some first bytes: no overlong forms, no
   // surrogates, nothing beyond U+10FFFF.
   struct Form {
      std::uint8_t first, last, secondFrom, secondTo;
      std::size_t length;
   };
   static constexpr Form forms[] = {
      { 0xc2, 0xdf, 0x80, 0xbf, 2 }, { 0xe0, 0xe0, 0xa0, 0xbf, 3 }, { 0xe1, 0xec, 0x80, 0xbf, 3 },
      { 0xed, 0xed, 0x80, 0x9f, 3 }, { 0xee, 0xef, 0x80, 0xbf, 3 }, { 0xf0, 0xf0, 0x90, 0xbf, 4 },
      { 0xf1, 0xf3, 0x80, 0xbf, 4 }, { 0xf4, 0xf4, 0x80, 0x8f, 4 },
   };
   if ( byte( 0 ) < 0x80 ) {
      return 1;
   }
   for ( Form const & form : forms ) {
      if ( byte( 0 ) < form.first || byte( 0 ) > form.last || bytes.size() < form.length ||
           byte( 1 ) < form.secondFrom || byte( 1 ) > form.secondTo ) {
         continue;
      }
      auto const rest = bytes.substr( 2, form.length - 2 );
      bool const continues =
         std::ranges::all_of( rest, []( char c ) { return ( c & 0xc0 ) == 0x80; } );
      return continues ? form.length : 0;
   }
   return 0;
}

} // namespace

std::string Style::heading( std::string_view text ) const {
   return rendered( text, "\x1b[1m" );
}

std::string Style::warning( std::string_view text ) const {
   return rendered( text, "\x1b[33m" );
}

std::string Style::alarm( std::string_view text ) const {
   return rendered( text, "\x1b[31m" );
}

std::string Style::rendered( std::string_view text, std::string_view code ) const {
   return colour ? std::string( code ) + std::string( text ) + "\x1b[0m" : std::string( text );
}

std::string_view unpadded( std::string_view text ) {
   constexpr std::string_view padding( " \0", 2 );
   return text.substr( 0, text.find_last_not_of( padding ) + 1 );
}

std::string printable( std::string_view bytes ) {
   std::string text( bytes );
   std::ranges::replace_if(
      text, []( char c ) { return c < ' ' || c > '~'; }, '_' );
   return text;
}

std::string shownFileName( std::string_view name ) {
   std::string text;
   while ( !name.empty() ) {
      std::size_t const length = utf8Length( name );
      std::string_view const character = name.substr( 0, length );
      // Those of ASCII, and U+0080 to U+009F.
      bool const isControl = length == 1   ? character < " " || character == "\x7f"
                             : length == 2 ? character < "\xc2\xa0"
                                           : length == 0;
      text += isControl ? "?" : character;
      name.remove_prefix( std::max<std::size_t>( length, 1 ) );
   }
   return text.empty() ? "\"\"" : text;
}

std::string utf8( std::string_view bytes ) {
   std::string text;
   while ( !bytes.empty() ) {
      std::size_t const length = utf8Length( bytes );
      if ( length > 0 ) {
         text += bytes.substr( 0, length );
      } else {
         auto const byte = static_cast<std::uint8_t>( bytes[0] );
         text += static_cast<char>( 0xc0 | byte >> 6 );
         text += static_cast<char>( 0x80 | ( byte & 0x3f ) );
      }
      bytes.remove_prefix( std::max<std::size_t>( length, 1 ) );
   }
   return text;
}

std::string joined( std::vector<std::string> const & texts ) {
   std::string whole;
   for ( std::string const & text : texts ) {
      whole += ( whole.empty() ? "" : ", " ) + text;
   }
   return whole.empty() ? "none" : whole;
}

std::vector<std::string> wrapped( std::string_view text, std::size_t width ) {
   std::vector<std::string> lines;
   while ( text.size() > width ) {
      std::string_view const room = text.substr( 0, width + 1 );
      std::size_t const comma = room.rfind( ", " );
      std::size_t end = comma != std::string_view::npos ? comma + 1 : room.rfind( ' ' );
      if ( end == std::string_view::npos ) {
         end = text.find( ' ', width );
      }
      if ( end == std::string_view::npos ) {
         break;
      }
      lines.emplace_back( text.substr( 0, end ) );
      text.remove_prefix( end + 1 );
   }
   lines.emplace_back( text );
   return lines;
}

} // namespace XcvrTool
