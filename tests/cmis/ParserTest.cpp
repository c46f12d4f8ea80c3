#include "tests/cmis/CmisModule.h"
#include "tests/support/AccessorCases.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace Xcvr;
using namespace XcvrTest;
using testing::ElementsAre;
using Decoded = OsfpDecodedEepromContents;

namespace {

/// A parsed module whose bytes are all different. The pages have them at their addresses in the tables
/// of CMIS, so that what is expected owes nothing to the field table that the parser rests on.
struct AddressedModule : CmisModule {
   AddressedModule() {
      for ( unsigned i = 0; i < std::size( images ); ++i ) {
         for ( unsigned address = 0; address < 256; ++address ) {
            images[i] += static_cast<char>( ( 255 - address ) ^ ( 0x24 + 0x10 * i ) );
         }
         auto const & [label, bank, page] = CmisImageBuilder::allPages[i];
         raw->memoryIs( OsfpBankAndPage( bank, page ),
                        std::string_view( images[i] ).substr( i == 0 ? 0 : 128, 128 ) );
      }
      parse();
   }
   std::string images[6];
   [[nodiscard]] PageView page( size_t i ) const { return std::string_view( images[i] ); }
};

/// What observers are told of, but for the monitors, whose sample time goes on.
struct Watcher : Decoded::Notifiee {
   void onModuleTypeIdentifier() override { told.push_back( "moduleTypeIdentifier" ); }
   void onDomThreshold() override { told.push_back( "domThreshold" ); }
   void onChecksumValid( OsfpPage ) override { told.push_back( "checksumValid" ); }
   void onRxLos( ChannelId lane ) override { lanes.push_back( lane.value() ); }
   void onRxOutputAmplitude( ChannelId lane ) override { lanes.push_back( 10 + lane.value() ); }
   void onApplication( uint8_t key ) override { applications.push_back( key ); }
   std::vector<std::string> told;
   std::vector<int> lanes, applications;
};

} // namespace

TEST( CmisParserTest, EveryNumberIsWhereTheStandardHasIt ) {
   AddressedModule const module;
   PageView const lower = module.page( 0 ), p00h = module.page( 1 ), p01h = module.page( 2 ),
                  p10h = module.page( 4 ), p11h = module.page( 5 );
   Decoded const & decoded = *module.decoded;
   EXPECT_EQ( decoded.identifier(), OsfpIdentifier( lower.u8( 0 ) ) );
   EXPECT_EQ( decoded.flatMem(), lower.u8( 2 ) >> 7 );
   EXPECT_EQ( decoded.maxSmbusSpeedSupported(), OsfpSmbusSpeedReg( lower.u8( 2 ) >> 2 & 3 ) );
   EXPECT_EQ( decoded.moduleGlobalAndSquelchControls(), lower.u8( 26 ) );
   EXPECT_EQ( decoded.moduleType(), OsfpModuleTypeEncoding( lower.u8( 85 ) ) );
   EXPECT_EQ( decoded.identifierExtended(), p00h.u8( 128 ) );
   EXPECT_EQ( decoded.vendorName(), p00h.text( 129, 16 ) );
   EXPECT_EQ( decoded.vendorOui(), p00h.text( 145, 3 ) );
   EXPECT_EQ( decoded.vendorPn(), p00h.text( 148, 16 ) );
   EXPECT_EQ( decoded.vendorRev(), p00h.text( 164, 2 ) );
   EXPECT_EQ( decoded.vendorSn(), p00h.text( 166, 16 ) );
   EXPECT_EQ( decoded.dateCode(), p00h.text( 182, 8 ) );
   EXPECT_EQ( decoded.modulePower(), p00h.u16be( 200 ) );
   EXPECT_EQ( decoded.cableLength(), p00h.u8( 202 ) );
   EXPECT_EQ( decoded.connector(), p00h.u8( 203 ) );
   EXPECT_EQ( decoded.implRxOutputAmplitudeCode(), p01h.u8( 153 ) >> 4 );
   EXPECT_EQ( decoded.maxTxInputEqualization(), p01h.u8( 153 ) & 0xf );
   EXPECT_EQ( decoded.maxRxOutputPostEmphasis(), p01h.u8( 154 ) >> 4 );
   EXPECT_EQ( decoded.maxRxOutputPreEmphasis(), p01h.u8( 154 ) & 0xf );
   EXPECT_EQ( decoded.implControlsAdvertisement(), p01h.u16be( 155 ) );
   EXPECT_EQ( decoded.implFlagsAdvertisement(), p01h.u16be( 157 ) );
   EXPECT_EQ( decoded.implMonitorsAdvertisement().value(), p01h.u16be( 159 ) );
   EXPECT_EQ( decoded.implSignalIntegrityControl(), p01h.u16be( 161 ) );
   EXPECT_EQ( module.parser->writeShadow()->laneTxDisable(), p10h.u8( 130 ) );
   EXPECT_EQ( module.parser->writeShadow()->activeControlSet(), p11h.text( 206, 29 ) );

   auto const application = []( PageView page, uint32_t at, uint8_t mediaLanes ) {
      return OsfpApplication( uint32_t( page.unsignedBe( at, 4 ) ), mediaLanes );
   };
   EXPECT_EQ( decoded.moduleTypeIdentifier(), application( lower, 86, p01h.u8( 176 ) ) );
   for ( uint8_t i = 0; i < 8; ++i ) {
      // The media lanes of a key are those of the next application, at 176 + key.
      EXPECT_EQ( decoded.application( i + 1u ),
                 application( lower, 86u + 4u * i, p01h.u8( 177u + i ) ) );
      EXPECT_EQ( decoded.applicationHas( i + 9u ), i < 7 );
      EXPECT_TRUE( i == 7 || decoded.application( i + 9u ) ==
                                application( p01h, 223u + 4u * i, p01h.u8( 185u + i ) ) );
   }
}

