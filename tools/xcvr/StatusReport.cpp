#include "tools/xcvr/StatusReport.h"

#include "tools/xcvr/Facts.h"
#include "tools/xcvr/Monitors.h"

#include <Xcvr/XcvrTypes.h>

#include <chrono>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <map>
#include <optional>

namespace XcvrTool {

using Xcvr::XcvrNewStatus;

void addMediaType( Report & report, XcvrNewStatus const & status ) {
   std::string const name( stringValue( status.mediaType() ).view() );
   std::string const text( status.mediaTypeString().view() );
   report.push_back( { .member = "mediaType",
                       .value = name,
                       .label = "Media type",
                       .text = fmt::format( "{} ({})", printable( text ), name ) } );
   report.push_back( { .member = "mediaTypeString", .value = utf8( text ) } );
   report.push_back( { .member = "bitrateKbps", .value = status.bitrateKbps(), .unit = "kbit/s" } );
   report.push_back(
      { .member = "electricalInterface", .value = jsonOf( status.electricalInterface() ) } );
   report.push_back( { .member = "optical", .value = status.optical() } );
}

void addProduct( Report & report, XcvrNewStatus const & status ) {
   Xcvr::VendorInfo const vendor = status.vendorInfo();
   addText( report, "vendorInfo/vendorName", "Vendor name", vendor.vendorName() );
   addText( report, "vendorInfo/vendorPn", "Vendor part number", vendor.vendorPn() );
}

namespace {

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

/// A date code with a century has no lot code behind the day.
void addDate( Report & report, std::string_view dateCode, bool hasCentury ) {
   std::optional<std::string> const date = !hasCentury ? isoDate( dateCode )
                                           : dateCode.starts_with( "20" )
                                              ? isoDate( dateCode.substr( 2 ) )
                                              : std::nullopt;
   report.push_back( { .member = "vendorInfo/vendorDateCode",
                       .value = utf8( unpadded( dateCode ) ),
                       .label = "Date code",
                       .text = date ? *date : shown( dateCode ) } );
   report.push_back( { .member = "date", .value = date ? Json( *date ) : Json() } );
   std::string_view const lotCode = date && !hasCentury ? unpadded( dateCode ).substr( 6 ) : "";
   report.push_back( { .member = "lotCode",
                       .value = utf8( lotCode ),
                       .label = lotCode.empty() ? "" : "Lot code",
                       .text = shown( lotCode ) } );
}

} // namespace

void addItem( Report & report, XcvrNewStatus const & status ) {
   Xcvr::VendorInfo const vendor = status.vendorInfo();
   addText( report, "vendorInfo/vendorSn", "Vendor serial number", vendor.vendorSn() );
   addText( report, "vendorInfo/vendorRev", "Vendor revision", vendor.vendorRev() );
   addDate( report, vendor.vendorDateCode().view(), status.xcvrType() == Xcvr::XcvrType::cfp2 );
}

namespace {

std::string gigahertz( std::uint32_t mhz ) {
   return fmt::format( "{:g}", mhz / 1000. );
}

void addTuning( Report & report, XcvrNewStatus const & status ) {
   Xcvr::TuningCapabilities const tuning = status.tuningCapabilities();
   addValue( report, "tuningCapabilities", tuning );
   bool const isKnown = tuning.firstFrequency() != 0;
   report.push_back( { .label = isKnown ? "Tuning range" : "",
                       .text = fmt::format( "{} to {} GHz", gigahertz( tuning.firstFrequency() ),
                                            gigahertz( tuning.lastFrequency() ) ) } );
   std::vector<std::string> spacings;
   Xcvr::GridSpacingCapabilities::velFields( [&]( auto const & label, auto field ) {
      if ( tuning.gridSpacingCapabilities().*field ) {
         std::string_view const name = fieldName( label ); // "gridSpacing12500M"
         auto const mhz =
            std::stoul( std::string( name.substr( name.find_first_of( "0123456789" ) ) ) );
         spacings.push_back( gigahertz( static_cast<std::uint32_t>( mhz ) ) + " GHz" );
      }
   } );
   report.push_back( { .label = isKnown ? "Grid spacings" : "", .text = joined( spacings ) } );
   report.push_back( { .member = "hwChannel",
                       .value = status.hwChannel(),
                       // Channels count from 1; none is set, or the image does not say.
                       .label = isKnown && status.hwChannel() != 0 ? "Tuned channel" : "",
                       .text = fmt::format( "{}", status.hwChannel() ) } );
}

} // namespace

void addCapabilities( Report & report, XcvrNewStatus const & status ) {
   Xcvr::Capabilities const capabilities = status.capabilities();
   addValue( report, "capabilities", capabilities );
   unsigned const channels = capabilities.maxChannels();
   std::vector<std::string> words = trueOnes( capabilities );
   words.insert( words.begin(), fmt::format( "{} channel{}", channels, channels == 1 ? "" : "s" ) );
   report.push_back( { .label = "Capabilities", .text = joined( words ) } );
   addValue( report, "domCapabilities", status.domCapabilities() );
   report.push_back( { .member = "powerClass", .value = jsonOf( status.powerClass() ) } );
   double const attenuation = status.electricalPathAttenuation().value();
   report.push_back( { .member = "electricalPathAttenuation",
                       .value = jsonOf( attenuation ),
                       .unit = "dB",
                       .label = attenuation > 0 ? "Electrical attenuation" : "",
                       .text = fmt::format( "{:.1f} dB", attenuation ) } );
   if ( capabilities.tunableWavelength() ) {
      addTuning( report, status );
   }
}

std::string checksumText( Checksum const & checksum ) {
   std::string const stored = checksum.stored ? fmt::format( "stored 0x{:02x}", *checksum.stored )
                                              : "the stored one cut off";
   return fmt::format( "page {}, {}, computed 0x{:02x}", checksum.page, stored, checksum.computed );
}

void addChecksums( Report & report, std::vector<Checksum> const & checksums ) {
   Json all = Json::array();
   for ( Checksum const & checksum : checksums ) {
      all.push_back( { { "name", std::string( checksum.name ) },
                       { "page", std::string( checksum.page ) },
                       { "stored", checksum.stored ? Json( *checksum.stored ) : Json() },
                       { "computed", checksum.computed },
                       { "valid", checksum.valid } } );
      report.push_back(
         { .label = fmt::format( "Checksum, {}", checksum.label ),
           .text = checksumText( checksum ) + ( checksum.valid ? ", valid" : ", BAD" ),
           .alarming = !checksum.valid } );
   }
   report.push_back( { .member = "checksums", .value = all } );
}

namespace {

/// An object for each sensor, under the name of its monitor.
void addEnhancedMonitors( Report & report, XcvrNewStatus const & status ) {
   std::map<Xcvr::EnhancedDomMonitor, unsigned> counts;
   for ( auto const & [monitor, lane, reading] : enhancedSensorsOf( status ) ) {
      std::string const member =
         fmt::format( "enhancedDom/{}/{}/", stringValue( monitor ).view(), counts[monitor]++ );
      std::string const unit( reading.monitor->unit );
      auto const add = [&]( char const * name, double number ) {
         report.push_back( { .member = member + name, .value = jsonOf( number ), .unit = unit } );
      };
      report.push_back( { .member = member + "lane", .value = lane ? Json( *lane ) : Json() } );
      add( "value", reading.value );
      add( "highAlarm", reading.limits.highAlarm );
      add( "lowAlarm", reading.limits.lowAlarm );
      add( "highWarn", reading.limits.highWarn );
      add( "lowWarn", reading.limits.lowWarn );
   }
}

} // namespace

void addMonitors( Report & report, XcvrNewStatus const & status ) {
   constexpr double unreadable = -std::numeric_limits<double>::infinity();
   for ( unsigned lane = 0; lane < lanesOf( status ); ++lane ) {
      Xcvr::DomInfo info = status.domInfo( Xcvr::LaneId( static_cast<std::uint8_t>( lane ) ) );
      info.updateTimeIs( unreadable ); // the image does not say when it was read
      addValue( report, fmt::format( "domInfo/{}", lane ), info );
   }
   if ( lanesOf( status ) > 1 ) {
      Xcvr::DomAggPower power = status.domAggPower();
      power.updateTimeIs( unreadable );
      addValue( report, "domAggPower", power );
   }
   addEnhancedMonitors( report, status );
   report.push_back( { .member = "domThresholdValid", .value = status.domThresholdValid() } );
   // Thresholds that were not read would be those of a memory of zeros.
   Xcvr::DomThreshold threshold = status.domThreshold();
   if ( !status.domThresholdValid() ) {
      Xcvr::DomThreshold::velFields( [&]( auto const &, double Xcvr::DomThreshold::*limit ) {
         threshold.*limit = unreadable;
      } );
   }
   addValue( report, "domThreshold", threshold );
}

} // namespace XcvrTool
