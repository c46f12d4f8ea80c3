#include "tools/xcvr/ModuleImage.h"

#include "tools/xcvr/CodeNames.h"
#include "tools/xcvr/HexDump.h"
#include "tools/xcvr/InputText.h"
#include "tools/xcvr/Text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <tuple>
#include <utility>
#include <vector>

namespace XcvrTool {

namespace {

using namespace std::string_view_literals;

/// Far more than any dump of a module needs; what is longer is something else.
constexpr std::size_t inputLimit = std::size_t{ 1 } << 20;
constexpr std::size_t halfSize = 128; // of most pages: lines of a dump end where one does
constexpr unsigned lastUpperPage = 0xff;

/// What a label names.
enum class PageKind {
   none,
   device,    // "a0h", "a2h": all that a device of an SFP shows
   lower,     // "lower": the half of the memory that is always visible
   upper,     // "11h": one of the pages that appear in the other half
   banked,    // "11h.1": the same of another bank than 0
   byteTable, // "8000h": a table of registers of one byte
   wordTable, // "a000h": of registers of two bytes, the higher one first
};

/// The size of a page of each kind.
constexpr std::size_t pageSizes[] = { 0, 256, 128, 128, 128, 128, 256 };

/// A part of the memory that is enough to tell what the module is.
struct Identification {
   std::string_view label;
   std::size_t size;
};

/// What the reader of images has to know of a family.
struct Family {
   XcvrType type;
   std::string_view name;        // as the user writes it
   std::string_view identifiers; // values of byte 0
   /// Byte 0 tells the family. CFP modules number themselves, with numbers that others have too.
   bool hasCommonIdentifier;
   std::span<PageKind const> kinds;         // of the pages that its modules have
   std::span<std::string_view const> pages; // the linear layout
   /// Number of the upper page behind these, from which on all follow; none: the layout ends.
   std::optional<unsigned> firstUpperPage;
   std::span<Identification const> identification; // one of them an image has to have
};

using enum PageKind;

constexpr PageKind sfpKinds[] = { device, upper };
constexpr PageKind qsfpKinds[] = { lower, upper };
constexpr PageKind cmisKinds[] = { lower, upper, banked };
constexpr PageKind cfpKinds[] = { byteTable, wordTable };

constexpr std::string_view sfpPages[] = { "a0h", "a2h" };
constexpr std::string_view qsfpPages[] = { "lower" };
// Of the many pages the drivers give those that every module with paged memory has.
constexpr std::string_view cmisPages[] = { "lower", "00h", "01h", "02h", "10h", "11h" };
constexpr std::string_view cfpPages[] = { "8000h", "8080h", "8100h", "8180h" };

// The base and extended ID fields of SFF-8472 end at A0h:95, the base ID fields of SFF-8636 at 191,
// and what CMIS sums up on page 00h at 222.
constexpr Identification sfpIdentification[] = { { "a0h", 96 } };
constexpr Identification qsfpIdentification[] = { { "lower", 128 }, { "00h", 64 } };
constexpr Identification cmisIdentification[] = { { "lower", 128 }, { "00h", 95 } };
constexpr Identification cfpIdentification[] = { { "8000h", 128 } };

constexpr Family families[] = {
   { XcvrType::sfpPlus, "sfp", "\x03\x0b"sv, true, sfpKinds, sfpPages, 1, sfpIdentification },
   { XcvrType::qsfpPlus, "qsfp", "\x0c\x0d\x11"sv, true, qsfpKinds, qsfpPages, 0,
     qsfpIdentification },
   { XcvrType::qsfpDd,
     "qsfp-dd",
     "\x18\x1e"sv,
     true,
     cmisKinds,
     cmisPages,
     {},
     cmisIdentification },
   { XcvrType::osfp, "osfp", "\x19"sv, true, cmisKinds, cmisPages, {}, cmisIdentification },
   { XcvrType::cfp2, "cfp2", "\x11\x14\x19"sv, false, cfpKinds, cfpPages, {}, cfpIdentification },
};

std::string countText( std::size_t count ) {
   return std::to_string( count ) + ( count == 1 ? " byte" : " bytes" );
}

Family const & familyOfIdentifier( char identifier ) {
   for ( Family const & family : families )
      if ( family.hasCommonIdentifier &&
           family.identifiers.find( identifier ) != std::string_view::npos )
         return family;
   auto const number = static_cast<std::uint8_t>( identifier );
   std::string const text = "identifier " + hexText( number, 2 ) + "h";
   std::string const name( codeName( identifierNames, number ) );
   if ( number != 0 && !name.empty() ) // 0 is "unknown": of a module or of anything else
      throw InputProblem( text + " (" + name + ") is not one that this version decodes", "byte 0",
                          "say with --family which kind of module to read it as" );
   throw InputProblem( "no module image: " + text + " is not that of any module", "byte 0",
                       std::string( acceptedForms ) + "; --family sfp reads it all the same" );
}

Family const & familyRow( XcvrType type ) {
   return *std::ranges::find( families, type, &Family::type );
}

using Pages = decltype( ModuleImage::pages );

bool isBank( std::string_view text ) {
   std::uint8_t bank = 0;
   auto const [end, error] = std::from_chars( text.data(), text.data() + text.size(), bank );
   bool const hasLeadingZero = text.size() > 1 && text.starts_with( '0' );
   return error == std::errc{} && end == text.data() + text.size() && !hasLeadingZero;
}

/// What a label, in lower case, names.
PageKind kindOf( std::string_view label ) {
   if ( label == "a0h" || label == "a2h" )
      return device;
   if ( label == "lower" )
      return lower;
   std::size_t const digits =
      std::min( label.find_first_not_of( "0123456789abcdef" ), label.size() );
   std::string_view const unit = label.substr( digits );
   if ( digits == 2 && unit == "h" )
      return upper;
   if ( digits == 2 && unit.starts_with( "h." ) && isBank( unit.substr( 2 ) ) )
      return banked;
   if ( digits == 4 && unit == "h" && label >= "8000h" )
      return label < "9000h" ? byteTable : wordTable;
   return none;
}

constexpr std::size_t sizeOf( PageKind kind ) {
   return pageSizes[static_cast<std::size_t>( kind )];
}

/// The size that a page has in modules of a family; 0 if they have no such page.
std::size_t pageSize( Family const & family, std::string_view label ) {
   auto const isOfFamily = [&]( PageKind kind ) {
      return std::ranges::find( family.kinds, kind ) != family.kinds.end();
   };
   PageKind kind = kindOf( label );
   if ( kind == device && !isOfFamily( device ) )
      kind = upper; // where there is only one device, A0h numbers a page
   return isOfFamily( kind ) ? sizeOf( kind ) : 0;
}

Family const & familyOfSections( Pages const & pages ) {
   // Families that have a lower memory differ in its first byte; a0h is an upper page there.
   if ( auto const page = pages.find( "lower" ); page != pages.end() )
      return familyOfIdentifier( page->second.front() );
   for ( std::string_view const label : sfpPages )
      if ( pages.contains( label ) )
         return familyRow( XcvrType::sfpPlus );
   // Their first upper page begins with the same byte.
   if ( auto const page = pages.find( "00h" ); page != pages.end() )
      return familyOfIdentifier( page->second.front() );
   if ( kindOf( pages.begin()->first ) == byteTable )
      return familyRow( XcvrType::cfp2 );
   throw InputProblem( "the sections do not show which kind of module this is",
                       "first is [" + pages.begin()->first + "]",
                       "give [a0h] of an SFP, [lower] or [00h] of a QSFP or later, [8000h] of a "
                       "CFP, or say the kind with --family" );
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
   for ( std::string_view const label : family.pages )
      take( label, pageSize( family, label ) );
   // The upper pages A0h and A2h of an SFP have labels that name its devices: they are left out.
   for ( unsigned number = family.firstUpperPage.value_or( lastUpperPage + 1 );
         number <= lastUpperPage; ++number )
      take( hexText( number, 2 ) + "h", sizeOf( upper ) );
   if ( !bytes.empty() )
      throw InputProblem( "too long for an image of this family, " + std::string( family.name ),
                          countText( whole ) + ", at most " +
                             std::to_string( whole - bytes.size() ),
                          "give the memory of one module, without anything behind it" );
   return pages;
}

/// The number of the last line of some bytes if it looks cut; else 0.
std::size_t cutLineOf( LineWidths const & widths, std::size_t size ) {
   return size % halfSize != 0 ? widths.shortLine() : 0;
}

InputProblem tooManyBytes( std::string const & label, std::size_t size, Line const & line ) {
   return { "[" + label + "] has more than its " + countText( size ), lineText( line ),
            "remove what is too much" };
}

/// Reads a labelled image line by line.
class LabelledReader {
 public:
   void read( Line const & line );
   void end() const { checkSectionHasBytes(); }
   [[nodiscard]] Pages const & pages() const { return pages_; }
   /// Refuses sections that modules of the family do not have, or that are smaller there.
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
   if ( std::size_t const size = sizeOf( kindOf( label ) ); bytes.size() > size )
      throw tooManyBytes( label, size, line );
}

void LabelledReader::sectionIs( Line const & line, std::string_view header ) {
   std::string_view const inner =
      header.ends_with( ']' ) ? trimmed( header.substr( 1, header.size() - 2 ) ) : "";
   std::string label( inner );
   std::ranges::transform( label, label.begin(), []( char c ) {
      return c >= 'A' && c <= 'Z' ? static_cast<char>( c - 'A' + 'a' ) : c;
   } );
   if ( kindOf( label ) == none )
      throw InputProblem( "a section header that names no page", lineText( line ),
                          "name [a0h] or [a2h], [lower], an upper page [02h], one with a bank "
                          "[11h.0], or a register table [8000h]" );
   // A page without a bank is that of bank 0: they are one.
   if ( label.ends_with( ".0" ) )
      label.resize( label.size() - 2 );
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
   for ( auto const & [label, line] : headers_ ) {
      std::size_t const size = pageSize( family, label );
      if ( size == 0 )
         throw InputProblem( "[" + label + "] is no page of this family, " +
                                std::string( family.name ),
                             lineText( line ), "remove the section" );
      if ( pages_.find( label )->second.size() > size )
         throw tooManyBytes( label, size, line );
   }
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
   std::string needed;
   std::string found;
   for ( auto const & [label, size] : family.identification ) {
      auto const page = pages.find( label );
      std::size_t const there = page == pages.end() ? 0 : page->second.size();
      if ( there >= size )
         return;
      std::string const ofPage = " of page " + std::string( label );
      found += ( found.empty() ? "" : ", " ) + countText( there ) + ofPage;
      needed += ( needed.empty() ? "" : " or " ) + countText( size ) + ofPage;
   }
   throw InputProblem( "too short to identify the module", found,
                       "give at least the first " + needed );
}

void readPages( ModuleImage & image, std::string_view content ) {
   if ( content.size() > inputLimit )
      throw InputProblem( "too large for a module image", "more than " + countText( inputLimit ),
                          acceptedForms );
   image.form = formOf( content );
   bool const isAutomatic = image.family == anyFamily;
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
   image.family = family->type;
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

std::string_view familyName( XcvrType family ) {
   return familyRow( family ).name;
}

bool familyHasIdentifier( XcvrType family, std::uint8_t identifier ) {
   return familyRow( family ).identifiers.find( static_cast<char>( identifier ) ) !=
          std::string_view::npos;
}

bool PageOrder::operator()( std::string_view left, std::string_view right ) const {
   auto const place = []( std::string_view label ) {
      PageKind const kind = kindOf( label );
      bool const isNumbered = kind != lower && kind != device;
      // Of two banks the one whose number has fewer digits comes first.
      return std::tuple( isNumbered, label.substr( 0, label.find( '.' ) ), label.size(), label );
   };
   return place( left ) < place( right );
}

ImageError::ImageError( std::string_view file, std::string const & problem )
   : std::runtime_error( shownFileName( file ) + ": " + problem ) {}

std::string const * ModuleImage::page( std::string_view label ) const {
   auto const found = pages.find( label );
   return found == pages.end() ? nullptr : &found->second;
}

namespace {

std::string inputName( std::string const & path ) {
   return path == "-" ? "<stdin>" : path;
}

} // namespace

std::string readContent( std::string const & path ) {
   try {
      return contentOf( path );
   } catch ( InputProblem const & problem ) {
      throw ImageError( inputName( path ), problem.what() );
   }
}

ModuleImage readImage( std::string const & path, XcvrType family ) {
   return parseImage( inputName( path ), readContent( path ), family );
}

ModuleImage parseImage( std::string name, std::string_view content, XcvrType family ) {
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
