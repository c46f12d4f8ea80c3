#include "tools/xcvr/Commands.h"
#include "tools/xcvr/Facts.h"

#include <Xcvr/XcvrMediaTypes.h>

#include <fmt/format.h>

namespace XcvrTool {

namespace {

/// The display text; in that of the DWDM kinds an "n" for each digit that a module's wavelength
/// gives.
std::string displayText( Xcvr::MediaTypeInfo const & info ) {
   constexpr std::string_view number = "%02u";
   std::string text( info.text );
   for ( std::size_t at; ( at = text.find( number ) ) != std::string::npos; ) {
      text.replace( at, number.size(), "nn" );
   }
   return text;
}

std::string speedText( std::uint32_t kbps ) {
   return kbps < 1000000 ? fmt::format( "{:g} Mb/s", kbps / 1e3 )
                         : fmt::format( "{:g} Gb/s", kbps / 1e6 );
}

} // namespace

std::string mediaTypesText( Style const & style ) {
   constexpr char const * line = "   {:>4}  {:22}  {:18}  {:>8}  {:16}  {}";
   std::string text = style.heading( fmt::format( fmt::runtime( line ), "Code", "Name", "Text",
                                                  "Speed", "Interface", "Optical" ) ) +
                      '\n';
   for ( Xcvr::MediaTypeInfo const & info : Xcvr::mediaTypeInfos() ) {
      text +=
         fmt::format( fmt::runtime( line ), static_cast<unsigned>( info.mediaType ),
                      stringValue( info.mediaType ).view(), displayText( info ),
                      speedText( info.bitrateKbps ), stringValue( info.electricalInterface ).view(),
                      info.optical ? "yes" : "no" ) +
         '\n';
   }
   return text;
}

Json mediaTypesJson() {
   Json all = Json::array();
   for ( Xcvr::MediaTypeInfo const & info : Xcvr::mediaTypeInfos() ) {
      all.push_back( { { "code", static_cast<unsigned>( info.mediaType ) },
                       { "mediaType", jsonOf( info.mediaType ) },
                       { "mediaTypeString", displayText( info ) },
                       { "bitrateKbps", info.bitrateKbps },
                       { "electricalInterface", jsonOf( info.electricalInterface ) },
                       { "optical", info.optical } } );
   }
   return { { "schema", 1 }, { "units", { { "bitrateKbps", "kbit/s" } } }, { "mediaTypes", all } };
}

} // namespace XcvrTool
