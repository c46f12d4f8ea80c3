#pragma once

#include <Vel/AttrLogCodec.h>
#include <Vel/Entity.h>
#include <Vel/Flow.h>

#include <optional>
#include <vector>

/// How an attribute of each kind is copied to a replica, as docs/attribute-log.md lays it out. Included
/// by the .cpp files that define model types.
namespace Vel {

/// The operations of one attribute, which its row of the attribute table points to. A key is handed
/// around as the bytes that it takes in the log.
struct AttrTravel {
   bool owned; // it holds children
   bool keyed; // it is a collection, or a single child

   /// Appends a whole record, of a collection with all its entries; null for a single child.
   void ( *write )( Entity const & entity, uint16_t id, NboAttrLog & log );
   /// Of a collection: whether an entry is there to travel; appends its key and value, if it is.
   bool ( *has )( Entity const & entity, String const & key );
   void ( *writeEntry )( Entity const & entity, String const & key, NboAttrLog & log );
   /// Of an owned one: the child of that key, or null; a child of a replica, whose key is taken from the
   /// log; the keys of all, also of pointers.
   Entity const * ( *child )( Entity const & entity, String const & key );
   Entity * ( *childAt )( Entity & entity, Internal::LogCursor & in );
   std::vector<String> ( *keys )( Entity const & entity );
   /// Of a pointer or reference: what it leads to, or null; sets it to what a name leads to, to none
   /// where that is null or does not fit, and says whether it fits.
   Entity const * ( *target )( Entity const & entity, String const & key );
   bool ( *settle )( Entity & entity, String const & key, Ptr<Entity> const & target );
};

namespace Internal {

/// What the record of a collection says of the keys that it lists.
enum class EntryOp : uint8_t { set, gone, all };

constexpr bool owning( AttrKind kind ) {
   return kind == AttrKind::children || kind == AttrKind::orderedChildren ||
          kind == AttrKind::instances || kind == AttrKind::entries || kind == AttrKind::child;
}

template <typename K>
String keyBytes( K const & key ) {
   std::size_t const size = encodedSize( key );
   uint8_t bytes[64];
   if ( size <= sizeof bytes ) {
      encode( bytes, key );
      return { reinterpret_cast<char const *>( bytes ), size };
   }
   std::unique_ptr<uint8_t[]> const more( new uint8_t[size] );
   encode( more.get(), key );
   return { reinterpret_cast<char const *>( more.get() ), size };
}
template <typename K>
K keyOfBytes( String const & bytes ) {
   auto const * at = reinterpret_cast<uint8_t const *>( bytes.data() );
   return LogCursor{ at, at, bytes.size() }.next<K>();
}

inline void finish( LogCursor const & body ) {
   if ( body.spare != 0 ) [[unlikely]] {
      LogCursor::fail( body, "more bytes than the value has" );
   }
}

/// The head of a record whose body follows, and, once it has, its length.
std::size_t VEL_API beginRecord( NboAttrLog & log, uint16_t id );
void VEL_API endRecord( NboAttrLog & log, std::size_t begin );
/// The entity's name, counted from the top of the tree, which it has to share with the holder of the
/// pointer; false when it does not, and so has no name that could travel.
bool VEL_API pathOf( Entity const & target, Entity const & holder, Name & path );
[[nodiscard]] VEL_API Entity const * topOf( Entity const & entity );

/// The attribute of one row. `Get`, `Set` and `Del` are its captureless accessors.
template <typename T, AttrKind attrKind, typename Key, typename Type, typename Get, typename Set,
          typename Del>
struct Travel {
   static constexpr AttrKind kind = attrKind;
   static constexpr bool single = std::is_void_v<Key>;
   static constexpr bool pointing = kind == AttrKind::pointers || kind == AttrKind::reference;
   /// The flow keeps something of what could not be as the log says.
   static constexpr bool remembered = pointing || kind == AttrKind::entries;
   using Held = std::remove_cvref_t<decltype( Get{}( std::declval<T const &>() ) )>;

