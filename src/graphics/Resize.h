#pragma once
// Following a change of the control's size: the picture box at once with a stretched frame, the
// device's back buffer half a second after the last change.

#include "state/ControlState.h"

namespace ostrel::graphics {

// Gives pic the control's current width, then its height, and tells the window its size.
void fitPictureToControl(ControlState& s);

void resize(ControlState& s);

// The tick of Timer1: the deferred Reset once the size has stood still for more than half a
// second.
void timerTick(ControlState& s);

}  // namespace ostrel::graphics
