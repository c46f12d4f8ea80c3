// A whole status as it travels to another process: its image made, and applied to a replica.
#include "bench/Bench.h"
#include "bench/SfpStatusProto.h"
#include "tests/support/SfpImageBuilder.h"

#include <Vel/Flow.h>
#include <Xcvr/XcvrSfpStatus.h>

#include <cstring>
#include <string>

namespace Bench {
namespace {

using namespace Xcvr;

/// The status of a module as an agent fills it, of the first or the second of two readings.
Vel::Ptr<SfpNewStatus> filledStatus( uint8_t reading ) {
   XcvrTest::SfpImageBuilder builder;
   builder.bit( "compliance", "10GBASE-SR" )
      .raw( "bitrateNominal", 103 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "dateCode", "260101" )
      .bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "diagsMonitoringType", "internally calibrated" );
   XcvrSff8472IdEepromContents contents = builder.contents();
   double const now = 100.25 + reading;
   contents.lastValidDataIs( now );
   auto const status = sfpNewStatusFactory( "Ethernet1" );
   status->actualIdEepromContentsIs( contents );
   for ( uint16_t at = 96; at < 120; ++at ) { // monitors, state and flags
      status->registerDataIs( XcvrSff8472DomRegisterData( static_cast<uint16_t>( 0xa200 + at ),
                                                          static_cast<uint8_t>( at + reading ) ) );
   }
   status->presenceIs( xcvrPresent );
   status->presenceChangesIs( 1 );
   status->lastPresenceChangeIs( 12.5 );
   status->generationIdIs( 3u + reading );
   status->idEepromValidIs( true );
   status->idEepromChecksumValidIs( 0, true );
   status->idEepromChecksumValidIs( 1, true );
   status->xcvrStateIs( { true, XcvrState::undecided } );
   status->xcvrMgrCapabilitiesIs( { true, true } );
   status->lastDomUpdateTimeIs( now );
   status->sfpSlotCapabilitiesIs( { true, 128 } );
   status->readyIs( true );
   Keel::ConditionStat const condition( reading != 0, 4u + reading, now );
   XcvrEventStats stats;
   stats.presenceIs( xcvrPresent );
   stats.interruptCountIs( 7u + reading );
   stats.lastInterruptIs( now );
   status->xcvrStatsIs( stats );
   status->xcvrStatsEntIs()->tempHiWarnIs( condition );
   LaneEventStats laneStats;
   laneStats.rxLosEventsIs( 2u + reading );
   laneStats.lastRxLosEventIs( now );
   laneStats.rxPowerLoWarnIs( condition );
   status->laneStatsIs( 0, laneStats );
   status->laneStatusIs( LaneId( 0 ) )->rxPowerLoWarnIs( reading != 0 );
   return status;
}

/// A status that sends its image again and again.
struct Sender {
   explicit Sender( uint8_t reading ) : status( filledStatus( reading ) ) {}
   template <typename Take>
   void image( Take const & take ) {
      adaptor->imageIs();
      while ( flow->pending() ) {
         take( flow->piece() );
      }
   }
   Vel::Ptr<SfpNewStatus> status;
   Vel::Ptr<Vel::FlowOut> flow{ new Vel::FlowOut };
   Vel::Ptr<Vel::NboAttrLogSa> adaptor = SfpNewStatus::velNboAttrLogSaIs( status, flow );
};

std::string imageOf( Vel::Ptr<SfpNewStatus> const & status ) {
   Vel::Ptr<Vel::FlowOut> const flow( new Vel::FlowOut );
   auto const adaptor = SfpNewStatus::velNboAttrLogSaIs( status, flow );
   return std::string( flow->piece( ~std::size_t( 0 ) ) );
}

/// Both readings in turn, so that there always is something to change; `applied( replica, reading )`.
template <typename Apply>
void measureApply( benchmark::State & state, Apply const & apply ) {
   auto const replica = sfpNewStatusFactory( "Ethernet1" );
   uint8_t reading = 0;
   measure( state, [&] { apply( *replica, reading ^= 1 ); } );
   for ( uint8_t last = 0; last < 2; ++last ) {
      apply( *replica, last );
      if ( imageOf( replica ) != imageOf( filledStatus( last ) ) ) {
         state.SkipWithError( "the replica differs" );
      }
   }
}

void modelEncode( benchmark::State & state ) {
   Sender sender( 0 );
   measure( state, [&] {
      sender.image( []( std::string_view piece ) { benchmark::DoNotOptimize( piece.data() ); } );
   } );
}

void modelApply( benchmark::State & state ) {
   Vel::NboAttrLog first( imageOf( filledStatus( 0 ) ) ), second( imageOf( filledStatus( 1 ) ) );
   measureApply( state, [&]( SfpNewStatus & replica, uint8_t reading ) {
      Vel::NboAttrLog & log = reading ? second : first;
      log.positionIs( 0 );
      replica.doHandleAttrDeserialization( log );
   } );
}

void modelBoth( benchmark::State & state ) {
   Sender first( 0 ), second( 1 );
   Vel::FlowIn in;
   Vel::NboAttrLog log; // kept, as the messages of protobuf are
   measureApply( state, [&]( SfpNewStatus & replica, uint8_t reading ) {
      ( reading ? second : first ).image( [&]( std::string_view piece ) {
         log.clear();
         std::memcpy( log.append( piece.size() ), piece.data(), piece.size() );
         replica.doHandleAttrDeserialization( log, in );
      } );
   } );
}

// Messages are kept, so that protobuf has its memory already.

struct ProtobufSender {
   std::string const & image( SfpNewStatus const & status ) {
      message.Clear();
      toProto( status, message );
      message.SerializeToString( &bytes );
      return bytes;
   }
   StatusProto::SfpNewStatus message;
   std::string bytes;
};

void protobufEncode( benchmark::State & state ) {
   auto const status = filledStatus( 0 );
   ProtobufSender sender;
   measure( state, [&] { benchmark::DoNotOptimize( sender.image( *status ).data() ); } );
}

void protobufApply( benchmark::State & state ) {
   ProtobufSender first, second;
   first.image( *filledStatus( 0 ) );
   second.image( *filledStatus( 1 ) );
   StatusProto::SfpNewStatus message;
   measureApply( state, [&]( SfpNewStatus & replica, uint8_t reading ) {
      message.ParseFromString( ( reading ? second : first ).bytes );
      fromProto( message, replica );
   } );
}

void protobufBoth( benchmark::State & state ) {
   auto const first = filledStatus( 0 ), second = filledStatus( 1 );
   ProtobufSender sender;
   StatusProto::SfpNewStatus message;
   measureApply( state, [&]( SfpNewStatus & replica, uint8_t reading ) {
      message.ParseFromString( sender.image( reading ? *second : *first ) );
      fromProto( message, replica );
   } );
}

// Here protobuf stands in the place of the floor: a third of its time is asked for.
// clang-format off
Figure const figures[] = {
   { "image/encode", { {}, {} }, { { "model", modelEncode }, { "protobuf", protobufEncode } } },
   { "image/apply", { {}, {} }, { { "model", modelApply }, { "protobuf", protobufApply } } },
   { "image/both", { 1.0 / 3, {} }, { { "model", modelBoth }, { "protobuf", protobufBoth } } },
};
// clang-format on

} // namespace
} // namespace Bench
