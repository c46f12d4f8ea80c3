#include <Vel/Bounded.h>
#include <Vel/Define.h>

namespace Vel {

namespace Internal {

void outOfRange( char const * text ) {
   throw RangeException( text );
}

} // namespace Internal

VEL_VALUE_DEFINE( U1 )
VEL_VALUE_DEFINE( U2 )
VEL_VALUE_DEFINE( U3 )
VEL_VALUE_DEFINE( U4 )

} // namespace Vel
