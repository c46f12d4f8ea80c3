#include <Statedb/Session.h>
#include <Vel/AttrTravel.h>
#include <Vel/Define.h>

#include <algorithm>

// The stream is a sequence of frames: u32 length, u8 kind of message, and the rest of the length, which
// for each kind is as follows. Fields are laid out as in an attribute log. A mount is known by the number
// that its owner gave it, which goes up.
//
//    hello       u32 "SDB" and the version; the first message of each side
//    mount       u32 number, text path, text type, u8 mode, and texts: the names that the filter lists
//    unmount     u32 number
//    state       u32 number, u32 state, text: the type of what is mounted
//    image       u32 number: the whole image has been sent
//    mountedLog  u32 number of the receiver's mount, log
//    writtenLog  u32 number of the sender's mount, log
namespace Statedb {

namespace {

constexpr uint32_t greeting = 0x53444201;
constexpr std::size_t lengthSize = sizeof( uint32_t );
constexpr std::size_t longestFrame = 64 * 1024 * 1024;
constexpr std::size_t controlWaits = 64 * 1024;  // beyond it nothing more is read
constexpr std::size_t controlMost = 1024 * 1024; // what an owner that reads all the same lets grow
constexpr std::size_t mostMounts = 1024;
// A mount costs as much as the tree at its path: so often it can be had, with other filters and places.
constexpr std::ptrdiff_t mostOfOnePath = 8;
constexpr std::ptrdiff_t deepestPath = 64;
constexpr std::size_t longestHello = 5;
constexpr std::size_t longestQuestion = 64 * 1024;      // and whatever else is no log
constexpr std::size_t mostMountBytes = 4 * 1024 * 1024; // of all mounts of a peer
constexpr uint32_t ownLog = 0x80000000; // in the tag of an adaptor: of an own mount, for writing

[[noreturn]] void refuse( std::string const & problem ) {
   throw ProtocolException( "state database session: " + problem );
}

/// Whether a path can be mounted at all; the empty one is that of the root.
bool isMountPath( Vel::Name const & path ) {
   std::string_view const text = path;
   return isPath( path ) && std::count( text.begin(), text.end(), '/' ) < deepestPath;
}

/// Of its texts.
std::size_t bytesOf( Mount const & mount ) {
   std::size_t bytes = mount.name().size() + mount.typeName().size();
   for ( Vel::Name const & name : mount.filter().only ) {
      bytes += sizeof( uint32_t ) + name.size();
   }
   return bytes;
}

} // namespace

ProtocolException::~ProtocolException() = default;

// The peer's mounts

/// A mount of the peer, served from this side's tree.
class Session::Serving : public Mount::NotifieeConst {
 public:
   Serving( Session & session, uint32_t number, Vel::Ptr<Mount> const & mount )
      : session_( session ), number_( number ), mount_( mount ),
        group_( new MountGroup( "peer" ) ) {
      session_.peerMountBytes_ += bytesOf( *mount );
      group_->mountIs( mount );
      session_.manager_.mountGroupIs( group_, EntityManager::WhatIsMade::goes );
      notifierIs( mount );
      update( true );
   }
   ~Serving() override {
      notifierIs( nullptr );
      adaptor_ = nullptr;
      session_.manager_.mountGroupDel( group_ );
      session_.statesDue_.erase( number_ );
      session_.peerMountBytes_ -= bytesOf( *mount_ );
   }
   void onState() override { update( true ); }
   void onTarget() override { update( false ); }
   [[nodiscard]] bool isOf( Vel::Name const & path ) const { return mount_->name() == path; }

   void apply( std::string_view bytes ) {
      Vel::Ptr<Vel::Entity> const target( mount_->target() );
      if ( mount_->mode() != MountMode::write ) {
         refuse( "a log for a mount that is not for writing" );
      }
      if ( target ) {
         Vel::NboAttrLog log( bytes );
         target->doHandleAttrDeserialization( log, in_ );
      }
   }
   /// What its state is now: of those that it had meanwhile nothing is told.
   void writeState( std::string & to ) const;
   /// Once for each image.
   [[nodiscard]] bool takeComplete() {
      return adaptor_ && !std::exchange( imageTold_, imageTold_ || adaptor_->complete() ) &&
             imageTold_;
   }

