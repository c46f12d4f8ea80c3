#pragma once

#include <Statedb/EntityManager.h>
#include <Vel/Exception.h>
#include <Vel/Flow.h>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace Statedb {

/// The other side of a session does not keep to the protocol.
class VEL_API ProtocolException : public Vel::Exception {
 public:
   using Vel::Exception::Exception;
   ~ProtocolException() override;
};

/// Connects the state databases of two processes over a byte stream that somebody else owns: bytes in,
/// bytes out. Each side serves the other's mounts from its own tree, and may have mounts of its own; what
/// is mounted for reading appears at the same path of the own tree, once its whole image is there, and
/// goes with the session. Mounts for reading of the same path, type and filter share one replica.
///
///    session.receive( what the stream has brought );
///    session.sent( what the stream has taken of session.toSend() );
///
/// A write to an entity makes no bytes, only a mark; they are made when `toSend` is asked. So a reader
/// that stops reading keeps `wantsToSend` true and costs its marks, and nobody waits for it.
///
/// Not to be destroyed within its own `receive`. A session that has thrown is over.
class VEL_API Session {
 public:
   enum class PeerMayWrite : bool { no, yes };
   explicit Session( EntityManager & manager, PeerMayWrite mayWrite = PeerMayWrite::no );
   Session( Session const & ) = delete;
   Session & operator=( Session const & ) = delete;
   ~Session();

   /// Takes bytes that have come, in whatever portions. Throws ProtocolException, whose text is one line
   /// that says why, for those that no peer would send.
   void receive( std::string_view bytes );
   /// Whether to read from the stream: no while the peer does not take the answers to what it asked.
   [[nodiscard]] bool wantsToReceive() const;

   /// Whether there is anything to send.
   [[nodiscard]] bool wantsToSend() const;
   /// The next bytes, at most `most`; valid until the next call of anything here.
   [[nodiscard]] std::string_view toSend( std::size_t most = 16 * 1024 );
   /// So many of them are on their way.
   void sent( std::size_t count );

   /// Has the mounts of a group served by the peer, those that are there and those that come.
   void mountGroupIs( Vel::Ptr<MountGroup> const & group );

   /// What the peer serves below a mount of this side and this process cannot make: the names of types,
   /// by path from the mounted entity.
   [[nodiscard]] std::map<Vel::Name, Vel::Name> unmade( Vel::Ptr<Mount> const & mount ) const;

   /// How many entities of this side have changes that the peer has not been sent, and how many bytes
   /// wait besides.
   [[nodiscard]] std::size_t waitingEntities() const { return flow_->waitingEntities(); }
   [[nodiscard]] std::size_t waitingBytes() const;

 private:
   enum class Message : uint8_t { hello, mount, unmount, state, image, mountedLog, writtenLog };
   class Mounted;
   class Serving;

   template <typename... Fields>
   void message( Message kind, Fields const &... fields );
   void take( std::string_view frame );
   void takeMount( Vel::NboAttrLog & body );
   void takeState( Vel::NboAttrLog & body );
   void takeLog( Message kind, uint32_t number, std::string_view log );
   using MountedByNumber = std::map<uint32_t, std::shared_ptr<Mounted>>;

   void makeFrame();
   void writeDue();
   void resolve( Vel::Name const & path );
   [[nodiscard]] std::size_t longestMessage( std::string_view kind ) const;
   [[nodiscard]] std::shared_ptr<Mounted> mountedOf( uint32_t number ) const;
   [[nodiscard]] std::shared_ptr<Serving> servingOf( uint32_t number ) const;
   [[nodiscard]] MountedByNumber::const_iterator ownMount( Vel::Ptr<Mount> const & mount ) const;
   void ownMountIs( Vel::Ptr<Mount> const & mount );
   void ownMountDel( Vel::Ptr<Mount> const & mount );

   EntityManager & manager_;
   PeerMayWrite mayWrite_;
   bool greeted_ = false;
   bool over_ = false;
   std::string in_;
   std::string control_;  // messages, which go before logs
   std::string out_;      // what is being sent
   std::size_t sent_ = 0; // of it
   Vel::Ptr<Vel::FlowOut> flow_;
   uint32_t lastNumber_ = 0;                              // of the own mounts
   uint32_t lastPeerNumber_ = 0;                          // of the peer's
   std::map<uint32_t, std::shared_ptr<Serving>> serving_; // the peer's mounts
   MountedByNumber mounted_;                              // the own
   // What is to be said of them, which is written when it is asked for.
   std::set<uint32_t> statesDue_;
   std::set<uint32_t> mountsDue_;
   std::set<uint32_t> unmountsDue_;
   std::size_t peerMountBytes_ = 0;
   std::vector<std::shared_ptr<GroupWatch>> groups_;
};

} // namespace Statedb
