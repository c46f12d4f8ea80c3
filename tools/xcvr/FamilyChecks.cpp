#include "tools/xcvr/FamilyChecks.h"

#include <cstdint>
#include <fmt/format.h>

namespace XcvrTool {

void findMissingPage( std::vector<std::string> & found, Module const & module,
                      std::string_view label, std::string_view contents ) {
   constexpr std::size_t whole = 128;
   std::string const * page = module.image().page( label );
   if ( !page ) {
      found.push_back(
         fmt::format( "The module has page {} ({}), but the image lacks it", label, contents ) );
   } else if ( page->size() < whole ) {
      found.push_back( fmt::format( "The image has {} of the {} bytes of page {} ({})",
                                    page->size(), whole, label, contents ) );
   }
}

std::vector<std::string> ofTwoIdentifiers( Module const & module ) {
   std::string const * lower = module.image().page( "lower" );
   std::string const * upper = module.image().page( "00h" );
   if ( !lower || !upper || lower->front() == upper->front() ) {
      return {};
   }
   return { fmt::format( "Byte 0 has the identifier {:02x}h, byte 128 has {:02x}h, and they should "
                         "be the same",
                         static_cast<std::uint8_t>( lower->front() ),
                         static_cast<std::uint8_t>( upper->front() ) ) };
}

} // namespace XcvrTool
