#include "Game.h"

#include <algorithm>
#include <limits>

namespace demo {

using namespace ostrel::draughts;

namespace {

bool isKing(Piece piece) {
  return piece == WhiteKing || piece == BlackKing;
}

}  // namespace

Game::Game(const Position& start) : positions_{start}, quietKingMoves_{0} {
  update();
}

void Game::update() {
  legalMoves(position(), legal_);
  if (legal_.empty()) {
    outcome_ = position().toMove == Side::White ? Outcome::BlackWins : Outcome::WhiteWins;
  } else if (quietKingMoves_.back() >= 50) {
    outcome_ = Outcome::Draw;
  } else {
    outcome_ = Outcome::Playing;
  }
}

bool Game::play(size_t index) {
  if (outcome_ != Outcome::Playing || index >= legal_.size()) return false;
  const Move move = legal_[index];
  const bool quietKing = isKing(position().at(move.from())) && !move.isCapture();
  quietKingMoves_.push_back(quietKing ? quietKingMoves_.back() + 1 : 0);
  positions_.push_back(ostrel::draughts::play(position(), move));
  played_.push_back(move);
  update();
  return true;
}

bool Game::back() {
  if (played_.empty()) return false;
  played_.pop_back();
  positions_.pop_back();
  quietKingMoves_.pop_back();
  update();
  return true;
}

namespace {

constexpr int kWin = 1000000;  // the score of a won position, less the plies it takes
constexpr int kInfinity = std::numeric_limits<int>::max() / 2;
constexpr int kCaptureExtension = 8;  // plies a forced capture may run past the nominal depth

// Material and shape from the side to move's view: men 100 and kings 300, men a little more for
// each row advanced and for standing in the middle of the board.
int evaluate(const Position& position) {
  int score = 0;
  for (int field = 1; field <= kFields; ++field) {
    const Piece piece = position.at(field);
    if (piece == Empty) continue;
    const bool white = piece == WhiteMan || piece == WhiteKing;
    int value = 300;
    if (!isKing(piece)) {
      const int row = (field - 1) / 5;  // 0 is black's back row
      const int column = 2 * ((field - 1) % 5) + (row % 2 == 0 ? 1 : 0);
      const int advanced = white ? 9 - row : row;
      const bool central = column >= 2 && column <= 7 && row >= 3 && row <= 6;
      value = 100 + 2 * advanced + (central ? 4 : 0);
    }
    score += white ? value : -value;
  }
  return position.toMove == Side::White ? score : -score;
}

// Negamax with alpha-beta; past the nominal depth only forced captures are followed, so that a
// line never stops in the middle of an exchange.
int search(const Position& position, int depth, int alpha, int beta, int ply, int horizon) {
  const std::vector<Move> moves = legalMoves(position);
  if (moves.empty()) return -(kWin - ply);
  if (depth <= 0 && (!moves.front().isCapture() || ply >= horizon)) return evaluate(position);
  int best = -kInfinity;
  for (const Move& move : moves) {
    const int score = -search(play(position, move), depth - 1, -beta, -alpha, ply + 1, horizon);
    best = std::max(best, score);
    alpha = std::max(alpha, score);
    if (alpha >= beta) break;
  }
  return best;
}

}  // namespace

size_t Opponent::choose(const Position& position) {
  const std::vector<Move> moves = legalMoves(position);
  if (moves.size() <= 1) return 0;
  const int depth = std::max(1, depth_);
  const int horizon = depth + kCaptureExtension;
  // Each root move is searched just below the best score so far: a move that equals it comes back
  // exact and joins the ties, a worse one fails low.
  int best = -kInfinity;
  std::vector<size_t> ties;
  for (size_t i = 0; i < moves.size(); ++i) {
    const int floor = best == -kInfinity ? -kInfinity : best - 1;
    const int score = -search(play(position, moves[i]), depth - 1, -kInfinity, -floor, 1, horizon);
    if (score > best) {
      best = score;
      ties.assign(1, i);
    } else if (score == best) {
      ties.push_back(i);
    }
  }
  return ties[random_() % ties.size()];
}

}  // namespace demo
