#include "tests/support/TraceCapture.h"

#include <Vel/DefineEntity.h>
#include <Xcvr/Xcvr.h>

#include <gmock/gmock.h>

#include <cstring>
#include <limits>

using namespace Xcvr;
using testing::ElementsAre;

namespace {

constexpr double unreadable = -std::numeric_limits<double>::infinity();

/// A family that supplies what the shared derivations ask for.
class FamilyStatus : public XcvrNewStatus {
 public:
   FamilyStatus() : XcvrNewStatus( "slot", XcvrType::sfpPlus ) {}
   MediaType mediaType() const override { return type; }
   uint32_t laserWavelength() const override { return wavelength; }
   TuningCapabilities tuningCapabilities() const override { return tuning; }

   MediaType type = xcvrUnknown;
   uint32_t wavelength = 0;
   TuningCapabilities tuning;
};

} // namespace

TEST( StatusTest, WhatAFamilyDoesNotSupplyIsNeutralAndTraced ) {
   XcvrNewStatus status( "slot", XcvrType::unknown );
   TraceCapture capture( "Xcvr", 8 );
   // The operation has been called: that it says so, and what it has to give.
   auto const traced = [&]( std::string const & operation ) {
      EXPECT_THAT( capture.takeNotes(), ElementsAre( operation + ": " + operation ) );
   };
   auto const neutral = [&]( char const * operation, auto const & result, auto const & expected ) {
      EXPECT_EQ( result, expected ) << operation;
      traced( operation );
   };
   double const no = unreadable;
   neutral( "bitrate", status.bitrate(), 0u );
   neutral( "domInfo", status.domInfo( LaneId() ),
            DomInfo( 0, domCalibrationUnknown, no, no, no, no, no, no ) );
   neutral( "domAggPower", status.domAggPower(), DomAggPower( 0, domCalibrationUnknown, no, no ) );
   neutral( "domThreshold", status.domThreshold().rxPowerLowWarn(), no );
   neutral( "enhancedDomValue", status.enhancedDomValue( 1 ), no );
   neutral( "electricalPathAttenuation", status.electricalPathAttenuation().value(), no );
   status.idEepromContentsIs( 0, "bytes" ), traced( "idEepromContentsIs" );
   // These two are supplied here.
   EXPECT_EQ( status.enhancedDomSensorCategory(), EnhancedDomSensorCategory() );
   EXPECT_EQ( status.tuningCapabilities(), TuningCapabilities() );
   EXPECT_THAT( capture.takeNotes(), ElementsAre() );
   EXPECT_THAT(
      [&] { static_cast<void>( status.isSupportedMediaType( xcvr10GBaseSr ) ); },
      testing::ThrowsMessage<Vel::NoImplementationException>( "Not implemented in base class" ) );
   EXPECT_EQ( status.detectedMediaTypeString(), "Unknown" );
   traced( "detectedMediaType" );
}

TEST( StatusTest, DerivationsFollowTheMediaTypeTable ) {
   struct {
      MediaType type;
      char const * text;
      uint32_t kbps;
      ElectricalInterface interface;
      bool optical;
   } const rows[] = {
      { xcvrUnknown, "Unknown", 10000000, xcvr10GLimiting, false },
      { xcvr400GOpticalUnknown, "UnknownOptical400G", 400000000, xcvr50GLimiting, true },
      { xcvr100BaseLx10, "100BASE-LX10", 100000, xcvr1GSgmiiBaseX, true },
      { xcvr1000BaseT, "1000BASE-T", 1000000, xcvr1GSgmiiBaseT, false },
      { xcvr10GBaseDwdmZr, "10G-DW3033ZR", 10000000, xcvr10GLimiting, true },
      { xcvr10GBaseDwdmZt, "10GBASE-DWDM", 10000000, xcvr10GLimiting, true },
      { xcvr100GBaseCr4N, "100GBASE-CR4", 100000000, xcvr25GLinear, false },
      { xcvr400GBaseDr4, "400GBASE-DR4", 400000000, xcvr50GLimiting, true } };
   FamilyStatus status;
   status.wavelength = 1530330;
   for ( auto const & row : rows ) {
      SCOPED_TRACE( row.text );
      status.type = row.type;
      EXPECT_EQ( status.mediaTypeString(), row.text );
      EXPECT_EQ( status.bitrateKbps(), row.kbps );
      EXPECT_EQ( status.electricalInterface(), row.interface );
      EXPECT_EQ( status.optical(), row.optical );
   }
   EXPECT_EQ( status.getMediaTypeString( xcvr10GBaseDwdmEr ), "10G-DW3033ER" );
   for ( uint32_t code : { 91u, 0xffffffffu } ) { // no media type
      status.type = static_cast<MediaType>( code );
      EXPECT_EQ( mediaTypeInfo( status.type ), nullptr );
      EXPECT_EQ( status.mediaTypeString(), "Unknown" );
      EXPECT_EQ( status.electricalInterface(), xcvr10GLimiting );
      EXPECT_FALSE( status.optical() );
      EXPECT_DEATH( (void)status.bitrateKbps(), "a media type that the table does not have" );
   }
}

