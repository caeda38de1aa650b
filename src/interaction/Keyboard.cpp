// Keyboard. Escape during a drag puts the piece back as a refused drop does, without the mouseUp
// that ends a drop; fieldCode and the move list stay, so the same move can be tried again at once.
// A rotation is not a drag and goes on. Every key, Escape included, reaches the host as KeyDown.

#include "interaction/Keyboard.h"

#include "interaction/Gestures.h"
#include "scene/Population.h"

namespace ostrel::interaction {

void pic_KeyDown(ControlState& s, int16_t KeyCode, int16_t Shift) {
  if (KeyCode == kEscapeKey && s.gesture.draggingPiece) {
    hideDragMarkers(s);
    scene::drawBoard(s);
    s.redraw();
    s.gesture.rotatingBoard = false;
    s.gesture.draggingPiece = false;
  }
  s.raiseKeyDown(KeyCode, Shift);
}

}  // namespace ostrel::interaction
