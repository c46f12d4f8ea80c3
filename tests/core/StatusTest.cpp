#include "tests/support/TraceCapture.h"

#include <Vel/DefineEntity.h>
#include <Xcvr/Xcvr.h>

#include <gmock/gmock.h>

#include <cstring>
#include <functional>
#include <limits>

using namespace Xcvr;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// A family that supplies what the shared derivations ask for.
class FamilyStatus : public XcvrNewStatus {
 public:
   FamilyStatus() : XcvrNewStatus( "slot", XcvrType::sfpPlus ) {}
   MediaType mediaType() const override { return type; }
   MediaType detectedMediaType() const override { return detected; }
   uint32_t laserWavelength() const override { return wavelength; }
   TuningCapabilities tuningCapabilities() const override { return tuning; }

   MediaType type = xcvrUnknown;
   MediaType detected = xcvrUnknown;
   uint32_t wavelength = 0;
   TuningCapabilities tuning;
};

MediaType codeOf( uint32_t code ) {
   return static_cast<MediaType>( code );
}

template <typename T>
std::string text( T const & value ) {
   return std::string( Vel::stringForm( value ) );
}

// Value( -inf, … ) texts come out long; these say what a neutral one is.
std::string neutralThreshold() {
   DomThreshold result;
   DomThreshold::velFields(
      [&]( auto const &, double DomThreshold::*f ) { result.*f = unreadable; } );
   return text( result );
}

struct Neutral {
   char const * operation;
   std::function<std::string( XcvrNewStatus & )> call;
   std::string result;
   bool traced = true;
};

// clang-format off
std::vector<Neutral> neutralResults() {
   LaneId const lane( 0 );
   std::string const infinite = text( unreadable );
   return {
      { "capabilities", []( auto & s ) { return text( s.capabilities() ); }, text( Capabilities( 0, false, false, false, false, 0 ) ) },
      { "vendorInfo", []( auto & s ) { return text( s.vendorInfo() ); }, text( VendorInfo( "", "", "", "", "" ) ) },
      { "bitrate", []( auto & s ) { return text( s.bitrate() ); }, "0" },
      { "mediaType", []( auto & s ) { return text( s.mediaType() ); }, "xcvrUnknown" },
      { "detectedMediaType", []( auto & s ) { return text( s.detectedMediaType() ); }, "xcvrUnknown" },
      { "laserWavelength", []( auto & s ) { return text( s.laserWavelength() ); }, "0" },
      { "laserWavelengthPrecision", []( auto & s ) { return text( s.laserWavelengthPrecision() ); }, "laserWavelengthPrecisionUnknown" },
      { "disablePolling", []( auto & s ) { return text( s.disablePolling() ); }, "False" },
      { "domInfoValid", [=]( auto & s ) { return text( s.domInfoValid( lane ) ); }, "False" },
      { "domInfo", [=]( auto & s ) { return text( s.domInfo( lane ) ); }, text( DomInfo( 0, domCalibrationUnknown, unreadable, unreadable, unreadable, unreadable, unreadable, unreadable ) ) },
      { "domAggPower", []( auto & s ) { return text( s.domAggPower() ); }, text( DomAggPower( 0, domCalibrationUnknown, unreadable, unreadable ) ) },
      { "domThresholdValid", []( auto & s ) { return text( s.domThresholdValid() ); }, "False" },
      { "domThreshold", []( auto & s ) { return text( s.domThreshold() ); }, neutralThreshold() },
      { "domCapabilities", []( auto & s ) { return text( s.domCapabilities() ); }, text( DomCapabilities() ) },
      { "enhancedDomValuesValid", []( auto & s ) { return text( s.enhancedDomValuesValid( 1 ) ); }, "False" },
      { "enhancedDomValue", []( auto & s ) { return text( s.enhancedDomValue( 1 ) ); }, infinite },
      { "enhancedDomThresholdValid", []( auto & s ) { return text( s.enhancedDomThresholdValid( 1 ) ); }, "False" },
      { "enhancedDomThreshold", []( auto & s ) { return text( s.enhancedDomThreshold( 1 ) ); }, text( EnhancedDomThreshold( unreadable, unreadable, unreadable, unreadable ) ) },
      { "enhancedDomCapabilities", []( auto & s ) { return text( s.enhancedDomCapabilities() ); }, text( EnhancedDomCapabilities() ) },
      { "enhancedDomSensorCategory", []( auto & s ) { return text( s.enhancedDomSensorCategory() ); }, text( EnhancedDomSensorCategory() ), false },
      { "idEepromInfo", []( auto & s ) { return text( s.idEepromInfo() ); }, text( EepromDescriptor() ) },
      { "powerClass", []( auto & s ) { return text( s.powerClass() ); }, "xcvrPowerClassUnknown" },
      { "idEepromContentsIs", []( auto & s ) { s.idEepromContentsIs( 0, "bytes" ); return ""; }, "" },
      { "updateLastValidTime", []( auto & s ) { s.updateLastValidTime( 1 ); return ""; }, "" },
      { "rxOutputAmplitude", [=]( auto & s ) { return text( s.rxOutputAmplitude( lane ) ); }, text( TuningValue() ) },
      { "rxOutputPreEmphasis", [=]( auto & s ) { return text( s.rxOutputPreEmphasis( lane ) ); }, text( TuningValue() ) },
      { "txInputEqualization", [=]( auto & s ) { return text( s.txInputEqualization( lane ) ); }, text( TuningValue() ) },
      { "electricalPathAttenuation", []( auto & s ) { return text( s.electricalPathAttenuation().value() ); }, infinite },
      { "hwChannel", []( auto & s ) { return text( s.hwChannel() ); }, "0" },
      { "tuningCapabilities", []( auto & s ) { return text( s.tuningCapabilities() ); }, text( TuningCapabilities() ), false },
      { "narrowBand", []( auto & s ) { return text( s.narrowBand() ); }, "False" },
      { "capabilitiesIs", []( auto & s ) { s.capabilitiesIs( {} ); return ""; }, "" },
      { "vendorInfoIs", []( auto & s ) { s.vendorInfoIs( {} ); return ""; }, "" },
   };
}
// clang-format on

