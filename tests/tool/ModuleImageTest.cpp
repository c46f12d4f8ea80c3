#include "tools/xcvr/ModuleImage.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

namespace XcvrTool {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::StartsWith;

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

std::string format( char const * form, std::size_t value ) {
   char buffer[32];
   std::snprintf( buffer, sizeof buffer, form, value );
   return buffer;
}

/// How some program prints a dump.
struct DumpForm {
   char const * offset; // printf form
   std::size_t group;   // bytes run together
   char const * before; // the ASCII column; null for none
   char const * after;  // the ASCII column
   bool hasRepeats;     // equal lines become "*", and the end offset follows
};

std::string dumpLine( DumpForm const & form, std::size_t offset, std::string const & bytes ) {
   std::string line = format( form.offset, offset );
   std::string ascii;
   for ( std::size_t at = 0; at < bytes.size(); ++at ) {
      auto const byte = static_cast<std::uint8_t>( bytes[at] );
      line += ( at > 0 && at % form.group == 0 ? " " : "" ) + format( "%02zx", byte );
      ascii += byte >= 32 && byte < 127 ? bytes[at] : '.';
   }
   return line + ( form.before ? form.before + ascii + form.after : "" ) + "\n";
}

std::string dump( DumpForm const & form, std::string const & bytes ) {
   std::string text;
   std::string last;
   for ( std::size_t at = 0; at < bytes.size(); at += 16 ) {
      std::string const line = bytes.substr( at, 16 );
      bool const isRepeat = form.hasRepeats && line == last;
      if ( !isRepeat )
         text += dumpLine( form, at, line );
      else if ( !text.ends_with( "*\n" ) )
         text += "*\n";
      last = line;
   }
   return text + ( form.hasRepeats ? format( form.offset, bytes.size() ) + "\n" : "" );
}

constexpr DumpForm xxd{ "%08zx: ", 2, "  ", "", false };
constexpr DumpForm xxdSingle{ "%08zx: ", 1, "  ", "", false };
constexpr DumpForm hexdumpC{ "%08zx  ", 1, "  |", "|", true };
constexpr DumpForm od{ "%06zx ", 1, nullptr, nullptr, true };
constexpr DumpForm i2cdump{ "%02zx: ", 1, "    ", "", false };
constexpr DumpForm ethtool{ "0x%04zx:\t\t", 1, nullptr, nullptr, false };

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
      text += prefix + format( "%02zx", static_cast<std::uint8_t>( byte ) ) + between;
   return text + "\n";
}

std::string labelled( std::string const & bytes ) {
   ModuleImage image;
   image.pages = { { "a0h", bytes.substr( 0, 256 ) }, { "a2h", bytes.substr( 256 ) } };
   return labelledForm( image );
}

std::string replaced( std::string text, std::string_view what, std::string_view with ) {
   for ( std::size_t at = 0; ( at = text.find( what, at ) ) != text.npos; at += with.size() )
      text.replace( at, what.size(), with );
   return text;
}

std::string withoutBlanksAtLineEnds( std::string text ) {
   while ( text.find( " \n" ) != text.npos )
      text = replaced( text, " \n", "\n" );
   return text;
}

TEST( ModuleImage, everyFormHoldsTheSameBytes ) {
   std::string const bytes = memory( 512 );
   struct {
      char const * name;
      ImageForm form;
      std::string text;
   } const cases[] = {
      { "binary", ImageForm::binary, bytes },
      { "labelled", ImageForm::labelled, labelled( bytes ) },
      { "ethtool", ImageForm::hexDump, ethtoolDump( bytes ) },
      { "hexdump -C", ImageForm::hexDump, dump( hexdumpC, bytes ) },
      { "od -Ax -tx1", ImageForm::hexDump, dump( od, bytes ) },
      { "xxd", ImageForm::hexDump, dump( xxd, bytes ) },
      { "xxd -g1", ImageForm::hexDump, dump( xxdSingle, bytes ) },
      { "xxd, indented", ImageForm::hexDump,
        "    " + replaced( dump( xxd, bytes ), "\n", "\n    " ) },
      { "offsets, blanks in pairs", ImageForm::hexDump,
        replaced( dump( ethtool, bytes ), " ", "  " ) },
      { "i2cdump of two devices", ImageForm::hexDump, i2cdumps( bytes ) },
      { "plain, apart", ImageForm::hexDump, plainHex( bytes, "", " " ) },
      { "plain, run together", ImageForm::hexDump, plainHex( bytes, "", "" ) },
      { "plain, as an array", ImageForm::hexDump, plainHex( bytes, "0x", ", " ) },
      { "plain, one a line", ImageForm::hexDump, plainHex( bytes, "", "\n" ) },
      { "plain, commented", ImageForm::hexDump,
        "# a module\n\n" + plainHex( bytes, "", " # byte\n" ) },
   };
   for ( auto const & [name, form, text] : cases ) {
      SCOPED_TRACE( name );
      std::string const variants[] = { text, replaced( text, "\n", "\r\n" ), "\xef\xbb\xbf" + text,
                                       withoutBlanksAtLineEnds( text ) };
      // A binary image is what it is: only texts come in variants.
      for ( std::size_t i = 0; i < ( form == ImageForm::binary ? 1 : std::size( variants ) );
            ++i ) {
         SCOPED_TRACE( i );
         ModuleImage const image = parseImage( "f", variants[i], anyFamily );
         EXPECT_EQ( image.form, form );
         EXPECT_EQ( image.family, XcvrType::sfpPlus );
         ASSERT_EQ( image.pages.size(), 2u );
         EXPECT_EQ( *image.page( "a0h" ), bytes.substr( 0, 256 ) );
         EXPECT_EQ( *image.page( "a2h" ), bytes.substr( 256 ) );
      }
   }
}

