#include "Draughts.h"

#include <algorithm>
#include <limits>

namespace demo {
namespace {

// Slots are field numbers minus one. A slot's row counts from the top (black's back row is row
// 0); its column from the left, the dark squares of even rows sitting in the odd columns.
constexpr int kSlots = 50;
constexpr int kDirections = 4;
constexpr int kRowStep[kDirections] = {-1, -1, 1, 1};  // up-left, up-right, down-left, down-right
constexpr int kColumnStep[kDirections] = {-1, 1, -1, 1};

constexpr int rowOf(int slot) {
  return slot / 5;
}
constexpr int columnOf(int slot) {
  return 2 * (slot % 5) + (rowOf(slot) % 2 == 0 ? 1 : 0);
}

// Every diagonal ray: the slots met walking from a slot in one direction, nearest first.
struct Rays {
  int8_t length[kSlots][kDirections]{};
  int8_t slot[kSlots][kDirections][9]{};
};

constexpr Rays makeRays() {
  Rays rays;
  for (int from = 0; from < kSlots; ++from) {
    for (int d = 0; d < kDirections; ++d) {
      int row = rowOf(from) + kRowStep[d];
      int column = columnOf(from) + kColumnStep[d];
      int n = 0;
      while (row >= 0 && row < 10 && column >= 0 && column < 10) {
        rays.slot[from][d][n++] = static_cast<int8_t>(row * 5 + column / 2);
        row += kRowStep[d];
        column += kColumnStep[d];
      }
      rays.length[from][d] = static_cast<int8_t>(n);
    }
  }
  return rays;
}

constexpr Rays kRays = makeRays();

bool isWhite(int code) {
  return code == kWhiteMan || code == kWhiteKing;
}
bool isBlack(int code) {
  return code == kBlackMan || code == kBlackKing;
}
bool isKing(int code) {
  return code == kWhiteKing || code == kBlackKing;
}
bool belongsTo(int code, bool white) {
  return white ? isWhite(code) : isBlack(code);
}

// Walks every capture of one piece, depth first, keeping those that take the most pieces seen so
// far across all pieces of the side. Jumped pieces stay on the board (they block) and are marked
// so that none is jumped twice; the moving piece is lifted, so it may cross its own start.
class CaptureWalk {
 public:
  CaptureWalk(const Position& position, std::vector<Move>& out)
      : board_(position.fields), white_(position.whiteToMove), out_(out) {}

  size_t best() const { return best_; }

  void piece(int from) {
    const int16_t code = board_[from];
    king_ = isKing(code);
    board_[from] = kEmpty;
    route_.assign(1, static_cast<int16_t>(from + 1));
    captured_.clear();
    step(from);
    board_[from] = code;
  }

 private:
  bool capturable(int slot) const { return belongsTo(board_[slot], !white_) && !taken_[slot]; }

  void step(int at) {
    bool continued = false;
    for (int d = 0; d < kDirections; ++d) {
      const int length = kRays.length[at][d];
      const int8_t* ray = kRays.slot[at][d];
      if (!king_) {
        if (length >= 2 && capturable(ray[0]) && board_[ray[1]] == kEmpty) {
          jump(ray[0], ray[1]);
          continued = true;
        }
        continue;
      }
      int i = 0;
      while (i < length && board_[ray[i]] == kEmpty) ++i;
      if (i >= length || !capturable(ray[i])) continue;
      for (int j = i + 1; j < length && board_[ray[j]] == kEmpty; ++j) {
        jump(ray[i], ray[j]);
        continued = true;
      }
    }
    if (!continued && !captured_.empty()) record();
  }

  void jump(int over, int landing) {
    taken_[over] = true;
    route_.push_back(static_cast<int16_t>(landing + 1));
    captured_.push_back(static_cast<int16_t>(over + 1));
    step(landing);
    captured_.pop_back();
    route_.pop_back();
    taken_[over] = false;
  }

  void record() {
    if (captured_.size() < best_) return;
    if (captured_.size() > best_) {
      out_.clear();
      best_ = captured_.size();
    }
    out_.push_back(Move{route_, captured_});
  }

