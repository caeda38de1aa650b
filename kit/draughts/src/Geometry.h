#pragma once
// The diagonals of the board, worked out once: from each slot (field - 1), the slots met walking
// in each of the four directions, nearest first.

#include <cstdint>
#include <vector>

#include "ostrel/draughts.h"

namespace ostrel::draughts::detail {

constexpr int kDirections = 4;
// up-left, up-right, down-left, down-right; "up" is toward field 1, white's way forward.
constexpr int kRowStep[kDirections] = {-1, -1, 1, 1};
constexpr int kColumnStep[kDirections] = {-1, 1, -1, 1};

constexpr int rowOf(int slot) {
  return slot / 5;
}
constexpr int columnOf(int slot) {
  return 2 * (slot % 5) + (rowOf(slot) % 2 == 0 ? 1 : 0);
}

struct Rays {
  int8_t length[kFields][kDirections]{};
  int8_t slot[kFields][kDirections][9]{};
};

constexpr Rays makeRays() {
  Rays rays;
  for (int from = 0; from < kFields; ++from) {
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

inline constexpr Rays kRays = makeRays();

constexpr bool isWhite(Piece p) {
  return p == WhiteMan || p == WhiteKing;
}
constexpr bool isBlack(Piece p) {
  return p == BlackMan || p == BlackKing;
}
constexpr bool isKing(Piece p) {
  return p == WhiteKing || p == BlackKing;
}
constexpr bool belongsTo(Piece p, Side side) {
  return side == Side::White ? isWhite(p) : isBlack(p);
}
constexpr Side other(Side side) {
  return side == Side::White ? Side::Black : Side::White;
}

// Every route of the longest captures, one entry per route: moves that take the same pieces by
// different routes are all there.
std::vector<Move> captureRoutes(const Position& position);

}  // namespace ostrel::draughts::detail
