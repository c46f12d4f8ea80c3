// The state database's protocol: any bytes are taken, or end the session with one line that says why;
// the tree that it serves stays what it was, but for what a peer may write.
#include "fuzz/Require.h"

#include <Statedb/Session.h>
#include <Xcvr/XcvrDirs.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput( uint8_t const * data, size_t size ) {
   using namespace Statedb;
   EntityManager manager;
   manager.entityIs( "a/b", Xcvr::xgcFactory( "b" ) );
   Vel::Ptr<MountGroup> const group( new MountGroup( "own" ) );
   group->mountIs( new Mount( "m", "Vel::Dir" ) );
   group->mountIs( new Mount( "a/b", "Xcvr::Xgc", {}, MountMode::write ) );
   // The first byte says whether the peer may write and in what portions the bytes come.
   bool const mayWrite = size != 0 && ( data[0] & 1 ) != 0;
   size_t const portion = size != 0 ? 1 + ( data[0] >> 1 ) : 1;
   {
      Session session( manager, mayWrite ? Session::PeerMayWrite::yes : Session::PeerMayWrite::no );
      session.mountGroupIs( group );
      try {
         session.receive( std::string( "\0\0\0\5\0SDB\1", 9 ) ); // its greeting
         for ( size_t at = 1; at < size; at += portion ) {
            session.receive(
               { reinterpret_cast<char const *>( data ) + at, std::min( portion, size - at ) } );
            std::string_view const out = session.toSend( 100 );
            require( out.size() <= 100 );
            session.sent( out.size() );
         }
      } catch ( ProtocolException const & problem ) {
         require( std::string( problem.what() ).find( '\n' ) == std::string::npos );
         require( !session.wantsToSend() );
      }
   }
   require( manager.entity( "a/b" ) && !manager.entity( "m" ) );
   require( mayWrite || manager.root()->entryMap().size() == 1 );
   return 0;
}
