#include "tools/xcvr/Readers.h"

#include "tools/xcvr/StatusPaths.h"
#include "tools/xcvr/Text.h"

#include <Xcvr/XcvrMountHelper.h>

#include <algorithm>
#include <cstring>
#include <fmt/format.h>

namespace XcvrTool {

namespace {

using Clock = std::chrono::steady_clock;
using Statedb::Mount;
using Statedb::MountState;

constexpr std::chrono::milliseconds longestPause( 10000 ); // of retries

} // namespace

Remote::Remote( std::string socket, Statedb::EntityManager & tree, Vel::Name place, Say say )
   : socket_( std::move( socket ) ), tree_( tree ), place_( std::move( place ) ),
     say_( std::move( say ) ) {}

void Remote::connect() {
   if ( isConnected() || Clock::now() < retryAt_ ) {
      return;
   }
   try {
      stream_ = std::make_unique<Stream>( connectTo( socket_ ), tree_ );
   } catch ( SocketError const & error ) {
      // Of one that was reached before, the cause has been told.
      return fail( said_ == Problem::none ? Problem::unreachable : said_, error.what() );
   }
   mounts_ = new Statedb::MountGroup( "agent" );
   mounts_->mountIs( new Mount( StatusPaths::agents, "Vel::Dir", {}, Statedb::MountMode::read,
                                place_ + "/served" ) );
   needed_ = { StatusPaths::agents };
   stream_->session().mountGroupIs( mounts_ );
}

void Remote::fail( Problem kind, std::string const & text ) {
   hasFailed_ = true;
   stream_ = nullptr; // and with it all that it had mounted
   sets_.clear();
   needed_.clear();
   retryAt_ = Clock::now() + pause_;
   pause_ = kind == Problem::stranger ? std::min( 2 * pause_, longestPause ) : firstPause;
   if ( kind != std::exchange( said_, kind ) ) {
      say_( text );
   }
}

pollfd Remote::waitsFor() const {
   return stream_ ? stream_->waitsFor() : pollfd{ .fd = -1, .events = 0, .revents = 0 };
}

void Remote::step( short events ) {
   if ( !stream_ ) {
      return;
   }
   std::string const name = shownFileName( socket_ );
   try {
      if ( !stream_->step( events ) ) {
         return fail( Problem::gone, name + ": the agent has gone; start it again" );
      }
   } catch ( Statedb::ProtocolException const & problem ) {
      return fail( Problem::stranger,
                   fmt::format( "{}: no agent of this kind ({}); give the socket of an xcvr agent",
                                name, problem.what() ) );
   }
   mountSets();
   if ( std::string const wrong = problem(); !wrong.empty() ) {
      return fail( Problem::stranger,
                   fmt::format( "{}: {}; give the socket of an xcvr agent", name, wrong ) );
   }
   if ( isComplete() ) {
      hasFailed_ = false;
      said_ = Problem::none;
      pause_ = firstPause;
   }
}

/// What an agent of this kind would not serve. Its word is all that there is.
std::string Remote::problem() const {
   for ( Vel::Name const & path : needed_ ) {
      MountState const state = mounts_->mount( path )->state();
      if ( state != MountState::mounted && state != MountState::waiting ) {
         return fmt::format( "{} cannot be mounted ({})", shownFileName( path.view() ),
                             stringValue( state ).view() );
      }
   }
   for ( Vel::Name const & set : sets_ ) {
      for ( auto const & [slot, status] : statuses( set ) ) {
         if ( !status ) {
            return fmt::format( "what it serves as {} is no transceiver's status",
                                shownFileName( slot.view() ) );
         }
      }
   }
   return "";
}

void Remote::leftOutIs( std::set<std::string> const & leftOut ) {
   for ( std::string const & one : leftOut ) {
      if ( !leftOut_.contains( one ) ) {
         say_( fmt::format( "{}: {}", shownFileName( socket_ ), one ) );
      }
   }
   leftOut_ = leftOut;
}

/// What is mounted of a path of the agent, if it is of that type.
template <typename T>
Vel::Ptr<T> Remote::at( Vel::Name const & path ) const {
   return Vel::dynamicPtr<T>( tree_.entity( place_ + "/" + path ) );
}

void Remote::mountSets() {
   auto const served = Vel::dynamicPtr<Vel::Dir>( tree_.entity( place_ + "/served" ) );
   if ( !served || !sets_.empty() ) {
      return;
   }
   if ( served->entryHas( StatusPaths::fixed ) ) {
      mountSet( StatusPaths::fixed );
   }
   if ( auto const slices = Vel::dynamicPtr<Vel::Dir>( served->entry( StatusPaths::slice ) ) ) {
      for ( auto const & entry : slices->entryMap() ) {
         mountSet( StatusPaths::slice + "/" + entry.first );
      }
   }
}

void Remote::mountSet( Vel::Name const & set ) {
   sets_.push_back( set );
   auto const mount = [&]( Vel::Name const & path, char const * type ) {
      needed_.push_back( path );
      return Vel::Ptr<Mount>(
         new Mount( path, type, {}, Statedb::MountMode::read, place_ + "/" + path ) );
   };
   mounts_->mountIs( mount( StatusPaths::config( set ), "Xcvr::AllConfigDir" ) );
   mounts_->mountIs( mount( StatusPaths::agent( set ), "Xcvr::XcvrSliceStatus" ) );
   Xcvr::Mounter::doMountXcvrStatus( mounts_, mount( StatusPaths::status( set ), "Vel::Dir" ) );
}

SlotSet::Statuses Remote::statuses( Vel::Name const & set ) const {
   SlotSet::Statuses all;
   if ( auto const served = at<Vel::Dir>( StatusPaths::status( set ) ) ) {
      for ( auto const & [slot, entry] : served->entryMap() ) {
         all[slot] = Vel::dynamicPtr<Xcvr::XcvrNewStatus>( entry );
      }
   }
   return all;
}

std::map<Vel::Name, Vel::Name> Remote::unmade( Vel::Name const & set ) const {
   return stream_->session().unmade( mounts_->mount( StatusPaths::status( set ) ) );
}

std::optional<uint32_t> Remote::generation( Vel::Name const & set ) const {
   auto const config = at<Xcvr::AllConfigDir>( StatusPaths::config( set ) );
   auto const agent = at<Xcvr::XcvrSliceStatus>( StatusPaths::agent( set ) );
   if ( config && agent && at<Vel::Dir>( StatusPaths::status( set ) ) && config->ready() &&
        config->generationId() == agent->generationId() ) {
      return config->generationId();
   }
   return std::nullopt;
}

bool Remote::isComplete() const {
   auto const isMounted = [&]( Vel::Name const & path ) {
      return mounts_->mount( path )->state() == MountState::mounted;
   };
   return isConnected() && !sets_.empty() && std::ranges::all_of( needed_, isMounted ) &&
          std::ranges::all_of(
             sets_, [&]( Vel::Name const & set ) { return generation( set ).has_value(); } );
}

Readers::Readers( std::vector<std::string> const & sockets, Remote::Say const & say )
   : merged_( Xcvr::xcvrAllStatusDirSingletonFactory( "xcvrAllStatus" ) ) {
   for ( auto const & path :
         { StatusPaths::config( StatusPaths::slice ), StatusPaths::agent( StatusPaths::slice ),
           StatusPaths::status( StatusPaths::slice ) } ) {
      tree_.entityIs( path, Vel::dirFactory( StatusPaths::slice ) );
   }
   for ( std::string const & socket : sockets ) {
      checkSocketName( socket );
      Vel::Name const place( fmt::format( "agents/{}", remotes_.size() ) );
      remotes_.push_back( std::make_unique<Remote>( socket, tree_, place, say ) );
   }
   sets_.try_emplace( StatusPaths::fixed, tree_, StatusPaths::fixed );
   auto const dir = [&]( Vel::Name const & path ) {
      return Vel::dynamicPtr<Vel::Dir>( tree_.entity( path ) );
   };
   merged_->sliceStatusDirIs( dir( StatusPaths::status( StatusPaths::slice ) ) );
   merged_->fixedStatusDirIs( dir( StatusPaths::status( StatusPaths::fixed ) ) );
   merged_->baseConfigDirIs( dir( "hardware/xcvr/config" ) );
   merged_->fixedConfigDirIs( Vel::dynamicPtr<Xcvr::AllConfigDir>(
      tree_.entity( StatusPaths::config( StatusPaths::fixed ) ) ) );
   merged_->agentStatusDirIs( dir( StatusPaths::agent( StatusPaths::slice ) ) );
   merged_->fixedAgentStatusIs( Vel::dynamicPtr<Xcvr::XcvrSliceStatus>(
      tree_.entity( StatusPaths::agent( StatusPaths::fixed ) ) ) );
   merged_->doStartSm();
}

Readers::~Readers() = default;

bool Readers::turn( int milliseconds ) {
   std::vector<pollfd> what;
   for ( auto const & remote : remotes_ ) {
      remote->connect();
      what.push_back( remote->waitsFor() );
   }
   waitFor( what, milliseconds );
   bool any = false;
   for ( std::size_t i = 0; i < what.size(); ++i ) {
      if ( what[i].revents ) {
         remotes_[i]->step( what[i].revents );
         any = true;
      }
   }
   merge();
   return any;
}

/// What one agent serves of a set.
struct Readers::Served {
   SlotSet::Statuses statuses;
   std::optional<SlotSet::Version> version;
};

/// The merged directory has sets of this side, into which go what agents serve once it has been looked
/// at: those who merge take only statuses, and a slot from one set only.
void Readers::merge() {
   std::map<Vel::Name, Served> served;
   std::map<Vel::Name, std::string> servers; // of sets and of slots
   for ( auto const & remote : remotes_ ) {
      remote->leftOutIs( take( *remote, servers, served ) );
   }
   for ( auto & [name, set] : sets_ ) { // first, as a slot may have gone to another set
      set.othersDel( served[name].statuses );
   }
   for ( auto & [name, set] : sets_ ) {
      set.statusesAre( served[name].statuses, served[name].version );
   }
}

/// Adds what an agent serves and those before it do not; says why the rest is left out.
std::set<std::string> Readers::take( Remote const & remote,
                                     std::map<Vel::Name, std::string> & servers,
                                     std::map<Vel::Name, Served> & served ) {
   std::set<std::string> leftOut;
   auto const isFree = [&]( Vel::Name const & what, char const * advice ) {
      auto const [server, isFirst] = servers.try_emplace( what, remote.socket() );
      if ( !isFirst ) {
         leftOut.insert( fmt::format( "{} is served by {} as well; {}",
                                      shownFileName( what.view() ), shownFileName( server->second ),
                                      advice ) );
      }
      return isFirst;
   };
   for ( Vel::Name const & set : remote.sets() ) {
      if ( isFree( StatusPaths::status( set ), "give agents of different slices" ) ) {
         SlotSet::Statuses statuses = remote.statuses( set );
         std::set<Vel::Name> others;
         std::erase_if( statuses, [&]( auto const & entry ) {
            return !isFree( entry.first, "give slots other names" ) &&
                   others.insert( entry.first ).second;
         } );
         std::optional<SlotSet::Version> version;
         if ( auto const generation = remote.generation( set ) ) {
            version = { remote.socket(), *generation, others };
         }
         served[set] = { std::move( statuses ), std::move( version ) };
         sets_.try_emplace( set, tree_, set );
      }
      for ( auto const & [slot, type] : remote.unmade( set ) ) {
         leftOut.insert( fmt::format( "{} is of type {}, which is unknown here; use an xcvr as new "
                                      "as the agent",
                                      shownFileName( slot.view() ),
                                      shownFileName( type.view() ) ) );
      }
   }
   return leftOut;
}

bool Readers::isSettled() const {
   return std::ranges::all_of( remotes_, []( auto const & remote ) {
      return !remote->isConnected() || remote->hasFailed() || remote->isComplete();
   } );
}

bool Readers::allComplete() const {
   return std::ranges::all_of( remotes_, []( auto const & remote ) {
      return remote->isComplete() && !remote->leavesOut();
   } );
}

std::vector<std::string> Readers::late() const {
   std::vector<std::string> sockets;
   for ( auto const & remote : remotes_ ) {
      if ( !remote->isComplete() && !remote->hasFailed() ) {
         sockets.push_back( remote->socket() );
      }
   }
   return sockets;
}

std::vector<Vel::Ptr<Xcvr::XcvrNewStatus const>> Readers::published() const {
   std::vector<Vel::Ptr<Xcvr::XcvrNewStatus const>> all;
   for ( auto const & entry : merged_->allStatusDir()->xcvrStatusMap() ) {
      all.push_back( entry.second );
   }
   std::ranges::sort( all, []( auto const & a, auto const & b ) {
      return ::strverscmp( std::string( a->name() ).c_str(), std::string( b->name() ).c_str() ) < 0;
   } );
   return all;
}

} // namespace XcvrTool
