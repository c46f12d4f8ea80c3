#include <Xcvr/XcvrRj45.h>

#include <gtest/gtest.h>

using namespace Xcvr;

TEST( Rj45Test, APortReportsWhatItsAgentWrote ) {
   Vel::Ptr<Rj45NewStatus> const port = rj45NewStatusFactory( "Ethernet1" );
   XcvrNewStatus const & status = *port;
   EXPECT_EQ( status.xcvrType(), XcvrType::rj45 );
   EXPECT_EQ( status.mediaType(), xcvrUnknown );
   EXPECT_EQ( status.vendorInfo(), VendorInfo() );
   EXPECT_FALSE( port->ready() );

   port->localMediaTypeIs( xcvr1000BaseT );
   EXPECT_EQ( status.mediaTypeString(), "1000BASE-T" );
   EXPECT_EQ( status.electricalInterface(), xcvr1GSgmiiBaseT );
   EXPECT_EQ( status.capabilities(), Capabilities() ); // that of the base
}

TEST( Rj45Test, TheSameVendorInformationIsToldOnce ) {
   struct Watcher : Rj45NewStatus::Notifiee {
      void onLocalVendorInfo() override { ++told; }
      int told = 0;
   } watcher;
   Vel::Ptr<Rj45NewStatus> const port = rj45NewStatusFactory( "Ethernet1" );
   watcher.notifierIs( port );
   VendorInfo const vendor( "Vendor", "PN-1", "SN-1", "A", "260101" );
   port->localVendorInfoIs( vendor );
   port->localVendorInfoIs( vendor );
   EXPECT_EQ( watcher.told, 1 );
   EXPECT_EQ( port->vendorInfo(), vendor );
}

TEST( Rj45Test, APortKeepsNoConfigurationThatIsGone ) {
   Vel::Ptr<Rj45CellConfig> const cell = rj45CellConfigFactory( "cell" );
   Vel::Ptr<Rj45NewStatus> const port = rj45NewStatusFactory( "Ethernet1" );
   EXPECT_EQ( port->xcvrConfig(), nullptr );
   cell->xcvrConfigIs( "Ethernet1" )->localMediaTypeIs( xcvr2p5GBaseT );
   port->xcvrConfigIs( cell->xcvrConfig( "Ethernet1" ) );
   EXPECT_EQ( port->xcvrConfig()->localMediaType(), xcvr2p5GBaseT );
   cell->xcvrConfigDel( "Ethernet1" );
   EXPECT_EQ( port->xcvrConfig(), nullptr );
}