/// The lowest frequency of the tests of tuning, in MHz.
constexpr uint32_t base = 191200000;
GridSpacingCapabilities const noGrid;
GridSpacingCapabilities const anyGrid( true, true, true, true, true, true );

TEST( StatusTest, EffectiveGridSpacingStepsDownTheLadder ) {
   GridSpacingCapabilities const only25( false, false, false, true, false, false );
   struct {
      uint32_t firstAboveBase;
      GridSpacingCapabilities capabilities;
      uint32_t channel, grid, spacing;
   } const rows[] = { { 0, only25, 3, 50000, 50000 },       // on the configured grid
                      { 0, noGrid, 5, 0, 0 },               // no grid
                      { 0, noGrid, 1, 77777, 77777 },       // off the ladder, on the grid
                      { 25000, anyGrid, 3, 77777, 0 },      // off the ladder, off the grid
                      { 50000, noGrid, 2, 100000, 0 },      // no step below may be tried
                      { 50000, anyGrid, 2, 100000, 50000 }, //
                      { 25000, only25, 2, 100000, 25000 },  // steps without a flag are passed over
                      { 25000, noGrid, 2, 50000, 0 },       //
                      { 12500, anyGrid, 2, 50000, 12500 },  // 33000 does not divide 50000
                      { 33000, anyGrid, 1, 99000, 0 },      // 99000 is not on the ladder
                      { 6250, anyGrid, 2, 6250, 6250 },     //
                      { 1, anyGrid, 2, 6250, 0 },           // below the last step
                      { 100000, anyGrid, 1, 100000, 0 } };  // below the first: the difference wraps
   FamilyStatus status;
   for ( auto const & row : rows ) {
      status.tuning = { base, base + row.firstAboveBase, base + 5000000, row.capabilities, 0 };
      EXPECT_EQ( status.effectiveGridSpacing( row.channel, row.grid ), row.spacing )
         << row.firstAboveBase << " " << row.channel << " " << row.grid;
   }
   // Of a family without tuning all capabilities are 0.
   EXPECT_EQ( XcvrNewStatus( "slot", XcvrType::unknown ).effectiveGridSpacing( 2, 50000 ), 50000u );
}

