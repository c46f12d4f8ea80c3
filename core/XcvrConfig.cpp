#include "core/WallClock.h"

#include <Vel/DefineEntity.h>
#include <Xcvr/XcvrConfig.h>

#include <string>

namespace Xcvr {

VEL_ENTITY_DEFINE( XcvrConfig, xcvrConfigFactory )
VEL_ENTITY_DEFINE( XcvrConfigCli, xcvrConfigCliFactory )
VEL_ENTITY_DEFINE( XcvrConfigCliDir, xcvrConfigCliDirFactory )
VEL_ENTITY_DEFINE( TuningConfig, tuningConfigFactory )
VEL_ENTITY_DEFINE( PowerConfig, powerConfigFactory )
VEL_ENTITY_DEFINE( PerformanceMonitoringConfig, performanceMonitoringConfigFactory )
VEL_ENTITY_DEFINE( DomThresholdOverride, domThresholdOverrideFactory )
VEL_ENTITY_DEFINE( LaneConfig )
VEL_ENTITY_DEFINE( XcvrLaneConfig, xcvrLaneConfigFactory )
VEL_ENTITY_DEFINE( XcvrLaneConfigDir, xcvrLaneConfigDirFactory )

XcvrConfig::XcvrConfig( Vel::Name name ) : XcvrConfig( std::move( name ), wallClock() ) {}

XcvrConfig::XcvrConfig( Vel::Name name, Vel::Seconds initTime )
   : Vel::Entity( std::move( name ) ), initTime_( initTime ) {}

LaneConfig::LaneConfig( LaneId lane )
   : Vel::Entity( Vel::String( std::to_string( lane.value() ) ) ), lane_( lane ) {}

} // namespace Xcvr
