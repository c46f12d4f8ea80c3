// One agent and many readers, each of which has every change: what a change and a reader cost, and what
// readers that do not read cost.
//
//    xcvr-bench-readers [READERS [CHANGES]]
//
// Fails when a reader lacks a change, or the agent's memory passes its bound.
#include <Statedb/Session.h>
#include <Xcvr/XcvrSfpStatus.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace {

// Everything is in one process: whoever asks for memory is charged for it until it goes.

enum Side : std::size_t { agent, reader };
Side at = agent;
std::size_t live[2];

struct Head {
   std::size_t size;
   Side side;
};
static_assert( sizeof( Head ) == __STDCPP_DEFAULT_NEW_ALIGNMENT__ );

void * allocate( std::size_t size ) {
   auto * const head = static_cast<Head *>( std::malloc( sizeof( Head ) + size ) );
   if ( !head ) {
      throw std::bad_alloc();
   }
   live[at] += size;
   *head = { size, at };
   return head + 1;
}

void release( void * memory ) {
   if ( memory ) {
      Head * const head = static_cast<Head *>( memory ) - 1;
      live[head->side] -= head->size;
      std::free( head );
   }
}

/// Seconds of the processor, so that what else runs on the machine counts less.
double seconds() {
   timespec now{};
   clock_gettime( CLOCK_PROCESS_CPUTIME_ID, &now );
   return double( now.tv_sec ) + double( now.tv_nsec ) * 1e-9;
}

/// Whose work is being done, and how long it took in all.
class Work {
 public:
   explicit Work( Side side ) : before_( std::exchange( at, side ) ) {}
   Work( Work const & ) = delete;
   Work & operator=( Work const & ) = delete;
   ~Work() {
      took[at] += seconds() - begin_;
      at = before_;
   }
   static inline double took[2];

 private:
   Side before_;
   double begin_ = seconds();
};

using Xcvr::SfpNewStatus;

constexpr std::size_t slots = 64;
constexpr std::size_t kibibyte = 1024;
// Of the agent's memory, for one reader; and what one that does not read may add: a FlowOut's bound of 1 MiB
// of marks, which it counts by an estimate.
constexpr std::size_t readerMost = 192 * kibibyte;
constexpr std::size_t stalledMost = 1536 * kibibyte;

Vel::Name slotName( std::size_t slot ) {
   return Vel::Name( "Ethernet" + std::to_string( slot + 1 ) );
}

bool good = true;
void check( bool condition, char const * what ) {
   if ( !condition ) {
      std::printf( "FAILED: %s\n", what );
      good = false;
   }
}

/// The monitors of the module, and what the agent counts: what changes while a module is in use.
bool sameReadings( SfpNewStatus const & one, SfpNewStatus const & other ) {
   if ( one.registerDataMap().size() != other.registerDataMap().size() ||
        one.laneStatsMap().size() != other.laneStatsMap().size() ||
        one.lastDomUpdateTime() != other.lastDomUpdateTime() ||
        one.generationId() != other.generationId() ||
        !one.xcvrStatsEnt() != !other.xcvrStatsEnt() ) {
      return false;
   }
   for ( auto const & [address, data] : one.registerDataMap() ) {
      if ( !( other.registerDataMap().at( address ) == data ) ) {
         return false;
      }
   }
   for ( auto const & [lane, stats] : one.laneStatsMap() ) {
      auto const found = other.laneStatsMap().find( lane );
      if ( found == other.laneStatsMap().end() || !( found->second == stats ) ) {
         return false;
      }
   }
   return true;
}

class Agent {
 public:
   Agent() {
      manager.entityIs( "status", dir );
      for ( std::size_t slot = 0; slot < slots; ++slot ) {
         insert( slot );
      }
   }
   void insert( std::size_t slot ) {
      auto const status = Xcvr::sfpNewStatusFactory( slotName( slot ) );
      std::string const page( 256, 'x' );
      status->actualIdEepromContentsIs(
         { std::string_view( page ), std::string_view( page ), 1.0 } );
      for ( uint16_t byte = 96; byte < 120; ++byte ) {
         write( *status, byte, 1 );
      }
      status->laneStatsIs( 0, {} );
      status->presenceIs( Xcvr::xcvrPresent );
      dir->entryIs( status );
      statuses[slot] = status;
   }
   static void write( SfpNewStatus & status, std::size_t byte, uint32_t value ) {
      status.registerDataIs( Xcvr::XcvrSff8472DomRegisterData(
         static_cast<uint16_t>( 0xa200 + byte ), static_cast<uint8_t>( value ) ) );
   }
   /// Whatever a running agent writes; most of the time monitors.
   void change( uint32_t value ) {
      std::size_t const slot = random() % slots;
      SfpNewStatus & status = *statuses[slot];
      auto const kind = random() % 1000;
      if ( kind == 0 ) {
         return insert( slot ); // in place of the one that was there
      }
      if ( kind < 10 ) {
         return status.xcvrStatsEnt() ? status.xcvrStatsEntDel()
                                      : static_cast<void>( status.xcvrStatsEntIs() );
      }
      if ( kind < 200 ) {
         Xcvr::LaneEventStats stats;
         stats.rxLosEventsIs( value );
         return status.laneStatsIs( 0, stats );
      }
      if ( kind < 300 ) {
         return status.generationIdIs( value );
      }
      if ( kind < 500 ) {
         return status.lastDomUpdateTimeIs( value );
      }
      write( status, 96 + random() % 24, value );
   }

