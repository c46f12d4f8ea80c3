#include "tests/support/SfpImageBuilder.h"
#include "tests/support/StatusValues.h"

#include <Xcvr/XcvrSfpPlus.h>

#include <gmock/gmock.h>

#include <random>

using namespace Xcvr;
using namespace XcvrTest;
using testing::ElementsAre;

namespace {

LaneId const lane( 0 );

/// A 10GBASE-SR module with monitors.
SfpImageBuilder internallyCalibrated() {
   return SfpImageBuilder()
      .vendor()
      .text( "vendorRev", "A" )
      .text( "dateCode", "260101" )
      .bit( "compliance", "10GBASE-SR" )
      .raw( "bitrateNominal", 103, "diagsMonitoringType", 0x60 )
      .value( "lengthOm3", 300, "laserWavelengthInteger", 850, "domTemperature", -12.5,
              "domSupplyVoltage", 3.3, "domBiasCurrent", 6.5, "domTxPower", 0.5, "domRxPower",
              0.25 );
}

/// Raw values 0x1000 everywhere, with the constants of a slope of 2 and an offset of 256 and, for
/// the received power, 2 + 0.5 r.
SfpImageBuilder externallyCalibrated() {
   SfpImageBuilder image = internallyCalibrated().raw( "diagsMonitoringType", 0x50 );
   for ( std::string const monitor :
         { "domTemperature", "domSupplyVoltage", "domBiasCurrent", "domTxPower" } ) {
      image.raw( monitor, 0x1000 ).value( monitor + "Slope", 2 ).value( monitor + "Offset", 256 );
   }
   return image.raw( "domRxPower", 0x1000 ).value( "domRxPower0", 2, "domRxPower1", 0.5 );
}

Vel::Ptr<SfpNewStatus> inserted( XcvrSff8472IdEepromContents const & contents ) {
   auto const status = sfpNewStatusFactory( "Ethernet1" );
   status->actualIdEepromContentsIs( contents );
   return asRead( status );
}
Vel::Ptr<SfpNewStatus> inserted( SfpImageBuilder const & image ) {
   return inserted( image.contents() );
}

void registerIs( SfpNewStatus & status, unsigned at, unsigned data ) {
   status.registerDataIs( XcvrSff8472DomRegisterData( static_cast<uint16_t>( 0xA200 + at ),
                                                      static_cast<uint8_t>( data ) ) );
}

double temperature( Vel::Ptr<SfpNewStatus> const & status ) {
   return status->domInfo( lane ).temperature();
}

TEST( SfpRegisterTest, AByteIsStoredOnceAndToldOnChange ) {
   struct Watcher : SfpNewStatus::Notifiee {
      void onRegisterData( uint16_t address ) override { told.push_back( address ); }
      std::vector<unsigned> told;
   } watcher;
   auto const status = sfpNewStatusFactory( "Ethernet1" );
   watcher.notifierIs( status );
   registerIs( *status, 0x61, 0 ); // a zero is there too
   EXPECT_TRUE( status->registerDataHas( 0xA261 ) );
   for ( int twice = 0; twice < 2; ++twice ) {
      status->registerDataDel( 0xA261 );
      EXPECT_FALSE( status->registerDataHas( 0xA261 ) );
      registerIs( *status, 0x60, 0x19 );
      EXPECT_EQ( status->registerData( 0xA260 ), XcvrSff8472DomRegisterData( 0xA260, 0x19 ) );
   }
   status->registerDataNotify( 0xA260 );
   status->registerDataDelAll();
   status->registerDataDelAll();
   EXPECT_EQ( status->registerData( 0xA260 ), XcvrSff8472DomRegisterData() );
   EXPECT_THAT( watcher.told, ElementsAre( 0xA261, 0xA261, 0xA260, 0xA260, 0xA260 ) );

   // Those of all devices are iterated in order.
   std::vector<unsigned> keys;
   for ( unsigned address : { 0xA2FFu, 0xA200u, 0xA05Cu, 0xFFFFu, 0u } ) {
      status->registerDataIs( XcvrSff8472DomRegisterData( uint16_t( address ), 7 ) );
   }
   for ( auto const & [key, value] : status->registerDataMap() ) {
      keys.push_back( key );
   }
   EXPECT_THAT( keys, ElementsAre( 0, 0xA05C, 0xA200, 0xA2FF, 0xFFFF ) );
}

TEST( SfpStatusTest, AByteOfA2hIsTheRegistersThenTheContents ) {
   auto const status = inserted( internallyCalibrated() );
   registerIs( *status, 96, 30 ); // the other byte, 0x80, still comes from the contents
   EXPECT_EQ( temperature( status ), 30.5 );
   registerIs( *status, 97, 0 );
   EXPECT_EQ( temperature( status ), 30.0 );
   status->registerDataDel( 0xA260 );
   EXPECT_EQ( temperature( status ), -13.0 );
   for ( size_t pageSize : { 0u, 97u } ) { // without a page, and with one that ends within them
      XcvrSff8472IdEepromContents contents = internallyCalibrated().contents();
      contents.eepromPageA2DataIs( contents.eepromPageA2Data().substr( 0, pageSize ) );
      auto const alone = inserted( contents );
      EXPECT_EQ( alone->domInfo( lane ).rxPower(), unreadable );
      registerIs( *alone, 96, 0x20 );
      registerIs( *alone, 99, 100 );
      EXPECT_EQ( temperature( alone ), 32 );
      EXPECT_DOUBLE_EQ( alone->domInfo( lane ).voltage(), 0.01 );
   }
}

TEST( SfpStatusTest, AnActiveOverrideReplacesAllThatWasRead ) {
   auto const status = inserted( internallyCalibrated() );
   registerIs( *status, 96, 30 );
   XcvrSff8472IdEepromContents other = internallyCalibrated()
                                          .vendor( "Other" )
                                          .value( "lengthOm3", 100, "domTemperature", 60 )
                                          .contents();
   auto const config = sfpConfigFactory( "Ethernet1" );
   expectOverride( *status, config, other );
   EXPECT_EQ( temperature( status ), 60 );
   // Without a page A2h of its own all its bytes are 0, whatever was read.
   other.eepromPageA2DataIs( "" );
   config->diagConfig( "diag" )->overrideIdEepromContentsIs( other );
   EXPECT_EQ( temperature( status ), 0 );
   config->diagConfigDel( "diag" );
   EXPECT_EQ( temperature( status ), 30.5 );

   status->clearIdEepromContents();
   EXPECT_TRUE( !status->actualIdEepromContents() );
   EXPECT_EQ( status->laserWavelengthPrecision(), laserWavelengthPrecisionUnknown );
   EXPECT_FALSE( status->domInfoValid( lane ) );
}

TEST( SfpStatusTest, MonitorsAreValidOnceReadFromThisModule ) {
   expectValidOnceRead<SfpNewStatus>( [] { return inserted( internallyCalibrated() ); } );
   auto const none = inserted( internallyCalibrated().raw( "diagsMonitoringType", 0x20 ) );
   EXPECT_FALSE( none->domInfoValid( lane ) || none->domThresholdValid() );
}

TEST( SfpStatusTest, MonitorsFollowTheCalibration ) {
   auto const expectInfo = []( SfpImageBuilder const & image, DomCalibration calibration,
                               std::vector<double> values ) {
      DomInfo const info = inserted( image )->domInfo( lane );
      EXPECT_EQ( info.calibration(), calibration );
      values.insert( values.begin(), 20 );
      values.push_back( unreadable );
      EXPECT_THAT( doubles( info ), testing::Pointwise( testing::DoubleEq(), values ) );
   };
   std::vector<double> const internal{ -12.5, 3.3, 6.5, dBm( 5000 ), dBm( 2500 ) };
   expectInfo( internallyCalibrated(), domCalibrationInternal, internal );
   // Of both calibrations the internal one counts; of none the values are there but unreadable.
   expectInfo( internallyCalibrated().raw( "diagsMonitoringType", 0x70 ), domCalibrationInternal,
               internal );
   expectInfo( internallyCalibrated().raw( "diagsMonitoringType", 0x40 ), domCalibrationUnknown,
               std::vector<double>( 5, unreadable ) );
   // Each monitor has constants of its own, and the coefficients their own order: 0x1000 + 256,
   // 0x1000 × 2 - 256, 0x1000 × 3 + 512 and 0x1000 × 2 + 0.
   expectInfo(
      externallyCalibrated().value(
         "domTemperatureSlope", 1, "domSupplyVoltageOffset", -256, "domBiasCurrentSlope", 3,
         "domBiasCurrentOffset", 512, "domTxPowerOffset", 0, "domRxPower1", 0, "domRxPower2",
         1. / 65536, "domRxPower3", 1. / ( 1 << 30 ), "domRxPower4", std::ldexp( 1, -43 ) ),
      domCalibrationExternal, { 17, 0.7936, 25.6, dBm( 8192 ), dBm( 2 + 256 + 64 + 32 ) } );
}

TEST( SfpStatusTest, EveryThresholdComesFromItsOwnWord ) {
   for ( bool const internal : { true, false } ) {
      auto const status = inserted( internal ? internallyCalibrated() : externallyCalibrated() );
      for ( unsigned word = 0; word < 20; ++word ) {
         registerIs( *status, 2 * word, word + 1 );
         registerIs( *status, 2 * word + 1, 0 );
      }
      expectThresholds( status->domThreshold(), [internal]( unsigned word ) {
         double const raw = 256 * ( word + 1 );
         return internal ? raw : word < 16 ? 2 * raw + 256 : 0; // no power is minus infinity
      } );
   }
}

TEST( SfpStatusTest, EveryStatusBitAndFlagIsABitOfItsOwn ) {
   std::mt19937 random( 1 );
   for ( int round = 0; round < 300; ++round ) {
      auto const options = static_cast<unsigned>( random() );
      auto const status =
         inserted( internallyCalibrated().raw( "enhancedOptions", options & 0xff ) );
      unsigned page[118]{};
      for ( unsigned at : { 110u, 112u, 113u, 116u, 117u } ) {
         registerIs( *status, at, page[at] = random() & 0xff );
      }
      // What the module does not implement is false.
      auto const has = [options]( unsigned number ) { return ( options >> number & 1 ) != 0; };
      auto const state = [&]( bool implemented, unsigned number ) {
         return implemented && ( page[110] >> number & 1 );
      };
      EXPECT_EQ( status->statusBits(),
                 SfpStatusBits( state( has( 6 ), 7 ), state( has( 6 ), 6 ), state( has( 3 ), 5 ),
                                state( has( 3 ), 4 ), state( has( 3 ), 3 ), state( has( 5 ), 2 ),
                                state( has( 4 ), 1 ), state( true, 0 ) ) );
      // Of each monitor high and low alarm, then high and low warning, in words of 16 bits.
      std::vector<bool> flags;
      for ( unsigned number : { 15u, 13u, 11u, 9u, 7u } ) {
         for ( unsigned at : { 112u, 116u } ) {
            unsigned const word = page[at] << 8 | page[at + 1];
            flags.push_back( has( 7 ) && ( word >> number & 1 ) );
            flags.push_back( has( 7 ) && ( word >> ( number - 1 ) & 1 ) );
         }
      }
      EXPECT_EQ( fieldsOf<bool>( status->domFlags() ), flags );
      status->lastPresenceChangeIs( 20 ); // read from a module before this one
      EXPECT_EQ( status->statusBits(), SfpStatusBits() );
      EXPECT_EQ( status->domFlags(), SfpDomFlags() );
   }
}

TEST( SfpStatusTest, TheClosestOperatorThresholdsAreInForce ) {
   expectClosestOperatorThresholds( *inserted( internallyCalibrated() ) );
}

TEST( SfpStatusTest, IdentityIsThatOfTheContents ) {
   auto const status = inserted( internallyCalibrated() );
   EXPECT_EQ( status->xcvrType(), XcvrType::sfpPlus );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                                "SN-1            ", "A   ", "260101  " ) );
   EXPECT_EQ( status->bitrate(), 103 );
   EXPECT_EQ( status->capabilities(), Capabilities( 1, false, false, false, false, 0 ) );
   EXPECT_EQ( status->domCapabilities(),
              DomCapabilities( true, true, true, true, true, false, false, false ) );
   EXPECT_EQ( status->idEepromInfo(), EepromDescriptor( 2, 2, { { 0, 256 }, { 1, 256 } } ) );

   // A forced media type counts in all that follows from it, but for what was detected.
   status->overrideMediaTypeIs( xcvr1000BaseT );
   EXPECT_EQ( status->mediaType(), xcvr1000BaseT );
   EXPECT_EQ( status->detectedMediaTypeString(), "10GBASE-SR" );
   EXPECT_EQ( status->domCapabilities(), DomCapabilities() );
   EXPECT_FALSE( status->assertRateSelect0() || status->assertRateSelect1() );
   for ( MediaType type : { xcvr10GBaseLrm, xcvrUnknown } ) { // a linear and a limiting interface
      status->overrideMediaTypeIs( type );
      EXPECT_TRUE( status->assertRateSelect0() && status->assertRateSelect1() );
   }
}

