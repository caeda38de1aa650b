#pragma once
// The picture's key handler: Escape cancels a piece drag, and every key goes on to the host.

#include <cstdint>

#include "state/ControlState.h"

namespace ostrel::interaction {

inline constexpr int16_t kEscapeKey = 27;

void pic_KeyDown(ControlState& s, int16_t KeyCode, int16_t Shift);

}  // namespace ostrel::interaction
