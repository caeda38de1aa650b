// Perft of the draughts kit from the start position, depths 5 to 9 (1,049,442 at 7, 6,483,961 at
// 8, 41,022,423 at 9), and move generation where many capture routes merge.
//
//   build/bench/draughts_perft --benchmark_filter=Perft/9

#include <benchmark/benchmark.h>

#include "ostrel/draughts.h"

namespace {

using namespace ostrel::draughts;

void Perft(benchmark::State& state) {
  const int depth = static_cast<int>(state.range(0));
  uint64_t nodes = 0;
  for (auto _ : state) {
    nodes = perft(Position::start(), depth);
    benchmark::DoNotOptimize(nodes);
  }
  state.counters["nodes"] = static_cast<double>(nodes);
  state.counters["nodes/s"] =
      benchmark::Counter(static_cast<double>(nodes), benchmark::Counter::kIsIterationInvariantRate);
}
BENCHMARK(Perft)->DenseRange(5, 9)->Unit(benchmark::kMillisecond)->Iterations(1);

// Two kings with 436 routes to fourteen captures, merged into 14 moves.
void MergedCaptures(benchmark::State& state) {
  const Position position =
      *parseFen("B:BK17,K24:W6,9,10,11,20,21,22,23,30,K31,33,37,41,42,43,44,46");
  std::vector<Move> moves;
  for (auto _ : state) {
    legalMoves(position, moves);
    benchmark::DoNotOptimize(moves.data());
  }
}
BENCHMARK(MergedCaptures)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
