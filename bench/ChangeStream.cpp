// The change stream: writes to attributes that an adaptor watches, their log, and the replicas that it is
// applied to; publishing what they hold.
#include "bench/Bench.h"

#include <Vel/DefineEntity.h>
#include <Vel/Dir.h>
#include <Vel/Flow.h>
#include <Xcvr/XcvrAllStatusDirSm.h>
#include <Xcvr/XcvrSfpStatus.h>

#include <bit>
#include <cstring>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace Bench {

class Node : public Vel::Entity {
 public:
   explicit Node( Vel::Name name ) : Entity( std::move( name ) ) {}
   VEL_ENTITY( Node, Vel::Entity,
      ( Plain, count0, onCount0, uint32_t ),
      ( Plain, flag0, onFlag0, bool ),
      ( Plain, level0, onLevel0, double ),
      ( Plain, code0, onCode0, uint16_t ),
      ( Plain, text0, onText0, Vel::String ),
      ( Plain, count1, onCount1, uint32_t ),
      ( Plain, flag1, onFlag1, bool ),
      ( Plain, level1, onLevel1, double ),
      ( Plain, code1, onCode1, uint16_t ),
      ( Plain, text1, onText1, Vel::String ),
      ( Plain, count2, onCount2, uint32_t ),
      ( Plain, count3, onCount3, uint32_t ) );
};
Vel::Ptr<Node> nodeFactory( Vel::Name name );
VEL_ENTITY_DEFINE( Node, nodeFactory )

namespace {

constexpr std::size_t nodes = 512;
constexpr std::size_t changes = 4096;
constexpr std::size_t attributes = 12;

/// What is written where: always the same, at random.
struct Change {
   uint16_t node;
   uint8_t attribute;
};

std::vector<Change> const & plan() {
   static std::vector<Change> const all = [] {
      std::mt19937 random( 1 );
      std::vector<Change> made( changes );
      for ( Change & change : made ) {
         change = { static_cast<uint16_t>( random() % nodes ),
                    static_cast<uint8_t>( random() % attributes ) };
      }
      return made;
   }();
   return all;
}

Vel::String const texts[] = { "a text of 16 by.", "another such one" };

void write( Node & node, uint8_t attribute, uint32_t value ) {
   switch ( attribute ) {
   case 0:
      return node.count0Is( value );
   case 1:
      return node.flag0Is( value & 1 );
   case 2:
      return node.level0Is( value );
   case 3:
      return node.code0Is( static_cast<uint16_t>( value ) );
   case 4:
      return node.text0Is( texts[value & 1] );
   case 5:
      return node.count1Is( value );
   case 6:
      return node.flag1Is( value & 1 );
   case 7:
      return node.level1Is( value );
   case 8:
      return node.code1Is( static_cast<uint16_t>( value ) );
   case 9:
      return node.text1Is( texts[value & 1] );
   case 10:
      return node.count2Is( value );
   default:
      return node.count3Is( value );
   }
}

struct Model {
   explicit Model( bool watched ) {
      for ( std::size_t i = 0; i < nodes; ++i ) {
         node.push_back( nodeFactory( Vel::String( "Ethernet" + std::to_string( i ) ) ) );
         dir->entryIs( node.back() );
      }
      if ( watched ) {
         adaptor = Vel::Dir::velNboAttrLogSaIs( dir, flow );
      }
   }
   void change( uint32_t value ) {
      for ( Change const & change : plan() ) {
         write( *node[change.node], change.attribute, value );
      }
   }
   template <typename Take>
   void flush( Take const & take ) {
      while ( flow->pending() ) {
         take( flow->piece() );
      }
   }
   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "dir" );
   std::vector<Vel::Ptr<Node>> node;
   Vel::Ptr<Vel::FlowOut> flow{ new Vel::FlowOut };
   Vel::Ptr<Vel::NboAttrLogSa> adaptor;
};

/// The same by hand: store, and append entity, attribute and value to a log; apply the log.
struct Floor {
   struct Plain {
      uint32_t count[4];
      bool flag[2];
      double level[2];
      uint16_t code[2];
      char text[2][16];
   };
   std::vector<Plain> node{ nodes };
   std::unique_ptr<uint8_t[]> log{ new uint8_t[changes * 32] };