/// The notes that were traced, without the records that open a scope.
std::vector<std::string> notes( TraceCapture & capture ) {
   std::vector<std::string> result;
   for ( auto const & record : capture.takeRecords() ) {
      if ( !record.text.empty() ) {
         result.push_back( record.text );
      }
   }
   return result;
}

} // namespace

TEST( StatusTest, WhatAFamilyDoesNotSupplyIsNeutralAndTraced ) {
   XcvrNewStatus status( "slot", XcvrType::unknown );
   for ( Neutral const & neutral : neutralResults() ) {
      SCOPED_TRACE( neutral.operation );
      TraceCapture capture( "Xcvr", 8 );
      EXPECT_EQ( neutral.call( status ), neutral.result );
      auto const records = capture.takeRecords();
      ASSERT_EQ( records.size(), neutral.traced ? 1u : 0u );
      if ( neutral.traced ) {
         EXPECT_EQ( records[0].operation, neutral.operation );
         EXPECT_EQ( records[0].text, neutral.operation );
         EXPECT_EQ( records[0].level, 8 );
      }
   }
   EXPECT_THROW(
      {
         try {
            (void)status.isSupportedMediaType( xcvr10GBaseSr );
         } catch ( Vel::NoImplementationException const & e ) {
            EXPECT_STREQ( e.what(), "Not implemented in base class" );
            throw;
         }
      },
      Vel::NoImplementationException );
}

TEST( StatusTest, DerivationsOfAMissingMediaTypeAreThoseOfUnknown ) {
   XcvrNewStatus const status( "slot", XcvrType::unknown );
   TraceCapture capture( "Xcvr", 8 );
   EXPECT_EQ( status.bitrateKbps(), 10000000u );
   EXPECT_EQ( status.electricalInterface(), xcvr10GLimiting );
   EXPECT_FALSE( status.optical() );
   EXPECT_EQ( status.mediaTypeString(), "Unknown" );
   EXPECT_EQ( status.detectedMediaTypeString(), "Unknown" );
   EXPECT_EQ( status.getMediaTypeString( xcvr10GBaseDwdmEr ), "10G-DW0000ER" );
   EXPECT_THAT( notes( capture ),
                testing::ElementsAre( "mediaType", "mediaType", "mediaType", "mediaType",
                                      "detectedMediaType", "laserWavelength" ) );
}