 private:
   void update( bool stateChanged ) {
      bool const mounted = mount_->state() == MountState::mounted;
      Vel::Ptr<Vel::Entity> const target( mounted ? mount_->target() : nullptr );
      if ( !stateChanged && ( target == served_ || !target ) ) {
         return;
      }
      served_ = target.get();
      adaptor_ = nullptr;
      session_.statesDue_.insert( number_ );
      if ( target && mount_->mode() == MountMode::write ) {
         in_.placeIs( *session_.manager_.root(), *target, mount_->name() );
      } else if ( target ) {
         imageTold_ = false;
         adaptor_ =
            Vel::NboAttrLogSa::attached( *target, session_.flow_, number_, mount_->filter().only );
      }
   }

   Session & session_;
   uint32_t number_;
   Vel::Ptr<Mount> mount_;
   Vel::Ptr<MountGroup> group_;           // of this mount alone
   Vel::Entity const * served_ = nullptr; // only to be compared with
   Vel::Ptr<Vel::NboAttrLogSa> adaptor_;
   bool imageTold_ = false;
   Vel::FlowIn in_;
};

// The own mounts

/// A path of this side's tree, which the peer serves for the mounts of it.
class Session::Mounted : public std::enable_shared_from_this<Mounted> {
 public:
   Mounted( Session & session, uint32_t number, Vel::Ptr<Mount> const & first )
      : what( first ), session_( session ), number_( number ), mounts_{ first } {}
   Mounted( Mounted const & ) = delete;
   Mounted & operator=( Mounted const & ) = delete;

   [[nodiscard]] bool has( Vel::Ptr<Mount> const & mount ) const {
      return std::find( mounts_.begin(), mounts_.end(), mount ) != mounts_.end();
   }
   [[nodiscard]] bool suits( Mount const & mount ) const {
      return mount.mode() == MountMode::read && what->mode() == MountMode::read &&
             mount.name() == what->name() && mount.place() == what->place() &&
             mount.typeName() == what->typeName() && mount.filter() == what->filter();
   }
   void mountIs( Vel::Ptr<Mount> const & mount ) {
      mounts_.push_back( mount );
      tell( *mount );
   }
   /// False, and nothing done, for the last one.
   bool mountDel( Vel::Ptr<Mount> const & mount ) {
      if ( mounts_.size() == 1 ) {
         return false;
      }
      std::erase( mounts_, mount );
      mount->servedIs( MountState::waiting, nullptr );
      return true;
   }
   void close() {
      closed_ = true;
      end( MountState::waiting );
   }

   void stateIs( MountState state, Vel::Name const & typeName ) {
      end( state == MountState::mounted ? MountState::waiting : state );
      if ( state != MountState::mounted || closed_ ) {
         return;
      }
      bool const writing = what->mode() == MountMode::write;
      EntityManager & manager = session_.manager_;
      Vel::Ptr<Vel::Entity> entity = writing ? manager.entity( what->place() ) : nullptr;
      bool const there = static_cast<bool>( entity );
      if ( !there ) {
         entity = Vel::TypeRegistry::newEntity( typeName, lastName( what->place() ) );
      }
      if ( !entity || !isOfType( *entity, what->typeName() ) ) {
         say( entity ? MountState::wrongType : MountState::unknownType );
      } else if ( !writing ) {
         entity_ = entity;
         in_.placeIs( *manager.root(), *entity, what->place() );
      } else if ( !there && !manager.entityIs( what->place(), entity ) ) {
         say( MountState::taken );
      } else if ( !closed_ ) {
         entity_ = entity;
         adaptor_ = Vel::NboAttrLogSa::attached( *entity, session_.flow_, number_ | ownLog );
         say( MountState::mounted );
      }
   }
   void apply( std::string_view bytes ) {
      // A handler may end the mount.
      if ( Vel::Ptr<Vel::Entity> const replica = adaptor_ ? nullptr : entity_ ) {
         Vel::NboAttrLog log( bytes );
         replica->doHandleAttrDeserialization( log, in_ );
      }
   }
   void imageIs() {
      whole_ = true;
      place();
   }
   void resolve( Vel::Name const & path ) { in_.resolve( path ); }
   [[nodiscard]] std::map<Vel::Name, Vel::Name> unmade() const {
      return entity_ ? in_.unmade( *entity_ ) : std::map<Vel::Name, Vel::Name>();
   }

