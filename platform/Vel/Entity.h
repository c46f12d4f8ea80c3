#pragma once

#include <Vel/ForEach.h>
#include <Vel/HashMap.h>
#include <Vel/Notifiee.h>
#include <Vel/Ptr.h>
#include <Vel/SlotMap.h>
#include <Vel/String.h>
#include <Vel/TypeRegistry.h>
#include <Vel/Types.h>

#include <bit>
#include <map>

namespace Vel {

template <typename Held>
class Owned;
class FlowIn;
class FlowOut;
class NboAttrLog;
class NboAttrLogSa;

template <typename K, typename V>
using OrderedMap = std::map<K, V>;

/// An object with identity: named, held through `Ptr`, observed, part of a tree whose parents own
/// their children. A type derived from it lists its attributes with VEL_ENTITY.
class VEL_API Entity : public PtrInterface {
 public:
   class NotifieeConst;
   class Notifiee;
   using VelNboAttrLogSa = NboAttrLogSa;
   // Every attribute has a number: those of the base first, then its own in order.
   enum : uint16_t {
      nameAttr,
      fullNameAttr,
      parentAttr,
      parentAttrNameAttr,
      entityAttr,
      velAttrEnd
   };

   explicit Entity( Name name ) : name_( std::move( name ) ) {}
   ~Entity() override;

   [[nodiscard]] Name const & name() const { return name_; }
   /// The names from the root down, such as "hardware/xcvr/xgc". An entity that its parent holds in
   /// a collection has that attribute's name before its own, "slot1/laneStatus/3".
   [[nodiscard]] Name fullName() const;
   /// The entity that owns this one; null for a root.
   [[nodiscard]] Entity * parent() { return parent_; }
   [[nodiscard]] Entity const * parent() const { return parent_; }
   /// The attribute in which the parent holds this one; empty for a root and for the entry of a
   /// `Dir`.
   [[nodiscard]] Name const & parentAttrName() const { return parentAttrName_; }
   /// The child of that path below this one, "laneStatus/3" or, in a directory, "xcvr/xgc"; null when
   /// there is none. Names may hold slashes: the shortest that leads on is taken. The empty path is
   /// the entity itself, or null for one that no pointer holds.
   [[nodiscard]] Ptr<Entity const> entity( Name const & path ) const;
   [[nodiscard]] Ptr<Entity> entity( Name const & path );

   /// Gives an entity that comes back from a saved state its name; observers are not told. To be
   /// done before it is put anywhere: a directory would not find it again.
   void nameIsFromBackup( Name name ) { name_ = std::move( name ); }

   /// Copies the entity, whatever its type, and all that it owns to another process: an adaptor that
   /// observes it and writes its full image, and then every change, to the attribute logs that
   /// `flowOut` hands out. For as long as the adaptor lives; see <Vel/Flow.h>. A `tag` tells the logs
   /// of several adaptors of one flow apart.
   [[nodiscard]] static Ptr<NboAttrLogSa> velNboAttrLogSaIs( Ptr<Entity const> const & entity,
                                                             Ptr<FlowOut> const & flowOut,
                                                             uint32_t tag = 0 );
   /// Applies such a log to this replica, whose observers are told as of local writes. Throws
   /// AttrLogException for a log that is corrupt, with the replica as after the last whole record;
   /// a full image repairs it. With a `FlowIn`, names of entities that are not there yet are kept.
   void doHandleAttrDeserialization( NboAttrLog & log );
   void doHandleAttrDeserialization( NboAttrLog & log, FlowIn & flowIn );

   /// The entity's type with its attributes, for reflection.
   [[nodiscard]] virtual EntityModel const & velModel() const;
   [[nodiscard]] static EntityModel const & velTypeModel();

   // What the attribute log needs of a type: how many types it derives from, and an observer that
   // marks every attribute that changes; `Root` has the operations for that.
   static constexpr uint16_t velLevel = 0;
   template <typename Root>
   class VelMarks : public Root {};

 protected:
   /// The handlers of one collection: for one entry and for the collection as a whole.
   template <typename N, typename K>
   struct KeyedHandlers {
      uint16_t id;
      void ( N::*one )( In<K> );
      void ( N::*whole )();
   };

   [[nodiscard]] bool velObserved() const { return !observers_.empty(); }
   // Telling the observers of a single attribute. The handler is a template argument, so that the
   // virtual call is direct; a single observer is told by a tail call, with nothing to do behind it.
   template <uint16_t id, typename N, void ( N::*handler )()>
   [[gnu::noinline]] void velTell() const {
      auto const tell = []( NotifieeBase * observer ) {
         ( static_cast<N *>( observer )->*handler )();
      };
      if ( !observers_.deliverToOnly( id, tell ) ) [[unlikely]] {
         velTellMany<id, N, handler>();
      }
   }
   template <uint16_t id, typename N, void ( N::*handler )()>
   [[gnu::noinline]] void velTellMany() const {
      Hold const hold( *this );
      observers_.deliver(
         id, []( NotifieeBase * observer ) { ( static_cast<N *>( observer )->*handler )(); } );
   }

