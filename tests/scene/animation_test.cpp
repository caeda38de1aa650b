// The falling-pieces animation: the shuffle, and heights and spreads at the stages of the fall.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/notation.h"
#include "support/SceneChecks.h"

using namespace ostrel;
using namespace ostrel::testing;

TEST(Animation, ShuffleHeightsAndSpreadsThroughTheFall) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  const Scene& sc = board.scene();
  board.stopAnimation();  // before any run: the saved arrays hold zeros
  EXPECT_EQ(sc.fieldPiece[0], 0);
  board.animation(1);  // no shuffle yet: no field to place
  EXPECT_FALSE(sc.pieceObject[0].visible);
  for (int16_t i = 0; i < 50; ++i) board.field(i, i < 24 ? 3 : i >= 26 ? 2 : 0);
  board.drawBoard();
  const Scene rest = sc;
  // The shuffle is a permutation of the fifty fields, the same for the same random sequence.
  platform.seedRandom(7);
  board.initAnimation();
  const auto first = sc.shuffleOrder;
  std::set<int> fields(first.begin() + 1, first.begin() + 51);
  EXPECT_TRUE(fields.size() == 50 && *fields.begin() == 1 && *fields.rbegin() == 50);
  platform.seedRandom(7);
  board.initAnimation();
  EXPECT_EQ(sc.shuffleOrder, first);
  platform.seedRandom(8);
  board.initAnimation();
  EXPECT_NE(sc.shuffleOrder, first);
  // In falling order each piece takes the next disc of its colour; its count is its place.
  std::vector<size_t> disc;
  std::vector<int> field, code;
  for (int i = 1, w = 0, b = 0; i <= 50; ++i) {
    const int f = sc.shuffleOrder[static_cast<size_t>(i)],
              k = board.field(static_cast<int16_t>(f - 1));
    if (k != 0) field.push_back(f), code.push_back(k), disc.push_back(k == 2 ? w++ : 24 + b++);
  }
  const auto at = [&](size_t c) -> const cls3DobjectInfo& { return sc.pieceObject[disc[c]]; };
  board.animation(-1);
  EXPECT_FLOAT_EQ(at(0).posY(), 24.2265f);
  EXPECT_EQ(at(0).posX(), 0.0f);
  EXPECT_FLOAT_EQ(at(40).posY(), 18.2265f);
  board.animation(0);
  EXPECT_FLOAT_EQ(at(0).posY(), 12.2265f);
  EXPECT_EQ(at(0).posZ(), 0.0f);
  board.animation(std::nan(""));
  EXPECT_FLOAT_EQ(at(47).posY(), 24.2265f);
  // At progress 0.85 a white piece is 1/16 of its way out, a black one 1/4.
  for (int colour : {2, 3}) {
    const auto c = static_cast<size_t>(std::find(code.begin(), code.end(), colour) - code.begin());
    board.animation((3.4 - static_cast<double>(c) / 40) / 2 - 1);
    float x, y;
    fieldToBoard(static_cast<int16_t>(field[c]), x, y);
    const double share = code[c] == 2 ? 1.0 / 16 : 1.0 / 4;
    EXPECT_NEAR(at(c).posX(), x * share, 1e-5);
    EXPECT_NEAR(at(c).posZ(), y * share, 1e-5);
  }
  board.animation(1);
  for (size_t c = 0; c < 48; ++c) expectOn(at(c), field[c], 0.2265f);
  for (size_t i = 0; i < 50; ++i) EXPECT_EQ(sc.fieldPiece[i], -1);
  for (size_t i = 0; i < 40; ++i) EXPECT_FALSE(sc.shadowObject[i].visible);
  board.stopAnimation();
  EXPECT_EQ(sc.fieldPiece, rest.fieldPiece);
  EXPECT_EQ(sc.fieldKingTop, rest.fieldKingTop);
}
