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
