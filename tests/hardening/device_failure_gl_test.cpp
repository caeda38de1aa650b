// Device failures as a host meets them: a type it can catch by name, a frame that fails half-way
// leaves the device usable, and the manual clock moves with every frame asked for, so playback
// ends whether or not anything can be drawn.

#include <gtest/gtest.h>

#include <type_traits>

#include "ostrel/ostrel.h"
#include "support/EventRecorder.h"
#include "support/HostilePlatform.h"
#include "support/Sized.h"

namespace ostrel::testing {
namespace {

static_assert(std::is_base_of_v<std::runtime_error, DeviceError>);

constexpr int32_t kDeviceLost = static_cast<int32_t>(0x88760868u);

TEST(DeviceFailure, DeferredResetOnALostDeviceReachesTheHostByName) {
  HostilePlatform platform(sized(80, 60));
  platform.useManualClock(1000, 100);
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 0), true);
  board.resize();
  platform.loseDevice();
  platform.advance(600);

  int32_t number = 0;
  try {
    board.Timer1_Timer();
    ADD_FAILURE() << "the Reset of a lost device did not fail";
  } catch (const DeviceError& e) {
    number = e.number();
    EXPECT_STRNE(e.what(), "");
  }
  EXPECT_EQ(number, kDeviceLost);
  EXPECT_FALSE(board.resizePending());

  // Once the device can be reset, the next frame resets it and draws.
  platform.makeDeviceResettable();
  const int presents = platform.presentCount(), resets = platform.resetCount();
  EXPECT_NO_THROW(board.render());
  EXPECT_EQ(platform.presentCount(), presents + 1);
  EXPECT_EQ(platform.resetCount(), resets + 1);
}

// The context goes away after `granted` successful requests within a frame: before the scene
// (0), at the first draw inside it (1), or further in.
TEST(DeviceFailure, FrameThatFailsPartWayLeavesTheDeviceUsable) {
  for (int granted : {0, 1, 2, 6}) {
    SCOPED_TRACE(granted);
    HostilePlatform platform(sized(80, 60));
    platform.useManualClock(1000, 100);
    ctlBoard board(platform);
    EventRecorder events(board);
    ASSERT_EQ(board.init(false, 0, 1), true);
    board.field(31, 2);
    board.field(18, 5);
    board.drawBoard();
    board.render();
    const Image good = platform.windowImage();

    platform.loseContextAfter(granted);
    events.lines.clear();
    EXPECT_THROW(board.render(), DeviceError);
    EXPECT_TRUE(events.lines.empty());

    platform.contextLost = false;
    const int presents = platform.presentCount();
    ASSERT_NO_THROW(board.render());
    EXPECT_EQ(platform.presentCount(), presents + 1);
    EXPECT_EQ(events.lines, Lines{"afterDraw"});
    EXPECT_EQ(platform.windowImage().rgba, good.rgba);

    platform.makeDeviceResettable();
    const int resets = platform.resetCount();
    ASSERT_NO_THROW(board.render());
    EXPECT_EQ(platform.resetCount(), resets + 1);
    EXPECT_EQ(platform.windowImage().rgba, good.rgba);
  }
}

TEST(ManualClock, EveryFrameAskedForMovesItSoPlaybackEnds) {
  struct Case {
    const char* name;
    bool start, lose;
    int32_t step;
  };
  for (const Case& c : {Case{"before init", false, false, 16}, Case{"own step", false, false, 5},
                        Case{"drawn", true, false, 16}, Case{"lost device", true, true, 16}}) {
    SCOPED_TRACE(c.name);
    HostilePlatform platform(sized(80, 60));
    ctlBoard board(platform);
    if (c.start) {
      ASSERT_EQ(board.init(false, 0, 0), true);
    }
    board.field(31, 2);
    board.drawBoard();
    if (c.lose) platform.loseDevice();
    platform.useManualClock(5000, 200);
    platform.frameAdvanceMs(c.step);
    board.render();
    board.Paint();
    EXPECT_EQ(platform.timeGetTime(), 5000 + 2 * c.step);
    EXPECT_FLOAT_EQ(platform.Timer(), 200 + 2 * c.step / 1000.0f);

    const int presents = platform.presentCount();
    board.showMove("32-28");
    EXPECT_FALSE(platform.stuck);
    if (!c.start || c.lose) {
      EXPECT_EQ(platform.presentCount(), presents);
    }
    EXPECT_EQ(board.field(31), 2);  // the control never moves a code itself
    EXPECT_EQ(board.field(27), 0);
  }
}

}  // namespace
}  // namespace ostrel::testing
