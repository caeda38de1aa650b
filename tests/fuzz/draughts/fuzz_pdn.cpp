// Feeds arbitrary bytes to the PDN reader. Every move it keeps must be legal where it stands and
// be named by its own text; every error must say where it is.

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
  const PdnFile file = readPdn(text);
  int number = 0;
  for (const PdnGame& game : file.games) {
    check(game.number == ++number);
    if (game.error) check(game.error->line >= 1 && game.error->column >= 1);
    Position position = game.start;
    for (const PdnMove& move : game.moves) {
      check(move.line >= 1 && move.column >= 1);
      const std::vector<Move> legal = legalMoves(position);
      const MoveMatch match = matchMove(position, legal, move.text);
      check(match.index.has_value() && legal[*match.index].sameMove(move.move));
      position = play(position, move.move);
    }
    check(position == game.positionAfter(game.moves.size()));
  }
  return 0;
}
