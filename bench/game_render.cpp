// ostrel-render's game output at 640x640 on the offscreen device.
//
// BM_AllPlies: a picture per ply with one control for the whole game: the median time per ply
// (ply_ms) against one frame plus its PNG for a single position (frame_png_ms), and their ratio.
// BM_Encode: frames per second of the encoders alone (fps), fed 60 distinct frames of a film.
// BM_Film: frames per second of a whole film, rendering and encoding together.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "BenchTiming.h"
#include "GameRender.h"
#include "PngWriter.h"
#include "VideoWriter.h"

namespace {

using ostrel::bench::median;
using ostrel::bench::timedMs;
namespace draughts = ostrel::draughts;
namespace fs = std::filesystem;

constexpr int kSize = 640;
constexpr size_t kPlies = 40;

struct Rig {
  Rig() : platform(options()), board(platform) {
    started = board.init(false, 2, 1).value_or(false) && platform.messages().empty();
    board.viewingDistance(render::kWholeBoardDistance);
    // A game of the first legal move that takes, else one that varies with the ply.
    draughts::PdnGame pdn;
    pdn.start = draughts::Position::start();
    draughts::Position position = pdn.start;
    for (size_t ply = 0; ply < kPlies; ++ply) {
      const auto legal = draughts::legalMoves(position);
      if (legal.empty()) break;
      draughts::PdnMove move;
      move.move = legal[ply * 7 % legal.size()];
      position = draughts::play(position, move.move);
      pdn.moves.push_back(move);
    }
    line = render::lineOf(pdn, kPlies);
    dir = fs::temp_directory_path() / ("ostrel-bench-game-" + std::to_string(::getpid()));
    fs::create_directories(dir);
  }
  ~Rig() { fs::remove_all(dir); }
  static ostrel::HeadlessOptions options() {
    ostrel::HeadlessOptions o;
    o.pixelWidth = o.pixelHeight = kSize;
    return o;
  }
  ostrel::HeadlessPlatform platform;
  ostrel::ctlBoard board;
  bool started = false;
  render::GameLine line;
  fs::path dir;
};

// One control for every benchmark, ended before the program's own statics go.
Rig* theRig = nullptr;
Rig& rig() {
  if (!theRig) theRig = new Rig;
  return *theRig;
}

const char* const kFormats[] = {"film.mp4", "film.webm", "film.gif"};

void BM_AllPlies(benchmark::State& state) {
  Rig& r = rig();
  if (!r.started) return state.SkipWithError("init failed");
  const size_t pictures = r.line.plies.size() + 1;
  std::vector<double> perPly;
  for (auto _ : state) {
    std::string error;
    const double ms = timedMs([&] {
      if (!render::writeAllPlies(r.board, r.platform, r.line, (r.dir / "plies").string(), error)) {
        state.SkipWithError(error.c_str());
      }
    });
    perPly.push_back(ms / static_cast<double>(pictures));
    state.SetIterationTime(ms / 1000.0);
  }
  std::vector<double> single;
  for (int i = 0; i < 20; ++i) {
    std::string error;
    single.push_back(timedMs([&] {
      r.board.render();
      render::writePng((r.dir / "one.png").string(), r.platform.windowImage(), error);
    }));
  }
  const double ply = median(perPly), one = median(single);
  state.counters["ply_ms"] = ply;
  state.counters["frame_png_ms"] = one;
  state.counters["ratio"] = one > 0 ? ply / one : 0;
}

// 60 distinct frames: the start and the first moves as the film shows them.
const std::vector<ostrel::Image>& filmFrames() {
  static const std::vector<ostrel::Image> frames = [] {
    std::vector<ostrel::Image> got;
    Rig& r = rig();
    render::FilmSettings settings;
    settings.pauseSeconds = 0;
    render::playFilm(r.board, r.platform, r.line.start, r.line.plies, settings,
                     [&](const ostrel::Image& picture, int) {
                       got.push_back(picture);
                       return got.size() < 60;
                     });
    return got;
  }();
  return frames;
}

void BM_Encode(benchmark::State& state) {
  Rig& r = rig();
  if (!r.started) return state.SkipWithError("init failed");
  const auto& frames = filmFrames();
  const std::string path = (r.dir / kFormats[state.range(0)]).string();
  const auto format = *render::videoFormatOf(path);
  std::vector<double> rates;
  for (auto _ : state) {
    std::string error;
    const double ms = timedMs([&] {
      auto writer = render::VideoWriter::open(path, format, kSize, kSize, 30, frames, error);
      bool ok = writer != nullptr;
      for (const ostrel::Image& frame : frames) ok = ok && writer->addFrame(frame, 1, error);
      if (!ok || !writer->finish(error)) state.SkipWithError(error.c_str());
    });
    rates.push_back(static_cast<double>(frames.size()) * 1000.0 / ms);
    state.SetIterationTime(ms / 1000.0);
  }
  state.counters["fps"] = median(rates);
  state.counters["bytes"] = static_cast<double>(fs::file_size(path));
  state.SetLabel(kFormats[state.range(0)]);
}

void BM_Film(benchmark::State& state) {
  Rig& r = rig();
  if (!r.started) return state.SkipWithError("init failed");
  const std::string path = (r.dir / kFormats[state.range(0)]).string();
  render::GameLine opening = r.line;
  opening.plies.resize(6);
  opening.lastFields.resize(6);
  render::FilmSettings settings;
  settings.pauseSeconds = 0;
  std::vector<double> rates;
  for (auto _ : state) {
    std::string error;
    std::optional<int64_t> frames;
    const double ms = timedMs(
        [&] { frames = render::writeFilm(r.board, r.platform, opening, path, settings, error); });
    if (!frames) return state.SkipWithError(error.c_str());
    rates.push_back(static_cast<double>(*frames) * 1000.0 / ms);
    state.SetIterationTime(ms / 1000.0);
  }
  state.counters["fps"] = median(rates);
  state.SetLabel(kFormats[state.range(0)]);
}

BENCHMARK(BM_AllPlies)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(3);
BENCHMARK(BM_Encode)
    ->DenseRange(0, 2)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3);
BENCHMARK(BM_Film)->DenseRange(0, 2)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2);

}  // namespace

int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  delete theRig;
  return 0;
}
