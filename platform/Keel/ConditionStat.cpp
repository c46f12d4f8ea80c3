#include <Keel/ConditionStat.h>
#include <Vel/Define.h>

namespace Keel {

VEL_VALUE_DEFINE( ConditionStat )

void ConditionStat::observedIs( bool active, Vel::Seconds now ) {
   if ( active == active_ ) {
      return;
   }
   active_ = active;
   count_ += active ? 1 : 0;
   lastChange_ = now;
}

} // namespace Keel
