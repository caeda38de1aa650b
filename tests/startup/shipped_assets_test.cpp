// The shipped asset set through our own loader and renderer: every file loads, the scaled models
// have the vertex format that scaling needs, every material names an image, and a drawn starting
// position shows light men and dark men on their fields.

#include <cmath>

#include "StartupFixture.h"
#include "graphics/d3d8.h"
#include "ostrel/notation.h"

namespace {

using namespace startup_test;
using ostrel::ctlBoard;
using ostrel::HeadlessPlatform;
namespace gfx = ostrel::graphics;

constexpr uint32_t kPositionNormalTexture = 0x112;

TEST(ShippedAssets, EveryModelLoadsWithItsImages) {
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  ASSERT_TRUE(platform.messages().empty()) << platform.messages().front();
  const ostrel::ModelSet& m = board.models();
  const std::pair<const char*, const ostrel::clsMesh*> meshes[] = {
      {"board.x", &m.boardMesh},    {"hl.x", &m.markerMesh[0]},   {"hl2.x", &m.markerMesh[1]},
      {"hl3.x", &m.markerMesh[16]}, {"white.x", &m.pieceMesh[0]}, {"black.x", &m.pieceMesh[1]},
      {"shadow.x", &m.shadowMesh}};
  for (const auto& [name, mesh] : meshes) {
    ASSERT_TRUE(mesh->hasMesh()) << name;
    EXPECT_EQ(mesh->mesh()->GetFVF(), kPositionNormalTexture) << name;
    EXPECT_GT(mesh->mesh()->GetNumFaces(), 0u) << name;
    ASSERT_GT(mesh->materialCount(), 0) << name;
    EXPECT_EQ(mesh->mesh()->GetNumSubsets(), static_cast<uint32_t>(mesh->materialCount())) << name;
    for (int32_t i = 0; i < mesh->materialCount(); ++i) {
      EXPECT_TRUE(mesh->hasTexture(i)) << name << " material " << i << " names no image";
    }
  }
}

// Mean luminance of a 5 x 5 block around a pixel.
double luminance(const ostrel::Image& image, int cx, int cy) {
  double sum = 0;
  int n = 0;
  for (int y = cy - 2; y <= cy + 2; ++y) {
    for (int x = cx - 2; x <= cx + 2; ++x) {
      if (x < 0 || y < 0 || x >= image.width || y >= image.height) continue;
      const uint8_t* p = &image.rgba[(static_cast<size_t>(y) * image.width + x) * 4];
      sum += 0.2126 * p[0] + 0.7152 * p[1] + 0.0722 * p[2];
      ++n;
    }
  }
  return n ? sum / n : -1;
}

class StartingPosition : public ::testing::TestWithParam<float> {};

// Seen from above and from an angle: each field's disc is found by projecting its centre with
// the matrices of the frame that drew it.
TEST_P(StartingPosition, MenShowLightAndDarkOnTheirFields) {
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions(480, 480));
  ctlBoard board(platform);
  board.viewingDistance(21.5f);
  board.rotationHorizontalAxis(GetParam());
  for (int f = 1; f <= 20; ++f) board.field(static_cast<int16_t>(f - 1), 3);
  for (int f = 31; f <= 50; ++f) board.field(static_cast<int16_t>(f - 1), 2);
  board.drawBoard();
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  const ostrel::Image shot = platform.windowImage();
  ASSERT_EQ(shot.width, 480);

  ostrel::ControlState& s = ostrel::controlState(board);
  gfx::D3DVIEWPORT8 viewport;
  gfx::graphicsContext().device->GetViewport(viewport);
  double white = 255, black = 0, emptyLow = 255, emptyHigh = 0;
  for (int16_t f = 1; f <= 50; ++f) {
    float x = 0, y = 0;
    ostrel::fieldToBoard(f, x, y);
    gfx::D3DVECTOR screen;
    gfx::D3DXVec3Project(screen, {x, 0.3f, y}, viewport, s.projectionMatrix, s.viewMatrix,
                         s.worldMatrix);
    const int px = static_cast<int>(std::lround(screen.x)),
              py = static_cast<int>(std::lround(screen.y));
    ASSERT_TRUE(px >= 0 && py >= 0 && px < 480 && py < 480) << "field " << f << " off the picture";
    const double l = luminance(shot, px, py);
    if (f >= 31) {
      white = std::min(white, l);
      EXPECT_GT(l, 170) << "white man on field " << f << " at " << px << "," << py;
    } else if (f <= 20) {
      black = std::max(black, l);
      EXPECT_LT(l, 75) << "black man on field " << f << " at " << px << "," << py;
    } else {
      emptyLow = std::min(emptyLow, l);
      emptyHigh = std::max(emptyHigh, l);
    }
  }
  // The empty dark squares lie between the two colours of men.
  EXPECT_LT(emptyHigh, white);
  EXPECT_GT(emptyLow, black);
  // Field 46 lies at the lower left when seen from white's side.
  float x46 = 0, y46 = 0;
  ostrel::fieldToBoard(46, x46, y46);
  gfx::D3DVECTOR p46;
  gfx::D3DXVec3Project(p46, {x46, 0.3f, y46}, viewport, s.projectionMatrix, s.viewMatrix,
                       s.worldMatrix);
  EXPECT_LT(p46.x, 240);
  EXPECT_GT(p46.y, 240);
}

INSTANTIATE_TEST_SUITE_P(Views, StartingPosition,
                         ::testing::Values(static_cast<float>(3.14159 / 2), 0.9f));

}  // namespace