  std::array<int16_t, kSlots> board_;
  std::array<bool, kSlots> taken_{};
  bool white_;
  bool king_ = false;
  std::vector<int16_t> route_;
  std::vector<int16_t> captured_;
  std::vector<Move>& out_;
  size_t best_ = 0;
};

void quietMoves(const Position& position, std::vector<Move>& out) {
  const bool white = position.whiteToMove;
  for (int from = 0; from < kSlots; ++from) {
    const int16_t code = position.fields[from];
    if (!belongsTo(code, white)) continue;
    for (int d = 0; d < kDirections; ++d) {
      const bool forward = white ? kRowStep[d] < 0 : kRowStep[d] > 0;
      if (!isKing(code) && !forward) continue;
      const int reach =
          isKing(code) ? kRays.length[from][d] : std::min<int>(1, kRays.length[from][d]);
      for (int i = 0; i < reach; ++i) {
        const int to = kRays.slot[from][d][i];
        if (position.fields[to] != kEmpty) break;
        out.push_back(Move{{static_cast<int16_t>(from + 1), static_cast<int16_t>(to + 1)}, {}});
      }
    }
  }
}

bool validField(int16_t field) {
  return field >= 1 && field <= kSlots;
}

}  // namespace

Position Position::start() {
  Position position;
  for (int slot = 0; slot < 20; ++slot) position.fields[slot] = kBlackMan;
  for (int slot = 30; slot < kSlots; ++slot) position.fields[slot] = kWhiteMan;
  return position;
}

std::string Move::text() const {
  std::string text;
  const char joint = captured.empty() ? '-' : 'x';
  for (size_t i = 0; i < route.size(); ++i) {
    if (i > 0) text += joint;
    text += std::to_string(route[i]);
  }
  return text;
}

std::vector<Move> legalMoves(const Position& position) {
  std::vector<Move> moves;
  CaptureWalk walk(position, moves);
  for (int slot = 0; slot < kSlots; ++slot) {
    if (belongsTo(position.fields[slot], position.whiteToMove)) walk.piece(slot);
  }
  // Each leg of a capture runs along one diagonal over exactly one piece, and the walk tries each
  // direction and landing once, so no two routes repeat: every capture is listed once.
  if (walk.best() == 0) quietMoves(position, moves);
  return moves;
}

Position play(const Position& position, const Move& move) {
  if (move.route.empty() || !std::all_of(move.route.begin(), move.route.end(), validField) ||
      !std::all_of(move.captured.begin(), move.captured.end(), validField)) {
    return position;
  }
  Position next = position;
  const int from = move.route.front() - 1;
  const int to = move.route.back() - 1;
  int16_t piece = next.fields[from];
  next.fields[from] = kEmpty;
  for (int16_t field : move.captured) next.fields[field - 1] = kEmpty;
  if (piece == kWhiteMan && rowOf(to) == 0) piece = kWhiteKing;
  if (piece == kBlackMan && rowOf(to) == 9) piece = kBlackKing;
  next.fields[to] = piece;
  next.whiteToMove = !position.whiteToMove;
  return next;
}

Game::Game(const Position& start) : position_(start) {
  if (legal_.empty()) outcome_ = position_.whiteToMove ? Outcome::BlackWins : Outcome::WhiteWins;
}

bool Game::play(size_t index) {
  if (outcome_ != Outcome::Playing || index >= legal_.size()) return false;
  const Move& move = legal_[index];
  const bool kingMove = isKing(position_.fields[move.route.front() - 1]);
  quietKingMoves_ = (kingMove && move.captured.empty()) ? quietKingMoves_ + 1 : 0;
  position_ = demo::play(position_, move);
  legal_ = legalMoves(position_);
  if (legal_.empty()) {
    outcome_ = position_.whiteToMove ? Outcome::BlackWins : Outcome::WhiteWins;
  } else if (quietKingMoves_ >= 50) {
    outcome_ = Outcome::Draw;
  }
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
  for (int slot = 0; slot < kSlots; ++slot) {
    const int code = position.fields[slot];
    if (code == kEmpty) continue;
    int value = 300;
    if (!isKing(code)) {
      const int advanced = isWhite(code) ? 9 - rowOf(slot) : rowOf(slot);
      const int column = columnOf(slot);
      const bool central = column >= 2 && column <= 7 && rowOf(slot) >= 3 && rowOf(slot) <= 6;
      value = 100 + 2 * advanced + (central ? 4 : 0);
    }
    if (isWhite(code)) score += value;
    if (isBlack(code)) score -= value;
  }
  return position.whiteToMove ? score : -score;
}

// Negamax with alpha-beta; past the nominal depth only forced captures are followed, so that a
// line never stops in the middle of an exchange.
int search(const Position& position, int depth, int alpha, int beta, int ply, int horizon) {
  const std::vector<Move> moves = legalMoves(position);
  if (moves.empty()) return -(kWin - ply);
  if (depth <= 0 && (moves.front().captured.empty() || ply >= horizon)) return evaluate(position);
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
