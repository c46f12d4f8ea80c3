#include "tools/xcvr/SfpReport.h"

#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/FieldText.h"

#include <chrono>
#include <cstdint>
#include <fmt/format.h>
#include <optional>

namespace XcvrTool {

namespace {

using Xcvr::MemoryField;
using Xcvr::PageView;
using Xcvr::Sff8472Table::bit;
using Xcvr::Sff8472Table::row;

/// A code, in JSON a number with its name beside it.
void addCode( Report & report, MemoryField const & field, std::string const & label,
              std::uint8_t code ) {
   std::string const member( field.name );
   std::string const name( codeName( codeNamesOf( field.name ), code ) );
   report.push_back(
      { .member = member, .value = code, .label = label, .text = codeText( field, code ) } );
   report.push_back( { .member = member + "Name", .value = name.empty() ? Json() : Json( name ) } );
}

/// A text of the module for people.
std::string shown( std::string_view padded ) {
   std::string_view const text = unpadded( padded );
   return text.empty() ? "(blank)" : printable( text );
}

void addText( Report & report, std::string const & member, std::string const & label,
              std::string_view padded ) {
   report.push_back( { .member = member,
                       .value = utf8( unpadded( padded ) ),
                       .label = label,
                       .text = shown( padded ) } );
}

void addBits( Report & report, MemoryField const & field, std::string const & label,
              PageView page ) {
   std::vector<std::string> const names = setBits( page, field );
   report.push_back( { .member = std::string( field.name ),
                       .value = names,
                       .label = label,
                       .text = joined( names ) } );
}

/// A reach: 0 is unspecified, and all bits set is more than the field can say.
void addLength( Report & report, MemoryField const & field, std::string const & label,
                std::uint8_t code ) {
   constexpr int beyond = 0xff;
   int const step = static_cast<int>( field.scale );
   std::string const unit( field.unit );
   report.push_back( { .member = "lengths/" + std::string( field.name ),
                       .value = code * step,
                       .unit = unit,
                       .label = code == 0 ? "" : label,
                       .text = code == beyond
                                  ? fmt::format( "more than {} {}", ( beyond - 1 ) * step, unit )
                                  : fmt::format( "{} {}", code * step, unit ) } );
}

/// The day in a date code, which has two digits each of year, month and day, as "2024-03-15". The
/// year counts from 2000. One far ahead of any module is that of a maker who does otherwise, and
/// then nobody knows the day.
std::optional<std::string> isoDate( std::string_view dateCode ) {
   std::string_view const digits = dateCode.substr( 0, 6 );
   if ( digits.size() < 6 || digits.find_first_not_of( "0123456789" ) != std::string_view::npos ) {
      return {};
   }
   auto const number = [&]( std::size_t at ) {
      return ( digits[at] - '0' ) * 10 + digits[at + 1] - '0';
   };
   std::chrono::year_month_day const date(
      std::chrono::year( 2000 + number( 0 ) ),
      std::chrono::month( static_cast<unsigned>( number( 2 ) ) ),
      std::chrono::day( static_cast<unsigned>( number( 4 ) ) ) );
   constexpr std::chrono::year lastPlausible( 2060 );
   if ( !date.ok() || date.year() > lastPlausible ) {
      return {};
   }
   return fmt::format( "20{}-{}-{}", digits.substr( 0, 2 ), digits.substr( 2, 2 ),
                       digits.substr( 4, 2 ) );
}

/// What is to say about one SFP module, by topic.
class SfpReporter {
 public:
   explicit SfpReporter( ModuleImage const & image ) : contents_( sfpContents( image ) ) {}

   void form( Report & report ) const;
   void mediaType( Report & report ) const;
   void product( Report & report ) const;
   void item( Report & report ) const;
   void medium( Report & report ) const;
   void options( Report & report ) const;
   void features( Report & report ) const;
   void checksums( Report & report ) const;
   void ruleInputs( Report & report ) const;

 private:
   [[nodiscard]] PageView pageA0h() const { return contents_.buf().view(); }
   [[nodiscard]] PageView pageA2h() const { return contents_.eepromPageA2Data().view(); }
   [[nodiscard]] bool isPassiveCable() const {
      return pageA0h().bit( bit( "compliance", "passive cable" ) );
   }
   [[nodiscard]] bool isActiveCable() const {
      return pageA0h().bit( bit( "compliance", "active cable" ) );
   }
   [[nodiscard]] bool isCable() const { return isPassiveCable() || isActiveCable(); }
   void date( Report & report ) const;
   void bitrate( Report & report ) const;
   void lengths( Report & report ) const;
   void wavelength( Report & report ) const;

