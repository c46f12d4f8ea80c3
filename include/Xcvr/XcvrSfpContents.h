#pragma once

#include <Units/Decibels.h>
#include <Vel/Value.h>
#include <Xcvr/HalSff8472.h>
#include <Xcvr/XcvrApi.h>
#include <Xcvr/XcvrMediaTypeRules.h>
#include <Xcvr/XcvrPagedContents.h>
#include <Xcvr/XcvrTypes.h>

#include <cstdint>
#include <span>
#include <string_view>

namespace Xcvr {

/// The identification and diagnostics memory of an SFP module (SFF-8472), and what it says.
///
/// Nothing here fails. Of an empty page numbers are 0, tests false, texts "Unknown", and setters do
/// nothing. Of a page shorter than a field a number is 0, a text is what there is, and a setter
/// writes what lies on the page; a setter never changes a page's length. Codes are those of
/// SFF-8024.
///
/// An accessor that cannot read traces its name (source `XcvrSfpPlus`, level 8); one that can costs
/// one comparison and traces nothing. The other operations open a trace scope.
class XCVR_API XcvrSff8472IdEepromContents : PagedContents<XcvrSff8472IdEepromContents> {
   VEL_VALUE( XcvrSff8472IdEepromContents,
      ( buf, Vel::String ),              // page A0h as read from the module, index = byte address
      ( eepromPageA2Data, Vel::String ), // page A2h, the same
      ( lastValidData, double ) ); // s, when the contents were last known to be valid

 private:
   static consteval MemoryField const & row( std::string_view name ) {
      return Sff8472Table::row( name );
   }
   static consteval uint8_t monitoringBit( std::string_view bit ) {
      return Sff8472Table::bit( "diagsMonitoringType", bit ).mask;
   }

 public:
   /// True for contents without bytes and time.
   bool operator!() const { return *this == XcvrSff8472IdEepromContents(); }

   // Page A0h, in the order of addresses. Where a field lies says its row in the field table.

   /// 3 = SFP, SFP+ and SFP28; 11 = DWDM SFP+.
   uint8_t identifier() const { return u8( row( "identifier" ) ); }
   uint8_t extIdentifier() const { return u8( row( "extIdentifier" ) ); }
   /// 7 = LC.
   uint8_t connector() const { return u8( row( "connector" ) ); }
   Sff8472TransceiverCompliance compliance() const;
   uint8_t encoding() const { return u8( row( "encoding" ) ); }
   /// In 100 MBd; 255 means "see bitrateMax" in the standard and is given as it is.
   uint8_t bitrateNominal() const { return u8( row( "bitrateNominal" ) ); }
   /// Reach over single-mode fibre in km, and in 100 m.
   uint8_t length9umKm() const { return u8( row( "length9umKm" ) ); }
   uint8_t length9um100m() const { return u8( row( "length9um100m" ) ); }
   /// Reach over 50 µm OM2 and 62.5 µm OM1 fibre, each in 10 m.
   uint8_t lengthOm2() const { return u8( row( "lengthOm2" ) ); }
   uint8_t lengthOm1() const { return u8( row( "lengthOm1" ) ); }
   /// In m, also of a module that keeps its OM4 reach (in 10 m) here.
   uint8_t lengthCopper() const { return u8( row( "lengthCopper" ) ); }
   /// Reach over 50 µm OM3 fibre in 10 m.
   uint8_t lengthOm3() const { return u8( row( "lengthOm3" ) ); }
   /// Texts are 16 characters (revision 4, date code 8), padding kept.
   Vel::String vendorName() const { return text( row( "vendorName" ) ); }
   /// Extended specification compliance code.
   uint8_t complianceExtended() const { return u8( row( "complianceExtended" ) ); }
   /// IEEE company identifier, 24 bits.
   uint32_t vendorOui() const;
   Vel::String vendorPn() const { return text( row( "vendorPn" ) ); }
   Vel::String vendorRev() const { return text( row( "vendorRev" ) ); }
   /// nm; the fraction in 0.01 nm.
   uint16_t laserWavelengthInteger() const { return u16( row( "laserWavelengthInteger" ) ); }
   uint8_t laserWavelengthFractional() const { return u8( row( "laserWavelengthFractional" ) ); }
   /// These read the bytes of the wavelength, which a cable does not have: intended.
   Sff8472PassiveAttenuation passiveAttenuation() const {
      return Sff8472PassiveAttenuation( u16( row( "passiveAttenuation" ) ) );
   }
   Sff8472ActiveAttenuation activeAttenuation() const {
      return Sff8472ActiveAttenuation( u16( row( "activeAttenuation" ) ) );
   }
   uint8_t storedCcBase() const { return u8( row( "storedCcBase" ) ); }
   /// Bytes 64 (high) and 65; the bits have names in the field table.
   uint16_t options() const { return u16( row( "options" ) ); }
   /// How far the bit rate may deviate upwards and downwards, in %.
   uint8_t bitrateMax() const { return u8( row( "bitrateMax" ) ); }
   uint8_t bitrateMin() const { return u8( row( "bitrateMin" ) ); }
   Vel::String vendorSn() const { return text( row( "vendorSn" ) ); }
   /// YYMMDD and two characters of the vendor's own.
   Vel::String dateCode() const { return text( row( "dateCode" ) ); }
   /// The five texts that identify the module, behind one check of the page.
   VendorInfo vendorInfo() const {
      PageView const page = buf_.view();
      if ( !page.has( 0, row( "dateCode" ).end() ) ) [[unlikely]] {
         return shortVendorInfo();
      }
      PageView const known = page.first( row( "dateCode" ).end() );
      auto const text = [known]( MemoryField const & field ) {
         return known.text( field.at, field.width );
      };
      return { text( row( "vendorName" ) ), text( row( "vendorPn" ) ), text( row( "vendorSn" ) ),
               text( row( "vendorRev" ) ), text( row( "dateCode" ) ) };
   }
   uint8_t diagsMonitoringType() const { return u8( row( "diagsMonitoringType" ) ); }
   uint8_t enhancedOptions() const { return u8( row( "enhancedOptions" ) ); }
   /// Code of the revision of SFF-8472 that the module complies with.
   uint8_t revision() const { return u8( row( "revision" ) ); }
   uint8_t storedCcExt() const { return u8( row( "storedCcExt" ) ); }
   /// dB, -127.5 to 127.5, from two bytes of the vendor's area; 0 when the first of them is 0 or
   /// the page ends in front of the second.
   double quorelAttnValue() const;