TEST( CmisParserTest, EveryMeasurementIsWhereTheStandardHasIt ) {
   AddressedModule const module;
   Decoded const & decoded = *module.decoded;
   PageView const lower = module.page( 0 ), limits = module.page( 3 ), p11h = module.page( 5 );
   // Of temperature, voltage, bias and powers. The warnings of the voltage are read from those of
   // the temperature.
   unsigned const first[] = { 128, 136, 184, 176, 192 };
   expectThresholds( decoded.domThreshold(), [&]( unsigned i ) {
      unsigned const at = first[i / 4] + i % 4 * 2 - ( i == 6 || i == 7 ? 8 : 0 );
      return i < 4 ? double( limits.s16be( at ) ) : limits.u16be( at );
   } );

   double const sampled = decoded.domInfo( LaneId( 0 ) ).updateTime();
   EXPECT_GT( sampled, 1.7e9 ); // s since 1970
   for ( uint8_t lane = 0; lane < 8; ++lane ) {
      EXPECT_EQ( decoded.domInfo( LaneId( lane ) ),
                 DomInfo( sampled, domCalibrationInternal, lower.s16be( 14 ) / 256.,
                          lower.u16be( 16 ) * 0.0001, p11h.u16be( 170u + 2u * lane ) * 0.002,
                          dBm( p11h.u16be( 154u + 2u * lane ) ),
                          dBm( p11h.u16be( 186u + 2u * lane ) ), unreadable ) );
      // Four bits a lane, those of lane 0 in the low half of the first byte.
      auto const code = [&]( unsigned at ) {
         return p11h.u8( at + lane / 2u ) >> lane % 2 * 4 & 0xf;
      };
      EXPECT_EQ( decoded.txInputAdaptiveEqEnable( ChannelId( lane ) ), p11h.u8( 214 ) >> lane & 1 );
      EXPECT_EQ( decoded.txInputEqualization( ChannelId( lane ) ), code( 217 ) );
      EXPECT_EQ( decoded.rxOutputPreEmphasis( ChannelId( lane ) ), code( 223 ) );
      EXPECT_EQ( decoded.rxOutputPostEmphasis( ChannelId( lane ) ), code( 227 ) );
      EXPECT_EQ( decoded.rxOutputAmplitude( ChannelId( lane ) ), code( 231 ) );
   }
}

TEST( CmisParserTest, EveryFlagOfTheModuleHasItsBit ) {
   CmisModule const module;
   Decoded const & d = *module.decoded;
   for ( unsigned bit = 0; bit < 8; ++bit ) {
      CmisImageBuilder().byte( "lower", 9, uint8_t( 1u << bit ) ).writeTo( *module.raw );
      module.parser->parseModuleFlags();
      bool const flags[] = { d.tempHiAlarm(),   d.tempLoAlarm(),    d.tempHiWarn(),
                             d.tempLoWarn(),    d.voltageHiAlarm(), d.voltageLoAlarm(),
                             d.voltageHiWarn(), d.voltageLoWarn() };
      EXPECT_TRUE( flags[bit] ) << bit;
      EXPECT_EQ( std::ranges::count( flags, true ), 1 ) << bit;
   }
}

