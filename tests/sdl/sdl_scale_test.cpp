// The SDL window at display scales 1, 1.5 and 2, with its events handed to the control by the
// driver: the picture is drawn at the window's device pixels, the control's twips follow the
// scale, a press at the drawn centre of every field reports that field, and a piece dragged from
// 32 to 28 lands where it was released.

#include "ostrel/sdl/SdlEvents.h"
#include "sdl/SdlTestWindow.h"
#include "support/EventRecorder.h"
#include "support/LiveBoard.h"

namespace {

using namespace ostrel;
using namespace ostrel::testing;

constexpr int kSide = 200;  // device pixels

class SdlScale : public SdlVideo, public ::testing::WithParamInterface<float> {};

TEST_P(SdlScale, PicturesAtDevicePixelsAndPicksEveryFieldAndTheDropWhereItWasReleased) {
  ASSERT_TRUE(videoReady_) << SDL_GetError();
  const float scale = GetParam();
  SdlPlatform window("scale", kSide, kSide, scale);
  ASSERT_TRUE(window.ok()) << window.error();
  ctlBoard board(window);
  EventRecorder events(board);
  SdlControlDriver driver(window, board);
  ASSERT_EQ(board.init(false, 0, 0), std::optional<bool>(true));

  // 15 twips per pixel at scale 1: pic spans the whole drawable in twips of this scale.
  EXPECT_FLOAT_EQ(window.TwipsPerPixelX(), 15 / scale);
  EXPECT_FLOAT_EQ(board.pic().Width, kSide * 15 / scale);
  int w = 0, h = 0;
  window.pictureSize(w, h);
  EXPECT_EQ(std::pair(w, h), std::pair(kSide, kSide));
  EXPECT_EQ(window.windowImage().width, kSide);

  // Window coordinates of a device pixel.
  int ww = 0, wh = 0;
  SDL_GetWindowSize(window.window(), &ww, &wh);
  const double toWindow = static_cast<double>(ww) / kSide;
  const uint32_t id = window.windowId();
  board.viewingDistance(20);
  const auto frame = [&] {
    board.render();
    return window.windowImage();
  };
  for (int16_t f = 1; f <= 50; ++f) {
    const Blob marker = markerShown(board, frame, f);
    ASSERT_GT(marker.count, 0) << f;
    const double x = marker.x * toWindow, y = marker.y * toWindow;
    EXPECT_TRUE(driver.handle(sdlButton(SDL_MOUSEBUTTONDOWN, id, x, y, SDL_BUTTON_LEFT)));
    EXPECT_EQ(events.field, f) << "press at " << x << ", " << y;
    driver.handle(sdlButton(SDL_MOUSEBUTTONUP, id, x, y, SDL_BUTTON_LEFT));
  }

  // A drag from 32 to 28, pressed and released where the pieces are drawn.
  const Blob source = manShown(board, frame, 32), target = manShown(board, frame, 28);
  openingPosition(board);
  events.take();
  driver.handle(sdlButton(SDL_MOUSEBUTTONDOWN, id, source.x * toWindow, source.y * toWindow,
                          SDL_BUTTON_LEFT));
  ASSERT_TRUE(board.gesture().draggingPiece);
  for (int i = 1; i <= 3; ++i) {
    SDL_Delay(20);  // past the time gate of the last frame
    const double x = source.x + (target.x - source.x) * i / 3;
    const double y = source.y + (target.y - source.y) * i / 3;
    driver.handle(sdlMotion(id, x * toWindow, y * toWindow, SDL_BUTTON_LMASK));
  }
  driver.handle(
      sdlButton(SDL_MOUSEBUTTONUP, id, target.x * toWindow, target.y * toWindow, SDL_BUTTON_LEFT));
  const Lines lines = events.take();
  EXPECT_NE(std::find(lines.begin(), lines.end(), "moveDone 2 32-28"), lines.end());
  EXPECT_EQ(events.field, 28);
  EXPECT_EQ(board.field(27), 2);
  EXPECT_EQ(board.field(31), 0);
}

INSTANTIATE_TEST_SUITE_P(Scales, SdlScale, ::testing::Values(1.0f, 1.5f, 2.0f));

// Only the window's own events reach the control; the timer runs while it is enabled.
TEST_F(SdlVideo, DriverTakesItsWindowsEventsAndRunsTheTimer) {
  ASSERT_TRUE(videoReady_) << SDL_GetError();
  SdlPlatform window("driver", 120, 90, 1);
  ASSERT_TRUE(window.ok()) << window.error();
  ctlBoard board(window);
  EventRecorder events(board);
  SdlControlDriver driver(window, board);
  const uint32_t id = window.windowId();

  EXPECT_EQ(driver.msUntilTick(), -1) << "Timer1 is off before init";
  EXPECT_FALSE(driver.handle(sdlButton(SDL_MOUSEBUTTONDOWN, id + 1, 5, 5, SDL_BUTTON_LEFT)));
  EXPECT_TRUE(events.lines.empty());
  SDL_Event key{};
  key.type = SDL_KEYDOWN;
  key.key.windowID = id;
  key.key.keysym.sym = SDLK_ESCAPE;
  key.key.keysym.mod = KMOD_LSHIFT;
  EXPECT_TRUE(driver.handle(key));
  driver.handle(sdlButton(SDL_MOUSEBUTTONDOWN, id, 5, 5, SDL_BUTTON_X1));  // no button of pic's
  driver.handle(sdlButton(SDL_MOUSEBUTTONDOWN, id, 5, 5, SDL_BUTTON_RIGHT));
  driver.handle(sdlButton(SDL_MOUSEBUTTONUP, id, 5, 5, SDL_BUTTON_RIGHT));
  EXPECT_EQ(events.take(), (Lines{"KeyDown 27 1", "mouseDown 2 0 0 rotating",
                                  "afterUserRotation rotating", "mouseUp 2 0 0"}));

  ASSERT_EQ(board.init(false, 0, 0), std::optional<bool>(true));
  ASSERT_TRUE(board.Timer1().Enabled);
  EXPECT_GE(driver.msUntilTick(), 0);
  EXPECT_LE(driver.msUntilTick(), board.Timer1().Interval);

  // A new window size: resize at once, the deferred Reset at a later tick.
  SDL_SetWindowSize(window.window(), 160, 100);
  SDL_Event sized{};
  sized.type = SDL_WINDOWEVENT;
  sized.window.windowID = id;
  sized.window.event = SDL_WINDOWEVENT_SIZE_CHANGED;
  EXPECT_TRUE(driver.handle(sized));
  EXPECT_FLOAT_EQ(board.pic().Width, 160 * 15.0f);
  EXPECT_TRUE(board.resizePending());
  const uint32_t start = SDL_GetTicks();
  while (board.resizePending() && SDL_GetTicks() - start < 5000) {
    SDL_Delay(static_cast<uint32_t>(std::max(driver.msUntilTick(), 1)));
    driver.tick();
  }
  EXPECT_FALSE(board.resizePending()) << "the deferred Reset ran from a tick";
}

}  // namespace
