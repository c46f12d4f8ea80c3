// Parsing the pages of a CMIS module with eight lanes: all of them, for the first time and again, and its
// monitors alone.
#include "bench/Bench.h"
#include "core/Checksum.h"
#include "tests/support/CmisImageBuilder.h"

#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

namespace Bench {
namespace {

using namespace Xcvr;

/// A module whose bytes differ from another's in nearly every field.
XcvrTest::CmisImageBuilder image( unsigned seed ) {
   XcvrTest::CmisImageBuilder builder;
   for ( MemoryField const & field : cmisFields() ) {
      if ( field.width <= 8 && !field.shared ) {
         builder.raw( field.name, 0x0101010101010101u * seed + field.at * 0x10203u );
      }
   }
   builder.raw( "memoryAndSpeed", 0x04 ).raw( "moduleType", 2 ).raw( "pageSelect", 0 );
   builder.raw( "implMonitorsAdvertisement", 0x030f ).raw( "implFlagsAdvertisement", 0x0f06 );
   for ( char const * text : { "vendorName", "vendorPn", "vendorSn" } ) {
      builder.text( text, "Vendor-" + std::to_string( seed ) );
   }
   for ( unsigned code = 1; code <= 15; ++code ) {
      builder.application( code, { uint8_t( seed ), 0x1c, 8, 4, 1, uint8_t( seed + code ) } );
   }
   return builder;
}

/// What both contestants have made of a module, as far as it is compared.
struct Answer {
   Vel::String vendorName, vendorSn;
   MediaType mediaType;
   OsfpApplication lastApplication;
   DomThreshold domThreshold;
   double txPower[osfpLanes], txBias[osfpLanes];
   unsigned rxLos, amplitude5, checksumValid;
   bool operator==( Answer const & ) const = default;
};

/// The model; the entity is that of the slot.
class Model {
 public:
   explicit Model( unsigned seed ) { image( seed ).writeTo( *raw_ ); }

   void parseAll() const { parseAll( *parser_ ); }
   static void parseAll( OsfpEepromParser & parser ) {
      parser.parseLowerPage();
      parser.parseUpperPage00();
      parser.parseUpperPage01();
      parser.parseUpperPage02();
      parser.parseUpperPage10();
      parser.parseUpperPage11();
      parser.parseDom();
      parser.parseLaneFlags( false );
      parser.parseLaneTuning();
   }
   /// Into an entity that nothing was ever written to, made and thrown away.
   void parseFirst() const {
      Vel::Ptr<OsfpDecodedEepromContents> const decoded( new OsfpDecodedEepromContents( "slot" ) );
      OsfpEepromParser parser( raw_, decoded );
      parseAll( parser );
      benchmark::DoNotOptimize( decoded.get() );
   }
   void parseDom() const { parser_->parseDom(); }

   [[nodiscard]] Answer answer() const {
      OsfpDecodedEepromContents const & from = *decoded_;
      Answer result{ from.vendorName(),
                     from.vendorSn(),
                     from.detectedMediaType(),
                     from.application( 15 ),
                     from.domThreshold(),
                     {},
                     {},
                     0,
                     from.rxOutputAmplitude( ChannelId( 5 ) ),
                     0 };
      for ( uint8_t lane = 0; lane < osfpLanes; ++lane ) {
         result.txPower[lane] = from.domInfo( LaneId( lane ) ).txPower();
         result.txBias[lane] = from.domInfo( LaneId( lane ) ).txBias();
         result.rxLos |= unsigned( from.rxLos( ChannelId( lane ) ) ) << lane;
      }
      for ( auto const & entry : from.checksumValidMap() ) {
         result.checksumValid += entry.second;
      }
      return result;
   }

 private:
   Vel::Ptr<OsfpRawEepromContents> raw_ = osfpRawEepromContentsFactory( "raw" );
   Vel::Ptr<OsfpDecodedEepromContents> decoded_ = osfpDecodedEepromContentsFactory( "decoded" );
   Vel::Ptr<OsfpEepromParser> parser_ = osfpEepromParserFactory( raw_, decoded_ );
};

/// The same by hand from whole pages into a plain struct, whose flags stay bytes of eight lanes.
class Floor {
 public:
   explicit Floor( unsigned seed ) {
      XcvrTest::CmisImageBuilder const builder = image( seed );
      auto const copy = [&]( char const * label, uint8_t * to ) {
         std::memcpy( to, builder.page( label ).data(), 128 );
      };
      copy( "lower", lower_ );
      copy( "00h", identity_ );
      copy( "01h", advertised_ );
      copy( "02h", limits_ );
      copy( "10h", control_ );
      copy( "11h", status_ );
   }

