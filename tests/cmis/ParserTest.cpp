#include "tests/cmis/CmisModule.h"
#include "tests/support/AllocationCount.h"

#include <gmock/gmock.h>

#include <chrono>
#include <cmath>
#include <limits>

using namespace Xcvr;
using testing::ElementsAre;
using XcvrTest::CmisImageBuilder;
using Decoded = OsfpDecodedEepromContents;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// A module of single-mode optics with every page, all monitors and all flags.
CmisImageBuilder opticalModule() {
   CmisImageBuilder image;
   image.raw( "moduleType", 2 )
      .application( 1, { 0x11, 0x1c, 8, 4, 0x01, 0x11 } )
      .application( 2, { 0x0d, 0x14, 2, 1, 0x55, 0x22 } )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "vendorRev", "A" )
      .text( "dateCode", "260101" )
      .raw( "implMonitorsAdvertisement", 0x0307 )
      .raw( "implFlagsAdvertisement", 0x0f06 )
      .value( "temperature", -12.5 )
      .value( "voltage", 3.3 )
      .lanes( "txPower", 0.5, 0.125 )
      .lanes( "txBias", 30, 1 )
      .lanes( "rxPower", 0.25, 0.125 );
   return image;
}

double dBm( double milliwatts ) {
   return 10 * std::log10( std::round( milliwatts / 1e-4 ) * 1e-7 ) + 30;
}

/// What a collection holds for the eight lanes, as a number with a bit for each.
template <typename Flags>
unsigned lanesOf( Flags const & flags ) {
   unsigned result = 0;
   for ( auto const & [lane, on] : flags ) {
      result |= unsigned( on ) << lane.value();
   }
   return result;
}

/// Counts what observers are told of.
struct Watcher : Decoded::Notifiee {
   void onVendorName() override { ++told; }
   void onFlatMem() override { ++told; }
   void onModuleTypeIdentifier() override { ++told; }
   void onDomThreshold() override { ++told; }
   void onTempHiAlarm() override { ++told; }
   void onApplication( uint8_t key ) override { applications.push_back( key ); }
   void onChecksumValid( OsfpPage ) override { ++told; }
   void onDomInfo( LaneId ) override { ++dom; }
   void onRxLos( ChannelId lane ) override { rxLos.push_back( lane.value() ); }
   void onRxOutputAmplitude( ChannelId lane ) override { amplitude.push_back( lane.value() ); }
   int told = 0, dom = 0;
   std::vector<int> applications, rxLos, amplitude;
};

} // namespace

// Lower page

TEST( CmisParserTest, ModuleIdentityAndFlags ) {
   CmisModule const module( CmisImageBuilder()
                               .identifier( 0x18 )
                               .raw( "memoryAndSpeed", 0x84 )
                               .raw( "moduleType", 5 )
                               .raw( "moduleGlobalAndSquelchControls", 0x5a ) );
   module.parser->parseLowerPage();
   Decoded const & decoded = *module.decoded;
   EXPECT_EQ( decoded.identifier(), identifierQsfpDd );
   EXPECT_TRUE( decoded.flatMem() );
   EXPECT_EQ( decoded.maxSmbusSpeedSupported(), upto1MHz );
   EXPECT_EQ( decoded.moduleType(), osfpTypeBaseT );
   EXPECT_EQ( decoded.moduleGlobalAndSquelchControls(), 0x5a );

   bool ( Decoded::*const flags[] )() const = {
      &Decoded::tempHiAlarm,   &Decoded::tempLoAlarm,    &Decoded::tempHiWarn,
      &Decoded::tempLoWarn,    &Decoded::voltageHiAlarm, &Decoded::voltageLoAlarm,
      &Decoded::voltageHiWarn, &Decoded::voltageLoWarn,
   };
   for ( unsigned bit = 0; bit < 8; ++bit ) {
      CmisImageBuilder().raw( "moduleFlags", 1u << bit ).writeTo( *module.raw );
      module.parser->parseModuleFlags();
      for ( unsigned other = 0; other < 8; ++other ) {
         EXPECT_EQ( ( decoded.*flags[other] )(), other == bit ) << bit << other;
      }
   }
}

