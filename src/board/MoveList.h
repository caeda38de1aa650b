#pragma once
// The list of moves on offer: normal forms in slots 0 to moveCount - 1, at most 256 of them.

#include <cstdint>
#include <string_view>

#include "ostrel/BoardRecords.h"

namespace ostrel::board {

// The most moves the list holds; slot 256 is never filled.
inline constexpr int16_t kMaxMoves = 256;

// Forgets every move. The old texts stay in their slots until they are overwritten.
void clearMoves(MoveList& list);

// Stores the normal form of strMove after the last move; a full list drops it silently.
void addMove(MoveList& list, std::string_view strMove);

// True when some listed move starts on field source: the text before the first "-" equals the
// decimal text of source. An entry with no "-" has no source text and never matches.
bool findMoveBySource(const MoveList& list, int16_t source);

}  // namespace ostrel::board
