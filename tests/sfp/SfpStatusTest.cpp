#include "tests/support/AllocationCount.h"
#include "tests/support/SfpImageBuilder.h"

#include <Xcvr/XcvrDomDecoders.h>
#include <Xcvr/XcvrSfpPlus.h>

#include <gmock/gmock.h>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>

using namespace Xcvr;
using testing::ElementsAre;
using XcvrTest::SfpImageBuilder;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();
LaneId const lane( 0 );

/// A 10GBASE-SR module with monitors, not calibrated in any way.
SfpImageBuilder opticalModule() {
   return SfpImageBuilder()
      .bit( "compliance", "10GBASE-SR" )
      .value( "lengthOm3", 300 )
      .raw( "bitrateNominal", 103 )
      .value( "laserWavelengthInteger", 850 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "vendorRev", "A" )
      .text( "dateCode", "260101" )
      .bit( "diagsMonitoringType", "digital diagnostics" );
}

SfpImageBuilder internallyCalibrated() {
   return opticalModule()
      .bit( "diagsMonitoringType", "internally calibrated" )
      .value( "domTemperature", -12.5 )
      .value( "domSupplyVoltage", 3.3 )
      .value( "domBiasCurrent", 6.5 )
      .value( "domTxPower", 0.5 )
      .value( "domRxPower", 0.25 );
}

/// Raw values 0x1000 everywhere, with the constants of a slope of 2 and an offset of 256 and, for the
/// received power, 2 + 0.5 r.
SfpImageBuilder externallyCalibrated() {
   SfpImageBuilder image = opticalModule().bit( "diagsMonitoringType", "externally calibrated" );
   for ( char const * monitor :
         { "domTemperature", "domSupplyVoltage", "domBiasCurrent", "domTxPower" } ) {
      image.raw( monitor, 0x1000 );
      image.value( std::string( monitor ) + "Slope", 2 )
         .value( std::string( monitor ) + "Offset", 256 );
   }
   return image.raw( "domRxPower", 0x1000 ).value( "domRxPower0", 2 ).value( "domRxPower1", 0.5 );
}

Vel::Ptr<SfpNewStatus> inserted( XcvrSff8472IdEepromContents const & contents ) {
   Vel::Ptr<SfpNewStatus> const status = sfpNewStatusFactory( "Ethernet1" );
   status->actualIdEepromContentsIs( contents );
   status->presenceIs( xcvrPresent );
   status->idEepromValidIs( true );
   status->lastPresenceChangeIs( 10 );
   status->lastDomUpdateTimeIs( 20 );
   status->lastDomThresholdsUpdateTimeIs( 15 );
   return status;
}
Vel::Ptr<SfpNewStatus> inserted( SfpImageBuilder const & image ) {
   return inserted( image.contents() );
}

void registerIs( SfpNewStatus & status, unsigned at, unsigned data ) {
   status.registerDataIs( XcvrSff8472DomRegisterData( static_cast<uint16_t>( 0xA200 + at ),
                                                      static_cast<uint8_t>( data ) ) );
}

/// A configuration of the slot whose diagnostic settings replace the contents.
struct Override {
   Override( SfpNewStatus & status, XcvrSff8472IdEepromContents const & contents ) {
      diag->overrideIdEepromContentsIs( contents );
      diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
      status.xcvrConfigIs( config );
   }
   Vel::Ptr<SfpConfig> config = sfpConfigFactory( "Ethernet1" );
   Vel::Ptr<SfpDiagConfig> diag = config->diagConfigIs( "diag" );
};

/// Of a power in 0.1 µW.
double dBm( double code ) {
   return 10 * std::log10( code * 1e-7 ) + 30;
}

std::vector<double> values( DomInfo const & info ) {
   return { info.temperature(), info.voltage(), info.txBias(),
            info.txPower(),     info.rxPower(), info.totalRxPower() };
}

} // namespace

// Register bytes

