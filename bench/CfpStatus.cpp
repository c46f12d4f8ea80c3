// What a reader asks of a CFP2's status: vendor information, media type, monitors of four lanes and
// thresholds.
#include "bench/FourLanes.h"
#include "tests/support/CfpModules.h"

#include <Xcvr/XcvrCfp2.h>

#include <array>
#include <cstring>

namespace Bench {
namespace {

using namespace Xcvr;

struct Model : FourLaneStatus {
   Model() : FourLaneStatus( status() ) {}
   static Vel::Ptr<XcvrNewStatus> status() {
      Vel::Ptr<Cfp2NewStatus> const cfp2 = cfp2NewStatusFactory( "Ethernet1" );
      XcvrTest::cfp2Lr4().writeTo( *cfp2->actualIdEepromContentsIs() );
      return cfp2;
   }
};

/// The same by hand from four whole tables: no look-up, no bounds, no other kind of module, and of the
/// media type rules only those up to this module's.
struct Floor {
   Floor() {
      XcvrTest::CfpImageBuilder const builder = XcvrTest::cfp2Lr4();
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
   [[nodiscard]] DomInfo domInfo( size_t lane ) const {
      return { 2,
               domCalibrationInternal,
               static_cast<int16_t>( module[0x2F] ) / 256.,
               module[0x30] * 0.0001,
               lanes[0x20 + lane] * 0.002,
               powerOf( lanes[0x30 + lane] ),
               powerOf( lanes[0x50 + lane] ),
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
      auto const power = [this]( size_t at ) { return powerOf( limit( at ) ); };
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
   [[nodiscard]] FourLanes answer() const {
      return { vendorInfo(),
               mediaType(),
               { domInfo( 0 ), domInfo( 1 ), domInfo( 2 ), domInfo( 3 ) },
               domThreshold() };
   }

   std::array<uint8_t, 128> identity, limits, revision;
   std::array<uint16_t, 128> module, lanes;
};

Figure const figure{
   "cfp2-status",
   { 1.5, 0 },
   { { "model", readFourLanes<Model, Model> }, { "floor", readFourLanes<Model, Floor> } } };

} // namespace
} // namespace Bench
