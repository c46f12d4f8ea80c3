#include "tools/xcvr/ModuleImage.h"

#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/HexDump.h"
#include "tools/xcvr/InputText.h"
#include "tools/xcvr/Text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace XcvrTool {

namespace {

using namespace std::string_view_literals;

/// Far more than any dump of a module needs; what is longer is something else.
constexpr std::size_t inputLimit = std::size_t{ 1 } << 20;
constexpr std::size_t deviceSize = 256; // also a register table's
constexpr std::size_t halfSize = 128;   // the lower memory's and an upper page's
constexpr unsigned lastUpperPage = 0xff;

struct FixedPage {
   std::string_view label;
   std::size_t size;
};

/// What the reader of images has to know of a family.
struct Family {
   ImageFamily family;
   std::string_view name;          // as the user writes it
   std::string_view identifiers;   // values of byte 0
   std::array<FixedPage, 2> pages; // the linear layout; the first page identifies the module
   unsigned firstUpperPage;        // number of the upper page behind them; up to FFh follow
   std::size_t identificationSize; // bytes of the first page that an image has to have
};

constexpr Family families[] = {
   // The base and extended ID fields of SFF-8472 end at A0h:95.
   { ImageFamily::sfp, "sfp", "\x03\x0b"sv, { { { "a0h", 256 }, { "a2h", 256 } } }, 1, 96 },
};

std::string countText( std::size_t count ) {
   return std::to_string( count ) + ( count == 1 ? " byte" : " bytes" );
}

Family const & familyOfIdentifier( char identifier ) {
   for ( Family const & family : families )
      if ( family.identifiers.find( identifier ) != std::string_view::npos )
         return family;
   auto const number = static_cast<std::uint8_t>( identifier );
   std::string const text = "identifier " + hexText( number, 2 ) + "h";
   std::string const name( codeName( identifierNames, number ) );
   if ( number != 0 && !name.empty() ) // 0 is "unknown": of a module or of anything else
      throw InputProblem( text + " (" + name + ") is not one that this version decodes", "byte 0",
                          "give an image of an SFP, or --family sfp to read it as one" );
   throw InputProblem( "no module image: " + text + " is not that of any module", "byte 0",
                       std::string( acceptedForms ) + "; --family sfp reads it all the same" );
}

using Pages = decltype( ModuleImage::pages );

Family const & familyOfSections( Pages const & pages ) {
   // Families that have a lower memory differ in its first byte; a0h is an upper page there.
   if ( auto const lower = pages.find( "lower" ); lower != pages.end() )
      return familyOfIdentifier( lower->second.front() );
   for ( Family const & family : families )
      for ( FixedPage const & page : family.pages )
         if ( pages.contains( page.label ) )
            return family;
   throw InputProblem( "the sections do not show which kind of module this is",
                       "first is [" + pages.begin()->first + "]",
                       "this version decodes SFP modules, which have [a0h] and [a2h]" );
}

Family const & familyRow( ImageFamily family ) {
   return *std::ranges::find( families, family, &Family::family );
}

/// Shares the bytes of a binary image or a hex dump out to the family's pages.
Pages linearPages( Family const & family, std::string_view bytes ) {
   Pages pages;
   std::size_t const whole = bytes.size();
   auto const take = [&]( std::string_view label, std::size_t size ) {
      if ( !bytes.empty() )
         pages.emplace( label, bytes.substr( 0, size ) );
      bytes.remove_prefix( std::min( size, bytes.size() ) );
   };
   for ( FixedPage const & page : family.pages )
      take( page.label, page.size );
   for ( unsigned number = family.firstUpperPage; number <= lastUpperPage; ++number )
      take( hexText( number, 2 ) + "h", halfSize );
   if ( !bytes.empty() )
      throw InputProblem( "too long for an image of this family, " + std::string( family.name ),
                          countText( whole ) + ", at most " +
                             std::to_string( whole - bytes.size() ),
                          "give the memory of one module, without anything behind it" );
   return pages;
}

/// Whether modules of a family have a page: one of the fixed ones, or an upper page. No family so
/// far has banks or register tables.
bool hasPage( Family const & family, std::string_view label ) {
   bool const isUpperPage = label.size() == 3; // "02h"; with a bank, or of a table, it is longer
   return isUpperPage ||
          std::ranges::find( family.pages, label, &FixedPage::label ) != family.pages.end();
}

bool isBank( std::string_view text ) {
   std::uint8_t bank = 0;
   auto const [end, error] = std::from_chars( text.data(), text.data() + text.size(), bank );
   bool const hasLeadingZero = text.size() > 1 && text.starts_with( '0' );
   return error == std::errc{} && end == text.data() + text.size() && !hasLeadingZero;
}

/// The size of the page that a label names: "a0h" and "a2h" (devices of an SFP), "lower", "11h",
/// "11h.0" (upper pages, with a bank), "8000h" (register table). 0 for any other label.
std::size_t pageSize( std::string_view label ) {
   if ( label == "a0h" || label == "a2h" )
      return deviceSize;
   if ( label == "lower" )
      return halfSize;
   std::size_t const digits = label.find_first_not_of( "0123456789abcdef" );
   std::string_view const unit = label.substr( std::min( digits, label.size() ) );
   if ( digits == 4 && unit == "h" )
      return deviceSize;
   bool const isUpperPage =
      unit == "h" || ( unit.starts_with( "h." ) && isBank( unit.substr( 2 ) ) );
   return digits == 2 && isUpperPage ? halfSize : 0;
}

/// The number of the last line of some bytes if it looks cut; else 0.
std::size_t cutLineOf( LineWidths const & widths, std::size_t size ) {
   return size % halfSize != 0 ? widths.shortLine() : 0;
}

/// Reads a labelled image line by line.
class LabelledReader {
 public:
   void read( Line const & line );
   void end() const { checkSectionHasBytes(); }
   [[nodiscard]] Pages const & pages() const { return pages_; }
   /// Refuses sections that modules of the family do not have.
   void checkSectionsFit( Family const & family ) const;
   /// Whether the last section ends within a line; the number of that line, else 0.
   [[nodiscard]] std::size_t cutLine() const {
      return section_ ? cutLineOf( widths_, section_->second.size() ) : 0;
   }

