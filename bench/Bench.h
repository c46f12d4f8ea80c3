#pragma once

#include <benchmark/benchmark.h>

#include <optional>
#include <string>
#include <vector>

namespace Bench {

/// How often this program has asked for memory (operator new) so far.
[[nodiscard]] std::size_t allocations();

/// Times `op`, the work of one operation, and counts what it allocates.
template <typename Op>
[[gnu::always_inline]] inline void measure( benchmark::State & state, Op && op ) {
   std::size_t const before = allocations();
   for ( [[maybe_unused]] auto _ : state ) {
      op();
      benchmark::ClobberMemory();
   }
   state.counters["allocations"] =
      benchmark::Counter( double( allocations() - before ), benchmark::Counter::kAvgIterations );
}

/// One of those that do the work of a figure.
struct Contestant {
   char const * name;
   void ( *run )( benchmark::State & state );
};

/// What a figure should reach; none where it is only to be seen.
struct Target {
   std::optional<double> ratio;       // time of the model / time of the floor
   std::optional<double> allocations; // of the model, an operation
};

/// A figure: the time of the library's own way, the first contestant; beside it that of the floor,
/// the second, a hand-written loop that does only what cannot be avoided; and those of its peers.
/// Declared as a static object, which makes it part of the run as FIGURE/CONTESTANT.
class Figure {
 public:
   Figure( std::string name, Target target, std::vector<Contestant> contestants );
};

} // namespace Bench
