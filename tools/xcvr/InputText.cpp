#include "tools/xcvr/InputText.h"

#include <algorithm>
#include <charconv>

namespace XcvrTool {

namespace {

constexpr char blanks[] = " \t";

} // namespace

std::optional<Line> Lines::next() {
   if ( rest_.empty() )
      return std::nullopt;
   std::size_t const size = std::min( rest_.find( '\n' ), rest_.size() );
   bool const hasEnd = size < rest_.size();
   std::string_view text = rest_.substr( 0, size );
   rest_.remove_prefix( std::min( size + 1, rest_.size() ) );
   if ( text.ends_with( '\r' ) )
      text.remove_suffix( 1 );
   return Line{ text, ++number_, hasEnd };
}

std::string lineText( Line const & line ) {
   return "line " + std::to_string( line.number );
}

std::string hexText( std::size_t value, std::size_t digits ) {
   char buffer[2 * sizeof value];
   char const * const end = std::to_chars( buffer, buffer + sizeof buffer, value, 16 ).ptr;
   auto const size = static_cast<std::size_t>( end - buffer );
   return std::string( digits > size ? digits - size : 0, '0' ) + std::string( buffer, size );
}

std::string_view trimmed( std::string_view text ) {
   text.remove_prefix( std::min( text.find_first_not_of( blanks ), text.size() ) );
   return text.substr( 0, text.find_last_not_of( blanks ) + 1 );
}

std::string_view withoutComment( std::string_view text ) {
   return text.substr( 0, text.find( '#' ) );
}

} // namespace XcvrTool
