// drawBoard: slots dealt per colour in field order, king stacks, shadows and the object budgets.

#include <gtest/gtest.h>

#include <random>

#include "control/ControlAccess.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/notation.h"

using namespace ostrel;

namespace {

struct Control {
  HeadlessPlatform platform;
  ctlBoard board{platform};
  const Scene& scene = board.scene();
  void set(int from, int to, int16_t code) {
    for (int f = from; f <= to; ++f) board.field(static_cast<int16_t>(f - 1), code);
  }
  int visibleDiscs() const {
    int n = 0;
    for (int i = 0; i < 48; ++i) n += scene.pieceObject[i].visible;
    return n;
  }
  int visibleShadows() const {
    int n = 0;
    for (int i = 0; i < 40; ++i) n += scene.shadowObject[i].visible;
    return n;
  }
};

void expectAt(const cls3DobjectInfo& o, float x, float height, float y) {
  EXPECT_TRUE(o.visible);
  EXPECT_FLOAT_EQ(o.posX(), x);
  EXPECT_FLOAT_EQ(o.posY(), height);
  EXPECT_FLOAT_EQ(o.posZ(), y);
}

}  // namespace

TEST(DrawBoard, EmptyBoardHidesEverything) {
  Control c;
  ControlState& s = controlState(c.board);
  for (auto& o : s.scene.pieceObject) o.visible = true;
  for (auto& o : s.scene.shadowObject) o.visible = true;
  c.board.drawBoard();
  EXPECT_EQ(c.visibleDiscs(), 0);
  EXPECT_EQ(c.visibleShadows(), 0);
  for (int i = 0; i < 50; ++i) {
    EXPECT_EQ(c.scene.fieldPiece[i], -1);
    EXPECT_EQ(c.scene.fieldKingTop[i], -1);
  }
}

TEST(DrawBoard, SlotsAreDealtPerColourInFieldOrder) {
  Control c;
  c.set(31, 50, 2);
  c.set(1, 20, 3);
  c.board.drawBoard();
  for (int f = 1; f <= 20; ++f) {
    EXPECT_EQ(c.scene.fieldPiece[f - 1], 24 + f - 1);
    EXPECT_EQ(c.scene.fieldShadow[f - 1], f - 1);
  }
  for (int f = 31; f <= 50; ++f) {
    EXPECT_EQ(c.scene.fieldPiece[f - 1], f - 31);
    EXPECT_EQ(c.scene.fieldShadow[f - 1], 20 + f - 31);
    float x, y;
    fieldToBoard(static_cast<int16_t>(f), x, y);
    expectAt(c.scene.pieceObject[f - 31], x, 0.2265f, y);
  }
  EXPECT_EQ(c.visibleDiscs(), 40);
  EXPECT_EQ(c.visibleShadows(), 40);

  // Alone on field 50, a piece takes the first slot of its colour.
  Control lone;
  lone.set(50, 50, 3);
  lone.board.drawBoard();
  EXPECT_EQ(lone.scene.fieldPiece[49], 24);
  EXPECT_EQ(lone.scene.fieldShadow[49], 0);
}

TEST(DrawBoard, KingStacksAndShadowOffsets) {
  Control c;
  c.set(3, 3, 4);
  c.set(46, 46, 3);
  c.board.drawBoard();
  EXPECT_EQ(c.scene.fieldPiece[2], 0);
  EXPECT_EQ(c.scene.fieldKingTop[2], 1);
  expectAt(c.scene.pieceObject[0], 0.43f, 0.2265f, 4.5f);
  expectAt(c.scene.pieceObject[1], 0.43f, 0.4365f, 4.5f);
  expectAt(c.scene.shadowObject[0], 0.43f + 0.252f, 0.0075f, 4.5f - 0.168f);
  EXPECT_EQ(c.scene.fieldKingTop[45], -1);
  expectAt(c.scene.pieceObject[24], -4.57f, 0.2265f, -4.5f);
  expectAt(c.scene.shadowObject[1], -4.444f, 0.0075f, -4.584f);

  // The offsets are worked in double and rounded once, for every field and both stack heights.
  for (int16_t code : {int16_t{3}, int16_t{5}}) {
    Control all;
    all.set(1, 40, code);
    all.board.drawBoard();
    const double k = code == 5 ? 2 : 1;
    for (int f = 1; f <= 40; ++f) {
      float x, y;
      fieldToBoard(static_cast<int16_t>(f), x, y);
      const cls3DobjectInfo& shadow = all.scene.shadowObject[f - 1];
      EXPECT_EQ(shadow.posX(), static_cast<float>(x + 0.6 * (0.21 * k))) << f;
      EXPECT_EQ(shadow.posY(), 0.0075f) << f;
      EXPECT_EQ(shadow.posZ(), static_cast<float>(y + -0.4 * (0.21 * k))) << f;
    }
  }
}

