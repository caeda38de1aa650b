// The SDL window's platform on SDL's offscreen video driver, with a real control in it: what the
// window shows agrees with the headless platform's picture of the same board, the status frame
// lies over it, a new window size reaches pic, and SDL's input comes to the control in its terms.

#include <cstdio>
#include <cstdlib>

#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/sdl/SdlEvents.h"
#include "ostrel/sdl/SdlPlatform.h"
#include "sdl/SdlTestWindow.h"
#include "support/LiveBoard.h"
#include "support/Sized.h"

namespace {

using SdlWindow = ostrel::testing::SdlVideo;

// Mean difference per channel of two pictures; pictures of different sizes differ by 255.
double meanDifference(const ostrel::Image& a, const ostrel::Image& b) {
  if (a.width != b.width || a.rgba.size() != b.rgba.size()) return 255;
  double sum = 0;
  for (size_t i = 0; i < a.rgba.size(); ++i) sum += std::abs(a.rgba[i] - b.rgba[i]);
  return a.rgba.empty() ? 0 : sum / static_cast<double>(a.rgba.size());
}

// The headless platform's pictures of the same control: before init, the start position, and the
// same with the status frame shown. A control of its own, gone before the window's starts: one
// started control per thread.
struct Reference {
  ostrel::Image before, shown, framed;
};
Reference referencePictures() {
  ostrel::HeadlessPlatform offscreen(ostrel::testing::sized(200, 150));
  ostrel::ctlBoard board(offscreen);
  Reference pictures;
  pictures.before = offscreen.windowImage();
  ostrel::testing::openingPosition(board);
  if (board.init(false, 0, 1) != std::optional<bool>(true)) return pictures;
  board.render();
  pictures.shown = offscreen.windowImage();
  board.showProgressBar("Loading", true, 50);
  pictures.framed = offscreen.windowImage();
  return pictures;
}

TEST_F(SdlWindow, ShowsWhatTheHeadlessPlatformShowsWithTheStatusFrameAndFollowsItsSize) {
  ASSERT_TRUE(videoReady_) << SDL_GetError();

  // First: SDL takes its context for the current one until it makes another current itself.
  const Reference reference = referencePictures();
  ASSERT_EQ(reference.shown.width, 200);
  ostrel::SdlPlatform window("test", 200, 150, 1);
  ASSERT_TRUE(window.ok()) << window.error();
  EXPECT_EQ(std::pair(window.controlWidth(), window.controlHeight()), std::pair(3000.0f, 2250.0f));
  ostrel::ctlBoard board(window);

  // Before the first frame the window shows the control's back colour, under the status frame.
  ostrel::Image before = window.windowImage();
  EXPECT_EQ(meanDifference(before, reference.before), 0);

  ostrel::testing::openingPosition(board);
  ASSERT_EQ(board.init(false, 0, 1), std::optional<bool>(true));
  board.render();
  const ostrel::Image shown = window.windowImage();
  // The same renderer on both sides: a picture upside down or shifted is far off.
  EXPECT_LT(meanDifference(shown, reference.shown), 1.0);
  EXPECT_GT(meanDifference(shown, before), 10.0) << "the board is drawn";

  // The status frame is painted over the picture without a new frame of the control.
  board.showProgressBar("Loading", true, 50);
  const ostrel::Image framed = window.windowImage();
  EXPECT_LT(meanDifference(framed, reference.framed), 1.0);
  EXPECT_GT(meanDifference(framed, shown), 1.0);
  board.showProgressBar("", false, 0);
  window.repaint();
  EXPECT_LT(meanDifference(window.windowImage(), shown), 0.01);

  // A bigger window: the control follows at resize, and the picture is stretched to it at once.
  SDL_SetWindowSize(window.window(), 300, 240);
  board.resize();
  EXPECT_EQ(std::pair(board.pic().Width, board.pic().Height), std::pair(300 * 15.0f, 240 * 15.0f));
  const ostrel::Image bigger = window.windowImage();
  EXPECT_EQ(std::pair(bigger.width, bigger.height), std::pair(300, 240));
  EXPECT_TRUE(board.resizePending());
}

TEST(SdlInput, ReachesTheControlInItsOwnTerms) {
  EXPECT_EQ(ostrel::sdlPressedButton(SDL_BUTTON_LEFT), 1);
  EXPECT_EQ(ostrel::sdlPressedButton(SDL_BUTTON_RIGHT), 2);
  EXPECT_EQ(ostrel::sdlPressedButton(SDL_BUTTON_MIDDLE), 4);
  EXPECT_EQ(ostrel::sdlPressedButton(SDL_BUTTON_X1), 0);
  EXPECT_EQ(ostrel::sdlHeldButtons(SDL_BUTTON_LMASK | SDL_BUTTON_RMASK | SDL_BUTTON_MMASK), 7);
  EXPECT_EQ(ostrel::sdlHeldButtons(SDL_BUTTON_RMASK), 2);
  EXPECT_EQ(ostrel::sdlShiftMask(KMOD_RSHIFT | KMOD_LALT), 5);
  EXPECT_EQ(ostrel::sdlShiftMask(KMOD_LCTRL | KMOD_NUM), 2);

  const std::pair<SDL_Keycode, int16_t> keys[] = {
      {SDLK_ESCAPE, 27}, {SDLK_LEFT, 37},   {SDLK_UP, 38},     {SDLK_RIGHT, 39}, {SDLK_DOWN, 40},
      {SDLK_a, 65},      {SDLK_n, 78},      {SDLK_z, 90},      {SDLK_0, 48},     {SDLK_9, 57},
      {SDLK_F1, 112},    {SDLK_RETURN, 13}, {SDLK_CAPSLOCK, 0}};
  for (auto [key, code] : keys)
    EXPECT_EQ(ostrel::sdlVirtualKeyCode(key), code) << SDL_GetKeyName(key);
}

}  // namespace

namespace {

// Each in a child process of its own, as SDL's video driver and Mesa's caps are chosen once.
TEST(SdlWindowDeathTest, WithoutADisplayOrOpenGL33ThePlatformSaysWhy) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  auto open = [](const char* driver, const char* glVersion) {
    setenv("SDL_VIDEODRIVER", driver, 1);
    if (glVersion) setenv("MESA_GL_VERSION_OVERRIDE", glVersion, 1);
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
      std::fprintf(stderr, "no video: %s\n", SDL_GetError());
      std::exit(0);
    }
    ostrel::SdlPlatform window("test", 64, 64, 1);
    ostrel::ctlBoard board(window);
    const bool started = board.init(false, 0, 0).value_or(false);
    std::fprintf(stderr, "ok %d started %d: %s\n", window.ok() ? 1 : 0, started ? 1 : 0,
                 window.error().c_str());
    std::exit(window.ok() || started ? 1 : 0);
  };
  EXPECT_EXIT(open("dummy", nullptr), ::testing::ExitedWithCode(0), "ok 0 started 0: no window");
  EXPECT_EXIT(open("offscreen", "3.0"), ::testing::ExitedWithCode(0),
              "ok 0 started 0: .*(OpenGL 3.3|older than 3.3)");
}

}  // namespace
