#include "WindowHost.h"

#include <SDL.h>

#include <string>

#include "DemoGame.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/sdl/SdlEvents.h"

namespace demo {

namespace {

constexpr uint32_t kOpeningMs = 2000;       // the build-up's length
constexpr uint32_t kOnlyMovePauseMs = 900;  // how long the user sees an only move before it goes

}  // namespace

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
  uint32_t onlyMoveDue = 0;
  std::string title;
  ostrel::SdlControlDriver driver(platform, board);

  bool running = true;
  while (running) {
    // The build-up wants frames as fast as they come; otherwise the loop waits for input.
    SDL_Event event;
    bool have = game.phase() == DemoGame::Phase::Opening ? SDL_PollEvent(&event) != 0
                                                         : SDL_WaitEventTimeout(&event, 20) != 0;
    while (have) {
      if (event.type == SDL_QUIT) running = false;
      driver.handle(event);
      have = SDL_PollEvent(&event) != 0;
    }
    if (!running) break;

    driver.tick();
    const uint32_t now = SDL_GetTicks();

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
