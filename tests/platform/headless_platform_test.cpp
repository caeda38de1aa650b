// The headless host's clocks, random source and control size. What its window shows before any
// frame is the screen dump's check.

#include <gtest/gtest.h>

#include <set>

#include "ostrel/ostrel.h"

namespace {

using ostrel::HeadlessPlatform;

// How the two clocks move together is the manual-clock case of the hardening suite.
TEST(HeadlessPlatform, ManualClocksWrap) {
  HeadlessPlatform platform;
  // Timer wraps at midnight, the millisecond counter like a 32-bit one.
  platform.useManualClock(2147483000, 86399.9f);
  platform.advance(1000);
  EXPECT_NEAR(platform.Timer(), 0.9f, 0.01f);
  EXPECT_EQ(static_cast<uint32_t>(platform.timeGetTime()), 2147484000u);
}

TEST(HeadlessPlatform, SeededRandomIsRepeatableAndBelowOne) {
  HeadlessPlatform a, b;
  a.seedRandom(7);
  b.seedRandom(7);
  std::set<float> seen;
  for (int i = 0; i < 2000; ++i) {
    const float x = a.Rnd();
    ASSERT_TRUE(x == b.Rnd() && x >= 0.0f && x < 1.0f) << i << ": " << x;
    seen.insert(x);
  }
  EXPECT_GT(seen.size(), 1900u);
}

TEST(HeadlessPlatform, ControlSizeInTwipsOfEachAxis) {
  ostrel::HeadlessOptions options;
  options.pixelWidth = 300;
  options.pixelHeight = 200;
  options.twipsPerPixelX = 12;
  options.twipsPerPixelY = 20;
  HeadlessPlatform platform(options);
  EXPECT_EQ(std::pair(platform.controlWidth(), platform.controlHeight()),
            std::pair(3600.0f, 4000.0f));
}

}  // namespace
