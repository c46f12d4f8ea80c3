#pragma once

#include <Vel/Bounded.h>
#include <Vel/Enum.h>
#include <Vel/String.h>
#include <Vel/Value.h>

#include <limits>
#include <map>

/// Value types with fields of every kind, for the tests of string form and attribute log; defined in
/// StringFormTest.cpp.
namespace Sample {

VEL_ENUM( Mode, off, on = 7, remote )

class Point {
   VEL_VALUE( Point,
      ( x, int16_t ),
      ( mode, Mode ) );
};

class All {
   VEL_VALUE( All,
      ( flag, bool ),
      ( byte, uint8_t ),
      ( word, uint16_t ),
      ( shift, int16_t ),
      ( count, uint32_t ),
      ( total, uint64_t ),
      ( level, double ),
      ( label, Vel::String ),
      ( mode, Mode ),
      ( point, Point ),
      ( nibble, Vel::U4 ) );
};

class Maps {
   VEL_VALUE( Maps,
      ( sizes, std::map<uint8_t, uint16_t> ),
      ( points, std::map<Vel::String, Point> ),
      ( labels, std::map<Vel::U4, Vel::String> ) );
};

inline All filledAll() {
   constexpr double infinity = std::numeric_limits<double>::infinity();
   Point const point( 32767, Mode::on );
   return { true,      255,           65535,        -32768, 0x01234567,   18446744073709551615U,
            -infinity, "it's \\ a\n", Mode::remote, point,  Vel::U4( 15 ) };
}

inline Maps filledMaps() {
   return { { { 0, 256 }, { 9, 1 } },
            { { "", Point() }, { "b", Point( -1, Mode::on ) } },
            { { Vel::U4( 3 ), "three" } } };
}

} // namespace Sample
