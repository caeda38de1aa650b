#include "board/MoveList.h"

#include <algorithm>
#include <string>

#include "ostrel/notation.h"

namespace ostrel::board {

void clearMoves(MoveList& list) {
  list.moveCount = 0;
}

void addMove(MoveList& list, std::string_view strMove) {
  if (list.moveCount < 0 || list.moveCount >= kMaxMoves) return;
  list.moveList[static_cast<size_t>(list.moveCount)] = normalMove(strMove);
  ++list.moveCount;
}

bool findMoveBySource(const MoveList& list, int16_t source) {
  const std::string wanted = std::to_string(source);
  const int count = std::clamp<int>(list.moveCount, 0, kMaxMoves);
  for (int i = 0; i < count; ++i) {
    const std::string& move = list.moveList[static_cast<size_t>(i)];
    const size_t dash = move.find('-');
    if (dash == std::string::npos) continue;
    if (std::string_view(move).substr(0, dash) == wanted) return true;
  }
  return false;
}

}  // namespace ostrel::board
