// Whole frames on the offscreen device: the clear of a multisampled device, colours of the light,
// texture and blends, the depth of the passes, the slots a frame draws, lost devices and the
// texture filters. (The projection's aspect is held by the wide reference frame.)

#include <gtest/gtest.h>

#include <cmath>

#include "support/EventRecorder.h"
#include "support/GraphicsFixture.h"

namespace ostrel::testing {
namespace {

using namespace graphics;
using Colour = std::array<double, 3>;

// The frame's light on an upward face: global ambient 0x80 plus 0.81 times the cosine of the
// light's slant, scaling a material whose ambient is its diffuse colour.
constexpr double kUpFactor = 128.0 / 255.0 + 0.81 / std::sqrt(1.04);
constexpr Colour kBoardLit = {0.5 * kUpFactor, 0.25 * kUpFactor, 0.6 * kUpFactor};

int expectByte(double value) {
  return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

void expectColour(const std::array<int, 4>& p, const Colour& c, int tolerance = 2) {
  for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(p[i], expectByte(c[i]), tolerance) << "channel " << i;
}

// A fixture with a device and a board quad that fills the picture, half transparent: a frame
// draws the board opaque.
struct Scene : GraphicsFixture {
  Scene() {
    writeModel("board.x", quadModel(6, 0, {0.5f, 0.25f, 0.6f, 0.5f, 0, 0, 0, ""}));
    state().models.boardMesh.init("models/board.x", "");
  }
  // Loads a one-material quad into a mesh.
  void load(clsMesh& mesh, const std::string& name, float h, float y, const XMaterial& material) {
    writeModel(name, quadModel(h, y, material));
    mesh.init("models/" + name, "");
  }
};

TEST(Frame, ClearsToTheBackColourAndNeedsADeviceAndAPicture) {
  GraphicsFixture f(48, 32, {}, false);
  EventRecorder events(f.board);
  f.state().ambientBackColor = 0x112233;
  f.board.render();
  // A multisampled device, resolved at Present: llvmpipe has four samples, so six give four.
  ASSERT_TRUE(f.startDevice(6));
  EXPECT_EQ(f.device().GetMultiSampleCount(), 4);
  f.state().pic.Width = 0;
  f.board.render();
  EXPECT_EQ(f.platform.presentCount(), 0);
  EXPECT_TRUE(events.frameTimes.empty());

  f.state().pic.Width = 48 * f.platform.TwipsPerPixelX();
  Image image = f.frame();
  EXPECT_EQ(f.platform.presentCount(), 1);
  EXPECT_EQ(image.width, 48);
  EXPECT_EQ(countNot(image, {0x11, 0x22, 0x33}), 0);
}

TEST(Frame, LitColoursFollowTheLightingFormula) {
  Scene f;
  // A face whose normals point along +x gets no light from the slanting sun: ambient and
  // emissive only.
  XModel side = quadModel(1, 0.5f, {0.6f, 0.4f, 0.2f, 1.0f, 0.1f, 0.0f, 0.05f, ""});
  side.normals.assign(4, {1, 0, 0});
  f.writeModel("side.x", side);
  ControlState& s = f.state();
  s.models.pieceMesh[0].init("models/side.x", "");
  s.scene.pieceObject[0].visible = true;
  s.scene.pieceObject[0].Translate(2, 0, 0);
  Image image = f.frame();
  expectColour(f.at(image, -2, 0, 0), kBoardLit);
  const double ambient = 128.0 / 255.0;
  expectColour(f.at(image, 2, 0.5f, 0), {0.1 + 0.6 * ambient, 0.4 * ambient, 0.05 + 0.2 * ambient});
}

TEST(Frame, TexturesModulateTheLitColourTheRightWayUp) {
  Scene f;
  // Quadrants: top left red, top right green, bottom left blue, bottom right white.
  f.writeFile("quads.png",
              pngBytes(2, 2, {200, 0, 0, 255, 0, 200, 0, 255, 0, 0, 200, 255, 200, 200, 200, 255}));
  f.load(f.state().models.boardMesh, "tex.x", 4, 0, {0.5f, 0.5f, 0.5f, 1.0f, 0, 0, 0, "quads.png"});
  ASSERT_TRUE(f.state().models.boardMesh.visible);
  Image image = f.frame();
  const double k = 0.5 * kUpFactor * 200 / 255;
  // Screen up is world +z, where the file's v = 0 (the image's top row) lies.
  for (auto [x, z, colour] : {std::tuple{-2.0f, 2.0f, Colour{k, 0, 0}},
                              {2.0f, 2.0f, Colour{0, k, 0}},
                              {-2.0f, -2.0f, Colour{0, 0, k}},
                              {2.0f, -2.0f, Colour{k, k, k}}}) {
    expectColour(f.at(image, x, 0, z), colour, 3);
  }
}

TEST(Frame, MarkersBlendAlwaysShadowsOnlyForQShadowOneAndNothingElse) {
  Scene f;
  ControlState& s = f.state();
  f.load(s.models.markerMesh[1], "marker.x", 1, 0.001f, {0.4f, 0.2f, 0.1f, 0.5f, 0, 0, 0, ""});
  s.models.markerMesh[1].posX(-2);
  f.writeModel("shadow.x", quadModel(1, 0.01f, {0.5f, 0.5f, 0.5f, 1.0f, 0, 0, 0, ""}));
  s.models.shadowMesh.init("models/shadow.x", "", 0.24);
  s.scene.shadowObject[5].visible = true;
  s.scene.shadowObject[5].Translate(2, 0, 0);
  s.scene.shadowObject[40].visible = true;  // never drawn
  s.scene.shadowObject[40].Translate(0, 0, 2);
  const Colour& dst = kBoardLit;
  // Marker: source x source alpha + destination x destination, a thousandth above the board.
  const Colour marker = {0.4 * kUpFactor * 0.5 + dst[0] * dst[0],
                         0.2 * kUpFactor * 0.5 + dst[1] * dst[1],
                         0.1 * kUpFactor * 0.5 + dst[2] * dst[2]};
  // Shadow: destination x source colour; its alpha of 0.24 plays no part.
  const double shade = 0.5 * kUpFactor;
  const Colour shadow = {dst[0] * shade, dst[1] * shade, dst[2] * shade};
  // The transparency blend of SetupLights is replaced before the board draws.
  s.qTrans = true;
  f.board.SetupLights();
  ASSERT_EQ(f.device().GetRenderState(D3DRS_DESTBLEND), D3DBLEND_INVSRCALPHA);
  for (int16_t q : {0, 2, -1, 1}) {
    SCOPED_TRACE(q);
    s.qShadow = q;
    Image image = f.frame();
    expectColour(f.at(image, -2, 0, 0), marker, 3);
    expectColour(f.at(image, 2, 0, 0), q == 1 ? shadow : dst, 3);
    expectColour(f.at(image, 0, 0, 2), dst);
  }
}

TEST(Frame, PieceSlotsPickTheirMeshAndDepthDecidesCover) {
  Scene f;
  ControlState& s = f.state();
  f.load(s.models.pieceMesh[0], "white.x", 1, 0.5f, {1, 1, 1, 1, 0, 0, 0, ""});
  f.load(s.models.pieceMesh[1], "black.x", 1, 0.2f, {0.1f, 0.1f, 0.1f, 1, 0, 0, 0, ""});
  const int white = 255, black = expectByte(0.1 * kUpFactor), board = expectByte(0.5 * kUpFactor);
  // Slot 23 is the last white one, slot 24 the first black one, 48 is never drawn. Black in slot
  // 30 is drawn after white in slot 0 but lies lower: white keeps the overlap.
  for (auto [slot, x, z] :
       {std::tuple{23, -2, 2}, {24, 2, 2}, {48, -2, -2}, {0, 1, -2}, {30, 2, -2}}) {
    s.scene.pieceObject[slot].visible = true;
    s.scene.pieceObject[slot].Translate(static_cast<float>(x), 0, static_cast<float>(z));
  }
  Image image = f.frame();
  for (auto [x, y, z, red] : {std::tuple{-2.0f, 0.5f, 2.0f, white},
                              {2.0f, 0.2f, 2.0f, black},
                              {-2.0f, 0.0f, -2.0f, board},
                              {1.5f, 0.5f, -2.0f, white},
                              {2.8f, 0.2f, -2.0f, black}}) {
    EXPECT_NEAR(f.at(image, x, y, z)[0], red, 2) << x << ", " << z;
  }
  // The meshes hold the position of the object drawn last.
  EXPECT_FLOAT_EQ(s.models.pieceMesh[0].posX(), -2.0f);
  EXPECT_FLOAT_EQ(s.models.pieceMesh[1].posX(), 2.0f);
}

TEST(Frame, LostDeviceDrawsNothingAndAResettableOneIsResetAndDrawn) {
  Scene f;
  EventRecorder events(f.board);
  f.platform.frameAdvanceMs(40);
  f.frame();
  ASSERT_EQ(events.frameTimes.size(), 1u);
  // The time told to the host includes Present.
  EXPECT_NEAR(events.frameTimes.back(), 0.040f, 1e-3);
  EXPECT_EQ(f.board.timerAfterLastRender(), 1040);

  f.platform.loseDevice();
  f.platform.advance(500);
  f.board.render();
  f.board.Paint();
  EXPECT_EQ(f.platform.presentCount(), 1);
  EXPECT_EQ(events.frameTimes.size(), 1u);
  EXPECT_EQ(f.board.timerAfterLastRender(), 1040);

  f.platform.makeDeviceResettable();
  Image image = f.frame();
  EXPECT_EQ(f.platform.resetCount(), 1);
  EXPECT_EQ(f.platform.presentCount(), 2);
  EXPECT_EQ(events.frameTimes.size(), 2u);
  EXPECT_EQ(f.board.timerAfterLastRender(), f.platform.timeGetTime());
  // The board mesh survived the Reset and the frame was whole.
  expectColour(pixel(image, 48, 48), kBoardLit);
  EXPECT_EQ(f.device().TestCooperativeLevel(), 0);
  f.frame();
  EXPECT_EQ(f.platform.resetCount(), 1);
}

TEST(SetupLights, FiltersFollowTheAnisotropyLevelAndTheDevice) {
  for (auto [level, max, expected] :
       {std::tuple{32, 16, 16u}, {32, 1, 1u}, {2, 16, 2u}, {0, 16, 0u}}) {
    HeadlessOptions o;
    o.maxAnisotropy = max;
    GraphicsFixture f(16, 16, o);
    f.state().anisotropyLevel = static_cast<int16_t>(level);
    f.board.SetupLights();
    Direct3DDevice8& d = f.device();
    const uint32_t filter = expected ? D3DTEXF_ANISOTROPIC : D3DTEXF_LINEAR;
    EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MINFILTER), filter);
    EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MAGFILTER), filter);
    EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MAXANISOTROPY), expected ? expected : 1u);
  }
}

