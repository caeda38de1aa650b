#pragma once
// The mouse handlers of the picture: the right button turns the view, the left one carries a
// piece to a field where a listed move ends.

#include <cstdint>

#include "state/ControlState.h"

namespace ostrel::interaction {

// Heights of a carried piece: a quarter unit above rest, higher than a piece that showMove plays.
inline constexpr double kDragLift = 0.25;

// Moves are handled only from this many milliseconds after the end of the last frame, plus one.
inline constexpr int32_t kMoveGateMs = 15;

// Pointer shapes of pic: the size-all arrows while the view turns, the default otherwise.
inline constexpr int16_t kRotatePointer = 5;
inline constexpr int16_t kDefaultPointer = 0;

// X and Y are in twips, relative to pic's client area. Shift is passed on to the host and never
// looked at.
void pic_MouseDown(ControlState& s, int16_t Button, int16_t Shift, float X, float Y);
void pic_MouseMove(ControlState& s, int16_t Button, int16_t Shift, float X, float Y);
void pic_MouseUp(ControlState& s, int16_t Button, int16_t Shift, float X, float Y);

// Hides the hover marker and the fifteen field markers (slots 0..15), as the end of a drag does.
void hideDragMarkers(ControlState& s);

}  // namespace ostrel::interaction