   // The same of a collection, in steps: the observers are those of the first one, whose list had
   // had `latest` changes by then. The caller holds the entity.
   template <typename N, typename K>
   void velTellKey( KeyedHandlers<N, K> const & handlers, uint64_t latest, K const & key ) const {
      observers_.deliverAfter( 0, latest, handlers.id, [&]( NotifieeBase * observer ) {
         ( static_cast<N *>( observer )->*handlers.one )( key );
      } );
   }
   template <typename N, typename K>
   void velTellWhole( KeyedHandlers<N, K> const & handlers, uint64_t latest ) const {
      observers_.deliverAfter( 0, latest, handlers.id, [&]( NotifieeBase * observer ) {
         ( static_cast<N *>( observer )->*handlers.whole )();
      } );
   }
   /// `key` must be a copy of the caller's own: handlers may destroy the collection's.
   template <typename N, typename K>
   void velTellEntry( KeyedHandlers<N, K> const & handlers, K const & key ) const {
      if ( velObserved() ) {
         Hold const hold( *this );
         uint64_t const latest = observers_.changes();
         velTellKey( handlers, latest, key );
         velTellWhole( handlers, latest );
      }
   }

   // The operations of the collection attributes; `Map` is a HashMap or an OrderedMap.
   template <typename Map, typename K>
   [[nodiscard]] static typename Map::mapped_type velEntry( Map const & map, K const & key ) {
      auto const found = map.find( key );
      return found != map.end() ? found->second : typename Map::mapped_type{};
   }
   template <typename Map, typename Handlers>
   void velEntryIs( Map & map, typename Map::key_type const & key,
                    typename Map::mapped_type const & value, Handlers const & handlers ) {
      typename Map::key_type const told = key; // `key` may be part of the collection
      auto const [entry, added] = map.try_emplace( told, value );
      if ( !added ) {
         if ( entry->second == value ) {
            return;
         }
         entry->second = value;
      }
      velTellEntry( handlers, told );
   }
   template <typename Map, typename Handlers>
   void velEntryDel( Map & map, typename Map::key_type const & key, Handlers const & handlers ) {
      auto const found = map.find( key );
      if ( found == map.end() ) {
         return;
      }
      typename Map::key_type const told = key; // `key` may be part of the entry
      auto const removed = std::move( found->second );
      map.erase( found );
      velOrphan( removed, &map );
      velTellEntry( handlers, told );
   }
   template <typename Map, typename Handlers>
   void velEntryDelAll( Map & map, Handlers const & handlers ) {
      if ( map.empty() ) {
         return;
      }
      auto const removed = velTaken( map );
      for ( auto const & entry : removed ) {
         velOrphan( entry.second, &map );
      }
      if ( velObserved() ) {
         Hold const hold( *this );
         uint64_t const latest = observers_.changes();
         for ( auto const & entry : removed ) {
            velTellKey( handlers, latest, entry.first );
         }
         velTellWhole( handlers, latest );
      }
   }
   template <typename Child, typename Map, typename Handlers>
   Ptr<Child> velChildIs( Map & map, typename Map::key_type const & key, char const * attribute,
                          Handlers const & handlers ) {
      auto const found = map.find( key );
      if ( found != map.end() ) {
         return found->second;
      }
      typename Map::key_type const told = key; // `key` may be part of what a handler destroys
      Ptr<Child> const child( new Child( told ) );
      velAdopt( *child, attribute, &map, Path::throughAttribute );
      map.try_emplace( told, child );
      velTellEntry( handlers, told );
      return child;
   }
   /// Holds a child, in place of the one that the key may have.
   template <typename Map, typename Child, typename Handlers>
   void velInstanceIs( Map & map, typename Map::key_type const & key, Ptr<Child> const & child,
                       char const * attribute, Handlers const & handlers ) {
      typename Map::key_type const told = key; // `key` may be part of what is replaced
      velAdopt( *child, attribute, &map, Path::throughAttribute );
      auto const found = map.find( told );
      if ( found == map.end() ) {
         map.emplace( told, child );
      } else {
         velOrphan( std::exchange( found->second, child ), &map );
      }
      velTellEntry( handlers, told );
   }
   /// Holds an entity under its own name; one that is `owned` becomes a child. An entity has one
   /// parent, the one that it was given to last.
   template <bool owned, typename T, typename Map, typename Handlers>
   void velPointerIs( Map & map, Ptr<T> const & pointer, Handlers const & handlers ) {
      Ptr<T> const given = pointer; // the caller's own may go before the end
      Name const told = given->name();
      if constexpr ( owned ) {
         velAdopt( *given, Name(), &map, Path::direct );
      }
      auto const [entry, added] = map.try_emplace( told, given );
      Ptr<T> replaced;
      if ( !added ) {
         if ( entry->second == given ) {
            return;
         }
         replaced = std::exchange( entry->second, given );
         if constexpr ( owned ) {
            velOrphan( replaced, &map );
         }
      }
      velTellEntry( handlers, told );
   }
   [[noreturn]] static void velNullRefused( std::string_view typeName, std::string_view attribute );

