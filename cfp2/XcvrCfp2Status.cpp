#include "core/DiagOverride.h"
#include "core/DomCodes.h"
#include "core/DomNeutral.h"
#include "core/ThresholdOverride.h"
#include "core/Tuning.h"

#include <Vel/Define.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrCfp2Status.h>
#include <Xcvr/XcvrOptics.h>

#include <algorithm>
#include <cmath>

namespace Xcvr {

VEL_VALUE_DEFINE( Cfp2DcoMonitors )
VEL_ENTITY_DEFINE( Cfp2DiagConfig, cfp2DiagConfigFactory )
VEL_ENTITY_DEFINE( Cfp2Config, cfp2ConfigFactory )
VEL_ENTITY_DEFINE( Cfp2CellConfig, cfp2CellConfigFactory )
VEL_ENTITY_DEFINE( Cfp2NewStatus, cfp2NewStatusFactory )
VEL_ENTITY_DEFINE( Cfp2DcoNewStatus, cfp2DcoNewStatusFactory )

namespace {

using CfpTable::access;
using CfpTable::Access;
using CfpTable::Place;
using Contents = CfpMsaMisIdEepromContents;

Vel::TraceHandle trace( "XcvrCfp2" );

constexpr uint16_t cfpIdentity = access( "identifier" ).places[0].field.address;

/// The tables of a slot that has none.
Vel::Ptr<Contents const> const noTables( new Contents( "noTables" ) );

Contents const & contentsInEffect( Cfp2NewStatus const & status ) {
   Cfp2Config const * config = status.xcvrConfig();
   Cfp2DiagConfig const * diag = config ? activeDiagConfig( *config ) : nullptr;
   Vel::Ptr<Contents const> const contents =
      diag ? diag->overrideIdEepromContents() : status.actualIdEepromContents();
   return contents ? *contents : *noTables;
}

/// The registers of table 8000h, at their low bytes; what is not there reads as 0, as it does through
/// the accessors.
PageView identityOf( Contents const & contents ) {
   CfpMsaMisMemoryTable const * table = contents.table( table8000 );
   return table ? table->bytesFrom( cfpIdentity ) : std::string_view();
}
/// Where a register lies in it.
constexpr uint32_t identityAt( Access const & access ) {
   return access.places[0].field.address - uint32_t{ cfpIdentity };
}
/// A register of a byte in it.
[[gnu::always_inline]] inline uint8_t identityField( PageView identity, Access const & access ) {
   FieldDescriptor const field = access.places[0].field;
   return static_cast<uint8_t>( identity.u8( identityAt( access ) ) >> field.offset &
                                ( ( 1u << field.width ) - 1 ) );
}

bool isCoherent( MediaType type ) {
   return type == xcvr100GDwdmCoherent || type == xcvr100GDwdmCoherentE || type == xcvr100GDwdmDco;
}

/// A count of lanes in four bits, of which 0 means 16; none of a module whose count was not read.
[[gnu::always_inline]] inline uint8_t laneCount( PageView identity, Access const & access ) {
   uint8_t const count = identityField( identity, access );
   return count == 0 && identity.has( identityAt( access ), 1 ) ? Contents::lanes : count;
}

} // namespace

// The contents

Contents const & Cfp2NewStatus::cfpMsaMisIdEepromContents() const {
   VEL_TRACE_SCOPE( trace );
   return contentsInEffect( *this );
}

void Cfp2NewStatus::idEepromContentsIs( uint8_t page, Vel::String const & bytes ) {
   VEL_TRACE_SCOPE( trace );
   auto const id = static_cast<CfpMsaMisTableId>( page );
   if ( id >= maxCfpTables ) {
      VEL_TRACE( trace, 8, "no such table" );
      return;
   }
   actualIdEepromContentsIs()->memoryIs( id )->contentsIs( bytes );
}

void Cfp2NewStatus::updateLastValidTime( Vel::Seconds time ) {
   VEL_TRACE_SCOPE( trace );
   lastValidDataIs( time );
}

void Cfp2NewStatus::clearIdEepromContents() {
   VEL_TRACE_SCOPE( trace );
   if ( Vel::Ptr<Contents> const contents = actualIdEepromContents() ) {
      contents->memoryDelAll();
   }
   lastValidDataIs( 0 );
}

EepromDescriptor Cfp2NewStatus::idEepromInfo() const {
   VEL_TRACE_SCOPE( trace );
   EepromDescriptor result( 0, static_cast<uint8_t>( maxCfpTables ), {} );
   for ( auto const & [id, table] : contentsInEffect( *this ).memoryMap() ) {
      size_t const size = table->contents().size();
      if ( size != 0 ) {
         result.eepromPagesIs( static_cast<uint8_t>( result.eepromPages() + 1 ) );
         result.pageSizeBytesIs( static_cast<uint8_t>( id ),
                                 static_cast<uint16_t>( std::min<size_t>( size, 0xffff ) ) );
      }
   }
   return result;
}

// Identity

VendorInfo Cfp2NewStatus::vendorInfo() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & contents = contentsInEffect( *this );
   return { contents.vendorName(), contents.vendorPn(), contents.vendorSn(), contents.vendorRev(),
            contents.dateCode() };
}

