#include "tests/support/TraceCapture.h"

#include <Statedb/EntityManager.h>
#include <Xcvr/XcvrAllStatusDirSm.h>
#include <Xcvr/XcvrMountHelper.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <set>

namespace Xcvr {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A status of no particular family.
class Status : public XcvrNewStatus {
 public:
   explicit Status( Vel::Name name ) : XcvrNewStatus( std::move( name ), XcvrType::sfpPlus ) {}
};

using Singleton = XcvrAllStatusDirSingleton;

/// Six inputs: a fixed transceiver "Ethernet1", whose generations are equal, and a slice "1" with "1/a"
/// and "1/b", whose generations differ.
struct Aggregation {
   Aggregation() {
      baseConfigDir->entryIs( sliceConfigDir );
      singleton = newSingleton();
      fixedStatusDir->entryIs( new Status( "Ethernet1" ) );
      addSlice( "1" );
   }
   Vel::Ptr<Singleton> newSingleton() const {
      auto const made = xcvrAllStatusDirSingletonFactory( "singleton" );
      made->sliceStatusDirIs( sliceStatusDir );
      made->fixedStatusDirIs( fixedStatusDir );
      made->baseConfigDirIs( baseConfigDir );
      made->fixedConfigDirIs( fixedConfigDir );
      made->agentStatusDirIs( agentStatusDir );
      made->fixedAgentStatusIs( fixedAgentStatus );
      return made;
   }
   void addSlice( Vel::Name const & id ) {
      auto const dir = Vel::dirFactory( id );
      dir->entryIs( new Status( id + "/a" ) );
      dir->entryIs( new Status( id + "/b" ) );
      sliceStatusDir->entryIs( dir );
      sliceConfigDir->entryIs( allConfigDirFactory( id ) );
      config( id, 1 );
      agentStatusDir->entryIs( xcvrSliceStatusFactory( id ) );
   }
   void addSecondSliceAndStartWithAllPublished() {
      addSlice( "2" );
      agent( "1", 1 );
      agent( "2", 1 );
      singleton->doStartSm();
   }
   Vel::Ptr<Vel::Dir> statuses( Vel::Name const & id ) {
      return Vel::dynamicPtr<Vel::Dir>( sliceStatusDir->entry( id ) );
   }
   void agent( Vel::Name const & id, uint32_t generation ) {
      Vel::dynamicPtr<XcvrSliceStatus>( agentStatusDir->entry( id ) )->generationIdIs( generation );
   }
   void config( Vel::Name const & id, uint32_t generation ) {
      Vel::dynamicPtr<AllConfigDir>( sliceConfigDir->entry( id ) )->generationIdIs( generation );
   }
   Vel::Ptr<AllStatusDirSm> const & top() const { return singleton->allStatusDirSm(); }
   std::set<std::string> published() const {
      std::set<std::string> names;
      for ( auto const & entry : singleton->allStatusDir()->xcvrStatusMap() ) {
         names.insert( std::string( entry.first ) );
      }
      return names;
   }