TEST( CmisParserTest, ApplicationsBySelectCode ) {
   CmisImageBuilder image;
   for ( unsigned code = 1; code <= 15; ++code ) {
      image.application( code, { uint8_t( code ), 0x1c, 8, 4, 0x01, uint8_t( 0x40 + code ) } );
   }
   CmisModule const module( image.byte( "01h", 191 - 128, 0x99 ) );
   module.parser->parseLowerPage();
   EXPECT_EQ( module.decoded->applicationMap().size(), 8u );
   module.parser->parseUpperPage01();
   EXPECT_EQ( module.decoded->applicationMap().size(), 15u );
   for ( uint8_t code = 1; code <= 15; ++code ) {
      OsfpApplication const application = module.decoded->application( code );
      EXPECT_EQ( application.value(), uint32_t{ code } << 24 | 0x1c8401u );
      // The media lanes are those of the next application, at 176 + code.
      EXPECT_EQ( application.mediaLaneAssignment(), code == 15 ? 0x99 : 0x41 + code );
   }
   OsfpApplication const first = module.decoded->moduleTypeIdentifier();
   EXPECT_EQ( first.value(), module.decoded->application( 1 ).value() );
   EXPECT_EQ( first.mediaLaneAssignment(), 0x41 );
   EXPECT_EQ( first.hostInterface(), 1 );
   EXPECT_EQ( first.mediaInterface(), 0x1c );
   EXPECT_EQ( first.hostLaneCount(), 8 );
   EXPECT_EQ( first.mediaLaneCount(), 4 );
   EXPECT_EQ( first.hostLaneAssignment(), 1 );
}

TEST( CmisParserTest, ApplicationListsEndEarly ) {
   CmisImageBuilder image;
   image.raw( "moduleType", 2 ).raw( "application1", 0xff1c0000 );
   image.application( 2, { 0x11, 0x1c, 8, 4, 1, 1 } ).application( 10, { 0x11, 0x1c, 8, 4, 1, 1 } );
   CmisModule const module( image );
   module.parse();
   // The first entry says what the module is even though its host code ends the list.
   EXPECT_TRUE( module.decoded->applicationMap().empty() );
   EXPECT_EQ( module.decoded->moduleTypeIdentifier().value(), 0xff1c0000u );
   EXPECT_EQ( module.decoded->detectedMediaType(), xcvr400GBaseDr4 );
}

TEST( CmisParserTest, ApplicationsOfAFormerModuleGo ) {
   CmisImageBuilder former;
   for ( unsigned code = 1; code <= 10; ++code ) {
      former.application( code, { 0x11, 0x1c, 8, 4, 1, 0x11 } );
   }
   CmisModule const module( former );
   module.parse();
   Watcher watcher;
   watcher.notifierIs( module.decoded );
   opticalModule().writeTo( *module.raw );
   module.parse();
   EXPECT_EQ( module.decoded->applicationMap().size(), 2u );
   // Of the first application only the media lanes, which page 01h says, have changed.
   EXPECT_THAT( watcher.applications, ElementsAre( 2, 3, 4, 5, 6, 7, 8, 9, 10, 1 ) );
}

