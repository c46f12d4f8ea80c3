#pragma once

#include <Vel/Value.h>

namespace Keel {

/// Statistic of a condition that comes and goes, such as a loss of signal.
class ConditionStat {
   VEL_VALUE( ConditionStat,
      ( active, bool ),                      // whether the condition holds now
      ( count, uint32_t ),                   // how often it has set in
      ( lastChange, Vel::Seconds ) ); // when it last set in or ended; 0 for never

 public:
   /// Records what was observed at `now`: a change moves `lastChange`, an onset also counts. What
   /// is observed again changes nothing.
   VEL_API void observedIs( bool active, Vel::Seconds now );
};

} // namespace Keel
