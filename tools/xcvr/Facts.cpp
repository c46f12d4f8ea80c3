#include "tools/xcvr/Facts.h"

#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/FieldText.h"

#include <fmt/format.h>

namespace XcvrTool {

using Xcvr::MemoryField;
using Xcvr::PageView;

std::string shown( std::string_view padded ) {
   std::string_view const text = unpadded( padded );
   return text.empty() ? "(blank)" : printable( text );
}

void addCode( Report & report, MemoryField const & field, std::string const & label,
              std::uint8_t code ) {
   std::string const member( field.name );
   std::string const name( codeName( codeNamesOf( field.name, field.page ), code ) );
   report.push_back(
      { .member = member, .value = code, .label = label, .text = codeText( field, code ) } );
   report.push_back( { .member = member + "Name", .value = name.empty() ? Json() : Json( name ) } );
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

std::string laneWords( std::vector<unsigned> const & lanes, std::size_t of ) {
   if ( lanes.size() == of ) {
      return "on all lanes";
   }
   return fmt::format( "on lane{} {}", lanes.size() == 1 ? "" : "s", fmt::join( lanes, "/" ) );
}

namespace {

struct Word {
   std::string_view part;
   std::string_view word;
};

constexpr Word words[] = {
   { "tx", "Tx" },        { "rx", "Rx" },   { "los", "LOS" },      { "lol", "LOL" },
   { "cdr", "CDR" },      { "hi", "high" }, { "agg", "total" },    { "tc", "TC" },
   { "lp", "LP" },        { "lo", "low" },  { "eq", "equalizer" }, { "temp", "temperature" },
   { "warn", "warning" },
};

std::string_view wordOf( std::string_view part ) {
   for ( Word const & row : words ) {
      if ( row.part == part ) {
         return row.word;
      }
   }
   return part;
}

/// The first letter of a word in the middle of a name, or of a number behind a letter.
bool beginsWord( std::string_view name, std::size_t at ) {
   auto const isDigit = []( char c ) { return c >= '0' && c <= '9'; };
   return ( name[at] >= 'A' && name[at] <= 'Z' ) ||
          ( isDigit( name[at] ) && !isDigit( name[at - 1] ) );
}

} // namespace

std::string wordsOf( std::string_view fieldName ) {
   std::string text;
   while ( !fieldName.empty() ) {
      std::size_t end = 1;
      while ( end < fieldName.size() && !beginsWord( fieldName, end ) ) {
         ++end;
      }
      std::string part( fieldName.substr( 0, end ) );
      part[0] =
         part[0] >= 'A' && part[0] <= 'Z' ? static_cast<char>( part[0] - 'A' + 'a' ) : part[0];
      text += ( text.empty() ? "" : " " ) + std::string( wordOf( part ) );
      fieldName.remove_prefix( end );
   }
   return text;
}

std::string_view unitOf( std::string_view fieldName ) {
   static constexpr Word units[] = {
      { "temp", "°C" },        { "voltage", "V" },     { "txBias", "mA" },
      { "Power", "dBm" },      { "Frequency", "MHz" }, { "txFineTuneRange", "MHz" },
      { "Attenuation", "dB" },
   };
   for ( auto const & [part, unit] : units ) {
      if ( fieldName.find( part ) != std::string_view::npos ) {
         return unit;
      }
   }
   return {};
}

} // namespace XcvrTool