   /// What leads from a parent to its child.
   enum class Path : uint8_t { throughAttribute, direct };
   /// Makes this the parent; `home` is the attribute that holds the child. Fatal for an ancestor.
   void velAdopt( Entity & child, Name const & attribute, void const * home, Path path );
   /// Ends the parenthood of what has left the attribute `home`, unless it has found another parent.
   template <typename Child, typename Held>
   static void velOrphan( Ptr<Child> const & left, Owned<Held> const * home ) {
      if ( left && left->home_ == home ) {
         left->parent_ = nullptr;
         left->parentAttrName_ = Name();
         left->home_ = nullptr;
      }
   }
   /// Nothing for values and for entities that live elsewhere.
   static void velOrphan( auto const &, void const * ) {}
   /// The contents of an attribute, which is empty afterwards.
   template <typename Held>
   [[nodiscard]] static Held velTaken( Held & held ) {
      return std::exchange( held, Held{} );
   }
   template <typename Held>
   [[nodiscard]] static Held velTaken( Owned<Held> & owned ) {
      return velTaken( static_cast<Held &>( owned ) );
   }

 private:
   friend class NotifieeBase;
   template <typename>
   friend class Owned;

   Name name_; // beside the count of pointers: what goes into a directory needs both
   mutable ObserverList observers_;
   Entity * parent_ = nullptr;
   void const * home_ = nullptr; // the parent's attribute that owns this one
   Path path_ = Path::direct;
   Name parentAttrName_;
};

class Entity::NotifieeConst : public NotifieeOf<Entity const, NotifieeBase> {};
class Entity::Notifiee : public NotifieeOf<Entity, NotifieeConst> {};

/// A map of children or a single child in the entity that owns them: children that live on after
/// their owner have no parent any more.
template <typename Held>
class Owned : public Held {
 public:
   Owned() = default;
   Owned( Owned const & ) = delete;
   Owned & operator=( Owned const & ) = delete;
   using Held::operator=;
   ~Owned() {
      if constexpr ( requires( Held & held ) { held.get(); } ) {
         Entity::velOrphan( static_cast<Held &>( *this ), this );
      } else {
         for ( auto const & entry : *this ) {
            Entity::velOrphan( entry.second, this );
         }
      }
   }
};

/// A reference attribute's hold on an entity that it does not own: an observer with no handlers,
/// and so null once the entity is gone.
template <typename T>
class Ref : public NotifieeBase {
 public:
   [[nodiscard]] T * get() const {
      return const_cast<T *>( static_cast<T const *>( velNotifier() ) );
   }
   void targetIs( T * entity ) { velNotifierIs( entity, 0 ); }
};

} // namespace Vel

