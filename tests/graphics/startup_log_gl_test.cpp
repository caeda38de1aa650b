// init from end to end: the diagnostic log byte for byte, every way start-up can end, the base
// directory, the end of the control, the presentation parameters and the multisampling choice.
// Then resize and the tick of Timer1: a stretched frame at once, one device Reset about half a
// second after the last resize, also across midnight.

#include <thread>

#include "StartupFixture.h"
#include "graphics/d3d8.h"

namespace {

using namespace startup_test;
namespace gfx = ostrel::graphics;

TEST(StartupLog, EveryWayStartUpEnds) {
  const std::string box =
      "Error occured while initialising directx. Make sure that directX 8 is installed.\r\n"
      "Error code:";
  const std::string noSoftware =
      "-2005530518 D3DERR_NOTAVAILABLE no software vertex processing on this adapter";
  const std::string refused = "-2005530516 D3DERR_INVALIDCALL the frame was refused";
  struct Refusing : ctlBoardEvents {
    void afterDraw(float&) override {
      throw gfx::D3DError(gfx::D3DERR_INVALIDCALL, "the frame was refused");
    }
  } refusing;
  enum Way { Complete, NoDirect3D, DeviceTypeRefused, NoHardware, NoDevice, FrameFails, NoLog };
  struct Case {
    Way way;
    std::optional<bool> result;
    size_t kept;              // lines of a complete log written before `last`
    std::string last, error;  // error: what the message box says after "Error code:"
    bool device, loaded;
  };
  const Case cases[] = {
      {Complete, true, 18, "", "", true, true},
      {NoDirect3D, std::nullopt, 2, "DirectX create failed", "", false, false},
      {DeviceTypeRefused, std::nullopt, 10, "CheckDeviceType with error code -7", "", false, false},
      // A failed hardware attempt is not reported.
      {NoHardware, true, 18, "", "", true, true},
      // A failed software attempt goes to the message box, not to "Creating device failed".
      {NoDevice, false, 11, "DirectX error: " + noSoftware, noSoftware, false, false},
      // A failure raised by the first frame is trapped like any other; what was made stays.
      {FrameFails, false, 16, "DirectX error: " + refused, refused, true, true},
      // A log that cannot be opened costs nothing else.
      {NoLog, true, 0, "", "", true, true},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.way);
    HeadlessOptions o = quickOptions();
    o.screenWidthPixels = 1280;
    o.screenHeightPixels = 720;
    o.direct3DAvailable = c.way != NoDirect3D;
    o.checkDeviceTypeResult = c.way == DeviceTypeRefused ? -7 : 0;
    o.hardwareVertexProcessing = c.way != NoHardware && c.way != NoDevice;
    o.softwareVertexProcessing = c.way != NoDevice;
    {
      Control s(o);
      s.platform.useManualClock(1000, 100.0f);
      if (c.way == FrameFails) s.board.setEventSink(&refusing);
      // An old log is replaced, not appended to; a folder in its place cannot be opened at all.
      if (c.way == NoLog) {
        fs::create_directory(s.assets / "directxlog.txt");
      } else {
        s.assets.write("directxlog.txt", "stale line\r\n");
      }
      EXPECT_EQ(s.init(), c.result);
      EXPECT_EQ(s.assets.log(), c.kept ? logOf(o, c.kept, c.last) : "");
      EXPECT_EQ(s.platform.messages(), c.error.empty() ? Lines{} : Lines{box + c.error});
      EXPECT_EQ(static_cast<bool>(gfx::graphicsContext().device), c.device);
      EXPECT_EQ(s.board.Timer1().Enabled, c.result == true);
      EXPECT_EQ(s.models().boardMesh.visible, c.loaded);
      EXPECT_EQ(s.board.label1().Visible, !c.loaded) << "the frame goes once the pieces are in";
      EXPECT_EQ(s.board.pic().Width, 320 * 15) << "pic is fitted before anything can fail";
      // Later frames use a device that was made; a resize without one asks for no Reset, and
      // without the timer the Reset never comes.
      s.board.setEventSink(nullptr);
      s.board.render();
      s.board.resize();
      EXPECT_EQ(s.platform.presentCount(), c.device ? 3 : 0);
      EXPECT_EQ(s.board.resizePending(), c.device);
      s.platform.advance(1000);
      s.board.Timer1_Timer();
      EXPECT_EQ(s.platform.resetCount(), c.result == true ? 1 : 0);
    }
    // The end of the control drops the device and the Direct3D object.
    EXPECT_FALSE(gfx::graphicsContext().device);
    EXPECT_FALSE(gfx::graphicsContext().direct3D);
  }
}

