#include <Vel/DefineEntity.h>
#include <Xcvr/XcvrDirs.h>

#include <limits>

namespace Xcvr {

VEL_ENTITY_DEFINE( Xgc, xgcFactory )
VEL_ENTITY_DEFINE( XgcInit, xgcInitFactory )
VEL_ENTITY_DEFINE( AllConfigDir, allConfigDirFactory )
VEL_ENTITY_DEFINE( AllNewStatusDir, allNewStatusDirFactory )
VEL_ENTITY_DEFINE( XcvrSliceStatus, xcvrSliceStatusFactory )

Xgc::Xgc( Vel::Name name )
   : Vel::Entity( std::move( name ) ), minimumTempHighAlarmThreshold_( 50.0 ),
     alternateTempHighAlarmThreshold_( 63.0 ), minimumTempHighWarnThreshold_( 45.0 ),
     alternateTempHighWarnThreshold_( 58.0 ), performanceMonitoringPeriod_( 900, "s" ),
     targetTemperature100GEDwdm2_( -std::numeric_limits<double>::infinity() ) {}

} // namespace Xcvr