   void parseAll() { parseAll( plain_ ); }
   void parseFirst() {
      auto const fresh = std::make_unique<Plain>();
      parseAll( *fresh );
      benchmark::DoNotOptimize( fresh.get() );
   }
   void parseDom() { parseDom( plain_ ); }

   [[nodiscard]] Answer answer() const {
      Answer result{ Vel::String( plain_.vendorName, 16 ),
                     Vel::String( plain_.vendorSn, 16 ),
                     plain_.mediaType,
                     OsfpApplication( plain_.applications[14], plain_.mediaLanes[14] ),
                     plain_.threshold,
                     {},
                     {},
                     plain_.flags[12],
                     plain_.codes[3][5],
                     0 };
      for ( size_t lane = 0; lane < osfpLanes; ++lane ) {
         result.txPower[lane] = plain_.dom[lane].txPower();
         result.txBias[lane] = plain_.dom[lane].txBias();
      }
      for ( auto const & checksum : plain_.checksums ) {
         result.checksumValid += checksum.valid;
      }
      return result;
   }

 private:
   struct Checksum {
      uint8_t stored, computed;
      bool valid;
   };
   struct Plain {
      uint8_t identifier, moduleFlags, moduleType, controls, identifierExtended, cable, connector;
      bool flatMemory;
      uint8_t busSpeed;
      uint32_t first;
      uint8_t firstMediaLanes;
      uint32_t applications[15];
      uint8_t mediaLanes[15];
      size_t lowerCount, upperCount;
      MediaType mediaType;
      char vendorName[16], oui[3], vendorPn[16], vendorRev[2], vendorSn[16], dateCode[8];
      uint16_t power;
      uint8_t amplitudeCodes, maxEq, maxPost, maxPre;
      uint16_t signalIntegrity, controlBits, flagBits, monitorBits;
      DomThreshold threshold;
      Checksum checksums[3];
      DomInfo dom[osfpLanes];
      uint8_t flags[18], adaptiveEq, codes[4][osfpLanes];
      uint8_t txDisable;
      char controlSet[29];
   };

   static uint16_t word( uint8_t const * at ) {
      return static_cast<uint16_t>( at[0] << 8 | at[1] );
   }
   static uint32_t number( uint8_t const * at ) {
      return uint32_t{ word( at ) } << 16 | word( at + 2 );
   }
   static double celsius( uint8_t const * at ) { return static_cast<int16_t>( word( at ) ) / 256.; }
   static double volts( uint8_t const * at ) { return word( at ) * 0.0001; }
   static double dBm( uint8_t const * at ) {
      uint16_t const code = word( at );
      return code ? 10 * std::log10( code * 1e-7 ) + 30 : none;
   }
   [[nodiscard]] double multiplier() const {
      unsigned const code = advertised_[32] >> 3 & 3u;
      return code == 1 ? 2 : code == 2 ? 4 : 1;
   }
   static Checksum checksum( uint8_t const * page, size_t first, size_t stored ) {
      auto const sum = static_cast<uint8_t>(
         signedByteSum( { reinterpret_cast<char const *>( page ) + first, stored - first } ) );
      return { page[stored], sum, sum == page[stored] };
   }
   static MediaType mediaTypeOf( uint8_t type, uint32_t application ) {
      // Of the tables only that of single-mode media, and of it only what the module has.
      return type == 2 && ( application >> 16 & 0xff ) == 0x1c ? xcvr400GBaseDr4
                                                               : xcvr400GOpticalUnknown;
   }
   static size_t list( uint8_t const * at, uint32_t * to, size_t most ) {
      size_t count = 0;
      while ( count < most && at[4 * count] != 0xff ) {
         to[count] = number( at + 4 * count );
         ++count;
      }
      return count;
   }