TEST( ModuleImage, linearBytesAreSharedOutToPages ) {
   using Layout = std::vector<std::pair<std::string, std::size_t>>;
   Layout const cmis{ { "lower", 128 }, { "00h", 128 }, { "01h", 128 },
                      { "02h", 128 },   { "10h", 128 }, { "11h", 128 } };
   struct {
      std::size_t size;
      char identifier;
      XcvrType family;
      Layout pages;
   } const cases[] = {
      { 96, 0x03, XcvrType::sfpPlus, { { "a0h", 96 } } },
      { 127, 0x03, XcvrType::sfpPlus, { { "a0h", 127 } } },
      { 256, 0x0b, XcvrType::sfpPlus, { { "a0h", 256 } } },
      { 384, 0x03, XcvrType::sfpPlus, { { "a0h", 256 }, { "a2h", 128 } } },
      { 513, 0x03, XcvrType::sfpPlus, { { "a0h", 256 }, { "a2h", 256 }, { "01h", 1 } } },
      { 768,
        0x03,
        XcvrType::sfpPlus,
        { { "a0h", 256 }, { "a2h", 256 }, { "01h", 128 }, { "02h", 128 } } },
      { 128, 0x0c, XcvrType::qsfpPlus, { { "lower", 128 } } },
      { 256, 0x0d, XcvrType::qsfpPlus, { { "lower", 128 }, { "00h", 128 } } },
      { 640,
        0x11,
        XcvrType::qsfpPlus,
        { { "lower", 128 }, { "00h", 128 }, { "01h", 128 }, { "02h", 128 }, { "03h", 128 } } },
      { 768, 0x18, XcvrType::qsfpDd, cmis },
      { 768, 0x1e, XcvrType::qsfpDd, cmis },
      { 768, 0x19, XcvrType::osfp, cmis },
   };
   for ( auto const & [size, identifier, family, pages] : cases ) {
      SCOPED_TRACE( size );
      std::string const bytes = identifier + memory( 1024 ).substr( 1, size - 1 );
      ModuleImage const image = parseImage( "f", bytes, anyFamily );
      EXPECT_EQ( image.family, family );
      // In the order of the layout, each with the bytes that follow those of the page before.
      Layout found;
      std::string joined;
      for ( auto const & [label, page] : image.pages ) {
         found.emplace_back( label, page.size() );
         joined += page;
      }
      EXPECT_EQ( found, pages );
      EXPECT_EQ( joined, bytes );
   }
   std::string largest = memory( 512 + 255 * 128 );
   EXPECT_EQ( parseImage( "f", largest, anyFamily ).page( "ffh" )->size(), 128u );
   largest[0] = 0x11;
   EXPECT_EQ( *parseImage( "f", largest.substr( 0, 257 * 128 ), anyFamily ).page( "20h" ),
              largest.substr( 33 * 128, 128 ) );
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
   EXPECT_EQ( image.family, XcvrType::sfpPlus );
   EXPECT_EQ( image.page( "a0h" )->substr( 96 ), "\1\2\3\4\5" );
   EXPECT_EQ( *image.page( "a2h" ), "\xff" );
   EXPECT_EQ( *image.page( "02h" ), "\1" );
   EXPECT_EQ( *image.page( "00h" ), "\2" );
   EXPECT_EQ( *image.page( "ffh" ), "\3" );
   EXPECT_EQ( image.page( "03h" ), nullptr );

   ModuleImage const again = parseImage( "f", labelledForm( image ), anyFamily );
   EXPECT_EQ( again.pages, image.pages );
}

