#include <Xcvr/XcvrQsfpStatus.h>

#include "core/AttenuationTable.h"
#include "core/DiagOverride.h"
#include "core/DomCodes.h"
#include "core/DomNeutral.h"
#include "core/ThresholdOverride.h"

#include <Vel/Define.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOptics.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>

namespace Xcvr {

VEL_VALUE_DEFINE( QsfpLaneFlags )
VEL_VALUE_DEFINE( QsfpModuleFlags )
VEL_VALUE_DEFINE( QsfpLaneControls )
VEL_VALUE_DEFINE( QsfpModuleControls )
VEL_ENTITY_DEFINE( QsfpDiagConfig, qsfpDiagConfigFactory )
VEL_ENTITY_DEFINE( QsfpConfig, qsfpConfigFactory )
VEL_ENTITY_DEFINE( QsfpCellConfig, qsfpCellConfigFactory )
VEL_ENTITY_DEFINE( QsfpNewStatus, qsfpNewStatusFactory )

namespace {

using Sff8436Table::bit;
using Sff8436Table::row;

Vel::TraceHandle trace( "XcvrQsfpPlus" );

} // namespace

// The contents

Sff8436IdEepromContents const & QsfpNewStatus::sff8436IdEepromContents() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this );
}

void QsfpNewStatus::idEepromContentsIs( uint8_t page, Vel::String const & bytes ) {
   VEL_TRACE_SCOPE( trace );
   // In the order of Sff8436PageId.
   using Setter = void ( Sff8436IdEepromContents::* )( Vel::String const & );
   constexpr Setter setters[] = { &Sff8436IdEepromContents::eepromPage00LowerDataIs,
                                  &Sff8436IdEepromContents::eepromPage00UpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage02UpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage03UpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage20hUpperDataIs,
                                  &Sff8436IdEepromContents::eepromPage21hUpperDataIs };
   static_assert( std::size( setters ) == static_cast<size_t>( maxQsfpPages ) );
   if ( page >= std::size( setters ) ) {
      VEL_TRACE( trace, 8, "no such page" );
      return;
   }
   Sff8436IdEepromContents contents = actualIdEepromContents();
   ( contents.*setters[page] )( bytes );
   actualIdEepromContentsIs( contents );
}

void QsfpNewStatus::updateLastValidTime( Vel::Seconds time ) {
   VEL_TRACE_SCOPE( trace );
   // Not those of an override: a diagnostic setting never destroys what was read.
   Sff8436IdEepromContents contents = actualIdEepromContents();
   contents.lastValidDataIs( time );
   actualIdEepromContentsIs( contents );
}

void QsfpNewStatus::clearIdEepromContents() {
   VEL_TRACE_SCOPE( trace );
   actualIdEepromContentsIs( Sff8436IdEepromContents() );
}

EepromDescriptor QsfpNewStatus::idEepromInfo() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   constexpr auto pages = static_cast<uint8_t>( maxQsfpPages );
   EepromDescriptor result( 0, pages, {} );
   for ( uint8_t page = 0; page < pages; ++page ) {
      if ( contents.hasPage( static_cast<Sff8436PageId>( page ) ) ) {
         result.eepromPagesIs( static_cast<uint8_t>( result.eepromPages() + 1 ) );
         result.pageSizeBytesIs( page, Sff8436Table::pageSize );
      }
   }
   return result;
}

// Identity

// Flattened: the five texts are copied in place.
[[gnu::flatten]] VendorInfo QsfpNewStatus::vendorInfo() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).vendorInfo();
}

namespace {

MediaType detectedTypeOf( QsfpNewStatus const & status ) {
   Sff8436IdEepromContents const & contents = contentsOf( status );
   MediaType const detected = contents.mediaType();
   if ( detected != xcvrUnknown || !status.xgc() || !status.xgc()->ethComplianceBit7IsPsm4() ) {
      return detected;
   }
   // Other rules say unknown as well: of what is no QSFP, whose bytes mean something else.
   bool const isUndecided = contents.mediaTypeDecision().rule + 1 == sff8436MediaTypeRules().size();
   constexpr uint8_t extended = bit( "compliance", "extended compliance" ).mask;
   bool const hasBitWithoutCode =
      ( contents.complianceEth10And40G() & extended ) != 0 && contents.complianceExtended() == 0;
   return isUndecided && hasBitWithoutCode ? xcvr40GBasePsm4 : detected;
}

} // namespace

