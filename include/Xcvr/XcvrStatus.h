#pragma once

#include <Keel/ConditionStat.h>
#include <Units/Decibels.h>
#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrMediaTypes.h>
#include <Xcvr/XcvrTypes.h>

// The status of one transceiver slot: what is the same for all module families.
namespace Xcvr {

/// Electrical path attenuation by module model.
class XCVR_API ModelToAttenuation : public Vel::Entity {
 public:
   explicit ModelToAttenuation( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( ModelToAttenuation, Vel::Entity,
      ( Values, attenuation, onAttenuation, Vel::String, Units::Decibels ) ); // dB
};

/// Flags of one lane, written by the agent.
class XCVR_API LaneStatus : public Vel::Entity {
 public:
   explicit LaneStatus( LaneId lane );
   VEL_ENTITY( LaneStatus, Vel::Entity,
      ( Constant, lane, LaneId ),
      ( Plain, txFaultPresent, onTxFaultPresent, bool ),
      ( Plain, localFaultPresent, onLocalFaultPresent, bool ),
      ( Plain, txLos, onTxLos, bool ),
      ( Plain, txCdrLol, onTxCdrLol, bool ),
      ( Plain, txAdaptiveInputEqFault, onTxAdaptiveInputEqFault, bool ),
      ( Plain, txPowerHiAlarm, onTxPowerHiAlarm, bool ),
      ( Plain, txPowerLoAlarm, onTxPowerLoAlarm, bool ),
      ( Plain, txPowerHiWarn, onTxPowerHiWarn, bool ),
      ( Plain, txPowerLoWarn, onTxPowerLoWarn, bool ),
      ( Plain, txBiasHiAlarm, onTxBiasHiAlarm, bool ),
      ( Plain, txBiasLoAlarm, onTxBiasLoAlarm, bool ),
      ( Plain, txBiasHiWarn, onTxBiasHiWarn, bool ),
      ( Plain, txBiasLoWarn, onTxBiasLoWarn, bool ),
      ( Plain, rxCdrLol, onRxCdrLol, bool ),
      ( Plain, rxPowerHiAlarm, onRxPowerHiAlarm, bool ),
      ( Plain, rxPowerLoAlarm, onRxPowerLoAlarm, bool ),
      ( Plain, rxPowerHiWarn, onRxPowerHiWarn, bool ),
      ( Plain, rxPowerLoWarn, onRxPowerLoWarn, bool ) );
};

/// Statistics of a module's own alarms and warnings.
class XCVR_API XcvrEventStatsEnt : public Vel::Entity {
 public:
   explicit XcvrEventStatsEnt( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( XcvrEventStatsEnt, Vel::Entity,
      ( Plain, voltageHiAlarm, onVoltageHiAlarm, Keel::ConditionStat ),
      ( Plain, voltageLoAlarm, onVoltageLoAlarm, Keel::ConditionStat ),
      ( Plain, voltageHiWarn, onVoltageHiWarn, Keel::ConditionStat ),
      ( Plain, voltageLoWarn, onVoltageLoWarn, Keel::ConditionStat ),
      ( Plain, tempHiAlarm, onTempHiAlarm, Keel::ConditionStat ),
      ( Plain, tempLoAlarm, onTempLoAlarm, Keel::ConditionStat ),
      ( Plain, tempHiWarn, onTempHiWarn, Keel::ConditionStat ),
      ( Plain, tempLoWarn, onTempLoWarn, Keel::ConditionStat ) );
};

/// The status of one slot. A hardware agent owns it, of its module family's subtype, and writes
/// what it reads from the module; a reader asks for typed values, which are computed at the call.
///
/// A value that a family does not supply is neutral: 0, false, empty, or minus infinity for a
/// measurement; the base then traces the operation's name (source `Xcvr`, level 8). Written only by
/// the agent that owns the slot.
class XCVR_API XcvrNewStatus : public Vel::Entity {
 public:
   /// Whether the slot's module can be pulled.
   VEL_MEMBER_ENUM( XcvrSwappability,
      fixed, hotSwappable );
   using enum XcvrSwappability;