/// Declares an entity's attributes, in its class body, one row an attribute; the hand-written
/// operations follow.
///
///    VEL_ENTITY( XcvrConfigCli, Vel::Entity,
///       // Media type to assume instead of the decoded one; xcvrUnknown for none.
///       ( Plain, overrideMediaType, onOverrideMediaType, MediaType ),
///       ( Values, slotTuningParams, onSlotTuningParams, LaneId, LaneTuningParameter ) );
///
/// Kinds, and what each declares for an attribute `foo` whose handler is `onFoo`:
///
///    ( Plain, foo, onFoo, Type )           foo(), fooIs( v ); writing the value held is silent (a NaN
///                                          is never the value held)
///    ( Constant, foo, Type )               foo(); the constructor initialises foo_
///    ( Counter, foo, onFoo, Type )         as Plain, and fooInc( n ), which always tells; wraps
///    ( Values, foo, onFoo, Key, Type )     foo( key ), fooHas( key ), fooIs( key, v ), fooDel( key ),
///                                          fooDelAll(), fooMap(); an absent key reads as Type{}
///    ( OrderedValues, … )                  the same, iterated in the order of the keys
///    ( Records, foo, onFoo, Storage )      as Values, but a value carries its own key, so that the
///                                          setter is fooIs( v ), and the type of the storage is given
///    ( DenseValues, foo, onFoo, Storage )  as Values, in a storage of <Vel/DenseMap.h>; where that is
///                                          an image of bits, fooImageIs( image, mask ) writes the
///                                          places of a mask before it tells of those that changed
///    ( Children, foo, onFoo, Key, Child )  fooIs( key ) makes a Child( key ) or returns the one that
///                                          is there, an absent key reads as null; else as Values
///    ( OrderedChildren, … )                the same, iterated in the order of the keys
///    ( Instances, foo, onFoo, Key, Child ) as OrderedChildren, the key an enumeration, but fooIs is
///                                          written by hand: for a child that is made of more than
///                                          its key, and replaced by velInstanceIs. fooIs( key ) makes
///                                          one for a replica, which then gets its constants
///    ( Pointers, foo, onFoo, T )           fooIs( ptr ) holds an entity that lives elsewhere under
///                                          its own name, null is fatal; else as Values by Name
///    ( Entries, foo, onFoo, T )            the same, but the entity becomes a child
///    ( Child, foo, onFoo, Child )          foo(), fooIs() makes it, fooDel()
///    ( Reference, foo, onFoo, T )          foo(), fooIs( ptr ); not owned, null once it is gone
///    ( Derived, foo, Type )                reflected only; the operation foo() is written by hand
///
/// A collection has fooNotify( key ) too, which tells of an entry as though it had changed.
///
/// The Storage of Records has `key_type`, `mapped_type`, `static keyOf( v )`, `contains( key )`,
/// `at( key )` (a default value when absent), `store( v )` and `erase( key )` (whether they changed
/// anything), `empty()`, and is iterated over entries with `first` and `second`.
///
/// Handlers run after the change: onFoo() for a single attribute; onFoo( key ) and then onFoo() for an
/// entry of a collection; for fooDelAll() onFoo( key ) for each removed key, then onFoo() once.
/// Deleting what is not there is silent. Observers derive from T::Notifiee or, to read only, from
/// T::NotifieeConst.
///
/// Needs VEL_ENTITY_DEFINE( T, tFactory ), or VEL_ENTITY_DEFINE( T ) for no factory, from
/// <Vel/DefineEntity.h> once, in the same namespace.
#define VEL_ENTITY( T, Base, ... ) VEL_ENTITY_( T, Base, VEL_EACH_OF( __VA_ARGS__ ), __VA_ARGS__ )
#define VEL_ENTITY_( T, Base, EACH, ... )                                                          \
 public:                                                                                           \
   class NotifieeConst;                                                                            \
   class Notifiee;                                                                                 \
   enum : uint16_t {                                                                               \
      velAttrBefore = Base::velAttrEnd - 1,                                                        \
      EACH( VEL_ENTITY_ID_, __VA_ARGS__ ) velAttrEnd                                               \
   };                                                                                              \
                                                                                                   \
 private:                                                                                          \
   using VelSelf = T;                                                                              \
   EACH( VEL_ENTITY_MEMBERS_, __VA_ARGS__ )                                                        \
 public:                                                                                           \
   [[nodiscard]] Vel::EntityModel const & velModel() const override;                               \
   [[nodiscard]] static Vel::EntityModel const & velTypeModel();                                   \
   using VelBase = Base;                                                                           \
   static constexpr uint16_t velLevel = Base::velLevel + 1;                                        \
   template <typename Root>                                                                        \
   class VelMarks : public Base::template VelMarks<Root> {                                         \
    public:                                                                                        \
      EACH( VEL_ENTITY_MARKS_, __VA_ARGS__ )                                                       \
   };                                                                                              \
   class NotifieeConst : public Vel::NotifieeOf<T const, Base::NotifieeConst> {                    \
    public:                                                                                        \
      EACH( VEL_ENTITY_HANDLERS_, __VA_ARGS__ )                                                    \
   };                                                                                              \
   class Notifiee : public Vel::NotifieeOf<T, NotifieeConst> {};                                   \
   /* Calls `visit.attribute< kind, Key, Type >( name, get, set, del )` for every row. */          \
   template <typename Visitor>                                                                     \
   static constexpr void velAttributes( [[maybe_unused]] Visitor && visit ) {                      \
      EACH( VEL_ENTITY_ROW_, __VA_ARGS__ )                                                         \
   }                                                                                               \
   /* How many attributes the type adds to its base's. */                                          \
   static constexpr std::size_t velOwnAttributes() {                                               \
      return velAttrEnd - std::size_t( Base::velAttrEnd );                                         \
   }

#define VEL_ENTITY_ID_( Kind, name, ... ) name##Attr,
#define VEL_ENTITY_MEMBERS_( Kind, ... ) VEL_MEMBERS_##Kind##_( __VA_ARGS__ )
#define VEL_ENTITY_HANDLERS_( Kind, ... ) VEL_HANDLERS_##Kind##_( __VA_ARGS__ )
#define VEL_ENTITY_ROW_( Kind, ... ) VEL_ROW_##Kind##_( __VA_ARGS__ )
#define VEL_ENTITY_MARKS_( Kind, ... ) VEL_MARKS_##Kind##_( __VA_ARGS__ )

// What an attribute of each kind declares in its entity.