MediaType QsfpNewStatus::detectedMediaType() const {
   VEL_TRACE_SCOPE( trace );
   return detectedTypeOf( *this );
}

MediaType QsfpNewStatus::mediaType() const {
   VEL_TRACE_SCOPE( trace );
   return overrideMediaType() != xcvrUnknown ? overrideMediaType() : detectedTypeOf( *this );
}

bool QsfpNewStatus::isSupportedMediaType( MediaType type ) const {
   VEL_TRACE_SCOPE( trace );
   return type != xcvrUnknown && type != xcvr100GUnknown &&
          std::ranges::any_of( sff8436MediaTypeRules(), [type]( MediaTypeRule const & rule ) {
             return rule.mediaType == type;
          } );
}

Capabilities QsfpNewStatus::capabilities() const {
   VEL_TRACE_SCOPE( trace );
   Capabilities result;
   result.maxChannelsIs( lanes );
   return result;
}

uint32_t QsfpNewStatus::bitrate() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return contents.higherBitrate() ? contents.bitrateExtended() * 250u / 100
                                   : contents.bitrateNominal();
}

uint32_t QsfpNewStatus::laserWavelength() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return contents.deviceTechnology() < Sff8436DeviceTechnology::copperUnequalized
             ? contents.laserWavelength()
             : 0;
}

LaserWavelengthPrecision QsfpNewStatus::laserWavelengthPrecision() const {
   VEL_TRACE_SCOPE( trace );
   return laserWavelength() == 0 ? laserWavelengthPrecisionUnknown : laserWavelengthPrecisionPm;
}

PowerClass QsfpNewStatus::powerClass() const {
   VEL_TRACE_SCOPE( trace );
   return contentsOf( *this ).powerClass();
}

Units::Decibels QsfpNewStatus::electricalPathAttenuation() const {
   VEL_TRACE_SCOPE( trace );
   MediaType const type = mediaType();
   bool const is40G = type == xcvr40GBaseCr4;
   if ( !is40G && type != xcvr100GBaseCr4 && type != xcvr100GBaseCr4S &&
        type != xcvr100GBaseCr4N ) {
      return Units::Decibels( 0.0 );
   }
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( auto const known = attenuationOfModel( attnTable(), contents ) ) {
      return *known;
   }
   if ( contents.deviceTechnology() < Sff8436DeviceTechnology::copperUnequalized ) {
      return Units::Decibels( unreadable ); // these bytes are its wavelength
   }
   // At half the rate of a lane, where the signal of two levels has its highest frequency.
   uint8_t const own = is40G ? contents.attenuation5GHz() : contents.attenuation12p9GHz();
   return Units::Decibels( own != 0 ? own : unreadable );
}

// Monitors

namespace {

/// The lower page of a module that is there, read after it came; without bytes otherwise.
inline PageView readLowerPage( QsfpNewStatus const & status,
                               Sff8436IdEepromContents const & contents ) {
   return status.presence() == xcvrPresent &&
                status.lastDomUpdateTime() > status.lastPresenceChange()
             ? contents.eepromPage00LowerData().view()
             : std::string_view();
}

/// Here rather than in the operation, since an exported one is not inlined into its callers.
inline bool monitorsValid( QsfpNewStatus const & status, Sff8436IdEepromContents const & contents,
                           LaneId lane ) {
   // Of a part of the monitors the rest would read 0, which is no measurement.
   return lane.value() < QsfpNewStatus::lanes && contents.domSupported() &&
          readLowerPage( status, contents ).has( 0, row( "txPower4" ).end() );
}

/// The lower page of a module whose monitors of a lane are valid; without bytes if they are not.
inline PageView validLowerPage( QsfpNewStatus const & status,
                                Sff8436IdEepromContents const & contents, LaneId lane ) {
   return monitorsValid( status, contents, lane ) ? contents.eepromPage00LowerData().view()
                                                  : std::string_view();
}

/// Whether page 03h holds all thresholds.
inline bool hasThresholds( PageView page03h ) {
   return page03h.has( 0, row( "txPowerLowWarn" ).end() );
}

/// The word of a lane in a row of one word a lane, which the row of the first lane names.
uint16_t laneWord( PageView page, MemoryField const & first, LaneId lane ) {
   return page.u16be( first.at + lane.value() * uint32_t{ first.width } );
}

double txPower( Sff8436IdEepromContents const & contents, PageView lower, LaneId lane ) {
   return contents.txPowerSupported()
             ? DomCodes::power( laneWord( lower, row( "txPower1" ), lane ) )
             : unreadable;
}

double rxPower( PageView lower, LaneId lane ) {
   return DomCodes::power( laneWord( lower, row( "rxPower1" ), lane ) );
}

} // namespace

