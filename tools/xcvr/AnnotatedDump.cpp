// The `hexdump` command. Where fields lie it knows from the library's field table only.
#include "tools/xcvr/Commands.h"
#include "tools/xcvr/FieldText.h"

#include <algorithm>
#include <fmt/format.h>

namespace XcvrTool {

namespace {

using Xcvr::MemoryField;
using Xcvr::MemoryKind;

constexpr std::size_t bytesPerLine = 8;
constexpr std::size_t bytesWidth = bytesPerLine * 3 - 1;
constexpr std::size_t nameWidth = 25;
constexpr std::size_t valueAt = 8 + bytesWidth + 2 + nameWidth + 2;

/// The page is a table of registers, whose addresses have four digits and are written in hex only.
bool isRegisterTable( PageLayout const & layout ) {
   return layout.firstAddress > 0xff;
}

/// Writes the lines of one page: address, bytes, field, value.
class PageDump {
 public:
   PageDump( Module const & module, std::string_view bytes, PageLayout const & layout )
      : module_( module ), bytes_( bytes ), layout_( layout ) {}

   /// The line of a field, with its name as given.
   void field( MemoryField const & field, std::string const & name );
   /// Bytes without a value of their own, up to the page's end; equal ones run together.
   void plain( std::size_t from, std::size_t to, std::string_view name );
   [[nodiscard]] std::string const & text() const { return text_; }

 private:
   [[nodiscard]] std::size_t equalBytes( std::size_t from, std::size_t to ) const {
      auto const other = bytes_.find_first_not_of( bytes_[from], from );
      return std::min( other, to ) - from;
   }
   void line( std::size_t at, std::string_view bytes, std::string_view name,
              std::string_view value );

   Module const & module_;
   std::string_view bytes_;
   PageLayout const & layout_;
   std::string text_;
};

void PageDump::line( std::size_t at, std::string_view bytes, std::string_view name,
                     std::string_view value ) {
   std::size_t const address = layout_.firstAddress + at / layout_.bytesPerAddress;
   std::string const place = bytes.empty() ? std::string( 6, ' ' )
                             : isRegisterTable( layout_ )
                                ? fmt::format( "  {:04x}", address )
                                : fmt::format( "{:3} {:02x}", address, address );
   std::string const whole =
      fmt::format( "{}  {:{}}  {:{}}  {}", place, bytes, bytesWidth, name, nameWidth, value );
   text_ += whole.substr( 0, whole.find_last_not_of( ' ' ) + 1 ) + '\n';
}

void PageDump::field( MemoryField const & field, std::string const & name ) {
   std::size_t const beyond = std::max( name.size(), nameWidth ) - nameWidth;
   std::vector<std::string> const values =
      wrapped( module_.valueOf( bytes_, field ), lineWidth - valueAt - beyond );
   std::string_view const bytes = bytes_.substr( field.at, field.width );
   std::size_t const byteLines = ( bytes.size() + bytesPerLine - 1 ) / bytesPerLine;
   for ( std::size_t i = 0; i < std::max( byteLines, values.size() ); ++i ) {
      std::size_t const from = std::min( i * bytesPerLine, bytes.size() );
      line( field.at + from, hexBytes( bytes.substr( from, bytesPerLine ), " " ),
            i == 0 ? name : "", i < values.size() ? values[i] : "" );
   }
}

void PageDump::plain( std::size_t from, std::size_t to, std::string_view name ) {
   to = std::min( to, bytes_.size() );
   std::size_t const step = layout_.bytesPerAddress; // a line begins where a register does
   while ( from < to ) {
      if ( std::size_t count = equalBytes( from, to ); count > bytesPerLine ) {
         count -= count % step;
         std::string const byte = hexBytes( bytes_.substr( from, 1 ), "" );
         line( from, byte + " ...", name, fmt::format( "{} bytes of {}", count, byte ) );
         from += count;
      } else {
         std::size_t end = from;
         while ( end < to && end < from + bytesPerLine && equalBytes( end, to ) <= bytesPerLine ) {
            end = std::min( end + step, to );
         }
         std::string_view const bytes = bytes_.substr( from, end - from );
         std::string const characters = printable( bytes );
         bool const hasText = characters.find_first_not_of( "_ " ) != std::string::npos;
         line( from, hexBytes( bytes, " " ), name, hasText ? '"' + characters + '"' : "" );
         from = end;
      }
      name = {};
   }
}

/// Fields of more bytes than fit on a line, without a reading, are shown like bytes without a field.
bool isPlain( MemoryField const & field ) {
   return field.kind == MemoryKind::bytes && field.width > bytesPerLine;
}

/// The bytes of a page with the fields that mean something in this module.
std::string dumpOf( Module const & module, std::string_view bytes, PageLayout const & layout ) {
   PageDump dump( module, bytes, layout );
   std::size_t done = 0;
   for ( MemoryField const & field : layout.fields ) {
      if ( field.at >= bytes.size() ) {
         continue;
      }
      // Another reading of bytes that are already there stands in parentheses.
      if ( field.at < done ) {
         dump.field( field, fmt::format( "({})", field.name ) );
         continue;
      }
      dump.plain( done, field.at, {} );
      if ( isPlain( field ) ) {
         dump.plain( field.at, field.end(), field.name );
      } else {
         dump.field( field, std::string( field.name ) );
      }
      done = field.end();
   }
   dump.plain( done, bytes.size(), {} );
   return dump.text();
}

} // namespace

std::string hexdumpText( Module const & module, Style const & style ) {
   std::string text;
   for ( auto const & [label, bytes] : module.image().pages ) {
      PageLayout const layout = module.layoutOf( label );
      std::string const heading =
         fmt::format( "Page {}, {} byte{}{}{}", label, bytes.size(), bytes.size() == 1 ? "" : "s",
                      layout.remark.empty() ? "" : ", ", layout.remark );
      text += fmt::format( "{}{}\n", text.empty() ? "" : "\n", style.heading( heading ) );
      text += fmt::format( "{:6}  {:{}}  {:{}}  {}\n", isRegisterTable( layout ) ? "Reg." : "Byte",
                           "Contents", bytesWidth, "Field", nameWidth, "Value" );
      text += dumpOf( module, bytes, layout );
   }
   return text;
}

} // namespace XcvrTool
