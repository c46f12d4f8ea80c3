#include "tests/support/CfpModules.h"
#include "tests/support/StatusValues.h"
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrCfp2.h>

#include <gmock/gmock.h>

#include <functional>

using namespace Xcvr;
using namespace XcvrTest;
using testing::DoubleEq;
using testing::Each;
using testing::ElementsAre;

namespace {

template <typename Status = Cfp2NewStatus>
Vel::Ptr<Status> inserted( CfpImageBuilder const & image ) {
   Vel::Ptr<Status> const status( new Status( "Ethernet1" ) );
   image.writeTo( *status->actualIdEepromContentsIs() );
   return asRead( status );
}

} // namespace

TEST( Cfp2StatusTest, TablesAreStoredByTheirId ) {
   auto const status = cfp2NewStatusFactory( "Ethernet1" );
   for ( CfpMsaMisTableId id : { table8000, tableA000 } ) {
      status->idEepromContentsIs( static_cast<uint8_t>( id ), "old" );
      status->idEepromContentsIs( static_cast<uint8_t>( id ), cfp2Lr4().bytes( id ) );
   }
   EXPECT_EQ( status->vendorInfo().vendorPn(), "PN-1            " );
   EXPECT_EQ( status->cfpMsaMisIdEepromContents().temperature( 0 ), 0xF380 );
   EXPECT_EQ( status->idEepromInfo(), EepromDescriptor( 2, 38, { { 0, 128 }, { 5, 256 } } ) );
   TraceCapture capture( "XcvrCfp2", 8 );
   status->idEepromContentsIs( 38, "x" );
   EXPECT_EQ( capture.takeRecords().back().text, "no such table" );
   status->updateLastValidTime( 7 );
   EXPECT_EQ( status->lastValidData(), 7 );
   status->clearIdEepromContents();
   EXPECT_EQ( status->lastValidData(), 0 );
}

TEST( Cfp2StatusTest, AnActiveOverrideReplacesAllThatWasRead ) {
   auto const status = inserted( cfp2Lr4() );
   auto const cell = cfp2CellConfigFactory( "1" );
   status->xcvrConfigIs( cell->xcvrConfigIs( "Ethernet1" ) );
   auto const diag = cell->xcvrConfig( "Ethernet1" )->diagConfigIs( "diag" );
   coherentCfp( identifierCfp2Dco ).writeTo( *diag->overrideIdEepromContentsIs() );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseLr4 );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
   EXPECT_EQ( status->mediaType(), xcvr100GDwdmDco );
   diag->overrideIdEepromContentsDel();
   EXPECT_EQ( status->mediaType(), xcvrUnknown );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00C );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseLr4 );
}

TEST( Cfp2StatusTest, IdentityIsThatOfTheTables ) {
   auto const status = inserted( cfp2Lr4()
                                    .raw( "networkLaneBitRateMax", 129 )
                                    .raw( "minWavelength", 51780 )
                                    .raw( "maxWavelength", 52376 ) );
   EXPECT_EQ( status->xcvrType(), XcvrType::cfp2 );
   EXPECT_EQ( status->bitrate(), 129u );
   EXPECT_EQ( status->laserWavelength(), 1301950u );
   EXPECT_EQ( status->laserWavelengthPrecision(), laserWavelengthPrecisionNm );
   EXPECT_NE( status->powerClass(), xcvrPowerClassUnknown );
   EXPECT_EQ( status->capabilities(), Capabilities( 10, false, false, false, false, 0 ) );
   EXPECT_EQ( inserted( coherentCfp( identifierCfpx ) )->capabilities(),
              Capabilities( 10, true, true, false, false, 1 ) );
   status->overrideMediaTypeIs( xcvr100GBaseEr4 );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseEr4 );
   EXPECT_EQ( status->detectedMediaTypeString(), "100GBASE-LR4" );
   EXPECT_TRUE( status->isSupportedMediaType( xcvr100GDwdmDco ) );
   EXPECT_FALSE( status->isSupportedMediaType( xcvr100GBaseSr4 ) );
}

