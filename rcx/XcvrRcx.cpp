#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrRcx.h>

namespace Xcvr {

VEL_ENTITY_DEFINE( RcxConfig, rcxConfigFactory )
VEL_ENTITY_DEFINE( RcxCellConfig, rcxCellConfigFactory )
VEL_ENTITY_DEFINE( RcxNewStatus, rcxNewStatusFactory )

namespace {
Vel::TraceHandle trace( "XcvrRcx" );
} // namespace

MediaType RcxNewStatus::mediaType() const {
   constexpr MediaType always = xcvr100GBaseCr4;
   VEL_TRACE( trace, 8, Vel::String( "RcxStatus:mediaType(): " ) + stringValue( always ) );
   return always;
}

Capabilities RcxNewStatus::capabilities() const {
   VEL_TRACE( trace, 8, "RcxStatus:capabilities()" );
   Capabilities result;
   if ( electricalInterface() == xcvr25GLinear ) {
      result.maxChannelsIs( 4 );
      result.lineSideChannelsIs( 4 );
   }
   return result;
}

VendorInfo RcxNewStatus::vendorInfo() const {
   VEL_TRACE( trace, 8, "RcxStatus:vendorInfo()" );
   return { "N/A", "RCx", "N/A", "N/A", "N/A" };
}

} // namespace Xcvr
