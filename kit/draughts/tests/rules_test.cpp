// The rules: perft counts against the published tables, the legal moves of positions that show
// each rule, and the positions after a move.

#include <gtest/gtest.h>

#include <algorithm>

#include "Geometry.h"
#include "ostrel/draughts.h"

namespace ostrel::draughts {
namespace {

Position fen(const char* text) {
  const std::optional<Position> position = parseFen(text);
  EXPECT_TRUE(position.has_value()) << text;
  return position.value_or(Position());
}

std::vector<std::string> paths(const Position& position) {
  std::vector<std::string> texts;
  for (const Move& move : legalMoves(position)) texts.push_back(pathText(move));
  std::sort(texts.begin(), texts.end());
  return texts;
}

TEST(Perft, StartPositionToDepthSix) {
  const uint64_t expected[] = {1, 9, 81, 658, 4265, 27117, 167140};
  for (int depth = 0; depth <= 6; ++depth) {
    EXPECT_EQ(perft(Position::start(), depth), expected[depth]) << "depth " << depth;
  }
}

TEST(Perft, MenAboutToCrownToDepthFive) {
  const Position position = fen("W:W6,7,8,9,10:B41,42,43,44,45");
  const uint64_t expected[] = {9, 81, 795, 7578, 86351};
  for (int depth = 1; depth <= 5; ++depth) {
    EXPECT_EQ(perft(position, depth), expected[depth - 1]) << "depth " << depth;
  }
}

// Two kings that can take fourteen pieces by 436 routes: the routes that take the same pieces
// to the same field are one move.
TEST(Captures, RoutesToTheSameCaptureAreOneMove) {
  const Position position = fen("B:BK17,K24:W6,9,10,11,20,21,22,23,30,K31,33,37,41,42,43,44,46");
  const std::vector<Move> moves = legalMoves(position);
  EXPECT_EQ(moves.size(), 14u);
  EXPECT_EQ(detail::captureRoutes(position).size(), 436u);
  for (const Move& move : moves) {
    EXPECT_EQ(move.takenCount, 14);
    EXPECT_EQ(move.from(), 24);
  }
  for (size_t i = 0; i < moves.size(); ++i) {
    for (size_t j = i + 1; j < moves.size(); ++j) EXPECT_FALSE(moves[i].sameMove(moves[j]));
  }
}

TEST(Rules, MoreLegalMoveLists) {
  const struct {
    const char* what;
    const char* fen;
    std::vector<std::string> moves;
  } cases[] = {
      {"a capture is compulsory", "W:W32,45:B27", {"32x21"}},
      {"the most pieces: 45x34 goes", "W:W32,45:B27,17,40", {"32x21x12"}},
      {"a king lands on any free field beyond",
       "W:WK46:B37",
       {"46x10", "46x14", "46x19", "46x23", "46x28", "46x32", "46x5"}},
      {"nor does a king jump two in a row", "W:WK46,28:B37,32", {"28-22", "28-23", "46-41"}},
      {"kings are taken like men", "W:W38:BK33", {"38x29"}},
      {"men forward, kings every way",
       "W:W36,K50:B",
       {"36-31", "50-11", "50-17", "50-22", "50-28", "50-33", "50-39", "50-44", "50-45", "50-6"}},
      {"nothing can move", "W:W46:B41,37", {}},
      {"same ends, other pieces: two moves", "W:WK14:B7,17,21,23,33", {"14x28x11x2", "14x32x16x2"}},
      {"start",
       "W:W31-50:B1-20",
       {"31-26", "31-27", "32-27", "32-28", "33-28", "33-29", "34-29", "34-30", "35-30"}},
      {"black's reply",
       "B:W31,33-50,28:B1-20",
       {"16-21", "17-21", "17-22", "18-22", "18-23", "19-23", "19-24", "20-24", "20-25"}},
      {"man captures backward", "W:W33:B39", {"33x44"}},
      {"black man captures backward", "B:W23:B28", {"28x19"}},
      {"two in a row cannot be jumped", "W:W33:B28,22", {"33-29"}},
      {"the longer capture", "W:W32:B27,28,19", {"32x23x14"}},
      {"a man's two over a king's one", "W:W36,23,K45:B31,22,40", {"36x27x18"}},
      {"equal captures all count", "W:W36,23,K45:B31,40", {"36x27", "45x29", "45x34"}},
      {"king flies",
       "W:WK46:B1",
       {"46-10", "46-14", "46-19", "46-23", "46-28", "46-32", "46-37", "46-41", "46-5"}},
      {"own piece cuts the landings", "W:WK46,19:B37", {"46x23", "46x28", "46x32"}},
      {"king turns and flies on", "W:WK46:B37,33", {"46x28x39", "46x28x44", "46x28x50"}},
      // Were 37 taken off at once, the king could go on over 42 onto 37, 31 or 26.
      {"jumped pieces block", "W:WK46:B37,33,43,42", {"46x28x39x48"}},
      // Both ways round the ring take the same four pieces: one move.
      {"round the ring", "W:W28:B23,13,12,22", {"28x17x8x19x28"}},
      {"black double capture", "B:W31,42:B26", {"26x37x48"}},
  };
  for (const auto& c : cases) EXPECT_EQ(paths(fen(c.fen)), c.moves) << c.what;
}

TEST(Play, PositionsAfterAMove) {
  const struct {
    const char* start;
    const char* move;
    const char* after;
  } cases[] = {
      {"W:WK46:B37,33,43,42", "46x28x39x48", "B:WK48:B42"},
      {"W:W28:B23,13,12,22", "28x17x8x19x28", "B:W28:B"},
      {"W:W7:B50", "7-1", "B:WK1:B50"},
      {"W:W13:B8", "13x2", "B:WK2:B"},
      {"W:W13:B8,7", "13x2x11", "B:W11:B"},
      {"B:W1:B41", "41-47", "W:W1:BK47"},
      {"W:WK3:B50", "3-9", "B:WK9:B50"},
      {"W:W32,45:B27,17,40", "32x21x12", "B:W12,45:B40"},
      {"W:W13:B9,10", "13x4x15", "B:W15:B"},  // passes the far row and leaves it: still a man
  };
  for (const auto& c : cases) {
    const Position before = fen(c.start);
    const std::vector<Move> moves = legalMoves(before);
    const auto it = std::find_if(moves.begin(), moves.end(),
                                 [&](const Move& m) { return pathText(m) == c.move; });
    ASSERT_NE(it, moves.end()) << c.move;
    EXPECT_EQ(toFen(play(before, *it)), c.after) << c.move;
  }
  // Taken pieces in the order they were jumped.
  const Move ring = legalMoves(fen("W:WK46:B37,33,43,42")).at(0);
  EXPECT_EQ(std::vector<int>(ring.captured().begin(), ring.captured().end()),
            (std::vector<int>{37, 33, 43}));
  // A move with fields off the board changes nothing.
  Move bad;
  bad.stops = {32, 51};
  bad.stopCount = 2;
  EXPECT_EQ(play(Position::start(), bad), Position::start());
  EXPECT_EQ(play(Position::start(), Move()), Position::start());
}

}  // namespace
}  // namespace ostrel::draughts
