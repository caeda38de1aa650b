#pragma once
// The demo in an SDL window: the game loop that feeds the control its platform events.

#include <SDL.h>

#include <cstdint>

#include "Review.h"
#include "SdlPlatform.h"

namespace demo {

// Plays games in the window until it is closed, beginning with the review of a recorded game when
// one is given. 1 when the control did not start.
int runWindow(ostrel::SdlPlatform& platform, uint32_t seed, const Review* review = nullptr);

// SDL's input in the control's terms: the button of a press (1 left, 2 right, 4 middle, 0 other),
// the buttons held during a move, the Shift mask (1 Shift, 2 Ctrl, 4 Alt) and the virtual-key code
// of a key (0 for a key without one).
int16_t pressedButton(uint8_t sdlButton);
int16_t heldButtons(uint32_t sdlButtonState);
int16_t shiftMask(uint16_t sdlModifiers);
int16_t virtualKeyCode(SDL_Keycode key);

}  // namespace demo
