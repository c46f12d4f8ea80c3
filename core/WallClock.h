#pragma once

#include <Vel/Types.h>

#include <chrono>

namespace Xcvr {

/// Now, in seconds since the epoch of the system's clock.
inline Vel::Seconds wallClock() {
   return std::chrono::duration<Vel::Seconds>( std::chrono::system_clock::now().time_since_epoch() )
      .count();
}

} // namespace Xcvr
