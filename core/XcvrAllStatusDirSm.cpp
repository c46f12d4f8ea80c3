#include <Xcvr/XcvrAllStatusDirSm.h>

#include <Vel/Assert.h>
#include <Vel/DefineEntity.h>
#include <Vel/Trace.h>

#include <string>
#include <vector>

namespace Xcvr {

VEL_ENTITY_DEFINE( XcvrAllStatusDirSingleton, xcvrAllStatusDirSingletonFactory )

namespace {

Vel::TraceHandle const trace( "XcvrAllStatusDirSm" );

std::string note( std::string_view text, Vel::String const & name ) {
   return std::string( text ) + std::string( name );
}

/// What a handshake goes through: the directory may change under the hands of those that are told.
std::vector<Vel::Ptr<Vel::Entity>> entriesOf( Vel::Dir const & dir ) {
   std::vector<Vel::Ptr<Vel::Entity>> entries;
   entries.reserve( dir.entryMap().size() );
   for ( auto const & entry : dir.entryMap() ) {
      entries.push_back( entry.second );
   }
   return entries;
}

Vel::Ptr<XcvrNewStatus const> statusOf( Vel::Ptr<Vel::Entity> const & entry ) {
   Vel::Ptr<XcvrNewStatus> const xs = Vel::dynamicPtr<XcvrNewStatus>( entry );
   VEL_ASSERT( xs );
   return xs;
}

/// Calls an operation of a reactor for each entry of a directory that comes, goes or is replaced.
template <typename Sm>
class EntryObserver : public Vel::Dir::NotifieeConst {
 public:
   EntryObserver( Sm & sm, void ( Sm::*handle )( Vel::Name const & ) )
      : sm_( sm ), handle_( handle ) {}
   void onEntry( Vel::Name const & name ) override { ( sm_.*handle_ )( name ); }

 private:
   Sm & sm_;
   void ( Sm::*handle_ )( Vel::Name const & );
};

/// Calls an operation of a reactor when the generation of an entity changes.
template <typename T, typename Sm>
class GenerationObserver : public T::NotifieeConst {
 public:
   GenerationObserver( Sm & sm, void ( Sm::*handle )() ) : sm_( sm ), handle_( handle ) {}
   void onGenerationId() override { ( sm_.*handle_ )(); }

