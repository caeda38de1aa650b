// The cost of one frame of a full position against the frame of the empty board (clear, the
// board pass, present) on the offscreen device, at the sizes a host uses, with and without
// multisampling. Both are measured in the same run on the same device, alternating, so that the
// ratio survives a busy machine.
//
// Each run reports the medians in milliseconds (full_ms, empty_ms), their ratio (full/empty), the
// processor time of both frames, the renderer's threads included (cpu_full_ms, cpu_empty_ms), and
// its ratio (cpu full/empty), which a machine busy with other work disturbs far less; what
// the full frame sent to OpenGL (draws, programs, states, uniforms, buffers, gl_calls), and the
// renderer's own statistics of both frames where it keeps them: fragment shader invocations
// (fs_full, fs_empty) and primitives after clipping (prims_full); and the samples both frames
// wrote (samples_full, samples_empty) with their ratio, the floor of full/empty where fill rules.

#include <benchmark/benchmark.h>
#include <epoxy/gl.h>

#include <string>
#include <vector>

#include "BenchTiming.h"
#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"

namespace {

using namespace ostrel;
using bench::median;
using bench::processCpuMs;
using bench::timedMs;

// A started control with shadows: 20 white and 20 black men, two of them kings, 15 field markers
// and the last-move marker; or the board alone.
struct Rig {
  Rig(int width, int height, int32_t qAA) : platform(options(width, height)), board(platform) {
    started = board.init(false, qAA, 1).value_or(false);
    board.highlightLastMove(true);
  }
  void fill() {
    for (int16_t slot = 0; slot < 50; ++slot) {
      int16_t code = slot < 20 ? 3 : slot >= 30 ? 2 : 0;
      board.field(slot, code);
    }
    board.field(5, 5);   // a black king on field 6
    board.field(44, 4);  // a white king on field 45
    board.drawBoard();
    board.setHighLightField(28);
    board.setHLfields("21|22|23|24|25|26|27|28|29|30|31|32|33|34|35");
  }
  void empty() {
    for (int16_t slot = 0; slot < 50; ++slot) board.field(slot, 0);
    board.drawBoard();
    board.setHighLightField(-1);
    board.setHLfields("");
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

// What the renderer did for one frame: fragment shader invocations and primitives after clipping
// from its pipeline statistics (zeros where it keeps none), and the samples that passed the depth
// test, which every OpenGL 3.3 renderer counts. The samples are the fill a frame cannot avoid: on
// a renderer bound by fill, the full frame costs at least their ratio to the empty frame's.
struct FrameStatistics {
  double fragments = 0, primitives = 0, samples = 0;
};

FrameStatistics frameStatistics(ctlBoard& board) {
  const bool pipeline = epoxy_has_gl_extension("GL_ARB_pipeline_statistics_query");
  GLuint q[3];
  glGenQueries(3, q);
  glBeginQuery(GL_SAMPLES_PASSED, q[2]);
  if (pipeline) {
    glBeginQuery(GL_FRAGMENT_SHADER_INVOCATIONS_ARB, q[0]);
    glBeginQuery(GL_CLIPPING_OUTPUT_PRIMITIVES_ARB, q[1]);
  }
  board.render();
  GLuint64 fragments = 0, primitives = 0, samples = 0;
  if (pipeline) {
    glEndQuery(GL_FRAGMENT_SHADER_INVOCATIONS_ARB);
    glEndQuery(GL_CLIPPING_OUTPUT_PRIMITIVES_ARB);
    glGetQueryObjectui64v(q[0], GL_QUERY_RESULT, &fragments);
    glGetQueryObjectui64v(q[1], GL_QUERY_RESULT, &primitives);
  }
  glEndQuery(GL_SAMPLES_PASSED);
  glGetQueryObjectui64v(q[2], GL_QUERY_RESULT, &samples);
  glDeleteQueries(3, q);
  return {static_cast<double>(fragments), static_cast<double>(primitives),
          static_cast<double>(samples)};
}

void BM_FullOverEmpty(benchmark::State& state) {
  Rig rig(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)),
          static_cast<int32_t>(state.range(2)));
  if (!rig.started) {
    state.SkipWithError("init failed");
    return;
  }
  std::vector<double> full, empty;
  double cpuFull = 0, cpuEmpty = 0;
  graphics::DeviceCounters sent;
  rig.empty();
  const FrameStatistics emptyStats = frameStatistics(rig.board);
  rig.fill();
  const FrameStatistics fullStats = frameStatistics(rig.board);
  for (auto _ : state) {
    // Eight of each, alternating, each set warmed up by one frame.
    rig.empty();
    rig.board.render();
    const double emptyStart = processCpuMs();
    for (int i = 0; i < 8; ++i) empty.push_back(timedMs([&] { rig.board.render(); }));
    cpuEmpty += processCpuMs() - emptyStart;
    rig.fill();
    rig.board.render();
    double spent = 0;
    const double fullStart = processCpuMs();
    for (int i = 0; i < 8; ++i) {
      const double ms = timedMs([&] { rig.board.render(); });
      full.push_back(ms);
      spent += ms;
    }
    cpuFull += processCpuMs() - fullStart;
    sent = graphics::graphicsContext().device->GetFrameCounters();
    state.SetIterationTime(spent / 8 / 1000.0);
  }
  auto ratio = [](double a, double b) { return b > 0 ? a / b : 0; };
  const double f = median(full), e = median(empty);
  state.counters["full_ms"] = f;
  state.counters["empty_ms"] = e;
  state.counters["full/empty"] = ratio(f, e);
  const double frames = 8.0 * static_cast<double>(state.iterations());
  state.counters["cpu_full_ms"] = cpuFull / frames;
  state.counters["cpu_empty_ms"] = cpuEmpty / frames;
  state.counters["cpu full/empty"] = ratio(cpuFull, cpuEmpty);
  state.counters["draws"] = sent.drawCalls;
  state.counters["programs"] = sent.programChanges;
  state.counters["states"] = sent.stateChanges;
  state.counters["uniforms"] = sent.uniformUploads;
  state.counters["buffers"] = sent.bufferUploads;
  state.counters["gl_calls"] = sent.glCalls;
  for (const auto& [name, member] : {std::pair{"fs", &FrameStatistics::fragments},
                                     {"prims", &FrameStatistics::primitives},
                                     {"samples", &FrameStatistics::samples}}) {
    state.counters[std::string(name) + "_empty"] = emptyStats.*member;
    state.counters[std::string(name) + "_full"] = fullStats.*member;
  }
  state.counters["samples full/empty"] = ratio(fullStats.samples, emptyStats.samples);
  state.SetLabel(std::to_string(state.range(0)) + "x" + std::to_string(state.range(1)) +
                 (state.range(2) ? " 4xMSAA" : ""));
}

// Sizes and multisampling: qAA 1 asks for four samples. 800 x 800 is the demo's window.
BENCHMARK(BM_FullOverEmpty)
    ->Args({640, 480, 0})
    ->Args({1280, 720, 0})
    ->Args({1280, 720, 1})
    ->Args({800, 800, 1})
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->MinTime(1.5);

}  // namespace

BENCHMARK_MAIN();
