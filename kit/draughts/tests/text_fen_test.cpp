// Move texts, matching a written move to a legal one, and FEN in and out.

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

const Move* find(const std::vector<Move>& moves, const std::string& path) {
  for (const Move& move : moves) {
    if (pathText(move) == path) return &move;
  }
  return nullptr;
}

TEST(MoveText, FormsOfAPlainMoveAndACapture) {
  const std::vector<Move> start = legalMoves(Position::start());
  const Move* quiet = find(start, "32-28");
  ASSERT_NE(quiet, nullptr);
  EXPECT_EQ(shortText(*quiet), "32-28");
  EXPECT_EQ(controlText(*quiet), "32-28");
  EXPECT_EQ(takenFields(*quiet), "");
  EXPECT_EQ(moveText(*quiet, start), "32-28");

  const std::vector<Move> moves = legalMoves(fen("W:W32,45:B27,17,40"));
  ASSERT_EQ(moves.size(), 1u);
  EXPECT_EQ(shortText(moves[0]), "32x12");
  EXPECT_EQ(pathText(moves[0]), "32x21x12");
  EXPECT_EQ(controlText(moves[0]), "32-21-12");
  EXPECT_EQ(takenFields(moves[0]), "17|27");
  EXPECT_EQ(moveText(moves[0], moves), "32x12");
}

TEST(MoveText, SameEndsNeedTheWholePath) {
  const std::vector<Move> moves = legalMoves(fen("W:WK14:B7,17,21,23,33"));
  ASSERT_EQ(moves.size(), 2u);
  std::vector<std::string> texts = {moveText(moves[0], moves), moveText(moves[1], moves)};
  std::sort(texts.begin(), texts.end());
  EXPECT_EQ(texts, (std::vector<std::string>{"14x28x11x2", "14x32x16x2"}));
}

TEST(MoveText, ControlListFollowsLegalMoves) {
  const Position position = fen("B:BK17,K24:W6,9,10,11,20,21,22,23,30,K31,33,37,41,42,43,44,46");
  const std::vector<std::string> list = controlMoveList(position);
  const std::vector<Move> moves = legalMoves(position);
  ASSERT_EQ(list.size(), moves.size());
  for (size_t i = 0; i < list.size(); ++i) {
    EXPECT_EQ(list[i], controlText(moves[i]));
    EXPECT_EQ(list[i].find('x'), std::string::npos);
    EXPECT_EQ(std::count(list[i].begin(), list[i].end(), '-'), 14);  // fourteen hops
  }
}

struct MatchCase {
  const char* fen;
  const char* written;
  const char* path;   // the move it names, or "" when none does
  size_t fits;        // how many legal moves fit it
  const char* error;  // part of the message when none is chosen
};

class Matching : public testing::TestWithParam<MatchCase> {};

TEST_P(Matching, NamesOneMoveOrSaysWhyNot) {
  const MatchCase& c = GetParam();
  const Position position = fen(c.fen);
  const std::vector<Move> legal = legalMoves(position);
  const MoveMatch match = matchMove(position, legal, c.written);
  EXPECT_EQ(match.fits.size(), c.fits) << c.written;
  if (*c.path) {
    ASSERT_TRUE(match.index.has_value()) << c.written << ": " << match.error;
    EXPECT_EQ(pathText(legal[*match.index]), c.path);
    EXPECT_TRUE(match.error.empty());
  } else {
    EXPECT_FALSE(match.index.has_value()) << c.written;
    EXPECT_NE(match.error.find(c.error), std::string::npos) << match.error;
  }
}

constexpr const char* kStart = "W:W31-50:B1-20";
constexpr const char* kTwoWays = "W:WK14:B7,17,21,23,33";
constexpr const char* kFourteen = "B:BK17,K24:W6,9,10,11,20,21,22,23,30,K31,33,37,41,42,43,44,46";

