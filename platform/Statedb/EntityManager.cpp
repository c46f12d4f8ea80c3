#include <Statedb/EntityManager.h>
#include <Vel/DefineEntity.h>

#include <algorithm>
#include <map>

namespace Statedb {

VEL_ENUM_DEFINE( MountMode )
VEL_ENUM_DEFINE( MountState )
VEL_ENTITY_DEFINE( Mount )
VEL_ENTITY_DEFINE( MountGroup )

Mount::Mount( Vel::Name path, Vel::Name typeName, MountFilter filter, MountMode mode,
              Vel::Name place )
   : Vel::Entity( std::move( path ) ), typeName_( std::move( typeName ) ), mode_( mode ),
     filter_( std::move( filter ) ), place_( std::move( place ) ) {}

bool MountGroup::complete() const {
   return std::all_of( mountMap().begin(), mountMap().end(), []( auto const & entry ) {
      return entry.second->state() == MountState::mounted;
   } );
}

std::vector<Vel::Name> MountGroup::paths() const {
   std::vector<Vel::Name> paths;
   for ( auto const & entry : mountMap() ) {
      paths.push_back( entry.first );
   }
   return paths;
}

// Paths

namespace {

/// Takes the first name off a path.
Vel::Name takeName( std::string_view & path ) {
   std::size_t const end = std::min( path.find( '/' ), path.size() );
   Vel::Name const name( path.substr( 0, end ) );
   path.remove_prefix( std::min( end + 1, path.size() ) );
   return name;
}

} // namespace

Vel::Name lastName( Vel::Name const & path ) {
   return path.view().substr( path.view().rfind( '/' ) + 1 );
}

bool isOfType( Vel::Entity const & entity, std::string_view typeName ) {
   Vel::EntityModel const * model = &entity.velModel();
   while ( model && model->typeName != typeName ) {
      model = model->base;
   }
   return model != nullptr;
}

class PathWatch::Step : public Vel::Dir::NotifieeConst {
 public:
   Step( PathWatch & watch, Vel::Dir & dir, Vel::Name name )
      : watch_( watch ), name_( std::move( name ) ) {
      notifierIs( &dir );
   }
   void onEntry( Vel::Name const & name ) override {
      if ( name == name_ ) {
         watch_.look(); // which may be the end of this step
      }
   }

 private:
   PathWatch & watch_;
   Vel::Name name_;
};

PathWatch::PathWatch( Vel::Ptr<Vel::Dir> root, Vel::Name path, std::function<void()> then )
   : root_( std::move( root ) ), path_( std::move( path ) ) {
   look();
   then_ = std::move( then );
}

PathWatch::~PathWatch() = default;

void PathWatch::look() {
   auto const before = std::exchange( steps_, {} );
   std::string_view rest = path_;
   Vel::Ptr<Vel::Entity> at = root_;
   while ( at && !rest.empty() ) {
      auto const dir = Vel::dynamicPtr<Vel::Dir>( at );
      Vel::Name const name = takeName( rest );
      if ( dir ) {
         steps_.push_back( std::make_unique<Step>( *this, *dir, name ) );
      }
      at = dir ? dir->entry( name ) : nullptr;
   }
   if ( !( at == entity_ ) ) {
      entity_ = at;
      if ( auto const then = then_ ) {
         then();
      }
   }
}

GroupWatch::GroupWatch( Vel::Ptr<MountGroup> group, Tell begin, Tell end )
   : group_( std::move( group ) ), begin_( std::move( begin ) ), end_( std::move( end ) ) {
   notifierIs( group_ );
   for ( Vel::Name const & path : group_->paths() ) {
      onMount( path );
   }
}

void GroupWatch::onMount( Vel::Name const & path ) {
   Vel::Ptr<Mount const> const next = group_->mount( path );
   auto const found = mounts_.find( path );
   if ( found != mounts_.end() ) {
      if ( found->second == next ) {
         return;
      }
      auto const ended = std::move( found->second );
      mounts_.erase( found );
      end_( ended ); // where the group may change again
   }
   Vel::Ptr<Mount> const mount = group_->mount( path );
   if ( mount && mounts_.try_emplace( path, mount ).second ) {
      begin_( mount );
   }
}

// Serving mounts

/// One mount that is served.
class EntityManager::Served {
 public:
   Served( EntityManager & manager, Vel::Ptr<Mount> served )
      : mount( std::move( served ) ), manager_( manager ),
        watch_( manager.root_, mount->name(), [this] { look(); } ) {}
   Served( Served const & ) = delete;
   Served & operator=( Served const & ) = delete;
   ~Served() { is( MountState::waiting, nullptr ); }

