#pragma once
// SDL's mouse events as a window system delivers them, on SDL's headers alone: for the consumer
// and for the SDL suites.

#include <SDL.h>

#include <cmath>
#include <cstdint>

namespace consumer {

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

}  // namespace consumer
