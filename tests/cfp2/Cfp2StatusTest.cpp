#include "tests/support/AllocationCount.h"
#include "tests/support/CfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrCfp2.h>
#include <Xcvr/XcvrOptics.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

using namespace Xcvr;
using testing::Each;
using testing::ElementsAre;
using XcvrTest::CfpImageBuilder;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// A module with all monitors, whose registers tell the lane, and all thresholds.
CfpImageBuilder module( CfpMsaMisIdentifier identifier, uint32_t application, uint32_t lanes ) {
   CfpImageBuilder image( identifier );
   image.raw( "identifierExtended", 0x80 )
      .raw( "ethernetApplicationCode", application )
      .raw( "networkLanes", lanes & 15 )
      .raw( "hostLanes", 10 )
      .raw( "minWavelength", 51780 )
      .raw( "maxWavelength", 52376 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "dateCode", "20260101" )
      .raw( "vendorRevFirst", 'B' )
      .raw( "tempSupported", 1 )
      .raw( "voltageSupported", 1 )
      .raw( "txBiasSupported", 1 )
      .raw( "txPowerSupported", 1 )
      .raw( "rxPowerSupported", 1 )
      .value( "temperature", -12.5 )
      .value( "voltage", 3.3 );
   for ( uint8_t lane = 0; lane < lanes; ++lane ) {
      image.raw( "txBias", 2000u + lane, lane )
         .raw( "txPower", 3000u + lane, lane )
         .raw( "rxPower", 1000u + lane, lane );
   }
   // In the order of the registers: 0x0100, 0x0200 and so on.
   uint32_t number = 0;
   for ( CfpRegister const & row : cfpRegisters() ) {
      if ( row.table == table8080 && row.kind != CfpRegisterKind::byte ) {
         image.raw( row.name, number += 0x100 );
      }
   }
   return image;
}
CfpImageBuilder lr4() {
   return module( identifierCfp2, 1, 4 ).raw( "networkLaneBitRateMax", 129 );
}
CfpImageBuilder coherent( CfpMsaMisIdentifier identifier ) {
   CfpImageBuilder image = module( identifier, 17, 1 );
   image.raw( "minFrequencyTHz", 191 )
      .value( "minFrequencyGHz", 350.05 )
      .raw( "maxFrequencyTHz", 196 )
      .value( "maxFrequencyGHz", 100 )
      .raw( "txFineTuneRange", 6000 )
      .bit( "tuningCapabilities", "50 GHz grid" )
      .bit( "tuningCapabilities", "100 GHz grid" )
      .bit( "tuningCapabilities", "6.25 GHz grid" );
   image.raw( "txPowerCfpx", 0xff38 ).raw( "rxPowerCfpx", 0xfc18 );
   return image;
}

template <typename Status>
Vel::Ptr<Status> inserted( Vel::Ptr<Status> const & status, CfpImageBuilder const & image ) {
   image.writeTo( *status->actualIdEepromContentsIs() );
   status->presenceIs( xcvrPresent );
   status->idEepromValidIs( true );
   status->lastPresenceChangeIs( 10 );
   status->lastDomUpdateTimeIs( 20 );
   status->lastDomThresholdsUpdateTimeIs( 15 );
   return status;
}
Vel::Ptr<Cfp2NewStatus> inserted( CfpImageBuilder const & image ) {
   return inserted( cfp2NewStatusFactory( "Ethernet1" ), image );
}

/// Of a power in 0.1 µW.
double dBm( double code ) {
   return 10 * std::log10( code * 1e-7 ) + 30;
}

std::vector<double> values( DomInfo const & info ) {
   return { info.temperature(), info.voltage(), info.txBias(),
            info.txPower(),     info.rxPower(), info.totalRxPower() };
}
template <typename Value>
std::vector<double> doubles( Value const & value ) {
   std::vector<double> result;
   Value::velFields(
      [&]( auto const &, double Value::*field ) { result.push_back( value.*field ); } );
   return result;
}

} // namespace

// Tables