TEST( SfpRegisterTest, AByteIsStoredOnceAndToldOnChange ) {
   struct Watcher : SfpNewStatus::Notifiee {
      void onRegisterData( uint16_t address ) override { told.push_back( address ); }
      void onRegisterData() override { ++whole; }
      std::vector<unsigned> told;
      int whole = 0;
   } watcher;
   Vel::Ptr<SfpNewStatus> const status = sfpNewStatusFactory( "Ethernet1" );
   watcher.notifierIs( status );
   XcvrSff8472DomRegisterData const byte( 0xA260, 0x19 );

   EXPECT_EQ( status->registerData( 0xA260 ), XcvrSff8472DomRegisterData( 0, 0 ) );
   status->registerDataIs( byte );
   status->registerDataIs( byte );
   EXPECT_EQ( status->registerData( 0xA260 ), byte );
   EXPECT_EQ( stringValue( byte ),
              "Value('Xcvr::XcvrSff8472DomRegisterData', ** {'address': 41568, 'data': 25})" );
   EXPECT_FALSE( status->registerDataHas( 0xA261 ) );
   registerIs( *status, 0x61, 0 ); // a zero is there too
   EXPECT_TRUE( status->registerDataHas( 0xA261 ) );
   status->registerDataDel( 0xA261 );
   status->registerDataDel( 0xA261 );
   EXPECT_FALSE( status->registerDataHas( 0xA261 ) );
   EXPECT_THAT( watcher.told, ElementsAre( 0xA260, 0xA261, 0xA261 ) );
   status->registerDataNotify( 0xA260 );
   status->registerDataDelAll();
   status->registerDataDelAll();
   EXPECT_EQ( status->registerData( 0xA260 ), XcvrSff8472DomRegisterData() );
   EXPECT_THAT( watcher.told, ElementsAre( 0xA260, 0xA261, 0xA261, 0xA260, 0xA260 ) );
   EXPECT_EQ( watcher.whole, 5 );
}

TEST( SfpRegisterTest, BytesOfAllDevicesAreIteratedInOrder ) {
   Vel::Ptr<SfpNewStatus> const status = sfpNewStatusFactory( "Ethernet1" );
   for ( uint16_t address :
         std::initializer_list<uint16_t>{ 0xA2FF, 0xA200, 0xA05C, 0xFFFF, 0, 0xA260 } ) {
      status->registerDataIs( XcvrSff8472DomRegisterData( address, uint8_t( address ) ) );
   }
   std::vector<unsigned> keys;
   for ( auto const & [key, value] : status->registerDataMap() ) {
      EXPECT_EQ( value, XcvrSff8472DomRegisterData( key, uint8_t( key ) ) );
      keys.push_back( key );
   }
   EXPECT_THAT( keys, ElementsAre( 0, 0xA05C, 0xA200, 0xA260, 0xA2FF, 0xFFFF ) );
   EXPECT_EQ( status->registerDataMap().size(), 6u );
}

TEST( SfpRegisterTest, ReflectionShowsThemAsACollection ) {
   Vel::Ptr<SfpNewStatus> const status = sfpNewStatusFactory( "Ethernet1" );
   registerIs( *status, 0x60, 7 );
   auto const & model = status->velModel();
   auto const found = std::find_if( model.begin(), model.end(),
                                    []( auto const & row ) { return row.name == "registerData"; } );
   ASSERT_NE( found, model.end() );
   EXPECT_EQ( found->kind, Vel::AttrKind::values );
   EXPECT_EQ( found->typeName, "Xcvr::XcvrSff8472DomRegisterData" );
   EXPECT_EQ(
      found->text( *status ),
      "{41568: Value('Xcvr::XcvrSff8472DomRegisterData', ** {'address': 41568, 'data': 7})}" );
}

// Where the bytes come from

TEST( SfpStatusTest, AByteOfA2hIsTheRegistersThenTheContents ) {
   Vel::Ptr<SfpNewStatus> const status = inserted( internallyCalibrated() );
   EXPECT_EQ( status->domInfo( lane ).temperature(), -12.5 );
   registerIs( *status, 96, 30 ); // the other byte, 0x80, still comes from the contents
   EXPECT_EQ( status->domInfo( lane ).temperature(), 30.5 );
   registerIs( *status, 97, 0 );
   EXPECT_EQ( status->domInfo( lane ).temperature(), 30.0 );
   status->registerDataDel( 0xA260 );
   EXPECT_EQ( status->domInfo( lane ).temperature(), -13.0 );
   status->registerDataDelAll();
   EXPECT_EQ( status->domInfo( lane ).temperature(), -12.5 );
}

TEST( SfpStatusTest, WithoutAPageOfContentsTheRegistersCountAlone ) {
   for ( size_t pageSize : { 0u, 97u } ) { // one that ends within the temperature
      XcvrSff8472IdEepromContents contents = internallyCalibrated().contents();
      contents.eepromPageA2DataIs( contents.eepromPageA2Data().substr( 0, pageSize ) );
      Vel::Ptr<SfpNewStatus> const status = inserted( contents );
      EXPECT_EQ( status->domInfo( lane ).voltage(), 0 );
      EXPECT_EQ( status->domInfo( lane ).rxPower(), unreadable );
      registerIs( *status, 96, 0x20 );
      registerIs( *status, 99, 100 );
      EXPECT_EQ( status->domInfo( lane ).temperature(), 32 );
      EXPECT_DOUBLE_EQ( status->domInfo( lane ).voltage(), 0.01 );
   }
}