bool QsfpNewStatus::domInfoValid( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   return monitorsValid( *this, contentsOf( *this ), lane );
}

// Flattened, since readers ask it for every lane.
[[gnu::flatten]] DomInfo QsfpNewStatus::domInfo( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( !monitorsValid( *this, contents, lane ) ) {
      return unreadableDomInfo( 0 );
   }
   PageView const lower = contents.eepromPage00LowerData().view();
   return { lastDomUpdateTime(),
            domCalibrationInternal,
            DomCodes::temperature( lower.s16be( row( "temperature" ).at ) ),
            DomCodes::supplyVoltage( lower.u16be( row( "supplyVoltage" ).at ) ),
            DomCodes::txBias( laneWord( lower, row( "txBias1" ), lane ) ),
            txPower( contents, lower, lane ),
            rxPower( lower, lane ),
            unreadable };
}

DomAggPower QsfpNewStatus::domAggPower() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( !monitorsValid( *this, contents, LaneId() ) ) {
      return { 0, domCalibrationUnknown, unreadable, unreadable };
   }
   PageView const lower = contents.eepromPage00LowerData().view();
   auto const tx = [&]( uint8_t lane ) { return txPower( contents, lower, LaneId( lane ) ); };
   auto const rx = [&]( uint8_t lane ) { return rxPower( lower, LaneId( lane ) ); };
   return aggQsfpCfp2Power( tx( 0 ), tx( 1 ), tx( 2 ), tx( 3 ), rx( 0 ), rx( 1 ), rx( 2 ), rx( 3 ),
                            contents.txPowerSupported(), true, lastDomUpdateTime() );
}

bool QsfpNewStatus::domThresholdValid() const {
   VEL_TRACE_SCOPE( trace );
   // The thresholds are constants of the module, which the agent reads with the identification
   // memory: idEepromValid says that this was done.
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return presence() == xcvrPresent && contents.domSupported() &&
          hasThresholds( contents.page( eepromPage03Upper ) ) &&
          lastDomThresholdsUpdateTime() > 0 && idEepromValid();
}

DomThreshold QsfpNewStatus::domThreshold() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   PageView const page = contents.page( eepromPage03Upper );
   if ( !hasThresholds( page ) ) {
      return unreadableDomThreshold();
   }
   auto const temperature = [page]( MemoryField const & field ) {
      return DomCodes::temperature( page.s16be( field.at ) );
   };
   auto const voltage = [page]( MemoryField const & field ) {
      return DomCodes::supplyVoltage( page.u16be( field.at ) );
   };
   auto const txBias = [page]( MemoryField const & field ) {
      return DomCodes::txBias( page.u16be( field.at ) );
   };
   auto const power = [page]( MemoryField const & field ) {
      return DomCodes::power( page.u16be( field.at ) );
   };
   auto const txPower = [power,
                         isMonitored = contents.txPowerSupported()]( MemoryField const & field ) {
      return isMonitored ? power( field ) : unreadable;
   };
   return { temperature( row( "tempHighAlarm" ) ),
            temperature( row( "tempLowAlarm" ) ),
            temperature( row( "tempHighWarn" ) ),
            temperature( row( "tempLowWarn" ) ),
            voltage( row( "voltageHighAlarm" ) ),
            voltage( row( "voltageLowAlarm" ) ),
            voltage( row( "voltageHighWarn" ) ),
            voltage( row( "voltageLowWarn" ) ),
            txBias( row( "txBiasHighAlarm" ) ),
            txBias( row( "txBiasLowAlarm" ) ),
            txBias( row( "txBiasHighWarn" ) ),
            txBias( row( "txBiasLowWarn" ) ),
            txPower( row( "txPowerHighAlarm" ) ),
            txPower( row( "txPowerLowAlarm" ) ),
            txPower( row( "txPowerHighWarn" ) ),
            txPower( row( "txPowerLowWarn" ) ),
            power( row( "rxPowerHighAlarm" ) ),
            power( row( "rxPowerLowAlarm" ) ),
            power( row( "rxPowerHighWarn" ) ),
            power( row( "rxPowerLowWarn" ) ),
            unreadable,
            unreadable,
            unreadable,
            unreadable };
}