   static T & self( Entity & entity ) { return static_cast<T &>( entity ); }
   static T const & self( Entity const & entity ) { return static_cast<T const &>( entity ); }
   static decltype( auto ) held( Entity const & entity ) { return Get{}( self( entity ) ); }

   // What has no keys.

   static void write( Entity const & entity, uint16_t id, NboAttrLog & log ) {
      if constexpr ( kind == AttrKind::reference ) {
         std::size_t const begin = beginRecord( log, id );
         Entity const * target = held( entity );
         Name path;
         bool const there = target && pathOf( *target, entity, path );
         log.write( there );
         if ( there ) {
            log.write( path );
         }
         endRecord( log, begin );
      } else {
         Type const & value = held( entity );
         std::size_t const size = encodedSize( value );
         uint8_t * to = log.append( sizeof id + sizeof( uint32_t ) + size );
         to = encode( to, id );
         to = encode( to, static_cast<uint32_t>( size ) );
         encode( to, value );
      }
   }
   static void applySingle( Entity & entity, LogCursor body, FlowIn & flow ) {
      if constexpr ( kind == AttrKind::reference ) {
         bool const there = body.next<bool>();
         Name const path = there ? body.next<Name>() : Name();
         finish( body );
         if ( there ) {
            flow.point( entity, row(), Name(), path );
         } else {
            flow.forget( entity, row(), Name() );
            Set{}( self( entity ), nullptr );
         }
      } else {
         Type const value = body.next<Type>();
         finish( body );
         Set{}( self( entity ), value );
      }
   }

   // Collections. The value that follows a key: of children none, of entries their type's name, of
   // pointers the path of what they point to.

   using EntryValue =
      std::conditional_t<kind == AttrKind::entries || kind == AttrKind::pointers, Name, Type>;
   static constexpr bool valued = !owning( kind ) || kind == AttrKind::entries;

   template <typename K, typename V>
   static void appendEntry( [[maybe_unused]] Entity const & entity, K const & key, V const & value,
                            NboAttrLog & log ) {
      if constexpr ( kind == AttrKind::pointers ) {
         Name path;
         if ( pathOf( *value, entity, path ) ) {
            log.write( key );
            log.write( path );
         }
      } else {
         if constexpr ( kind == AttrKind::entries ) {
            log.write( key );
            log.write( Name( value->velModel().typeName ) );
         } else if constexpr ( valued ) {
            encode( encode( log.append( encodedSize( key ) + encodedSize( value ) ), key ), value );
         } else {
            log.write( key );
         }
      }
   }
   static bool has( Entity const & entity, String const & keyInBytes ) {
      if constexpr ( kind == AttrKind::child ) {
         return held( entity ).get() != nullptr;
      } else if constexpr ( kind == AttrKind::pointers ) {
         Entity const * const to = target( entity, keyInBytes );
         return to && topOf( *to ) == topOf( entity );
      } else {
         Key const key = keyOfBytes<Key>( keyInBytes );
         Held const & map = held( entity );
         if constexpr ( requires { map.contains( key ); } ) {
            return map.contains( key );
         } else {
            return map.find( key ) != map.end();
         }
      }
   }
   static void writeEntry( Entity const & entity, String const & keyInBytes, NboAttrLog & log ) {
      if constexpr ( kind != AttrKind::child ) {
         Key const key = keyOfBytes<Key>( keyInBytes );
         Held const & map = held( entity );
         if constexpr ( requires { map.at( key ), map.contains( key ); } ) {
            if ( map.contains( key ) ) {
               appendEntry( entity, key, map.at( key ), log );
            }
         } else if ( auto const found = map.find( key ); found != map.end() ) {
            appendEntry( entity, key, found->second, log );
         }
      }
   }
   /// All that an image says of it.
   static void writeWhole( Entity const & entity, uint16_t id, NboAttrLog & log ) {
      if constexpr ( single ) {
         write( entity, id, log );
      } else {
         std::size_t const begin = beginRecord( log, id );
         log.write( static_cast<uint8_t>( EntryOp::all ) );
         for ( auto const & entry : held( entity ) ) {
            appendEntry( entity, entry.first, entry.second, log );
         }
         endRecord( log, begin );
      }
   }
   static Entity const * child( Entity const & entity, String const & keyInBytes ) {
      if constexpr ( kind == AttrKind::child ) {
         return held( entity ).get();
      } else {
         return childOf( entity, keyOfBytes<Key>( keyInBytes ) );
      }
   }
   static Entity * childAt( Entity & entity, LogCursor & in ) {
      if constexpr ( kind == AttrKind::child ) {
         return const_cast<Type *>( held( entity ).get() );
      } else {
         return const_cast<Type *>( childOf( entity, in.next<Key>() ) );
      }
   }
   template <typename K>
   static Type const * childOf( Entity const & entity, K const & key ) {
      auto const & map = held( entity );
      auto const found = map.find( key );
      return found != map.end() ? found->second.get() : nullptr;
   }
   static std::vector<String> keys( Entity const & entity ) {
      std::vector<String> all;
      if constexpr ( single ) {
         if ( static_cast<bool>( held( entity ) ) ) {
            all.push_back( String() );
         }
      } else {
         for ( auto const & entry : held( entity ) ) {
            all.push_back( keyBytes( entry.first ) );
         }
      }
      return all;
   }