TEST( Cfp2StatusTest, TablesAreStoredByTheirId ) {
   Vel::Ptr<Cfp2NewStatus> const status = cfp2NewStatusFactory( "Ethernet1" );
   CfpImageBuilder const image = lr4();
   for ( CfpMsaMisTableId id : { table8000, tableA000 } ) {
      status->idEepromContentsIs( static_cast<uint8_t>( id ), "old" );
      status->idEepromContentsIs( static_cast<uint8_t>( id ), image.bytes( id ) );
   }
   auto const & contents = status->cfpMsaMisIdEepromContents();
   EXPECT_EQ( contents.vendorSn(), "SN-1            " );
   EXPECT_EQ( contents.temperature( 0 ), 0xF380 );
   EXPECT_EQ( status->idEepromInfo(), EepromDescriptor( 2, 38, { { 0, 128 }, { 5, 256 } } ) );
   TraceCapture capture( "XcvrCfp2", 8 );
   status->idEepromContentsIs( 38, "x" );
   EXPECT_EQ( capture.takeRecords().back().text, "no such table" );
   status->updateLastValidTime( 7 );
   EXPECT_EQ( status->lastValidData(), 7 );
   status->clearIdEepromContents();
   EXPECT_EQ( status->lastValidData(), 0 );
   EXPECT_EQ( status->idEepromInfo(), EepromDescriptor( 0, 38, {} ) );
}

TEST( Cfp2StatusTest, AnActiveOverrideReplacesAllThatWasRead ) {
   Vel::Ptr<Cfp2NewStatus> const status = inserted( lr4() );
   Vel::Ptr<Cfp2CellConfig> const cell = cfp2CellConfigFactory( "1" );
   Vel::Ptr<Cfp2Config> const config = cell->xcvrConfigIs( "Ethernet1" );
   Vel::Ptr<Cfp2DiagConfig> const diag = config->diagConfigIs( "diag" );
   status->xcvrConfigIs( config );
   coherent( identifierCfp2Dco ).writeTo( *diag->overrideIdEepromContentsIs() );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseLr4 );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
   EXPECT_EQ( status->mediaType(), xcvr100GDwdmDco );
   EXPECT_FALSE( status->domInfoValid( LaneId( 1 ) ) );
   diag->overrideIdEepromContentsDel();
   EXPECT_EQ( status->mediaType(), xcvrUnknown );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00C );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseLr4 );
}

// Identity

TEST( Cfp2StatusTest, IdentityIsThatOfTheTables ) {
   Vel::Ptr<Cfp2NewStatus> const status = inserted( lr4() );
   EXPECT_EQ( status->xcvrType(), XcvrType::cfp2 );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                                "SN-1            ", "B", "20260101" ) );
   EXPECT_EQ( status->mediaTypeString(), "100GBASE-LR4" );
   EXPECT_EQ( status->bitrate(), 129u );
   EXPECT_EQ( status->bitrateKbps(), 100000000u );
   EXPECT_EQ( status->laserWavelength(), 1301950u );
   EXPECT_EQ( status->laserWavelengthPrecision(), laserWavelengthPrecisionNm );
   EXPECT_EQ( status->powerClass(), xcvrPowerClass3 );
   EXPECT_EQ( status->electricalPathAttenuation().value(), 0.0 );
   EXPECT_EQ( status->capabilities(), Capabilities( 10, false, false, false, false, 0 ) );
   EXPECT_EQ( inserted( coherent( identifierCfpx ) )->capabilities(),
              Capabilities( 10, true, true, false, false, 1 ) );
   status->overrideMediaTypeIs( xcvr100GBaseEr4 );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseEr4 );
   EXPECT_EQ( status->detectedMediaType(), xcvr100GBaseLr4 );
   EXPECT_TRUE( status->isSupportedMediaType( xcvr100GDwdmDco ) );
   EXPECT_FALSE( status->isSupportedMediaType( xcvr100GBaseSr4 ) );
   EXPECT_FALSE( status->isSupportedMediaType( xcvrUnknown ) );
}

