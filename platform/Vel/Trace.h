#pragma once

#include <Vel/Api.h>
#include <Vel/String.h>

#include <functional>
#include <string_view>

namespace Vel {

/// One line of trace, valid while the sink runs.
struct TraceRecord {
   std::string_view source;    // the source module, such as "XcvrSfpPlus"
   int level;                  // 1 (rare, important) to 9 (everything)
   int line;                   // in the source file
   std::string_view operation; // the name of the function
   std::string_view text;      // empty for the record that opens a scope
};

using TraceSink = std::function<void( TraceRecord const & )>;

/// Lets records of `source` pass up to `level`; 0, the default, is off. "*" sets every source, also
/// those that are yet to be loaded. Tracing never changes a result.
VEL_API void traceLevelIs( std::string_view source, int level );
/// Receives every record that passes; an empty one discards them. It must not throw. What it calls is
/// not traced.
VEL_API void traceSinkIs( TraceSink sink );

/// A source module's handle; one static object a source file. What is off costs one compare.
class VEL_API TraceHandle {
 public:
   explicit TraceHandle( char const * source );
   TraceHandle( TraceHandle const & ) = delete;
   TraceHandle & operator=( TraceHandle const & ) = delete;
   ~TraceHandle();

   [[nodiscard]] bool passes( int level ) const { return level <= level_; }
   [[gnu::cold]] void write( int level, int line, char const * operation,
                             std::string_view text ) const;

 private:
   friend void traceLevelIs( std::string_view, int );

   char const * source_;
   int level_;
   TraceHandle * next_;
};

} // namespace Vel

/// Writes a note; `text` is evaluated only when the record passes.
#define VEL_TRACE( handle, level, text )                                                           \
   do {                                                                                            \
      if ( ( handle ).passes( level ) ) [[unlikely]]                                               \
         ( handle ).write( level, __LINE__, __func__, text );                                      \
   } while ( false )

/// First in a hand-written operation: records that it was entered.
#define VEL_TRACE_SCOPE( handle ) VEL_TRACE( handle, 8, "" )
