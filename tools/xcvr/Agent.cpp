#include "tools/xcvr/Agent.h"

#include "tools/xcvr/Module.h"
#include "tools/xcvr/Server.h"
#include "tools/xcvr/StatusImage.h"
#include "tools/xcvr/StatusPaths.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fmt/format.h>
#include <set>
#include <sys/signalfd.h>
#include <unistd.h>

namespace XcvrTool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds lookEvery( 200 );
constexpr std::chrono::milliseconds mayGrow( 2000 ); // a file that looks cut

/// Whether these are of one module. Its revision and date may have been read wrongly, or be mended.
bool isSameModule( Xcvr::VendorInfo const & a, Xcvr::VendorInfo const & b ) {
   return a.vendorName() == b.vendorName() && a.vendorPn() == b.vendorPn() &&
          a.vendorSn() == b.vendorSn();
}

std::pair<std::string, std::string> slotOf( std::string const & option ) {
   std::size_t const end = std::min( option.find( '=' ), option.size() );
   return { option.substr( 0, end ), option.substr( std::min( end + 1, option.size() ) ) };
}

/// Makes an entity as the other is, which has the same type: what is so already is left alone.
void copy( Xcvr::XcvrNewStatus const & from, Xcvr::XcvrNewStatus & to ) {
   Vel::Ptr<Vel::FlowOut> const flow( new Vel::FlowOut );
   auto const adaptor = Vel::NboAttrLogSa::attached( from, flow, 0 );
   while ( flow->pending() ) {
      Vel::NboAttrLog log( flow->piece() );
      to.doHandleAttrDeserialization( log );
   }
}

} // namespace

std::optional<FileSlot::Version> FileSlot::version() const {
   struct stat status {};
   if ( ::stat( file_.c_str(), &status ) != 0 ) {
      // What cannot be seen for another reason is complained of when it is read.
      return errno == ENOENT || errno == ENOTDIR ? std::optional<Version>() : Version{};
   }
   return Version{ status.st_dev, status.st_ino, status.st_size, status.st_ctim };
}

void FileSlot::look( SlotSet & set, Console const & console ) {
   std::optional<Version> const now = version();
   if ( now != std::exchange( seen_, now ) ) {
      changedAt_ = Clock::now();
   } else if ( now != done_ || isAgain_ ) {
      done_ = now;
      isAgain_ = false;
      now ? read( set, console ) : remove( set, console );
   }
}

void FileSlot::read( SlotSet & set, Console const & console ) {
   auto const complain = [&]( std::string const & text ) {
      if ( text != std::exchange( complaint_, text ) ) {
         console.complain( fmt::format( "{}: {}", shownFileName( name_.view() ), text ) );
      }
   };
   struct stat status {};
   if ( ::stat( file_.c_str(), &status ) == 0 && !S_ISREG( status.st_mode ) ) {
      complain( shownFileName( file_ ) +
                ": is no regular file; give one with a module's image; the "
                "slot stays as it was" );
      return;
   }
   try {
      isAgain_ = true; // what stands in the way of reading may go without a change of the file
      std::string const content = readContent( file_ );
      isAgain_ = false;
      auto const module = moduleOf( parseImage( file_, content, anyFamily ) );
      if ( !module->image().warnings.empty() && Clock::now() < changedAt_ + mayGrow ) {
         isAgain_ = true;
         return;
      }
      write( set, module->status(), console );
      std::string warnings;
      for ( std::string const & warning : module->image().warnings ) {
         warnings += fmt::format( "{}: warning: {}", shownFileName( file_ ), warning );
      }
      warnings.empty() ? complaint_.clear() : complain( warnings );
   } catch ( ImageError const & error ) {
      complain( fmt::format( "{}; the slot stays as it was", error.what() ) );
   }
}

