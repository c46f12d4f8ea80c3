#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Bytes as text, "56 45 4c".
inline std::string hex( std::string_view bytes ) {
   std::string text;
   for ( char c : bytes ) {
      auto const byte = static_cast<uint8_t>( c );
      text += text.empty() ? "" : " ";
      text += { "0123456789abcdef"[byte >> 4], "0123456789abcdef"[byte & 15] };
   }
   return text;
}

/// The bytes of such a text, with blanks or without.
inline std::string unhex( std::string_view text ) {
   std::string bytes;
   for ( ; !text.empty(); text.remove_prefix( text[0] == ' ' ? 1 : 2 ) ) {
      if ( text[0] != ' ' ) {
         bytes += static_cast<char>( std::stoi( std::string( text.substr( 0, 2 ) ), nullptr, 16 ) );
      }
   }
   return bytes;
}
