#pragma once
// SDL's offscreen video driver for the suites of the SDL component, and SDL events as a window
// system would deliver them.

#include <SDL.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cmath>

#include "ostrel/ctlBoard.h"
#include "ostrel/sdl/SdlPlatform.h"

namespace ostrel::testing {

class SdlVideo : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    setenv("SDL_VIDEODRIVER", "offscreen", 1);
    videoReady_ = SDL_Init(SDL_INIT_VIDEO) == 0;
  }
  static void TearDownTestSuite() { SDL_Quit(); }
  static inline bool videoReady_ = false;
};

inline SDL_Event sdlButton(uint32_t type, uint32_t window, double x, double y, uint8_t button) {
  SDL_Event e{};
  e.type = type;
  e.button.windowID = window;
  e.button.button = button;
  e.button.state = type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED;
  e.button.x = static_cast<int32_t>(std::lround(x));
  e.button.y = static_cast<int32_t>(std::lround(y));
  return e;
}

inline SDL_Event sdlMotion(uint32_t window, double x, double y, uint32_t held) {
  SDL_Event e{};
  e.type = SDL_MOUSEMOTION;
  e.motion.windowID = window;
  e.motion.state = held;
  e.motion.x = static_cast<int32_t>(std::lround(x));
  e.motion.y = static_cast<int32_t>(std::lround(y));
  return e;
}

}  // namespace ostrel::testing
