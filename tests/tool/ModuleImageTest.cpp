#include "tools/xcvr/ModuleImage.h"

#include "tests/tool/ToolRun.h"

#include <cstdint>
#include <fmt/format.h>

namespace XcvrTool {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using ::testing::ThrowsMessage;

/// Module memory that tempts a reader of text: its ASCII column has hex digits, "|", "#", "[a0h]",
/// "*" and lines of blanks in it, and equal lines follow each other.
std::string memory( std::size_t size ) {
   std::string bytes( size, '\0' );
   for ( std::size_t at = 0; at < size; ++at )
      bytes[at] = static_cast<char>( at * 73 + at / 256 );
   bytes[0] = 3;
   bytes.replace( 16, 64, "DE AD BE EF 0011|03 04|# [a0h]  00: XX: *   " + std::string( 20, ' ' ) );
   bytes.replace( 128, 64, 64, '\0' );
   return bytes;
}

/// How some program prints a dump.
struct DumpForm {
   char const * offset; // fmt form
   std::size_t group;   // bytes run together
   char const * before; // the ASCII column; null for none
   char const * after;  // the ASCII column
   bool hasRepeats;     // equal lines become "*", and the end offset follows
};

std::string dump( DumpForm const & form, std::string const & bytes ) {
   std::string text, last;
   for ( std::size_t at = 0; at < bytes.size(); at += 16 ) {
      std::string const line = bytes.substr( at, 16 );
      if ( form.hasRepeats && std::exchange( last, line ) == line ) {
         text += text.ends_with( "*\n" ) ? "" : "*\n";
         continue;
      }
      text += fmt::format( fmt::runtime( form.offset ), at );
      std::string ascii;
      for ( char const byte : line ) {
         ascii += byte >= ' ' && byte <= '~' ? byte : '.';
         text += fmt::format( "{:02x}{}", static_cast<std::uint8_t>( byte ),
                              ascii.size() % form.group == 0 ? " " : "" );
      }
      text += ( form.before ? form.before + ascii + form.after : "" ) + "\n";
   }
   return text + ( form.hasRepeats ? fmt::format( fmt::runtime( form.offset ), bytes.size() ) + "\n"
                                   : "" );
}

constexpr DumpForm xxd{ "{:08x}: ", 2, " ", "", false };
constexpr DumpForm hexdumpC{ "{:08x}  ", 1, " |", "|", true };
constexpr DumpForm od{ "{:06x} ", 1, nullptr, nullptr, true };
constexpr DumpForm i2cdump{ "{:02x}: ", 1, "   ", "", false };
constexpr DumpForm ethtool{ "0x{:04x}:\t\t", 1, nullptr, nullptr, false };

std::string ethtoolDump( std::string const & bytes ) {
   return "Offset\t\tValues\n------\t\t------\n" + dump( ethtool, bytes );
}

/// i2cdump reads one device; to get both one runs it twice.
std::string i2cdumps( std::string const & bytes ) {
   std::string const head =
      "     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f    0123456789abcdef\n";
   return head + dump( i2cdump, bytes.substr( 0, 256 ) ) + head +
          dump( i2cdump, bytes.substr( 256 ) );
}

std::string plainHex( std::string const & bytes, char const * prefix, char const * between ) {
   std::string text;
   for ( char byte : bytes )
      text += fmt::format( "{}{:02x}{}", prefix, static_cast<std::uint8_t>( byte ), between );
   return text + "\n";
}

ModuleImage sfpImage( std::string const & bytes ) {
   ModuleImage image;
   image.pages = { { "a0h", bytes.substr( 0, 256 ) }, { "a2h", bytes.substr( 256 ) } };
   return image;
}
std::string labelled( std::string const & bytes ) {
   return labelledForm( sfpImage( bytes ) );
}

std::string replaced( std::string text, std::string_view what, std::string_view with ) {
   for ( std::size_t at = 0; ( at = text.find( what, at ) ) != text.npos; at += with.size() )
      text.replace( at, what.size(), with );
   return text;
}

TEST( ModuleImage, everyFormHoldsTheSameBytes ) {
   std::string const bytes = memory( 512 );
   std::regex const blanksAtLineEnd( " +\n" );
   struct {
      char const * name;
      ImageForm form;
      std::string text;
   } const cases[] = {
      { "labelled", ImageForm::labelled, labelled( bytes ) },
      { "ethtool", ImageForm::hexDump, ethtoolDump( bytes ) },
      { "hexdump -C", ImageForm::hexDump, dump( hexdumpC, bytes ) },
      { "od -Ax -tx1", ImageForm::hexDump, dump( od, bytes ) },
      { "xxd", ImageForm::hexDump, dump( xxd, bytes ) },
      { "xxd, indented", ImageForm::hexDump,
        "    " + replaced( dump( xxd, bytes ), "\n", "\n    " ) },
      { "i2cdump of two devices", ImageForm::hexDump, i2cdumps( bytes ) },
      { "plain, run together", ImageForm::hexDump, plainHex( bytes, "", "" ) },
      { "plain, as an array", ImageForm::hexDump, plainHex( bytes, "0x", ", " ) },
      { "plain, commented", ImageForm::hexDump, "# a\n\n" + plainHex( bytes, "", " # byte\n" ) },
   };
   for ( auto const & [name, form, text] : cases ) {
      SCOPED_TRACE( name );
      std::string const variants[] = { text, replaced( text, "\n", "\r\n" ), "\xef\xbb\xbf" + text,
                                       std::regex_replace( text, blanksAtLineEnd, "\n" ) };
      for ( std::string const & variant : variants ) {
         ModuleImage const image = parseImage( "f", variant, anyFamily );
         EXPECT_EQ( image.form, form );
         EXPECT_EQ( image.family, XcvrType::sfpPlus );
         EXPECT_EQ( image.pages, sfpImage( bytes ).pages );
      }
   }
}

/// "sfp: a0h 256, a2h 128": the family, the pages in their order and their sizes.
std::string contentsOf( ModuleImage const & image ) {
   std::vector<std::string> pages;
   for ( auto const & [label, page] : image.pages )
      pages.push_back( fmt::format( "{} {}", label, page.size() ) );
   return fmt::format( "{}: {}", familyName( image.family ), fmt::join( pages, ", " ) );
}

TEST( ModuleImage, familyAndPagesAreSeenOrSaid ) {
   auto const linear = []( char identifier, std::size_t size ) {
      return identifier + memory( 40000 ).substr( 1, size - 1 );
   };
   std::string const half = plainHex( memory( 256 ).substr( 1, 127 ), "", " " );
   struct {
      std::string content;
      XcvrType said;
      char const * contents;
   } const cases[] = {
      { linear( 0x0b, 384 ), anyFamily, "sfp: a0h 256, a2h 128" },
      { linear( 0x03, 769 ), anyFamily, "sfp: a0h 256, a2h 256, 01h 128, 02h 128, 03h 1" },
      { linear( 0x11, 513 ), anyFamily, "qsfp: lower 128, 00h 128, 01h 128, 02h 128, 03h 1" },
      { linear( 0x18, 768 ), anyFamily,
        "qsfp-dd: lower 128, 00h 128, 01h 128, 02h 128, 10h 128, 11h 128" },
      { linear( 0x19, 129 ), anyFamily, "osfp: lower 128, 00h 1" },
      // Labels and what the user says come before the identifier.
      { labelled( linear( 0x11, 512 ) ), anyFamily, "sfp: a0h 256, a2h 256" },
      { linear( 0x11, 512 ), XcvrType::sfpPlus, "sfp: a0h 256, a2h 256" },
      // A page a0h behind a lower one, and the first upper page alone.
      { "[lower]\n1e " + half + "[A0h]\n01\n", anyFamily, "qsfp-dd: a0h 1, lower 128" },
      { "[03h]\n00\n[00h]\n0d " + half, anyFamily, "qsfp: 00h 128, 03h 1" },
      // Modules of another kind have the same identifier.
      { "[A000h]\n00 01\n[8000h]\n11 " + half, anyFamily, "cfp2: 8000h 128, a000h 2" },
      // A page without a bank is that of bank 0.
      { "[lower]\n18 " + half + "[11h.10]\n0a\n[11h.2]\n02\n[11h.0]\n00\n[10h]\nff\n", anyFamily,
        "qsfp-dd: lower 128, 10h 1, 11h 1, 11h.2 1, 11h.10 1" },
   };
   for ( auto const & [content, said, contents] : cases ) {
      ModuleImage const image = parseImage( "f", content, said );
      EXPECT_EQ( contentsOf( image ), contents );
      std::string joined;
      for ( auto const & [label, page] : image.pages )
         joined += page;
      EXPECT_TRUE( image.form != ImageForm::binary || joined == content );
   }
   std::string const largest = linear( 3, 512 + 255 * 128 );
   EXPECT_EQ( parseImage( "f", largest, anyFamily ).page( "ffh" )->size(), 128u );
}

TEST( ModuleImage, labelledImageKeepsEveryPageAsWritten ) {
   std::string const text = "# A module.\n"
                            "\n"
                            "[ A0h ]   # the label's case and blanks do not matter\n" +
                            plainHex( memory( 512 ).substr( 0, 96 ), "", " " ) +
                            "0x60: 01,02  0x03 # three more\n"
                            "63:0405\n"
                            "[a2h]\n\t0000: ff\n"
                            "[02h]\n01\n[00h]\n02\n[FFh]\n03\n";
   ModuleImage const image = parseImage( "f", text, anyFamily );
   decltype( image.pages ) const pages = { { "a0h", memory( 512 ).substr( 0, 96 ) + "\1\2\3\4\5" },
                                           { "a2h", "\xff" },
                                           { "00h", "\2" },
                                           { "02h", "\1" },
                                           { "ffh", "\3" } };
   EXPECT_EQ( image.pages, pages );
   EXPECT_EQ( parseImage( "f", labelledForm( image ), anyFamily ).pages, pages );
}

auto isRefusal( std::string const & file, char const * what ) {
   return ThrowsMessage<ImageError>( AllOf( StartsWith( file + ": " ), HasSubstr( what ) ) );
}

TEST( ModuleImage, refusalsSayWhatIsWrongAndWhere ) {
   std::string const bytes = memory( 512 );
   std::string const a0h = "[a0h]\n" + plainHex( bytes.substr( 0, 96 ), "", " " );
   std::string const xxdText = dump( xxd, bytes );
   std::string const row = "03 04 07 10 00 00 00 20  40 04 80 55 00 00 00 00";
   struct {
      std::string content;
      char const * message;
   } const cases[] = {
      // No image at all.
      { "", "no bytes of a module (the input is empty)" },
      { "Identifier : 0x03 (SFP)\n", "text, but no module image (line 1); give a binary image" },
      { "\xff\xd8\xff\xe0" + std::string( 300, '\0' ), "identifier ffh" },
      { std::string( "\xff\xfe[\0a\0", 6 ), "ASCII or UTF-8" },
      { std::string( ( 1 << 20 ) + 1, '\3' ), "too large" },
      // Other modules, and too much or too little of one.
      { '\x0e' + bytes.substr( 1 ), "identifier 0eh (CXP) is not one that this version decodes" },
      { "[lower]\n11\n[11h.1]\n18\n", "[11h.1] is no page of this family, qsfp (line 3)" },
      { a0h + "[02h]\n01\n[8000h]\n01\n[11h.1]\n01\n", "[8000h] is no page of" },
      { "[03h]\n0e\n", "do not show which kind of module" },
      { bytes.substr( 0, 95 ), "(95 bytes of page a0h); give at least the first 96 bytes" },
      { '\x11' + memory( 256 ).substr( 0, 126 ), "(127 bytes of page lower, 0 bytes of page 00h)" },
      // Damaged dumps.
      { xxdText.substr( 0, 68 * 3 - 20 ),
        "a hex digit is missing, a byte has two (line 3, column 46)" },
      { plainHex( bytes, "", " " ) + "\xc2\xa0", "byte c2h is no hex digit (line 2" },
      { replaced( dump( hexdumpC, bytes ), "00000020 ", "00000030 " ),
        "offset 0x0030 stands where 0x0020 is due (line 3)" },
      { replaced( xxdText, "00000020: ", "" ), "no offset" },
      { replaced( i2cdumps( bytes ), "10: 44", "10: XX" ), "offset 0x0010 could not be read" },
      { "0000000 0403 1007\n", "words of 4 digits" },
      { "0000000 " + row + "\n*\n000001f\n", "cannot end at offset 0x001f (line 3)" },
      // Damaged labelled images.
      { "[a0h\n03\n", "header that names no page (line 1)" },
      { a0h + "[11h.256]\n", "header that names no page (line 3)" },
      { a0h + a0h, "a second section [a0h] (line 3)" },
      { a0h + "61: 00\n", "offset 0x0061 stands where 0x0060 is due (line 3)" },
      { a0h + "60: 00\n61", "ends inside a line: its offset is not complete (line 4)" },
      { a0h + "00 |..|\n", "'|' is no hex digit (line 3, column 4)" },
      { "[a0h]\n" + plainHex( memory( 257 ), "", "" ), "[a0h] has more than its 256 bytes" },
      { a0h + "[02h]\n" + plainHex( bytes.substr( 0, 129 ), "", "" ), "more than its 128 bytes" },
   };
   for ( auto const & [content, message] : cases )
      EXPECT_THAT( [&content = content] { parseImage( "x.bin", content, anyFamily ); },
                   isRefusal( "x.bin", message ) )
         << content.substr( 0, 200 );
}

TEST( ModuleImage, dumpCutAnywhereIsShorterOrRefused ) {
   std::string const bytes = memory( 512 );
   std::string const texts[] = { ethtoolDump( bytes ), dump( hexdumpC, bytes ),
                                 dump( xxd, bytes ),   i2cdumps( bytes ),
                                 labelled( bytes ),    plainHex( bytes, "0x", ", " ) };
   for ( std::string const & text : texts )
      for ( std::size_t size = 0; size < text.size(); size += 7 ) { // meets every part of a line
         ModuleImage image;
         try {
            image = parseImage( "f", text.substr( 0, size ), anyFamily );
         } catch ( ImageError const & ) {
            continue;
         }
         for ( auto const & [label, page] : image.pages )
            ASSERT_EQ( page, bytes.substr( label == "a2h" ? 256 : 0, page.size() ) )
               << text.substr( 0, size );
      }
}

using ModuleImageFile = XcvrTest::ToolTest;

TEST_F( ModuleImageFile, whatCannotBeReadIsRefused ) {
   // A sparse file: nothing but its size is large.
   std::filesystem::resize_file( path( file( "huge", "\3" ) ), 2'147'483'648 );
   struct {
      std::string path;
      char const * what;
   } const cases[] = {
      { path( "huge" ), "too large for a module image (more than 1048576 bytes)" },
      { "/dev/zero", "too large" },
      { "/dev/null", "the input is empty" },
      { "/proc/self/mem", "cannot be read (Input/output error)" }, // opens, but fails to read
   };
   for ( auto const & [path, what] : cases )
      EXPECT_THAT( [&path = path] { readImage( path, anyFamily ); }, isRefusal( path, what ) );
}

} // namespace
} // namespace XcvrTool
