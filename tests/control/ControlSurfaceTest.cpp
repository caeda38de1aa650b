// The control's defaults and the plain entries around them. (Its field array, with any code and
// indexes beyond it, is the call-order run's invariant.)

#include <gtest/gtest.h>

#include <cmath>

#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"

using namespace ostrel;

TEST(ControlSurface, CreationDefaultsAndPlainEntries) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  EXPECT_EQ(board.rotationHorizontalAxis(), 1.57079506f);
  EXPECT_EQ(board.rotationVerticalAxis(), -3.14159012f);
  EXPECT_EQ(board.viewingDistance(), 15.0f);
  EXPECT_EQ(board.ambientBackColor(), 0x404040);
  EXPECT_EQ(board.BackColor(), 0x404040);
  EXPECT_TRUE(board.userRotationEnabled() && board.userMoveEnabled());
  EXPECT_FALSE(board.highlightLastMove());
  EXPECT_EQ(board.timerAfterLastRender(), 0);
  // From 20: the distance is held to 0.1 .. 800 and keeps its value for no number; an angle keeps
  // its value for anything not finite.
  const float nan = std::nanf(""), inf = INFINITY;
  const std::pair<float, float> distances[] = {
      {0.05f, 0.1f},  {900.0f, 800.0f}, {800.0f, 800.0f}, {0.1f, 0.1f}, {-3.0f, 0.1f},
      {42.5f, 42.5f}, {nan, 20},        {-nan, 20},       {inf, 800},   {-inf, 0.1f}};
  using Setter = void (ctlBoard::*)(float);
  const Setter setters[] = {&ctlBoard::viewingDistance, &ctlBoard::rotationVerticalAxis,
                            &ctlBoard::rotationHorizontalAxis};
  for (auto [given, expected] : distances) {
    for (Setter set : setters) (board.*set)(20), (board.*set)(given);
    EXPECT_EQ(board.viewingDistance(), expected) << given;
    const float angle = std::isfinite(given) ? given : 20;
    EXPECT_EQ(board.rotationVerticalAxis(), angle) << given;
    EXPECT_EQ(board.rotationHorizontalAxis(), angle) << given;
  }
}
