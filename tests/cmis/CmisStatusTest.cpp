#include "tests/support/CmisImageBuilder.h"

#include <Xcvr/XcvrOptics.h>
#include <Xcvr/XcvrOsfp.h>

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

using namespace Xcvr;
using XcvrTest::CmisImageBuilder;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

CmisImageBuilder opticalModule() {
   CmisImageBuilder image;
   image.raw( "moduleType", 2 )
      .raw( "moduleState", 0x07 )
      .application( 1, { 0x11, 0x1c, 8, 4, 0x01, 0x01 } )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "vendorRev", "A" )
      .text( "dateCode", "260101" )
      .raw( "powerClass", 0xa0 )
      .value( "wavelength", 1311 )
      .raw( "implMonitorsAdvertisement", 0x0107 ) // no supply voltage
      .value( "temperature", 40 )
      .value( "voltage", 3.3 )
      .value( "tempHighAlarm", 75 )
      .lanes( "txBias", 40, 0 )
      .lanes( "txPower", 1, 0 )
      .lanes( "rxPower", 0.5, 0 )
      .raw( "dataPathStates", 0x14000000 )
      .raw( "activeApSel2", 0x11 )
      .raw( "txInputEqualization", 0x00050000 )
      .raw( "rxOutputPreEmphasis", 0x00060000 )
      .raw( "rxOutputAmplitude", 0x00030000 );
   return image;
}

template <typename Status>
Vel::Ptr<Status> inserted( CmisImageBuilder const & image ) {
   Vel::Ptr<Status> const status( new Status( "Ethernet1" ) );
   image.writeTo( *status->rawEepromContents() );
   status->parseEeprom();
   status->presenceIs( xcvrPresent );
   status->idEepromValidIs( true );
   status->lastPresenceChangeIs( 10 );
   status->lastDomUpdateTimeIs( 20 );
   status->lastDomThresholdsUpdateTimeIs( 15 );
   return status;
}

} // namespace

TEST( CmisStatusTest, AnOpticalModuleThroughTheBase ) {
   Vel::Ptr<XcvrNewStatus> const status = inserted<QsfpDdStatus>( opticalModule() );
   EXPECT_EQ( status->xcvrType(), XcvrType::qsfpDd );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                                "SN-1            ", "A ", "260101  " ) );
   EXPECT_EQ( status->mediaTypeString(), "400GBASE-DR4" );
   EXPECT_EQ( status->bitrateKbps(), 400000000u );
   EXPECT_EQ( status->electricalInterface(), xcvr50GLimiting );
   EXPECT_TRUE( status->optical() );
   EXPECT_FALSE( status->disablePolling() );
   EXPECT_EQ( status->laserWavelength(), 1311000u );
   EXPECT_EQ( status->laserWavelengthPrecision(), laserWavelengthPrecisionPm );
   EXPECT_EQ( status->powerClass(), xcvrPowerClass6 );
   EXPECT_EQ( status->capabilities(), Capabilities( 8, false, false, false, false, 4 ) );
   EXPECT_EQ( status->electricalPathAttenuation(), Units::Decibels( 0 ) );
   EXPECT_EQ(
      status->idEepromInfo(),
      EepromDescriptor( 5, 5, { { 0, 256 }, { 1, 128 }, { 2, 128 }, { 16, 128 }, { 17, 128 } } ) );

   status->overrideMediaTypeIs( xcvr400GBaseFr4 );
   EXPECT_EQ( status->mediaType(), xcvr400GBaseFr4 );
   EXPECT_EQ( status->detectedMediaType(), xcvr400GBaseDr4 );
}

