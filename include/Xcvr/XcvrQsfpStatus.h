#pragma once

#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrQsfpContents.h>
#include <Xcvr/XcvrStatus.h>

#include <cstdint>

// The status and configuration of a QSFP slot.
namespace Xcvr {

/// The module's own flags of one lane (lower page bytes 3-5 and 9-14). A flag stays until it is
/// read.
class XCVR_API QsfpLaneFlags {
   VEL_VALUE( QsfpLaneFlags,
      ( rxLos, bool ),
      ( txLos, bool ),
      ( txFault, bool ),
      ( txAdaptiveInputEqFault, bool ),
      ( rxCdrLol, bool ),
      ( txCdrLol, bool ),
      ( txBiasHighAlarm, bool ),
      ( txBiasLowAlarm, bool ),
      ( txBiasHighWarn, bool ),
      ( txBiasLowWarn, bool ),
      ( txPowerHighAlarm, bool ),
      ( txPowerLowAlarm, bool ),
      ( txPowerHighWarn, bool ),
      ( txPowerLowWarn, bool ),
      ( rxPowerHighAlarm, bool ),
      ( rxPowerLowAlarm, bool ),
      ( rxPowerHighWarn, bool ),
      ( rxPowerLowWarn, bool ) );
};

/// The module's own flags of itself, and its state (lower page bytes 2, 6 and 7).
class XCVR_API QsfpModuleFlags {
   VEL_VALUE( QsfpModuleFlags,
      ( tempHighAlarm, bool ),
      ( tempLowAlarm, bool ),
      ( tempHighWarn, bool ),
      ( tempLowWarn, bool ),
      ( voltageHighAlarm, bool ),
      ( voltageLowAlarm, bool ),
      ( voltageHighWarn, bool ),
      ( voltageLowWarn, bool ),
      ( initializationComplete, bool ),
      ( tcReadinessChanged, bool ),       // of the laser temperature control
      ( interrupt, bool ),                // the module asks for attention
      ( dataNotReady, bool ) ); // the monitors hold no readings yet
};

/// What the host has set of one lane (lower page bytes 86-88 and 98, page 03h bytes 240-241).
class XCVR_API QsfpLaneControls {
   VEL_VALUE( QsfpLaneControls,
      ( txDisable, bool ),
      // 0 to 3; what that means says extendedRateSelectCompliance.
      ( rxRateSelect, uint8_t ),
      ( txRateSelect, uint8_t ),
      ( rxCdr, bool ),                    // clock and data recovery is on
      ( txCdr, bool ),
      ( rxSquelchDisable, bool ),
      ( txSquelchDisable, bool ),
      ( rxOutputDisable, bool ),
      ( txAdaptiveInputEq, bool ) );
};

/// What the host has set of the module (lower page bytes 93 and 99).
class XCVR_API QsfpModuleControls {
   VEL_VALUE( QsfpModuleControls,
      ( powerOverride, bool ),            // software sets the power mode, not the pin
      ( lowPower, bool ),                 // the mode that it sets
      ( highPowerClass5To7, bool ),       // power classes 5 to 7 may be used
      ( highPowerClass8, bool ),
      ( lpModePinIsTxDisable, bool ),
      ( interruptPinIsRxLos, bool ) );
};

/// Diagnostic settings of a QSFP slot: memory contents that replace the module's own in all that
/// the status says, to see how the system takes a module that is not at hand.
class XCVR_API QsfpDiagConfig : public Vel::Entity {
 public:
   explicit QsfpDiagConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( QsfpDiagConfig, Vel::Entity,
      ( Plain, overrideIdEepromContents, onOverrideIdEepromContents, Sff8436IdEepromContents ),
      // The override takes effect only while this holds `diagActivationKey`.
      ( Plain, overrideIdEepromContentsActivationKey, onOverrideIdEepromContentsActivationKey, uint32_t ) );
};

/// Configuration of a QSFP slot.
class XCVR_API QsfpConfig : public XcvrConfig {
 public:
   using XcvrConfig::XcvrConfig;
   VEL_ENTITY( QsfpConfig, XcvrConfig,
      // One at most is expected; of several the first active one in name order counts.
      ( OrderedChildren, diagConfig, onDiagConfig, Vel::Name, QsfpDiagConfig ) );
};

/// The configurations of a cell's QSFP slots.
class XCVR_API QsfpCellConfig : public Vel::Entity {
 public:
   explicit QsfpCellConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( QsfpCellConfig, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Children, xcvrConfig, onXcvrConfig, Vel::Name, QsfpConfig ) );
};

/// Status of a QSFP slot: everything is decoded from the memory contents at the call.
///
/// Lane 0 is the module's channel 1. Lanes from `lanes` on are neutral, as is what lies on a page
/// that the module does not have or that was not read. Nothing fails: monitors that are not valid
/// are minus infinity.
class XCVR_API QsfpNewStatus : public XcvrNewStatus {
 public:
   static constexpr uint8_t lanes = 4;

   explicit QsfpNewStatus( Vel::Name name )
      : XcvrNewStatus( std::move( name ), XcvrType::qsfpPlus ) {}
   VEL_ENTITY( QsfpNewStatus, XcvrNewStatus,
      // Contents as last read from the module.
      ( Plain, actualIdEepromContents, onActualIdEepromContents, Sff8436IdEepromContents ),
      ( Reference, xcvrConfig, onXcvrConfig, QsfpConfig ),
      ( Reference, xgc, onXgc, Xgc ),
      // The driver has filled the contents.
      ( Plain, ready, onReady, bool ) );

   /// The contents that all below rests on: those of an active diagnostic override, else what was
   /// read from the module. Valid until the next write to either.
   [[nodiscard]] Sff8436IdEepromContents const & sff8436IdEepromContents() const;

