// ostrel-demo: a game of international draughts against a small opponent on the 3D board, in a
// window. Where no display exists it plays the same game headless and writes PNG pictures.
//
//   ostrel-demo [--headless] [--plies N] [--out DIR] [--seed S] [--pdn FILE [--game N]]
//   (--help tells more)

#include <SDL.h>

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "HeadlessGame.h"
#include "Options.h"
#include "SdlPlatform.h"
#include "WindowHost.h"

int main(int argc, char** argv) {
  const std::string program = argc > 0 ? argv[0] : "ostrel-demo";
  std::string error;
  auto options = demo::parseOptions(std::vector<std::string>(argv + 1, argv + argc), error);
  if (!options) {
    std::fprintf(stderr, "%s: %s\n\n%s", program.c_str(), error.c_str(),
                 demo::usage(program).c_str());
    return 2;
  }
  if (options->help) {
    std::printf("%s", demo::usage(program).c_str());
    return 0;
  }
  const uint32_t seed = options->seed ? *options->seed : std::random_device{}();
  std::optional<demo::Review> review;
  if (!options->pdn.empty()) {
    std::string warning;
    review = demo::loadReview(options->pdn, options->game, error, warning);
    if (!review) {
      std::fprintf(stderr, "%s: %s\n", program.c_str(), error.c_str());
      return 1;
    }
    if (!warning.empty()) std::fprintf(stderr, "%s: %s\n", program.c_str(), warning.c_str());
  }
  const demo::Review* reviewed = review ? &*review : nullptr;

  std::string noDisplay;
#ifdef __linux__
  // Without either, SDL could only take over the console's screen, or find nothing.
  if (!options->headless && !std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY")) {
    noDisplay = "neither DISPLAY nor WAYLAND_DISPLAY is set";
  }
#endif
  if (!options->headless && noDisplay.empty()) {
    if (SDL_Init(SDL_INIT_VIDEO | SDL_INIT_TIMER) == 0) {
      int result = 1;
      bool windowed = false;
      {
        ostrel::SdlPlatform platform("ostrel-demo", 800, 800);
        if (platform.ok()) {
          windowed = true;
          result = demo::runWindow(platform, seed, reviewed);
        } else {
          noDisplay = platform.error();
        }
      }
      SDL_Quit();
      if (windowed) return result;
    } else {
      noDisplay = SDL_GetError();
    }
  }

  if (noDisplay.empty()) {
    std::printf("%s: headless as asked; the pictures go to %s/\n", program.c_str(),
                options->out.c_str());
  } else {
    std::printf("%s: no display (%s); playing headless, the pictures go to %s/\n", program.c_str(),
                noDisplay.c_str(), options->out.c_str());
  }
  std::fflush(stdout);
  demo::HeadlessRun run;
  run.plies = options->plies;
  run.out = options->out;
  run.seed = seed;
  run.review = reviewed;
  return demo::playHeadless(run, std::cout);
}