TEST( CmisParserTest, MediaTypeFollowsModuleType ) {
   struct Case {
      uint8_t type, host, media;
      MediaType expected;
   };
   constexpr Case cases[] = {
      { 0, 0x1d, 0x1c, xcvrUnknown },
      { 1, 0x11, 0x10, xcvr400GBaseSr8 },
      { 1, 0x11, 0x1c, xcvr400GOpticalUnknown },
      { 2, 0x11, 0x1c, xcvr400GBaseDr4 },
      { 2, 0x11, 0xfe, xcvr400GOpticalUnknown },
      { 3, 0x1d, 0x01, xcvr400GBaseCr8 },
      { 3, 0x11, 0x1c, xcvr400GCopperUnknown },
      { 4, 0x1d, 0x03, xcvr400GBaseAr8 },
      { 4, 0x1d, 0x77, xcvr400GOpticalUnknown },
      { 5, 0x1d, 0x04, xcvr10GBaseT },
      { 5, 0x1d, 0x05, xcvr400GCopperUnknown },
      { 6, 0x1d, 0x1c, xcvrUnknown },
   };
   for ( Case const & c : cases ) {
      CmisModule const module( CmisImageBuilder()
                                  .raw( "moduleType", c.type )
                                  .application( 1, { c.host, c.media, 8, 4, 1, 1 } ) );
      module.parser->parseLowerPage();
      EXPECT_EQ( module.decoded->detectedMediaType(), c.expected )
         << int( c.type ) << " " << int( c.host ) << " " << int( c.media );
   }
}

TEST( CmisInterfaceCodeTest, ACodeWithoutANameIsItsNumber ) {
   OsfpApplication const known( 0x111c8401, 0 );
   EXPECT_EQ( known.hostInterfaceName(), "400GAUI-8 C2M" );
   EXPECT_EQ( known.mediaInterfaceName( osfpTypeOpticalSmf ), "400GBASE-DR4" );
   EXPECT_EQ( known.mediaInterfaceName( osfpTypeBaseT ), "0x1c" );
   EXPECT_EQ( known.mediaInterfaceName( osfpTypeUndefined ), "0x1c" );
   OsfpApplication const unknown( 0xfe050000, 0 );
   EXPECT_EQ( unknown.hostInterfaceName(), "0xfe" );
   EXPECT_EQ( unknown.mediaInterfaceName( osfpTypePassiveCu ), "0x05" );
}

// Page 00h

TEST( CmisParserTest, VendorAndPower ) {
   CmisImageBuilder image = opticalModule();
   image.raw( "vendorOui", 0x024e4c )
      .raw( "powerClass", 0xc0 )
      .value( "maxPower", 12 )
      .raw( "cableLength", 0x45 )
      .raw( "connector", 0x0c );
   CmisModule const module( image );
   module.parser->parseUpperPage00();
   Decoded const & decoded = *module.decoded;
   EXPECT_EQ( decoded.identifierExtended(), 0x19 );
   EXPECT_EQ( decoded.vendorName(), "Vendor          " );
   EXPECT_EQ( decoded.vendorOui(), "\x02NL" );
   EXPECT_EQ( decoded.vendorPn(), "PN-1            " );
   EXPECT_EQ( decoded.vendorRev(), "A " );
   EXPECT_EQ( decoded.vendorSn(), "SN-1            " );
   EXPECT_EQ( decoded.dateCode(), "260101  " );
   EXPECT_EQ( decoded.modulePower(), 0xc030 );
   EXPECT_EQ( decoded.cableLength(), 0x45 );
   EXPECT_EQ( decoded.connector(), 0x0c );
}

// Page 01h

TEST( CmisParserTest, Advertisement ) {
   CmisModule const module( CmisImageBuilder()
                               .raw( "rxAmplitudeAndMaxTxEq", 0xa7 )
                               .raw( "maxRxEmphasis", 0x59 )
                               .raw( "implControlsAdvertisement", 0x1122 )
                               .raw( "implFlagsAdvertisement", 0x3344 )
                               .raw( "implMonitorsAdvertisement", 0x5566 )
                               .raw( "implSignalIntegrityControl", 0x7788 ) );
   module.parser->parseUpperPage01();
   Decoded const & decoded = *module.decoded;
   EXPECT_EQ( decoded.implRxOutputAmplitudeCode(), 0xa );
   EXPECT_EQ( decoded.maxTxInputEqualization(), 7 );
   EXPECT_EQ( decoded.maxRxOutputPostEmphasis(), 5 );
   EXPECT_EQ( decoded.maxRxOutputPreEmphasis(), 9 );
   EXPECT_EQ( decoded.implControlsAdvertisement(), 0x1122 );
   EXPECT_EQ( decoded.implFlagsAdvertisement(), 0x3344 );
   EXPECT_EQ( decoded.implMonitorsAdvertisement().value(), 0x5566 );
   EXPECT_EQ( decoded.implSignalIntegrityControl(), 0x7788 );
}

