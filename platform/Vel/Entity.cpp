#include <Vel/Entity.h>

#include <Vel/DefineEntity.h>
#include <Vel/Dir.h>

#include <functional>

namespace Vel {

PtrInterface::~PtrInterface() = default;

// Observers

void NotifieeBase::velNotifierIs( Entity const * entity, uint16_t attributes ) {
   if ( entity == notifier_ ) {
      return;
   }
   detach();
   if ( entity ) {
      notifier_ = entity;
      attributes_ = attributes & 0x7fff;
      isRegisteredNotifieeIs( registered_ );
      entity->observers_.add( this );
   }
}

void NotifieeBase::detach() {
   if ( notifier_ ) {
      notifier_->observers_.remove( this );
      notifier_ = nullptr;
   }
}

void ObserverList::add( NotifieeBase * observer ) {
   observer->order_ = ++changes_;
   observer->next_ = nullptr;
   if ( first_ ) {
      observer->previous_ = std::exchange( first_->previous_, observer );
      observer->previous_->next_ = observer;
   } else {
      first_ = observer->previous_ = observer;
   }
}

void ObserverList::remove( NotifieeBase * observer ) {
   ++changes_;
   if ( observer->next_ ) {
      observer->next_->previous_ = observer->previous_;
   } else {
      first_->previous_ = observer->previous_; // the last one
   }
   if ( observer == first_ ) {
      first_ = observer->next_;
   } else {
      observer->previous_->next_ = observer->next_;
   }
}

NotifieeBase * ObserverList::after( uint64_t order ) const {
   NotifieeBase * at = first_;
   while ( at && at->order_ <= order ) {
      at = at->next_;
   }
   return at;
}

ObserverList::~ObserverList() {
   for ( NotifieeBase * at = first_; at; at = at->next_ ) {
      at->notifier_ = nullptr;
   }
}

// Entities

Entity::~Entity() = default;

void Entity::velNullRefused( std::string_view typeName, std::string_view attribute ) {
   std::string const text = "null _" + std::string( attribute ) + " parameter to mutator for " +
                            std::string( typeName ) + "::" + std::string( attribute ) +
                            " not allowed";
   assertionFailed( __FILE__, __LINE__, text.c_str() );
}

void Entity::velAdopt( Entity & child, Name const & attribute, void const * home, Path path ) {
   for ( Entity const * ancestor = this; ancestor; ancestor = ancestor->parent_ ) {
      VEL_ASSERT_TEXT( ancestor != &child, "an entity cannot be below itself" );
   }
   child.parent_ = this;
   child.parentAttrName_ = attribute;
   child.home_ = home;
   child.path_ = path;
}

Name Entity::fullName() const {
   if ( !parent_ ) {
      return name_;
   }
   Name result = parent_->fullName() + "/";
   if ( path_ == Path::throughAttribute ) {
      result += parentAttrName_ + "/";
   }
   return result += name_;
}

namespace {

/// The child that an attribute holds under the start of a path, which is then taken off the path.
Ptr<Entity const> childUnder( AttrInfo const & attribute, Entity const & entity,
                              std::string_view & path ) {
   std::size_t end = 0;
   do {
      end = path.find( '/', end + 1 );
      std::string_view const name = path.substr( 0, end );
      if ( Ptr<Entity const> child = attribute.child( entity, name ) ) {
         path.remove_prefix( std::min( name.size() + 1, path.size() ) );
         return child;
      }
   } while ( end != std::string_view::npos );
   return nullptr;
}

/// The same of whatever attribute the path leads to.
Ptr<Entity const> childUnder( Entity const & entity, std::string_view & path ) {
   std::string_view const first = path.substr( 0, path.find( '/' ) );
   for ( EntityModel const * model = &entity.velModel(); model; model = model->base ) {
      for ( AttrInfo const & attribute : *model ) {
         if ( !attribute.child ) {
            continue;
         }
         if ( attribute.kind == AttrKind::entries ) {
            if ( Ptr<Entity const> entry = childUnder( attribute, entity, path ) ) {
               return entry;
            }
         } else if ( attribute.name == first ) {
            if ( attribute.kind != AttrKind::child ) {
               path.remove_prefix( std::min( first.size() + 1, path.size() ) );
            }
            return childUnder( attribute, entity, path );
         }
      }
   }
   return nullptr;
}

} // namespace

Ptr<Entity const> Entity::entity( Name const & path ) const {
   std::string_view rest = path;
   if ( rest.empty() ) {
      return refCount() != 0 ? Ptr<Entity const>( this ) : nullptr;
   }
   Ptr<Entity const> at = childUnder( *this, rest );
   while ( at && !rest.empty() ) {
      at = childUnder( *at, rest );
   }
   return at;
}

Ptr<Entity> Entity::entity( Name const & path ) {
   return const_cast<Entity *>( std::as_const( *this ).entity( path ).get() );
}

namespace {

template <auto getter>
constexpr AttrInfo reflected( char const * name, std::string_view type ) {
   return { name,
            AttrKind::derived,
            type,
            {},
            []( Entity const & e ) { return Internal::attrText( std::invoke( getter, e ) ); },
            nullptr };
}

Entity const * itself( Entity const & e ) {
   return &e;
}

} // namespace

EntityModel const & Entity::velTypeModel() {
   using Parent = Entity const * (Entity::*)() const;
   static constexpr AttrInfo attributes[] = {
      reflected<&Entity::name>( "name", "Vel::String" ),
      reflected<&Entity::fullName>( "fullName", "Vel::String" ),
      reflected<static_cast<Parent>( &Entity::parent )>( "parent", "Vel::Entity" ),
      reflected<&Entity::parentAttrName>( "parentAttrName", "Vel::String" ),
      reflected<&itself>( "entity", "Vel::Entity" ), // that of the empty path
   };
   static_assert( std::size( attributes ) == velAttrEnd );
   static constexpr AttrApply notCopied[velAttrEnd] = {};
   static constexpr EntityModel model{
      "Vel::Entity", nullptr,  attributes, std::size( attributes ),
      nullptr,       0,        0,          Internal::newAdaptor<Entity>,
      nullptr,       notCopied };
   return model;
}

EntityModel const & Entity::velModel() const {
   return velTypeModel();
}

static TypeRegistration const registered( Entity::velTypeModel() );

VEL_ENTITY_DEFINE( Dir, dirFactory )

} // namespace Vel
