#pragma once

#include <Vel/Value.h>

namespace Corenet {

/// Identifier of a network interface: the number by which the switch knows it; 0 for none.
class IntfId {
   VEL_VALUE( IntfId,
      ( value, uint32_t ) );
   VEL_KEY( IntfId )
};

} // namespace Corenet