// Checksums

TEST( CmisParserTest, ChecksumsOfTheirRanges ) {
   struct Case {
      char const * label;
      OsfpPage page;
      size_t first, stored; // on the page
   };
   constexpr Case cases[] = { { "00h", OsfpPage::upperPage00, 0, 94 },
                              { "01h", OsfpPage::upperPage01, 2, 127 },
                              { "02h", OsfpPage::upperPage02, 0, 127 } };
   for ( Case const & c : cases ) {
      for ( size_t at : { c.first, c.stored - 1, c.stored, c.first - 1, c.stored + 1 } ) {
         CmisModule const module( opticalModule() );
         OsfpBankAndPage const key( OsfpBank::bankNa, c.page );
         Vel::String page = module.raw->memory( key );
         auto const stored = static_cast<uint8_t>( page[c.stored] );
         // Beyond the page's ends there is nothing to change.
         page.byteIs( at, static_cast<uint8_t>( page[at] + 1 ) );
         module.raw->memoryIs( key, page );
         module.parse();
         bool const counts = at >= c.first && at <= c.stored;
         EXPECT_EQ( module.decoded->checksumValid( c.page ), !counts ) << c.label << " " << at;
         EXPECT_EQ( module.decoded->checksum( c.page ), uint8_t( stored + ( at == c.stored ) ) );
         EXPECT_EQ( module.decoded->checksumCalculated( c.page ),
                    uint8_t( stored + ( counts && at != c.stored ) ) );
      }
   }
}

TEST( CmisParserTest, ChecksumOfAnyPage ) {
   CmisModule const module;
   module.raw->memoryIs( OsfpBankAndPage( OsfpBank::bank0, OsfpPage::upperPage10 ),
                         Vel::String( "\xff\x80\x90\x10", 4 ) );
   auto const sumUpTo = [&]( uint8_t addr, uint8_t start ) {
      module.parser->computePageChecksum(
         OsfpRegAddr( OsfpBank::bank0, OsfpPage::upperPage10, addr, 1 ), start );
      return int( module.decoded->checksumCalculated( OsfpPage::upperPage10 ) );
   };
   EXPECT_EQ( sumUpTo( 131, 1 ), 0x10 );
   EXPECT_TRUE( module.decoded->checksumValid( OsfpPage::upperPage10 ) );
   EXPECT_EQ( sumUpTo( 255, 0 ), 0x1f ); // what a short page lacks counts as 0
   EXPECT_FALSE( module.decoded->checksumValid( OsfpPage::upperPage10 ) );
   EXPECT_EQ( sumUpTo( 130, 2 ), 0 );
   EXPECT_EQ( sumUpTo( 130, 9 ), 0 );
}

// Page 02h

