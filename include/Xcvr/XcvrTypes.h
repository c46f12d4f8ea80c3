#pragma once

#include <Keel/ConditionStat.h>
#include <Vel/Assert.h>
#include <Vel/String.h>
#include <Vel/Value.h>

#include <map>

/// The value types and enumerations that every module family uses. The fields of a type stand in
/// the order of its string form and of its attribute-log record. Unless said otherwise: frequencies
/// and grid spacings in MHz, optical power in dBm, times in seconds; a measurement that cannot be
/// read is minus infinity.
namespace Xcvr {

// ---------------------------------------------------------------------------------------------
// Enumerations

/// Module family of a slot.
VEL_ENUM( XcvrType,
   unknown, sfpPlus, qsfpPlus, rj45, mbo, cfp2, rcx, osfp, qsfpDd );

/// Whether a module is inserted.
VEL_ENUM( XcvrPresence,
   xcvrPresenceUnknown, xcvrNotPresent, xcvrPresent );
using enum XcvrPresence;

/// Who turns a module's raw monitor readings into units: the module or its host.
VEL_ENUM( DomCalibration,
   domCalibrationUnknown, domCalibrationInternal, domCalibrationExternal );
using enum DomCalibration;

/// Whether an enhanced monitor exists once a slot or once a lane.
VEL_ENUM( SensorCategory,
   undefined, slotSensor, laneSensor );

/// The enhanced monitors, in the order of the fields of EnhancedDomCapabilities.
VEL_ENUM( EnhancedDomMonitor,
   snr, residualIsi, pam4Transitions, preFecBer, uncorrectedBer, tecCurrent, laserFreqErr,
   laserTempErr );

/// Rate of one electrical lane.
VEL_ENUM( SerdesSpeed,
   serdesSpeedUnknown, serdesSpeed10G, serdesSpeed25G, serdesSpeed50G );
using enum SerdesSpeed;

/// Whether a module states its wavelength in whole nanometres or in picometres.
VEL_ENUM( LaserWavelengthPrecision,
   laserWavelengthPrecisionUnknown, laserWavelengthPrecisionNm, laserWavelengthPrecisionPm );
using enum LaserWavelengthPrecision;

/// Electrical interface between the switch and the module.
VEL_ENUM( ElectricalInterface,
   xcvr100MMiiBaseFx, xcvr1GSgmiiBaseX, xcvr1GSgmiiBaseT, xcvr10GLinear, xcvr10GLimiting,
   xcvr25GLinear, xcvr25GLimiting, xcvr50GLinear, xcvr50GLimiting );
using enum ElectricalInterface;

/// Power class of a module; what a class means in watts is its family's.
VEL_ENUM( PowerClass,
   xcvrPowerClassUnknown, xcvrPowerClass1, xcvrPowerClass2, xcvrPowerClass3, xcvrPowerClass4,
   xcvrPowerClass5, xcvrPowerClass6, xcvrPowerClass7 );
using enum PowerClass;

/// How a module's wavelength is set: not at all, by channel number on a grid, or by frequency.
VEL_ENUM( TuningType,
   tuningTypeNone, tuningTypeChannel, tuningTypeFrequency );
using enum TuningType;

/// Physical medium of a module.
VEL_ENUM( MediaType,
   xcvrUnknown, xcvr25GUnknown, xcvr100GUnknown, xcvr400GCopperUnknown, xcvr400GOpticalUnknown,
   xcvr10GBaseSr, xcvr10GBaseAr, xcvr10GBaseLr, xcvr10GBaseLrLite, xcvr10GBaseLrm, xcvr10GBaseCr,
   xcvr2p5GBaseT, xcvr5GBaseT, xcvr10GBaseT, xcvr25GBaseCr, xcvr25GBaseCrS, xcvr25GBaseCrN,
   xcvr25GBaseSr, xcvr25GBaseAr, xcvr25GBaseArN, xcvr25GBaseLr, xcvr25GBaseLrLite,
   xcvr100BaseLx10, xcvr1000BaseSx, xcvr1000BaseLx, xcvr1000BaseT, xcvr1000BaseBx10D,
   xcvr1000BaseBx10U, xcvr10GBaseSrLite, xcvr10GBaseMfg, xcvr10GBaseEr, xcvr10GBaseZr,
   xcvr10GBaseDwdmEr, xcvr10GBaseDwdmZr, xcvr10GBaseDwdmZt, xcvr10GBaseErbdU, xcvr10GBaseErbdD,
   xcvr10GBaseErlbdU, xcvr10GBaseErlbdD, xcvr100BaseFx, xcvr40GBaseSr4, xcvr40GBaseSrbd,
   xcvr40GBaseSr4d, xcvr40GBaseAr4, xcvr40GBasePlr4, xcvr40GBasePlrl4, xcvr40GBasePsm4,
   xcvr40GBaseXsr4, xcvr40GBaseLr4, xcvr40GBaseLrl4, xcvr40GBaseUniv, xcvr40GBaseCr4,
   xcvr40GBaseEr4, xcvr40GBaseMfg, xcvr50GBaseCr2L, xcvr50GBaseCr2S, xcvr50GBaseCr2N,
   xcvr10GBaseCrActive, xcvr100GBaseSr10, xcvr100GBaseXsr10, xcvr100GBaseSr4, xcvr100GBaseLr4,
   xcvr100GBaseEr4, xcvr100GDwdmCoherent, xcvr100GDwdmCoherentE, xcvr100GBaseCr4, xcvr100GBaseAr4,
   xcvr100GBaseLrl4, xcvr100GBasePsm4, xcvr100GBaseClr4, xcvr100GBaseCwdm4, xcvr100GEDwdm2,
   xcvr100GBaseCr4S, xcvr100GBaseCr4N, xcvr100GBaseAr4N, xcvr100GBaseSwdm4, xcvr100GBaseSrbd,
   xcvr100GDwdmDco, xcvr2x100GBaseMfg, xcvr100GBaseErl4, xcvr100GBaseMfg, xcvr100GBaseXsr4,
   xcvr100GBaseDr, xcvr400GBaseCr8, xcvr200GBaseCr8, xcvr400GBaseAr8, xcvr400GBaseSr8,
   xcvr400GBaseLr8, xcvr400GBase2Fr4, xcvr400GBaseFr4, xcvr400GBaseDr4 );
using enum MediaType;

// ---------------------------------------------------------------------------------------------
// Identifiers

/// A channel of a module, 0 to 23; any other number is a fatal assertion.
class ChannelId {
   VEL_BOUNDED_VALUE( ChannelId, 23, VEL_ASSERT_FAILED );
};

/// A lane number of a module; key of per-lane collections.
class LaneId {
   VEL_VALUE( LaneId,
      ( value, uint8_t ) );
   VEL_KEY( LaneId )
};

/// The transmit and receive sides of a channel.
class ChannelDesc {
   VEL_VALUE( ChannelDesc,
      ( txId, uint8_t ),
      ( rxId, uint8_t ) );
   VEL_KEY( ChannelDesc )
};

// ---------------------------------------------------------------------------------------------
// Identity and state

/// Identity of a module as its vendor wrote it, padding included.
class VendorInfo {
   VEL_VALUE( VendorInfo,
      ( vendorName, Vel::String ),
      ( vendorPn, Vel::String ),             // part number
      ( vendorSn, Vel::String ),             // serial number
      ( vendorRev, Vel::String ),            // revision of the part
      ( vendorDateCode, Vel::String ) ); // year, month, day and lot: YYMMDDLL
};

/// Whether a module is enabled and, if not, why.
class XcvrState {
 public:
   /// Why a module is not enabled. The codes after `undecided` are this library's own.
   VEL_MEMBER_ENUM( Reason,
      undecided, unidentifiedXcvr, badEepromChecksum, unsupported );
   using enum Reason;