DomCapabilities QsfpNewStatus::domCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   bool const monitored = optical();
   bool const txMonitored = monitored && contentsOf( *this ).txPowerSupported();
   return { monitored, monitored, monitored,   txMonitored,
            monitored, false,     txMonitored, monitored };
}

Vel::Ptr<DomThresholdOverride const> QsfpNewStatus::domThresholdOverride() const {
   VEL_TRACE_SCOPE( trace );
   return closestThresholdOverride( xgc(), vendorInfo() );
}

DomThreshold QsfpNewStatus::domThresholdInForce() const {
   VEL_TRACE_SCOPE( trace );
   Vel::Ptr<DomThresholdOverride const> const row =
      domThresholdOverridden() ? domThresholdOverride() : nullptr;
   return row ? withOverride( domThreshold(), *row ) : domThreshold();
}

// Flags and controls

namespace {

/// The bit of a lane among four that stand together, the first lane lowest; `first` names its bit.
bool laneBit( PageView page, MemoryBitPlace first, LaneId lane ) {
   return lane.value() < QsfpNewStatus::lanes &&
          ( page.u8( first.at ) & first.mask << lane.value() );
}

/// The half byte of a lane in a row of four, the first lane highest.
uint8_t laneNibble( PageView page, MemoryField const & field, LaneId lane ) {
   return static_cast<uint8_t>( page.u16be( field.at ) >> ( 12 - 4 * lane.value() ) & 0xf );
}

/// The two bits of a lane in a byte of four, the first lane lowest.
uint8_t laneCode( PageView page, MemoryField const & field, LaneId lane ) {
   return static_cast<uint8_t>( page.u8( field.at ) >> 2 * lane.value() & 3 );
}

/// The four flags of a monitor of a lane.
struct LimitFlags {
   LimitFlags( PageView page, MemoryField const & field, LaneId lane )
      : flags( laneNibble( page, field, lane ) ) {}
   [[nodiscard]] bool highAlarm() const { return flags & 8; }
   [[nodiscard]] bool lowAlarm() const { return flags & 4; }
   [[nodiscard]] bool highWarn() const { return flags & 2; }
   [[nodiscard]] bool lowWarn() const { return flags & 1; }
   unsigned flags;
};

} // namespace

QsfpLaneFlags QsfpNewStatus::laneFlags( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   PageView const lower = validLowerPage( *this, contents, lane );
   if ( lower.empty() ) {
      return {};
   }
   LimitFlags const txBias( lower, row( "txBiasFlags" ), lane );
   LimitFlags const txPower( contents.txPowerSupported() ? lower : std::string_view(),
                             row( "txPowerFlags" ), lane );
   LimitFlags const rxPower( lower, row( "rxPowerFlags" ), lane );
   return { laneBit( lower, bit( "losFlags", "Rx1 LOS" ), lane ),
            laneBit( lower, bit( "losFlags", "Tx1 LOS" ), lane ),
            laneBit( lower, bit( "faultFlags", "Tx1 fault" ), lane ),
            laneBit( lower, bit( "faultFlags", "Tx1 adaptive EQ fault" ), lane ),
            laneBit( lower, bit( "lolFlags", "Rx1 CDR loss of lock" ), lane ),
            laneBit( lower, bit( "lolFlags", "Tx1 CDR loss of lock" ), lane ),
            txBias.highAlarm(),
            txBias.lowAlarm(),
            txBias.highWarn(),
            txBias.lowWarn(),
            txPower.highAlarm(),
            txPower.lowAlarm(),
            txPower.highWarn(),
            txPower.lowWarn(),
            rxPower.highAlarm(),
            rxPower.lowAlarm(),
            rxPower.highWarn(),
            rxPower.lowWarn() };
}

