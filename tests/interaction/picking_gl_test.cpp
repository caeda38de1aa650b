// Picking and the drag as the user sees them: a press reports the field whose marker is drawn
// under the pointer, and a piece taken by its drawn pixels follows the pointer to where a piece
// on the destination is drawn, at low, middle and top-down elevations and four azimuths.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "support/LiveBoard.h"

using namespace ostrel;
using namespace ostrel::testing;

namespace {
void look(LiveBoard& b, float elevation, float azimuth, float distance) {
  b.board.rotationHorizontalAxis(elevation);
  b.board.rotationVerticalAxis(azimuth);
  b.board.viewingDistance(distance);
}
int16_t pick(LiveBoard& b, double x, double y) {
  b.down(4, x, y);
  const int16_t field = b.events.field;
  b.up(4, x, y);
  return field;
}
}  // namespace

TEST(Picking, EveryFieldWhereItsMarkerIsDrawn) {
  LiveBoard b;
  ASSERT_TRUE(b.started);
  const float top = b.board.rotationHorizontalAxis(), south = b.board.rotationVerticalAxis();
  // At the default distance the outer fields lie partly beyond the picture; each is picked where
  // it shows. Further away, and from slanted views, all fifty show.
  using View = std::array<float, 3>;  // elevation, azimuth, distance
  for (const auto [elevation, azimuth, distance] :
       {View{top, south, 15}, View{top, south, 20}, View{0.9f, south, 24}, View{0.6f, 0.7f, 27},
        View{1.2f, 2.5f, 22}, View{0.45f, -1.2f, 30}}) {
    SCOPED_TRACE(::testing::Message() << elevation << " " << azimuth << " " << distance);
    look(b, elevation, azimuth, distance);
    int shown = 0;
    for (int f = 1; f <= 50; ++f) {
      const Blob m = b.fieldBlob(f);
      if (m.count == 0) continue;
      ++shown;
      EXPECT_EQ(pick(b, m.x, m.y), f);
    }
    EXPECT_GE(shown, distance == 15 ? 30 : 50);
  }
  // Between two fields of a row lies a light square; the picture's corner lies off the board.
  look(b, top, south, 20);
  const Blob a = b.fieldBlob(22), c = b.fieldBlob(23);
  EXPECT_EQ(pick(b, (a.x + c.x) / 2, (a.y + c.y) / 2), -1);
  EXPECT_EQ(pick(b, 0, 0), -1);
  EXPECT_LT(b.events.boardX, -5);
  EXPECT_GT(b.events.boardY, 5);
}

// At low, middle and top-down elevations from four sides.
TEST(Picking, PieceFollowsThePointerAndTheDropIsAccepted) {
  for (float elevation : {0.4f, 0.9f, 1.57f}) {
    for (float azimuth : {-3.14159f, -1.5708f, 0.0f, 1.5708f}) {
      SCOPED_TRACE(::testing::Message() << elevation << " " << azimuth);
      LiveBoard b;
      ASSERT_TRUE(b.started);
      look(b, elevation, azimuth, 22);
      b.setPosition({{32, 2}, {19, 3}}, {"32-28", "32-27"});
      const Blob source = b.pieceBlob(32), target = b.pieceBlob(28);
      ASSERT_TRUE(source.contains(source.x, source.y));
      const double dx = target.x - source.x, dy = target.y - source.y;
      b.down(1, source.x, source.y);
      ASSERT_TRUE(b.board.gesture().draggingPiece);
      cls3DobjectInfo& lifted = b.state().scene.pieceObject[0];
      for (int i = 1; i <= 4; ++i) {
        const double x = source.x + dx * i / 4, y = source.y + dy * i / 4;
        b.move(1, x, y);
        const Image with = b.frame();
        lifted.visible = false;
        const Blob piece = changed(b.frame(), with);
        lifted.visible = true;
        // Across the picture the lifted piece stays centred on the pointer. It stands a quarter
        // unit above where it was taken, so under a low camera the pointer that took it by its
        // middle comes to lie on its lower edge.
        EXPECT_NEAR(piece.x, x, 2.0) << i;
        EXPECT_TRUE(piece.contains(x, y) || piece.contains(x, y - 2)) << i;
      }
      EXPECT_TRUE(target.contains(source.x + dx, source.y + dy));
      b.up(1, source.x + dx, source.y + dy);
      const Lines& seen = b.events.lines;
      EXPECT_NE(std::find(seen.begin(), seen.end(), "moveDone 0 32-28"), seen.end());
      EXPECT_EQ(b.board.field(27), 2);
    }
  }
}
