#include "tests/support/AllocationCount.h"
#include "tests/support/QsfpImageBuilder.h"
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrOptics.h>
#include <Xcvr/XcvrQsfpPlus.h>

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

using namespace Xcvr;
using testing::Each;
using testing::ElementsAre;
using XcvrTest::QsfpImageBuilder;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

std::string numbered( char const * field, unsigned lane ) {
   return field + std::to_string( lane + 1 );
}

/// A 100G CWDM4 module whose monitors tell the lane.
QsfpImageBuilder cwdm4() {
   QsfpImageBuilder image;
   image.raw( "revisionCompliance", 8 )
      .raw( "connector", 7 )
      .raw( "identifierExtended", 0xcc )
      .bit( "compliance", "extended compliance" )
      .raw( "complianceExtended", 6 )
      .raw( "bitrateNominal", 255 )
      .value( "bitrateExtended", 25750 )
      .raw( "deviceTech", 0x40 )
      .value( "laserWavelength", 1311.05 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "vendorRev", "A1" )
      .text( "dateCode", "260101" )
      .bit( "moduleStatus", "interrupt not asserted" )
      .bit( "diagsMonitoringType", "Tx power monitor" )
      .value( "temperature", -12.5 )
      .value( "supplyVoltage", 3.3 );
   for ( unsigned lane = 0; lane < 4; ++lane ) {
      image.raw( numbered( "rxPower", lane ), 1000 + lane )
         .raw( numbered( "txBias", lane ), 2000 + lane )
         .raw( numbered( "txPower", lane ), 3000 + lane );
   }
   return image;
}

/// A 100G copper cable.
QsfpImageBuilder cr4() {
   return QsfpImageBuilder()
      .flat()
      .bit( "compliance", "extended compliance" )
      .raw( "complianceExtended", 11 )
      .raw( "deviceTech", 0xa0 )
      .text( "vendorName", "Cable" )
      .text( "vendorPn", "CR4" )
      .raw( "attenuation2p5GHz", 3 )
      .raw( "attenuation5GHz", 5 )
      .raw( "attenuation7GHz", 7 )
      .raw( "attenuation12p9GHz", 12 );
}

Vel::Ptr<QsfpNewStatus> inserted( Sff8436IdEepromContents const & contents ) {
   Vel::Ptr<QsfpNewStatus> const status = qsfpNewStatusFactory( "Ethernet1" );
   status->actualIdEepromContentsIs( contents );
   status->presenceIs( xcvrPresent );
   status->idEepromValidIs( true );
   status->lastPresenceChangeIs( 10 );
   status->lastDomUpdateTimeIs( 20 );
   status->lastDomThresholdsUpdateTimeIs( 15 );
   status->lastEnhancedDomUpdateTimeIs( 20 );
   status->lastEnhancedDomThresholdsUpdateTimeIs( 15 );
   return status;
}
Vel::Ptr<QsfpNewStatus> inserted( QsfpImageBuilder const & image ) {
   return inserted( image.contents() );
}

/// The contents with one bit of a page flipped.
Sff8436IdEepromContents withBit( QsfpImageBuilder const & image, bool lower, unsigned at,
                                 unsigned bit ) {
   Sff8436IdEepromContents contents = image.contents();
   Vel::String page = lower ? contents.eepromPage00LowerData() : contents.eepromPage03UpperData();
   page.byteIs( at, static_cast<uint8_t>( page[at] ^ 1 << bit ) );
   lower ? contents.eepromPage00LowerDataIs( page ) : contents.eepromPage03UpperDataIs( page );
   return contents;
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

/// The names of a value's fields that are not 0 or false, without the quotes around.
template <typename Value>
std::vector<std::string> fieldsSet( Value const & value ) {
   std::vector<std::string> result;
   Value::velFields( [&]( std::string_view label, auto field ) {
      if ( value.*field ) {
         size_t const from = label.find( '\'' ) + 1;
         result.emplace_back( label.substr( from, label.rfind( '\'' ) - from ) );
      }
   } );
   return result;
}

} // namespace

// Pages

TEST( QsfpStatusTest, PagesAreStoredByTheirNumber ) {
   Vel::Ptr<QsfpNewStatus> const status = qsfpNewStatusFactory( "Ethernet1" );
   for ( unsigned page = 0; page < 6; ++page ) {
      status->idEepromContentsIs( static_cast<uint8_t>( page ),
                                  Vel::String( std::to_string( page ) ) );
   }
   EXPECT_EQ( status->actualIdEepromContents(),
              Sff8436IdEepromContents( "0", "1", "2", "3", "4", "5", 0.0, uint8_t( 0 ) ) );
   TraceCapture capture( "XcvrQsfpPlus", 8 );
   status->idEepromContentsIs( 6, "x" );
   EXPECT_EQ( capture.takeRecords().back().text, "no such page" );
   status->updateLastValidTime( 7 );
   EXPECT_EQ( status->actualIdEepromContents(),
              Sff8436IdEepromContents( "0", "1", "2", "3", "4", "5", 7.0, uint8_t( 0 ) ) );
   status->clearIdEepromContents();
   EXPECT_TRUE( !status->actualIdEepromContents() );
}