   Vel::Ptr<Mount> const
      what; // the first mount: path, place, type, mode and filter are those of all

 private:
   /// Puts the whole replica into the tree. What points to it is set before it is said to be there.
   void place() {
      auto const self = shared_from_this();
      Vel::Ptr<Vel::Entity> const replica = entity_;
      if ( !replica || !whole_ || placed_ || adaptor_ ) {
         return;
      }
      EntityManager & manager = session_.manager_;
      watch_ = nullptr;
      placed_ = true;
      bool const free = manager.entityIs( what->place(), replica );
      if ( !( entity_ == replica ) ) { // those who were told have ended it
         takeOut( replica );
         return;
      }
      if ( !free ) { // it waits, and is kept up to date
         placed_ = false;
         watch_ = std::make_unique<PathWatch>( manager.root(), what->place(), [this] { place(); } );
         say( MountState::taken );
         return;
      }
      session_.resolve( what->place() );
      if ( entity_ == replica ) {
         say( MountState::mounted );
      }
   }
   void takeOut( Vel::Ptr<Vel::Entity> const & replica ) {
      if ( session_.manager_.entity( what->place() ) == replica ) {
         session_.manager_.entityDel( what->place() );
      }
   }
   void say( MountState state ) {
      state_ = state;
      uint64_t const turn = ++turns_;
      for ( auto const & mount : std::vector( mounts_ ) ) {
         if ( turn == turns_ && has( mount ) ) {
            tell( *mount );
         }
      }
   }
   void tell( Mount & mount ) {
      mount.servedIs( state_, state_ == MountState::mounted ? entity_ : nullptr );
   }
   /// What was mounted is no more: a replica goes from the tree.
   void end( MountState state ) {
      auto const self = shared_from_this();
      auto const entity = std::exchange( entity_, nullptr );
      bool const replica = std::exchange( placed_, false );
      adaptor_ = nullptr;
      watch_ = nullptr;
      whole_ = false;
      say( state );
      if ( !entity_ ) {
         in_.clear();
      }
      if ( replica ) {
         takeOut( entity );
         session_.resolve( what->place() );
      }
   }

