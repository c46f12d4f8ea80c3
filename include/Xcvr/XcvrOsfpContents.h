#pragma once

#include <Vel/DenseMap.h>
#include <Vel/Entity.h>
#include <Xcvr/HalCmis.h>
#include <Xcvr/HalOsfp.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrInterfaceCodes.h>
#include <Xcvr/XcvrTypes.h>

// What an OSFP or QSFP-DD module (CMIS) holds, as it was read and as it was decoded.
namespace Xcvr {

/// An application: a host interface and a media interface that a module connects.
class XCVR_API OsfpApplication {
   VEL_VALUE( OsfpApplication,
      // The descriptor: host interface, media interface, lane counts, host lane assignment options,
      // from the most significant byte down.
      ( value, uint32_t ),
      ( mediaLaneAssignment, uint8_t ) ); // a bit for each media lane at which it may start

 public:
   /// A host interface code that ends a list of applications.
   static constexpr uint8_t endOfList = 0xff;

   /// SFF-8024 codes.
   [[nodiscard]] uint8_t hostInterface() const { return byte( 3 ); }
   [[nodiscard]] uint8_t mediaInterface() const { return byte( 2 ); }
   /// 0: the interface code says it.
   [[nodiscard]] uint8_t hostLaneCount() const { return byte( 1 ) >> 4; }
   [[nodiscard]] uint8_t mediaLaneCount() const { return byte( 1 ) & 0xf; }
   /// A bit for each host lane at which the application may start.
   [[nodiscard]] uint8_t hostLaneAssignment() const { return byte( 0 ); }

   /// The names of the interfaces; a code that has none is its number.
   [[nodiscard]] Vel::String hostInterfaceName() const;
   [[nodiscard]] Vel::String mediaInterfaceName( OsfpModuleTypeEncoding type ) const;
   /// What a module of that type is whose first application this is: by the media interface, of a
   /// passive cable by the host interface. xcvrUnknown for a module type that the standard lacks.
   [[nodiscard]] MediaType mediaType( OsfpModuleTypeEncoding type ) const;

 private:
   [[nodiscard]] uint8_t byte( unsigned place ) const {
      return static_cast<uint8_t>( value() >> 8 * place );
   }
};

/// The pages as read from a module, written by the hardware agent.
class XCVR_API OsfpRawEepromContents : public Vel::Entity {
 public:
   explicit OsfpRawEepromContents( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( OsfpRawEepromContents, Vel::Entity,
      // 128 bytes a page. Of the lower page byte i is module byte i, of an upper page 128 + i. What a
      // page lacks, or a page that was never read, reads as 0.
      ( Values, memory, onMemory, OsfpBankAndPage, Vel::String ),
      // s, when the pages were last known to be valid.
      ( Plain, lastValidData, onLastValidData, double ) );

   // Of a row of the field table; of a banked page, that of bank 0. A module with flat memory has only
   // the lower page and page 00h, whatever was read from others.

   /// Whether it was read.
   [[nodiscard]] bool has( MemoryField const & field ) const;
   /// The number in a field of up to eight bytes, highest byte first; 0 when it was not read.
   [[nodiscard]] uint64_t number( MemoryField const & field ) const;
   /// Whether the bytes of a row are what the row says, in this module.
   [[nodiscard]] bool fieldInUse( MemoryField const & field ) const;
};

/// The control bytes of a module as last read, from which writers go on without reading them again.
class XCVR_API OsfpWriteEepromShadow : public Vel::PtrInterface {
 public:
   /// Bank-select and page-select bytes last written (lower page, bytes 126 and 127).
   [[nodiscard]] uint8_t bankSelect() const { return bankSelect_; }
   void bankSelectIs( uint8_t bank ) { bankSelect_ = bank; }
   [[nodiscard]] uint8_t pageSelect() const { return pageSelect_; }
   void pageSelectIs( uint8_t page ) { pageSelect_ = page; }
   /// Those two are known.
   [[nodiscard]] bool bAndPValid() const { return bAndPValid_; }
   void bAndPValidIs( bool valid ) { bAndPValid_ = valid; }
   /// A bit for each lane (page 10h, byte 130).
   [[nodiscard]] uint8_t laneTxDisable() const { return laneTxDisable_; }
   void laneTxDisableIs( uint8_t lanes ) { laneTxDisable_ = lanes; }
   /// The active control set (page 11h, bytes 206 to 234), as OsfpControlSet edits it; empty before it
   /// was read.
   [[nodiscard]] Vel::String const & activeControlSet() const { return activeControlSet_; }
   void activeControlSetIs( Vel::String const & image ) { activeControlSet_ = image; }