   static EntryOp takeOp( LogCursor & body ) {
      LogCursor const atOp = body;
      uint8_t const op = body.next<uint8_t>();
      if ( op > static_cast<uint8_t>( EntryOp::all ) ) {
         LogCursor::fail( atOp, "no such operation on a collection" );
      }
      return static_cast<EntryOp>( op );
   }
   static void applyChild( Entity & entity, LogCursor body, FlowIn & flow ) {
      EntryOp const op = takeOp( body );
      finish( body );
      if ( op == EntryOp::gone ) {
         Del{}( self( entity ) );
      } else {
         Set{}( self( entity ) );
         if ( Entity const * const made = child( entity, String() ) ) {
            flow.madeIs( *made );
         }
      }
   }
   static void applyEntries( Entity & entity, LogCursor body, FlowIn & flow ) {
      EntryOp const op = takeOp( body );
      check( op, body ); // first, so that a corrupt record changes nothing
      if ( op == EntryOp::all ) {
         if constexpr ( remembered ) {
            flow.forgetAll( entity, row() );
         }
         keepOnly( entity, body );
      }
      while ( body.spare != 0 ) {
         Key const key = body.next<Key>();
         if ( op == EntryOp::gone ) {
            if constexpr ( remembered ) {
               flow.forget( entity, row(), key );
            }
            Del{}( self( entity ), key );
         } else if constexpr ( valued ) {
            setEntry( entity, key, body.next<EntryValue>(), flow );
         } else {
            Set{}( self( entity ), key );
            madeIs( entity, key, flow );
         }
      }
   }
   template <typename K>
   static void madeIs( Entity const & entity, K const & key, FlowIn & flow ) {
      if ( Entity const * const made = childOf( entity, key ) ) {
         flow.madeIs( *made );
      }
   }
   static void check( EntryOp op, LogCursor body ) {
      while ( body.spare != 0 ) {
         [[maybe_unused]] LogCursor const atKey = body;
         [[maybe_unused]] Key const key = body.next<Key>();
         if constexpr ( requires { Held::hasPlace( key ); } ) {
            if ( !Held::hasPlace( key ) ) {
               LogCursor::fail( atKey, "a key that has no place" );
            }
         }
         if constexpr ( valued ) {
            if ( op != EntryOp::gone ) {
               [[maybe_unused]] LogCursor const atValue = body;
               [[maybe_unused]] EntryValue const value = body.next<EntryValue>();
               if constexpr ( requires { Held::hasRoomFor( value ); } ) {
                  if ( !Held::hasRoomFor( value ) ) {
                     LogCursor::fail( atValue, "a number out of range" );
                  }
               }
               if constexpr ( requires { Held::keyOf( value ); } ) {
                  if ( !( Held::keyOf( value ) == key ) ) {
                     LogCursor::fail( atValue, "a value of another key" );
                  }
               }
            }
         }
      }
   }
   /// Deletes every entry whose key the body does not list.
   static void keepOnly( Entity & entity, LogCursor body ) {
      if ( listsAll( entity, body ) ) {
         return;
      }
      HashMap<String, bool> listed;
      while ( body.spare != 0 ) {
         String const key = keyBytes( body.next<Key>() );
         if constexpr ( valued ) {
            static_cast<void>( body.next<EntryValue>() );
         }
         listed.try_emplace( key, true );
      }
      std::vector<Key> left;
      for ( auto const & entry : std::as_const( held( entity ) ) ) {
         if ( listed.find( keyBytes( entry.first ) ) == listed.end() ) {
            left.push_back( entry.first );
         }
      }
      for ( Key const & key : left ) {
         Del{}( self( entity ), key );
      }
   }
   /// Whether the body plainly lists every entry there is: in ascending order, so that none is counted
   /// twice. The image of a replica that has the same keys already needs no table of them.
   static bool listsAll( Entity const & entity, LogCursor body ) {
      Held const & map = held( entity );
      if constexpr ( requires( Key key ) { map.size(), key < key; } ) {
         std::size_t left = map.size();
         std::optional<Key> last;
         while ( left != 0 && body.spare != 0 ) {
            Key key = body.next<Key>();
            if ( last && !( *last < key ) ) {
               return false;
            }
            if constexpr ( requires { map.contains( key ); } ) {
               left -= map.contains( key );
            } else {
               left -= map.find( key ) != map.end();
            }
            last = std::move( key );
            if constexpr ( valued ) {
               if ( left != 0 ) {
                  static_cast<void>( body.next<EntryValue>() );
               }
            }
         }
         return left == 0;
      }
      return false;
   }
   template <typename K, typename V>
   static void setEntry( Entity & entity, K const & key, V const & value,
                         [[maybe_unused]] FlowIn & flow ) {
      if constexpr ( kind == AttrKind::entries ) {
         Type const * const there = childOf( entity, key );
         if ( there && there->velModel().typeName == value ) {
            return;
         }
         // What cannot be made here, or does not fit, is left out with all below it.
         Ptr<Type> const made = dynamicPtr<Type>( flow.newEntity( value, key ) );
         if ( made ) {
            flow.forget( entity, row(), key );
            Set{}( self( entity ), made );
            madeIs( entity, key, flow );
         } else {
            flow.unmadeIs( entity, row(), key, value );
            Del{}( self( entity ), key );
         }
      } else if constexpr ( kind == AttrKind::pointers ) {
         flow.point( entity, row(), key, value );
      } else if constexpr ( requires { Set{}( self( entity ), key, value ); } ) {
         Set{}( self( entity ), key, value );
      } else {
         Set{}( self( entity ), value ); // it carries its key
      }
   }

