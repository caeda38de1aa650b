// The draughts kit's rules for the page's game: the legal moves of a position, the position after
// one of them, both as FEN texts, so that the page's script keeps the game, and the demo's
// opponent.

#include <emscripten/emscripten.h>

#include <string>

#include "Game.h"
#include "ostrel/draughts.h"

namespace draughts = ostrel::draughts;

namespace {

// Texts handed to the page live until the next call.
const char* handOver(std::string text) {
  static std::string held;
  held = std::move(text);
  return held.c_str();
}

}  // namespace

extern "C" {

// The legal moves of the side to move in the control's form, joined by "|"; "" for none or for a
// text that is no position.
EMSCRIPTEN_KEEPALIVE const char* ostrel_rules_moves(const char* fen) {
  auto position = draughts::parseFen(fen);
  if (!position) return handOver({});
  std::string list;
  for (const std::string& move : draughts::controlMoveList(*position)) {
    list += (list.empty() ? "" : "|") + move;
  }
  return handOver(std::move(list));
}

// The position after the legal move that the text names, as FEN; "" when the text names no
// legal move or several.
EMSCRIPTEN_KEEPALIVE const char* ostrel_rules_play(const char* fen, const char* move) {
  auto position = draughts::parseFen(fen);
  if (!position) return handOver({});
  const auto legal = draughts::legalMoves(*position);
  const auto match = draughts::matchMove(*position, legal, move);
  if (!match.index) return handOver({});
  return handOver(draughts::toFen(draughts::play(*position, legal[*match.index])));
}

// The demo's opponent's move for the side to move, in the control's form; "" when there is none.
// The same position and seed give the same move.
EMSCRIPTEN_KEEPALIVE const char* ostrel_rules_choose(const char* fen, unsigned seed) {
  auto position = draughts::parseFen(fen);
  if (!position) return handOver({});
  const auto moves = draughts::controlMoveList(*position);
  if (moves.empty()) return handOver({});
  demo::Opponent opponent(seed);
  return handOver(moves[opponent.choose(*position)]);
}

}  // extern "C"
