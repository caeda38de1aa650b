// Move playback seen through afterDraw with the manual clock: each Present moves the clock on by
// frameAdvanceMs, so the frames of a hop and the length of a move follow from the frame time.

#include <gtest/gtest.h>

#include "ostrel/notation.h"
#include "support/LiveBoard.h"

using namespace ostrel;
using namespace ostrel::testing;

namespace {
struct Shot {
  float x, y, height, top, shadowDx, shadowDy, shadowHeight;
};
int lastField(const std::string& move) {
  const std::string m = normalMove(move);
  return tokenValue(getToken(m, "-", static_cast<int16_t>(countTokens(m, "-")), 0));
}
void expectOn(const Shot& s, int field) {
  float x, y;
  fieldToBoard(static_cast<int16_t>(field), x, y);
  EXPECT_EQ(s.x, x);
  EXPECT_EQ(s.y, y);
}
}  // namespace

TEST(Playback, FramesHeightsAndTiming) {
  struct Case {
    const char* move;
    int code, frameMs;
    size_t frames;
    int minMs, maxMs;
  } const cases[] = {
      {"32-28", 2, 16, 9, 144, 144},         // 16 ms frames show 0, 0.128 .. 0.896 of the way
      {"32x28", 5, 16, 9, 144, 144},         // a king, in capture notation
      {"46x37x28x19", 2, 16, 49, 750, 814},  // three hops of two squares
      {"32-28", 2, 300, 2, 600, 600},        // a slow frame ends the hop at once
      {"1-11", 3, 16, 1, 16, 16},            // no distance along x: straight to the landing
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.move);
    LiveBoard b(120, 120, 1);
    ASSERT_TRUE(b.started);
    const int source = tokenValue(getToken(normalMove(c.move), "-", 1, 0));
    b.setPosition({{source, c.code}});
    const Scene& sc = b.board.scene();
    const Scene before = sc;
    const auto slot = static_cast<size_t>(source - 1);
    const bool king = c.code > 3;
    std::vector<Shot> shots;
    b.events.onAfterDraw = [&] {
      const cls3DobjectInfo& d = sc.pieceObject[static_cast<size_t>(sc.fieldPiece[slot])];
      const cls3DobjectInfo& s = sc.shadowObject[static_cast<size_t>(sc.fieldShadow[slot])];
      const float top =
          king ? sc.pieceObject[static_cast<size_t>(sc.fieldKingTop[slot])].posY() : 0;
      shots.push_back(
          {d.posX(), d.posZ(), d.posY(), top, s.posX() - d.posX(), s.posZ() - d.posZ(), s.posY()});
    };
    b.platform.frameAdvanceMs(c.frameMs);
    const int32_t start = b.platform.timeGetTime();
    b.board.showMove(c.move);
    ASSERT_EQ(shots.size(), c.frames);
    EXPECT_GE(b.platform.timeGetTime() - start, c.minMs);
    EXPECT_LE(b.platform.timeGetTime() - start, c.maxMs);
    for (size_t i = 0; i < shots.size(); ++i) {
      // One disc step up while travelling; the shadow stays on the board, shifted out as for
      // one disc more than the piece has.
      const bool lifted = i + 1 < shots.size();
      const int discs = (king ? 2 : 1) + lifted;
      EXPECT_FLOAT_EQ(shots[i].height, lifted ? 0.4365f : 0.2265f);
      if (king) {
        EXPECT_FLOAT_EQ(shots[i].top, lifted ? 0.6465f : 0.4365f);
      }
      EXPECT_FLOAT_EQ(shots[i].shadowHeight, 0.0075f);
      EXPECT_NEAR(shots[i].shadowDx, 0.126 * discs, 1e-6);
      EXPECT_NEAR(shots[i].shadowDy, -0.084 * discs, 1e-6);
    }
    if (c.frames > 1) {
      expectOn(shots[0], source);
    }  // lifted at once, on the spot
    if (c.frames == 9) {
      EXPECT_NEAR(shots[7].x - shots[0].x, 0.896, 1e-5);
    }
    if (c.frames == 49)
      expectOn(shots[16], 37), expectOn(shots[32], 28);  // each hop from its field
    expectOn(shots.back(), lastField(c.move));
    EXPECT_EQ(sc.fieldPiece, before.fieldPiece);
    EXPECT_EQ(sc.fieldShadow, before.fieldShadow);
    EXPECT_EQ(b.board.field(static_cast<int16_t>(source - 1)), c.code);
  }
}

TEST(Playback, LastMoveMarkerAndMovesThatPlayNothing) {
  LiveBoard b(120, 120);
  ASSERT_TRUE(b.started);
  b.board.highlightLastMove(true);
  b.setPosition({{32, 2}});
  b.board.showMove("32-28");
  const clsMesh& marker = b.board.models().markerMesh[16];
  float x, y;
  fieldToBoard(28, x, y);
  EXPECT_TRUE(marker.visible);
  EXPECT_FLOAT_EQ(marker.posX(), x + 0.08f);
  EXPECT_FLOAT_EQ(marker.posY(), 0.228f);
  // A list of more than 15 fields has no slot for the rest and leaves the last move marked.
  b.board.setHLfields("1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18");
  EXPECT_TRUE(marker.visible);
  EXPECT_EQ(marker.posZ(), y);
  // No disc to play: the marker goes and no frame is drawn.
  for (const char* move :
       {"28-23", "", "abc", "32", "32X28", "0-5", "51-46", "-5-10", "32767-1", "1e12-1"}) {
    b.board.setHighLightField(5);
    b.events.lines.clear();
    b.board.showMove(move);
    EXPECT_TRUE(b.events.lines.empty()) << move;
    EXPECT_FALSE(marker.visible) << move;
  }
  // Tokens that are no field take the piece beyond the board's edge on its way.
  for (const char* move : {"32-0", "32-51", "32--5", "32-32767-28"}) {
    b.board.drawBoard();
    b.board.showMove(move);
    fieldToBoard(static_cast<int16_t>(lastField(move)), x, y);
    EXPECT_EQ(b.board.scene().pieceObject[0].posX(), x) << move;
    EXPECT_EQ(b.board.scene().pieceObject[0].posZ(), y) << move;
  }
}