TEST( ModuleImage, familyIsSeenOrSaid ) {
   std::string const half = plainHex( memory( 256 ).substr( 1, 127 ), "", " " );
   struct {
      std::string content;
      XcvrType said;
      XcvrType family;
   } const cases[] = {
      // Labels and what the user says come before the identifier.
      { labelled( '\x11' + memory( 512 ).substr( 1 ) ), anyFamily, XcvrType::sfpPlus },
      { '\x11' + memory( 512 ).substr( 1 ), XcvrType::sfpPlus, XcvrType::sfpPlus },
      { "[lower]\n11 " + half, XcvrType::osfp, XcvrType::osfp },
      // A page a0h behind a lower one, and the first upper page alone.
      { "[lower]\n1e " + half + "[A0h]\n01\n", anyFamily, XcvrType::qsfpDd },
      { "[03h]\n00\n[00h]\n0d " + half, anyFamily, XcvrType::qsfpPlus },
      { "[00h]\n19 " + half, anyFamily, XcvrType::osfp },
      // Modules of another kind have the same identifier.
      { "[A000h]\n00 01\n[8000h]\n11 " + half, anyFamily, XcvrType::cfp2 },
      { '\x11' + memory( 512 ).substr( 1 ), XcvrType::cfp2, XcvrType::cfp2 },
   };
   for ( auto const & [content, said, family] : cases )
      EXPECT_EQ( parseImage( "f", content, said ).family, family ) << content.substr( 0, 20 );
}

TEST( ModuleImage, aPageWithoutABankIsThatOfBank0 ) {
   ModuleImage const image =
      parseImage( "f",
                  "[lower]\n18 " + plainHex( memory( 256 ).substr( 1, 127 ), "", " " ) +
                     "[11h.10]\n0a\n[11h.2]\n02\n[11h.0]\n00\n[10h]\nff\n",
                  anyFamily );
   std::vector<std::string> labels;
   for ( auto const & [label, page] : image.pages )
      labels.push_back( label );
   EXPECT_EQ( labels, ( std::vector<std::string>{ "lower", "10h", "11h", "11h.2", "11h.10" } ) );
   EXPECT_EQ( *image.page( "11h.10" ), "\n" );
}

/// The message of the refusal; empty if the input is accepted.
std::string refusal( std::function<ModuleImage()> const & read ) {
   try {
      read();
   } catch ( ImageError const & error ) {
      return error.what();
   }
   return "";
}