TEST(DrawBoard, BudgetsDropTheLaterPieces) {
  Control men;  // 25 white men: the last in field order has a shadow and no disc
  men.set(1, 25, 2);
  men.board.drawBoard();
  EXPECT_EQ(men.visibleDiscs(), 24);
  EXPECT_EQ(men.scene.fieldPiece[23], 23);
  EXPECT_EQ(men.scene.fieldPiece[24], -1);
  EXPECT_EQ(men.scene.fieldShadow[24], 24);
  EXPECT_TRUE(men.scene.shadowObject[24].visible);

  Control kings;  // 12 white kings use all 24 discs; the man after them gets none
  kings.set(1, 12, 4);
  kings.set(13, 13, 2);
  kings.board.drawBoard();
  EXPECT_EQ(kings.scene.fieldKingTop[11], 23);
  EXPECT_EQ(kings.scene.fieldPiece[12], -1);
  EXPECT_EQ(kings.visibleShadows(), 13);

  Control last;  // a king finding one disc left looks like a man but keeps a king's shadow
  last.set(1, 23, 2);
  last.set(24, 24, 4);
  last.board.drawBoard();
  EXPECT_EQ(last.scene.fieldPiece[23], 23);
  EXPECT_EQ(last.scene.fieldKingTop[23], -1);
  EXPECT_FALSE(last.scene.pieceObject[24].visible);
  float x, y;
  fieldToBoard(24, x, y);
  EXPECT_FLOAT_EQ(last.scene.shadowObject[23].posX(), x + 0.252f);

  Control shadows;  // other positive codes: a shadow and no disc; negative codes: nothing
  ControlState& s = controlState(shadows.board);
  s.scene.fieldShadow.fill(77);
  shadows.set(1, 45, 1);
  shadows.set(46, 50, -3);
  shadows.board.drawBoard();
  EXPECT_EQ(shadows.visibleDiscs(), 0);
  EXPECT_EQ(shadows.visibleShadows(), 40);
  EXPECT_EQ(shadows.scene.fieldShadow[39], 39);
  for (int i = 40; i < 50; ++i) EXPECT_EQ(shadows.scene.fieldShadow[i], 77) << i;
}

TEST(DrawBoard, RandomPositionsKeepTheSlotInvariants) {
  std::mt19937 rng(4141);
  std::uniform_int_distribution<int> code(-1, 6);
  for (int round = 0; round < 200; ++round) {
    Control c;
    for (int16_t i = 0; i < 51; ++i) c.board.field(i, static_cast<int16_t>(code(rng)));
    c.board.drawBoard();
    const Scene first = c.scene;
    c.board.drawBoard();
    int white = 0, black = 24;
    for (int f = 1; f <= 50; ++f) {
      const int piece = c.scene.fieldPiece[f - 1], top = c.scene.fieldKingTop[f - 1];
      EXPECT_EQ(first.fieldPiece[f - 1], piece);
      if (top != -1) {
        EXPECT_EQ(top, piece + 1);
      }
      if (piece == -1) continue;
      int& next = piece < 24 ? white : black;
      ASSERT_EQ(piece, next) << "slots are dealt with no gaps";
      next = (top == -1 ? piece : top) + 1;
    }
    for (int i = 0; i < 48; ++i) {
      EXPECT_EQ(c.scene.pieceObject[i].visible, i < white || (i >= 24 && i < black)) << i;
      EXPECT_EQ(c.scene.pieceObject[i].posX(), first.pieceObject[i].posX());
    }
  }
}
