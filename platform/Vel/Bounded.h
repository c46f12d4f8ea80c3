#pragma once

#include <Vel/Value.h>

namespace Vel {

namespace Internal {

/// Throws RangeException.
[[noreturn]] VEL_API void outOfRange( char const * text );

} // namespace Internal

/// Unsigned integers of one to four bits. A number that does not fit throws RangeException, whose
/// text names type and bound: "U4::value < 0 or > 0x0f not allowed".
class U1 {
   VEL_BOUNDED_VALUE( U1, 0x01, Vel::Internal::outOfRange );
};
class U2 {
   VEL_BOUNDED_VALUE( U2, 0x03, Vel::Internal::outOfRange );
};
class U3 {
   VEL_BOUNDED_VALUE( U3, 0x07, Vel::Internal::outOfRange );
};
class U4 {
   VEL_BOUNDED_VALUE( U4, 0x0f, Vel::Internal::outOfRange );
};

} // namespace Vel
