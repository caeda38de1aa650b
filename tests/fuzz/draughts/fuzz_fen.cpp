// Feeds arbitrary text to the FEN reader. A position it accepts must write out and read back the
// same, and its moves must play; a text it refuses must leave the position alone.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "ostrel/draughts.h"

using namespace ostrel::draughts;

namespace {

void check(bool ok) {
  if (!ok) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  Position position = Position::start();
  TextError error;
  if (!readFen(text, position, error)) {
    check(position == Position::start());
    check(error.line == 1 && error.column >= 1 && !error.message.empty());
    check(static_cast<size_t>(error.column) <= size + 1);
    return 0;
  }
  const std::string written = toFen(position);
  const std::optional<Position> again = parseFen(written);
  check(again.has_value() && *again == position);
  // A few plies from the position: every move names itself and plays.
  for (int ply = 0; ply < 4; ++ply) {
    const std::vector<Move> moves = legalMoves(position);
    if (moves.empty()) break;
    for (const Move& move : moves) {
      check(move.from() >= 1 && move.from() <= kFields && move.to() >= 1 && move.to() <= kFields);
      const MoveMatch match = matchMove(position, moves, moveText(move, moves));
      check(match.index.has_value() && moves[*match.index].sameMove(move));
    }
    position = play(position, moves[static_cast<size_t>(data[ply % size]) % moves.size()]);
  }
  return 0;
}