TEST( QsfpStatusTest, TheDescriptorListsThePagesOfTheModule ) {
   EepromDescriptor const paged = inserted( cwdm4() )->idEepromInfo();
   EXPECT_EQ( paged, EepromDescriptor( 3, 6, { { 0, 128 }, { 1, 128 }, { 3, 128 } } ) );
   EXPECT_EQ( inserted( cwdm4().flat() )->idEepromInfo(),
              EepromDescriptor( 2, 6, { { 0, 128 }, { 1, 128 } } ) );
}

TEST( QsfpStatusTest, AnActiveOverrideReplacesAllThatWasRead ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( cwdm4() );
   Vel::Ptr<QsfpConfig> const config = qsfpConfigFactory( "Ethernet1" );
   Vel::Ptr<QsfpDiagConfig> const diag = config->diagConfigIs( "diag" );
   status->xcvrConfigIs( config );
   Sff8436IdEepromContents const other = cr4().contents();
   diag->overrideIdEepromContentsIs( other );
   EXPECT_EQ( diag->overrideIdEepromContentsActivationKey(), 0u );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseCwdm4 );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
   EXPECT_EQ( status->sff8436IdEepromContents(), other );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseCr4 );
   EXPECT_EQ( status->vendorInfo().vendorName(), "Cable           " );
   EXPECT_FALSE( status->domInfoValid( LaneId( 0 ) ) );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), unreadable );
   // It destroys nothing of what was read.
   status->updateLastValidTime( 99 );
   EXPECT_EQ( status->actualIdEepromContents().eepromPage00UpperData(),
              cwdm4().contents().eepromPage00UpperData() );
   diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00C );
   EXPECT_EQ( status->domInfo( LaneId( 0 ) ).temperature(), -12.5 );
}

TEST( QsfpStatusTest, CellsHoldConfigurationsByName ) {
   Vel::Ptr<QsfpCellConfig> const cell = qsfpCellConfigFactory( "1" );
   cell->generationIdIs( 4 );
   Vel::Ptr<QsfpConfig> const config = cell->xcvrConfigIs( "Ethernet1" );
   EXPECT_EQ( cell->xcvrConfigIs( "Ethernet1" ), config );
   EXPECT_EQ( config->xcvrSlotId(), 0u );
   EXPECT_EQ( config->parent(), cell.get() );
}

// Identity

TEST( QsfpStatusTest, IdentityIsThatOfTheContents ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( cwdm4() );
   EXPECT_EQ( status->xcvrType(), XcvrType::qsfpPlus );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                                "SN-1            ", "A1", "260101  " ) );
   EXPECT_EQ( status->detectedMediaType(), xcvr100GBaseCwdm4 );
   EXPECT_EQ( status->bitrateKbps(), 100000000u );
   EXPECT_EQ( status->electricalInterface(), xcvr25GLimiting );
   EXPECT_EQ( status->capabilities(), Capabilities( 4, false, false, false, false, 0 ) );
   EXPECT_EQ( status->bitrate(), 255 ); // 25750 MBd are beyond
   EXPECT_EQ( inserted( cwdm4().value( "bitrateExtended", 10250 ) )->bitrate(), 102 );
   EXPECT_EQ( inserted( cwdm4().raw( "bitrateNominal", 103 ) )->bitrate(), 103u );
   EXPECT_EQ( status->laserWavelength(), 1311050u );
   EXPECT_EQ( status->laserWavelengthPrecision(), laserWavelengthPrecisionPm );
   EXPECT_EQ( inserted( cr4() )->laserWavelength(), 0u );
   EXPECT_EQ( inserted( cr4() )->laserWavelengthPrecision(), laserWavelengthPrecisionUnknown );
   EXPECT_EQ( status->powerClass(), xcvrPowerClass4 );
   status->overrideMediaTypeIs( xcvr100GBaseLr4 );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseLr4 );
   EXPECT_EQ( status->detectedMediaType(), xcvr100GBaseCwdm4 );
   EXPECT_TRUE( status->isSupportedMediaType( xcvr40GBaseUniv ) );
   EXPECT_FALSE( status->isSupportedMediaType( xcvr10GBaseSr ) );
   EXPECT_FALSE( status->isSupportedMediaType( xcvrUnknown ) );
}

TEST( QsfpStatusTest, TheSystemMayTakeTheComplianceBitForPsm4 ) {
   struct Case {
      bool configured;
      unsigned compliance, code;
      MediaType mediaType;
      uint8_t identifier = 13;
   };
   for ( Case const & c : std::initializer_list<Case>{ { false, 0x80, 0, xcvrUnknown },
                                                       { true, 0x80, 0, xcvr40GBasePsm4 },
                                                       { true, 0x80, 8, xcvrUnknown },
                                                       { true, 0x80, 6, xcvr100GBaseCwdm4 },
                                                       { true, 0x84, 0, xcvr40GBaseSr4 },
                                                       { true, 0x00, 0, xcvrUnknown },
                                                       // Only of a QSFP that no rule knows.
                                                       { true, 0x80, 0, xcvr40GBasePsm4, 12 },
                                                       { true, 0x80, 0, xcvr100GUnknown, 17 },
                                                       { true, 0x80, 0, xcvrUnknown, 3 } } ) {
      Vel::Ptr<QsfpNewStatus> const status =
         inserted( QsfpImageBuilder()
                      .identifier( c.identifier )
                      .raw( "compliance", uint64_t{ c.compliance } << 56 )
                      .raw( "complianceExtended", c.code ) );
      Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
      xgc->ethComplianceBit7IsPsm4Is( c.configured );
      status->xgcIs( xgc );
      EXPECT_EQ( status->mediaType(), c.mediaType )
         << c.compliance << " " << c.code << " " << int{ c.identifier };
   }
}