   Session & session_;
   uint32_t number_;
   std::vector<Vel::Ptr<Mount>> mounts_;
   MountState state_ = MountState::waiting;
   uint64_t turns_ = 0;
   bool closed_ = false;
   Vel::Ptr<Vel::Entity> entity_; // the replica, or what is written
   bool whole_ = false;           // the replica has its image
   bool placed_ = false;          // it is in the tree
   std::unique_ptr<PathWatch> watch_;
   Vel::Ptr<Vel::NboAttrLogSa> adaptor_;
   Vel::FlowIn in_;
};

void Session::ownMountIs( Vel::Ptr<Mount> const & mount ) {
   std::size_t const bytes = bytesOf( *mount ) + 64; // for all that has a fixed size
   if ( !isMountPath( mount->name() ) || bytes > longestQuestion ) {
      mount->servedIs( MountState::refused, nullptr );
      return;
   }
   if ( mount->name().empty() ) {
      mount->servedIs( MountState::taken, nullptr ); // by this side's own root
      return;
   }
   for ( auto const & entry : mounted_ ) {
      if ( auto const shared = entry.second; shared->suits( *mount ) ) {
         shared->mountIs( mount );
         return;
      }
   }
   uint32_t const number = ++lastNumber_;
   mounted_.emplace( number, std::make_shared<Mounted>( *this, number, mount ) );
   mountsDue_.insert( number );
}

Session::MountedByNumber::const_iterator Session::ownMount( Vel::Ptr<Mount> const & mount ) const {
   return std::ranges::find_if( mounted_,
                                [&]( auto const & entry ) { return entry.second->has( mount ); } );
}

void Session::ownMountDel( Vel::Ptr<Mount> const & mount ) {
   auto const found = ownMount( mount );
   if ( found != mounted_.end() && !found->second->mountDel( mount ) ) {
      if ( mountsDue_.erase( found->first ) == 0 ) { // the peer has heard of it
         unmountsDue_.insert( found->first );
      }
      auto const ended = found->second;
      mounted_.erase( found );
      ended->close();
   }
}

std::map<Vel::Name, Vel::Name> Session::unmade( Vel::Ptr<Mount> const & mount ) const {
   auto const found = ownMount( mount );
   return found != mounted_.end() ? found->second->unmade() : std::map<Vel::Name, Vel::Name>();
}

/// What pointers lead to has come to a path, or gone from it.
void Session::resolve( Vel::Name const & path ) {
   for ( auto const & other : std::map( mounted_ ) ) {
      other.second->resolve( path );
   }
}

void Session::mountGroupIs( Vel::Ptr<MountGroup> const & group ) {
   groups_.push_back( std::make_shared<GroupWatch>(
      group, [this]( auto const & mount ) { ownMountIs( mount ); },
      [this]( auto const & mount ) { ownMountDel( mount ); } ) );
   std::shared_ptr( groups_.back() )->beginAll();
}

Session::Session( EntityManager & manager, PeerMayWrite mayWrite )
   : manager_( manager ), mayWrite_( mayWrite ), flow_( new Vel::FlowOut ) {
   message( Message::hello, greeting );
}

Session::~Session() {
   groups_.clear();
   while ( !mounted_.empty() ) {
      auto const ended = std::move( mounted_.begin()->second );
      mounted_.erase( mounted_.begin() );
      ended->close();
   }
   serving_.clear();
}

std::shared_ptr<Session::Mounted> Session::mountedOf( uint32_t number ) const {
   if ( number == 0 || number > lastNumber_ ) {
      refuse( "a message for mount " + std::to_string( number ) + ", which there never was" );
   }
   auto const found = mounted_.find( number );
   return found != mounted_.end() ? found->second : nullptr;
}

std::shared_ptr<Session::Serving> Session::servingOf( uint32_t number ) const {
   if ( number == 0 || number > lastPeerNumber_ ) {
      refuse( "a message for mount " + std::to_string( number ) + ", which there never was" );
   }
   auto const found = serving_.find( number );
   return found != serving_.end() ? found->second : nullptr;
}

// Bytes out

namespace {

void writeField( Vel::NboAttrLog & log, std::vector<Vel::Name> const & names ) {
   for ( Vel::Name const & name : names ) {
      log.write( name );
   }
}
template <typename T>
void writeField( Vel::NboAttrLog & log, T const & field ) {
   log.write( field );
}
void writeField( Vel::NboAttrLog & log, std::string_view bytes ) {
   if ( !bytes.empty() ) {
      std::memcpy( log.append( bytes.size() ), bytes.data(), bytes.size() );
   }
}

/// Appends a message to what is to be sent.
template <typename... Fields>
void appendFrame( std::string & to, uint8_t kind, Fields const &... fields ) {
   Vel::NboAttrLog log;
   log.write( uint32_t( 0 ) );
   log.write( kind );
   ( writeField( log, fields ), ... );
   log.numberIs( 0, static_cast<uint32_t>( log.bytes().size() - lengthSize ) );
   to += log.bytes();
}

} // namespace

template <typename... Fields>
void Session::message( Message kind, Fields const &... fields ) {
   appendFrame( control_, static_cast<uint8_t>( kind ), fields... );
}

void Session::Serving::writeState( std::string & to ) const {
   Vel::Entity const * const target = mount_->target();
   bool const mounted = target && mount_->state() == MountState::mounted;
   appendFrame( to, static_cast<uint8_t>( Message::state ), number_, mount_->state(),
                Vel::Name( mounted ? target->velModel().typeName : std::string_view() ) );
}

void Session::writeDue() {
   for ( uint32_t const number : std::exchange( unmountsDue_, {} ) ) {
      appendFrame( out_, static_cast<uint8_t>( Message::unmount ), number );
   }
   for ( uint32_t const number : std::exchange( mountsDue_, {} ) ) {
      Mount const & mount = *mounted_.at( number )->what;
      appendFrame( out_, static_cast<uint8_t>( Message::mount ), number, mount.name(),
                   mount.typeName(), static_cast<uint8_t>( mount.mode() ), mount.filter().only );
   }
   for ( uint32_t const number : std::exchange( statesDue_, {} ) ) {
      serving_.at( number )->writeState( out_ );
   }
}

bool Session::wantsToReceive() const {
   return !over_ && control_.size() < controlWaits;
}

bool Session::wantsToSend() const {
   return !over_ && ( sent_ < out_.size() || !control_.empty() || !statesDue_.empty() ||
                      !mountsDue_.empty() || !unmountsDue_.empty() || flow_->pending() );
}

std::size_t Session::waitingBytes() const {
   return out_.size() - sent_ + control_.size() + flow_->waitingBytes();
}

std::string_view Session::toSend( std::size_t most ) {
   while ( sent_ == out_.size() && wantsToSend() ) {
      makeFrame();
   }
   return over_ ? std::string_view() : std::string_view( out_ ).substr( sent_, most );
}

void Session::sent( std::size_t count ) {
   sent_ = std::min( sent_ + count, out_.size() );
}

void Session::makeFrame() {
   sent_ = 0;
   out_.clear();
   if ( out_.capacity() > 1024 * 1024 ) {
      out_.shrink_to_fit();
   }
   if ( !control_.empty() ) {
      std::swap( out_, control_ );
      return;
   }
   writeDue(); // before all logs, which are of mounts as they are now
   if ( !out_.empty() ) {
      return;
   }
   std::string_view const piece = flow_->piece();
   if ( !piece.empty() ) {
      bool const own = flow_->tag() & ownLog;
      appendFrame( out_, static_cast<uint8_t>( own ? Message::writtenLog : Message::mountedLog ),
                   flow_->tag() & ~ownLog, piece );
   }
   for ( auto const & [number, serving] : serving_ ) {
      if ( serving->takeComplete() ) {
         message( Message::image, number );
      }
   }
}

// Bytes in

void Session::receive( std::string_view bytes ) {
   if ( over_ ) {
      refuse( "over since an earlier problem" );
   }
   in_ += bytes;
   std::size_t at = 0;
   try {
      while ( in_.size() - at >= lengthSize ) {
         Vel::NboAttrLog head( std::string_view( in_ ).substr( at, lengthSize ) );
         std::size_t const length = head.read<uint32_t>();
         std::string_view const kind = std::string_view( in_ ).substr( at + lengthSize, 1 );
         if ( length == 0 || length > longestMessage( kind ) ) {
            refuse( "a message of " + std::to_string( length ) + " bytes" );
         }
         if ( in_.size() - at - lengthSize < length ) {
            break;
         }
         std::string const frame = in_.substr( at + lengthSize, length );
         at += lengthSize + length;
         take( frame );
         if ( control_.size() > controlMost ) {
            refuse( "more questions than answers are taken" );
         }
      }
   } catch ( Vel::AttrLogException const & problem ) {
      over_ = true;
      refuse( problem.what() );
   } catch ( ... ) { // also of a handler, behind which the rest of a log is lost
      over_ = true;
      throw;
   }
   in_.erase( 0, at );
}

/// Only a log may be long, and only of a peer that has logs to send; the kind may not be there yet.
std::size_t Session::longestMessage( std::string_view kind ) const {
   if ( !greeted_ ) {
      return longestHello;
   }
   auto const maybe = [kind]( Message one ) {
      return kind.empty() || static_cast<Message>( kind[0] ) == one;
   };
   bool const log = ( lastNumber_ != 0 && maybe( Message::mountedLog ) ) ||
                    ( mayWrite_ == PeerMayWrite::yes && maybe( Message::writtenLog ) );
   return log ? longestFrame : longestQuestion;
}

void Session::take( std::string_view frame ) {
   auto const kind = static_cast<Message>( frame[0] );
   Vel::NboAttrLog body( frame.substr( 1 ) );
   if ( !greeted_ ) {
      if ( kind != Message::hello || body.read<uint32_t>() != greeting ) {
         refuse( "the peer speaks something else" );
      }
      greeted_ = true;
      return;
   }
   switch ( kind ) {
   case Message::mount:
      return takeMount( body );
   case Message::unmount: {
      uint32_t const number = body.read<uint32_t>();
      auto const ended = servingOf( number );
      serving_.erase( number );
      return;
   }
   case Message::state:
      return takeState( body );
   case Message::image:
      if ( auto const mounted = mountedOf( body.read<uint32_t>() ) ) {
         mounted->imageIs();
      }
      return;
   case Message::mountedLog:
   case Message::writtenLog: {
      uint32_t const number = body.read<uint32_t>();
      return takeLog( kind, number, body.bytes().substr( body.position() ) );
   }
   default:
      refuse( "a message of unknown kind " + std::to_string( frame[0] ) );
   }
}

void Session::takeMount( Vel::NboAttrLog & body ) {
   uint32_t const number = body.read<uint32_t>();
   auto const path = body.read<Vel::Name>();
   auto const typeName = body.read<Vel::Name>();
   uint8_t const mode = body.read<uint8_t>();
   MountFilter filter;
   while ( body.position() < body.bytes().size() ) {
      filter.only.push_back( body.read<Vel::Name>() );
   }
   if ( number <= lastPeerNumber_ || number >= ownLog ) {
      refuse( "mount " + std::to_string( number ) + " once more" );
   }
   if ( mode > static_cast<uint8_t>( MountMode::write ) ) {
      refuse( "a mode that is none" );
   }
   if ( serving_.size() == mostMounts ) {
      refuse( "too many mounts" );
   }
   if ( std::ranges::count_if( serving_, [&]( auto const & entry ) {
           return entry.second->isOf( path );
        } ) == mostOfOnePath ) {
      refuse( "too many mounts of one path" );
   }
   lastPeerNumber_ = number;
   if ( !isMountPath( path ) ||
        ( static_cast<MountMode>( mode ) == MountMode::write && mayWrite_ == PeerMayWrite::no ) ) {
      message( Message::state, number, MountState::refused, Vel::Name() );
      return;
   }
   Vel::Ptr<Mount> const mount(
      new Mount( path, typeName, std::move( filter ), static_cast<MountMode>( mode ) ) );
   if ( peerMountBytes_ + bytesOf( *mount ) > mostMountBytes ) {
      refuse( "too long mounts" );
   }
   serving_.emplace( number, std::make_shared<Serving>( *this, number, mount ) );
}

void Session::takeState( Vel::NboAttrLog & body ) {
   auto const mounted = mountedOf( body.read<uint32_t>() );
   auto const state = body.read<MountState>();
   auto const typeName = body.read<Vel::Name>();
   if ( mounted ) {
      mounted->stateIs( state, typeName );
   }
}

void Session::takeLog( Message kind, uint32_t number, std::string_view log ) {
   if ( kind == Message::mountedLog ) {
      if ( auto const mounted = mountedOf( number ) ) {
         mounted->apply( log );
      }
   } else if ( auto const serving = servingOf( number ) ) {
      serving->apply( log );
   }
}

} // namespace Statedb