TEST( SfpStatusTest, AnActiveOverrideReplacesAllThatWasRead ) {
   Vel::Ptr<SfpNewStatus> const status = inserted( internallyCalibrated() );
   XcvrSff8472IdEepromContents const actual = status->actualIdEepromContents();
   registerIs( *status, 96, 30 );
   XcvrSff8472IdEepromContents other = internallyCalibrated()
                                          .text( "vendorName", "Other" )
                                          .value( "lengthOm3", 100 )
                                          .value( "domTemperature", 60 )
                                          .contents();
   other.lastValidDataIs( 77 );
   Override const override( *status, other );
   EXPECT_EQ( status->sff8472IdEepromContents(), other );
   EXPECT_EQ( status->vendorInfo().vendorName(), "Other           " );
   EXPECT_EQ( status->detectedMediaType(), xcvr10GBaseSrLite );
   EXPECT_EQ( status->domInfo( lane ).temperature(), 60 );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), 0 );

   // It destroys nothing of what was read.
   status->updateLastValidTime( 99 );
   EXPECT_EQ( status->actualIdEepromContents().buf(), actual.buf() );
   EXPECT_EQ( status->actualIdEepromContents().eepromPageA2Data(), actual.eepromPageA2Data() );
   EXPECT_EQ( status->actualIdEepromContents().lastValidData(), 99 );

   // Without a page A2h of its own all its bytes are 0, whatever was read.
   other.eepromPageA2DataIs( "" );
   override.diag->overrideIdEepromContentsIs( other );
   EXPECT_EQ( status->domInfo( lane ).temperature(), 0 );

   override.diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00C );
   EXPECT_EQ( status->domInfo( lane ).temperature(), 30.5 );
   override.diag->overrideIdEepromContentsActivationKeyIs( 0x5EA1F00D );
   EXPECT_EQ( status->domInfo( lane ).temperature(), 0 );
   override.config->diagConfigDel( "diag" );
   EXPECT_EQ( status->vendorInfo().vendorName(), "Vendor          " );
}

TEST( SfpStatusTest, ClearedContentsSayNothing ) {
   Vel::Ptr<SfpNewStatus> const status = inserted( internallyCalibrated() );
   status->updateLastValidTime( 5 );
   status->clearIdEepromContents();
   EXPECT_TRUE( !status->actualIdEepromContents() );
   EXPECT_EQ( status->mediaType(), xcvrUnknown );
   EXPECT_FALSE( status->domInfoValid( lane ) );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), unreadable );
   EXPECT_EQ( status->vendorInfo().vendorSn(), "Unknown" );
}

// Monitors and thresholds

TEST( SfpStatusTest, MonitorsAreValidOnceReadFromThisModule ) {
   struct Case {
      char const * what;
      std::function<void( SfpNewStatus & )> change;
      bool info, threshold;
   };
   for ( Case const & c : std::initializer_list<Case>{
            { "read", []( auto & ) {}, true, true },
            { "absent", []( auto & s ) { s.presenceIs( xcvrNotPresent ); }, false, false },
            { "unknown", []( auto & s ) { s.presenceIs( xcvrPresenceUnknown ); }, false, false },
            { "read before", []( auto & s ) { s.lastDomUpdateTimeIs( 10 ); }, false, true },
            { "never read", []( auto & s ) { s.lastDomThresholdsUpdateTimeIs( 0 ); }, true, false },
            { "unusable", []( auto & s ) { s.idEepromValidIs( false ); }, true, false },
            { "no monitors",
              []( auto & s ) {
                 s.actualIdEepromContentsIs(
                    internallyCalibrated().raw( "diagsMonitoringType", 0x20 ).contents() );
              },
              false, false } } ) {
      SCOPED_TRACE( c.what );
      Vel::Ptr<SfpNewStatus> const status = inserted( internallyCalibrated() );
      c.change( *status );
      EXPECT_EQ( status->domInfoValid( lane ), c.info );
      EXPECT_EQ( status->domThresholdValid(), c.threshold );
      DomInfo const info = status->domInfo( lane );
      EXPECT_EQ( info.updateTime(), c.info ? 20 : 0 );
      EXPECT_EQ( info.calibration(), c.info ? domCalibrationInternal : domCalibrationUnknown );
      EXPECT_EQ( info.temperature(), c.info ? -12.5 : unreadable );
   }
}

