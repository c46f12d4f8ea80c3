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

void Mount::servedIs( MountState state, Vel::Ptr<Vel::Entity> const & target ) {
   Vel::Hold const hold( *this );
   if ( state == MountState::mounted ) {
      targetIs( target );
      if ( this->target() == target.get() ) {
         stateIs( state );
      }
   } else {
      stateIs( state );
      if ( this->state() == state ) {
         targetIs( nullptr );
      }
   }
}

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

bool isPath( Vel::Name const & path ) {
   std::string_view const text = path;
   return !text.starts_with( '/' ) && !text.ends_with( '/' ) &&
          text.find( "//" ) == std::string_view::npos;
}

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
   auto before = std::exchange( steps_, {} );
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
   if ( !at || !( at == entity_ ) ) {
      entity_ = at;
      before.clear(); // `then` may be the end of the watch, and they must not come here again
      if ( auto const then = then_ ) {
         then();
      }
   }
}

GroupWatch::GroupWatch( Vel::Ptr<MountGroup> group, Tell begin, Tell end )
   : group_( std::move( group ) ), begin_( std::move( begin ) ), end_( std::move( end ) ) {
   notifierIs( group_ );
}

void GroupWatch::beginAll() {
   for ( Vel::Name const & path : group_->paths() ) {
      onMount( path );
   }
}

void GroupWatch::endAll() {
   auto const self = shared_from_this();
   notifierIs( nullptr );
   while ( !mounts_.empty() ) {
      end_( mounts_.extract( mounts_.begin() ).mapped() );
   }
}

void GroupWatch::onMount( Vel::Name const & changed ) {
   auto const self = shared_from_this();
   Vel::Name const path = changed;
   if ( auto const found = mounts_.find( path ); found != mounts_.end() ) {
      if ( found->second == group_->mount( path ) ) {
         return;
      }
      end_( mounts_.extract( found ).mapped() );
   }
   // Those who have been told of the end may have changed it again, and then it has begun already.
   Vel::Ptr<Mount> const mount = group_->mount( path );
   if ( notifier() && mount && mounts_.try_emplace( path, mount ).second ) {
      begin_( mount );
   }
}

// Serving mounts

/// One mount that is served, until it is ended. Whoever is told of it may end it.
class EntityManager::Served : public std::enable_shared_from_this<Served> {
 public:
   Served( EntityManager & manager, Vel::Ptr<Mount> served, WhatIsMade whatIsMade )
      : mount( std::move( served ) ), manager_( manager ), whatIsMade_( whatIsMade ),
        watch_( manager.root_, mount->name(), [this] { look(); } ) {}
   Served( Served const & ) = delete;
   Served & operator=( Served const & ) = delete;

   void look() {
      auto const self = shared_from_this();
      Vel::Ptr<Vel::Entity> const entity = watch_.entity();
      Vel::TypeInfo const * const type = Vel::TypeRegistry::type( mount->typeName() );
      bool const writing = mount->mode() == MountMode::write;
      if ( ended_ || ( making_ && !entity ) ) {
         return;
      }
      if ( !isPath( mount->name() ) ) {
         is( MountState::refused );
      } else if ( !type || !type->entity || ( writing && !entity && !type->entity->factory ) ) {
         is( MountState::unknownType );
      } else if ( entity && !isOfType( *entity, mount->typeName() ) ) {
         is( MountState::wrongType );
      } else if ( writing && manager_.writtenByAnother( *this ) ) {
         is( MountState::taken );
      } else if ( entity ) {
         is( MountState::mounted, entity );
      } else if ( writing ) {
         make( *type->entity );
      } else {
         is( MountState::waiting );
      }
   }
   void end() {
      ended_ = true;
      is( MountState::waiting );
      if ( mount->mode() == MountMode::write ) {
         takeOutMade();
         manager_.writerLeft( mount->name() );
      }
   }
   [[nodiscard]] bool writes() const {
      return mount->mode() == MountMode::write &&
             ( making_ || mount->state() == MountState::mounted );
   }

   Vel::Ptr<Mount> const mount;

