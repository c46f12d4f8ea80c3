#include "tools/xcvr/ControlSet.h"

#include "tools/xcvr/Facts.h"
#include "tools/xcvr/FieldText.h"
#include "tools/xcvr/HexDump.h"
#include "tools/xcvr/ModuleImage.h"

#include <Xcvr/HalCmis.h>

#include <algorithm>
#include <cstdint>
#include <fmt/format.h>

namespace XcvrTool {

namespace {

using Set = Xcvr::OsfpControlSet;
using Tuning = Xcvr::OsfpTuningParamValue;
using Lane = Xcvr::OsfpLane;

constexpr std::size_t imageSize = Set::imageSize;
constexpr std::size_t firstAddress =
   Xcvr::CmisTable::address( Xcvr::CmisTable::row( "activeControlSet" ) );

Vel::U1 bit( unsigned value ) {
   return Vel::U1( static_cast<std::uint8_t>( value ) );
}
std::uint8_t code( unsigned value ) {
   return static_cast<std::uint8_t>( value );
}

/// A code of 0 to 15 among the signal tuning of a lane.
template <auto get, auto set>
constexpr LaneSetting tuningCode( char const * option, char const * member, char const * label ) {
   constexpr auto read = []( Set const & from, Lane lane ) {
      return unsigned{ ( from.tuning( lane ).*get )() };
   };
   constexpr auto write = []( Set & to, Lane lane, unsigned value ) {
      return ( to.*set )( lane, code( value ) );
   };
   return { option, member, label, 15, read, write };
}

} // namespace

std::array<LaneSetting, laneSettingCount> const laneSettings = { {
   { "application", "application", "Application", 15,
     []( Set const & set, Lane lane ) { return unsigned{ set.laneApSel( lane ) } >> 4; },
     []( Set & set, Lane lane, unsigned value ) {
        return set.applicationCodeIs( lane, Vel::U4( code( value ) ) );
     } },
   { "data-path", "dataPath", "Data path", 7,
     []( Set const & set, Lane lane ) { return unsigned{ set.laneApSel( lane ) } >> 1 & 7; },
     []( Set & set, Lane lane, unsigned value ) {
        return set.dataPathCodeIs( lane, Vel::U3( code( value ) ) );
     } },
   { "explicit", "explicitControl", "Explicit", 1,
     []( Set const & set, Lane lane ) { return unsigned{ set.laneApSel( lane ) } & 1; },
     []( Set & set, Lane lane, unsigned value ) {
        return set.explicitTuningControlIs( lane, bit( value ) );
     } },
   { "tx-adaptive", "txInputAdaptiveEqEnable", "Tx adaptive", 1,
     []( Set const & set, Lane lane ) {
        return unsigned{ set.tuning( lane ).txInputAdaptiveEqEnable() };
     },
     []( Set & set, Lane lane, unsigned value ) {
        return set.txInputAdaptiveEqEnableIs( lane, bit( value ) );
     } },
   tuningCode<&Tuning::txInputEqualization, &Set::txInputEqualizationIs>(
      "tx-eq", "txInputEqualization", "Tx EQ" ),
   tuningCode<&Tuning::rxOutputPreEmphasis, &Set::rxOutputPreEmphasisIs>(
      "rx-pre", "rxOutputPreEmphasis", "Rx pre" ),
   tuningCode<&Tuning::rxOutputPostEmphasis, &Set::rxOutputPostEmphasisIs>(
      "rx-post", "rxOutputPostEmphasis", "Rx post" ),
   tuningCode<&Tuning::rxOutputAmplitude, &Set::rxOutputAmplitudeIs>(
      "rx-amplitude", "rxOutputAmplitude", "Rx amplitude" ),
} };

std::string readControlSet( std::string const & path ) {
   std::string const content = readContent( path );
   if ( content.size() == imageSize ) {
      return content;
   }
   std::string bytes;
   try {
      bytes = readHexDump( content, imageSize ).bytes;
   } catch ( InputProblem const & ) {
      bytes = content; // no dump: of a size that is wrong
   }
   if ( bytes.size() != imageSize ) {
      throw ImageError( path == "-" ? "<stdin>" : path,
                        fmt::format( "no control set: {} bytes, not {}; give bytes {} to {} of "
                                     "page 11h, as they are or as a hex dump",
                                     bytes.size(), imageSize, firstAddress,
                                     firstAddress + imageSize - 1 ) );
   }
   return bytes;
}

namespace {

/// The lanes on which any setting differs, a bit each.
unsigned differingLanes( Set const & before, Set const & after ) {
   unsigned lanes = 0;
   for ( std::uint8_t lane = 0; lane < Xcvr::osfpLanes; ++lane ) {
      bool const differs = std::ranges::any_of( laneSettings, [&]( LaneSetting const & setting ) {
         return setting.get( before, Lane( lane ) ) != setting.get( after, Lane( lane ) );
      } );
      lanes |= unsigned{ differs } << lane;
   }
   return lanes;
}

std::string laneTable( Set const & set, Style const & style ) {
   std::string heading = "   Lane";
   for ( LaneSetting const & setting : laneSettings ) {
      heading += fmt::format( "  {}", setting.label );
   }
   std::string text = style.heading( heading ) + '\n';
   for ( std::uint8_t lane = 0; lane < Xcvr::osfpLanes; ++lane ) {
      text += fmt::format( "   {:4}", lane + 1 );
      for ( LaneSetting const & setting : laneSettings ) {
         text += fmt::format( "  {:>{}}", setting.get( set, Lane( lane ) ),
                              std::string_view( setting.label ).size() );
      }
      text += '\n';
   }
   return text;
}

std::string differenceText( std::string_view before, std::string_view after ) {
   std::string text;
   for ( std::size_t at = 0; at < before.size(); ++at ) {
      if ( before[at] != after[at] ) {
         text += fmt::format( "   Byte {:2} (page 11h: {})  {} -> {}\n", at, firstAddress + at,
                              hexBytes( before.substr( at, 1 ), "" ),
                              hexBytes( after.substr( at, 1 ), "" ) );
      }
   }
   return text.empty() ? "   No byte differs\n" : text;
}

} // namespace

ControlSetOutcome changedControlSet( std::string const & image, ControlSetChange const & change ) {
   auto const before = Xcvr::osfpControlSetFactory( Vel::String( image ) );
   auto const after = Xcvr::osfpControlSetFactory( Vel::String( image ) );
   for ( unsigned const number : change.lanes ) {
      Lane const lane( static_cast<std::uint8_t>( number - 1 ) );
      for ( std::size_t i = 0; i < laneSettingCount; ++i ) {
         if ( change.values[i] && laneSettings[i].set( *after, lane, *change.values[i] ) ) {
            after->applyTuningIs( lane, bit( 1 ) );
         }
      }
   }
   // Where a byte below has its highest bit set, the library sets the codes of lanes above to 15.
   unsigned others = differingLanes( *before, *after );
   for ( unsigned const number : change.lanes ) {
      others &= ~( 1u << ( number - 1 ) );
   }
   if ( others != 0 && !change.force ) {
      return {
         image, 0,
         fmt::format( "this would also change settings {}, and nothing is changed; name those "
                      "lanes too, or give --force",
                      laneWords( others, Xcvr::osfpLanes ) ) };
   }
   return { std::string( after->image().view() ), after->applyControl(), {} };
}

std::string controlSetText( std::string const & before, ControlSetOutcome const & after,
                            bool isChange, Style const & style ) {
   std::string const lanes =
      laneTable( *Xcvr::osfpControlSetFactory( Vel::String( after.image ) ), style );
   return isChange ? fmt::format( "{}\n{}   Apply mask  0x{:02x}\n   Image       {}\n", lanes,
                                  differenceText( before, after.image ), after.applyMask,
                                  hexBytes( after.image, " " ) )
                   : lanes;
}

Json controlSetJson( std::string const & before, ControlSetOutcome const & after ) {
   auto const set = Xcvr::osfpControlSetFactory( Vel::String( after.image ) );
   Json lanes = Json::array();
   for ( std::uint8_t lane = 0; lane < Xcvr::osfpLanes; ++lane ) {
      for ( LaneSetting const & setting : laneSettings ) {
         lanes[lane][setting.member] = setting.get( *set, Lane( lane ) );
      }
   }
   Json changes = Json::array();
   for ( std::size_t at = 0; at < before.size(); ++at ) {
      if ( before[at] != after.image[at] ) {
         changes.push_back( { { "address", firstAddress + at },
                              { "before", static_cast<std::uint8_t>( before[at] ) },
                              { "after", static_cast<std::uint8_t>( after.image[at] ) } } );
      }
   }
   return { { "schema", 1 },
            { "lanes", lanes },
            { "changes", changes },
            { "applyMask", after.applyMask },
            { "image", hexBytes( after.image, "" ) } };
}

} // namespace XcvrTool
