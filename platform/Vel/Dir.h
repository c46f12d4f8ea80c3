#pragma once

#include <Vel/Entity.h>

namespace Vel {

/// A directory: entities of any type under their own names. It owns them.
class VEL_API Dir : public Entity {
 public:
   explicit Dir( Name name ) : Entity( std::move( name ) ) {}
   VEL_ENTITY( Dir, Entity,
      ( Entries, entry, onEntry, Entity ) );
};

VEL_API Ptr<Dir> dirFactory( Name name );

} // namespace Vel
