#include <Vel/Flow.h>

#include <Vel/AttrTravel.h>
#include <Vel/Entity.h>
#include <Vel/TypeName.h>

#include <algorithm>

namespace Vel {

namespace {

constexpr uint32_t logHeader = 0x56454c01; // "VEL" and the version of the layout
constexpr uint32_t anyVersion = 0xffffff00;
constexpr std::size_t recordHead = sizeof( uint16_t ) + sizeof( uint32_t );
constexpr uint16_t pathRecord = 0;  // names the entity of the records that follow
constexpr std::size_t deepest = 64; // steps in a path
constexpr std::size_t keptBuffer = 256 * 1024;
constexpr std::size_t markSize = 64; // of one key, beside its bytes
constexpr std::size_t mostWaiting = 1 << 20;

} // namespace

// ---------------------------------------------------------------------------------------------
// Marks

namespace Internal {

void SaQueue::add( NboAttrLogSa & sa ) {
   if ( last_ == &sa ) {
      return;
   }
   remove( sa );
   sa.*link_ = { nullptr, last_, true };
   ( last_ ? ( last_->*link_ ).next : first_ ) = &sa;
   last_ = &sa;
   ++size_;
}

void SaQueue::remove( NboAttrLogSa & sa ) {
   Link & link = sa.*link_;
   if ( link.queued ) {
      ( link.previous ? ( link.previous->*link_ ).next : first_ ) = link.next;
      ( link.next ? ( link.next->*link_ ).previous : last_ ) = link.previous;
      link = {};
      --size_;
   }
}

} // namespace Internal

AttrTravel const & NboAttrLogSa::Row::travel() const {
   return *info->travel;
}

NboAttrLogSa::NboAttrLogSa( FlowOut & flow, EntityModel const & model, Order * order )
   : flow_( flow ), model_( model ), order_( order ) {}

Ptr<NboAttrLogSa> NboAttrLogSa::attached( Entity const & entity, Ptr<FlowOut> const & flow,
                                          uint32_t tag, Only only ) {
   Ptr<NboAttrLogSa> const adaptor = entity.velModel().adaptor( entity, *flow );
   adaptor->root_.reset( new Root{ flow, tag, std::move( only ) } );
   flow->roots_.push_back( adaptor.get() );
   adaptor->start();
   return adaptor;
}

NboAttrLogSa::~NboAttrLogSa() {
   dropKeys();
   flow_.structure_.remove( *this );
   flow_.values_.remove( *this );
   root().imagesDue -= imageDue_;
   if ( root_ ) {
      std::erase( flow_.roots_, this );
   }
}

/// Its image is due, and then those of its children: a child comes after its parent.
void NboAttrLogSa::start() {
   for ( uint16_t attribute = Entity::velAttrEnd; attribute < attributeEnd(); ++attribute ) {
      AttrTravel const * travel = row( attribute ).info->travel;
      owning_ = owning_ || ( travel && travel->owned );
   }
   imageDue();
   if ( !owning_ ) {
      return;
   }
   for ( uint16_t attribute = Entity::velAttrEnd; attribute < attributeEnd(); ++attribute ) {
      Row const at = row( attribute );
      if ( at.info->travel && at.travel().owned ) {
         for ( String const & key : at.travel().keys( *entity() ) ) {
            childIs( at, key );
         }
      }
   }
}

void NboAttrLogSa::imageDue() {
   dropMarks();
   root().imagesDue += !imageDue_;
   imageDue_ = true;
   flow_.values_.add( *this );
   if ( owning_ ) {
      structureDue_ = true;
      flow_.structure_.add( *this );
   }
}

void NboAttrLogSa::imageIs() {
   imageDue();
   if ( collections_ ) {
      for ( auto const & child : collections_->children ) {
         child.second->imageIs();
      }
   }
}

bool NboAttrLogSa::complete() const {
   return root().imagesDue == 0;
}

NboAttrLogSa::Root & NboAttrLogSa::root() const {
   NboAttrLogSa const * at = this;
   while ( at->parent_ ) {
      at = at->parent_;
   }
   return *at->root_;
}

uint16_t NboAttrLogSa::attributeEnd() const {
   return static_cast<uint16_t>( model_.first + model_.count );
}

NboAttrLogSa::Row NboAttrLogSa::row( uint16_t attribute ) const {
   EntityModel const * model = &model_;
   while ( attribute < model->first ) {
      model = model->base;
   }
   auto const index = static_cast<uint16_t>( attribute - model->first );
   return { static_cast<uint16_t>( model->level << 8 | index ), &model->attributes[index] };
}

NboAttrLogSa::Collections & NboAttrLogSa::collections() {
   if ( !collections_ ) {
      collections_ = std::make_unique<Collections>();
   }
   return *collections_;
}

NboAttrLogSa::Keys & NboAttrLogSa::markedKeys( uint16_t attribute ) {
   std::vector<MarkedKeys> & marked = collections().marked;
   for ( MarkedKeys & candidate : marked ) {
      if ( candidate.attribute == attribute ) {
         return candidate.keys;
      }
   }
   marked.push_back( { attribute, {} } );
   return marked.back().keys;
}

void NboAttrLogSa::dropMarks() {
   for ( uint8_t at = order_[0].next; at != 0; ) {
      at = std::exchange( order_[at], Order{} ).next;
   }
   order_[0] = {};
   dropKeys();
}

void NboAttrLogSa::dropKeys() {
   if ( collections_ ) {
      for ( MarkedKeys & marked : collections_->marked ) {
         static_cast<void>( takeKeys( marked.attribute ) );
      }
   }
}

NboAttrLogSa::Keys NboAttrLogSa::takeKeys( uint16_t attribute ) {
   Keys keys = std::exchange( markedKeys( attribute ), Keys() );
   for ( auto const & key : keys ) {
      flow_.markBytes_ -= markSize + key.first.size();
   }
   return keys;
}

/// Not the last attribute to have been written, or not of the last entity: it is now.
void NboAttrLogSa::markLate( uint8_t attribute ) {
   if ( imageDue_ ) {
      return;
   }
   if ( order_[0].previous != attribute ) {
      Order & place = order_[attribute];
      if ( place.next != 0 ) {
         order_[place.next].previous = place.previous;
         order_[place.previous].next = place.next;
      }
      place = { 0, order_[0].previous };
      order_[place.previous].next = attribute;
      order_[0].previous = attribute;
   }
   flow_.values_.add( *this );
}

void NboAttrLogSa::markKey( uint16_t attribute, String const & key ) {
   Row const at = row( attribute );
   bool const owned = at.travel().owned;
   if ( !passes( at, key ) ) {
      return;
   }
   if ( owned && !structureLink_.queued ) {
      flow_.structure_.add( *this ); // in front of the child that comes
   }
   bool const renewed = owned && childIs( at, key );
   if ( owned ? structureDue_ : imageDue_ ) {
      return;
   }
   Keys & keys = markedKeys( attribute );
   if ( auto const [marked, added] = keys.try_emplace( key, renewed ); added ) {
      flow_.markBytes_ += markSize + key.size();
   } else {
      marked->second = marked->second || renewed;
   }
   if ( !owned ) {
      mark( attribute );
   }
   if ( flow_.markBytes_ > flow_.bound_ ) [[unlikely]] {
      for ( NboAttrLogSa * root : flow_.roots_ ) {
         root->imageIs();
      }
   }
}

bool NboAttrLogSa::passes( Row const & at, String const & key ) const {
   if ( parent_ || root_->only.empty() || !at.travel().owned ||
        at.info->keyTypeName != typeName<Name>() ) {
      return true;
   }
   Name const name = Internal::keyOfBytes<Name>( key );
   return std::find( root_->only.begin(), root_->only.end(), name ) != root_->only.end();
}

/// Sees to the adaptor of the child of that key; says whether the one that was there is none any more.
bool NboAttrLogSa::childIs( Row const & at, String const & key ) {
   if ( !passes( at, key ) ) {
      return false;
   }
   String const step = Internal::keyBytes( at.id ) + key;
   Entity const * child = at.travel().child( *entity(), key );
   auto & children = collections().children;
   bool gone = false;
   if ( auto const found = children.find( step ); found != children.end() ) {
      if ( child && found->second->entity() == child ) {
         return false;
      }
      gone = true;
      children.erase( found );
   }
   if ( child ) {
      Ptr<NboAttrLogSa> const adaptor = child->velModel().adaptor( *child, flow_ );
      adaptor->parent_ = this;
      adaptor->step_ = step;
      children.try_emplace( step, adaptor );
      adaptor->start();
   }
   return gone;
}

// ---------------------------------------------------------------------------------------------
// Writing

namespace Internal {

std::size_t beginRecord( NboAttrLog & log, uint16_t id ) {
   std::size_t const begin = log.bytes().size();
   encode( encode( log.append( recordHead ), id ), uint32_t( 0 ) );
   return begin;
}

void endRecord( NboAttrLog & log, std::size_t begin ) {
   std::size_t const size = log.bytes().size() - begin - recordHead;
   log.numberIs( begin + sizeof( uint16_t ), static_cast<uint32_t>( size ) );
}

static Entity const * topOf( Entity const & entity ) {
   Entity const * top = &entity;
   while ( top->parent() ) {
      top = top->parent();
   }
   return top;
}

bool pathOf( Entity const & target, Entity const & holder, Name & path ) {
   Entity const * const top = topOf( target );
   if ( top != topOf( holder ) ) {
      return false;
   }
   path = top == &target ? Name() : target.fullName().substr( top->name().size() + 1 );
   return true;
}

} // namespace Internal

void NboAttrLogSa::writePath( NboAttrLog & log ) const {
   if ( parent_ ) {
      parent_->writePath( log );
      step_.copyTo( reinterpret_cast<char *>( log.append( step_.size() ) ) );
   }
}

/// The attributes of the base types come first.
static void writeImage( EntityModel const & model, Entity const & from, NboAttrLog & log ) {
   if ( model.base ) {
      writeImage( *model.base, from, log );
      model.writeImage( from, log );
   }
}

void NboAttrLogSa::writeStructure( NboAttrLog & log ) {
   bool const all = std::exchange( structureDue_, false );
   Entity const * const from = entity();
   if ( !from ) {
      return;
   }
   for ( uint16_t attribute = Entity::velAttrEnd; attribute < attributeEnd(); ++attribute ) {
      Row const at = row( attribute );
      if ( !at.info->travel || !at.travel().owned ) {
         continue;
      }
      if ( all ) {
         writeChildren( *from, at, log );
      } else {
         writeKeys( *from, at, takeKeys( attribute ), log );
      }
   }
}

void NboAttrLogSa::writeValues( NboAttrLog & log ) {
   bool const all = std::exchange( imageDue_, false );
   root().imagesDue -= all;
   Entity const * const from = entity();
   if ( !from ) {
      return;
   }
   if ( all ) {
      writeImage( model_, *from, log );
      return;
   }
   for ( uint8_t attribute = order_[0].next; attribute != 0; ) {
      Row const at = row( attribute );
      if ( at.travel().keyed ) {
         writeKeys( *from, at, takeKeys( attribute ), log );
      } else {
         at.travel().write( *from, at.id, log );
      }
      attribute = std::exchange( order_[attribute], Order{} ).next;
   }
   order_[0] = {};
}

void NboAttrLogSa::writeChildren( Entity const & from, Row const & at, NboAttrLog & log ) const {
   using Internal::EntryOp;
   AttrTravel const & travel = at.travel();
   std::size_t const begin = Internal::beginRecord( log, at.id );
   bool const childGone = at.info->kind == AttrKind::child && !travel.child( from, String() );
   log.write( static_cast<uint8_t>( childGone ? EntryOp::gone : EntryOp::all ) );
   for ( String const & key : travel.keys( from ) ) {
      if ( passes( at, key ) ) {
         travel.writeEntry( from, key, log );
      }
   }
   Internal::endRecord( log, begin );
}

/// First the keys of what is gone, or is not what it was, then the entries that are there.
void NboAttrLogSa::writeKeys( Entity const & from, Row const & at, Keys const & keys,
                              NboAttrLog & log ) const {
   using Internal::EntryOp;
   AttrTravel const & travel = at.travel();
   std::size_t const goneBegin = Internal::beginRecord( log, at.id );
   log.write( static_cast<uint8_t>( EntryOp::gone ) );
   bool gone = false;
   bool set = false;
   for ( auto const & [key, renewed] : keys ) {
      std::size_t const size = log.bytes().size();
      bool const there = travel.writeEntry( from, key, log );
      log.sizeIs( size );
      set = set || there;
      if ( !there || renewed ) {
         gone = true;
         key.copyTo( reinterpret_cast<char *>( log.append( key.size() ) ) );
      }
   }
   if ( gone ) {
      Internal::endRecord( log, goneBegin );
   } else {
      log.sizeIs( goneBegin );
   }
   if ( set ) {
      std::size_t const begin = Internal::beginRecord( log, at.id );
      log.write( static_cast<uint8_t>( EntryOp::set ) );
      for ( auto const & key : keys ) {
         travel.writeEntry( from, key.first, log );
      }
      Internal::endRecord( log, begin );
   }
}

FlowOut::FlowOut( std::size_t bound )
   : bound_( bound ), structure_( &NboAttrLogSa::structureLink_ ),
     values_( &NboAttrLogSa::valuesLink_ ), log_( std::make_unique<NboAttrLog>() ) {}

FlowOut::~FlowOut() = default;

std::string_view FlowOut::piece( std::size_t most ) {
   if ( log_->bytes().size() > keptBuffer ) {
      log_ = std::make_unique<NboAttrLog>(); // one large collection must not cost its size for ever
   }
   NboAttrLog & log = *log_;
   log.clear();
   log.write( logHeader );
   NboAttrLogSa::Root const * root = nullptr;
   NboAttrLogSa const * subject = nullptr; // of the records, once a path has been written
   while ( pending() && ( !root || log.bytes().size() < most ) ) {
      bool const structure = structure_.first() != nullptr;
      NboAttrLogSa & next = *( structure ? structure_.first() : values_.first() );
      if ( root && &next.root() != root ) {
         break;
      }
      ( structure ? structure_ : values_ ).remove( next );
      std::size_t const before = log.bytes().size();
      if ( subject != &next && ( subject || next.parent_ ) ) {
         std::size_t const begin = Internal::beginRecord( log, pathRecord );
         next.writePath( log );
         Internal::endRecord( log, begin );
      }
      std::size_t const head = log.bytes().size();
      structure ? next.writeStructure( log ) : next.writeValues( log );
      if ( log.bytes().size() == head ) {
         log.sizeIs( before );
      } else {
         subject = &next;
         root = &next.root();
      }
   }
   if ( !root ) {
      return {};
   }
   tag_ = root->tag;
   return log.bytes();
}

// ---------------------------------------------------------------------------------------------
// Reading

struct FlowIn::Waiting {
   Ref<Entity> holder;
   AttrTravel const * row;
   Name key;
   Name path;
};

FlowIn::FlowIn() = default;
FlowIn::~FlowIn() = default;

namespace {

/// The rows of a type and its bases. Ids of one level come together.
class Rows {
 public:
   explicit Rows( EntityModel const & type ) : type_( &type ), last_( &type ) {}
   /// That of an attribute, which another version of the type may lack.
   [[nodiscard]] AttrInfo const * row( uint16_t id ) {
      uint16_t const level = id >> 8;
      if ( last_->level != level ) {
         last_ = type_;
         while ( last_->level > level ) {
            last_ = last_->base;
         }
      }
      std::size_t const index = id & 0xff;
      return last_->level == level && index < last_->count ? &last_->attributes[index] : nullptr;
   }

