#include "WindowHost.h"

#include <SDL.h>

#include <string>

#include "DemoGame.h"
#include "GamePace.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/sdl/SdlEvents.h"

namespace demo {

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
  GamePace pace(game);
  pace.restart(SDL_GetTicks());
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

    pace.step(now, board.gesture().draggingPiece, [&] {
      title = "ostrel-demo - " + game.status();
      platform.setTitle(title);
      SDL_PumpEvents();
    });
    const std::string wanted = "ostrel-demo - " + game.status();
    if (wanted != title) {
      title = wanted;
      platform.setTitle(title);
    }
  }
  return 0;
}

}  // namespace demo
