// What replicas hold in the less ordinary turns of events: entities that join with children of their own, pointers
// whose targets come late or again, mounts that change while they are told of, peers that ask for too much.
#include "tests/platform/SampleEntities.h"

#include <Statedb/EntityManager.h>
#include <Statedb/Session.h>
#include <Vel/Flow.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace Sample {
namespace {

/// A directory, its flow, and a replica that takes what waits.
struct Copied {
   void deliver() {
      while ( flow->pending() ) {
         Vel::NboAttrLog log( flow->piece() );
         replica->doHandleAttrDeserialization( log, in );
      }
   }
   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "dir" );
   Vel::Ptr<Vel::FlowOut> flow{ new Vel::FlowOut };
   Vel::Ptr<Vel::NboAttrLogSa> adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
   Vel::Ptr<Vel::Dir> replica = Vel::dirFactory( "dir" );
   Vel::FlowIn in;
};

TEST( ReplicationTest, whatJoinsWithChildrenBringsThem ) {
   Copied copied;
   copied.deliver();
   Vel::Ptr<Slot> const slot( new Slot( "slot" ) );
   slot->laneIs( LaneNumber( 1 ) )->litIs( true );
   slot->statsIs()->litIs( true );
   auto const below = Vel::dirFactory( "below" );
   below->entryIs( slot );
   copied.dir->entryIs( below );
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
   Vel::Ptr<Slot> const other( new Slot( "slot" ) ); // takes the place of the first
   other->laneIs( LaneNumber( 1 ) );
   other->laneIs( LaneNumber( 2 ) )->litIs( true );
   below->entryIs( other );
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
}

TEST( ReplicationTest, pointersTravelOnceTheirTargetsHaveJoinedTheTree ) {
   Copied copied;
   Vel::Ptr<Slot> const slot( new Slot( "slot" ) );
   Vel::Ptr<Slot> const late( new Slot( "late" ) );
   Vel::Ptr<Slot> const later( new Slot( "later" ) );
   copied.dir->entryIs( slot );
   slot->peerIs( late ); // in the image
   copied.deliver();
   slot->tableIs( later );
   slot->peerIs( later );
   copied.deliver();
   auto const copy = Vel::dynamicPtr<Slot>( copied.replica->entry( "slot" ) );
   EXPECT_TRUE( copy->peerMap().empty() && !copy->table() );
   copied.dir->entryIs( late );
   auto const below = Vel::dirFactory( "below" );
   below->entryIs( later );
   copied.dir->entryIs( below );
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
   EXPECT_EQ( copy->peerMap().size(), 2U );
   EXPECT_EQ( copied.in.unresolved(), 0U );
   // One that is gone before its target comes.
   slot->tableIs( Vel::Ptr<Slot>( new Slot( "never" ) ) );
   copied.deliver();
   copied.dir->entryDelAll();
   copied.dir->entryIs( late );
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
}

TEST( ReplicationTest, aNameThatIsNoMoreIsNotFollowed ) {
   Copied copied;
   Vel::Ptr<Slot> const slot( new Slot( "slot" ) );
   auto const outside = Vel::dirFactory( "outside" );
   Vel::Ptr<Slot> const far( new Slot( "far" ) );
   outside->entryIs( far );
   auto const top = Vel::dirFactory( "top" );
   top->entryIs( outside );
   top->entryIs( copied.dir );
   copied.dir->entryIs( slot );
   slot->peerIs( far );
   slot->tableIs( far );
   copied.deliver();
   EXPECT_EQ( copied.in.unresolved(), 2U );
   slot->tableIs( nullptr );
   copied.deliver();
   EXPECT_EQ( copied.in.unresolved(), 1U );
   slot->peerDelAll();
   while ( copied.flow->pending() ) { // lost; and then an image that lists none
      EXPECT_FALSE( copied.flow->piece().empty() );
   }
   copied.adaptor->imageIs();
   copied.deliver();
   EXPECT_EQ( copied.in.unresolved(), 0U );
}