MediaType Cfp2NewStatus::detectedMediaType() const {
   VEL_TRACE_SCOPE( trace );
   return contentsInEffect( *this ).mediaType();
}

MediaType Cfp2NewStatus::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return overrideMediaType() != xcvrUnknown ? overrideMediaType() : detectedMediaType();
}

bool Cfp2NewStatus::isSupportedMediaType( MediaType type ) const {
   VEL_TRACE_SCOPE( trace );
   return type != xcvrUnknown &&
          std::ranges::any_of( cfpMediaTypeRules(), [type]( MediaTypeRule const & rule ) {
             return rule.mediaType == type;
          } );
}

uint8_t Cfp2NewStatus::networkLanes() const {
   VEL_TRACE_SCOPE( trace );
   return laneCount( identityOf( contentsInEffect( *this ) ), access( "networkLanes" ) );
}

Capabilities Cfp2NewStatus::capabilities() const {
   VEL_TRACE_SCOPE( trace );
   PageView const identity = identityOf( contentsInEffect( *this ) );
   Capabilities result;
   result.maxChannelsIs( laneCount( identity, access( "hostLanes" ) ) );
   if ( isCoherent( mediaType() ) ) {
      result.tunableWavelengthIs( true );
      result.configurableTxPowerIs( true );
      result.lineSideChannelsIs( laneCount( identity, access( "networkLanes" ) ) );
   }
   return result;
}

uint8_t Cfp2NewStatus::bitrate() const {
   VEL_TRACE_SCOPE( trace );
   return contentsInEffect( *this ).networkLaneBitRateMax();
}

uint32_t Cfp2NewStatus::laserWavelength() const {
   VEL_TRACE_SCOPE( trace );
   return contentsInEffect( *this ).laserWavelengthInteger();
}

LaserWavelengthPrecision Cfp2NewStatus::laserWavelengthPrecision() const {
   VEL_TRACE_SCOPE( trace );
   return contentsInEffect( *this ).laserWavelengthPrecision();
}

PowerClass Cfp2NewStatus::powerClass() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & contents = contentsInEffect( *this );
   if ( !contents.holds( access( "identifierExtended" ) ) ) {
      return xcvrPowerClassUnknown;
   }
   constexpr PowerClass classes[] = { xcvrPowerClass1, xcvrPowerClass2, xcvrPowerClass3,
                                      xcvrPowerClass4 };
   return classes[contents.identifierExtended() >> 6];
}

