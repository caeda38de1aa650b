#pragma once
// SDL's events in the control's terms, and a driver that hands a window's events to its control
// and runs the control's Timer1.

#include <SDL.h>

#include <cstdint>

#include "ostrel/sdl/SdlPlatform.h"

namespace ostrel {

class ctlBoard;

// The button of a press (1 left, 2 right, 4 middle, 0 other), the buttons held during a move, the
// Shift mask (1 Shift, 2 Ctrl, 4 Alt) and the virtual-key code of a key (0 for a key without one).
int16_t sdlPressedButton(uint8_t sdlButton);
int16_t sdlHeldButtons(uint32_t sdlButtonState);
int16_t sdlShiftMask(uint16_t sdlModifiers);
int16_t sdlVirtualKeyCode(SDL_Keycode key);

// Feeds one control the events of its platform's window. Both must outlive the driver.
class SdlControlDriver {
 public:
  SdlControlDriver(SdlPlatform& platform, ctlBoard& board);

  // Hands an event of the window to the control: presses, moves and releases in twips, key
  // presses, Paint on an expose, resize and Paint on a change of size. True when the event
  // belonged to the window (whether or not the control had a use for it).
  bool handle(const SDL_Event& event);
  // Runs Timer1_Timer when Timer1 is enabled and its interval has passed since the last tick.
  void tick();
  // Milliseconds until the next tick is due (0: now), or -1 while Timer1 is off: a timeout for
  // SDL_WaitEventTimeout.
  int msUntilTick() const;

 private:
  SdlPlatform& platform_;
  ctlBoard& board_;
  uint32_t lastTick_ = 0;
};

}  // namespace ostrel