 private:
   EntityModel const * type_;
   EntityModel const * last_;
};

/// The entity that a path leads to; null where this side has none.
Entity * follow( Entity & replica, Internal::LogCursor body ) {
   Entity * at = &replica;
   for ( std::size_t steps = 0; at && body.spare != 0; ++steps ) {
      if ( steps == deepest ) {
         Internal::LogCursor::fail( body, "a path of more than 64 steps" );
      }
      AttrInfo const * row = Rows( at->velModel() ).row( body.next<uint16_t>() );
      at = row && row->travel && row->travel->childAt ? row->travel->childAt( *at, body ) : nullptr;
   }
   return at;
}

bool settled( Entity & entity, AttrTravel const & row, Name const & key, Name const & path ) {
   auto * const top = const_cast<Entity *>( Internal::topOf( entity ) );
   Ptr<Entity> const target = top->entity( path );
   return target && row.settle( entity, key, target );
}

} // namespace

void FlowIn::apply( Entity & replica, NboAttrLog & log ) {
   Internal::LogCursor in = log.cursor();
   Internal::LogCursor const atHeader = in;
   uint32_t const header = in.next<uint32_t>();
   if ( header != logHeader ) {
      Internal::LogCursor::fail( atHeader, ( header & anyVersion ) == ( logHeader & anyVersion )
                                              ? "a version of the attribute log other than 1"
                                              : "no attribute log" );
   }
   Hold const hold( replica );
   Ptr<Entity> child; // held while records are applied to it
   Entity * subject = &replica;
   Rows rows( replica.velModel() );
   made_ = false;
   while ( in.spare != 0 ) {
      auto const id = in.next<uint16_t>();
      std::size_t const size = in.next<uint32_t>();
      in.claim( size );
      uint8_t const * const body = std::exchange( in.at, in.at + size );
      if ( id == pathRecord ) {
         subject = follow( replica, { in.begin, body, size } );
         child = subject == &replica ? nullptr : Ptr<Entity>( subject );
         rows = Rows( subject ? subject->velModel() : replica.velModel() );
      } else if ( subject ) {
         AttrInfo const * row = rows.row( id );
         if ( row && row->travel ) {
            row->travel->apply( *subject, { in.begin, body, size }, *this );
         }
      }
      log.positionIs( static_cast<std::size_t>( in.at - in.begin ) );
   }
   if ( made_ ) {
      resolve();
   }
}

bool FlowIn::point( Entity & entity, AttrTravel const & row, Name const & key, Name const & path ) {
   if ( settled( entity, row, key, path ) ) {
      return true;
   }
   if ( waiting_.size() < mostWaiting ) {
      waiting_.push_back( std::make_unique<Waiting>() );
      Waiting & one = *waiting_.back();
      one.holder.targetIs( &entity );
      one.row = &row;
      one.key = key;
      one.path = path;
   }
   return false;
}

void FlowIn::dropWaiting( Entity const & entity, AttrTravel const & row, Name const & key ) {
   std::erase_if( waiting_, [&]( auto const & one ) {
      return one->holder.get() == &entity && one->row == &row && one->key == key;
   } );
}

void FlowIn::resolve() {
   auto const before = std::exchange( waiting_, {} );
   for ( auto const & one : before ) {
      if ( Entity * holder = one->holder.get() ) {
         point( *holder, *one->row, one->key, one->path );
      }
   }
}

Ptr<Entity> FlowIn::newEntity( Name const & typeName, Name const & name ) {
   if ( !( typeName == lastType_ ) ) {
      TypeInfo const * type = TypeRegistry::type( typeName );
      lastType_ = typeName;
      lastFactory_ = type && type->entity ? type->entity->factory : nullptr;
   }
   return lastFactory_ ? lastFactory_( name ) : nullptr;
}

Ptr<NboAttrLogSa> Entity::velNboAttrLogSaIs( Ptr<Entity const> const & entity,
                                             Ptr<FlowOut> const & flowOut, uint32_t tag ) {
   return NboAttrLogSa::attached( *entity, flowOut, tag );
}

void Entity::doHandleAttrDeserialization( NboAttrLog & log ) {
   FlowIn in;
   in.apply( *this, log );
}

void Entity::doHandleAttrDeserialization( NboAttrLog & log, FlowIn & flowIn ) {
   flowIn.apply( *this, log );
}

} // namespace Vel