TEST( ReplicationTest, manyPointersAreFollowedInLittleTime ) {
   // Quadratic, these would take minutes.
   constexpr int count = 20000;
   Copied copied;
   Vel::Ptr<Slot> const slot( new Slot( "slot" ) );
   auto const far = Vel::dirFactory( "far" );
   auto const top = Vel::dirFactory( "top" );
   top->entryIs( copied.dir );
   top->entryIs( far );
   copied.dir->entryIs( slot );
   for ( int i = 0; i < count; ++i ) {
      Vel::Ptr<Slot> const peer( new Slot( Vel::Name( std::to_string( i ) ) ) );
      ( i % 2 ? far : copied.dir )->entryIs( peer );
      slot->peerIs( peer );
   }
   copied.deliver();
   auto const copy = Vel::dynamicPtr<Slot>( copied.replica->entry( "slot" ) );
   EXPECT_EQ( copied.in.unresolved(), std::size_t( count ) ) << "they count from another top";
   auto const copiedTop = Vel::dirFactory( "top" );
   copiedTop->entryIs( copied.replica );
   copied.in.resolve();
   EXPECT_EQ( copied.in.unresolved(), std::size_t( count / 2 ) );
   EXPECT_EQ( copy->peerMap().size(), std::size_t( count / 2 ) );
}

TEST( ReplicationTest, whatIsTooDeepIsLeftOut ) {
   Copied copied;
   auto at = copied.dir;
   for ( int i = 0; i < 70; ++i ) {
      auto const below = Vel::dirFactory( "d" );
      at->entryIs( below );
      at = below;
   }
   copied.dir->entryIs( new Slot( "slot" ) );
   EXPECT_NO_THROW( copied.deliver() );
   EXPECT_TRUE( copied.replica->entryHas( "slot" ) );
}

TEST( ReplicationTest, aRecordWhoseValueHasAnotherKeyIsRefused ) {
   Vel::Ptr<Slot> const slot( new Slot( "slot" ) );
   Vel::NboAttrLog log( std::string_view( "VEL\x01\x01\x07\0\0\0\x06\0\0\x03\0\x04\x01", 16 ) );
   EXPECT_THROW( slot->doHandleAttrDeserialization( log ), Vel::AttrLogException );
   EXPECT_TRUE( slot->recordMap().empty() );
}

TEST( ReplicationTest, aSlowReaderOfASteadyStreamSeesTheWholeImage ) {
   Copied copied;
   copied.flow = new Vel::FlowOut( 1000 );
   copied.adaptor = Vel::Dir::velNboAttrLogSaIs( copied.dir, copied.flow );
   Vel::Ptr<Slot> const busy( new Slot( "0" ) );
   copied.dir->entryIs( busy );
   for ( int i = 1; i < 100; ++i ) {
      copied.dir->entryIs( new Slot( Vel::Name( std::to_string( i ) ) ) );
   }
   int pieces = 0;
   for ( ; !copied.adaptor->complete() && pieces < 1000; ++pieces ) {
      Vel::NboAttrLog log( copied.flow->piece( 64 ) );
      copied.replica->doHandleAttrDeserialization( log, copied.in );
      for ( uint8_t key = 0; key < 200; ++key ) {
         busy->readingIs( key, static_cast<uint32_t>( pieces ) );
      }
   }
   EXPECT_LT( pieces, 1000 );
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
}

} // namespace
} // namespace Sample

