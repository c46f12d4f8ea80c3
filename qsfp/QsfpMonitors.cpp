// What a QSFP slot says of its monitors, flags, controls and signal tuning.
#include "core/DiagOverride.h"
#include "core/DomReadings.h"
#include "core/DomRegisters.h"
#include "core/ThresholdOverride.h"

#include <Vel/Define.h>
#include <Vel/Trace.h>
#include <Xcvr/XcvrOptics.h>
#include <Xcvr/XcvrQsfpStatus.h>

namespace Xcvr {

VEL_VALUE_DEFINE( QsfpLaneFlags )
VEL_VALUE_DEFINE( QsfpModuleFlags )
VEL_VALUE_DEFINE( QsfpLaneControls )
VEL_VALUE_DEFINE( QsfpModuleControls )

namespace {

using Sff8436Table::bit;
using Sff8436Table::row;

Vel::TraceHandle trace( "XcvrQsfpPlus" );

/// The lower page of a module that is there, read after it came; without bytes otherwise.
inline PageView readLowerPage( QsfpNewStatus const & status,
                               Sff8436IdEepromContents const & contents ) {
   return monitorsRead( status, status.lastDomUpdateTime() )
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

/// Where the word of a lane is in a row of one word a lane, which the row of the first lane names.
uint32_t laneWord( MemoryField const & first, LaneId lane ) {
   return first.at + lane.value() * uint32_t{ first.width };
}

constexpr ThresholdRegisters thresholds{ row( "tempHighAlarm" ).at, row( "voltageHighAlarm" ).at,
                                         row( "txBiasHighAlarm" ).at, row( "txPowerHighAlarm" ).at,
                                         row( "rxPowerHighAlarm" ).at };

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
   DomRegisters const lower( contents.eepromPage00LowerData().view(), contents.txPowerSupported() );
   return { lastDomUpdateTime(),
            domCalibrationInternal,
            lower.temperature( row( "temperature" ).at ),
            lower.voltage( row( "supplyVoltage" ).at ),
            lower.txBias( laneWord( row( "txBias1" ), lane ) ),
            lower.txPower( laneWord( row( "txPower1" ), lane ) ),
            lower.rxPower( laneWord( row( "rxPower1" ), lane ) ),
            unreadable };
}

DomAggPower QsfpNewStatus::domAggPower() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   if ( !monitorsValid( *this, contents, LaneId() ) ) {
      return { 0, domCalibrationUnknown, unreadable, unreadable };
   }
   bool const txMonitored = contents.txPowerSupported();
   DomRegisters const lower( contents.eepromPage00LowerData().view(), txMonitored );
   auto const tx = [lower]( uint8_t lane ) {
      return lower.txPower( laneWord( row( "txPower1" ), LaneId( lane ) ) );
   };
   auto const rx = [lower]( uint8_t lane ) {
      return lower.rxPower( laneWord( row( "rxPower1" ), LaneId( lane ) ) );
   };
   return aggQsfpCfp2Power( tx( 0 ), tx( 1 ), tx( 2 ), tx( 3 ), rx( 0 ), rx( 1 ), rx( 2 ), rx( 3 ),
                            txMonitored, true, lastDomUpdateTime() );
}

bool QsfpNewStatus::domThresholdValid() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   return contents.domSupported() && hasThresholds( contents.page( eepromPage03Upper ) ) &&
          thresholdsRead( *this, lastDomThresholdsUpdateTime() );
}

DomThreshold QsfpNewStatus::domThreshold() const {
   VEL_TRACE_SCOPE( trace );
   Sff8436IdEepromContents const & contents = contentsOf( *this );
   PageView const page = contents.page( eepromPage03Upper );
   return hasThresholds( page )
             ? domThresholds( DomRegisters( page, contents.txPowerSupported() ), thresholds )
             : unreadableDomThreshold();
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
   return thresholdInForce( *this );
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

} // namespace Xcvr
