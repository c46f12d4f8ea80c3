#include "tests/cmis/CmisModule.h"

#include <Xcvr/XcvrOptics.h>

#include <gmock/gmock.h>

using namespace Xcvr;
using namespace XcvrTest;
using testing::Contains;

namespace {

Vel::Ptr<OsfpStatus> inserted( CmisImageBuilder const & image ) {
   auto const status = osfpStatusFactory( "Ethernet1" );
   image.writeTo( *status->rawEepromContents() );
   status->parseEeprom();
   return asRead( status );
}

} // namespace

TEST( CmisStatusTest, AnOpticalModuleThroughTheBase ) {
   EXPECT_EQ( qsfpDdStatusFactory( "Ethernet1" )->xcvrType(), XcvrType::qsfpDd );
   EXPECT_EQ( inserted( opticalModule() )->moduleState(), moduleReady );
   Vel::Ptr<XcvrNewStatus> const status = inserted( opticalModule() );
   EXPECT_EQ( status->xcvrType(), XcvrType::osfp );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                                "SN-1            ", "  ", "        " ) );
   EXPECT_EQ( status->mediaTypeString(), "400GBASE-DR4" );
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
   auto const status = inserted( opticalModule() );
   EXPECT_EQ( status->domCapabilities(),
              DomCapabilities( true, false, true, true, true, false, true, true ) );
   ASSERT_TRUE( status->domInfoValid( LaneId( 7 ) ) );
   EXPECT_FALSE( status->domInfoValid( LaneId( 8 ) ) );
   DomInfo const info = status->domInfo( LaneId( 7 ) );
   EXPECT_EQ( info, DomInfo( info.updateTime(), domCalibrationInternal, 40, unreadable, 37, 0,
                             wattsToDbm( 0.5e-3 ), unreadable ) );
   DomAggPower const sum = status->domAggPower();
   EXPECT_NEAR( sum.aggTxPower(), wattsToDbm( 8e-3 ), 1e-9 );
   EXPECT_NEAR( sum.aggRxPower(), wattsToDbm( 4e-3 ), 1e-9 );
   EXPECT_TRUE( status->domThresholdValid() );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), 75 );

   status->lastPresenceChangeIs( 30 );
   EXPECT_THAT( doubles( status->domInfo( LaneId( 0 ) ) ), Contains( unreadable ).Times( 6 ) );
   EXPECT_EQ( status->domAggPower(),
              DomAggPower( 0, domCalibrationUnknown, unreadable, unreadable ) );
   status->idEepromValidIs( false );
   EXPECT_FALSE( status->domThresholdValid() );
   EXPECT_EQ( inserted( opticalModule().missing( "02h" ) )->domThreshold().tempHighAlarm(),
              unreadable );
}

TEST( CmisStatusTest, LanesOfPage11h ) {
   CmisImageBuilder image = opticalModule().raw( "dataPathStates", 0x14000000 );
   image.raw( "activeApSel2", 0x11, // explicit control
              "txInputEqualization", 0x00050000, "rxOutputPreEmphasis", 0x00060000,
              "rxOutputAmplitude", 0x00030000 );
   auto const status = inserted( image );
   EXPECT_EQ( status->dataPathState( LaneId( 0 ) ), dataPathActivated );
   EXPECT_EQ( status->dataPathState( LaneId( 1 ) ), dataPathDeactivated );
   EXPECT_EQ( status->dataPathState( LaneId( 8 ) ), dataPathStateUnknown );
   EXPECT_EQ( status->txInputEqualization( LaneId( 2 ) ), TuningValue( true, 5, false ) );
   EXPECT_EQ( status->rxOutputPreEmphasis( LaneId( 2 ) ), TuningValue( true, 6, false ) );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 2 ) ), TuningValue( true, 3, false ) );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 3 ) ), TuningValue( true, 0, true ) );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 8 ) ), TuningValue() );
}

TEST( CmisStatusTest, ACableWithFlatMemory ) {
   // In place of a module with all pages, which nobody has cleared.
   auto const status = inserted( opticalModule() );
   CmisImageBuilder cable = opticalModule().bit( "memoryAndSpeed", "flat memory" );
   cable.application( 1, { 0x1d, 0x01, 8, 8, 1, 1 } )
      .vendor( "Vendor", "CR8" )
      .raw( "moduleType", 3, "attenuation12p9GHz", 9, "powerClass", 0xe0 ) // class 8
      .writeTo( *status->rawEepromContents() );
   status->parseEeprom();
   EXPECT_EQ( status->mediaType(), xcvr400GBaseCr8 );
   EXPECT_TRUE( status->disablePolling() );
   EXPECT_EQ( status->powerClass(), xcvrPowerClassUnknown );
   EXPECT_EQ( status->laserWavelength(), 0u );
   EXPECT_EQ( status->dataPathState( LaneId( 0 ) ), dataPathStateUnknown );
   EXPECT_EQ( status->rxOutputAmplitude( LaneId( 0 ) ), TuningValue() );
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
   auto const status = osfpStatusFactory( "Ethernet1" );
   status->idEepromContentsIs( 0, Vel::String( image.page( "lower" ) + image.page( "00h" ) ) );
   status->idEepromContentsIs( 1, Vel::String( image.page( "01h" ) ) );
   status->idEepromContentsIs( 0x11, Vel::String( image.page( "11h" ) ) );
   status->updateLastValidTime( 5 );
   EXPECT_EQ( status->rawEepromContents()->lastValidData(), 5 );
   status->parseEeprom();
   EXPECT_TRUE( status->domCapabilities().txPower() );
   EXPECT_TRUE( status->rxOutputAmplitude( LaneId( 0 ) ).valid() );
}

TEST( CmisStatusTest, AModuleThatGoesIsForgotten ) {
   struct Watcher : CmisStatus::Notifiee {
      void onDecodedEepromContents() override { seen.push_back( notifier()->mediaType() ); }
      std::vector<MediaType> seen;
   } watcher;
   auto const status = inserted( opticalModule() );
   watcher.notifierIs( status );
   status->clearIdEepromContents();
   EXPECT_THAT( watcher.seen, testing::ElementsAre( xcvr400GBaseDr4, xcvrUnknown ) );
   EXPECT_TRUE( status->rawEepromContents()->memoryMap().empty() );
   EXPECT_EQ( status->vendorInfo(), VendorInfo() );
   EXPECT_EQ( status->domThreshold().tempHighAlarm(), unreadable );
   opticalModule().writeTo( *status->rawEepromContents() );
   status->parseEeprom();
   EXPECT_EQ( status->mediaType(), xcvr400GBaseDr4 );
}
