// What the user's hand costs: one handled pointer move during a drag (the drag step and its
// frame) against the frame of the empty board, the picking of one pointer position alone, the
// full length of a played move against the 125 ms that one square of travel should take, and
// what an idle control costs: a tick of Timer1 with no reset pending.
//
// Each run reports the median of its samples in milliseconds (median_ms); the drag also the
// empty-board frame measured alternately in the same run and the ratio (move/empty); the played
// move how far the median lies beyond its ideal (over_ideal_ms); the idle tick the frames drawn.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "BenchTiming.h"
#include "control/ControlAccess.h"
#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "interaction/Picking.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/notation.h"

namespace {

using namespace ostrel;
using bench::Clock;
using bench::median;
using bench::timedMs;

// A started 640 x 480 control with 20 men of each colour and shadows, and moves from field 32.
struct Rig {
  explicit Rig(bool manualClock, bool pieces = true) : board(platform) {
    if (manualClock) platform.useManualClock(100000, 36000.0f);
    started = board.init(false, 0, 1).value_or(false);
    for (int16_t slot = 0; slot < 50 && pieces; ++slot) {
      board.field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
    }
    board.addMoveList("32-28");
    board.addMoveList("32-27");
    board.drawBoard();
    board.render();
  }

  // Where the board point of a field lies in pic, in twips, under the camera of the last frame.
  void twipsOf(int16_t field, float& X, float& Y) {
    interaction::fieldToScreen(controlState(board), field, X, Y);
  }

  HeadlessPlatform platform;
  ctlBoard board;
  bool started = false;
};

void BM_DragMove(benchmark::State& state) {
  Rig rig(true);
  Rig bare(true, false);
  if (!rig.started || !bare.started) {
    state.SkipWithError("init failed");
    return;
  }
  float fromX, fromY, toX, toY;
  rig.twipsOf(32, fromX, fromY);
  rig.twipsOf(28, toX, toY);
  rig.platform.advance(20);
  rig.board.pic_MouseDown(1, 0, fromX, fromY);
  if (!rig.board.gesture().draggingPiece) {
    state.SkipWithError("no drag started");
    return;
  }
  std::vector<double> moves, empty;
  int64_t i = 0;
  for (auto _ : state) {
    // Past the time gate, so that every move is handled and draws its frame.
    rig.platform.advance(20);
    const float t = static_cast<float>(i++ % 16) / 15.0f;
    const double ms = timedMs([&] {
      rig.board.pic_MouseMove(1, 0, fromX + (toX - fromX) * t, fromY + (toY - fromY) * t);
    });
    moves.push_back(ms);
    state.SetIterationTime(ms / 1000.0);
    empty.push_back(timedMs([&] { bare.board.render(); }));
  }
  rig.board.pic_MouseUp(1, 0, toX, toY);
  const double m = median(moves), e = median(empty);
  state.counters["median_ms"] = m;
  state.counters["empty_ms"] = e;
  state.counters["move/empty"] = e > 0 ? m / e : 0;
}

// Timer1's tick with no reset pending, and how many frames the idle control draws meanwhile.
void BM_IdleTimerTick(benchmark::State& state) {
  Rig rig(true);
  if (!rig.started) {
    state.SkipWithError("init failed");
    return;
  }
  const int32_t frames = rig.platform.presentCount();
  for (auto _ : state) {
    rig.platform.advance(1000);
    rig.board.Timer1_Timer();
  }
  state.counters["frames_drawn"] = rig.platform.presentCount() - frames;
}

void BM_ScreenToBoard(benchmark::State& state) {
  Rig rig(true);
  if (!rig.started) {
    state.SkipWithError("init failed");
    return;
  }
  ControlState& s = controlState(rig.board);
  std::vector<double> picks;
  float sink = 0;
  int64_t i = 0;
  for (auto _ : state) {
    float boardX = 0, boardY = 0;
    int16_t field = 0;
    const auto X = static_cast<float>(i % 640) * 15.0f, Y = static_cast<float>(i % 480) * 15.0f;
    ++i;
    const auto t0 = Clock::now();
    interaction::screenToBoard(s, X, Y, boardX, boardY, field);
    const double ms = std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
    benchmark::DoNotOptimize(sink += boardX + boardY + field);
    picks.push_back(ms);
    state.SetIterationTime(ms / 1000.0);
  }
  state.counters["median_us"] = median(picks) * 1000.0;
}

void BM_ShowMoveOneSquare(benchmark::State& state) {
  Rig rig(false);  // the real clock: the move takes the time it takes
  if (!rig.started) {
    state.SkipWithError("init failed");
    return;
  }
  std::vector<double> plays;
  for (auto _ : state) {
    rig.board.drawBoard();
    const double ms = timedMs([&] { rig.board.showMove("32-28"); });
    plays.push_back(ms);
    state.SetIterationTime(ms / 1000.0);
  }
  constexpr double kIdealMs = 125;
  state.counters["median_ms"] = median(plays);
  state.counters["over_ideal_ms"] = median(plays) - kIdealMs;
}

BENCHMARK(BM_DragMove)->UseManualTime()->Unit(benchmark::kMillisecond)->MinTime(2.0);
BENCHMARK(BM_IdleTimerTick)->Unit(benchmark::kNanosecond);
BENCHMARK(BM_ScreenToBoard)->UseManualTime()->Unit(benchmark::kMicrosecond)->MinTime(0.5);
BENCHMARK(BM_ShowMoveOneSquare)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);

}  // namespace

BENCHMARK_MAIN();
