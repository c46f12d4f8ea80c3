#pragma once

#include <Vel/AttrTravel.h>
#include <Vel/Define.h>
#include <Vel/Entity.h>

namespace Vel::Internal {

// What an attribute holds, as text: for an entity its full name, for a collection its contents.

template <typename T>
String attrText( T const & value );

inline String attrText( Entity const * entity ) {
   return entity ? stringForm( entity->fullName() ) : String( "None" );
}
template <typename T>
String attrText( Ptr<T> const & entity ) {
   return attrText( static_cast<Entity const *>( entity.get() ) );
}

template <typename T>
String attrText( T const & value ) {
   if constexpr ( std::is_pointer_v<T> ) {
      return attrText( static_cast<Entity const *>( value ) );
   } else if constexpr ( requires( Entity const * e ) { e = value.begin()->second.get(); } ) {
      String text = "[";
      for ( auto const & entry : value ) {
         text += text.size() > 1 ? ", " : "";
         text += attrText( entry.second );
      }
      return text += "]";
   } else {
      return stringForm( value );
   }
}

/// The child of that name among what an attribute owns: a collection's by its name, a single one
/// whatever the name.
template <AttrKind kind, typename T>
Ptr<Entity const> childNamed( T const & owned, Name const & name ) {
   if constexpr ( kind == AttrKind::child ) {
      return Ptr<Entity const>( owned.get() );
   } else if constexpr ( kind == AttrKind::entries ) {
      auto const found = owned.find( name );
      return found != owned.end() ? Ptr<Entity const>( found->second.get() ) : nullptr;
   } else {
      for ( auto const & entry : owned ) {
         if ( entry.second->name() == name ) {
            return Ptr<Entity const>( entry.second.get() );
         }
      }
      return nullptr;
   }
}

/// Collects the rows of entity type T into its attribute table.
template <typename T, std::size_t N>
struct AttrTableBuilder {
   template <AttrKind kind, typename Key, typename Type, typename Getter, typename Setter,
             typename Deleter>
   constexpr void attribute( char const * name, Getter, Setter, Deleter ) {
      constexpr bool owns = owning( kind );
      AttrInfo & row = table[count++];
      row.name = name;
      row.kind = kind;
      row.typeName = typeName<Type>();
      if constexpr ( !std::is_void_v<Key> ) {
         row.keyTypeName = typeName<Key>();
      }
      row.text = []( Entity const & e ) {
         return String( attrText( Getter{}( static_cast<T const &>( e ) ) ) );
      };
      if constexpr ( kind != AttrKind::derived ) {
         using Row = Travel<T, kind, Key, Type, Getter, Setter, Deleter>;
         row.travel = &attrTravel<Row>;
         applies[count - 1] = Row::apply;
         if constexpr ( owns || Row::pointing ) {
            links[linkCount++] = static_cast<uint8_t>( count - 1 );
         }
      }
      if constexpr ( owns ) {
         row.child = []( Entity const & e, Name const & childName ) -> Ptr<Entity const> {
            return childNamed<kind>( Getter{}( static_cast<T const &>( e ) ), childName );
         };
      }
   }
   std::array<AttrInfo, N> table{};
   std::array<AttrApply, N> applies{};
   std::array<uint8_t, N> links{};
   std::size_t count = 0;
   std::size_t linkCount = 0;
};

template <typename T>
inline constexpr auto attributeTable = [] {
   AttrTableBuilder<T, T::velOwnAttributes()> builder;
   T::velAttributes( builder );
   return builder;
}();

/// A type's factory as the registry keeps it; null for a type without one.
template <auto... factory>
inline constexpr Ptr<Entity> ( *entityFactory )( Name ) = nullptr;
template <auto factory>
inline constexpr Ptr<Entity> ( *entityFactory<factory> )( Name ) =
   []( Name name ) { return Ptr<Entity>( factory( std::move( name ) ) ); };

} // namespace Vel::Internal

/// Once for each entity type, in its namespace. With the name of a factory, declared in the header
/// as `Vel::Ptr< T > tFactory( Vel::Name name )`, it defines that too, and a directory can make the
/// type.
#define VEL_ENTITY_DEFINE( T, ... )                                                                \
   __VA_OPT__( Vel::Ptr<T> __VA_ARGS__( Vel::Name name ) {                                         \
      return Vel::Ptr<T>( new T( std::move( name ) ) );                                            \
   } )                                                                                             \
   Vel::EntityModel const & T::velModel() const {                                                  \
      return velTypeModel();                                                                       \
   }                                                                                               \
   Vel::EntityModel const & T::velTypeModel() {                                                    \
      static Vel::EntityModel const model{ Vel::typeName<T>(),                                     \
                                           &VelBase::velTypeModel(),                               \
                                           Vel::Internal::attributeTable<T>.table.data(),          \
                                           Vel::Internal::attributeTable<T>.count,                 \
                                           Vel::Internal::entityFactory<__VA_ARGS__>,              \
                                           T::velLevel,                                            \
                                           VelBase::velAttrEnd,                                    \
                                           Vel::Internal::newAdaptor<T>,                           \
                                           Vel::Internal::writeImage<T>,                           \
                                           Vel::Internal::attributeTable<T>.applies.data(),        \
                                           Vel::Internal::attributeTable<T>.links.data(),          \
                                           Vel::Internal::attributeTable<T>.linkCount };           \
      return model;                                                                                \
   }                                                                                               \
   static Vel::TypeRegistration const VEL_UNIQUE_( velRegistered )( T::velTypeModel() );