   Vel::Ptr<Vel::Dir> sliceStatusDir = Vel::dirFactory( "sliceStatus" );
   Vel::Ptr<Vel::Dir> fixedStatusDir = Vel::dirFactory( "fixedStatus" );
   Vel::Ptr<Vel::Dir> baseConfigDir = Vel::dirFactory( "config" );
   Vel::Ptr<Vel::Dir> sliceConfigDir = Vel::dirFactory( "slice" );
   Vel::Ptr<AllConfigDir> fixedConfigDir = allConfigDirFactory( "fixed" );
   Vel::Ptr<Vel::Dir> agentStatusDir = Vel::dirFactory( "agents" );
   Vel::Ptr<XcvrSliceStatus> fixedAgentStatus = xcvrSliceStatusFactory( "fixed" );
   Vel::Ptr<Singleton> singleton;
};
class AggregationTest : public testing::Test, public Aggregation {};

TEST_F( AggregationTest, statusesAreThereWhileTheirGenerationsAreEqual ) {
   singleton->doStartSm();
   EXPECT_EQ( singleton->allStatusDir()->name(), "xcvrAllStatusDir" );
   EXPECT_TRUE( top()->initialized() );
   EXPECT_THAT( published(), ElementsAre( "Ethernet1" ) );
   EXPECT_TRUE( top()->fixedXcvrs( "Ethernet1" ) );
   addSlice( "2" );
   agent( "1", 1 );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b", "Ethernet1" ) );
   EXPECT_TRUE( top()->sliceStatusSm( "1" )->sliceXcvrs( "1/a" ) );
   agent( "2", 1 );
   agent( "1", 7 );
   EXPECT_THAT( published(), ElementsAre( "2/a", "2/b", "Ethernet1" ) );
   config( "1", 7 );
   fixedAgentStatus->generationIdIs( 2 );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b", "2/a", "2/b" ) );
   EXPECT_FALSE( top()->fixedXcvrs( "Ethernet1" ) );
   fixedConfigDir->generationIdIs( 2 );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b", "2/a", "2/b", "Ethernet1" ) );
}

TEST_F( AggregationTest, whatComesIsPublishedByTheNextHandshakeAndWhatGoesIsWithdrawnAtOnce ) {
   singleton->doStartSm();
   agent( "1", 1 );
   statuses( "1" )->entryIs( new Status( "1/c" ) );
   fixedStatusDir->entryIs( new Status( "Ethernet2" ) );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b", "Ethernet1" ) );
   statuses( "1" )->entryDel( "1/a" );
   fixedStatusDir->entryDel( "Ethernet1" );
   EXPECT_THAT( published(), ElementsAre( "1/b" ) );
   statuses( "1" )->entryIs( new Status( "1/b" ) ); // another one under the same name
   EXPECT_THAT( published(), IsEmpty() );
   top()->handleEntryState( "1" );
   top()->handleFixedStatusGenId();
   EXPECT_THAT( published(), ElementsAre( "1/b", "1/c", "Ethernet2" ) );
   EXPECT_EQ( singleton->allStatusDir()->xcvrStatus( "1/b" ).get(),
              statuses( "1" )->entry( "1/b" ).get() );
}

TEST_F( AggregationTest, slicesComeAndGoWithEitherOfTheirEntries ) {
   fixedStatusDir->entryDel( "Ethernet1" );
   singleton->doStartSm();
   auto const status = agentStatusDir->entry( "1" );
   auto const dir = statuses( "1" );
   agent( "1", 1 );
   agentStatusDir->entryDel( "1" );
   EXPECT_FALSE( top()->sliceStatusSm( "1" ) );
   EXPECT_THAT( published(), IsEmpty() );
   agentStatusDir->entryIs( Vel::dirFactory( "1" ) ); // which is no agent's status
   EXPECT_FALSE( top()->sliceStatusSm( "1" ) );
   agentStatusDir->entryIs( status );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b" ) );
   auto const sm = top()->sliceStatusSm( "1" );
   sliceStatusDir->entryDel( "1" );
   EXPECT_THAT( published(), IsEmpty() );
   EXPECT_EQ( sm->sliceXcvrsCount(), 0u );
   config( "1", 2 ); // nobody looks at this any more
   agent( "1", 2 );
   EXPECT_THAT( published(), IsEmpty() );
   sliceStatusDir->entryIs( dir );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b" ) );
   // The agent's status is replaced by one that lags.
   agentStatusDir->entryIs( xcvrSliceStatusFactory( "1" ) );
   EXPECT_THAT( published(), IsEmpty() );
   agent( "1", 2 );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b" ) );
}

TEST_F( AggregationTest, aSliceFollowsItsConfigurationWhereverItComesFrom ) {
   fixedStatusDir->entryDel( "Ethernet1" );
   agent( "1", 1 );
   auto const configured = sliceConfigDir->entry( "1" );
   baseConfigDir->entryDel( "slice" );
   singleton->doStartSm();
   EXPECT_THAT( published(), IsEmpty() ) << "no configuration";
   EXPECT_FALSE( top()->sliceConfigDir() );
   baseConfigDir->entryIs( Vel::dirFactory( "other" ) );
   baseConfigDir->entryIs( sliceConfigDir );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b" ) );
   sliceConfigDir->entryDel( "1" );
   EXPECT_THAT( published(), IsEmpty() );
   sliceConfigDir->entryIs( configured );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b" ) );
   baseConfigDir->entryIs( allConfigDirFactory( "slice" ) ); // which is no directory
   EXPECT_FALSE( top()->sliceConfigDir() );
   EXPECT_THAT( published(), IsEmpty() );
   config( "1", 2 );
   config( "1", 1 );
   EXPECT_THAT( published(), IsEmpty() ) << "of a directory that is not looked at";
}

TEST_F( AggregationTest, startsOnceWithAllInputsAndTheEndOfOneWithdrawsWhatRestedOnIt ) {
   struct {
      void ( Singleton::*end )();
      char const * missing;
      std::set<std::string> left;
   } const inputs[] = {
      { &Singleton::fixedAgentStatusDel, "fixedAgentStatus\\(\\)", { "1/a", "1/b" } },
      { &Singleton::fixedConfigDirDel, "fixedConfigDir\\(\\)", { "1/a", "1/b" } },
      { &Singleton::agentStatusDirDel, "agentStatusDir\\(\\)", { "Ethernet1" } },
      { &Singleton::baseConfigDirDel, "baseConfigDir\\(\\)", { "Ethernet1" } },
      { &Singleton::fixedStatusDirDel, "fixedStatusDir\\(\\)", { "1/a", "1/b" } },
      { &Singleton::sliceStatusDirDel, "sliceStatusDir\\(\\)", { "Ethernet1" } },
   };
   agent( "1", 1 );
   auto const lacking = newSingleton();
   for ( auto const & input : inputs ) {
      SCOPED_TRACE( input.missing );
      ( *lacking.*input.end )(); // the earlier ones are asked for first
      EXPECT_DEATH( lacking->doStartSm(), input.missing );
      singleton = newSingleton();
      singleton->doStartSm();
      EXPECT_THAT( published(), ElementsAre( "1/a", "1/b", "Ethernet1" ) );
      ( *singleton.*input.end )();
      EXPECT_EQ( published(), input.left );
   }
   EXPECT_DEATH( singleton->doStartSm(), "!allStatusDirSm\\(\\)" );
}

/// Does something the first time that a status is published or withdrawn.
class Meddler : public AllNewStatusDir::NotifieeConst {
 public:
   Meddler( Vel::Ptr<Singleton> const & singleton, std::function<void()> then )
      : then_( std::move( then ) ) {
      notifierIs( singleton->allStatusDir().get() );
   }
   void onXcvrStatus( Vel::Name const & ) override {
      if ( auto const then = std::exchange( then_, nullptr ) ) {
         then();
      }
   }