TEST( Cfp2StatusTest, ASlotWithoutTablesIsNeutral ) {
   Vel::Ptr<Cfp2DcoNewStatus> const status = cfp2DcoNewStatusFactory( "Ethernet1" );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "", "", "", "01", "" ) );
   EXPECT_EQ( status->mediaType(), xcvrUnknown );
   EXPECT_EQ( status->capabilities(), Capabilities() );
   EXPECT_EQ( status->powerClass(), xcvrPowerClassUnknown );
   EXPECT_THAT( doubles( status->domThreshold() ), Each( unreadable ) );
   EXPECT_EQ( status->domAggPower(),
              DomAggPower( 0, domCalibrationUnknown, unreadable, unreadable ) );
   EXPECT_EQ( status->hwChannel(), 0u );
   EXPECT_EQ( status->cfp2DcoEepromContents()->networkBer(), 0u );
   EXPECT_EQ( status->dcoMonitors().osnr(), unreadable );
   EXPECT_FALSE( status->isFreqTuningPending() );
   status->updateLaneStatus();
   EXPECT_TRUE( status->laneStatusMap().empty() );
}

// Monitors and thresholds

TEST( Cfp2StatusTest, MonitorsAreValidOnceReadFromThisModule ) {
   Vel::Ptr<Cfp2NewStatus> const status = inserted( lr4() );
   EXPECT_TRUE( status->domInfoValid( LaneId( 3 ) ) );
   EXPECT_FALSE( status->domInfoValid( LaneId( 4 ) ) );
   EXPECT_THAT( values( status->domInfo( LaneId( 4 ) ) ), Each( unreadable ) );
   EXPECT_TRUE( status->domThresholdValid() );
   status->lastDomUpdateTimeIs( 10 );
   EXPECT_FALSE( status->domInfoValid( LaneId( 0 ) ) );
   status->lastDomUpdateTimeIs( 20 );
   status->presenceIs( xcvrNotPresent );
   EXPECT_FALSE( status->domInfoValid( LaneId( 0 ) ) );
   EXPECT_FALSE( status->domThresholdValid() );
   status->presenceIs( xcvrPresent );
   status->idEepromValidIs( false );
   EXPECT_FALSE( status->domThresholdValid() );
   status->idEepromValidIs( true );
   status->lastDomThresholdsUpdateTimeIs( 0 );
   EXPECT_FALSE( status->domThresholdValid() );
   // A count of 0 is 16 lanes, if it is one.
   EXPECT_TRUE( inserted( module( identifierCfp2, 3, 16 ) )->domInfoValid( LaneId( 15 ) ) );
   EXPECT_FALSE( inserted( lr4().missing( table8000 ) )->domInfoValid( LaneId( 0 ) ) );
   EXPECT_FALSE( inserted( lr4().missing( table8080 ) )->domThresholdValid() );
}

TEST( Cfp2StatusTest, MonitorsOfALaneInTheUnitsOfTheModule ) {
   Vel::Ptr<Cfp2NewStatus> const cfp2 = inserted( lr4() );
   for ( uint8_t lane = 0; lane < 4; ++lane ) {
      DomInfo const info = cfp2->domInfo( LaneId( lane ) );
      EXPECT_EQ( info.updateTime(), 20 );
      EXPECT_EQ( info.calibration(), domCalibrationInternal );
      EXPECT_THAT( values( info ),
                   ElementsAre( -12.5, testing::DoubleEq( 3.3 ),
                                testing::DoubleEq( ( 2000 + lane ) * 0.002 ),
                                testing::DoubleEq( dBm( 3000 + lane ) ),
                                testing::DoubleEq( dBm( 1000 + lane ) ), unreadable ) );
   }
   // A CFPx has its powers in 0.01 dBm and its voltage in mV; its bias is read like that of a CFP2.
   EXPECT_THAT( values( inserted( coherent( identifierCfpx ) )->domInfo( LaneId( 0 ) ) ),
                ElementsAre( -12.5, testing::DoubleEq( 3.3 ), testing::DoubleEq( 4.0 ), -2.0, -10.0,
                             unreadable ) );
   // A CFP2-DCO has bias and powers where a CFP2 has them.
   EXPECT_THAT( values( inserted( coherent( identifierCfp2Dco ) )->domInfo( LaneId( 0 ) ) ),
                ElementsAre( -12.5, testing::DoubleEq( 3.3 ), testing::DoubleEq( 4.0 ),
                             testing::DoubleEq( dBm( 3000 ) ), testing::DoubleEq( dBm( 1000 ) ),
                             unreadable ) );
}

