#include "tests/support/QsfpImageBuilder.h"
#include "tests/support/StatusValues.h"

#include <Xcvr/XcvrQsfpPlus.h>

#include <gmock/gmock.h>

#include <random>
#include <string>

using namespace Xcvr;
using namespace XcvrTest;
using testing::Each;
using testing::ElementsAre;

namespace {

/// A 100G CWDM4 module whose monitors tell the lane.
QsfpImageBuilder cwdm4() {
   QsfpImageBuilder image;
   image.vendor()
      .raw( "revisionCompliance", 8, "identifierExtended", 0xcc, "complianceExtended", 6,
            "bitrateNominal", 255, "deviceTech", 0x40 )
      .value( "bitrateExtended", 25750, "laserWavelength", 1311.05, "temperature", -12.5,
              "supplyVoltage", 3.3 )
      .bit( "compliance", "extended compliance" )
      .bit( "moduleStatus", "interrupt not asserted" )
      .bit( "diagsMonitoringType", "Tx power monitor" );
   for ( unsigned lane = 0; lane < 4; ++lane ) {
      std::string const number = std::to_string( lane + 1 );
      image.raw( "rxPower" + number, 1000 + lane, "txBias" + number, 2000 + lane,
                 "txPower" + number, 3000 + lane );
   }
   return image;
}

/// A 100G copper cable.
QsfpImageBuilder cr4() {
   return QsfpImageBuilder()
      .flat()
      .vendor( "Cable", "CR4" )
      .bit( "compliance", "extended compliance" )
      .raw( "complianceExtended", 11, "deviceTech", 0xa0, "attenuation5GHz", 5,
            "attenuation12p9GHz", 12 );
}

Vel::Ptr<QsfpNewStatus> inserted( Sff8436IdEepromContents const & contents ) {
   auto const status = qsfpNewStatusFactory( "Ethernet1" );
   status->actualIdEepromContentsIs( contents );
   return asRead( status );
}
Vel::Ptr<QsfpNewStatus> inserted( QsfpImageBuilder const & image ) {
   return inserted( image.contents() );
}

LaneId lane( unsigned number ) {
   return LaneId( static_cast<uint8_t>( number ) );
}

double attenuation( QsfpNewStatus const & status ) {
   return status.electricalPathAttenuation().value();
}

TEST( QsfpStatusTest, PagesAreStoredByTheirNumber ) {
   auto const status = qsfpNewStatusFactory( "Ethernet1" );
   for ( uint8_t page = 0; page <= 6; ++page ) { // the last is none
      status->idEepromContentsIs( page, Vel::String( std::to_string( page ) ) );
   }
   status->updateLastValidTime( 7 );
   EXPECT_EQ( status->actualIdEepromContents(),
              Sff8436IdEepromContents( "0", "1", "2", "3", "4", "5", 7.0, uint8_t( 0 ) ) );
   EXPECT_EQ( inserted( cwdm4() )->idEepromInfo(),
              EepromDescriptor( 3, 6, { { 0, 128 }, { 1, 128 }, { 3, 128 } } ) );
}

TEST( QsfpStatusTest, AnActiveOverrideReplacesAllThatWasRead ) {
   auto const status = inserted( cwdm4() );
   auto const config = qsfpConfigFactory( "Ethernet1" );
   expectOverride( *status, config, cr4().vendor( "Other" ).contents() );
   EXPECT_FALSE( status->domInfoValid( lane( 0 ) ) );
}

TEST( QsfpStatusTest, IdentityIsThatOfTheContents ) {
   auto const status = inserted( cwdm4() );
   EXPECT_EQ( status->xcvrType(), XcvrType::qsfpPlus );
   EXPECT_EQ( status->vendorInfo(), VendorInfo( "Vendor          ", "PN-1            ",
                                                "SN-1            ", "  ", "        " ) );
   EXPECT_EQ( status->capabilities(), Capabilities( 4, false, false, false, false, 0 ) );
   EXPECT_EQ( status->bitrate(), 255 ); // 25750 MBd are beyond
   EXPECT_EQ( inserted( cwdm4().value( "bitrateExtended", 10250 ) )->bitrate(), 102 );
   EXPECT_EQ( inserted( cwdm4().raw( "bitrateNominal", 103 ) )->bitrate(), 103 );
   EXPECT_EQ( status->laserWavelength(), 1311050u );
   EXPECT_EQ( status->laserWavelengthPrecision(), laserWavelengthPrecisionPm );
   EXPECT_EQ( inserted( cr4() )->laserWavelength(), 0u );
   EXPECT_EQ( status->powerClass(), xcvrPowerClass4 );
   status->overrideMediaTypeIs( xcvr100GBaseLr4 );
   EXPECT_EQ( status->mediaType(), xcvr100GBaseLr4 );
   EXPECT_EQ( status->detectedMediaType(), xcvr100GBaseCwdm4 );
   EXPECT_TRUE( status->isSupportedMediaType( xcvr40GBaseUniv ) );
   EXPECT_FALSE( status->isSupportedMediaType( xcvr10GBaseSr ) );
}

TEST( QsfpStatusTest, TheSystemMayTakeTheComplianceBitForPsm4 ) {
   auto const xgc = xgcFactory( "xgc" );
   auto const mediaType = [&xgc]( uint8_t identifier, uint64_t compliance, unsigned code ) {
      QsfpImageBuilder image;
      image.identifier( identifier ).raw( "compliance", compliance << 56 );
      auto const status = inserted( image.raw( "complianceExtended", code ) );
      status->xgcIs( xgc );
      return status->mediaType();
   };
   EXPECT_EQ( mediaType( 13, 0x80, 0 ), xcvrUnknown );
   xgc->ethComplianceBit7IsPsm4Is( true );
   EXPECT_EQ( mediaType( 13, 0x80, 0 ), xcvr40GBasePsm4 );
   EXPECT_EQ( mediaType( 13, 0x80, 8 ), xcvrUnknown );
   EXPECT_EQ( mediaType( 13, 0x00, 0 ), xcvrUnknown );
   // Only of a QSFP that no rule knows.
   EXPECT_EQ( mediaType( 13, 0x84, 0 ), xcvr40GBaseSr4 );
   EXPECT_EQ( mediaType( 17, 0x80, 0 ), xcvr100GUnknown );
   EXPECT_EQ( mediaType( 3, 0x80, 0 ), xcvrUnknown );
}

TEST( QsfpStatusTest, AttenuationOfCopperCables ) {
   for ( unsigned code : { 11u, 12u, 13u } ) {
      EXPECT_EQ( attenuation( *inserted( cr4().raw( "complianceExtended", code ) ) ), 12.0 );
   }
   EXPECT_EQ( attenuation( *inserted( cr4().raw( "attenuation12p9GHz", 0 ) ) ), unreadable );
   EXPECT_EQ( attenuation( *inserted( cwdm4() ) ), 0.0 );
   auto const table = modelToAttenuationFactory( "attenuation" );
   table->attenuationIs( "Cable           -CR4             ", Units::Decibels( 8.5 ) );
   // An optical module has a wavelength in these bytes, also while it passes for a cable.
   for ( auto const & [image, own, known] :
         { std::tuple{ cr4(), 5.0, 8.5 }, std::tuple{ cwdm4(), unreadable, unreadable } } ) {
      auto const status = inserted( image );
      status->overrideMediaTypeIs( xcvr40GBaseCr4 );
      EXPECT_EQ( attenuation( *status ), own );
      status->attnTableIs( table );
      EXPECT_EQ( attenuation( *status ), known );
   }
}

TEST( QsfpStatusTest, MonitorsAreValidOnceReadFromThisModule ) {
   expectValidOnceRead<QsfpNewStatus>( [] { return inserted( cwdm4() ); } );
   struct Case {
      QsfpImageBuilder image;
      bool info, thresholds;
   };
   for ( Case const & c : { Case{ cwdm4().raw( "deviceTech", 0xb0 ), false, false },
                            Case{ cwdm4().raw( "deviceTech", 0xc0 ), true, true },
                            Case{ cwdm4().missing( "lower" ), false, true },
                            Case{ cwdm4().missing( "03h" ), true, false },
                            Case{ cwdm4().bit( "moduleStatus", "flat memory" ), true, false } } ) {
      EXPECT_EQ( inserted( c.image )->domInfoValid( lane( 3 ) ), c.info );
      EXPECT_EQ( inserted( c.image )->domThresholdValid(), c.thresholds );
   }
   EXPECT_FALSE( inserted( cwdm4() )->domInfoValid( lane( 4 ) ) );
}

TEST( QsfpStatusTest, EveryLaneHasItsMonitors ) {
   auto const status = inserted( cwdm4() );
   for ( unsigned i = 0; i < 4; ++i ) {
      EXPECT_THAT( doubles( status->domInfo( lane( i ) ) ),
                   testing::Pointwise( testing::DoubleEq(),
                                       { 20., -12.5, 3.3, ( 2000 + i ) * 0.002, dBm( 3000 + i ),
                                         dBm( 1000 + i ), unreadable } ) );
   }
   EXPECT_THAT(
      doubles( status->domAggPower() ),
      testing::Pointwise( testing::DoubleNear( 1e-9 ), { 20., dBm( 12006 ), dBm( 4006 ) } ) );
   EXPECT_EQ( status->domCapabilities(),
              DomCapabilities( true, true, true, true, true, false, true, true ) );
   EXPECT_EQ( inserted( cr4() )->domCapabilities(), DomCapabilities() );
   EXPECT_EQ( inserted( cr4() )->domAggPower().aggRxPower(), unreadable );
}

TEST( QsfpStatusTest, EveryThresholdComesFromItsOwnWord ) {
   // Each word of page 03h holds its number and a zero byte.
   Sff8436IdEepromContents contents = cwdm4().contents();
   std::string page( 128, '\0' );
   for ( unsigned word = 0; word < 64; ++word ) {
      page[2 * word] = static_cast<char>( word + 1 );
   }
   contents.eepromPage03UpperDataIs( std::string_view( page ) );
   // The module's bytes: temperature, voltage, Tx bias, Tx power, Rx power.
   unsigned const firstByte[] = { 128, 144, 184, 192, 176 };
   expectThresholds( inserted( contents )->domThreshold(), [&]( unsigned i ) {
      return 256. * ( ( firstByte[i / 4] - 128 ) / 2 + i % 4 + 1 );
   } );
}

TEST( QsfpStatusTest, TheClosestOperatorThresholdsAreInForce ) {
   expectClosestOperatorThresholds( *inserted( cwdm4() ) );
}

TEST( QsfpStatusTest, NothingIsSaidOfATxPowerThatIsNotMonitored ) {
   auto const status =
      inserted( cwdm4().raw( "diagsMonitoringType", 0xfb, "txPowerFlags", 0xffff, "rxPowerFlags",
                             0x8000, "txPowerLowWarn", 1000, "rxPowerHighAlarm", 1000 ) );
   EXPECT_EQ( status->domInfo( lane( 0 ) ).txPower(), unreadable );
   EXPECT_EQ( status->domAggPower().aggTxPower(), unreadable );
   EXPECT_FALSE( status->domCapabilities().txPower() );
   EXPECT_FALSE( status->laneFlags( lane( 0 ) ).txPowerHighAlarm() );
   EXPECT_TRUE( status->laneFlags( lane( 0 ) ).rxPowerHighAlarm() );
   EXPECT_EQ( status->domThreshold().txPowerLowWarn(), unreadable );
   EXPECT_DOUBLE_EQ( status->domThreshold().rxPowerHighAlarm(), dBm( 1000 ) );
}

TEST( QsfpStatusTest, EveryFlagAndControlIsABitOfItsOwn ) {
   std::mt19937 random( 1 );
   for ( int round = 0; round < 100; ++round ) {
      std::string pages( 256, '\0' ); // the lower one and 03h
      std::generate( pages.begin(), pages.end(), [&random] { return char( random() ); } );
      pages[2] = static_cast<char>( pages[2] & ~4 ); // has more pages
      auto const status = inserted(
         cwdm4().pageIs( "lower", pages.substr( 0, 128 ) ).pageIs( "03h", pages.substr( 128 ) ) );
      // By the module's byte and bit.
      auto const bit = [&]( unsigned byte, unsigned number ) {
         return ( pages[byte] >> number & 1 ) != 0;
      };
      for ( unsigned i = 0; i < 4; ++i ) {
         auto const code = [&]( unsigned byte ) {
            return static_cast<uint8_t>( 2 * bit( byte, 2 * i + 1 ) + bit( byte, 2 * i ) );
         };
         std::vector<bool> flags = { bit( 3, i ),     bit( 3, 4 + i ), bit( 4, i ),
                                     bit( 4, 4 + i ), bit( 5, i ),     bit( 5, 4 + i ) };
         // Two lanes a byte, the odd channels in the high half.
         for ( unsigned byte : { 11u, 13u, 9u } ) {
            for ( unsigned number = 4; number-- > 0; ) {
               flags.push_back( bit( byte + i / 2, number + ( i % 2 ? 0 : 4 ) ) );
            }
         }
         EXPECT_EQ( fieldsOf<bool>( status->laneFlags( lane( i ) ) ), flags );
         EXPECT_EQ( status->laneControls( lane( i ) ),
                    QsfpLaneControls( bit( 86, i ), code( 87 ), code( 88 ), bit( 98, i ),
                                      bit( 98, 4 + i ), bit( 240, 4 + i ), bit( 240, i ),
                                      bit( 241, 4 + i ), bit( 241, i ) ) );
      }
      EXPECT_EQ( status->moduleFlags(),
                 QsfpModuleFlags( bit( 6, 7 ), bit( 6, 6 ), bit( 6, 5 ), bit( 6, 4 ), bit( 7, 7 ),
                                  bit( 7, 6 ), bit( 7, 5 ), bit( 7, 4 ), bit( 6, 0 ), bit( 6, 1 ),
                                  !bit( 2, 1 ), bit( 2, 0 ) ) );
      EXPECT_EQ( status->moduleControls(),
                 QsfpModuleControls( bit( 93, 0 ), bit( 93, 1 ), bit( 93, 2 ), bit( 93, 3 ),
                                     bit( 99, 1 ), bit( 99, 0 ) ) );
      status->lastPresenceChangeIs( 20 ); // read from a module before this one
      EXPECT_EQ( status->laneFlags( lane( 0 ) ), QsfpLaneFlags() );
      EXPECT_EQ( status->laneControls( lane( 0 ) ), QsfpLaneControls() );
      EXPECT_EQ( status->moduleFlags(), QsfpModuleFlags() );
      EXPECT_EQ( status->moduleControls(), QsfpModuleControls() );
   }
}

TEST( QsfpStatusTest, ControlsDoNotNeedMonitors ) {
   auto const status = inserted( cr4().raw( "txDisable", 15 ) );
   EXPECT_TRUE( status->laneControls( lane( 3 ) ).txDisable() );
   EXPECT_FALSE( status->laneControls( lane( 4 ) ).txDisable() );
}

TEST( QsfpStatusTest, LaneStatusTakesTheFlagsWhenAsked ) {
   auto const status = inserted( cwdm4()
                                    .bit( "lolFlags", "Tx3 CDR loss of lock" )
                                    .bit( "faultFlags", "Tx3 fault" )
                                    .raw( "rxPowerFlags", 0x0010, "txBiasFlags", 0x8000 ) );
   status->updateLaneStatus();
   auto const third = status->laneStatus( lane( 2 ) );
   EXPECT_TRUE( third->txCdrLol() && third->txFaultPresent() && third->rxPowerLoWarn() );
   EXPECT_FALSE( third->txLos() || third->rxCdrLol() || third->txBiasHiAlarm() );
   EXPECT_TRUE( status->laneStatus( lane( 0 ) )->txBiasHiAlarm() );
   third->localFaultPresentIs( true ); // none of the module's
   status->clearIdEepromContents();
   status->updateLaneStatus();
   EXPECT_FALSE( third->txCdrLol() || third->txFaultPresent() || third->rxPowerLoWarn() );
   EXPECT_TRUE( third->localFaultPresent() );
}

TEST( QsfpStatusTest, SignalTuningIsValidWhereSupported ) {
   struct {
      char const *option, *field;
      TuningValue ( QsfpNewStatus::*read )( LaneId ) const;
   } const parameters[] = {
      { "Tx input EQ fixed", "txInputEqualization", &QsfpNewStatus::txInputEqualization },
      { "Rx output emphasis", "rxOutputEmphasis", &QsfpNewStatus::rxOutputPreEmphasis },
      { "Rx output amplitude", "rxOutputAmplitude", &QsfpNewStatus::rxOutputAmplitude } };
   for ( auto const & p : parameters ) {
      QsfpImageBuilder image = cwdm4().raw( p.field, 0x1234 );
      EXPECT_FALSE( ( *inserted( image ).*p.read )( lane( 0 ) ).valid() ) << p.field;
      auto const status = inserted( image.bit( "options", p.option ) );
      for ( uint8_t i = 0; i < 5; ++i ) {
         uint8_t const code = i < 4 ? static_cast<uint8_t>( i + 1 ) : uint8_t( 0 );
         EXPECT_EQ( ( *status.*p.read )( lane( i ) ), TuningValue( i < 4, code, false ) );
      }
      EXPECT_FALSE( ( *inserted( image.missing( "03h" ) ).*p.read )( lane( 0 ) ).valid() );
   }
   // The bit of a lane means nothing in a module that cannot adapt.
   QsfpImageBuilder image =
      cwdm4().bit( "options", "Tx input EQ fixed" ).bit( "outputControl", "Tx2 adaptive EQ" );
   EXPECT_TRUE( inserted( image )->txInputEqualization( lane( 1 ) ).valid() );
   image.bit( "options", "Tx input EQ auto-adaptive" );
   EXPECT_TRUE( inserted( image )->txInputEqualization( lane( 0 ) ).valid() );
   EXPECT_FALSE( inserted( image )->txInputEqualization( lane( 1 ) ).valid() );
}

using enum EnhancedDomMonitor;
constexpr uint8_t ofSlot = 4;

struct Parameter {
   EnhancedDomMonitor monitor;
   uint8_t lane;
   unsigned thresholdSet, code;
   double value;

