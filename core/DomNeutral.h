#pragma once

#include <Xcvr/XcvrTypes.h>

#include <limits>

// Monitoring values of which none can be read.
namespace Xcvr {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

inline DomInfo unreadableDomInfo( Vel::Seconds updateTime ) {
   return {
      updateTime, domCalibrationUnknown, unreadable, unreadable, unreadable, unreadable, unreadable,
      unreadable };
}

inline DomThreshold unreadableDomThreshold() {
   DomThreshold result;
   DomThreshold::velFields(
      [&result]( auto const &, double DomThreshold::*limit ) { result.*limit = unreadable; } );
   return result;
}

} // namespace Xcvr
