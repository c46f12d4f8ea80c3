// The attribute log: writing and reading a status record of 60 fields and 16 lanes of 10 fields.
#include "bench/Bench.h"

#include <Vel/Define.h>
#include <Vel/Value.h>

#include <array>
#include <bit>
#include <cstring>
#include <memory>

#if XCVR_BENCH_PROTOBUF
#include "Record.pb.h"
#endif
#if XCVR_BENCH_FLATBUFFERS
#include "Record_generated.h"
#endif

namespace Bench {

class Lane {
   VEL_VALUE( Lane,
      ( los, bool ),
      ( fault, bool ),
      ( cdrLol, bool ),
      ( losCount, uint32_t ),
      ( faultCount, uint32_t ),
      ( cdrLolCount, uint32_t ),
      ( lastChange, double ),
      ( txBias, double ),
      ( txPower, double ),
      ( rxPower, double ) );
};
VEL_VALUE_DEFINE( Lane )

class Lanes {
   VEL_VALUE( Lanes,
      ( lane0, Lane ),
      ( lane1, Lane ),
      ( lane2, Lane ),
      ( lane3, Lane ),
      ( lane4, Lane ),
      ( lane5, Lane ),
      ( lane6, Lane ),
      ( lane7, Lane ),
      ( lane8, Lane ),
      ( lane9, Lane ),
      ( lane10, Lane ),
      ( lane11, Lane ),
      ( lane12, Lane ),
      ( lane13, Lane ),
      ( lane14, Lane ),
      ( lane15, Lane ) );
};
VEL_VALUE_DEFINE( Lanes )

class Record {
   VEL_VALUE( Record,
      ( flag0, bool ),
      ( flag1, bool ),
      ( flag2, bool ),
      ( flag3, bool ),
      ( flag4, bool ),
      ( flag5, bool ),
      ( flag6, bool ),
      ( flag7, bool ),
      ( flag8, bool ),
      ( flag9, bool ),
      ( code0, uint8_t ),
      ( code1, uint8_t ),
      ( code2, uint8_t ),
      ( code3, uint8_t ),
      ( code4, uint8_t ),
      ( code5, uint8_t ),
      ( code6, uint8_t ),
      ( code7, uint8_t ),
      ( code8, uint8_t ),
      ( code9, uint8_t ),
      ( length0, uint16_t ),
      ( length1, uint16_t ),
      ( length2, uint16_t ),
      ( length3, uint16_t ),
      ( length4, uint16_t ),
      ( length5, uint16_t ),
      ( length6, uint16_t ),
      ( length7, uint16_t ),
      ( count0, uint32_t ),
      ( count1, uint32_t ),
      ( count2, uint32_t ),
      ( count3, uint32_t ),
      ( count4, uint32_t ),
      ( count5, uint32_t ),
      ( count6, uint32_t ),
      ( count7, uint32_t ),
      ( count8, uint32_t ),
      ( count9, uint32_t ),
      ( count10, uint32_t ),
      ( count11, uint32_t ),
      ( offset0, int16_t ),
      ( offset1, int16_t ),
      ( level0, double ),
      ( level1, double ),
      ( level2, double ),
      ( level3, double ),
      ( level4, double ),
      ( level5, double ),
      ( level6, double ),
      ( level7, double ),
      ( level8, double ),
      ( level9, double ),
      ( text0, Vel::String ),
      ( text1, Vel::String ),
      ( text2, Vel::String ),
      ( text3, Vel::String ),
      ( text4, Vel::String ),
      ( text5, Vel::String ),
      ( text6, Vel::String ),
      ( text7, Vel::String ) );
};
VEL_VALUE_DEFINE( Record )

class Status {
   VEL_VALUE( Status,
      ( record, Record ),
      ( lanes, Lanes ) );
};
VEL_VALUE_DEFINE( Status )

namespace {

constexpr std::size_t textSize = 16;

/// The same record as one writes it by hand, texts in arrays of their fixed size.
struct PlainText {
   uint32_t size;
   char bytes[textSize];
};
struct PlainLane {
   bool flags[3];
   uint32_t counts[3];
   double levels[4];
};
struct PlainStatus {
   bool flags[10];
   uint8_t codes[10];
   uint16_t lengths[8];
   uint32_t counts[12];
   int16_t offsets[2];
   double levels[10];
   PlainText texts[8];
   PlainLane lanes[16];
};

/// A record in which every field holds another value.
PlainStatus exampleStatus() {
   PlainStatus status{};
   uint32_t number = 1;
   auto const fill = [&number]( auto & fields ) {
      for ( auto & field : fields ) {
         number = number * 1103515245 + 12345;
         field = static_cast<std::remove_reference_t<decltype( field )>>( number >> 8 );
      }
   };
   auto const fillLevels = [&number]( auto & levels ) {
      for ( double & level : levels ) {
         level = -40.0 + 1e-6 * ( number++ % 50000000 );
      }
   };
   fill( status.flags );
   fill( status.codes );
   fill( status.lengths );
   fill( status.counts );
   fill( status.offsets );
   fillLevels( status.levels );
   for ( PlainText & text : status.texts ) {
      text.size = textSize;
      for ( char & c : text.bytes ) {
         c = static_cast<char>( 'A' + number++ % 26 );
      }
   }
   for ( PlainLane & lane : status.lanes ) {
      fill( lane.flags );
      fill( lane.counts );
      fillLevels( lane.levels );
   }
   return status;
}

// The floor: loads, byte swaps and stores, every field at a place known while compiling but for the
// lengths of the texts. Nothing is checked.

template <typename T>
[[gnu::always_inline]] inline auto swapped( T field ) {
   if constexpr ( sizeof( T ) == 8 ) {
      return __builtin_bswap64( std::bit_cast<uint64_t>( field ) );
   } else if constexpr ( sizeof( T ) == 4 ) {
      return __builtin_bswap32( std::bit_cast<uint32_t>( field ) );
   } else if constexpr ( sizeof( T ) == 2 ) {
      return __builtin_bswap16( std::bit_cast<uint16_t>( field ) );
   } else {
      return std::bit_cast<uint8_t>( field );
   }
}

struct FloorWriter {
   template <typename T>
   [[gnu::always_inline]] void operator()( T const & field ) {
      auto const wire = swapped( field );
      std::memcpy( to, &wire, sizeof wire );
      to += sizeof wire;
   }
   [[gnu::always_inline]] void operator()( PlainText const & text ) {
      ( *this )( text.size );
      std::memcpy( to, text.bytes, sizeof text.bytes );
      to += text.size;
   }
   uint8_t * to;
};

struct FloorReader {
   template <typename T>
   [[gnu::always_inline]] void operator()( T & field ) {
      decltype( swapped( field ) ) wire;
      std::memcpy( &wire, from, sizeof wire );
      if constexpr ( std::is_same_v<T, bool> ) {
         field = wire != 0;
      } else {
         field = std::bit_cast<T>( swapped( wire ) );
      }
      from += sizeof wire;
   }
   [[gnu::always_inline]] void operator()( PlainText & text ) {
      ( *this )( text.size );
      std::memcpy( text.bytes, from, sizeof text.bytes );
      from += text.size;
   }
   uint8_t const * from;
};

/// Hands every field to `visit`, in the order of the wire.
template <typename Status, typename Visitor>
[[gnu::always_inline]] inline void forEachField( Status & status, Visitor & visit ) {
   auto const all = [&visit]( auto &... arrays ) __attribute__( ( always_inline ) ) {
      auto const each = [&visit]( auto & fields ) __attribute__( ( always_inline ) ) {
#pragma GCC unroll 16
         for ( auto & field : fields ) {
            visit( field );
         }
      };
      ( each( arrays ), ... );
   };
   all( status.flags, status.codes, status.lengths, status.counts, status.offsets, status.levels,
        status.texts );
   for ( auto & lane : status.lanes ) {
      all( lane.flags, lane.counts, lane.levels );
   }
}

[[gnu::noinline]] std::size_t floorEncode( PlainStatus const & status, uint8_t * to ) {
   FloorWriter writer{ to };
   forEachField( status, writer );
   return static_cast<std::size_t>( writer.to - to );
}

[[gnu::noinline]] void floorDecode( PlainStatus & status, uint8_t const * from ) {
   FloorReader reader{ from };
   forEachField( status, reader );
}

/// What the floor writes for the example. The model's log is the same, byte for byte.
std::string exampleLog() {
   std::array<uint8_t, 2048> buffer;
   std::size_t const size = floorEncode( exampleStatus(), buffer.data() );
   return { reinterpret_cast<char const *>( buffer.data() ), size };
}

void modelEncode( benchmark::State & state ) {
   Vel::NboAttrLog received( exampleLog() );
   Status const status( received );
   Vel::NboAttrLog log;
   measure( state, [&] {
      log.clear();
      log.write( status );
   } );
   if ( log.bytes() != exampleLog() ) {
      state.SkipWithError( "the log differs from the floor's" );
   }
}

void modelDecode( benchmark::State & state ) {
   Vel::NboAttrLog log( exampleLog() );
   measure( state, [&] {
      log.positionIs( 0 );
      Status const status( log );
      benchmark::DoNotOptimize( status );
   } );
   log.positionIs( 0 );
   Vel::NboAttrLog again;
   again.write( Status( log ) );
   if ( again.bytes() != exampleLog() ) {
      state.SkipWithError( "the record read differs from the one written" );
   }
}

void floorEncode( benchmark::State & state ) {
   PlainStatus const status = exampleStatus();
   std::array<uint8_t, 2048> buffer;
   measure( state, [&] { benchmark::DoNotOptimize( floorEncode( status, buffer.data() ) ); } );
}

void floorDecode( benchmark::State & state ) {
   std::string const log = exampleLog();
   PlainStatus status;
   measure( state, [&] {
      floorDecode( status, reinterpret_cast<uint8_t const *>( log.data() ) );
      benchmark::DoNotOptimize( status );
   } );
}

#if XCVR_BENCH_PROTOBUF
Proto::Status protobufStatus() {
   PlainStatus const status = exampleStatus();
   Proto::Status message;
   auto const add = []( auto * fields, auto const & from ) {
      fields->Add( std::begin( from ), std::end( from ) );
   };
   add( message.mutable_flags(), status.flags );
   message.set_codes( status.codes, sizeof status.codes );
   add( message.mutable_lengths(), status.lengths );
   add( message.mutable_counts(), status.counts );
   add( message.mutable_offsets(), status.offsets );
   add( message.mutable_levels(), status.levels );
   for ( PlainText const & text : status.texts ) {
      message.add_texts( text.bytes, text.size );
   }
   for ( PlainLane const & lane : status.lanes ) {
      Proto::Lane * added = message.add_lanes();
      add( added->mutable_flags(), lane.flags );
      add( added->mutable_counts(), lane.counts );
      add( added->mutable_levels(), lane.levels );
   }
   return message;
}

void protobufEncode( benchmark::State & state ) {
   Proto::Status const message = protobufStatus();
   std::string log;
   measure( state, [&] { message.SerializeToString( &log ); } );
}

void protobufDecode( benchmark::State & state ) {
   std::string const log = protobufStatus().SerializeAsString();
   Proto::Status message;
   measure( state, [&] { benchmark::DoNotOptimize( message.ParseFromString( log ) ); } );
}
#define BENCH_PROTOBUF( run ) { "protobuf", run },
#else
#define BENCH_PROTOBUF( run )
#endif

#if XCVR_BENCH_FLATBUFFERS
Flat::StatusT flatStatus() {
   PlainStatus const status = exampleStatus();
   Flat::StatusT record;
   auto const assign = []( auto & fields, auto const & from ) {
      fields.assign( std::begin( from ), std::end( from ) );
   };
   assign( record.flags, status.flags );
   assign( record.codes, status.codes );
   assign( record.lengths, status.lengths );
   assign( record.counts, status.counts );
   assign( record.offsets, status.offsets );
   assign( record.levels, status.levels );
   for ( PlainText const & text : status.texts ) {
      record.texts.emplace_back( text.bytes, text.size );
   }
   for ( PlainLane const & lane : status.lanes ) {
      auto & added = *record.lanes.emplace_back( std::make_unique<Flat::LaneT>() );
      assign( added.flags, lane.flags );
      assign( added.counts, lane.counts );
      assign( added.levels, lane.levels );
   }
   return record;
}

void flatbuffersEncode( benchmark::State & state ) {
   Flat::StatusT const record = flatStatus();
   flatbuffers::FlatBufferBuilder builder;
   measure( state, [&] {
      builder.Clear();
      builder.Finish( Flat::Status::Pack( builder, &record ) );
   } );
}

void flatbuffersDecode( benchmark::State & state ) {
   Flat::StatusT const record = flatStatus();
   flatbuffers::FlatBufferBuilder builder;
   builder.Finish( Flat::Status::Pack( builder, &record ) );
   Flat::StatusT read;
   measure( state, [&] {
      flatbuffers::Verifier verifier( builder.GetBufferPointer(), builder.GetSize() );
      if ( Flat::VerifyStatusBuffer( verifier ) ) {
         Flat::GetStatus( builder.GetBufferPointer() )->UnPackTo( &read );
      }
      benchmark::DoNotOptimize( read );
   } );
   if ( read.texts != record.texts ) {
      state.SkipWithError( "the record read differs from the one written" );
   }
}
#define BENCH_FLATBUFFERS( run ) { "flatbuffers", run },
#else
#define BENCH_FLATBUFFERS( run )
#endif

// clang-format off
Figure const figures[] = {
   { "log/encode", { 1.3, 0 },
     { { "model", modelEncode }, { "floor", floorEncode },
       BENCH_PROTOBUF( protobufEncode ) BENCH_FLATBUFFERS( flatbuffersEncode ) } },
   { "log/decode", { 1.35, 0 },
     { { "model", modelDecode }, { "floor", floorDecode },
       BENCH_PROTOBUF( protobufDecode ) BENCH_FLATBUFFERS( flatbuffersDecode ) } },
};
// clang-format on

} // namespace
} // namespace Bench
