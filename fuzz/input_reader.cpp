// The tool's door for foreign bytes: whatever it is given, an input is refused with ImageError or
// becomes an image whose pages keep their sizes and which survives being written and read again.
#include "tools/xcvr/ModuleImage.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace XcvrTool;

void require( bool condition ) {
   if ( !condition )
      std::abort();
}

void checkImage( ModuleImage const & image ) {
   require( image.family == ImageFamily::sfp );
   require( image.page( "a0h" ) && image.page( "a0h" )->size() >= 96 );
   for ( auto const & [label, bytes] : image.pages )
      require( !bytes.empty() && bytes.size() <= 256 );
   ModuleImage const again = parseImage( "again", labelledForm( image ), image.family );
   require( again.form == ImageForm::labelled && again.pages == image.pages );
}

void parse( std::string_view content, ImageFamily family ) {
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
   checkImage( image );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   std::string_view const content( reinterpret_cast<char const *>( data ), size );
   parse( content, ImageFamily::automatic );
   parse( content, ImageFamily::sfp );
   return 0;
}
