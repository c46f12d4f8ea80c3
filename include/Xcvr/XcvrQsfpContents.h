#pragma once

#include <Vel/Value.h>
#include <Xcvr/HalSff8436.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrMediaTypeRules.h>
#include <Xcvr/XcvrPagedContents.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace Xcvr {

/// The memory of a QSFP, QSFP+ or QSFP28 module (SFF-8636, SFF-8436), and what it says.
///
/// Nothing here fails. Of an empty page numbers are 0, tests false and texts empty. Of a page
/// shorter than a field a number is 0, and a text is what there is. Codes are those of SFF-8024
/// unless said otherwise; bytes are named by their address in the module, 128 and up on an upper
/// page.
///
/// An accessor that cannot read traces its name (source `XcvrQsfpPlus`, level 8); one that can
/// costs one comparison and traces nothing. The other operations open a trace scope.
class XCVR_API Sff8436IdEepromContents : PagedContents<Sff8436IdEepromContents> {
   // The pages as read from the module; index 0 of an upper page is the module's byte 128. Empty:
   // not read.
   VEL_VALUE( Sff8436IdEepromContents,
      ( eepromPage00LowerData, Vel::String ),
      ( eepromPage00UpperData, Vel::String ),
      ( eepromPage02UpperData, Vel::String ),
      ( eepromPage03UpperData, Vel::String ),
      ( eepromPage20hUpperData, Vel::String ),
      ( eepromPage21hUpperData, Vel::String ),
      ( lastValidData, double ),      // s, when the contents were last known to be valid
      ( sff8636Revision, uint8_t ) ); // revision code as the reader knows it; 0: as the module says

 private:
   static consteval MemoryField const & row( std::string_view name ) {
      return Sff8436Table::row( name );
   }
   /// Where a bit lies in the number in its field.
   static consteval uint32_t mask( std::string_view field, std::string_view bit ) {
      return memoryBitMask( row( field ), bit );
   }

 public:
   /// True for contents without bytes, time and revision.
   bool operator!() const { return *this == Sff8436IdEepromContents(); }

   // Upper page 00h, in the order of addresses. Where a field lies says its row in the field table.

