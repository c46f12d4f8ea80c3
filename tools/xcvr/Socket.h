#pragma once

#include <Statedb/Session.h>

#include <poll.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

// State database sessions over Unix stream sockets: what agents and readers share.
namespace XcvrTool {

/// Why a socket cannot be used. what() is one line: "SOCKET: what is wrong; what to do".
class SocketError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

/// Closes the file descriptor that it has.
class Descriptor {
 public:
   explicit Descriptor( int fd = -1 ) : fd_( fd ) {}
   Descriptor( Descriptor && other ) noexcept : fd_( std::exchange( other.fd_, -1 ) ) {}
   Descriptor & operator=( Descriptor && other ) noexcept {
      std::swap( fd_, other.fd_ );
      return *this;
   }
   ~Descriptor();
   [[nodiscard]] int fd() const { return fd_; }

 private:
   int fd_;
};

/// Throws SocketError for a name that no socket can have.
void checkSocketName( std::string const & path );

/// A connection to a listening socket; throws SocketError.
[[nodiscard]] Descriptor connectTo( std::string const & path );

/// The socket of an agent, in the file system for as long as this lives. One that an agent has left
/// behind is replaced; one that somebody listens to, or another file, is refused. Throws SocketError.
class Listener {
 public:
   explicit Listener( std::string path );
   Listener( Listener const & ) = delete;
   Listener & operator=( Listener const & ) = delete;
   ~Listener();
   [[nodiscard]] int fd() const { return socket_.fd(); }

 private:
   std::string path_;
   Descriptor socket_;
   std::pair<dev_t, ino_t> file_; // the socket's, lest somebody else's be removed
};

/// One end of a connection with the session that runs over it.
class Stream {
 public:
   Stream( Descriptor socket, Statedb::EntityManager & tree );
   /// What to wait for.
   [[nodiscard]] pollfd waitsFor() const;
   /// Sends and receives what can be without waiting, but no more than a share of it, as there are
   /// others. Whether the connection goes on: no if the other side has closed it. Throws
   /// Statedb::ProtocolException.
   [[nodiscard]] bool step( short events );
   [[nodiscard]] Statedb::Session & session() const { return *session_; }
   /// The process at the other end.
   [[nodiscard]] pid_t peer() const;

 private:
   [[nodiscard]] bool receive();
   [[nodiscard]] bool send();

   Descriptor socket_;
   std::unique_ptr<Statedb::Session> session_;
};

/// Waits until something happens, or for so long; a signal that is handled ends it too.
void waitFor( std::vector<pollfd> & what, int milliseconds );

} // namespace XcvrTool