TEST( SfpStatusTest, MonitorsFollowTheCalibration ) {
   DomInfo const internal = inserted( internallyCalibrated() )->domInfo( lane );
   EXPECT_EQ( internal.temperature(), -12.5 );
   EXPECT_DOUBLE_EQ( internal.voltage(), 3.3 );
   EXPECT_DOUBLE_EQ( internal.txBias(), 6.5 );
   EXPECT_NEAR( internal.txPower(), -3.0103, 1e-4 );
   EXPECT_NEAR( internal.rxPower(), -6.0206, 1e-4 );
   EXPECT_EQ( internal.totalRxPower(), unreadable );

   DomInfo const external = inserted( externallyCalibrated() )->domInfo( lane );
   EXPECT_EQ( external.calibration(), domCalibrationExternal );
   EXPECT_EQ( external.temperature(), 33 );        // ( 0x1000 × 2 + 256 ) / 256
   EXPECT_DOUBLE_EQ( external.voltage(), 0.8448 ); // 8448 × 0.1 mV
   EXPECT_DOUBLE_EQ( external.txBias(), 16.896 );  // 8448 × 2 µA
   EXPECT_DOUBLE_EQ( external.txPower(), dBm( 8448 ) );
   EXPECT_DOUBLE_EQ( external.rxPower(), dBm( 2050 ) ); // 2 + 0.5 × 4096
   EXPECT_EQ( external.updateTime(), 20 );

   // Each monitor has constants of its own, and the coefficients their own order.
   DomInfo const single = inserted( externallyCalibrated()
                                       .value( "domTemperatureSlope", 1 )
                                       .value( "domSupplyVoltageOffset", -256 )
                                       .value( "domBiasCurrentSlope", 3 )
                                       .value( "domTxPowerOffset", 0 )
                                       .value( "domRxPower1", 0 )
                                       .value( "domRxPower2", 1. / 65536 )
                                       .value( "domRxPower3", 1. / ( 1 << 30 ) )
                                       .value( "domRxPower4", std::ldexp( 1, -43 ) ) )
                             ->domInfo( lane );
   EXPECT_EQ( single.temperature(), 17 );
   EXPECT_DOUBLE_EQ( single.voltage(), 0.7936 );
   EXPECT_DOUBLE_EQ( single.txBias(), 25.088 );
   EXPECT_DOUBLE_EQ( single.txPower(), dBm( 8192 ) );
   EXPECT_DOUBLE_EQ( single.rxPower(), dBm( 2 + 256 + 64 + 32 ) );

   // Of both calibrations the internal one counts; of none the values are there but unreadable.
   EXPECT_EQ(
      inserted( internallyCalibrated().bit( "diagsMonitoringType", "externally calibrated" ) )
         ->domInfo( lane ),
      internal );
   Vel::Ptr<SfpNewStatus> const none =
      inserted( internallyCalibrated().raw( "diagsMonitoringType", 0x40 ) );
   EXPECT_TRUE( none->domInfoValid( lane ) );
   EXPECT_EQ( none->domInfo( lane ), DomInfo( 20, domCalibrationUnknown, unreadable, unreadable,
                                              unreadable, unreadable, unreadable, unreadable ) );
   EXPECT_THAT( values( none->domInfo( lane ) ), testing::Each( unreadable ) );
}

TEST( SfpStatusTest, EveryThresholdComesFromItsOwnWord ) {
   // Word n of the block holds 256 n + 256: n + 1 °C, and so on.
   for ( bool const internal : { true, false } ) {
      SfpImageBuilder const image =
         internal ? opticalModule().bit( "diagsMonitoringType", "internally calibrated" )
                  : externallyCalibrated();
      Vel::Ptr<SfpNewStatus> const status = inserted( image );
      for ( unsigned word = 0; word < 20; ++word ) {
         registerIs( *status, 2 * word, word + 1 );
         registerIs( *status, 2 * word + 1, 0 );
      }
      std::vector<double> found;
      DomThreshold const threshold = status->domThreshold();
      DomThreshold::velFields( [&]( auto const &, double DomThreshold::*limit ) {
         found.push_back( threshold.*limit );
      } );
      ASSERT_EQ( found.size(), 24u );
      for ( unsigned word = 0; word < 24; ++word ) {
         double const raw = 256 * ( word + 1 );
         double const code = internal ? raw : 2 * raw + 256;
         double const expected = word < 4                                 ? code / 256
                                 : word < 8                               ? code * 0.0001
                                 : word < 12                              ? code * 0.002
                                 : word < 16 || ( word < 20 && internal ) ? dBm( code )
                                                                          : unreadable;
         SCOPED_TRACE( testing::Message() << "word " << word << ( internal ? " internal" : "" ) );
         EXPECT_DOUBLE_EQ( found[word], expected );
      }
   }
}