#define VEL_MEMBERS_Plain_( name, onName, ... )                                                    \
 private:                                                                                          \
   __VA_ARGS__ name##_{};                                                                          \
                                                                                                   \
 public:                                                                                           \
   [[nodiscard]] Vel::In<__VA_ARGS__> name() const {                                               \
      return name##_;                                                                              \
   }                                                                                               \
   void name##Is( Vel::In<__VA_ARGS__> velNew ) {                                                  \
      if ( name##_ == velNew ) [[likely]] { /* as most that an agent polls is */                   \
         return;                                                                                   \
      }                                                                                            \
      name##_ = velNew;                                                                            \
      if ( velObserved() ) {                                                                       \
         velTell<name##Attr, NotifieeConst, &NotifieeConst::onName>();                             \
      }                                                                                            \
   }

#define VEL_MEMBERS_Constant_( name, ... )                                                         \
 private:                                                                                          \
   __VA_ARGS__ name##_{};                                                                          \
   void name##IsFromImage( Vel::In<__VA_ARGS__> velNew ) { /* only in a replica */                 \
      name##_ = velNew;                                                                            \
   }                                                                                               \
                                                                                                   \
 public:                                                                                           \
   [[nodiscard]] Vel::In<__VA_ARGS__> name() const {                                               \
      return name##_;                                                                              \
   }

#define VEL_MEMBERS_Counter_( name, onName, ... )                                                  \
   VEL_MEMBERS_Plain_( name, onName, __VA_ARGS__ ) void name##Inc( __VA_ARGS__ velBy = 1 ) {       \
      name##_ = static_cast<__VA_ARGS__>( name##_ + velBy );                                       \
      if ( velObserved() ) {                                                                       \
         velTell<name##Attr, NotifieeConst, &NotifieeConst::onName>();                             \
      }                                                                                            \
   }

#define VEL_KEYED_( Key, name, onName )                                                            \
   KeyedHandlers<NotifieeConst, Key> {                                                             \
      name##Attr, &NotifieeConst::onName, &NotifieeConst::onName                                   \
   }

#define VEL_MEMBERS_Map_( name, onName, Key, ... )                                                 \
 private:                                                                                          \
   __VA_ARGS__ name##_;                                                                            \
                                                                                                   \
 public:                                                                                           \
   [[nodiscard]] bool name##Has( Vel::In<Key> velKey ) const {                                     \
      return name##_.find( velKey ) != name##_.end();                                              \
   }                                                                                               \
   [[nodiscard]] __VA_ARGS__ const & name##Map() const {                                           \
      return name##_;                                                                              \
   }                                                                                               \
   void name##Del( Vel::In<Key> velKey ) {                                                         \
      velEntryDel( name##_, velKey, VEL_KEYED_( Key, name, onName ) );                             \
   }                                                                                               \
   void name##DelAll() {                                                                           \
      velEntryDelAll( name##_, VEL_KEYED_( Key, name, onName ) );                                  \
   }                                                                                               \
   void name##Notify( Vel::In<Key> velKey ) const {                                                \
      Key const velTold = velKey;                                                                  \
      velTellEntry( VEL_KEYED_( Key, name, onName ), velTold );                                    \
   }

