// A starting position drawn by start-up from the shipped asset set, seen from above and from an
// angle: light men and dark men on their fields; and a second start-up draws the same picture.

#include <cmath>

#include "StartupFixture.h"
#include "graphics/d3d8.h"
#include "ostrel/notation.h"
#include "support/LiveBoard.h"

namespace {

using namespace startup_test;
namespace gfx = ostrel::graphics;

// Mean luminance of the 5 x 5 block around a pixel inside the picture.
double luminance(const Image& image, int cx, int cy) {
  double sum = 0;
  for (int y = cy - 2; y <= cy + 2; ++y) {
    for (int x = cx - 2; x <= cx + 2; ++x) {
      const uint8_t* p = &image.rgba[(static_cast<size_t>(y) * image.width + x) * 4];
      sum += 0.2126 * p[0] + 0.7152 * p[1] + 0.0722 * p[2];
    }
  }
  return sum / 25;
}

TEST(ShippedAssets, StartingPositionShowsLightAndDarkMenOnTheirFields) {
  for (float elevation : {static_cast<float>(3.14159 / 2), 0.9f}) {
    SCOPED_TRACE(elevation);
    Control s(quickOptions(480, 480));
    s.board.viewingDistance(21.5f);
    s.board.rotationHorizontalAxis(elevation);
    ostrel::testing::openingPosition(s.board);
    ASSERT_EQ(s.init(), std::optional<bool>(true));
    const Image shot = s.platform.windowImage();
    // Where a field's disc shows: its centre projected with the matrices of the frame.
    const ControlState& st = controlState(s.board);
    gfx::D3DVIEWPORT8 viewport;
    gfx::graphicsContext().device->GetViewport(viewport);
    auto at = [&](int16_t f) {
      float x = 0, y = 0;
      fieldToBoard(f, x, y);
      gfx::D3DVECTOR p;
      gfx::D3DXVec3Project(p, {x, 0.3f, y}, viewport, st.projectionMatrix, st.viewMatrix,
                           st.worldMatrix);
      return std::pair{static_cast<int>(std::lround(p.x)), static_cast<int>(std::lround(p.y))};
    };
    double white = 255, black = 0, emptyLow = 255, emptyHigh = 0;
    for (int16_t f = 1; f <= 50; ++f) {
      const auto [px, py] = at(f);
      ASSERT_TRUE(px >= 2 && py >= 2 && px < 478 && py < 478)
          << "field " << f << " off the picture";
      const double l = luminance(shot, px, py);
      if (f >= 31) {
        white = std::min(white, l);
      } else if (f <= 20) {
        black = std::max(black, l);
      } else {
        emptyLow = std::min(emptyLow, l);
        emptyHigh = std::max(emptyHigh, l);
      }
    }
    // White men are light, black men dark, and the empty dark squares lie between the two.
    EXPECT_GT(white, 170);
    EXPECT_LT(black, 75);
    EXPECT_LT(emptyHigh, white);
    EXPECT_GT(emptyLow, black);
    // Field 46 lies at the lower left when seen from white's side.
    EXPECT_LT(at(46).first, 240);
    EXPECT_GT(at(46).second, 240);

    // A second start-up loads into the same mesh objects: pieces and shadows stand where they
    // stood, and the log is written afresh.
    ASSERT_EQ(s.init(), std::optional<bool>(true));
    EXPECT_EQ(s.assets.log(), logOf(quickOptions(480, 480)));
    EXPECT_TRUE(s.platform.windowImage().rgba == shot.rgba);
  }
}

}  // namespace