TEST( Cfp2StatusTest, ASlotWithoutTablesIsNeutral ) {
   auto const status = asRead( cfp2DcoNewStatusFactory( "Ethernet1" ) );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "", "", "", "01", "" ) );
   EXPECT_EQ( status->capabilities(), Capabilities() );
   EXPECT_FALSE( status->domInfoValid( LaneId( 0 ) ) );
   EXPECT_THAT( doubles( status->domThreshold() ), Each( unreadable ) );
   EXPECT_THAT( doubles( status->domAggPower() ), ElementsAre( 0, unreadable, unreadable ) );
   EXPECT_FALSE( status->isFreqTuningPending() );
   status->updateLaneStatus();
   EXPECT_TRUE( status->laneStatusMap().empty() );
}

TEST( Cfp2StatusTest, MonitorsAreValidOnceReadFromThisModule ) {
   expectValidOnceRead<Cfp2NewStatus>( [] { return inserted( cfp2Lr4() ); } );
   auto const status = inserted( cfp2Lr4() );
   EXPECT_TRUE( status->domInfoValid( LaneId( 3 ) ) );
   EXPECT_FALSE( status->domInfoValid( LaneId( 4 ) ) );
   // A count of 0 is 16 lanes.
   EXPECT_TRUE( inserted( cfpModule( identifierCfp2, 3, 16 ) )->domInfoValid( LaneId( 15 ) ) );
}

TEST( Cfp2StatusTest, MonitorsOfALaneInTheUnitsOfTheModule ) {
   auto const monitors = []( CfpImageBuilder const & image, uint8_t lane ) {
      return doubles( inserted( image )->domInfo( LaneId( lane ) ) );
   };
   EXPECT_THAT( monitors( cfp2Lr4(), 3 ),
                ElementsAre( 20, -12.5, DoubleEq( 3.3 ), DoubleEq( 4.006 ), DoubleEq( dBm( 3003 ) ),
                             DoubleEq( dBm( 1003 ) ), unreadable ) );
   // A CFPx has its powers in 0.01 dBm and its voltage in mV; its bias is read like that of a CFP2.
   EXPECT_THAT( monitors( coherentCfp( identifierCfpx ), 0 ),
                ElementsAre( 20, -12.5, DoubleEq( 3.3 ), 4, -2, -10, unreadable ) );
   // A CFP2-DCO has bias and powers where a CFP2 has them.
   EXPECT_THAT( monitors( coherentCfp( identifierCfp2Dco ), 0 ),
                ElementsAre( 20, -12.5, DoubleEq( 3.3 ), 4, DoubleEq( dBm( 3000 ) ),
                             DoubleEq( dBm( 1000 ) ), unreadable ) );
}

TEST( Cfp2StatusTest, MonitorsThatAreNotThereAreUnreadable ) {
   for ( CfpMsaMisIdentifier identifier : { identifierCfp2, identifierCfpx, identifierCfp2Dco } ) {
      CfpImageBuilder image = coherentCfp( identifier );
      for ( CfpMsaMisTableId id : { tableA000, tableA280, tableB000, tableB300, tableB480 } ) {
         image.missing( id );
      }
      EXPECT_THAT( doubles( inserted( image )->domInfo( LaneId( 0 ) ) ),
                   testing::Contains( unreadable ).Times( 6 ) );
      EXPECT_EQ( inserted( image )->domAggPower().aggRxPower(), unreadable );
   }
   auto const status = inserted( cfp2Lr4().raw( "txPowerSupported", 0 ) );
   EXPECT_EQ( status->domInfo( LaneId( 0 ) ).txPower(), unreadable );
   EXPECT_EQ( status->domCapabilities(),
              DomCapabilities( true, true, true, false, true, false, false, true ) );
}

TEST( Cfp2StatusTest, AggregatePowerIsTheSumOfAllLanes ) {
   DomAggPower const all = inserted( cfpModule( identifierCfp2, 3, 16 ) )->domAggPower();
   EXPECT_NEAR( all.aggTxPower(), dBm( 48120 ), 1e-9 );
   EXPECT_NEAR( all.aggRxPower(), dBm( 16120 ), 1e-9 );
   EXPECT_NEAR( inserted( coherentCfp( identifierCfpx ) )->domAggPower().aggTxPower(), -2, 1e-9 );
}