TEST( ModuleImage, refusalsSayWhatIsWrongAndWhere ) {
   std::string const bytes = memory( 512 );
   std::string const a0h = "[a0h]\n" + plainHex( bytes.substr( 0, 96 ), "", " " );
   auto const withIdentifier = [&]( char identifier ) { return identifier + bytes.substr( 1 ); };
   std::string const xxdText = dump( xxd, bytes );
   std::string const hexdumpText = dump( hexdumpC, bytes );
   std::string const row = "03 04 07 10 00 00 00 20  40 04 80 55 00 00 00 00";
   struct {
      std::string content;
      char const * what;
      char const * where;
   } const cases[] = {
      // No image at all.
      { "", "no bytes", "(the input is empty)" },
      { " \r\n\n", "no bytes", "(blank text)" },
      { "# only a comment\n", "no bytes", "(blank text)" },
      { "Identifier : 0x03 (SFP)\n", "text, but no module image", "(line 1); give a binary image" },
      { "GIF89a, not an image of a module", "i2cdump", "(line 1); give a binary image" },
      { "\xff\xd8\xff\xe0" + std::string( 300, '\0' ), "identifier ffh", "(byte 0)" },
      { std::string( "\xff\xfe[\0a\0", 6 ), "identifier ffh", "ASCII or UTF-8" },
      { std::string( 512, '\0' ), "identifier 00h", "(byte 0)" },
      { std::string( ( 1 << 20 ) + 1, '\3' ), "too large", "(more than 1048576 bytes)" },
      // Other modules, and too much or too little of one.
      { withIdentifier( 0x0e ), "identifier 0eh (CXP) is not one that this version decodes",
        "with --family" },
      { withIdentifier( 0x22 ), "22h (ELSFP with CMIS) is", "(byte 0)" },
      { withIdentifier( 0x23 ), "identifier 23h is not that of any module", "(byte 0)" },
      { "[lower]\n22\n[00h]\n18\n", "22h (ELSFP with CMIS) is", "(byte 0)" },
      { "[lower]\n11\n[11h.1]\n18\n", "[11h.1] is no page of this family, qsfp", "(line 3)" },
      { "[lower]\n18\n[11h]\n18\n[11h.0]\n", "a second section [11h]", "(line 5)" },
      { "[lower]\n03\n", "[lower] is no page of this family, sfp", "(line 1)" },
      { "[lower]\n03\n" + a0h, "[lower] is no page of", "(line 1); remove" },
      { a0h + "[02h]\n01\n[8000h]\n01\n[11h.1]\n01\n", "[8000h] is no page of",
        "(line 5); remove" },
      { a0h + "[11h.255]\n01\n", "[11h.255] is no page of", "(line 3); remove" },
      { "[03h]\n0e\n", "do not show which kind of module", "(first is [03h])" },
      { "[7fffh]\n0e\n", "header that names no page", "(line 1)" },
      { "[8000h]\n0e\n", "too short to identify", "(1 byte of page 8000h)" },
      { "[8000h]\n0e\n[8080h]\n" + plainHex( memory( 256 ).substr( 0, 129 ), "", "" ),
        "[8080h] has more than its 128 bytes", "(line 4)" },
      { "[lower]\n11\n[a0h]\n" + plainHex( memory( 256 ).substr( 0, 129 ), "", "" ),
        "[a0h] has more than its 128 bytes", "(line 3)" },
      { "\3", "too short to identify", "(1 byte of page a0h)" },
      { bytes.substr( 0, 95 ), "too short",
        "(95 bytes of page a0h); give at least the first 96 bytes of page a0h" },
      { "[a0h]\n03 04\n", "too short", "(2 bytes of page a0h)" },
      { "[a2h]\n03\n", "too short", "(0 bytes of page a0h)" },
      { memory( 33153 ), "too long", "(33153 bytes, at most 33152)" },
      { '\x18' + memory( 768 ), "too long for an image of this family, qsfp-dd", "at most 768)" },
      { '\x11' + memory( 256 ).substr( 0, 126 ), "too short to identify the module",
        "(127 bytes of page lower, 0 bytes of page 00h); give at least the first 128 bytes of page "
        "lower or 64 bytes of page 00h" },
      // Damaged dumps.
      { xxdText.substr( 0, 68 * 3 - 20 ), "a hex digit is missing", "(line 3, column 46)" },
      { plainHex( bytes, "", "" ) + "0", "a hex digit is missing", "(line 2, column 1)" },
      { plainHex( bytes, "", " " ) + "0x", "a hex digit is missing", "(line 2, column 1)" },
      { plainHex( bytes, "", " " ) + " 0g", "'g' is no hex digit", "(line 2, column 3)" },
      { plainHex( bytes, "", " " ) + "\xc2\xa0", "byte c2h is no hex digit", "(line 2" },
      { replaced( hexdumpText, "00000020 ", "00000030 " ),
        "offset 0x0030 stands where 0x0020 is due", "(line 3)" },
      { replaced( hexdumpText, "00000020 ", "00000000 " ),
        "offset 0x0000 stands where 0x0020 is due", "(line 3)" },
      { xxdText + xxdText, "offset 0x0000 stands where 0x0200 is due", "(line 33)" },
      { replaced( xxdText, "00000020: ", "" ), "no offset", "(line 3)" },
      { replaced( i2cdumps( bytes ), "10: 44", "10: XX" ), "offset 0x0010 could not be read",
        "(line 3, column 5)" },
      { "0000000 0403 1007\n", "words of 4 digits", "hexdump -C" },
      { row + "\n*\n" + row, "only offsets could count", "(line 2)" },
      { "0000000 " + row + "\n*\n", "how many lines", "(line 2)" },
      { "0000000 " + row + "\n*\nfffffff0\n", "cannot end at offset 0xfffffff0", "(line 3)" },
      { "0000000 " + row + "\n*\n000001f\n", "cannot end at offset 0x001f", "(line 3)" },
      { "0000000 " + row + "\n0000010\n*\n0000020\n", "cannot end at", "(line 4)" },
      // Damaged labelled images.
      { "[a0h\n03\n", "header that names no page", "(line 1)" },
      { "[]\n", "header that names no page", "(line 1)" },
      { "[1, 2]\n", "header that names no page", "(line 1)" },
      { a0h + "[11h.256]\n", "header that names no page", "(line 3)" },
      { a0h + "[11h.00]\n", "header that names no page", "(line 3)" },
      { a0h + a0h, "a second section [a0h]", "(line 3)" },
      { a0h + "[a2h]\n# none\n", "[a2h] has no bytes", "(line 3)" },
      { a0h + "[a2h]\n[02h]\n01\n", "[a2h] has no bytes", "(line 3)" },
      { a0h + "61: 00\n", "offset 0x0061 stands where 0x0060 is due", "(line 3)" },
      { a0h + "\n0 1\n", "a hex digit is missing", "(line 4, column 1)" },
      { a0h + "60: 00\n61", "ends inside a line", "(line 4)" },
      { a0h + "00 |..|\n", "'|' is no hex digit", "(line 3, column 4)" },
      { "[a0h]\n" + plainHex( memory( 257 ), "", "" ), "[a0h] has more than its 256 bytes",
        "(line 2)" },
      { a0h + "[02h]\n" + plainHex( bytes.substr( 0, 129 ), "", "" ),
        "[02h] has more than its 128 bytes", "(line 4)" },
   };
   for ( auto const & it : cases )
      EXPECT_THAT( refusal( [&] { return parseImage( "x.bin", it.content, anyFamily ); } ),
                   AllOf( StartsWith( "x.bin: " ), HasSubstr( it.what ), HasSubstr( it.where ) ) )
         << it.content.substr( 0, 200 );
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

/// A folder of its own for the files of a test.
class ModuleImageFile : public ::testing::Test {
 protected:
   void SetUp() override {
      std::string name = ( std::filesystem::temp_directory_path() / "xcvr-XXXXXX" ).string();
      ASSERT_NE( ::mkdtemp( name.data() ), nullptr );
      folder_ = name;
   }
   void TearDown() override { std::filesystem::remove_all( folder_ ); }

   std::string path( char const * name ) const { return ( folder_ / name ).string(); }
   static void write( std::string const & path, std::string const & content ) {
      std::ofstream( path, std::ios::binary ) << content;
   }
   static std::string readRefusal( std::string const & path ) {
      return refusal( [&] { return readImage( path, anyFamily ); } );
   }

   std::filesystem::path folder_;
};

TEST_F( ModuleImageFile, isReadFromFilesAndPipes ) {
   std::string const bytes = memory( 512 );
   write( path( "image.bin" ), bytes );
   ModuleImage const image = readImage( path( "image.bin" ), anyFamily );
   EXPECT_EQ( image.file, path( "image.bin" ) );
   EXPECT_EQ( *image.page( "a2h" ), bytes.substr( 256 ) );

   ASSERT_EQ( ::mkfifo( path( "pipe" ).c_str(), 0600 ), 0 );
   std::thread writer( [&] { write( path( "pipe" ), dump( xxd, bytes ) ); } );
   ModuleImage const piped = readImage( path( "pipe" ), anyFamily );
   writer.join();
   EXPECT_EQ( piped.pages, image.pages );
}

TEST_F( ModuleImageFile, whatCannotBeReadIsRefused ) {
   // A sparse file: nothing but its size is large.
   write( path( "huge" ), "\3" );
   std::filesystem::resize_file( path( "huge" ), 2'147'483'648 );
   write( path( "empty" ), "" );
   struct {
      std::string path;
      char const * what;
   } const cases[] = {
      { path( "missing" ), "cannot be opened (No such file or directory)" },
      { folder_.string(), "cannot be read (Is a directory)" },
      { path( "huge" ), "too large for a module image (more than 1048576 bytes)" },
      { path( "empty" ), "the input is empty" },
      { "/dev/zero", "too large" },
      { "/dev/null", "the input is empty" },
      { "/proc/self/mem", "cannot be read (Input/output error)" }, // opens, but fails to read
   };
   for ( auto const & [path, what] : cases )
      EXPECT_THAT( readRefusal( path ), AllOf( StartsWith( path + ": " ), HasSubstr( what ) ) );
}

TEST_F( ModuleImageFile, withoutPermissionIsRefused ) {
   if ( ::geteuid() == 0 )
      GTEST_SKIP() << "root may read every file";
   write( path( "secret" ), memory( 512 ) );
   ASSERT_EQ( ::chmod( path( "secret" ).c_str(), 0 ), 0 );
   EXPECT_THAT( readRefusal( path( "secret" ) ), HasSubstr( "(Permission denied); check" ) );
}

} // namespace
} // namespace XcvrTool