TEST( SfpStatusTest, WavelengthIsInPicometresUnlessTheModuleIsAnActiveCable ) {
   SfpImageBuilder image = internallyCalibrated();
   image.raw( "laserWavelengthInteger", 1530, "laserWavelengthFractional", 33, "extIdentifier",
              0x20 );
   auto const dwdm = inserted( image.raw( "identifier", 11 ) );
   EXPECT_EQ( dwdm->laserWavelength(), 1530330u );
   EXPECT_EQ( dwdm->laserWavelengthPrecision(), laserWavelengthPrecisionPm );
   dwdm->overrideMediaTypeIs( xcvr10GBaseAr );
   EXPECT_EQ( dwdm->laserWavelength(), 850000u );
   EXPECT_EQ( dwdm->laserWavelengthPrecision(), laserWavelengthPrecisionNm );
}

TEST( SfpStatusTest, AttenuationOfAPassiveCableComesFromTheTableOrItsLength ) {
   auto const status = inserted( internallyCalibrated() );
   auto const attenuation = [&status]( unsigned metres ) {
      status->actualIdEepromContentsIs(
         internallyCalibrated().value( "lengthCopper", metres ).contents() );
      return status->electricalPathAttenuation().value();
   };
   EXPECT_EQ( attenuation( 2 ), 0 ); // an optical module
   status->overrideMediaTypeIs( xcvr10GBaseCr );
   auto const table = modelToAttenuationFactory( "attenuation" );
   status->attnTableIs( table );
   EXPECT_DOUBLE_EQ( attenuation( 4 ), 12.8 );
   EXPECT_DOUBLE_EQ( attenuation( 5 ), 8.5 );
   table->attenuationIs( "Vendor          -PN-1            ", Units::Decibels( 0.25 ) );
   EXPECT_EQ( attenuation( 2 ), 0.25 );
}