TEST( SfpStatusTest, StatusBitsAndFlagsAreTheModulesOwn ) {
   SfpImageBuilder const image = internallyCalibrated()
                                    .bit( "enhancedOptions", "alarm and warning flags" )
                                    .bit( "enhancedOptions", "soft Tx disable" )
                                    .bit( "enhancedOptions", "soft Tx fault" )
                                    .bit( "domStatusBits", "Tx fault" )
                                    .bit( "domStatusBits", "soft Tx disable" )
                                    .bit( "alarmFlags", "temperature high" )
                                    .bit( "alarmFlags", "Rx power low" )
                                    .bit( "warningFlags", "voltage low" )
                                    .bit( "warningFlags", "Tx bias high" );
   SfpStatusBits bits;
   bits.txFaultIs( true );
   bits.softTxDisableIs( true );
   SfpDomFlags flags;
   flags.tempHighAlarmIs( true );
   flags.rxPowerLowAlarmIs( true );
   flags.voltageLowWarnIs( true );
   flags.txBiasHighWarnIs( true );

   Vel::Ptr<SfpNewStatus> const status = inserted( image );
   EXPECT_EQ( status->statusBits(), bits );
   EXPECT_EQ( status->domFlags(), flags );

   // Every bit, one after the other, sets one field and none twice.
   for ( unsigned at : { 110u, 112u, 113u, 116u, 117u } ) {
      for ( unsigned bit = 0; bit < 8; ++bit ) {
         Vel::Ptr<SfpNewStatus> const one =
            inserted( internallyCalibrated().raw( "enhancedOptions", 0xff ) );
         registerIs( *one, at, 1u << bit );
         int set = 0;
         SfpStatusBits const oneStatus = one->statusBits();
         SfpDomFlags const oneFlag = one->domFlags();
         SfpStatusBits::velFields( [&]( auto const &, auto f ) { set += oneStatus.*f; } );
         SfpDomFlags::velFields( [&]( auto const &, auto f ) { set += oneFlag.*f; } );
         bool const reserved = ( at == 113 || at == 117 ) && bit < 6;
         EXPECT_EQ( set, reserved ? 0 : 1 ) << at << "." << bit;
      }
   }

   status->lastPresenceChangeIs( 20 ); // read from a module before this one
   EXPECT_EQ( status->statusBits(), SfpStatusBits() );
   EXPECT_EQ( status->domFlags(), SfpDomFlags() );
   Vel::Ptr<SfpNewStatus> const without =
      inserted( SfpImageBuilder( image ).raw( "enhancedOptions", 0 ) );
   SfpStatusBits onlyReady;
   onlyReady.dataNotReadyIs( bits.dataNotReady() );
   EXPECT_EQ( without->statusBits(), onlyReady );
   EXPECT_EQ( without->domFlags(), SfpDomFlags() );
}

TEST( SfpStatusTest, TheClosestOperatorThresholdsAreInForce ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   Vel::Ptr<SfpNewStatus> const status = inserted( internallyCalibrated() );
   DomThreshold const own = status->domThreshold();
   auto const rowIs = [&]( char const * name, char const * vendor, char const * pn, char const * sn,
                           double power ) {
      Vel::Ptr<DomThresholdOverride> const row = xgc->domThresholdOverrideDataIs( name );
      row->vendorNameIs( vendor );
      row->vendorPnIs( pn );
      row->vendorSnIs( sn );
      row->txPowerHighAlarmIs( Units::Decibels( power ) );
      row->txPowerLowAlarmIs( Units::Decibels( power - 1 ) );
      row->txPowerHighWarnIs( Units::Decibels( power - 2 ) );
      row->txPowerLowWarnIs( Units::Decibels( power - 3 ) );
      row->rxPowerHighAlarmIs( Units::Decibels( power - 4 ) );
      row->rxPowerLowAlarmIs( Units::Decibels( power - 5 ) );
      row->rxPowerHighWarnIs( Units::Decibels( power - 6 ) );
      row->rxPowerLowWarnIs( Units::Decibels( power - 7 ) );
   };
   auto const inForce = [&] { return status->domThresholdInForce().txPowerHighAlarm(); };

   status->domThresholdOverriddenIs( true );
   EXPECT_EQ( status->domThresholdInForce(), own ); // no table
   status->xgcIs( xgc );
   rowIs( "a", "", "", "", 1 );               // means no module
   rowIs( "b", "Vendor", "PN-2", "", 2 );     // another part
   rowIs( "c", "Vendor", "PN-1", "SN-2", 3 ); // another module of the part
   rowIs( "d", "Vend", "", "", 4 );           // another vendor
   EXPECT_EQ( status->domThresholdInForce(), own );
   rowIs( "e", "Vendor", "", "", 5 );
   rowIs( "f", "Vendor  ", "", "", 6 ); // padding does not count, and the first of equals stays
   EXPECT_EQ( inForce(), 5 );
   rowIs( "g", "Vendor", "PN-1   ", "", 7 );
   EXPECT_EQ( inForce(), 7 );
   rowIs( "0", "Vendor          ", "PN-1", "SN-1", 8 );
   EXPECT_EQ( inForce(), 8 );

   DomThreshold expected = own;
   expected.txPowerHighAlarmIs( 8 );
   expected.txPowerLowAlarmIs( 7 );
   expected.txPowerHighWarnIs( 6 );
   expected.txPowerLowWarnIs( 5 );
   expected.rxPowerHighAlarmIs( 4 );
   expected.rxPowerLowAlarmIs( 3 );
   expected.rxPowerHighWarnIs( 2 );
   expected.rxPowerLowWarnIs( 1 );
   EXPECT_EQ( status->domThresholdInForce(), expected );
   EXPECT_EQ( status->domThreshold(), own );
   status->domThresholdOverriddenIs( false );
   EXPECT_EQ( status->domThresholdInForce(), own );
}

