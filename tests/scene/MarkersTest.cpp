// Field markers: the last move, the host's field list and the only move of the list.

#include <gtest/gtest.h>

#include "control/ControlAccess.h"
#include "ostrel/HeadlessPlatform.h"
#include "support/SceneChecks.h"

using namespace ostrel;
using namespace ostrel::testing;

namespace {

struct Control {
  HeadlessPlatform platform;
  ctlBoard board{platform};
  std::array<clsMesh, 18>& marker = controlState(board).models.markerMesh;
};

}  // namespace

TEST(Markers, OnlyMoveFieldListAndLastMove) {
  Control c;
  c.board.addMoveList("32x28");
  c.board.drawBoard();  // field 32 is empty: the marker shows all the same
  expectOn(c.marker[1], 32, 0.2275f, 0.08f);
  c.board.addMoveList("33-28");
  c.board.drawBoard();
  EXPECT_FALSE(c.marker[1].visible);
  c.board.setHLfields("7");
  c.board.clearMoveList();
  c.board.drawBoard();
  EXPECT_FALSE(c.marker[1].visible);
  c.board.addMoveList("abc-5");  // a malformed source reads as field 0, beyond the edge
  c.board.drawBoard();
  expectOn(c.marker[1], 0, 0.2275f, 0.08f);

  // The host's field list fills slots 1 to 15 and leaves the hover and last-move markers alone.
  c.marker[0].visible = c.marker[16].visible = true;
  c.board.setHLfields("7|12|7");
  expectOn(c.marker[1], 7, 0.2365f, 0.08f);
  expectOn(c.marker[2], 12, 0.2365f, 0.08f);
  expectOn(c.marker[3], 7, 0.2365f, 0.08f);
  EXPECT_FALSE(c.marker[4].visible);
  c.board.setHLfields("");
  for (int i = 1; i <= 15; ++i) EXPECT_FALSE(c.marker[i].visible) << i;
  EXPECT_TRUE(c.marker[0].visible && c.marker[16].visible);
  c.board.setHLfields("9|");  // the empty token reads as field 0
  expectOn(c.marker[2], 0, 0.2365f, 0.08f);

  // Names past the fifteenth get no marker and leave the last move's and slot 17 alone.
  c.board.highlightLastMove(true);
  c.board.setHighLightField(12);
  c.board.setHLfields("1|2|3|4|5|6|7|8|9|10|11|12|13|14|15|16|17|18|19|20");
  for (int16_t i = 1; i <= 15; ++i) expectOn(c.marker[i], i, 0.2365f, 0.08f);
  expectOn(c.marker[16], 12, 0.228f, 0.08f);
  EXPECT_FALSE(c.marker[17].visible);

  // The last-move marker needs a field and the switch: switched off, it is hidden and nothing
  // is placed.
  c.board.highlightLastMove(false);
  c.board.setHighLightField(28);
  EXPECT_FALSE(c.marker[16].visible);
  EXPECT_EQ(c.marker[16].posZ(), 2.5f) << "still where field 12 put it";
  c.board.highlightLastMove(true);
  c.board.setHighLightField(46);
  expectOn(c.marker[16], 46, 0.228f, 0.08f);
  c.board.setHLfields("5|6");  // independent of the field list
  EXPECT_TRUE(c.marker[16].visible);
  for (int16_t hl : {int16_t{0}, int16_t{-1}}) {
    c.board.setHighLightField(46);
    c.board.setHighLightField(hl);
    EXPECT_FALSE(c.marker[16].visible) << hl;
  }
  c.board.setHighLightField(46);
  c.board.highlightLastMove(false);
  EXPECT_TRUE(c.marker[16].visible);  // switching off hides it only at the next call
  c.board.setHighLightField(12);
  EXPECT_FALSE(c.marker[16].visible);
}