// Fine stripes across the board, one texel each, seen from a camera at the given elevation with
// linear filtering and then with 16-fold anisotropic filtering.
std::array<Image, 2> stripeFrames(float elevation) {
  Scene f;
  std::vector<uint8_t> rgba;
  for (int i = 0; i < 128 * 128; ++i) {
    const uint8_t c = (i / 128) % 2 ? 255 : 0;
    rgba.insert(rgba.end(), {c, c, c, 255});
  }
  f.writeFile("stripes.png", pngBytes(128, 128, rgba));
  f.load(f.state().models.boardMesh, "stripes.x", 6, 0, {1, 1, 1, 1, 0, 0, 0, "stripes.png"});
  f.state().rotationHorizontalAxis = elevation;
  Image linear = f.frame();
  f.state().anisotropyLevel = 32;
  return {linear, f.frame()};
}

// The mean difference between vertical neighbours.
double roughness(const Image& image) {
  double sum = 0;
  for (int y = 0; y + 1 < image.height; ++y) {
    for (int x = 0; x < image.width; ++x)
      sum += std::abs(pixel(image, x, y)[1] - pixel(image, x, y + 1)[1]);
  }
  return sum / (image.width * (image.height - 1));
}

TEST(Frame, AnisotropicFilteringSmoothsGrazingViewsOnly) {
  const auto grazing = stripeFrames(0.3f);
  EXPECT_GT(roughness(grazing[0]), 10.0);
  EXPECT_LT(roughness(grazing[1]), 0.5 * roughness(grazing[0]));
  // Straight down the footprint of a pixel is square: one tap, as linear filtering takes.
  const auto headOn = stripeFrames(static_cast<float>(M_PI / 2));
  EXPECT_GT(roughness(headOn[0]), 10.0);
  EXPECT_EQ(headOn[0].rgba, headOn[1].rgba);
}

}  // namespace
}  // namespace ostrel::testing
