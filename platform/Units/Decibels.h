#pragma once

#include <Vel/Value.h>

namespace Units {

/// A level ratio in dB or, against 1 mW, a power in dBm; the attribute that holds it says which.
class Decibels {
   VEL_VALUE( Decibels,
      ( value, double ) );

 public:
   friend auto operator<=>( Decibels const &, Decibels const & ) = default;
};

} // namespace Units
