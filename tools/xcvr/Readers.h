#pragma once

#include "tools/xcvr/Socket.h"

#include <Statedb/EntityManager.h>
#include <Xcvr/XcvrAllStatusDirSm.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <vector>

// The reading side of agents: one directory of all their transceivers.
namespace XcvrTool {

/// One agent as a reader sees it: connected again and again if need be, and with mounts of what it
/// serves, which end up in a tree that all agents share.
class Remote {
 public:
   using Say = std::function<void( std::string const & )>;
   Remote( std::string socket, Statedb::EntityManager & tree, Vel::Name place, Say say );

   /// Connects if it is not connected and the time for that has come.
   void connect();
   [[nodiscard]] std::string const & socket() const { return socket_; }
   [[nodiscard]] bool isConnected() const { return stream_ != nullptr; }
   /// The last attempt to reach the agent, or to mount what it serves, failed.
   [[nodiscard]] bool hasFailed() const { return hasFailed_; }
   /// All that the agent serves is mounted, and none of it behind its configuration.
   [[nodiscard]] bool isComplete() const;
   [[nodiscard]] pollfd waitsFor() const;
   void step( short events );

 private:
   void mountSets();
   void mountSet( Vel::Name const & set );
   void fail( std::string const & problem );

   std::string socket_;
   Statedb::EntityManager & tree_;
   Vel::Name place_; // of what the agent says of itself
   Say say_;
   std::unique_ptr<Stream> stream_;
   Vel::Ptr<Statedb::MountGroup> mounts_;
   std::vector<Vel::Name> needed_; // mounts that must come
   std::vector<Vel::Name> sets_;   // of slots; empty before the agent has said which it serves
   bool hasFailed_ = false;
   std::string said_; // the last problem
   std::chrono::steady_clock::time_point retryAt_;
};

/// The merged directory of several agents.
class Readers {
 public:
   Readers( std::vector<std::string> const & sockets, Remote::Say const & say );
   Readers( Readers const & ) = delete;
   Readers & operator=( Readers const & ) = delete;
   ~Readers();

   /// One round: waits for so long at most; whether anything came.
   bool turn( int milliseconds );
   /// No agent that is connected is on the way to something else.
   [[nodiscard]] bool isSettled() const;
   [[nodiscard]] bool allComplete() const;
   /// The sockets of agents that are not complete, but have not failed either.
   [[nodiscard]] std::vector<std::string> late() const;
   /// By name, in the order of people: 2 before 10.
   [[nodiscard]] std::vector<Vel::Ptr<Xcvr::XcvrNewStatus const>> published() const;

 private:
   void mergeFixed();

   Statedb::EntityManager tree_;
   Vel::Ptr<Xcvr::AllConfigDir> noConfig_ = Xcvr::allConfigDirFactory( "none" );
   Vel::Ptr<Xcvr::XcvrSliceStatus> noAgent_ = Xcvr::xcvrSliceStatusFactory( "none" );
   Vel::Ptr<Vel::Dir> noStatus_ = Vel::dirFactory( "none" );
   Vel::Ptr<Xcvr::XcvrAllStatusDirSingleton> merged_;
   std::vector<std::unique_ptr<Remote>> remotes_;
};

} // namespace XcvrTool
