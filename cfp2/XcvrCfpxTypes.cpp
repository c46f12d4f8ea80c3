#include <Xcvr/XcvrCfpxTypes.h>

#include <Vel/Define.h>

namespace Xcvr {

VEL_ENUM_DEFINE( CfpMsaMisTableId )
VEL_ENUM_DEFINE( CfpMsaMisIdentifier )
VEL_ENUM_DEFINE( CfpMsaMisEthAppCode )
VEL_VALUE_DEFINE( CfpxTuneConfig )
VEL_VALUE_DEFINE( CfpxTuneStatus )

} // namespace Xcvr