 private:
   void is( MountState state, Vel::Ptr<Vel::Entity> const & target = nullptr ) {
      mount->servedIs( state, target );
   }
   /// The watch sees the new entity, and looks at it.
   void make( Vel::EntityModel const & model ) {
      auto const made = model.factory( lastName( mount->name() ) );
      made_.targetIs( made.get() );
      making_ = true;
      bool const placed = manager_.entityIs( mount->name(), made );
      making_ = false;
      if ( ended_ ) {
         takeOutMade();
      } else if ( !watch_.entity() ) {
         placed ? look() : is( MountState::taken );
      }
   }
   void takeOutMade() {
      if ( made_.get() && whatIsMade_ == WhatIsMade::goes &&
           manager_.entity( mount->name() ).get() == made_.get() ) {
         manager_.entityDel( mount->name() );
      }
   }

   EntityManager & manager_;
   WhatIsMade whatIsMade_;
   bool ended_ = false;
   bool making_ = false;
   Vel::Ref<Vel::Entity> made_;
   PathWatch watch_;
};

/// The mounts of one group. Whoever is told of one may end it.
class EntityManager::Group : public std::enable_shared_from_this<Group> {
 public:
   Group( EntityManager & manager, Vel::Ptr<MountGroup> const & group, WhatIsMade whatIsMade )
      : manager_( manager ), whatIsMade_( whatIsMade ),
        watch_( std::make_shared<GroupWatch>(
           group, [this]( auto const & mount ) { begin( mount ); },
           [this]( auto const & mount ) { end( mount ); } ) ) {}
   void beginAll() { watch_->beginAll(); }
   void endAll() { watch_->endAll(); }
   [[nodiscard]] std::shared_ptr<Served> served( Vel::Name const & path ) const {
      auto const found = served_.find( path );
      return found != served_.end() ? found->second : nullptr;
   }
   [[nodiscard]] Vel::Ptr<MountGroup> const & group() const { return watch_->group(); }

 private:
   void begin( Vel::Ptr<Mount> const & mount ) {
      auto const self = shared_from_this();
      auto const served = std::make_shared<Served>( manager_, mount, whatIsMade_ );
      served_.emplace( mount->name(), served );
      served->look();
   }
   void end( Vel::Ptr<Mount> const & mount ) {
      auto const self = shared_from_this();
      served_.extract( mount->name() ).mapped()->end();
   }

   EntityManager & manager_;
   WhatIsMade whatIsMade_;
   std::map<Vel::Name, std::shared_ptr<Served>> served_;
   std::shared_ptr<GroupWatch> watch_;
};

EntityManager::EntityManager() : root_( Vel::dirFactory( "" ) ) {}
EntityManager::~EntityManager() {
   while ( !groups_.empty() ) {
      mountGroupDel( groups_.back()->group() );
   }
}

Vel::Ptr<Vel::Entity> EntityManager::entity( Vel::Name const & path ) const {
   return PathWatch( root_, path, nullptr ).entity();
}

bool EntityManager::entityIs( Vel::Name path, Vel::Ptr<Vel::Entity> entity ) {
   if ( path.empty() || !isPath( path ) ) {
      return false;
   }
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

void EntityManager::mountGroupIs( Vel::Ptr<MountGroup> const & group, WhatIsMade whatIsMade ) {
   auto const served = std::make_shared<Group>( *this, group, whatIsMade );
   groups_.push_back( served );
   served->beginAll();
}

void EntityManager::mountGroupDel( Vel::Ptr<MountGroup> const & group ) {
   auto const found = std::find_if( groups_.begin(), groups_.end(),
                                    [&]( auto const & one ) { return one->group() == group; } );
   if ( found != groups_.end() ) {
      auto const ended = std::move( *found );
      groups_.erase( found );
      ended->endAll();
   }
}

bool EntityManager::writtenByAnother( Served const & mount ) const {
   return std::any_of( groups_.begin(), groups_.end(), [&]( auto const & group ) {
      auto const other = group->served( mount.mount->name() );
      return other && other.get() != &mount && other->writes();
   } );
}

/// Another one may write now.
void EntityManager::writerLeft( Vel::Name const & path ) {
   for ( auto const & group : std::vector( groups_ ) ) {
      if ( auto const other = group->served( path );
           other && other->mount->state() == MountState::taken ) {
         other->look();
      }
   }
}

} // namespace Statedb
