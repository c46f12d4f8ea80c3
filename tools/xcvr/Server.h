#pragma once

#include "tools/xcvr/Socket.h"

#include <functional>
#include <list>
#include <string>

namespace XcvrTool {

/// Serves a tree to any number of readers. None waits for another, and one that breaks the protocol, or
/// wants more than there is memory for, is dropped, with a line that says so.
class Server {
 public:
   Server( std::string path, Statedb::EntityManager & tree,
           std::function<void( std::string const & )> say );
   /// One round: waits until a reader or `besides` has something, or for so long, and serves them.
   void turn( int milliseconds, int besides = -1 );
   [[nodiscard]] std::size_t readerCount() const { return readers_.size(); }

 private:
   struct Reader {
      unsigned number;
      Stream stream;
   };
   [[nodiscard]] bool step( Reader & reader, short events );
   void accept();

   Statedb::EntityManager & tree_;
   std::function<void( std::string const & )> say_;
   Listener listener_;
   bool isFull_ = false; // no descriptor was left for another reader; asked again after a round
   unsigned lastNumber_ = 0;
   std::list<Reader> readers_;
};

} // namespace XcvrTool
