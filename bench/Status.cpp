// What a reader asks of an SFP's status: vendor information, media type, monitors and thresholds.
#include "bench/Bench.h"
#include "tests/support/SfpImageBuilder.h"

#include <Xcvr/XcvrSfpPlus.h>

#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace Bench {
namespace {

using namespace Xcvr;

enum class Calibration { internal, external };
/// Where the bytes of page A2h were written to.
enum class Source { page, registers, both };

struct Answer {
   VendorInfo vendorInfo;
   MediaType mediaType;
   DomInfo domInfo;
   DomThreshold domThreshold;
   friend bool operator==( Answer const &, Answer const & ) = default;
};

XcvrSff8472IdEepromContents image( Calibration calibration ) {
   XcvrTest::SfpImageBuilder builder;
   builder.bit( "compliance", "10GBASE-SR" )
      .value( "lengthOm3", 300 )
      .raw( "bitrateNominal", 103 )
      .text( "vendorName", "Vendor" )
      .text( "vendorPn", "PN-1" )
      .text( "vendorSn", "SN-1" )
      .text( "vendorRev", "A" )
      .text( "dateCode", "260101" )
      .bit( "diagsMonitoringType", "digital diagnostics" )
      .bit( "diagsMonitoringType", calibration == Calibration::internal ? "internally calibrated"
                                                                        : "externally calibrated" );
   uint64_t raw = 0x1000;
   for ( MemoryField const & field : sff8472Fields() ) {
      if ( field.page == "a2h" && field.width == 2 && ( field.at < 40 || field.at >= 96 ) ) {
         builder.raw( field.name, raw += 0x123 );
      }
   }
   for ( char const * monitor :
         { "domTemperature", "domSupplyVoltage", "domBiasCurrent", "domTxPower" } ) {
      builder.value( std::string( monitor ) + "Slope", 1.25 )
         .value( std::string( monitor ) + "Offset", 10 );
   }
   for ( char const * coefficient : { "0", "1", "2", "3", "4" } ) {
      builder.value( std::string( "domRxPower" ) + coefficient, 1e-3 );
   }
   return builder.contents();
}

struct Model {
   Model( Calibration calibration, Source source ) {
      Vel::Ptr<SfpNewStatus> const sfp = sfpNewStatusFactory( "Ethernet1" );
      XcvrSff8472IdEepromContents contents = image( calibration );
      for ( uint16_t at = 0; at < 256 && source != Source::page; ++at ) {
         sfp->registerDataIs(
            XcvrSff8472DomRegisterData( static_cast<uint16_t>( 0xA200 + at ),
                                        static_cast<uint8_t>( contents.eepromPageA2Data()[at] ) ) );
      }
      if ( source == Source::registers ) {
         contents.eepromPageA2DataIs( "" );
      }
      sfp->actualIdEepromContentsIs( contents );
      sfp->presenceIs( xcvrPresent );
      sfp->lastPresenceChangeIs( 1 );
      sfp->lastDomUpdateTimeIs( 2 );
      status = sfp;
   }
   [[nodiscard]] Answer answer() const {
      return { status->vendorInfo(), status->mediaType(), status->domInfo( LaneId( 0 ) ),
               status->domThreshold() };
   }
   Vel::Ptr<XcvrNewStatus const> status;
};

/// The same by hand from two whole pages: no lookup, no bounds, no other source of bytes, and of the
/// media type rules only those up to this module's.
struct Floor {
   Floor( Calibration calibration, Source ) {
      XcvrSff8472IdEepromContents const contents = image( calibration );
      for ( size_t at = 0; at < a0h.size(); ++at ) {
         a0h[at] = static_cast<uint8_t>( contents.buf()[at] );
         a2h[at] = static_cast<uint8_t>( contents.eepromPageA2Data()[at] );
      }
   }

   [[nodiscard]] Vel::String text( size_t at, size_t width ) const {
      return { reinterpret_cast<char const *>( a0h.data() ) + at, width };
   }
   [[nodiscard]] uint16_t word( size_t at ) const {
      return static_cast<uint16_t>( a2h[at] << 8 | a2h[at + 1] );
   }
   [[nodiscard]] int16_t offset( size_t at ) const { return static_cast<int16_t>( word( at ) ); }
   [[nodiscard]] double slope( size_t at ) const { return a2h[at] + a2h[at + 1] / 256.; }
   [[nodiscard]] float coefficient( size_t at ) const {
      return std::bit_cast<float>( static_cast<uint32_t>( word( at ) ) << 16 | word( at + 2 ) );
   }
   static double fold( double celsius ) { return celsius >= 128 ? celsius - 256 : celsius; }
   static double dBm( double code ) {
      return code > 0 ? 10 * std::log10( code * 1e-7 ) + 30
                      : -std::numeric_limits<double>::infinity();
   }

   [[nodiscard]] MediaType mediaType() const {
      if ( std::memcmp( &a0h[20], "Molex Inc.      ", 16 ) == 0 || a0h[0] != 3 ) {
         return xcvrUnknown;
      }
      if ( a0h[36] == 2 || a0h[36] == 3 || a0h[36] == 0x18 ) {
         return xcvr25GBaseSr;
      }
      if ( ( a0h[3] & 0x10 ) && !( a0h[8] & 0x08 ) ) {
         return a0h[19] < 30 ? xcvr10GBaseSrLite : xcvr10GBaseSr;
      }
      return xcvrUnknown;
   }