 private:
   std::function<void()> then_;
};

TEST_F( AggregationTest, theLastWordIsThatOfAHandshakeWithinAHandshake ) {
   fixedStatusDir->entryDel( "Ethernet1" );
   singleton->doStartSm();
   Meddler const ends( singleton, [&] { config( "1", 3 ); } );
   agent( "1", 1 );
   EXPECT_THAT( published(), IsEmpty() ) << "outdated while it was being published";
   agent( "1", 3 );
   Meddler const returns( singleton, [&] { agent( "1", 4 ); } );
   config( "1", 4 );
   EXPECT_THAT( published(), ElementsAre( "1/a", "1/b" ) ) << "valid again while it was withdrawn";
   Meddler const removes( singleton, [&] { agentStatusDir->entryDel( "1" ); } );
   config( "1", 5 );
   EXPECT_THAT( published(), IsEmpty() );
   EXPECT_FALSE( top()->sliceStatusSm( "1" ) );
}

TEST( AggregationLifetimeTest, whoIsToldMayDropTheSingleton ) {
   using A = Aggregation;
   std::pair<char const *, void ( * )( A & )> const changes[] = {
      { "a slice leaves", []( A & a ) { a.agentStatusDir->entryDel( "1" ); } },
      { "a slice's status leaves", []( A & a ) { a.statuses( "1" )->entryDel( "1/a" ); } },
      { "the fixed ones change", []( A & a ) { a.fixedConfigDir->generationIdIs( 7 ); } },
      { "the configuration leaves", []( A & a ) { a.baseConfigDir->entryDel( "slice" ); } },
      { "slice statuses end", []( A & a ) { a.singleton->sliceStatusDirDel(); } },
      { "agent statuses end", []( A & a ) { a.singleton->agentStatusDirDel(); } },
      { "the base configuration ends", []( A & a ) { a.singleton->baseConfigDirDel(); } },
      { "fixed statuses end", []( A & a ) { a.singleton->fixedStatusDirDel(); } },
   };
   for ( auto const & [what, change] : changes ) {
      Aggregation all;
      all.addSecondSliceAndStartWithAllPublished();
      auto const published = all.singleton->allStatusDir();
      ASSERT_EQ( published->xcvrStatusMap().size(), 5U );
      Meddler const drops( all.singleton, [&all] { all.singleton = nullptr; } );
      change( all );
      EXPECT_FALSE( all.singleton ) << what << ": nobody was told";
      EXPECT_TRUE( published->xcvrStatusMap().empty() ) << what;
   }
}

TEST_F( AggregationTest, aClosedReactorPublishesNothingMore ) {
   baseConfigDir->entryDel( "slice" );
   addSecondSliceAndStartWithAllPublished(); // but for the slices
   auto const all = singleton->allStatusDir();
   auto const held = top(); // beyond the singleton
   held->sliceStatusSmDelAll();
   Meddler const drops( singleton, [&] { singleton = nullptr; } );
   baseConfigDir->entryIs( sliceConfigDir ); // publishes slice after slice
   EXPECT_FALSE( singleton );
   fixedAgentStatus->generationIdIs( 1 );
   fixedConfigDir->generationIdIs( 1 );
   held->handleFixedStatusGenId();
   EXPECT_TRUE( all->xcvrStatusMap().empty() );
}

TEST_F( AggregationTest, traces ) {
   statuses( "1" )->entryDel( "1/b" );
   auto const configured = sliceConfigDir->entry( "1" );
   sliceConfigDir->entryDel( "1" );
   TraceCapture capture( "XcvrAllStatusDirSm", 8 );
   singleton->doStartSm();
   EXPECT_THAT( capture.takeNotes(),
                ElementsAre( "handleFixedStatusGenId: Adding fixed xcvr Ethernet1",
                             "handleInitialized: Creating xcvrStatus reactor for 1",
                             "handleAgentStatusGenId: 1 no xcvrConfig" ) );
   agent( "1", 1 );
   EXPECT_THAT( capture.takeNotes(), ElementsAre( "handleAgentStatusGenId: 1 no xcvrConfig" ) );
   sliceConfigDir->entryIs( configured );
   EXPECT_THAT( capture.takeNotes(),
                ElementsAre( "handleEntryState: handleEntryState for 1",
                             "handleAgentStatusGenId: 1 xcGenId 1 xsGenId 1",
                             "handleAgentStatusGenId: Adding sliced xcvr 1/a" ) );
   config( "1", 2 );
   fixedConfigDir->generationIdIs( 2 );
   EXPECT_THAT( capture.takeNotes(),
                ElementsAre( "handleAgentStatusGenId: 1 xcGenId 2 xsGenId 1",
                             "handleAgentStatusGenId: Removing sliced xcvr 1/a",
                             "handleFixedStatusGenId: Removing fixed xcvr Ethernet1" ) );
   statuses( "1" )->entryIs( new Status( "1/b" ) );
   agent( "1", 2 );
   fixedAgentStatus->generationIdIs( 2 );
   static_cast<void>( capture.takeNotes() );
   fixedStatusDir->entryDel( "Ethernet1" );
   statuses( "1" )->entryDel( "1/a" );
   agentStatusDir->entryDel( "1" );
   EXPECT_THAT( capture.takeNotes(),
                ElementsAre( "handleFixedStatusDir: Removing fixed xcvr Ethernet1",
                             "handleXcvrStatusDir: Removing sliced xcvr 1/a",
                             "sliceStatusSmDel: Removing sliced xcvr 1/b" ) );
}

TEST_F( AggregationTest, anEntryThatIsNoStatusIsFatal ) {
   statuses( "1" )->entryIs( Vel::dirFactory( "none" ) );
   singleton->doStartSm();
   EXPECT_DEATH( agent( "1", 1 ), "\\bxs\\b" );
   fixedStatusDir->entryIs( Vel::dirFactory( "none" ) );
   EXPECT_DEATH( top()->handleFixedStatusGenId(), "\\bxs\\b" );
}

TEST( MounterTest, mountsWhatEveryReaderOfStatusNeeds ) {
   Statedb::EntityManager manager;
   Vel::Ptr<Statedb::MountGroup> const group( new Statedb::MountGroup( "status" ) );
   manager.mountGroupIs( group );
   Mounter::doMountXcvrStatus( group, new Statedb::Mount( "hardware/xcvr/status", "Vel::Dir" ) );
   Mounter::doMountXcvrStatusImplicits( group ); // once more changes nothing
   std::set<std::string> mounts;
   for ( auto const & [path, mount] : group->mountMap() ) {
      EXPECT_EQ( mount->mode(), Statedb::MountMode::read );
      EXPECT_EQ( mount->filter(), Statedb::MountFilter() );
      mounts.insert( std::string( path ) + " " + std::string( mount->typeName() ) );
   }
   EXPECT_THAT( mounts,
                ElementsAre( "hardware/xcvr/attenuation Xcvr::ModelToAttenuation",
                             "hardware/xcvr/status Vel::Dir", "hardware/xcvr/xgc Xcvr::Xgc" ) );
}

} // namespace
} // namespace Xcvr