TEST( QsfpStatusTest, AttenuationOfCopperCables ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( cr4() );
   EXPECT_EQ( status->electricalPathAttenuation().value(), 12.0 );
   EXPECT_EQ(
      inserted( cr4().raw( "complianceExtended", 12 ) )->electricalPathAttenuation().value(),
      12.0 );
   EXPECT_EQ(
      inserted( cr4().raw( "complianceExtended", 13 ) )->electricalPathAttenuation().value(),
      12.0 );
   status->overrideMediaTypeIs( xcvr40GBaseCr4 );
   EXPECT_EQ( status->electricalPathAttenuation().value(), 5.0 );
   EXPECT_EQ( inserted( cr4().raw( "attenuation12p9GHz", 0 ) )->electricalPathAttenuation().value(),
              unreadable );
   EXPECT_EQ( inserted( cwdm4() )->electricalPathAttenuation().value(), 0.0 );
   Vel::Ptr<ModelToAttenuation> const table = modelToAttenuationFactory( "attenuation" );
   table->attenuationIs( "Cable           -CR4             ", Units::Decibels( 8.5 ) );
   status->attnTableIs( table );
   EXPECT_EQ( status->electricalPathAttenuation().value(), 8.5 );
   // An optical module has a wavelength in these bytes, also while it passes for a cable.
   Vel::Ptr<QsfpNewStatus> const optical = inserted( cwdm4() );
   optical->overrideMediaTypeIs( xcvr40GBaseCr4 );
   EXPECT_EQ( optical->electricalPathAttenuation().value(), unreadable );
   table->attenuationIs( "Vendor          -PN-1            ", Units::Decibels( 2.5 ) );
   optical->attnTableIs( table );
   EXPECT_EQ( optical->electricalPathAttenuation().value(), 2.5 );
}

// Monitors and thresholds

TEST( QsfpStatusTest, MonitorsAreValidOnceReadFromThisModule ) {
   struct Case {
      char const * what;
      std::function<void( QsfpNewStatus & )> change;
      bool info, threshold;
   };
   auto const contents = []( QsfpImageBuilder const & image ) {
      return [image]( QsfpNewStatus & s ) { s.actualIdEepromContentsIs( image.contents() ); };
   };
   for ( Case const & c : std::initializer_list<Case>{
            { "read", []( auto & ) {}, true, true },
            { "absent", []( auto & s ) { s.presenceIs( xcvrNotPresent ); }, false, false },
            { "read before", []( auto & s ) { s.lastDomUpdateTimeIs( 10 ); }, false, true },
            { "never read", []( auto & s ) { s.lastDomThresholdsUpdateTimeIs( 0 ); }, true, false },
            { "unusable", []( auto & s ) { s.idEepromValidIs( false ); }, true, false },
            { "passive cable", contents( cwdm4().raw( "deviceTech", 0xb0 ) ), false, false },
            { "no lower page", contents( cwdm4().missing( "lower" ) ), false, true },
            { "no page 03h", contents( cwdm4().missing( "03h" ) ), true, false },
            { "flat", contents( cwdm4().bit( "moduleStatus", "flat memory" ) ), true, false } } ) {
      SCOPED_TRACE( c.what );
      Vel::Ptr<QsfpNewStatus> const status = inserted( cwdm4() );
      c.change( *status );
      EXPECT_EQ( status->domThresholdValid(), c.threshold );
      for ( unsigned lane : { 0u, 3u, 4u, 255u } ) {
         LaneId const id( static_cast<uint8_t>( lane ) );
         bool const valid = c.info && lane < 4;
         EXPECT_EQ( status->domInfoValid( id ), valid );
         DomInfo const info = status->domInfo( id );
         EXPECT_EQ( info.updateTime(), valid ? 20 : 0 );
         EXPECT_EQ( info.calibration(), valid ? domCalibrationInternal : domCalibrationUnknown );
         EXPECT_EQ( info.temperature(), valid ? -12.5 : unreadable );
      }
   }
}

TEST( QsfpStatusTest, EveryLaneHasItsMonitors ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( cwdm4() );
   for ( unsigned lane = 0; lane < 4; ++lane ) {
      DomInfo const info = status->domInfo( LaneId( static_cast<uint8_t>( lane ) ) );
      EXPECT_DOUBLE_EQ( info.voltage(), 3.3 );
      EXPECT_DOUBLE_EQ( info.txBias(), ( 2000 + lane ) * 0.002 );
      EXPECT_DOUBLE_EQ( info.txPower(), dBm( 3000 + lane ) );
      EXPECT_DOUBLE_EQ( info.rxPower(), dBm( 1000 + lane ) );
      EXPECT_EQ( info.totalRxPower(), unreadable );
   }
   EXPECT_THAT( values( status->domInfo( LaneId( 4 ) ) ), Each( unreadable ) );
   EXPECT_EQ( inserted( cwdm4().raw( "rxPower2", 0 ) )->domInfo( LaneId( 1 ) ).rxPower(),
              unreadable );

   DomAggPower const sum = status->domAggPower();
   EXPECT_EQ( sum.updateTime(), 20 );
   EXPECT_EQ( sum.calibration(), domCalibrationInternal );
   EXPECT_NEAR( sum.aggTxPower(), dBm( 12006 ), 1e-9 );
   EXPECT_NEAR( sum.aggRxPower(), dBm( 4006 ), 1e-9 );
   EXPECT_EQ( status->domCapabilities(),
              DomCapabilities( true, true, true, true, true, false, true, true ) );

   // Without a monitor of it, Tx power is unreadable whatever its bytes hold.
   Vel::Ptr<QsfpNewStatus> const without = inserted( cwdm4().raw( "diagsMonitoringType", 0xfb ) );
   EXPECT_EQ( without->domInfo( LaneId( 0 ) ).txPower(), unreadable );
   EXPECT_EQ( without->domAggPower().aggTxPower(), unreadable );
   EXPECT_NEAR( without->domAggPower().aggRxPower(), dBm( 4006 ), 1e-9 );
   EXPECT_EQ( without->domCapabilities(),
              DomCapabilities( true, true, true, false, true, false, false, true ) );

   EXPECT_EQ( inserted( cr4() )->domCapabilities(), DomCapabilities() );
   EXPECT_EQ( inserted( cr4() )->domAggPower(),
              DomAggPower( 0, domCalibrationUnknown, unreadable, unreadable ) );
}

