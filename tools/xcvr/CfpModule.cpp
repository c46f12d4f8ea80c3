#include "tools/xcvr/Facts.h"
#include "tools/xcvr/Families.h"
#include "tools/xcvr/FieldText.h"

#include <Xcvr/XcvrCfp2.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <fmt/format.h>
#include <iterator>
#include <utility>

namespace XcvrTool {

namespace {

using Contents = Xcvr::CfpMsaMisIdEepromContents;
using Xcvr::CfpMsaMisTableId;
using Xcvr::CfpRegister;
using Xcvr::CfpRegisterKind;
using Xcvr::DomCapabilities;
using Xcvr::LaneId;
using Xcvr::MemoryField;
using Xcvr::MemoryKind;
using Xcvr::PageView;

std::size_t bytesPerRegister( CfpMsaMisTableId table ) {
   return Xcvr::cfpRegisterWidth( table ) / 8;
}

/// The label of a table's section in an image: "a000h".
std::string_view labelOf( CfpMsaMisTableId table ) {
   static std::vector<std::string> const labels = [] {
      std::vector<std::string> all;
      for ( std::size_t id = 0; id < static_cast<std::size_t>( Xcvr::maxCfpTables ); ++id ) {
         auto const address = Xcvr::cfpFirstAddress( static_cast<CfpMsaMisTableId>( id ) );
         all.push_back( fmt::format( "{:04x}h", address ) );
      }
      return all;
   }();
   return labels[static_cast<std::size_t>( table )];
}

/// The table of a label that names one; `tableInvalid` for none that is known.
CfpMsaMisTableId tableOf( std::string_view label ) {
   for ( std::size_t id = 0; id < static_cast<std::size_t>( Xcvr::maxCfpTables ); ++id ) {
      if ( labelOf( static_cast<CfpMsaMisTableId>( id ) ) == label ) {
         return static_cast<CfpMsaMisTableId>( id );
      }
   }
   return Xcvr::tableInvalid;
}

struct TableName {
   CfpMsaMisTableId table;
   char const * contents;
};

constexpr TableName tableNames[] = {
   { Xcvr::table8000, "identification" },
   { Xcvr::table8080, "thresholds" },
   { Xcvr::table8180, "tuning range" },
   { Xcvr::table8420, "vendor revision" },
   { Xcvr::tableA000, "module status and monitors" },
   { Xcvr::tableA200, "network lane status" },
   { Xcvr::tableA280, "network lane monitors" },
   { Xcvr::tableA400, "host lane status and settings" },
   { Xcvr::tableB000, "module status and monitors" },
   { Xcvr::tableB100, "network lane status" },
   { Xcvr::tableB300, "network lane bias" },
   { Xcvr::tableB400, "tuning" },
   { Xcvr::tableB480, "network lane power" },
   { Xcvr::tableB800, "chromatic dispersion" },
   { Xcvr::tableB880, "differential group delay" },
   { Xcvr::tableB900, "state of polarization" },
   { Xcvr::tableB980, "Q factor, carrier frequency" },
   { Xcvr::tableBA00, "SNR" },
   { Xcvr::tableBA80, "skew" },
   { Xcvr::tableBB00, "transmitter" },
   { Xcvr::tableBB80, "receiver" },
   { Xcvr::table9000, "line status" },
   { Xcvr::table9100, "line monitors" },
   { Xcvr::table9200, "client status" },
};

char const * contentsOf( CfpMsaMisTableId table ) {
   auto const found = std::ranges::find( tableNames, table, &TableName::table );
   return found == std::end( tableNames ) ? "" : found->contents;
}

/// The register of each monitor, which a CFPx may have under another name.
struct MonitorRegister {
   std::string_view name;
   std::string_view cfpxName;
   bool ( DomCapabilities::*implemented )() const;
};

constexpr MonitorRegister monitorRegisters[] = {
   { "temperature", "temperature", &DomCapabilities::temperature },
   { "voltage", "voltage", &DomCapabilities::voltage },
   { "txBias", "txBias", &DomCapabilities::txBias },
   { "txPower", "txPowerCfpx", &DomCapabilities::txPower },
   { "rxPower", "rxPowerCfpx", &DomCapabilities::rxPower },
};

/// A register that the module has, of one of its lanes.
struct Register {
   CfpRegister const * row;
   unsigned lane;
   std::string name; // with the number of the lane, which people count from 1
   MemoryField field;
};

/// As a field of the table's bytes; the name comes later.
MemoryField fieldOf( CfpRegister const & row, unsigned lane, bool isCfp2 ) {
   std::size_t const unit = bytesPerRegister( row.table );
   std::size_t const number = row.field.address - Xcvr::cfpFirstAddress( row.table ) + lane;
   MemoryField field{
      .name = {},
      .page = labelOf( row.table ),
      .at = static_cast<std::uint16_t>( number * unit ),
      .width = static_cast<std::uint16_t>( std::max<std::size_t>( unit, row.field.width / 8u ) ),
      .kind = MemoryKind::bytes,
      .unit = row.unit,
      .scale = row.scale,
      .bits = row.bits };
   switch ( row.kind ) {
   case CfpRegisterKind::byte:
      field.kind = row.field.width > 8 ? MemoryKind::bytes : MemoryKind::u8;
      break;
   case CfpRegisterKind::word:
      field.kind = row.bits.empty() ? MemoryKind::u16be : MemoryKind::bits;
      break;
   case CfpRegisterKind::signedWord:
      field.kind = MemoryKind::s16be;
      break;
   case CfpRegisterKind::text:
      field.kind = MemoryKind::text;
      break;
   case CfpRegisterKind::bytes:
      break;
   }
   // The thresholds whose unit depends on the module.
   if ( row.table == Xcvr::table8080 && row.name.starts_with( "txBias" ) ) {
      field.unit = "mA";
      field.scale = isCfp2 ? 0.002 : 0.1;
   } else if ( row.table == Xcvr::table8080 && row.name.starts_with( "txPower" ) ) {
      field.unit = isCfp2 ? "mW" : "dBm";
      field.scale = isCfp2 ? 0.0001 : 0.01;
      field.kind = isCfp2 ? MemoryKind::u16be : MemoryKind::s16be;
   }
   return field;
}

/// A number as stored in the unit of its register. Tenths and the like are divided, which gives 26.4
/// where multiplying would give 26.400000000000002.
double inUnit( int number, double scale ) {
   return scale < 1 ? number / std::round( 1 / scale ) : number * scale;
}

bool isBitField( CfpRegister const & row ) {
   return row.field.width < Xcvr::cfpRegisterWidth( row.table );
}

/// Words come with the high byte first, and the model has them in the order of the host. A last byte
/// without its other half is no register.
Vel::String modelBytes( CfpMsaMisTableId table, std::string_view page ) {
   if ( bytesPerRegister( table ) == 1 ) {
      return Vel::String( page );
   }
   std::string words;
   for ( std::size_t at = 0; at + 1 < page.size(); at += 2 ) {
      std::uint16_t const word = PageView( page ).u16be( static_cast<std::uint32_t>( at ) );
      words.append( reinterpret_cast<char const *>( &word ), sizeof word );
   }
   return Vel::String( words );
}

class CfpModule : public ModuleOf<Xcvr::Cfp2NewStatus> {
 public:
   CfpModule( ModuleImage image, FamilyTables const & family );

