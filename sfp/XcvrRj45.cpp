#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrRj45.h>

namespace Xcvr {

VEL_ENTITY_DEFINE( Rj45Config, rj45ConfigFactory )
VEL_ENTITY_DEFINE( Rj45CellConfig, rj45CellConfigFactory )
VEL_ENTITY_DEFINE( Rj45NewStatus, rj45NewStatusFactory )

namespace {
Vel::TraceHandle trace( "XcvrRj45" );
} // namespace

MediaType Rj45NewStatus::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return localMediaType();
}

VendorInfo Rj45NewStatus::vendorInfo() const {
   VEL_TRACE_SCOPE( trace );
   return localVendorInfo();
}

} // namespace Xcvr
