#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdlib>

/// Ends the run, which then counts as a crash, where what holds for every input does not.
inline void require( bool condition ) {
   if ( !condition ) {
      std::abort();
   }
}

/// How much of a field there is on a page.
template <typename Page>
std::size_t widthOnPage( Page const & page, std::size_t at, std::size_t width ) {
   return page.size() > at ? std::min( width, page.size() - at ) : 0;
}

/// The media type is that of a rule of the family's table.
template <typename Contents, typename Rules>
void requireMediaTypeOfARule( Contents const & contents, Rules const & rules ) {
   auto const decision = contents.mediaTypeDecision();
   require( decision.rule < rules.size() );
   require( decision.mediaType == rules[decision.rule].mediaType );
   require( decision.why == rules[decision.rule].why );
   require( contents.mediaType() == decision.mediaType );
}
