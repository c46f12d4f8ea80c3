#pragma once

#include <Vel/Value.h>

namespace Units {

/// A temperature in degrees Celsius.
class Celsius {
   VEL_VALUE( Celsius,
      ( value, double ) );

 public:
   friend auto operator<=>( Celsius const &, Celsius const & ) = default;
};

} // namespace Units
