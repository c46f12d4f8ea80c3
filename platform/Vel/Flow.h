#pragma once

#include <Vel/AttrLog.h>
#include <Vel/HashMap.h>
#include <Vel/Ptr.h>
#include <Vel/String.h>

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <string_view>
#include <vector>

// Copies of entities in other processes, kept up to date by attribute logs.
//
//    auto const flow = Vel::Ptr<Vel::FlowOut>( new Vel::FlowOut );
//    auto const adaptor = Slot::velNboAttrLogSaIs( slot, flow );
//    while ( flow->pending() ) {
//       send( flow->piece() );
//    }
//
// and where a piece arrives, whole:
//
//    Vel::NboAttrLog log( piece );
//    replica->doHandleAttrDeserialization( log );
//
// docs/attribute-log.md has the layout of a log.
namespace Vel {

class Entity;
class NboAttrLogSa;
struct AttrInfo;
struct AttrTravel;
struct EntityModel;

namespace Internal {

/// A queue through the adaptors, each of which is in it at most once.
class SaQueue {
 public:
   struct Link {
      NboAttrLogSa * next = nullptr;
      NboAttrLogSa * previous = nullptr;
      bool queued = false;
   };
   explicit SaQueue( Link NboAttrLogSa::*link ) : link_( link ) {}
   void add( NboAttrLogSa & sa );
   void remove( NboAttrLogSa & sa );
   [[nodiscard]] NboAttrLogSa * first() const { return first_; }
   [[nodiscard]] NboAttrLogSa * last() const { return last_; }
   [[nodiscard]] std::size_t size() const { return size_; }

 private:
   Link NboAttrLogSa::*link_;
   NboAttrLogSa * first_ = nullptr;
   NboAttrLogSa * last_ = nullptr;
   std::size_t size_ = 0;
};

} // namespace Internal

/// What adaptors have to tell another process, in pieces that are made when they are asked for. Until
/// then only *what* has changed is kept: a burst of writes to one attribute costs one record, and a
/// slow reader no more memory than marks. Held by `Ptr`.
///
/// Pieces come in this order: children that come and go, before everything else; then entities in
/// the order in which they were last written, and of each its attributes in that order. So whoever
/// sees a value, sees the children that were there when it was written.
class VEL_API FlowOut : public PtrInterface {
 public:
   /// Marks of single entries of collections may take up to `bound` bytes. Beyond it they are all
   /// dropped for full images of the entities that had some, for which no marks are kept.
   explicit FlowOut( std::size_t bound = 1 << 20 );
   ~FlowOut() override;

   /// Whether there is anything to hand out.
   [[nodiscard]] bool pending() const { return structure_.first() || values_.first(); }
   /// The next piece: a whole log of one adaptor. Valid until the next call; empty when nothing is pending.
   /// It ends with the entity with which it reaches `most` bytes.
   [[nodiscard]] std::string_view piece( std::size_t most = 16 * 1024 );
   /// The tag of the adaptor whose log the last piece was.
   [[nodiscard]] uint32_t tag() const { return tag_; }
   /// How many entities wait for their turn, and how many bytes the marks of single entries take.
   [[nodiscard]] std::size_t waitingEntities() const { return values_.size() + structure_.size(); }
   [[nodiscard]] std::size_t waitingBytes() const { return markBytes_; }

 private:
   friend class NboAttrLogSa;
   /// A pointer that is set, but whose target was in no tree, and so had no name, when it was written. The
   /// target is only compared with.
   struct Nameless {
      Entity const * target;
      NboAttrLogSa * holder;
      uint16_t attribute;
      String key;
      friend auto operator<=>( Nameless const &, Nameless const & ) = default;
   };
   /// It has joined what is watched.
   void nameIs( Entity const & target );

   std::size_t bound_;
   std::size_t markBytes_ = 0;
   uint32_t tag_ = 0;
   Internal::SaQueue structure_;
   Internal::SaQueue values_;
   std::vector<NboAttrLogSa *> roots_;
   std::set<Nameless> nameless_;
   std::unique_ptr<NboAttrLog> log_;
};

/// Watches an entity, and through adaptors of their own all that it owns, for a FlowOut. Ends with its
/// last pointer; the entity may go before it. `T::velNboAttrLogSaIs` makes one for any entity.
class VEL_API NboAttrLogSa : public PtrInterface {
 public:
   /// Limits an adaptor to those children of its entity, by name, that are listed; none listed is all.
   using Only = std::vector<Name>;
   [[nodiscard]] static Ptr<NboAttrLogSa>
   attached( Entity const & entity, Ptr<FlowOut> const & flow, uint32_t tag, Only only = {} );
   ~NboAttrLogSa() override;

   /// The entity that it watches; null once that is gone.
   [[nodiscard]] virtual Entity const * entity() const = 0;
   /// Sends everything anew: what repairs a replica whose logs were lost or corrupt. What no longer
   /// exists goes from the replica.
   void imageIs();
   /// Whether the image of every entity has been handed out, since it came or since `imageIs`.
   [[nodiscard]] bool complete() const;

   // For the observers of adaptors.
   void mark( uint16_t attribute ) {
      if ( order_[0].previous != attribute || flow_.values_.last() != this ) {
         markLate( static_cast<uint8_t>( attribute ) );
      }
   }
   void markKey( uint16_t attribute, String const & key );

 protected:
   /// The attributes written, in the order of their last writes, as a ring: next and previous by
   /// number, with number 0 (`name`, which is never written) for its beginning. All 0 when empty.
   struct Order {
      uint8_t next;
      uint8_t previous;
   };
   NboAttrLogSa( FlowOut & flow, EntityModel const & model, Order * order );