TEST( QsfpStatusTest, EveryThresholdComesFromItsOwnWord ) {
   // Each word of page 03h holds its number and a zero byte.
   Sff8436IdEepromContents contents = cwdm4().contents();
   std::string page( 128, '\0' );
   for ( unsigned word = 0; word < 64; ++word ) {
      page[2 * word] = static_cast<char>( word + 1 );
   }
   contents.eepromPage03UpperDataIs( std::string_view( page ) );
   std::vector<double> const found = doubles( inserted( contents )->domThreshold() );
   ASSERT_EQ( found.size(), 24u );
   // The module's bytes: temperature, voltage, Tx bias, Tx power, Rx power.
   unsigned const firstByte[] = { 128, 144, 184, 192, 176 };
   for ( unsigned i = 0; i < 20; ++i ) {
      double const code = 256. * ( ( firstByte[i / 4] - 128 ) / 2 + i % 4 + 1 );
      double const expected = i < 4    ? code / 256
                              : i < 8  ? code * 0.0001
                              : i < 12 ? code * 0.002
                                       : dBm( code );
      EXPECT_DOUBLE_EQ( found[i], expected ) << i;
   }
   for ( unsigned i = 20; i < 24; ++i ) {
      EXPECT_EQ( found[i], unreadable );
   }
   EXPECT_THAT( doubles( inserted( cwdm4().missing( "03h" ) )->domThreshold() ),
                Each( unreadable ) );
}

TEST( QsfpStatusTest, OperatorThresholdsAreInForceWhereTheyApply ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( cwdm4() );
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   Vel::Ptr<DomThresholdOverride> const row = xgc->domThresholdOverrideDataIs( "row" );
   row->vendorPnIs( "PN-1" );
   row->rxPowerLowWarnIs( Units::Decibels( -7 ) );
   status->xgcIs( xgc );
   EXPECT_EQ( status->domThresholdOverride(), row );
   EXPECT_EQ( status->domThresholdInForce(), status->domThreshold() );
   status->domThresholdOverriddenIs( true );
   EXPECT_EQ( status->domThresholdInForce().rxPowerLowWarn(), -7 );
}

// Flags and controls

