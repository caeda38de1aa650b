// The move list through the control, and the source lookup over it.

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

#include "board/MoveList.h"
#include "control/ControlAccess.h"
#include "ostrel/HeadlessPlatform.h"

using namespace ostrel;

TEST(MoveList, StoresNormalFormsUpTo256) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  const MoveList& list = board.moves();
  for (int i = 0; i < 300; ++i) board.addMoveList(std::to_string(i) + "x9");
  EXPECT_EQ(list.moveCount, 256);
  EXPECT_EQ(list.moveList[0], "0-9");
  EXPECT_EQ(list.moveList[255], "255-9");
  EXPECT_EQ(list.moveList[256], "");

  board.clearMoveList();  // how a list grows again is the call-order run's invariant
  board.addMoveList("1-7");
  EXPECT_EQ(list.moveList[1], "1-9");  // old texts stay until overwritten
}

TEST(MoveList, FindMoveBySourceComparesWholeSourceTokens) {
  // An entry without a "-" has no source text and never matches; "-3-4" has an empty one.
  const std::tuple<std::vector<const char*>, int16_t, bool> cases[] = {
      {{"05-10"}, 5, false},    {{"5-10"}, 5, true},
      {{"5x10x14"}, 5, true},   {{"7-12", "5-14"}, 5, true},
      {{"32-28"}, 3, false},    {{"32-28"}, 320, false},
      {{}, 5, false},           {{"0-5"}, 0, true},
      {{"5", "5X9"}, 5, false}, {{"5", "5-9"}, 5, true},
      {{"-3-4"}, -3, false}};
  for (const auto& [moves, source, found] : cases) {
    MoveList list;
    for (const char* m : moves) board::addMove(list, m);
    EXPECT_EQ(board::findMoveBySource(list, source), found) << moves.size() << " " << source;
  }
  // Moves dropped by a clear are not found, though their text is still in the slot.
  MoveList cleared;
  board::addMove(cleared, "5-10");
  board::clearMoves(cleared);
  EXPECT_FALSE(board::findMoveBySource(cleared, 5));
}