TEST( StatusTest, TuningConfigurationIsResolvedOrFallsBack ) {
   // 191.2 to 196.2 THz; the finest grid is 25 GHz unless a row has other flags.
   GridSpacingCapabilities const to25( true, true, false, true, false, false );
   constexpr ItuTuningConfig ( *off )() = [] { return ItuTuningConfig( 39, 50000, 0, false ); };
   constexpr auto at = []( uint32_t channel, uint32_t grid, uint32_t frequency = 0 ) {
      return ItuTuningConfig( channel, grid, frequency, true );
   };
   struct {
      char const * what;
      GridSpacingCapabilities capabilities;
      uint32_t fineTune, channel, grid, frequency;
      ItuTuningConfig result;
   } const rows[] = {
      { "channel and grid", to25, 0, 20, 50000, 0, at( 20, 50000 ) },
      { "they win over a frequency", to25, 0, 20, 50000, base, at( 20, 50000 ) },
      { "50 GHz without a flag", noGrid, 0, 2, 50000, 0, at( 2, 50000 ) },
      { "25 GHz without a flag", noGrid, 0, 3, 25000, 0, off() },
      { "12.5 GHz", anyGrid, 0, 3, 12500, 0, at( 3, 12500 ) },
      { "no grid of any module", anyGrid, 0, 3, 75000, 0, off() },
      { "channel out of range", to25, 0, 102, 50000, 0, off() },
      { "own grid", to25, 0, 0, 0, base + 50000, at( 3, 25000, base + 50000 ) },
      { "other grid", to25, 0, 0, 100000, base + 100000, at( 5, 25000, base + 100000 ) },
      { "nearer below", noGrid, 50000, 0, 0, base + 60000, at( 2, 50000, base + 60000 ) },
      { "nearer above", noGrid, 50000, 0, 0, base + 80000, at( 3, 50000, base + 80000 ) },
      { "half way", noGrid, 50000, 0, 0, base + 75000, at( 2, 50000, base + 75000 ) },
      { "off the grid, above", noGrid, 9999, 0, 0, base + 60000, off() },
      { "off the grid, below", noGrid, 9999, 0, 0, base + 90000, off() },
      { "just reached", noGrid, 10000, 0, 0, base + 90000, at( 3, 50000, base + 90000 ) },
      { "first", to25, 0, 0, 0, base, at( 1, 25000, base ) },
      { "below first", to25, 0, 0, 0, base - 25000, off() },
      { "last", to25, 0, 0, 0, base + 5000000, at( 201, 25000, base + 5000000 ) },
      { "above last", to25, 0, 0, 0, base + 5025000, off() } };
   FamilyStatus status;
   Vel::Ptr<TuningConfig> const config = tuningConfigFactory( "slot" );
   for ( auto const & row : rows ) {
      status.tuning = { base, base, base + 5000000, row.capabilities, row.fineTune };
      config->channelIs( row.channel );
      config->gridIs( row.grid );
      config->frequencyIs( row.frequency );
      status.updateItuTuningConfig( config );
      EXPECT_EQ( status.ituTuningConfig(), row.result ) << row.what;
   }
   status.updateItuTuningConfig( nullptr );
   EXPECT_EQ( status.ituTuningConfig(), off() );
   // Off the module's grid, the frequency is kept with the laser off.
   status.tuning = { base, base + 10000, base + 5000000, {}, 50000 };
   config->channelIs( 0 );
   config->gridIs( 0 );
   config->frequencyIs( base + 100000 );
   status.updateItuTuningConfig( config );
   EXPECT_EQ( status.ituTuningConfig(), ItuTuningConfig( 39, 50000, base + 100000, false ) );
}

#if defined( __GXX_ABI_VERSION )
/// Where virtual operations stand in the table, by the Itanium ABI's pointers to members.
template <typename... Operations>
std::vector<std::ptrdiff_t> slotsOf( Operations... operations ) {
   auto const place = []( auto const & operation ) {
      std::ptrdiff_t offset;
      std::memcpy( &offset, &operation, sizeof offset );
      return offset / static_cast<std::ptrdiff_t>( sizeof( void * ) );
   };
   return { place( operations )... };
}

// Programs that were compiled before call by these places.
TEST( StatusTest, OperationsKeepTheirVirtualSlots ) {
   using S = XcvrNewStatus;
   auto const slots = slotsOf(
      &Vel::Entity::velModel, &S::capabilities, &S::vendorInfo, &S::bitrate, &S::mediaType,
      &S::detectedMediaType, &S::electricalInterface, &S::laserWavelength,
      &S::laserWavelengthPrecision, &S::optical, &S::disablePolling, &S::domInfoValid, &S::domInfo,
      &S::domAggPower, &S::domThresholdValid, &S::domThreshold, &S::domCapabilities,
      &S::enhancedDomValuesValid, &S::enhancedDomValue, &S::enhancedDomThresholdValid,
      &S::enhancedDomThreshold, &S::enhancedDomCapabilities, &S::enhancedDomSensorCategory,
      &S::idEepromInfo, &S::powerClass, &S::idEepromContentsIs, &S::updateLastValidTime,
      &S::rxOutputAmplitude, &S::rxOutputPreEmphasis, &S::txInputEqualization,
      &S::electricalPathAttenuation, &S::hwChannel, &S::tuningCapabilities, &S::narrowBand,
      &S::isSupportedMediaType, &S::capabilitiesIs, &S::vendorInfoIs );
   for ( std::size_t i = 1; i < slots.size(); ++i ) {
      EXPECT_EQ( slots[i], slots[i - 1] + 1 ) << i;
   }
}
#endif
