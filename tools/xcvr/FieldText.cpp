#include "tools/xcvr/FieldText.h"

#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/Text.h"

#include <Xcvr/XcvrDomDecoders.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <span>

namespace XcvrTool {

namespace {

using Xcvr::MemoryField;
using Xcvr::MemoryKind;
using Xcvr::PageView;

/// A number in its unit, optical power in dBm too.
std::string scaledText( PageView page, MemoryField const & field ) {
   if ( field.kind == MemoryKind::f32be ) {
      return fmt::format( "{:g}", page.value( field ) );
   }
   std::string text = numberText( page.value( field ), field.scale, field.unit );
   if ( field.unit == "mW" ) {
      double const dBm = Xcvr::decodeDomICPower( page.u8( field.at ), page.u8( field.at + 1u ) );
      text += fmt::format( " / {:.2f} dBm", dBm );
   }
   return text;
}

} // namespace

std::string numberText( double number, double scale, std::string_view unit ) {
   int const decimals = scale < 1 ? static_cast<int>( std::ceil( -std::log10( scale ) ) ) : 0;
   return fmt::format( "{:.{}f}{}{}", number, decimals, unit.empty() ? "" : " ", unit );
}

std::string codeText( MemoryField const & field, std::uint8_t code ) {
   std::string_view const name = codeName( codeNamesOf( field.name, field.page ), code );
   return fmt::format( "0x{:02x}{}", code, name.empty() ? "" : fmt::format( " ({})", name ) );
}

std::string hexBytes( std::string_view bytes, std::string_view separator ) {
   std::string text;
   for ( char const byte : bytes ) {
      text += fmt::format( "{}{:02x}", text.empty() ? "" : separator,
                           static_cast<std::uint8_t>( byte ) );
   }
   return text;
}

std::vector<std::string> setBits( PageView page, MemoryField const & field ) {
   std::vector<std::string> names;
   std::uint64_t value = page.unsignedBe( field.at, field.width );
   for ( BitCode const & code : bitCodes ) {
      auto const masked = static_cast<std::uint8_t>( value & code.mask );
      std::string_view const name =
         code.field == field.name ? codeName( code.names, masked ) : std::string_view();
      if ( !name.empty() ) {
         names.emplace_back( name );
         value &= ~std::uint64_t{ code.mask };
      }
   }
   for ( unsigned bit = field.width * 8u; bit-- > 0; ) {
      if ( value >> bit & 1 ) {
         auto const named = std::ranges::find( field.bits, bit, &Xcvr::MemoryBit::bit );
         names.push_back( named != field.bits.end() ? std::string( named->name )
                                                    : fmt::format( "bit {}", bit ) );
      }
   }
   return names;
}

std::string fieldText( PageView page, MemoryField const & field ) {
   if ( !page.has( field.at, field.width ) ) {
      return "cut off";
   }
   switch ( field.kind ) {
   case MemoryKind::text:
      return '"' + printable( unpadded( page.text( field.at, field.width ) ) ) + '"';
   case MemoryKind::bits:
      return joined( setBits( page, field ) );
   case MemoryKind::bytes:
      return hexBytes( page.text( field.at, field.width ), ":" );
   case MemoryKind::u8:
   case MemoryKind::s8:
   case MemoryKind::u16be:
   case MemoryKind::s16be:
   case MemoryKind::f32be:
      break;
   }
   // Of a number, which has a unit, only some codes may have a name.
   std::span<CodeName const> const names = codeNamesOf( field.name, field.page );
   std::uint8_t const code = page.u8( field.at );
   bool const isCode = field.unit.empty() ? !names.empty() : !codeName( names, code ).empty();
   return isCode ? codeText( field, code ) : scaledText( page, field );
}

} // namespace XcvrTool