// Identity

TEST( SfpStatusTest, IdentityIsThatOfTheContents ) {
   Vel::Ptr<SfpNewStatus> const sfp = inserted( internallyCalibrated() );
   XcvrNewStatus const & status = *sfp;
   EXPECT_EQ( status.xcvrType(), XcvrType::sfpPlus );
   EXPECT_EQ( status.vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                               "SN-1            ", "A   ", "260101  " ) );
   EXPECT_EQ( status.bitrate(), 103u );
   EXPECT_EQ( status.mediaTypeString(), "10GBASE-SR" );
   EXPECT_EQ( status.laserWavelength(), 850000u );
   EXPECT_EQ( status.laserWavelengthPrecision(), laserWavelengthPrecisionNm );
   EXPECT_EQ( status.capabilities(), Capabilities( 1, false, false, false, false, 0 ) );
   EXPECT_EQ( status.domCapabilities(),
              DomCapabilities( true, true, true, true, true, false, false, false ) );
   EepromDescriptor const memory = status.idEepromInfo();
   EXPECT_EQ( memory.eepromPages(), 2 );
   EXPECT_EQ( memory.maxEepromPages(), 2 );
   EXPECT_EQ( memory.pageSizeBytes(), ( EepromDescriptor::PageSizes{ { 0, 256 }, { 1, 256 } } ) );

   // A forced media type counts in all that follows from it, but for what was detected.
   sfp->overrideMediaTypeIs( xcvr1000BaseT );
   EXPECT_EQ( status.mediaType(), xcvr1000BaseT );
   EXPECT_EQ( status.detectedMediaTypeString(), "10GBASE-SR" );
   EXPECT_EQ( status.domCapabilities(), DomCapabilities() );
   EXPECT_FALSE( sfp->assertRateSelect0() );
   EXPECT_FALSE( sfp->assertRateSelect1() );
   sfp->overrideMediaTypeIs( xcvr10GBaseLrm ); // a linear interface
   EXPECT_TRUE( sfp->assertRateSelect0() );
   sfp->overrideMediaTypeIs( xcvrUnknown );
   EXPECT_TRUE( sfp->assertRateSelect0() );
   EXPECT_TRUE( sfp->assertRateSelect1() );
   EXPECT_FALSE( sfp->is1GConfigurable() );
   sfp->actualIdEepromContentsIs( opticalModule().bit( "compliance", "1000BASE-SX" ).contents() );
   EXPECT_TRUE( sfp->is1GConfigurable() );
}

TEST( SfpStatusTest, WavelengthIsInPicometresUnlessTheModuleIsAnActiveCable ) {
   SfpImageBuilder const dwdm = SfpImageBuilder()
                                   .raw( "identifier", 11 )
                                   .raw( "extIdentifier", 0x20 )
                                   .bit( "compliance", "10GBASE-ER" )
                                   .value( "length9umKm", 80 )
                                   .value( "laserWavelengthInteger", 1530 )
                                   .raw( "laserWavelengthFractional", 33 );
   EXPECT_EQ( inserted( dwdm )->laserWavelength(), 1530330u );
   EXPECT_EQ( inserted( dwdm )->laserWavelengthPrecision(), laserWavelengthPrecisionPm );
   EXPECT_EQ( inserted( dwdm )->mediaTypeString(), "10G-DW3033ZR" );
   Vel::Ptr<SfpNewStatus> const cable = inserted( dwdm );
   cable->overrideMediaTypeIs( xcvr10GBaseAr );
   EXPECT_EQ( cable->laserWavelength(), 850000u );
   EXPECT_EQ( cable->laserWavelengthPrecision(), laserWavelengthPrecisionNm );
}

