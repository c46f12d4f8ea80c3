#include <Corenet/IntfId.h>
#include <Vel/Define.h>

namespace Corenet {

VEL_VALUE_DEFINE( IntfId )

} // namespace Corenet