Units::Decibels Cfp2NewStatus::electricalPathAttenuation() const {
   VEL_TRACE_SCOPE( trace );
   return Units::Decibels( 0.0 );
}

// Monitors

namespace {

bool monitorsValid( Cfp2NewStatus const & status, PageView identity, LaneId lane ) {
   return status.presence() == xcvrPresent &&
          status.lastDomUpdateTime() > status.lastPresenceChange() &&
          lane.value() < laneCount( identity, access( "networkLanes" ) );
}

/// What a whole register says; minus infinity unless it was read.
template <typename Decode>
[[gnu::always_inline]] inline double decoded( CfpMsaMisMemoryTable const * table, uint16_t address,
                                              Decode const & decode ) {
   std::optional<uint16_t> const raw = table ? table->word( address ) : std::nullopt;
   return raw ? decode( *raw ) : unreadable;
}

/// A monitor of a lane; minus infinity unless the module has it and its register was read. Where that
/// lies is known while compiling, for it is on the hottest path of the family.
template <Place place, typename Decode>
[[gnu::always_inline]] inline double monitor( Contents const & contents, bool supported,
                                              Decode const & decode, uint8_t lane = 0 ) {
   static_assert( place.field.width == 16 );
   return supported ? decoded( contents.table( place.table ),
                               static_cast<uint16_t>( place.field.address + lane ), decode )
                    : unreadable;
}

double temperature( uint16_t raw ) {
   return Contents::decodeTemperature( static_cast<int16_t>( raw ) );
}
double powerCfpx( uint16_t raw ) {
   return Contents::decodePowerCfpx( static_cast<int16_t>( raw ) );
}
/// As Contents::decodePower has it, inlined.
double power( uint16_t raw ) {
   return DomCodes::power( raw );
}

/// The powers of a CFPx are in tables of their own, in 0.01 dBm.
template <CfpModules module>
[[gnu::always_inline]] inline double txPower( Contents const & c, bool supported, uint8_t lane ) {
   return module == cfpxModules
             ? monitor<access( "txPowerCfpx" ).placeIn( module )>( c, supported, powerCfpx, lane )
             : monitor<access( "txPower" ).placeIn( module )>( c, supported, power, lane );
}
template <CfpModules module>
[[gnu::always_inline]] inline double rxPower( Contents const & c, bool supported, uint8_t lane ) {
   return module == cfpxModules
             ? monitor<access( "rxPowerCfpx" ).placeIn( module )>( c, supported, powerCfpx, lane )
             : monitor<access( "rxPower" ).placeIn( module )>( c, supported, power, lane );
}

template <CfpModules module>
DomInfo monitors( Contents const & c, PageView identity, uint8_t lane, Vel::Seconds updateTime ) {
   auto const has = [identity]( Access const & flag ) {
      return identityField( identity, flag ) != 0;
   };
   auto const voltage = []( uint16_t raw ) {
      return module == cfp2Modules ? raw * 0.0001 : raw * 0.001; // as decodeDomVoltage has it
   };
   // In the unit of a CFP2 whatever the module, unlike the thresholds: intended.
   auto const txBias = []( uint16_t raw ) { return Contents::decodeTxBias( raw ); };
   return { updateTime,
            domCalibrationInternal,
            monitor<access( "temperature" ).placeIn( module )>( c, has( access( "tempSupported" ) ),
                                                                temperature ),
            monitor<access( "voltage" ).placeIn( module )>( c, has( access( "voltageSupported" ) ),
                                                            voltage ),
            monitor<access( "txBias" ).placeIn( module )>( c, has( access( "txBiasSupported" ) ),
                                                           txBias, lane ),
            txPower<module>( c, has( access( "txPowerSupported" ) ), lane ),
            rxPower<module>( c, has( access( "rxPowerSupported" ) ), lane ),
            unreadable };
}

/// What a module's kind, known when running, is for `work.operator()< module >()`.
template <typename Work>
auto forModule( PageView identity, Work const & work ) {
   auto const identifier =
      static_cast<CfpMsaMisIdentifier>( identityField( identity, access( "identifier" ) ) );
   switch ( cfpModulesOf( identifier ) ) {
   case cfpxModules:
      return work.template operator()<cfpxModules>();
   case dcoModules:
      return work.template operator()<dcoModules>();
   default:
      return work.template operator()<cfp2Modules>();
   }
}

} // namespace