TEST( StatusTest, DerivationsFollowTheMediaTypeTable ) {
   struct Row {
      MediaType type;
      char const * text;
      uint32_t kbps;
      ElectricalInterface interface;
      bool optical;
   };
   FamilyStatus status;
   status.wavelength = 1530330;
   for ( Row const & row : std::initializer_list<Row>{
            { xcvrUnknown, "Unknown", 10000000, xcvr10GLimiting, false },
            { xcvr400GOpticalUnknown, "UnknownOptical400G", 400000000, xcvr50GLimiting, true },
            { xcvr10GBaseLrm, "10GBASE-LRM", 10000000, xcvr10GLinear, true },
            { xcvr2p5GBaseT, "2.5GBASE-T", 2500000, xcvr10GLinear, false },
            { xcvr100BaseLx10, "100BASE-LX10", 100000, xcvr1GSgmiiBaseX, true },
            { xcvr1000BaseT, "1000BASE-T", 1000000, xcvr1GSgmiiBaseT, false },
            { xcvr10GBaseDwdmZr, "10G-DW3033ZR", 10000000, xcvr10GLimiting, true },
            { xcvr10GBaseDwdmZt, "10GBASE-DWDM", 10000000, xcvr10GLimiting, true },
            { xcvr100BaseFx, "100BASE-FX", 100000, xcvr100MMiiBaseFx, true },
            { xcvr10GBaseCrActive, "10GBASE-CRA", 10000000, xcvr10GLimiting, false },
            { xcvr100GDwdmCoherentE, "100G-DWDM-E", 100000000, xcvr25GLinear, true },
            { xcvr100GBaseCr4N, "100GBASE-CR4", 100000000, xcvr25GLinear, false },
            { xcvr2x100GBaseMfg, "2X100GBASE-MFG", 100000000, xcvr25GLimiting, false },
            { xcvr200GBaseCr8, "200GBASE-CR8", 200000000, xcvr25GLinear, false },
            { xcvr400GBaseDr4, "400GBASE-DR4", 400000000, xcvr50GLimiting, true } } ) {
      SCOPED_TRACE( row.text );
      status.type = row.type;
      EXPECT_EQ( status.mediaTypeString(), row.text );
      EXPECT_EQ( status.bitrateKbps(), row.kbps );
      EXPECT_EQ( status.electricalInterface(), row.interface );
      EXPECT_EQ( status.optical(), row.optical );
   }
   EXPECT_EQ( mediaTypeInfos().size(), 91u );
   status.detected = xcvr10GBaseDwdmEr;
   status.wavelength = 1550120;
   EXPECT_EQ( status.detectedMediaTypeString(), "10G-DW5012ER" );
}

TEST( StatusTest, ACodeThatIsNoMediaTypeIsUnknownAndHasNoBitRate ) {
   FamilyStatus status;
   for ( uint32_t code : { 91u, 0xffffffffu } ) {
      status.type = codeOf( code );
      EXPECT_EQ( mediaTypeInfo( status.type ), nullptr );
      EXPECT_EQ( status.mediaTypeString(), "Unknown" );
      EXPECT_EQ( status.electricalInterface(), xcvr10GLimiting );
      EXPECT_FALSE( status.optical() );
      EXPECT_DEATH( (void)status.bitrateKbps(), "a media type that the table does not have" );
   }
}

TEST( StatusTest, EffectiveGridSpacingStepsDownTheLadder ) {
   constexpr uint32_t base = 191200000;
   GridSpacingCapabilities const none;
   GridSpacingCapabilities const all( true, true, true, true, true, true );
   GridSpacingCapabilities const only25( false, false, false, true, false, false );
   struct Row {
      uint32_t firstAboveBase;
      GridSpacingCapabilities capabilities;
      uint32_t channel, grid, spacing;
   };
   FamilyStatus status;
   for ( Row const & row : std::initializer_list<Row>{
            { 0, only25, 3, 50000, 50000 },      // on the configured grid
            { 0, none, 5, 0, 0 },                // no grid
            { 0, none, 1, 77777, 77777 },        // off the ladder, on the grid
            { 25000, all, 3, 77777, 0 },         // off the ladder, off the grid
            { 50000, none, 2, 100000, 0 },       // no step below may be tried
            { 50000, all, 2, 100000, 50000 },    //
            { 25000, only25, 2, 100000, 25000 }, // steps without a flag are passed over
            { 25000, none, 2, 50000, 0 },        //
            { 12500, all, 2, 50000, 12500 },     // 33000 does not divide 50000
            { 33000, all, 1, 99000, 0 },         // 99000 is not on the ladder
            { 6250, all, 2, 6250, 6250 },        //
            { 1, all, 2, 6250, 0 },              // below the last step
            { 100000, all, 1, 100000, 0 } } ) {  // below the first: the difference wraps
      SCOPED_TRACE( testing::Message()
                    << row.firstAboveBase << " " << row.channel << " " << row.grid );
      status.tuning =
         TuningCapabilities( base, base + row.firstAboveBase, base + 5000000, row.capabilities, 0 );
      EXPECT_EQ( status.effectiveGridSpacing( row.channel, row.grid ), row.spacing );
   }
   // Of a family without tuning all capabilities are 0.
   EXPECT_EQ( XcvrNewStatus( "slot", XcvrType::unknown ).effectiveGridSpacing( 2, 50000 ), 50000u );
}

