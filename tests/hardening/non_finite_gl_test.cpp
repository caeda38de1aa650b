// Values that are no number, or infinite, given to the view and the mouse: neither the picture nor
// a reported board point is ever lost. (What the properties keep is the control suite's check, the
// animation's the scene suite's.)

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/LiveBoard.h"

namespace ostrel::testing {
namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInf = std::numeric_limits<float>::infinity();

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

// A pointer that is no number reads as 0: the events report a real board point, and a rotation
// through such a pointer keeps a view.
TEST(NonFinite, MouseCoordinatesReadAsZero) {
  LiveBoard live(96, 96);
  ASSERT_TRUE(live.started);
  using Event = void (ctlBoard::*)(int16_t, int16_t, float, float);
  const auto at = [&](Event event, int16_t button, float x, float y) {
    live.platform.advance(20);
    (live.board.*event)(button, 0, x, y);
  };
  for (auto [x, y] : {std::pair{kNaN, kNaN}, {kInf, -kInf}, {kNaN, kInf}}) {
    at(&ctlBoard::pic_MouseDown, 1, 0, 0);  // the corner under the camera the last case left
    const float cornerX = live.events.boardX, cornerY = live.events.boardY;
    ASSERT_TRUE(std::isfinite(cornerX) && std::isfinite(cornerY));
    for (Event event :
         {&ctlBoard::pic_MouseDown, &ctlBoard::pic_MouseMove, &ctlBoard::pic_MouseUp}) {
      at(event, 1, x, y);
      EXPECT_EQ(std::pair(live.events.boardX, live.events.boardY), std::pair(cornerX, cornerY))
          << x << " " << y;
    }
    at(&ctlBoard::pic_MouseDown, 2, 300, 300);
    at(&ctlBoard::pic_MouseMove, 2, x, y);
    at(&ctlBoard::pic_MouseMove, 2, 600, 600);
    at(&ctlBoard::pic_MouseUp, 2, 600, 600);
    EXPECT_TRUE(std::isfinite(live.board.rotationVerticalAxis()));
    EXPECT_TRUE(std::isfinite(live.board.rotationHorizontalAxis()));
    EXPECT_TRUE(std::isfinite(live.events.boardX) && std::isfinite(live.events.boardY));
  }
}

}  // namespace
}  // namespace ostrel::testing
