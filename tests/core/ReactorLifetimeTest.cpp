// The end of the reactors of the aggregation while they run: those who are told of a publication or a
// withdrawal drop the singleton.
#include "tests/support/TraceCapture.h"

#include <Xcvr/XcvrAllStatusDirSm.h>

#include <gtest/gtest.h>

#include <functional>

namespace Xcvr {
namespace {

class Status : public XcvrNewStatus {
 public:
   explicit Status( Vel::Name name ) : XcvrNewStatus( std::move( name ), XcvrType::sfpPlus ) {}
};

class OnPublication : public AllNewStatusDir::NotifieeConst {
 public:
   std::function<void()> then;
   void onXcvrStatus( Vel::Name const & ) override { then(); }
};

/// A fixed transceiver and two slices of two, all published once the singleton starts.
struct Reactors {
   Reactors() {
      fixedStatusDir->entryIs( new Status( "fixed" ) );
      for ( char const * id : { "1", "2" } ) {
         auto const statuses = Vel::dirFactory( id );
         statuses->entryIs( new Status( Vel::Name( id ) + "/a" ) );
         statuses->entryIs( new Status( Vel::Name( id ) + "/b" ) );
         sliceStatusDir->entryIs( statuses );
         agentStatusDir->entryIs( xcvrSliceStatusFactory( id ) );
         sliceConfigDir->entryIs( allConfigDirFactory( id ) );
      }
      baseConfigDir->entryIs( sliceConfigDir );
      singleton->sliceStatusDirIs( sliceStatusDir );
      singleton->fixedStatusDirIs( fixedStatusDir );
      singleton->baseConfigDirIs( baseConfigDir );
      singleton->fixedConfigDirIs( fixedConfigDir );
      singleton->agentStatusDirIs( agentStatusDir );
      singleton->fixedAgentStatusIs( fixedAgentStatus );
   }

   Vel::Ptr<Vel::Dir> sliceStatusDir = Vel::dirFactory( "sliceStatus" );
   Vel::Ptr<Vel::Dir> fixedStatusDir = Vel::dirFactory( "fixedStatus" );
   Vel::Ptr<Vel::Dir> baseConfigDir = Vel::dirFactory( "config" );
   Vel::Ptr<Vel::Dir> sliceConfigDir = Vel::dirFactory( "slice" );
   Vel::Ptr<AllConfigDir> fixedConfigDir = allConfigDirFactory( "fixed" );
   Vel::Ptr<Vel::Dir> agentStatusDir = Vel::dirFactory( "agents" );
   Vel::Ptr<XcvrSliceStatus> fixedAgentStatus = xcvrSliceStatusFactory( "fixed" );
   Vel::Ptr<XcvrAllStatusDirSingleton> singleton = xcvrAllStatusDirSingletonFactory( "singleton" );
};

TEST( ReactorLifetimeTest, whoIsToldMayDropTheSingleton ) {
   struct {
      char const * what;
      std::function<void( Reactors & )> change;
   } const cases[] = {
      { "a slice leaves", []( Reactors & r ) { r.agentStatusDir->entryDel( "1" ); } },
      { "a slice's status leaves",
        []( Reactors & r ) {
           Vel::dynamicPtr<Vel::Dir>( r.sliceStatusDir->entry( "1" ) )->entryDel( "1/a" );
        } },
      { "the fixed ones change", []( Reactors & r ) { r.fixedConfigDir->generationIdIs( 7 ); } },
      { "the configuration leaves", []( Reactors & r ) { r.baseConfigDir->entryDel( "slice" ); } },
      { "slice statuses end", []( Reactors & r ) { r.singleton->sliceStatusDirDel(); } },
      { "agent statuses end", []( Reactors & r ) { r.singleton->agentStatusDirDel(); } },
      { "the base configuration ends", []( Reactors & r ) { r.singleton->baseConfigDirDel(); } },
      { "fixed statuses end", []( Reactors & r ) { r.singleton->fixedStatusDirDel(); } },
   };
   for ( auto const & test : cases ) {
      Reactors reactors;
      reactors.singleton->doStartSm();
      auto const all = reactors.singleton->allStatusDir();
      ASSERT_EQ( all->xcvrStatusMap().size(), 5U );
      OnPublication end;
      end.then = [&] { reactors.singleton = nullptr; };
      end.notifierIs( all.get() );
      test.change( reactors );
      EXPECT_FALSE( reactors.singleton ) << test.what << ": nobody was told";
      EXPECT_TRUE( all->xcvrStatusMap().empty() ) << test.what;
   }
}

TEST( ReactorLifetimeTest, aClosedReactorPublishesNothingMore ) {
   Reactors reactors;
   reactors.baseConfigDir->entryDel( "slice" );
   reactors.singleton->doStartSm();
   auto const all = reactors.singleton->allStatusDir();
   auto const top = reactors.singleton->allStatusDirSm(); // held beyond the singleton
   top->sliceStatusSmDelAll();
   OnPublication end;
   end.then = [&] { reactors.singleton = nullptr; };
   end.notifierIs( all.get() );
   reactors.baseConfigDir->entryIs( reactors.sliceConfigDir ); // publishes slice after slice
   EXPECT_FALSE( reactors.singleton );
   EXPECT_TRUE( all->xcvrStatusMap().empty() );
   reactors.fixedAgentStatus->generationIdIs( 1 );
   reactors.fixedConfigDir->generationIdIs( 1 );
   EXPECT_TRUE( all->xcvrStatusMap().empty() );
}

TEST( ReactorLifetimeTest, withdrawalsAreTracedUnderTheOperationThatMakesThem ) {
   Reactors reactors;
   reactors.singleton->doStartSm();
   TraceCapture capture( "XcvrAllStatusDirSm", 8 );
   std::string traced;
   reactors.agentStatusDir->entryDel( "1" );
   reactors.fixedStatusDir->entryDel( "fixed" );
   Vel::dynamicPtr<Vel::Dir>( reactors.sliceStatusDir->entry( "2" ) )->entryDel( "2/a" );
   reactors.fixedConfigDir->generationIdIs( 7 );
   for ( auto const & record : capture.takeRecords() ) {
      if ( record.text.starts_with( "Removing" ) ) {
         traced +=
            record.operation + ": " + record.text.substr( 0, record.text.rfind( ' ' ) ) + "\n";
      }
   }
   EXPECT_EQ( traced, "sliceStatusSmDel: Removing sliced xcvr\n"
                      "sliceStatusSmDel: Removing sliced xcvr\n"
                      "handleFixedStatusDir: Removing fixed xcvr\n"
                      "handleXcvrStatusDir: Removing sliced xcvr\n" );
}

} // namespace
} // namespace Xcvr
