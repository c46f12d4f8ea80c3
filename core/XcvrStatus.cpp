#include "core/DomNeutral.h"

#include <Vel/Assert.h>
#include <Vel/DefineEntity.h>
#include <Vel/Exception.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOptics.h>
#include <Xcvr/XcvrStatus.h>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <optional>
#include <string>

namespace Xcvr {

VEL_ENTITY_DEFINE( ModelToAttenuation, modelToAttenuationFactory )
VEL_ENTITY_DEFINE( LaneStatus )
VEL_ENTITY_DEFINE( XcvrEventStatsEnt, xcvrEventStatsEntFactory )
VEL_MEMBER_ENUM_DEFINE( XcvrNewStatus, XcvrSwappability )
VEL_ENTITY_DEFINE( XcvrNewStatus )

namespace {

Vel::TraceHandle trace( "Xcvr" );

} // namespace

LaneStatus::LaneStatus( LaneId lane )
   : Vel::Entity( Vel::String( std::to_string( lane.value() ) ) ), lane_( lane ) {}

// The neutral results of what a family does not supply. Each says its name in the trace but the
// last two, on purpose: a family without tuning or enhanced monitors lacks nothing, neither where
// it is asked directly nor where a grid or a tuning is resolved.
// clang-format off
#define MISSING() VEL_TRACE( trace, 8, __func__ )
Capabilities XcvrNewStatus::capabilities() const { MISSING(); return {}; }
VendorInfo XcvrNewStatus::vendorInfo() const { MISSING(); return {}; }
uint8_t XcvrNewStatus::bitrate() const { MISSING(); return 0; }
MediaType XcvrNewStatus::mediaType() const { MISSING(); return xcvrUnknown; }
MediaType XcvrNewStatus::detectedMediaType() const { MISSING(); return xcvrUnknown; }
uint32_t XcvrNewStatus::laserWavelength() const { MISSING(); return 0; }
LaserWavelengthPrecision XcvrNewStatus::laserWavelengthPrecision() const { MISSING(); return laserWavelengthPrecisionUnknown; }
bool XcvrNewStatus::disablePolling() const { MISSING(); return false; }
bool XcvrNewStatus::domInfoValid( LaneId ) const { MISSING(); return false; }
bool XcvrNewStatus::domThresholdValid() const { MISSING(); return false; }
DomCapabilities XcvrNewStatus::domCapabilities() const { MISSING(); return {}; }
bool XcvrNewStatus::enhancedDomValuesValid( uint32_t ) const { MISSING(); return false; }
double XcvrNewStatus::enhancedDomValue( uint32_t ) const { MISSING(); return unreadable; }
bool XcvrNewStatus::enhancedDomThresholdValid( uint32_t ) const { MISSING(); return false; }
EnhancedDomCapabilities XcvrNewStatus::enhancedDomCapabilities() const { MISSING(); return {}; }
EepromDescriptor XcvrNewStatus::idEepromInfo() const { MISSING(); return {}; }
PowerClass XcvrNewStatus::powerClass() const { MISSING(); return xcvrPowerClassUnknown; }
void XcvrNewStatus::idEepromContentsIs( uint8_t, Vel::String const & ) { MISSING(); }
void XcvrNewStatus::updateLastValidTime( Vel::Seconds ) { MISSING(); }
TuningValue XcvrNewStatus::rxOutputAmplitude( LaneId ) const { MISSING(); return {}; }
TuningValue XcvrNewStatus::rxOutputPreEmphasis( LaneId ) const { MISSING(); return {}; }
TuningValue XcvrNewStatus::txInputEqualization( LaneId ) const { MISSING(); return {}; }
Units::Decibels XcvrNewStatus::electricalPathAttenuation() const { MISSING(); return Units::Decibels( unreadable ); }
uint16_t XcvrNewStatus::hwChannel() const { MISSING(); return 0; }
bool XcvrNewStatus::narrowBand() const { MISSING(); return false; }
void XcvrNewStatus::capabilitiesIs( Capabilities const & ) { MISSING(); }
void XcvrNewStatus::vendorInfoIs( VendorInfo const & ) { MISSING(); }
TuningCapabilities XcvrNewStatus::tuningCapabilities() const { return {}; }
EnhancedDomSensorCategory XcvrNewStatus::enhancedDomSensorCategory() const { return {}; }
// clang-format on

DomInfo XcvrNewStatus::domInfo( LaneId ) const {
   MISSING();
   return unreadableDomInfo( 0 );
}

DomAggPower XcvrNewStatus::domAggPower() const {
   MISSING();
   return { 0, domCalibrationUnknown, unreadable, unreadable };
}

DomThreshold XcvrNewStatus::domThreshold() const {
   MISSING();
   return unreadableDomThreshold();
}

EnhancedDomThreshold XcvrNewStatus::enhancedDomThreshold( uint32_t ) const {
   MISSING();
   return { unreadable, unreadable, unreadable, unreadable };
}
#undef MISSING

bool XcvrNewStatus::isSupportedMediaType( MediaType ) const {
   VEL_TRACE_SCOPE( trace );
   throw Vel::NoImplementationException();
}

// What follows from the media type

ElectricalInterface XcvrNewStatus::electricalInterface() const {
   VEL_TRACE_SCOPE( trace );
   MediaTypeInfo const * info = mediaTypeInfo( mediaType() );
   return info ? info->electricalInterface : xcvr10GLimiting;
}

bool XcvrNewStatus::optical() const {
   VEL_TRACE_SCOPE( trace );
   MediaTypeInfo const * info = mediaTypeInfo( mediaType() );
   return info && info->optical;
}

uint32_t XcvrNewStatus::bitrateKbps() const {
   VEL_TRACE_SCOPE( trace );
   MediaTypeInfo const * info = mediaTypeInfo( mediaType() );
   VEL_ASSERT_TEXT( info, "a media type that the table does not have" );
   return info->bitrateKbps;
}

Vel::String XcvrNewStatus::mediaTypeString() const {
   VEL_TRACE_SCOPE( trace );
   return getMediaTypeString( mediaType() );
}

Vel::String XcvrNewStatus::detectedMediaTypeString() const {
   VEL_TRACE_SCOPE( trace );
   return getMediaTypeString( detectedMediaType() );
}

Vel::String XcvrNewStatus::getMediaTypeString( MediaType type ) const {
   VEL_TRACE_SCOPE( trace );
   MediaTypeInfo const * info = mediaTypeInfo( type );
   if ( !info ) {
      return "Unknown";
   }
   if ( type != xcvr10GBaseDwdmEr && type != xcvr10GBaseDwdmZr ) {
      return info->text;
   }
   // The table's text of these kinds is a pattern: two digits of nm and two of 0.01 nm stand in it.
   uint32_t const wavelength = laserWavelength();
   char text[32];
   int const size =
      std::snprintf( text, sizeof text, "10G-DW%02u%02u%s", wavelength / 1000 % 100,
                     wavelength % 1000 / 10, type == xcvr10GBaseDwdmEr ? "ER" : "ZR" );
   return { text, static_cast<std::size_t>( size ) };
}

// Tuning

namespace {

struct GridSpacing {
   uint32_t mhz;
   bool ( *supported )( GridSpacingCapabilities const & );
};

constexpr GridSpacing gridLadder[] = {
   { 100000, []( GridSpacingCapabilities const & c ) { return c.gridSpacing100000M(); } },
   { 50000, []( GridSpacingCapabilities const & c ) { return c.gridSpacing50000M(); } },
   { 33000, []( GridSpacingCapabilities const & c ) { return c.gridSpacing33000M(); } },
   { 25000, []( GridSpacingCapabilities const & c ) { return c.gridSpacing25000M(); } },
   { 12500, []( GridSpacingCapabilities const & c ) { return c.gridSpacing12500M(); } },
   { 6250, []( GridSpacingCapabilities const & c ) { return c.gridSpacing6250M(); } },
};

GridSpacing const * onLadder( uint32_t mhz ) {
   return std::ranges::find( gridLadder, mhz, &GridSpacing::mhz );
}

/// 100 and 50 GHz may be asked of any module, whatever its flags say: a deliberate shortcut.
bool mayBeConfigured( uint32_t grid, GridSpacingCapabilities const & capabilities ) {
   GridSpacing const * spacing = onLadder( grid );
   return spacing != std::end( gridLadder ) &&
          ( grid >= 50000 || spacing->supported( capabilities ) );
}

/// How far a frequency lies from the nearest multiple of the grid.
uint32_t offGrid( uint32_t frequency, uint32_t grid ) {
   return std::min( frequency % grid, grid - frequency % grid );
}

/// The tuning asked for, as far as the module can be tuned so; nothing otherwise.
std::optional<ItuTuningConfig> resolved( TuningConfig const & config,
                                         TuningCapabilities const & module ) {
   uint32_t const minGrid = getMinGridSpacing( module.gridSpacingCapabilities() );
   uint32_t const grid = config.grid() ? config.grid() : minGrid;
   uint32_t const frequency =
      config.frequency() ? config.frequency()
                         : decodeItuFrequency( module.baseFrequency(), config.channel(), grid );
   if ( frequency < module.firstFrequency() || frequency > module.lastFrequency() ||
        !mayBeConfigured( grid, module.gridSpacingCapabilities() ) ||
        offGrid( frequency, grid ) > module.txFineTuneRange() ) {
      return std::nullopt;
   }
   if ( config.channel() && config.grid() ) {
      return ItuTuningConfig( config.channel(), config.grid(), 0, true );
   }
   uint32_t const over = config.frequency() % minGrid;
   uint32_t const below = decodeItuChannel( module.baseFrequency(), minGrid, config.frequency() );
   uint32_t const nearest = minGrid - over < over ? below + 1 : below;
   return ItuTuningConfig( nearest, minGrid, config.frequency(), true );
}

} // namespace

uint32_t XcvrNewStatus::effectiveGridSpacing( uint32_t channel, uint32_t grid ) const {
   VEL_TRACE_SCOPE( trace );
   TuningCapabilities const module = tuningCapabilities();
   uint32_t const offset =
      decodeItuFrequency( module.baseFrequency(), channel, grid ) - module.firstFrequency();
   if ( grid == 0 ) {
      return 0;
   }
   // The configured grid is tried whatever it is, and whatever the module's flags say; then those
   // below it on the ladder that the module has.
   if ( offset % grid == 0 ) {
      return grid;
   }
   GridSpacing const * spacing = onLadder( grid );
   while ( spacing != std::end( gridLadder ) && ++spacing != std::end( gridLadder ) ) {
      if ( spacing->supported( module.gridSpacingCapabilities() ) && grid % spacing->mhz == 0 &&
           offset % spacing->mhz == 0 ) {
         return spacing->mhz;
      }
   }
   return 0;
}

void XcvrNewStatus::updateItuTuningConfig( TuningConfig const * tuningConfig ) {
   VEL_TRACE_SCOPE( trace );
   std::optional<ItuTuningConfig> result;
   if ( tuningConfig ) {
      result = resolved( *tuningConfig, tuningCapabilities() );
   }
   if ( !result || effectiveGridSpacing( result->channel(), result->grid() ) == 0 ) {
      result = ItuTuningConfig( TuningConstants::defaultChannel, TuningConstants::defaultGrid,
                                result ? result->frequency() : 0, false );
   }
   ituTuningConfigIs( *result );
}

} // namespace Xcvr
