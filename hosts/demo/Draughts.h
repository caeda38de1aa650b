#pragma once
// The game the demo host plays: international draughts on the 10x10 board, its legal moves, and a
// simple opponent. The control draws; this decides what may be played.
//
// Fields are numbered 1 to 50 as on a printed diagram: field 1 is the second square of the top
// row (black's back row), field 5 the top right corner, field 46 the bottom left corner. White
// starts on 31 to 50 and moves up, toward the lower numbers.

#include <array>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace demo {

// The control's codes of a field.
enum Code : int16_t { kEmpty = 0, kWhiteMan = 2, kBlackMan = 3, kWhiteKing = 4, kBlackKing = 5 };

struct Position {
  std::array<int16_t, 50> fields{};  // slot = field - 1, a Code each
  bool whiteToMove = true;

  static Position start();  // black men on 1 to 20, white men on 31 to 50, white to move
};

struct Move {
  std::vector<int16_t> route;     // the source, then every field the piece stops on
  std::vector<int16_t> captured;  // fields of the pieces taken, in the order they were jumped

  // The text the control takes: fields joined by "-" for a plain move, "x" for a capture.
  std::string text() const;
};

// Every legal move of the side to move. Capturing is compulsory and the most pieces must be
// taken; a capture's pieces come off only at its end and none is jumped twice. Kings fly.
std::vector<Move> legalMoves(const Position& position);

// The position after a move (assumed legal): captured pieces removed, a man that ends on the far
// row crowned, the other side to move.
Position play(const Position& position, const Move& move);

// The game's state after the moves so far.
enum class Outcome { Playing, WhiteWins, BlackWins, Draw };
class Game {
 public:
  Game() : position_(Position::start()) {}
  // A game from a set position (an end game, a puzzle); it may already be over.
  explicit Game(const Position& start);
  const Position& position() const { return position_; }
  const std::vector<Move>& moves() const { return legal_; }  // the side to move's legal moves
  Outcome outcome() const { return outcome_; }
  // Plays a move given by its index in moves(); false when the index is out of range.
  bool play(size_t index);

 private:
  Position position_;
  std::vector<Move> legal_ = legalMoves(position_);
  Outcome outcome_ = Outcome::Playing;
  int quietKingMoves_ = 0;  // successive king moves without a capture: 25 each (50) is a draw
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
