// drawBoard: slots dealt per colour in field order, king stacks, shadows and the object budgets.

#include <gtest/gtest.h>

#include <random>

#include "control/ControlAccess.h"
#include "ostrel/HeadlessPlatform.h"
#include "support/SceneChecks.h"

using namespace ostrel;
using namespace ostrel::testing;

namespace {

struct Control {
  HeadlessPlatform platform;
  ctlBoard board{platform};
  Scene& scene = controlState(board).scene;
  void set(int from, int to, int16_t code) {
    for (int f = from; f <= to; ++f) board.field(static_cast<int16_t>(f - 1), code);
  }
};

template <size_t N>
int visible(const std::array<cls3DobjectInfo, N>& objects) {
  int n = 0;
  for (size_t i = 0; i + 1 < N; ++i) n += objects[i].visible;  // the last slot is never used
  return n;
}

}  // namespace

// Each position starts from a scene whose every record is on show and whose per-field arrays
// hold stale values: drawBoard puts all of it right, and what it cannot place it drops.
TEST(DrawBoard, PositionsAndBudgets) {
  struct Case {
    std::vector<std::array<int, 3>> pieces;  // fields from, to, and their code
    int discs, shadows;
    std::vector<std::array<int, 4>> fields;  // a field, its fieldPiece, fieldKingTop, fieldShadow
  } const cases[] = {
      {{}, 0, 0, {{1, -1, -1, 77}, {50, -1, -1, 77}}},
      // A white king stacks its two discs; a black man takes black's first slot.
      {{{3, 3, 4}, {46, 46, 3}}, 3, 2, {{3, 0, 1, 0}, {46, 24, -1, 1}}},
      // Black deals from slot 24 from field 1 on, white from slot 0 from field 31 on.
      {{{31, 50, 2}, {1, 20, 3}}, 40, 40, {{1, 24, -1, 0}, {31, 0, -1, 20}, {50, 19, -1, 39}}},
      // Alone on field 50, a piece takes the first slot of its colour.
      {{{50, 50, 3}}, 1, 1, {{50, 24, -1, 0}}},
      // The twenty-fifth white man in field order has a shadow and no disc.
      {{{1, 25, 2}}, 24, 25, {{24, 23, -1, 23}, {25, -1, -1, 24}}},
      // Twelve white kings use all 24 discs: the man after them gets none.
      {{{1, 12, 4}, {13, 13, 2}}, 24, 13, {{12, 22, 23, 11}, {13, -1, -1, 12}}},
      // A king that finds one disc left looks like a man but keeps a king's shadow.
      {{{1, 23, 2}, {24, 24, 4}}, 24, 24, {{24, 23, -1, 23}}},
      // Black kings on 1 to 40: twelve stacks, the rest shadows only.
      {{{1, 40, 5}}, 24, 40, {{12, 46, 47, 11}, {13, -1, -1, 12}, {40, -1, -1, 39}}},
      // Other positive codes get a shadow and no disc, 40 at most; negative codes get nothing.
      {{{1, 45, 1}, {46, 50, -3}}, 0, 40, {{40, -1, -1, 39}, {41, -1, -1, 77}, {50, -1, -1, 77}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(&c - cases);
    Control t;
    for (auto& o : t.scene.pieceObject) o.visible = true;
    for (auto& o : t.scene.shadowObject) o.visible = true;
    t.scene.fieldPiece.fill(99);
    t.scene.fieldKingTop.fill(99);
    t.scene.fieldShadow.fill(77);
    for (const auto& [from, to, code] : c.pieces) t.set(from, to, static_cast<int16_t>(code));
    t.board.drawBoard();
    EXPECT_EQ(visible(t.scene.pieceObject), c.discs);
    EXPECT_EQ(visible(t.scene.shadowObject), c.shadows);
    for (const auto& [f, piece, top, shadow] : c.fields) {
      EXPECT_EQ(t.scene.fieldPiece[f - 1], piece) << f;
      EXPECT_EQ(t.scene.fieldKingTop[f - 1], top) << f;
      EXPECT_EQ(t.scene.fieldShadow[f - 1], shadow) << f;
    }
    int slots = 0;  // every disc on show stands on its field, and no field keeps a stale slot
    for (int f = 1; f <= 50; ++f) {
      const int piece = t.scene.fieldPiece[f - 1], top = t.scene.fieldKingTop[f - 1];
      ASSERT_TRUE(piece < 48 && top < 48) << f;
      slots += (piece != -1) + (top != -1);
      if (piece != -1) expectOn(t.scene.pieceObject[piece], f, 0.2265f);
      if (top != -1) expectOn(t.scene.pieceObject[top], f, 0.4365f);
      // The shadow's offsets are worked in double and rounded once.
      const int code = t.board.field(static_cast<int16_t>(f - 1)),
                shadow = t.scene.fieldShadow[f - 1];
      if (code <= 0 || shadow == 77) continue;
      const cls3DobjectInfo& s = t.scene.shadowObject[shadow];
      const double k = code == 4 || code == 5 ? 2 : 1;
      float x, y;
      fieldToBoard(static_cast<int16_t>(f), x, y);
      EXPECT_EQ(s.posX(), static_cast<float>(x + 0.6 * (0.21 * k))) << f;
      EXPECT_EQ(s.posY(), 0.0075f) << f;
      EXPECT_EQ(s.posZ(), static_cast<float>(y + -0.4 * (0.21 * k))) << f;
    }
    EXPECT_EQ(slots, c.discs);
  }
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
      EXPECT_TRUE(top == -1 || top == piece + 1) << f;
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
