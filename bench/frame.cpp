// The cost of one frame of a full position, against a frame that only clears and presents, on
// the offscreen device at two sizes, with and without multisampling.
//
// Each run reports the median of its frames in milliseconds (median_ms); the full-frame runs
// also measure clear-and-present frames on the same device (clear_median_ms) and give the ratio.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "BenchTiming.h"
#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"

namespace {

using namespace ostrel;
using bench::Clock;
using bench::median;
using bench::timedMs;

// A started control showing 20 white and 20 black men, two of them kings, with shadows, 15
// field markers and the last-move marker.
struct Rig {
  Rig(int width, int height, int32_t qAA) : platform(options(width, height)), board(platform) {
    started = board.init(false, qAA, 1).value_or(false);
    for (int16_t slot = 0; slot < 50; ++slot) {
      int16_t code = slot < 20 ? 3 : slot >= 30 ? 2 : 0;
      board.field(slot, code);
    }
    board.field(5, 5);   // a black king on field 6
    board.field(44, 4);  // a white king on field 45
    board.drawBoard();
    board.highlightLastMove(true);
    board.setHighLightField(28);
    board.setHLfields("21|22|23|24|25|26|27|28|29|30|31|32|33|34|35");
  }
  static HeadlessOptions options(int width, int height) {
    HeadlessOptions o;
    o.pixelWidth = width;
    o.pixelHeight = height;
    return o;
  }
  HeadlessPlatform platform;
  ctlBoard board;
  bool started = false;
};

// What a frame costs when it draws nothing: Clear, an empty scene and Present.
void clearAndPresent() {
  graphics::Direct3DDevice8& d = *graphics::graphicsContext().device;
  d.Clear(0, nullptr, graphics::D3DCLEAR_TARGET | graphics::D3DCLEAR_ZBUFFER, 0x404040, 1.0f, 0);
  d.BeginScene();
  d.EndScene();
  d.Present();
}

void label(benchmark::State& state) {
  state.SetLabel(std::to_string(state.range(0)) + "x" + std::to_string(state.range(1)) +
                 (state.range(2) ? " 4xMSAA" : " no MSAA"));
}

void BM_FullFrame(benchmark::State& state) {
  Rig rig(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
          static_cast<int32_t>(state.range(2)));
  if (!rig.started) {
    state.SkipWithError("init failed");
    return;
  }
  rig.board.render();  // warm up
  std::vector<double> frames;
  for (auto _ : state) {
    const double ms = timedMs([&] { rig.board.render(); });
    frames.push_back(ms);
    state.SetIterationTime(ms / 1000.0);
  }
  std::vector<double> clears;
  for (size_t i = 0; i < std::max<size_t>(frames.size(), 20); ++i) {
    clears.push_back(timedMs(clearAndPresent));
  }
  const double full = median(frames), clear = median(clears);
  state.counters["median_ms"] = full;
  state.counters["clear_median_ms"] = clear;
  state.counters["ratio"] = clear > 0 ? full / clear : 0;
  label(state);
}

void BM_ClearPresent(benchmark::State& state) {
  Rig rig(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
          static_cast<int32_t>(state.range(2)));
  if (!rig.started) {
    state.SkipWithError("init failed");
    return;
  }
  clearAndPresent();
  std::vector<double> frames;
  for (auto _ : state) {
    const double ms = timedMs(clearAndPresent);
    frames.push_back(ms);
    state.SetIterationTime(ms / 1000.0);
  }
  state.counters["median_ms"] = median(frames);
  label(state);
}

// Sizes and multisampling: qAA 1 asks for four samples.
void sizes(benchmark::internal::Benchmark* b) {
  for (int aa : {0, 1}) {
    b->Args({640, 480, aa});
    b->Args({1280, 720, aa});
  }
  b->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
}

BENCHMARK(BM_FullFrame)->Apply(sizes);
BENCHMARK(BM_ClearPresent)->Apply(sizes);

}  // namespace

BENCHMARK_MAIN();