   XcvrNewStatus( Vel::Name name, XcvrType xcvrType )
      : Vel::Entity( std::move( name ) ), xcvrType_( xcvrType ) {}
   VEL_ENTITY( XcvrNewStatus, Vel::Entity,
      ( Constant, xcvrType, XcvrType ),
      // Media type that configuration forces; xcvrUnknown for none.
      ( Plain, overrideMediaType, onOverrideMediaType, MediaType ),
      ( Reference, attnTable, onAttnTable, ModelToAttenuation const ),
      ( Plain, swappability, onSwappability, XcvrSwappability ),
      ( Plain, presence, onPresence, XcvrPresence ),
      // Insertions and removals.
      ( Counter, presenceChanges, onPresenceChanges, uint32_t ),
      ( Plain, lastPresenceChange, onLastPresenceChange, Vel::Seconds ),
      // The slot has come through a warm start.
      ( Plain, warm, onWarm, bool ),
      // The identification memory has been read and is usable.
      ( Plain, idEepromValid, onIdEepromValid, bool ),
      ( Counter, generationId, onGenerationId, uint32_t ),
      // Which counters of xcvrStats the hardware supports.
      ( Plain, resetCountValid, onResetCountValid, bool ),
      ( Plain, interruptCountValid, onInterruptCountValid, bool ),
      ( Plain, smbusFailCountValid, onSmbusFailCountValid, bool ),
      ( Plain, eventStatsValid, onEventStatsValid, bool ),
      ( Plain, xcvrStats, onXcvrStats, XcvrEventStats ),
      ( Child, xcvrStatsEnt, onXcvrStatsEnt, XcvrEventStatsEnt ),
      ( Values, laneStats, onLaneStats, uint8_t, LaneEventStats ),
      ( Children, laneStatus, onLaneStatus, LaneId, LaneStatus ),
      ( Derived, capabilities, Capabilities ),
      ( Derived, vendorInfo, VendorInfo ),
      ( Plain, xcvrState, onXcvrState, XcvrState ),
      ( Counter, xcvrStateChanges, onXcvrStateChanges, uint32_t ),
      // Which DOM data the managing agent provides, and when it last read them.
      ( Plain, xcvrMgrCapabilities, onXcvrMgrCapabilities, XcvrManagerCapabilities ),
      ( Plain, lastDomUpdateTime, onLastDomUpdateTime, Vel::Seconds ),
      ( Plain, lastEnhancedDomUpdateTime, onLastEnhancedDomUpdateTime, Vel::Seconds ),
      ( Plain, lastDomThresholdsUpdateTime, onLastDomThresholdsUpdateTime, Vel::Seconds ),
      ( Plain, lastEnhancedDomThresholdsUpdateTime, onLastEnhancedDomThresholdsUpdateTime, Vel::Seconds ),
      ( Plain, lastEnhancedDomPMPeriodUpdateTime, onLastEnhancedDomPMPeriodUpdateTime, Vel::Seconds ),
      // The thresholds in use come from configuration.
      ( Plain, domThresholdOverridden, onDomThresholdOverridden, bool ),
      ( Plain, enhancedDomValuesAvailable, onEnhancedDomValuesAvailable, bool ),
      // Where each enhanced monitor lives in the module's memory, by `enhancedDomIndex`.
      ( Values, enhancedDomMapping, onEnhancedDomMapping, uint32_t, uint16_t ),
      // Checksum result by identification page.
      ( Values, idEepromChecksumValid, onIdEepromChecksumValid, uint8_t, bool ),
      ( Plain, xcvrTuningParamCapabilities, onXcvrTuningParamCapabilities, TuningParamCapabilities ),
      // Wavelength tuning in force: ITU channel, grid spacing and frequency in MHz.
      ( Plain, channel, onChannel, uint32_t ),
      ( Plain, grid, onGrid, uint32_t ),
      ( Plain, frequency, onFrequency, uint32_t ),
      // Wavelength tuning as requested of the module, and as it came out.
      ( Plain, ituTuningConfig, onItuTuningConfig, ItuTuningConfig ),
      ( Plain, resolvedTuningStatus, onResolvedTuningStatus, ResolvedTuningStatus ),
      ( Plain, idEepromDumpTimestamp, onIdEepromDumpTimestamp, Vel::Seconds ),
      ( Plain, xcvrOverheating, onXcvrOverheating, bool ),
      // The module reports a transmit power other than zero.
      ( Plain, domNonzeroTxPower, onDomNonzeroTxPower, bool ),
      // Slot wiring and adapter state.
      ( Plain, swizzled, onSwizzled, bool ),
      ( Plain, qsa28, onQsa28, bool ),
      ( Plain, adapterPresent, onAdapterPresent, bool ),
      ( Plain, inAdapter, onInAdapter, bool ),
      // The module does not answer on the management bus.
      ( Plain, unresponsiveToSmbus, onUnresponsiveToSmbus, bool ),
      // Generation of the slot's field-replaceable-unit record.
      ( Plain, fruGenerationId, onFruGenerationId, uint32_t ) );

   // What a module family supplies. The order of these is the order of their virtual slots.

