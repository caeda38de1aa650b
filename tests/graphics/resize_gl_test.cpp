// resize and the tick of Timer1: a stretched frame at once, one device Reset about half a second
// after the last resize, also across midnight.

#include "StartupFixture.h"
#include "graphics/d3d8.h"

namespace {

using namespace startup_test;

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
