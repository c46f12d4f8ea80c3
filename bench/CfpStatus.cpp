// What a reader asks of a CFP2's status: vendor information, media type, monitors of four lanes and
// thresholds.
#include "bench/Bench.h"
#include "tests/support/CfpImageBuilder.h"

#include <Xcvr/XcvrCfp2.h>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace Bench {
namespace {

using namespace Xcvr;

struct Answer {
   VendorInfo vendorInfo;
   MediaType mediaType;
   std::array<DomInfo, 4> domInfo;
   DomThreshold domThreshold;
   friend bool operator==( Answer const &, Answer const & ) = default;
};

XcvrTest::CfpImageBuilder image() {
   XcvrTest::CfpImageBuilder builder;
   builder.raw( "ethernetApplicationCode", 1 )
      .raw( "networkLanes", 4 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "dateCode", "20260101" )
      .raw( "vendorRevFirst", 'A' )
      .raw( "vendorRevSecond", '1' )
      .raw( "temperature", 0x1A80 )
      .raw( "voltage", 33000 );
   for ( char const * monitor : { "temp", "voltage", "txBias", "txPower", "rxPower" } ) {
      builder.raw( std::string( monitor ) + "Supported", 1 );
   }
   uint32_t number = 0x1000;
   for ( uint8_t lane = 0; lane < 4; ++lane ) {
      for ( char const * monitor : { "txBias", "txPower", "rxPower" } ) {
         builder.raw( monitor, number += 0x123, lane );
      }
   }
   for ( CfpRegister const & row : cfpRegisters() ) {
      if ( row.table == table8080 && row.field.width == 16 ) {
         builder.raw( row.name, number += 0x123 );
      }
   }
   return builder;
}

struct Model {
   Model() {
      Vel::Ptr<Cfp2NewStatus> const cfp2 = cfp2NewStatusFactory( "Ethernet1" );
      image().writeTo( *cfp2->actualIdEepromContentsIs() );
      cfp2->presenceIs( xcvrPresent );
      cfp2->lastPresenceChangeIs( 1 );
      cfp2->lastDomUpdateTimeIs( 2 );
      status = cfp2;
   }
   [[nodiscard]] Answer answer() const {
      return { status->vendorInfo(),
               status->mediaType(),
               { status->domInfo( LaneId( 0 ) ), status->domInfo( LaneId( 1 ) ),
                 status->domInfo( LaneId( 2 ) ), status->domInfo( LaneId( 3 ) ) },
               status->domThreshold() };
   }
   Vel::Ptr<XcvrNewStatus const> status;
};

/// The same by hand from four whole tables: no look-up, no bounds, no other kind of module, and of the
/// media type rules only those up to this module's.
struct Floor {
   Floor() {
      XcvrTest::CfpImageBuilder const builder = image();
      auto const copy = [&builder]( CfpMsaMisTableId id, void * to ) {
         Vel::String const bytes = builder.bytes( id );
         std::memcpy( to, bytes.data(), bytes.size() );
      };
      copy( table8000, identity.data() );
      copy( table8080, limits.data() );
      copy( table8420, revision.data() );
      copy( tableA000, module.data() );
      copy( tableA280, lanes.data() );
   }

   [[nodiscard]] Vel::String text( size_t at, size_t width ) const {
      return { reinterpret_cast<char const *>( identity.data() ) + at, width };
   }
   [[nodiscard]] VendorInfo vendorInfo() const {
      return { text( 0x21, 16 ), text( 0x34, 16 ), text( 0x44, 16 ),
               Vel::String( reinterpret_cast<char const *>( revision.data() ), 2 ),
               text( 0x54, 8 ) };
   }
   [[nodiscard]] MediaType mediaType() const {
      if ( std::memcmp( &identity[0x21], "MULTILANE SAL   ", 16 ) == 0 || identity[0] != 17 ) {
         return xcvrUnknown;
      }
      return identity[3] == 1 ? xcvr100GBaseLr4 : xcvrUnknown;
   }
   static double dBm( double code ) {
      return code > 0 ? 10 * std::log10( code * 1e-7 ) + 30 : none;
   }
   [[nodiscard]] DomInfo domInfo( size_t lane ) const {
      return { 2,
               domCalibrationInternal,
               static_cast<int16_t>( module[0x2F] ) / 256.,
               module[0x30] * 0.0001,
               lanes[0x20 + lane] * 0.002,
               dBm( lanes[0x30 + lane] ),
               dBm( lanes[0x50 + lane] ),
               none };
   }
   [[nodiscard]] uint16_t limit( size_t at ) const {
      return static_cast<uint16_t>( limits[at] << 8 | limits[at + 1] );
   }
   [[nodiscard]] DomThreshold domThreshold() const {
      auto const temperature = [this]( size_t at ) {
         return static_cast<int16_t>( limit( at ) ) / 256.;
      };
      auto const voltage = [this]( size_t at ) { return limit( at ) * 0.0001; };
      auto const bias = [this]( size_t at ) { return limit( at ) * 0.002; };
      auto const power = [this]( size_t at ) { return dBm( limit( at ) ); };
      return { temperature( 0x00 ),
               temperature( 0x06 ),
               temperature( 0x02 ),
               temperature( 0x04 ),
               voltage( 0x08 ),
               voltage( 0x0E ),
               voltage( 0x0A ),
               voltage( 0x0C ),
               bias( 0x28 ),
               bias( 0x2E ),
               bias( 0x2A ),
               bias( 0x2C ),
               power( 0x30 ),
               power( 0x36 ),
               power( 0x32 ),
               power( 0x34 ),
               power( 0x40 ),
               power( 0x46 ),
               power( 0x42 ),
               power( 0x44 ),
               none,
               none,
               none,
               none };
   }
   [[nodiscard]] Answer answer() const {
      return { vendorInfo(),
               mediaType(),
               { domInfo( 0 ), domInfo( 1 ), domInfo( 2 ), domInfo( 3 ) },
               domThreshold() };
   }

   static constexpr double none = -std::numeric_limits<double>::infinity();
   std::array<uint8_t, 128> identity, limits, revision;
   std::array<uint16_t, 128> module, lanes;
};

template <typename Subject>
void read( benchmark::State & state ) {
   auto const subject = std::make_unique<Subject>();
   if ( subject->answer() != Model().answer() ) {
      state.SkipWithError( "the answers differ" );
   }
   measure( state, [&] { benchmark::DoNotOptimize( subject->answer() ); } );
}

Figure const figure{
   "cfp2-status", { 1.5, 0 }, { { "model", read<Model> }, { "floor", read<Floor> } } };

} // namespace
} // namespace Bench