TEST( CmisParserTest, ThresholdsAndTheSharedWarnings ) {
   CmisImageBuilder image = opticalModule();
   image.bit( "implMonitorsAdvertisement", "Tx bias times 2" )
      .value( "tempHighAlarm", 75 )
      .value( "tempLowAlarm", -5 )
      .raw( "tempHighWarn", 0x4600 )
      .raw( "tempLowWarn", 0xff00 )
      .value( "voltageHighAlarm", 3.6 )
      .value( "voltageLowAlarm", 3 )
      .value( "voltageHighWarnUnused", 3.5 )
      .value( "voltageLowWarnUnused", 3.1 )
      .value( "txPowerHighAlarm", 2 )
      .value( "txPowerLowAlarm", 0.1 )
      .value( "txPowerHighWarn", 1.5 )
      .value( "txPowerLowWarn", 0 )
      .value( "txBiasHighAlarm", 100 )
      .value( "txBiasLowAlarm", 10 )
      .value( "txBiasHighWarn", 90 )
      .value( "txBiasLowWarn", 20 )
      .value( "rxPowerHighAlarm", 2.5 )
      .value( "rxPowerLowAlarm", 0.01 )
      .value( "rxPowerHighWarn", 2 )
      .value( "rxPowerLowWarn", 0.02 );
   CmisModule const module( image );
   module.parse();
   DomThreshold const expected( 75, -5, 70, -1, 36000 * 0.0001, 30000 * 0.0001, 0x4600 * 0.0001,
                                0xff00 * 0.0001, 50000 * 0.002 * 2, 5000 * 0.002 * 2,
                                45000 * 0.002 * 2, 10000 * 0.002 * 2, dBm( 2 ), dBm( 0.1 ),
                                dBm( 1.5 ), unreadable, dBm( 2.5 ), dBm( 0.01 ), dBm( 2 ),
                                dBm( 0.02 ), unreadable, unreadable, unreadable, unreadable );
   EXPECT_EQ( module.decoded->domThreshold(), expected ) << module.decoded->domThreshold();
}

// Monitors

TEST( CmisParserTest, MonitorsOfEightLanes ) {
   CmisImageBuilder image = opticalModule();
   image.bit( "implMonitorsAdvertisement", "Tx bias times 4" ).raw( "rxPower7", 0 );
   CmisModule const module( image );
   module.parse();
   double const now =
      std::chrono::duration<double>( std::chrono::system_clock::now().time_since_epoch() ).count();
   double const sampled = module.decoded->domInfo( LaneId( 0 ) ).updateTime();
   EXPECT_NEAR( sampled, now, 60 );
   for ( uint8_t lane = 0; lane < 8; ++lane ) {
      DomInfo const expected( sampled, domCalibrationInternal, -12.5, 33000 * 0.0001,
                              ( 15000 + 500 * lane ) * 0.002 * 4, dBm( 0.5 + 0.125 * lane ),
                              lane == 7 ? unreadable : dBm( 0.25 + 0.125 * lane ), unreadable );
      EXPECT_EQ( module.decoded->domInfo( LaneId( lane ) ), expected ) << int( lane );
   }
   EXPECT_FALSE( module.decoded->domInfoHas( LaneId( 8 ) ) );
}

// Page 11h

