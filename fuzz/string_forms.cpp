// The parser of string forms: any text is refused with a place inside it, or is a value that prints
// and reads back as itself.
#include "fuzz/Require.h"

#include <Vel/StringForm.h>
#include <Xcvr/XcvrTypes.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

template <typename T>
T read( Vel::String const & form ) {
   if constexpr ( Vel::ModelValue<T> && !Vel::Internal::hasCollection<T> )
      return T( form );
   else
      return Vel::fromStringForm<T>( form );
}

template <typename T>
void parseAs( Vel::String const & text ) {
   // A value's form without its type's name is refused at once, which is slow and teaches nothing.
   if ( Vel::ModelValue<T> && text.find( Vel::typeName<T>() ) == Vel::String::npos )
      return;
   T value;
   try {
      value = read<T>( text );
   } catch ( Vel::ParseException const & error ) {
      require( error.position() <= text.size() && !error.expected().empty() );
      return;
   }
   // By form, since a value that holds a NaN does not equal itself.
   Vel::String const form = Vel::stringForm( value );
   require( Vel::stringForm( read<T>( form ) ) == form );
}

template <typename... T>
void parseAsEach( Vel::String const & text ) {
   ( parseAs<T>( text ), ... );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   using namespace Xcvr;
   Vel::String const text( std::string_view( reinterpret_cast<char const *>( data ), size ) );
   parseAsEach<XcvrState, TuningValue, ChannelId, VendorInfo, DomInfo, XcvrEventStats,
               LaneEventStats, LaneTuningParameter, HwTuningConfig, ResolvedTuningStatus,
               EepromDescriptor, PerformanceMonitoringPeriodConfig>( text );
   parseAsEach<double, int16_t, uint64_t, bool, Vel::String, MediaType,
               std::map<uint8_t, uint16_t>>( text );
   return 0;
}
