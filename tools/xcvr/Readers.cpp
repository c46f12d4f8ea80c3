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

constexpr std::chrono::milliseconds retryAfter( 300 );

/// What is there, if it is of that type.
template <typename T>
Vel::Ptr<T> at( Statedb::EntityManager const & tree, Vel::Name const & path ) {
   return Vel::dynamicPtr<T>( tree.entity( path ) );
}

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
      return fail( said_.empty() ? error.what() : said_ ); // the cause has been told
   }
   mounts_ = new Statedb::MountGroup( "agent" );
   mounts_->mountIs(
      new Mount( StatusPaths::agents, "Vel::Dir", {}, Statedb::MountMode::read, place_ ) );
   needed_ = { StatusPaths::agents };
   stream_->session().mountGroupIs( mounts_ );
}

void Remote::fail( std::string const & problem ) {
   hasFailed_ = true;
   stream_ = nullptr; // and with it all that it had mounted
   sets_.clear();
   needed_.clear();
   retryAt_ = Clock::now() + retryAfter;
   if ( problem != std::exchange( said_, problem ) ) {
      say_( problem );
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
         return fail( name + ": the agent has gone; start it again" );
      }
   } catch ( Statedb::ProtocolException const & problem ) {
      return fail( fmt::format( "{}: no agent of this kind ({}); give the socket of an xcvr agent",
                                name, problem.what() ) );
   }
   mountSets();
   for ( Vel::Name const & path : needed_ ) {
      MountState const state = mounts_->mount( path )->state();
      if ( state != MountState::mounted && state != MountState::waiting ) {
         return fail( fmt::format( "{}: {} cannot be mounted ({}); give agents of different slices",
                                   name, shownFileName( path.view() ),
                                   stringValue( state ).view() ) );
      }
   }
   if ( isComplete() ) {
      hasFailed_ = false;
      said_.clear();
   }
}

void Remote::mountSets() {
   auto const served = at<Vel::Dir>( tree_, place_ );
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
      return Vel::Ptr<Mount>( new Mount( path, type ) );
   };
   mounts_->mountIs( mount( StatusPaths::config( set ), "Xcvr::AllConfigDir" ) );
   mounts_->mountIs( mount( StatusPaths::agent( set ), "Xcvr::XcvrSliceStatus" ) );
   Xcvr::Mounter::doMountXcvrStatus( mounts_, mount( StatusPaths::status( set ), "Vel::Dir" ) );
}

bool Remote::isComplete() const {
   auto const isMounted = [&]( Vel::Name const & path ) {
      return mounts_->mount( path )->state() == MountState::mounted;
   };
   auto const hasCaughtUp = [&]( Vel::Name const & set ) {
      auto const config = at<Xcvr::AllConfigDir>( tree_, StatusPaths::config( set ) );
      auto const agent = at<Xcvr::XcvrSliceStatus>( tree_, StatusPaths::agent( set ) );
      return config && agent && config->generationId() == agent->generationId();
   };
   return isConnected() && !sets_.empty() && std::ranges::all_of( needed_, isMounted ) &&
          std::ranges::all_of( sets_, hasCaughtUp );
}

Readers::Readers( std::vector<std::string> const & sockets, Remote::Say const & say ) {
   for ( auto const & path :
         { StatusPaths::config( StatusPaths::slice ), StatusPaths::agent( StatusPaths::slice ),
           StatusPaths::status( StatusPaths::slice ) } ) {
      tree_.entityIs( path, Vel::dirFactory( StatusPaths::slice ) );
   }
   for ( std::string const & socket : sockets ) {
      Vel::Name const place( fmt::format( "agents/{}", remotes_.size() ) );
      remotes_.push_back( std::make_unique<Remote>( socket, tree_, place, say ) );
   }
   mergeFixed();
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
   mergeFixed();
   return any;
}

/// The entry point takes its inputs once. Those of slices are this side's own directories, in which
/// slices come and go; those of the fixed transceivers come and go themselves, and then it is made
/// anew.
void Readers::mergeFixed() {
   auto config = at<Xcvr::AllConfigDir>( tree_, StatusPaths::config( StatusPaths::fixed ) );
   auto agent = at<Xcvr::XcvrSliceStatus>( tree_, StatusPaths::agent( StatusPaths::fixed ) );
   auto status = at<Vel::Dir>( tree_, StatusPaths::status( StatusPaths::fixed ) );
   if ( !config || !agent || !status ) {
      config = noConfig_;
      agent = noAgent_;
      status = noStatus_;
   }
   if ( merged_ && merged_->fixedConfigDir() == config.get() &&
        merged_->fixedAgentStatus() == agent.get() && merged_->fixedStatusDir() == status.get() ) {
      return;
   }
   merged_ = Xcvr::xcvrAllStatusDirSingletonFactory( "xcvrAllStatus" );
   merged_->sliceStatusDirIs( at<Vel::Dir>( tree_, StatusPaths::status( StatusPaths::slice ) ) );
   merged_->fixedStatusDirIs( status );
   merged_->baseConfigDirIs( at<Vel::Dir>( tree_, "hardware/xcvr/config" ) );
   merged_->fixedConfigDirIs( config );
   merged_->agentStatusDirIs( at<Vel::Dir>( tree_, StatusPaths::agent( StatusPaths::slice ) ) );
   merged_->fixedAgentStatusIs( agent );
   merged_->doStartSm();
}

bool Readers::isSettled() const {
   return std::ranges::all_of( remotes_, []( auto const & remote ) {
      return !remote->isConnected() || remote->isComplete();
   } );
}

bool Readers::allComplete() const {
   return std::ranges::all_of( remotes_,
                               []( auto const & remote ) { return remote->isComplete(); } );
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
