#include "tools/xcvr/Socket.h"

#include "tools/xcvr/Text.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace XcvrTool {

namespace {

constexpr std::size_t share = 64 * 1024; // of what waits, that one step moves

[[noreturn]] void fail( std::string const & path, std::string const & problem,
                        std::string const & next ) {
   throw SocketError( fmt::format( "{}: {}; {}", shownFileName( path ), problem, next ) );
}

std::string withReason( char const * what, int error ) {
   return fmt::format( "{} ({})", what, std::strerror( error ) );
}

sockaddr_un addressOf( std::string const & path ) {
   sockaddr_un address{};
   address.sun_family = AF_UNIX;
   if ( path.empty() || path.size() >= sizeof address.sun_path ) {
      fail( path, fmt::format( "cannot be a socket's name ({} bytes)", path.size() ),
            fmt::format( "give one of 1 to {} bytes", sizeof address.sun_path - 1 ) );
   }
   path.copy( address.sun_path, path.size() );
   return address;
}

Descriptor newSocket( std::string const & path ) {
   Descriptor socket( ::socket( AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0 ) );
   if ( socket.fd() < 0 ) {
      fail( path, withReason( "no socket can be made", errno ), "close other programs" );
   }
   return socket;
}

/// 0, or the number of the error.
int connectError( Descriptor const & socket, sockaddr_un const & address ) {
   auto const * to = reinterpret_cast<sockaddr const *>( &address );
   return ::connect( socket.fd(), to, sizeof address ) == 0 ? 0 : errno;
}

int bindError( Descriptor const & socket, sockaddr_un const & address ) {
   auto const * to = reinterpret_cast<sockaddr const *>( &address );
   return ::bind( socket.fd(), to, sizeof address ) == 0 ? 0 : errno;
}

/// Of a file that may not be there.
std::pair<dev_t, ino_t> fileOf( std::string const & path ) {
   struct stat status {};
   return ::lstat( path.c_str(), &status ) == 0 ? std::pair( status.st_dev, status.st_ino )
                                                : std::pair<dev_t, ino_t>();
}

bool isSocket( std::string const & path ) {
   struct stat status {};
   return ::lstat( path.c_str(), &status ) == 0 && S_ISSOCK( status.st_mode );
}

/// What to do about a socket that is there but cannot be used.
char const * adviceOn( int error ) {
   switch ( error ) {
   case EACCES:
   case EPERM:
      return "ask its owner for permission";
   case EPROTOTYPE: // a datagram socket
      return "give the socket of an xcvr agent";
   default:
      return "start one with xcvr agent --listen";
   }
}

/// Holds off others who make a socket in the same folder, for as long as this lives. A folder that cannot
/// be read is not locked.
Descriptor lockOf( std::string const & path ) {
   std::string const folder = path.substr( 0, path.rfind( '/' ) + 1 );
   Descriptor lock(
      ::open( folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC ) );
   if ( lock.fd() >= 0 ) {
      ::flock( lock.fd(), LOCK_EX );
   }
   return lock;
}

/// Only of a socket that is nobody's: whoever connects is refused.
void removeStale( std::string const & path, sockaddr_un const & address ) {
   if ( !isSocket( path ) ) {
      fail( path, "is there and is no socket", "give another name" );
   }
   int const error = connectError( newSocket( path ), address );
   if ( error == EACCES || error == EPERM || error == EPROTOTYPE ) {
      fail( path, withReason( "is a socket of somebody else", error ), "give another name" );
   }
   if ( error != ECONNREFUSED ) {
      fail( path, "another agent listens there", "end it or give another name" );
   }
   ::unlink( path.c_str() );
}

} // namespace

Descriptor::~Descriptor() {
   if ( fd_ >= 0 ) {
      ::close( fd_ );
   }
}

void checkSocketName( std::string const & path ) {
   static_cast<void>( addressOf( path ) );
}

Descriptor connectTo( std::string const & path ) {
   sockaddr_un const address = addressOf( path );
   Descriptor socket = newSocket( path );
   if ( int const error = connectError( socket, address ) ) {
      fail( path, withReason( "no agent can be reached", error ), adviceOn( error ) );
   }
   return socket;
}

Listener::Listener( std::string path ) : path_( std::move( path ) ), socket_( newSocket( path_ ) ) {
   sockaddr_un const address = addressOf( path_ );
   Descriptor const lock = lockOf( path_ );
   int error = bindError( socket_, address );
   if ( error == EADDRINUSE ) {
      removeStale( path_, address );
      error = bindError( socket_, address );
   }
   if ( error == 0 && ::listen( socket_.fd(), SOMAXCONN ) != 0 ) {
      error = errno;
      ::unlink( path_.c_str() );
   }
   if ( error != 0 ) {
      fail( path_, withReason( "cannot be listened to", error ),
            "give a name in a folder that you may write" );
   }
   file_ = fileOf( path_ );
}

Listener::~Listener() {
   if ( fileOf( path_ ) == file_ ) {
      ::unlink( path_.c_str() );
   }
}

Stream::Stream( Descriptor socket, Statedb::EntityManager & tree )
   : socket_( std::move( socket ) ), session_( std::make_unique<Statedb::Session>( tree ) ) {}

pollfd Stream::waitsFor() const {
   int const events =
      ( session_->wantsToReceive() ? POLLIN : 0 ) | ( session_->wantsToSend() ? POLLOUT : 0 );
   return { .fd = socket_.fd(), .events = static_cast<short>( events ), .revents = 0 };
}

bool Stream::step( short events ) {
   // First what the other side said, even if it has gone since.
   bool const goesOn = events & POLLIN ? receive() : !( events & ( POLLHUP | POLLERR ) );
   return goesOn && ( !( events & POLLOUT ) || send() );
}

bool Stream::receive() {
   char buffer[share];
   ssize_t const size = ::recv( socket_.fd(), buffer, sizeof buffer, 0 );
   if ( size > 0 ) {
      session_->receive( { buffer, static_cast<std::size_t>( size ) } );
   }
   return size > 0 || ( size < 0 && ( errno == EAGAIN || errno == EINTR ) );
}

bool Stream::send() {
   for ( std::size_t moved = 0; moved < share && session_->wantsToSend(); ) {
      std::string_view const bytes = session_->toSend();
      ssize_t const size = ::send( socket_.fd(), bytes.data(), bytes.size(), MSG_NOSIGNAL );
      if ( size < 0 ) {
         return errno == EAGAIN || errno == EINTR;
      }
      session_->sent( static_cast<std::size_t>( size ) );
      moved += static_cast<std::size_t>( size ) + 1; // also if there was nothing after all
   }
   return true;
}

pid_t Stream::peer() const {
   ucred credentials{};
   socklen_t size = sizeof credentials;
   ::getsockopt( socket_.fd(), SOL_SOCKET, SO_PEERCRED, &credentials, &size );
   return credentials.pid;
}

void waitFor( std::vector<pollfd> & what, int milliseconds ) {
   if ( ::poll( what.data(), what.size(), milliseconds ) < 0 ) {
      for ( pollfd & one : what ) {
         one.revents = 0;
      }
   }
}

} // namespace XcvrTool
