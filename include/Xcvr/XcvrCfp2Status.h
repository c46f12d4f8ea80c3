#pragma once

#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrCfp2Contents.h>
#include <Xcvr/XcvrCfpxTypes.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrStatus.h>

#include <cstdint>

// The status and configuration of a CFP2 slot, which takes CFP2, CFPx and CFP2-DCO modules.
namespace Xcvr {

/// Diagnostic settings of a CFP2 slot: register tables that replace the module's own in all that the
/// status says, to see how the system takes a module that is not at hand.
class XCVR_API Cfp2DiagConfig : public Vel::Entity {
 public:
   explicit Cfp2DiagConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( Cfp2DiagConfig, Vel::Entity,
      ( Child, overrideIdEepromContents, onOverrideIdEepromContents, CfpMsaMisIdEepromContents ),
      // The override takes effect only while this holds `diagActivationKey`.
      ( Plain, overrideIdEepromContentsActivationKey, onOverrideIdEepromContentsActivationKey, uint32_t ) );
};

/// Configuration of a CFP2 slot.
class XCVR_API Cfp2Config : public XcvrConfig {
 public:
   using XcvrConfig::XcvrConfig;
   VEL_ENTITY( Cfp2Config, XcvrConfig,
      // One at most is expected; of several the first active one in name order counts.
      ( OrderedChildren, diagConfig, onDiagConfig, Vel::Name, Cfp2DiagConfig ) );
};

/// The configurations of a cell's CFP2 slots.
class XCVR_API Cfp2CellConfig : public Vel::Entity {
 public:
   explicit Cfp2CellConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( Cfp2CellConfig, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Children, xcvrConfig, onXcvrConfig, Vel::Name, Cfp2Config ) );
};

/// Status of a CFP2 slot: everything is decoded from the register tables at the call.
///
/// A lane is a network lane. Nothing fails: monitors that are not valid, that the module does not have
/// or whose registers were not read are minus infinity.
class XCVR_API Cfp2NewStatus : public XcvrNewStatus {
 public:
   explicit Cfp2NewStatus( Vel::Name name ) : XcvrNewStatus( std::move( name ), XcvrType::cfp2 ) {}
   VEL_ENTITY( Cfp2NewStatus, XcvrNewStatus,
      // Tables as last read from the module; none before the agent makes it.
      ( Child, actualIdEepromContents, onActualIdEepromContents, CfpMsaMisIdEepromContents ),
      // When the tables were last known to be valid.
      ( Plain, lastValidData, onLastValidData, Vel::Seconds ),
      // Tuning to be written to the module.
      ( Plain, cfpxTuneConfig, onCfpxTuneConfig, CfpxTuneConfig ),
      ( Reference, xcvrConfig, onXcvrConfig, Cfp2Config ),
      ( Reference, xgc, onXgc, Xgc ),
      // The driver has filled the tables.
      ( Plain, ready, onReady, bool ) );

   /// The tables that all below rests on: those of an active diagnostic override, else what was read
   /// from the module; empty ones where there are none. Valid until the next write to either.
   [[nodiscard]] CfpMsaMisIdEepromContents const & cfpMsaMisIdEepromContents() const;

   /// The host lanes are the channels; the network lanes of a coherent module its line side. A coherent
   /// module can be tuned, and its transmit power set.
   [[nodiscard]] Capabilities capabilities() const override;
   /// Texts with their padding.
   [[nodiscard]] VendorInfo vendorInfo() const override;
   /// Of one network lane, in 0.2 Gb/s; 0 of a CFPx.
   [[nodiscard]] uint8_t bitrate() const override;
   [[nodiscard]] MediaType mediaType() const override;
   [[nodiscard]] MediaType detectedMediaType() const override;
   [[nodiscard]] uint32_t laserWavelength() const override;
   [[nodiscard]] LaserWavelengthPrecision laserWavelengthPrecision() const override;
   /// The module is there and has that lane, and its monitors were read after it came.
   [[nodiscard]] bool domInfoValid( LaneId lane ) const override;
   [[nodiscard]] DomInfo domInfo( LaneId lane ) const override;
   /// The sum of the lanes.
   [[nodiscard]] DomAggPower domAggPower() const override;
   /// The module is there, and all of its thresholds were read.
   [[nodiscard]] bool domThresholdValid() const override;
   /// The thresholds in the module's memory, valid or not; minus infinity each whose register was not
   /// read.
   [[nodiscard]] DomThreshold domThreshold() const override;
   [[nodiscard]] DomCapabilities domCapabilities() const override;
   /// The tables that were read, by their ids. The size of one beyond 64 KiB is given as 65535.
   [[nodiscard]] EepromDescriptor idEepromInfo() const override;
   /// Bits 7-6 of the extended identifier as classes 1 to 4, a place that no public document confirms.
   [[nodiscard]] PowerClass powerClass() const override;
   /// `page` is the id of a table, which is made with its standard address and width when it is not
   /// there; one that is no table is traced and changes nothing.
   void idEepromContentsIs( uint8_t page, Vel::String const & contents ) override;
   void updateLastValidTime( Vel::Seconds time ) override;
   /// Valid where the register was read.
   [[nodiscard]] TuningValue rxOutputPreEmphasis( LaneId lane ) const override;
   [[nodiscard]] TuningValue txInputEqualization( LaneId lane ) const override;
   /// 0: the family has no copper cables.
   [[nodiscard]] Units::Decibels electricalPathAttenuation() const override;
   [[nodiscard]] uint16_t hwChannel() const override;
   /// Channels count from the base of the C band, as in every family; the module's own count from
   /// its first frequency.
   [[nodiscard]] TuningCapabilities tuningCapabilities() const override;
   /// Whether a module of this family can be of that type.
   [[nodiscard]] bool isSupportedMediaType( MediaType mediaType ) const override;

