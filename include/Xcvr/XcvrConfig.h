#pragma once

#include <Units/Decibels.h>
#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrTypes.h>

// What is configured for one transceiver slot and its lanes.
namespace Xcvr {

/// What `overrideIdEepromContentsActivationKey` of a slot's diagnostic configuration must hold for
/// the override to take effect, in every family.
inline constexpr uint32_t diagActivationKey = 0x5EA1F00D;

/// Static configuration of one slot, written by the platform.
class XCVR_API XcvrConfig : public Vel::Entity {
 public:
   /// `initTime` is when the slot's configuration was created: unless given, now, in seconds since
   /// the epoch of the system's clock.
   explicit XcvrConfig( Vel::Name name );
   XcvrConfig( Vel::Name name, Vel::Seconds initTime );
   VEL_ENTITY( XcvrConfig, Vel::Entity,
      ( Plain, xcvrSlotId, onXcvrSlotId, uint32_t ),
      ( Constant, initTime, Vel::Seconds ),
      // Interface name of each lane.
      ( Values, intfName, onIntfName, LaneId, Vel::String ),
      // The tuning defaults of TuningConstants.
      ( Derived, defaultChannel, uint32_t ),
      ( Derived, defaultGrid, uint32_t ),
      ( Derived, baseFrequencyCBand, uint32_t ),
      ( Derived, defaultFrequency, uint32_t ),
      // When a dump of the identification memory was last asked for: a change is a request.
      ( Plain, idEepromDumpRequest, onIdEepromDumpRequest, Vel::Seconds ),
      // An external PHY is on the slot's path.
      ( Plain, extPhyPresent, onExtPhyPresent, bool ) );