 private:
   uint8_t bankSelect_ = 0;
   uint8_t pageSelect_ = 0;
   bool bAndPValid_ = false;
   uint8_t laneTxDisable_ = 0;
   Vel::String activeControlSet_;
};

/// Place of a page in storages by page.
constexpr std::size_t velDensePlace( OsfpPage page ) {
   switch ( page ) {
   case OsfpPage::lowerPage00:
      return 0;
   case OsfpPage::upperPage00:
      return 1;
   case OsfpPage::upperPage01:
      return 2;
   case OsfpPage::upperPage02:
      return 3;
   case OsfpPage::upperPage03:
      return 4;
   case OsfpPage::upperPage10:
      return 5;
   case OsfpPage::upperPage11:
      return 6;
   case OsfpPage::upperPageInvalid:
      break;
   }
   return ~std::size_t( 0 );
}

/// What the pages say, as `OsfpEepromParser` decodes them. Texts keep their padding. A new module's
/// parse changes what is different and tells of that alone.
class XCVR_API OsfpDecodedEepromContents : public Vel::Entity {
 public:
   /// Select code of an application, 1 to 15, to the application.
   using Applications = Vel::DenseMap<uint8_t, OsfpApplication, 16>;
   template <typename T>
   using ByPage = Vel::DenseMap<OsfpPage, T, 7>;
   using LaneFlags = Vel::DenseFlags<ChannelId, ChannelId::velBound + 1>;
   using LaneCodes = Vel::DenseNibbles<ChannelId, 2 * osfpLanes>;
   using LaneDom = Vel::DenseMap<LaneId, DomInfo, osfpLanes>;