   void form( Report & report ) const override;
   void origin( Report & report ) const override {
      addReading( report, find( "vendorOui" )->field, "Vendor OUI", page( "8000h" ) );
   }
   void medium( Report & report ) const override;
   void features( Report & report ) const override;
   void condition( Report & report ) const override;

   [[nodiscard]] Xcvr::MediaTypeDecision mediaTypeDecision() const override {
      return contents().mediaTypeDecision();
   }
   void ruleInputs( Report & report ) const override;

   [[nodiscard]] PageLayout layoutOf( std::string_view label ) const override;
   [[nodiscard]] std::string valueOf( PageView page, MemoryField const & field ) const override;

   [[nodiscard]] std::vector<Checksum> checksums() const override;
   [[nodiscard]] std::uint8_t identifier() const override {
      return static_cast<std::uint8_t>( contents().identifier() );
   }
   [[nodiscard]] bool domAdvertised() const override { return !monitors().empty(); }
   [[nodiscard]] std::string domPlace() const override;

   /// The registers of the monitors that the module says it has.
   [[nodiscard]] std::vector<Register const *> monitors() const;
   [[nodiscard]] Register const * find( std::string_view name, unsigned lane = 0 ) const;
   /// The image has all of the register.
   [[nodiscard]] bool holds( Register const & reg ) const {
      return view( reg ).has( reg.field.at, reg.field.width );
   }
   [[nodiscard]] std::vector<Register> const & registers() const { return registers_; }
   [[nodiscard]] bool isCoherent() const { return status_->capabilities().tunableWavelength(); }

