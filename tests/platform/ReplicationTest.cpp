// What replicas hold in the less ordinary turns of events: entities that join with children of their own, pointers
// whose targets come late or again, mounts that change while they are told of, peers that ask for too much.
#include "tests/platform/FlowSample.h"

#include <Statedb/EntityManager.h>
#include <Statedb/Session.h>
#include <Vel/Flow.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace Flow {
namespace {

/// A directory, its flow, and a replica that takes what waits.
struct Copied {
   void deliver() {
      while ( flow->pending() ) {
         Vel::NboAttrLog log( flow->piece() );
         if ( !log.bytes().empty() ) {
            replica->doHandleAttrDeserialization( log, in );
         }
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
}

} // namespace
} // namespace Flow

namespace Statedb {
namespace {

using Flow::asText;
using Flow::Slot;

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
            auto mount = newMount( path, "Flow::Slot", mode );
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
   auto const mount = newMount( "slot1", "Flow::Slot" );
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
            mounts[i] = newMount( "a/slot1", "Flow::Slot", MountMode::write );
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
   auto const mount = newMount( "a/slot1", "Flow::Slot", MountMode::write );
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
      auto const mount = newMount( path, "Flow::Slot", MountMode::write );
      group->mountIs( mount );
      EXPECT_EQ( mount->state(), MountState::refused ) << path;
   }
   EXPECT_FALSE( manager.entityIs( "", new Slot( "" ) ) );
   EXPECT_TRUE( manager.root()->entryMap().empty() );
}

} // namespace
} // namespace Statedb
