// A second start-up from the shipped asset set draws the same picture as the first. (The picture
// itself is held to the pictures under reference/ by ReferenceFramesGlTest.cpp.)

#include "StartupFixture.h"
#include "support/GraphicsFixture.h"
#include "support/LiveBoard.h"

namespace {

using namespace startup_test;

TEST(ShippedAssets, ASecondStartUpDrawsTheSamePicture) {
  Control s(quickOptions(240, 240));
  s.board.rotationHorizontalAxis(0.9f);
  ostrel::testing::openingPosition(s.board);
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  const Image shot = s.platform.windowImage();
  const auto corner = ostrel::testing::pixel(shot, 0, 0);
  ASSERT_GT(ostrel::testing::countNot(shot, {corner[0], corner[1], corner[2]}), 240 * 240 / 4);
  // It loads into the same mesh objects: pieces and shadows stand where they stood, and the log
  // is written afresh.
  s.assets.write("directxlog.txt", "stale\r\n");
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  EXPECT_EQ(s.assets.log(), logOf(quickOptions(240, 240)));
  EXPECT_TRUE(s.platform.windowImage().rgba == shot.rgba);
}

}  // namespace
