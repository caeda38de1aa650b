// Start-up costs: init as a host meets it (device, every model and image, the first frame), the
// device creation alone, and a reload of the piece images through the property setter.
//
//   build/bench/startup [--benchmark_repetitions=N]
//
// Each run works on a private copy of the shipped models, so the log goes there too.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <filesystem>
#include <memory>

#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/ostrel.h"

namespace {

namespace fs = std::filesystem;

// A copy of the shipped models/ in a folder of its own, removed at exit.
class AssetCopy {
 public:
  AssetCopy() {
    ostrel::HeadlessPlatform probe;
    dir_ = fs::temp_directory_path() / ("ostrel-bench-" + std::to_string(::getpid()));
    fs::create_directories(dir_);
    fs::copy(fs::path(probe.AppPath()) / "models", dir_ / "models", fs::copy_options::recursive);
  }
  ~AssetCopy() {
    std::error_code ec;
    fs::remove_all(dir_, ec);
  }
  std::string path() const { return dir_.string(); }

 private:
  fs::path dir_;
};

const AssetCopy& assets() {
  static const AssetCopy copy;
  return copy;
}

ostrel::HeadlessOptions options() {
  ostrel::HeadlessOptions o;
  o.pixelWidth = 640;
  o.pixelHeight = 640;
  return o;
}

// A host's start: a new window and control, then init at the quality of the argument (qAA; 2 is
// multisampled with anisotropic filtering).
void BM_Init(benchmark::State& state, int32_t qAA) {
  const std::string dir = assets().path();
  for (auto _ : state) {
    state.PauseTiming();
    auto platform = std::make_unique<ostrel::HeadlessPlatform>(options());
    auto board = std::make_unique<ostrel::ctlBoard>(*platform);
    state.ResumeTiming();
    auto result = board->init(false, qAA, 1, dir);
    state.PauseTiming();
    if (!result || !*result || !platform->messages().empty()) {
      state.SkipWithError("init did not succeed");
    }
    board.reset();
    platform.reset();
    state.ResumeTiming();
  }
}

// Only the Direct3D object and the device with the start-up's parameters, on a new window.
void BM_DeviceCreation(benchmark::State& state) {
  using namespace ostrel::graphics;
  for (auto _ : state) {
    state.PauseTiming();
    auto platform = std::make_unique<ostrel::HeadlessPlatform>(options());
    D3DPRESENT_PARAMETERS pp;
    pp.Windowed = 1;
    pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
    pp.BackBufferFormat = D3DFMT_X8R8G8B8;
    pp.BackBufferCount = 1;
    pp.MultiSampleType = 4;
    pp.EnableAutoDepthStencil = 1;
    pp.AutoDepthStencilFormat = D3DFMT_D16;
    state.ResumeTiming();
    auto d3d = Direct3DCreate(*platform);
    std::shared_ptr<Direct3DDevice8> device;
    if (d3d) {
      device = d3d->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, platform.get(),
                                 D3DCREATE_HARDWARE_VERTEXPROCESSING, pp);
    }
    state.PauseTiming();
    if (!device) state.SkipWithError("no device");
    device.reset();
    d3d.reset();
    platform.reset();
    state.ResumeTiming();
  }
}

// A started control whose image property is changed back and forth, each change a reload.
template <typename Change>
void imageReload(benchmark::State& state, Change change) {
  ostrel::HeadlessPlatform platform(options());
  ostrel::ctlBoard board(platform);
  auto result = board.init(false, 2, 1, assets().path());
  if (!result || !*result) {
    state.SkipWithError("init did not succeed");
    return;
  }
  bool alternative = false;
  for (auto _ : state) {
    alternative = !alternative;
    change(board, alternative);
  }
  if (!platform.messages().empty()) state.SkipWithError("a reload failed");
}

// A change of the white piece image after start-up: both piece models and the shadow again.
// "piecewhite.png" and "" name the same image but differ as values, so each call reloads.
void BM_PieceImageReload(benchmark::State& state) {
  imageReload(state, [](ostrel::ctlBoard& board, bool alternative) {
    board.alternativePieceWhite(alternative ? "piecewhite.png" : "");
  });
}

// A change of the board image after start-up: the board model again.
void BM_BoardImageReload(benchmark::State& state) {
  imageReload(state, [](ostrel::ctlBoard& board, bool alternative) {
    board.alternativeBoard(alternative ? "" : "board.jpg");
  });
}

// Medians over repetitions; GL work runs on llvmpipe's threads, so wall time is what counts.
void settings(benchmark::internal::Benchmark* b) {
  b->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(3)->Repetitions(5);
  b->ReportAggregatesOnly(true);
}
BENCHMARK_CAPTURE(BM_Init, plain, 0)->Apply(settings);
BENCHMARK_CAPTURE(BM_Init, multisampled, 2)->Apply(settings);
BENCHMARK(BM_DeviceCreation)->Apply(settings);
BENCHMARK(BM_PieceImageReload)->Apply(settings);
BENCHMARK(BM_BoardImageReload)->Apply(settings);

}  // namespace

BENCHMARK_MAIN();
