#pragma once

#include <Vel/Api.h>

namespace Vel {

/// Reports a broken invariant of the program (never bad module data) and ends the process.
[[noreturn]] VEL_API void assertionFailed( char const * file, int line,
                                           char const * text ) noexcept;

} // namespace Vel

/// Fatal unless the condition holds: prints file, line and text on standard error, then aborts.
#define VEL_ASSERT_TEXT( cond, text )                                                              \
   do {                                                                                            \
      if ( !( cond ) ) [[unlikely]]                                                                \
         ::Vel::assertionFailed( __FILE__, __LINE__, text );                                       \
   } while ( false )

/// The same with the condition itself as the text.
#define VEL_ASSERT( cond ) VEL_ASSERT_TEXT( cond, #cond )

/// For hooks that take the name of a function: fails with the text.
#define VEL_ASSERT_FAILED( text ) ::Vel::assertionFailed( __FILE__, __LINE__, text )
