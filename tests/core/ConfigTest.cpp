#include <Xcvr/Xcvr.h>

#include <gmock/gmock.h>

#include <limits>

using namespace Xcvr;

TEST( ConfigTest, NewSettingsHaveTheirDefaults ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   EXPECT_EQ( xgc->minimumTempHighAlarmThreshold().value(), 50.0 );
   EXPECT_EQ( xgc->alternateTempHighAlarmThreshold().value(), 63.0 );
   EXPECT_EQ( xgc->minimumTempHighWarnThreshold().value(), 45.0 );
   EXPECT_EQ( xgc->alternateTempHighWarnThreshold().value(), 58.0 );
   EXPECT_EQ( xgc->performanceMonitoringPeriod(), PerformanceMonitoringPeriodConfig( 900, "s" ) );
   EXPECT_EQ( xgc->targetTemperature100GEDwdm2().value(),
              -std::numeric_limits<double>::infinity() );
   XcvrConfig const config( "Ethernet1", 12.5 );
   EXPECT_EQ( config.initTime(), 12.5 );
   EXPECT_EQ( config.defaultChannel(), 39u );
   EXPECT_EQ( config.defaultGrid(), 50000u );
   EXPECT_EQ( config.baseFrequencyCBand(), 191200000u );
   EXPECT_EQ( config.defaultFrequency(), 193100000u );
   EXPECT_GT( XcvrConfig( "Ethernet2" ).initTime(), 1.6e9 ); // now
}

TEST( ConfigTest, ThresholdRowsKeepTheOrderOfTheBytesOfTheirNames ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   std::vector<Vel::Name> names;
   for ( char const * row : { "20", "100", "a", "3" } ) {
      xgc->domThresholdOverrideDataIs( row );
   }
   for ( auto const & [key, row] : xgc->domThresholdOverrideDataMap() ) {
      names.push_back( row->name() );
   }
   EXPECT_THAT( names, testing::ElementsAre( "100", "20", "3", "a" ) );
}

TEST( ConfigTest, SettingsHangWhereTheyAreLookedFor ) {
   Vel::Ptr<XcvrConfigCliDir> const dir = xcvrConfigCliDirFactory( "cli" );
   struct Agent : XcvrConfigCli::Notifiee {
      void onForceModuleRemoved() override { ++changes; }
      void onForceModuleRemovedChanged() override { ++requests; }
      int changes = 0, requests = 0;
   } agent;
   Vel::Ptr<XcvrConfigCli> const cli = dir->xcvrConfigCliIs( "Ethernet1" );
   agent.notifierIs( cli );
   for ( int i = 0; i < 2; ++i ) {
      cli->forceModuleRemovedIs( true );
      cli->forceModuleRemovedChangedInc( 1 ); // which a removal that is forced again needs
   }
   EXPECT_EQ( agent.changes, 1 );
   EXPECT_EQ( agent.requests, 2 );
   Vel::Ptr<XcvrLaneConfigDir> const lanes = xcvrLaneConfigDirFactory( "lanes" );
   auto const lane = lanes->xcvrLaneConfigIs( "Ethernet1" )->laneConfigIs( LaneId( 2 ) );
   EXPECT_EQ( lane->fullName(), "lanes/xcvrLaneConfig/Ethernet1/laneConfig/2" );
   EXPECT_EQ( lane->lane(), LaneId( 2 ) );
   Vel::Ptr<AllConfigDir> const configs = allConfigDirFactory( "configs" );
   Vel::Ptr<XcvrConfig> const config = xcvrConfigFactory( "Ethernet1" );
   configs->xcvrConfigIs( config );
   EXPECT_EQ( configs->xcvrConfig( "Ethernet1" ), config );
   EXPECT_EQ( config->parent(), nullptr ) << "it lives elsewhere";
   EXPECT_DEATH( configs->xcvrConfigIs( nullptr ),
                 "null _xcvrConfig parameter to mutator for Xcvr::AllConfigDir::xcvrConfig not "
                 "allowed" );
   EXPECT_DEATH( allNewStatusDirFactory( "statuses" )->xcvrStatusIs( nullptr ),
                 "null _xcvrStatus parameter to mutator for Xcvr::AllNewStatusDir::xcvrStatus not "
                 "allowed" );
}