// clang-format off
#define VEL_MEMBERS_AnyValues_( Map, name, onName, Key, ... )                                      \
   VEL_MEMBERS_Map_( name, onName, Key, Vel::Map<Key, __VA_ARGS__> )                               \
   [[nodiscard]] __VA_ARGS__ name( Vel::In<Key> velKey ) const {                                   \
      return velEntry( name##_, velKey );                                                          \
   }                                                                                               \
   void name##Is( Vel::In<Key> velKey, Vel::In<__VA_ARGS__> velNew ) {                             \
      velEntryIs( name##_, velKey, velNew, VEL_KEYED_( Key, name, onName ) );                      \
   }
#define VEL_MEMBERS_Values_( ... ) VEL_MEMBERS_AnyValues_( HashMap, __VA_ARGS__ )
#define VEL_MEMBERS_OrderedValues_( ... ) VEL_MEMBERS_AnyValues_( OrderedMap, __VA_ARGS__ )

#define VEL_POINTER_MAP_( ... ) Vel::HashMap<Vel::Name, Vel::Ptr<__VA_ARGS__>, Vel::NamedPointer>
#define VEL_MEMBERS_AnyPointers_( owned, name, onName, ... )                                       \
   void name##Is( Vel::Ptr<__VA_ARGS__> const & velNew ) {                                         \
      if ( !velNew ) [[unlikely]] {                                                                \
         velNullRefused( velTypeModel().typeName, #name );                                         \
      }                                                                                            \
      velPointerIs<owned>( name##_, velNew, VEL_KEYED_( Vel::Name, name, onName ) );               \
   }
#define VEL_MEMBERS_Pointers_( name, onName, ... )                                                 \
   VEL_MEMBERS_Map_( name, onName, Vel::Name, VEL_POINTER_MAP_( __VA_ARGS__ ) )                    \
   [[nodiscard]] Vel::Ptr<__VA_ARGS__> name( Vel::Name const & velKey ) const {                    \
      return velEntry( name##_, velKey );                                                          \
   }                                                                                               \
   VEL_MEMBERS_AnyPointers_( false, name, onName, __VA_ARGS__ )
#define VEL_MEMBERS_Owned_( name, onName, Key, Map, ... )                                          \
   VEL_MEMBERS_Map_( name, onName, Key, Vel::Owned<Map<Key, Vel::Ptr<__VA_ARGS__>>> )              \
   [[nodiscard]] Vel::Ptr<__VA_ARGS__> name( Vel::In<Key> velKey ) {                               \
      return velEntry( name##_, velKey );                                                          \
   }                                                                                               \
   [[nodiscard]] Vel::Ptr<__VA_ARGS__ const> name( Vel::In<Key> velKey ) const {                   \
      return velEntry( name##_, velKey );                                                          \
   }
#define VEL_MEMBERS_Entries_( name, onName, ... )                                                  \
   VEL_MEMBERS_Owned_( name, onName, Vel::Name, Vel::HashMap, __VA_ARGS__ )                        \
   VEL_MEMBERS_AnyPointers_( true, name, onName, __VA_ARGS__ )

#define VEL_MEMBERS_Stored_( name, onName, ... )                                                   \
 private:                                                                                          \
   __VA_ARGS__ name##_;                                                                            \
                                                                                                   \
 public:                                                                                           \
   using name##Storage = __VA_ARGS__;                                                              \
   [[nodiscard]] bool name##Has( name##Storage::key_type velKey ) const {                          \
      return name##_.contains( velKey );                                                           \
   }                                                                                               \
   [[nodiscard]] name##Storage const & name##Map() const {                                         \
      return name##_;                                                                              \
   }                                                                                               \
   [[nodiscard]] name##Storage::mapped_type name( name##Storage::key_type velKey ) const {         \
      return name##_.at( velKey );                                                                 \
   }                                                                                               \
   void name##Del( name##Storage::key_type velKey ) {                                              \
      if ( name##_.erase( velKey ) ) {                                                             \
         name##Notify( velKey );                                                                   \
      }                                                                                            \
   }                                                                                               \
   void name##DelAll() {                                                                           \
      velEntryDelAll( name##_, VEL_KEYED_( name##Storage::key_type, name, onName ) );              \
   }                                                                                               \
   void name##Notify( name##Storage::key_type velKey ) const {                                     \
      velTellEntry( VEL_KEYED_( name##Storage::key_type, name, onName ), velKey );                 \
   }
#define VEL_MEMBERS_Records_( name, onName, ... )                                                  \
   VEL_MEMBERS_Stored_( name, onName, __VA_ARGS__ )                                                \
   void name##Is( Vel::In<name##Storage::mapped_type> velNew ) {                                   \
      if ( name##_.store( velNew ) ) {                                                             \
         name##Notify( name##Storage::keyOf( velNew ) );                                           \
      }                                                                                            \
   }
#define VEL_MEMBERS_DenseValues_( name, onName, ... )                                              \
   VEL_MEMBERS_Stored_( name, onName, __VA_ARGS__ )                                                \
   void name##Is( name##Storage::key_type velKey, Vel::In<name##Storage::mapped_type> velNew ) {   \
      if ( name##_.store( velKey, velNew ) ) {                                                     \
         name##Notify( velKey );                                                                   \
      }                                                                                            \
   }                                                                                               \
   template <typename Image, typename Storage = name##Storage>                                     \
   void name##ImageIs( Image velImage, uint32_t velMask ) {                                        \
      uint32_t velLeft = static_cast<Storage &>( name##_ ).storeImage( velImage, velMask );        \
      if ( velLeft != 0 && velObserved() ) {                                                       \
         Vel::Hold const velHold( *this );                                                         \
         for ( ; velLeft != 0; velLeft &= velLeft - 1 ) {                                          \
            name##Notify( typename Storage::key_type( std::countr_zero( velLeft ) ) );             \
         }                                                                                         \
      }                                                                                            \
   }

#define VEL_MEMBERS_AnyChildren_( Map, name, onName, Key, ... )                                    \
   VEL_MEMBERS_Owned_( name, onName, Key, Map, __VA_ARGS__ )                                       \
   Vel::Ptr<__VA_ARGS__> name##Is( Vel::In<Key> velKey ) {                                         \
      return velChildIs<__VA_ARGS__>( name##_, velKey, #name, VEL_KEYED_( Key, name, onName ) );   \
   }