TEST( SfpStatusTest, AttenuationOfAPassiveCableComesFromTheTableOrItsLength ) {
   auto const cable = []( unsigned metres ) {
      return inserted( SfpImageBuilder()
                          .raw( "bitrateNominal", 103 )
                          .bit( "compliance", "passive cable" )
                          .value( "lengthCopper", metres )
                          .text( "vendorName", "Vendor" )
                          .text( "vendorPn", "CAB" ) );
   };
   EXPECT_DOUBLE_EQ( cable( 2 )->electricalPathAttenuation().value(), 6.4 );
   EXPECT_DOUBLE_EQ( cable( 4 )->electricalPathAttenuation().value(), 12.8 );
   EXPECT_DOUBLE_EQ( cable( 5 )->electricalPathAttenuation().value(), 8.5 );
   EXPECT_EQ( cable( 0 )->electricalPathAttenuation().value(), 0 );
   EXPECT_EQ( inserted( opticalModule() )->electricalPathAttenuation().value(), 0 );

   Vel::Ptr<ModelToAttenuation> const table = modelToAttenuationFactory( "attenuation" );
   Vel::Ptr<SfpNewStatus> const status = cable( 2 );
   status->attnTableIs( table );
   EXPECT_DOUBLE_EQ( status->electricalPathAttenuation().value(), 6.4 );
   table->attenuationIs( "Vendor          -CAB             ", Units::Decibels( 0.25 ) );
   EXPECT_EQ( status->electricalPathAttenuation().value(), 0.25 );
   status->overrideMediaTypeIs( xcvr10GBaseCrActive );
   EXPECT_EQ( status->electricalPathAttenuation().value(), 0 );
}

// Tuning

namespace {

/// 191.3 to 196.1 THz in 50 GHz, tuned to its channel 1.
SfpImageBuilder tunableModule() {
   return SfpImageBuilder()
      .raw( "identifier", 11 )
      .raw( "extIdentifier", 4 )
      .bit( "options", "tunable transmitter" )
      .bit( "compliance", "10GBASE-ER" )
      .value( "length9umKm", 80 )
      .value( "tuningFirstFrequencyTHz", 191 )
      .value( "tuningFirstFrequencyGHz", 300 )
      .value( "tuningLastFrequencyTHz", 196 )
      .value( "tuningLastFrequencyGHz", 100 )
      .value( "tuningGridSpacingGHz", 50 )
      .raw( "tuningChannel", 1 );
}

} // namespace

TEST( SfpTuningTest, CapabilitiesComeFromTheTuningPage ) {
   Vel::Ptr<SfpNewStatus> const status = inserted( tunableModule() );
   EXPECT_EQ( status->mediaType(), xcvr10GBaseDwdmZt );
   EXPECT_TRUE( status->capabilities().tunableWavelength() );
   EXPECT_EQ( status->hwChannel(), 1u );
   GridSpacingCapabilities const none;
   struct Row {
      double ghz;
      GridSpacingCapabilities spacings;
   };
   for ( Row const & row :
         std::initializer_list<Row>{ { 100, { true, false, false, false, false, false } },
                                     { 50, { true, true, false, false, false, false } },
                                     { 25, { true, true, false, true, false, false } },
                                     { 12.5, none }, // cut to 12 GHz
                                     { 6.2, none },
                                     { 33, none },
                                     { 75, none },
                                     { 0, none } } ) {
      SCOPED_TRACE( row.ghz );
      EXPECT_EQ(
         inserted( tunableModule().value( "tuningGridSpacingGHz", row.ghz ) )->tuningCapabilities(),
         TuningCapabilities( 191200000, 191300000, 196100000, row.spacings, 0 ) );
   }
   EXPECT_EQ( inserted( tunableModule().a2hMissing() )->tuningCapabilities(),
              TuningCapabilities( 191200000, 0, 0, none, 0 ) );
}

