#include "tools/xcvr/Facts.h"

#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/FieldText.h"

#include <fmt/format.h>
#include <utility>

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

void addNumber( Report & report, std::string_view member, std::string const & label, double number,
                std::string_view unit, std::optional<int> decimals ) {
   std::string const digits =
      decimals ? fmt::format( "{:.{}f}", number, *decimals ) : fmt::format( "{:g}", number );
   report.push_back( { .member = std::string( member ),
                       .value = number,
                       .unit = std::string( unit ),
                       .label = number != 0 ? label : "",
                       .text = fmt::format( "{} {}", digits, unit ) } );
}

void addReading( Report & report, MemoryField const & field, std::string const & label,
                 PageView page ) {
   std::string const text = fieldText( page, field );
   report.push_back(
      { .member = std::string( field.name ), .value = text, .label = label, .text = text } );
}

void addIf( bool isHeld, Report & report, Fact fact ) {
   if ( !isHeld ) {
      fact.value = Json();
      fact.label.clear();
   }
   report.push_back( std::move( fact ) );
}

std::optional<unsigned> byteOf( PageView page, MemoryField const & field ) {
   return page.has( field.at, 1 ) ? std::optional<unsigned>( page.u8( field.at ) ) : std::nullopt;
}

std::vector<unsigned> lanesIn( unsigned mask ) {
   std::vector<unsigned> lanes;
   for ( unsigned lane = 1; mask != 0; ++lane, mask >>= 1 ) {
      if ( mask & 1 ) {
         lanes.push_back( lane );
      }
   }
   return lanes;
}

std::string laneWords( unsigned mask, unsigned of ) {
   std::vector<unsigned> const lanes = lanesIn( mask );
   return lanes.empty() ? "none"
          : lanes.size() == of
             ? "on all lanes"
             : fmt::format( "on lane{} {}", lanes.size() == 1 ? "" : "s", fmt::join( lanes, "/" ) );
}

void addLaneBits( bool isHeld, Report & report, Fact fact, std::vector<LaneBits> const & bits,
                  unsigned lanes ) {
   std::vector<std::string> words;
   for ( LaneBits const & row : bits ) {
      for ( unsigned lane = 0; lane < lanes; ++lane ) {
         fact.value[lane][row.name] = ( row.mask >> lane & 1 ) != 0;
      }
      if ( row.mask != 0 ) {
         words.push_back( row.words + ' ' + laneWords( row.mask, lanes ) );
      }
   }
   fact.text = joined( words );
   fact.alarming = fact.alarming && !words.empty();
   addIf( isHeld, report, std::move( fact ) );
}

void addLaneCodes( Report & report, std::string const & member, std::string const & label,
                   std::vector<std::optional<unsigned>> const & codes ) {
   Json values;
   std::vector<std::string> texts;
   for ( std::optional<unsigned> const & code : codes ) {
      values.push_back( code ? Json( *code ) : Json() );
      texts.push_back( code ? fmt::format( "{}", *code ) : "-" );
   }
   report.push_back( { .member = member,
                       .value = values,
                       .label = label,
                       .text = fmt::format( "code {}", fmt::join( texts, " / " ) ) } );
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