void FileSlot::write( SlotSet & set, Xcvr::XcvrNewStatus const & read, Console const & console ) {
   std::string_view const type = read.velModel().typeName;
   bool const isNew = !status_ || status_->velModel().typeName != type ||
                      !isSameModule( status_->vendorInfo(), read.vendorInfo() );
   if ( isNew ) {
      if ( status_ ) { // the one before goes, for readers as the other comes
         ++presenceChanges_;
         console.print( fmt::format( "{}: removed", shownFileName( name_.view() ) ) );
      }
      status_ = Vel::dynamicPtr<Xcvr::XcvrNewStatus>( Vel::TypeRegistry::newEntity( type, name_ ) );
      ++presenceChanges_;
   }
   copy( read, *status_ );
   status_->presenceChangesInc( presenceChanges_ );
   if ( isNew ) {
      set.statusIs( status_ );
   }
   console.print( fmt::format( "{}: {}: {}", shownFileName( name_.view() ),
                               isNew ? "inserted" : "read again", moduleSummary( *status_ ) ) );
}

void FileSlot::remove( SlotSet & set, Console const & console ) {
   complaint_.clear();
   if ( std::exchange( status_, nullptr ) ) {
      ++presenceChanges_;
      set.statusDel( name_ );
      console.print( fmt::format( "{}: removed", shownFileName( name_.view() ) ) );
   }
}

std::string problemOf( AgentOptions const & options ) {
   std::set<std::string> names;
   for ( std::string const & option : options.slots ) {
      auto const [name, file] = slotOf( option );
      if ( name.empty() || file.empty() || file == "-" ) {
         return fmt::format( "--slot {}: has to be NAME=FILE", option );
      }
      if ( !names.insert( name ).second ) {
         return fmt::format( "--slot {}: there is a slot of that name", option );
      }
   }
   return options.slice.find( '/' ) != std::string::npos
             ? fmt::format( "--slice {}: has to be a name without /", options.slice )
             : "";
}

void runAgent( AgentOptions const & options, Console const & console ) {
   sigset_t signals;
   ::sigemptyset( &signals );
   ::sigaddset( &signals, SIGINT );
   ::sigaddset( &signals, SIGTERM );
   ::sigaddset( &signals, SIGHUP );
   ::sigprocmask( SIG_BLOCK, &signals, nullptr );
   Descriptor const ended( ::signalfd( -1, &signals, SFD_CLOEXEC | SFD_NONBLOCK ) );
   if ( ended.fd() < 0 ) {
      throw SocketError( fmt::format( "signals cannot be waited for ({}); close other programs",
                                      std::strerror( errno ) ) );
   }

   Statedb::EntityManager tree;
   Vel::Ptr<Vel::Entity> const forAllReaders[] = { Xcvr::modelToAttenuationFactory( "attenuation" ),
                                                   Xcvr::xgcFactory( "xgc" ) };
   for ( auto const & entity : forAllReaders ) {
      tree.entityIs( "hardware/xcvr/" + entity->name(), entity );
   }
   SlotSet set( tree, options.slice.empty() ? StatusPaths::fixed
                                            : StatusPaths::slice + "/" + options.slice );
   std::vector<FileSlot> slots;
   for ( std::string const & option : options.slots ) {
      auto const [name, file] = slotOf( option );
      slots.emplace_back( name, file );
   }
   Server server( options.socket, tree, console.complain );
   console.print( fmt::format( "serving {} slot{} on {}", slots.size(),
                               slots.size() == 1 ? "" : "s", shownFileName( options.socket ) ) );
   // Readers that come meanwhile wait for the second look, which inserts what is there.
   for ( FileSlot & slot : slots ) {
      slot.look( set, console );
   }
   std::vector<pollfd> what = { { .fd = ended.fd(), .events = POLLIN, .revents = 0 } };
   waitFor( what, static_cast<int>( lookEvery.count() ) );
   Clock::time_point nextLook;
   for ( signalfd_siginfo signal; ::read( ended.fd(), &signal, sizeof signal ) < 0; ) {
      if ( Clock::now() >= nextLook ) {
         for ( FileSlot & slot : slots ) {
            slot.look( set, console );
         }
         nextLook = Clock::now() + lookEvery;
      }
      server.turn( static_cast<int>( lookEvery.count() ), ended.fd() );
   }
}

} // namespace XcvrTool
