// The scene draws through the callback that the control hands it: here a callback that only
// writes down where the travelling piece stands, with no graphics behind it at all.

#include <gtest/gtest.h>

#include <vector>

#include "graphics/GraphicsContext.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/notation.h"
#include "scene/Playback.h"
#include "scene/Population.h"
#include "state/ControlState.h"

using namespace ostrel;

TEST(Redraw, PlaybackAsksForEachFrameAndNeedsNoDevice) {
  struct Case {
    const char* move;
    int16_t code;
    int frameMs;
    size_t frames;  // lifted frames, then the landing
  } const cases[] = {
      // How many frames each frame time gives, and a king's moves, are playback's own check.
      {"32-28", kWhiteMan, 30, 6},
      {"19-23", kBlackKing, 16, 9},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.move + std::string(" ") + std::to_string(c.frameMs));
    ASSERT_EQ(graphics::graphicsContext().device, nullptr);
    HeadlessPlatform platform;
    platform.useManualClock(0, 0);
    ControlState* state = nullptr;
    std::vector<cls3DobjectInfo> seen;  // the moving disc at each frame
    int16_t disc = -1;
    ControlState s(platform, [&] {
      seen.push_back(state->scene.pieceObject[static_cast<size_t>(disc)]);
      platform.advance(c.frameMs);
    });
    state = &s;
    const int source = tokenValue(getToken(c.move, "-", 1, 0));
    const int target = tokenValue(getToken(c.move, "-", 2, 0));
    s.fieldCode[static_cast<size_t>(source - 1)] = c.code;
    scene::drawBoard(s);
    disc = s.scene.fieldPiece[static_cast<size_t>(source - 1)];
    ASSERT_GE(disc, 0);

    scene::showMove(s, c.move);
    ASSERT_EQ(seen.size(), c.frames);
    float x, y;
    fieldToBoard(static_cast<int16_t>(target), x, y);
    for (size_t i = 0; i + 1 < seen.size(); ++i) EXPECT_FLOAT_EQ(seen[i].posY(), 0.4365f) << i;
    EXPECT_FLOAT_EQ(seen.back().posX(), x);
    EXPECT_FLOAT_EQ(seen.back().posY(), 0.2265f);
    EXPECT_EQ(seen.back().posZ(), y);
  }
}
