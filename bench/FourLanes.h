#pragma once

#include "bench/Bench.h"

#include <Xcvr/XcvrStatus.h>

#include <array>
#include <cmath>
#include <limits>
#include <memory>

// What a reader asks of the status of a module with four lanes: vendor information, media type,
// monitors of the lanes and thresholds.
namespace Bench {

struct FourLanes {
   Xcvr::VendorInfo vendorInfo;
   Xcvr::MediaType mediaType;
   std::array<Xcvr::DomInfo, 4> domInfo;
   Xcvr::DomThreshold domThreshold;
   friend bool operator==( FourLanes const &, FourLanes const & ) = default;
};

/// A status that has been given its contents.
class FourLaneStatus {
 public:
   explicit FourLaneStatus( Vel::Ptr<Xcvr::XcvrNewStatus> const & status ) : status_( status ) {
      status->presenceIs( Xcvr::xcvrPresent );
      status->lastPresenceChangeIs( 1 );
      status->lastDomUpdateTimeIs( 2 );
   }
   [[nodiscard]] FourLanes answer() const {
      using Xcvr::LaneId;
      return { status_->vendorInfo(),
               status_->mediaType(),
               { status_->domInfo( LaneId( 0 ) ), status_->domInfo( LaneId( 1 ) ),
                 status_->domInfo( LaneId( 2 ) ), status_->domInfo( LaneId( 3 ) ) },
               status_->domThreshold() };
   }

 private:
   Vel::Ptr<Xcvr::XcvrNewStatus const> status_;
};

// For floors.

constexpr double none = -std::numeric_limits<double>::infinity();

inline double powerOf( uint16_t code ) {
   return code > 0 ? 10 * std::log10( code * 1e-7 ) + 30 : none;
}

/// Times the answers of a `Subject`, which must be those of the `Model`.
template <typename Model, typename Subject>
void readFourLanes( benchmark::State & state ) {
   auto const subject = std::make_unique<Subject>();
   if ( subject->answer() != Model().answer() ) {
      state.SkipWithError( "the answers differ" );
   }
   measure( state, [&] { benchmark::DoNotOptimize( subject->answer() ); } );
}

} // namespace Bench
