// What a reader asks of a QSFP28's status: vendor information, media type, monitors of four lanes and
// thresholds.
#include "bench/FourLanes.h"
#include "tests/support/QsfpImageBuilder.h"

#include <Xcvr/XcvrQsfpPlus.h>

#include <array>
#include <cstring>

namespace Bench {
namespace {

using namespace Xcvr;

Sff8436IdEepromContents image() {
   XcvrTest::QsfpImageBuilder builder;
   builder.bit( "compliance", "extended compliance" )
      .raw( "complianceExtended", 6 )
      .raw( "connector", 7 )
      .raw( "deviceTech", 0x40 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "vendorRev", "A1" )
      .text( "dateCode", "260101" )
      .bit( "diagsMonitoringType", "Tx power monitor" );
   uint64_t raw = 0x1000;
   for ( MemoryField const & field : sff8436Fields() ) {
      bool const monitor = field.page == "lower" && field.at >= 22 && field.at < 58;
      bool const threshold = field.page == "03h" && field.at < 72;
      if ( monitor || threshold ) {
         builder.raw( field.name, raw += 0x123 );
      }
   }
   return builder.contents();
}

struct Model : FourLaneStatus {
   Model() : FourLaneStatus( status() ) {}
   static Vel::Ptr<XcvrNewStatus> status() {
      Vel::Ptr<QsfpNewStatus> const qsfp = qsfpNewStatusFactory( "Ethernet1" );
      qsfp->actualIdEepromContentsIs( image() );
      return qsfp;
   }
};

/// The same by hand from three whole pages: no lookup, no bounds, and of the media type rules only
/// those up to this module's.
struct Floor {
   using Page = std::array<uint8_t, 128>;

   Floor() {
      Sff8436IdEepromContents const contents = image();
      for ( size_t at = 0; at < lower.size(); ++at ) {
         lower[at] = static_cast<uint8_t>( contents.eepromPage00LowerData()[at] );
         upper[at] = static_cast<uint8_t>( contents.eepromPage00UpperData()[at] );
         page03h[at] = static_cast<uint8_t>( contents.eepromPage03UpperData()[at] );
      }
   }

   static uint16_t word( Page const & page, size_t at ) {
      return static_cast<uint16_t>( page[at] << 8 | page[at + 1] );
   }
   static double temperature( Page const & page, size_t at ) {
      double const celsius = word( page, at ) / 256.;
      return celsius >= 128 ? celsius - 256 : celsius;
   }
   static double voltage( Page const & page, size_t at ) { return word( page, at ) * 0.0001; }
   static double txBias( Page const & page, size_t at ) { return word( page, at ) * 0.002; }
   static double power( Page const & page, size_t at ) { return powerOf( word( page, at ) ); }
   [[nodiscard]] Vel::String text( size_t at, size_t width ) const {
      return { reinterpret_cast<char const *>( upper.data() ) + at, width };
   }

   [[nodiscard]] MediaType mediaType() const {
      if ( upper[0] != 12 && upper[0] != 13 && upper[0] != 17 ) {
         return xcvrUnknown;
      }
      if ( std::memcmp( &upper[20], "MOLEX           ", 16 ) == 0 ||
           std::memcmp( &upper[20], "Molex Inc.      ", 16 ) == 0 ||
           std::memcmp( &upper[20], "LEONI           ", 16 ) == 0 ) {
         return xcvr100GBaseMfg;
      }
      if ( upper[3] & 0x2f ) {
         return xcvr40GBaseSr4;
      }
      switch ( upper[3] & 0x80 ? upper[64] : 0 ) {
      case 2:
         return xcvr100GBaseSr4;
      case 3:
         return upper[14] > 9 ? xcvr100GBaseLr4 : xcvr100GBaseLrl4;
      case 4:
         return upper[14] > 30 ? xcvr100GBaseEr4 : xcvr100GBaseErl4;
      case 5:
         return xcvr100GBaseSr10;
      case 6:
         return xcvr100GBaseCwdm4;
      default:
         return xcvr100GUnknown;
      }
   }
   [[nodiscard]] DomInfo domInfo( size_t lane ) const {
      return { 2,
               domCalibrationInternal,
               temperature( lower, 22 ),
               voltage( lower, 26 ),
               txBias( lower, 42 + 2 * lane ),
               power( lower, 50 + 2 * lane ),
               power( lower, 34 + 2 * lane ),
               none };
   }
   [[nodiscard]] DomThreshold domThreshold() const {
      Page const & p = page03h;
      return { temperature( p, 0 ),
               temperature( p, 2 ),
               temperature( p, 4 ),
               temperature( p, 6 ),
               voltage( p, 16 ),
               voltage( p, 18 ),
               voltage( p, 20 ),
               voltage( p, 22 ),
               txBias( p, 56 ),
               txBias( p, 58 ),
               txBias( p, 60 ),
               txBias( p, 62 ),
               power( p, 64 ),
               power( p, 66 ),
               power( p, 68 ),
               power( p, 70 ),
               power( p, 48 ),
               power( p, 50 ),
               power( p, 52 ),
               power( p, 54 ),
               none,
               none,
               none,
               none };
   }
   [[nodiscard]] FourLanes answer() const {
      return { { text( 20, 16 ), text( 40, 16 ), text( 68, 16 ), text( 56, 2 ), text( 84, 8 ) },
               mediaType(),
               { domInfo( 0 ), domInfo( 1 ), domInfo( 2 ), domInfo( 3 ) },
               domThreshold() };
   }

   Page lower, upper, page03h;
};

Figure const figure{
   "qsfp-status/four-lanes",
   { 1.15, 0 },
   { { "model", readFourLanes<Model, Model> }, { "floor", readFourLanes<Model, Floor> } } };

} // namespace
} // namespace Bench
