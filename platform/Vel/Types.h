#pragma once

#include <cstdint>
#include <type_traits>

namespace Vel {

/// A time stamp or duration in seconds.
using Seconds = double;

/// How a value of type T is handed in and out of accessors: small plain ones by value.
template <typename T>
using In = std::conditional_t<std::is_trivially_copyable_v<T> && sizeof( T ) <= 16, T, T const &>;

/// How a value of type T is handed over for keeping: what owns memory is moved on from the parameter.
template <typename T>
using Give = std::conditional_t<std::is_trivially_copyable_v<T>, In<T>, T>;

} // namespace Vel
