#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrRcx.h>

#include <gmock/gmock.h>

using namespace Xcvr;
using testing::ElementsAre;

TEST( RcxTest, AFreshSlotReportsWhatIsFixedAndTracesIt ) {
   struct OtherInterface : RcxNewStatus {
      using RcxNewStatus::RcxNewStatus;
      ElectricalInterface electricalInterface() const override { return xcvr25GLimiting; }
   };
   Vel::Ptr<RcxNewStatus> const status = rcxNewStatusFactory( "slot" );
   EXPECT_EQ( status->xcvrType(), XcvrType::rcx );
   EXPECT_EQ( status->mediaTypeString(), "100GBASE-CR4" );
   EXPECT_EQ( status->capabilities(), Capabilities( 4, false, false, false, false, 4 ) );
   EXPECT_EQ( status->modulePresentBitmap(), Vel::U4( 0 ) );
   EXPECT_EQ( status->xcvrConfig(), nullptr );
   TraceCapture capture( "XcvrRcx", 8 );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseCr4 );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "N/A", "RCx", "N/A", "N/A", "N/A" ) );
   EXPECT_EQ( OtherInterface( "slot" ).capabilities(), Capabilities() );
   EXPECT_THAT( capture.takeNotes(),
                ElementsAre( "mediaType: RcxStatus:mediaType(): xcvr100GBaseCr4",
                             "vendorInfo: RcxStatus:vendorInfo()",
                             "capabilities: RcxStatus:capabilities()" ) );
}

TEST( RcxTest, ACellTellsOfItsSlots ) {
   struct Watcher : RcxCellConfig::Notifiee {
      void onXcvrConfig( Vel::Name const & name ) override { told.emplace_back( name ); }
      std::vector<std::string> told;
   } watcher;
   Vel::Ptr<RcxCellConfig> const cell = rcxCellConfigFactory( "cell" );
   watcher.notifierIs( cell );
   Vel::Ptr<RcxConfig> const slot = cell->xcvrConfigIs( "slot1" );
   EXPECT_EQ( slot->parent(), cell.get() );
   cell->xcvrConfigNotify( "slot1" ); // nothing has changed, told all the same
   cell->xcvrConfigDel( "slot1" );
   cell->xcvrConfigDelAll();
   EXPECT_THAT( watcher.told, ElementsAre( "slot1", "slot1", "slot1" ) );
}
