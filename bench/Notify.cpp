// Writing an attribute: unchanged, and changed with 0, 1 and 8 observers; attaching an observer and
// detaching it again.
#include "bench/Bench.h"

#include <Vel/DefineEntity.h>
#include <Vel/Entity.h>

#include <array>
#include <memory>
#include <vector>

#if XCVR_BENCH_BOOST
#include <boost/signals2.hpp>
#endif
#if XCVR_BENCH_SIGC
#include <sigc++/sigc++.h>
#endif

namespace Bench {

/// An attribute of the framework.
class ModelPort : public Vel::Entity {
 public:
   explicit ModelPort( Vel::Name name ) : Entity( std::move( name ) ) {}
   VEL_ENTITY( ModelPort, Vel::Entity,
      ( Plain, speed, onSpeed, uint32_t ) );
};
VEL_ENTITY_DEFINE( ModelPort )

namespace {

// Each contestant has an attribute `speed`, and observers, counting what they are told. In model and
// floor another kind of observer comes and goes: a compiler that knows of one kind only would not
// make its calls virtual ones.

struct Model {
   struct Counter : ModelPort::NotifieeConst {
      void onSpeed() override { ++count; }
      std::size_t count = 0;
   };
   struct Idler : ModelPort::NotifieeConst {
      void onSpeed() override {}
   };

   explicit Model( std::size_t observers ) : counters( observers ) {
      for ( Counter & counter : counters ) {
         counter.notifierIs( port );
      }
   }
   void speedIs( uint32_t speed ) { port->speedIs( speed ); }
   void attachAndDetach() {
      late.notifierIs( port );
      benchmark::ClobberMemory();
      late.notifierIs( nullptr );
   }

   Vel::Ptr<ModelPort> port{ new ModelPort( "port" ) };
   std::vector<Counter> counters;
   Idler late;
};

/// Compare, store, and one virtual call for each node of a list. It takes no care of what handlers
/// do: one that detaches itself would break it.
struct Floor {
   struct Observer {
      virtual ~Observer() = default;
      virtual void onSpeed() = 0;
      Observer * next = nullptr;
      Observer ** link = nullptr; // what points here
   };
   struct Port {
      void speedIs( uint32_t newSpeed ) {
         if ( speed == newSpeed ) {
            return;
         }
         speed = newSpeed;
         for ( Observer * at = first; at; at = at->next ) {
            at->onSpeed();
         }
      }
      void attach( Observer & observer ) {
         observer.next = nullptr;
         observer.link = end;
         *end = &observer;
         end = &observer.next;
      }
      void detach( Observer & observer ) {
         *observer.link = observer.next;
         ( observer.next ? observer.next->link : end ) = observer.link;
      }
      uint32_t speed = 0;
      Observer * first = nullptr;
      Observer ** end = &first;
   };
   struct Counter : Observer {
      void onSpeed() override { ++count; }
      std::size_t count = 0;
   };
   struct Idler : Observer {
      void onSpeed() override {}
   };

   explicit Floor( std::size_t observers ) : counters( observers ) {
      for ( Counter & counter : counters ) {
         port->attach( counter );
      }
   }
   void speedIs( uint32_t speed ) { port->speedIs( speed ); }
   void attachAndDetach() {
      port->attach( late );
      benchmark::ClobberMemory();
      port->detach( late );
   }

   std::unique_ptr<Port> port = std::make_unique<Port>();
   std::vector<Counter> counters;
   Idler late;
};

/// The signals of other libraries, whose slots count.
template <typename Signal>
struct Signals {
   struct Counter {
      std::size_t count = 0;
   };

   explicit Signals( std::size_t observers ) : counters( observers ) {
      for ( Counter & counter : counters ) {
         connect( counter );
      }
   }
   void speedIs( uint32_t newSpeed ) {
      if ( speed != newSpeed ) {
         speed = newSpeed;
         signal();
      }
   }
   void attachAndDetach() { connect( late ).disconnect(); }
   auto connect( Counter & counter ) {
      return signal.connect( [&counter] { ++counter.count; } );
   }

   uint32_t speed = 0;
   Signal signal;
   std::vector<Counter> counters;
   Counter late;
};

template <typename Subject, std::size_t observers>
void changed( benchmark::State & state ) {
   auto const subject = std::make_unique<Subject>( observers );
   uint32_t speed = 0;
   measure( state, [&] { subject->speedIs( ++speed ); } );
   for ( auto const & counter : subject->counters ) {
      if ( counter.count != speed ) {
         state.SkipWithError( "an observer was not told of every change" );
      }
   }
}

/// One such write takes about a cycle, too little to be told from the loop around it; so 16 of them.
template <typename Subject>
void unchanged( benchmark::State & state ) {
   uint32_t speed = 10000;
   std::array<std::unique_ptr<Subject>, 16> subjects;
   for ( auto & subject : subjects ) {
      subject = std::make_unique<Subject>( 1 );
      subject->speedIs( speed );
   }
   measure( state, [&] {
      benchmark::DoNotOptimize( speed );
      for ( auto const & subject : subjects ) {
         subject->speedIs( speed );
      }
   } );
   for ( auto const & subject : subjects ) {
      if ( subject->counters[0].count != 1 ) {
         state.SkipWithError( "the observer was told of no change" );
      }
   }
}

template <typename Subject>
void attach( benchmark::State & state ) {
   auto const subject = std::make_unique<Subject>( 1 );
   measure( state, [&] { subject->attachAndDetach(); } );
}

#if XCVR_BENCH_BOOST
using Boost = Signals<boost::signals2::signal<void()>>;
#define BENCH_BOOST( run ) { "boost-signals2", run },
#else
#define BENCH_BOOST( run )
#endif
#if XCVR_BENCH_SIGC
using Sigc = Signals<sigc::signal<void()>>;
#define BENCH_SIGC( run ) { "sigc++", run },
#else
#define BENCH_SIGC( run )
#endif

// clang-format off
Figure const figures[] = {
   { "notify/unchanged-x16", { 1.2, 0 },
     { { "model", unchanged<Model> }, { "floor", unchanged<Floor> } } },
   { "notify/changed-0", { 1.25, 0 },
     { { "model", changed<Model, 0> }, { "floor", changed<Floor, 0> },
       BENCH_BOOST( ( changed<Boost, 0> ) ) BENCH_SIGC( ( changed<Sigc, 0> ) ) } },
   { "notify/changed-1", { 1.25, 0 },
     { { "model", changed<Model, 1> }, { "floor", changed<Floor, 1> },
       BENCH_BOOST( ( changed<Boost, 1> ) ) BENCH_SIGC( ( changed<Sigc, 1> ) ) } },
   { "notify/changed-8", { 1.15, 0 },
     { { "model", changed<Model, 8> }, { "floor", changed<Floor, 8> },
       BENCH_BOOST( ( changed<Boost, 8> ) ) BENCH_SIGC( ( changed<Sigc, 8> ) ) } },
   { "notify/attach-detach", { {}, 0 },
     { { "model", attach<Model> }, { "floor", attach<Floor> },
       BENCH_BOOST( attach<Boost> ) BENCH_SIGC( attach<Sigc> ) } },
};
// clang-format on

} // namespace
} // namespace Bench