bool Cfp2NewStatus::domInfoValid( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   return monitorsValid( *this, identityOf( contentsInEffect( *this ) ), lane );
}

DomInfo Cfp2NewStatus::domInfo( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   PageView const identity = identityOf( c );
   if ( !monitorsValid( *this, identity, lane ) ) {
      return unreadableDomInfo( 0 );
   }
   return forModule( identity, [&]<CfpModules module>() {
      return monitors<module>( c, identity, lane.value(), lastDomUpdateTime() );
   } );
}

DomAggPower Cfp2NewStatus::domAggPower() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   PageView const identity = identityOf( c );
   if ( !monitorsValid( *this, identity, LaneId() ) ) {
      return { 0, domCalibrationUnknown, unreadable, unreadable };
   }
   bool const hasTx = c.txPowerSupported(), hasRx = c.rxPowerSupported();
   // Four numbers, each the sum of every fourth lane.
   uint8_t const count = laneCount( identity, access( "networkLanes" ) );
   auto const sum = [count]( auto const & lanePower, uint8_t first ) {
      auto const of = [&]( unsigned lane ) {
         return lane < count ? lanePower( static_cast<uint8_t>( lane ) ) : unreadable;
      };
      return addFourPower( of( first ), of( first + 4u ), of( first + 8u ), of( first + 12u ) );
   };
   return forModule( identity, [&]<CfpModules module>() {
      auto const tx = [&]( uint8_t first ) {
         return sum( [&]( uint8_t lane ) { return txPower<module>( c, hasTx, lane ); }, first );
      };
      auto const rx = [&]( uint8_t first ) {
         return sum( [&]( uint8_t lane ) { return rxPower<module>( c, hasRx, lane ); }, first );
      };
      return aggQsfpCfp2Power( tx( 0 ), tx( 1 ), tx( 2 ), tx( 3 ), rx( 0 ), rx( 1 ), rx( 2 ),
                               rx( 3 ), hasTx, hasRx, lastDomUpdateTime() );
   } );
}

bool Cfp2NewStatus::domThresholdValid() const {
   VEL_TRACE_SCOPE( trace );
   // The thresholds are constants of the module, which the agent reads with the identification
   // tables: idEepromValid says that this was done.
   Contents const & c = contentsInEffect( *this );
   return presence() == xcvrPresent && lastDomThresholdsUpdateTime() > 0 && idEepromValid() &&
          c.holds( access( "tempHighAlarm" ) ) && c.holds( access( "rxPowerLowAlarm" ) );
}