/// 191.3 to 196.1 THz in 50 GHz, tuned to its channel 1.
SfpImageBuilder tunableModule() {
   return SfpImageBuilder()
      .raw( "identifier", 11, "extIdentifier", 4, "tuningChannel", 1 )
      .bit( "options", "tunable transmitter" )
      .bit( "compliance", "10GBASE-ER" )
      .value( "dwdmLength", 80, "tuningFirstFrequencyTHz", 191, "tuningFirstFrequencyGHz", 300,
              "tuningLastFrequencyTHz", 196, "tuningLastFrequencyGHz", 100, "tuningGridSpacingGHz",
              50 );
}

TEST( SfpTuningTest, CapabilitiesComeFromTheTuningPage ) {
   auto const status = inserted( tunableModule().raw( "tuningChannel", 0x201 ) );
   EXPECT_TRUE( status->capabilities().tunableWavelength() );
   EXPECT_EQ( status->hwChannel(), 0x201 );
   for ( double const ghz : { 100., 50., 25., 12.5, 75. } ) { // 12.5 GHz are cut to 12
      bool const known = ghz == 100 || ghz == 50 || ghz == 25;
      GridSpacingCapabilities const grids( known, known && ghz <= 50, false, known && ghz <= 25,
                                           false, false );
      EXPECT_EQ(
         inserted( tunableModule().value( "tuningGridSpacingGHz", ghz ) )->tuningCapabilities(),
         TuningCapabilities( 191200000, 191300000, 196100000, grids, 0 ) );
   }
   EXPECT_EQ( inserted( tunableModule().a2hMissing() )->tuningCapabilities(),
              TuningCapabilities( 191200000, 0, 0, {}, 0 ) );
}

