// The rules: perft counts against the published tables, the legal moves of positions that show
// each rule and the positions after a move; move texts, matching a written move, FEN in and out.

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

constexpr const char* kTwoWays = "W:WK14:B7,17,21,23,33";
constexpr const char* kFourteen = "B:BK17,K24:W6,9,10,11,20,21,22,23,30,K31,33,37,41,42,43,44,46";

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
  const Position position = fen(kFourteen);
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
      {"a capture is compulsory, the most pieces: 45x34 goes", "W:W32,45:B27,17,40", {"32x21x12"}},
      {"a king lands on any free field beyond",
       "W:WK46:B37",
       {"46x10", "46x14", "46x19", "46x23", "46x28", "46x32", "46x5"}},
      {"nor does a king jump two in a row", "W:WK46,28:B37,32", {"28-22", "28-23", "46-41"}},
      {"kings are taken like men", "W:W38:BK33", {"38x29"}},
      {"men forward, kings every way",
       "W:W36,K50:B",
       {"36-31", "50-11", "50-17", "50-22", "50-28", "50-33", "50-39", "50-44", "50-45", "50-6"}},
      {"nothing can move", "W:W46:B41,37", {}},
      {"same ends, other pieces: two moves", kTwoWays, {"14x28x11x2", "14x32x16x2"}},
      {"man captures backward", "W:W33:B39", {"33x44"}},
      {"black man captures backward", "B:W23:B28", {"28x19"}},
      {"two in a row cannot be jumped", "W:W33:B28,22", {"33-29"}},
      {"the longer capture", "W:W32:B27,28,19", {"32x23x14"}},
      {"a man's two over a king's one", "W:W36,23,K45:B31,22,40", {"36x27x18"}},
      {"equal captures all count", "W:W36,23,K45:B31,40", {"36x27", "45x29", "45x34"}},
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

TEST(MoveText, FormsOfAPlainMoveAndACapture) {
  const std::vector<Move> start = legalMoves(Position::start());
  const Move& quiet = *std::find_if(start.begin(), start.end(),
                                    [](const Move& m) { return pathText(m) == "32-28"; });
  EXPECT_EQ(shortText(quiet), "32-28");
  EXPECT_EQ(controlText(quiet), "32-28");
  EXPECT_EQ(takenFields(quiet), "");
  EXPECT_EQ(moveText(quiet, start), "32-28");

  const Position position = fen("W:W32,45:B27,17,40");
  const std::vector<Move> moves = legalMoves(position);
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(shortText(moves[0]), "32x12");
  EXPECT_EQ(pathText(moves[0]), "32x21x12");
  EXPECT_EQ(controlText(moves[0]), "32-21-12");
  EXPECT_EQ(controlMoveList(position), std::vector<std::string>{"32-21-12"});
  EXPECT_EQ(takenFields(moves[0]), "17|27");
  EXPECT_EQ(moveText(moves[0], moves), "32x12");
}

// Every move of the PDN files is matched too; here are the forms and faults they do not hold.
TEST(Matching, NamesOneMoveOrSaysWhyNot) {
  constexpr const char* kStart = "W:W31-50:B1-20";
  constexpr const char* kTwoTaken = "W:W32,45:B27,17,40";
  const struct {
    const char* fen;
    const char* written;
    const char* path;   // the move it names, or "" when none does
    size_t fits;        // how many legal moves fit it
    const char* error;  // part of the message when none is chosen
  } cases[] = {
      {kStart, " 32 - 28 ", "32-28", 1, ""},
      {kStart, "32-", "", 0, "is not a move"},
      {kStart, "32", "", 0, "is not a move"},
      {kStart, "51-46", "", 0, "is not a move"},
      {kStart, "32-28!", "", 0, "is not a move"},
      {kTwoTaken, "32x21", "", 0, "is not a legal move"},
      {kTwoWays, "14x32x2", "14x32x16x2", 1, ""},
      {kTwoWays, "14x2 (21)", "14x32x16x2", 1, ""},
      {kTwoWays, "14x2 (7, 23)", "", 2, "is ambiguous"},
      {kTwoWays, "14x2 (17, 23)", "14x28x11x2", 1, ""},
      {kTwoWays, "14x2 (33)", "", 0, "is not a legal move"},
      {kTwoWays, "14x2 (", "", 0, "is not a move"},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.written);
    const Position position = fen(c.fen);
    const std::vector<Move> legal = legalMoves(position);
    const MoveMatch match = matchMove(position, legal, c.written);
    EXPECT_EQ(match.fits.size(), c.fits);
    if (*c.path) {
      ASSERT_TRUE(match.index.has_value()) << match.error;
      EXPECT_EQ(pathText(legal[*match.index]), c.path);
      EXPECT_TRUE(match.error.empty());
    } else {
      EXPECT_FALSE(match.index.has_value());
      EXPECT_NE(match.error.find(c.error), std::string::npos) << match.error;
    }
  }
}