 private:
   void sectionIs( Line const & line, std::string_view header );
   void checkSectionHasBytes() const;

   Pages pages_;
   Pages::value_type * section_ = nullptr;             // where bytes go
   std::vector<std::pair<std::string, Line>> headers_; // in the order of the text
   bool lastLineHasOffset_ = false;                    // a cut offset would pass for bytes
   LineWidths widths_;                                 // of the section's lines with offsets
};

void LabelledReader::read( Line const & line ) {
   std::string_view const content = trimmed( withoutComment( line.text ) );
   if ( content.empty() )
      return;
   if ( content.starts_with( '[' ) ) {
      checkSectionHasBytes();
      sectionIs( line, content );
      return;
   }
   auto & [label, bytes] = *section_; // the first line that says anything is a header
   std::size_t const before = bytes.size();
   bool const hasOffset = appendHexBytes( line, content, bytes );
   if ( hasOffset )
      widths_.add( line, bytes.size() - before );
   if ( lastLineHasOffset_ && !hasOffset && !line.hasEnd )
      throw InputProblem( "the text ends inside a line: its offset is not complete",
                          lineText( line ), "the image looks cut: make it again" );
   lastLineHasOffset_ = hasOffset;
   if ( std::size_t const size = pageSize( label ); bytes.size() > size )
      throw InputProblem( "[" + label + "] has more than its " + countText( size ),
                          lineText( line ), "remove what is too much" );
}

void LabelledReader::sectionIs( Line const & line, std::string_view header ) {
   std::string_view const inner =
      header.ends_with( ']' ) ? trimmed( header.substr( 1, header.size() - 2 ) ) : "";
   std::string label( inner );
   std::ranges::transform( label, label.begin(), []( char c ) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>( c - 'A' + 'a' ) : c;
   } );
   if ( pageSize( label ) == 0 )
      throw InputProblem( "a section header that names no page", lineText( line ),
                          "name [a0h] or [a2h], [lower], an upper page [02h], one with a bank "
                          "[11h.0], or a register table [8000h]" );
   auto const [section, isNew] = pages_.try_emplace( label );
   if ( !isNew )
      throw InputProblem( "a second section [" + label + "]", lineText( line ),
                          "give each page once" );
   section_ = &*section;
   widths_ = {};
   headers_.emplace_back( label, line );
}