TEST( Cfp2StatusTest, ThresholdsInTheUnitsOfTheModule ) {
   using Unit = std::function<double( double )>;
   auto const in = []( double unit ) { return Unit( std::bind_front( std::multiplies(), unit ) ); };
   for ( CfpMsaMisIdentifier identifier : { identifierCfp2, identifierCfpx, identifierCfp2Dco } ) {
      bool const isCfp2 = identifier == identifierCfp2;
      std::vector<double> expected;
      auto const add = [&expected]( unsigned first, Unit const & unit ) {
         for ( unsigned at : { 0U, 3U, 1U, 2U } ) { // alarms, then warnings
            expected.push_back( unit( ( first + at ) << 8 ) );
         }
      };
      add( 0x01, in( 1 / 256. ) );
      add( 0x05, in( 0.0001 ) ); // always
      add( 0x15, in( isCfp2 ? 0.002 : 0.1 ) );
      add( 0x19, isCfp2 ? Unit( dBm ) : in( 0.01 ) );
      add( 0x21, dBm ); // always
      add( 0, []( double ) { return unreadable; } );
      EXPECT_THAT( doubles( inserted( coherentCfp( identifier ) )->domThreshold() ),
                   testing::Pointwise( DoubleEq(), expected ) );
   }
}

TEST( Cfp2StatusTest, ThresholdsOfAShortTableAndOfTheOperator ) {
   auto const status = inserted( cfp2Lr4() );
   auto const limits = status->actualIdEepromContents()->memory( table8080 );
   limits->contentsIs( limits->contents().substr( 0, 0xC7 - 0x80 ) );
   EXPECT_EQ( status->domThreshold().rxPowerHighAlarm(), dBm( 0x2100 ) );
   EXPECT_EQ( status->domThreshold().rxPowerLowAlarm(), unreadable ); // half of it is there
   EXPECT_FALSE( status->domThresholdValid() );
   expectClosestOperatorThresholds( *inserted( cfp2Lr4() ) );
}

TEST( Cfp2StatusTest, FaultsOfLanes ) {
   auto const faults = []( Cfp2NewStatus & status ) {
      status.updateLaneStatus();
      unsigned mask = 0;
      for ( auto const & [lane, laneStatus] : status.laneStatusMap() ) {
         mask |= unsigned{ laneStatus->txFaultPresent() } << lane.value();
      }
      return std::pair( status.laneStatusMap().size(), mask );
   };
   auto const cfp2 = inserted( cfp2Lr4().raw( "networkLaneFaultStatus", 0x80, 2 ) );
   EXPECT_EQ( faults( *cfp2 ), std::pair( size_t{ 4 }, 1u << 2 ) );
   cfp2->presenceIs( xcvrNotPresent );
   EXPECT_EQ( faults( *cfp2 ).second, 0u );
   cfp2->presenceIs( xcvrPresent );
   EXPECT_EQ( faults( *cfp2 ).second, 1u << 2 );
   cfp2->clearIdEepromContents(); // a module without lanes
   EXPECT_EQ( faults( *cfp2 ), std::pair( size_t{ 4 }, 0u ) );
   auto const dco =
      inserted( cfpModule( identifierCfp2Dco, 17, 2 ).raw( "moduleGeneralStatus", 0x80 ) );
   EXPECT_EQ( faults( *dco ), std::pair( size_t{ 2 }, 3u ) );
}

TEST( Cfp2StatusTest, SignalTuningOfLanes ) {
   auto const status = inserted(
      cfp2Lr4().raw( "txInputEqualization", 0xAB, 3 ).raw( "rxOutputPreEmphasis", 9, 3 ) );
   EXPECT_EQ( status->txInputEqualization( LaneId( 3 ) ), TuningValue( true, 0xAB, false ) );
   EXPECT_EQ( status->rxOutputPreEmphasis( LaneId( 3 ) ), TuningValue( true, 9, false ) );
   EXPECT_EQ( status->txInputEqualization( LaneId( 16 ) ), TuningValue() );
   // A table of bytes has no part of a word.
   status->actualIdEepromContents()
      ->memoryIs( tableA400, 0xA400, 8 )
      ->contentsIs( cfp2Lr4().bytes( tableA400 ) );
   EXPECT_EQ( status->txInputEqualization( LaneId( 3 ) ), TuningValue() );
}