TEST( StatusTest, TuningConfigurationIsResolvedOrFallsBack ) {
   // 191.2 to 196.2 THz; the finest grid is 25 GHz unless a row has other flags.
   constexpr uint32_t base = 191200000;
   GridSpacingCapabilities const to25( true, true, false, true, false, false );
   GridSpacingCapabilities const none;
   GridSpacingCapabilities const all( true, true, true, true, true, true );
   ItuTuningConfig const fallback( 39, 50000, 0, false );
   struct Row {
      char const * what;
      GridSpacingCapabilities capabilities;
      uint32_t fineTune, channel, grid, frequency;
      ItuTuningConfig result;
   };
   FamilyStatus status;
   Vel::Ptr<TuningConfig> const config = tuningConfigFactory( "slot" );
   for ( Row const & row : std::initializer_list<Row>{
            { "channel and grid", to25, 0, 20, 50000, 0, { 20, 50000, 0, true } },
            { "they win over a frequency", to25, 0, 20, 50000, base, { 20, 50000, 0, true } },
            { "100 GHz without a flag", none, 0, 2, 100000, 0, { 2, 100000, 0, true } },
            { "50 GHz without a flag", none, 0, 2, 50000, 0, { 2, 50000, 0, true } },
            { "25 GHz without a flag", none, 0, 3, 25000, 0, fallback },
            { "12.5 GHz without a flag", to25, 0, 3, 12500, 0, fallback },
            { "12.5 GHz", all, 0, 3, 12500, 0, { 3, 12500, 0, true } },
            { "no grid of any module", all, 0, 3, 75000, 0, fallback },
            { "frequency, own grid",
              to25,
              0,
              0,
              0,
              base + 50000,
              { 3, 25000, base + 50000, true } },
            { "frequency, other grid",
              to25,
              0,
              0,
              100000,
              base + 100000,
              { 5, 25000, base + 100000, true } },
            { "nearer channel below",
              none,
              50000,
              0,
              0,
              base + 60000,
              { 2, 50000, base + 60000, true } },
            { "nearer channel above",
              none,
              50000,
              0,
              0,
              base + 80000,
              { 3, 50000, base + 80000, true } },
            { "half way stays below",
              none,
              50000,
              0,
              0,
              base + 75000,
              { 2, 50000, base + 75000, true } },
            { "off the grid, above", none, 9999, 0, 0, base + 60000, fallback },
            { "off the grid, below", none, 9999, 0, 0, base + 90000, fallback },
            { "fine tuning just reaches",
              none,
              10000,
              0,
              0,
              base + 90000,
              { 3, 50000, base + 90000, true } },
            { "first", to25, 0, 0, 0, base, { 1, 25000, base, true } },
            { "below first", to25, 0, 0, 0, base - 25000, fallback },
            { "last", to25, 0, 0, 0, base + 5000000, { 201, 25000, base + 5000000, true } },
            { "above last", to25, 0, 0, 0, base + 5025000, fallback },
            { "channel out of range", to25, 0, 102, 50000, 0, fallback } } ) {
      SCOPED_TRACE( row.what );
      status.tuning =
         TuningCapabilities( base, base, base + 5000000, row.capabilities, row.fineTune );
      config->channelIs( row.channel );
      config->gridIs( row.grid );
      config->frequencyIs( row.frequency );
      status.updateItuTuningConfig( config );
      EXPECT_EQ( status.ituTuningConfig(), row.result );
   }
   status.updateItuTuningConfig( nullptr );
   EXPECT_EQ( status.ituTuningConfig(), fallback );
}

