#pragma once

#include <string_view>

namespace Vel {

namespace Internal {

/// The compiler's own rendering of a function whose template argument is T.
template <typename T>
constexpr std::string_view rendered() {
   return __PRETTY_FUNCTION__;
}

} // namespace Internal

/// The name of a type with its namespaces, such as "Xcvr::DomInfo".
template <typename T>
constexpr std::string_view typeName() {
   // What surrounds the name is the same for every type, so `int` tells where it stands.
   constexpr std::string_view probe = Internal::rendered<int>();
   constexpr std::size_t lead = probe.find( "T = int" ) + 4;
   constexpr std::size_t trail = probe.size() - lead - 3;
   constexpr std::string_view whole = Internal::rendered<T>();
   return whole.substr( lead, whole.size() - lead - trail );
}

} // namespace Vel