TEST( SfpTuningTest, ATuningIsPendingUntilTheModuleIsThere ) {
   Vel::Ptr<Xgc> const xgc = xgcFactory( "xgc" );
   Vel::Ptr<SfpNewStatus> const status = inserted( tunableModule() );
   status->xgcIs( xgc );
   Vel::Ptr<TuningConfig> const config = xgc->tuningConfigIs( "Ethernet1" );
   config->channelIs( 40 );
   config->gridIs( 50000 );

   // ITU channel 40 counts from 191.2 THz, the module's own 38 from 191.3.
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_EQ( status->ituTuningConfig(), ItuTuningConfig( 40, 50000, 0, true ) );
   EXPECT_EQ( status->hwTuningConfig(), HwTuningConfig( 38, 50000, 0 ) );
   GridSpacingCapabilities const grids( true, true, false, false, false, false );
   EXPECT_EQ( status->resolvedTuningStatus(),
              ResolvedTuningStatus( 40, 50000, 0, 193150000, 299792458.0 / 193150, 3, 50000,
                                    191300000, 299792458.0 / 191300, grids ) );
   registerIs( *status, 145, 38 );
   EXPECT_FALSE( status->isFreqTuningPending() );
   EXPECT_EQ( status->resolvedTuningStatus().operationalChannel(), 40u );
   EXPECT_EQ( status->resolvedTuningStatus().operationalFrequency(), 193150000u );

   config->channelIs( 0 );
   config->gridIs( 0 );
   config->frequencyIs( 193200000 );
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_EQ( status->hwTuningConfig(), HwTuningConfig( 39, 50000, 0 ) );

   // Off the resolved grid, and below its base, there is no operational channel.
   for ( unsigned const ghz : { 191325u, 190000u } ) {
      Vel::Ptr<SfpNewStatus> const off =
         inserted( tunableModule()
                      .value( "tuningFirstFrequencyTHz", ghz / 1000 )
                      .value( "tuningFirstFrequencyGHz", ghz % 1000 ) );
      registerIs( *off, 145, 1 );
      EXPECT_TRUE( off->isFreqTuningPending() );
      EXPECT_EQ( off->resolvedTuningStatus().operationalFrequency(), ghz * 1000 );
      EXPECT_EQ( off->resolvedTuningStatus().operationalChannel(), 0u );
      EXPECT_EQ( off->resolvedTuningStatus().operationalGrid(), 0u );
   }

   // What fails, and what nobody configured, falls back to 193.1 THz.
   config->frequencyIs( 200000000 );
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_EQ( status->hwTuningConfig(), HwTuningConfig( 37, 50000, 0 ) );
   EXPECT_FALSE( status->ituTuningConfig().laserEnabled() );
   xgc->tuningConfigDel( "Ethernet1" );
   registerIs( *status, 145, 37 );
   EXPECT_FALSE( status->isFreqTuningPending() );
   EXPECT_EQ( status->resolvedTuningStatus().configuredFrequency(), 0u );
}

TEST( SfpTuningTest, RegistersAreExactWhereCapabilitiesAreCut ) {
   // A module of a 12.5 GHz grid whose first frequency is no whole GHz.
   Vel::Ptr<SfpNewStatus> const status = inserted( tunableModule()
                                                      .value( "tuningFirstFrequencyGHz", 262.5 )
                                                      .value( "tuningGridSpacingGHz", 12.5 ) );
   status->ituTuningConfigIs( ItuTuningConfig( 39, 50000, 0, true ) ); // 193.1 THz
   status->updateHwTuningConfig();
   EXPECT_EQ( status->hwTuningConfig(), HwTuningConfig( 148, 12500, 0 ) );
   // What does not lie on its grid it has no channel for.
   status->ituTuningConfigIs( ItuTuningConfig( 39, 33000, 0, true ) );
   status->updateHwTuningConfig();
   EXPECT_EQ( status->hwTuningConfig(), HwTuningConfig() );
}

TEST( SfpTuningTest, AModuleThatCannotBeTunedIsNeverPending ) {
   Vel::Ptr<SfpNewStatus> const status = inserted( opticalModule() );
   EXPECT_FALSE( status->isFreqTuningPending() );
   EXPECT_EQ( status->ituTuningConfig(), ItuTuningConfig() );
   EXPECT_EQ( status->resolvedTuningStatus(), ResolvedTuningStatus() );
}

// The cost

TEST( SfpStatusTest, ReadingAndWritingRegistersAllocatesNothing ) {
   for ( SfpImageBuilder const & image : { internallyCalibrated(), externallyCalibrated() } ) {
      Vel::Ptr<SfpNewStatus> const sfp = inserted( image );
      registerIs( *sfp, 96, 1 ); // the page
      XcvrNewStatus const & status = *sfp;
      double sum = 0;
      AllocationCount const allocations;
      for ( unsigned i = 0; i < 256; ++i ) {
         registerIs( *sfp, i, i );
         sum += static_cast<double>( status.vendorInfo().vendorSn().size() ) +
                static_cast<double>( status.mediaType() ) + status.domInfo( lane ).temperature() +
                status.domThreshold().tempHighAlarm();
      }
      EXPECT_EQ( allocations.calls(), 0u );
      EXPECT_GT( sum, 0 );
   }
}
