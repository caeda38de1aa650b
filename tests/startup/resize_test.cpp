// resize and the tick of Timer1: a stretched frame at once, one device Reset about half a second
// after the last resize, also across midnight.

#include "StartupFixture.h"
#include "graphics/d3d8.h"

namespace {

using namespace startup_test;
using ostrel::ctlBoard;
using ostrel::HeadlessPlatform;
namespace gfx = ostrel::graphics;

class Resize : public ::testing::Test {
 protected:
  Resize() : platform(quickOptions(160, 120)), board(platform) {}

  // Starts the control with the clock at `timer` seconds after midnight; frames do not move it.
  void start(float timer) {
    platform.useManualClock(1000, timer);
    platform.frameAdvanceMs(0);
    ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  }
  // Ticks every 100 ms for `ms`; the number of Resets that happened meanwhile.
  int tickFor(int ms) {
    const int before = platform.resetCount();
    for (int t = 0; t < ms; t += 100) {
      platform.advance(100);
      board.Timer1_Timer();
    }
    return platform.resetCount() - before;
  }
  void backBuffer(uint32_t& w, uint32_t& h) {
    gfx::graphicsContext().device->GetBackBufferSize(w, h);
  }

  AssetFolder assets;
  HeadlessPlatform platform;
  ctlBoard board;
};

TEST_F(Resize, BeforeStartUpNothingHappens) {
  platform.resizeControl(300, 200);
  board.resize();
  EXPECT_EQ(board.pic().Width, 6315) << "pic keeps its design-time size";
  EXPECT_EQ(board.pic().Height, 4095);
  EXPECT_FALSE(board.resizePending());
  EXPECT_EQ(platform.presentCount(), 0);
  board.Timer1_Timer();
  EXPECT_EQ(platform.resetCount(), 0);
}

TEST_F(Resize, OneResetHalfASecondAfterTheLastResize) {
  start(1000.0f);
  const int presents = platform.presentCount();
  platform.resizeControl(200, 100);
  board.resize();
  EXPECT_EQ(board.pic().Width, 200 * 15);
  EXPECT_EQ(board.pic().Height, 100 * 15);
  EXPECT_TRUE(board.resizePending());
  EXPECT_FLOAT_EQ(board.resizeTime(), 1000.0f);
  EXPECT_EQ(platform.presentCount(), presents + 1) << "a stretched frame at once";
  uint32_t w = 0, h = 0;
  backBuffer(w, h);
  EXPECT_EQ(w, 160u) << "the back buffer keeps its size until the Reset";
  EXPECT_EQ(h, 120u);
  ostrel::Image shown = platform.windowImage();
  EXPECT_EQ(shown.width, 200) << "the old back buffer is stretched over the new pic";
  EXPECT_EQ(shown.height, 100);

  // Up to and including resizeTime + 0.5 nothing happens; the next tick resets.
  EXPECT_EQ(tickFor(500), 0);
  EXPECT_TRUE(board.resizePending());
  EXPECT_EQ(tickFor(100), 1);
  EXPECT_FALSE(board.resizePending());
  backBuffer(w, h);
  EXPECT_EQ(w, 200u);
  EXPECT_EQ(h, 100u);
  EXPECT_EQ(platform.presentCount(), presents + 2) << "and draws again after the Reset";
  EXPECT_EQ(tickFor(2000), 0) << "one Reset in all";
}

TEST_F(Resize, ALaterResizeMovesTheReset) {
  start(500.0f);
  platform.resizeControl(200, 150);
  board.resize();
  EXPECT_EQ(tickFor(400), 0);
  platform.resizeControl(240, 180);
  board.resize();
  EXPECT_FLOAT_EQ(board.resizeTime(), 500.4f);
  EXPECT_EQ(tickFor(500), 0);
  EXPECT_EQ(tickFor(100), 1) << "about half a second after the second call";
  uint32_t w = 0, h = 0;
  backBuffer(w, h);
  EXPECT_EQ(w, 240u);
  EXPECT_EQ(h, 180u);
  EXPECT_EQ(tickFor(1000), 0);
}

TEST_F(Resize, ResizeJustBeforeMidnightResetsJustAfterIt) {
  start(86399.95f);
  platform.resizeControl(200, 100);
  board.resize();
  EXPECT_EQ(tickFor(100), 1) << "the first reading below resizeTime counts as late enough";
  EXPECT_LT(platform.Timer(), 1.0f);
  EXPECT_EQ(tickFor(1000), 0);
}

TEST_F(Resize, ADisabledTimerDeliversNoTicks) {
  start(100.0f);
  ostrel::controlState(board).timer1.Enabled = false;
  platform.resizeControl(200, 100);
  board.resize();
  EXPECT_EQ(tickFor(2000), 0);
  EXPECT_TRUE(board.resizePending());
}

TEST_F(Resize, AStartUpWithoutADeviceNeverResets) {
  auto o = quickOptions(160, 120);
  o.hardwareVertexProcessing = false;
  o.softwareVertexProcessing = false;
  HeadlessPlatform broken(o);
  ctlBoard other(broken);
  EXPECT_EQ(other.init(false, 0, 1, assets.path()), std::optional<bool>(false));
  EXPECT_FALSE(other.Timer1().Enabled);
  broken.resizeControl(200, 100);
  other.resize();
  other.Timer1_Timer();
  EXPECT_FALSE(other.resizePending());
  EXPECT_EQ(other.pic().Width, 160 * 15) << "init fitted pic before the device failed";
  EXPECT_EQ(broken.resetCount(), 0);
  EXPECT_EQ(broken.presentCount(), 0);
}

}  // namespace
