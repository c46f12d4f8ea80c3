#include "tools/xcvr/Server.h"

#include <cerrno>
#include <cstring>
#include <fmt/format.h>
#include <sys/socket.h>

namespace XcvrTool {

Server::Server( std::string path, Statedb::EntityManager & tree,
                std::function<void( std::string const & )> say )
   : tree_( tree ), say_( std::move( say ) ), listener_( std::move( path ) ) {}

void Server::turn( int milliseconds, int besides ) {
   std::vector<pollfd> what = {
      { .fd = isFull_ ? -1 : listener_.fd(), .events = POLLIN, .revents = 0 },
      { .fd = besides, .events = POLLIN, .revents = 0 } };
   std::size_t next = what.size();
   for ( Reader const & reader : readers_ ) {
      what.push_back( reader.stream.waitsFor() );
   }
   waitFor( what, milliseconds );
   readers_.remove_if( [&]( Reader & reader ) { return !step( reader, what[next++].revents ); } );
   isFull_ = false;
   if ( what[0].revents ) {
      accept();
   }
}

bool Server::step( Reader & reader, short events ) {
   try {
      return reader.stream.step( events );
   } catch ( std::exception const & problem ) { // also if there is no memory for what it wants
      say_( fmt::format( "reader {} (process {}) dropped: {}", reader.number, reader.stream.peer(),
                         problem.what() ) );
      return false;
   }
}

void Server::accept() {
   Descriptor socket( ::accept4( listener_.fd(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC ) );
   if ( socket.fd() >= 0 ) {
      readers_.push_back( { ++lastNumber_, Stream( std::move( socket ), tree_ ) } );
   } else if ( errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM ) {
      isFull_ = true; // it would be asked again at once, and again
   }
}

} // namespace XcvrTool