TEST( CmisParserTest, EveryLaneFlagHasItsByte ) {
   // In the order of their bytes, of which the first is 135.
   Decoded::LaneFlags const & ( Decoded::*const maps[] )() const = {
      &Decoded::txFaultMap,        &Decoded::txLosMap,
      &Decoded::txCdrLolMap,       &Decoded::txAdaptiveInputEqFaultMap,
      &Decoded::txPowerHiAlarmMap, &Decoded::txPowerLoAlarmMap,
      &Decoded::txPowerHiWarnMap,  &Decoded::txPowerLoWarnMap,
      &Decoded::txBiasHiAlarmMap,  &Decoded::txBiasLoAlarmMap,
      &Decoded::txBiasHiWarnMap,   &Decoded::txBiasLoWarnMap,
      &Decoded::rxLosMap,          &Decoded::rxCdrLolMap,
      &Decoded::rxPowerHiAlarmMap, &Decoded::rxPowerLoAlarmMap,
      &Decoded::rxPowerHiWarnMap,  &Decoded::rxPowerLoWarnMap,
   };
   // The bits that advertise them; those without one are always there.
   constexpr unsigned support[18] = { 0x100, 0x200, 0x400, 0x800, 0, 0, 0, 0, 0, 0, 0, 0, 2, 4 };
   CmisImageBuilder image;
   for ( uint8_t i = 0; i < 18; ++i ) {
      image.byte( "11h", 135 - 128 + i, uint8_t( 0x81 + 4 * i ) );
   }
   for ( unsigned advertised : { 0u, 0x100u, 0x200u, 0x400u, 0x800u, 2u, 4u, 0xf06u } ) {
      for ( bool force : { false, true } ) {
         CmisModule const module( image.raw( "implFlagsAdvertisement", advertised ) );
         module.parse( force );
         for ( int i = 0; i < 18; ++i ) {
            auto const & held = ( ( *module.decoded ).*maps[i] )();
            bool const always = support[i] == 0 || force;
            EXPECT_EQ( held.size(), always || advertised != 0 ? 8u : 0u ) << 135 + i;
            for ( auto const & [lane, on] : held ) {
               bool const shown = always || advertised & support[i];
               EXPECT_EQ( on, shown && ( 0x81 + 4 * i ) >> lane.value() & 1 ) << 135 + i;
            }
         }
      }
   }
}