TEST( Cfp2StatusTest, MonitorsThatAreNotThereAreUnreadable ) {
   for ( CfpMsaMisIdentifier identifier : { identifierCfp2, identifierCfpx, identifierCfp2Dco } ) {
      CfpImageBuilder image = coherent( identifier );
      for ( CfpMsaMisTableId id : { tableA000, tableA280, tableB000, tableB300, tableB480 } ) {
         image.missing( id );
      }
      Vel::Ptr<Cfp2NewStatus> const status = inserted( image );
      EXPECT_TRUE( status->domInfoValid( LaneId( 0 ) ) );
      EXPECT_THAT( values( status->domInfo( LaneId( 0 ) ) ), Each( unreadable ) );
      EXPECT_EQ( status->domAggPower().aggRxPower(), unreadable );
   }
   CfpImageBuilder without = lr4();
   for ( char const * monitor : { "temp", "voltage", "txBias", "txPower", "rxPower" } ) {
      without.raw( std::string( monitor ) + "Supported", 0 );
   }
   Vel::Ptr<Cfp2NewStatus> const status = inserted( without );
   EXPECT_THAT( values( status->domInfo( LaneId( 0 ) ) ), Each( unreadable ) );
   EXPECT_EQ( status->domCapabilities(), DomCapabilities() );
   EXPECT_EQ( inserted( lr4().raw( "txPowerSupported", 0 ) )->domCapabilities(),
              DomCapabilities( true, true, true, false, true, false, false, true ) );
}

TEST( Cfp2StatusTest, AggregatePowerIsTheSumOfAllLanes ) {
   DomAggPower const four = inserted( lr4() )->domAggPower();
   EXPECT_EQ( four.updateTime(), 20 );
   EXPECT_NEAR( four.aggTxPower(), dBm( 12006 ), 1e-9 );
   EXPECT_NEAR( four.aggRxPower(), dBm( 4006 ), 1e-9 );
   DomAggPower const ten = inserted( module( identifierCfp2, 3, 10 ) )->domAggPower();
   EXPECT_NEAR( ten.aggTxPower(), dBm( 30045 ), 1e-9 );
   EXPECT_NEAR( inserted( coherent( identifierCfpx ) )->domAggPower().aggTxPower(), -2, 1e-9 );
}

