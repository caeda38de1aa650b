// Values that are no number, or infinite, given to the view, the animation, the progress bar and
// the mouse: a limited value keeps its old value for NaN, a number read from a value reads NaN and
// infinity as 0, and neither the picture nor a reported board point is ever lost.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/LiveBoard.h"

namespace ostrel::testing {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

TEST(NonFinite, ViewPropertiesKeepADefinedValue) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  // From 20: no number keeps the value; the distance is held to 0.1 .. 800, an angle keeps 20.
  using Setter = void (ctlBoard::*)(float);
  const Setter setters[] = {&ctlBoard::viewingDistance, &ctlBoard::rotationVerticalAxis,
                            &ctlBoard::rotationHorizontalAxis};
  const std::pair<float, float> distances[] = {{kNaN, 20}, {-kNaN, 20}, {kInf, 800}, {-kInf, 0.1f}};
  for (auto [given, expected] : distances) {
    for (Setter set : setters) (board.*set)(20), (board.*set)(given);
    EXPECT_EQ(board.viewingDistance(), expected) << given;
    EXPECT_EQ(board.rotationVerticalAxis(), 20) << given;
    EXPECT_EQ(board.rotationHorizontalAxis(), 20) << given;
  }
}

// The picture of a NaN distance was the bare back colour; it stays the board.
TEST(NonFinite, PictureSurvivesANaNDistance) {
  LiveBoard live(96, 96);
  ASSERT_TRUE(live.started);
  const Image before = live.frame();
  live.board.viewingDistance(kNaN);
  live.board.rotationHorizontalAxis(kNaN);
  const Image after = live.frame();
  EXPECT_EQ(changed(before, after).count, 0);
}

TEST(NonFinite, AnimationStepPlacesEveryDiscOnAFinitePoint) {
  LiveBoard live(64, 64);
  live.setPosition({{1, 3}, {2, 5}, {46, 2}, {50, 4}});
  live.board.initAnimation();
  for (double t :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity(), 1e308, -1e308}) {
    SCOPED_TRACE(t);
    live.board.animation(t);
    for (const cls3DobjectInfo& disc : live.board.scene().pieceObject) {
      EXPECT_TRUE(std::isfinite(disc.posX()) && std::isfinite(disc.posY()) &&
                  std::isfinite(disc.posZ()));
    }
  }
  live.board.stopAnimation();
}

// A pointer that is no number reads as 0: the events report a real board point, and a rotation
// through such a pointer keeps a view.
TEST(NonFinite, MouseCoordinatesReadAsZero) {
  LiveBoard live(96, 96);
  ASSERT_TRUE(live.started);
  struct Case {
    const char* name;
    float x, y;
  };
  for (const Case& c :
       {Case{"NaN", kNaN, kNaN}, Case{"inf", kInf, -kInf}, Case{"NaN and inf", kNaN, kInf}}) {
    SCOPED_TRACE(c.name);
    live.platform.advance(20);
    live.board.pic_MouseDown(1, 0, 0, 0);
    live.board.pic_MouseUp(1, 0, 0, 0);
    const float cornerX = live.events.boardX, cornerY = live.events.boardY;
    ASSERT_TRUE(std::isfinite(cornerX) && std::isfinite(cornerY));
    for (auto event :
         {&ctlBoard::pic_MouseDown, &ctlBoard::pic_MouseMove, &ctlBoard::pic_MouseUp}) {
      live.platform.advance(20);
      (live.board.*event)(1, 0, c.x, c.y);
      EXPECT_EQ(live.events.boardX, cornerX);
      EXPECT_EQ(live.events.boardY, cornerY);
    }
    live.platform.advance(20);
    live.board.pic_MouseDown(2, 0, 300, 300);
    live.platform.advance(20);
    live.board.pic_MouseMove(2, 0, c.x, c.y);
    live.platform.advance(20);
    live.board.pic_MouseMove(2, 0, 600, 600);
    live.board.pic_MouseUp(2, 0, 600, 600);
    EXPECT_TRUE(std::isfinite(live.board.rotationVerticalAxis()));
    EXPECT_TRUE(std::isfinite(live.board.rotationHorizontalAxis()));
    EXPECT_TRUE(std::isfinite(live.events.boardX) && std::isfinite(live.events.boardY));
  }
}

}  // namespace
}  // namespace ostrel::testing
