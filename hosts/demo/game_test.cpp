// The demo's game on the draughts kit: outcomes, the draw, taking moves back, and the opponent.

#include "Game.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace demo {
namespace {

using namespace ostrel::draughts;
using Texts = std::vector<std::string>;

Position board(const char* text) {
  const std::optional<Position> position = parseFen(text);
  EXPECT_TRUE(position) << text;
  return position.value_or(Position());
}

size_t indexOf(const std::vector<Move>& moves, const std::string& text) {
  const auto it =
      std::find_if(moves.begin(), moves.end(), [&](const Move& m) { return pathText(m) == text; });
  EXPECT_NE(it, moves.end()) << text;
  return static_cast<size_t>(it - moves.begin());
}

TEST(DemoGameRules, OutcomesAndTakingBack) {
  Game game(board("W:W28:B23"));
  EXPECT_FALSE(game.back());
  EXPECT_FALSE(game.play(1));
  ASSERT_TRUE(game.play(indexOf(game.moves(), "28x19")));
  EXPECT_EQ(game.outcome(), Outcome::WhiteWins);
  EXPECT_EQ(game.ply(), 1u);
  EXPECT_FALSE(game.play(0));
  ASSERT_TRUE(game.back());
  EXPECT_EQ(game.ply(), 0u);
  EXPECT_EQ(game.outcome(), Outcome::Playing);
  EXPECT_EQ(game.position(), board("W:W28:B23"));
  EXPECT_EQ(game.moves().size(), 1u);
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

TEST(DemoGameRules, DrawAfterFiftyQuietKingMovesAndBackFromIt) {
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
    ASSERT_TRUE(game.back());
    EXPECT_EQ(game.outcome(), Outcome::Playing) << c.what;
  }
}

TEST(DemoOpponent, Choices) {
  // 32x23 is taken back by 18x28; one ply sees it, as the search follows forced captures.
  const Position safe = board("W:W32,46:B27,28,18,12");
  // The king on 41 leaves the man no move; from 22 it takes the man when it leaves the edge.
  const Position block = board("W:W47,K5:B36"), lurk = board("W:WK50:B26");
  for (uint32_t seed = 1; seed <= 6; ++seed) {
    for (int depth : {1, 2})
      EXPECT_EQ(shortText(legalMoves(safe)[Opponent(seed, depth).choose(safe)]), "32x21");
    Opponent opponent(seed, 4);
    EXPECT_EQ(shortText(legalMoves(block)[opponent.choose(block)]), "5-41") << seed;
    EXPECT_EQ(shortText(legalMoves(lurk)[opponent.choose(lurk)]), "50-22") << seed;
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

}  // namespace
}  // namespace demo