TEST( CmisStatusTest, MonitorsAreValidAfterInsertionOnly ) {
   auto const status = inserted<OsfpStatus>( opticalModule() );
   EXPECT_EQ( status->domCapabilities(),
              DomCapabilities( true, false, true, true, true, false, true, true ) );
   ASSERT_TRUE( status->domInfoValid( LaneId( 7 ) ) );
   EXPECT_FALSE( status->domInfoValid( LaneId( 8 ) ) );
   DomInfo const info = status->domInfo( LaneId( 7 ) );
   EXPECT_EQ( info, DomInfo( info.updateTime(), domCalibrationInternal, 40, unreadable, 40, 0,
                             wattsToDbm( 0.5e-3 ), unreadable ) );
   DomAggPower const sum = status->domAggPower();
   EXPECT_EQ( sum.updateTime(), info.updateTime() );
   EXPECT_NEAR( sum.aggTxPower(), wattsToDbm( 8e-3 ), 1e-9 );
   EXPECT_NEAR( sum.aggRxPower(), wattsToDbm( 4e-3 ), 1e-9 );

   status->lastPresenceChangeIs( 30 );
   EXPECT_FALSE( status->domInfoValid( LaneId( 0 ) ) );
   EXPECT_EQ( status->domInfo( LaneId( 0 ) ),
              DomInfo( 0, domCalibrationUnknown, unreadable, unreadable, unreadable, unreadable,
                       unreadable, unreadable ) );
   EXPECT_EQ( status->domAggPower(),
              DomAggPower( 0, domCalibrationUnknown, unreadable, unreadable ) );
}

TEST( CmisStatusTest, Thresholds ) {
   auto const status = inserted<OsfpStatus>( opticalModule() );
   EXPECT_TRUE( status->domThresholdValid() );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), 75 );
   status->idEepromValidIs( false );
   EXPECT_FALSE( status->domThresholdValid() );
   auto const without = inserted<OsfpStatus>( opticalModule().missing( "02h" ) );
   EXPECT_EQ( without->domThreshold().tempHighAlarm(), unreadable );
}

TEST( CmisStatusTest, TuningOfALane ) {
   auto const status = inserted<OsfpStatus>( opticalModule() );
   // Lane 2 alone has explicit control.
   EXPECT_EQ( status->txInputEqualization( LaneId( 2 ) ), TuningValue( true, 5, false ) );
   EXPECT_EQ( status->rxOutputPreEmphasis( LaneId( 2 ) ), TuningValue( true, 6, false ) );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 2 ) ), TuningValue( true, 3, false ) );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 3 ) ), TuningValue( true, 0, true ) );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 8 ) ), TuningValue() );
   auto const without = inserted<OsfpStatus>( opticalModule().missing( "11h" ) );
   EXPECT_EQ( without->rxOutputAmplitude( LaneId( 2 ) ), TuningValue() );
}

TEST( CmisStatusTest, States ) {
   auto const status = inserted<OsfpStatus>( opticalModule() );
   EXPECT_EQ( status->moduleState(), moduleReady );
   EXPECT_EQ( status->dataPathState( LaneId( 0 ) ), dataPathActivated );
   EXPECT_EQ( status->dataPathState( LaneId( 1 ) ), dataPathDeactivated );
   EXPECT_EQ( status->dataPathState( LaneId( 8 ) ), dataPathStateUnknown );
}

TEST( CmisStatusTest, ACableWithFlatMemory ) {
   CmisImageBuilder image;
   image.identifier( 0x18 )
      .raw( "moduleType", 3 )
      .application( 1, { 0x1d, 0x01, 8, 8, 1, 1 } )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "CR8" )
      .raw( "attenuation12p9GHz", 9 )
      .raw( "powerClass", 0xe0 ); // class 8
   auto const status = inserted<QsfpDdStatus>( image.flat() );
   EXPECT_EQ( status->mediaType(), xcvr400GBaseCr8 );
   EXPECT_TRUE( status->disablePolling() );
   EXPECT_EQ( status->powerClass(), xcvrPowerClassUnknown );
   EXPECT_EQ( status->laserWavelength(), 0u );
   EXPECT_FALSE( status->domInfoValid( LaneId( 0 ) ) );
   EXPECT_FALSE( status->domThresholdValid() );
   EXPECT_EQ( status->idEepromInfo(), EepromDescriptor( 1, 5, { { 0, 256 } } ) );
   EXPECT_EQ( status->electricalPathAttenuation(), Units::Decibels( 9 ) );
   auto const table = modelToAttenuationFactory( "table" );
   table->attenuationIs( "Vendor          -CR8             ", Units::Decibels( 7.5 ) );
   status->attnTableIs( table );
   EXPECT_EQ( status->electricalPathAttenuation(), Units::Decibels( 7.5 ) );
}