   /// Four channels. The standard has no registers to tune a wavelength with, so even a module
   /// whose transmitter is tunable is none that can be tuned here.
   [[nodiscard]] Capabilities capabilities() const override;
   [[nodiscard]] VendorInfo vendorInfo() const override;
   /// In 100 MBd, cut, of one lane; 255 also for what is beyond, of which
   /// `Sff8436IdEepromContents::bitrateExtended` has the rate.
   [[nodiscard]] uint8_t bitrate() const override;
   [[nodiscard]] MediaType mediaType() const override;
   /// What the contents say. Of a QSFP or QSFP+ that no rule knows, `xgc` may have it that the
   /// compliance bit of extended codes, without such a code, means 40GBASE-PSM4.
   [[nodiscard]] MediaType detectedMediaType() const override;
   /// 0 of a copper cable, which keeps its attenuation in the bytes of the wavelength.
   [[nodiscard]] uint32_t laserWavelength() const override;
   [[nodiscard]] LaserWavelengthPrecision laserWavelengthPrecision() const override;
   /// The module is there, has monitors, and they were read, all of them, after it came.
   [[nodiscard]] bool domInfoValid( LaneId lane ) const override;
   /// Tx power only of a module that monitors it. Whether the received power is an average says
   /// `Sff8436IdEepromContents::rxPowerIsAverage`.
   [[nodiscard]] DomInfo domInfo( LaneId lane ) const override;
   /// The sum of the four lanes.
   [[nodiscard]] DomAggPower domAggPower() const override;
   [[nodiscard]] bool domThresholdValid() const override;
   /// The thresholds in the module's memory, valid or not; those of Tx power only of a module that
   /// monitors it. Minus infinity, all of them, of a page that ends before the last one.
   [[nodiscard]] DomThreshold domThreshold() const override;
   [[nodiscard]] DomCapabilities domCapabilities() const override;
   [[nodiscard]] bool enhancedDomValuesValid( uint32_t index ) const override;
   /// In dB (snr, pam4Transitions), ps/nm (residualIsi), mA (tecCurrent), MHz (laserFreqErr) and °C
   /// (laserTempErr); the error ratios are numbers.
   [[nodiscard]] double enhancedDomValue( uint32_t index ) const override;
   [[nodiscard]] bool enhancedDomThresholdValid( uint32_t index ) const override;
   [[nodiscard]] EnhancedDomThreshold enhancedDomThreshold( uint32_t index ) const override;
   [[nodiscard]] EnhancedDomCapabilities enhancedDomCapabilities() const override;
   [[nodiscard]] EnhancedDomSensorCategory enhancedDomSensorCategory() const override;
   /// The pages that the module has, of 128 bytes, by the codes of `Sff8436PageId`.
   [[nodiscard]] EepromDescriptor idEepromInfo() const override;
   [[nodiscard]] PowerClass powerClass() const override;
   /// `page` is a code of `Sff8436PageId`; one that is no page is traced and changes nothing.
   void idEepromContentsIs( uint8_t page, Vel::String const & contents ) override;
   void updateLastValidTime( Vel::Seconds time ) override;
   /// The codes in page 03h: of amplitude as the standard numbers them, else dB. Valid where the
   /// module supports the parameter; the equalization not while the module adapts it by itself.
   [[nodiscard]] TuningValue rxOutputAmplitude( LaneId lane ) const override;
   [[nodiscard]] TuningValue rxOutputPreEmphasis( LaneId lane ) const override;
   [[nodiscard]] TuningValue txInputEqualization( LaneId lane ) const override;
   /// Of a passive copper cable, from `attnTable` by "vendor name-part number" (with their
   /// padding), else what the cable says of 5 GHz (40G) or 12.9 GHz (100G); minus infinity when it
   /// says nothing or is no copper cable but for an override of its type. 0 for all else.
   [[nodiscard]] Units::Decibels electricalPathAttenuation() const override;
   /// Whether a module of this family can be of that type.
   [[nodiscard]] bool isSupportedMediaType( MediaType mediaType ) const override;

   /// All false while `domInfoValid` is false; those of Tx power also of a module that does not
   /// monitor it.
   [[nodiscard]] QsfpLaneFlags laneFlags( LaneId lane ) const;
   [[nodiscard]] QsfpModuleFlags moduleFlags() const;
   /// All false, or 0, unless the module is there and its lower page was read after it came. A
   /// module without monitors has controls all the same.
   [[nodiscard]] QsfpLaneControls laneControls( LaneId lane ) const;
   [[nodiscard]] QsfpModuleControls moduleControls() const;
   /// Which of the parameters above the module accepts.
   [[nodiscard]] TuningParamCapabilities tuningParamCapabilities() const;
   /// As `SfpNewStatus` has them.
   [[nodiscard]] Vel::Ptr<DomThresholdOverride const> domThresholdOverride() const;
   [[nodiscard]] DomThreshold domThresholdInForce() const;

   /// Empties the contents, of which nothing is known any more.
   void clearIdEepromContents();
   /// Writes the lanes' flags into `laneStatus`, all of which it creates.
   void updateLaneStatus();
   /// Writes into `enhancedDomMapping` where the enhanced monitors are that the module has: the
   /// page number in the high byte, the module's byte in the low one (0x2098 is page 20h byte 152).
   void updateEnhancedDomMapping();
};

XCVR_API Vel::Ptr<QsfpDiagConfig> qsfpDiagConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<QsfpConfig> qsfpConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<QsfpCellConfig> qsfpCellConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<QsfpNewStatus> qsfpNewStatusFactory( Vel::Name name );

} // namespace Xcvr