   // What points to entities that live elsewhere.

   static Entity const * target( Entity const & entity,
                                 [[maybe_unused]] String const & keyInBytes ) {
      if constexpr ( kind == AttrKind::reference ) {
         return held( entity );
      } else {
         return childOf( entity, keyOfBytes<Key>( keyInBytes ) );
      }
   }
   static bool settle( Entity & entity, [[maybe_unused]] String const & key,
                       Ptr<Entity> const & to ) {
      Ptr<Type> const fitting( dynamic_cast<Type *>( to.get() ) );
      if constexpr ( kind == AttrKind::reference ) {
         Set{}( self( entity ), fitting );
         return static_cast<bool>( fitting );
      } else {
         bool const fits = fitting && fitting->name() == key;
         fits ? Set{}( self( entity ), fitting ) : Del{}( self( entity ), key );
         return fits;
      }
   }

   static constexpr AttrApply apply = [] {
      if constexpr ( kind == AttrKind::child ) {
         return applyChild;
      } else if constexpr ( single ) {
         return applySingle;
      } else {
         return applyEntries;
      }
   }();
   static AttrTravel const & row();

   static constexpr AttrTravel operations() {
      AttrTravel ops{};
      ops.owned = owning( kind );
      ops.keyed = !single || kind == AttrKind::child;
      if constexpr ( kind != AttrKind::child ) {
         ops.write = writeWhole;
      }
      if constexpr ( !single || kind == AttrKind::child ) {
         ops.has = has;
         ops.writeEntry = writeEntry;
      }
      if constexpr ( owning( kind ) ) {
         ops.child = child;
         ops.childAt = childAt;
      }
      if constexpr ( pointing ) {
         ops.target = target;
         ops.settle = settle;
      }
      if constexpr ( owning( kind ) || pointing ) {
         ops.keys = keys;
      }
      return ops;
   }
};

template <typename Row>
inline constexpr AttrTravel attrTravel = Row::operations();

template <typename T, AttrKind attrKind, typename Key, typename Type, typename Get, typename Set,
          typename Del>
AttrTravel const & Travel<T, attrKind, Key, Type, Get, Set, Del>::row() {
   return attrTravel<Travel>;
}

/// What an adaptor's observer calls for each change; `Handlers` are those of the entity's type.
template <typename Handlers>
class Marker : public Handlers {
 public:
   NboAttrLogSa * velSa = nullptr;

