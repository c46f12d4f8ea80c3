#include <Vel/Assert.h>

#include <cstdio>
#include <cstdlib>

namespace Vel {

void assertionFailed( char const * file, int line, char const * text ) noexcept {
   // The process ends here, so this is the one place of the library that writes to a stream.
   std::fprintf( stderr, "%s:%d: assertion failed: %s\n", file, line, text );
   std::abort();
}

} // namespace Vel