   [[gnu::noinline]] void parseAll( Plain & to ) const {
      to.identifier = lower_[0];
      to.flatMemory = lower_[2] & 0x80;
      to.busSpeed = lower_[2] >> 2 & 3;
      to.moduleFlags = lower_[9];
      to.moduleType = lower_[85];
      to.controls = lower_[26];
      to.first = number( lower_ + 86 );
      to.lowerCount = list( lower_ + 86, to.applications, 8 );
      to.mediaType = mediaTypeOf( to.moduleType, to.first );
      to.identifierExtended = identity_[0];
      std::memcpy( to.vendorName, identity_ + 1, 16 );
      std::memcpy( to.oui, identity_ + 17, 3 );
      std::memcpy( to.vendorPn, identity_ + 20, 16 );
      std::memcpy( to.vendorRev, identity_ + 36, 2 );
      std::memcpy( to.vendorSn, identity_ + 38, 16 );
      std::memcpy( to.dateCode, identity_ + 54, 8 );
      to.power = word( identity_ + 72 );
      to.cable = identity_[74];
      to.connector = identity_[75];
      to.checksums[0] = checksum( identity_, 0, 94 );
      to.amplitudeCodes = advertised_[25] >> 4;
      to.maxEq = advertised_[25] & 0xf;
      to.maxPost = advertised_[26] >> 4;
      to.maxPre = advertised_[26] & 0xf;
      to.signalIntegrity = word( advertised_ + 33 );
      to.controlBits = word( advertised_ + 27 );
      to.flagBits = word( advertised_ + 29 );
      to.monitorBits = word( advertised_ + 31 );
      to.upperCount = list( advertised_ + 95, to.applications + 8, 7 );
      to.firstMediaLanes = advertised_[48];
      std::memcpy( to.mediaLanes, advertised_ + 49, 15 );
      to.checksums[1] = checksum( advertised_, 2, 127 );
      parseThresholds( to );
      to.checksums[2] = checksum( limits_, 0, 127 );
      to.txDisable = control_[2];
      std::memcpy( to.controlSet, status_ + 78, 29 );
      parseDom( to );
      for ( size_t i = 0; i < 18; ++i ) {
         to.flags[i] = status_[7 + i];
      }
      to.adaptiveEq = status_[86];
      constexpr size_t codesAt[] = { 89, 95, 99, 103 };
      for ( size_t set = 0; set < 4; ++set ) {
         for ( size_t lane = 0; lane < osfpLanes; ++lane ) {
            to.codes[set][lane] = status_[codesAt[set] + lane / 2] >> lane % 2 * 4 & 0xf;
         }
      }
   }
   void parseThresholds( Plain & to ) const {
      uint8_t const * l = limits_;
      double const times = multiplier();
      auto const bias = [&]( size_t at ) { return word( l + at ) * 0.002 * times; };
      to.threshold = DomThreshold(
         celsius( l ), celsius( l + 2 ), celsius( l + 4 ), celsius( l + 6 ), volts( l + 8 ),
         volts( l + 10 ), volts( l + 4 ), volts( l + 6 ), bias( 56 ), bias( 58 ), bias( 60 ),
         bias( 62 ), dBm( l + 48 ), dBm( l + 50 ), dBm( l + 52 ), dBm( l + 54 ), dBm( l + 64 ),
         dBm( l + 66 ), dBm( l + 68 ), dBm( l + 70 ), none, none, none, none );
   }
   [[gnu::noinline]] void parseDom( Plain & to ) const {
      double const now =
         std::chrono::duration<double>( std::chrono::system_clock::now().time_since_epoch() )
            .count();
      double const times = multiplier();
      for ( size_t lane = 0; lane < osfpLanes; ++lane ) {
         to.dom[lane] =
            DomInfo( now, domCalibrationInternal, celsius( lower_ + 14 ), volts( lower_ + 16 ),
                     word( status_ + 42 + 2 * lane ) * 0.002 * times,
                     dBm( status_ + 26 + 2 * lane ), dBm( status_ + 58 + 2 * lane ), none );
      }
   }

   static constexpr double none = -std::numeric_limits<double>::infinity();
   uint8_t lower_[128], identity_[128], advertised_[128], limits_[128], control_[128], status_[128];
   Plain plain_{};
};

template <typename Subject>
std::unique_ptr<Subject> checked( benchmark::State & state ) {
   auto subject = std::make_unique<Subject>( 3 );
   subject->parseAll();
   Model model( 3 );
   model.parseAll();
   if ( subject->answer() != model.answer() ) {
      state.SkipWithError( "the answers differ" );
   }
   return subject;
}

template <typename Subject>
void first( benchmark::State & state ) {
   auto const subject = checked<Subject>( state );
   measure( state, [&] { subject->parseFirst(); } );
}
template <typename Subject>
void again( benchmark::State & state ) {
   auto const subject = checked<Subject>( state );
   measure( state, [&] { subject->parseAll(); } );
}
template <typename Subject>
void dom( benchmark::State & state ) {
   auto const subject = checked<Subject>( state );
   measure( state, [&] { subject->parseDom(); } );
}

Figure const figures[] = {
   // The model makes its entity and the shadow, the floor its struct.
   { "cmis-parse/first", { 3, {} }, { { "model", first<Model> }, { "floor", first<Floor> } } },
   { "cmis-parse/again", { 1.25, 0 }, { { "model", again<Model> }, { "floor", again<Floor> } } },
   { "cmis-parse/dom", { 1.25, 0 }, { { "model", dom<Model> }, { "floor", dom<Floor> } } },
};

} // namespace
} // namespace Bench