   /// As `SfpNewStatus` has them.
   [[nodiscard]] Vel::Ptr<DomThresholdOverride const> domThresholdOverride() const;
   [[nodiscard]] DomThreshold domThresholdInForce() const;
   /// The tuning in the module's registers. The codes of grids and the units of offset and power are
   /// the usual ones, which no public document confirms.
   [[nodiscard]] CfpxTuneStatus cfpxTuneStatus() const;
   /// The module's network lanes. A count of 0 in its register means 16.
   [[nodiscard]] uint8_t networkLanes() const;

   /// Empties the tables, of which nothing is known any more.
   void clearIdEepromContents();
   /// Writes the transmit faults of the lanes into `laneStatus`, all of which it creates.
   void updateLaneStatus();
   /// Puts `ituTuningConfig` and the transmit power that `xgc` has under the slot's name into the terms
   /// of the module's registers, in `cfpxTuneConfig`.
   void updateCfpxTuneConfig();
   /// Resolves the tuning that `xgc` has under the slot's name, updates `ituTuningConfig`,
   /// `cfpxTuneConfig` and `resolvedTuningStatus`, and says whether the module is tuned otherwise. A
   /// module that cannot be tuned is never pending, and nothing is updated.
   [[nodiscard]] bool isFreqTuningPending();
   /// Whether the module's transmit power is set otherwise than `cfpxTuneConfig` has it.
   [[nodiscard]] bool isPowerTuningPending() const;
};

/// The line of a CFP2-DCO: every register raw and, of the quantities that CMIS has too, the value in the
/// unit that it has there. No public document says that these registers use the same.
class XCVR_API Cfp2DcoMonitors {
   VEL_VALUE( Cfp2DcoMonitors,
      ( updateTime, Vel::Seconds ),                  // when the registers were read
      ( osnr, double ),                              // dB
      ( snr, double ),                               // dB
      ( carrierFreqOffset, double ),                 // MHz
      ( rxChannelPower, double ),                    // dBm
      ( rawOsnr, uint16_t ),
      ( rawSnr, uint16_t ),
      ( rawCarrierFreqOffset, uint16_t ),
      ( rawRxChannelPower, uint16_t ),
      ( rawChromDispersion, uint32_t ),
      ( rawDiffGroupDelay, uint16_t ),
      ( rawStateOfPolarization, uint16_t ),
      ( rawQFactor, uint16_t ),
      ( rawBer, uint32_t ),
      ( rawFecUncBlkCount, uint32_t ),
      ( rawLaserAge, uint16_t ),
      ( rawLaserFaultCode, uint16_t ),
      ( rawTxTurnUpState, uint16_t ),
      ( rawRxTurnUpState, uint16_t ) );
};

/// Status of a CFP2 slot with a CFP2-DCO module: the same, and the module's line.
class XCVR_API Cfp2DcoNewStatus : public Cfp2NewStatus {
 public:
   using Cfp2NewStatus::Cfp2NewStatus;
   VEL_ENTITY( Cfp2DcoNewStatus, Cfp2NewStatus,
      ( Derived, dcoMonitors, Cfp2DcoMonitors ) );

   /// The line's registers in the tables that the status rests on at this moment.
   [[nodiscard]] Vel::Ptr<Cfp2DcoEepromContents const> cfp2DcoEepromContents() const;
   /// While monitors are not valid the values are minus infinity and the registers 0.
   [[nodiscard]] Cfp2DcoMonitors dcoMonitors() const;
};

XCVR_API Vel::Ptr<Cfp2DiagConfig> cfp2DiagConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<Cfp2Config> cfp2ConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<Cfp2CellConfig> cfp2CellConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<Cfp2NewStatus> cfp2NewStatusFactory( Vel::Name name );
XCVR_API Vel::Ptr<Cfp2DcoNewStatus> cfp2DcoNewStatusFactory( Vel::Name name );

} // namespace Xcvr