TEST( QsfpStatusTest, EveryFlagAndControlIsABitOfItsOwn ) {
   struct Case {
      bool lower;
      unsigned at, bit; // on the page
      unsigned lane;    // 4: of the module
      std::string field;
   };
   std::vector<Case> cases{ { true, 6, 7, 4, "tempHighAlarm" },
                            { true, 6, 6, 4, "tempLowAlarm" },
                            { true, 6, 5, 4, "tempHighWarn" },
                            { true, 6, 4, 4, "tempLowWarn" },
                            { true, 6, 1, 4, "tcReadinessChanged" },
                            { true, 6, 0, 4, "initializationComplete" },
                            { true, 7, 7, 4, "voltageHighAlarm" },
                            { true, 7, 6, 4, "voltageLowAlarm" },
                            { true, 7, 5, 4, "voltageHighWarn" },
                            { true, 7, 4, 4, "voltageLowWarn" },
                            { true, 2, 1, 4, "interrupt" },
                            { true, 2, 0, 4, "dataNotReady" },
                            { true, 93, 0, 4, "powerOverride" },
                            { true, 93, 1, 4, "lowPower" },
                            { true, 93, 2, 4, "highPowerClass5To7" },
                            { true, 93, 3, 4, "highPowerClass8" },
                            { true, 99, 1, 4, "lpModePinIsTxDisable" },
                            { true, 99, 0, 4, "interruptPinIsRxLos" } };
   for ( unsigned lane = 0; lane < 4; ++lane ) {
      // Two lanes a byte, the odd channels in the high half.
      unsigned const byte = lane / 2, high = lane % 2 ? 0 : 4;
      for ( auto const & [at, name] : std::initializer_list<std::pair<unsigned, std::string>>{
               { 9, "rxPower" }, { 11, "txBias" }, { 13, "txPower" } } ) {
         unsigned bit = high + 3;
         for ( char const * limit : { "HighAlarm", "LowAlarm", "HighWarn", "LowWarn" } ) {
            cases.push_back( { true, at + byte, bit--, lane, name + limit } );
         }
      }
      for ( Case const & c :
            std::initializer_list<Case>{ { true, 3, lane, lane, "rxLos" },
                                         { true, 3, 4 + lane, lane, "txLos" },
                                         { true, 4, lane, lane, "txFault" },
                                         { true, 4, 4 + lane, lane, "txAdaptiveInputEqFault" },
                                         { true, 5, lane, lane, "rxCdrLol" },
                                         { true, 5, 4 + lane, lane, "txCdrLol" },
                                         { true, 86, lane, lane, "txDisable" },
                                         { true, 87, 2 * lane, lane, "rxRateSelect" },
                                         { true, 87, 2 * lane + 1, lane, "rxRateSelect" },
                                         { true, 88, 2 * lane, lane, "txRateSelect" },
                                         { true, 88, 2 * lane + 1, lane, "txRateSelect" },
                                         { true, 98, lane, lane, "rxCdr" },
                                         { true, 98, 4 + lane, lane, "txCdr" },
                                         { false, 240 - 128, 4 + lane, lane, "rxSquelchDisable" },
                                         { false, 240 - 128, lane, lane, "txSquelchDisable" },
                                         { false, 241 - 128, 4 + lane, lane, "rxOutputDisable" },
                                         { false, 241 - 128, lane, lane, "txAdaptiveInputEq" } } ) {
         cases.push_back( c );
      }
   }
   // All that a status has of flags and controls, as "lane field".
   auto const all = []( QsfpNewStatus const & status ) {
      std::vector<std::string> result;
      auto const add = [&result]( unsigned lane, auto const & value ) {
         for ( std::string const & field : fieldsSet( value ) ) {
            result.push_back( std::to_string( lane ) + " " + field );
         }
      };
      for ( unsigned lane = 0; lane < 6; ++lane ) {
         add( lane, status.laneFlags( LaneId( static_cast<uint8_t>( lane ) ) ) );
         add( lane, status.laneControls( LaneId( static_cast<uint8_t>( lane ) ) ) );
      }
      add( 4, status.moduleFlags() );
      add( 4, status.moduleControls() );
      return result;
   };
   EXPECT_THAT( all( *inserted( cwdm4() ) ), testing::IsEmpty() );
   for ( Case const & c : cases ) {
      Vel::Ptr<QsfpNewStatus> const status = inserted( withBit( cwdm4(), c.lower, c.at, c.bit ) );
      EXPECT_THAT( all( *status ), ElementsAre( std::to_string( c.lane ) + " " + c.field ) )
         << c.at << "." << c.bit;
      status->lastPresenceChangeIs( 20 ); // read from a module before this one
      EXPECT_THAT( all( *status ), testing::IsEmpty() );
   }
}

TEST( QsfpStatusTest, NothingIsSaidOfATxPowerThatIsNotMonitored ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( cwdm4()
                                                       .raw( "diagsMonitoringType", 0xfb )
                                                       .raw( "txPowerFlags", 0xffff )
                                                       .raw( "rxPowerFlags", 0x8000 )
                                                       .raw( "txPowerHighAlarm", 1000 )
                                                       .raw( "txPowerLowAlarm", 1000 )
                                                       .raw( "txPowerHighWarn", 1000 )
                                                       .raw( "txPowerLowWarn", 1000 )
                                                       .raw( "rxPowerHighAlarm", 1000 ) );
   EXPECT_THAT( fieldsSet( status->laneFlags( LaneId( 0 ) ) ), ElementsAre( "rxPowerHighAlarm" ) );
   EXPECT_THAT( fieldsSet( status->laneFlags( LaneId( 3 ) ) ), testing::IsEmpty() );
   status->updateLaneStatus();
   Vel::Ptr<LaneStatus> const lane = status->laneStatus( LaneId( 0 ) );
   EXPECT_TRUE( lane->rxPowerHiAlarm() );
   EXPECT_FALSE( lane->txPowerHiAlarm() || lane->txPowerLoAlarm() || lane->txPowerHiWarn() ||
                 lane->txPowerLoWarn() );
   DomThreshold const limits = status->domThreshold();
   EXPECT_THAT( ( std::vector{ limits.txPowerHighAlarm(), limits.txPowerLowAlarm(),
                               limits.txPowerHighWarn(), limits.txPowerLowWarn() } ),
                Each( unreadable ) );
   EXPECT_DOUBLE_EQ( limits.rxPowerHighAlarm(), dBm( 1000 ) );
}

TEST( QsfpStatusTest, ControlsDoNotNeedMonitors ) {
   Vel::Ptr<QsfpNewStatus> const status =
      inserted( cr4()
                   .bit( "powerControl", "power mode set by software" )
                   .bit( "txDisable", "Tx3 disable" )
                   .raw( "losFlags", 0xff ) );
   EXPECT_THAT( fieldsSet( status->moduleControls() ), ElementsAre( "powerOverride" ) );
   EXPECT_THAT( fieldsSet( status->laneControls( LaneId( 2 ) ) ), ElementsAre( "txDisable" ) );
   EXPECT_EQ( status->laneControls( LaneId( 255 ) ), QsfpLaneControls() );
   EXPECT_EQ( status->laneFlags( LaneId( 2 ) ), QsfpLaneFlags() );
   status->presenceIs( xcvrNotPresent );
   EXPECT_EQ( status->moduleControls(), QsfpModuleControls() );
   EXPECT_EQ( status->laneControls( LaneId( 2 ) ), QsfpLaneControls() );
}

