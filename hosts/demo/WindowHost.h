#pragma once
// The demo in an SDL window: the game loop that feeds the control its platform events.

#include <cstdint>

#include "ostrel/sdl/SdlPlatform.h"

namespace demo {

// Plays games in the window until it is closed. 1 when the control did not start.
int runWindow(ostrel::SdlPlatform& platform, uint32_t seed);

}  // namespace demo
