#pragma once
// Playing one move on the screen: the piece lifts, travels its route hop by hop at a constant
// speed and lands, and the last-move marker shows up on its last field.

#include <string_view>

#include "state/ControlState.h"

namespace ostrel::scene {

// Plays strMove ("32-28", "26x37x48") on the scene records, drawing a frame for each step of
// the way, and returns once the piece has landed. The position and the per-field arrays are
// left as they were.
void showMove(ControlState& s, std::string_view strMove);

}  // namespace ostrel::scene
