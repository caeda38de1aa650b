// The control's defaults, its field array and the plain entries around them.

#include <gtest/gtest.h>

#include <cmath>

#include "control/ControlAccess.h"
#include "ostrel/HeadlessPlatform.h"

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
  board.ambientBackColor(0x123456);
  EXPECT_EQ(board.BackColor(), 0x563412);
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

TEST(ControlSurface, FieldStoresAnyCodeAndIgnoresBadIndexes) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  for (auto [slot, code] :
       {std::pair<int16_t, int16_t>{0, 2}, {49, 5}, {50, 3}, {7, -9}, {8, 1234}}) {
    board.field(slot, code);
    EXPECT_EQ(board.field(slot), code) << slot;
  }
  const auto before = controlState(board).fieldCode;
  for (int16_t bad : {int16_t{-1}, int16_t{51}, int16_t{-32768}, int16_t{32767}}) {
    board.field(bad, 4);
    EXPECT_EQ(board.field(bad), 0);
  }
  EXPECT_EQ(controlState(board).fieldCode, before);
  // Slot 50 belongs to no field: drawBoard places nothing for it.
  board.drawBoard();
  int visible = 0;
  for (const auto& disc : board.scene().pieceObject) visible += disc.visible;
  EXPECT_EQ(visible, 1 + 2);  // the man on field 1 and the king on field 50
}