TEST(Matching, AnyRouteOfAMergedCaptureNamesIt) {
  const Position position = fen(kFourteen);
  const std::vector<Move> legal = legalMoves(position);
  const MoveMatch written = matchMove(position, legal, "24x35");
  ASSERT_TRUE(written.index.has_value());
  int others = 0;
  for (const Move& route : detail::captureRoutes(position)) {
    if (!route.sameMove(legal[*written.index])) continue;
    const MoveMatch other = matchMove(position, legal, pathText(route));
    ASSERT_TRUE(other.index.has_value()) << pathText(route) << ": " << other.error;
    EXPECT_EQ(*other.index, *written.index);
    others += pathText(route) != pathText(legal[*written.index]);
  }
  EXPECT_GT(others, 0);
}

TEST(Fen, ReadsEveryForm) {
  for (const char* text : {"W:W31-50:B1-20", "W:B1-20:W31-50", " W : W 31 - 50 : B 1-20 .",
                           "W:W31,32,33,34,35,36-50:B1-10,11-20.", "W:W31-50:B1-20\t"}) {
    EXPECT_EQ(fen(text), Position::start()) << text;
  }
  const Position kings = fen("B:WK46,31-33:BK1-3,20");
  EXPECT_EQ(kings.toMove, Side::Black);
  EXPECT_EQ(kings.at(46), WhiteKing);
  EXPECT_EQ(kings.at(32), WhiteMan);
  EXPECT_EQ(kings.at(2), BlackKing);
  EXPECT_EQ(kings.at(20), BlackMan);
  EXPECT_EQ(toFen(kings), "B:W31,32,33,K46:BK1,K2,K3,20");
  EXPECT_EQ(fen("W:W:B"), Position());
  EXPECT_EQ(toFen(Position()), "W:W:B");
}

TEST(Fen, ErrorsSayWhereAndChangeNothing) {
  const struct {
    const char* text;
    int column;
    const char* message;
  } cases[] = {{"", 1, "empty"},
               {"X:W1:B2", 1, "side to move"},
               {"W", 2, "\":\""},
               {"W:W31-50", 9, "second list"},
               {"W:W31-50:W1-20", 10, "twice"},
               {"W:Q1", 3, "W or B"},
               {"W:W51:B1", 4, "not 1 to 50"},
               {"W:W0:B1", 4, "not 1 to 50"},
               {"W:W1,:B2", 6, "field number"},
               {"W:W5-3:B1", 4, "upward"},
               {"W:W1-5:B5", 9, "given twice"},
               {"W:W1:B2:", 8, "after"},
               {"W:W1:B2..", 9, "after"},
               {"W:W1x:B2", 5, "\":\""},
               {"W:W\xc3\xa9"
                "1:B2",
                4, "field number"}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    Position position = Position::start();
    TextError error;
    EXPECT_FALSE(readFen(c.text, position, error));
    EXPECT_EQ(position, Position::start());
    EXPECT_EQ(error.line, 1);
    EXPECT_EQ(error.column, c.column) << error.message;
    EXPECT_NE(error.message.find(c.message), std::string::npos) << error.message;
  }
}

}  // namespace
}  // namespace ostrel::draughts
