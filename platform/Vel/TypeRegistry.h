#pragma once

#include <Vel/Enum.h>
#include <Vel/Ptr.h>
#include <Vel/String.h>

#include <array>
#include <string_view>

namespace Vel {

class Entity;
class FlowIn;
class FlowOut;
class NboAttrLog;
class NboAttrLogSa;
struct AttrTravel;
namespace Internal {
struct LogCursor;
}

/// A field of a value type.
struct FieldModel {
   std::string_view name;
   std::string_view typeName;
};

/// What the framework knows of a value type: its qualified name and its fields as declared.
struct ValueModel {
   std::string_view typeName;
   FieldModel const * fields;
   std::size_t count;

   [[nodiscard]] FieldModel const * begin() const { return fields; }
   [[nodiscard]] FieldModel const * end() const { return fields + count; }
};

/// The kinds of entity attribute, as <Vel/Entity.h> describes them.
enum class AttrKind : uint8_t {
   plain,
   constant,
   counter,
   values,
   orderedValues,
   children,
   orderedChildren,
   instances,
   pointers,
   entries,
   child,
   reference,
   derived,
};

/// One attribute of an entity type.
struct AttrInfo {
   std::string_view name;
   AttrKind kind;
   std::string_view typeName;    // of the value, or of the child or entry
   std::string_view keyTypeName; // of a collection's key; else empty
   /// What the attribute holds, as text; of a pointer or child, its full name or None.
   String ( *text )( Entity const & entity );
   /// The child of that name that the attribute owns; the function is null where it owns none.
   Ptr<Entity const> ( *child )( Entity const & entity, Name const & name );
   /// How it is copied to another process; null for what is not.
   AttrTravel const * travel = nullptr;
};

/// Takes the body of an attribute's record and applies it; throws, with nothing applied, when it is
/// corrupt.
using AttrApply = void ( * )( Entity & entity, Internal::LogCursor body, FlowIn & flow );

/// What the framework knows of an entity type.
struct EntityModel {
   std::string_view typeName;
   EntityModel const * base;    // null for Vel::Entity itself
   AttrInfo const * attributes; // its own, numbered after those of its base
   std::size_t count;
   Ptr<Entity> ( *factory )( Name name ); // null when a name alone does not make one
   uint16_t level = 0;                    // how many types it derives from
   uint16_t first = 0;                    // number of the first attribute
   /// Makes an adaptor for entities of the type.
   Ptr<NboAttrLogSa> ( *adaptor )( Entity const & entity, FlowOut & flow ) = nullptr;
   /// Writes what an image says of the type's own attributes, but for children.
   void ( *writeImage )( Entity const & entity, NboAttrLog & log ) = nullptr;
   /// One for each attribute, null for those that are not copied; dense, as an image needs most of them.
   AttrApply const * applies = nullptr;
   /// The indices of those that own or point to entities.
   uint8_t const * links = nullptr;
   std::size_t linkCount = 0;

   [[nodiscard]] AttrInfo const * begin() const { return attributes; }
   [[nodiscard]] AttrInfo const * end() const { return attributes + count; }
};

/// One registered type; one of the three models is there.
struct TypeInfo {
   std::string_view name;
   EnumModel const * enumeration = nullptr;
   ValueModel const * value = nullptr;
   EntityModel const * entity = nullptr;
};

/// Every model type of the process, from the moment that its library is loaded.
class VEL_API TypeRegistry {
 public:
   /// The type of that qualified name, such as "Xcvr::DomInfo", or null.
   [[nodiscard]] static TypeInfo const * type( std::string_view name );
   /// A new entity of that type; null when no such type can be made from a name alone.
   [[nodiscard]] static Ptr<Entity> newEntity( std::string_view typeName, Name const & name );
   /// Calls `visit` for each type, in no particular order.
   template <typename Visitor>
   static void forEach( Visitor && visit );
};

/// Puts a type into the registry while it lives; made by the define macros, one a type.
class VEL_API TypeRegistration {
 public:
   explicit TypeRegistration( EnumModel const & model )
      : TypeRegistration( TypeInfo{ .name = model.typeName, .enumeration = &model } ) {}
   explicit TypeRegistration( ValueModel const & model )
      : TypeRegistration( TypeInfo{ .name = model.typeName, .value = &model } ) {}
   explicit TypeRegistration( EntityModel const & model )
      : TypeRegistration( TypeInfo{ .name = model.typeName, .entity = &model } ) {}
   TypeRegistration( TypeRegistration const & ) = delete;
   TypeRegistration & operator=( TypeRegistration const & ) = delete;
   ~TypeRegistration();

 private:
   friend class TypeRegistry;
   explicit TypeRegistration( TypeInfo const & info );
   [[nodiscard]] static TypeRegistration *& first();

   TypeInfo info_;
   TypeRegistration * next_;
};

template <typename Visitor>
void TypeRegistry::forEach( Visitor && visit ) {
   for ( TypeRegistration * at = TypeRegistration::first(); at; at = at->next_ ) {
      visit( at->info_ );
   }
}

} // namespace Vel