TEST(StartupLog, BaseDirectoryComesFromThePlatformUnlessGiven) {
  AssetFolder assets;
  HeadlessOptions o = quickOptions();
  o.appPath = assets.path();
  HeadlessPlatform platform(o);
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 0), std::optional<bool>(true));
  EXPECT_EQ(board.modelDir(), assets.path() + "/models");
  EXPECT_EQ(assets.log(), logOf(o));
  // The graphics context is the thread's: a control on another thread has seen no start-up.
  std::string seen = "unset";
  std::thread([&] {
    HeadlessPlatform other;
    seen = ctlBoard(other).modelDir();
  }).join();
  EXPECT_EQ(seen, "");
  // A given folder wins; a closing separator is kept as it is.
  Control given;
  ASSERT_EQ(given.board.init(false, 0, 0, given.assets.path() + "/"), std::optional<bool>(true));
  EXPECT_EQ(given.board.modelDir(), given.assets.path() + "//models");
  EXPECT_EQ(given.assets.log(), logOf(quickOptions()));
}

// The multisampling, swap effect and filter level that each qAA gets from an adapter; the rest
// of the presentation parameters is the same for every quality.
TEST(StartupLog, MultisamplingFollowsQualityAndAdapter) {
  // qAA, 4 and 6 samples offered, then the samples, swap effect and anisotropy chosen.
  using Row = std::array<int32_t, 6>;
  for (const auto [qAA, four, six, samples, swapEffect, anisotropy] :
       {Row{0, 1, 1, 0, 4, 0}, Row{-3, 1, 1, 0, 4, 0}, Row{1, 1, 0, 4, 1, 2}, Row{1, 0, 1, 0, 4, 0},
        Row{1, 1, 1, 4, 1, 2}, Row{2, 1, 1, 6, 1, 32}, Row{2, 1, 0, 4, 1, 2},
        Row{2, 0, 1, 6, 1, 32}, Row{2, 0, 0, 0, 4, 0}}) {
    SCOPED_TRACE(::testing::Message() << qAA << " " << four << six);
    HeadlessOptions o = quickOptions(64, 48);
    o.multisample4 = four;
    o.multisample6 = six;
    // No models: the choice is made before anything loads, and the loads fail quickly.
    Control s(o, false);
    ASSERT_EQ(s.init(qAA), std::optional<bool>(true));
    const gfx::D3DPRESENT_PARAMETERS& p = gfx::graphicsContext().presentParameters;
    EXPECT_EQ((std::vector<int64_t>{
                  p.BackBufferWidth, p.BackBufferHeight, p.BackBufferFormat, p.BackBufferCount,
                  p.MultiSampleType, p.SwapEffect, static_cast<int64_t>(p.hDeviceWindow),
                  p.Windowed, p.EnableAutoDepthStencil, p.AutoDepthStencilFormat, p.Flags,
                  p.FullScreen_RefreshRateInHz, p.FullScreen_PresentationInterval}),
              (std::vector<int64_t>{0, 0, 22, 1, samples, swapEffect, 0, 1, 1, 80, 0, 0, 0}));
    EXPECT_EQ(s.board.anisotropyLevel(), anisotropy);
    // The device really is multisampled when asked to be (six samples give the renderer's most).
    const int32_t made = gfx::graphicsContext().device->GetMultiSampleCount();
    EXPECT_TRUE(samples ? made > 1 : made == 0) << made;
    // Every model failed with its own message box and start-up still succeeded.
    EXPECT_EQ(s.platform.messages().size(), 1u + 17u + 3u);
  }
}

