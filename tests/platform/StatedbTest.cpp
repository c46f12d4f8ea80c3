#include "tests/platform/SampleEntities.h"

#include <Statedb/EntityManager.h>
#include <Statedb/Session.h>

#include <gtest/gtest.h>

#include <functional>

namespace Statedb {
namespace {

using Sample::Slot;
using XcvrTest::asText;

Vel::Ptr<Mount> newMount( Vel::Name const & path, char const * type,
                          MountMode mode = MountMode::read, MountFilter filter = {} ) {
   return Vel::Ptr<Mount>( new Mount( path, type, std::move( filter ), mode ) );
}

Vel::Ptr<MountGroup> newGroup() {
   return Vel::Ptr<MountGroup>( new MountGroup( "group" ) );
}

/// Calls back once, when a mount or a directory changes.
struct Once {
   std::function<void()> then;
   void tell() {
      if ( auto const now = std::exchange( then, nullptr ) ) {
         now();
      }
   }
};
struct OnMount : Mount::NotifieeConst, Once {
   void onState() override { tell(); }
   void onTarget() override { tell(); }
};
struct OnEntry : Vel::Dir::NotifieeConst, Once {
   void onEntry( Vel::Name const & ) override { tell(); }
};

TEST( EntityManagerTest, entitiesAreFoundByPath ) {
   EntityManager manager;
   Vel::Ptr<Slot> const slot( new Slot( "slot1" ) );
   EXPECT_TRUE( manager.entityIs( "a/b/slot1", slot ) );
   EXPECT_EQ( manager.entity( "a/b/slot1" ), slot );
   EXPECT_EQ( slot->fullName(), "/a/b/slot1" );
   EXPECT_EQ( manager.entity( "" ), manager.root() );
   EXPECT_FALSE( manager.entity( "a/b/slot1/x" ) );
   EXPECT_TRUE( manager.entityIs( "a/b/slot1", slot ) ) << "it is there already";
   EXPECT_FALSE( manager.entityIs( "a/b/slot1", new Slot( "slot1" ) ) ) << "another one is there";
   EXPECT_FALSE( manager.entityIs( "a/b/slot1/x", new Slot( "x" ) ) ) << "no directory on the way";
   EXPECT_FALSE( manager.entityIs( "a/y", new Slot( "x" ) ) ) << "not its name";
   manager.entityDel( "a/b/slot1" );
   EXPECT_FALSE( manager.entity( "a/b/slot1" ) );
}

/// A tree with a directory of slots, and a group of mounts that is served from it: in the same process,
/// or in another one whose session is joined to that of the tree's by a pipe.
class MountTest : public testing::TestWithParam<char const *> {
 protected:
   explicit MountTest( bool remote = true,
                       Session::PeerMayWrite mayWrite = Session::PeerMayWrite::no )
      : client( remote ? other : server ) {
      server.entityIs( "status/slots", dir );
      remote ? join( mayWrite ) : client.mountGroupIs( group );
   }
   void join( Session::PeerMayWrite mayWrite ) {
      serving = std::make_unique<Session>( server, mayWrite );
      mounting = std::make_unique<Session>( client );
      mounting->mountGroupIs( group );
   }
   static bool pump( Session & from, Session & to, std::size_t most ) {
      std::string const bytes( from.toSend( most ) );
      from.sent( bytes.size() );
      to.receive( bytes );
      return !bytes.empty();
   }
   void pump( std::size_t most = 1000 ) {
      for ( bool more = mounting != nullptr; more; ) {
         more = pump( *serving, *mounting, most );
         more = pump( *mounting, *serving, most ) || more;
      }
   }
   Vel::Ptr<Mount> mounted( Vel::Name const & path, char const * type,
                            MountMode mode = MountMode::read, MountFilter filter = {} ) {
      auto const mount = newMount( path, type, mode, std::move( filter ) );
      group->mountIs( mount );
      pump();
      return mount;
   }
   Vel::Ptr<Slot> addSlot( char const * name ) {
      Vel::Ptr<Slot> const slot( new Slot( name ) );
      dir->entryIs( slot );
      return slot;
   }
   template <typename T = Slot>
   Vel::Ptr<T> copy( char const * path = "status/slots/slot1" ) {
      return Vel::dynamicPtr<T>( client.entity( path ) );
   }