DomThreshold Cfp2NewStatus::domThreshold() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   CfpMsaMisMemoryTable const * table = c.table( table8080 );
   bool const cfpx = c.isIn( cfpxAndDcoModules );
   auto const limit = [table]( Access const & a, auto const & decode ) {
      return decoded( table, a.places[0].field.address, decode );
   };
   auto const celsius = [&]( Access const & a ) { return limit( a, temperature ); };
   // Of every module, although a CFPx and a CFP2-DCO have the monitor in other units: intended.
   auto const voltage = [&]( Access const & a ) { return limit( a, Contents::decodeVoltage ); };
   auto const txBias = [&]( Access const & a ) {
      return cfpx ? limit( a, Contents::decodeTxBiasCfpx ) : limit( a, Contents::decodeTxBias );
   };
   auto const txLimit = [&]( Access const & a ) {
      return cfpx ? limit( a, powerCfpx ) : limit( a, power );
   };
   // In 0.1 µW even where the monitor is in 0.01 dBm: intended.
   auto const rxLimit = [&]( Access const & a ) { return limit( a, power ); };
   return { celsius( access( "tempHighAlarm" ) ),
            celsius( access( "tempLowAlarm" ) ),
            celsius( access( "tempHighWarn" ) ),
            celsius( access( "tempLowWarn" ) ),
            voltage( access( "voltageHighAlarm" ) ),
            voltage( access( "voltageLowAlarm" ) ),
            voltage( access( "voltageHighWarn" ) ),
            voltage( access( "voltageLowWarn" ) ),
            txBias( access( "txBiasHighAlarm" ) ),
            txBias( access( "txBiasLowAlarm" ) ),
            txBias( access( "txBiasHighWarn" ) ),
            txBias( access( "txBiasLowWarn" ) ),
            txLimit( access( "txPowerHighAlarm" ) ),
            txLimit( access( "txPowerLowAlarm" ) ),
            txLimit( access( "txPowerHighWarn" ) ),
            txLimit( access( "txPowerLowWarn" ) ),
            rxLimit( access( "rxPowerHighAlarm" ) ),
            rxLimit( access( "rxPowerLowAlarm" ) ),
            rxLimit( access( "rxPowerHighWarn" ) ),
            rxLimit( access( "rxPowerLowWarn" ) ),
            unreadable,
            unreadable,
            unreadable,
            unreadable };
}

DomCapabilities Cfp2NewStatus::domCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   return { c.tempSupported(),    c.voltageSupported(), c.txBiasSupported(),
            c.txPowerSupported(), c.rxPowerSupported(), false,
            c.txPowerSupported(), c.rxPowerSupported() };
}

Vel::Ptr<DomThresholdOverride const> Cfp2NewStatus::domThresholdOverride() const {
   VEL_TRACE_SCOPE( trace );
   return closestThresholdOverride( xgc(), vendorInfo() );
}

DomThreshold Cfp2NewStatus::domThresholdInForce() const {
   VEL_TRACE_SCOPE( trace );
   return thresholdInForce( *this );
}

void Cfp2NewStatus::updateLaneStatus() {
   VEL_TRACE_SCOPE( trace );
   Contents const & contents = contentsInEffect( *this );
   uint8_t const count = networkLanes();
   // The one flag of a CFPx or CFP2-DCO holds for all its lanes.
   unsigned const whole = contents.isIn( cfpxAndDcoModules ) ? 0xffff : 1;
   unsigned const faults = domInfoValid( LaneId() ) ? contents.txFaultStatus() * whole : 0;
   for ( uint8_t lane = 0; lane < Contents::lanes; ++lane ) {
      // The lanes of a module with more of them, which was there before, have no fault any more.
      if ( lane < count || laneStatusHas( LaneId( lane ) ) ) {
         laneStatusIs( LaneId( lane ) )->txFaultPresentIs( lane < count && faults >> lane & 1 );
      }
   }
}

// Signal tuning

TuningValue Cfp2NewStatus::rxOutputPreEmphasis( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   return lane.value() < Contents::lanes && c.holds( access( "rxOutputPreEmphasis" ), lane.value() )
             ? TuningValue( true, c.rxOutputPreEmphasis( lane.value() ), false )
             : TuningValue();
}

TuningValue Cfp2NewStatus::txInputEqualization( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   return lane.value() < Contents::lanes && c.holds( access( "txInputEqualization" ), lane.value() )
             ? TuningValue( true, c.txInputEqualization( lane.value() ), false )
             : TuningValue();
}

// Wavelength tuning