   template <typename T>
   static uint8_t * put( uint8_t * to, T value ) {
      if constexpr ( sizeof( T ) == 8 ) {
         uint64_t const wire = __builtin_bswap64( std::bit_cast<uint64_t>( value ) );
         std::memcpy( to, &wire, 8 );
      } else if constexpr ( sizeof( T ) == 4 ) {
         uint32_t const wire = __builtin_bswap32( value );
         std::memcpy( to, &wire, 4 );
      } else if constexpr ( sizeof( T ) == 2 ) {
         uint16_t const wire = __builtin_bswap16( value );
         std::memcpy( to, &wire, 2 );
      } else {
         *to = value;
      }
      return to + sizeof( T );
   }
   std::size_t change( uint32_t value ) {
      uint8_t * to = log.get();
      for ( Change const & change : plan() ) {
         Plain & at = node[change.node];
         to = put( to, uint32_t( change.node ) );
         to = put( to, uint16_t( change.attribute ) );
         switch ( change.attribute ) {
         case 0:
            to = put( to, at.count[0] = value );
            break;
         case 1:
            to = put( to, at.flag[0] = value & 1 );
            break;
         case 2:
            to = put( to, at.level[0] = value );
            break;
         case 3:
            to = put( to, at.code[0] = static_cast<uint16_t>( value ) );
            break;
         case 4:
            to = text( to, at.text[0], value );
            break;
         case 5:
            to = put( to, at.count[1] = value );
            break;
         case 6:
            to = put( to, at.flag[1] = value & 1 );
            break;
         case 7:
            to = put( to, at.level[1] = value );
            break;
         case 8:
            to = put( to, at.code[1] = static_cast<uint16_t>( value ) );
            break;
         case 9:
            to = text( to, at.text[1], value );
            break;
         case 10:
            to = put( to, at.count[2] = value );
            break;
         default:
            to = put( to, at.count[3] = value );
            break;
         }
      }
      return static_cast<std::size_t>( to - log.get() );
   }
   static uint8_t * text( uint8_t * to, char * at, uint32_t value ) {
      std::memcpy( at, texts[value & 1].data(), 16 );
      std::memcpy( to, at, 16 );
      return to + 16;
   }
   template <typename T>
   static uint8_t const * get( uint8_t const * from, T & value ) {
      T swapped;
      put( reinterpret_cast<uint8_t *>( &swapped ), load<T>( from ) );
      value = swapped;
      return from + sizeof( T );
   }
   template <typename T>
   static T load( uint8_t const * from ) {
      T value;
      std::memcpy( &value, from, sizeof value );
      return value;
   }
   void apply( std::size_t size ) {
      uint8_t const * from = log.get();
      uint8_t const * const end = from + size;
      while ( from != end ) {
         uint32_t index;
         uint16_t attribute;
         from = get( get( from, index ), attribute );
         Plain & at = node[index];
         switch ( attribute ) {
         case 0:
            from = get( from, at.count[0] );
            break;
         case 1:
            from = get( from, at.flag[0] );
            break;
         case 2:
            from = get( from, at.level[0] );
            break;
         case 3:
            from = get( from, at.code[0] );
            break;
         case 4:
            from = getText( from, at.text[0] );
            break;
         case 5:
            from = get( from, at.count[1] );
            break;
         case 6:
            from = get( from, at.flag[1] );
            break;
         case 7:
            from = get( from, at.level[1] );
            break;
         case 8:
            from = get( from, at.code[1] );
            break;
         case 9:
            from = getText( from, at.text[1] );
            break;
         case 10:
            from = get( from, at.count[2] );
            break;
         default:
            from = get( from, at.count[3] );
            break;
         }
      }
   }
   static uint8_t const * getText( uint8_t const * from, char * at ) {
      std::memcpy( at, from, 16 );
      return from + 16;
   }
};