TEST( Cfp2StatusTest, ThresholdsInTheUnitsOfTheModule ) {
   struct Case {
      CfpMsaMisIdentifier identifier;
      double bias, txPowerHighAlarm;
   };
   for ( Case const & c : { Case{ identifierCfp2, 0.002, dBm( 0xD00 ) },
                            { identifierCfpx, 0.1, 33.28 },
                            { identifierCfp2Dco, 0.1, 33.28 } } ) {
      SCOPED_TRACE( c.identifier );
      DomThreshold const t = inserted( coherent( c.identifier ) )->domThreshold();
      EXPECT_EQ( t.tempHighAlarm(), 1 );
      EXPECT_EQ( t.tempHighWarn(), 2 );
      EXPECT_EQ( t.tempLowWarn(), 3 );
      EXPECT_EQ( t.tempLowAlarm(), 4 );
      EXPECT_DOUBLE_EQ( t.voltageHighAlarm(), 0x500 * 0.0001 ); // in 0.1 mV always
      EXPECT_DOUBLE_EQ( t.voltageHighWarn(), 0x600 * 0.0001 );
      EXPECT_DOUBLE_EQ( t.voltageLowWarn(), 0x700 * 0.0001 );
      EXPECT_DOUBLE_EQ( t.voltageLowAlarm(), 0x800 * 0.0001 );
      EXPECT_DOUBLE_EQ( t.txBiasHighAlarm(), 0x900 * c.bias );
      EXPECT_DOUBLE_EQ( t.txBiasHighWarn(), 0xA00 * c.bias );
      EXPECT_DOUBLE_EQ( t.txBiasLowWarn(), 0xB00 * c.bias );
      EXPECT_DOUBLE_EQ( t.txBiasLowAlarm(), 0xC00 * c.bias );
      EXPECT_DOUBLE_EQ( t.txPowerHighAlarm(), c.txPowerHighAlarm );
      EXPECT_DOUBLE_EQ( t.rxPowerHighAlarm(), dBm( 0x1100 ) ); // in 0.1 µW always
      EXPECT_DOUBLE_EQ( t.rxPowerHighWarn(), dBm( 0x1200 ) );
      EXPECT_DOUBLE_EQ( t.rxPowerLowWarn(), dBm( 0x1300 ) );
      EXPECT_DOUBLE_EQ( t.rxPowerLowAlarm(), dBm( 0x1400 ) );
      EXPECT_EQ( t.totalRxPowerLowWarn(), unreadable );
   }
   DomThreshold const t =
      inserted( coherent( identifierCfpx ).raw( "txPowerLowWarn", 0xff38 ) )->domThreshold();
   EXPECT_DOUBLE_EQ( t.txPowerLowWarn(), -2 );
   EXPECT_DOUBLE_EQ( t.txPowerHighWarn(), 35.84 );
   EXPECT_DOUBLE_EQ( t.txPowerLowAlarm(), 40.96 );
}

TEST( Cfp2StatusTest, TheOperatorsThresholdsApplyWhileOverridden ) {
   Vel::Ptr<Cfp2NewStatus> const status = inserted( lr4() );
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   status->xgcIs( xgc );
   Vel::Ptr<DomThresholdOverride> const row = xgc->domThresholdOverrideDataIs( "row" );
   row->vendorPnIs( "PN-1" );
   row->rxPowerLowAlarmIs( Units::Decibels( -14.5 ) );
   EXPECT_EQ( status->domThresholdInForce(), status->domThreshold() );
   status->domThresholdOverriddenIs( true );
   EXPECT_EQ( status->domThresholdInForce().rxPowerLowAlarm(), -14.5 );
   EXPECT_EQ( status->domThresholdInForce().tempHighAlarm(), 1 );
}

TEST( Cfp2StatusTest, FaultsOfLanes ) {
   Vel::Ptr<Cfp2NewStatus> const cfp2 = inserted( lr4().raw( "networkLaneFaultStatus", 0x80, 2 ) );
   cfp2->updateLaneStatus();
   for ( uint8_t lane = 0; lane < 4; ++lane ) {
      ASSERT_TRUE( cfp2->laneStatusHas( LaneId( lane ) ) );
      EXPECT_EQ( cfp2->laneStatus( LaneId( lane ) )->txFaultPresent(), lane == 2 );
   }
   cfp2->presenceIs( xcvrNotPresent );
   cfp2->updateLaneStatus();
   EXPECT_FALSE( cfp2->laneStatus( LaneId( 2 ) )->txFaultPresent() );
   cfp2->presenceIs( xcvrPresent );
   cfp2->updateLaneStatus();
   EXPECT_TRUE( cfp2->laneStatus( LaneId( 2 ) )->txFaultPresent() );
   cfp2->clearIdEepromContents(); // a module without lanes
   cfp2->updateLaneStatus();
   EXPECT_FALSE( cfp2->laneStatus( LaneId( 2 ) )->txFaultPresent() );
   CfpImageBuilder twoLanes = module( identifierCfp2Dco, 17, 2 );
   Vel::Ptr<Cfp2NewStatus> const whole = inserted( twoLanes.raw( "moduleGeneralStatus", 0x80 ) );
   whole->updateLaneStatus();
   EXPECT_TRUE( whole->laneStatus( LaneId( 1 ) )->txFaultPresent() );
}

