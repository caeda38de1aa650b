#pragma once
// Placing the scene from the position: which disc and shadow stand on which field, and where.

#include "state/ControlState.h"

namespace ostrel::scene {

// Rebuilds every disc and shadow record and the per-field arrays from fieldCode, dealing the
// slots of each colour out afresh in field order, and ends by setting the only-move marker.
// Draws nothing and needs no device.
void drawBoard(ControlState& s);

}  // namespace ostrel::scene