TEST( QsfpStatusTest, LaneStatusTakesTheFlagsWhenAsked ) {
   Vel::Ptr<QsfpNewStatus> const status =
      inserted( cwdm4()
                   .bit( "lolFlags", "Tx3 CDR loss of lock" )
                   .bit( "faultFlags", "Tx3 fault" )
                   .bit( "rxPowerFlags", "Rx power 3 low warning" )
                   .bit( "txBiasFlags", "Tx bias 1 high alarm" ) );
   EXPECT_FALSE( status->laneStatusHas( LaneId( 2 ) ) );
   status->updateLaneStatus();
   EXPECT_EQ( status->laneStatusMap().size(), 4u );
   Vel::Ptr<LaneStatus> const third = status->laneStatus( LaneId( 2 ) );
   EXPECT_TRUE( third->txCdrLol() && third->txFaultPresent() && third->rxPowerLoWarn() );
   EXPECT_FALSE( third->txLos() || third->rxCdrLol() || third->txBiasHiAlarm() );
   EXPECT_TRUE( status->laneStatus( LaneId( 0 ) )->txBiasHiAlarm() );
   third->localFaultPresentIs( true );
   status->clearIdEepromContents();
   status->updateLaneStatus();
   EXPECT_EQ( status->laneStatus( LaneId( 2 ) ), third );
   EXPECT_FALSE( third->txCdrLol() || third->txFaultPresent() || third->rxPowerLoWarn() );
   EXPECT_TRUE( third->localFaultPresent() ); // none of the module's
}

TEST( QsfpStatusTest, SignalTuningIsValidWhereSupported ) {
   QsfpImageBuilder const image = cwdm4()
                                     .raw( "txInputEqualization", 0x1234 )
                                     .raw( "rxOutputEmphasis", 0x5678 )
                                     .raw( "rxOutputAmplitude", 0x9abc );
   struct Parameter {
      char const * option;
      TuningValue ( QsfpNewStatus::*read )( LaneId ) const;
      unsigned codes;
   };
   Parameter const parameters[] = {
      { "Tx input EQ fixed", &QsfpNewStatus::txInputEqualization, 0x1234 },
      { "Rx output emphasis", &QsfpNewStatus::rxOutputPreEmphasis, 0x5678 },
      { "Rx output amplitude", &QsfpNewStatus::rxOutputAmplitude, 0x9abc },
   };
   for ( Parameter const & p : parameters ) {
      EXPECT_EQ( ( *inserted( image ).*p.read )( LaneId( 0 ) ), TuningValue() ) << p.option;
      QsfpImageBuilder supported( image );
      supported.bit( "options", p.option );
      for ( unsigned lane = 0; lane < 4; ++lane ) {
         EXPECT_EQ(
            ( *inserted( supported ).*p.read )( LaneId( static_cast<uint8_t>( lane ) ) ),
            TuningValue( true, static_cast<uint8_t>( p.codes >> ( 12 - 4 * lane ) & 15 ), false ) )
            << p.option << lane;
      }
      EXPECT_EQ( ( *inserted( supported ).*p.read )( LaneId( 4 ) ), TuningValue() );
      EXPECT_EQ( ( *inserted( supported ).*p.read )( LaneId( 255 ) ), TuningValue() );
      EXPECT_EQ( ( *inserted( supported.missing( "03h" ) ).*p.read )( LaneId( 0 ) ),
                 TuningValue() );
   }
   Vel::Ptr<QsfpNewStatus> const adaptive =
      inserted( QsfpImageBuilder( image )
                   .bit( "options", "Tx input EQ fixed" )
                   .bit( "options", "Tx input EQ auto-adaptive" )
                   .bit( "outputControl", "Tx2 adaptive EQ" ) );
   EXPECT_TRUE( adaptive->txInputEqualization( LaneId( 0 ) ).valid() );
   EXPECT_FALSE( adaptive->txInputEqualization( LaneId( 1 ) ).valid() );
   // The bit means nothing in a module that cannot adapt.
   EXPECT_TRUE( inserted( QsfpImageBuilder( image )
                             .bit( "options", "Tx input EQ fixed" )
                             .bit( "outputControl", "Tx2 adaptive EQ" ) )
                   ->txInputEqualization( LaneId( 1 ) )
                   .valid() );
   EXPECT_EQ( adaptive->tuningParamCapabilities(), TuningParamCapabilities( false, false, true ) );
}

// Enhanced monitors

