#pragma once
// The demo in an SDL window: the game loop that feeds the control its platform events.

#include <cstdint>

#include "Review.h"
#include "ostrel/sdl/SdlPlatform.h"

namespace demo {

// Plays games in the window until it is closed, beginning with the review of a recorded game when
// one is given. 1 when the control did not start.
int runWindow(ostrel::SdlPlatform& platform, uint32_t seed, const Review* review = nullptr);

}  // namespace demo