INSTANTIATE_TEST_SUITE_P(
    Moves, Matching,
    testing::Values(
        MatchCase{kStart, "32-28", "32-28", 1, ""}, MatchCase{kStart, " 32 - 28 ", "32-28", 1, ""},
        MatchCase{kStart, "32- 28", "32-28", 1, ""}, MatchCase{kStart, "32:28", "32-28", 1, ""},
        MatchCase{kStart, "32-26", "", 0, "is not a legal move"},
        MatchCase{kStart, "32-", "", 0, "is not a move"},
        MatchCase{kStart, "32", "", 0, "is not a move"},
        MatchCase{kStart, "51-46", "", 0, "is not a move"},
        MatchCase{kStart, "32-28!", "", 0, "is not a move"},
        MatchCase{"W:W32,45:B27,17,40", "32x12", "32x21x12", 1, ""},
        MatchCase{"W:W32,45:B27,17,40", "32X21x12", "32x21x12", 1, ""},
        MatchCase{"W:W32,45:B27,17,40", "32x21", "", 0, "is not a legal move"},
        MatchCase{"W:W32,45:B27,17,40", "45x34", "", 0, "is not a legal move"},
        MatchCase{kTwoWays, "14x2", "", 2, "is ambiguous"},
        MatchCase{kTwoWays, "14x28x11x2", "14x28x11x2", 1, ""},
        MatchCase{kTwoWays, "14x32x2", "14x32x16x2", 1, ""},
        MatchCase{kTwoWays, "14x2 (21)", "14x32x16x2", 1, ""},
        MatchCase{kTwoWays, "14x2 (7, 23)", "", 2, "is ambiguous"},
        MatchCase{kTwoWays, "14x2 (17, 23)", "14x28x11x2", 1, ""},
        MatchCase{kTwoWays, "14x2 (33)", "", 0, "is not a legal move"},
        MatchCase{kTwoWays, "14x2 (", "", 0, "is not a move"},
        MatchCase{kFourteen, "24x35", "24x15x4x13x27x16x7x40x49x27x36x47x38x24x35", 1, ""}));

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
  const Position start = Position::start();
  for (const char* text : {"W:W31-50:B1-20", "W:B1-20:W31-50", " W : W 31 - 50 : B 1-20 .",
                           "W:W31,32,33,34,35,36-50:B1-10,11-20.", "W:W31-50:B1-20\t"}) {
    const std::optional<Position> position = parseFen(text);
    ASSERT_TRUE(position.has_value()) << text;
    EXPECT_EQ(*position, start) << text;
  }
  const Position kings = fen("B:WK46,31-33:BK1-3,20");
  EXPECT_EQ(kings.toMove, Side::Black);
  EXPECT_EQ(kings.at(46), WhiteKing);
  EXPECT_EQ(kings.at(32), WhiteMan);
  EXPECT_EQ(kings.at(2), BlackKing);
  EXPECT_EQ(kings.at(20), BlackMan);
  EXPECT_EQ(toFen(kings), "B:W31,32,33,K46:BK1,K2,K3,20");
  const Position empty = fen("W:W:B");
  EXPECT_EQ(empty, Position());
  EXPECT_EQ(toFen(empty), "W:W:B");
}

TEST(Fen, WritesWhatItReads) {
  Position position = Position::start();
  for (int i = 0; i < 30; ++i) {
    const std::vector<Move> moves = legalMoves(position);
    if (moves.empty()) break;
    position = play(position, moves[static_cast<size_t>(i * 7) % moves.size()]);
    EXPECT_EQ(fen(toFen(position).c_str()), position);
  }
}

struct BadFen {
  const char* text;
  int column;
  const char* message;
};

class FenErrors : public testing::TestWithParam<BadFen> {};

TEST_P(FenErrors, SayWhereAndChangeNothing) {
  const BadFen& c = GetParam();
  Position position = Position::start();
  TextError error;
  EXPECT_FALSE(readFen(c.text, position, error)) << c.text;
  EXPECT_EQ(position, Position::start());
  EXPECT_EQ(error.line, 1);
  EXPECT_EQ(error.column, c.column) << c.text << ": " << error.message;
  EXPECT_NE(error.message.find(c.message), std::string::npos) << error.message;
}

INSTANTIATE_TEST_SUITE_P(
    Fen, FenErrors,
    testing::Values(BadFen{"", 1, "empty"}, BadFen{"X:W1:B2", 1, "side to move"},
                    BadFen{"W", 2, "\":\""}, BadFen{"W:W31-50", 9, "second list"},
                    BadFen{"W:W31-50:W1-20", 10, "twice"}, BadFen{"W:Q1", 3, "W or B"},
                    BadFen{"W:W51:B1", 4, "not 1 to 50"}, BadFen{"W:W0:B1", 4, "not 1 to 50"},
                    BadFen{"W:W1,:B2", 6, "field number"}, BadFen{"W:W5-3:B1", 4, "upward"},
                    BadFen{"W:W1-5:B5", 9, "given twice"}, BadFen{"W:W1:B2:", 8, "after"},
                    BadFen{"W:W1:B2..", 9, "after"}, BadFen{"W:W1x:B2", 5, "\":\""},
                    BadFen{"W:W\xc3\xa9"
                           "1:B2",
                           4, "field number"}));

}  // namespace
}  // namespace ostrel::draughts
