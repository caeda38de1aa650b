#pragma once
// The demo's game on the draughts kit: the moves played so far, the way back, and the outcome.
// A side with no move has lost; fifty king moves in a row without a capture or a man's step
// (25 each) draw.

#include <cstdint>
#include <random>
#include <vector>

#include "ostrel/draughts.h"

namespace demo {

using ostrel::draughts::Move;
using ostrel::draughts::Position;
using ostrel::draughts::Side;

enum class Outcome { Playing, WhiteWins, BlackWins, Draw };

class Game {
 public:
  Game() : Game(Position::start()) {}
  // A game from a set position (an end game, a puzzle, a PDN game's start); it may be over.
  explicit Game(const Position& start);

  const Position& position() const { return positions_.back(); }
  const std::vector<Move>& moves() const { return legal_; }  // the side to move's legal moves
  Outcome outcome() const { return outcome_; }
  // The moves played, in order; their number is the ply.
  const std::vector<Move>& played() const { return played_; }
  size_t ply() const { return played_.size(); }

  // Plays a move given by its index in moves(); false when the index is out of range or the
  // game is over.
  bool play(size_t index);
  // Takes the last move back; false at the start.
  bool back();

 private:
  void update();

  std::vector<Position> positions_;  // the start, then the position after each ply
  std::vector<Move> played_;
  std::vector<int> quietKingMoves_;  // successive quiet king moves up to each position
  std::vector<Move> legal_;
  Outcome outcome_ = Outcome::Playing;
};

// A small searching opponent: a few plies of alpha-beta over material and advancement, with a
// seeded choice among equal moves so that games differ but repeat under the same seed.
class Opponent {
 public:
  explicit Opponent(uint32_t seed, int depth = 4) : random_(seed), depth_(depth) {}
  // The index in legalMoves(position) of the move it plays; the position must have one.
  size_t choose(const Position& position);

 private:
  std::mt19937 random_;
  int depth_;
};

}  // namespace demo