 private:
   friend class FlowOut;
   friend class Internal::SaQueue;
   struct Row {
      uint16_t id; // in the log
      AttrInfo const * info;
      [[nodiscard]] AttrTravel const & travel() const;
   };
   using Keys = HashMap<String, bool>; // true for a child that is not the one it was
   struct MarkedKeys {
      uint16_t attribute;
      Keys keys;
   };
   struct Collections {
      std::vector<MarkedKeys> marked;
      HashMap<String, Ptr<NboAttrLogSa>> children; // by their step
      std::vector<Entity const *> nameless;        // targets of the flow's list, or once of it
   };
   struct Root {
      Ptr<FlowOut> flow;
      uint32_t tag;
      Only only;
      std::size_t imagesDue = 0; // that `complete` waits for, of the whole tree
   };

   void start();
   void markLate( uint8_t attribute );
   void imageDue();
   void imageInsteadOfMarks();
   void queueStructure();
   void imagesInsteadOfKeys();
   template <typename Visit>
   static void eachLink( EntityModel const & model, Visit const & visit );
   [[nodiscard]] Row row( uint16_t attribute ) const;
   [[nodiscard]] static Row rowOf( EntityModel const & model, uint16_t index );
   [[nodiscard]] Root & root() const;
   [[nodiscard]] bool isFiltered( Row const & row ) const;
   [[nodiscard]] bool passes( Row const & row, String const & key ) const;
   bool childIs( Row const & row, String const & key );
   [[nodiscard]] Collections & collections();
   [[nodiscard]] Keys & markedKeys( uint16_t attribute );
   void dropMarks();
   void dropKeys();
   void writePath( NboAttrLog & log ) const;
   void writeStructure( NboAttrLog & log );
   void writeValues( NboAttrLog & log );
   void writeKeys( Entity const & entity, Row const & row, Keys const & keys,
                   NboAttrLog & log ) const;
   void keepNameless( Entity const & from, Row const & row, uint16_t attribute,
                      String const & key );
   void writeChildren( Entity const & entity, Row const & row, NboAttrLog & log ) const;
   [[nodiscard]] Keys takeKeys( uint16_t attribute );

   FlowOut & flow_;
   EntityModel const & model_;
   Order * order_;
   NboAttrLogSa * parent_ = nullptr;
   String step_; // that leads from the parent's entity to this one, as in the log
   Internal::SaQueue::Link structureLink_;
   Internal::SaQueue::Link valuesLink_;
   bool owning_ = false; // the type can have children
   bool structureDue_ = false;
   bool imageDue_ = false;
   bool imageCounted_ = false;  // among those that `complete` waits for
   std::unique_ptr<Root> root_; // of an adaptor without a parent
   std::unique_ptr<Collections> collections_;
};

/// The receiving side of one flow: what logs leave behind for later ones.
///
/// Pointers and references come as names that count from the top of the tree. A name that leads nowhere
/// yet, or to an entity of a wrong type, is kept, and the attribute follows later. So is one that leads out
/// of the replica, since what is there may be unmounted and come anew.
class VEL_API FlowIn {
 public:
   /// What no tree has; a pointer of such a name stays empty.
   static constexpr std::size_t longestName = 1024;

   FlowIn();
   ~FlowIn();
   FlowIn( FlowIn const & ) = delete;
   FlowIn & operator=( FlowIn const & ) = delete;

   /// Where names count from: the root of a tree in which the replica has, or is to have, that path. What
   /// they lead to below it is looked for in the replica, wherever it is. Without this, names count from
   /// the top of the tree that the replica is in. Forgets all names, and what could not be made; `clear` does
   /// just that.
   void placeIs( Entity & root, Entity & replica, Name path );
   void clear();

   /// Applies a log, as `Entity::doHandleAttrDeserialization` says. The log then stands behind the
   /// last record that was applied.
   void apply( Entity & replica, NboAttrLog & log );
   /// Follows every name anew, or those of an entity and of all below it. What a log makes is looked
   /// for by itself; this is for what comes or goes otherwise.
   void resolve();
   void resolve( Name const & path );
   /// How many names lead to nothing that fits.
   [[nodiscard]] std::size_t unresolved() const;
   /// What the sender has in directories and the replica lacks, since no entity of the type can be made
   /// here, or fits there: the names of types, by path from the replica; of each directory the first 1,024.
   [[nodiscard]] std::map<Name, Name> unmade( Entity const & replica ) const;

   // For the attributes' rows.
   void point( Entity & entity, AttrTravel const & row, Name const & key, Name const & path );
   void forget( Entity const & entity, AttrTravel const & row, Name const & key );
   void forgetAll( Entity const & entity, AttrTravel const & row );
   void unmadeIs( Entity & entity, AttrTravel const & row, Name const & key,
                  Name const & typeName );
   [[nodiscard]] Ptr<Entity> newEntity( Name const & typeName, Name const & name );
   void madeIs( Entity const & made );

 private:
   struct Pointer;
   struct Names;
   bool follow( Entity & holder, Pointer const & pointer, Name const & path, bool & settled );
   void follow( std::vector<Pointer> const & pointers );
   void follow( Name const & path, bool andBelow );

   std::unique_ptr<Names> names_;
   std::vector<Name> made_; // paths that kept names may lead to, by the log that is being applied
   Name lastType_;
   Ptr<Entity> ( *lastFactory_ )( Name name ) = nullptr;
};

} // namespace Vel
