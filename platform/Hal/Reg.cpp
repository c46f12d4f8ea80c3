#include <Hal/Reg.h>
#include <Vel/Define.h>

namespace Hal {

VEL_VALUE_DEFINE( Reg8 )
VEL_VALUE_DEFINE( Reg16 )

namespace Internal {

BitField::BitField( unsigned width, unsigned high, unsigned low ) : low_( low ) {
   VEL_ASSERT( low <= high && high < width );
   mask_ = ( ( 2u << ( high - low ) ) - 1 ) << low;
}

unsigned BitField::in( unsigned reg, unsigned value ) const {
   if ( value > mask_ >> low_ ) {
      throw Vel::RangeException( "a bit field of at most " + std::to_string( mask_ >> low_ ) +
                                 " cannot hold " + std::to_string( value ) );
   }
   return ( reg & ~mask_ ) | value << low_;
}

} // namespace Internal

} // namespace Hal