// What the registers mean no public document confirms, so this asks only that a module which took the
// wanted tuning, whatever the code of its grid is, is no longer pending.
TEST( Cfp2StatusTest, TuningIsPendingUntilTheModuleHasIt ) {
   CfpImageBuilder image = coherentCfp( identifierCfpx ).value( "minFrequencyGHz", 350 );
   auto const status = inserted( image );
   auto const xgc = xgcFactory( "xgc" );
   status->xgcIs( xgc );
   auto const config = xgc->tuningConfigIs( "Ethernet1" );
   xgc->txPowerConfigIs( "Ethernet1" )->signalPowerIs( Units::Decibels( -1.25 ) );
   config->channelIs( 39 );
   config->gridIs( 50000 );
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_TRUE( status->isPowerTuningPending() );
   // 193.1 THz is 1.75 THz above the module's first frequency.
   EXPECT_EQ( status->cfpxTuneConfig(), CfpxTuneConfig( HwTuningConfig( 36, 50000, 0 ), -1.25 ) );
   config->channelIs( 0 );
   config->gridIs( 0 );
   config->frequencyIs( 193105000 ); // off the grid: the nearest channel, the rest by fine tuning
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_EQ( status->cfpxTuneConfig().frequency(), HwTuningConfig( 282, 6250, -1250 ) );

   image.value( "txFineTuneFreq", -1250 ).value( "txPowerConfig", -1.25 );
   unsigned fitting = 0;
   for ( unsigned code = 0; code < 8; ++code ) {
      image.raw( "txChannel", code << 13 | 282 ).writeTo( *status->actualIdEepromContents() );
      if ( !status->isFreqTuningPending() ) {
         ++fitting;
         EXPECT_EQ( status->resolvedTuningStatus().operationalFrequency(), 193105000u );
      }
   }
   EXPECT_EQ( fitting, 1u );
   EXPECT_EQ( status->hwChannel(), 282u );
   EXPECT_FALSE( status->isPowerTuningPending() );
   EXPECT_FALSE( inserted( cfp2Lr4() )->isFreqTuningPending() );
}

TEST( Cfp2StatusTest, TheTuningInTheRegisters ) {
   CfpImageBuilder image = coherentCfp( identifierCfp2Dco );
   EXPECT_EQ( inserted( image )->tuningCapabilities(),
              TuningCapabilities( 191200000, 191350000, 196100000,
                                  GridSpacingCapabilities( true, true, false, false, false, true ),
                                  6000 ) );
   image.raw( "txChannel", 7u << 13 | 3 ).raw( "txFineTuneFreq", 0xffff ); // a grid that is none
   image.value( "txPowerConfig", -2 ).value( "maxRxAttenuation", 655.35 );
   EXPECT_EQ( inserted( image )->cfpxTuneStatus(),
              CfpxTuneStatus( HwTuningConfig( 3, 0, -1 ), 0, -2, 0, 655.35 ) );
}

TEST( Cfp2StatusTest, TheLineInUnitsBesideItsRegisters ) {
   CfpImageBuilder image = coherentCfp( identifierCfp2Dco );
   image.value( "networkOsnrEstimate", 25.5 )
      .value( "rxCarrierFreqOffset", -300 )
      .value( "netLaneRxChannelPower", -11.25 )
      .raw( "rxChromDispersionLow", 40 )
      .raw( "networkBerHigh", 1 )
      .raw( "networkBerLow", 2 );
   auto const status = inserted<Cfp2DcoNewStatus>( image );
   // No SNR, whose table was not read.
   EXPECT_EQ( status->dcoMonitors(),
              Cfp2DcoMonitors( 20, 25.5, unreadable, -300, -11.25, 255, 0, 0xFED4, 0xFB9B, 40, 0, 0,
                               0, 65538, 0, 0, 0, 0, 0 ) );
   status->lastDomUpdateTimeIs( 5 );
   EXPECT_EQ( status->dcoMonitors().osnr(), unreadable );
}

TEST( Cfp2StatusTest, ReadingAllocatesNothing ) {
   auto const dco = inserted<Cfp2DcoNewStatus>( coherentCfp( identifierCfp2Dco ) );
   AllocationCount const count;
   expectNoAllocation( *dco );
   EXPECT_NE( dco->tuningCapabilities().firstFrequency() + dco->dcoMonitors().updateTime(), 0 );
   EXPECT_EQ( count.calls(), 0u );
}