QsfpModuleFlags QsfpNewStatus::moduleFlags() const {
   VEL_TRACE_SCOPE( trace );
   PageView const lower = validLowerPage( *this, contentsOf( *this ), LaneId() );
   if ( lower.empty() ) {
      return {};
   }
   return { lower.bit( bit( "temperatureFlags", "temperature high alarm" ) ),
            lower.bit( bit( "temperatureFlags", "temperature low alarm" ) ),
            lower.bit( bit( "temperatureFlags", "temperature high warning" ) ),
            lower.bit( bit( "temperatureFlags", "temperature low warning" ) ),
            lower.bit( bit( "voltageFlags", "voltage high alarm" ) ),
            lower.bit( bit( "voltageFlags", "voltage low alarm" ) ),
            lower.bit( bit( "voltageFlags", "voltage high warning" ) ),
            lower.bit( bit( "voltageFlags", "voltage low warning" ) ),
            lower.bit( bit( "temperatureFlags", "initialisation complete" ) ),
            lower.bit( bit( "temperatureFlags", "TC readiness changed" ) ),
            // The bit is the state of the pin, which is low to interrupt.
            !lower.bit( bit( "moduleStatus", "interrupt not asserted" ) ),
            lower.bit( bit( "moduleStatus", "data not ready" ) ) };
}

QsfpLaneControls QsfpNewStatus::laneControls( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   PageView const lower = readLowerPage( *this, contents );
   if ( lane.value() >= lanes || lower.empty() ) {
      return {};
   }
   PageView const page03h = contents.page( eepromPage03Upper );
   return { laneBit( lower, bit( "txDisable", "Tx1 disable" ), lane ),
            laneCode( lower, row( "rxRateSelect" ), lane ),
            laneCode( lower, row( "txRateSelect" ), lane ),
            laneBit( lower, bit( "cdrControl", "Rx1 CDR on" ), lane ),
            laneBit( lower, bit( "cdrControl", "Tx1 CDR on" ), lane ),
            laneBit( page03h, bit( "squelchControl", "Rx1 squelch disable" ), lane ),
            laneBit( page03h, bit( "squelchControl", "Tx1 squelch disable" ), lane ),
            laneBit( page03h, bit( "outputControl", "Rx1 output disable" ), lane ),
            laneBit( page03h, bit( "outputControl", "Tx1 adaptive EQ" ), lane ) };
}

QsfpModuleControls QsfpNewStatus::moduleControls() const {
   VEL_TRACE_SCOPE( trace );
   PageView const lower = readLowerPage( *this, contentsOf( *this ) );
   return { lower.bit( bit( "powerControl", "power mode set by software" ) ),
            lower.bit( bit( "powerControl", "low power mode" ) ),
            lower.bit( bit( "powerControl", "power classes 5 to 7 enabled" ) ),
            lower.bit( bit( "powerControl", "power class 8 enabled" ) ),
            lower.bit( bit( "pinControl", "LPMode pin is TxDis" ) ),
            lower.bit( bit( "pinControl", "IntL pin is LOSL" ) ) };
}

void QsfpNewStatus::updateLaneStatus() {
   VEL_TRACE_SCOPE( trace );
   for ( uint8_t i = 0; i < lanes; ++i ) {
      QsfpLaneFlags const flags = laneFlags( LaneId( i ) );
      Vel::Ptr<LaneStatus> const lane = laneStatusIs( LaneId( i ) );
      lane->txFaultPresentIs( flags.txFault() );
      lane->txLosIs( flags.txLos() );
      lane->txCdrLolIs( flags.txCdrLol() );
      lane->txAdaptiveInputEqFaultIs( flags.txAdaptiveInputEqFault() );
      lane->txPowerHiAlarmIs( flags.txPowerHighAlarm() );
      lane->txPowerLoAlarmIs( flags.txPowerLowAlarm() );
      lane->txPowerHiWarnIs( flags.txPowerHighWarn() );
      lane->txPowerLoWarnIs( flags.txPowerLowWarn() );
      lane->txBiasHiAlarmIs( flags.txBiasHighAlarm() );
      lane->txBiasLoAlarmIs( flags.txBiasLowAlarm() );
      lane->txBiasHiWarnIs( flags.txBiasHighWarn() );
      lane->txBiasLoWarnIs( flags.txBiasLowWarn() );
      lane->rxCdrLolIs( flags.rxCdrLol() );
      lane->rxPowerHiAlarmIs( flags.rxPowerHighAlarm() );
      lane->rxPowerLoAlarmIs( flags.rxPowerLowAlarm() );
      lane->rxPowerHiWarnIs( flags.rxPowerHighWarn() );
      lane->rxPowerLoWarnIs( flags.rxPowerLowWarn() );
   }
}

