#pragma once

#include "core/DecisionTable.h"

#include <Xcvr/XcvrMediaTypeRules.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

// A module family's media type decision: a table of rules, most often on the page of its
// identification.
namespace Xcvr {

struct MediaTypePageRule {
   std::string_view why;
   bool ( *matches )( PageView );
   MediaType mediaType;
};

// Of the first rule of a table, and of the last.
constexpr bool isEmpty( PageView page ) {
   return page.empty();
}
constexpr bool isAnything( PageView ) {
   return true;
}

/// The rule that decides. The rules read nothing behind the first `length` bytes. A page that
/// reaches so far is handed on with that length, a constant: the compiler then drops every bounds
/// check of the predicates.
template <auto const & rules, std::size_t length>
constexpr MediaTypePageRule const & decisiveRule( PageView page ) {
   return page.has( 0, length ) ? firstMatch<rules>( page.first( length ) )
                                : firstMatch<rules>( page );
}

template <auto const & rules>
constexpr MediaTypeDecision mediaTypeDecision( auto const & rule ) {
   return { rule.mediaType, static_cast<std::size_t>( &rule - rules ), rule.why };
}

/// What a table says to the public: not how it finds out.
template <auto const & rules>
constexpr auto publishedRules = [] {
   std::array<MediaTypeRule, std::size( rules )> published{};
   std::transform( std::begin( rules ), std::end( rules ), published.begin(),
                   []( auto const & rule ) {
                      return MediaTypeRule{ rule.why, rule.mediaType };
                   } );
   return published;
}();

} // namespace Xcvr
