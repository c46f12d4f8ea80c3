#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/Facts.h"
#include "tools/xcvr/Families.h"
#include "tools/xcvr/FamilyChecks.h"
#include "tools/xcvr/FieldText.h"

#include <Xcvr/XcvrInterfaceCodes.h>
#include <Xcvr/XcvrOsfpControlSet.h>
#include <Xcvr/XcvrOsfpStatus.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace XcvrTool {

namespace {

using Decoded = Xcvr::OsfpDecodedEepromContents;
using Xcvr::ChannelId;
using Xcvr::MemoryField;
using Xcvr::OsfpApplication;
using Xcvr::OsfpBank;
using Xcvr::OsfpPage;
using Xcvr::PageView;
using Xcvr::CmisTable::row;

constexpr unsigned lanes = Xcvr::osfpLanes;

// How much of a page the values take. A part of them is as good as none: the rest would read as 0.
constexpr std::size_t moduleLiveEnd = row( "voltage" ).end();
constexpr std::size_t laneLiveEnd = row( "rxPower7" ).end();
constexpr std::size_t thresholdEnd = row( "rxPowerLowWarn" ).end();

/// A page that the library decodes, with what is on it.
struct Page {
   std::string_view label;
   char const * contents;
   OsfpBank bank;
   OsfpPage page;
   bool isAlwaysThere; // in a module with flat memory too
};

constexpr Page pages[] = {
   { Xcvr::CmisTable::lower, "status, applications", OsfpBank::bankNa, OsfpPage::lowerPage00,
     true },
   { Xcvr::CmisTable::p00h, "identification", OsfpBank::bankNa, OsfpPage::upperPage00, true },
   { Xcvr::CmisTable::p01h, "advertisement", OsfpBank::bankNa, OsfpPage::upperPage01, false },
   { Xcvr::CmisTable::p02h, "thresholds", OsfpBank::bankNa, OsfpPage::upperPage02, false },
   { Xcvr::CmisTable::p10h, "lane control", OsfpBank::bank0, OsfpPage::upperPage10, false },
   { Xcvr::CmisTable::p11h, "lane status", OsfpBank::bank0, OsfpPage::upperPage11, false },
};

class CmisModule : public ModuleOf<Xcvr::CmisStatus> {
 public:
   CmisModule( ModuleImage image, FamilyTables const & family, Vel::Ptr<Xcvr::CmisStatus> status );

   void form( Report & report ) const override;
   void origin( Report & report ) const override;
   void medium( Report & report ) const override;
   void features( Report & report ) const override;
   void condition( Report & report ) const override;

   [[nodiscard]] std::uint32_t missingLanes() const override;
   [[nodiscard]] Xcvr::DomThreshold ownThreshold() const override;

   [[nodiscard]] Xcvr::MediaTypeDecision mediaTypeDecision() const override;
   void ruleInputs( Report & report ) const override;

   [[nodiscard]] PageLayout layoutOf( std::string_view page ) const override;

   [[nodiscard]] std::vector<Checksum> checksums() const override;
   [[nodiscard]] bool isIdentified() const override {
      return raw_->has( row( "moduleType" ) ) && raw_->has( row( "application1" ) );
   }
   [[nodiscard]] std::uint8_t identifier() const override;
   [[nodiscard]] bool domAdvertised() const override {
      return status_->domCapabilities() != Xcvr::DomCapabilities();
   }
   [[nodiscard]] std::string domPlace() const override;

   /// The module has the page, for all that the image says.
   [[nodiscard]] bool hasPage( Page const & page ) const;
   [[nodiscard]] PageView view( std::string_view label ) const { return page( label ); }

 private:
   /// The field can be read, and means something in this module.
   [[nodiscard]] bool isThere( MemoryField const & field ) const {
      return raw_->has( field ) && raw_->fieldInUse( field );
   }
   void addField( Report & report, MemoryField const & field, char const * label ) const;
   void addVersion( Report & report, MemoryField const & major, char const * member,
                    char const * label ) const;
   void applications( Report & report ) const;
   void lengths( Report & report ) const;
   void options( Report & report ) const;
   void moduleFlags( Report & report ) const;
   void laneFlags( Report & report ) const;
   void laneControls( Report & report ) const;
   void dataPaths( Report & report ) const;
   void tuning( Report & report ) const;
   void moduleMonitors( Report & report ) const;