   [[nodiscard]] uint32_t defaultChannel() const { return TuningConstants::defaultChannel; }
   [[nodiscard]] uint32_t defaultGrid() const { return TuningConstants::defaultGrid; }
   [[nodiscard]] uint32_t baseFrequencyCBand() const { return TuningConstants::baseFrequencyCBand; }
   [[nodiscard]] uint32_t defaultFrequency() const { return TuningConstants::defaultFrequency; }
};

/// Operator settings of one slot, written by the command line.
class XCVR_API XcvrConfigCli : public Vel::Entity {
 public:
   explicit XcvrConfigCli( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XcvrConfigCli, Vel::Entity,
      // Media type to assume instead of the decoded one; xcvrUnknown for none.
      ( Plain, overrideMediaType, onOverrideMediaType, MediaType ),
      // When the operator last asked for a dump of the module's memory: a change is a request.
      ( Plain, eepromDumpRequest, onEepromDumpRequest, Vel::Seconds ),
      // Signal tuning by lane.
      ( Values, slotTuningParams, onSlotTuningParams, LaneId, LaneTuningParameter ),
      // Use slotTuningParams instead of the module's defaults.
      ( Plain, overrideTuningParams, onOverrideTuningParams, bool ),
      // Treat the module as removed.
      ( Plain, forceModuleRemoved, onForceModuleRemoved, bool ),
      // Goes up with each change of forceModuleRemoved, so that a repeated request is seen.
      ( Counter, forceModuleRemovedChanged, onForceModuleRemovedChanged, uint32_t ) );
};

/// The operator settings of all slots, by the transceiver's name.
class XCVR_API XcvrConfigCliDir : public Vel::Entity {
 public:
   explicit XcvrConfigCliDir( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XcvrConfigCliDir, Vel::Entity,
      ( Children, xcvrConfigCli, onXcvrConfigCli, Vel::Name, XcvrConfigCli ) );
};

/// A wavelength tuning setting, named after its transceiver.
class XCVR_API TuningConfig : public Vel::Entity {
 public:
   explicit TuningConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( TuningConfig, Vel::Entity,
      ( Plain, channel, onChannel, uint32_t ),      // ITU channel number; 0 for none
      ( Plain, grid, onGrid, uint32_t ),            // grid spacing, MHz; 0 for none
      ( Plain, frequency, onFrequency, uint32_t ) ); // MHz; 0 for none
};

/// An optical power setting, named after its transceiver.
class XCVR_API PowerConfig : public Vel::Entity {
 public:
   explicit PowerConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( PowerConfig, Vel::Entity,
      ( Plain, signalPower, onSignalPower, Units::Decibels ) ); // dBm
};

/// Whether a transceiver's performance is monitored; named after the transceiver.
class XCVR_API PerformanceMonitoringConfig : public Vel::Entity {
 public:
   explicit PerformanceMonitoringConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( PerformanceMonitoringConfig, Vel::Entity,
      ( Plain, performanceMonitoringEnabled, onPerformanceMonitoringEnabled, bool ) );
};

/// One row of the operator's threshold table, named by its row key: the optical power thresholds,
/// in dBm, of the modules with a vendor identity.
class XCVR_API DomThresholdOverride : public Vel::Entity {
 public:
   explicit DomThresholdOverride( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( DomThresholdOverride, Vel::Entity,
      ( Plain, vendorName, onVendorName, Vel::String ),
      ( Plain, vendorPn, onVendorPn, Vel::String ),
      ( Plain, vendorSn, onVendorSn, Vel::String ),
      ( Plain, rxPowerHighAlarm, onRxPowerHighAlarm, Units::Decibels ),
      ( Plain, rxPowerLowAlarm, onRxPowerLowAlarm, Units::Decibels ),
      ( Plain, rxPowerHighWarn, onRxPowerHighWarn, Units::Decibels ),
      ( Plain, rxPowerLowWarn, onRxPowerLowWarn, Units::Decibels ),
      ( Plain, txPowerHighAlarm, onTxPowerHighAlarm, Units::Decibels ),
      ( Plain, txPowerLowAlarm, onTxPowerLowAlarm, Units::Decibels ),
      ( Plain, txPowerHighWarn, onTxPowerHighWarn, Units::Decibels ),
      ( Plain, txPowerLowWarn, onTxPowerLowWarn, Units::Decibels ) );
};

/// Settings of one lane.
class XCVR_API LaneConfig : public Vel::Entity {
 public:
   explicit LaneConfig( LaneId lane );
   VEL_ENTITY( LaneConfig, Vel::Entity,
      ( Constant, lane, LaneId ),
      ( Plain, txEnable, onTxEnable, bool ),
      // Goes up with each change of txEnable, so that a repeated request is seen.
      ( Counter, signalChange, onSignalChange, uint32_t ) );
};

/// The lanes of one transceiver, whose name it has.
class XCVR_API XcvrLaneConfig : public Vel::Entity {
 public:
   explicit XcvrLaneConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XcvrLaneConfig, Vel::Entity,
      ( Children, laneConfig, onLaneConfig, LaneId, LaneConfig ) );
};

/// The lanes of all transceivers, by the transceiver's name.
class XCVR_API XcvrLaneConfigDir : public Vel::Entity {
 public:
   explicit XcvrLaneConfigDir( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XcvrLaneConfigDir, Vel::Entity,
      ( Children, xcvrLaneConfig, onXcvrLaneConfig, Vel::Name, XcvrLaneConfig ),
      // The collection is complete.
      ( Plain, xcvrLaneConfigReady, onXcvrLaneConfigReady, bool ) );
};

XCVR_API Vel::Ptr<XcvrConfig> xcvrConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<XcvrConfigCli> xcvrConfigCliFactory( Vel::Name name );
XCVR_API Vel::Ptr<XcvrConfigCliDir> xcvrConfigCliDirFactory( Vel::Name name );
XCVR_API Vel::Ptr<TuningConfig> tuningConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<PowerConfig> powerConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<PerformanceMonitoringConfig> performanceMonitoringConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<DomThresholdOverride> domThresholdOverrideFactory( Vel::Name name );
XCVR_API Vel::Ptr<XcvrLaneConfig> xcvrLaneConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<XcvrLaneConfigDir> xcvrLaneConfigDirFactory( Vel::Name name );

} // namespace Xcvr