// Tuning

TEST( Cfp2StatusTest, SignalTuningOfLanes ) {
   Vel::Ptr<Cfp2NewStatus> const status =
      inserted( lr4().raw( "txInputEqualization", 0xAB, 3 ).raw( "rxOutputPreEmphasis", 9, 3 ) );
   EXPECT_EQ( status->txInputEqualization( LaneId( 3 ) ), TuningValue( true, 0xAB, false ) );
   EXPECT_EQ( status->rxOutputPreEmphasis( LaneId( 3 ) ), TuningValue( true, 9, false ) );
   EXPECT_EQ( status->txInputEqualization( LaneId( 16 ) ), TuningValue() );
   EXPECT_EQ( inserted( lr4() )->rxOutputPreEmphasis( LaneId( 3 ) ), TuningValue() );
}

TEST( Cfp2StatusTest, TuningCapabilitiesFromRangeAndGrids ) {
   TuningCapabilities const c = inserted( coherent( identifierCfp2Dco ) )->tuningCapabilities();
   EXPECT_EQ( c, TuningCapabilities(
                    191200000, 191350000, 196100000,
                    GridSpacingCapabilities( true, true, false, false, false, true ), 6000 ) );
   EXPECT_EQ( inserted( coherent( identifierCfpx ).bit( "tuningCapabilities", "33 GHz grid" ) )
                 ->tuningCapabilities()
                 .gridSpacingCapabilities(),
              GridSpacingCapabilities( true, true, true, false, false, true ) );
}

TEST( Cfp2StatusTest, TuningIsPendingUntilTheModuleHasIt ) {
   CfpImageBuilder image = coherent( identifierCfpx ).value( "minFrequencyGHz", 350 );
   Vel::Ptr<Cfp2NewStatus> const status = inserted( image );
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   status->xgcIs( xgc );
   Vel::Ptr<TuningConfig> const config = xgc->tuningConfigIs( "Ethernet1" );
   config->channelIs( 39 );
   config->gridIs( 50000 );
   xgc->txPowerConfigIs( "Ethernet1" )->signalPowerIs( Units::Decibels( -1.25 ) );
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_TRUE( status->isPowerTuningPending() );
   // 193.1 THz is 1.75 THz above the module's first frequency.
   EXPECT_EQ( status->cfpxTuneConfig(), CfpxTuneConfig( HwTuningConfig( 36, 50000, 0 ), -1.25 ) );

   image.raw( "txChannel", 1u << 13 | 36 ).value( "txPowerConfig", -1.25 );
   image.writeTo( *status->actualIdEepromContents() );
   EXPECT_FALSE( status->isFreqTuningPending() );
   EXPECT_FALSE( status->isPowerTuningPending() );
   EXPECT_EQ( status->hwChannel(), 36u );
   EXPECT_EQ( status->resolvedTuningStatus().operationalFrequency(), 193100000u );
   EXPECT_EQ( status->resolvedTuningStatus().operationalChannel(), 39u );

   // A frequency off the grid is the nearest channel and the rest by fine tuning.
   config->channelIs( 0 );
   config->gridIs( 0 );
   config->frequencyIs( 193101000 );
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_EQ( status->cfpxTuneConfig().frequency(), HwTuningConfig( 281, 6250, 1000 ) );
   image.raw( "txChannel", 5u << 13 | 281 ).raw( "txFineTuneFreq", 1000 );
   image.writeTo( *status->actualIdEepromContents() );
   EXPECT_FALSE( status->isFreqTuningPending() );
   EXPECT_EQ( status->cfpxTuneStatus().txFrequency(), 193101000u );

   xgc->tuningConfigDel( "Ethernet1" );
   xgc->txPowerConfigDel( "Ethernet1" );
   EXPECT_TRUE( status->isFreqTuningPending() ); // back to channel 39
   EXPECT_FALSE( status->isPowerTuningPending() );
}