namespace {

/// A parameter of page 20h by its number from 1: type, lane (4: of the slot), threshold set, value.
void parameter( QsfpImageBuilder & image, unsigned number, unsigned type, unsigned lane,
                unsigned set, unsigned value ) {
   std::string const name = "parameter" + std::to_string( number );
   image.raw( name + "Config", set << 12 | ( lane < 4 ? 0x400 | lane << 8 : 0 ) | type )
      .raw( name + "Value", value );
}

QsfpImageBuilder enhanced() {
   QsfpImageBuilder image = cwdm4();
   image.bit( "options", "pages 20h and 21h" );
   parameter( image, 1, 1, 0, 0, 20 * 256 + 128 ); // snr
   parameter( image, 2, 1, 2, 0, 18 * 256 );
   parameter( image, 3, 2, 0, 1, 512 );      // residualIsi
   parameter( image, 4, 3, 1, 2, 256 + 64 ); // pam4Transitions
   parameter( image, 5, 4, 3, 3, 0x8064 );   // preFecBer
   parameter( image, 6, 5, 0, 4, 0xC001 );   // uncorrectedBer
   parameter( image, 7, 6, 4, 5, 0xFFFE );   // tecCurrent
   parameter( image, 8, 7, 0, 6, 0xFFFD );   // laserFreqErr
   parameter( image, 9, 8, 0, 15, 0xFF80 );  // laserTempErr
   parameter( image, 10, 9, 0, 7, 0x1234 );  // the minimum of the error ratio: no monitor here
   parameter( image, 11, 1, 2, 9, 1 );       // once more: the first counts
   parameter( image, 24, 4, 0, 3, 0xA00C );
   return image.raw( "thresholdSet0", 0x1900'0100'1800'0200 )
      .raw( "thresholdSet3", 0xA00C'0000'8064'0001 )
      .raw( "thresholdSet5", 0x000A'FFF6'0005'FFFB )
      .raw( "thresholdSet15", 0x0100'FF00'0080'FF80 );
}

uint32_t index( EnhancedDomMonitor monitor, uint8_t lane = 0 ) {
   return enhancedDomIndex( monitor, lane );
}

} // namespace

TEST( QsfpStatusTest, EnhancedMonitorsAreFoundByTheirTypeAndLane ) {
   using enum EnhancedDomMonitor;
   Vel::Ptr<QsfpNewStatus> const status = inserted( enhanced() );
   struct Case {
      uint32_t index;
      double value;
   };
   std::vector<Case> const cases{
      { index( snr ), 20.5 },          { index( snr, 2 ), 18 },
      { index( residualIsi ), 2 },     { index( pam4Transitions, 1 ), 1.25 },
      { index( preFecBer, 3 ), 1e-6 }, { index( preFecBer ), 1.2e-3 },
      { index( uncorrectedBer ), 1 },  { index( tecCurrent ), -0.2 },
      { index( laserFreqErr ), -30 },  { index( laserTempErr ), -0.5 } };
   for ( Case const & c : cases ) {
      EXPECT_TRUE( status->enhancedDomValuesValid( c.index ) ) << c.index;
      EXPECT_NEAR( status->enhancedDomValue( c.index ), c.value, 1e-9 ) << c.index;
   }
   unsigned valid = 0;
   for ( uint32_t i = 0; i < 300; ++i ) {
      valid += status->enhancedDomValuesValid( i );
      EXPECT_EQ( status->enhancedDomValuesValid( i ), status->enhancedDomValue( i ) != unreadable );
   }
   EXPECT_EQ( valid, cases.size() );

   EXPECT_EQ( status->enhancedDomCapabilities(),
              EnhancedDomCapabilities( true, true, true, true, true, true, true, true ) );
   SensorCategory const lane = SensorCategory::laneSensor;
   EXPECT_EQ( status->enhancedDomSensorCategory(),
              EnhancedDomSensorCategory( lane, lane, lane, lane, lane, SensorCategory::slotSensor,
                                         lane, lane ) );

   status->updateEnhancedDomMapping();
   EXPECT_EQ( status->enhancedDomMappingMap().size(), cases.size() );
   EXPECT_EQ( status->enhancedDomMapping( index( snr ) ), 0x2098 );
   EXPECT_EQ( status->enhancedDomMapping( index( preFecBer ) ), 0x2000 + 152 + 2 * 23 );

   // Read before the module came, and without the pages.
   status->lastPresenceChangeIs( 20 );
   EXPECT_FALSE( status->enhancedDomValuesValid( 0 ) );
   EXPECT_EQ( status->enhancedDomValue( 0 ), unreadable );
   for ( QsfpImageBuilder const & without :
         { enhanced().missing( "20h" ), enhanced().bit( "moduleStatus", "flat memory" ),
           enhanced().raw( "options", 0 ) } ) {
      Vel::Ptr<QsfpNewStatus> const plain = inserted( without );
      EXPECT_FALSE( plain->enhancedDomValuesValid( 0 ) );
      EXPECT_EQ( plain->enhancedDomCapabilities(), EnhancedDomCapabilities() );
      EXPECT_EQ( plain->enhancedDomSensorCategory(), EnhancedDomSensorCategory() );
   }
   status->actualIdEepromContentsIs( cwdm4().contents() );
   status->updateEnhancedDomMapping();
   EXPECT_TRUE( status->enhancedDomMappingMap().empty() );
}

TEST( QsfpStatusTest, EnhancedThresholdsAreThoseOfTheSet ) {
   using enum EnhancedDomMonitor;
   Vel::Ptr<QsfpNewStatus> const status = inserted( enhanced() );
   auto const limits = [&status]( uint32_t i ) {
      return doubles( status->enhancedDomThreshold( i ) );
   };
   EXPECT_THAT( limits( index( snr, 2 ) ), ElementsAre( 25, 1, 24, 2 ) );
   EXPECT_THAT( limits( index( preFecBer, 3 ) ),
                ElementsAre( testing::DoubleNear( 1.2e-3, 1e-12 ), 0,
                             testing::DoubleNear( 1e-6, 1e-15 ),
                             testing::DoubleNear( 1e-24, 1e-30 ) ) );
   EXPECT_THAT( limits( index( tecCurrent ) ), ElementsAre( 1, -1, 0.5, -0.5 ) );
   EXPECT_THAT( limits( index( laserTempErr ) ), ElementsAre( 1, -1, 0.5, -0.5 ) );
   EXPECT_THAT( limits( index( tecCurrent, 1 ) ), Each( unreadable ) );
   EXPECT_TRUE( status->enhancedDomThresholdValid( index( snr ) ) );
   EXPECT_FALSE( status->enhancedDomThresholdValid( index( snr, 1 ) ) );
   status->lastEnhancedDomThresholdsUpdateTimeIs( 0 );
   EXPECT_FALSE( status->enhancedDomThresholdValid( index( snr ) ) );
   Vel::Ptr<QsfpNewStatus> const without = inserted( enhanced().missing( "21h" ) );
   EXPECT_FALSE( without->enhancedDomThresholdValid( index( snr ) ) );
   EXPECT_THAT( doubles( without->enhancedDomThreshold( index( snr ) ) ), Each( unreadable ) );
}

TEST( QsfpStatusTest, OfAMonitorOfSlotAndLaneThatOfTheLaneCounts ) {
   using enum EnhancedDomMonitor;
   QsfpImageBuilder image = cwdm4();
   image.bit( "options", "pages 20h and 21h" ).raw( "thresholdSet1", 0x0300'0000'0000'0000 );
   parameter( image, 1, 1, 4, 0, 256 ); // snr of the slot
   parameter( image, 2, 1, 0, 1, 512 ); // and of its first lane
   parameter( image, 3, 1, 4, 0, 256 );
   Vel::Ptr<QsfpNewStatus> const status = inserted( image );
   EXPECT_EQ( status->enhancedDomSensorCategory().snr(), SensorCategory::laneSensor );
   EXPECT_EQ( status->enhancedDomValue( index( snr ) ), 2 );
   EXPECT_EQ( status->enhancedDomThreshold( index( snr ) ).highAlarm(), 3 );
   status->updateEnhancedDomMapping();
   EXPECT_EQ( status->enhancedDomMapping( index( snr ) ), 0x2000 + 154 );
}

TEST( QsfpStatusTest, OfAPageThatEndsEarlyNothingIsRead ) {
   using enum EnhancedDomMonitor;
   struct Set {
      uint32_t index;
      size_t end;
   };
   Set const sets[] = {
      { index( snr ), 8 }, { index( tecCurrent ), 48 }, { index( laserTempErr ), 128 } };
   Vel::Ptr<QsfpNewStatus> const whole = inserted( enhanced() );
   Vel::Ptr<QsfpNewStatus> const status = inserted( enhanced() );
   LaneId const lane( 0 );
   for ( size_t size = 0; size <= 128; ++size ) {
      SCOPED_TRACE( size );
      auto const cut = [size]( Vel::String const & page ) {
         return Vel::String( page.view().substr( 0, size ) );
      };
      Sff8436IdEepromContents contents = whole->actualIdEepromContents();
      contents.eepromPage00LowerDataIs( cut( contents.eepromPage00LowerData() ) );
      contents.eepromPage03UpperDataIs( cut( contents.eepromPage03UpperData() ) );
      contents.eepromPage21hUpperDataIs( cut( contents.eepromPage21hUpperData() ) );
      status->actualIdEepromContentsIs( contents );

      bool const hasMonitors = size >= 58, hasLimits = size >= 72; // to bytes 57 and 199
      EXPECT_EQ( status->domInfoValid( lane ), hasMonitors );
      EXPECT_EQ( values( status->domInfo( lane ) ), hasMonitors
                                                       ? values( whole->domInfo( lane ) )
                                                       : std::vector<double>( 6, unreadable ) );
      EXPECT_EQ( status->domAggPower().aggRxPower(),
                 hasMonitors ? whole->domAggPower().aggRxPower() : unreadable );
      EXPECT_EQ( status->domThresholdValid(), hasLimits );
      EXPECT_EQ( doubles( status->domThreshold() ), hasLimits
                                                       ? doubles( whole->domThreshold() )
                                                       : std::vector<double>( 24, unreadable ) );
      for ( Set const & set : sets ) {
         bool const hasSet = size >= set.end;
         EXPECT_EQ( status->enhancedDomThresholdValid( set.index ), hasSet );
         EXPECT_EQ( doubles( status->enhancedDomThreshold( set.index ) ),
                    hasSet ? doubles( whole->enhancedDomThreshold( set.index ) )
                           : std::vector<double>( 4, unreadable ) );
      }
   }
}

TEST( QsfpStatusTest, AskingAllocatesNothing ) {
   Vel::Ptr<QsfpNewStatus> const status = inserted( enhanced() );
   XcvrNewStatus const & base = *status;
   AllocationCount const count;
   VendorInfo const vendor = base.vendorInfo();
   bool const optical = base.mediaType() == xcvr100GBaseCwdm4;
   double power = 0;
   for ( uint8_t lane = 0; lane < 4; ++lane ) {
      power += base.domInfo( LaneId( lane ) ).rxPower();
   }
   power += base.domThreshold().rxPowerHighAlarm() + base.domAggPower().aggRxPower();
   bool const lost = status->laneFlags( LaneId( 0 ) ).rxLos() || status->moduleFlags().interrupt();
   double const ratio = base.enhancedDomValue( index( EnhancedDomMonitor::snr ) );
   EXPECT_EQ( count.calls(), 0u );
   EXPECT_TRUE( optical && !lost && ratio == 20.5 && power < 0 );
   EXPECT_EQ( vendor.vendorSn(), "SN-1            " );
}