   Xcvr::XcvrSff8472IdEepromContents contents_;
};

void SfpReporter::form( Report & report ) const {
   addCode( report, row( "identifier" ), "Identifier", contents_.identifier() );
   addCode( report, row( "extIdentifier" ), "Extended identifier", contents_.extIdentifier() );
   addCode( report, row( "connector" ), "Connector", contents_.connector() );
}

void SfpReporter::mediaType( Report & report ) const {
   std::string const name( stringValue( contents_.mediaType() ).view() );
   report.push_back(
      { .member = "mediaType", .value = name, .label = "Media type", .text = name } );
}

void SfpReporter::product( Report & report ) const {
   addText( report, "vendorInfo/vendorName", "Vendor name", contents_.vendorName() );
   addText( report, "vendorInfo/vendorPn", "Vendor part number", contents_.vendorPn() );
}

void SfpReporter::item( Report & report ) const {
   addText( report, "vendorInfo/vendorSn", "Vendor serial number", contents_.vendorSn() );
   addText( report, "vendorInfo/vendorRev", "Vendor revision", contents_.vendorRev() );
   date( report );
   std::string const oui = fieldText( pageA0h(), row( "vendorOui" ) );
   report.push_back( { .member = "vendorOui", .value = oui, .label = "Vendor OUI", .text = oui } );
}

void SfpReporter::date( Report & report ) const {
   Vel::String const dateCode = contents_.dateCode();
   std::optional<std::string> const date = isoDate( dateCode );
   report.push_back( { .member = "vendorInfo/vendorDateCode",
                       .value = utf8( unpadded( dateCode ) ),
                       .label = "Date code",
                       .text = date ? *date : shown( dateCode ) } );
   report.push_back( { .member = "date", .value = date ? Json( *date ) : Json() } );
   std::string_view const lotCode = date ? unpadded( dateCode ).substr( 6 ) : "";
   report.push_back( { .member = "lotCode",
                       .value = utf8( lotCode ),
                       .label = lotCode.empty() ? "" : "Lot code",
                       .text = shown( lotCode ) } );
}

void SfpReporter::medium( Report & report ) const {
   addBits( report, row( "compliance" ), "Compliance codes", pageA0h() );
   addCode( report, row( "complianceExtended" ), "Extended compliance",
            contents_.complianceExtended() );
   addCode( report, row( "encoding" ), "Encoding", contents_.encoding() );
   bitrate( report );
   lengths( report );
   wavelength( report );
}

/// SFF-8472 gives the limits in percent of the nominal rate. A rate too high for the nominal byte is
/// in units of 250 MBd where the upper limit is otherwise, and the other limit counts both ways. No
/// rate falls by more than all of it: such a lower limit says nothing.
void SfpReporter::bitrate( Report & report ) const {
   constexpr std::uint8_t seeMaximum = 0xff;
   bool const isHigh = contents_.bitrateNominal() == seeMaximum;
   int const nominal = isHigh ? contents_.bitrateMax() * 250 : contents_.bitrateNominal() * 100;
   int const percentBelow = contents_.bitrateMin();
   int const percentAbove = isHigh ? percentBelow : contents_.bitrateMax();
   bool const saysBelow = percentBelow <= 100;
   bool const saysAbove = saysBelow || !isHigh;
   auto const add = [&]( char const * member, std::string const & label, int percent,
                         bool isKnown = true ) {
      int const rate = isKnown ? nominal + nominal * percent / 100 : 0;
      report.push_back( { .member = member,
                          .value = rate,
                          .unit = "MBd",
                          .label = isKnown ? label : "",
                          .text = rate == 0 ? "unspecified" : fmt::format( "{} MBd", rate ) } );
   };
   add( "bitrate/nominal", "Bit rate", 0 );
   add( "bitrate/max", percentAbove ? "Bit rate, maximum" : "", percentAbove, saysAbove );
   add( "bitrate/min", percentBelow ? "Bit rate, minimum" : "", -percentBelow, saysBelow );
}

void SfpReporter::lengths( Report & report ) const {
   addLength( report, row( "length9umKm" ), "Length (SMF, in km)", contents_.length9umKm() );
   addLength( report, row( "length9um100m" ), "Length (SMF, in 100 m)", contents_.length9um100m() );
   addLength( report, row( "lengthOm1" ), "Length (OM1)", contents_.lengthOm1() );
   addLength( report, row( "lengthOm2" ), "Length (OM2)", contents_.lengthOm2() );
   addLength( report, row( "lengthOm3" ), "Length (OM3)", contents_.lengthOm3() );
   // What reaches through other multimode fibre has its OM4 reach, in the same unit, where a cable
   // has its length.
   bool const isMultimode = contents_.lengthOm1() || contents_.lengthOm2() || contents_.lengthOm3();
   bool const isOm4 = isMultimode && !isCable();
   MemoryField om4 = row( "lengthOm3" );
   om4.name = "lengthOm4";
   addLength( report, om4, "Length (OM4)", isOm4 ? contents_.lengthCopper() : 0 );
   addLength( report, row( "lengthCopper" ), "Length (cable)",
              isOm4 ? 0 : contents_.lengthCopper() );
}

/// A cable has no wavelength: what it keeps in these bytes is shown as it is.
void SfpReporter::wavelength( Report & report ) const {
   auto const addCompliance = [&]( MemoryField const & field, char const * label,
                                   std::uint16_t code ) {
      report.push_back( { .member = std::string( field.name ),
                          .value = code,
                          .label = label,
                          .text = fmt::format( "0x{:04x}", code ) } );
   };
   if ( isPassiveCable() ) {
      addCompliance( row( "passiveAttenuation" ), "Passive cable compliance",
                     contents_.passiveAttenuation().value() );
   }
   if ( isActiveCable() ) {
      addCompliance( row( "activeAttenuation" ), "Active cable compliance",
                     contents_.activeAttenuation().value() );
   }
   if ( isCable() ) {
      return;
   }
   int const fraction = contents_.laserWavelengthFractional();
   double const hundredths = contents_.laserWavelengthInteger() * 100. + fraction;
   report.push_back( { .member = "laserWavelength",
                       .value = hundredths / 100,
                       .unit = "nm",
                       .label = hundredths > 0 ? "Wavelength" : "",
                       .text = fmt::format( "{:.{}f} nm", hundredths / 100, fraction ? 2 : 0 ) } );
}

void SfpReporter::options( Report & report ) const {
   addBits( report, row( "options" ), "Options", pageA0h() );
}

void SfpReporter::features( Report & report ) const {
   addBits( report, row( "diagsMonitoringType" ), "Diagnostic monitoring", pageA0h() );
   addBits( report, row( "enhancedOptions" ), "Enhanced options", pageA0h() );
   addCode( report, row( "revision" ), "SFF-8472 revision", contents_.revision() );
}

void SfpReporter::checksums( Report & report ) const {
   struct Checksum {
      char const * name;
      char const * label;
      MemoryField const & field;
      std::uint8_t stored;
      int sum;
      bool valid;
   };
   Checksum const checksums[] = {
      { "ccBase", "Checksum, base", row( "storedCcBase" ), contents_.storedCcBase(),
        contents_.computedCcBase(), contents_.ccBaseValid() },
      { "ccExt", "Checksum, extended", row( "storedCcExt" ), contents_.storedCcExt(),
        contents_.computedCcExt(), contents_.ccExtValid() },
      { "ccDmi", "Checksum, diagnostics", row( "storedCcDmi" ), contents_.storedCcDmi(),
        contents_.computedCcDmi(), contents_.ccDmiValid() },
   };
   Json all = Json::array();
   Report lines;
   for ( Checksum const & checksum : checksums ) {
      PageView const page = checksum.field.page == Xcvr::Sff8472Table::a2h ? pageA2h() : pageA0h();
      if ( page.empty() || !contents_.fieldInUse( checksum.field ) ) {
         continue;
      }
      bool const isStored = page.has( checksum.field.at, checksum.field.width );
      unsigned const computed = static_cast<unsigned>( checksum.sum ) & 0xff;
      all.push_back( { { "name", checksum.name },
                       { "page", std::string( checksum.field.page ) },
                       { "stored", isStored ? Json( checksum.stored ) : Json() },
                       { "computed", computed },
                       { "valid", checksum.valid } } );
      std::string const stored =
         isStored ? fmt::format( "stored 0x{:02x}", checksum.stored ) : "the stored one cut off";
      lines.push_back(
         { .label = checksum.label,
           .text = fmt::format( "page {}, {}, computed 0x{:02x}, {}", checksum.field.page, stored,
                                computed, checksum.valid ? "valid" : "BAD" ),
           .alarming = !checksum.valid } );
   }
   report.push_back( { .member = "checksums", .value = all } );
   report.insert( report.end(), lines.begin(), lines.end() );
}

/// Numbers as the rules for the media type read them, whatever the facts above make of the bytes.
void SfpReporter::ruleInputs( Report & report ) const {
   auto const add = [&]( char const * label, std::string const & text ) {
      report.push_back( { .label = label, .text = text } );
   };
   add( "Byte 12, bit rate", fmt::format( "{} x 100 MBd", contents_.bitrateNominal() ) );
   if ( MemoryField const & length = row( "dwdmLength" ); contents_.fieldInUse( length ) ) {
      add( "Bytes 13-14, DWDM length", fieldText( pageA0h(), length ) );
   }
   add( "Bytes 60-61, wavelength",
        fmt::format( "{} nm", pageA0h().s16be( row( "laserWavelengthInteger" ).at ) ) );
}

} // namespace

Xcvr::XcvrSff8472IdEepromContents sfpContents( ModuleImage const & image ) {
   auto const bytes = [&]( std::string_view label ) {
      std::string const * page = image.page( label );
      return page ? Vel::String( page->data(), page->size() ) : Vel::String();
   };
   return { bytes( Xcvr::Sff8472Table::a0h ), bytes( Xcvr::Sff8472Table::a2h ), 0.0 };
}

Report sfpReport( ModuleImage const & image ) {
   SfpReporter const reporter( image );
   Report report;
   reporter.form( report );
   reporter.mediaType( report );
   reporter.product( report );
   reporter.item( report );
   reporter.medium( report );
   reporter.options( report );
   reporter.features( report );
   reporter.checksums( report );
   return report;
}

Report sfpKindReport( ModuleImage const & image ) {
   SfpReporter const reporter( image );
   Report report;
   reporter.form( report );
   reporter.product( report );
   reporter.medium( report );
   reporter.options( report );
   reporter.ruleInputs( report );
   return report;
}

} // namespace XcvrTool
