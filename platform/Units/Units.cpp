#include <Units/Celsius.h>
#include <Units/Decibels.h>
#include <Vel/Define.h>

namespace Units {

VEL_VALUE_DEFINE( Decibels )
VEL_VALUE_DEFINE( Celsius )

} // namespace Units
