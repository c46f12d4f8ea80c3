#include "tools/xcvr/Facts.h"
#include "tools/xcvr/Families.h"
#include "tools/xcvr/FamilyChecks.h"
#include "tools/xcvr/FieldText.h"

#include <Xcvr/XcvrQsfpPlus.h>
#include <Xcvr/XcvrQsfpStatus.h>

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace XcvrTool {

namespace {

using Contents = Xcvr::Sff8436IdEepromContents;
using Xcvr::LaneId;
using Xcvr::MemoryField;
using Xcvr::PageView;
using Xcvr::QsfpNewStatus;
using Xcvr::Sff8436Table::row;

/// Where live values, and before them flags, end on the lower page.
constexpr std::size_t liveEnd = row( "txPower4" ).end();
constexpr std::size_t thresholdEnd = row( "txPowerLowWarn" ).end();
constexpr std::size_t enhancedEnd = row( "parameter24Config" ).end();
constexpr std::size_t enhancedThresholdEnd = row( "thresholdSet15" ).end();

/// A page with what is on it, in the order of Sff8436PageId.
struct PageName {
   std::string_view label;
   char const * contents;
};

constexpr PageName pageNames[] = {
   { Xcvr::Sff8436Table::lower, "status and monitors" },
   { Xcvr::Sff8436Table::upper00h, "identification" },
   { Xcvr::Sff8436Table::upper02h, "user text" },
   { Xcvr::Sff8436Table::upper03h, "thresholds" },
   { Xcvr::Sff8436Table::upper20h, "enhanced monitors" },
   { Xcvr::Sff8436Table::upper21h, "enhanced thresholds" },
};
static_assert( std::size( pageNames ) == static_cast<std::size_t>( Xcvr::maxQsfpPages ) );

class QsfpModule : public ModuleOf<QsfpNewStatus> {
 public:
   QsfpModule( ModuleImage image, FamilyTables const & family );

   void form( Report & report ) const override;
   void origin( Report & report ) const override;
   void medium( Report & report ) const override;
   void features( Report & report ) const override;
   void condition( Report & report ) const override;

   [[nodiscard]] Xcvr::MediaTypeDecision mediaTypeDecision() const override {
      return contents().mediaTypeDecision();
   }
   void ruleInputs( Report & report ) const override;

   [[nodiscard]] PageLayout layoutOf( std::string_view page ) const override;

   [[nodiscard]] std::vector<Checksum> checksums() const override;
   [[nodiscard]] bool isIdentified() const override { return !upper().empty(); }
   [[nodiscard]] std::uint8_t identifier() const override;
   [[nodiscard]] bool domAdvertised() const override { return contents().domSupported(); }
   [[nodiscard]] std::string domPlace() const override;

   [[nodiscard]] Contents const & contents() const { return status_->sff8436IdEepromContents(); }
   [[nodiscard]] PageView lower() const { return contents().eepromPage00LowerData().view(); }
   [[nodiscard]] PageView upper() const { return contents().eepromPage00UpperData().view(); }

 private:
   void bitrate( Report & report ) const;
   void lengths( Report & report ) const;
   void wavelength( Report & report ) const;
   void flags( Report & report ) const;
   void controls( Report & report ) const;
   void tuning( Report & report ) const;
};

QsfpModule::QsfpModule( ModuleImage image, FamilyTables const & family )
   : ModuleOf( std::move( image ), family, Xcvr::qsfpNewStatusFactory( "image" ) ) {
   for ( std::size_t id = 0; id < std::size( pageNames ); ++id ) {
      status_->idEepromContentsIs( static_cast<std::uint8_t>( id ),
                                   Vel::String( page( pageNames[id].label ) ) );
   }
   status_->updateLastValidTime( readTime );
   status_->idEepromValidIs( true );
   status_->readyIs( true );
   // A part of the live values, or of the thresholds, is as good as none: the rest would read as 0.
   if ( page( Xcvr::Sff8436Table::lower ).size() >= liveEnd ) {
      status_->lastDomUpdateTimeIs( readTime );
   }
   if ( page( Xcvr::Sff8436Table::upper03h ).size() >= thresholdEnd ) {
      status_->lastDomThresholdsUpdateTimeIs( readTime );
   }
   if ( page( Xcvr::Sff8436Table::upper20h ).size() >= enhancedEnd ) {
      status_->lastEnhancedDomUpdateTimeIs( readTime );
   }
   if ( page( Xcvr::Sff8436Table::upper21h ).size() >= enhancedThresholdEnd ) {
      status_->lastEnhancedDomThresholdsUpdateTimeIs( readTime );
   }
}

/// Upper page 00h begins with the byte that the lower page begins with.
std::uint8_t QsfpModule::identifier() const {
   return upper().empty() ? lower().u8( row( "lowerIdentifier" ).at ) : contents().identifier();
}

void QsfpModule::form( Report & report ) const {
   addCode( report, row( "identifier" ), "Identifier", identifier() );
   if ( !isIdentified() ) {
      report.push_back(
         { .label = "Page 00h",
           .text = "not in the image: it says what the module is and what it monitors",
           .alarming = true } );
      return;
   }
   addBits( report, row( "identifierExtended" ), "Extended identifier", upper() );
   addCode( report, row( "connector" ), "Connector", contents().connector() );
}

void QsfpModule::origin( Report & report ) const {
   if ( isIdentified() ) {
      addReading( report, row( "vendorOui" ), "Vendor OUI", upper() );
   }
   auto const addIfThere = [&]( char const * member, char const * label,
                                Vel::String const & text ) {
      if ( !unpadded( text ).empty() ) {
         addText( report, member, label, text );
      }
   };
   addIfThere( "cleiCode", "CLEI code", contents().cleiCode() );
   addIfThere( "userText", "User text", contents().userText() );
}

void QsfpModule::medium( Report & report ) const {
   if ( !isIdentified() ) {
      return;
   }
   addBits( report, row( "compliance" ), "Compliance codes", upper() );
   addCode( report, row( "complianceExtended" ), "Extended compliance",
            contents().complianceExtended() );
   addCode( report, row( "encoding" ), "Encoding", contents().encoding() );
   bitrate( report );
   lengths( report );
   addBits( report, row( "deviceTech" ), "Transmitter and receiver", upper() );
   wavelength( report );
   addBits( report, row( "options" ), "Options", upper() );
}

/// Of one lane. A rate too high for the nominal byte is in another, in units of 250 MBd.
void QsfpModule::bitrate( Report & report ) const {
   MemoryField const & field =
      contents().higherBitrate() ? row( "bitrateExtended" ) : row( "bitrateNominal" );
   int const rate = static_cast<int>( upper().value( field ) );
   report.push_back( { .member = "bitrate/nominal",
                       .value = rate,
                       .unit = "MBd",
                       .label = "Bit rate",
                       .text = rate == 0 ? "unspecified" : fmt::format( "{} MBd a lane", rate ) } );
}

void QsfpModule::lengths( Report & report ) const {
   constexpr std::uint8_t notSeparable = 0x23;
   bool const isCable =
      contents().deviceTechnology() >= Xcvr::Sff8436DeviceTechnology::copperUnequalized ||
      contents().connector() == notSeparable;
   struct Length {
      MemoryField const & field;
      char const * label;
   };
   Length const fields[] = {
      { row( "lengthSmf" ), "Length (SMF)" },
      { row( "lengthOm1" ), "Length (OM1)" },
      { row( "lengthOm2" ), "Length (OM2)" },
      { row( "lengthOm3" ), "Length (OM3)" },
      // One byte, by the transmitter and the connector.
      { row( "lengthOm4" ), "Length (OM4)" },
      { row( "lengthActiveCable" ), "Length (cable)" },
      { row( "lengthCableOrOm4" ), isCable ? "Length (cable)" : "Length (OM4)" },
   };
   for ( auto const & [field, label] : fields ) {
      if ( contents().fieldInUse( field ) ) {
         addLength( report, field, label, upper().u8( field.at ) );
      }
   }
}

/// A copper cable has its attenuation instead.
void QsfpModule::wavelength( Report & report ) const {
   struct Number {
      MemoryField const & field;
      char const * label;
      int decimals;
   };
   static constexpr Number numbers[] = {
      { row( "laserWavelength" ), "Wavelength", 2 },
      { row( "wavelengthTolerance" ), "Wavelength tolerance", 3 },
      { row( "attenuation2p5GHz" ), "Attenuation at 2.5 GHz", 0 },
      { row( "attenuation5GHz" ), "Attenuation at 5 GHz", 0 },
      { row( "attenuation7GHz" ), "Attenuation at 7 GHz", 0 },
      { row( "attenuation12p9GHz" ), "Attenuation at 12.9 GHz", 0 },
   };
   for ( auto const & [field, label, decimals] : numbers ) {
      if ( contents().fieldInUse( field ) ) {
         addNumber( report, field.name, label, upper().value( field ), field.unit, decimals );
      }
   }
}

void QsfpModule::features( Report & report ) const {
   if ( isIdentified() ) {
      addBits( report, row( "diagsMonitoringType" ), "Diagnostic monitoring", upper() );
      addBits( report, row( "enhancedOptions" ), "Enhanced options", upper() );
   }
   addCode( report, row( "revisionCompliance" ), "Revision", contents().revisionCompliance() );
   report.push_back( { .member = "flatMemory", .value = contents().flatMemory() } );
   addNumber( report, "maxPower", "Maximum power", contents().maxPower(), "W", 1 );
   addNumber( report, "maxCaseTemp", "Maximum case temperature", contents().maxCaseTemp(), "°C" );
   addNumber( report, "propagationDelay", "Propagation delay",
              lower().value( row( "propagationDelay" ) ), "ns", 0 );
}

/// What a getter of the status says of each lane. Its numbers, which are codes, are for programs only.
template <ModelValue T>
void addLanes( bool isHeld, Report & report, Fact fact, QsfpNewStatus const & status,
               T ( QsfpNewStatus::*get )( LaneId ) const ) {
   std::vector<LaneBits> all;
   T::velFields( [&]<typename F>( auto const & label, F T::*field ) {
      std::string const name( fieldName( label ) );
      LaneBits bits{ name, wordsOf( name ), 0 };
      for ( std::uint8_t lane = 0; lane < QsfpNewStatus::lanes; ++lane ) {
         F const value = ( status.*get )( LaneId( lane ) ).*field;
         fact.value[lane][name] = value;
         bits.mask |= unsigned{ value } << lane;
      }
      if constexpr ( std::is_same_v<F, bool> ) {
         all.push_back( bits );
      }
   } );
   addLaneBits( isHeld, report, std::move( fact ), all, QsfpNewStatus::lanes );
}

/// What was lit since the last reading, and what the module says of itself.
void QsfpModule::flags( Report & report ) const {
   bool const isRead = status_->domInfoValid( LaneId() );
   Xcvr::QsfpModuleFlags const module = status_->moduleFlags();
   // Those that say nothing bad.
   Xcvr::QsfpModuleFlags harmless;
   harmless.initializationCompleteIs( module.initializationComplete() );
   harmless.tcReadinessChangedIs( module.tcReadinessChanged() );
   harmless.interruptIs( module.interrupt() );
   addIf( isRead, report,
          { .member = "moduleFlags",
            .value = jsonOf( module ),
            .label = "Module flags",
            .text = joined( trueOnes( module ) ),
            .alarming = module != harmless } );
   addLanes( isRead, report, { .member = "laneFlags", .label = "Lane flags", .alarming = true },
             *status_, &QsfpNewStatus::laneFlags );
}

/// What the host has set, in a module without monitors too.
void QsfpModule::controls( Report & report ) const {
   bool const isRead = lower().has( 0, row( "pinControl" ).end() );
   Xcvr::QsfpModuleControls const module = status_->moduleControls();
   addIf( isRead, report,
          { .member = "moduleControls",
            .value = jsonOf( module ),
            .label = "Module controls",
            .text = joined( trueOnes( module ) ) } );
   addLanes( isRead, report, { .member = "laneControls", .label = "Lane controls" }, *status_,
             &QsfpNewStatus::laneControls );
}

/// The signal settings that the module has, as codes, the first lane first.
void QsfpModule::tuning( Report & report ) const {
   struct Setting {
      char const * member;
      char const * label;
      Xcvr::TuningValue ( QsfpNewStatus::*get )( LaneId ) const;
   };
   static constexpr Setting settings[] = {
      { "txInputEqualization", "Tx input equalization", &QsfpNewStatus::txInputEqualization },
      { "rxOutputPreEmphasis", "Rx output emphasis", &QsfpNewStatus::rxOutputPreEmphasis },
      { "rxOutputAmplitude", "Rx output amplitude", &QsfpNewStatus::rxOutputAmplitude },
   };
   for ( auto const & [member, label, get] : settings ) {
      std::vector<std::optional<unsigned>> codes( QsfpNewStatus::lanes );
      for ( std::uint8_t lane = 0; lane < codes.size(); ++lane ) {
         if ( auto const value = ( *status_.*get )( LaneId( lane ) ); value.valid() ) {
            codes[lane] = value.val();
         }
      }
      bool const isAny = codes != std::vector<std::optional<unsigned>>( codes.size() );
      addLaneCodes( report, member, isAny ? label : "", codes );
   }
}

void QsfpModule::condition( Report & report ) const {
   flags( report );
   controls( report );
   tuning( report );
}

std::vector<Checksum> QsfpModule::checksums() const {
   struct Row {
      char const * name;
      char const * label;
      MemoryField const & field;
      std::uint8_t ( Contents::*computed )( Xcvr::Sff8436PageId ) const;
   };
   static constexpr Row rows[] = {
      { "ccBase", "base", row( "baseChecksum" ), &Contents::baseChecksumCalculated },
      { "ccExt", "extended", row( "extendedChecksum" ), &Contents::extendedChecksumCalculated },
   };
   std::vector<Checksum> result;
   for ( auto const & [name, label, field, computed] : rows ) {
      if ( !isIdentified() ) {
         continue;
      }
      std::optional<unsigned> const stored = byteOf( upper(), field );
      unsigned const sum = ( contents().*computed )( Xcvr::eepromPage00Upper );
      result.push_back( { .name = name,
                          .label = label,
                          .page = field.page,
                          .stored = stored,
                          .computed = sum,
                          .valid = stored == sum } );
   }
   return result;
}

void QsfpModule::ruleInputs( Report & report ) const {
   auto const add = [&]( char const * label, MemoryField const & field, std::string const & unit ) {
      report.push_back(
         { .label = label, .text = fmt::format( "{}{}", upper().u8( field.at ), unit ) } );
   };
   add( "Byte 140, bit rate", row( "bitrateNominal" ), " x 100 MBd" );
   add( "Byte 142, SMF length", row( "lengthSmf" ), " km" );
   add( "Byte 143, OM3 length", row( "lengthOm3" ), " x 2 m" );
   add( "Byte 146, OM4 length", row( "lengthCableOrOm4" ), "" );
}

PageLayout QsfpModule::layoutOf( std::string_view label ) const {
   using namespace Xcvr::Sff8436Table;
   PageLayout layout{ .firstAddress = label == Xcvr::Sff8436Table::lower ? 0u : upperPageStart };
   for ( MemoryField const & field : Xcvr::sff8436Fields() ) {
      if ( field.page == label && contents().fieldInUse( field ) ) {
         layout.fields.push_back( field );
      }
   }
   auto const named = std::ranges::find( pageNames, label, &PageName::label );
   if ( named == std::end( pageNames ) ) {
      return layout;
   }
   auto const id = static_cast<Xcvr::Sff8436PageId>( named - std::begin( pageNames ) );
   layout.remark = contents().hasPage( id )
                      ? named->contents
                      : fmt::format( "{}, which the module says it lacks", named->contents );
   return layout;
}

std::string QsfpModule::domPlace() const {
   return fmt::format( "the lower page up to byte {}", liveEnd - 1 );
}

// What can be wrong in a QSFP only. The checks are asked of QSFP modules.

using Sentences = std::vector<std::string>;

QsfpModule const & qsfp( Module const & module ) {
   return static_cast<QsfpModule const &>( module );
}

/// Pages that are missing or cut. After the lower page asks the check for missing monitors.
Sentences ofMissingPages( Module const & module ) {
   Sentences found;
   for ( std::size_t id = 1; id < std::size( pageNames ); ++id ) {
      if ( qsfp( module ).contents().hasPage( static_cast<Xcvr::Sff8436PageId>( id ) ) ) {
         findMissingPage( found, module, pageNames[id].label, pageNames[id].contents );
      }
   }
   return found;
}

constexpr Check qsfpChecks[] = {
   { "page-missing", ofMissingPages, missingPageAdvice },
   identifierCopyCheck,
};

} // namespace

std::unique_ptr<Module> qsfpModule( ModuleImage image ) {
   return std::make_unique<QsfpModule>( std::move( image ),
                                        FamilyTables{ Xcvr::sff8436MediaTypeRules(), qsfpChecks } );
}

} // namespace XcvrTool
