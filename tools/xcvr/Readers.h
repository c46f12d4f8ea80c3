#pragma once

#include "tools/xcvr/SlotSet.h"
#include "tools/xcvr/Socket.h"

#include <Xcvr/XcvrAllStatusDirSm.h>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

// The reading side of agents: one directory of all their transceivers.
namespace XcvrTool {

/// One agent as a reader sees it: connected again and again if need be, and with mounts of what it
/// serves, which end up in a place of its own.
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
   /// Why some of what it serves is not in the merged directory; each is told once.
   void leftOutIs( std::set<std::string> const & leftOut );
   [[nodiscard]] bool leavesOut() const { return !leftOut_.empty(); }
   /// All that the agent serves is mounted, and none of it behind its configuration.
   [[nodiscard]] bool isComplete() const;
   /// The sets of slots that it serves; none before it has said so.
   [[nodiscard]] std::vector<Vel::Name> const & sets() const { return sets_; }
   /// Of those that are no statuses, null.
   [[nodiscard]] SlotSet::Statuses statuses( Vel::Name const & set ) const;
   /// The types of those statuses that cannot be made here, by slot.
   [[nodiscard]] std::map<Vel::Name, Vel::Name> unmade( Vel::Name const & set ) const;
   /// Of a set, once agent and configuration agree on it: all of it is there then.
   [[nodiscard]] std::optional<uint32_t> generation( Vel::Name const & set ) const;
   [[nodiscard]] pollfd waitsFor() const;
   void step( short events );

 private:
   template <typename T>
   [[nodiscard]] Vel::Ptr<T> at( Vel::Name const & path ) const;
   void mountSets();
   void mountSet( Vel::Name const & set );
   [[nodiscard]] std::string problem() const;
   enum class Problem { none, unreachable, gone, stranger };
   void fail( Problem kind, std::string const & text );

   std::string socket_;
   Statedb::EntityManager & tree_;
   Vel::Name place_; // of all that it serves
   Say say_;
   std::unique_ptr<Stream> stream_;
   Vel::Ptr<Statedb::MountGroup> mounts_;
   std::vector<Vel::Name> needed_; // mounts that must come
   std::vector<Vel::Name> sets_;   // of slots; empty before the agent has said which it serves
   bool hasFailed_ = false;
   Problem said_ = Problem::none; // the last one; its text may hold numbers that change
   std::set<std::string> leftOut_;
   static constexpr std::chrono::milliseconds firstPause{ 300 };
   std::chrono::milliseconds pause_ = firstPause; // before the next attempt
   std::chrono::steady_clock::time_point retryAt_;
};

/// The merged directory of several agents. Of those that serve the same set of slots, or slots of one
/// name, the one named first has it.
class Readers {
 public:
   /// Throws SocketError for a name that no socket can have.
   Readers( std::vector<std::string> const & sockets, Remote::Say const & say );
   Readers( Readers const & ) = delete;
   Readers & operator=( Readers const & ) = delete;
   ~Readers();

   /// One round: waits for so long at most; whether anything came.
   bool turn( int milliseconds );
   /// No agent that is connected is on the way to something else.
   [[nodiscard]] bool isSettled() const;
   /// All that every agent serves is in.
   [[nodiscard]] bool allComplete() const;
   /// The sockets of agents that are not complete, but have not failed either.
   [[nodiscard]] std::vector<std::string> late() const;
   /// By name, in the order of people: 2 before 10.
   [[nodiscard]] std::vector<Vel::Ptr<Xcvr::XcvrNewStatus const>> published() const;

 private:
   struct Served;
   void merge();
   [[nodiscard]] std::set<std::string> take( Remote const & remote,
                                             std::map<Vel::Name, std::string> & servers,
                                             std::map<Vel::Name, Served> & served );

   Statedb::EntityManager tree_;
   std::map<Vel::Name, SlotSet> sets_; // what is merged, of all agents
   Vel::Ptr<Xcvr::XcvrAllStatusDirSingleton> merged_;
   std::vector<std::unique_ptr<Remote>> remotes_;
};

} // namespace XcvrTool
