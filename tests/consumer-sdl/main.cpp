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

namespace {

constexpr int kSide = 400;

struct Moves : ostrel::ctlBoardEvents {
  std::vector<std::string> done;
  void moveDone(int16_t&, std::string& move) override { done.push_back(move); }
};

struct Shot {
  int width = 0, height = 0;
  std::vector<uint8_t> rgb;
  const uint8_t* at(int x, int y) const { return &rgb[(static_cast<size_t>(y) * width + x) * 3]; }
};

// The window's pixels as the X server holds them.
Shot screenshot(SDL_Window* window) {
  Shot shot;
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

// Where two screenshots differ: the mean position of the changed pixels.
bool changedCentre(const Shot& a, const Shot& b, double& x, double& y) {
  long count = 0;
  x = y = 0;
  for (int py = 0; py < a.height && a.rgb.size() == b.rgb.size(); ++py) {
    for (int px = 0; px < a.width; ++px) {
      const uint8_t *p = a.at(px, py), *q = b.at(px, py);
      if (std::abs(p[0] - q[0]) + std::abs(p[1] - q[1]) + std::abs(p[2] - q[2]) <= 30) continue;
      x += px, y += py, ++count;
    }
  }
  if (count == 0) return false;
  x /= count, y /= count;
  return true;
}

// Mean brightness of a small square around a point.
double brightness(const Shot& shot, double cx, double cy) {
  double sum = 0;
  int n = 0;
  for (int y = static_cast<int>(cy) - 3; y <= static_cast<int>(cy) + 3; ++y) {
    for (int x = static_cast<int>(cx) - 3; x <= static_cast<int>(cx) + 3; ++x) {
      const uint8_t* p = shot.at(x, y);
      sum += (p[0] + p[1] + p[2]) / 3.0, ++n;
    }
  }
  return sum / n;
}

void savePpm(const Shot& shot, const char* path) {
  if (FILE* f = std::fopen(path, "wb")) {
    std::fprintf(f, "P6\n%d %d\n255\n", shot.width, shot.height);
    std::fwrite(shot.rgb.data(), 1, shot.rgb.size(), f);
    std::fclose(f);
  }
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
    Moves moves;
    board.setEventSink(&moves);
    ostrel::SdlControlDriver driver(platform, board);
    const auto started = board.init(false, 0, 1);
    if (started != std::optional<bool>(true)) return 1;
    board.viewingDistance(20);
    for (int16_t slot = 0; slot < 50; ++slot) board.field(slot, slot < 20 ? 3 : slot >= 30 ? 2 : 0);
    board.clearMoveList();
    for (const char* m : {"31-27", "31-26", "32-28", "32-27", "33-29", "33-28", "34-30", "34-29"})
      board.addMoveList(m);
    board.drawBoard();

    // Where the window shows fields 32 and 28: a marker on each, seen in screenshots.
    auto shownAt = [&](const char* field, double& x, double& y) {
      board.setHLfields("");
      board.render();
      const Shot without = screenshot(platform.window());
      board.setHLfields(field);
      board.render();
      const bool found = changedCentre(without, screenshot(platform.window()), x, y);
      board.setHLfields("");
      board.render();
      return found;
    };
    double x32 = 0, y32 = 0, x28 = 0, y28 = 0;
    if (!shownAt("32", x32, y32) || !shownAt("28", x28, y28)) {
      std::fprintf(stderr, "consumer-sdl: the screenshots show no field markers\n");
      return 1;
    }
    const double emptyBefore = brightness(screenshot(platform.window()), x28, y28);

    // The drag: each event through the window's queue, as the window system would deliver it.
    const uint32_t id = platform.windowId();
    auto button = [&](uint32_t type, double x, double y) {
      SDL_Event e{};
      e.type = type;
      e.button.windowID = id;
      e.button.button = SDL_BUTTON_LEFT;
      e.button.state = type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED;
      e.button.x = static_cast<int>(std::lround(x));
      e.button.y = static_cast<int>(std::lround(y));
      push(e);
    };
    auto motion = [&](double x, double y) {
      SDL_Event e{};
      e.type = SDL_MOUSEMOTION;
      e.motion.windowID = id;
      e.motion.state = SDL_BUTTON_LMASK;
      e.motion.x = static_cast<int>(std::lround(x));
      e.motion.y = static_cast<int>(std::lround(y));
      push(e);
    };
    auto pump = [&] {
      SDL_Delay(25);  // the control takes moves from 16 ms after its last frame
      SDL_Event e;
      while (SDL_PollEvent(&e)) driver.handle(e);
      driver.tick();
    };
    button(SDL_MOUSEBUTTONDOWN, x32, y32);
    pump();
    for (int i = 1; i <= 5; ++i) {
      motion(x32 + (x28 - x32) * i / 5, y32 + (y28 - y32) * i / 5);
      pump();
    }
    button(SDL_MOUSEBUTTONUP, x28, y28);
    pump();

    const Shot after = screenshot(platform.window());
    savePpm(after, "consumer-sdl.ppm");
    const double on28 = brightness(after, x28, y28), on32 = brightness(after, x32, y32);
    const bool told = moves.done == std::vector<std::string>{"32-28"};
    const bool shown = on28 > 150 && on28 > emptyBefore + 60 && on32 < 100;
    std::printf("consumer-sdl: moveDone %s; field 28 brightness %.0f (empty %.0f), field 32 %.0f\n",
                moves.done.empty() ? "none" : moves.done.front().c_str(), on28, emptyBefore, on32);
    result = told && shown ? 0 : 1;
    std::printf("consumer-sdl: %s\n", result == 0 ? "ok" : "FAILED");
  }
  SDL_Quit();
  return result;
}
