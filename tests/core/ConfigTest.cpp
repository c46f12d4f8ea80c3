#include <Xcvr/Xcvr.h>

#include <gmock/gmock.h>

#include <limits>

using namespace Xcvr;
using testing::ElementsAre;

namespace {

std::vector<std::string> keys( auto const & map ) {
   std::vector<std::string> result;
   for ( auto const & [key, value] : map ) {
      result.push_back( std::string( key ) );
   }
   return result;
}

} // namespace

TEST( ConfigTest, ANewXgcHasItsDefaults ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   EXPECT_EQ( xgc->minimumTempHighAlarmThreshold().value(), 50.0 );
   EXPECT_EQ( xgc->alternateTempHighAlarmThreshold().value(), 63.0 );
   EXPECT_EQ( xgc->minimumTempHighWarnThreshold().value(), 45.0 );
   EXPECT_EQ( xgc->alternateTempHighWarnThreshold().value(), 58.0 );
   EXPECT_EQ( xgc->performanceMonitoringPeriod(), PerformanceMonitoringPeriodConfig( 900, "s" ) );
   EXPECT_EQ( xgc->targetTemperature100GEDwdm2().value(),
              -std::numeric_limits<double>::infinity() );
   EXPECT_FALSE( xgc->domThresholdOverrideEnabled() );
   EXPECT_TRUE( xgc->tuningConfigMap().empty() );
}

TEST( ConfigTest, NamedSettingsAreChildrenAndThresholdRowsKeepNameOrder ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   Vel::Ptr<PowerConfig> const power = xgc->txPowerConfigIs( "Ethernet1" );
   EXPECT_EQ( xgc->txPowerConfigIs( "Ethernet1" ), power );
   EXPECT_EQ( xgc->rxPowerConfig( "Ethernet1" ), nullptr );
   EXPECT_EQ( power->fullName(), "xgc/txPowerConfig/Ethernet1" );
   xgc->txPowerConfigDel( "Ethernet1" );
   EXPECT_EQ( xgc->txPowerConfig( "Ethernet1" ), nullptr );
   EXPECT_EQ( power->parent(), nullptr );

   for ( char const * row : { "20", "b", "100", "a", "3" } ) {
      xgc->domThresholdOverrideDataIs( row );
   }
   xgc->domThresholdOverrideDataDel( "b" );
   // Byte order, not the order of numbers.
   EXPECT_THAT( keys( xgc->domThresholdOverrideDataMap() ), ElementsAre( "100", "20", "3", "a" ) );
}

TEST( ConfigTest, DirectoriesHoldSlotsUnderTheirNamesAndRefuseNull ) {
   Vel::Ptr<AllConfigDir> const configs = allConfigDirFactory( "configs" );
   Vel::Ptr<XcvrConfig> const config = xcvrConfigFactory( "Ethernet1" );
   configs->xcvrConfigIs( config );
   EXPECT_EQ( configs->xcvrConfig( "Ethernet1" ), config );
   EXPECT_EQ( config->parent(), nullptr ); // it lives elsewhere
   configs->intfToXcvrNameIs( Corenet::IntfId( 7 ), "Ethernet1" );
   EXPECT_EQ( configs->intfToXcvrName( Corenet::IntfId( 7 ) ), "Ethernet1" );

   Vel::Ptr<AllNewStatusDir> const statuses = allNewStatusDirFactory( "statuses" );
   Vel::Ptr<XcvrNewStatus const> const status( new XcvrNewStatus( "Ethernet1", XcvrType::rcx ) );
   statuses->xcvrStatusIs( status );
   EXPECT_EQ( statuses->xcvrStatus( "Ethernet1" ), status );
   statuses->xcvrStatusDel( "Ethernet1" );
   EXPECT_EQ( statuses->xcvrStatus( "Ethernet1" ), nullptr );

   EXPECT_DEATH( configs->xcvrConfigIs( nullptr ),
                 "null _xcvrConfig parameter to mutator for Xcvr::AllConfigDir::xcvrConfig not "
                 "allowed" );
   EXPECT_DEATH( statuses->xcvrStatusIs( nullptr ),
                 "null _xcvrStatus parameter to mutator for Xcvr::AllNewStatusDir::xcvrStatus not "
                 "allowed" );
}

TEST( ConfigTest, AForcedRemovalIsToldOnChangeAndItsCounterAlways ) {
   struct Agent : XcvrConfigCli::Notifiee {
      void onForceModuleRemoved() override { ++changes; }
      void onForceModuleRemovedChanged() override { ++requests; }
      int changes = 0, requests = 0;
   } agent;
   Vel::Ptr<XcvrConfigCliDir> const dir = xcvrConfigCliDirFactory( "cli" );
   Vel::Ptr<XcvrConfigCli> const cli = dir->xcvrConfigCliIs( "Ethernet1" );
   agent.notifierIs( cli );
   for ( int i = 0; i < 2; ++i ) {
      cli->forceModuleRemovedIs( true );
      cli->forceModuleRemovedChangedInc( 1 );
   }
   EXPECT_EQ( agent.changes, 1 );
   EXPECT_EQ( agent.requests, 2 );
   EXPECT_EQ( cli->forceModuleRemovedChanged(), 2u );
}

TEST( ConfigTest, TuningOfOneLaneIsReplacedWholeAndDeletedAlone ) {
   Vel::Ptr<XcvrConfigCli> const cli = xcvrConfigCliFactory( "Ethernet1" );
   LaneTuningParameter first, second;
   first.rxOutputAmplitudeIs( TuningValue( true, 3, false ) );
   second.txInputEqualizationIs( TuningValue( true, 5, false ) );
   cli->slotTuningParamsIs( LaneId( 0 ), first );
   cli->slotTuningParamsIs( LaneId( 1 ), first );
   cli->slotTuningParamsIs( LaneId( 1 ), second );
   EXPECT_EQ( cli->slotTuningParams( LaneId( 1 ) ), second );
   cli->slotTuningParamsDel( LaneId( 0 ) );
   EXPECT_EQ( cli->slotTuningParams( LaneId( 0 ) ), LaneTuningParameter() );
   EXPECT_EQ( cli->slotTuningParams( LaneId( 1 ) ), second );
}

TEST( ConfigTest, LaneSettingsHangBelowTheirTransceiver ) {
   Vel::Ptr<XcvrLaneConfigDir> const dir = xcvrLaneConfigDirFactory( "lanes" );
   Vel::Ptr<LaneConfig> const lane =
      dir->xcvrLaneConfigIs( "Ethernet1" )->laneConfigIs( LaneId( 2 ) );
   EXPECT_EQ( lane->fullName(), "lanes/xcvrLaneConfig/Ethernet1/laneConfig/2" );
   EXPECT_EQ( dir->xcvrLaneConfigIs( "Ethernet1" )->laneConfigIs( LaneId( 2 ) ), lane );
   EXPECT_EQ( lane->lane(), LaneId( 2 ) );
}

TEST( ConfigTest, ASlotsConfigurationCarriesItsTimeAndTheTuningDefaults ) {
   XcvrConfig const config( "Ethernet1", 12.5 );
   EXPECT_EQ( config.initTime(), 12.5 );
   EXPECT_EQ( config.defaultChannel(), 39u );
   EXPECT_EQ( config.defaultGrid(), 50000u );
   EXPECT_EQ( config.baseFrequencyCBand(), 191200000u );
   EXPECT_EQ( config.defaultFrequency(), 193100000u );
   EXPECT_GT( XcvrConfig( "Ethernet2" ).initTime(), 1.6e9 ); // now
}
