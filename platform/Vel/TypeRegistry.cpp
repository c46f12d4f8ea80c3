#include <Vel/Entity.h>
#include <Vel/TypeRegistry.h>

namespace Vel {

TypeRegistration *& TypeRegistration::first() {
   static TypeRegistration * list = nullptr;
   return list;
}

TypeRegistration::TypeRegistration( TypeInfo const & info ) : info_( info ), next_( first() ) {
   first() = this;
}

TypeRegistration::~TypeRegistration() {
   TypeRegistration ** at = &first();
   while ( *at && *at != this ) {
      at = &( *at )->next_;
   }
   if ( *at ) {
      *at = next_;
   }
}

TypeInfo const * TypeRegistry::type( std::string_view name ) {
   TypeInfo const * found = nullptr;
   forEach( [&]( TypeInfo const & info ) {
      if ( info.name == name ) {
         found = &info;
      }
   } );
   return found;
}

Ptr<Entity> TypeRegistry::newEntity( std::string_view typeName, Name const & name ) {
   TypeInfo const * info = type( typeName );
   return info && info->entity && info->entity->factory ? info->entity->factory( name ) : nullptr;
}

} // namespace Vel