void modelWrite( benchmark::State & state ) {
   Model model( true );
   uint32_t value = 0;
   model.flush( []( auto ) {} );
   measure( state, [&] {
      model.change( ++value );
      model.flush( []( std::string_view piece ) { benchmark::DoNotOptimize( piece.data() ); } );
   } );
}

void floorWrite( benchmark::State & state ) {
   Floor floor;
   uint32_t value = 0;
   measure( state, [&] { benchmark::DoNotOptimize( floor.change( ++value ) ); } );
}

/// Two rounds of changes, so that applying them in turn always changes something.
void modelApply( benchmark::State & state ) {
   Model model( true );
   auto const replica = Vel::dirFactory( "dir" );
   model.flush( [&]( std::string_view piece ) {
      Vel::NboAttrLog log( piece );
      replica->doHandleAttrDeserialization( log );
   } );
   std::vector<std::unique_ptr<Vel::NboAttrLog>> rounds[2];
   for ( uint32_t round = 0; round < 2; ++round ) {
      model.change( 1000 + round );
      model.flush( [&]( std::string_view piece ) {
         rounds[round].push_back( std::make_unique<Vel::NboAttrLog>( piece ) );
      } );
   }
   uint32_t round = 0;
   measure( state, [&] {
      for ( auto const & log : rounds[round++ & 1] ) {
         log->positionIs( 0 );
         replica->doHandleAttrDeserialization( *log );
      }
   } );
}

void floorApply( benchmark::State & state ) {
   Floor rounds[2];
   std::size_t const size = rounds[0].change( 1000 );
   rounds[1].change( 1001 );
   uint32_t round = 0;
   measure( state, [&] {
      rounds[round++ & 1].apply( size );
      benchmark::DoNotOptimize( rounds );
   } );
}

/// Publishing a slice of `count` statuses and withdrawing it, and so a status of it.
template <std::size_t count>
void publish( benchmark::State & state ) {
   using namespace Xcvr;
   auto const statuses = Vel::dirFactory( "1" );
   for ( std::size_t i = 0; i < count; ++i ) {
      statuses->entryIs( sfpNewStatusFactory( Vel::String( "Ethernet1/" + std::to_string( i ) ) ) );
   }
   auto const sliceStatus = Vel::dirFactory( "status" ), agents = Vel::dirFactory( "agents" ),
              fixed = Vel::dirFactory( "fixed" ), base = Vel::dirFactory( "base" ),
              slices = Vel::dirFactory( "slice" );
   auto const agent = xcvrSliceStatusFactory( "1" ), fixedAgent = xcvrSliceStatusFactory( "f" );
   auto const config = allConfigDirFactory( "1" ), fixedConfig = allConfigDirFactory( "f" );
   sliceStatus->entryIs( statuses );
   agents->entryIs( agent );
   slices->entryIs( config );
   base->entryIs( slices );
   auto const singleton = xcvrAllStatusDirSingletonFactory( "singleton" );
   singleton->sliceStatusDirIs( sliceStatus );
   singleton->fixedStatusDirIs( fixed );
   singleton->baseConfigDirIs( base );
   singleton->fixedConfigDirIs( fixedConfig );
   singleton->agentStatusDirIs( agents );
   singleton->fixedAgentStatusIs( fixedAgent );
   singleton->doStartSm();
   measure( state, [&] {
      config->generationIdIs( config->generationId() + 1 ); // withdrawn
      agent->generationIdIs( config->generationId() );      // published
   } );
   if ( singleton->allStatusDir()->xcvrStatusMap().size() != count ) {
      state.SkipWithError( "not all was published" );
   }
}

// clang-format off
Figure const figures[] = {
   { "stream/write-mark-flush-x4096", { 5, {} },
     { { "model", modelWrite }, { "floor", floorWrite } } },
   { "stream/apply-x4096", { 6, {} },
     { { "model", modelApply }, { "floor", floorApply } } },
   { "merge/publish-withdraw", { {}, {} },
     { { "64", publish<64> }, { "1", publish<1> }, { "4096", publish<4096> },
       { "100000", publish<100000> } } },
};
// clang-format on

} // namespace
} // namespace Bench