TEST( CmisParserTest, EveryLaneFlagHasItsByte ) {
   using Map = Decoded::LaneFlags const & (Decoded::*)() const;
   struct Case {
      char const * field;
      Map map;
      uint16_t support; // of the advertisement; 0 for a flag that is always there
   };
   Case const cases[] = {
      { "txFault", &Decoded::txFaultMap, 0x100 },
      { "txLos", &Decoded::txLosMap, 0x200 },
      { "txCdrLol", &Decoded::txCdrLolMap, 0x400 },
      { "txAdaptiveInputEqFault", &Decoded::txAdaptiveInputEqFaultMap, 0x800 },
      { "txPowerHiAlarm", &Decoded::txPowerHiAlarmMap, 0 },
      { "txPowerLoAlarm", &Decoded::txPowerLoAlarmMap, 0 },
      { "txPowerHiWarn", &Decoded::txPowerHiWarnMap, 0 },
      { "txPowerLoWarn", &Decoded::txPowerLoWarnMap, 0 },
      { "txBiasHiAlarm", &Decoded::txBiasHiAlarmMap, 0 },
      { "txBiasLoAlarm", &Decoded::txBiasLoAlarmMap, 0 },
      { "txBiasHiWarn", &Decoded::txBiasHiWarnMap, 0 },
      { "txBiasLoWarn", &Decoded::txBiasLoWarnMap, 0 },
      { "rxLos", &Decoded::rxLosMap, 0x002 },
      { "rxCdrLol", &Decoded::rxCdrLolMap, 0x004 },
      { "rxPowerHiAlarm", &Decoded::rxPowerHiAlarmMap, 0 },
      { "rxPowerLoAlarm", &Decoded::rxPowerLoAlarmMap, 0 },
      { "rxPowerHiWarn", &Decoded::rxPowerHiWarnMap, 0 },
      { "rxPowerLoWarn", &Decoded::rxPowerLoWarnMap, 0 },
   };
   // Each flag has a byte of its own, from 135 on in this order.
   CmisImageBuilder image;
   for ( uint8_t i = 0; i < std::size( cases ); ++i ) {
      image.byte( "11h", 135 - 128 + i, uint8_t( 0x81 + 4 * i ) );
   }
   for ( unsigned advertised :
         { 0x0000u, 0x0100u, 0x0200u, 0x0400u, 0x0800u, 0x0002u, 0x0004u, 0x0f06u } ) {
      for ( bool force : { false, true } ) {
         CmisModule const module( image.raw( "implFlagsAdvertisement", advertised ) );
         module.parse( force );
         for ( uint8_t i = 0; i < std::size( cases ); ++i ) {
            Case const & c = cases[i];
            auto const & held = ( module.decoded.get()->*c.map )();
            bool const written = c.support == 0 || advertised != 0 || force;
            bool const shown = c.support == 0 || advertised & c.support || force;
            EXPECT_EQ( held.size(), written ? 8u : 0u ) << c.field << advertised;
            EXPECT_EQ( lanesOf( held ), shown ? 0x81u + 4u * i : 0u ) << c.field << advertised;
         }
      }
   }
}

TEST( CmisParserTest, TuningInForce ) {
   CmisModule const module( CmisImageBuilder()
                               .raw( "txInputAdaptiveEqEnable", 0x92 )
                               .raw( "txInputEqualization", 0x10325476 )
                               .raw( "rxOutputPreEmphasis", 0x21436587 )
                               .raw( "rxOutputPostEmphasis", 0x325476a9 )
                               .raw( "rxOutputAmplitude", 0xfedcba98 ) );
   module.parser->parseLaneTuning();
   EXPECT_EQ( lanesOf( module.decoded->txInputAdaptiveEqEnableMap() ), 0x92u );
   auto const codes = []( auto const & map ) {
      std::string text;
      for ( auto const & [lane, code] : map ) {
         text += "0123456789abcdef"[code];
      }
      return text;
   };
   EXPECT_EQ( codes( module.decoded->txInputEqualizationMap() ), "01234567" );
   EXPECT_EQ( codes( module.decoded->rxOutputPreEmphasisMap() ), "12345678" );
   EXPECT_EQ( codes( module.decoded->rxOutputPostEmphasisMap() ), "2345679a" );
   EXPECT_EQ( codes( module.decoded->rxOutputAmplitudeMap() ), "efcdab89" );
}

TEST( CmisParserTest, ShadowOfTheControlBytes ) {
   CmisImageBuilder image;
   image.raw( "laneTxDisable", 0xa5 ).raw( "activeApSel0", 0x11 ).raw( "rxOutputAmplitude", 7 );
   CmisModule const module( image );
   OsfpWriteEepromShadow const & shadow = *module.parser->writeShadow();
   EXPECT_TRUE( shadow.activeControlSet().empty() );
   module.parser->parseUpperPage10();
   module.parser->parseUpperPage11();
   EXPECT_EQ( shadow.laneTxDisable(), 0xa5 );
   EXPECT_EQ( shadow.activeControlSet().size(), 29u );
   EXPECT_EQ( shadow.activeControlSet()[0], 0x11 );
   EXPECT_EQ( shadow.activeControlSet()[28], 7 );
   EXPECT_FALSE( shadow.bAndPValid() );

   Vel::String const short11h =
      module.raw->memory( OsfpBankAndPage( OsfpBank::bank0, OsfpPage::upperPage11 ) )
         .substr( 0, 106 );
   module.raw->memoryIs( OsfpBankAndPage( OsfpBank::bank0, OsfpPage::upperPage11 ), short11h );
   EXPECT_DEATH( module.parser->parseUpperPage11(), "data.size\\(\\) == area.size\\(\\)" );
}