void LabelledReader::checkSectionHasBytes() const {
   if ( section_ && section_->second.empty() )
      throw InputProblem( "[" + section_->first + "] has no bytes",
                          lineText( headers_.back().second ),
                          "give its bytes, or remove the section" );
}

void LabelledReader::checkSectionsFit( Family const & family ) const {
   for ( auto const & [label, line] : headers_ )
      if ( !hasPage( family, label ) )
         throw InputProblem( "[" + label + "] is no page of this family, " +
                                std::string( family.name ),
                             lineText( line ), "remove the section" );
}

LabelledReader readLabelled( std::string_view text ) {
   LabelledReader reader;
   Lines lines( text );
   while ( auto const line = lines.next() )
      reader.read( *line );
   reader.end();
   return reader;
}

constexpr std::string_view byteOrderMark = "\xef\xbb\xbf";

std::string_view withoutByteOrderMark( std::string_view text ) {
   return text.starts_with( byteOrderMark ) ? text.substr( byteOrderMark.size() ) : text;
}

/// Text has no control characters but tab and line ends, and begins with ASCII. Module memory has
/// such characters, be it only the zeros of reserved bytes, unless it was read as FFh all over.
bool isText( std::string_view content ) {
   auto const isControl = []( char c ) {
      return ( c >= 0 && c < ' ' && c != '\t' && c != '\n' && c != '\r' ) || c == 0x7f;
   };
   return !content.empty() && static_cast<std::uint8_t>( content.front() ) < 0x80 &&
          std::ranges::none_of( content, isControl );
}

ImageForm formOf( std::string_view content ) {
   std::string_view const text = withoutByteOrderMark( content );
   if ( !isText( text ) )
      return ImageForm::binary;
   Lines lines( text );
   while ( auto const line = lines.next() )
      if ( auto const said = trimmed( withoutComment( line->text ) ); !said.empty() )
         return said.starts_with( '[' ) ? ImageForm::labelled : ImageForm::hexDump;
   return ImageForm::hexDump;
}

void checkIdentification( Family const & family, Pages const & pages ) {
   FixedPage const & first = family.pages.front();
   auto const page = pages.find( first.label );
   std::size_t const size = page == pages.end() ? 0 : page->second.size();
   if ( size < family.identificationSize )
      throw InputProblem( "too short to identify the module",
                          countText( size ) + " of page " + std::string( first.label ),
                          "give at least the first " + countText( family.identificationSize ) +
                             " of it" );
}

void readPages( ModuleImage & image, std::string_view content ) {
   if ( content.size() > inputLimit )
      throw InputProblem( "too large for a module image", "more than " + countText( inputLimit ),
                          acceptedForms );
   image.form = formOf( content );
   bool const isAutomatic = image.family == ImageFamily::automatic;
   std::string_view const text = withoutByteOrderMark( content );
   Family const * family = nullptr;
   std::size_t cutLine = 0;
   if ( image.form == ImageForm::labelled ) {
      LabelledReader const reader = readLabelled( text );
      family = &( isAutomatic ? familyOfSections( reader.pages() ) : familyRow( image.family ) );
      reader.checkSectionsFit( *family );
      image.pages = reader.pages();
      cutLine = reader.cutLine();
   } else {
      auto const [bytes, widths] = image.form == ImageForm::hexDump
                                      ? readHexDump( text, inputLimit )
                                      : HexDump{ std::string( content ), {} };
      cutLine = cutLineOf( widths, bytes.size() );
      if ( bytes.empty() )
         throw InputProblem( "no bytes of a module",
                             content.empty() ? "the input is empty" : "blank text", acceptedForms );
      family = &( isAutomatic ? familyOfIdentifier( bytes.front() ) : familyRow( image.family ) );
      image.pages = linearPages( *family, bytes );
   }
   checkIdentification( *family, image.pages );
   image.family = family->family;
   if ( cutLine != 0 )
      image.warnings.push_back( "the last line with bytes is shorter than those before (line " +
                                std::to_string( cutLine ) +
                                "); if the image was cut there, make it again" );
}

