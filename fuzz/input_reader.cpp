// The tool's door for foreign bytes: whatever it is given, an input is refused with ImageError or
// becomes an image whose pages keep their sizes and which survives being written and read again.
#include "fuzz/Require.h"
#include "tools/xcvr/ModuleImage.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using namespace XcvrTool;

/// A part that tells what a module of a family is.
struct Identification {
   XcvrType family;
   char const * page;
   std::size_t size;
};

constexpr Identification identifications[] = {
   { XcvrType::sfpPlus, "a0h", 96 },  { XcvrType::qsfpPlus, "lower", 128 },
   { XcvrType::qsfpPlus, "00h", 64 }, { XcvrType::qsfpDd, "lower", 128 },
   { XcvrType::qsfpDd, "00h", 95 },   { XcvrType::osfp, "lower", 128 },
   { XcvrType::osfp, "00h", 95 },     { XcvrType::cfp2, "8000h", 128 },
};

bool isIdentified( ModuleImage const & image ) {
   return std::ranges::any_of( identifications, [&]( Identification const & row ) {
      std::string const * page = image.page( row.page );
      return row.family == image.family && page && page->size() >= row.size;
   } );
}

void checkImage( ModuleImage const & image, XcvrType family ) {
   require( family == anyFamily || image.family == family );
   require( isIdentified( image ) );
   bool const hasLargePages = image.family == XcvrType::sfpPlus || image.family == XcvrType::cfp2;
   for ( auto const & [label, bytes] : image.pages )
      require( !bytes.empty() && bytes.size() <= ( hasLargePages ? 256 : 128 ) );
   ModuleImage const again = parseImage( "again", labelledForm( image ), image.family );
   require( again.form == ImageForm::labelled && again.pages == image.pages );
}

void parse( std::string_view content, XcvrType family ) {
   ModuleImage image;
   try {
      image = parseImage( "input", content, family );
   } catch ( ImageError const & error ) {
      // One line that begins with the file's name, of a bounded length.
      std::string_view const text = error.what();
      require( text.starts_with( "input: " ) && text.size() < 1000 );
      require( text.find( '\n' ) == std::string_view::npos );
      return;
   }
   checkImage( image, family );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   std::string_view const content( reinterpret_cast<char const *>( data ), size );
   for ( XcvrType const family : { anyFamily, XcvrType::sfpPlus, XcvrType::qsfpPlus,
                                   XcvrType::qsfpDd, XcvrType::osfp, XcvrType::cfp2 } )
      parse( content, family );
   return 0;
}