TEST( CmisParserTest, TheBiasMultiplierIsOfMonitorsAndLimits ) {
   for ( auto const & [code, factor] : { std::pair( 0, 1 ), { 1, 2 }, { 2, 4 }, { 3, 1 } } ) {
      CmisImageBuilder image = opticalModule().value( "txBiasLowWarn", 20 );
      CmisModule const module( image.byte( "01h", 160 - 128, uint8_t( 0xe7 | code << 3 ) ) );
      module.parse();
      EXPECT_EQ( module.decoded->domInfo( LaneId( 7 ) ).txBias(), 37 * factor ) << code;
      EXPECT_EQ( module.decoded->domThreshold().txBiasLowWarn(), 20 * factor ) << code;
   }
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
   CmisImageBuilder former = opticalModule();
   for ( unsigned code = 1; code <= 10; ++code ) {
      former.application( code, { 0x11, 0x1c, 8, 4, 1, 0x33 } );
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

   // A module without page 01h has nothing of what that page said.
   former.writeTo( *module.raw );
   module.parse();
   former.flat().writeTo( *module.raw );
   module.parser->parseLowerPage();
   EXPECT_EQ( module.decoded->applicationMap().size(), 8u );
   EXPECT_EQ( module.decoded->application( 8 ), OsfpApplication( 0x111c8401, 0 ) );
   EXPECT_EQ( module.decoded->moduleTypeIdentifier(), OsfpApplication( 0x111c8401, 0 ) );
   EXPECT_EQ( module.decoded->implMonitorsAdvertisement(), OsfpImplMonitorsAdvertisement() );
   EXPECT_FALSE( module.decoded->checksumHas( OsfpPage::upperPage01 ) );
}

TEST( CmisApplicationTest, MediaTypeFollowsModuleType ) {
   struct {
      uint32_t moduleType, descriptor;
      MediaType expected;
   } constexpr cases[] = {
      { 0, 0x1d1c0000, xcvrUnknown },     { 1, 0x11100000, xcvr400GBaseSr8 },
      { 2, 0x111c0000, xcvr400GBaseDr4 }, { 2, 0x11fe0000, xcvr400GOpticalUnknown },
      { 3, 0x1d010000, xcvr400GBaseCr8 }, { 3, 0x111c0000, xcvr400GCopperUnknown },
      { 4, 0x1d030000, xcvr400GBaseAr8 }, { 4, 0x1d770000, xcvr400GOpticalUnknown },
      { 5, 0x1d040000, xcvr10GBaseT },    { 5, 0x1d050000, xcvr400GCopperUnknown },
      { 6, 0x1d1c0000, xcvrUnknown },
   };
   for ( auto const & [type, descriptor, expected] : cases ) {
      EXPECT_EQ( OsfpApplication( descriptor, 0 ).mediaType( OsfpModuleTypeEncoding( type ) ),
                 expected );
   }
   EXPECT_EQ( OsfpApplication( 0x97050000, 0 ).hostInterfaceName(), "RTLR" );
   EXPECT_EQ( OsfpApplication( 0x111c0000, 0 ).mediaInterfaceName( osfpTypeUndefined ), "0x1c" );
}

TEST( CmisParserTest, ChecksumsOfTheirRanges ) {
   struct {
      OsfpPage page;
      uint8_t first, stored; // addresses
   } constexpr cases[] = { { OsfpPage::upperPage00, 128, 222 },
                           { OsfpPage::upperPage01, 130, 255 },
                           { OsfpPage::upperPage02, 128, 255 } };
   CmisModule const module( opticalModule() );
   for ( auto const & c : cases ) {
      OsfpBankAndPage const key( OsfpBank::bankNa, c.page );
      Vel::String const bytes = module.raw->memory( key );
      expectGuarded( bytes, c.first - 128u, c.stored - 128u, [&]( Vel::String const & changed ) {
         module.raw->memoryIs( key, changed );
         module.parse();
         EXPECT_EQ( module.decoded->checksum( c.page ), uint8_t( changed[c.stored - 128u] ) );
         return module.decoded->checksumValid( c.page );
      } );
   }
}

TEST( CmisParserTest, ParsingTheSamePagesAgainTellsNothingAndAllocatesNothing ) {
   CmisImageBuilder image = opticalModule().raw( "rxLos", 0x0f );
   CmisModule const module( image.raw( "rxOutputAmplitude", 0x12345678 ) );
   module.parse();
   Watcher watcher;
   watcher.notifierIs( module.decoded );
   AllocationCount const allocations;
   module.parse();
   EXPECT_EQ( allocations.calls(), 0u );
   EXPECT_THAT( watcher.told, ElementsAre() );
   EXPECT_THAT( watcher.lanes, ElementsAre() );
   EXPECT_THAT( watcher.applications, ElementsAre() );
   image.raw( "rxLos", 0x09 ).raw( "rxOutputAmplitude", 0x1234567f ).writeTo( *module.raw );
   module.parse();
   EXPECT_THAT( watcher.lanes, ElementsAre( 1, 2, 16 ) );
}

TEST( CmisParserTest, AnObserverMayTakeEverythingAway ) {
   struct Destroyer : Decoded::Notifiee {
      void onVendorName() override {
         module.raw->memoryDelAll();
         module.parser = nullptr;
         module.decoded = nullptr;
      }
      CmisModule module{ opticalModule() };
   } destroyer;
   destroyer.notifierIs( destroyer.module.decoded );
   destroyer.module.parser->parseUpperPage00();
   EXPECT_FALSE( destroyer.notifier() );
}

TEST( CmisParserTest, AMissingPageReadsAsZeroButAControlSetIsWhole ) {
   CmisModule const module;
   OsfpBankAndPage const p11h( OsfpBank::bank0, OsfpPage::upperPage11 );
   module.raw->memoryIs( p11h, Vel::String( 128, '\0' ) );
   module.parse( true );
   // No host code is 0xff, which ends a list.
   EXPECT_EQ( module.decoded->applicationMap().size(), 15u );
   EXPECT_TRUE( module.decoded->checksumValid( OsfpPage::upperPage02 ) );
   module.raw->memoryIs( p11h, Vel::String( 106, 'x' ) );
   EXPECT_DEATH( module.parser->parseUpperPage11(), "data.size\\(\\) == area.size\\(\\)" );
}

TEST( CmisContentsTest, RowsInUseFollowTheAdvertisement ) {
   CmisImageBuilder image;
   image.raw( "implMonitorsAdvertisement", 0x200, "implSignalIntegrityControl", 0xefff );
   auto const inUse = [&] {
      CmisModule const module( image );
      std::vector<std::string_view> names;
      for ( MemoryField const & field : cmisFields() ) {
         bool const isAsked = field.page == "02h" || field.name == "txAdaptiveEqFreeze";
         if ( isAsked && module.raw->has( field ) && module.raw->fieldInUse( field ) ) {
            names.push_back( field.name );
         }
      }
      return names;
   };
   EXPECT_THAT( inUse(), ElementsAre( "voltageHighWarn", "voltageLowWarn", "voltageHighAlarm",
                                      "voltageLowAlarm", "voltageHighWarnUnused",
                                      "voltageLowWarnUnused", "checksumUpperPage02" ) );
   image.raw( "implMonitorsAdvertisement", 0, "implSignalIntegrityControl", 0x1000 );
   EXPECT_THAT( inUse(), ElementsAre( "checksumUpperPage02", "txAdaptiveEqFreeze" ) );
   // A module of flat memory lacks the pages, whatever was read there.
   image.bit( "memoryAndSpeed", "flat memory" );
   EXPECT_THAT( inUse(), ElementsAre() );
}
