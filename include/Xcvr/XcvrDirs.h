#pragma once

#include <Corenet/IntfId.h>
#include <Units/Celsius.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrStatus.h>

// The system-wide configuration and the directories through which every slot is found by name.
namespace Xcvr {

/// Settings of all transceivers of the system, and the named settings of single ones.
class XCVR_API Xgc : public Vel::Entity {
 public:
   explicit Xgc( Vel::Name name );
   VEL_ENTITY( Xgc, Vel::Entity,
      // Bit 7 of a module's Ethernet compliance code means PSM4.
      ( Plain, ethComplianceBit7IsPsm4, onEthComplianceBit7IsPsm4, bool ),
      // High-temperature thresholds. Alarm and warning are not symmetric: intended.
      ( Plain, minimumTempHighAlarmThreshold, onMinimumTempHighAlarmThreshold, Units::Celsius ),
      ( Plain, alternateTempHighAlarmThreshold, onAlternateTempHighAlarmThreshold, Units::Celsius ),
      ( Plain, minimumTempHighWarnThreshold, onMinimumTempHighWarnThreshold, Units::Celsius ),
      ( Plain, alternateTempHighWarnThreshold, onAlternateTempHighWarnThreshold, Units::Celsius ),
      ( Plain, performanceMonitoringPeriod, onPerformanceMonitoringPeriod,
        PerformanceMonitoringPeriodConfig ),
      // Of xcvr100GEDwdm2 modules; minus infinity for unset.
      ( Plain, targetTemperature100GEDwdm2, onTargetTemperature100GEDwdm2, Units::Celsius ),
      // Performance monitoring of all transceivers, and of single ones.
      ( Plain, performanceMonitoringGlobal, onPerformanceMonitoringGlobal, bool ),
      ( Children, performanceMonitoringConfig, onPerformanceMonitoringConfig, Vel::Name,
        PerformanceMonitoringConfig ),
      ( Children, tuningConfig, onTuningConfig, Vel::Name, TuningConfig ),
      ( Children, txPowerConfig, onTxPowerConfig, Vel::Name, PowerConfig ),
      ( Children, rxPowerConfig, onRxPowerConfig, Vel::Name, PowerConfig ),
      // The operator's threshold table: whether it applies, where it came from, its rows.
      ( Plain, domThresholdOverrideEnabled, onDomThresholdOverrideEnabled, bool ),
      ( Plain, domThresholdOverrideSrc, onDomThresholdOverrideSrc, Vel::String ),
      ( OrderedChildren, domThresholdOverrideData, onDomThresholdOverrideData, Vel::Name,
        DomThresholdOverride ),
      // Use modules whose identification memory has a wrong checksum.
      ( Plain, overrideEepromChecksumError, onOverrideEepromChecksumError, bool ),
      // Log crossings of monitoring thresholds.
      ( Plain, domThresholdLogging, onDomThresholdLogging, bool ) );
};

/// Settings that are read once, at start.
class XCVR_API XgcInit : public Vel::Entity {
 public:
   explicit XgcInit( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XgcInit, Vel::Entity,
      // Error-disable the interface of a transceiver that overheats.
      ( Plain, errDisableOnXcvrOverheat, onErrDisableOnXcvrOverheat, bool ) );
};

/// The configuration of every slot.
class XCVR_API AllConfigDir : public Vel::Entity {
 public:
   explicit AllConfigDir( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( AllConfigDir, Vel::Entity,
      ( Pointers, xcvrConfig, onXcvrConfig, XcvrConfig ),
      // The transceiver that serves each interface.
      ( Values, intfToXcvrName, onIntfToXcvrName, Corenet::IntfId, Vel::String ),
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Plain, extPhysPresent, onExtPhysPresent, bool ),
      // The directory is complete.
      ( Plain, ready, onReady, bool ) );
};

/// The status of every slot.
class XCVR_API AllNewStatusDir : public Vel::Entity {
 public:
   explicit AllNewStatusDir( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( AllNewStatusDir, Vel::Entity,
      ( Pointers, xcvrStatus, onXcvrStatus, XcvrNewStatus const ),
      // The directory is complete.
      ( Plain, ready, onReady, bool ) );
};

/// The generation of one slice's set of statuses.
class XCVR_API XcvrSliceStatus : public Vel::Entity {
 public:
   explicit XcvrSliceStatus( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XcvrSliceStatus, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ) );
};

XCVR_API Vel::Ptr<Xgc> xgcFactory( Vel::Name name );
XCVR_API Vel::Ptr<XgcInit> xgcInitFactory( Vel::Name name );
XCVR_API Vel::Ptr<AllConfigDir> allConfigDirFactory( Vel::Name name );
XCVR_API Vel::Ptr<AllNewStatusDir> allNewStatusDirFactory( Vel::Name name );
XCVR_API Vel::Ptr<XcvrSliceStatus> xcvrSliceStatusFactory( Vel::Name name );

} // namespace Xcvr
