#include "Draughts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

namespace demo {
namespace {

using Texts = std::vector<std::string>;

// A position from "W:W31,K46:B20": the side to move, then each colour's fields, kings marked K.
Position board(const std::string& text) {
  Position position;
  std::stringstream parts(text);
  std::string part, field;
  std::getline(parts, part, ':');
  position.whiteToMove = part == "W";
  while (std::getline(parts, part, ':')) {
    EXPECT_TRUE(part[0] == 'W' || part[0] == 'B') << text;
    std::stringstream fields(part.substr(1));
    while (std::getline(fields, field, ',')) {
      const bool king = field[0] == 'K';
      position.fields.at(std::stoi(field.substr(king)) - 1) =
          part[0] == 'W' ? (king ? kWhiteKing : kWhiteMan) : (king ? kBlackKing : kBlackMan);
    }
  }
  return position;
}

Texts texts(const std::vector<Move>& moves) {
  Texts out;
  for (const Move& move : moves) out.push_back(move.text());
  std::sort(out.begin(), out.end());
  return out;
}

size_t indexOf(const std::vector<Move>& moves, const std::string& text) {
  const auto it =
      std::find_if(moves.begin(), moves.end(), [&](auto& m) { return m.text() == text; });
  EXPECT_NE(it, moves.end()) << text << " is not among " << ::testing::PrintToString(texts(moves));
  return static_cast<size_t>(it - moves.begin());
}

int count(const Position& position, bool white) {
  return static_cast<int>(std::count_if(position.fields.begin(), position.fields.end(), [&](int c) {
    return white ? (c == kWhiteMan || c == kWhiteKing) : (c == kBlackMan || c == kBlackKing);
  }));
}

TEST(DraughtsMoves, LegalMoveLists) {
  const struct {
    const char* what;
    Position position;
    Texts moves;
  } cases[] = {
      {"start",
       Position::start(),
       {"31-26", "31-27", "32-27", "32-28", "33-28", "33-29", "34-29", "34-30", "35-30"}},
      {"black's reply",
       play(Position::start(), Move{{32, 28}, {}}),
       {"16-21", "17-21", "17-22", "18-22", "18-23", "19-23", "19-24", "20-24", "20-25"}},
      {"man captures backward", board("W:W33:B39"), {"33x44"}},
      {"black man captures backward", board("B:W23:B28"), {"28x19"}},
      {"two in a row cannot be jumped", board("W:W33:B28,22"), {"33-29"}},
      {"the longer capture", board("W:W32:B27,28,19"), {"32x23x14"}},
      {"a man's two over a king's one", board("W:W36,23,K45:B31,22,40"), {"36x27x18"}},
      {"equal captures all count", board("W:W36,23,K45:B31,40"), {"36x27", "45x29", "45x34"}},
      {"king flies",
       board("W:WK46:B1"),
       {"46-10", "46-14", "46-19", "46-23", "46-28", "46-32", "46-37", "46-41", "46-5"}},
      {"king captures from afar",
       board("W:WK46:B37"),
       {"46x10", "46x14", "46x19", "46x23", "46x28", "46x32", "46x5"}},
      {"own piece cuts the landings", board("W:WK46,19:B37"), {"46x23", "46x28", "46x32"}},
      {"king stops before two", board("W:WK46:B37,32"), {"46-41"}},
      {"king turns and flies on", board("W:WK46:B37,33"), {"46x28x39", "46x28x44", "46x28x50"}},
      // Were 37 taken off at once, the king could go on over 42 onto 37, 31 or 26.
      {"jumped pieces block", board("W:WK46:B37,33,43,42"), {"46x28x39x48"}},
      {"round the ring both ways", board("W:W28:B23,13,12,22"), {"28x17x8x19x28", "28x19x8x17x28"}},
      {"through the far row", board("W:W13:B8,7"), {"13x2x11"}},
      {"black double capture", board("B:W31,42:B26"), {"26x37x48"}},
  };
  for (const auto& c : cases) EXPECT_EQ(texts(legalMoves(c.position)), c.moves) << c.what;
}

TEST(DraughtsMoves, PlayedPositions) {
  const struct {
    const char* start;
    const char* move;
    std::vector<std::pair<int, int>> fields;  // field, code after the move
  } cases[] = {
      {"W:WK46:B37,33,43,42",
       "46x28x39x48",
       {{48, kWhiteKing}, {46, 0}, {37, 0}, {33, 0}, {43, 0}, {42, kBlackMan}}},
      {"W:W28:B23,13,12,22",
       "28x19x8x17x28",
       {{28, kWhiteMan}, {23, 0}, {13, 0}, {12, 0}, {22, 0}}},
      {"W:W7:B50", "7-1", {{1, kWhiteKing}, {7, 0}}},
      {"W:W13:B8", "13x2", {{2, kWhiteKing}, {8, 0}}},
      {"W:W13:B8,7", "13x2x11", {{11, kWhiteMan}, {2, 0}, {7, 0}}},
      {"B:W1:B41", "41-47", {{47, kBlackKing}, {41, 0}}},
      {"W:WK3:B50", "3-9", {{9, kWhiteKing}, {3, 0}}},
  };
  for (const auto& c : cases) {
    const Position before = board(c.start);
    const std::vector<Move> moves = legalMoves(before);
    const Position after = play(before, moves.at(indexOf(moves, c.move)));
    EXPECT_NE(after.whiteToMove, before.whiteToMove) << c.move;
    for (auto [field, code] : c.fields)
      EXPECT_EQ(after.fields[field - 1], code) << c.move << " on " << field;
  }
  EXPECT_EQ(legalMoves(board("W:WK46:B37,33,43,42")).at(0).captured,
            (std::vector<int16_t>{37, 33, 43}));
  EXPECT_EQ((Move{{32, 28}, {}}).text(), "32-28");
  // A move with fields off the board changes nothing.
  for (const Move& bad : {Move{{32, 51}, {}}, Move{{32, 28}, {0}}, Move{}}) {
    EXPECT_EQ(play(Position::start(), bad).fields, Position::start().fields);
  }
}

TEST(DraughtsGame, Outcomes) {
  Game game(board("W:W28:B23"));
  EXPECT_FALSE(game.play(1));
  ASSERT_TRUE(game.play(indexOf(game.moves(), "28x19")));
  EXPECT_EQ(game.outcome(), Outcome::WhiteWins);
  EXPECT_FALSE(game.play(0));
  // A side with pieces but no move has lost, also when its opponent just blocked it.
  EXPECT_EQ(Game(board("B:W46,47:B41")).outcome(), Outcome::WhiteWins);
  Game blocked(board("B:W46:B36,37"));
  ASSERT_TRUE(blocked.play(indexOf(blocked.moves(), "36-41")));
  EXPECT_EQ(blocked.outcome(), Outcome::BlackWins);
}

// Moves of two kings going back and forth: the side moving first alternates its two moves, the
// other side its own two.
Texts alternate(int plies, const Texts& first, const Texts& second) {
  Texts out;
  for (int ply = 0; ply < plies; ++ply)
    out.push_back((ply % 2 == 0 ? first : second)[(ply / 2) % 2]);
  return out;
}

TEST(DraughtsGame, DrawAfterFiftyQuietKingMoves) {
  // The kings on 50 and 1 never reach each other. Each game is drawn by its last move, not before.
  const Texts white = {"50-45", "45-50"}, black = {"1-6", "6-1"}, none;
  const struct {
    const char* what;
    const char* start;
    Texts before, reset, after;
  } cases[] = {
      {"kings only", "W:WK50:BK1", alternate(50, white, black), none, none},
      {"a man's step resets",
       "W:WK50,35:BK1",
       alternate(20, white, black),
       {"35-30"},
       alternate(50, black, white)},
      {"a capture resets",
       "W:WK50,K36:BK1",
       alternate(20, white, black),
       {"36-18", "1x23"},
       alternate(50, {"50-44", "44-50"}, {"23-19", "19-23"})},
  };
  for (const auto& c : cases) {
    Game game(board(c.start));
    for (const Texts* part : {&c.before, &c.reset, &c.after}) {
      for (const std::string& text : *part) {
        ASSERT_EQ(game.outcome(), Outcome::Playing) << c.what << " before " << text;
        ASSERT_TRUE(game.play(indexOf(game.moves(), text))) << c.what;
      }
    }
    EXPECT_EQ(game.outcome(), Outcome::Draw) << c.what;
  }
}

TEST(DraughtsOpponent, Choices) {
  // 32x23 is taken back by 18x28; one ply sees it, as the search follows forced captures.
  const Position safe = board("W:W32,46:B27,28,18,12");
  // The king on 41 leaves the man no move; from 22 it takes the man when it leaves the edge.
  const Position block = board("W:W47,K5:B36"), lurk = board("W:WK50:B26");
  for (uint32_t seed = 1; seed <= 6; ++seed) {
    for (int depth : {1, 2})
      EXPECT_EQ(legalMoves(safe)[Opponent(seed, depth).choose(safe)].text(), "32x21");
    Opponent opponent(seed, 4);
    EXPECT_EQ(legalMoves(block)[opponent.choose(block)].text(), "5-41") << seed;
    EXPECT_EQ(legalMoves(lurk)[opponent.choose(lurk)].text(), "50-22") << seed;
  }
  // All nine king moves are equal: the seed picks one, the same each time.
  const Position open = board("W:WK46:B1");
  std::set<size_t> picks;
  for (uint32_t seed = 1; seed <= 16; ++seed) {
    Opponent a(seed, 2), b(seed, 2);
    const size_t pick = a.choose(open);
    EXPECT_EQ(b.choose(open), pick);
    picks.insert(pick);
  }
  EXPECT_GT(picks.size(), 2u);
}

TEST(DraughtsProperty, RandomGamesKeepTheRules) {
  for (uint32_t seed : {3u, 17u, 29u, 101u, 4242u, 90210u}) {
    std::mt19937 random(seed);
    Game game;
    for (int ply = 0; ply < 200 && game.outcome() == Outcome::Playing; ++ply) {
      const Position before = game.position();
      const std::vector<Move>& moves = game.moves();
      const size_t taken = moves.at(0).captured.size();
      std::set<std::pair<std::vector<int16_t>, std::vector<int16_t>>> seen;
      for (const Move& move : moves) {
        ASSERT_EQ(move.captured.size(), taken) << move.text();
        std::vector<int16_t> set = move.captured;
        std::sort(set.begin(), set.end());
        ASSERT_EQ(std::unique(set.begin(), set.end()), set.end()) << move.text();
        ASSERT_TRUE(seen.insert({move.route, set}).second) << "twice: " << move.text();
        for (int16_t field : set) {
          const int code = before.fields.at(field - 1);
          ASSERT_TRUE(before.whiteToMove ? (code == kBlackMan || code == kBlackKing)
                                         : (code == kWhiteMan || code == kWhiteKing))
              << move.text();
        }
      }
      const bool white = before.whiteToMove;
      const size_t pick =
          ply % 3 == 0 ? Opponent(seed + ply, 1).choose(before) : random() % moves.size();
      ASSERT_TRUE(game.play(pick));
      EXPECT_EQ(count(game.position(), white), count(before, white));
      EXPECT_EQ(count(game.position(), !white), count(before, !white) - static_cast<int>(taken));
    }
  }
}

}  // namespace
}  // namespace demo