   EntityManager server, other;
   EntityManager & client; // the tree of the process that mounts
   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "slots" );
   Vel::Ptr<MountGroup> group = newGroup();
   std::unique_ptr<Session> serving, mounting;
};

/// What holds in one process and through sessions.
class AnyMountTest : public MountTest {
 protected:
   AnyMountTest()
      : MountTest( GetParam() == std::string( "remote" ), Session::PeerMayWrite::yes ) {}
};
INSTANTIATE_TEST_SUITE_P( Places, AnyMountTest, testing::Values( "local", "remote" ),
                          []( auto const & place ) { return std::string( place.param ); } );

TEST_P( AnyMountTest, followsWhatIsAtItsPath ) {
   auto const mount = mounted( "status/slots/slot1", "Sample::Slot" );
   EXPECT_EQ( mount->state(), MountState::waiting );
   auto const slot = addSlot( "slot1" );
   slot->speedIs( 3 );
   pump();
   ASSERT_EQ( mount->state(), MountState::mounted );
   EXPECT_TRUE( group->complete() );
   auto const first = copy();
   EXPECT_EQ( mount->target(), first.get() );
   EXPECT_EQ( first->speed(), 3u );
   addSlot( "slot1" )->speedIs( 4 ); // another one
   pump();
   EXPECT_EQ( copy()->speed(), 4u );
   EXPECT_NE( copy(), first );
   EXPECT_EQ( mount->target(), copy().get() );
   dir->entryDel( "slot1" );
   pump();
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_EQ( mount->target(), nullptr );
   EXPECT_FALSE( client.entity( "status/slots/slot1" ) );
   dir->entryIs( Vel::dirFactory( "slot1" ) );
   pump();
   EXPECT_EQ( mount->state(), MountState::wrongType );
   server.entityDel( "status" );
   server.entityIs( "status/slots/slot1", Sample::opticalSlotFactory( "slot1" ) );
   pump();
   ASSERT_EQ( mount->state(), MountState::mounted ) << "of a type derived from the mount's";
   EXPECT_EQ( mount->target()->velModel().typeName, "Sample::OpticalSlot" );
   EXPECT_EQ( mounted( "status", "No::Type" )->state(), MountState::unknownType );
}

TEST_P( AnyMountTest, aLaterMountOfAPathReplacesTheOneOfItsGroup ) {
   addSlot( "slot1" );
   auto const first = mounted( "status/slots/slot1", "Sample::Slot" );
   auto const second = mounted( "status/slots/slot1", "Vel::Dir" );
   EXPECT_EQ( first->state(), MountState::waiting );
   EXPECT_EQ( second->state(), MountState::wrongType );
   // Also while the end of the replaced one is told.
   auto const last = newMount( "status/slots/slot1", "Sample::Slot" );
   OnMount ends;
   ends.then = [&] { group->mountIs( last ); };
   ends.notifierIs( second );
   auto const third = mounted( "status/slots/slot1", "Vel::Dir" );
   EXPECT_EQ( last->state(), MountState::mounted );
   EXPECT_EQ( third->state(), MountState::waiting );
}

TEST_P( AnyMountTest, writingMakesTheEntityAndThereIsOneWriter ) {
   auto const mount = mounted( "x/y/slot1", "Sample::Slot", MountMode::write );
   ASSERT_EQ( mount->state(), MountState::mounted );
   auto const own = copy( "x/y/slot1" );
   EXPECT_EQ( mount->target(), own.get() );
   own->speedIs( 40 );
   own->laneIs( Sample::LaneNumber( 2 ) )->litIs( true );
   pump();
   EXPECT_EQ( asText( *server.entity( "x/y/slot1" ) ), asText( *own ) );
   EXPECT_EQ( mounted( "x/lane", "Sample::Lane", MountMode::write )->state(),
              MountState::unknownType )
      << "has no factory";
   auto const rivals = newGroup();
   server.mountGroupIs( rivals );
   auto const rival = newMount( "x/y/slot1", "Sample::Slot", MountMode::write );
   rivals->mountIs( rival );
   EXPECT_EQ( rival->state(), MountState::taken );
   auto const reader = newMount( "x/y/slot1", "Sample::Slot" );
   rivals->mountIs( reader );
   EXPECT_EQ( reader->target(), server.entity( "x/y/slot1" ).get() );
   server.mountGroupDel( rivals );
}

TEST_P( AnyMountTest, aMountMayEndInEveryNotificationOfIt ) {
   for ( unsigned which = 0; which < 8; ++which ) {
      auto const mode = which & 1 ? MountMode::read : MountMode::write;
      bool const wholeGroup = which & 2 && !mounting;
      Vel::Name const path( "a-directory-with-a-long-name-" + std::to_string( which ) + "/slot1" );
      auto const mount = newMount( path, "Sample::Slot", mode );
      OnMount onMount;
      OnEntry onRoot;
      ( which & 4 ? onRoot.then : onMount.then ) = [&] {
         wholeGroup ? client.mountGroupDel( group ) : group->mountDel( path );
      };
      onMount.notifierIs( mount );
      onRoot.notifierIs( client.root() );
      group->mountIs( mount );
      pump();
      server.entityIs( path, new Slot( "slot1" ) );
      pump();
      EXPECT_FALSE( onMount.then || onRoot.then );
      EXPECT_EQ( mount->state(), MountState::waiting );
      EXPECT_EQ( mount->target(), nullptr );
      EXPECT_FALSE( mounting && mode == MountMode::read && client.entity( path ) );
      if ( wholeGroup ) {
         client.mountGroupIs( group );
      }
   }
}

TEST_P( AnyMountTest, aPathWithAnEmptyNameIsRefused ) {
   for ( char const * path : { "w/", "/w", "w//w", "/" } ) {
      EXPECT_EQ( mounted( path, "Sample::Slot", MountMode::write )->state(), MountState::refused )
         << path;
   }
   EXPECT_FALSE( server.entityIs( "", new Slot( "" ) ) );
   EXPECT_EQ( server.root()->entryMap().size(), 1U );
}

TEST( EntityManagerTest, theNextWriterFollowsTheOneThatLeaves ) {
   using Made = EntityManager::WhatIsMade;
   for ( auto const & [there, whatIsMade, stays] :
         { std::tuple( false, Made::goes, false ), std::tuple( false, Made::stays, true ),
           std::tuple( true, Made::goes, true ) } ) {
      EntityManager manager;
      manager.entityIs( there ? "a/slot1" : "b/slot1", new Slot( "slot1" ) );
      Vel::Ptr<MountGroup> const groups[] = { newGroup(), newGroup() };
      for ( auto const & group : groups ) {
         group->mountIs( newMount( "a/slot1", "Sample::Slot", MountMode::write ) );
         manager.mountGroupIs( group, whatIsMade );
      }
      auto const next = groups[1]->mount( "a/slot1" );
      EXPECT_EQ( next->state(), MountState::taken );
      manager.mountGroupDel( groups[0] );
      EXPECT_EQ( next->state(), MountState::mounted );
      EXPECT_EQ( next->target(), manager.entity( "a/slot1" ).get() );
      manager.mountGroupDel( groups[1] );
      EXPECT_EQ( static_cast<bool>( manager.entity( "a/slot1" ) ), stays );
   }
   // What is in the way may go, too.
   EntityManager manager;
   manager.entityIs( "a", new Slot( "a" ) );
   auto const group = newGroup();
   auto const mount = newMount( "a/slot1", "Sample::Slot", MountMode::write );
   group->mountIs( mount );
   manager.mountGroupIs( group );
   EXPECT_EQ( mount->state(), MountState::taken );
   manager.entityDel( "a" );
   EXPECT_EQ( mount->state(), MountState::mounted );
}

TEST( EntityManagerTest, aGroupMayLeaveWhileItIsTakenOn ) {
   EntityManager manager;
   manager.entityIs( "slot1", new Slot( "slot1" ) );
   auto const group = newGroup();
   auto const mount = newMount( "slot1", "Sample::Slot" );
   group->mountIs( mount );
   OnMount ends;
   ends.then = [&] { manager.mountGroupDel( group ); };
   ends.notifierIs( mount );
   manager.mountGroupIs( group );
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_EQ( mount->target(), nullptr );
}

class SessionTest : public MountTest {};

TEST_F( SessionTest, aReplicaAppearsWithItsWholeImageAndFollows ) {
   auto const slot = addSlot( "slot1" );
   slot->tableIs( addSlot( "slot2" ) );
   slot->peerIs( addSlot( "slot3" ) );
   auto const mount = newMount( "status/slots", "Vel::Dir" );
   OnMount whole;
   whole.then = [&] { EXPECT_EQ( asText( *client.entity( "status/slots" ) ), asText( *dir ) ); };
   whole.notifierIs( mount );
   group->mountIs( mount );
   pump( 1 );
   ASSERT_EQ( mount->state(), MountState::mounted );
   EXPECT_FALSE( whole.then );
   EXPECT_EQ( client.entity( "status/slots" ).get(), mount->target() );
   slot->speedIs( 100 );
   slot->tableIs( addSlot( "slot4" ) );
   EXPECT_TRUE( serving->wantsToSend() );
   pump();
   EXPECT_EQ( asText( *mount->target() ), asText( *dir ) );
   EXPECT_FALSE( serving->wantsToSend() );
   EXPECT_EQ( serving->waitingBytes() + serving->waitingEntities(), 0u );
   mounting = nullptr;
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_FALSE( client.entity( "status/slots" ) ) << "goes with its session";
}

TEST_F( SessionTest, pointersFollowWhatIsMountedAgain ) {
   Vel::Ptr<Slot> const table( new Slot( "table" ) );
   server.entityIs( "tables/table", table );
   auto const original = addSlot( "slot1" );
   original->tableIs( table );
   original->peerIs( table );
   mounted( "status/slots", "Vel::Dir" );
   mounted( "tables/table", "Sample::Slot" );
   auto const slot = copy();
   auto const expectFollowed = [&] {
      auto const now = client.entity( "tables/table" );
      EXPECT_TRUE( now );
      EXPECT_EQ( slot->table(), now.get() );
      EXPECT_EQ( slot->peer( "table" ).get(), now.get() );
   };
   expectFollowed();
   group->mountDel( "tables/table" );
   EXPECT_TRUE( !slot->table() && slot->peerMap().empty() );
   mounted( "tables/table", "Sample::Slot" );
   expectFollowed();
   // The same when the server's path comes anew.
   server.entityDel( "tables/table" );
   pump();
   server.entityIs( "tables/table", table );
   pump();
   expectFollowed();
}

TEST_F( SessionTest, namesCountFromTheRootAlsoBelowARepeatedName ) {
   auto const outer = Vel::dirFactory( "a" ), inner = Vel::dirFactory( "a" );
   Vel::Ptr<Slot> const holder( new Slot( "holder" ) ), target( new Slot( "x" ) );
   server.entityIs( "a", outer );
   outer->entryIs( inner );
   outer->entryIs( holder );
   outer->entryIs( target );
   inner->entryIs( new Slot( "x" ) );
   holder->tableIs( target );
   mounted( "a", "Vel::Dir" );
   EXPECT_EQ( copy( "a/holder" )->table(), copy( "a/x" ).get() );
}

TEST_F( SessionTest, whoCannotHaveAPlaceGetsItOnceItIsFree ) {
   // A second group has the same mount; one of another filter is next.
   addSlot( "slot1" );
   auto const first = mounted( "status/slots", "Vel::Dir" );
   auto const mountedByAnother = [&]( Vel::Ptr<MountGroup> const & others, MountFilter filter ) {
      auto const mount =
         newMount( "status/slots", "Vel::Dir", MountMode::read, std::move( filter ) );
      mounting->mountGroupIs( others );
      others->mountIs( mount );
      pump();
      return mount;
   };
   auto const others = newGroup();
   auto const shared = mountedByAnother( others, {} );
   EXPECT_EQ( shared->target(), first->target() );
   auto const filtered = mountedByAnother( newGroup(), { { "slot2" } } );
   EXPECT_EQ( filtered->state(), MountState::taken );
   addSlot( "slot2" );
   addSlot( "slot3" );
   group->mountDel( "status/slots" );
   pump();
   EXPECT_EQ( first->state(), MountState::waiting );
   EXPECT_EQ( shared->state(), MountState::mounted );
   EXPECT_EQ( asText( *shared->target() ), asText( *dir ) );
   others->mountDel( "status/slots" );
   EXPECT_EQ( filtered->state(), MountState::mounted );
   EXPECT_EQ( copy<Vel::Dir>( "status/slots" )->entryMap().size(), 1U );
   EXPECT_TRUE( copy( "status/slots/slot2" ) );
}

TEST_F( SessionTest, aStalledPeerCostsNothingWhilePathsComeAndGo ) {
   mounted( "status/slots/slot1", "Sample::Slot" );
   for ( int i = 0; i < 2000; ++i ) {
      addSlot( "slot1" );
      dir->entryDel( "slot1" );
      group->mountIs( new Mount( "other", "Sample::Slot" ) );
      group->mountDel( "other" );
   }
   EXPECT_LT( serving->waitingBytes() + mounting->waitingBytes(), 1000U );
   group->mountIs( newMount( "brief", "Sample::Slot" ) );
   pump( *mounting, *serving, 1000 );
   group->mountDel( "brief" );
   pump( *mounting, *serving, 1000 ); // before the peer has said anything of it
   addSlot( "slot1" );
   pump();
   EXPECT_TRUE( copy() );
}

TEST_F( SessionTest, aHandlerThatThrowsEndsTheSession ) {
   auto const slot = addSlot( "slot1" );
   mounted( "status/slots", "Vel::Dir" );
   struct Thrower : Slot::NotifieeConst {
      void onSpeed() override { throw std::runtime_error( "of the application" ); }
   } thrower;
   thrower.notifierIs( copy() );
   slot->speedIs( 1 );
   EXPECT_THROW( pump(), std::runtime_error );
   EXPECT_FALSE( mounting->wantsToReceive() );
}

TEST_F( SessionTest, whatIsUnmountedGoesAlsoWhileAReactorRuns ) {
   auto const slot = addSlot( "slot1" );
   auto const mount = mounted( "status/slots", "Vel::Dir" );
   struct Reactor : Slot::NotifieeConst {
      std::function<void()> then;
      void onSpeed() override { then(); }
   } reactor;
   auto const replica = copy();
   reactor.notifierIs( replica );
   reactor.then = [&] { group->mountDel( "status/slots" ); };
   slot->speedIs( 9 );
   slot->labelIs( "more of the same log" );
   pump();
   EXPECT_EQ( replica->speed(), 9u );
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_FALSE( client.entity( "status/slots" ) );
   slot->speedIs( 10 );
   EXPECT_FALSE( serving->wantsToSend() ) << "nobody has it mounted";
}

TEST_F( SessionTest, aPlaceThatIsTakenIsLeftAlone ) {
   Vel::Ptr<Slot> const own( new Slot( "slots" ) );
   client.entityIs( "status/slots", own );
   EXPECT_EQ( mounted( "status/slots", "Vel::Dir" )->state(), MountState::taken );
   EXPECT_EQ( client.entity( "status/slots" ), own );
   EXPECT_EQ( mounted( "", "Vel::Dir" )->state(), MountState::taken );
}

TEST_F( SessionTest, peersMayNotWriteUnlessTheyMayAndWhatTheyMadeGoesWithThem ) {
   EXPECT_EQ( mounted( "new/a", "Sample::Slot", MountMode::write )->state(), MountState::refused );
   EXPECT_FALSE( server.entity( "new" ) );
   join( Session::PeerMayWrite::yes );
   mounted( "new/b", "Sample::Slot", MountMode::write );
   auto const own = client.entity( "new/a" );
   EXPECT_TRUE( server.entity( "new/a" ) );
   auto const replaced = server.entity( "new/b" );
   Vel::Ptr<Slot> const replacing( new Slot( "b" ) );
   Vel::dynamicPtr<Vel::Dir>( server.entity( "new" ) )->entryIs( replacing );
   group->mountDel( "new/a" );
   group->mountDel( "new/b" );
   pump();
   EXPECT_FALSE( server.entity( "new/a" ) );
   EXPECT_EQ( server.entity( "new/b" ), replacing ) << "was not made for the mount";
   EXPECT_EQ( client.entity( "new/a" ), own );
}

TEST_F( SessionTest, oddPathsAndFiltersAreRefused ) {
   std::string deep = "d";
   for ( int i = 0; i < 64; ++i ) {
      deep += "/d";
   }
   MountFilter const large = { std::vector<Vel::Name>( 20000, "a" ) };
   EXPECT_EQ( mounted( Vel::Name( deep ), "Sample::Slot" )->state(), MountState::refused );
   EXPECT_EQ( mounted( "x", "Vel::Dir", MountMode::read, large )->state(), MountState::refused );
   // A peer that asks all the same.
   Session session( server, Session::PeerMayWrite::yes );
   session.receive( std::string( "\0\0\0\5\0SDB\1", 9 ) +
                    std::string( "\0\0\0\x1c\1\0\0\0\1\0\0\0\2w/\0\0\0\fSample::Slot\1", 32 ) );
   EXPECT_EQ( server.root()->entryMap().size(), 1U );
}

TEST_F( SessionTest, theTextsOfAPeersMountsAreBounded ) {
   for ( int i = 0; i < 100; ++i ) {
      group->mountIs(
         newMount( Vel::Name( std::string( 50000, 'x' ) + std::to_string( i ) ), "T" ) );
   }
   EXPECT_THROW( pump(), ProtocolException );
}

std::string message( char kind, std::string const & body ) {
   return std::string( { 0, 0, 0, static_cast<char>( 1 + body.size() ), kind } ) + body;
}

TEST( SessionHostileTest, whatNoPeerWouldSendEndsTheSessionAndNothingElse ) {
   std::string const hello = message( 0, "SDB\x01" );
   std::string const one( "\0\0\0\1", 4 );
   std::string const text = one + "x"; // a text of one byte
   std::string const mount = hello + message( 1, one + text + text + std::string( 1, '\0' ) );
   std::string ofOnePath = mount; // as many as there may be, and one more
   for ( char number = 2; number <= 9; ++number ) {
      ofOnePath += message( 1, one.substr( 0, 3 ) + number + text + text + std::string( 1, '\0' ) );
   }
   std::pair<char const *, std::string> const cases[] = {
      { "not the protocol", "GET / HTTP/1.1\r\n\r\n" },
      { "another version", message( 0, "SDB\x02" ) },
      { "no greeting", message( 2, one ) },
      { "a mount too long", hello + std::string( "\0\x01\0\1\1", 5 ) },
      { "a log of one who may not write", hello + std::string( "\0\x01\0\1\6", 5 ) },
      { "what is too long for a peer without logs", hello + std::string( "\0\x20\0\0", 4 ) },
      { "an unknown kind", hello + message( 99, "" ) },
      { "a log of what was never mounted", hello + message( 5, one + "VEL\x01" ) },
      { "a mode that is none", hello + message( 1, one + text + text + "\x02" ) },
      { "a number once more", mount + mount.substr( hello.size() ) },
      { "too many mounts of one path", ofOnePath },
      { "a log for a mount that reads", mount + message( 6, one + "VEL\x01" ) },
   };
   for ( auto const & [what, bytes] : cases ) {
      EntityManager server;
      Session session( server );
      try {
         session.receive( bytes );
         ADD_FAILURE() << what << " was taken";
      } catch ( ProtocolException const & problem ) {
         EXPECT_EQ( std::string( problem.what() ).find( '\n' ), std::string::npos ) << what;
      }
      EXPECT_FALSE( session.wantsToSend() || session.wantsToReceive() );
      EXPECT_THROW( session.receive( hello ), ProtocolException );
   }
}

TEST( SessionHostileTest, aPeerThatAsksAndDoesNotListenIsBounded ) {
   EntityManager server;
   Session session( server );
   session.receive( message( 0, "SDB\x01" ) );
   // Path, type, mode: to write, which is refused.
   std::string const nothing( "\0\0\0\0\0\0\0\0\1", 9 );
   auto const askOften = [&] {
      for ( uint32_t i = 1; i < 1000000; ++i ) {
         Vel::NboAttrLog log;
         log.write( i );
         std::string const number( log.bytes() );
         session.receive( message( 1, number + nothing ) + message( 2, number ) );
         EXPECT_FALSE( i == 50000 && session.wantsToReceive() );
      }
   };
   EXPECT_THROW( askOften(), ProtocolException );
}

} // namespace
} // namespace Statedb
