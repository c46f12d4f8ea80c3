#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/Commands.h"
#include "tools/xcvr/Facts.h"
#include "tools/xcvr/InputText.h"
#include "tools/xcvr/Monitors.h"
#include "tools/xcvr/StatusReport.h"

#include <algorithm>
#include <fmt/format.h>

namespace XcvrTool {

namespace {

using Sentences = std::vector<std::string>;

Sentences ofForeignIdentifier( Module const & module ) {
   std::uint8_t const identifier = module.identifier();
   if ( familyHasIdentifier( module.image().family, identifier ) ) {
      return {};
   }
   return { fmt::format( "The identifier {:02x}h is not one of this family, {}", identifier,
                         familyName( module.image().family ) ) };
}

Sentences ofUnknownMediaType( Module const & module ) {
   // Of another family's module the rules here know nothing.
   bool const isOfFamily = familyHasIdentifier( module.image().family, module.identifier() );
   if ( !isOfFamily || !module.isIdentified() ||
        module.status().mediaType() != Xcvr::xcvrUnknown ) {
      return {};
   }
   // The first page, whatever the family, has the identifier; numbers of CFP modules are their own.
   std::string_view const page = module.image().pages.begin()->first;
   std::string_view const name = codeName( codeNamesOf( "identifier", page ), module.identifier() );
   return { fmt::format( "The identifier {:02x}h ({}) is not borne out: no rule for the media type "
                         "knows the module",
                         module.identifier(), name ) };
}

Sentences ofBadChecksums( Module const & module ) {
   Sentences found;
   for ( Checksum const & checksum : module.checksums() ) {
      if ( !checksum.valid ) {
         found.push_back( fmt::format( "The {} checksum is wrong: {}", checksum.label,
                                       checksumText( checksum ) ) );
      }
   }
   return found;
}

Sentences ofUnprintableTexts( Module const & module ) {
   Sentences found;
   Xcvr::VendorInfo const vendor = module.status().vendorInfo();
   Xcvr::VendorInfo::velFields( [&]( auto const & label, Vel::String Xcvr::VendorInfo::*field ) {
      std::string_view const text = unpadded( vendor.*field );
      auto const bad = std::ranges::find_if( text, []( char c ) { return c < ' ' || c > '~'; } );
      if ( bad != text.end() ) {
         found.push_back(
            fmt::format( "The text {} has byte {}h, which is no printable character, at place {}",
                         fieldName( label ), hexText( static_cast<std::uint8_t>( *bad ), 2 ),
                         bad - text.begin() + 1 ) );
      }
   } );
   return found;
}

Sentences ofMissingMonitors( Module const & module ) {
   if ( !module.domAdvertised() || module.status().domInfoValid( Xcvr::LaneId() ) ) {
      return {};
   }
   return { fmt::format( "The module says that it has monitors, but the image lacks {}",
                         module.domPlace() ) };
}

Sentences ofThresholdsOutOfOrder( Module const & module ) {
   Sentences found;
   for ( Reading const & reading : limitsOf( module.status(), module.ownThreshold() ) ) {
      Limits const & limits = reading.limits;
      if ( !limits.areInOrder() ) {
         auto const text = [&]( double limit ) { return limitText( *reading.monitor, limit ); };
         found.push_back( fmt::format( "The limits of {} are out of order: low alarm {}, low "
                                       "warning {}, high warning {}, high alarm {} {}",
                                       reading.label, text( limits.lowAlarm ),
                                       text( limits.lowWarn ), text( limits.highWarn ),
                                       text( limits.highAlarm ), reading.monitor->unit ) );
      }
   }
   return found;
}

Sentences ofAlarms( Module const & module ) {
   Sentences found;
   for ( Reading const & reading : readingsOf( module.status(), module.missingLanes() ) ) {
      Place const place = reading.place();
      if ( place != Place::lowAlarm && place != Place::highAlarm ) {
         continue;
      }
      bool const isLow = place == Place::lowAlarm;
      double const limit = isLow ? reading.limits.lowAlarm : reading.limits.highAlarm;
      found.push_back( fmt::format( "{} is {}, {} its alarm limit of {} {}", reading.label,
                                    reading.valueText(), isLow ? "below" : "above",
                                    limitText( *reading.monitor, limit ), reading.monitor->unit ) );
   }
   return found;
}

// The ids stay as they are for ever; new rows may come anywhere.
constexpr Check checks[] = {
   { "identifier", ofForeignIdentifier,
     "Read the module again; if it stays so, this is another kind of module, or a worn memory." },
   { "media-type", ofUnknownMediaType,
     "See with xcvr explain what the rules ask for; a slot takes the module as unidentified." },
   { "checksum", ofBadChecksums,
     "Read the module again; if it stays wrong, the memory was changed or is worn, and the module "
     "is one to replace." },
   { "text", ofUnprintableTexts,
     "Read the module again; if it stays so, expect trouble where programs compare or print this "
     "text, and tell the vendor." },
   { "dom-missing", ofMissingMonitors,
     "Read all pages of the module; if they cannot be read, it advertises what it does not have." },
   { "threshold-order", ofThresholdsOutOfOrder,
     "Do not rely on alarms of this monitor; give its limits by configuration, or tell the "
     "vendor." },
   { "value-alarm", ofAlarms,
     "Look for the cause: cooling, supply, a dirty or unplugged fibre, a transmitter that is off, "
     "or "
     "a laser near its end." },
};

struct Finding {
   Check const * check;
   std::string what;
};

std::vector<Finding> findingsOf( Module const & module ) {
   std::vector<Finding> findings;
   for ( std::span<Check const> const some :
         { std::span<Check const>( checks ), module.family().checks } ) {
      for ( Check const & check : some ) {
         for ( std::string & what : check.find( module ) ) {
            findings.push_back( { &check, std::move( what ) } );
         }
      }
   }
   return findings;
}

} // namespace

std::string checkText( Module const & module, Style const & style ) {
   std::string text;
   for ( auto const & [check, what] : findingsOf( module ) ) {
      text +=
         fmt::format( "{}: {}: {}. {}\n", style.heading( shownFileName( module.image().file ) ),
                      style.alarm( check->id ), what, check->advice );
   }
   return text;
}

Json checkJson( Module const & module, Json & ) {
   Json findings = Json::array();
   for ( auto const & [check, what] : findingsOf( module ) ) {
      findings.push_back( { { "id", std::string( check->id ) },
                            { "finding", what + '.' },
                            { "advice", std::string( check->advice ) } } );
   }
   return { { "file", utf8( module.image().file ) },
            { "family", jsonOf( module.status().xcvrType() ) },
            { "findings", findings } };
}

bool hasFindings( Module const & module ) {
   return !findingsOf( module ).empty();
}

} // namespace XcvrTool