TEST( StatusTest, ATuningOffTheModulesGridKeepsItsFrequencyWithTheLaserOff ) {
   constexpr uint32_t base = 191200000;
   FamilyStatus status;
   status.tuning = TuningCapabilities( base, base + 10000, base + 5000000, {}, 50000 );
   Vel::Ptr<TuningConfig> const config = tuningConfigFactory( "slot" );
   config->frequencyIs( base + 100000 );
   status.updateItuTuningConfig( config );
   EXPECT_EQ( status.ituTuningConfig(), ItuTuningConfig( 39, 50000, base + 100000, false ) );
}

TEST( StatusTest, LanesAndStatisticsAreChildrenThatStay ) {
   XcvrNewStatus status( "slot", XcvrType::mbo );
   EXPECT_EQ( status.xcvrType(), XcvrType::mbo );
   Vel::Ptr<LaneStatus> const lane = status.laneStatusIs( LaneId( 3 ) );
   EXPECT_EQ( lane->lane(), LaneId( 3 ) );
   EXPECT_EQ( lane->fullName(), "slot/laneStatus/3" );
   EXPECT_EQ( status.laneStatusIs( LaneId( 3 ) ), lane );
   EXPECT_FALSE( status.laneStatusHas( LaneId( 4 ) ) );
   EXPECT_EQ( status.xcvrStatsEnt(), nullptr );
   Vel::Ptr<XcvrEventStatsEnt> const stats = status.xcvrStatsEntIs();
   EXPECT_EQ( status.xcvrStatsEntIs(), stats );
   EXPECT_EQ( stats->parent(), &status );
}

#if defined( __GXX_ABI_VERSION )
/// Where a virtual operation stands in the table, by the Itanium ABI's pointers to members.
template <typename Operation>
std::ptrdiff_t slotOf( Operation operation ) {
   std::ptrdiff_t place;
   std::memcpy( &place, &operation, sizeof place );
   return place / static_cast<std::ptrdiff_t>( sizeof( void * ) );
}

// Programs that were compiled before call by these places.
TEST( StatusTest, OperationsKeepTheirVirtualSlots ) {
   using S = XcvrNewStatus;
   // clang-format off
   std::ptrdiff_t const slots[] = {
      slotOf( &S::capabilities ), slotOf( &S::vendorInfo ), slotOf( &S::bitrate ),
      slotOf( &S::mediaType ), slotOf( &S::detectedMediaType ), slotOf( &S::electricalInterface ),
      slotOf( &S::laserWavelength ), slotOf( &S::laserWavelengthPrecision ),
      slotOf( &S::optical ), slotOf( &S::disablePolling ), slotOf( &S::domInfoValid ),
      slotOf( &S::domInfo ), slotOf( &S::domAggPower ), slotOf( &S::domThresholdValid ),
      slotOf( &S::domThreshold ), slotOf( &S::domCapabilities ),
      slotOf( &S::enhancedDomValuesValid ), slotOf( &S::enhancedDomValue ),
      slotOf( &S::enhancedDomThresholdValid ), slotOf( &S::enhancedDomThreshold ),
      slotOf( &S::enhancedDomCapabilities ), slotOf( &S::enhancedDomSensorCategory ),
      slotOf( &S::idEepromInfo ), slotOf( &S::powerClass ), slotOf( &S::idEepromContentsIs ),
      slotOf( &S::updateLastValidTime ), slotOf( &S::rxOutputAmplitude ),
      slotOf( &S::rxOutputPreEmphasis ), slotOf( &S::txInputEqualization ),
      slotOf( &S::electricalPathAttenuation ), slotOf( &S::hwChannel ),
      slotOf( &S::tuningCapabilities ), slotOf( &S::narrowBand ),
      slotOf( &S::isSupportedMediaType ), slotOf( &S::capabilitiesIs ),
      slotOf( &S::vendorInfoIs ) };
   // clang-format on
   std::ptrdiff_t expected = slotOf( &Vel::Entity::velModel );
   for ( std::ptrdiff_t const slot : slots ) {
      EXPECT_EQ( slot, ++expected );
   }
}
#endif
