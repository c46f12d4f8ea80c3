#include <Vel/Trace.h>

#include <map>

namespace Vel {

namespace {

struct TraceSettings {
   TraceHandle * first = nullptr;
   std::map<String, int> levels; // as set, for handles that are made later
   TraceSink sink;
   bool writing = false;

   [[nodiscard]] int level( std::string_view source ) const {
      auto found = levels.find( source );
      if ( found == levels.end() ) {
         found = levels.find( "*" );
      }
      return found != levels.end() ? found->second : 0;
   }
};

// Never destroyed: handles of other libraries may outlive this one's static objects.
TraceSettings & settings() {
   static TraceSettings & instance = *new TraceSettings;
   return instance;
}

} // namespace

TraceHandle::TraceHandle( char const * source )
   : source_( source ), level_( settings().level( source ) ), next_( settings().first ) {
   settings().first = this;
}

TraceHandle::~TraceHandle() {
   TraceHandle ** at = &settings().first;
   while ( *at != this ) {
      at = &( *at )->next_;
   }
   *at = next_;
}

void TraceHandle::write( int level, int line, char const * operation,
                         std::string_view text ) const {
   TraceSink const sink = settings().sink; // a copy: the sink may replace itself
   if ( sink && !settings().writing ) {
      settings().writing = true;
      sink( { source_, level, line, operation, text } );
      settings().writing = false;
   }
}

void traceLevelIs( std::string_view source, int level ) {
   if ( source == "*" ) {
      settings().levels.clear();
   }
   settings().levels[source] = level;
   for ( TraceHandle * handle = settings().first; handle; handle = handle->next_ ) {
      handle->level_ = settings().level( handle->source_ );
   }
}

void traceSinkIs( TraceSink sink ) {
   settings().sink = std::move( sink );
}

} // namespace Vel