#define VEL_MEMBERS_Children_( ... ) VEL_MEMBERS_AnyChildren_( Vel::HashMap, __VA_ARGS__ )
#define VEL_MEMBERS_OrderedChildren_( ... ) VEL_MEMBERS_AnyChildren_( Vel::OrderedMap, __VA_ARGS__ )
#define VEL_MEMBERS_Instances_( name, onName, Key, ... )                                           \
   VEL_MEMBERS_Owned_( name, onName, Key, Vel::SlotMap, __VA_ARGS__ )
// clang-format on

#define VEL_MEMBERS_Child_( name, onName, ... )                                                    \
 private:                                                                                          \
   Vel::Owned<Vel::Ptr<__VA_ARGS__>> name##_;                                                      \
                                                                                                   \
 public:                                                                                           \
   [[nodiscard]] Vel::Ptr<__VA_ARGS__> name() {                                                    \
      return name##_;                                                                              \
   }                                                                                               \
   [[nodiscard]] Vel::Ptr<__VA_ARGS__ const> name() const {                                        \
      return name##_;                                                                              \
   }                                                                                               \
   Vel::Ptr<__VA_ARGS__> name##Is() {                                                              \
      if ( !name##_ ) {                                                                            \
         name##_ = Vel::Ptr<__VA_ARGS__>( new __VA_ARGS__( #name ) );                              \
         velAdopt( *name##_, #name, &name##_, Path::direct );                                      \
         Vel::Ptr<__VA_ARGS__> const velMade = name##_;                                            \
         velTell<name##Attr, NotifieeConst, &NotifieeConst::onName>();                             \
         return velMade;                                                                           \
      }                                                                                            \
      return name##_;                                                                              \
   }                                                                                               \
   void name##Del() {                                                                              \
      if ( Vel::Ptr<__VA_ARGS__> const velGone = velTaken( name##_ ) ) {                           \
         velOrphan( velGone, &name##_ );                                                           \
         velTell<name##Attr, NotifieeConst, &NotifieeConst::onName>();                             \
      }                                                                                            \
   }

#define VEL_MEMBERS_Reference_( name, onName, ... )                                                \
 private:                                                                                          \
   Vel::Ref<__VA_ARGS__> name##_;                                                                  \
                                                                                                   \
 public:                                                                                           \
   [[nodiscard]] __VA_ARGS__ * name() const {                                                      \
      return name##_.get();                                                                        \
   }                                                                                               \
   void name##Is( __VA_ARGS__ * velNew ) {                                                         \
      if ( name##_.get() == velNew ) {                                                             \
         return;                                                                                   \
      }                                                                                            \
      name##_.targetIs( velNew );                                                                  \
      velTell<name##Attr, NotifieeConst, &NotifieeConst::onName>();                                \
   }                                                                                               \
   void name##Is( Vel::Ptr<__VA_ARGS__> const & velNew ) {                                         \
      name##Is( velNew.get() );                                                                    \
   }                                                                                               \
   void name##Is( std::nullptr_t ) {                                                               \
      name##Is( static_cast<__VA_ARGS__ *>( nullptr ) );                                           \
   }

#define VEL_MEMBERS_Derived_( name, ... )

// The handlers of each kind in the entity's NotifieeConst.

#define VEL_HANDLERS_Plain_( name, onName, ... )                                                   \
   virtual void onName() {}
#define VEL_HANDLERS_Constant_( ... )
#define VEL_HANDLERS_Counter_ VEL_HANDLERS_Plain_
#define VEL_HANDLERS_Values_( name, onName, Key, ... )                                             \
   virtual void onName( Vel::In<Key> ) {}                                                          \
   virtual void onName() {}
#define VEL_HANDLERS_OrderedValues_ VEL_HANDLERS_Values_
#define VEL_HANDLERS_Records_( name, onName, ... )                                                 \
   VEL_HANDLERS_Values_( name, onName, __VA_ARGS__::key_type )
#define VEL_HANDLERS_DenseValues_ VEL_HANDLERS_Records_
#define VEL_HANDLERS_Children_ VEL_HANDLERS_Values_
#define VEL_HANDLERS_OrderedChildren_ VEL_HANDLERS_Values_
#define VEL_HANDLERS_Instances_ VEL_HANDLERS_Values_
#define VEL_HANDLERS_Pointers_( name, onName, ... ) VEL_HANDLERS_Values_( name, onName, Vel::Name )
#define VEL_HANDLERS_Entries_ VEL_HANDLERS_Pointers_
#define VEL_HANDLERS_Child_ VEL_HANDLERS_Plain_
#define VEL_HANDLERS_Reference_ VEL_HANDLERS_Plain_
#define VEL_HANDLERS_Derived_( ... )

// How a change of each kind is marked for the attribute log. The entries of a collection are marked,
// not the collection as a whole.

