#include "tools/xcvr/Facts.h"
#include "tools/xcvr/Families.h"
#include "tools/xcvr/FieldText.h"

#include <Xcvr/XcvrSfpStatus.h>

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace XcvrTool {

namespace {

using Contents = Xcvr::XcvrSff8472IdEepromContents;
using Xcvr::MemoryField;
using Xcvr::PageView;
using Xcvr::Sff8472Table::bit;
using Xcvr::Sff8472Table::row;

constexpr std::string_view tuningPageLabel = "02h";
constexpr std::size_t firstRegister = 0xa200;
/// Where live values, status bits, alarms and warnings end on page A2h.
constexpr std::size_t liveEnd = row( "warningFlags" ).end();

/// Page A2h as a driver leaves it: of a tunable module with the tuning page in its upper half, and
/// with nothing there that could pass for it. The image may have that page as a section of its own.
std::string drivenA2h( ModuleImage const & image ) {
   constexpr std::size_t half = Xcvr::Sff8472Table::pageSize / 2;
   constexpr char tuningPage = 2;
   constexpr std::size_t pageSelect = row( "tuningPageSelect" ).at;
   std::string const * a2h = image.page( Xcvr::Sff8472Table::a2h );
   if ( !a2h || a2h->size() < half ) {
      return a2h ? *a2h : std::string();
   }
   std::string bytes = *a2h;
   if ( std::string const * tuning = image.page( tuningPageLabel ) ) {
      bytes.resize( half );
      bytes[pageSelect] = tuningPage;
      bytes += *tuning;
   } else if ( bytes[pageSelect] != tuningPage ) {
      bytes.resize( half );
   }
   return bytes;
}

class SfpModule : public ModuleOf<Xcvr::SfpNewStatus> {
 public:
   SfpModule( ModuleImage image, FamilyTables const & family );

   void form( Report & report ) const override;
   void origin( Report & report ) const override {
      addReading( report, row( "vendorOui" ), "Vendor OUI", pageA0h() );
   }
   void medium( Report & report ) const override;
   void features( Report & report ) const override;
   void condition( Report & report ) const override;

   [[nodiscard]] Xcvr::MediaTypeDecision mediaTypeDecision() const override {
      return contents().mediaTypeDecision();
   }
   void ruleInputs( Report & report ) const override;

   [[nodiscard]] PageLayout layoutOf( std::string_view page ) const override;

   [[nodiscard]] std::vector<Checksum> checksums() const override;
   [[nodiscard]] std::uint8_t identifier() const override { return contents().identifier(); }
   [[nodiscard]] bool domAdvertised() const override { return contents().domSupported(); }
   [[nodiscard]] std::string domPlace() const override;

   [[nodiscard]] Contents const & contents() const { return status_->sff8472IdEepromContents(); }

 private:
   [[nodiscard]] PageView pageA0h() const { return contents().buf().view(); }
   [[nodiscard]] PageView pageA2h() const { return contents().eepromPageA2Data().view(); }
   [[nodiscard]] bool isPassiveCable() const {
      return pageA0h().bit( bit( "compliance", "passive cable" ) );
   }
   [[nodiscard]] bool isActiveCable() const {
      return pageA0h().bit( bit( "compliance", "active cable" ) );
   }
   [[nodiscard]] bool isCable() const { return isPassiveCable() || isActiveCable(); }
   void bitrate( Report & report ) const;
   void lengths( Report & report ) const;
   void wavelength( Report & report ) const;
};

SfpModule::SfpModule( ModuleImage image, FamilyTables const & family )
   : ModuleOf( std::move( image ), family, Xcvr::sfpNewStatusFactory( "image" ) ) {
   std::string const a2h = drivenA2h( this->image() );
   status_->actualIdEepromContentsIs(
      Contents( Vel::String( page( Xcvr::Sff8472Table::a0h ) ), Vel::String( a2h ), readTime ) );
   for ( std::size_t at = 0; at < a2h.size(); ++at ) {
      status_->registerDataIs( Xcvr::XcvrSff8472DomRegisterData(
         static_cast<std::uint16_t>( firstRegister + at ), static_cast<std::uint8_t>( a2h[at] ) ) );
   }
   status_->idEepromValidIs( true );
   status_->readyIs( true );
   // A part of the thresholds, or of the live values, is as good as none: the rest would read as 0.
   if ( a2h.size() >= row( "storedCcDmi" ).end() ) {
      status_->lastDomThresholdsUpdateTimeIs( readTime );
   }
   if ( a2h.size() >= liveEnd ) {
      status_->lastDomUpdateTimeIs( readTime );
   }
}

void SfpModule::form( Report & report ) const {
   addCode( report, row( "identifier" ), "Identifier", contents().identifier() );
   addCode( report, row( "extIdentifier" ), "Extended identifier", contents().extIdentifier() );
   addCode( report, row( "connector" ), "Connector", contents().connector() );
}

void SfpModule::medium( Report & report ) const {
   addBits( report, row( "compliance" ), "Compliance codes", pageA0h() );
   addCode( report, row( "complianceExtended" ), "Extended compliance",
            contents().complianceExtended() );
   addCode( report, row( "encoding" ), "Encoding", contents().encoding() );
   bitrate( report );
   lengths( report );
   wavelength( report );
   addBits( report, row( "options" ), "Options", pageA0h() );
}

/// SFF-8472 gives the limits in percent of the nominal rate. A rate too high for the nominal byte is
/// in units of 250 MBd where the upper limit is otherwise, and the other limit counts both ways. No
/// rate falls by more than all of it: such a lower limit says nothing.
void SfpModule::bitrate( Report & report ) const {
   constexpr std::uint8_t seeMaximum = 0xff;
   bool const isHigh = contents().bitrateNominal() == seeMaximum;
   int const nominal = isHigh ? contents().bitrateMax() * 250 : contents().bitrateNominal() * 100;
   int const percentBelow = contents().bitrateMin();
   int const percentAbove = isHigh ? percentBelow : contents().bitrateMax();
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

void SfpModule::lengths( Report & report ) const {
   addLength( report, row( "length9umKm" ), "Length (SMF, in km)", contents().length9umKm() );
   addLength( report, row( "length9um100m" ), "Length (SMF, in 100 m)",
              contents().length9um100m() );
   addLength( report, row( "lengthOm1" ), "Length (OM1)", contents().lengthOm1() );
   addLength( report, row( "lengthOm2" ), "Length (OM2)", contents().lengthOm2() );
   addLength( report, row( "lengthOm3" ), "Length (OM3)", contents().lengthOm3() );
   // What reaches through other multimode fibre has its OM4 reach, in the same unit, where a cable
   // has its length.
   bool const isMultimode =
      contents().lengthOm1() || contents().lengthOm2() || contents().lengthOm3();
   bool const isOm4 = isMultimode && !isCable();
   MemoryField om4 = row( "lengthOm3" );
   om4.name = "lengthOm4";
   addLength( report, om4, "Length (OM4)", isOm4 ? contents().lengthCopper() : 0 );
   addLength( report, row( "lengthCopper" ), "Length (cable)",
              isOm4 ? 0 : contents().lengthCopper() );
}

/// A cable has no wavelength: what it keeps in these bytes is shown as it is.
void SfpModule::wavelength( Report & report ) const {
   auto const addCompliance = [&]( MemoryField const & field, char const * label,
                                   std::uint16_t code ) {
      report.push_back( { .member = std::string( field.name ),
                          .value = code,
                          .label = label,
                          .text = fmt::format( "0x{:04x}", code ) } );
   };
   if ( isPassiveCable() ) {
      addCompliance( row( "passiveAttenuation" ), "Passive cable compliance",
                     contents().passiveAttenuation().value() );
   }
   if ( isActiveCable() ) {
      addCompliance( row( "activeAttenuation" ), "Active cable compliance",
                     contents().activeAttenuation().value() );
   }
   if ( isCable() ) {
      return;
   }
   int const fraction = contents().laserWavelengthFractional();
   double const hundredths = contents().laserWavelengthInteger() * 100. + fraction;
   report.push_back( { .member = "laserWavelength",
                       .value = hundredths / 100,
                       .unit = "nm",
                       .label = hundredths > 0 ? "Wavelength" : "",
                       .text = fmt::format( "{:.{}f} nm", hundredths / 100, fraction ? 2 : 0 ) } );
}

void SfpModule::features( Report & report ) const {
   addBits( report, row( "diagsMonitoringType" ), "Diagnostic monitoring", pageA0h() );
   addBits( report, row( "enhancedOptions" ), "Enhanced options", pageA0h() );
   addCode( report, row( "revision" ), "SFF-8472 revision", contents().revision() );
}

/// What is lit now, and what was since the last reading.
void SfpModule::condition( Report & report ) const {
   bool const isRead = status_->domInfoValid( Xcvr::LaneId() );
   Xcvr::SfpStatusBits const bits = status_->statusBits();
   Xcvr::SfpDomFlags const flags = status_->domFlags();
   bool const hasFlags =
      isRead && pageA0h().bit( bit( "enhancedOptions", "alarm and warning flags" ) );
   addIf( isRead, report,
          { .member = "statusBits",
            .value = jsonOf( bits ),
            .label = "Status bits",
            .text = joined( trueOnes( bits ) ),
            .alarming = bits.txFault() || bits.rxLos() } );
   addIf( hasFlags, report,
          { .member = "domFlags",
            .value = jsonOf( flags ),
            .label = "Alarms and warnings",
            .text = joined( trueOnes( flags ) ),
            .alarming = flags != Xcvr::SfpDomFlags() } );
}

std::vector<Checksum> SfpModule::checksums() const {
   struct Row {
      char const * name;
      char const * label;
      MemoryField const & field;
      int ( Contents::*computed )() const;
      bool ( Contents::*valid )() const;
   };
   static constexpr Row rows[] = {
      { "ccBase", "base", row( "storedCcBase" ), &Contents::computedCcBase,
        &Contents::ccBaseValid },
      { "ccExt", "extended", row( "storedCcExt" ), &Contents::computedCcExt,
        &Contents::ccExtValid },
      { "ccDmi", "diagnostics", row( "storedCcDmi" ), &Contents::computedCcDmi,
        &Contents::ccDmiValid },
   };
   std::vector<Checksum> result;
   for ( auto const & [name, label, field, computed, valid] : rows ) {
      PageView const page = field.page == Xcvr::Sff8472Table::a2h ? pageA2h() : pageA0h();
      if ( page.empty() || !contents().fieldInUse( field ) ) {
         continue;
      }
      result.push_back( { .name = name,
                          .label = label,
                          .page = field.page,
                          .stored = byteOf( page, field ),
                          .computed = static_cast<unsigned>( ( contents().*computed )() ) & 0xff,
                          .valid = ( contents().*valid )() } );
   }
   return result;
}

void SfpModule::ruleInputs( Report & report ) const {
   auto const add = [&]( char const * label, std::string const & text ) {
      report.push_back( { .label = label, .text = text } );
   };
   add( "Byte 12, bit rate", fmt::format( "{} x 100 MBd", contents().bitrateNominal() ) );
   if ( MemoryField const & length = row( "dwdmLength" ); contents().fieldInUse( length ) ) {
      add( "Bytes 13-14, DWDM length", fieldText( pageA0h(), length ) );
   }
   add( "Bytes 60-61, wavelength",
        fmt::format( "{} nm", pageA0h().s16be( row( "laserWavelengthInteger" ).at ) ) );
}

PageLayout SfpModule::layoutOf( std::string_view label ) const {
   using namespace Xcvr::Sff8472Table;
   constexpr std::size_t half = pageSize / 2;
   // The tuning page is the upper half of A2h while it is selected. As a section of its own it is
   // whether or not A2h shows it.
   bool const isTuningPage = label == tuningPageLabel;
   bool const isDevice = label == a0h || label == a2h;
   Contents shown = contents();
   if ( label == a2h ) {
      shown.eepromPageA2DataIs( Vel::String( page( a2h ) ) );
   }
   PageLayout layout{ .firstAddress = isDevice ? 0 : half };
   for ( MemoryField field : Xcvr::sff8472Fields() ) {
      bool const isHere =
         isTuningPage ? field.page == a2h && field.at >= half : field.page == label;
      if ( isHere && shown.fieldInUse( field ) ) {
         field.at = static_cast<std::uint16_t>( field.at - layout.firstAddress );
         layout.fields.push_back( field );
      }
   }
   if ( label == a2h && shown.domExternallyCalibrated() ) {
      layout.remark = "monitors and thresholds before calibration";
   }
   return layout;
}

std::string SfpModule::domPlace() const {
   return fmt::format( "page a2h up to byte {}", liveEnd - 1 );
}

// What can be wrong in an SFP only. The checks are asked of SFP modules.

using Sentences = std::vector<std::string>;

SfpModule const & sfp( Module const & module ) {
   return static_cast<SfpModule const &>( module );
}

Sentences ofMissingCalibration( Module const & module ) {
   Contents const & contents = sfp( module ).contents();
   if ( !contents.domSupported() || contents.domInternallyCalibrated() ||
        contents.domExternallyCalibrated() ) {
      return {};
   }
   return { "The module says that it has monitors, but not how they are calibrated" };
}

/// Of connectors the plain cases only: some are used for fibre and for copper.
Sentences ofOtherConnector( Module const & module ) {
   struct Connector {
      std::uint8_t code;
      bool optical;
   };
   static constexpr Connector connectors[] = {
      { 0x01, true },  // SC
      { 0x07, true },  // LC
      { 0x0b, true },  // optical pigtail
      { 0x21, false }, // copper pigtail
      { 0x22, false }, // RJ45
   };
   std::uint8_t const code = sfp( module ).contents().connector();
   auto const connector = std::ranges::find( connectors, code, &Connector::code );
   std::string const mediaType( module.status().mediaTypeString().view() );
   // The unknown kinds count as not optical, but nobody knows.
   if ( connector == std::end( connectors ) || mediaType.starts_with( "Unknown" ) ||
        connector->optical == module.status().optical() ) {
      return {};
   }
   return { fmt::format( "The connector is {}, but the media type is {}",
                         codeText( row( "connector" ), code ), mediaType ) };
}

constexpr Check sfpChecks[] = {
   { "dom-calibration", ofMissingCalibration,
     "Its monitors and thresholds cannot be read; tell the vendor that bits 5 and 4 of byte 92 of "
     "A0h are both 0." },
   { "connector", ofOtherConnector,
     "One of the two is wrong: see with xcvr explain which bytes gave the media type." },
};

} // namespace

std::unique_ptr<Module> sfpModule( ModuleImage image ) {
   return std::make_unique<SfpModule>( std::move( image ),
                                       FamilyTables{ Xcvr::sff8472MediaTypeRules(), sfpChecks } );
}

} // namespace XcvrTool