   /// 12 = QSFP, 13 = QSFP+, 17 = QSFP28.
   uint8_t identifier() const { return u8( row( "identifier" ) ); }
   uint8_t identifierExtended() const { return u8( row( "identifierExtended" ) ); }
   /// 7 = LC.
   uint8_t connector() const { return u8( row( "connector" ) ); }
   /// The first compliance byte. Bit 7 says that `complianceExtended` holds a code.
   uint8_t complianceEth10And40G() const { return u8( row( "complianceEth10And40G" ) ); }
   /// The eight compliance bytes packed into one number, the first the most significant. Each byte
   /// is sign-extended before it is ORed in: one of 0x80 or more sets every bit above its own
   /// place. That is intended, readers know these numbers; single bits are in the bytes themselves.
   uint64_t compliance() const;
   uint8_t encoding() const { return u8( row( "encoding" ) ); }
   /// In 100 MBd; 255 means `bitrateExtended`.
   uint8_t bitrateNominal() const { return u8( row( "bitrateNominal" ) ); }
   bool higherBitrate() const { return bitrateNominal() == 255; }
   uint8_t extendedRateSelectCompliance() const {
      return u8( row( "extendedRateSelectCompliance" ) );
   }
   /// Reach over single-mode fibre in km, over OM3 fibre in 2 m, and over OM2 and OM1 fibre in m.
   uint8_t lengthSmf() const { return u8( row( "lengthSmf" ) ); }
   uint8_t lengthOm3() const { return u8( row( "lengthOm3" ) ); }
   uint8_t lengthOm2() const { return u8( row( "lengthOm2" ) ); }
   uint8_t lengthOm1() const { return u8( row( "lengthOm1" ) ); }
   /// Length of a cable in m, or the reach over OM4 fibre (of a laser of 850 nm in 2 m).
   uint8_t lengthCableOrOm4() const { return u8( row( "lengthCableOrOm4" ) ); }
   /// The upper four bits are the transmitter's technology.
   uint8_t deviceTech() const { return u8( row( "deviceTech" ) ); }
   Sff8436DeviceTechnology deviceTechnology() const {
      return static_cast<Sff8436DeviceTechnology>( deviceTech() >> 4 );
   }
   /// Texts are 16 characters (revision 2, date code 8), padding kept.
   Vel::String vendorName() const { return text( row( "vendorName" ) ); }
   /// IEEE company identifier, 24 bits.
   uint32_t vendorOui() const;
   Vel::String vendorPn() const { return text( row( "vendorPn" ) ); }
   Vel::String vendorRev() const { return text( row( "vendorRev" ) ); }
   /// The five texts that identify the module, behind one check of the page.
   VendorInfo vendorInfo() const {
      return vendorTexts( row( "vendorName" ), row( "vendorPn" ), row( "vendorSn" ),
                          row( "vendorRev" ), row( "dateCode" ) );
   }
   /// pm.
   uint32_t laserWavelength() const { return u16( row( "laserWavelength" ) ) * 50u; }
   /// The bytes of wavelength and tolerance, in which a copper cable keeps its attenuation: four
   /// codes in dB, that of the lowest frequency the most significant.
   uint32_t cableAttn() const;
   /// dB.
   uint8_t attenuation2p5GHz() const { return u8( row( "attenuation2p5GHz" ) ); }
   uint8_t attenuation5GHz() const { return u8( row( "attenuation5GHz" ) ); }
   uint8_t attenuation7GHz() const { return u8( row( "attenuation7GHz" ) ); }
   uint8_t attenuation12p9GHz() const { return u8( row( "attenuation12p9GHz" ) ); }
   /// In 5 pm.
   uint16_t wavelengthTolerance() const { return u16( row( "wavelengthTolerance" ) ); }
   /// °C; 0 means 70 in the standard and is given as it is.
   uint8_t maxCaseTemp() const { return u8( row( "maxCaseTemp" ) ); }
   /// Extended specification compliance code.
   uint8_t complianceExtended() const { return u8( row( "complianceExtended" ) ); }
   /// Bytes 193 (high) to 195; the bits have names in the field table.
   uint32_t options() const;
   Vel::String vendorSn() const { return text( row( "vendorSn" ) ); }
   /// YYMMDD and two characters of the vendor's own.
   Vel::String dateCode() const { return text( row( "dateCode" ) ); }
   uint8_t diagsMonitoringType() const { return u8( row( "diagsMonitoringType" ) ); }
   uint8_t enhancedOptions() const { return u8( row( "enhancedOptions" ) ); }
   /// In 250 MBd, of a module with `higherBitrate`.
   uint8_t bitrateExtended() const { return u8( row( "bitrateExtended" ) ); }

   // Options.

   bool txInputEqualizationAutoSupported() const {
      return options() & mask( "options", "Tx input EQ auto-adaptive" );
   }
   bool txInputEqualizationFixedSupported() const {
      return options() & mask( "options", "Tx input EQ fixed" );
   }
   bool rxOutputEmphasisSupported() const {
      return options() & mask( "options", "Rx output emphasis" );
   }
   bool rxOutputAmplitudeSupported() const {
      return options() & mask( "options", "Rx output amplitude" );
   }
   /// Of both directions; one alone does not count.
   bool cdrTxRxControlImplemented() const;
   bool rateSelectImplemented() const { return options() & mask( "options", "rate select" ); }
   bool extendedRateSelectSupported() const {
      return enhancedOptions() & mask( "enhancedOptions", "extended rate select" );
   }

   // Monitors.