// What a parse tells

TEST( CmisParserTest, ParsingTheSamePagesAgainTellsNothingAndAllocatesNothing ) {
   CmisImageBuilder image = opticalModule();
   image.raw( "rxLos", 0x0f ).raw( "rxOutputAmplitude", 0x12345678 );
   CmisModule const module( image );
   module.parse();
   Watcher watcher;
   watcher.notifierIs( module.decoded );
   AllocationCount const allocations;
   module.parse();
   EXPECT_EQ( allocations.calls(), 0u );
   EXPECT_EQ( watcher.told, 0 );
   EXPECT_TRUE( watcher.applications.empty() );
   EXPECT_TRUE( watcher.rxLos.empty() );
   EXPECT_TRUE( watcher.amplitude.empty() );
   EXPECT_EQ( watcher.dom, 8 ); // their sample time is a new one

   image.raw( "rxLos", 0x09 ).raw( "rxOutputAmplitude", 0x1234567f ).writeTo( *module.raw );
   module.parse();
   EXPECT_THAT( watcher.rxLos, ElementsAre( 1, 2 ) );
   EXPECT_THAT( watcher.amplitude, ElementsAre( 6 ) );
   EXPECT_EQ( watcher.told, 0 );
}

TEST( CmisParserTest, AnObserverMayTakeEverythingAway ) {
   CmisModule module( opticalModule() );
   struct Destroyer : Decoded::Notifiee {
      explicit Destroyer( CmisModule & m ) : module( m ) {}
      void onVendorName() override {
         module.raw->memoryDelAll();
         module.parser = nullptr;
         module.decoded = nullptr;
      }
      CmisModule & module;
   } destroyer( module );
   destroyer.notifierIs( module.decoded );
   module.parser->parseUpperPage00();
   EXPECT_FALSE( destroyer.notifier() );
}

// Pages that are not there

TEST( CmisParserTest, AMissingPageReadsAsZero ) {
   CmisModule const module;
   module.parser->parseLowerPage();
   module.parser->parseUpperPage00();
   module.parser->parseUpperPage01();
   module.parser->parseUpperPage02();
   module.parser->parseUpperPage10();
   module.parser->parseDom();
   module.parser->parseLaneFlags( true );
   module.parser->parseLaneTuning();
   EXPECT_EQ( module.decoded->vendorName(), "" );
   EXPECT_EQ( module.decoded->detectedMediaType(), xcvrUnknown );
   // No host code is 0xff, which ends a list.
   EXPECT_EQ( module.decoded->applicationMap().size(), 15u );
   EXPECT_EQ( module.decoded->domInfo( LaneId( 3 ) ).txPower(), unreadable );
   EXPECT_TRUE( module.decoded->checksumValid( OsfpPage::upperPage02 ) );
}

TEST( CmisContentsTest, RowsInUseFollowTheAdvertisement ) {
   CmisModule const module( opticalModule() );
   EXPECT_TRUE( module.raw->fieldInUse( CmisTable::row( "txPower3" ) ) );
   EXPECT_FALSE( module.raw->fieldInUse( CmisTable::row( "aux1" ) ) );
   EXPECT_EQ( module.raw->number( CmisTable::row( "application2" ) ), 0x0d142155u );
   opticalModule().flat().writeTo( *module.raw );
   EXPECT_FALSE( module.raw->fieldInUse( CmisTable::row( "txPower3" ) ) );
   EXPECT_FALSE( module.raw->has( CmisTable::row( "wavelength" ) ) );
   EXPECT_EQ( module.raw->number( CmisTable::row( "wavelength" ) ), 0u );
}