   explicit OsfpDecodedEepromContents( Vel::Name name ) : Vel::Entity( std::move( name ) ) {}
   VEL_ENTITY( OsfpDecodedEepromContents, Vel::Entity,
      // Lower page
      ( Plain, identifier, onIdentifier, OsfpIdentifier ),
      // Only the lower page and page 00h are there, and nothing on them changes.
      ( Plain, flatMem, onFlatMem, bool ),
      ( Plain, maxSmbusSpeedSupported, onMaxSmbusSpeedSupported, OsfpSmbusSpeedReg ),
      // The module's own alarms and warnings.
      ( Plain, tempHiAlarm, onTempHiAlarm, bool ),
      ( Plain, tempLoAlarm, onTempLoAlarm, bool ),
      ( Plain, tempHiWarn, onTempHiWarn, bool ),
      ( Plain, tempLoWarn, onTempLoWarn, bool ),
      ( Plain, voltageHiAlarm, onVoltageHiAlarm, bool ),
      ( Plain, voltageLoAlarm, onVoltageLoAlarm, bool ),
      ( Plain, voltageHiWarn, onVoltageHiWarn, bool ),
      ( Plain, voltageLoWarn, onVoltageLoWarn, bool ),
      ( Plain, moduleType, onModuleType, OsfpModuleTypeEncoding ),
      // The bits have names in the field table.
      ( Plain, moduleGlobalAndSquelchControls, onModuleGlobalAndSquelchControls, uint8_t ),
      // The first application, even where its code says that there is none.
      ( Plain, moduleTypeIdentifier, onModuleTypeIdentifier, OsfpApplication ),
      // By select code, 1 to 15; from 9 on they are those of page 01h.
      ( DenseValues, application, onApplication, Applications ),
      ( Plain, detectedMediaType, onDetectedMediaType, MediaType ),
      // Page 00h
      ( Plain, identifierExtended, onIdentifierExtended, uint8_t ),
      ( Plain, vendorName, onVendorName, Vel::String ),
      ( Plain, vendorOui, onVendorOui, Vel::String ),       // three bytes
      ( Plain, vendorPn, onVendorPn, Vel::String ),
      ( Plain, vendorRev, onVendorRev, Vel::String ),
      ( Plain, vendorSn, onVendorSn, Vel::String ),
      ( Plain, dateCode, onDateCode, Vel::String ),         // YYMMDD and a lot of two characters
      // Power class minus 1 in bits 15-13; 0.25 W in bits 7-0.
      ( Plain, modulePower, onModulePower, uint16_t ),
      // Bits 5-0 in 0.1, 1, 10 or 100 m, as bits 7-6 say.
      ( Plain, cableLength, onCableLength, uint8_t ),
      ( Plain, connector, onConnector, uint8_t ),           // SFF-8024 code
      // Page 01h. A bit for each code of amplitude; the other three are the largest code.
      ( Plain, implRxOutputAmplitudeCode, onImplRxOutputAmplitudeCode, uint8_t ),
      ( Plain, maxTxInputEqualization, onMaxTxInputEqualization, uint8_t ),
      ( Plain, maxRxOutputPostEmphasis, onMaxRxOutputPostEmphasis, uint8_t ),
      ( Plain, maxRxOutputPreEmphasis, onMaxRxOutputPreEmphasis, uint8_t ),
      // What is implemented; the bits have names in the field table.
      ( Plain, implSignalIntegrityControl, onImplSignalIntegrityControl, uint16_t ),
      ( Plain, implControlsAdvertisement, onImplControlsAdvertisement, uint16_t ),
      ( Plain, implFlagsAdvertisement, onImplFlagsAdvertisement, uint16_t ),
      ( Plain, implMonitorsAdvertisement, onImplMonitorsAdvertisement, OsfpImplMonitorsAdvertisement ),
      // Page 02h
      ( Plain, domThreshold, onDomThreshold, DomThreshold ),
      // The sums of pages that have one: as stored, as they should be, whether they agree.
      ( DenseValues, checksum, onChecksum, ByPage<uint8_t> ),
      ( DenseValues, checksumCalculated, onChecksumCalculated, ByPage<uint8_t> ),
      ( DenseValues, checksumValid, onChecksumValid, ByPage<bool> ),
      // Lower page and page 11h
      ( DenseValues, domInfo, onDomInfo, LaneDom ),
      // Page 11h: flags of lanes
      ( DenseValues, txFault, onTxFault, LaneFlags ),
      ( DenseValues, txLos, onTxLos, LaneFlags ),
      ( DenseValues, txCdrLol, onTxCdrLol, LaneFlags ),
      ( DenseValues, txAdaptiveInputEqFault, onTxAdaptiveInputEqFault, LaneFlags ),
      ( DenseValues, rxLos, onRxLos, LaneFlags ),
      ( DenseValues, rxCdrLol, onRxCdrLol, LaneFlags ),
      ( DenseValues, txPowerHiAlarm, onTxPowerHiAlarm, LaneFlags ),
      ( DenseValues, txPowerLoAlarm, onTxPowerLoAlarm, LaneFlags ),
      ( DenseValues, txPowerHiWarn, onTxPowerHiWarn, LaneFlags ),
      ( DenseValues, txPowerLoWarn, onTxPowerLoWarn, LaneFlags ),
      ( DenseValues, txBiasHiAlarm, onTxBiasHiAlarm, LaneFlags ),
      ( DenseValues, txBiasLoAlarm, onTxBiasLoAlarm, LaneFlags ),
      ( DenseValues, txBiasHiWarn, onTxBiasHiWarn, LaneFlags ),
      ( DenseValues, txBiasLoWarn, onTxBiasLoWarn, LaneFlags ),
      ( DenseValues, rxPowerHiAlarm, onRxPowerHiAlarm, LaneFlags ),
      ( DenseValues, rxPowerLoAlarm, onRxPowerLoAlarm, LaneFlags ),
      ( DenseValues, rxPowerHiWarn, onRxPowerHiWarn, LaneFlags ),
      ( DenseValues, rxPowerLoWarn, onRxPowerLoWarn, LaneFlags ),
      // Page 11h: signal tuning in force, codes of 0 to 15
      ( DenseValues, txInputAdaptiveEqEnable, onTxInputAdaptiveEqEnable, LaneFlags ),
      ( DenseValues, txInputEqualization, onTxInputEqualization, LaneCodes ),
      ( DenseValues, rxOutputPreEmphasis, onRxOutputPreEmphasis, LaneCodes ),
      ( DenseValues, rxOutputPostEmphasis, onRxOutputPostEmphasis, LaneCodes ),
      ( DenseValues, rxOutputAmplitude, onRxOutputAmplitude, LaneCodes ) );
};

XCVR_API Vel::Ptr<OsfpRawEepromContents> osfpRawEepromContentsFactory( Vel::Name name );
XCVR_API Vel::Ptr<OsfpDecodedEepromContents> osfpDecodedEepromContentsFactory( Vel::Name name );

} // namespace Xcvr
