#pragma once
// SDL's offscreen video driver for the suites of the SDL component, and SDL events as a window
// system would deliver them.

#include <SDL.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include "consumer-sdl/SdlInput.h"
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

using consumer::sdlButton;
using consumer::sdlMotion;

}  // namespace ostrel::testing