class Resize : public ::testing::Test {
 protected:
  // Ticks every 100 ms for `ms`; the number of Resets that happened meanwhile.
  int tickFor(int ms) {
    const int before = s.platform.resetCount();
    for (int t = 0; t < ms; t += 100) {
      s.platform.advance(100);
      s.board.Timer1_Timer();
    }
    return s.platform.resetCount() - before;
  }
  std::pair<uint32_t, uint32_t> backBuffer() {
    uint32_t w = 0, h = 0;
    ostrel::graphics::graphicsContext().device->GetBackBufferSize(w, h);
    return {w, h};
  }
  Control s{quickOptions(160, 120)};
};

TEST_F(Resize, BeforeStartUpNothingHappens) {
  s.platform.resizeControl(300, 200);
  s.board.resize();
  s.board.Timer1_Timer();
  EXPECT_EQ(s.board.pic().Width, 6315) << "pic keeps its design-time size";
  EXPECT_EQ(s.board.pic().Height, 4095);
  EXPECT_FALSE(s.board.resizePending());
  EXPECT_EQ(s.platform.presentCount() + s.platform.resetCount(), 0);
}

TEST_F(Resize, OneResetHalfASecondAfterTheLastResizeAlsoAcrossMidnight) {
  s.platform.useManualClock(1000, 1000.0f);  // frames do not move the clock
  s.platform.frameAdvanceMs(0);
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  const int presents = s.platform.presentCount();
  s.platform.resizeControl(200, 100);
  s.board.resize();
  EXPECT_EQ(s.board.pic().Width, 200 * 15);
  EXPECT_EQ(s.board.pic().Height, 100 * 15);
  EXPECT_TRUE(s.board.resizePending());
  EXPECT_FLOAT_EQ(s.board.resizeTime(), 1000.0f);
  EXPECT_EQ(s.platform.presentCount(), presents + 1) << "a stretched frame at once";
  EXPECT_EQ(backBuffer(), std::pair(160u, 120u)) << "the back buffer keeps its size until Reset";
  const Image shown = s.platform.windowImage();
  EXPECT_EQ(std::pair(shown.width, shown.height), std::pair(200, 100)) << "stretched over pic";

  // Up to and including resizeTime + 0.5 nothing happens; the next tick resets and draws.
  EXPECT_EQ(tickFor(500), 0);
  EXPECT_TRUE(s.board.resizePending());
  EXPECT_EQ(tickFor(100), 1);
  EXPECT_FALSE(s.board.resizePending());
  EXPECT_EQ(backBuffer(), std::pair(200u, 100u));
  EXPECT_EQ(s.platform.presentCount(), presents + 2);
  EXPECT_EQ(tickFor(2000), 0) << "one Reset in all";

  // A second resize 0.4 seconds after the first moves the Reset to half a second after it.
  s.platform.resizeControl(200, 150);
  s.board.resize();
  EXPECT_EQ(tickFor(400), 0);
  s.platform.resizeControl(240, 180);
  s.board.resize();
  EXPECT_FLOAT_EQ(s.board.resizeTime(), 1003.0f);
  EXPECT_EQ(tickFor(500), 0);
  EXPECT_EQ(tickFor(100), 1);
  EXPECT_EQ(backBuffer(), std::pair(240u, 180u));
  EXPECT_EQ(tickFor(1000), 0);

  // Just before midnight: the first reading below resizeTime counts as late enough.
  s.platform.useManualClock(5000, 86399.95f);
  s.board.resize();
  EXPECT_EQ(tickFor(100), 1);
  EXPECT_LT(s.platform.Timer(), 1.0f);
  EXPECT_EQ(tickFor(1000), 0);
}

}  // namespace
