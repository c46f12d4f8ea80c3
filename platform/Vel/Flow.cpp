#include <Vel/Flow.h>

#include <Vel/AttrTravel.h>
#include <Vel/Entity.h>
#include <Vel/TypeName.h>

#include <algorithm>
#include <map>
#include <set>

namespace Vel {

namespace {

constexpr uint32_t logHeader = 0x56454c01; // "VEL" and the version of the layout
constexpr uint32_t anyVersion = 0xffffff00;
constexpr std::size_t recordHead = sizeof( uint16_t ) + sizeof( uint32_t );
constexpr uint16_t pathRecord = 0;  // names the entity of the records that follow
constexpr std::size_t deepest = 64; // steps in a path
constexpr std::size_t keptBuffer = 256 * 1024;
constexpr std::size_t markSize = 64; // of one key, beside its bytes
constexpr std::size_t mostNames = 1 << 20;
constexpr std::size_t mostNameless = 1 << 16;

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
   std::sort( only.begin(), only.end() );
   adaptor->root_.reset( new Root{ flow, tag, std::move( only ) } );
   flow->roots_.push_back( adaptor.get() );
   adaptor->start();
   return adaptor;
}

NboAttrLogSa::~NboAttrLogSa() {
   dropKeys();
   if ( collections_ ) {
      for ( Entity const * target : collections_->nameless ) {
         auto & all = flow_.nameless_;
         auto const from = all.lower_bound( { target, this, 0, String() } );
         auto to = from;
         while ( to != all.end() && to->target == target && to->holder == this ) {
            ++to;
         }
         all.erase( from, to );
      }
   }
   flow_.structure_.remove( *this );
   flow_.values_.remove( *this );
   root().imagesDue -= imageCounted_;
   if ( root_ ) {
      std::erase( flow_.roots_, this );
   }
}

/// Visits the attributes that own or point to entities, those of base types first, with their numbers.
template <typename Visit>
void NboAttrLogSa::eachLink( EntityModel const & model, Visit const & visit ) {
   if ( model.base ) {
      eachLink( *model.base, visit );
   }
   for ( std::size_t i = 0; i < model.linkCount; ++i ) {
      uint8_t const index = model.links[i];
      visit( static_cast<uint16_t>( model.first + index ), rowOf( model, index ) );
   }
}

/// Its image is due, and then those of its children: a child comes after its parent.
void NboAttrLogSa::start() {
   eachLink( model_, [&]( uint16_t, Row const & at ) { owning_ = owning_ || at.travel().owned; } );
   imageDue();
   if ( !flow_.nameless_.empty() ) {
      flow_.nameIs( *entity() );
   }
   if ( !owning_ ) {
      return;
   }
   eachLink( model_, [&]( uint16_t, Row const & at ) {
      if ( at.travel().owned ) {
         for ( String const & key : at.travel().keys( *entity() ) ) {
            childIs( at, key );
         }
      }
   } );
}

void NboAttrLogSa::imageDue() {
   root().imagesDue += !imageCounted_;
   imageCounted_ = true;
   imageInsteadOfMarks();
}

void NboAttrLogSa::imageInsteadOfMarks() {
   dropMarks();
   imageDue_ = true;
   flow_.values_.add( *this );
   if ( owning_ ) {
      structureDue_ = true;
      queueStructure();
   }
}

/// One that waits stays before those that wait behind it: new children, whose records have to come after the
/// one that makes them.
void NboAttrLogSa::queueStructure() {
   if ( !structureLink_.queued ) {
      flow_.structure_.add( *this );
   }
}

void NboAttrLogSa::imageIs() {
   flow_.structure_.remove( *this ); // all of the tree comes anew, parents first
   imageDue();
   if ( collections_ ) {
      for ( auto const & child : collections_->children ) {
         child.second->imageIs();
      }
   }
}

/// Beyond the bound: what has marks of keys is to be sent whole. What has none keeps its place in the queue,
/// so that a slow reader gets through it; and `complete` stays what it was.
void NboAttrLogSa::imagesInsteadOfKeys() {
   if ( !collections_ ) {
      return;
   }
   auto const & marked = collections_->marked;
   if ( std::any_of( marked.begin(), marked.end(),
                     []( MarkedKeys const & one ) { return !one.keys.empty(); } ) ) {
      imageInsteadOfMarks();
   }
   for ( auto const & child : collections_->children ) {
      child.second->imagesInsteadOfKeys();
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

NboAttrLogSa::Row NboAttrLogSa::row( uint16_t attribute ) const {
   EntityModel const * model = &model_;
   while ( attribute < model->first ) {
      model = model->base;
   }
   return rowOf( *model, static_cast<uint16_t>( attribute - model->first ) );
}

NboAttrLogSa::Row NboAttrLogSa::rowOf( EntityModel const & model, uint16_t index ) {
   return { static_cast<uint16_t>( model.level << 8 | index ), &model.attributes[index] };
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
   if ( owned ) {
      queueStructure(); // before a new child does
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
         root->imagesInsteadOfKeys();
      }
   }
}

/// The root may have been asked for some of its children only.
bool NboAttrLogSa::isFiltered( Row const & at ) const {
   return !parent_ && !root_->only.empty() && at.travel().owned &&
          at.info->keyTypeName == typeName<Name>();
}

bool NboAttrLogSa::passes( Row const & at, String const & key ) const {
   return !isFiltered( at ) || std::binary_search( root_->only.begin(), root_->only.end(),
                                                   Internal::keyOfBytes<Name>( key ) );
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

Entity const * topOf( Entity const & entity ) {
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
   eachLink( model_, [&]( uint16_t attribute, Row const & at ) {
      if ( at.travel().owned ) {
         all ? writeChildren( *from, at, log ) : writeKeys( *from, at, takeKeys( attribute ), log );
      }
   } );
}

void NboAttrLogSa::writeValues( NboAttrLog & log ) {
   bool const all = std::exchange( imageDue_, false );
   root().imagesDue -= std::exchange( imageCounted_, false );
   Entity const * const from = entity();
   if ( !from ) {
      return;
   }
   if ( all ) {
      writeImage( model_, *from, log );
      eachLink( model_, [&]( uint16_t attribute, Row const & at ) {
         if ( at.travel().target ) {
            for ( String const & key : at.travel().keys( *from ) ) {
               keepNameless( *from, at, attribute, key );
            }
         }
      } );
      return;
   }
   for ( uint8_t attribute = order_[0].next; attribute != 0; ) {
      Row const at = row( attribute );
      if ( at.travel().keyed ) {
         Keys const keys = takeKeys( attribute );
         writeKeys( *from, at, keys, log );
         for ( auto const & key : keys ) {
            keepNameless( *from, at, attribute, key.first );
         }
      } else {
         at.travel().write( *from, at.id, log );
         keepNameless( *from, at, attribute, String() );
      }
      attribute = std::exchange( order_[attribute], Order{} ).next;
   }
   order_[0] = {};
}

void NboAttrLogSa::writeChildren( Entity const & from, Row const & at, NboAttrLog & log ) const {
   using Internal::EntryOp;
   AttrTravel const & travel = at.travel();
   if ( travel.write && !isFiltered( at ) ) {
      travel.write( from, at.id, log );
      return;
   }
   std::size_t const begin = Internal::beginRecord( log, at.id );
   bool const childGone = at.info->kind == AttrKind::child && !travel.child( from, String() );
   log.write( static_cast<uint8_t>( childGone ? EntryOp::gone : EntryOp::all ) );
   if ( at.info->kind != AttrKind::child ) {
      for ( String const & key : travel.keys( from ) ) {
         if ( passes( at, key ) ) {
            travel.writeEntry( from, key, log );
         }
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
      bool const there = travel.has( from, key );
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

/// What a pointer leads to may have no name yet, being in no tree: then it is marked again once it has.
void NboAttrLogSa::keepNameless( Entity const & from, Row const & at, uint16_t attribute,
                                 String const & key ) {
   Entity const * const target = at.travel().target ? at.travel().target( from, key ) : nullptr;
   if ( !target || Internal::topOf( *target ) == Internal::topOf( from ) ) {
      return;
   }
   auto & nameless = flow_.nameless_;
   if ( nameless.size() >= mostNameless ) { // some may have come to lead elsewhere
      std::erase_if( nameless, []( FlowOut::Nameless const & one ) {
         Entity const * const holder = one.holder->entity();
         return !holder ||
                one.holder->row( one.attribute ).travel().target( *holder, one.key ) != one.target;
      } );
      if ( nameless.size() > mostNameless / 2 ) {
         nameless.clear(); // a look at all of them must not be due again soon
      }
   }
   if ( nameless.insert( { target, this, attribute, key } ).second ) {
      std::vector<Entity const *> & mine = collections().nameless;
      if ( mine.size() == mine.capacity() ) { // those that have got their names since
         std::sort( mine.begin(), mine.end() );
         mine.erase( std::unique( mine.begin(), mine.end() ), mine.end() );
         std::erase_if( mine, [&]( Entity const * one ) {
            auto const found = nameless.lower_bound( { one, this, 0, String() } );
            return found == nameless.end() || found->target != one || found->holder != this;
         } );
      }
      mine.push_back( target );
   }
}

void FlowOut::nameIs( Entity const & target ) {
   auto const from = nameless_.lower_bound( { &target, nullptr, 0, String() } );
   auto to = from;
   while ( to != nameless_.end() && to->target == &target ) {
      ++to;
   }
   std::vector<Nameless> const named( from, to );
   nameless_.erase( from, to );
   for ( Nameless const & one : named ) {
      if ( one.holder->row( one.attribute ).travel().keyed ) {
         one.holder->markKey( one.attribute, one.key );
      } else {
         one.holder->mark( one.attribute );
      }
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
      }
      root = &next.root();
   }
   if ( !root ) {
      return {};
   }
   tag_ = root->tag;
   return log.bytes();
}

// ---------------------------------------------------------------------------------------------
// Reading

/// A pointer or reference of a replica; the holder only to be compared with.
struct FlowIn::Pointer {
   Entity const * holder;
   AttrTravel const * row;
   Name key;
   friend auto operator<=>( Pointer const &, Pointer const & ) = default;
};

struct FlowIn::Names {
   struct Kept {
      Name path;
      bool settled = false;
   };
   using ByPointer = std::map<Pointer, Kept>;

   /// The entity of a pointer; null once it is gone.
   [[nodiscard]] Entity * holderOf( Pointer const & pointer ) const {
      return holders.at( pointer.holder ).get();
   }
   void keep( Pointer const & pointer, Entity & holder, Kept const & name ) {
      if ( ++keptSinceSweep > byPointer.size() + 64 ) {
         sweep();
      }
      if ( byPointer.size() >= mostNames ) {
         return;
      }
      if ( auto const found = holders.find( &holder );
           found != holders.end() && !found->second.get() ) {
         eraseAll( &holder ); // of another entity, which was at this address
      }
      erase( pointer );
      holders[&holder].targetIs( &holder );
      auto const at = byPointer.emplace( pointer, name ).first;
      byPath.emplace( name.path, &at->first );
   }
   [[nodiscard]] Kept * find( Pointer const & pointer ) {
      auto const found = byPointer.find( pointer );
      return found != byPointer.end() ? &found->second : nullptr;
   }
   void erase( Pointer const & pointer ) {
      if ( auto const found = byPointer.find( pointer ); found != byPointer.end() ) {
         erase( found );
      }
   }
   void erase( ByPointer::iterator at ) {
      Entity const * const holder = at->first.holder;
      byPath.erase( { at->second.path, &at->first } );
      byPointer.erase( at );
      auto const next = byPointer.lower_bound( { holder, nullptr, Name() } );
      if ( next == byPointer.end() || next->first.holder != holder ) {
         holders.erase( holder );
      }
   }
   /// All of a holder, or those of one of its attributes.
   void eraseAll( Entity const * holder, AttrTravel const * row = nullptr ) {
      for ( auto at = byPointer.lower_bound( { holder, row, Name() } );
            at != byPointer.end() && at->first.holder == holder &&
            ( !row || at->first.row == row ); ) {
         erase( at++ );
      }
   }
   /// Names of holders that are gone go when they may be half of all: at a cost that is small in each that
   /// is kept, or that finds no room.
   void sweep() {
      for ( auto at = byPointer.begin(); at != byPointer.end(); ) {
         auto const next = std::next( at );
         if ( !holderOf( at->first ) ) {
            erase( at );
         }
         at = next;
      }
      keptSinceSweep = 0;
   }

   /// What could not be made in one collection; the types by key.
   struct Unmade {
      Ref<Entity> holder;
      std::map<Name, Name> types;
   };

   ByPointer byPointer;
   std::set<std::pair<Name, Pointer const *>> byPath; // the pointers of `byPointer`
   std::map<Entity const *, Ref<Entity>> holders; // one each, since every Ref is one more observer
   std::size_t keptSinceSweep = 0;
   std::map<std::pair<Entity const *, AttrTravel const *>, Unmade> unmade;
   std::size_t unmadeMost = 64; // then those of holders that are gone go
   Ref<Entity> root;            // null where names count from the top of the replica's tree
   Ref<Entity> replica;
   Name place;
};

FlowIn::FlowIn() = default;
FlowIn::~FlowIn() = default;

namespace {

/// The attributes of a type and its bases, by their ids in the log. Ids of one level come together.
class Attributes {
 public:
   explicit Attributes( EntityModel const & type ) : type_( &type ), last_( &type ) {}
   /// Null for one that is not copied, or that another version of the type has.
   [[nodiscard]] AttrApply apply( uint16_t id ) {
      return has( id ) ? last_->applies[id & 0xff] : nullptr;
   }
   [[nodiscard]] AttrTravel const * travel( uint16_t id ) {
      return has( id ) ? last_->attributes[id & 0xff].travel : nullptr;
   }

 private:
   bool has( uint16_t id ) {
      uint16_t const level = id >> 8;
      if ( last_->level != level ) {
         last_ = type_;
         while ( last_->level > level ) {
            last_ = last_->base;
         }
      }
      return last_->level == level && ( id & 0xffu ) < last_->count;
   }
   EntityModel const * type_;
   EntityModel const * last_;
};

/// The entity that a path leads to; null where this side has none.
Entity * entityAt( Entity & replica, Internal::LogCursor body ) {
   Entity * at = &replica;
   for ( std::size_t steps = 0; at && body.spare != 0; ++steps ) {
      if ( steps == deepest ) {
         return nullptr; // what is deeper has no copy here
      }
      AttrTravel const * const row = Attributes( at->velModel() ).travel( body.next<uint16_t>() );
      at = row && row->childAt ? row->childAt( *at, body ) : nullptr;
   }
   return at;
}

/// What is left of a path below a place; false for one that is elsewhere.
bool below( Name const & place, std::string_view & path ) {
   if ( !place.empty() ) {
      if ( !path.starts_with( place ) ||
           ( path.size() > place.size() && path[place.size()] != '/' ) ) {
         return false;
      }
      path.remove_prefix( std::min( place.size() + 1, path.size() ) );
   }
   return true;
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
   log.positionIs( static_cast<std::size_t>( in.at - in.begin ) );
   Hold const hold( replica );
   Ptr<Entity> child; // held while records are applied to it
   Entity * subject = &replica;
   made_.clear();
   Attributes attributes( replica.velModel() );
   while ( in.spare != 0 ) {
      auto const id = in.next<uint16_t>();
      std::size_t const size = in.next<uint32_t>();
      in.claim( size );
      uint8_t const * const body = std::exchange( in.at, in.at + size );
      if ( id == pathRecord ) {
         subject = entityAt( replica, { in.begin, body, size } );
         child = subject == &replica ? nullptr : Ptr<Entity>( subject );
         attributes = Attributes( subject ? subject->velModel() : replica.velModel() );
      } else if ( subject ) {
         if ( AttrApply const applyRecord = attributes.apply( id ) ) {
            applyRecord( *subject, { in.begin, body, size }, *this );
         }
      }
      log.positionIs( static_cast<std::size_t>( in.at - in.begin ) );
   }
   for ( Name const & path : std::exchange( made_, {} ) ) {
      follow( path, false );
   }
}

void FlowIn::clear() {
   names_ = nullptr;
}

void FlowIn::placeIs( Entity & root, Entity & replica, Name path ) {
   names_ = std::make_unique<Names>();
   names_->root.targetIs( &root );
   names_->replica.targetIs( &replica );
   names_->place = std::move( path );
}

/// Sets a pointer to what its name leads to now. False where the name is done with: once it has led to what
/// lives and goes with the replica.
bool FlowIn::follow( Entity & holder, Pointer const & pointer, Name const & path, bool & settled ) {
   Entity * top = names_ ? names_->replica.get() : nullptr;
   std::string_view rest = path;
   bool const inside = !top || below( names_->place, rest );
   if ( !top ) {
      top = const_cast<Entity *>( Internal::topOf( holder ) );
   } else if ( !inside ) {
      top = names_->root.get();
   }
   settled = pointer.row->settle( holder, pointer.key, top ? top->entity( rest ) : nullptr );
   return !settled || !inside;
}

void FlowIn::point( Entity & entity, AttrTravel const & row, Name const & key, Name const & path ) {
   Pointer const pointer{ &entity, &row, key };
   forget( entity, row, key );
   bool settled = false;
   if ( path.size() > longestName ) {
      row.settle( entity, key, nullptr );
   } else if ( follow( entity, pointer, path, settled ) ) {
      if ( !names_ ) {
         names_ = std::make_unique<Names>();
      }
      names_->keep( pointer, entity, { path, settled } );
   }
}

void FlowIn::forget( Entity const & entity, AttrTravel const & row, Name const & key ) {
   if ( names_ ) {
      names_->erase( { &entity, &row, key } );
      if ( auto const found = names_->unmade.find( { &entity, &row } );
           found != names_->unmade.end() && found->second.types.erase( key ) != 0 &&
           found->second.types.empty() ) {
         names_->unmade.erase( found );
      }
   }
}

void FlowIn::forgetAll( Entity const & entity, AttrTravel const & row ) {
   if ( names_ ) {
      names_->eraseAll( &entity, &row );
      names_->unmade.erase( { &entity, &row } );
   }
}

/// They are for people to read, so that no peer needs more of one collection.
constexpr std::size_t mostUnmade = 1024;

void FlowIn::unmadeIs( Entity & entity, AttrTravel const & row, Name const & key,
                       Name const & typeName ) {
   if ( !names_ ) {
      names_ = std::make_unique<Names>();
   }
   if ( names_->unmade.size() >= names_->unmadeMost ) { // of holders that are gone
      std::erase_if( names_->unmade, []( auto const & one ) { return !one.second.holder.get(); } );
      names_->unmadeMost = 2 * names_->unmade.size() + 64;
   }
   Names::Unmade & unmade = names_->unmade[{ &entity, &row }];
   if ( !unmade.holder.get() ) { // new, or left by another entity, which was at this address
      unmade.types.clear();
      unmade.holder.targetIs( &entity );
   }
   if ( unmade.types.size() < mostUnmade || unmade.types.contains( key ) ) {
      unmade.types[key] = typeName;
   }
}

std::map<Name, Name> FlowIn::unmade( Entity const & replica ) const {
   std::map<Name, Name> all;
   if ( !names_ ) {
      return all;
   }
   for ( auto const & entry : names_->unmade ) {
      Entity const * const holder = entry.second.holder.get();
      Entity const * at = holder;
      while ( at && at != &replica ) {
         at = at->parent();
      }
      if ( !at ) {
         continue; // not in the replica any more
      }
      Name const below = holder == &replica
                            ? Name()
                            : holder->fullName().substr( replica.fullName().size() + 1 ) + "/";
      for ( auto const & [key, typeName] : entry.second.types ) {
         all[below + key] = typeName;
      }
   }
   return all;
}

/// Whoever is told of one pointer may do away with the others.
void FlowIn::follow( std::vector<Pointer> const & pointers ) {
   for ( Pointer const & pointer : pointers ) {
      Names::Kept * const name = names_ ? names_->find( pointer ) : nullptr;
      if ( !name ) {
         continue;
      }
      Ptr<Entity> const holder( names_->holderOf( pointer ) );
      bool settled = false;
      bool const kept = holder && follow( *holder, pointer, Name( name->path ), settled );
      if ( Names::Kept * const still = names_ ? names_->find( pointer ) : nullptr ) {
         still->settled = settled;
         if ( !kept ) {
            names_->erase( pointer );
         }
      }
   }
}

void FlowIn::follow( Name const & path, bool andBelow ) {
   if ( !names_ ) {
      return;
   }
   std::vector<Pointer> due;
   auto const & byPath = names_->byPath;
   auto const add = [&]( Name const & from, auto const & fits ) {
      for ( auto at = byPath.lower_bound( { from, nullptr } );
            at != byPath.end() && fits( at->first ); ++at ) {
         due.push_back( *at->second );
      }
   };
   add( path, [&]( Name const & name ) { return name == path; } );
   if ( andBelow ) {
      Name const start = path + "/";
      add( start, [&]( Name const & name ) { return name.view().starts_with( start ); } );
   }
   follow( due );
}

void FlowIn::resolve() {
   std::vector<Pointer> due;
   if ( names_ ) {
      for ( auto const & entry : names_->byPointer ) {
         due.push_back( entry.first );
      }
   }
   follow( due );
}

void FlowIn::resolve( Name const & path ) {
   follow( path, true );
}

std::size_t FlowIn::unresolved() const {
   std::size_t count = 0;
   if ( names_ ) {
      for ( auto const & [pointer, name] : names_->byPointer ) {
         count += !name.settled && names_->holderOf( pointer );
      }
   }
   return count;
}

void FlowIn::madeIs( Entity const & made ) {
   if ( !names_ || names_->byPointer.empty() ) {
      return;
   }
   Name path;
   if ( Entity const * const replica = names_->replica.get() ) {
      Name const top = replica->fullName() + "/";
      Name const full = made.fullName();
      if ( !full.view().starts_with( top ) ) {
         return;
      }
      path = names_->place.empty() ? Name() : names_->place + "/";
      path += full.view().substr( top.size() );
   } else {
      static_cast<void>( Internal::pathOf( made, made, path ) );
   }
   made_.push_back( path );
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
