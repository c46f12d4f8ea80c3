#pragma once

#include <Vel/String.h>
#include <Xcvr/XcvrApi.h>

#include <cstdint>
#include <tuple>

namespace Xcvr {

/// Sort key of an interface name such as "Ethernet3/2/1": the text before the first digit, then the
/// numbers, 0 for those that are not there. A name without a digit, or with a third slash, is
/// fatal.
[[nodiscard]] XCVR_API std::tuple<Vel::String, uint32_t, uint32_t, uint32_t>
intfNameKey( Vel::String const & name );

/// A block of module register bytes as one trace text, ten bytes a line. A null label ends the text
/// after its first word: intended, as is that word.
[[nodiscard]] XCVR_API Vel::String dumpW8Data( char const * label, void const * data,
                                               uint16_t size );

/// A block of module register words in the host's byte order, ten words a line. `size` counts
/// bytes; of an odd number the last word reaches one byte past it, which must be readable.
[[nodiscard]] XCVR_API Vel::String dumpW16Data( void const * data, uint16_t size );

} // namespace Xcvr
