#pragma once

#include <Xcvr/XcvrTypes.h>

#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace XcvrTool {

/// How an input holds the module memory.
enum class ImageForm { binary, hexDump, labelled };

/// Which kind of module an image is of. QSFP-DD and OSFP stand for all modules with CMIS.
using Xcvr::XcvrType;

/// Asks the reader to find out; a ModuleImage has a real one.
inline constexpr XcvrType anyFamily = XcvrType::unknown;

/// The name of a family, one that has images, as users write it.
[[nodiscard]] std::string_view familyName( XcvrType family );

/// Whether byte 0 of a family's modules can have that value.
[[nodiscard]] bool familyHasIdentifier( XcvrType family, std::uint8_t identifier );

/// The order of pages: what a module always shows ("lower", "a0h", "a2h") comes before numbered
/// pages.
struct PageOrder {
   using is_transparent = void;
   bool operator()( std::string_view left, std::string_view right ) const;
};

/// The raw memory of one module, as one input holds it.
struct ModuleImage {
   /// The file's name, as it is; "<stdin>" for the standard input.
   std::string file;
   ImageForm form = ImageForm::binary;
   XcvrType family = anyFamily;
   /// The bytes of each page by its label, as they are in the input: from 1 to 256 of a device
   /// ("a0h", "a2h"), from 1 to 128 of the lower memory ("lower") or an upper page ("02h", of
   /// another bank than 0 "11h.1"), and of a register table ("8000h") from 1 to 128 or, where its
   /// registers have two bytes, 256. The upper pages of an SFP are those of its A2h; "a2h" itself
   /// holds whatever page was selected.
   std::map<std::string, std::string, PageOrder> pages;

   /// What looks odd about an input that can be used all the same, one line each.
   std::vector<std::string> warnings;

   /// The bytes of a page; null if the input has none.
   std::string const * page( std::string_view label ) const;
};

/// Why an input cannot be used. what() is one line: "FILE: what is wrong (where); what to do".
class ImageError : public std::runtime_error {
 public:
   ImageError( std::string_view file, std::string const & problem );
};

/// The whole of a file, or of the standard input if the path is "-", but no more than a byte beyond
/// 1 MiB. Throws ImageError.
std::string readContent( std::string const & path );

/// Reads the image in a file, or in the standard input if the path is "-". Works for pipes and
/// devices too, and reads at most 1 MiB, whatever the size. A named pipe is waited for until it has
/// a writer, as every program does. Throws ImageError.
ModuleImage readImage( std::string const & path, XcvrType family );

/// Finds the image in `content`, the whole of an input named `name`. Its form shows in the content:
///
/// - Bytes that are no text are a binary image in the linear layout of the kernel's EEPROM drivers.
///   For an SFP: A0h (256 bytes), A2h (256 bytes), then the upper pages of A2h from 01h on
///   (128 bytes each). For a QSFP: the lower memory, then the upper pages from 00h on. With CMIS:
///   the lower memory, then the upper pages 00h, 01h, 02h, 10h and 11h. For a CFP: the tables
///   8000h, 8080h, 8100h and 8180h.
/// - Text that begins with a section header, but for comments and blank lines, is a labelled image:
///   sections of hex bytes, each line with its offset in front or not, and "#" comments.
///
///       [a0h]
///       00: 03 04 07 10 00 00 00 20 40 04 80 55 67 00 00 00   # identifier, connector …
///       [a2h]
///       …
/// - Other text is a hex dump (see hexDumpBytes) in the linear layout.
///
/// An image may end early, and lack pages, but has to tell what the module is: by 96 bytes of A0h,
/// 128 of the lower memory or of 8000h, or the first half of upper page 00h. With `anyFamily` the
/// identifier byte or the labels decide (a CFP is known by its labels only); any other is taken as
/// said. A section that the family cannot have is refused. A page without a bank is that of bank 0.
/// Lines with addresses of which the last one is shorter than those before, where no page ends, look
/// cut: there is a warning.
/// Throws ImageError.
ModuleImage parseImage( std::string name, std::string_view content, XcvrType family );

/// The image as labelled text, which parses back to the same pages.
std::string labelledForm( ModuleImage const & image );

} // namespace XcvrTool
