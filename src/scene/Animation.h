#pragma once
// The falling-pieces animation: the position builds itself up from a column above the middle of
// the board, one piece after another in a shuffled order, at time values the host chooses.

#include "state/ControlState.h"

namespace ostrel::scene {

// Shuffles the falling order and saves fieldPiece and fieldKingTop. Draws and moves nothing.
void initAnimation(ControlState& s);

// Lays out every piece for the time value dblTime and draws one frame. Between -1 - 47/80 and 1
// the pieces fall; from 1 on all of them rest on their fields, one disc each, with no shadows.
void animation(ControlState& s, double dblTime);

// Puts the saved fieldPiece and fieldKingTop back. Moves no disc; drawBoard does that.
void stopAnimation(ControlState& s);

}  // namespace ostrel::scene
