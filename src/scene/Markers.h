#pragma once
// Field markers: slot 16 for the last move, slots 1..15 for the host's fields and the only move,
// slot 0 for the drag's hover target.

#include <cstdint>
#include <string_view>

#include "state/ControlState.h"

namespace ostrel::scene {

// Puts a marker on a field at the given height and shows it. Any field number is taken: one
// outside 1..50 lands beyond the board's edge.
void placeMarker(clsMesh& marker, int16_t field, float height);

// Shows the last-move marker on field hl when hl > 0 and highlightLastMove is on; hides it
// otherwise.
void setHighLightField(ControlState& s, int16_t hl);

// Hides slots 1..15, then marks the fields of a "|" list, the i-th name in slot i. Names from the
// sixteenth onward have no slot and are ignored; slot 0 and slot 16 are never touched.
void setHLfields(ControlState& s, std::string_view fields);

// Marks the source of the only listed move in slot 1, or hides slot 1 when the list holds any
// other number of moves.
void markOnlyMove(ControlState& s);

}  // namespace ostrel::scene
