// Legal moves, playing a move, and counting move sequences.

#include <algorithm>

#include "Geometry.h"

namespace ostrel::draughts {

using namespace detail;

Position Position::start() {
  Position position;
  for (int slot = 0; slot < 20; ++slot) position.squares[slot] = BlackMan;
  for (int slot = 30; slot < kFields; ++slot) position.squares[slot] = WhiteMan;
  return position;
}

Piece Position::at(int field) const {
  return field >= 1 && field <= kFields ? squares[field - 1] : Empty;
}

void Position::set(int field, Piece piece) {
  if (field >= 1 && field <= kFields) squares[field - 1] = piece;
}

namespace {

// Walks every capture of one piece depth first and keeps those that take the most pieces seen so
// far across the side. Jumped pieces stay on the board until the end (they block) and are marked
// so that none is jumped twice; the moving piece is lifted, so it may cross its own start.
class CaptureWalk {
 public:
  // merge false keeps every route of the longest captures, also those that take the same pieces.
  CaptureWalk(const Position& position, std::vector<Move>& out, bool merge)
      : board_(position.squares), side_(position.toMove), out_(out), merge_(merge) {}

  int best() const { return best_; }

  void piece(int from) {
    const Piece piece = board_[from];
    king_ = isKing(piece);
    board_[from] = Empty;
    current_ = Move();
    current_.stops[0] = static_cast<uint8_t>(from + 1);
    current_.stopCount = 1;
    step(from);
    board_[from] = piece;
  }

 private:
  bool capturable(int slot) const {
    return belongsTo(board_[slot], other(side_)) && !(current_.takenMask >> slot & 1);
  }

  void step(int at) {
    bool continued = false;
    for (int d = 0; d < kDirections; ++d) {
      const int length = kRays.length[at][d];
      const int8_t* ray = kRays.slot[at][d];
      if (!king_) {
        if (length >= 2 && capturable(ray[0]) && board_[ray[1]] == Empty) {
          jump(ray[0], ray[1]);
          continued = true;
        }
        continue;
      }
      int i = 0;
      while (i < length && board_[ray[i]] == Empty) ++i;
      if (i >= length || !capturable(ray[i])) continue;
      for (int j = i + 1; j < length && board_[ray[j]] == Empty; ++j) {
        jump(ray[i], ray[j]);
        continued = true;
      }
    }
    if (!continued && current_.takenCount > 0) record();
  }

  void jump(int over, int landing) {
    current_.takenMask |= uint64_t{1} << over;
    current_.taken[current_.takenCount++] = static_cast<uint8_t>(over + 1);
    current_.stops[current_.stopCount++] = static_cast<uint8_t>(landing + 1);
    step(landing);
    --current_.stopCount;
    --current_.takenCount;
    current_.takenMask &= ~(uint64_t{1} << over);
  }

  void record() {
    if (current_.takenCount < best_) return;
    if (current_.takenCount > best_) {
      out_.clear();
      best_ = current_.takenCount;
    }
    if (merge_) {
      for (const Move& move : out_) {
        if (move.sameMove(current_)) return;  // another route to the same capture
      }
    }
    out_.push_back(current_);
  }

  std::array<Piece, kFields> board_;
  Side side_;
  std::vector<Move>& out_;
  bool merge_;
  Move current_;
  bool king_ = false;
  int best_ = 0;
};

void quietMoves(const Position& position, std::vector<Move>& out) {
  const Side side = position.toMove;
  for (int from = 0; from < kFields; ++from) {
    const Piece piece = position.squares[from];
    if (!belongsTo(piece, side)) continue;
    for (int d = 0; d < kDirections; ++d) {
      const bool forward = side == Side::White ? kRowStep[d] < 0 : kRowStep[d] > 0;
      if (!isKing(piece) && !forward) continue;
      const int reach =
          isKing(piece) ? kRays.length[from][d] : std::min<int>(1, kRays.length[from][d]);
      for (int i = 0; i < reach; ++i) {
        const int to = kRays.slot[from][d][i];
        if (position.squares[to] != Empty) break;
        Move move;
        move.stops[0] = static_cast<uint8_t>(from + 1);
        move.stops[1] = static_cast<uint8_t>(to + 1);
        move.stopCount = 2;
        out.push_back(move);
      }
    }
  }
}

uint64_t perftInto(const Position& position, int depth, std::vector<std::vector<Move>>& lists) {
  std::vector<Move>& moves = lists[static_cast<size_t>(depth)];
  legalMoves(position, moves);
  if (depth == 1) return moves.size();
  uint64_t count = 0;
  for (const Move& move : moves) count += perftInto(play(position, move), depth - 1, lists);
  return count;
}

}  // namespace

namespace {

int captures(const Position& position, std::vector<Move>& out, bool merge) {
  out.clear();
  CaptureWalk walk(position, out, merge);
  for (int slot = 0; slot < kFields; ++slot) {
    if (belongsTo(position.squares[slot], position.toMove)) walk.piece(slot);
  }
  return walk.best();
}

}  // namespace

std::vector<Move> detail::captureRoutes(const Position& position) {
  std::vector<Move> routes;
  captures(position, routes, false);
  return routes;
}

void legalMoves(const Position& position, std::vector<Move>& out) {
  if (captures(position, out, true) == 0) quietMoves(position, out);
}

std::vector<Move> legalMoves(const Position& position) {
  std::vector<Move> moves;
  legalMoves(position, moves);
  return moves;
}

Position play(const Position& position, const Move& move) {
  Position next = position;
  if (move.stopCount < 1 || move.from() < 1 || move.from() > kFields || move.to() < 1 ||
      move.to() > kFields) {
    return next;
  }
  const int from = move.from() - 1;
  const int to = move.to() - 1;
  Piece piece = next.squares[from];
  next.squares[from] = Empty;
  for (int i = 0; i < move.takenCount; ++i) next.set(move.taken[i], Empty);
  if (piece == WhiteMan && rowOf(to) == 0) piece = WhiteKing;
  if (piece == BlackMan && rowOf(to) == 9) piece = BlackKing;
  next.squares[to] = piece;
  next.toMove = other(position.toMove);
  return next;
}

uint64_t perft(const Position& position, int depth) {
  if (depth <= 0) return 1;
  std::vector<std::vector<Move>> lists(static_cast<size_t>(depth) + 1);
  return perftInto(position, depth, lists);
}

}  // namespace ostrel::draughts
