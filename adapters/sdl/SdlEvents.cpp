#include "ostrel/sdl/SdlEvents.h"

#include <algorithm>

#include "ostrel/ctlBoard.h"

namespace ostrel {

int16_t sdlPressedButton(uint8_t sdlButton) {
  switch (sdlButton) {
    case SDL_BUTTON_LEFT:
      return 1;
    case SDL_BUTTON_RIGHT:
      return 2;
    case SDL_BUTTON_MIDDLE:
      return 4;
    default:
      return 0;
  }
}

int16_t sdlHeldButtons(uint32_t sdlButtonState) {
  int16_t mask = 0;
  if (sdlButtonState & SDL_BUTTON_LMASK) mask |= 1;
  if (sdlButtonState & SDL_BUTTON_RMASK) mask |= 2;
  if (sdlButtonState & SDL_BUTTON_MMASK) mask |= 4;
  return mask;
}

int16_t sdlShiftMask(uint16_t sdlModifiers) {
  int16_t mask = 0;
  if (sdlModifiers & KMOD_SHIFT) mask |= 1;
  if (sdlModifiers & KMOD_CTRL) mask |= 2;
  if (sdlModifiers & KMOD_ALT) mask |= 4;
  return mask;
}

int16_t sdlVirtualKeyCode(SDL_Keycode key) {
  if (key >= SDLK_a && key <= SDLK_z) return static_cast<int16_t>('A' + (key - SDLK_a));
  if (key >= SDLK_0 && key <= SDLK_9) return static_cast<int16_t>('0' + (key - SDLK_0));
  if (key >= SDLK_KP_1 && key <= SDLK_KP_9) return static_cast<int16_t>(97 + (key - SDLK_KP_1));
  if (key >= SDLK_F1 && key <= SDLK_F12) return static_cast<int16_t>(112 + (key - SDLK_F1));
  switch (key) {
    case SDLK_BACKSPACE:
      return 8;
    case SDLK_TAB:
      return 9;
    case SDLK_RETURN:
    case SDLK_KP_ENTER:
      return 13;
    case SDLK_ESCAPE:
      return 27;
    case SDLK_SPACE:
      return 32;
    case SDLK_PAGEUP:
      return 33;
    case SDLK_PAGEDOWN:
      return 34;
    case SDLK_END:
      return 35;
    case SDLK_HOME:
      return 36;
    case SDLK_LEFT:
      return 37;
    case SDLK_UP:
      return 38;
    case SDLK_RIGHT:
      return 39;
    case SDLK_DOWN:
      return 40;
    case SDLK_INSERT:
      return 45;
    case SDLK_DELETE:
      return 46;
    case SDLK_KP_0:
      return 96;
    default:
      return 0;
  }
}

SdlControlDriver::SdlControlDriver(SdlPlatform& platform, ctlBoard& board)
    : platform_(platform), board_(board), lastTick_(SDL_GetTicks()) {}

bool SdlControlDriver::handle(const SDL_Event& event) {
  const uint32_t id = platform_.windowId();
  float X = 0, Y = 0;
  switch (event.type) {
    case SDL_WINDOWEVENT:
      if (event.window.windowID != id) return false;
      if (event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) board_.resize();
      if (event.window.event == SDL_WINDOWEVENT_EXPOSED ||
          event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
        // Before the first frame Paint draws nothing: the window shows its back colour.
        if (platform_.presentedAny()) {
          board_.Paint();
        } else {
          platform_.repaint();
        }
      }
      return true;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP: {
      if (event.button.windowID != id) return false;
      const int16_t button = sdlPressedButton(event.button.button);
      if (button == 0) return true;
      platform_.toTwips(static_cast<float>(event.button.x), static_cast<float>(event.button.y), X,
                        Y);
      const int16_t shift = sdlShiftMask(static_cast<uint16_t>(SDL_GetModState()));
      if (event.type == SDL_MOUSEBUTTONDOWN) {
        board_.pic_MouseDown(button, shift, X, Y);
      } else {
        board_.pic_MouseUp(button, shift, X, Y);
      }
      return true;
    }
    case SDL_MOUSEMOTION:
      if (event.motion.windowID != id) return false;
      platform_.toTwips(static_cast<float>(event.motion.x), static_cast<float>(event.motion.y), X,
                        Y);
      board_.pic_MouseMove(sdlHeldButtons(event.motion.state),
                           sdlShiftMask(static_cast<uint16_t>(SDL_GetModState())), X, Y);
      return true;
    case SDL_KEYDOWN:
      if (event.key.windowID != id) return false;
      if (const int16_t key = sdlVirtualKeyCode(event.key.keysym.sym); key != 0) {
        board_.pic_KeyDown(key, sdlShiftMask(event.key.keysym.mod));
      }
      return true;
    default:
      return false;
  }
}

void SdlControlDriver::tick() {
  const TimerControl& timer = board_.Timer1();
  if (!timer.Enabled) return;
  const uint32_t now = SDL_GetTicks();
  if (now - lastTick_ < static_cast<uint32_t>(std::max(timer.Interval, 0))) return;
  lastTick_ = now;
  board_.Timer1_Timer();
}

int SdlControlDriver::msUntilTick() const {
  const TimerControl& timer = board_.Timer1();
  if (!timer.Enabled) return -1;
  const uint32_t elapsed = SDL_GetTicks() - lastTick_;
  const uint32_t interval = static_cast<uint32_t>(std::max(timer.Interval, 0));
  return elapsed >= interval ? 0 : static_cast<int>(interval - elapsed);
}

}  // namespace ostrel
