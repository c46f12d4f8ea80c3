// Logs into replicas: any bytes are refused or applied, what is applied can be copied on, and a fresh
// image makes the replica equal to an original again.
#include "fuzz/Require.h"

#include <Vel/Dir.h>
#include <Vel/Exception.h>
#include <Vel/Flow.h>
#include <Xcvr/XcvrDirs.h>
#include <Xcvr/XcvrSfpStatus.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

/// The image of an entity, whole.
std::string image( Vel::Entity const & entity ) {
   Vel::Ptr<Vel::FlowOut> const flow( new Vel::FlowOut );
   auto const adaptor = Vel::NboAttrLogSa::attached( entity, flow, 0 );
   std::string const bytes( flow->piece( size_t( 1 ) << 30 ) );
   require( !flow->pending() && adaptor->complete() );
   return bytes;
}

void taken( Vel::Entity & replica, std::string_view bytes ) {
   Vel::NboAttrLog log( bytes );
   replica.doHandleAttrDeserialization( log );
}

Vel::Ptr<Vel::Dir> newTree() {
   auto const tree = Vel::dirFactory( "tree" );
   tree->entryIs( Xcvr::sfpNewStatusFactory( "Ethernet1" ) );
   tree->entryIs( Xcvr::xgcFactory( "xgc" ) );
   tree->entryIs( Xcvr::allConfigDirFactory( "config" ) );
   return tree;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   std::string const header = "VEL\x01";
   auto const replica = newTree();
   try {
      taken( *replica, header + std::string( reinterpret_cast<char const *>( data ), size ) );
   } catch ( Vel::AttrLogException const & ) {
   }
   // Whatever came of it is a tree like any other: its copy has the same image.
   auto const copy = Vel::dirFactory( "tree" );
   taken( *copy, image( *replica ) );
   auto const again = Vel::dirFactory( "tree" );
   taken( *again, image( *copy ) );
   require( image( *copy ).size() == image( *again ).size() );
   // And a fresh image of the original removes all that.
   auto const original = image( *newTree() );
   taken( *replica, original );
   require( image( *replica ).size() == original.size() );
   return 0;
}