   void look() {
      Vel::Ptr<Vel::Entity> entity = watch_.entity();
      Vel::TypeInfo const * const type = Vel::TypeRegistry::type( mount->typeName() );
      bool const writing = mount->mode() == MountMode::write;
      if ( !type || !type->entity || ( writing && !entity && !type->entity->factory ) ) {
         is( MountState::unknownType, nullptr );
      } else if ( entity && !isOfType( *entity, mount->typeName() ) ) {
         is( MountState::wrongType, nullptr );
      } else if ( writing && manager_.writtenByAnother( *this ) ) {
         is( MountState::taken, nullptr );
      } else if ( entity ) {
         is( MountState::mounted, entity );
      } else if ( !writing ) {
         is( MountState::waiting, nullptr );
      } else if ( !manager_.entityIs( mount->name(),
                                      type->entity->factory( lastName( mount->name() ) ) ) ) {
         is( MountState::taken, nullptr ); // else the watch has seen the new entity, and come here
      }
   }

   Vel::Ptr<Mount> const mount;

 private:
   /// The target is there before, and until after, it is said to be.
   void is( MountState state, Vel::Ptr<Vel::Entity> const & target ) {
      auto const keep = mount; // handlers may end the mount
      if ( state == MountState::mounted ) {
         keep->targetIs( target );
         keep->stateIs( state );
      } else {
         keep->stateIs( state );
         keep->targetIs( nullptr );
      }
   }

   EntityManager & manager_;
   PathWatch watch_;
};

/// The mounts of one group.
class EntityManager::Group {
 public:
   Group( EntityManager & manager, Vel::Ptr<MountGroup> const & group )
      : manager_( manager ), watch_(
                                group, [this]( auto const & mount ) { begin( mount ); },
                                [this]( auto const & mount ) { end( mount ); } ) {}
   [[nodiscard]] bool writes( Vel::Name const & path, Served const & besides ) const {
      auto const found = served_.find( path );
      return found != served_.end() && found->second.get() != &besides &&
             found->second->mount->mode() == MountMode::write &&
             found->second->mount->state() == MountState::mounted;
   }
   [[nodiscard]] Vel::Ptr<MountGroup> const & group() const { return watch_.group(); }

 private:
   void begin( Vel::Ptr<Mount> const & mount ) {
      auto const served = std::make_shared<Served>( manager_, mount );
      served_.emplace( mount->name(), served );
      served->look();
   }
   void end( Vel::Ptr<Mount> const & mount ) {
      auto const found = served_.find( mount->name() );
      auto const ended = std::move( found->second );
      served_.erase( found );
   }

   EntityManager & manager_;
   std::map<Vel::Name, std::shared_ptr<Served>> served_;
   GroupWatch watch_;
};

EntityManager::EntityManager() : root_( Vel::dirFactory( "" ) ) {}
EntityManager::~EntityManager() = default;

Vel::Ptr<Vel::Entity> EntityManager::entity( Vel::Name const & path ) const {
   return PathWatch( root_, path, nullptr ).entity();
}

bool EntityManager::entityIs( Vel::Name const & path, Vel::Ptr<Vel::Entity> const & entity ) {
   std::string_view rest = path;
   Vel::Ptr<Vel::Dir> dir = root_;
   for ( Vel::Name name = takeName( rest ); !rest.empty(); name = takeName( rest ) ) {
      if ( !dir->entryHas( name ) ) {
         dir->entryIs( Vel::dirFactory( name ) );
      }
      dir = Vel::dynamicPtr<Vel::Dir>( dir->entry( name ) );
      if ( !dir ) {
         return false;
      }
   }
   Vel::Ptr<Vel::Entity> const there = dir->entry( entity->name() );
   if ( !( entity->name() == lastName( path ) ) || ( there && !( there == entity ) ) ) {
      return false;
   }
   dir->entryIs( entity );
   return true;
}

void EntityManager::entityDel( Vel::Name const & path ) {
   Vel::Ptr<Vel::Entity> const gone = entity( path );
   if ( auto * dir = gone ? dynamic_cast<Vel::Dir *>( gone->parent() ) : nullptr ) {
      dir->entryDel( gone->name() );
   }
}

void EntityManager::mountGroupIs( Vel::Ptr<MountGroup> const & group ) {
   groups_.push_back( std::make_unique<Group>( *this, group ) );
}

void EntityManager::mountGroupDel( Vel::Ptr<MountGroup> const & group ) {
   auto const found = std::find_if( groups_.begin(), groups_.end(),
                                    [&]( auto const & one ) { return one->group() == group; } );
   if ( found != groups_.end() ) {
      auto const ended = std::move( *found );
      groups_.erase( found );
   }
}

bool EntityManager::writtenByAnother( Served const & mount ) const {
   return std::any_of( groups_.begin(), groups_.end(), [&]( auto const & group ) {
      return group->writes( mount.mount->name(), mount );
   } );
}

} // namespace Statedb