   [[nodiscard]] virtual Capabilities capabilities() const;
   /// Texts as the module has them, with their padding.
   [[nodiscard]] virtual VendorInfo vendorInfo() const;
   /// Nominal signalling rate in the unit of the family's memory.
   [[nodiscard]] virtual uint8_t bitrate() const;
   /// The media type in effect, and the one that the module itself says.
   [[nodiscard]] virtual MediaType mediaType() const;
   [[nodiscard]] virtual MediaType detectedMediaType() const;
   [[nodiscard]] virtual ElectricalInterface electricalInterface() const;
   /// pm.
   [[nodiscard]] virtual uint32_t laserWavelength() const;
   [[nodiscard]] virtual LaserWavelengthPrecision laserWavelengthPrecision() const;
   [[nodiscard]] virtual bool optical() const;
   /// Agents should not poll the module.
   [[nodiscard]] virtual bool disablePolling() const;
   /// Whether `domInfo` of a lane holds readings of the module that is in the slot now.
   [[nodiscard]] virtual bool domInfoValid( LaneId lane ) const;
   [[nodiscard]] virtual DomInfo domInfo( LaneId lane ) const;
   [[nodiscard]] virtual DomAggPower domAggPower() const;
   [[nodiscard]] virtual bool domThresholdValid() const;
   [[nodiscard]] virtual DomThreshold domThreshold() const;
   [[nodiscard]] virtual DomCapabilities domCapabilities() const;
   // Enhanced monitors, by `enhancedDomIndex`.
   [[nodiscard]] virtual bool enhancedDomValuesValid( uint32_t index ) const;
   [[nodiscard]] virtual double enhancedDomValue( uint32_t index ) const;
   [[nodiscard]] virtual bool enhancedDomThresholdValid( uint32_t index ) const;
   [[nodiscard]] virtual EnhancedDomThreshold enhancedDomThreshold( uint32_t index ) const;
   [[nodiscard]] virtual EnhancedDomCapabilities enhancedDomCapabilities() const;
   [[nodiscard]] virtual EnhancedDomSensorCategory enhancedDomSensorCategory() const;
   [[nodiscard]] virtual EepromDescriptor idEepromInfo() const;
   [[nodiscard]] virtual PowerClass powerClass() const;
   /// Stores a page of identification memory.
   virtual void idEepromContentsIs( uint8_t page, Vel::String const & contents );
   /// Records when the stored memory was last known to be good.
   virtual void updateLastValidTime( Vel::Seconds time );
   [[nodiscard]] virtual TuningValue rxOutputAmplitude( LaneId lane ) const;
   [[nodiscard]] virtual TuningValue rxOutputPreEmphasis( LaneId lane ) const;
   [[nodiscard]] virtual TuningValue txInputEqualization( LaneId lane ) const;
   /// dB.
   [[nodiscard]] virtual Units::Decibels electricalPathAttenuation() const;
   /// The channel that the module's registers are tuned to.
   [[nodiscard]] virtual uint16_t hwChannel() const;
   [[nodiscard]] virtual TuningCapabilities tuningCapabilities() const;
   [[nodiscard]] virtual bool narrowBand() const;
   /// Throws Vel::NoImplementationException unless the family supplies it.
   [[nodiscard]] virtual bool isSupportedMediaType( MediaType mediaType ) const;
   virtual void capabilitiesIs( Capabilities const & capabilities );
   virtual void vendorInfoIs( VendorInfo const & vendorInfo );

   // What follows for every family.

   /// The display texts of the media type in effect, and of the one that the module itself says.
   [[nodiscard]] Vel::String mediaTypeString() const;
   [[nodiscard]] Vel::String detectedMediaTypeString() const;
   /// The display text of a media type in this slot; the DWDM kinds of fixed wavelength carry the
   /// module's. "Unknown" for a code that is no media type.
   [[nodiscard]] Vel::String getMediaTypeString( MediaType mediaType ) const;
   /// Bit rate of the media type in effect, kbit/s. A code that is no media type is fatal.
   [[nodiscard]] uint32_t bitrateKbps() const;
   /// The grid spacing in MHz on which the frequency of `channel` on `grid` (MHz) lies in this
   /// module; 0 for none.
   [[nodiscard]] uint32_t effectiveGridSpacing( uint32_t channel, uint32_t grid ) const;
   /// Resolves a tuning configuration, which may be null, against the module's capabilities, and
   /// writes `ituTuningConfig`. What cannot be resolved becomes channel 39 on 50 GHz with the laser
   /// off.
   void updateItuTuningConfig( TuningConfig const * tuningConfig );
   void updateItuTuningConfig( Vel::Ptr<TuningConfig const> const & tuningConfig ) {
      updateItuTuningConfig( tuningConfig.get() );
   }
};

XCVR_API Vel::Ptr<ModelToAttenuation> modelToAttenuationFactory( Vel::Name name );
XCVR_API Vel::Ptr<XcvrEventStatsEnt> xcvrEventStatsEntFactory( Vel::Name name );

} // namespace Xcvr