 protected:
   void velMark( uint16_t attribute ) { velSa->mark( attribute ); }
   void velMarkChild( uint16_t attribute ) { velSa->markKey( attribute, String() ); }
   template <typename K>
   void velMarkKey( uint16_t attribute, K const & key ) {
      velSa->markKey( attribute, keyBytes( key ) );
   }
};

/// The adaptor for entities of type T.
template <typename T>
class TypedSa final : public NboAttrLogSa {
   static_assert( T::velAttrEnd <= 256, "an entity has at most 256 attributes" );

 public:
   TypedSa( T const & entity, FlowOut & flow ) : NboAttrLogSa( flow, T::velTypeModel(), order_ ) {
      observer_.velSa = this;
      observer_.notifierIs( &entity );
   }
   [[nodiscard]] Entity const * entity() const override { return observer_.notifier(); }

 private:
   Order order_[T::velAttrEnd] = {};
   typename T::template VelMarks<Marker<typename T::NotifieeConst>> observer_;
};

/// Sees every row of entity type T, and writes each into an image: in one go, since most of an image is
/// many small attributes.
template <typename T>
struct ImageWriter {
   template <AttrKind kind, typename Key, typename Type, typename Getter, typename Setter,
             typename Deleter>
   [[gnu::always_inline]] void attribute( char const *, Getter, Setter, Deleter ) {
      if constexpr ( kind != AttrKind::derived && !owning( kind ) ) {
         Travel<T, kind, Key, Type, Getter, Setter, Deleter>::writeWhole( entity, id, log );
      }
      ++id;
   }
   Entity const & entity;
   NboAttrLog & log;
   uint16_t id = T::velLevel << 8;
};

template <typename T>
void writeImage( Entity const & entity, NboAttrLog & log ) {
   T::velAttributes( ImageWriter<T>{ entity, log } );
}

template <typename T>
Ptr<NboAttrLogSa> newAdaptor( Entity const & entity, FlowOut & flow ) {
   return Ptr<NboAttrLogSa>( new TypedSa<T>( static_cast<T const &>( entity ), flow ) );
}

} // namespace Internal

} // namespace Vel