   bool domSupported() const {
      return diagsMonitoringType() & monitoringBit( "digital diagnostics" );
   }
   bool domInternallyCalibrated() const {
      return diagsMonitoringType() & monitoringBit( "internally calibrated" );
   }
   bool domExternallyCalibrated() const {
      return diagsMonitoringType() & monitoringBit( "externally calibrated" );
   }
   /// Picometres for a DWDM module of fixed wavelength, else nanometres.
   LaserWavelengthPrecision laserWavelengthPrecision() const;

   // Page A2h. The registers are read singly by the status entity, through the DOM decoders.

   uint8_t storedCcDmi() const { return u8( row( "storedCcDmi" ) ); }

   // Setters: a text is cut or padded with blanks to the width of its field.

   void vendorNameIs( std::string_view name );
   void vendorPnIs( std::string_view partNumber );
   void vendorRevIs( std::string_view revision );
   void vendorSnIs( std::string_view serialNumber );
   void dateCodeIs( std::string_view dateCode );
   void storedCcBaseIs( uint8_t sum );
   void storedCcExtIs( uint8_t sum );
   void storedCcDmiIs( uint8_t sum );

   // Checksums: sums of the bytes as signed numbers, of which the low eight bits count. A short
   // page is summed as far as it reaches; it is not valid unless it holds the stored sum as well.

   /// Of bytes 0-62 of page A0h, stored in byte 63.
   int computedCcBase() const;
   bool ccBaseValid() const;
   /// Of bytes 64-94 of page A0h, stored in byte 95.
   int computedCcExt() const;
   bool ccExtValid() const;
   /// Of bytes 0-94 of page A2h, stored in byte 95.
   int computedCcDmi() const;
   bool ccDmiValid() const;
   /// Whether all checksums of a page are valid; false for what is no page.
   bool checksumsValid( Sff8472PageId page ) const;

   /// What the module is; xcvrUnknown when no rule knows it.
   MediaType mediaType() const;
   /// The same with the rule that decided.
   MediaTypeDecision mediaTypeDecision() const;
   /// A 10G optical module that can run at 1G as well: SR with SX, or LR with LX.
   bool is1GConfigurable() const;

   /// Whether the bytes of a row are what the row says, in this module: a row of the tuning page is
   /// in use when the transmitter is tunable and page A2h shows that page.
   bool fieldInUse( MemoryField const & field ) const;

 private:
   friend PagedContents;
   static constexpr std::string_view textOfEmptyPage = "Unknown";

   PageView pageOf( MemoryField const & field ) const {
      return field.page == Sff8472Table::a2h ? eepromPageA2Data_.view() : buf_.view();
   }
   [[gnu::cold]] VendorInfo shortVendorInfo() const;
   [[gnu::cold]] static void traceUnreadable( MemoryField const & field );
};

/// The rules of `XcvrSff8472IdEepromContents::mediaType`, in the order in which they are tried.
[[nodiscard]] XCVR_API std::span<MediaTypeRule const> sff8472MediaTypeRules();

/// Writes a threshold, big-endian, into page A2h; what lies beyond its end is not written.
XCVR_API void editDomThresholdRegisterData( Vel::String & pageA2h, uint8_t at, uint16_t value );

/// Replaces the eight optical power thresholds in page A2h by powers in dBm. The stored checksum of
/// the page stays as it was: the page is one to read from, not to write back.
XCVR_API void updateSfpDomThresholdWithQuorixData(
   Vel::String & pageA2h, Units::Decibels txPowerHighWarn, Units::Decibels txPowerLowWarn,
   Units::Decibels txPowerHighAlarm, Units::Decibels txPowerLowAlarm,
   Units::Decibels rxPowerHighWarn, Units::Decibels rxPowerLowWarn,
   Units::Decibels rxPowerHighAlarm, Units::Decibels rxPowerLowAlarm );

} // namespace Xcvr
