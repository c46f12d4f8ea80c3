#pragma once

#include <cstddef>
#include <iterator>
#include <utility>

// Decision tables: an ordered array of rules, each with a predicate `matches`; the first rule that
// matches decides.
namespace Xcvr {

/// The first rule that matches. The last rule has to match always. The table is a template
/// argument, so every predicate is called directly and inlined: as fast as a chain of ifs.
template <auto const & rules, typename Subject, std::size_t... i>
constexpr auto const & firstMatch( Subject subject, std::index_sequence<i...> ) {
   auto const * matched = &rules[sizeof...( i ) - 1];
   static_cast<void>( ( ( rules[i].matches( subject ) && ( matched = &rules[i], true ) ) || ... ) );
   return *matched;
}

template <auto const & rules, typename Subject>
constexpr auto const & firstMatch( Subject subject ) {
   return firstMatch<rules>( subject, std::make_index_sequence<std::size( rules )>() );
}

} // namespace Xcvr