   VEL_VALUE( XcvrState,
      ( enabled, bool ),
      ( reason, Reason ) );
};

/// Which DOM data the agent that manages a slot provides.
class XcvrManagerCapabilities {
   VEL_VALUE( XcvrManagerCapabilities,
      ( domDynamicValues, bool ),
      ( domThresholds, bool ) );
};

/// What a module's channels can do.
class Capabilities {
   VEL_VALUE( Capabilities,
      ( maxChannels, uint8_t ),
      ( tunableWavelength, bool ),
      ( configurableTxPower, bool ),
      ( configurableRxPower, bool ),
      ( directRxPowerConfig, bool ),
      ( lineSideChannels, uint8_t ) );
};

/// The identification memory of a module. Its text can be written but, holding a collection, not be
/// given to the constructor: that is fatal.
class EepromDescriptor {
 public:
   using PageSizes = std::map<uint8_t, uint16_t>;
   VEL_VALUE( EepromDescriptor,
      ( eepromPages, uint8_t ),
      ( maxEepromPages, uint8_t ),
      ( pageSizeBytes, PageSizes ) ); // size in bytes by page number

 public:
   /// The size of one page in bytes; 0 for a page that is not there.
   [[nodiscard]] uint16_t pageSizeBytes( uint8_t page ) const {
      auto const found = pageSizeBytes_.find( page );
      return found != pageSizeBytes_.end() ? found->second : uint16_t( 0 );
   }
   void pageSizeBytesIs( uint8_t page, uint16_t size ) { pageSizeBytes_[page] = size; }
   void pageSizeBytesDel( uint8_t page ) { pageSizeBytes_.erase( page ); }
   void pageSizeBytesDelAll() { pageSizeBytes_.clear(); }
};

// ---------------------------------------------------------------------------------------------
// Monitoring (DOM: digital optical monitoring)

/// Monitored values of one lane at one moment. Minus infinity: not readable.
class DomInfo {
   VEL_VALUE( DomInfo,
      ( updateTime, Vel::Seconds ),          // when the monitors were read
      ( calibration, DomCalibration ),
      ( temperature, double ),               // °C
      ( voltage, double ),                   // V
      ( txBias, double ),                    // mA
      ( txPower, double ),                   // dBm
      ( rxPower, double ),                   // dBm
      ( totalRxPower, double ) ); // dBm
};

/// Power of all lanes of a module together.
class DomAggPower {
   VEL_VALUE( DomAggPower,
      ( updateTime, Vel::Seconds ),
      ( calibration, DomCalibration ),
      ( aggTxPower, double ),                // dBm
      ( aggRxPower, double ) ); // dBm
};

/// Which monitors a module implements.
class DomCapabilities {
   VEL_VALUE( DomCapabilities,
      ( temperature, bool ),
      ( voltage, bool ),
      ( txBias, bool ),
      ( txPower, bool ),
      ( rxPower, bool ),
      ( totalRxPower, bool ),
      ( aggTxPower, bool ),
      ( aggRxPower, bool ) );
};

/// Alarm and warning limits of the monitors, in the monitors' units.
class DomThreshold {
   VEL_VALUE( DomThreshold,
      ( tempHighAlarm, double ),             // °C
      ( tempLowAlarm, double ),
      ( tempHighWarn, double ),
      ( tempLowWarn, double ),
      ( voltageHighAlarm, double ),          // V
      ( voltageLowAlarm, double ),
      ( voltageHighWarn, double ),
      ( voltageLowWarn, double ),
      ( txBiasHighAlarm, double ),           // mA
      ( txBiasLowAlarm, double ),
      ( txBiasHighWarn, double ),
      ( txBiasLowWarn, double ),
      ( txPowerHighAlarm, double ),          // dBm
      ( txPowerLowAlarm, double ),
      ( txPowerHighWarn, double ),
      ( txPowerLowWarn, double ),
      ( rxPowerHighAlarm, double ),          // dBm
      ( rxPowerLowAlarm, double ),
      ( rxPowerHighWarn, double ),
      ( rxPowerLowWarn, double ),
      ( totalRxPowerHighAlarm, double ),     // dBm
      ( totalRxPowerLowAlarm, double ),
      ( totalRxPowerHighWarn, double ),
      ( totalRxPowerLowWarn, double ) );
};

/// Which enhanced monitors a module implements.
class EnhancedDomCapabilities {
   VEL_VALUE( EnhancedDomCapabilities,
      ( snr, bool ),                         // signal-to-noise ratio
      ( residualIsi, bool ),                 // inter-symbol interference left after equalisation
      ( pam4Transitions, bool ),             // level-transition parameter
      ( preFecBer, bool ),                   // bit error ratio before error correction
      ( uncorrectedBer, bool ),              // frame error ratio after it
      ( tecCurrent, bool ),                  // thermoelectric cooler
      ( laserFreqErr, bool ),
      ( laserTempErr, bool ) );
};

/// Where each enhanced monitor of a module measures.
class EnhancedDomSensorCategory {
   VEL_VALUE( EnhancedDomSensorCategory,
      ( snr, SensorCategory ),
      ( residualIsi, SensorCategory ),
      ( pam4Transitions, SensorCategory ),
      ( preFecBer, SensorCategory ),
      ( uncorrectedBer, SensorCategory ),
      ( tecCurrent, SensorCategory ),
      ( laserFreqErr, SensorCategory ),
      ( laserTempErr, SensorCategory ) );
};

/// The index under which a status knows an enhanced monitor of a lane; that of a monitor of the
/// whole slot is its index of lane 0.
[[nodiscard]] constexpr uint32_t enhancedDomIndex( EnhancedDomMonitor monitor, uint8_t lane ) {
   return lane * 8u + static_cast<uint32_t>( monitor );
}

/// Limits of one enhanced monitor, in its own unit.
class EnhancedDomThreshold {
   VEL_VALUE( EnhancedDomThreshold,
      ( highAlarm, double ),
      ( lowAlarm, double ),
      ( highWarn, double ),
      ( lowWarn, double ) );
};

// ---------------------------------------------------------------------------------------------
// Event statistics

/// Events of one slot since its agent started; a time of 0 means never.
class XcvrEventStats {
   VEL_VALUE( XcvrEventStats,
      ( presence, XcvrPresence ),
      ( presenceChanges, uint32_t ),
      ( lastPresenceChange, Vel::Seconds ),
      ( resetCount, uint32_t ),
      ( lastReset, Vel::Seconds ),
      ( interruptCount, uint32_t ),
      ( lastInterrupt, Vel::Seconds ),
      ( badEepromChecksumEvents, uint32_t ),
      ( lastBadEepromChecksumEvent, Vel::Seconds ),
      ( smbusFailCount, uint32_t ),
      ( lastSmbusFail, Vel::Seconds ) );
};

/// Events of one lane; a time of 0 means never.
class LaneEventStats {
   VEL_VALUE( LaneEventStats,
      ( currentRxLosState, bool ),
      ( rxLosEvents, uint32_t ),
      ( lastRxLosEvent, Vel::Seconds ),
      ( rxLosEventsSinceInsertion, uint32_t ),
      ( currentTxFaultState, bool ),
      ( txFaultEvents, uint32_t ),
      ( lastTxFaultEvent, Vel::Seconds ),
      ( txFaultEventsSinceInsertion, uint32_t ),
      ( txLos, Keel::ConditionStat ),
      ( txCdrLol, Keel::ConditionStat ),
      ( txAdaptiveInputEqFault, Keel::ConditionStat ),
      ( txPowerHiAlarm, Keel::ConditionStat ),
      ( txPowerLoAlarm, Keel::ConditionStat ),
      ( txPowerHiWarn, Keel::ConditionStat ),
      ( txPowerLoWarn, Keel::ConditionStat ),
      ( txBiasHiAlarm, Keel::ConditionStat ),
      ( txBiasLoAlarm, Keel::ConditionStat ),
      ( txBiasHiWarn, Keel::ConditionStat ),
      ( txBiasLoWarn, Keel::ConditionStat ),
      ( rxCdrLol, Keel::ConditionStat ),
      ( rxPowerHiAlarm, Keel::ConditionStat ),
      ( rxPowerLoAlarm, Keel::ConditionStat ),
      ( rxPowerHiWarn, Keel::ConditionStat ),
      ( rxPowerLoWarn, Keel::ConditionStat ) );
};

// ---------------------------------------------------------------------------------------------
// Tuning

/// The grid spacings that a tunable module supports.
class GridSpacingCapabilities {
   VEL_VALUE( GridSpacingCapabilities,
      ( gridSpacing100000M, bool ),
      ( gridSpacing50000M, bool ),
      ( gridSpacing33000M, bool ),
      ( gridSpacing25000M, bool ),
      ( gridSpacing12500M, bool ),
      ( gridSpacing6250M, bool ) );
};

/// Where a tunable module can be tuned to.
class TuningCapabilities {
   VEL_VALUE( TuningCapabilities,
      ( baseFrequency, uint32_t ),           // of channel 1, MHz
      ( firstFrequency, uint32_t ),          // lowest, MHz
      ( lastFrequency, uint32_t ),           // highest, MHz
      ( gridSpacingCapabilities, GridSpacingCapabilities ),
      ( txFineTuneRange, uint32_t ) ); // off the grid, MHz
};

/// Which signal-tuning parameters a module accepts.
class TuningParamCapabilities {
   VEL_VALUE( TuningParamCapabilities,
      ( rxAmplitudeSupported, bool ),
      ( rxPreEmphasisSupported, bool ),
      ( txInputEqualizationSupported, bool ) );
};

/// Wavelength tuning requested of a module.
class ItuTuningConfig {
   VEL_VALUE( ItuTuningConfig,
      ( channel, uint32_t ),
      ( grid, uint32_t ),                    // MHz
      ( frequency, uint32_t ),               // MHz
      ( laserEnabled, bool ) );
};

/// Wavelength tuning in the terms of the module's registers.
class HwTuningConfig {
   VEL_VALUE( HwTuningConfig,
      ( hwChannel, uint32_t ),
      ( hwGrid, uint32_t ),                  // MHz
      ( hwFineTuneFreq, int16_t ) ); // off the grid, MHz
};

/// Wavelength tuning as configured, as computed from it, and as the module runs.
class ResolvedTuningStatus {
   VEL_VALUE( ResolvedTuningStatus,
      ( configuredChannel, uint32_t ),
      ( configuredGrid, uint32_t ),          // MHz
      ( configuredFrequency, uint32_t ),     // MHz
      ( computedFrequency, uint32_t ),       // MHz
      ( computedWavelength, double ),        // nm
      ( operationalChannel, uint32_t ),
      ( operationalGrid, uint32_t ),         // MHz
      ( operationalFrequency, uint32_t ),    // MHz
      ( operationalWavelength, double ),     // nm
      ( gridSpacingCapabilities, GridSpacingCapabilities ) );
};

/// One signal-tuning value of a lane.
class TuningValue {
   VEL_VALUE( TuningValue,
      ( valid, bool ),
      ( val, uint8_t ),
      ( moduleDefault, bool ) ); // leave what the module came with
};

/// Signal tuning of one lane.
class LaneTuningParameter {
   VEL_VALUE( LaneTuningParameter,
      ( txInputEqualization, TuningValue ),
      ( rxOutputPreEmphasis, TuningValue ),
      ( rxOutputAmplitude, TuningValue ),
      ( txInputAdaptiveEqEnable, TuningValue ),
      ( rxOutputPostEmphasis, TuningValue ) );
};

/// Period of performance monitoring, and the unit in which an operator gave it.
class PerformanceMonitoringPeriodConfig {
   VEL_VALUE( PerformanceMonitoringPeriodConfig,
      ( valueInSeconds, uint32_t ),
      ( unit, Vel::String ) );
};

/// Tuning of a module that nobody configured: the ITU-T G.694.1 anchor of 193.1 THz, which on the
/// 50 GHz grid from 191.2 THz is channel 39.
struct TuningConstants {
   static constexpr uint32_t defaultChannel = 39;
   static constexpr uint32_t defaultGrid = 50000;            // MHz
   static constexpr uint32_t baseFrequencyCBand = 191200000; // MHz, channel 1
   static constexpr uint32_t defaultFrequency =
      baseFrequencyCBand + ( defaultChannel - 1 ) * defaultGrid; // MHz
};
static_assert( TuningConstants::defaultFrequency == 193100000 );

/// Optical power, in dBm, of a module that nobody configured, and the least that may be configured.
struct PowerConstants {
   /// 1 mW, what a line-side transmitter launches unless told otherwise.
   static constexpr double defaultTxPower = 0.0;
   /// The middle of the range in which an amplified line is received.
   static constexpr double defaultRxPower = -10.0;
   /// The usual floor of a coherent transmitter's adjustable range.
   static constexpr double minimumTxPower = -15.0;
   /// Below it an amplified coherent receiver no longer meets its error ratio.
   static constexpr double minimumRxPower = -20.0;
};

} // namespace Xcvr