TEST( Cfp2StatusTest, TheTuningInTheRegisters ) {
   CfpxTuneStatus const status = inserted( coherent( identifierCfp2Dco )
                                              .raw( "txChannel", 7u << 13 | 3 )
                                              .raw( "txFineTuneFreq", 0xffff )
                                              .value( "txPowerConfig", -2 )
                                              .value( "maxRxAttenuation", 20 ) )
                                    ->cfpxTuneStatus();
   EXPECT_EQ( status, CfpxTuneStatus( HwTuningConfig( 3, 0, -1 ), 0, -2, 0, 20 ) );
   EXPECT_EQ( inserted( coherent( identifierCfp2Dco ) )->cfpxTuneStatus(),
              CfpxTuneStatus( HwTuningConfig(), 0, unreadable, unreadable, unreadable ) );
   EXPECT_FALSE( inserted( lr4() )->isFreqTuningPending() );
}

// The line of a CFP2-DCO

TEST( Cfp2StatusTest, TheLineInUnitsBesideItsRegisters ) {
   CfpImageBuilder image = coherent( identifierCfp2Dco );
   image.value( "networkOsnrEstimate", 25.5 )
      .value( "rxCarrierFreqOffset", -300 )
      .value( "netLaneRxChannelPower", -11.25 )
      .raw( "rxChromDispersionLow", 40 )
      .raw( "rxQFactor", 95 )
      .raw( "networkBerHigh", 1 )
      .raw( "networkBerLow", 2 );
   Vel::Ptr<Cfp2DcoNewStatus> const status =
      inserted( cfp2DcoNewStatusFactory( "Ethernet1" ), image );
   EXPECT_EQ( status->xcvrType(), XcvrType::cfp2 );
   EXPECT_EQ( status->cfp2DcoEepromContents()->networkBer(), 65538u );
   Cfp2DcoMonitors const line = status->dcoMonitors();
   EXPECT_EQ( line.updateTime(), 20 );
   EXPECT_DOUBLE_EQ( line.osnr(), 25.5 );
   EXPECT_EQ( line.snr(), unreadable ); // its table was not read
   EXPECT_EQ( line.carrierFreqOffset(), -300 );
   EXPECT_DOUBLE_EQ( line.rxChannelPower(), -11.25 );
   EXPECT_EQ( line.rawOsnr(), 255 );
   EXPECT_EQ( line.rawChromDispersion(), 40u );
   EXPECT_EQ( line.rawQFactor(), 95 );
   EXPECT_EQ( line.rawBer(), 65538u );
   status->lastDomUpdateTimeIs( 5 );
   EXPECT_EQ( status->dcoMonitors().rawOsnr(), 0 );
   EXPECT_EQ( status->dcoMonitors().osnr(), unreadable );
}

TEST( Cfp2StatusTest, ReadingAllocatesNothing ) {
   Vel::Ptr<Cfp2DcoNewStatus> const dco =
      inserted( cfp2DcoNewStatusFactory( "Ethernet1" ), coherent( identifierCfp2Dco ) );
   Vel::Ptr<Cfp2NewStatus> const cfp2 = inserted( lr4() );
   AllocationCount const count;
   double sum = 0;
   for ( Vel::Ptr<Cfp2NewStatus> const & status : { cfp2, Vel::Ptr<Cfp2NewStatus>( dco ) } ) {
      sum += static_cast<double>( status->vendorInfo().vendorName().size() );
      sum += status->domInfo( LaneId( 0 ) ).temperature() + status->domThreshold().tempHighAlarm();
      sum += static_cast<double>( status->mediaType() ) + status->domAggPower().updateTime();
      sum += status->tuningCapabilities().firstFrequency();
   }
   sum += dco->dcoMonitors().updateTime();
   EXPECT_EQ( count.calls(), 0u );
   EXPECT_NE( sum, 0 );
}