namespace Statedb {
namespace {

using Sample::asText;
using Sample::Slot;

Vel::Ptr<Mount> newMount( Vel::Name const & path, char const * type,
                          MountMode mode = MountMode::read, MountFilter filter = {} ) {
   return Vel::Ptr<Mount>( new Mount( path, type, std::move( filter ), mode ) );
}

Vel::Ptr<MountGroup> newGroup() {
   return Vel::Ptr<MountGroup>( new MountGroup( "group" ) );
}

/// Calls back once, when a mount or a directory changes.
class Once : public Mount::NotifieeConst {
 public:
   std::function<void()> then;
   void onState() override { tell(); }
   void onTarget() override { tell(); }
   void tell() {
      if ( auto const now = std::exchange( then, nullptr ) ) {
         now();
      }
   }
};
class OnceDir : public Vel::Dir::NotifieeConst {
 public:
   std::function<void()> then;
   void onEntry( Vel::Name const & ) override {
      if ( auto const now = std::exchange( then, nullptr ) ) {
         now();
      }
   }
};

// ---------------------------------------------------------------------------------------------
// In one process

TEST( MountLifetimeTest, aMountMayEndInEveryNotificationOfIt ) {
   Vel::Name const path = "a-directory-with-a-long-name/slot1";
   // The root's and the mount's observers, and what ends: the mount or the whole group.
   for ( MountMode mode : { MountMode::read, MountMode::write } ) {
      for ( bool byRoot : { false, true } ) {
         for ( bool wholeGroup : { false, true } ) {
            EntityManager manager;
            auto const group = newGroup();
            manager.mountGroupIs( group );
            auto mount = newMount( path, "Sample::Slot", mode );
            auto const end = [&] {
               wholeGroup ? manager.mountGroupDel( group ) : group->mountDel( path );
            };
            Once onMount;
            OnceDir onRoot;
            ( byRoot ? onRoot.then : onMount.then ) = end;
            onMount.notifierIs( mount );
            onRoot.notifierIs( manager.root() );
            group->mountIs( mount );
            manager.entityIs( path, new Slot( "slot1" ) );
            EXPECT_EQ( mount->state(), MountState::waiting );
            EXPECT_EQ( mount->target(), nullptr );
         }
      }
   }
}

TEST( MountLifetimeTest, aGroupMayLeaveWhileItIsTakenOn ) {
   EntityManager manager;
   manager.entityIs( "slot1", new Slot( "slot1" ) );
   auto const group = newGroup();
   auto const mount = newMount( "slot1", "Sample::Slot" );
   group->mountIs( mount );
   Once ends;
   ends.then = [&] { manager.mountGroupDel( group ); };
   ends.notifierIs( mount );
   manager.mountGroupIs( group );
   EXPECT_EQ( mount->state(), MountState::waiting );
   EXPECT_EQ( mount->target(), nullptr );
}

TEST( MountLifetimeTest, theNextWriterFollowsTheOneThatLeaves ) {
   for ( bool there : { false, true } ) {
      for ( auto const whatIsMade :
            { EntityManager::WhatIsMade::stays, EntityManager::WhatIsMade::goes } ) {
         EntityManager manager;
         if ( there ) {
            manager.entityIs( "a/slot1", new Slot( "slot1" ) );
         }
         Vel::Ptr<Mount> mounts[2];
         Vel::Ptr<MountGroup> groups[2];
         for ( int i = 0; i < 2; ++i ) {
            mounts[i] = newMount( "a/slot1", "Sample::Slot", MountMode::write );
            groups[i] = newGroup();
            groups[i]->mountIs( mounts[i] );
            manager.mountGroupIs( groups[i], whatIsMade );
         }
         EXPECT_EQ( mounts[1]->state(), MountState::taken );
         manager.mountGroupDel( groups[0] );
         EXPECT_EQ( mounts[1]->state(), MountState::mounted );
         EXPECT_EQ( mounts[1]->target(), manager.entity( "a/slot1" ).get() );
         manager.mountGroupDel( groups[1] );
         EXPECT_EQ( static_cast<bool>( manager.entity( "a/slot1" ) ),
                    there || whatIsMade == EntityManager::WhatIsMade::stays );
      }
   }
   // What is in the way may go, too.
   EntityManager manager;
   manager.entityIs( "a", new Slot( "a" ) );
   auto const group = newGroup();
   manager.mountGroupIs( group );
   auto const mount = newMount( "a/slot1", "Sample::Slot", MountMode::write );
   group->mountIs( mount );
   EXPECT_EQ( mount->state(), MountState::taken );
   manager.entityDel( "a" );
   EXPECT_EQ( mount->state(), MountState::mounted );
}

TEST( MountLifetimeTest, aPathWithAnEmptyNameIsRefused ) {
   EntityManager manager;
   auto const group = newGroup();
   manager.mountGroupIs( group );
   for ( char const * path : { "a/", "/a", "a//b", "/" } ) {
      auto const mount = newMount( path, "Sample::Slot", MountMode::write );
      group->mountIs( mount );
      EXPECT_EQ( mount->state(), MountState::refused ) << path;
   }
   EXPECT_FALSE( manager.entityIs( "", new Slot( "" ) ) );
   EXPECT_TRUE( manager.root()->entryMap().empty() );
}

// ---------------------------------------------------------------------------------------------
// Through sessions

/// A server with a directory of slots and its client.
struct Joined {
   explicit Joined( Session::PeerMayWrite mayWrite = Session::PeerMayWrite::no )
      : serving( server, mayWrite ) {
      server.entityIs( "status/slots", dir );
      mounting.mountGroupIs( group );
   }
   static bool pump( Session & from, Session & to ) {
      std::string const bytes( from.toSend() );
      from.sent( bytes.size() );
      to.receive( bytes );
      return !bytes.empty();
   }
   void pump() {
      while ( pump( serving, mounting ) || pump( mounting, serving ) ) {
      }
   }
   Vel::Ptr<Mount> mounted( Vel::Name const & path, char const * type,
                            MountMode mode = MountMode::read ) {
      auto const mount = newMount( path, type, mode );
      group->mountIs( mount );
      pump();
      return mount;
   }
   Vel::Ptr<Slot> addSlot( char const * name ) const {
      Vel::Ptr<Slot> const slot( new Slot( name ) );
      dir->entryIs( slot );
      return slot;
   }
   [[nodiscard]] Vel::Ptr<Slot> copy( char const * path ) const {
      return Vel::dynamicPtr<Slot>( client.entity( path ) );
   }