   Statedb::EntityManager manager;
   Vel::Ptr<Vel::Dir> dir = Vel::dirFactory( "status" );
   Vel::Ptr<SfpNewStatus> statuses[slots];
   std::mt19937 random{ 1 };
};

/// A reader's process, and the agent's session with it.
struct Reader {
   explicit Reader( Agent & served ) {
      serve( served );
      session.mountGroupIs( group );
      group->mountIs( new Statedb::Mount( "status", "Vel::Dir" ) );
   }
   Reader( Reader const & ) = delete;
   Reader & operator=( Reader const & ) = delete;
   ~Reader() {
      Work const work( agent );
      serving.reset();
   }
   void serve( Agent & served ) {
      Work const work( agent );
      serving = std::make_unique<Statedb::Session>( served.manager );
   }
   [[nodiscard]] SfpNewStatus * copy( std::size_t slot ) const {
      auto const & entries = dir()->entryMap();
      auto const found = entries.find( slotName( slot ) );
      return found != entries.end() ? dynamic_cast<SfpNewStatus *>( found->second.get() ) : nullptr;
   }
   [[nodiscard]] Vel::Dir * dir() const {
      return static_cast<Vel::Dir *>( manager.entity( "status" ).get() );
   }

   Statedb::EntityManager manager;
   Statedb::Session session{ manager };
   Vel::Ptr<Statedb::MountGroup> group{ new Statedb::MountGroup( "group" ) };
   std::unique_ptr<Statedb::Session> serving;
   SfpNewStatus * copies[slots] = {}; // once they are there
   std::string_view piece;
   bool stalled = false;
};

using Readers = std::vector<std::unique_ptr<Reader>>;

/// Hands on all that waits for readers that read. The agent makes its pieces for all before they are
/// read, as if the readers were other processes.
void deliver( Readers const & readers ) {
   bool more = true;
   while ( more ) {
      more = false;
      {
         Work const work( agent );
         for ( auto const & one : readers ) {
            one->piece = one->stalled ? std::string_view() : one->serving->toSend();
         }
      }
      {
         Work const work( reader );
         for ( auto const & one : readers ) {
            if ( !one->piece.empty() ) {
               one->session.receive( one->piece );
               more = true;
            }
         }
      }
      Work const work( agent );
      for ( auto const & one : readers ) {
         one->serving->sent( one->piece.size() );
      }
   }
}

void checkAll( Agent const & hardware, Readers const & readers ) {
   bool same = true;
   for ( auto const & one : readers ) {
      same = same && one->dir()->entryMap().size() == slots;
      for ( std::size_t slot = 0; slot < slots && same; ++slot ) {
         SfpNewStatus const * const copy = one->copy( slot );
         same = copy && sameReadings( *hardware.statuses[slot], *copy );
      }
   }
   check( same, "a reader's copy differs" );
}

void row( char const * figure, double value, char const * unit ) {
   std::printf( "%-34s %10.1f  %s\n", figure, value, unit );
   std::fflush( stdout );
}

/// Has every status hold the same things, whatever came and went.
void settle( Agent & hardware, Readers const & readers ) {
   {
      Work const work( agent );
      for ( auto const & status : hardware.statuses ) {
         status->xcvrStatsEntIs();
         hardware.write( *status, 96, status->registerData( 0xa260 ).data() + 1u );
         status->laneStatsDel( 0 );
         status->laneStatsIs( 0, {} );
      }
   }
   deliver( readers );
   checkAll( hardware, readers );
}

double bytesPerReader( std::size_t before, std::size_t readers ) {
   return ( double( live[agent] ) - double( before ) ) / double( readers );
}

} // namespace

void * operator new( std::size_t size ) {
   return allocate( size );
}
void operator delete( void * memory ) noexcept {
   release( memory );
}
void operator delete( void * memory, std::size_t ) noexcept {
   release( memory );
}

