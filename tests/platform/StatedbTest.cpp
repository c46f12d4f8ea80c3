#include "tests/platform/FlowSample.h"

#include <Statedb/EntityManager.h>
#include <Statedb/Session.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <random>

namespace Statedb {
namespace {

using Flow::asText;
using Flow::Slot;

Vel::Ptr<Mount> newMount( char const * path, char const * type, MountMode mode = MountMode::read,
                          MountFilter filter = {} ) {
   return Vel::Ptr<Mount>( new Mount( path, type, std::move( filter ), mode ) );
}

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

// ---------------------------------------------------------------------------------------------
// In one process

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

TEST( EntityManagerTest, aMountFollowsWhatIsAtItsPath ) {
   EntityManager manager;
   auto const group = newGroup();
   auto const mount = newMount( "a/b/slot1", "Flow::Slot" );
   group->mountIs( mount );
   manager.mountGroupIs( group );
   EXPECT_EQ( mount->state(), MountState::waiting );
   Vel::Ptr<Slot> const slot( Flow::opticalSlotFactory( "slot1" ) );
   manager.entityIs( "a/b/slot1", slot ); // of a type derived from that of the mount
   EXPECT_EQ( mount->state(), MountState::mounted );
   EXPECT_EQ( mount->target(), slot.get() );
   EXPECT_TRUE( group->complete() );
   manager.entityDel( "a" );
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_EQ( mount->target(), nullptr );
   manager.entityIs( "a/b/slot1", Vel::dirFactory( "slot1" ) );
   EXPECT_EQ( mount->state(), MountState::wrongType );
   Vel::dynamicPtr<Vel::Dir>( manager.entity( "a/b" ) )->entryIs( slot );
   EXPECT_EQ( mount->target(), slot.get() );
   manager.mountGroupDel( group );
   EXPECT_EQ( mount->state(), MountState::waiting );
   manager.mountGroupIs( group );
   EXPECT_EQ( mount->state(), MountState::mounted );
   auto const unknown = newMount( "a/b", "No::Type" );
   group->mountIs( unknown );
   EXPECT_EQ( unknown->state(), MountState::unknownType );
}

TEST( EntityManagerTest, theSamePathTwice ) {
   EntityManager manager;
   manager.entityIs( "slot1", new Slot( "slot1" ) );
   auto const group = newGroup();
   manager.mountGroupIs( group );
   auto const first = newMount( "slot1", "Flow::Slot" );
   auto const second = newMount( "slot1", "Vel::Dir" );
   group->mountIs( first );
   group->mountIs( second );
   EXPECT_EQ( first->state(), MountState::waiting ) << "replaced in its group";
   EXPECT_EQ( second->state(), MountState::wrongType );
   // Groups do not know each other; of writers there is one.
   auto const other = newGroup();
   auto const writer = newMount( "slot1", "Flow::Slot", MountMode::write );
   group->mountIs( writer );
   manager.mountGroupIs( other );
   auto const late = newMount( "slot1", "Flow::Slot", MountMode::write );
   other->mountIs( late );
   EXPECT_EQ( writer->state(), MountState::mounted );
   EXPECT_EQ( late->state(), MountState::taken );
   auto const reader = newMount( "slot1", "Flow::Slot" );
   other->mountIs( reader );
   EXPECT_EQ( reader->target(), writer->target() );
}

TEST( EntityManagerTest, writingMakesTheEntity ) {
   EntityManager manager;
   auto const group = newGroup();
   manager.mountGroupIs( group );
   auto const mount = newMount( "x/y/slot1", "Flow::Slot", MountMode::write );
   auto const lane = newMount( "x/lane", "Flow::Lane", MountMode::write );
   group->mountIs( mount );
   group->mountIs( lane );
   EXPECT_EQ( mount->target(), manager.entity( "x/y/slot1" ).get() );
   EXPECT_EQ( lane->state(), MountState::unknownType ) << "has no factory";
}

TEST( EntityManagerTest, aMountMayEndWhileItIsTold ) {
   EntityManager manager;
   auto const group = newGroup();
   manager.mountGroupIs( group );
   for ( MountMode mode : { MountMode::read, MountMode::write } ) {
      auto const mount = newMount( "a/slot1", "Flow::Slot", mode );
      StateObserver ends( mount, [&] { group->mountDel( "a/slot1" ); } );
      group->mountIs( mount );
      manager.entityIs( "a/slot1", new Slot( "slot1" ) );
      EXPECT_FALSE( group->mountHas( "a/slot1" ) );
      EXPECT_EQ( mount->state(), MountState::waiting );
      EXPECT_EQ( mount->target(), nullptr );
      manager.entityDel( "a/slot1" );
   }
}

// ---------------------------------------------------------------------------------------------
// Through sessions

/// A server with a directory of slots and a client, their sessions joined by a pipe.
class SessionTest : public testing::Test {
 protected:
   explicit SessionTest( Session::PeerMayWrite mayWrite = Session::PeerMayWrite::no )
      : serving( std::make_unique<Session>( server, mayWrite ) ) {
      server.entityIs( "status/slots", dir );
      mounting->mountGroupIs( group );
   }
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
      while ( pumpBoth( *serving, *mounting, most ) ) {
      }
   }
   Vel::Ptr<Mount> mounted( char const * path, char const * type, MountMode mode = MountMode::read,
                            MountFilter filter = {} ) {
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

   EntityManager server;
   EntityManager client;
   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "slots" );
   Vel::Ptr<MountGroup> group = newGroup();
   std::unique_ptr<Session> serving;
   std::unique_ptr<Session> mounting = std::make_unique<Session>( client );
};

TEST_F( SessionTest, aReplicaAppearsWithItsWholeImageAndFollows ) {
   auto const slot = addSlot( "slot1" );
   slot->speedIs( 25 );
   auto const mount = newMount( "status/slots", "Vel::Dir" );
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

TEST_F( SessionTest, pathsComeAndGo ) {
   auto const mount = mounted( "status/slots/slot1", "Flow::Slot" );
   EXPECT_EQ( mount->state(), MountState::waiting );
   addSlot( "slot1" )->speedIs( 3 );
   pump();
   ASSERT_EQ( mount->state(), MountState::mounted );
   auto const first = Vel::dynamicPtr<Slot>( client.entity( "status/slots/slot1" ) );
   EXPECT_EQ( first->speed(), 3u );
   addSlot( "slot1" )->speedIs( 4 ); // another one
   pump();
   auto const second = Vel::dynamicPtr<Slot>( client.entity( "status/slots/slot1" ) );
   EXPECT_EQ( second->speed(), 4u );
   EXPECT_NE( first, second );
   EXPECT_EQ( mount->target(), second.get() );
   dir->entryDel( "slot1" );
   pump();
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_FALSE( client.entity( "status/slots/slot1" ) );
   dir->entryIs( Vel::dirFactory( "slot1" ) );
   pump();
   EXPECT_EQ( mount->state(), MountState::wrongType );
   dir->entryIs( Flow::opticalSlotFactory( "slot1" ) );
   pump();
   EXPECT_EQ( mount->target()->velModel().typeName, "Flow::OpticalSlot" );
   EXPECT_EQ( mounted( "status", "No::Type" )->state(), MountState::unknownType );
   EXPECT_EQ( mounted( "", "Vel::Dir" )->state(), MountState::taken );
}

TEST_F( SessionTest, whatIsUnmountedGoesAlsoWhileAReactorRuns ) {
   auto const slot = addSlot( "slot1" );
   auto const mount = mounted( "status/slots", "Vel::Dir" );
   class Reactor : public Slot::NotifieeConst {
    public:
      std::function<void()> then;
      void onSpeed() override { then(); }
   } reactor;
   auto const copy = Vel::dynamicPtr<Slot>( client.entity( "status/slots/slot1" ) );
   reactor.notifierIs( copy );
   reactor.then = [&] { group->mountDel( "status/slots" ); };
   slot->speedIs( 9 );
   slot->labelIs( "more of the same log" );
   pump();
   EXPECT_EQ( copy->speed(), 9u );
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_FALSE( client.entity( "status/slots" ) );
   slot->speedIs( 10 );
   EXPECT_FALSE( serving->wantsToSend() ) << "nobody has it mounted";
}

TEST_F( SessionTest, replicasGoWithTheSession ) {
   addSlot( "slot1" );
   auto const mount = mounted( "status/slots", "Vel::Dir" );
   EXPECT_EQ( mount->state(), MountState::mounted );
   mounting = nullptr;
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_FALSE( client.entity( "status/slots" ) );
   serving = std::make_unique<Session>( server );
   mounting = std::make_unique<Session>( client );
   mounting->mountGroupIs( group );
   pump();
   EXPECT_EQ( mount->state(), MountState::mounted );
   EXPECT_EQ( asText( *client.entity( "status/slots" ) ), asText( *dir ) );
}

TEST_F( SessionTest, aFilterLetsThroughWhatItLists ) {
   addSlot( "slot1" );
   addSlot( "slot2" );
   mounted( "status/slots", "Vel::Dir", MountMode::read, { { "slot2", "slot3" } } );
   addSlot( "slot3" );
   addSlot( "slot4" );
   pump();
   auto const copy = Vel::dynamicPtr<Vel::Dir>( client.entity( "status/slots" ) );
   EXPECT_EQ( copy->entryMap().size(), 2u );
   EXPECT_TRUE( copy->entryHas( "slot2" ) && copy->entryHas( "slot3" ) );
}

TEST_F( SessionTest, namesAreFollowedFromMountToMountInAnyOrder ) {
   Vel::Ptr<Slot> const table( new Slot( "table" ) );
   server.entityIs( "tables/table", table );
   addSlot( "slot1" )->tableIs( table );
   mounted( "status/slots", "Vel::Dir" );
   auto const copy = Vel::dynamicPtr<Slot>( client.entity( "status/slots/slot1" ) );
   EXPECT_EQ( copy->table(), nullptr );
   mounted( "tables/table", "Flow::Slot" );
   EXPECT_EQ( copy->table(), client.entity( "tables/table" ).get() );
}

TEST_F( SessionTest, aPlaceThatIsTakenIsLeftAlone ) {
   Vel::Ptr<Slot> const own( new Slot( "slots" ) );
   client.entityIs( "status/slots", own );
   EXPECT_EQ( mounted( "status/slots", "Vel::Dir" )->state(), MountState::taken );
   EXPECT_EQ( client.entity( "status/slots" ), own );
}

TEST_F( SessionTest, aReaderThatStopsReadingCostsMarksOnly ) {
   auto const slot = addSlot( "slot1" );
   mounted( "status/slots", "Vel::Dir" );
   for ( uint32_t i = 0; i < 200000; ++i ) {
      slot->speedIs( i );
      slot->aliasIs( Vel::String( std::to_string( i ) ), "x" );
      slot->aliasDel( Vel::String( std::to_string( i ) ) );
   }
   EXPECT_LT( serving->waitingBytes(), 1200000u );
   pump();
   EXPECT_EQ( asText( *client.entity( "status/slots" ) ), asText( *dir ) );
}

TEST_F( SessionTest, peersMayNotWriteUnlessTheyMay ) {
   EXPECT_EQ( mounted( "new", "Flow::Slot", MountMode::write )->state(), MountState::refused );
   EXPECT_FALSE( server.entity( "new" ) );
}

class WritingSessionTest : public SessionTest {
 protected:
   WritingSessionTest() : SessionTest( Session::PeerMayWrite::yes ) {}
};

TEST_F( WritingSessionTest, aWriterIsTheOnlyOneAndItsEntityGoesWithIt ) {
   auto const mount = mounted( "new/slot", "Flow::Slot", MountMode::write );
   ASSERT_EQ( mount->state(), MountState::mounted );
   auto const own = Vel::dynamicPtr<Slot>( client.entity( "new/slot" ) );
   EXPECT_EQ( mount->target(), own.get() );
   own->speedIs( 40 );
   own->laneIs( Flow::LaneNumber( 2 ) )->litIs( true );
   pump();
   EXPECT_EQ( asText( *server.entity( "new/slot" ) ), asText( *own ) );
   auto const rival = newMount( "new/slot", "Flow::Slot", MountMode::write );
   auto const rivals = newGroup();
   server.mountGroupIs( rivals );
   rivals->mountIs( rival );
   EXPECT_EQ( rival->state(), MountState::taken );
   server.mountGroupDel( rivals );
   group->mountDel( "new/slot" );
   pump();
   EXPECT_FALSE( server.entity( "new/slot" ) );
   EXPECT_EQ( client.entity( "new/slot" ), own );
   // One that was there before stays as it was last written.
   addSlot( "slot1" );
   mounted( "status/slots/slot1", "Flow::Slot", MountMode::write );
   Vel::dynamicPtr<Slot>( client.entity( "status/slots/slot1" ) )->labelIs( "last" );
   pump();
   group->mountDel( "status/slots/slot1" );
   pump();
   EXPECT_EQ( Vel::dynamicPtr<Slot>( dir->entry( "slot1" ) )->label(), "last" );
}

TEST_F( SessionTest, readersOfAnySpeedAgreeInTheEnd ) {
   std::mt19937 random( 3 );
   struct Reader {
      explicit Reader( EntityManager & server ) : serving( server ) {
         group->mountIs( newMount( "status/slots", "Vel::Dir" ) );
         mounting.mountGroupIs( group );
      }
      EntityManager tree;
      Vel::Ptr<MountGroup> group = newGroup();
      Session serving;
      Session mounting{ tree };
   };
   std::vector<std::unique_ptr<Reader>> readers;
   for ( int i = 0; i < 3; ++i ) {
      readers.push_back( std::make_unique<Reader>( server ) );
   }
   auto const step = [&]( Reader & reader, std::size_t most ) {
      return pumpBoth( reader.serving, reader.mounting, most );
   };
   for ( unsigned i = 0; i < 10000; ++i ) {
      Vel::Name const name( "slot" + std::to_string( random() % 20 ) );
      auto const slot = Vel::dynamicPtr<Slot>( dir->entry( name ) );
      if ( !slot ) {
         dir->entryIs( new Slot( name ) );
      } else if ( random() % 20 == 0 ) {
         dir->entryDel( name );
      } else {
         slot->readingIs( static_cast<uint8_t>( random() ), static_cast<uint32_t>( random() % 3 ) );
         slot->speedIs( static_cast<uint32_t>( random() ) );
      }
      for ( std::size_t r = 0; r < readers.size(); ++r ) {
         if ( random() % ( 1 + 100 * r ) == 0 ) {
            step( *readers[r], 1 + random() % 300 );
         }
      }
   }
   for ( auto const & reader : readers ) {
      while ( step( *reader, 4096 ) ) {
      }
      ASSERT_TRUE( reader->group->complete() );
      EXPECT_EQ( asText( *reader->tree.entity( "status/slots" ) ), asText( *dir ) );
   }
}

// ---------------------------------------------------------------------------------------------
// Peers that do not keep to the protocol

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
