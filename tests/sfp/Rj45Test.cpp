#include <Xcvr/XcvrRj45.h>

#include <gtest/gtest.h>

using namespace Xcvr;

TEST( Rj45Test, APortReportsWhatItsAgentWrote ) {
   Vel::Ptr<Rj45NewStatus> const port = rj45NewStatusFactory( "Ethernet1" );
   XcvrNewStatus const & status = *port;
   EXPECT_EQ( status.xcvrType(), XcvrType::rj45 );
   EXPECT_EQ( status.mediaType(), xcvrUnknown );
   VendorInfo const vendor( "Vendor", "PN-1", "SN-1", "A", "260101" );
   port->localVendorInfoIs( vendor );
   EXPECT_EQ( status.vendorInfo(), vendor );
   port->localMediaTypeIs( xcvr1000BaseT );
   EXPECT_EQ( status.mediaTypeString(), "1000BASE-T" );
   EXPECT_EQ( status.electricalInterface(), xcvr1GSgmiiBaseT );
}