   EntityManager server;
   EntityManager client;
   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "slots" );
   Vel::Ptr<MountGroup> group = newGroup();
   Session serving;
   Session mounting{ client };
};

TEST( SessionLifetimeTest, aMountMayEndOrBeReplacedInEveryNotificationOfIt ) {
   Vel::Name const path = "status/slots";
   auto const first = newMount( path, "Vel::Dir" );
   auto const second = newMount( path, "Vel::Dir" );
   auto const third = newMount( path, "Vel::Dir" );
   for ( bool byRoot : { false, true } ) { // while the replica is placed, while it is told
      Joined joined;
      Once onMount;
      OnceDir onRoot;
      ( byRoot ? onRoot.then : onMount.then ) = [&] { joined.group->mountDel( path ); };
      joined.group->mountIs( first );
      onMount.notifierIs( first );
      onRoot.notifierIs( joined.client.root() );
      joined.pump();
      EXPECT_EQ( first->state(), MountState::waiting );
      EXPECT_EQ( first->target(), nullptr );
      EXPECT_FALSE( joined.client.entity( path ) );
   }
   Joined joined;
   joined.group->mountIs( first );
   joined.pump();
   Once replaces;
   replaces.then = [&] { joined.group->mountIs( third ); };
   replaces.notifierIs( first );
   joined.group->mountIs( second ); // which ends the first, whose end puts the third in its place
   joined.pump();
   EXPECT_EQ( second->state(), MountState::waiting );
   EXPECT_EQ( third->state(), MountState::mounted );
}

TEST( SessionLifetimeTest, pointersAreThereWhenMountedIsSaidAndFollowWhatIsMountedAgain ) {
   Joined joined;
   Vel::Ptr<Slot> const table( new Slot( "table" ) );
   joined.server.entityIs( "tables/table", table );
   auto const a = joined.addSlot( "a" );
   auto const b = joined.addSlot( "b" );
   a->tableIs( b );
   a->peerIs( b );
   b->tableIs( table );
   b->peerIs( table );
   joined.mounted( "tables/table", "Sample::Slot" );
   auto const mount = newMount( "status/slots", "Vel::Dir" );
   Once whole;
   whole.then = [&] {
      EXPECT_EQ( asText( *joined.client.entity( "status/slots" ) ), asText( *joined.dir ) );
   };
   whole.notifierIs( mount );
   joined.group->mountIs( mount );
   joined.pump();
   EXPECT_FALSE( whole.then );
   auto const copy = joined.copy( "status/slots/b" );
   joined.group->mountDel( "tables/table" );
   EXPECT_TRUE( !copy->table() && copy->peerMap().empty() );
   joined.mounted( "tables/table", "Sample::Slot" );
   auto const again = joined.client.entity( "tables/table" );
   EXPECT_EQ( copy->table(), again.get() );
   EXPECT_EQ( copy->peer( "table" ).get(), again.get() );
   // The same when the server's path comes anew.
   joined.server.entityDel( "tables/table" );
   joined.pump();
   joined.server.entityIs( "tables/table", table );
   joined.pump();
   EXPECT_EQ( copy->table(), joined.client.entity( "tables/table" ).get() );
   EXPECT_TRUE( copy->table() );
}

TEST( SessionLifetimeTest, namesCountFromTheRootAlsoBelowARepeatedName ) {
   Joined joined;
   auto const outer = Vel::dirFactory( "a" );
   auto const inner = Vel::dirFactory( "a" );
   joined.server.entityIs( "a", outer );
   outer->entryIs( inner );
   Vel::Ptr<Slot> const holder( new Slot( "holder" ) );
   Vel::Ptr<Slot> const target( new Slot( "x" ) );
   outer->entryIs( holder );
   outer->entryIs( target );
   inner->entryIs( new Slot( "x" ) );
   holder->tableIs( target );
   joined.mounted( "a", "Vel::Dir" );
   EXPECT_EQ( joined.copy( "a/holder" )->table(), joined.copy( "a/x" ).get() );
}

TEST( SessionLifetimeTest, whoCannotHaveAPlaceGetsItOnceItIsFree ) {
   // A second group has the same mount; one of another filter is next.
   Joined joined;
   joined.addSlot( "slot1" );
   auto const first = joined.mounted( "status/slots", "Vel::Dir" );
   auto const others = newGroup();
   joined.mounting.mountGroupIs( others );
   auto const shared = newMount( "status/slots", "Vel::Dir" );
   others->mountIs( shared );
   EXPECT_EQ( shared->target(), first->target() );
   auto const more = newGroup();
   joined.mounting.mountGroupIs( more );
   auto const filtered = newMount( "status/slots", "Vel::Dir", MountMode::read, { { "slot2" } } );
   more->mountIs( filtered );
   joined.pump();
   EXPECT_EQ( filtered->state(), MountState::taken );
   joined.addSlot( "slot2" );
   joined.group->mountDel( "status/slots" );
   joined.pump();
   EXPECT_EQ( first->state(), MountState::waiting );
   EXPECT_EQ( shared->state(), MountState::mounted );
   EXPECT_EQ( asText( *shared->target() ), asText( *joined.dir ) );
   others->mountDel( "status/slots" );
   EXPECT_EQ( filtered->state(), MountState::mounted );
   EXPECT_EQ(
      Vel::dynamicPtr<Vel::Dir>( joined.client.entity( "status/slots" ) )->entryMap().size(), 1U );
}

TEST( SessionLifetimeTest, whatGoesWithAWriterIsWhatWasMadeForIt ) {
   Joined joined( Session::PeerMayWrite::yes );
   auto const mount = joined.mounted( "new/slot", "Sample::Slot", MountMode::write );
   Vel::Ptr<Slot> const own( new Slot( "slot" ) );
   Vel::dynamicPtr<Vel::Dir>( joined.server.entity( "new" ) )->entryIs( own );
   joined.group->mountDel( "new/slot" );
   joined.pump();
   EXPECT_EQ( joined.server.entity( "new/slot" ), own );
}

TEST( SessionLifetimeTest, oddPathsAndFiltersAreRefused ) {
   Joined joined( Session::PeerMayWrite::yes );
   std::string deep = "d";
   for ( int i = 0; i < 64; ++i ) {
      deep += "/d";
   }
   for ( std::string const & path : { std::string( "w/" ), std::string( "/q//r" ), deep } ) {
      EXPECT_EQ( joined.mounted( Vel::Name( path ), "Sample::Slot", MountMode::write )->state(),
                 MountState::refused )
         << path;
   }
   auto const large = newMount( "status/slots", "Vel::Dir", MountMode::read,
                                { std::vector<Vel::Name>( 20000, "a" ) } );
   joined.group->mountIs( large );
   EXPECT_EQ( large->state(), MountState::refused );
   // A peer that asks all the same.
   Session server( joined.server, Session::PeerMayWrite::yes );
   server.receive( std::string( "\0\0\0\5\0SDB\1", 9 ) +
                   std::string( "\0\0\0\x1c\1\0\0\0\1\0\0\0\2w/\0\0\0\fSample::Slot\1", 32 ) );
   EXPECT_EQ( joined.server.root()->entryMap().size(), 1U );
}

TEST( SessionLifetimeTest, aStalledPeerCostsNothingWhilePathsComeAndGo ) {
   Joined joined;
   joined.mounted( "status/slots/slot1", "Sample::Slot" );
   Vel::Ptr<Slot> const slot( new Slot( "slot1" ) );
   for ( int i = 0; i < 2000; ++i ) {
      joined.dir->entryIs( slot );
      joined.dir->entryDel( "slot1" );
      joined.group->mountIs( newMount( "other", "Sample::Slot" ) );
      joined.group->mountDel( "other" );
   }
   EXPECT_LT( joined.serving.waitingBytes() + joined.mounting.waitingBytes(), 1000U );
   joined.dir->entryIs( slot );
   joined.pump();
   EXPECT_TRUE( joined.copy( "status/slots/slot1" ) );
}

TEST( SessionLifetimeTest, messagesAreAsLongAsTheirKindNeeds ) {
   std::string const hello( "\0\0\0\5\0SDB\1", 9 );
   for ( std::string const & start :
         { std::string( "\0\0\0\6\0", 5 ),                // more than a greeting
           hello + std::string( "\0\x01\0\1\1", 5 ),      // a mount
           hello + std::string( "\0\x01\0\1\6", 5 ) } ) { // a log of one who may not write
      EntityManager manager;
      Session session( manager );
      EXPECT_THROW( session.receive( start ), ProtocolException );
   }
}

TEST( SessionLifetimeTest, aHandlerThatThrowsEndsTheSession ) {
   Joined joined;
   auto const slot = joined.addSlot( "slot1" );
   joined.mounted( "status/slots", "Vel::Dir" );
   class Thrower : public Slot::NotifieeConst {
    public:
      void onSpeed() override { throw std::runtime_error( "of the application" ); }
   } thrower;
   thrower.notifierIs( joined.copy( "status/slots/slot1" ) );
   slot->speedIs( 1 );
   EXPECT_THROW( joined.pump(), std::runtime_error );
   EXPECT_FALSE( joined.mounting.wantsToReceive() );
}

} // namespace
} // namespace Statedb