TEST( SfpTuningTest, ATuningIsPendingUntilTheModuleIsThere ) {
   auto const xgc = xgcFactory( "xgc" );
   auto const status = inserted( tunableModule() );
   status->xgcIs( xgc );
   auto const config = xgc->tuningConfigIs( "Ethernet1" );
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

   config->channelIs( 0 );
   config->gridIs( 0 );
   config->frequencyIs( 193200000 );
   EXPECT_TRUE( status->isFreqTuningPending() );
   EXPECT_EQ( status->hwTuningConfig(), HwTuningConfig( 39, 50000, 0 ) );
   // What fails, and what nobody configured, falls back to 193.1 THz.
   config->frequencyIs( 200000000 );
   EXPECT_TRUE( status->isFreqTuningPending() );
   xgc->tuningConfigDel( "Ethernet1" );
   registerIs( *status, 145, 37 );
   EXPECT_FALSE( status->isFreqTuningPending() );
   EXPECT_EQ( status->resolvedTuningStatus().configuredFrequency(), 0u );
}

TEST( SfpTuningTest, OffTheGridThereIsNoChannel ) {
   // Of the resolved grid, and below its base.
   for ( unsigned const ghz : { 191325u, 190000u } ) {
      auto const off = inserted( tunableModule().value( "tuningFirstFrequencyTHz", ghz / 1000,
                                                        "tuningFirstFrequencyGHz", ghz % 1000 ) );
      EXPECT_TRUE( off->isFreqTuningPending() );
      EXPECT_EQ( off->resolvedTuningStatus().operationalFrequency(), ghz * 1000 );
      EXPECT_EQ( off->resolvedTuningStatus().operationalChannel(), 0u );
   }
   // The registers are exact: a grid of 12.5 GHz whose first frequency is no whole GHz.
   auto const status = inserted(
      tunableModule().value( "tuningFirstFrequencyGHz", 262.5, "tuningGridSpacingGHz", 12.5 ) );
   for ( auto const & [grid, expected] : { std::pair{ 50000u, HwTuningConfig( 148, 12500, 0 ) },
                                           std::pair{ 33000u, HwTuningConfig() } } ) {
      status->ituTuningConfigIs( ItuTuningConfig( 39, grid, 0, true ) );
      status->updateHwTuningConfig();
      EXPECT_EQ( status->hwTuningConfig(), expected );
   }
   // A module that cannot be tuned is never pending, and nothing is written.
   EXPECT_FALSE( inserted( internallyCalibrated() )->isFreqTuningPending() );
}

TEST( SfpStatusTest, ReadingAndWritingRegistersAllocatesNothing ) {
   for ( SfpImageBuilder const & image : { internallyCalibrated(), externallyCalibrated() } ) {
      auto const status = inserted( image );
      registerIs( *status, 96, 1 ); // the page
      AllocationCount const allocations;
      registerIs( *status, 97, 1 );
      expectNoAllocation( *status );
      EXPECT_EQ( allocations.calls(), 0u );
   }
}

} // namespace
