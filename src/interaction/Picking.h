#pragma once
// From a pointer position on the picture to a point on the board plane and a field.

#include <cstdint>

#include "state/ControlState.h"

namespace ostrel::interaction {

// Casts the line of sight through pixel (x, y) (in twips) under the camera of the last frame and
// meets it with the board plane. Without a device nothing is written; when the line runs
// parallel to the plane boardX and boardY keep what the caller put in them; field is then still
// the field of (boardX, boardY), -1 off the board and on light squares.
void screenToBoard(ControlState& s, float x, float y, float& boardX, float& boardY, int16_t& field);

// The other way: where the last frame shows the top of a disc resting on a field, in twips of pic.
// False without a device.
bool fieldToScreen(ControlState& s, int16_t field, float& x, float& y);

}  // namespace ostrel::interaction