   Vel::Ptr<Xcvr::OsfpRawEepromContents> raw_;
   Vel::Ptr<Decoded> decoded_;
};

CmisModule::CmisModule( ModuleImage image, FamilyTables const & family,
                        Vel::Ptr<Xcvr::CmisStatus> status )
   : ModuleOf( std::move( image ), family, std::move( status ) ),
     raw_( status_->rawEepromContents() ), decoded_( status_->decodedEepromContents() ) {
   for ( Page const & known : pages ) {
      if ( std::string_view const bytes = page( known.label ); !bytes.empty() ) {
         raw_->memoryIs( Xcvr::OsfpBankAndPage( known.bank, known.page ), Vel::String( bytes ) );
      }
   }
   status_->parseEeprom();
   status_->updateLastValidTime( readTime );
   status_->idEepromValidIs( true );
   if ( page( Xcvr::CmisTable::lower ).size() >= moduleLiveEnd &&
        page( Xcvr::CmisTable::p11h ).size() >= laneLiveEnd ) {
      status_->lastDomUpdateTimeIs( readTime );
   }
   if ( page( Xcvr::CmisTable::p02h ).size() >= thresholdEnd ) {
      status_->lastDomThresholdsUpdateTimeIs( readTime );
   }
}

bool CmisModule::hasPage( Page const & page ) const {
   return page.isAlwaysThere || ( raw_->has( row( "memoryAndSpeed" ) ) && !decoded_->flatMem() );
}

/// Upper page 00h begins with the byte that the lower page begins with.
std::uint8_t CmisModule::identifier() const {
   return static_cast<std::uint8_t>( raw_->has( row( "identifier" ) )
                                        ? raw_->number( row( "identifier" ) )
                                        : raw_->number( row( "identifierExtended" ) ) );
}

void CmisModule::form( Report & report ) const {
   addCode( report, row( "identifier" ), "Identifier", identifier() );
   std::vector<std::string> missing;
   for ( Page const & page : pages ) {
      if ( hasPage( page ) && !image().page( page.label ) ) {
         missing.push_back( fmt::format( "{} ({})", page.label, page.contents ) );
      }
   }
   if ( !missing.empty() ) {
      report.push_back(
         { .label = "Not in the image", .text = joined( missing ), .alarming = true } );
   }
   if ( raw_->has( row( "connector" ) ) ) {
      addCode( report, row( "connector" ), "Connector", decoded_->connector() );
   }
   if ( raw_->has( row( "moduleType" ) ) ) {
      addCode( report, row( "moduleType" ), "Module type",
               static_cast<std::uint8_t>( raw_->number( row( "moduleType" ) ) ) );
   }
}

void CmisModule::origin( Report & report ) const {
   PageView const page = view( Xcvr::CmisTable::p00h );
   if ( raw_->has( row( "vendorOui" ) ) ) {
      addReading( report, row( "vendorOui" ), "Vendor OUI", page );
   }
   MemoryField const & clei = row( "cleiCode" );
   if ( std::string_view const code = page.text( clei.at, clei.width );
        !unpadded( code ).empty() ) {
      addText( report, "cleiCode", "CLEI code", code );
   }
}

/// Of a field that is not there as of one that is unspecified.
void CmisModule::addField( Report & report, MemoryField const & field, char const * label ) const {
   addNumber( report, field.name, label, isThere( field ) ? view( field.page ).value( field ) : 0,
              field.unit );
}

/// "from lane 1/5": where an application may start.
std::string startText( std::uint8_t assignment ) {
   return assignment == 0 ? "(no start told)"
                          : fmt::format( "from lane {}", fmt::join( lanesIn( assignment ), "/" ) );
}

std::string laneCountText( unsigned count ) {
   return count == 0 ? "lanes as its code says"
                     : fmt::format( "{} lane{}", count, count == 1 ? "" : "s" );
}

/// What the module can connect, by select code, as the agents see it: of the media lanes they take
/// the byte behind the one that the standard has for them.
void CmisModule::applications( Report & report ) const {
   Xcvr::OsfpModuleTypeEncoding const type = decoded_->moduleType();
   bool const hasAssignments = raw_->has( row( "mediaLaneAssignment" ) ) && !decoded_->flatMem();
   Json all = Json::array();
   for ( auto const & [code, application] : decoded_->applicationMap() ) {
      std::string const host( application.hostInterfaceName().view() );
      std::string const media( application.mediaInterfaceName( type ).view() );
      all.push_back( { { "selectCode", code },
                       { "hostInterface", application.hostInterface() },
                       { "hostInterfaceName", host },
                       { "hostLaneCount", application.hostLaneCount() },
                       { "hostLaneAssignment", application.hostLaneAssignment() },
                       { "mediaInterface", application.mediaInterface() },
                       { "mediaInterfaceName", media },
                       { "mediaLaneCount", application.mediaLaneCount() },
                       { "mediaLaneAssignment",
                         hasAssignments ? Json( application.mediaLaneAssignment() ) : Json() },
                       { "mediaType", jsonOf( application.mediaType( type ) ) } } );
      std::string const mediaStart =
         hasAssignments ? ' ' + startText( application.mediaLaneAssignment() ) : "";
      report.push_back(
         { .label = fmt::format( "Application {}", code ),
           .text = fmt::format( "host {}: {} {}, media {}: {}{}", host,
                                laneCountText( application.hostLaneCount() ),
                                startText( application.hostLaneAssignment() ), media,
                                laneCountText( application.mediaLaneCount() ), mediaStart ) } );
   }
   report.push_back( { .member = "applications", .value = all } );
}

/// A length of a byte whose bits 7-6 say how much a step of bits 5-0 is.
struct StepLength {
   MemoryField const & field;
   char const * label;
   char const * unit;
   double step[4]; // 0: what the code means differs between revisions of the standard
};

constexpr StepLength stepLengths[] = {
   { row( "cableLength" ), "Length (cable)", "m", { 0.1, 1, 10, 100 } },
   { row( "lengthSmf" ), "Length (SMF)", "km", { 0.1, 1, 10, 0 } },
};

void CmisModule::lengths( Report & report ) const {
   for ( auto const & [field, label, unit, steps] : stepLengths ) {
      unsigned const code = isThere( field ) ? view( field.page ).u8( field.at ) : 0u;
      double const step = steps[code >> 6];
      double const length = step * ( code & 0x3f );
      std::string const text = step == 0
                                  ? fmt::format( "code 0x{:02x}", code )
                                  : fmt::format( "{:.{}f} {}", length, step < 1 ? 1 : 0, unit );
      report.push_back( { .member = "lengths/" + std::string( field.name ),
                          .value = step == 0 ? Json() : Json( length ),
                          .unit = unit,
                          .label = ( code & 0x3f ) != 0 ? label : "",
                          .text = text } );
   }
   static constexpr std::pair<MemoryField const &, char const *> fibres[] = {
      { row( "lengthOm5" ), "Length (OM5)" },
      { row( "lengthOm4" ), "Length (OM4)" },
      { row( "lengthOm3" ), "Length (OM3)" },
      { row( "lengthOm2" ), "Length (OM2)" },
   };
   for ( auto const & [field, label] : fibres ) {
      addLength( report, field, label,
                 isThere( field ) ? view( field.page ).u8( field.at ) : std::uint8_t( 0 ) );
   }
}

void CmisModule::options( Report & report ) const {
   static constexpr std::pair<MemoryField const &, char const *> advertised[] = {
      { row( "implControlsAdvertisement" ), "Controls" },
      { row( "implFlagsAdvertisement" ), "Flags" },
      { row( "implMonitorsAdvertisement" ), "Monitors of" },
      { row( "implSignalIntegrityControl" ), "Signal integrity" },
      { row( "rxAmplitudeAndMaxTxEq" ), "Signal codes" },
      { row( "moduleCharacteristics" ), "Characteristics" },
      { row( "receiverCharacteristics" ), "Receiver" },
      { row( "supportedPages" ), "Optional pages" },
   };
   for ( auto const & [field, label] : advertised ) {
      if ( isThere( field ) ) {
         addBits( report, field, label, view( field.page ) );
      }
   }
}

void CmisModule::medium( Report & report ) const {
   if ( isIdentified() ) {
      applications( report );
   } else {
      report.push_back( { .label = "Lower page",
                          .text = "not in the image: it says what the module is",
                          .alarming = true } );
   }
   if ( raw_->has( row( "mediaTechnology" ) ) ) {
      addCode( report, row( "mediaTechnology" ), "Transmitter",
               static_cast<std::uint8_t>( raw_->number( row( "mediaTechnology" ) ) ) );
   }
   lengths( report );
   bool const isCopper = decoded_->moduleType() == Xcvr::osfpTypePassiveCu;
   if ( isCopper ) {
      addField( report, row( "attenuation5GHz" ), "Attenuation at 5 GHz" );
      addField( report, row( "attenuation7GHz" ), "Attenuation at 7 GHz" );
      addField( report, row( "attenuation12p9GHz" ), "Attenuation at 12.9 GHz" );
      addField( report, row( "attenuation25p8GHz" ), "Attenuation at 25.8 GHz" );
   } else {
      addField( report, row( "wavelength" ), "Wavelength" );
      addField( report, row( "wavelengthTolerance" ), "Wavelength tolerance" );
   }
   options( report );
}

/// Of two numbers, the second in the byte behind the first.
void CmisModule::addVersion( Report & report, MemoryField const & major, char const * member,
                             char const * label ) const {
   PageView const page = view( major.page );
   std::string const text = fmt::format( "{}.{}", page.u8( major.at ), page.u8( major.end() ) );
   addIf( page.has( major.at, 2 ) && text != "0.0", report,
          { .member = member, .value = text, .label = label, .text = text } );
}

void CmisModule::features( Report & report ) const {
   if ( raw_->has( row( "memoryAndSpeed" ) ) ) {
      addCode( report, row( "revision" ), "Revision",
               static_cast<std::uint8_t>( raw_->number( row( "revision" ) ) ) );
      report.push_back( { .member = "flatMemory",
                          .value = decoded_->flatMem(),
                          .label = "Memory",
                          .text = decoded_->flatMem() ? "flat" : "paged" } );
      report.push_back( { .member = "maxSmbusSpeedSupported",
                          .value = jsonOf( decoded_->maxSmbusSpeedSupported() ) } );
   }
   addVersion( report, row( "activeFirmwareMajor" ), "activeFirmware", "Firmware" );
   addVersion( report, row( "inactiveFirmwareMajor" ), "inactiveFirmware", "Inactive firmware" );
   addVersion( report, row( "hardwareRevisionMajor" ), "hardwareRevision", "Hardware revision" );
   if ( raw_->has( row( "maxPower" ) ) ) {
      std::string const name(
         codeName( cmisPowerClassNames,
                   static_cast<std::uint8_t>( raw_->number( row( "powerClass" ) ) & 0xe0 ) ) );
      report.push_back( { .label = "Power class", .text = name.substr( name.rfind( ' ' ) + 1 ) } );
   }
   addField( report, row( "maxPower" ), "Maximum power" );
   addField( report, row( "maxCaseTemperature" ), "Maximum case temperature" );
   addField( report, row( "minCaseTemperature" ), "Minimum case temperature" );
   addField( report, row( "minVoltage" ), "Minimum voltage" );
   addField( report, row( "propagationDelay" ), "Propagation delay" );
}

/// Words that are true of lanes: "data path activated on lanes 1/2, data path init on lane 3".
std::string byLanes( std::array<std::string, lanes> const & words ) {
   std::vector<std::string> texts;
   for ( unsigned first = 0; first < lanes; ++first ) {
      unsigned same = 0;
      for ( unsigned lane = 0; lane < lanes; ++lane ) {
         same |= unsigned{ words[lane] == words[first] } << lane;
      }
      if ( same % ( 1u << first ) == 0 ) { // said of no lane before
         texts.push_back( words[first] + ' ' + laneWords( same, lanes ) );
      }
   }
   return joined( texts );
}

/// The module's own alarms and warnings.
void CmisModule::moduleFlags( Report & report ) const {
   struct Flag {
      char const * name;
      bool ( Decoded::*get )() const;
   };
   static constexpr Flag flags[] = {
      { "tempHiAlarm", &Decoded::tempHiAlarm },
      { "tempLoAlarm", &Decoded::tempLoAlarm },
      { "tempHiWarn", &Decoded::tempHiWarn },
      { "tempLoWarn", &Decoded::tempLoWarn },
      { "voltageHiAlarm", &Decoded::voltageHiAlarm },
      { "voltageLoAlarm", &Decoded::voltageLoAlarm },
      { "voltageHiWarn", &Decoded::voltageHiWarn },
      { "voltageLoWarn", &Decoded::voltageLoWarn },
   };
   bool const isRead = raw_->has( row( "moduleFlags" ) ) && !decoded_->flatMem();
   Json object = Json::object();
   std::vector<std::string> lit;
   for ( auto const & [name, get] : flags ) {
      bool const isLit = ( *decoded_.*get )();
      object[name] = isLit;
      if ( isLit ) {
         lit.push_back( wordsOf( name ) );
      }
   }
   addIf( isRead, report,
          { .member = "moduleFlags",
            .value = object,
            .label = "Module flags",
            .text = joined( lit ),
            .alarming = !lit.empty() } );
}

/// What the module has noticed on a lane since it was read before.
void CmisModule::laneFlags( Report & report ) const {
   struct Flag {
      char const * name;
      Decoded::LaneFlags const & flags;
   };
   Decoded const & from = *decoded_;
   Flag const flags[] = {
      { "txFault", from.txFaultMap() },
      { "txLos", from.txLosMap() },
      { "txCdrLol", from.txCdrLolMap() },
      { "txAdaptiveInputEqFault", from.txAdaptiveInputEqFaultMap() },
      { "rxLos", from.rxLosMap() },
      { "rxCdrLol", from.rxCdrLolMap() },
      { "txPowerHiAlarm", from.txPowerHiAlarmMap() },
      { "txPowerLoAlarm", from.txPowerLoAlarmMap() },
      { "txPowerHiWarn", from.txPowerHiWarnMap() },
      { "txPowerLoWarn", from.txPowerLoWarnMap() },
      { "txBiasHiAlarm", from.txBiasHiAlarmMap() },
      { "txBiasLoAlarm", from.txBiasLoAlarmMap() },
      { "txBiasHiWarn", from.txBiasHiWarnMap() },
      { "txBiasLoWarn", from.txBiasLoWarnMap() },
      { "rxPowerHiAlarm", from.rxPowerHiAlarmMap() },
      { "rxPowerLoAlarm", from.rxPowerLoAlarmMap() },
      { "rxPowerHiWarn", from.rxPowerHiWarnMap() },
      { "rxPowerLoWarn", from.rxPowerLoWarnMap() },
   };
   std::vector<LaneBits> bits;
   for ( auto const & [name, values] : flags ) {
      unsigned mask = 0;
      for ( std::uint8_t lane = 0; lane < lanes; ++lane ) {
         mask |= unsigned{ values.at( ChannelId( lane ) ) } << lane;
      }
      bits.push_back( { name, wordsOf( name ), mask } );
   }
   addLaneBits( raw_->has( row( "rxPowerLoWarn" ) ) && !from.flatMem(), report,
                { .member = "laneFlags", .label = "Lane flags", .alarming = true }, bits, lanes );
}

/// What the host has set.
void CmisModule::laneControls( Report & report ) const {
   static constexpr std::pair<MemoryField const &, char const *> controls[] = {
      { row( "dataPathDeinitRequest" ), "data path off" },
      { row( "txPolarityFlip" ), "Tx polarity flip" },
      { row( "laneTxDisable" ), "Tx disable" },
      { row( "txAutoSquelchDisable" ), "Tx auto squelch off" },
      { row( "txForceSquelch" ), "Tx force squelch" },
      { row( "txAdaptiveEqFreeze" ), "Tx EQ freeze" },
      { row( "rxPolarityFlip" ), "Rx polarity flip" },
      { row( "rxOutputDisable" ), "Rx output off" },
      { row( "rxAutoSquelchDisable" ), "Rx auto squelch off" },
   };
   bool const isModuleRead = raw_->has( row( "moduleGlobalAndSquelchControls" ) );
   MemoryField const & moduleField = row( "moduleGlobalAndSquelchControls" );
   std::vector<std::string> const module = setBits( view( moduleField.page ), moduleField );
   report.push_back( { .member = "moduleControls",
                       .value = isModuleRead ? Json( module ) : Json(),
                       .label = isModuleRead && !decoded_->flatMem() ? "Module controls" : "",
                       .text = joined( module ) } );
   std::vector<LaneBits> bits;
   for ( auto const & [field, words] : controls ) {
      bits.push_back(
         { std::string( field.name ), words, view( Xcvr::CmisTable::p10h ).u8( field.at ) } );
   }
   addLaneBits( raw_->has( row( "rxAutoSquelchDisable" ) ) && !decoded_->flatMem(), report,
                { .member = "laneControls", .label = "Lane controls" }, bits, lanes );
}

/// What the lanes carry: the state of the data path and the application in force.
void CmisModule::dataPaths( Report & report ) const {
   bool const isRead = raw_->has( row( "dataPathStates" ) ) && !decoded_->flatMem();
   Vel::String const & active = status_->eepromParser()->writeShadow()->activeControlSet();
   auto const controlSet = Xcvr::osfpControlSetFactory( active );
   Json states = Json::array();
   Json codes = Json::array();
   std::array<std::string, lanes> stateWords;
   std::array<std::string, lanes> codeWords;
   for ( std::uint8_t lane = 0; lane < lanes; ++lane ) {
      Vel::String const state = stringValue( status_->dataPathState( Xcvr::LaneId( lane ) ) );
      states.push_back( std::string( state.view() ) );
      stateWords[lane] = wordsOf( state.view() );
      unsigned const code = controlSet->laneApSel( Xcvr::OsfpLane( lane ) ) >> 4;
      codes.push_back( code );
      codeWords[lane] = code == 0 ? "none" : fmt::format( "{}", code );
   }
   addIf( isRead, report,
          { .member = "dataPathStates",
            .value = states,
            .label = "Data paths",
            .text = byLanes( stateWords ) } );
   addIf( !active.empty(), report,
          { .member = "activeApplications",
            .value = codes,
            .label = "Application in force",
            .text = byLanes( codeWords ) } );
}

/// The signal settings in force, as codes, the first lane first.
void CmisModule::tuning( Report & report ) const {
   struct Setting {
      char const * member;
      char const * label;
      Decoded::LaneCodes const & codes;
      MemoryField const & field;
   };
   Decoded const & from = *decoded_;
   Setting const settings[] = {
      { "txInputEqualization", "Tx input equalization", from.txInputEqualizationMap(),
        row( "txInputEqualization" ) },
      { "rxOutputPreEmphasis", "Rx output pre-emphasis", from.rxOutputPreEmphasisMap(),
        row( "rxOutputPreEmphasis" ) },
      { "rxOutputPostEmphasis", "Rx output post-emphasis", from.rxOutputPostEmphasisMap(),
        row( "rxOutputPostEmphasis" ) },
      { "rxOutputAmplitude", "Rx output amplitude", from.rxOutputAmplitudeMap(),
        row( "rxOutputAmplitude" ) },
   };
   for ( auto const & [member, label, codes, field] : settings ) {
      std::vector<std::optional<unsigned>> values;
      for ( std::uint8_t lane = 0; raw_->has( field ) && lane < codes.size(); ++lane ) {
         values.emplace_back( codes.at( ChannelId( lane ) ) );
      }
      addLaneCodes( report, member, !values.empty() && isThere( field ) ? label : "", values );
   }
   MemoryField const & adaptive = row( "txInputAdaptiveEqEnable" );
   bool const isRead = raw_->has( adaptive ) && !from.flatMem();
   Json values = Json::array();
   unsigned mask = 0;
   for ( std::uint8_t lane = 0; lane < lanes; ++lane ) {
      bool const isOn = from.txInputAdaptiveEqEnable( ChannelId( lane ) );
      values.push_back( isOn );
      mask |= unsigned{ isOn } << lane;
   }
   addIf( isRead, report,
          { .member = "txInputAdaptiveEqEnable",
            .value = values,
            .label = isThere( adaptive ) ? "Adaptive Tx equalization" : "",
            .text = mask == 0 ? "off" : laneWords( mask, lanes ) } );
}

/// What the status cannot tell: the monitors of the lower page if those of the lanes are missing, and
/// limits that the system takes from another place.
void CmisModule::moduleMonitors( Report & report ) const {
   static constexpr std::pair<MemoryField const &, char const *> monitors[] = {
      { row( "temperature" ), "Temperature" },
      { row( "voltage" ), "Supply voltage" },
   };
   PageView const lower = view( Xcvr::CmisTable::lower );
   bool const isAdvertisementRead = raw_->has( row( "implMonitorsAdvertisement" ) );
   for ( auto const & [field, label] : monitors ) {
      bool const isRead = raw_->has( field ) && !decoded_->flatMem() &&
                          ( isAdvertisementRead ? isThere( field ) : lower.value( field ) != 0 );
      bool const isTold = isRead && !status_->domInfoValid( Xcvr::LaneId() );
      report.push_back( { .label = isTold ? label : "", .text = fieldText( lower, field ) } );
   }
   MemoryField const & high = row( "voltageHighWarnUnused" );
   MemoryField const & low = row( "voltageLowWarnUnused" );
   if ( status_->domThresholdValid() && isThere( high ) ) {
      PageView const page = view( high.page );
      report.push_back(
         { .label = "Voltage warnings",
           .text = fmt::format( "{} and {} in the module; the system goes by those "
                                "in the table, from another place",
                                fieldText( page, low ), fieldText( page, high ) ) } );
   }
}

void CmisModule::condition( Report & report ) const {
   if ( raw_->has( row( "moduleState" ) ) ) {
      bool const isFault = status_->moduleState() == Xcvr::moduleFault;
      auto const code = static_cast<unsigned>( status_->moduleState() );
      std::string_view const name =
         codeName( moduleStateNames, static_cast<std::uint8_t>( code << 1 ) );
      report.push_back(
         { .member = "moduleState",
           .value = jsonOf( status_->moduleState() ),
           .label = "Module state",
           .text = name.empty() ? fmt::format( "code {}", code ) : std::string( name ),
           .alarming = isFault } );
      if ( isFault && raw_->has( row( "faultCause" ) ) ) {
         addCode( report, row( "faultCause" ), "Fault cause",
                  static_cast<std::uint8_t>( raw_->number( row( "faultCause" ) ) ) );
      }
   }
   moduleFlags( report );
   laneFlags( report );
   laneControls( report );
   dataPaths( report );
   tuning( report );
   moduleMonitors( report );
}

std::vector<Checksum> CmisModule::checksums() const {
   struct Row {
      char const * label;
      MemoryField const & field;
      OsfpPage page;
   };
   static constexpr Row rows[] = {
      { "identification", row( "checksumUpperPage00" ), OsfpPage::upperPage00 },
      { "advertisement", row( "checksumUpperPage01" ), OsfpPage::upperPage01 },
      { "thresholds", row( "checksumUpperPage02" ), OsfpPage::upperPage02 },
   };
   std::vector<Checksum> result;
   for ( auto const & [label, field, page] : rows ) {
      if ( !decoded_->checksumHas( page ) ) {
         continue;
      }
      result.push_back( { .name = field.name,
                          .label = label,
                          .page = field.page,
                          .stored = byteOf( view( field.page ), field ),
                          .computed = decoded_->checksumCalculated( page ),
                          .valid = raw_->has( field ) && decoded_->checksumValid( page ) } );
   }
   return result;
}

std::uint32_t CmisModule::missingLanes() const {
   return static_cast<std::uint32_t>( raw_->number( row( "mediaLanesMissing" ) ) );
}

Xcvr::DomThreshold CmisModule::ownThreshold() const {
   Xcvr::DomThreshold threshold = status_->domThreshold();
   PageView const page = view( Xcvr::CmisTable::p02h );
   threshold.voltageHighWarnIs( page.value( row( "voltageHighWarnUnused" ) ) );
   threshold.voltageLowWarnIs( page.value( row( "voltageLowWarnUnused" ) ) );
   return threshold;
}

// A table of codes decides, which one the type of the module says; the media type of a rule is what
// its table finds.
constexpr Xcvr::MediaTypeRule rules[] = {
   { "optical, multimode: media interface code", Xcvr::xcvrUnknown },
   { "optical, single-mode: media interface code", Xcvr::xcvrUnknown },
   { "passive copper: host interface code", Xcvr::xcvrUnknown },
   { "active cable: media interface code", Xcvr::xcvrUnknown },
   { "BASE-T: media interface code", Xcvr::xcvrUnknown },
   { "any other module type", Xcvr::xcvrUnknown },
};

Xcvr::MediaTypeDecision CmisModule::mediaTypeDecision() const {
   auto const type = static_cast<std::size_t>( decoded_->moduleType() );
   std::size_t const last = std::size( rules ) - 1;
   std::size_t const rule = type >= 1 && type <= last ? type - 1 : last;
   return { decoded_->detectedMediaType(), rule, rules[rule].why };
}

void CmisModule::ruleInputs( Report & report ) const {
   OsfpApplication const first = decoded_->moduleTypeIdentifier();
   auto const add = [&]( char const * label, std::uint8_t code, Vel::String const & name ) {
      report.push_back(
         { .label = label, .text = fmt::format( "0x{:02x} ({})", code, name.view() ) } );
   };
   if ( isIdentified() ) {
      add( "Byte 86, host interface", first.hostInterface(), first.hostInterfaceName() );
      add( "Byte 87, media interface", first.mediaInterface(),
           first.mediaInterfaceName( decoded_->moduleType() ) );
   }
}

PageLayout CmisModule::layoutOf( std::string_view label ) const {
   // Pages of other banks are laid out like those of bank 0.
   std::string_view const ofBank0 = label.substr( 0, label.find( '.' ) );
   bool const isLower = label == Xcvr::CmisTable::lower;
   PageLayout layout{ .firstAddress = isLower ? 0u : Xcvr::CmisTable::pageSize };
   auto const named = std::ranges::find( pages, ofBank0, &Page::label );
   if ( named == std::end( pages ) ) {
      return layout;
   }
   bool const isInModule = hasPage( *named ) || !raw_->has( row( "memoryAndSpeed" ) );
   for ( MemoryField const & field : Xcvr::cmisFields() ) {
      // Without the advertisement nobody knows what is in use: all is shown. The parts of the control
      // set say more than the whole.
      if ( field.page == ofBank0 && field.name != "activeControlSet" && isInModule &&
           ( !raw_->has( row( "implSignalIntegrityControl" ) ) || raw_->fieldInUse( field ) ) ) {
         layout.fields.push_back( field );
      }
   }
   layout.remark = named->contents;
   if ( named->bank == OsfpBank::bank0 ) {
      layout.remark += ", lanes count from 0";
   }
   layout.remark += isInModule ? "" : ", which the module says it lacks";
   return layout;
}

std::string CmisModule::domPlace() const {
   return fmt::format( "the lower page up to byte {} or page 11h up to byte {}", moduleLiveEnd - 1,
                       Xcvr::CmisTable::pageSize + laneLiveEnd - 1 );
}

// What can be wrong in these modules only. The checks are asked of them.

using Sentences = std::vector<std::string>;

CmisModule const & cmis( Module const & module ) {
   return static_cast<CmisModule const &>( module );
}

Sentences ofMissingPages( Module const & module ) {
   Sentences found;
   for ( Page const & page : pages ) {
      if ( cmis( module ).hasPage( page ) ) {
         findMissingPage( found, module, page.label, page.contents );
      }
   }
   return found;
}

Sentences ofFault( Module const & module ) {
   MemoryField const & field = row( "faultCause" );
   if ( cmis( module ).status().moduleState() != Xcvr::moduleFault ) {
      return {};
   }
   return { fmt::format( "The module is in its fault state, cause {}",
                         fieldText( cmis( module ).view( field.page ), field ) ) };
}

constexpr Check cmisChecks[] = {
   { "page-missing", ofMissingPages, missingPageAdvice },
   identifierCopyCheck,
   { "module-fault", ofFault, "Reset the module; if it stays so, it is one to replace." },
};

} // namespace

std::unique_ptr<Module> cmisModule( ModuleImage image ) {
   auto status = image.family == XcvrType::osfp
                    ? Vel::Ptr<Xcvr::CmisStatus>( Xcvr::osfpStatusFactory( "image" ) )
                    : Xcvr::qsfpDdStatusFactory( "image" );
   return std::make_unique<CmisModule>( std::move( image ), FamilyTables{ rules, cmisChecks },
                                        std::move( status ) );
}

} // namespace XcvrTool
