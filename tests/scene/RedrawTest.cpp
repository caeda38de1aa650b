// The scene draws through the callback that the control hands it: here a callback that only
// counts the frames, with no graphics behind it at all.

#include <gtest/gtest.h>

#include <algorithm>

#include "ostrel/HeadlessPlatform.h"
#include "ostrel/notation.h"
#include "scene/Playback.h"
#include "scene/Population.h"
#include "state/ControlState.h"

using namespace ostrel;

// A host that must not block steps the move from its own timer: the clock moves between the
// steps, not inside the frames. Each step draws one frame, the first of a hop where it starts,
// and the last one is the landing. (How many frames a move takes at each frame time is the
// playback case's check.)
TEST(Redraw, PlaybackStepsOneFrameAtATime) {
  struct Case {
    const char* move;
    int16_t code;
    int tickMs;
    size_t frames;  // lifted frames, then the landing; 0: nothing to play
  } const cases[] = {
      {"46x37x28", kWhiteKing, 100, 7},  // two hops of two squares: frames at 0, 100, 200 ms each
      {"28-23", kWhiteMan, 16, 0},       // the source is empty
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.move + std::string(" ") + std::to_string(c.tickMs));
    HeadlessPlatform platform;
    platform.useManualClock(0, 0);
    size_t frames = 0;
    ControlState s(platform, [&] { ++frames; });
    s.fieldCode[45] = c.code;
    s.fieldCode[31] = c.code;
    scene::drawBoard(s);

    scene::MovePlayback playback(s, c.move);
    size_t steps = 0;
    for (bool more = true; more; ++steps) {
      const size_t before = frames;
      more = playback.advance();
      EXPECT_EQ(frames, c.frames == 0 ? 0 : before + 1) << steps;
      platform.advance(c.tickMs);
      ASSERT_LT(steps, 100u);
    }
    EXPECT_EQ(frames, c.frames);
    EXPECT_EQ(steps, std::max<size_t>(c.frames, 1));
    EXPECT_FALSE(playback.advance());
    EXPECT_EQ(frames, c.frames);
  }
}
