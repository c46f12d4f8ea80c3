// What reads single fields of a table.
#include <Xcvr/XcvrCfp2Contents.h>

#include <Vel/Trace.h>

namespace Xcvr {

namespace {

Vel::TraceHandle trace( "XcvrCfp2" );

} // namespace

void traceCfpUnreadable( char const * operation, std::string_view why ) {
   if ( trace.passes( 8 ) ) {
      trace.write( 8, __LINE__, operation, why );
   }
}

Vel::String getStringFromU8Table( FieldDescriptor field, CfpMsaMisMemoryTable const * table ) {
   if ( !table ) [[unlikely]] {
      traceCfpUnreadable( __func__, "no table" );
      return {};
   }
   return table->text( field );
}

} // namespace Xcvr