int main( int argc, char ** argv ) {
   std::size_t const count = argc > 1 ? std::strtoul( argv[1], nullptr, 10 ) : 1000;
   auto const changes =
      static_cast<uint32_t>( argc > 2 ? std::strtoul( argv[2], nullptr, 10 ) : 100'000 );
   std::printf( "%zu readers of one agent with %zu statuses, %u changes\n", count, slots, changes );
   Agent hardware;
   std::size_t const alone = live[agent];
   row( "agent alone", double( alone ) / kibibyte, "KiB" );

   at = reader;
   Readers readers;
   for ( std::size_t i = 0; i < count; ++i ) {
      readers.push_back( std::make_unique<Reader>( hardware ) );
      Reader & one = *readers.back();
      for ( std::string piece( one.session.toSend() ); !piece.empty();
            piece = one.session.toSend() ) {
         one.session.sent( piece.size() );
         Work const work( agent );
         one.serving->receive( piece );
      }
   }
   Work::took[agent] = 0;
   deliver( readers );
   row( "image, agent", Work::took[agent] / double( count ) * 1e6, "us a reader" );
   checkAll( hardware, readers );
   row( "memory, mounted", bytesPerReader( alone, count ) / kibibyte, "KiB a reader" );

   // From here on every reader has what comes with the first changes, and only then.
   for ( uint32_t i = 1; i <= 5000; ++i ) {
      {
         Work const work( agent );
         hardware.change( i );
      }
      if ( i % 100 == 0 ) {
         deliver( readers );
      }
   }
   settle( hardware, readers );
   double const running = bytesPerReader( alone, count );
   row( "memory, after 5000 changes", running / kibibyte, "KiB a reader" );
   check( running <= readerMost, "the bound of a reader's memory" );
   for ( auto const & one : readers ) {
      for ( std::size_t slot = 0; slot < slots; ++slot ) {
         one->copies[slot] = one->copy( slot );
      }
   }

   // One change at a time, which each reader has before the next one is made.
   constexpr uint32_t single = 1000;
   bool each = true;
   Work::took[agent] = Work::took[reader] = 0;
   for ( uint32_t i = 1; i <= single; ++i ) {
      std::size_t const slot = i * 7 % slots;
      {
         Work const work( agent );
         hardware.statuses[slot]->lastDomUpdateTimeIs( 1e6 + i );
      }
      deliver( readers );
      for ( auto const & one : readers ) {
         each = each && one->copies[slot]->lastDomUpdateTime() == 1e6 + i;
      }
   }
   check( each, "a reader has not had every change" );
   double const deliveries = single * double( count );
   row( "one change, agent", Work::took[agent] / deliveries * 1e9, "ns a reader" );
   row( "one change, reader", Work::took[reader] / deliveries * 1e9, "ns" );

   // Half of them do not read while the agent goes on.
   std::size_t const before = live[agent];
   std::size_t stalled = 0;
   std::size_t most = 0;
   for ( std::size_t i = 0; i < count; i += 2, ++stalled ) {
      readers[i]->stalled = true;
   }
   Work::took[agent] = 0;
   for ( uint32_t i = 1; i <= changes; ++i ) {
      {
         Work const work( agent );
         hardware.change( i );
      }
      if ( i % 100 == 0 ) {
         deliver( readers );
         most = std::max( most, live[agent] );
      }
   }
   row( "a change, half of them stalled", Work::took[agent] / changes * 1e6, "us of the agent" );
   double const waiting = double( most - before ) / double( stalled );
   row( "memory more", waiting / kibibyte, "KiB a stalled reader" );
   check( waiting <= stalledMost, "the bound of a stalled reader's memory" );
   for ( auto const & one : readers ) {
      one->stalled = false;
   }
   settle( hardware, readers );
   double const after = bytesPerReader( before, count );
   row( "memory more, once they have read", after / kibibyte, "KiB a reader" );
   check( after <= 4 * kibibyte, "memory that does not come back" );

   // The most that marks can come to: every byte that a module has, and one reader stalled.
   readers.resize( 1 );
   std::size_t const quiet = live[agent];
   std::size_t worst = 0;
   for ( uint32_t round = 1; round <= 4; ++round ) {
      Work const work( agent );
      for ( std::size_t byte = 0; byte < 256; ++byte ) {
         for ( auto const & status : hardware.statuses ) {
            hardware.write( *status, byte, round + static_cast<uint32_t>( byte ) );
         }
         worst = std::max( worst, live[agent] - quiet );
      }
   }
   row( "memory more, every byte written", double( worst ) / kibibyte, "KiB a stalled reader" );
   check( worst <= stalledMost, "the bound of a stalled reader's memory" );
   deliver( readers );
   checkAll( hardware, readers );
   return good ? 0 : 1;
}