// Signal tuning

namespace {

TuningValue laneTuning( Sff8436IdEepromContents const & contents, MemoryField const & field,
                        LaneId lane, bool supported ) {
   PageView const page = contents.page( eepromPage03Upper );
   return lane.value() < QsfpNewStatus::lanes && supported && page.has( field.at, field.width )
             ? TuningValue( true, laneNibble( page, field, lane ), false )
             : TuningValue();
}

} // namespace

TuningValue QsfpNewStatus::rxOutputAmplitude( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return laneTuning( contents, row( "rxOutputAmplitude" ), lane,
                      contents.rxOutputAmplitudeSupported() );
}

TuningValue QsfpNewStatus::rxOutputPreEmphasis( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return laneTuning( contents, row( "rxOutputEmphasis" ), lane,
                      contents.rxOutputEmphasisSupported() );
}

TuningValue QsfpNewStatus::txInputEqualization( LaneId lane ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   bool const adaptive = contents.txInputEqualizationAutoSupported() &&
                         laneBit( contents.page( eepromPage03Upper ),
                                  bit( "outputControl", "Tx1 adaptive EQ" ), lane );
   return laneTuning( contents, row( "txInputEqualization" ), lane,
                      contents.txInputEqualizationFixedSupported() && !adaptive );
}

TuningParamCapabilities QsfpNewStatus::tuningParamCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return { contents.rxOutputAmplitudeSupported(), contents.rxOutputEmphasisSupported(),
            contents.txInputEqualizationFixedSupported() };
}

// Enhanced monitors

namespace {

constexpr uint32_t monitorCount = 8;
constexpr uint32_t parameterCount = 24;

/// One of the parameters of page 20h, each of which says itself what it is.
class Parameter {
 public:
   Parameter( PageView page20h, uint32_t number )
      : page20h_( page20h ), number_( number ),
        config_( page20h.u16be( row( "parameter1Config" ).at + number * 2 ) ) {}

   /// Its type counts the enhanced monitors from 1. Further types are other statistics of them.
   [[nodiscard]] bool isMonitor() const { return type() >= 1 && type() <= monitorCount; }
   [[nodiscard]] uint32_t monitor() const { return type() - 1; }
   [[nodiscard]] bool isOfLane() const { return config_ & 0x400; }
   /// By `enhancedDomIndex`.
   [[nodiscard]] uint32_t index() const {
      return enhancedDomIndex( static_cast<EnhancedDomMonitor>( monitor() ),
                               isOfLane() ? static_cast<uint8_t>( config_ >> 8 & 3 )
                                          : uint8_t( 0 ) );
   }
   [[nodiscard]] uint32_t valueAt() const { return row( "parameter1Value" ).at + number_ * 2; }
   [[nodiscard]] uint16_t value() const { return page20h_.u16be( valueAt() ); }
   /// Where its thresholds are on page 21h.
   [[nodiscard]] uint32_t thresholdsAt() const {
      return thresholdSet.at + ( config_ >> 12 ) * uint32_t{ thresholdSet.width };
   }
   /// Whether page 21h holds all of them.
   [[nodiscard]] bool hasThresholds( PageView page21h ) const {
      return page21h.has( thresholdsAt(), thresholdSet.width );
   }

 private:
   static constexpr MemoryField thresholdSet = row( "thresholdSet0" );

   [[nodiscard]] uint32_t type() const { return config_ & 0xffu; }

