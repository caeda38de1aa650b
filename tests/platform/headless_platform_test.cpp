// The headless host's clocks, random source, captured messages and window before any frame.

#include <gtest/gtest.h>

#include <set>

#include "ostrel/ostrel.h"

namespace {

using ostrel::HeadlessPlatform;

TEST(HeadlessPlatform, ManualClocksMoveTogether) {
  HeadlessPlatform platform;
  platform.useManualClock(1000, 3600.0f);
  EXPECT_EQ(platform.timeGetTime(), 1000);
  EXPECT_FLOAT_EQ(platform.Timer(), 3600.0f);
  platform.advance(250);
  EXPECT_EQ(platform.timeGetTime(), 1250);
  EXPECT_FLOAT_EQ(platform.Timer(), 3600.25f);
  platform.useManualClock(5, 10.0f);
  EXPECT_EQ(platform.timeGetTime(), 5);
  EXPECT_FLOAT_EQ(platform.Timer(), 10.0f);
}

TEST(HeadlessPlatform, TimerWrapsAtMidnightAndMillisecondsWrapAt32Bits) {
  HeadlessPlatform platform;
  platform.useManualClock(2147483000, 86399.9f);
  platform.advance(1000);
  EXPECT_NEAR(platform.Timer(), 0.9f, 0.01f);
  EXPECT_LT(platform.timeGetTime(), 0) << "the counter wraps like a 32-bit one";
  EXPECT_EQ(static_cast<uint32_t>(platform.timeGetTime()), 2147484000u);
}

TEST(HeadlessPlatform, SeededRandomIsRepeatableAndBelowOne) {
  HeadlessPlatform a, b;
  a.seedRandom(7);
  b.seedRandom(7);
  std::set<float> seen;
  for (int i = 0; i < 2000; ++i) {
    float x = a.Rnd();
    ASSERT_EQ(x, b.Rnd());
    ASSERT_GE(x, 0.0f);
    ASSERT_LT(x, 1.0f);
    seen.insert(x);
  }
  EXPECT_GT(seen.size(), 1900u);
}

TEST(HeadlessPlatform, OptionsReachTheControl) {
  ostrel::HeadlessOptions options;
  options.pixelWidth = 300;
  options.pixelHeight = 200;
  options.twipsPerPixelX = 12;
  options.twipsPerPixelY = 20;
  options.appPath = "/somewhere";
  HeadlessPlatform platform(options);
  EXPECT_EQ(platform.controlWidth(), 3600);
  EXPECT_EQ(platform.controlHeight(), 4000);
  EXPECT_EQ(platform.AppPath(), "/somewhere");
  platform.resizeControl(100, 50);
  EXPECT_EQ(platform.controlWidth(), 1200);
  auto metrics = platform.screenMetrics();
  EXPECT_EQ(metrics.widthMm, 508);
  EXPECT_EQ(metrics.heightPixels, 1080);
  platform.MsgBox("one");
  platform.MsgBox("two");
  ASSERT_EQ(platform.messages().size(), 2u);
  EXPECT_EQ(platform.messages()[1], "two");
}

TEST(HeadlessPlatform, WindowShowsTheControlsBackColourBeforeAnyFrame) {
  HeadlessPlatform platform;
  ostrel::ctlBoard board(platform);
  board.ambientBackColor(0x112233);
  EXPECT_EQ(board.BackColor(), 0x332211);
  board.showProgressBar("", false, 0);
  ostrel::Image shown = platform.windowImage();
  ASSERT_EQ(shown.width, 640);
  ASSERT_EQ(shown.height, 480);
  const uint8_t* p = &shown.rgba[(100 * 640 + 200) * 4];
  EXPECT_EQ(p[0], 0x11);
  EXPECT_EQ(p[1], 0x22);
  EXPECT_EQ(p[2], 0x33);
}

}  // namespace
