// Opens a real SDL window with the board, drags the man on 32 to 28 with SDL events pushed into
// the window's queue, and checks that the host was told "32-28" and that a screenshot of the
// window taken from the X server shows a white man on 28. Run under an X server (xvfb-run).

#include <SDL.h>
#include <SDL_syswm.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <ostrel/ostrel.h>
#include <ostrel/sdl/SdlEvents.h>
#include <ostrel/sdl/SdlPlatform.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "../consumer/WindowChecks.h"
#include "SdlInput.h"

namespace {

constexpr int kSide = 400;

// The window's pixels as the X server holds them.
consumer::Shot screenshot(SDL_Window* window) {
  consumer::Shot shot;
  SDL_SysWMinfo info;
  SDL_VERSION(&info.version);
  if (!SDL_GetWindowWMInfo(window, &info) || info.subsystem != SDL_SYSWM_X11) return shot;
  Display* display = info.info.x11.display;
  XSync(display, False);
  XWindowAttributes attributes;
  XGetWindowAttributes(display, info.info.x11.window, &attributes);
  XImage* image = XGetImage(display, info.info.x11.window, 0, 0, attributes.width,
                            attributes.height, AllPlanes, ZPixmap);
  if (!image) return shot;
  shot.width = attributes.width;
  shot.height = attributes.height;
  for (int y = 0; y < shot.height; ++y) {
    for (int x = 0; x < shot.width; ++x) {
      const unsigned long p = XGetPixel(image, x, y);
      shot.rgb.insert(shot.rgb.end(), {static_cast<uint8_t>((p & image->red_mask) >> 16),
                                       static_cast<uint8_t>((p & image->green_mask) >> 8),
                                       static_cast<uint8_t>(p & image->blue_mask)});
    }
  }
  XDestroyImage(image);
  return shot;
}

void push(SDL_Event event) {
  SDL_PushEvent(&event);
}

}  // namespace

int main() {
  if (SDL_Init(SDL_INIT_VIDEO) != 0) {
    std::fprintf(stderr, "consumer-sdl: no video: %s\n", SDL_GetError());
    return 1;
  }
  int result = 1;
  {
    ostrel::SdlPlatform platform("consumer-sdl", kSide, kSide, 1);
    if (!platform.ok()) {
      std::fprintf(stderr, "consumer-sdl: %s\n", platform.error().c_str());
      SDL_Quit();
      return 1;
    }
    ostrel::ctlBoard board(platform);
    consumer::Moves moves;
    board.setEventSink(&moves);
    ostrel::SdlControlDriver driver(platform, board);
    const auto started = board.init(false, 0, 1);
    if (started != std::optional<bool>(true)) return 1;
    consumer::openingPosition(board);

    const auto shot = [&] { return screenshot(platform.window()); };
    double x32 = 0, y32 = 0, x28 = 0, y28 = 0;
    if (!consumer::shownAt(board, shot, "32", x32, y32) ||
        !consumer::shownAt(board, shot, "28", x28, y28)) {
      std::fprintf(stderr, "consumer-sdl: the screenshots show no field markers\n");
      return 1;
    }
    const double emptyBefore = consumer::brightness(shot(), x28, y28);

    // The drag: each event through the window's queue, as the window system would deliver it.
    const uint32_t id = platform.windowId();
    auto pump = [&] {
      SDL_Delay(25);  // the control takes moves from 16 ms after its last frame
      SDL_Event e;
      while (SDL_PollEvent(&e)) driver.handle(e);
      driver.tick();
    };
    push(consumer::sdlButton(SDL_MOUSEBUTTONDOWN, id, x32, y32, SDL_BUTTON_LEFT));
    pump();
    for (int i = 1; i <= 5; ++i) {
      const double x = x32 + (x28 - x32) * i / 5, y = y32 + (y28 - y32) * i / 5;
      push(consumer::sdlMotion(id, x, y, SDL_BUTTON_LMASK));
      pump();
    }
    push(consumer::sdlButton(SDL_MOUSEBUTTONUP, id, x28, y28, SDL_BUTTON_LEFT));
    pump();

    result = consumer::dragVerdict("consumer-sdl", moves, shot(), emptyBefore, x32, y32, x28, y28);
  }
  SDL_Quit();
  return result;
}