   PageView page20h_;
   uint32_t number_;
   uint16_t config_;
};

/// The first parameter of an index. A monitor of the slot has the index of its lane 0: where there are
/// both, that of the lane counts, as in `categories`.
std::optional<Parameter> monitorOf( Sff8436IdEepromContents const & contents, uint32_t index ) {
   PageView const page20h = contents.page( eepromPage20hUpper );
   std::optional<Parameter> found;
   for ( uint32_t number = 0; number < parameterCount && !page20h.empty(); ++number ) {
      Parameter const parameter( page20h, number );
      if ( parameter.isMonitor() && parameter.index() == index ) {
         if ( parameter.isOfLane() ) {
            return parameter;
         }
         if ( !found ) {
            found = parameter;
         }
      }
   }
   return found;
}

/// A number in the unit of a monitor, of its value or of its thresholds.
double monitorValue( uint32_t index, uint16_t code ) {
   auto const number = static_cast<int16_t>( code );
   switch ( static_cast<EnhancedDomMonitor>( index % monitorCount ) ) {
   case EnhancedDomMonitor::snr:
   case EnhancedDomMonitor::residualIsi:
   case EnhancedDomMonitor::pam4Transitions:
      return code / 256.;
   case EnhancedDomMonitor::preFecBer:
   case EnhancedDomMonitor::uncorrectedBer:
      return DomCodes::f16( code );
   case EnhancedDomMonitor::tecCurrent:
      return number * 0.1;
   case EnhancedDomMonitor::laserFreqErr:
      return number * 10.;
   case EnhancedDomMonitor::laserTempErr:
      return number / 256.;
   }
   return unreadable;
}

/// By the monitors' order, for the values that have a field a monitor.
std::array<SensorCategory, monitorCount> categories( Sff8436IdEepromContents const & contents ) {
   std::array<SensorCategory, monitorCount> result{};
   PageView const page20h = contents.page( eepromPage20hUpper );
   for ( uint32_t number = 0; number < parameterCount; ++number ) {
      Parameter const parameter( page20h, number );
      if ( parameter.isMonitor() ) {
         SensorCategory & category = result[parameter.monitor()];
         // A monitor that is there both ways is one of the lanes.
         category = parameter.isOfLane() || category == SensorCategory::laneSensor
                       ? SensorCategory::laneSensor
                       : SensorCategory::slotSensor;
      }
   }
   return result;
}

} // namespace

bool QsfpNewStatus::enhancedDomValuesValid( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   return presence() == xcvrPresent && lastEnhancedDomUpdateTime() > lastPresenceChange() &&
          monitorOf( contentsOf( *this ), index );
}

double QsfpNewStatus::enhancedDomValue( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   auto const monitor = monitorOf( contentsOf( *this ), index );
   return monitor && enhancedDomValuesValid( index ) ? monitorValue( index, monitor->value() )
                                                     : unreadable;
}

bool QsfpNewStatus::enhancedDomThresholdValid( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( presence() != xcvrPresent || lastEnhancedDomThresholdsUpdateTime() <= 0 ||
        !idEepromValid() ) {
      return false;
   }
   auto const monitor = monitorOf( contents, index );
   return monitor && monitor->hasThresholds( contents.page( eepromPage21hUpper ) );
}

EnhancedDomThreshold QsfpNewStatus::enhancedDomThreshold( uint32_t index ) const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   PageView const page = contents.page( eepromPage21hUpper );
   auto const monitor = monitorOf( contents, index );
   if ( !monitor || !monitor->hasThresholds( page ) ) {
      return { unreadable, unreadable, unreadable, unreadable };
   }
   auto const limit = [&]( uint32_t word ) {
      return monitorValue( index, page.u16be( monitor->thresholdsAt() + word * 2 ) );
   };
   return { limit( 0 ), limit( 1 ), limit( 2 ), limit( 3 ) };
}

EnhancedDomSensorCategory QsfpNewStatus::enhancedDomSensorCategory() const {
   VEL_TRACE_SCOPE( trace );
   auto const c = categories( contentsOf( *this ) );
   return { c[0], c[1], c[2], c[3], c[4], c[5], c[6], c[7] };
}

EnhancedDomCapabilities QsfpNewStatus::enhancedDomCapabilities() const {
   VEL_TRACE_SCOPE( trace );
   auto const c = categories( contentsOf( *this ) );
   auto const has = [&c]( size_t monitor ) { return c[monitor] != SensorCategory::undefined; };
   return { has( 0 ), has( 1 ), has( 2 ), has( 3 ), has( 4 ), has( 5 ), has( 6 ), has( 7 ) };
}

void QsfpNewStatus::updateEnhancedDomMapping() {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   for ( uint32_t index = 0; index < monitorCount * lanes; ++index ) {
      if ( auto const monitor = monitorOf( contents, index ) ) {
         enhancedDomMappingIs( index, static_cast<uint16_t>( 0x2000 + Sff8436Table::upperPageStart +
                                                             monitor->valueAt() ) );
      } else {
         enhancedDomMappingDel( index );
      }
   }
}

} // namespace Xcvr