namespace {

/// MHz, exactly: the capabilities are cut to whole GHz.
uint32_t firstFrequency( Contents const & c ) {
   return c.u16( access( "minFrequencyTHz" ) ) * 1000000u +
          c.u16( access( "minFrequencyGHz" ) ) * 50u;
}

/// Of the codes in bits 15-13 of the channel register, MHz; 0 for a code that is none. The order from
/// wide to narrow is the usual one, which no public document confirms.
uint32_t gridOfCode( unsigned code ) {
   constexpr uint32_t grids[] = { 100000, 50000, 33000, 25000, 12500, 6250 };
   return code < std::size( grids ) ? grids[code] : 0;
}

/// Counted from the module's first frequency; 0 for none.
uint16_t channelIn( uint16_t txChannel ) {
   return txChannel & 0x3ffu;
}

/// The power in a register in 0.01 dBm.
int16_t powerCode( double dBm ) {
   return static_cast<int16_t>( std::lround( std::clamp( dBm * 100, -32768., 32767. ) ) );
}

} // namespace

uint16_t Cfp2NewStatus::hwChannel() const {
   VEL_TRACE_SCOPE( trace );
   return channelIn( contentsInEffect( *this ).txChannel() );
}

TuningCapabilities Cfp2NewStatus::tuningCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   unsigned const word = c.tuningCapabilities();
   auto const has = [word]( unsigned bit ) { return ( word >> bit & 1 ) != 0; };
   return {
      TuningConstants::baseFrequencyCBand, ghzFreqToMhz( c.minFrequency() ),
      ghzFreqToMhz( c.maxFrequency() ),
      GridSpacingCapabilities( has( 10 ), has( 11 ), has( 12 ), has( 13 ), has( 14 ), has( 15 ) ),
      c.txFineTuneRange() };
}

CfpxTuneStatus Cfp2NewStatus::cfpxTuneStatus() const {
   VEL_TRACE_SCOPE( trace );
   Contents const & c = contentsInEffect( *this );
   uint16_t const word = c.txChannel();
   uint32_t const channel = channelIn( word ), grid = gridOfCode( word >> 13 );
   auto const fineTune = static_cast<int16_t>( c.txFineTuneFreq() );
   uint32_t const first = firstFrequency( c );
   uint32_t const frequency =
      channel != 0 && grid != 0 && first != 0
         ? decodeItuFrequency( first, channel, grid ) + static_cast<uint32_t>( fineTune )
         : 0;
   auto const attenuation = [&c]( CfpTable::Access const & a, uint16_t raw ) {
      return c.holds( a ) ? Contents::decodeAttenuation( raw ) : unreadable;
   };
   return { channel != 0 ? HwTuningConfig( channel, grid, fineTune ) : HwTuningConfig(), frequency,
            c.holds( access( "txPowerConfig" ) )
               ? Contents::decodePowerCfpx( static_cast<int16_t>( c.txPowerConfig() ) )
               : unreadable,
            attenuation( access( "currRxAttenuation" ), c.currRxAttenuation() ),
            attenuation( access( "maxRxAttenuation" ), c.maxRxAttenuation() ) };
}

void Cfp2NewStatus::updateCfpxTuneConfig() {
   VEL_TRACE_SCOPE( trace );
   HwTuningConfig frequency;
   ItuTuningConfig const & tuning = ituTuningConfig();
   uint32_t const wanted = wantedFrequency( tuning );
   uint32_t const first = firstFrequency( contentsInEffect( *this ) );
   uint32_t const grid = effectiveGridSpacing( tuning.channel(), tuning.grid() );
   uint32_t const last = ghzFreqToMhz( contentsInEffect( *this ).maxFrequency() );
   if ( grid != 0 && first != 0 && wanted >= first && wanted <= last ) {
      uint32_t const channel = decodeItuChannel( first, grid, wanted + grid / 2 );
      // At most half the grid.
      auto const off = static_cast<int32_t>( wanted - decodeItuFrequency( first, channel, grid ) );
      if ( off >= INT16_MIN && off <= INT16_MAX ) {
         frequency = HwTuningConfig( channel, grid, static_cast<int16_t>( off ) );
      }
   }
   Vel::Ptr<PowerConfig const> const power =
      xgc() ? xgc()->txPowerConfig( name() ) : Vel::Ptr<PowerConfig>();
   cfpxTuneConfigIs( { frequency, power ? power->signalPower().value() : unreadable } );
}