/// What an open file holds, but no more than one byte beyond the limit: the size that a file claims
/// is not asked for, as pipes and devices have none.
std::string contentOf( std::FILE * file ) {
   std::string content( inputLimit + 1, '\0' );
   content.resize( std::fread( content.data(), 1, content.size(), file ) );
   if ( std::ferror( file ) )
      throw InputProblem( "cannot be read", std::strerror( errno ),
                          "name a file with the image of a module" );
   return content;
}

std::string contentOf( std::string const & path ) {
   if ( path == "-" )
      return contentOf( stdin );
   std::unique_ptr<std::FILE, decltype( &std::fclose )> const file(
      std::fopen( path.c_str(), "rb" ), &std::fclose );
   if ( !file )
      throw InputProblem( "cannot be opened", std::strerror( errno ),
                          "check the name and who may read the file" );
   return contentOf( file.get() );
}

} // namespace

std::string_view familyName( ImageFamily family ) {
   return familyRow( family ).name;
}

std::vector<std::string> familyNames() {
   std::vector<std::string> names;
   for ( Family const & family : families )
      names.emplace_back( family.name );
   return names;
}

ImageFamily familyOfName( std::string_view name ) {
   return std::ranges::find( families, name, &Family::name )->family;
}

bool familyHasIdentifier( ImageFamily family, std::uint8_t identifier ) {
   return familyRow( family ).identifiers.find( static_cast<char>( identifier ) ) !=
          std::string_view::npos;
}

bool PageOrder::operator()( std::string_view left, std::string_view right ) const {
   auto const isNumbered = []( std::string_view label ) {
      return label != "lower" && label != "a0h" && label != "a2h";
   };
   return std::tuple( isNumbered( left ), left ) < std::tuple( isNumbered( right ), right );
}

ImageError::ImageError( std::string_view file, std::string const & problem )
   : std::runtime_error( shownFileName( file ) + ": " + problem ) {}

std::string const * ModuleImage::page( std::string_view label ) const {
   auto const found = pages.find( label );
   return found == pages.end() ? nullptr : &found->second;
}

ModuleImage readImage( std::string const & path, ImageFamily family ) {
   std::string const name = path == "-" ? "<stdin>" : path;
   std::string content;
   try {
      content = contentOf( path );
   } catch ( InputProblem const & problem ) {
      throw ImageError( name, problem.what() );
   }
   return parseImage( name, content, family );
}

ModuleImage parseImage( std::string name, std::string_view content, ImageFamily family ) {
   ModuleImage image;
   image.file = std::move( name );
   image.family = family;
   try {
      readPages( image, content );
   } catch ( InputProblem const & problem ) {
      throw ImageError( image.file, problem.what() );
   }
   return image;
}

std::string labelledForm( ModuleImage const & image ) {
   constexpr std::size_t bytesPerLine = 16;
   std::string text;
   for ( auto const & [label, bytes] : image.pages ) {
      text += ( text.empty() ? "[" : "\n[" ) + label + "]";
      for ( std::size_t at = 0; at < bytes.size(); ++at ) {
         if ( at % bytesPerLine == 0 )
            text += "\n" + hexText( at, 2 ) + ":";
         text += " " + hexText( static_cast<std::uint8_t>( bytes[at] ), 2 );
      }
      text += "\n";
   }
   return text;
}

} // namespace XcvrTool