#define VEL_MARKS_Plain_( name, onName, ... )                                                      \
   void onName() override {                                                                        \
      this->velMark( name##Attr );                                                                 \
   }
#define VEL_MARKS_Constant_( ... )
#define VEL_MARKS_Counter_ VEL_MARKS_Plain_
#define VEL_MARKS_Values_( name, onName, Key, ... )                                                \
   void onName( Vel::In<Key> velKey ) override {                                                   \
      this->velMarkKey( name##Attr, velKey );                                                      \
   }                                                                                               \
   void onName() override {}
#define VEL_MARKS_OrderedValues_ VEL_MARKS_Values_
#define VEL_MARKS_Records_( name, onName, ... )                                                    \
   VEL_MARKS_Values_( name, onName, __VA_ARGS__::key_type )
#define VEL_MARKS_DenseValues_ VEL_MARKS_Records_
#define VEL_MARKS_Children_ VEL_MARKS_Values_
#define VEL_MARKS_Instances_ VEL_MARKS_Values_
#define VEL_MARKS_OrderedChildren_ VEL_MARKS_Values_
#define VEL_MARKS_Pointers_( name, onName, ... ) VEL_MARKS_Values_( name, onName, Vel::Name )
#define VEL_MARKS_Entries_ VEL_MARKS_Pointers_
#define VEL_MARKS_Child_( name, onName, ... )                                                      \
   void onName() override {                                                                        \
      this->velMarkChild( name##Attr );                                                            \
   }
#define VEL_MARKS_Reference_ VEL_MARKS_Plain_
#define VEL_MARKS_Derived_( ... )

// The rows of the attribute table. A getter, a setter and a deleter can be called where the attribute
// has what they call.

#define VEL_ROW_( kind, Key, name, getter, setter, deleter, ... )                                  \
   visit.template attribute<Vel::AttrKind::kind, Key, __VA_ARGS__>(                                \
      #name, []( auto const & velSelf ) -> decltype( auto ) { return velSelf.getter(); },          \
      []( auto & velSelf, auto const &... velNew ) -> decltype( velSelf.setter( velNew... ) ) {    \
         return velSelf.setter( velNew... );                                                       \
      },                                                                                           \
      []( auto & velSelf, auto const &... velKey ) -> decltype( velSelf.deleter( velKey... ) ) {   \
         return velSelf.deleter( velKey... );                                                      \
      } );
#define VEL_KEYED_ROW_( kind, Key, name, ... )                                                     \
   VEL_ROW_( kind, Key, name, name##Map, name##Is, name##Del, __VA_ARGS__ )
#define VEL_SINGLE_ROW_( kind, name, ... )                                                         \
   VEL_ROW_( kind, void, name, name, name##Is, name##Del, __VA_ARGS__ )
#define VEL_ROW_Plain_( name, onName, ... ) VEL_SINGLE_ROW_( plain, name, __VA_ARGS__ )
#define VEL_ROW_Constant_( name, ... )                                                             \
   VEL_ROW_( constant, void, name, name, name##IsFromImage, name##Del, __VA_ARGS__ )
#define VEL_ROW_Counter_( name, onName, ... ) VEL_SINGLE_ROW_( counter, name, __VA_ARGS__ )
#define VEL_ROW_Values_( name, onName, Key, ... ) VEL_KEYED_ROW_( values, Key, name, __VA_ARGS__ )
#define VEL_ROW_OrderedValues_( name, onName, Key, ... )                                           \
   VEL_KEYED_ROW_( orderedValues, Key, name, __VA_ARGS__ )
#define VEL_ROW_Records_( name, onName, ... )                                                      \
   VEL_KEYED_ROW_( values, __VA_ARGS__::key_type, name, __VA_ARGS__::mapped_type )
#define VEL_ROW_DenseValues_ VEL_ROW_Records_
#define VEL_ROW_Children_( name, onName, Key, ... )                                                \
   VEL_KEYED_ROW_( children, Key, name, __VA_ARGS__ )
#define VEL_ROW_OrderedChildren_( name, onName, Key, ... )                                         \
   VEL_KEYED_ROW_( orderedChildren, Key, name, __VA_ARGS__ )
#define VEL_ROW_Instances_( name, onName, Key, ... )                                               \
   VEL_KEYED_ROW_( instances, Key, name, __VA_ARGS__ )
#define VEL_ROW_Pointers_( name, onName, ... )                                                     \
   VEL_KEYED_ROW_( pointers, Vel::Name, name, __VA_ARGS__ )
#define VEL_ROW_Entries_( name, onName, ... )                                                      \
   VEL_KEYED_ROW_( entries, Vel::Name, name, __VA_ARGS__ )
#define VEL_ROW_Child_( name, onName, ... ) VEL_SINGLE_ROW_( child, name, __VA_ARGS__ )
#define VEL_ROW_Reference_( name, onName, ... ) VEL_SINGLE_ROW_( reference, name, __VA_ARGS__ )
#define VEL_ROW_Derived_( name, ... ) VEL_SINGLE_ROW_( derived, name, __VA_ARGS__ )
