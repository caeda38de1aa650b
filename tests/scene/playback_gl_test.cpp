// Move playback seen through afterDraw with the manual clock: each Present moves the clock on by
// frameAdvanceMs, so the frames of a hop and the length of a move follow from the frame time.

#include <gtest/gtest.h>

#include "ostrel/notation.h"
#include "support/LiveBoard.h"
#include "support/SceneChecks.h"

using namespace ostrel;
using namespace ostrel::testing;

TEST(Playback, FramesHeightsAndTiming) {
  struct Case {
    const char* move;
    int code, frameMs, minMs, maxMs;
    std::vector<std::pair<size_t, int>> stops;  // a frame and the field it shows the piece on
  } const cases[] = {
      // 16 ms frames show 0, 0.128 .. 0.896 of the way, then the landing.
      {"32-28", 2, 16, 144, 144, {{0, 32}, {8, 28}}},
      {"32x28", 5, 16, 144, 144, {{0, 32}, {8, 28}}},  // a king, in capture notation
      {"46x37x28x19", 2, 16, 750, 814, {{0, 46}, {16, 37}, {32, 28}, {48, 19}}},
      {"32-28", 2, 300, 600, 600, {{0, 32}, {1, 28}}},  // a slow frame ends the hop at once
      {"1-11", 3, 16, 16, 16, {{0, 11}}},  // no distance along x: straight to the landing
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.move);
    LiveBoard b(120, 120, 1);
    ASSERT_TRUE(b.started);
    const int source = tokenValue(getToken(normalMove(c.move), "-", 1, 0));
    b.setPosition({{source, c.code}});
    const Scene before = b.board.scene();
    const auto slot = static_cast<size_t>(source - 1);
    const size_t piece = static_cast<size_t>(before.fieldPiece[slot]),
                 shadow = static_cast<size_t>(before.fieldShadow[slot]);
    const bool king = c.code > 3;
    std::vector<Scene> shots;
    b.events.onAfterDraw = [&] { shots.push_back(b.board.scene()); };
    b.platform.frameAdvanceMs(c.frameMs);
    const int32_t start = b.platform.timeGetTime();
    b.board.showMove(c.move);
    const int32_t took = b.platform.timeGetTime() - start;
    EXPECT_TRUE(took >= c.minMs && took <= c.maxMs) << took;
    ASSERT_EQ(shots.size(), c.stops.back().first + 1);
    for (size_t i = 0; i < shots.size(); ++i) {
      // One disc step up while travelling; the shadow stays on the board, shifted out as for
      // one disc more than the piece has.
      const bool lifted = i + 1 < shots.size();
      const int discs = (king ? 2 : 1) + lifted;
      const cls3DobjectInfo &d = shots[i].pieceObject[piece], &s = shots[i].shadowObject[shadow];
      EXPECT_FLOAT_EQ(d.posY(), lifted ? 0.4365f : 0.2265f);
      EXPECT_FLOAT_EQ(king ? shots[i].pieceObject[piece + 1].posY() - d.posY() : 0.21f, 0.21f);
      EXPECT_FLOAT_EQ(s.posY(), 0.0075f);
      EXPECT_NEAR(s.posX() - d.posX(), 0.126 * discs, 1e-6);
      EXPECT_NEAR(s.posZ() - d.posZ(), -0.084 * discs, 1e-6);
    }
    for (const auto& [frame, field] : c.stops) {
      float x, y;
      fieldToBoard(static_cast<int16_t>(field), x, y);
      EXPECT_EQ(shots[frame].pieceObject[piece].posX(), x) << frame;
      EXPECT_EQ(shots[frame].pieceObject[piece].posZ(), y) << frame;
    }
    if (shots.size() == 9) {  // one square at 16 ms frames: 0.128 of the way a frame
      EXPECT_NEAR(shots[7].pieceObject[piece].posX() - shots[0].pieceObject[piece].posX(), 0.896,
                  1e-5);
    }
    EXPECT_EQ(b.board.scene().fieldPiece, before.fieldPiece);
    EXPECT_EQ(b.board.scene().fieldShadow, before.fieldShadow);
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
  expectOn(marker, 28, 0.228f, 0.08f);
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
  for (const auto& [move, last] :
       {std::pair{"32-0", 0}, {"32-51", 51}, {"32--5", 5}, {"32-32767-28", 28}}) {
    b.board.drawBoard();
    b.board.showMove(move);
    float x, y;
    fieldToBoard(static_cast<int16_t>(last), x, y);
    EXPECT_EQ(b.board.scene().pieceObject[0].posX(), x) << move;
    EXPECT_EQ(b.board.scene().pieceObject[0].posZ(), y) << move;
  }
}
