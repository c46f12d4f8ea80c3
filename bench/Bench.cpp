// The program's frame: counts allocations, runs every figure's contestants with their repetitions
// interleaved, and prints a table of their minima.
#include "bench/Bench.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <new>
#include <string_view>

namespace Bench {
namespace {

std::size_t allocated = 0;

struct RegisteredFigure {
   std::string name;
   Target target;
   std::vector<Contestant> contestants;
};

std::vector<RegisteredFigure> & figures() {
   static std::vector<RegisteredFigure> all;
   return all;
}

/// How far above its target a ratio may come in the gate: these are measurements on a machine that
/// does other work too.
constexpr double slack = 1.25;

/// The least time and allocations of one contestant in all repetitions.
struct Minimum {
   double nanoseconds = std::numeric_limits<double>::infinity();
   double allocations = std::numeric_limits<double>::infinity();
};

class Minima : public benchmark::BenchmarkReporter {
 public:
   bool ReportContext( Context const & ) override { return true; }
   void ReportRuns( std::vector<Run> const & runs ) override {
      for ( Run const & run : runs ) {
         if ( run.run_type != Run::RT_Iteration || run.error_occurred ) {
            continue;
         }
         Minimum & minimum = minima_[run.run_name.function_name];
         // Processor time, so that what else runs on the machine counts less.
         double const perSecond = benchmark::GetTimeUnitMultiplier( run.time_unit );
         minimum.nanoseconds =
            std::min( minimum.nanoseconds, run.GetAdjustedCPUTime() / perSecond * 1e9 );
         minimum.allocations =
            std::min( minimum.allocations, run.counters.at( "allocations" ).value );
      }
   }
   [[nodiscard]] Minimum const * of( RegisteredFigure const & figure, std::size_t i ) const {
      auto const found = minima_.find( figure.name + "/" + figure.contestants[i].name );
      return found != minima_.end() ? &found->second : nullptr;
   }

 private:
   std::map<std::string, Minimum> minima_;
};

/// Prints the row of a figure; whether the figure reached its target, slack granted.
bool printFigure( RegisteredFigure const & figure, Minima const & minima ) {
   Minimum const * const model = minima.of( figure, 0 );
   Minimum const * const floor = minima.of( figure, 1 );
   if ( !model || !floor ) {
      return true; // filtered out
   }
   double const ratio = model->nanoseconds / floor->nanoseconds;
   // The loop around an operation allocates a little itself.
   double const allocations = model->allocations < 0.01 ? 0 : model->allocations;
   std::printf( "%-22s %9.2f %9.2f %6.2f", figure.name.c_str(), model->nanoseconds,
                floor->nanoseconds, ratio );
   figure.target.ratio ? std::printf( " %6.2f", *figure.target.ratio ) : std::printf( "      -" );
   std::printf( " %6.3g ", allocations );
   for ( std::size_t i = 2; i < figure.contestants.size(); ++i ) {
      if ( Minimum const * const peer = minima.of( figure, i ) ) {
         std::printf( " %s %.1f (%.1fx)", figure.contestants[i].name, peer->nanoseconds,
                      peer->nanoseconds / model->nanoseconds );
      }
   }
   bool const slow = figure.target.ratio && ratio > *figure.target.ratio * slack;
   bool const wasteful = figure.target.allocations && allocations > *figure.target.allocations;
   std::printf( "%s%s\n", slow ? " TOO SLOW" : "", wasteful ? " ALLOCATES" : "" );
   return !slow && !wasteful;
}

} // namespace

std::size_t allocations() {
   return allocated;
}

Figure::Figure( std::string name, Target target, std::vector<Contestant> contestants ) {
   for ( Contestant const & contestant : contestants ) {
      benchmark::RegisterBenchmark( ( name + "/" + contestant.name ).c_str(), contestant.run );
   }
   figures().push_back( { std::move( name ), target, std::move( contestants ) } );
}

} // namespace Bench

// Every way of asking for memory ends in one of these two.

void * operator new( std::size_t size ) {
   ++Bench::allocated;
   if ( void * memory = std::malloc( size ) ) {
      return memory;
   }
   throw std::bad_alloc();
}
void * operator new( std::size_t size, std::align_val_t alignment ) {
   ++Bench::allocated;
   auto const unit = static_cast<std::size_t>( alignment );
   if ( void * memory = std::aligned_alloc( unit, ( size + unit - 1 ) / unit * unit ) ) {
      return memory;
   }
   throw std::bad_alloc();
}
void operator delete( void * memory ) noexcept {
   std::free( memory );
}
void operator delete( void * memory, std::size_t ) noexcept {
   std::free( memory );
}
void operator delete( void * memory, std::align_val_t ) noexcept {
   std::free( memory );
}
void operator delete( void * memory, std::size_t, std::align_val_t ) noexcept {
   std::free( memory );
}

int main( int argc, char ** argv ) {
   // What comes later on the command line overrides these.
   std::string defaults[] = { "--benchmark_repetitions=15",
                              "--benchmark_enable_random_interleaving=true",
                              "--benchmark_min_time=0.05" };
   bool gate = false;
   std::vector<char *> arguments{ argv[0] };
   for ( std::string & argument : defaults ) {
      arguments.push_back( argument.data() );
   }
   for ( char ** argument = argv + 1; argument != argv + argc; ++argument ) {
      if ( std::string_view( *argument ) == "--gate" ) {
         gate = true;
      } else {
         arguments.push_back( *argument );
      }
   }
   int count = static_cast<int>( arguments.size() );
   benchmark::Initialize( &count, arguments.data() );
   if ( benchmark::ReportUnrecognizedArguments( count, arguments.data() ) ) {
      return 2;
   }
   Bench::Minima minima;
   benchmark::RunSpecifiedBenchmarks( &minima );

   std::printf( "%-22s %9s %9s %6s %6s %6s  %s\n", "figure", "ns", "floor", "ratio", "target",
                "allocs", "peers: ns (times ours)" );
   bool reached = true;
   for ( Bench::RegisteredFigure const & figure : Bench::figures() ) {
      reached &= Bench::printFigure( figure, minima );
   }
   return gate && !reached ? 1 : 0;
}
