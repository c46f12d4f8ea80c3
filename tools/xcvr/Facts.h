#pragma once

#include "tools/xcvr/Report.h"

#include <Vel/Enum.h>
#include <Vel/String.h>
#include <Xcvr/XcvrMemoryMap.h>

#include <cmath>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

// Facts of the shapes that occur in every module family.
namespace XcvrTool {

/// A text of the module for people.
[[nodiscard]] std::string shown( std::string_view padded );

/// A code, in JSON a number with its name beside it.
void addCode( Report & report, Xcvr::MemoryField const & field, std::string const & label,
              std::uint8_t code );

void addText( Report & report, std::string const & member, std::string const & label,
              std::string_view padded );

/// The set bits of a field, by name.
void addBits( Report & report, Xcvr::MemoryField const & field, std::string const & label,
              Xcvr::PageView page );

/// A reach: 0 is unspecified, and all bits set is more than the field can say.
void addLength( Report & report, Xcvr::MemoryField const & field, std::string const & label,
                std::uint8_t code );

/// A number that is unspecified where it is 0: text leaves that out. Without a number of decimals it
/// has those that it needs.
void addNumber( Report & report, std::string_view member, std::string const & label, double number,
                std::string_view unit, std::optional<int> decimals = {} );

/// A field as it reads, in both forms.
void addReading( Report & report, Xcvr::MemoryField const & field, std::string const & label,
                 Xcvr::PageView page );

/// A fact that the image may not hold: then JSON has null, and text leaves it out.
void addIf( bool isHeld, Report & report, Fact fact );

/// The number in a byte of a page; none if the page ends before it.
[[nodiscard]] std::optional<unsigned> byteOf( Xcvr::PageView page,
                                              Xcvr::MemoryField const & field );

/// The lanes whose bits are set, as people count them: from 1.
[[nodiscard]] std::vector<unsigned> lanesIn( unsigned mask );

/// "on lanes 1/3", of so many; "none".
[[nodiscard]] std::string laneWords( unsigned mask, unsigned of );

/// Something that is true of lanes.
struct LaneBits {
   std::string name; // in JSON
   std::string words;
   unsigned mask; // a bit for each lane
};

/// What is true of lanes: in JSON an object for each lane.
void addLaneBits( bool isHeld, Report & report, Fact fact, std::vector<LaneBits> const & bits,
                  unsigned lanes );

/// Signal settings, the first lane first; none for one that the module lacks.
void addLaneCodes( Report & report, std::string const & member, std::string const & label,
                   std::vector<std::optional<unsigned>> const & codes );

/// The name of a field of a model value, out of the label with which it is visited.
[[nodiscard]] constexpr std::string_view fieldName( std::string_view label ) {
   std::string_view const name = label.substr( label.find( '\'' ) + 1 );
   return name.substr( 0, name.find( '\'' ) );
}

/// Such a name as words: "txBiasHighWarn" is "Tx bias high warning".
[[nodiscard]] std::string wordsOf( std::string_view fieldName );

/// The unit that the number of a model value has by its name; empty for none.
[[nodiscard]] std::string_view unitOf( std::string_view fieldName );

template <typename T>
concept ModelValue = requires {
   typename T::VelValueTag;
};

/// A field of a model value in JSON. What cannot be read, minus infinity, is null, and so is what
/// JSON has no number for.
template <typename T>
[[nodiscard]] Json jsonOf( T const & value ) {
   if constexpr ( std::is_same_v<T, Vel::String> ) {
      return utf8( unpadded( value ) );
   } else if constexpr ( std::is_enum_v<T> ) {
      return std::string( stringValue( value ).view() );
   } else if constexpr ( std::is_floating_point_v<T> ) {
      return std::isfinite( value ) ? Json( value ) : Json();
   } else if constexpr ( ModelValue<T> ) {
      Json object = Json::object();
      T::velFields( [&]( auto const & label, auto field ) {
         object[std::string( fieldName( label ) )] = jsonOf( value.*field );
      } );
      return object;
   } else {
      return value;
   }
}

/// A model value as an object with its own field names; for programs only.
template <ModelValue T>
void addValue( Report & report, std::string const & member, T const & value ) {
   T::velFields( [&]<typename F>( auto const & label, F T::*field ) {
      std::string_view const name = fieldName( label );
      bool const isNumber = std::is_arithmetic_v<F> && !std::is_same_v<F, bool>;
      report.push_back( { .member = member + '/' + std::string( name ),
                          .value = jsonOf( value.*field ),
                          .unit = isNumber ? std::string( unitOf( name ) ) : "" } );
   } );
}

/// What is true in a model value, in words.
template <ModelValue T>
[[nodiscard]] std::vector<std::string> trueOnes( T const & value ) {
   std::vector<std::string> words;
   T::velFields( [&]<typename F>( auto const & label, F T::*field ) {
      if constexpr ( std::is_same_v<F, bool> ) {
         if ( value.*field ) {
            words.push_back( wordsOf( fieldName( label ) ) );
         }
      }
   } );
   return words;
}

} // namespace XcvrTool