 private:
   Sm & sm_;
   void ( Sm::*handle_ )();
};

} // namespace

// ---------------------------------------------------------------------------------------------
// What both kinds of reactors do

void StatusPublisher::nameIs( Vel::Name const & name, bool published ) {
   if ( published ) {
      names_.try_emplace( name, true );
   } else if ( auto const found = names_.find( name ); found != names_.end() ) {
      names_.erase( found );
   }
}

void StatusPublisher::publish( Vel::Ptr<Vel::Dir> from, char const * operation ) {
   uint64_t const handshake = ++handshakes_;
   for ( auto const & entry : entriesOf( *from ) ) {
      auto const xs = statusOf( entry );
      // A handshake within this one, or the end of the reactor, has had the last word.
      if ( handshake != handshakes_ ) {
         return;
      }
      if ( from->entry( xs->name() ) == entry ) {
         nameIs( xs->name(), true );
         traceName( operation, "Adding ", xs->name() );
         to_->xcvrStatusIs( xs );
      }
   }
}

void StatusPublisher::withdraw( char const * operation ) {
   uint64_t const handshake = ++handshakes_;
   auto const names = names_; // those who are told may change the own ones
   for ( auto const & entry : names ) {
      if ( handshake != handshakes_ ) {
         return;
      }
      if ( has( entry.first ) ) {
         withdraw( entry.first, operation );
      }
   }
}

void StatusPublisher::withdraw( Vel::Name const & name, char const * operation ) {
   nameIs( name, false );
   traceName( operation, "Removing ", name );
   to_->xcvrStatusDel( name );
}

void StatusPublisher::entryIs( Vel::Name const & name, Vel::Ptr<Vel::Entity> const & entry,
                               char const * operation ) {
   if ( has( name ) && !( entry.get() == to_->xcvrStatus( name ).get() ) ) {
      withdraw( name, operation );
   }
}

void StatusPublisher::traceName( char const * operation, char const * what,
                                 Vel::Name const & name ) const {
   if ( trace.passes( 8 ) ) {
      trace.write( 8, __LINE__, operation, note( std::string( what ) + kind_ + " xcvr ", name ) );
   }
}

// ---------------------------------------------------------------------------------------------
// One slice

struct SliceStatusSm::Observers {
   explicit Observers( SliceStatusSm & sm )
      : agentStatus( sm, &SliceStatusSm::handleAgentStatusGenId ),
        sliceConfig( sm, &SliceStatusSm::handleAgentStatusGenId ),
        xcvrStatusDir( sm, &SliceStatusSm::handleXcvrStatusDir ) {}
   GenerationObserver<XcvrSliceStatus, SliceStatusSm> agentStatus;
   GenerationObserver<AllConfigDir, SliceStatusSm> sliceConfig;
   EntryObserver<SliceStatusSm> xcvrStatusDir;
};

SliceStatusSm::SliceStatusSm( AllStatusDirSm & top, Vel::String sliceId,
                              Vel::Ptr<XcvrSliceStatus> agentStatus,
                              Vel::Ptr<Vel::Dir> xcvrStatusDir,
                              Vel::Ptr<AllNewStatusDir> allStatusDir )
   : top_( &top ), sliceId_( std::move( sliceId ) ), agentStatus_( std::move( agentStatus ) ),
     xcvrStatusDir_( std::move( xcvrStatusDir ) ),
     published_( "sliced", std::move( allStatusDir ) ),
     observers_( std::make_unique<Observers>( *this ) ) {}

SliceStatusSm::~SliceStatusSm() = default;

void SliceStatusSm::sliceConfigIs( Vel::Ptr<AllConfigDir> const & config ) {
   sliceConfig_ = config;
   observers_->sliceConfig.notifierIs( config.get() );
}

void SliceStatusSm::handleInitialized() {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT( agentStatus() );
   VEL_ASSERT( xcvrStatusDir() );
   VEL_TRACE( trace, 8, note( "Creating xcvrStatus reactor for ", sliceId_ ) );
   observers_->agentStatus.notifierIs( agentStatus_.get() );
   observers_->xcvrStatusDir.notifierIs( xcvrStatusDir_.get() );
   initializedIs( true );
   handleAgentStatusGenId();
}

void SliceStatusSm::handleAgentStatusGenId() {
   if ( !initialized_ || !top_ ) {
      return;
   }
   VEL_TRACE_SCOPE( trace );
   Vel::Ptr<SliceStatusSm> const self( this ); // those who are told may end the slice
   Vel::Ptr<Vel::Dir> const & configs = top_->sliceConfigDir();
   sliceConfigIs( configs ? Vel::dynamicPtr<AllConfigDir>( configs->entry( sliceId_ ) ) : nullptr );
   if ( !sliceConfig_ ) {
      VEL_TRACE( trace, 8, std::string( sliceId_ ) + " no xcvrConfig" );
   } else {
      VEL_TRACE( trace, 8,
                 std::string( sliceId_ ) + " xcGenId " +
                    std::to_string( sliceConfig_->generationId() ) + " xsGenId " +
                    std::to_string( agentStatus_->generationId() ) );
   }
   if ( sliceConfig_ && sliceConfig_->generationId() == agentStatus_->generationId() ) {
      published_.publish( xcvrStatusDir_, __func__ );
   } else {
      published_.withdraw( __func__ );
   }
}

void SliceStatusSm::handleXcvrStatusDir( Vel::Name const & name ) {
   VEL_TRACE_SCOPE( trace );
   published_.entryIs( name, xcvrStatusDir_->entry( name ), __func__ );
}

void SliceStatusSm::close( char const * operation ) {
   Vel::Ptr<SliceStatusSm> const self( this );
   top_ = nullptr;
   observers_ = std::make_unique<Observers>( *this ); // which observe nothing
   published_.withdraw( operation );
}

// ---------------------------------------------------------------------------------------------
// All of them

struct AllStatusDirSm::Observers {
   explicit Observers( AllStatusDirSm & sm )
      : fixedConfigDir( sm, &AllStatusDirSm::handleFixedStatusGenId ),
        fixedAgentStatus( sm, &AllStatusDirSm::handleFixedStatusGenId ),
        fixedStatusDir( sm, &AllStatusDirSm::handleFixedStatusDir ),
        sliceStatusDir( sm, &AllStatusDirSm::handleSlice ),
        agentStatusDir( sm, &AllStatusDirSm::handleSlice ),
        baseConfigDir( sm, &AllStatusDirSm::handleBaseConfigDir ),
        sliceConfigDir( sm, &AllStatusDirSm::handleEntryState ) {}
   GenerationObserver<AllConfigDir, AllStatusDirSm> fixedConfigDir;
   GenerationObserver<XcvrSliceStatus, AllStatusDirSm> fixedAgentStatus;
   EntryObserver<AllStatusDirSm> fixedStatusDir;
   EntryObserver<AllStatusDirSm> sliceStatusDir;
   EntryObserver<AllStatusDirSm> agentStatusDir;
   EntryObserver<AllStatusDirSm> baseConfigDir;
   EntryObserver<AllStatusDirSm> sliceConfigDir;
};

AllStatusDirSm::AllStatusDirSm( Inputs inputs, Vel::Ptr<AllNewStatusDir> allStatusDir )
   : in_( std::move( inputs ) ), published_( "fixed", std::move( allStatusDir ) ),
     observers_( std::make_unique<Observers>( *this ) ) {
   observers_->fixedConfigDir.notifierIs( in_.fixedConfigDir.get() );
   observers_->fixedAgentStatus.notifierIs( in_.fixedAgentStatus.get() );
   observers_->fixedStatusDir.notifierIs( in_.fixedStatusDir.get() );
   observers_->sliceStatusDir.notifierIs( in_.sliceStatusDir.get() );
   observers_->agentStatusDir.notifierIs( in_.agentStatusDir.get() );
   observers_->baseConfigDir.notifierIs( in_.baseConfigDir.get() );
}

AllStatusDirSm::~AllStatusDirSm() = default;

void AllStatusDirSm::close() {
   Vel::Ptr<AllStatusDirSm> const self( this );
   initializedIs( false );
   observers_ = std::make_unique<Observers>( *this ); // which observe nothing
   in_ = {}; // a handshake or a look for slices that still runs finds nothing more
   sliceConfigDir_ = nullptr;
   sliceStatusSmDelAll();
   published_.withdraw( __func__ );
}

void AllStatusDirSm::handleInitialized() {
   VEL_TRACE_SCOPE( trace );
   Vel::Ptr<AllStatusDirSm> const self( this ); // those who are told may drop the singleton
   handleFixedStatusGenId();
   handleBaseConfigDir( "slice" );
}

void AllStatusDirSm::handleFixedStatusGenId() {
   VEL_TRACE_SCOPE( trace );
   Vel::Ptr<AllStatusDirSm> const self( this );
   if ( in_.fixedConfigDir && in_.fixedAgentStatus && in_.fixedStatusDir &&
        in_.fixedConfigDir->generationId() == in_.fixedAgentStatus->generationId() ) {
      published_.publish( in_.fixedStatusDir, __func__ );
   } else {
      published_.withdraw( __func__ );
   }
}

void AllStatusDirSm::handleFixedStatusDir( Vel::Name const & name ) {
   VEL_TRACE_SCOPE( trace );
   published_.entryIs( name, in_.fixedStatusDir ? in_.fixedStatusDir->entry( name ) : nullptr,
                       __func__ );
}

Vel::Ptr<XcvrSliceStatus> AllStatusDirSm::agentStatusOf( Vel::String const & sliceId ) const {
   return in_.agentStatusDir
             ? Vel::dynamicPtr<XcvrSliceStatus>( in_.agentStatusDir->entry( sliceId ) )
             : nullptr;
}

Vel::Ptr<Vel::Dir> AllStatusDirSm::statusDirOf( Vel::String const & sliceId ) const {
   return in_.sliceStatusDir ? Vel::dynamicPtr<Vel::Dir>( in_.sliceStatusDir->entry( sliceId ) )
                             : nullptr;
}

void AllStatusDirSm::handleNewSlice( Vel::String const & sliceId ) {
   VEL_TRACE_SCOPE( trace );
   auto const agentStatus = agentStatusOf( sliceId );
   auto const statusDir = statusDirOf( sliceId );
   if ( agentStatus && statusDir && !sliceStatusSm( sliceId ) ) {
      sliceStatusSmIs( sliceId, agentStatus, statusDir );
   }
}

void AllStatusDirSm::handleSlice( Vel::String const & sliceId ) {
   VEL_TRACE_SCOPE( trace );
   Vel::Ptr<AllStatusDirSm> const self( this );
   if ( auto const sm = sliceStatusSm( sliceId );
        sm && !( sm->agentStatus() == agentStatusOf( sliceId ) &&
                 sm->xcvrStatusDir() == statusDirOf( sliceId ) ) ) {
      sliceStatusSmDel( sliceId );
   }
   handleNewSlice( sliceId );
}

void AllStatusDirSm::handleBaseConfigDir( Vel::Name const & name ) {
   VEL_TRACE_SCOPE( trace );
   if ( !( name == "slice" ) ) {
      return;
   }
   Vel::Ptr<AllStatusDirSm> const self( this );
   sliceConfigDirIs( in_.baseConfigDir
                        ? Vel::dynamicPtr<Vel::Dir>( in_.baseConfigDir->entry( "slice" ) )
                        : nullptr );
   for ( auto const & entry : std::map( sliceStatusSm_ ) ) {
      entry.second->handleAgentStatusGenId(); // of configuration that may be another one now
   }
   if ( in_.agentStatusDir ) {
      for ( auto const & entry : entriesOf( *in_.agentStatusDir ) ) {
         handleNewSlice( entry->name() );
      }
   }
}

void AllStatusDirSm::handleEntryState( Vel::String const & sliceId ) {
   VEL_TRACE( trace, 8, note( "handleEntryState for ", sliceId ) );
   if ( auto const sm = sliceStatusSm( sliceId ) ) {
      sm->handleAgentStatusGenId();
   }
}

void AllStatusDirSm::sliceConfigDirIs( Vel::Ptr<Vel::Dir> const & dir ) {
   sliceConfigDir_ = dir;
   observers_->sliceConfigDir.notifierIs( dir.get() );
}

Vel::Ptr<SliceStatusSm> AllStatusDirSm::sliceStatusSm( Vel::String const & sliceId ) const {
   auto const found = sliceStatusSm_.find( sliceId );
   return found != sliceStatusSm_.end() ? found->second : nullptr;
}

Vel::Ptr<SliceStatusSm>
AllStatusDirSm::sliceStatusSmIs( Vel::String const & sliceId,
                                 Vel::Ptr<XcvrSliceStatus> const & agentStatus,
                                 Vel::Ptr<Vel::Dir> const & xcvrStatusDir ) {
   auto & known = sliceStatusSm_[sliceId];
   if ( !known ) {
      known = new SliceStatusSm( *this, sliceId, agentStatus, xcvrStatusDir, allStatusDir() );
      Vel::Ptr<SliceStatusSm> const made = known;
      made->handleInitialized(); // those who are told may delete it
      return made;
   }
   return known;
}

void AllStatusDirSm::sliceStatusSmDel( Vel::String const & sliceId ) {
   auto const found = sliceStatusSm_.find( sliceId );
   if ( found != sliceStatusSm_.end() ) {
      auto const gone = found->second;
      sliceStatusSm_.erase( found );
      gone->close( __func__ );
   }
}

void AllStatusDirSm::sliceStatusSmDelAll() {
   Vel::Ptr<AllStatusDirSm> const self( this );
   while ( !sliceStatusSm_.empty() ) {
      Vel::String const first = sliceStatusSm_.begin()->first;
      sliceStatusSmDel( first );
   }
}

void AllStatusDirSm::sliceStatusDirDel() {
   observers_->sliceStatusDir.notifierIs( nullptr );
   in_.sliceStatusDir = nullptr;
   sliceStatusSmDelAll();
}

void AllStatusDirSm::agentStatusDirDel() {
   observers_->agentStatusDir.notifierIs( nullptr );
   in_.agentStatusDir = nullptr;
   sliceStatusSmDelAll();
}

void AllStatusDirSm::baseConfigDirDel() {
   observers_->baseConfigDir.notifierIs( nullptr );
   in_.baseConfigDir = nullptr;
   handleBaseConfigDir( "slice" );
}

void AllStatusDirSm::fixedStatusDirDel() {
   observers_->fixedStatusDir.notifierIs( nullptr );
   in_.fixedStatusDir = nullptr;
   handleFixedStatusGenId();
}

void AllStatusDirSm::fixedConfigDirDel() {
   observers_->fixedConfigDir.notifierIs( nullptr );
   in_.fixedConfigDir = nullptr;
   handleFixedStatusGenId();
}

void AllStatusDirSm::fixedAgentStatusDel() {
   observers_->fixedAgentStatus.notifierIs( nullptr );
   in_.fixedAgentStatus = nullptr;
   handleFixedStatusGenId();
}

// ---------------------------------------------------------------------------------------------
// The entry point

XcvrAllStatusDirSingleton::XcvrAllStatusDirSingleton( Vel::Name name )
   : Vel::Entity( std::move( name ) ) {}

XcvrAllStatusDirSingleton::~XcvrAllStatusDirSingleton() {
   if ( allStatusDirSm_ ) {
      allStatusDirSm_->close();
   }
}

Vel::Ptr<AllNewStatusDir> const & XcvrAllStatusDirSingleton::allStatusDir() const {
   return allStatusDir_;
}

Vel::Ptr<AllNewStatusDir> XcvrAllStatusDirSingleton::allStatusDirIs( Vel::Name const & name ) {
   if ( !allStatusDir_ ) {
      allStatusDir_ = allNewStatusDirFactory( name );
      velAdopt( *allStatusDir_, "allStatusDir", &allStatusDir_, Path::direct );
   }
   return allStatusDir_;
}

void XcvrAllStatusDirSingleton::doStartSm() {
   VEL_TRACE_SCOPE( trace );
   VEL_ASSERT( !allStatusDirSm() );
   VEL_ASSERT( sliceStatusDir() );
   VEL_ASSERT( fixedStatusDir() );
   VEL_ASSERT( baseConfigDir() );
   VEL_ASSERT( agentStatusDir() );
   VEL_ASSERT( fixedConfigDir() );
   VEL_ASSERT( fixedAgentStatus() );
   allStatusDirSm_ = new AllStatusDirSm( { sliceStatusDir(), fixedStatusDir(), baseConfigDir(),
                                           fixedConfigDir(), agentStatusDir(), fixedAgentStatus() },
                                         allStatusDirIs( "xcvrAllStatusDir" ) );
   Vel::Ptr<AllStatusDirSm> const started = allStatusDirSm_;
   started->handleInitialized();
   started->initializedIs( true );
}

#define INPUT_DEL( input )                                                                         \
   void XcvrAllStatusDirSingleton::input##Del() {                                                  \
      auto const sm = allStatusDirSm_; /* those who are told may drop the singleton */             \
      input##Is( nullptr );                                                                        \
      if ( sm ) {                                                                                  \
         sm->input##Del();                                                                         \
      }                                                                                            \
   }
INPUT_DEL( sliceStatusDir )
INPUT_DEL( fixedStatusDir )
INPUT_DEL( baseConfigDir )
INPUT_DEL( fixedConfigDir )
INPUT_DEL( agentStatusDir )
INPUT_DEL( fixedAgentStatus )
#undef INPUT_DEL

} // namespace Xcvr
