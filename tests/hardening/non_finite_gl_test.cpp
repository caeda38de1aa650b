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
  struct Case {
    const char* name;
    void (ctlBoard::*set)(float);
    float (ctlBoard::*get)() const;
    float given, expected;  // the value before is 20
  };
  const Case cases[] = {
      {"distance NaN", &ctlBoard::viewingDistance, &ctlBoard::viewingDistance, kNaN, 20},
      {"distance -NaN", &ctlBoard::viewingDistance, &ctlBoard::viewingDistance, -kNaN, 20},
      {"distance +inf", &ctlBoard::viewingDistance, &ctlBoard::viewingDistance, kInf, 800},
      {"distance -inf", &ctlBoard::viewingDistance, &ctlBoard::viewingDistance, -kInf, 0.1f},
      {"azimuth NaN", &ctlBoard::rotationVerticalAxis, &ctlBoard::rotationVerticalAxis, kNaN, 20},
      {"azimuth +inf", &ctlBoard::rotationVerticalAxis, &ctlBoard::rotationVerticalAxis, kInf, 20},
      {"elevation NaN", &ctlBoard::rotationHorizontalAxis, &ctlBoard::rotationHorizontalAxis, kNaN,
       20},
      {"elevation -inf", &ctlBoard::rotationHorizontalAxis, &ctlBoard::rotationHorizontalAxis,
       -kInf, 20},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    (board.*c.set)(20);
    (board.*c.set)(c.given);
    EXPECT_EQ((board.*c.get)(), c.expected);
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

TEST(NonFinite, ProgressBarReadsNoNumberAsZero) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  struct Case {
    const char* name;
    Variant percentage;
  };
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double inf = std::numeric_limits<double>::infinity();
  const Case cases[] = {
      {"NaN", nan}, {"inf", inf}, {"-inf", -inf}, {"text nan", "nan"}, {"text inf", "inf"}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    board.showProgressBar("x", true, 50);
    ASSERT_GT(board.lblProgress().Width, 0);
    board.showProgressBar("x", true, c.percentage);
    EXPECT_EQ(board.lblProgress().Width, 0);
  }
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
