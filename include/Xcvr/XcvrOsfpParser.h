#pragma once

#include <Vel/Ptr.h>
#include <Xcvr/XcvrOsfpContents.h>

#include <cstdint>

namespace Xcvr {

/// Decodes the raw pages of an OSFP or QSFP-DD module (CMIS) into the attributes of a decoded-contents
/// entity. The hardware agent calls an operation after it has read the pages that it takes.
///
/// `parseUpperPage01` comes before `parseUpperPage02`, `parseDom` and `parseLaneFlags`, which rest on
/// the advertisement, and `parseLowerPage`, which lists the applications, before `parseUpperPage01`,
/// which completes them. A page that was never read reads as 0; nothing fails, but for errors of the
/// program, which are fatal. What a new parse finds no more is removed (applications), not kept.
class XCVR_API OsfpEepromParser : public Vel::PtrInterface {
 public:
   OsfpEepromParser( Vel::Ptr<OsfpRawEepromContents const> rawEeprom,
                     Vel::Ptr<OsfpDecodedEepromContents> parsedEeprom );

   [[nodiscard]] Vel::Ptr<OsfpRawEepromContents const> const & rawEeprom() const {
      return rawEeprom_;
   }
   [[nodiscard]] Vel::Ptr<OsfpDecodedEepromContents> const & parsedEeprom() const {
      return parsedEeprom_;
   }
   [[nodiscard]] Vel::Ptr<OsfpWriteEepromShadow> const & writeShadow() const {
      return writeShadow_;
   }

   // Registers. A size that does not fit the operation, and `upperPageInvalid`, are fatal.

   /// Where the register lies in its page's string. 8 bits, wraps.
   [[nodiscard]] uint8_t registerOffset( OsfpRegAddr const & reg ) const;
   [[nodiscard]] uint8_t reg8( OsfpRegAddr const & reg ) const;
   /// Big-endian.
   [[nodiscard]] uint16_t reg16( OsfpRegAddr const & reg ) const;
   [[nodiscard]] uint32_t reg32( OsfpRegAddr const & reg, bool isBigEndian ) const;
   /// The bytes; fewer when the page ends early.
   [[nodiscard]] Vel::String reg( OsfpRegAddr const & reg ) const;

   /// Identity, module flags and controls, the applications 1 to 8, media type. Of a module with flat
   /// memory, which has no page 01h, also that there is nothing of what that page says.
   void parseLowerPage();
   /// The module's flags, which a read clears: byte 9 of the lower page.
   void parseModuleFlags();
   /// Vendor, power, cable, connector, checksum.
   void parseUpperPage00();
   /// What the module has, the applications 9 to 15, media lane assignments, checksum.
   void parseUpperPage01();
   /// Thresholds and checksum. Minus infinity for those that CMIS does not have.
   void parseUpperPage02();
   /// Transmitters that are disabled, into the shadow.
   void parseUpperPage10();
   /// The active control set, into the shadow. Fatal when the page does not hold it.
   void parseUpperPage11();
   /// Monitors of the eight lanes of bank 0, all with the same sample time: now.
   void parseDom();
   /// Flags of the lanes. Faults and losses of signal or lock are false in a module that does not
   /// advertise them, and are left alone in one that advertises none; `force` shows them anyway.
   void parseLaneFlags( bool force );
   /// The signal tuning in force.
   void parseLaneTuning();
   /// Sums up a page from an offset into its string up to its checksum byte.
   void computePageChecksum( OsfpRegAddr const & checksumReg, uint8_t startOffset );

 private:
   Vel::Ptr<OsfpRawEepromContents const> rawEeprom_;
   Vel::Ptr<OsfpDecodedEepromContents> parsedEeprom_;
   Vel::Ptr<OsfpWriteEepromShadow> writeShadow_;
};

/// A parser over the two entities, with a shadow of its own.
XCVR_API Vel::Ptr<OsfpEepromParser>
osfpEepromParserFactory( Vel::Ptr<OsfpRawEepromContents const> const & rawEeprom,
                         Vel::Ptr<OsfpDecodedEepromContents> const & parsedEeprom );

} // namespace Xcvr