   [[nodiscard]] double temperature( size_t at, bool internal ) const {
      return internal
                ? fold( word( at ) / 256. )
                : fold( ( static_cast<int16_t>( word( at ) ) * slope( 84 ) + offset( 86 ) ) / 256 );
   }
   [[nodiscard]] double voltage( size_t at, bool internal ) const {
      return ( internal ? word( at ) : word( at ) * slope( 88 ) + offset( 90 ) ) * 0.0001;
   }
   [[nodiscard]] double txBias( size_t at, bool internal ) const {
      return ( internal ? word( at ) : word( at ) * slope( 76 ) + offset( 78 ) ) * 0.002;
   }
   [[nodiscard]] double txPower( size_t at, bool internal ) const {
      return dBm( internal ? word( at ) : word( at ) * slope( 80 ) + offset( 82 ) );
   }
   [[nodiscard]] double rxPower( size_t at, bool internal ) const {
      double const r = word( at );
      return dBm( internal ? r
                           : coefficient( 56 ) * ( r * r * r * r ) +
                                coefficient( 60 ) * ( r * r * r ) + coefficient( 64 ) * ( r * r ) +
                                coefficient( 68 ) * r + coefficient( 72 ) );
   }

   [[nodiscard]] VendorInfo vendorInfo() const {
      return { text( 20, 16 ), text( 40, 16 ), text( 68, 16 ), text( 56, 4 ), text( 84, 8 ) };
   }
   [[nodiscard]] bool internal() const { return a0h[92] & 0x20; }
   [[nodiscard]] DomInfo domInfo() const {
      bool const own = internal();
      return { 2,
               own ? domCalibrationInternal : domCalibrationExternal,
               temperature( 96, own ),
               voltage( 98, own ),
               txBias( 100, own ),
               txPower( 102, own ),
               rxPower( 104, own ),
               none };
   }
   [[nodiscard]] DomThreshold domThreshold() const {
      bool const own = internal();
      auto const rxLimit = [&]( size_t at ) { return own ? rxPower( at, true ) : none; };
      return { temperature( 0, own ),
               temperature( 2, own ),
               temperature( 4, own ),
               temperature( 6, own ),
               voltage( 8, own ),
               voltage( 10, own ),
               voltage( 12, own ),
               voltage( 14, own ),
               txBias( 16, own ),
               txBias( 18, own ),
               txBias( 20, own ),
               txBias( 22, own ),
               txPower( 24, own ),
               txPower( 26, own ),
               txPower( 28, own ),
               txPower( 30, own ),
               rxLimit( 32 ),
               rxLimit( 34 ),
               rxLimit( 36 ),
               rxLimit( 38 ),
               none,
               none,
               none,
               none };
   }
   [[nodiscard]] Answer answer() const {
      return { vendorInfo(), mediaType(), domInfo(), domThreshold() };
   }

   static constexpr double none = -std::numeric_limits<double>::infinity();
   std::array<uint8_t, 256> a0h;
   std::array<uint8_t, 256> a2h;
};

template <typename Subject, Calibration calibration, Source source>
void read( benchmark::State & state ) {
   auto const subject = std::make_unique<Subject>( calibration, source );
   if ( subject->answer() != Model( calibration, source ).answer() ) {
      state.SkipWithError( "the answers differ" );
   }
   measure( state, [&] { benchmark::DoNotOptimize( subject->answer() ); } );
}

/// One register of the page, written with another value each time.
void writeModel( benchmark::State & state ) {
   Vel::Ptr<SfpNewStatus> const sfp = sfpNewStatusFactory( "Ethernet1" );
   sfp->registerDataIs( XcvrSff8472DomRegisterData( 0xA200, 0 ) );
   uint8_t data = 0;
   measure( state, [&] { sfp->registerDataIs( XcvrSff8472DomRegisterData( 0xA260, ++data ) ); } );
}
void writeFloor( benchmark::State & state ) {
   auto const page = std::make_unique<std::array<uint8_t, 256>>();
   uint8_t data = 0;
   measure( state, [&] { ( *page )[0x60] = ++data; } );
}

template <Calibration calibration, Source source>
constexpr std::initializer_list<Contestant> readers{
   { "model", read<Model, calibration, source> }, { "floor", read<Floor, calibration, source> } };

// clang-format off
Figure const figures[] = {
   { "sfp-status/internal-page", { 1.15, 0 }, readers<Calibration::internal, Source::page> },
   { "sfp-status/external-page", { 1.15, 0 }, readers<Calibration::external, Source::page> },
   { "sfp-status/internal-registers", { 1.15, 0 }, readers<Calibration::internal, Source::registers> },
   { "sfp-status/external-registers", { 1.15, 0 }, readers<Calibration::external, Source::registers> },
   // Merging both sources is work that the floor does not do.
   { "sfp-status/internal-both", { {}, 0 }, readers<Calibration::internal, Source::both> },
   { "sfp-status/external-both", { {}, 0 }, readers<Calibration::external, Source::both> },
   { "sfp-status/register-write", { {}, 0 }, { { "model", writeModel }, { "floor", writeFloor } } },
};
// clang-format on

} // namespace
} // namespace Bench
