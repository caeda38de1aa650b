#include "WindowHost.h"

#include <string>

#include "DemoGame.h"
#include "ostrel/ctlBoard.h"

namespace demo {

namespace {

constexpr uint32_t kOpeningMs = 2000;       // the build-up's length
constexpr uint32_t kOnlyMovePauseMs = 900;  // how long the user sees an only move before it goes

}  // namespace

int16_t pressedButton(uint8_t sdlButton) {
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

int16_t heldButtons(uint32_t sdlButtonState) {
  int16_t mask = 0;
  if (sdlButtonState & SDL_BUTTON_LMASK) mask |= 1;
  if (sdlButtonState & SDL_BUTTON_RMASK) mask |= 2;
  if (sdlButtonState & SDL_BUTTON_MMASK) mask |= 4;
  return mask;
}

int16_t shiftMask(uint16_t sdlModifiers) {
  int16_t mask = 0;
  if (sdlModifiers & KMOD_SHIFT) mask |= 1;
  if (sdlModifiers & KMOD_CTRL) mask |= 2;
  if (sdlModifiers & KMOD_ALT) mask |= 4;
  return mask;
}

int16_t virtualKeyCode(SDL_Keycode key) {
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

int runWindow(ostrel::SdlPlatform& platform, uint32_t seed, const Review* review) {
  ostrel::ctlBoard board(platform);
  DemoGame game(board, seed, true);
  board.setEventSink(&game);
  platform.seedRandom(seed);
  platform.setTitle("ostrel-demo - starting");
  // A failed start has shown its message box already.
  const auto started = board.init(false, 1, 1);
  if (!started || !*started) return 1;

  if (review) {
    game.review(review->start, review->line);
  } else {
    game.start();
  }
  uint32_t openingStart = SDL_GetTicks();
  uint32_t lastTick = openingStart;
  uint32_t onlyMoveDue = 0;
  std::string title;
  const float twips = platform.TwipsPerPixelX();

  auto mouse = [&](float x, float y, float& X, float& Y) {
    platform.toDrawable(x, y);
    X = x * twips;
    Y = y * platform.TwipsPerPixelY();
  };

  bool running = true;
  while (running) {
    // The build-up wants frames as fast as they come; otherwise the loop waits for input.
    SDL_Event event;
    bool have = game.phase() == DemoGame::Phase::Opening ? SDL_PollEvent(&event) != 0
                                                         : SDL_WaitEventTimeout(&event, 20) != 0;
    while (have) {
      float X = 0, Y = 0;
      switch (event.type) {
        case SDL_QUIT:
          running = false;
          break;
        case SDL_WINDOWEVENT:
          if (event.window.windowID != platform.windowId()) break;
          if (event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) board.resize();
          if (event.window.event == SDL_WINDOWEVENT_EXPOSED ||
              event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
            if (platform.presentedAny()) {
              board.Paint();
            } else {
              platform.repaint();
            }
          }
          break;
        case SDL_MOUSEBUTTONDOWN:
        case SDL_MOUSEBUTTONUP: {
          const int16_t button = pressedButton(event.button.button);
          if (button == 0) break;
          mouse(static_cast<float>(event.button.x), static_cast<float>(event.button.y), X, Y);
          const int16_t shift = shiftMask(static_cast<uint16_t>(SDL_GetModState()));
          if (event.type == SDL_MOUSEBUTTONDOWN) {
            board.pic_MouseDown(button, shift, X, Y);
          } else {
            board.pic_MouseUp(button, shift, X, Y);
          }
          break;
        }
        case SDL_MOUSEMOTION:
          mouse(static_cast<float>(event.motion.x), static_cast<float>(event.motion.y), X, Y);
          board.pic_MouseMove(heldButtons(event.motion.state),
                              shiftMask(static_cast<uint16_t>(SDL_GetModState())), X, Y);
          break;
        case SDL_KEYDOWN:
          if (const int16_t key = virtualKeyCode(event.key.keysym.sym); key != 0) {
            board.pic_KeyDown(key, shiftMask(event.key.keysym.mod));
          }
          break;
        default:
          break;
      }
      have = SDL_PollEvent(&event) != 0;
    }
    if (!running) break;

    const uint32_t now = SDL_GetTicks();
    const ostrel::TimerControl& timer = board.Timer1();
    if (timer.Enabled && now - lastTick >= static_cast<uint32_t>(timer.Interval)) {
      lastTick = now;
      board.Timer1_Timer();
    }

    const bool dragging = board.gesture().draggingPiece;
    if (!dragging && game.takeNewGameRequest()) {
      game.start();
      openingStart = now;
      onlyMoveDue = 0;
    }
    switch (game.phase()) {
      case DemoGame::Phase::Opening: {
        const uint32_t elapsed = now - openingStart;
        if (elapsed >= kOpeningMs) {
          game.finishOpening();
        } else {
          game.opening(kOpeningFirstTime +
                       (kOpeningLastTime - kOpeningFirstTime) * elapsed / kOpeningMs);
        }
        break;
      }
      case DemoGame::Phase::UserOnlyMove:
        if (onlyMoveDue == 0) {
          onlyMoveDue = now + kOnlyMovePauseMs;
        } else if (static_cast<int32_t>(now - onlyMoveDue) >= 0) {
          onlyMoveDue = 0;
          game.playOnlyMove();
        }
        break;
      case DemoGame::Phase::OpponentToMove:
        if (dragging) break;
        title = "ostrel-demo - " + game.status();
        platform.setTitle(title);
        SDL_PumpEvents();
        game.playOpponent();
        break;
      default:
        break;
    }
    const std::string wanted = "ostrel-demo - " + game.status();
    if (wanted != title) {
      title = wanted;
      platform.setTitle(title);
    }
  }
  return 0;
}

}  // namespace demo