   [[nodiscard]] uint32_t index() const {
      return enhancedDomIndex( monitor, lane == ofSlot ? uint8_t( 0 ) : lane );
   }
   /// In page 20h under its number from 1.
   void put( QsfpImageBuilder & image, unsigned number ) const {
      std::string const name = "parameter" + std::to_string( number );
      unsigned const type = static_cast<unsigned>( monitor ) + 1;
      unsigned const where = lane == ofSlot ? 0u : 0x400u | unsigned( lane ) << 8;
      image.raw( name + "Config", thresholdSet << 12 | where | type ).raw( name + "Value", code );
   }
};

Parameter const monitors[] = { { snr, 0, 0, 0x1480, 20.5 },
                               { snr, 2, 0, 0x1200, 18 },
                               { residualIsi, 0, 1, 512, 2 },
                               { pam4Transitions, 1, 2, 0x0140, 1.25 },
                               { preFecBer, 3, 3, 0x8064, 1e-6 },
                               { uncorrectedBer, 0, 4, 0xC001, 1 },
                               { tecCurrent, ofSlot, 5, 0xFFFE, -0.2 },
                               { laserFreqErr, 0, 6, 0xFFFD, -30 },
                               { laserTempErr, 0, 15, 0xFF80, -0.5 } };

QsfpImageBuilder enhanced() {
   QsfpImageBuilder image = cwdm4().bit( "options", "pages 20h and 21h" );
   image.raw( "thresholdSet0", 0x1900'0100'1800'0200, "thresholdSet3", 0xA00C'0000'8064'0001,
              "thresholdSet5", 0x000A'FFF6'0005'FFFB, "thresholdSet15", 0x0100'FF00'0080'FF80 );
   for ( Parameter const & parameter : monitors ) {
      parameter.put( image, static_cast<unsigned>( &parameter - monitors ) + 2 );
   }
   // Further statistics are no monitors; of two of a kind the first counts, but not if it is of the
   // slot and the other of lane 0.
   Parameter{ EnhancedDomMonitor( 8 ), 0, 7, 0x1234, 0 }.put( image, 11 );
   Parameter{ snr, 2, 9, 1, 0 }.put( image, 24 );
   Parameter{ snr, ofSlot, 0, 256, 0 }.put( image, 1 );
   Parameter{ residualIsi, ofSlot, 0, 256, 0 }.put( image, 23 );
   return image;
}

TEST( QsfpStatusTest, EnhancedMonitorsAreFoundByTheirTypeAndLane ) {
   auto const status = inserted( enhanced() );
   for ( Parameter const & monitor : monitors ) {
      EXPECT_NEAR( status->enhancedDomValue( monitor.index() ), monitor.value, 1e-9 );
   }
   size_t valid = 0;
   for ( uint32_t i = 0; i < 300; ++i ) {
      valid += status->enhancedDomValuesValid( i );
      EXPECT_EQ( status->enhancedDomValuesValid( i ), status->enhancedDomValue( i ) != unreadable );
   }
   EXPECT_EQ( valid, std::size( monitors ) );
   EXPECT_EQ( status->enhancedDomCapabilities(),
              EnhancedDomCapabilities( true, true, true, true, true, true, true, true ) );
   SensorCategory const lane = SensorCategory::laneSensor;
   EXPECT_EQ( status->enhancedDomSensorCategory(),
              EnhancedDomSensorCategory( lane, lane, lane, lane, lane, SensorCategory::slotSensor,
                                         lane, lane ) );
   status->updateEnhancedDomMapping();
   EXPECT_EQ( status->enhancedDomMappingMap().size(), std::size( monitors ) );
   EXPECT_EQ( status->enhancedDomMapping( monitors[0].index() ), 0x209A );
   EXPECT_EQ( status->enhancedDomMapping( monitors[4].index() ), 0x2000 + 152 + 2 * 5 );

   // Read before the module came, and without the pages.
   status->lastPresenceChangeIs( 20 );
   EXPECT_EQ( status->enhancedDomValue( 0 ), unreadable );
   EXPECT_FALSE( inserted( enhanced().raw( "options", 0 ) )->enhancedDomValuesValid( 0 ) );
   EXPECT_EQ( inserted( enhanced().missing( "20h" ) )->enhancedDomCapabilities(),
              EnhancedDomCapabilities() );
   status->actualIdEepromContentsIs( cwdm4().contents() );
   status->updateEnhancedDomMapping();
   EXPECT_TRUE( status->enhancedDomMappingMap().empty() );
}

TEST( QsfpStatusTest, EnhancedThresholdsAreThoseOfTheSet ) {
   auto const status = inserted( enhanced() );
   auto const limits = [&status]( EnhancedDomMonitor monitor, uint8_t number ) {
      return doubles( status->enhancedDomThreshold( enhancedDomIndex( monitor, number ) ) );
   };
   EXPECT_THAT( limits( snr, 2 ), ElementsAre( 25, 1, 24, 2 ) );
   EXPECT_THAT( limits( preFecBer, 3 ),
                testing::Pointwise( testing::DoubleNear( 1e-12 ), { 1.2e-3, 0., 1e-6, 1e-24 } ) );
   EXPECT_THAT( limits( tecCurrent, 0 ), ElementsAre( 1, -1, 0.5, -0.5 ) );
   EXPECT_THAT( limits( tecCurrent, 1 ), Each( unreadable ) );
   EXPECT_TRUE( status->enhancedDomThresholdValid( enhancedDomIndex( snr, 0 ) ) );
   status->lastEnhancedDomThresholdsUpdateTimeIs( 0 );
   EXPECT_FALSE( status->enhancedDomThresholdValid( enhancedDomIndex( snr, 0 ) ) );
}

TEST( QsfpStatusTest, OfAPageThatEndsEarlyNothingIsRead ) {
   auto const whole = inserted( enhanced() );
   for ( size_t size = 0; size <= 128; ++size ) {
      Sff8436IdEepromContents contents = whole->actualIdEepromContents();
      contents.eepromPage00LowerDataIs( contents.eepromPage00LowerData().substr( 0, size ) );
      contents.eepromPage03UpperDataIs( contents.eepromPage03UpperData().substr( 0, size ) );
      contents.eepromPage21hUpperDataIs( contents.eepromPage21hUpperData().substr( 0, size ) );
      auto const status = inserted( contents );
      bool const hasMonitors = size >= 58, hasLimits = size >= 72; // to bytes 57 and 199
      EXPECT_EQ( status->domInfoValid( lane( 0 ) ), hasMonitors ) << size;
      EXPECT_EQ( status->domInfo( lane( 0 ) ) == whole->domInfo( lane( 0 ) ), hasMonitors ) << size;
      EXPECT_EQ( status->domAggPower() == whole->domAggPower(), hasMonitors ) << size;
      EXPECT_EQ( status->domThresholdValid(), hasLimits ) << size;
      EXPECT_EQ( status->domThreshold().tempHighAlarm(), hasLimits ? 0 : unreadable ) << size;
      for ( Parameter const & monitor : { monitors[0], monitors[6], monitors[8] } ) {
         bool const hasSet = size >= ( monitor.thresholdSet + 1 ) * 8;
         double const limit = status->enhancedDomThreshold( monitor.index() ).highAlarm();
         EXPECT_EQ( status->enhancedDomThresholdValid( monitor.index() ), hasSet ) << size;
         EXPECT_EQ( limit != unreadable, hasSet ) << size;
      }
   }
}

TEST( QsfpStatusTest, AskingAllocatesNothing ) {
   auto const status = inserted( enhanced() );
   expectNoAllocation( *status );
   AllocationCount const allocations;
   static_cast<void>( status->laneFlags( lane( 0 ) ) );
   EXPECT_EQ( allocations.calls(), 0u );
}

} // namespace