 private:
   [[nodiscard]] Contents const & contents() const { return status_->cfpMsaMisIdEepromContents(); }
   [[nodiscard]] PageView view( Register const & reg ) const { return page( reg.field.page ); }
   /// The number in a register as stored; none where it cannot be read.
   [[nodiscard]] std::optional<int> number( std::string_view name, unsigned lane = 0 ) const;
   [[nodiscard]] std::optional<std::uint32_t> raw( std::string_view high,
                                                   std::string_view low ) const;
   void listRegisters();
   void addQuantity( Report & report, std::string_view name, char const * label, int decimals,
                     char const * behind = "" ) const;
   void addVersion( Report & report, char const * name, char const * label ) const;
   void wavelength( Report & report ) const;
   void analogue( Report & report ) const;
   void summaries( Report & report ) const;
   void statusWords( Report & report ) const;
   void settings( Report & report ) const;
   void tuning( Report & report ) const;
   void line( Report & report ) const;

   std::vector<Register> registers_; // in the order of tables and addresses
};

CfpModule::CfpModule( ModuleImage image, FamilyTables const & family )
   : ModuleOf( std::move( image ), family, Xcvr::cfp2NewStatusFactory( "image" ) ) {
   for ( auto const & [label, bytes] : this->image().pages ) {
      if ( CfpMsaMisTableId const table = tableOf( label ); table != Xcvr::tableInvalid ) {
         status_->idEepromContentsIs( static_cast<std::uint8_t>( table ),
                                      modelBytes( table, bytes ) );
      }
   }
   status_->updateLastValidTime( readTime );
   status_->idEepromValidIs( true );
   status_->readyIs( true );
   listRegisters();
   // Any of the monitors: those whose table is missing are left out one by one.
   if ( std::ranges::any_of( monitors(), [&]( auto const * reg ) { return holds( *reg ); } ) ) {
      status_->lastDomUpdateTimeIs( readTime );
   }
   if ( holds( *find( "rxPowerLowAlarm" ) ) ) {
      status_->lastDomThresholdsUpdateTimeIs( readTime );
   }
}

void CfpModule::listRegisters() {
   Xcvr::CfpModules const kind = Xcvr::cfpModulesOf( contents().identifier() );
   for ( CfpRegister const & row : Xcvr::cfpRegisters() ) {
      if ( !( row.modules & kind ) ) {
         continue;
      }
      unsigned const lanes = row.lanes < Contents::lanes    ? row.lanes
                             : row.table == Xcvr::tableA400 ? status_->capabilities().maxChannels()
                                                            : status_->networkLanes();
      for ( unsigned lane = 0; lane < std::max( lanes, 1u ); ++lane ) {
         registers_.push_back(
            { &row, lane,
              lanes > 1 ? fmt::format( "{}{}", row.name, lane + 1 ) : std::string( row.name ),
              fieldOf( row, lane, kind == Xcvr::cfp2Modules ) } );
      }
   }
   std::ranges::stable_sort( registers_, {}, []( Register const & reg ) {
      return std::pair( reg.row->table, reg.field.at );
   } );
   for ( Register & reg : registers_ ) {
      reg.field.name = reg.name; // now that they stay where they are
   }
}

Register const * CfpModule::find( std::string_view name, unsigned lane ) const {
   auto const found = std::ranges::find_if( registers_, [&]( Register const & reg ) {
      return reg.row->name == name && reg.lane == lane;
   } );
   return found == registers_.end() ? nullptr : &*found;
}

std::optional<int> CfpModule::number( std::string_view name, unsigned lane ) const {
   Register const * reg = find( name, lane );
   // A number that the library deliberately does not read, the rate of a CFPx, is bytes here.
   if ( !reg || !holds( *reg ) || reg->field.kind == MemoryKind::bytes ) {
      return {};
   }
   MemoryField const & field = reg->field;
   if ( field.kind == MemoryKind::s16be ) {
      return view( *reg ).s16be( field.at );
   }
   auto const bits = static_cast<unsigned>( view( *reg ).unsignedBe( field.at, field.width ) );
   return isBitField( *reg->row ) ? static_cast<int>( bits >> reg->row->field.offset &
                                                      ( ( 1u << reg->row->field.width ) - 1 ) )
                                  : static_cast<int>( bits );
}

std::vector<Register const *> CfpModule::monitors() const {
   bool const isCfpx = contents().isIn( Xcvr::cfpxModules );
   DomCapabilities const capabilities = status_->domCapabilities();
   std::vector<Register const *> found;
   for ( MonitorRegister const & monitor : monitorRegisters ) {
      if ( ( capabilities.*monitor.implemented )() ) {
         found.push_back( find( isCfpx ? monitor.cfpxName : monitor.name ) );
      }
   }
   return found;
}

std::string CfpModule::domPlace() const {
   std::vector<std::string> tables;
   for ( Register const * reg : monitors() ) {
      std::string table( reg->field.page );
      if ( std::ranges::find( tables, table ) == tables.end() ) {
         tables.push_back( std::move( table ) );
      }
   }
   return fmt::format( "table{} {}", tables.size() == 1 ? "" : "s", joined( tables ) );
}

void CfpModule::form( Report & report ) const {
   addCode( report, find( "identifier" )->field, "Identifier", identifier() );
   addCode( report, find( "identifierExtended" )->field, "Extended identifier",
            contents().identifierExtended() );
   addCode( report, find( "connector" )->field, "Connector", contents().connector() );
}

/// A number in the unit of its register; text leaves out 0, which is unspecified.
void CfpModule::addQuantity( Report & report, std::string_view name, char const * label,
                             int decimals, char const * behind ) const {
   Register const * reg = find( name );
   std::optional<int> const code = number( name );
   double const value = code ? inUnit( *code, reg->field.scale ) : 0;
   std::string const unit( reg->field.unit );
   report.push_back( { .member = std::string( name ),
                       .value = code ? Json( value ) : Json(),
                       .unit = unit,
                       .label = value > 0 ? label : "",
                       .text = fmt::format( "{:.{}f} {}{}", value, decimals, unit, behind ) } );
}

void CfpModule::medium( Report & report ) const {
   addCode( report, find( "ethernetApplicationCode" )->field, "Application",
            static_cast<std::uint8_t>( contents().ethernetApplicationCode() ) );
   unsigned const network = status_->networkLanes();
   unsigned const host = status_->capabilities().maxChannels();
   report.push_back( { .member = "networkLanes",
                       .value = network,
                       .label = "Lanes",
                       .text = fmt::format( "{} network, {} host", network, host ) } );
   report.push_back( { .member = "hostLanes", .value = host } );
   addQuantity( report, "networkLaneBitRateMax", "Bit rate", 1, " a network lane, at most" );
   addQuantity( report, "smfFiberLengthMax", "Length (SMF)", 0 );
   addQuantity( report, "mmfFiberLengthMax", "Length (MMF)", 0 );
   wavelength( report );
   report.push_back( { .label = "Monitors advertised",
                       .text = joined( trueOnes( status_->domCapabilities() ) ) } );
   analogue( report );
}

void CfpModule::wavelength( Report & report ) const {
   addQuantity( report, "minWavelength", "", 3 );
   addQuantity( report, "maxWavelength", "", 3 );
   double const scale = find( "minWavelength" )->field.scale;
   double const shortest = inUnit( number( "minWavelength" ).value_or( 0 ), scale );
   double const longest = inUnit( number( "maxWavelength" ).value_or( 0 ), scale );
   report.push_back( { .label = shortest > 0 || longest > 0 ? "Wavelength" : "",
                       .text = shortest == longest
                                  ? fmt::format( "{:.3f} nm", shortest )
                                  : fmt::format( "{:.3f} to {:.3f} nm", shortest, longest ) } );
}

/// The circuits of a CFPx, which the host's signal processor has to know.
void CfpModule::analogue( Report & report ) const {
   if ( !contents().isIn( Xcvr::cfpxModules ) ) {
      return;
   }
   Contents const & c = contents();
   auto const addSwaps = [&]( char const * member, char const * label, std::string_view reg,
                              bool hv, bool hIq, bool vIq ) {
      bool const isRead = number( reg ).has_value();
      std::vector<std::string> names;
      for ( auto const & [isSwapped, name] :
            { std::pair( hv, "H and V" ), std::pair( hIq, "I and Q of H" ),
              std::pair( vIq, "I and Q of V" ) } ) {
         if ( isSwapped ) {
            names.emplace_back( name );
         }
      }
      report.push_back( { .member = member,
                          .value = isRead ? Json( names ) : Json(),
                          .label = isRead ? label : "",
                          .text = joined( names ) } );
   };
   std::optional<int> const driver = number( "txRfDriverType" );
   report.push_back(
      { .member = "txRfDriverType",
        .value = driver ? Json( *driver ) : Json(),
        .label = driver ? "Tx driver type" : "",
        .text = fmt::format( "{}{}", driver.value_or( 0 ), driver == 1 ? " (linear)" : "" ) } );
   addSwaps( "txSwaps", "Tx swaps", "txHvSwap", c.txHvSwap(), c.txHiqSwap(), c.txViqSwap() );
   addSwaps( "rxSwaps", "Rx swaps", "rxHvSwap", c.rxHvSwap(), c.rxHiqSwap(), c.rxViqSwap() );
}

/// Two bytes, the major number and the minor one; text leaves out 0.0.
void CfpModule::addVersion( Report & report, char const * name, char const * label ) const {
   MemoryField const & field = find( name )->field;
   PageView const bytes = page( field.page );
   std::string const version =
      fmt::format( "{}.{}", bytes.u8( field.at ), bytes.u8( field.at + 1u ) );
   report.push_back( { .member = name,
                       .value = version,
                       .label = version == "0.0" ? "" : label,
                       .text = version } );
}

void CfpModule::features( Report & report ) const {
   std::string const powerClass( stringValue( status_->powerClass() ).view() );
   report.push_back(
      { .label = "Power class", .text = powerClass.substr( powerClass.size() - 1 ) } );
   addCode( report, find( "mgmtRevSupported" )->field, "Management revision",
            contents().mgmtRevSupported() );
   addVersion( report, "hardwareVersion", "Hardware version" );
   addVersion( report, "firmwareVersionA", "Firmware version A" );
   addVersion( report, "firmwareVersionB", "Firmware version B" );
}

/// Which lanes, or whether the module, has something to report.
void CfpModule::summaries( Report & report ) const {
   auto const add = [&]( char const * member, char const * label, std::optional<unsigned> mask,
                         bool isOfLanes ) {
      report.push_back( { .member = member,
                          .value = mask ? Json( *mask ) : Json(),
                          .label = mask ? label : "",
                          .text = isOfLanes ? laneWords( mask.value_or( 0 ), Contents::lanes )
                                  : mask.value_or( 0 ) ? "yes"
                                                       : "no",
                          .alarming = mask.value_or( 0 ) != 0 } );
   };
   auto const mask = [&]( char const * name ) {
      std::optional<int> const read = number( name );
      return read ? std::optional<unsigned>( *read ) : std::optional<unsigned>();
   };
   if ( std::optional<int> const state = number( "moduleState" ) ) {
      std::vector<std::string> const names =
         setBits( page( labelOf( Xcvr::tableB000 ) ), find( "moduleState" )->field );
      report.push_back( { .member = "moduleState",
                          .value = names,
                          .label = "Module state",
                          .text = joined( names ) } );
   }
   add( "networkLaneAWSummary", "Network lane alarms, warnings", mask( "networkLaneAWSummary" ),
        true );
   add( "networkLaneFSSummary", "Network lane faults, status", mask( "networkLaneFSSummary" ),
        true );
   add( "hostLaneFSSummary", "Host lane faults, status", mask( "hostLaneFSSummary" ), true );
   // Of a CFPx or CFP2-DCO these two are of the module as a whole.
   bool const isOfLanes = !contents().isIn( Xcvr::cfpxAndDcoModules );
   bool const isRead =
      number( isOfLanes ? "networkLaneFaultStatus" : "moduleGeneralStatus" ).has_value();
   auto const ifRead = [&]( unsigned flags ) {
      return isRead ? std::optional<unsigned>( flags ) : std::optional<unsigned>();
   };
   add( "rxLosStatus", "Rx LOS", ifRead( contents().rxLosStatus() ), isOfLanes );
   add( "txFaultStatus", "Tx fault", ifRead( contents().txFaultStatus() ), isOfLanes );
}

/// Words whose bits have no names here: people see those that say anything.
void CfpModule::statusWords( Report & report ) const {
   struct Word {
      char const * name;
      char const * text;
   };
   static constexpr Word words[] = {
      { "globalAlarmSummary", "global alarms" },
      { "moduleGeneralControl", "general control" },
      { "moduleGeneralStatus", "general status" },
      { "moduleGeneralStatusLatched", "general status (latched)" },
      { "moduleFaultStatus", "fault status" },
      { "moduleFaultStatusLatched", "fault status (latched)" },
      { "vendorSpecificFAWS", "vendor's alarms" },
      { "vendorSpecificFAWSLatched", "vendor's alarms (latched)" },
      { "moduleExtendedFunctionStatusLatched", "extended functions (latched)" },
      { "networkLaneVendorSpecificFAWS", "vendor's lane alarms" },
      { "networkLaneVendorSpecificFAWSLatched", "vendor's lane alarms (latched)" },
      { "clientIntfPcsAlarmStatus", "client PCS alarms" },
      { "clientIntfPcsAlarmStatusLatched", "client PCS alarms (latched)" },
   };
   std::vector<std::string> said;
   bool isAnyRead = false;
   for ( auto const & [name, text] : words ) {
      Register const * first = find( name );
      for ( unsigned lane = 0; first && lane < first->row->lanes; ++lane ) {
         std::optional<int> const word = number( name, lane );
         isAnyRead = isAnyRead || word;
         report.push_back( { .member = "statusWords/" + find( name, lane )->name,
                             .value = word ? Json( *word ) : Json() } );
         if ( word && *word != 0 ) {
            said.push_back( fmt::format( "{} 0x{:04x}", text, *word ) );
         }
      }
   }
   report.push_back( { .label = isAnyRead ? "Status words" : "", .text = joined( said ) } );
}

/// The signal settings of the host lanes, as codes, the first lane first.
void CfpModule::settings( Report & report ) const {
   for ( auto const & [name, label] :
         { std::pair( "txInputEqualization", "Tx input equalization" ),
           std::pair( "rxOutputPreEmphasis", "Rx output emphasis" ) } ) {
      std::vector<std::optional<unsigned>> codes;
      for ( unsigned lane = 0; find( name, lane ); ++lane ) {
         codes.emplace_back( number( name, lane ) );
      }
      addLaneCodes( report, name, number( name ) ? label : "", codes );
   }
}

/// What the registers of a coherent module are set to.
void CfpModule::tuning( Report & report ) const {
   if ( !isCoherent() ) {
      return;
   }
   Xcvr::CfpxTuneStatus const tuned = status_->cfpxTuneStatus();
   addValue( report, "cfpxTuneStatus", tuned );
   report.push_back( { .label = tuned.txFrequency() != 0 ? "Tuned frequency" : "",
                       .text = fmt::format( "{:g} GHz", tuned.txFrequency() / 1000. ) } );
   report.push_back( { .label = std::isfinite( tuned.txPower() ) ? "Tx power setting" : "",
                       .text = fmt::format( "{:.2f} dBm", tuned.txPower() ) } );
   std::string const most = std::isfinite( tuned.maxRxAttenuation() )
                               ? fmt::format( " of at most {:.2f} dB", tuned.maxRxAttenuation() )
                               : "";
   report.push_back( { .label = std::isfinite( tuned.rxAttenuation() ) ? "Rx attenuation" : "",
                       .text = fmt::format( "{:.2f} dB{}", tuned.rxAttenuation(), most ) } );
}

std::optional<std::uint32_t> CfpModule::raw( std::string_view high, std::string_view low ) const {
   auto const word = [&]( std::string_view name ) {
      std::optional<int> const read = number( name );
      return read ? std::optional<std::uint32_t>( static_cast<std::uint16_t>( *read ) )
                  : std::optional<std::uint32_t>();
   };
   std::optional<std::uint32_t> const first = word( high );
   if ( low.empty() || !first ) {
      return first;
   }
   std::optional<std::uint32_t> const second = word( low );
   return second ? std::optional<std::uint32_t>( *first << 16 | *second ) : second;
}

/// The line of a CFP2-DCO: values in their unit where it is certain, and every register raw. Unlike
/// the status's monitors of the line these tell a register of 0 from one that the image lacks.
void CfpModule::line( Report & report ) const {
   struct Value {
      std::string_view member; // in Cfp2DcoMonitors; the raw one has "raw" in front
      char const * label;
      std::string_view name;
      std::string_view low = {}; // the register with the lower half
   };
   static constexpr Value values[] = {
      { "Osnr", "OSNR", "networkOsnrEstimate" },
      { "Snr", "SNR", "rxSnr" },
      { "CarrierFreqOffset", "Carrier frequency offset", "rxCarrierFreqOffset" },
      { "RxChannelPower", "Rx channel power", "netLaneRxChannelPower" },
      { "ChromDispersion", "Chromatic dispersion", "rxChromDispersionHigh",
        "rxChromDispersionLow" },
      { "DiffGroupDelay", "Differential group delay", "rxDiffGroupDelay" },
      { "StateOfPolarization", "State of polarization", "rxStateOfPolarization" },
      { "QFactor", "Q factor", "rxQFactor" },
      { "Ber", "Bit error rate", "networkBerHigh", "networkBerLow" },
      { "FecUncBlkCount", "Uncorrectable blocks", "netFecUncBlkCountHigh", "netFecUncBlkCountLow" },
      { "LaserAge", "Laser age", "laserAge" },
      { "LaserFaultCode", "Laser fault code", "laserFaultCode" },
      { "TxTurnUpState", "Tx turn-up state", "txTurnUpState" },
      { "RxTurnUpState", "Rx turn-up state", "rxTurnUpState" },
   };
   if ( !contents().isIn( Xcvr::dcoModules ) ) {
      return;
   }
   for ( auto const & [member, label, name, low] : values ) {
      MemoryField const & field = find( name )->field;
      std::optional<std::uint32_t> const word = raw( name, low );
      std::string const hex = fmt::format( "0x{:0{}x}", word.value_or( 0 ), low.empty() ? 4 : 8 );
      std::string text = fmt::format( "{} ({})", hex, word.value_or( 0 ) );
      if ( !field.unit.empty() ) {
         double const value = inUnit( number( name ).value_or( 0 ), field.scale );
         text = fmt::format( "{} ({})", numberText( value, field.scale, field.unit ), hex );
         std::string scaled( member );
         scaled[0] = static_cast<char>( scaled[0] - 'A' + 'a' );
         report.push_back( { .member = "dcoMonitors/" + scaled,
                             .value = word ? Json( value ) : Json(),
                             .unit = std::string( field.unit ) } );
      }
      report.push_back( { .member = fmt::format( "dcoMonitors/raw{}", member ),
                          .value = word ? Json( *word ) : Json(),
                          .label = word ? label : "",
                          .text = text } );
   }
}

void CfpModule::condition( Report & report ) const {
   summaries( report );
   statusWords( report );
   settings( report );
   tuning( report );
   line( report );
}

std::vector<Checksum> CfpModule::checksums() const {
   struct Row {
      char const * name;
      CfpMsaMisTableId table;
   };
   static constexpr Row rows[] = {
      { "checksum8000", Xcvr::table8000 },
      { "checksum8080", Xcvr::table8080 },
      { "checksum8100", Xcvr::table8100 }, // stored in the next table
      { "checksum8180", Xcvr::table8180 },
   };
   std::vector<Checksum> result;
   for ( auto const & [name, table] : rows ) {
      Register const & stored = *find( name );
      if ( image().page( labelOf( table ) ) && image().page( stored.field.page ) ) {
         std::optional<int> const sum = number( name );
         result.push_back(
            { .name = name,
              .label = labelOf( table ),
              .page = labelOf( table ),
              .stored = sum ? std::optional<unsigned>( *sum ) : std::optional<unsigned>(),
              .computed = contents().checksumCalculated( table ),
              .valid = contents().checksumValid( table ) } );
      }
   }
   return result;
}

void CfpModule::ruleInputs( Report & report ) const {
   auto const add = [&]( std::string_view name, char const * label, char const * unit ) {
      Register const * reg = find( name );
      std::optional<int> const read = number( name );
      report.push_back( { .label = fmt::format( "{:04X}h, {}", reg->row->field.address, label ),
                          .text = read ? fmt::format( "{}{}", *read, unit )
                                       : fmt::format( "0, as the image lacks it" ) } );
   };
   add( "ethernetApplicationCode", "application", "" );
   add( "mmfFiberLengthMax", "MMF length", " x 10 m" );
   add( "txRfDriverType", "driver type", "" );
}

PageLayout CfpModule::layoutOf( std::string_view label ) const {
   CfpMsaMisTableId const table = tableOf( label );
   PageLayout layout;
   layout.firstAddress = std::stoul( std::string( label ), nullptr, 16 );
   // As the reader of images has it, of tables that are not known here too.
   layout.bytesPerAddress = label < "9000h" ? 1 : 2;
   for ( Register const & reg : registers_ ) {
      if ( reg.field.page == label ) {
         layout.fields.push_back( reg.field );
      }
   }
   layout.remark = contentsOf( table );
   return layout;
}

/// Numbers of some bits only, and words without a unit, which are codes or bits, have their own form.
std::string CfpModule::valueOf( PageView bytes, MemoryField const & field ) const {
   auto const reg = std::ranges::find_if( registers_, [&]( Register const & candidate ) {
      return candidate.name == field.name && candidate.field.page == field.page;
   } );
   if ( reg != registers_.end() && bytes.has( field.at, field.width ) ) {
      if ( isBitField( *reg->row ) ) {
         return fmt::format( "{}", number( reg->row->name, reg->lane ).value_or( 0 ) );
      }
      if ( reg->row->kind == CfpRegisterKind::word && field.unit.empty() && field.bits.empty() ) {
         return fmt::format( "0x{:04x}", bytes.u16be( field.at ) );
      }
   }
   return fieldText( bytes, field );
}

// What can be wrong in a CFP only. The checks are asked of CFP modules.

using Sentences = std::vector<std::string>;

/// Tables that the module must have, and those that end before their last register. Where all
/// monitors are missing, the check for missing monitors says so.
Sentences ofMissingTables( Module const & module ) {
   auto const & cfp = static_cast<CfpModule const &>( module );
   std::vector<Register const *> needed;
   if ( cfp.domAdvertised() ) {
      needed.push_back( cfp.find( "rxPowerLowAlarm" ) );
      if ( cfp.status().domInfoValid( LaneId() ) ) {
         std::ranges::copy( cfp.monitors(), std::back_inserter( needed ) );
      }
   }
   if ( cfp.isCoherent() ) {
      needed.push_back( cfp.find( "minFrequencyTHz" ) );
      if ( cfp.identifier() == static_cast<std::uint8_t>( Xcvr::identifierCfpx ) ) {
         needed.push_back( cfp.find( "txRfDriverType" ) ); // the media type depends on it
      }
   }
   std::ranges::stable_sort( needed, {}, []( auto const * reg ) { return reg->row->table; } );
   Sentences found;
   auto const add = [&]( std::string sentence ) {
      if ( std::ranges::find( found, sentence ) == found.end() ) {
         found.push_back( std::move( sentence ) );
      }
   };
   for ( Register const * reg : needed ) {
      if ( !cfp.image().page( reg->field.page ) ) {
         add( fmt::format( "The module has table {} ({}), but the image lacks it", reg->field.page,
                           contentsOf( reg->row->table ) ) );
      }
   }
   for ( Register const & reg : cfp.registers() ) {
      std::string const * page = cfp.image().page( reg.field.page );
      if ( page && !cfp.holds( reg ) ) {
         add( fmt::format( "The image has {} bytes of table {} ({}), and more registers are there",
                           page->size(), reg.field.page, contentsOf( reg.row->table ) ) );
      }
   }
   return found;
}

constexpr Check cfpChecks[] = {
   { "page-missing", ofMissingTables, "Read all register tables of the module, whole." },
};

} // namespace

std::unique_ptr<Module> cfpModule( ModuleImage image ) {
   return std::make_unique<CfpModule>( std::move( image ),
                                       FamilyTables{ Xcvr::cfpMediaTypeRules(), cfpChecks } );
}

} // namespace XcvrTool
