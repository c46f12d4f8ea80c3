#include "tests/platform/SampleEntities.h"

#include <Statedb/EntityManager.h>
#include <Statedb/Session.h>

#include <gtest/gtest.h>

#include <functional>

namespace Statedb {
namespace {

using Sample::asText;
using Sample::Slot;

Vel::Ptr<MountGroup> newGroup() {
   return Vel::Ptr<MountGroup>( new MountGroup( "group" ) );
}

/// Calls back when the state of a mount changes.
class StateObserver : public Mount::NotifieeConst {
 public:
   StateObserver( Vel::Ptr<Mount> const & mount, std::function<void()> then )
      : then_( std::move( then ) ) {
      notifierIs( mount );
   }
   void onState() override { then_(); }

 private:
   std::function<void()> then_;
};

TEST( EntityManagerTest, entitiesAreFoundByPath ) {
   EntityManager manager;
   Vel::Ptr<Slot> const slot( new Slot( "slot1" ) );
   EXPECT_TRUE( manager.entityIs( "a/b/slot1", slot ) );
   EXPECT_EQ( manager.entity( "a/b/slot1" ), slot );
   EXPECT_EQ( slot->fullName(), "/a/b/slot1" );
   EXPECT_EQ( manager.entity( "" ), manager.root() );
   EXPECT_FALSE( manager.entity( "a/c" ) );
   EXPECT_FALSE( manager.entity( "a/b/slot1/x" ) );
   EXPECT_TRUE( manager.entityIs( "a/b/slot1", slot ) ) << "it is there already";
   EXPECT_FALSE( manager.entityIs( "a/b/slot1", new Slot( "slot1" ) ) ) << "another one is there";
   EXPECT_FALSE( manager.entityIs( "a/b/slot1/x", new Slot( "x" ) ) ) << "no directory on the way";
   EXPECT_FALSE( manager.entityIs( "a/y", new Slot( "x" ) ) ) << "not its name";
   manager.entityDel( "a/b/slot1" );
   manager.entityDel( "a/z/z" );
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
      if ( remote ) {
         serving = std::make_unique<Session>( server, mayWrite );
         mounting = std::make_unique<Session>( client );
      }
      serve();
   }
   void serve() { mounting ? mounting->mountGroupIs( group ) : client.mountGroupIs( group ); }
   static bool pump( Session & from, Session & to, std::size_t most ) {
      std::string const bytes( from.toSend( most ) );
      from.sent( bytes.size() );
      to.receive( bytes );
      return !bytes.empty();
   }
   static bool pumpBoth( Session & a, Session & b, std::size_t most ) {
      bool const there = pump( a, b, most );
      bool const back = pump( b, a, most );
      return there || back;
   }
   void pump( std::size_t most = 1000 ) {
      while ( serving && pumpBoth( *serving, *mounting, most ) ) {
      }
   }
   Vel::Ptr<Mount> mounted( char const * path, char const * type, MountMode mode = MountMode::read,
                            MountFilter filter = {} ) {
      Vel::Ptr<Mount> const mount( new Mount( path, type, std::move( filter ), mode ) );
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
   if ( !mounting ) {
      client.mountGroupDel( group );
      EXPECT_EQ( mount->state(), MountState::waiting );
      serve();
      EXPECT_EQ( mount->state(), MountState::mounted );
   }
   EXPECT_EQ( mounted( "status", "No::Type" )->state(), MountState::unknownType );
}

TEST_P( AnyMountTest, aLaterMountOfAPathReplacesTheOneOfItsGroup ) {
   addSlot( "slot1" );
   auto const first = mounted( "status/slots/slot1", "Sample::Slot" );
   auto const second = mounted( "status/slots/slot1", "Vel::Dir" );
   EXPECT_EQ( first->state(), MountState::waiting );
   EXPECT_EQ( second->state(), MountState::wrongType );
   // Also while the end of the replaced one is told.
   Vel::Ptr<Mount> const last( new Mount( "status/slots/slot1", "Sample::Slot" ) );
   StateObserver ends( second, [&] { group->mountIs( last ); } );
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
   Vel::Ptr<Mount> const rival( new Mount( "x/y/slot1", "Sample::Slot", {}, MountMode::write ) );
   rivals->mountIs( rival );
   EXPECT_EQ( rival->state(), MountState::taken );
   Vel::Ptr<Mount> const reader( new Mount( "x/y/slot1", "Sample::Slot" ) );
   rivals->mountIs( reader );
   EXPECT_EQ( reader->target(), server.entity( "x/y/slot1" ).get() );
   server.mountGroupDel( rivals );
}

class SessionTest : public MountTest {};

TEST_F( SessionTest, aReplicaAppearsWithItsWholeImageAndFollows ) {
   auto const slot = addSlot( "slot1" );
   slot->speedIs( 25 );
   Vel::Ptr<Mount> const mount( new Mount( "status/slots", "Vel::Dir" ) );
   StateObserver whole( mount, [&] {
      if ( mount->state() == MountState::mounted ) {
         EXPECT_EQ( asText( *mount->target() ), asText( *dir ) );
      }
   } );
   group->mountIs( mount );
   pump( 1 );
   ASSERT_EQ( mount->state(), MountState::mounted );
   EXPECT_EQ( client.entity( "status/slots" ).get(), mount->target() );
   slot->speedIs( 100 );
   slot->tableIs( addSlot( "slot2" ) );
   EXPECT_TRUE( serving->wantsToSend() );
   pump();
   EXPECT_EQ( asText( *mount->target() ), asText( *dir ) );
   EXPECT_FALSE( serving->wantsToSend() );
   EXPECT_EQ( serving->waitingBytes() + serving->waitingEntities(), 0u );
}

TEST_F( SessionTest, whatTwoPeersServeAtOnePathHasTwoPlaces ) {
   addSlot( "slot1" );
   EntityManager second;
   second.entityIs( "status/slots", Vel::dirFactory( "slots" ) );
   Session otherServing( second );
   Session otherMounting( client );
   auto const otherGroup = newGroup();
   otherMounting.mountGroupIs( otherGroup );
   auto const at = [&]( char const * place ) {
      return Vel::Ptr<Mount>( new Mount( "status/slots", "Vel::Dir", {}, MountMode::read, place ) );
   };
   auto const first = at( "peers/a" );
   group->mountIs( first );
   otherGroup->mountIs( at( "peers/b" ) );
   pump();
   while ( pumpBoth( otherServing, otherMounting, 1000 ) ) {
   }
   auto const entries = [&]( char const * path ) {
      auto const copy = Vel::dynamicPtr<Vel::Dir>( client.entity( path ) );
      return copy ? static_cast<int>( copy->entryMap().size() ) : -1;
   };
   EXPECT_EQ( entries( "peers/a" ), 1 );
   EXPECT_EQ( entries( "peers/b" ), 0 );
   mounting = nullptr;
   EXPECT_EQ( first->state(), MountState::waiting );
   EXPECT_EQ( entries( "peers/a" ), -1 );
   EXPECT_EQ( entries( "peers/b" ), 0 );
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

TEST_F( SessionTest, aFilterLetsThroughWhatItLists ) {
   addSlot( "slot1" );
   addSlot( "slot2" );
   mounted( "status/slots", "Vel::Dir", MountMode::read, { { "slot2", "slot3" } } );
   addSlot( "slot3" );
   addSlot( "slot4" );
   pump();
   auto const slots = copy<Vel::Dir>( "status/slots" );
   EXPECT_EQ( slots->entryMap().size(), 2u );
   EXPECT_TRUE( slots->entryHas( "slot2" ) && slots->entryHas( "slot3" ) );
}

TEST_F( SessionTest, aPlaceThatIsTakenIsLeftAlone ) {
   Vel::Ptr<Slot> const own( new Slot( "slots" ) );
   client.entityIs( "status/slots", own );
   EXPECT_EQ( mounted( "status/slots", "Vel::Dir" )->state(), MountState::taken );
   EXPECT_EQ( client.entity( "status/slots" ), own );
   EXPECT_EQ( mounted( "", "Vel::Dir" )->state(), MountState::taken );
}

TEST_F( SessionTest, peersMayNotWriteUnlessTheyMayAndWhatTheyMadeGoesWithThem ) {
   EXPECT_EQ( mounted( "new", "Sample::Slot", MountMode::write )->state(), MountState::refused );
   EXPECT_FALSE( server.entity( "new" ) );
   serving = std::make_unique<Session>( server, Session::PeerMayWrite::yes );
   mounting = std::make_unique<Session>( client );
   serve();
   pump();
   auto const own = client.entity( "new" );
   EXPECT_TRUE( server.entity( "new" ) );
   group->mountDel( "new" );
   pump();
   EXPECT_FALSE( server.entity( "new" ) );
   EXPECT_EQ( client.entity( "new" ), own );
}

std::string message( char kind, std::string const & body ) {
   return std::string( { 0, 0, 0, static_cast<char>( 1 + body.size() ), kind } ) + body;
}

TEST( SessionHostileTest, whatNoPeerWouldSendEndsTheSessionAndNothingElse ) {
   std::string const hello = message( 0, "SDB\x01" );
   std::string const one( "\0\0\0\1", 4 );
   std::string const text = one + "x"; // a text of one byte
   struct {
      char const * what;
      std::string bytes;
   } const cases[] = {
      { "not the protocol", "GET / HTTP/1.1\r\n\r\n" },
      { "another version", message( 0, "SDB\x02" ) },
      { "no greeting", message( 2, one ) },
      { "an empty message", hello + std::string( 4, '\0' ) },
      { "a message too long", hello + "\x7f\xff\xff\xff" },
      { "one too long for a peer without logs to send", hello + std::string( "\0\x20\0\0", 4 ) },
      { "an unknown kind", hello + message( 99, "" ) },
      { "an end of what was never mounted", hello + message( 2, one ) },
      { "a state of what was never mounted", hello + message( 3, one ) },
      { "a log of what was never mounted", hello + message( 5, one + "VEL\x01" ) },
      { "a mount cut short", hello + message( 1, one + one ) },
      { "a mode that is none", hello + message( 1, one + text + text + "\x02" ) },
      { "a number once more", hello + message( 1, one + text + text + std::string( 1, '\0' ) ) +
                                 message( 1, one + text + text + std::string( 1, '\0' ) ) },
      { "a log for a mount that reads",
        hello + message( 1, one + text + text + std::string( 1, '\0' ) ) +
           message( 6, one + "VEL\x01" ) },
   };
   for ( auto const & test : cases ) {
      EntityManager server;
      Session session( server );
      try {
         session.receive( test.bytes );
         ADD_FAILURE() << test.what << " was taken";
      } catch ( ProtocolException const & problem ) {
         EXPECT_EQ( std::string( problem.what() ).find( '\n' ), std::string::npos ) << test.what;
      }
      EXPECT_FALSE( session.wantsToSend() || session.wantsToReceive() );
      EXPECT_THROW( session.receive( hello ), ProtocolException );
   }
}

TEST( SessionHostileTest, aPeerThatAsksAndDoesNotListenIsBounded ) {
   EntityManager server;
   Session session( server );
   session.receive( message( 0, "SDB\x01" ) );
   std::string const nothing( "\0\0\0\0\0\0\0\0\1",
                              9 ); // path, type, mode: to write, which is refused
   EXPECT_THROW(
      {
         for ( uint32_t i = 1; i < 1000000; ++i ) {
            std::string number;
            for ( int shift = 24; shift >= 0; shift -= 8 ) {
               number += static_cast<char>( i >> shift );
            }
            session.receive( message( 1, number + nothing ) + message( 2, number ) );
            if ( i == 50000 ) {
               EXPECT_FALSE( session.wantsToReceive() );
            }
         }
      },
      ProtocolException );
}

} // namespace
} // namespace Statedb