   /// The module monitors its temperature, voltage and lanes. Only passive copper cables do not;
   /// the bits that say so of single monitors came with later revisions and are not asked.
   bool domSupported() const {
      return !eepromPage00UpperData_.empty() && !isPassiveCopper( deviceTechnology() );
   }
   bool txPowerSupported() const {
      return diagsMonitoringType() & mask( "diagsMonitoringType", "Tx power monitor" );
   }
   /// Whether the received power is an average, or else the modulation amplitude (OMA).
   bool rxPowerIsAverage() const {
      return diagsMonitoringType() &
             mask( "diagsMonitoringType", "received power is average power" );
   }

   // Power.

   /// Unknown for bits that are no class, and for class 8, which has no name here. Modules up to
   /// SFF-8436 4.8 have classes 1 to 4 only.
   PowerClass powerClass() const;
   /// The most that the module takes, W: its own figure (lower page byte 107) or, where it has
   /// none, that of its class; 0 for unknown.
   double maxPower() const;

   // The other pages.

   /// Code of the revision of the standard (lower page byte 1): 1 and 2 = SFF-8436 up to 4.8; 3 to
   /// 6 = SFF-8636 1.3, 1.4, 1.5, 2.0; 7 = 2.5 to 2.7; 8 = 2.8 to 2.10. That of `sff8636Revision`,
   /// unless it is 0.
   uint8_t revisionCompliance() const;
   /// The module has no pages but the lower one and upper page 00h.
   bool flatMemory() const {
      return u8( row( "moduleStatus" ) ) & mask( "moduleStatus", "flat memory" );
   }
   /// Whether the module has a page, as far as what was read says.
   bool hasPage( Sff8436PageId page ) const;
   /// The bytes of a page that the module has and that was read; no bytes of any other.
   PageView page( Sff8436PageId page ) const;
   /// The user's text on page 02h; empty when the module has none or keeps its CLEI code there.
   Vel::String userText() const;
   /// 10 characters; empty when the module has no CLEI code.
   Vel::String cleiCode() const;

   // Checksums: sums of the bytes modulo 256. Only upper page 00h has any: of other pages they are
   // 0, and valid. A short page is summed as far as it reaches; it is not valid unless it holds the
   // stored sums as well.

   /// Of bytes 128-190, stored in byte 191.
   uint8_t baseChecksum( Sff8436PageId page ) const;
   uint8_t baseChecksumCalculated( Sff8436PageId page ) const;
   /// Of bytes 192-222, stored in byte 223.
   uint8_t extendedChecksum( Sff8436PageId page ) const;
   uint8_t extendedChecksumCalculated( Sff8436PageId page ) const;
   /// False for an upper page 00h that is empty.
   bool checksumsValid( Sff8436PageId page ) const;

   /// What the module is; xcvrUnknown when no rule knows it.
   MediaType mediaType() const;
   /// The same with the rule that decided.
   MediaTypeDecision mediaTypeDecision() const;

   /// Whether the bytes of a row are what the row says, in this module: a row of page 03h is in use
   /// when the module has that page.
   bool fieldInUse( MemoryField const & field ) const;

 private:
   friend PagedContents;
   static constexpr std::string_view textOfEmptyPage = "";

   /// Inlined always, where the field is known: then no label is compared.
   [[gnu::always_inline]] PageView pageOf( MemoryField const & field ) const {
      return field.page == Sff8436Table::upper00h   ? eepromPage00UpperData_.view()
             : field.page == Sff8436Table::lower    ? eepromPage00LowerData_.view()
             : field.page == Sff8436Table::upper03h ? eepromPage03UpperData_.view()
             : field.page == Sff8436Table::upper02h ? eepromPage02UpperData_.view()
             : field.page == Sff8436Table::upper20h ? eepromPage20hUpperData_.view()
                                                    : eepromPage21hUpperData_.view();
   }
   [[gnu::cold]] static void traceUnreadable( MemoryField const & field );
};

/// The rules of `Sff8436IdEepromContents::mediaType`, in the order in which they are tried.
[[nodiscard]] XCVR_API std::span<MediaTypeRule const> sff8436MediaTypeRules();

} // namespace Xcvr
