#pragma once

#include <Vel/Entity.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrConfig.h>
#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrOsfpContents.h>
#include <Xcvr/XcvrOsfpControlSet.h>
#include <Xcvr/XcvrOsfpParser.h>
#include <Xcvr/XcvrStatus.h>

#include <cstdint>

// The status and configuration of a slot for CMIS modules: OSFP and QSFP-DD.
namespace Xcvr {

/// What a module's lanes are to be set to. A lane without an entry is left as the module has it.
class XCVR_API OsfpParamConfig : public Vel::Entity {
 public:
   explicit OsfpParamConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( OsfpParamConfig, Vel::Entity,
      // Select code of the application, 0 for none.
      ( Values, applicationCode, onApplicationCode, LaneId, uint8_t ),
      ( Values, tuningParam, onTuningParam, LaneId, OsfpTuningParamValue ) );
};

/// Configuration of a slot.
class XCVR_API CmisConfig : public XcvrConfig {
 public:
   using XcvrConfig::XcvrConfig;
   VEL_ENTITY( CmisConfig, XcvrConfig,
      // There once something is configured.
      ( Child, paramConfig, onParamConfig, OsfpParamConfig ) );
};

/// The configurations of a cell's slots.
class XCVR_API OsfpCellConfig : public Vel::Entity {
 public:
   explicit OsfpCellConfig( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( OsfpCellConfig, Vel::Entity,
      ( Plain, generationId, onGenerationId, uint32_t ),
      ( Children, xcvrConfig, onXcvrConfig, Vel::Name, CmisConfig ) );
};

/// Status of a slot for CMIS modules. The agent writes the pages into the raw contents and has them
/// parsed; what the status says is derived at the call from the decoded contents or, where the parser
/// has nothing of it, from the pages. Nothing fails: monitors that are not valid are minus infinity.
class XCVR_API CmisStatus : public XcvrNewStatus {
 public:
   CmisStatus( Vel::Name name, XcvrType xcvrType );
   VEL_ENTITY( CmisStatus, XcvrNewStatus,
      // Both are there from the beginning; the decoded contents are replaced when the module goes.
      ( Child, rawEepromContents, onRawEepromContents, OsfpRawEepromContents ),
      ( Child, decodedEepromContents, onDecodedEepromContents, OsfpDecodedEepromContents ),
      ( Reference, xcvrConfig, onXcvrConfig, CmisConfig ),
      ( Reference, xgc, onXgc, Xgc ) );

   /// Over the contents; it holds the shadow of the module's control bytes too. Another one after
   /// `clearIdEepromContents`.
   [[nodiscard]] Vel::Ptr<OsfpEepromParser> const & eepromParser() const { return parser_; }
   /// Parses all pages that are there, in the order that they need. Monitors take the lower page and page
   /// 11h; of a module with flat memory only the lower page and page 00h are looked at.
   void parseEeprom();
   /// Forgets the module: empties the raw contents, and puts new decoded contents in place of the old.
   void clearIdEepromContents();

   /// Eight; on the line side the media lanes of the first application.
   [[nodiscard]] Capabilities capabilities() const override;
   /// Texts with their padding.
   [[nodiscard]] VendorInfo vendorInfo() const override;
   [[nodiscard]] MediaType mediaType() const override;
   [[nodiscard]] MediaType detectedMediaType() const override;
   /// 0 but for an optical module that states one.
   [[nodiscard]] uint32_t laserWavelength() const override;
   [[nodiscard]] LaserWavelengthPrecision laserWavelengthPrecision() const override;
   /// Nothing changes in a module with flat memory.
   [[nodiscard]] bool disablePolling() const override;
   /// The module is there, has monitors, and they were read after it came.
   [[nodiscard]] bool domInfoValid( LaneId lane ) const override;
   /// Minus infinity also for a monitor that the module does not advertise.
   [[nodiscard]] DomInfo domInfo( LaneId lane ) const override;
   /// Of all lanes whose monitors are valid.
   [[nodiscard]] DomAggPower domAggPower() const override;
   [[nodiscard]] bool domThresholdValid() const override;
   /// The thresholds in the module's memory, valid or not; minus infinity before they were read.
   [[nodiscard]] DomThreshold domThreshold() const override;
   [[nodiscard]] DomCapabilities domCapabilities() const override;
   /// Page 0, of 256 bytes, is the lower page with page 00h; the others, of 128 bytes, have their own
   /// numbers.
   [[nodiscard]] EepromDescriptor idEepromInfo() const override;
   /// Unknown also for class 8, which the enumeration lacks.
   [[nodiscard]] PowerClass powerClass() const override;
   /// Stores a page numbered as in `idEepromInfo`; of a banked page that of bank 0. Parses nothing.
   void idEepromContentsIs( uint8_t page, Vel::String const & contents ) override;
   void updateLastValidTime( Vel::Seconds time ) override;
   /// The code in force; the module's default unless the lane has explicit tuning control. Not valid
   /// before page 11h was parsed.
   [[nodiscard]] TuningValue rxOutputAmplitude( LaneId lane ) const override;
   [[nodiscard]] TuningValue rxOutputPreEmphasis( LaneId lane ) const override;
   [[nodiscard]] TuningValue txInputEqualization( LaneId lane ) const override;
   /// Of a passive copper cable, from `attnTable` by "vendor name-part number" (with their padding),
   /// else what the cable states at 12.9 GHz, the Nyquist frequency of its lanes; 0 for all else.
   [[nodiscard]] Units::Decibels electricalPathAttenuation() const override;

   /// As read last; unknown before.
   [[nodiscard]] OsfpModuleState moduleState() const;
   [[nodiscard]] OsfpDataPathState dataPathState( LaneId lane ) const;

 private:
   [[nodiscard]] OsfpRawEepromContents const & raw() const;
   [[nodiscard]] OsfpDecodedEepromContents const & decoded() const;
   [[nodiscard]] TuningValue
   tuningValue( LaneId lane, OsfpDecodedEepromContents::LaneCodes const & codes ) const;

   Vel::Ptr<OsfpEepromParser> parser_;
};

/// Status of an OSFP slot.
class XCVR_API OsfpStatus : public CmisStatus {
 public:
   explicit OsfpStatus( Vel::Name name ) : CmisStatus( std::move( name ), XcvrType::osfp ) {}
   VEL_ENTITY( OsfpStatus, CmisStatus );
};

/// Status of a QSFP-DD slot.
class XCVR_API QsfpDdStatus : public CmisStatus {
 public:
   explicit QsfpDdStatus( Vel::Name name ) : CmisStatus( std::move( name ), XcvrType::qsfpDd ) {}
   VEL_ENTITY( QsfpDdStatus, CmisStatus );
};

XCVR_API Vel::Ptr<OsfpParamConfig> osfpParamConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<CmisConfig> cmisConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<OsfpCellConfig> osfpCellConfigFactory( Vel::Name name );
XCVR_API Vel::Ptr<OsfpStatus> osfpStatusFactory( Vel::Name name );
XCVR_API Vel::Ptr<QsfpDdStatus> qsfpDdStatusFactory( Vel::Name name );

} // namespace Xcvr
