#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrRcx.h>

#include <gmock/gmock.h>

using namespace Xcvr;

TEST( RcxTest, AFreshSlotReportsWhatIsFixed ) {
   Vel::Ptr<RcxNewStatus> const status = rcxNewStatusFactory( "slot" );
   EXPECT_EQ( status->xcvrType(), XcvrType::rcx );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseCr4 );
   EXPECT_EQ( status->mediaTypeString(), "100GBASE-CR4" );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "N/A", "RCx", "N/A", "N/A", "N/A" ) );
   EXPECT_EQ( status->capabilities(), Capabilities( 4, false, false, false, false, 4 ) );
   EXPECT_EQ( status->modulePresentBitmap(), Vel::U4( 0 ) );
   EXPECT_EQ( status->xcvrConfig(), nullptr );
}

TEST( RcxTest, CapabilitiesNeedTheInterfaceOfTheMediaType ) {
   struct OtherInterface : RcxNewStatus {
      using RcxNewStatus::RcxNewStatus;
      ElectricalInterface electricalInterface() const override { return xcvr25GLimiting; }
   };
   EXPECT_EQ( OtherInterface( "slot" ).capabilities(), Capabilities() );
}

TEST( RcxTest, TheOperationsTraceThemselves ) {
   Vel::Ptr<XcvrNewStatus const> const status = rcxNewStatusFactory( "slot" );
   TraceCapture capture( "XcvrRcx", 8 );
   (void)status->mediaType();
   (void)status->vendorInfo();
   (void)status->capabilities();
   std::vector<std::pair<std::string, std::string>> traced;
   for ( auto const & record : capture.takeRecords() ) {
      traced.emplace_back( record.operation, record.text );
   }
   // Last the media type again, on which the interface rests.
   using Line = std::pair<std::string, std::string>;
   EXPECT_THAT( traced, testing::ElementsAre(
                           Line( "mediaType", "RcxStatus:mediaType(): xcvr100GBaseCr4" ),
                           Line( "vendorInfo", "RcxStatus:vendorInfo()" ),
                           Line( "capabilities", "RcxStatus:capabilities()" ),
                           Line( "mediaType", "RcxStatus:mediaType(): xcvr100GBaseCr4" ) ) );
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
   EXPECT_THAT( watcher.told, testing::ElementsAre( "slot1", "slot1", "slot1" ) );
}