bool Cfp2NewStatus::isFreqTuningPending() {
   VEL_TRACE_SCOPE( trace );
   if ( !capabilities().tunableWavelength() ) {
      return false;
   }
   Vel::Ptr<TuningConfig const> const config = resolveConfiguredTuning( *this, xgc() );
   updateCfpxTuneConfig();
   CfpxTuneStatus const status = cfpxTuneStatus();
   resolvedTuningStatusIs( resolvedTuning( *this, config.get(), status.txFrequency() ) );
   return status.frequency() != cfpxTuneConfig().frequency();
}

bool Cfp2NewStatus::isPowerTuningPending() const {
   VEL_TRACE_SCOPE( trace );
   double const wanted = cfpxTuneConfig().txPower();
   return std::isfinite( wanted ) &&
          static_cast<int16_t>( contentsInEffect( *this ).txPowerConfig() ) != powerCode( wanted );
}

// The line of a CFP2-DCO

Vel::Ptr<Cfp2DcoEepromContents const> Cfp2DcoNewStatus::cfp2DcoEepromContents() const {
   VEL_TRACE_SCOPE( trace );
   return cfp2DcoEepromContentsFactory( &contentsInEffect( *this ) );
}

Cfp2DcoMonitors Cfp2DcoNewStatus::dcoMonitors() const {
   VEL_TRACE_SCOPE( trace );
   Cfp2DcoMonitors result;
   result.osnrIs( unreadable );
   result.snrIs( unreadable );
   result.carrierFreqOffsetIs( unreadable );
   result.rxChannelPowerIs( unreadable );
   if ( !domInfoValid( LaneId() ) ) {
      return result;
   }
   Contents const & c = contentsInEffect( *this );
   Cfp2DcoEepromContents const line( &c );
   result.updateTimeIs( lastDomUpdateTime() );
   result.rawOsnrIs( line.networkOsnrEstimate() );
   result.rawSnrIs( line.rxSnr() );
   result.rawCarrierFreqOffsetIs( line.rxCarrierFreqOffset() );
   result.rawRxChannelPowerIs( line.netLaneRxChannelPower() );
   result.rawChromDispersionIs( line.rxChromDispersion() );
   result.rawDiffGroupDelayIs( line.rxDiffGroupDelay() );
   result.rawStateOfPolarizationIs( line.rxStateOfPolarization() );
   result.rawQFactorIs( line.rxQFactor() );
   result.rawBerIs( line.networkBer() );
   result.rawFecUncBlkCountIs( line.netFecUncBlkCount() );
   result.rawLaserAgeIs( line.laserAge() );
   result.rawLaserFaultCodeIs( line.laserFaultCode() );
   result.rawTxTurnUpStateIs( line.txTurnUpState() );
   result.rawRxTurnUpStateIs( line.rxTurnUpState() );
   if ( c.holds( access( "networkOsnrEstimate" ) ) ) {
      result.osnrIs( line.networkOsnrEstimate() * 0.1 );
   }
   if ( c.holds( access( "rxSnr" ) ) ) {
      result.snrIs( line.rxSnr() * 0.1 );
   }
   if ( c.holds( access( "rxCarrierFreqOffset" ) ) ) {
      result.carrierFreqOffsetIs( static_cast<int16_t>( line.rxCarrierFreqOffset() ) );
   }
   if ( c.holds( access( "netLaneRxChannelPower" ) ) ) {
      result.rxChannelPowerIs(
         Contents::decodePowerCfpx( static_cast<int16_t>( line.netLaneRxChannelPower() ) ) );
   }
   return result;
}

} // namespace Xcvr
