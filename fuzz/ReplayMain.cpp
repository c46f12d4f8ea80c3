// Runs every file of the given folders through a fuzz target, for compilers without libFuzzer: what
// once was a crash stays a test.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size );

namespace {

std::vector<std::filesystem::path> inputs( std::filesystem::path const & folder ) {
   std::vector<std::filesystem::path> found;
   for ( auto const & entry : std::filesystem::directory_iterator( folder ) )
      if ( entry.is_regular_file() )
         found.push_back( entry.path() );
   std::sort( found.begin(), found.end() );
   return found;
}

void replay( std::filesystem::path const & input ) {
   std::ifstream file( input, std::ios::binary );
   std::vector<char> const bytes( std::istreambuf_iterator<char>( file ), {} );
   if ( !file )
      throw std::filesystem::filesystem_error( "cannot read", input,
                                               std::make_error_code( std::errc::io_error ) );
   LLVMFuzzerTestOneInput( reinterpret_cast<uint8_t const *>( bytes.data() ), bytes.size() );
}

} // namespace

int main( int argc, char ** argv ) try {
   size_t count = 0;
   for ( int i = 1; i < argc; ++i )
      for ( auto const & input : inputs( argv[i] ) ) {
         // Printed first, so that a crash is found under the name of its input.
         std::printf( "%s\n", input.c_str() );
         std::fflush( stdout );
         replay( input );
         ++count;
      }
   std::printf( "%zu inputs replayed\n", count );
   return count == 0 ? 1 : 0; // A folder without seeds is a test that tests nothing.
} catch ( std::exception const & error ) {
   std::fprintf( stderr, "%s\n", error.what() );
   return 1;
}
