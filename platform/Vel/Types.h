#pragma once

#include <cstdint>
#include <type_traits>

namespace Vel {

/// A time stamp or duration in seconds.
using Seconds = double;

namespace Internal {
// A class, as the compiler works out its members once for each type.
template <typename T>
struct Passing {
   using In =
      std::conditional_t<std::is_trivially_copyable_v<T> && sizeof( T ) <= 16, T, T const &>;
};
} // namespace Internal

/// How a value of type T is handed in and out of accessors: small plain ones by value.
template <typename T>
using In = typename Internal::Passing<T>::In;

} // namespace Vel
