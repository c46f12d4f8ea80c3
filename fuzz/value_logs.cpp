// The reader of attribute logs: any bytes are refused without a step forward, or hold a value that
// writes the bytes it was read from.
#include "fuzz/Require.h"

#include <Vel/AttrLogCodec.h>
#include <Xcvr/XcvrTypes.h>

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

template <typename T>
void decodeAs( std::string_view bytes ) {
   Vel::NboAttrLog log( bytes );
   T value;
   try {
      value = log.read<T>();
   } catch ( Vel::AttrLogException const & error ) {
      require( error.position() <= bytes.size() && log.position() == 0 );
      return;
   }
   Vel::NboAttrLog again;
   again.write( value );
   std::string_view const taken = bytes.substr( 0, log.position() );
   require( again.bytes().size() == taken.size() );
   // A map is written in the order of its keys, whatever the order in which they came.
   require( std::is_same_v<T, Xcvr::EepromDescriptor> || again.bytes() == taken );
   Vel::NboAttrLog third;
   third.write( again.read<T>() );
   require( third.bytes() == again.bytes() );
}

template <typename... T>
void decodeAsEach( std::string_view bytes ) {
   ( decodeAs<T>( bytes ), ... );
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   using namespace Xcvr;
   decodeAsEach<XcvrState, TuningValue, ChannelId, VendorInfo, DomInfo, XcvrEventStats,
                LaneEventStats, LaneTuningParameter, HwTuningConfig, ResolvedTuningStatus,
                EepromDescriptor, PerformanceMonitoringPeriodConfig>(
      { reinterpret_cast<char const *>( data ), size } );
   return 0;
}