// ---------------------------------------------------------------------------------------------
// Past the bound, and what cannot be made

namespace Sample {
namespace {

TEST( ReplicationTest, imagesInsteadOfMarksLeaveParentsBeforeTheirNewChildren ) {
   Copied copied;
   copied.flow = new Vel::FlowOut( 300 );
   copied.adaptor = Vel::Dir::velNboAttrLogSaIs( copied.dir, copied.flow );
   copied.deliver();
   for ( int i = 0; i < 20; ++i ) {
      Vel::Ptr<Slot> const slot( new Slot( Vel::Name( std::to_string( i ) ) ) );
      slot->laneIs( LaneNumber( 1 ) )->litIs( true );
      copied.dir->entryIs( slot );
   }
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
}

TEST( ReplicationTest, whatCannotBeMadeIsKnownUntilItGoesOrCanBe ) {
   using Types = std::map<Vel::Name, Vel::Name>;
   Copied copied;
   auto const below = Vel::dirFactory( "below" );
   copied.dir->entryIs( below );
   Types const unknown = { { "below/x", "Sample::Lane" } };
   auto const entryIs = [&]( Vel::Ptr<Vel::Entity> const & entity ) {
      below->entryIs( entity );
      copied.deliver();
      return copied.in.unmade( *copied.replica );
   };
   Vel::Ptr<Lane> const lane( new Lane( Vel::Name( "x" ) ) ); // has no factory
   EXPECT_EQ( entryIs( lane ), unknown );
   EXPECT_EQ( entryIs( new Slot( "x" ) ), Types() );
   EXPECT_EQ( entryIs( lane ), unknown );
   copied.adaptor->imageIs();
   EXPECT_EQ( entryIs( new Slot( "y" ) ), unknown );
   EXPECT_TRUE( Vel::dynamicPtr<Vel::Dir>( copied.replica->entry( "below" ) )->entryHas( "y" ) );
   below->entryDel( "x" );
   EXPECT_EQ( entryIs( new Slot( "z" ) ), Types() );
   EXPECT_EQ( entryIs( lane ), unknown );
   auto const kept = copied.replica->entry( "below" ); // out of the replica, but alive
   copied.dir->entryDel( "below" );
   copied.deliver();
   EXPECT_EQ( copied.in.unmade( *copied.replica ), Types() );
}

TEST( ReplicationTest, entitiesThatHaveGoneWaitForNobody ) {
   Copied copied;
   copied.flow = new Vel::FlowOut( 5000 );
   copied.adaptor = Vel::Dir::velNboAttrLogSaIs( copied.dir, copied.flow );
   copied.deliver();
   for ( int i = 0; i < 10000; ++i ) { // each with a name of its own, three at a time
      Vel::Ptr<Slot> const slot( new Slot( Vel::Name( std::to_string( i ) ) ) );
      slot->laneIs( LaneNumber( 1 ) );
      copied.dir->entryIs( slot );
      copied.dir->entryDel( Vel::Name( std::to_string( i - 3 ) ) );
      ASSERT_LE( copied.flow->waitingBytes(), 5000U );
      ASSERT_LE( copied.flow->waitingEntities(), 16U );
   }
   copied.deliver();
   EXPECT_EQ( asText( *copied.replica ), asText( *copied.dir ) );
}

} // namespace
} // namespace Sample

namespace Statedb {
namespace {

TEST( SessionLifetimeTest, theTextsOfAPeersMountsAreBounded ) {
   Joined joined;
   for ( int i = 0; i < 100; ++i ) {
      joined.group->mountIs(
         newMount( Vel::Name( std::string( 50000, 'x' ) + std::to_string( i ) ), "T" ) );
   }
   EXPECT_THROW( joined.pump(), ProtocolException );
}

} // namespace
} // namespace Statedb
