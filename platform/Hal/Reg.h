#pragma once

#include <Vel/Value.h>

namespace Hal {

namespace Internal {

/// The bits of a register from `high` down to `low`, both included; bit 0 is the least significant.
/// Fatal when they are out of order or beyond `width`.
class VEL_API BitField {
 public:
   BitField( unsigned width, unsigned high, unsigned low );
   [[nodiscard]] unsigned of( unsigned reg ) const { return ( reg & mask_ ) >> low_; }
   /// The register with the field replaced; throws Vel::RangeException when `value` does not fit.
   [[nodiscard]] unsigned in( unsigned reg, unsigned value ) const;

 private:
   unsigned mask_;
   unsigned low_;
};

} // namespace Internal

} // namespace Hal

// The bit-field accessors of a register value type whose number is `uint`: bits `high` to `low`, both
// included. A number too large for its field throws Vel::RangeException and changes nothing.
#define HAL_REGISTER_BITS_( uint )                                                                 \
 public:                                                                                           \
   [[nodiscard]] uint bits( unsigned high, unsigned low ) const {                                  \
      return static_cast<uint>( Internal::BitField( width, high, low ).of( value_ ) );             \
   }                                                                                               \
   void bitsIs( unsigned high, unsigned low, uint field ) {                                        \
      value_ = static_cast<uint>( Internal::BitField( width, high, low ).in( value_, field ) );    \
   }                                                                                               \
   [[nodiscard]] bool bit( unsigned at ) const {                                                   \
      return bits( at, at ) != 0;                                                                  \
   }                                                                                               \
   void bitIs( unsigned at, bool on ) {                                                            \
      bitsIs( at, at, on );                                                                        \
   }                                                                                               \
   static constexpr unsigned width = 8 * sizeof( uint );

namespace Hal {

/// An 8-bit hardware register.
class Reg8 {
   VEL_VALUE( Reg8,
      ( value, uint8_t ) );
   VEL_KEY( Reg8 )
   HAL_REGISTER_BITS_( uint8_t )
};

/// A 16-bit hardware register.
class Reg16 {
   VEL_VALUE( Reg16,
      ( value, uint16_t ) );
   VEL_KEY( Reg16 )
   HAL_REGISTER_BITS_( uint16_t )
};

} // namespace Hal