TEST( CmisStatusTest, PagesByNumber ) {
   CmisImageBuilder const image = opticalModule();
   auto const text = []( std::string const & bytes ) {
      return Vel::String( std::string_view( bytes ) );
   };
   auto const status = osfpStatusFactory( "Ethernet1" );
   status->idEepromContentsIs( 0, text( image.page( "lower" ) + image.page( "00h" ) ) );
   status->idEepromContentsIs( 1, text( image.page( "01h" ) ) );
   status->idEepromContentsIs( 0x11, text( image.page( "11h" ) ) );
   status->updateLastValidTime( 5 );
   status->parseEeprom();
   EXPECT_EQ( status->vendorInfo().vendorPn(), "PN-1            " );
   EXPECT_EQ( status->mediaType(), xcvr400GBaseDr4 );
   EXPECT_TRUE( status->rxOutputAmplitude( LaneId( 0 ) ).valid() );
   EXPECT_EQ( status->rawEepromContents()->memoryMap().size(), 4u );
   EXPECT_EQ( status->rawEepromContents()->lastValidData(), 5 );
}

TEST( CmisStatusTest, AShortPageIsNoError ) {
   CmisImageBuilder const image = opticalModule();
   for ( CmisImageBuilder::Page const & page : CmisImageBuilder::allPages ) {
      auto const status = osfpStatusFactory( "Ethernet1" );
      image.writeTo( *status->rawEepromContents() );
      for ( size_t size = 127; size > 0; --size ) {
         OsfpBankAndPage const key( page.bank, page.page );
         status->rawEepromContents()->memoryIs(
            key, status->rawEepromContents()->memory( key ).substr( 0, size ) );
         status->parseEeprom();
      }
      EXPECT_EQ( status->vendorInfo().vendorName() == "Vendor          ", page.label != "00h" );
   }
}

TEST( CmisStatusTest, AModuleThatGoesIsForgotten ) {
   struct Watcher : CmisStatus::Notifiee {
      explicit Watcher( CmisStatus & s ) : status( s ) { notifierIs( &s ); }
      void onDecodedEepromContents() override {
         seen.push_back( stringValue( status.mediaType() ) );
      }
      CmisStatus & status;
      std::vector<Vel::String> seen;
   };
   auto const status = inserted<OsfpStatus>( opticalModule() );
   Watcher const watcher( *status );
   auto const former = status->decodedEepromContents();
   status->clearIdEepromContents();
   EXPECT_NE( status->decodedEepromContents(), former );
   EXPECT_TRUE( status->rawEepromContents()->memoryMap().empty() );
   EXPECT_EQ( status->vendorInfo(), VendorInfo() );
   EXPECT_EQ( status->mediaType(), xcvrUnknown );
   EXPECT_EQ( status->powerClass(), xcvrPowerClassUnknown );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), unreadable );
   EXPECT_THAT( watcher.seen, testing::ElementsAre( "xcvr400GBaseDr4", "xcvrUnknown" ) );
   EXPECT_EQ( status->eepromParser()->parsedEeprom(), status->decodedEepromContents() );

   opticalModule().writeTo( *status->rawEepromContents() );
   status->parseEeprom();
   EXPECT_EQ( status->mediaType(), xcvr400GBaseDr4 );
}

TEST( CmisConfigTest, AModuleOfACell ) {
   auto const cell = osfpCellConfigFactory( "cell" );
   Vel::Ptr<CmisConfig> const config = cell->xcvrConfigIs( "Ethernet1" );
   config->paramConfigIs()->tuningParamIs( LaneId( 3 ), OsfpTuningParamValue( 0, 5, 0, 0, 1 ) );
   auto const status = osfpStatusFactory( "Ethernet1" );
   status->xcvrConfigIs( config );
   EXPECT_EQ( status->xcvrConfig()->paramConfig()->tuningParam( LaneId( 3 ) ).rxOutputAmplitude(),
              1 );
}
