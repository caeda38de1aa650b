// Whole frames on the offscreen device: colours of the light, texture and blends, the order and
// depth of the passes, the slots a frame draws, the projection's aspect and lost devices.

#include <gtest/gtest.h>

#include <cmath>

#include "support/GraphicsFixture.h"

namespace ostrel::testing {
namespace {

using namespace graphics;

// The frame's light on an upward face: global ambient 0x80 plus 0.81 times the cosine of the
// light's slant, scaling a material whose ambient is its diffuse colour.
constexpr double kUpFactor = 128.0 / 255.0 + 0.81 / std::sqrt(1.04);

int expectByte(double value) {
  return static_cast<int>(std::lround(std::clamp(value, 0.0, 1.0) * 255));
}

void expectColour(const std::array<int, 4>& p, double r, double g, double b, int tolerance = 2) {
  EXPECT_NEAR(p[0], expectByte(r), tolerance);
  EXPECT_NEAR(p[1], expectByte(g), tolerance);
  EXPECT_NEAR(p[2], expectByte(b), tolerance);
}

// Counts the frames the host is told of and keeps their times.
struct Frames : ctlBoardEvents {
  explicit Frames(ctlBoard& board) { board.setEventSink(this); }
  void afterDraw(float& frameTime) override { times.push_back(frameTime); }
  int count() const { return static_cast<int>(times.size()); }
  std::vector<float> times;
};

const XMaterial kBoardColour{0.5f, 0.25f, 0.6f, 1.0f, 0, 0, 0, ""};

// A fixture with a device and a board quad that fills the picture.
struct Scene : GraphicsFixture {
  explicit Scene(int width = 96, int height = 96) : GraphicsFixture(width, height) {
    EXPECT_TRUE(startDevice());
    writeModel("board.x", quadModel(6, 0, kBoardColour));
    state().models.boardMesh.init("models/board.x", "");
  }
  std::array<int, 4> at(const Image& image, float x, float y, float z) {
    int px = 0, py = 0;
    pixelOf(x, y, z, px, py);
    return pixel(image, px, py);
  }
};

TEST(Frame, ClearsToTheBackColourAndNeedsADevice) {
  GraphicsFixture f(48, 32);
  Frames events(f.board);
  f.state().ambientBackColor = 0x112233;
  f.board.render();
  EXPECT_EQ(f.platform.presentCount(), 0);
  EXPECT_EQ(events.count(), 0);

  ASSERT_TRUE(f.startDevice());
  Image image = f.frame();
  EXPECT_EQ(f.platform.presentCount(), 1);
  EXPECT_EQ(image.width, 48);
  EXPECT_EQ(countNot(image, {0x11, 0x22, 0x33}, 0), 0);
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
  expectColour(f.at(image, -2, 0, 0), 0.5 * kUpFactor, 0.25 * kUpFactor, 0.6 * kUpFactor);
  const double ambient = 128.0 / 255.0;
  expectColour(f.at(image, 2, 0.5f, 0), 0.1 + 0.6 * ambient, 0.4 * ambient, 0.05 + 0.2 * ambient);
}

TEST(Frame, TexturesModulateTheLitColourTheRightWayUp) {
  Scene f;
  // Quadrants: top left red, top right green, bottom left blue, bottom right white.
  std::vector<uint8_t> rgba = {200, 0, 0, 255, 0, 200, 0, 255, 0, 0, 200, 255, 200, 200, 200, 255};
  f.writeFile("quads.png", pngBytes(2, 2, rgba));
  f.writeModel("tex.x", quadModel(4, 0, {0.5f, 0.5f, 0.5f, 1.0f, 0, 0, 0, "quads.png"}));
  ControlState& s = f.state();
  s.models.boardMesh.init("models/tex.x", "");
  ASSERT_TRUE(s.models.boardMesh.visible);
  Image image = f.frame();
  const double k = 0.5 * kUpFactor * 200 / 255;
  // Screen up is world +z, where the file's v = 0 (the image's top row) lies.
  expectColour(f.at(image, -2, 0, 2), k, 0, 0, 3);
  expectColour(f.at(image, 2, 0, 2), 0, k, 0, 3);
  expectColour(f.at(image, -2, 0, -2), 0, 0, k, 3);
  expectColour(f.at(image, 2, 0, -2), k, k, k, 3);
}

TEST(Frame, MarkersAndShadowsBlendOverTheBoard) {
  Scene f;
  f.writeModel("marker.x", quadModel(1, 0.001f, {0.4f, 0.2f, 0.1f, 0.5f, 0, 0, 0, ""}));
  f.writeModel("shadow.x", quadModel(1, 0.01f, {0.5f, 0.5f, 0.5f, 1.0f, 0, 0, 0, ""}));
  ControlState& s = f.state();
  s.qShadow = 1;
  clsMesh& marker = s.models.markerMesh[1];
  marker.init("models/marker.x", "");
  marker.posX(-2);
  s.models.shadowMesh.init("models/shadow.x", "", 0.24);
  s.scene.shadowObject[0].visible = true;
  s.scene.shadowObject[0].Translate(2, 0, 0);
  Image image = f.frame();

  const double dst[3] = {0.5 * kUpFactor, 0.25 * kUpFactor, 0.6 * kUpFactor};
  // Marker: source x source alpha + destination x destination, a thousandth above the board.
  const double src[3] = {0.4 * kUpFactor, 0.2 * kUpFactor, 0.1 * kUpFactor};
  auto m = f.at(image, -2, 0, 0);
  expectColour(m, src[0] * 0.5 + dst[0] * dst[0], src[1] * 0.5 + dst[1] * dst[1],
               src[2] * 0.5 + dst[2] * dst[2], 3);
  // Shadow: destination x source colour; its alpha of 0.24 plays no part.
  const double shade = 0.5 * kUpFactor;
  expectColour(f.at(image, 2, 0, 0), dst[0] * shade, dst[1] * shade, dst[2] * shade, 3);
  // Elsewhere the board as it is.
  expectColour(f.at(image, 0, 0, 3), dst[0], dst[1], dst[2]);
}

TEST(Frame, ShadowsOnlyForQShadowOne) {
  Scene f;
  f.writeModel("shadow.x", quadModel(1, 0.01f, {0.2f, 0.2f, 0.2f, 1.0f, 0, 0, 0, ""}));
  ControlState& s = f.state();
  s.models.shadowMesh.init("models/shadow.x", "", 0.24);
  s.scene.shadowObject[5].visible = true;
  s.scene.shadowObject[40].visible = true;  // never drawn
  s.scene.shadowObject[40].Translate(-2, 0, 0);
  const int boardR = expectByte(0.5 * kUpFactor);
  for (int16_t q : {0, 2, -1, 1}) {
    s.qShadow = q;
    Image image = f.frame();
    EXPECT_NEAR(f.at(image, 0, 0, 0)[0],
                q == 1 ? expectByte(0.5 * kUpFactor * 0.2 * kUpFactor) : boardR, 2)
        << "qShadow " << q;
    EXPECT_NEAR(f.at(image, -2, 0, 0)[0], boardR, 2) << "slot 40, qShadow " << q;
  }
}

TEST(Frame, PieceSlotsPickTheirMeshAndDepthDecidesCover) {
  Scene f;
  f.writeModel("white.x", quadModel(1, 0.5f, {1, 1, 1, 1, 0, 0, 0, ""}));
  f.writeModel("black.x", quadModel(1, 0.2f, {0.1f, 0.1f, 0.1f, 1, 0, 0, 0, ""}));
  ControlState& s = f.state();
  s.models.pieceMesh[0].init("models/white.x", "");
  s.models.pieceMesh[1].init("models/black.x", "");
  const int white = 255, black = expectByte(0.1 * kUpFactor), board = expectByte(0.5 * kUpFactor);

  // Slot 23 is the last white one, slot 24 the first black one, whatever stands there.
  auto& objects = s.scene.pieceObject;
  objects[23].visible = true;
  objects[23].Translate(-2, 0, 2);
  objects[24].visible = true;
  objects[24].Translate(2, 0, 2);
  objects[48].visible = true;  // never drawn
  objects[48].Translate(-2, 0, -2);
  // Black in slot 30 is drawn after white in slot 0 but lies lower: white keeps the overlap.
  objects[0].visible = true;
  objects[0].Translate(1, 0, -2);
  objects[30].visible = true;
  objects[30].Translate(2, 0, -2);
  Image image = f.frame();
  EXPECT_NEAR(f.at(image, -2, 0.5f, 2)[0], white, 2);
  EXPECT_NEAR(f.at(image, 2, 0.2f, 2)[0], black, 2);
  EXPECT_NEAR(f.at(image, -2, 0, -2)[0], board, 2);
  EXPECT_NEAR(f.at(image, 1.5f, 0.5f, -2)[0], white, 2);
  EXPECT_NEAR(f.at(image, 2.8f, 0.2f, -2)[0], black, 2);
  // The meshes hold the position of the object drawn last.
  EXPECT_FLOAT_EQ(s.models.pieceMesh[0].posX(), -2.0f);
  EXPECT_FLOAT_EQ(s.models.pieceMesh[1].posX(), 2.0f);
}

// Width and height in pixels of what differs from the background along the middle row and
// column.
void extent(const Image& image, int& width, int& height) {
  const auto bg = pixel(image, 0, 0);
  width = height = 0;
  for (int x = 0; x < image.width; ++x) width += pixel(image, x, image.height / 2) != bg;
  for (int y = 0; y < image.height; ++y) height += pixel(image, image.width / 2, y) != bg;
}

TEST(Frame, AspectArgumentIsHeightOverWidth) {
  for (auto [w, h] : {std::pair{120, 120}, std::pair{240, 120}}) {
    GraphicsFixture f(w, h);
    ASSERT_TRUE(f.startDevice());
    f.writeModel("disc.x", discModel(1.5f, 0, 48, {1, 1, 1, 1, 0, 0, 0, ""}));
    f.state().models.boardMesh.init("models/disc.x", "");
    int dw = 0, dh = 0;
    extent(f.frame(), dw, dh);
    ASSERT_GT(dh, 10);
    // Round in a square picture; in a wide one stretched sideways by (width / height) squared.
    const double expected = static_cast<double>(w) * w / (static_cast<double>(h) * h);
    EXPECT_NEAR(static_cast<double>(dw) / dh, expected, 0.08 * expected) << w << "x" << h;
  }
}

TEST(Frame, LostDeviceDrawsNothingAndAResettableOneIsResetAndDrawn) {
  Scene f;
  Frames events(f.board);
  f.state().ambientBackColor = 0x000000;
  f.frame();
  ASSERT_EQ(events.count(), 1);
  const int32_t stamp = f.board.timerAfterLastRender();

  f.platform.loseDevice();
  f.platform.advance(500);
  f.board.render();
  f.board.Paint();
  EXPECT_EQ(f.platform.presentCount(), 1);
  EXPECT_EQ(events.count(), 1);
  EXPECT_EQ(f.board.timerAfterLastRender(), stamp);

  f.platform.makeDeviceResettable();
  f.state().ambientBackColor = 0x0000FF;
  Image image = f.frame();
  EXPECT_EQ(f.platform.resetCount(), 1);
  EXPECT_EQ(f.platform.presentCount(), 2);
  EXPECT_EQ(events.count(), 2);
  EXPECT_EQ(f.board.timerAfterLastRender(), f.platform.timeGetTime());
  // The board mesh survived the Reset and the frame was whole.
  expectColour(pixel(image, 48, 48), 0.5 * kUpFactor, 0.25 * kUpFactor, 0.6 * kUpFactor);
  EXPECT_EQ(f.device().TestCooperativeLevel(), 0);
  f.frame();
  EXPECT_EQ(f.platform.resetCount(), 1);
}

TEST(Frame, AfterDrawTimesTheFrameIncludingPresent) {
  Scene f;
  Frames events(f.board);
  f.platform.frameAdvanceMs(40);
  f.frame();
  ASSERT_EQ(events.count(), 1);
  EXPECT_NEAR(events.times.back(), 0.040f, 1e-3);
  EXPECT_EQ(f.board.timerAfterLastRender(), 1040);
}

TEST(Frame, PictureWithoutWidthDrawsNothing) {
  Scene f;
  Frames events(f.board);
  f.state().pic.Width = 0;
  f.board.render();
  EXPECT_EQ(f.platform.presentCount(), 0);
  EXPECT_EQ(events.count(), 0);
}

TEST(SetupLights, FiltersFollowTheAnisotropyLevelAndTheDevice) {
  for (auto [level, max, expected] :
       {std::tuple{32, 16, 16}, std::tuple{32, 1, 1}, std::tuple{2, 16, 2}, std::tuple{0, 16, 0}}) {
    HeadlessOptions o;
    o.maxAnisotropy = max;
    GraphicsFixture f(16, 16, o);
    ASSERT_TRUE(f.startDevice());
    f.state().anisotropyLevel = static_cast<int16_t>(level);
    f.board.SetupLights();
    Direct3DDevice8& d = f.device();
    const uint32_t filter = expected ? D3DTEXF_ANISOTROPIC : D3DTEXF_LINEAR;
    EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MINFILTER), filter);
    EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MAGFILTER), filter);
    EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MAXANISOTROPY), expected ? expected : 1u);
    EXPECT_EQ(d.GetRenderState(D3DRS_AMBIENT), 0x808080u);
    D3DLIGHT8 light;
    d.GetLight(0, light);
    EXPECT_EQ(light.Type, D3DLIGHT_DIRECTIONAL);
    EXPECT_FLOAT_EQ(light.Diffuse.r, 0.81f);
    EXPECT_FLOAT_EQ(light.Direction.x, 0.2f);
    EXPECT_EQ(d.GetLightEnable(0), 1);
  }
}

// Fine stripes across the board, one texel each, seen from a camera at the given elevation with
// linear filtering and with 16-fold anisotropic filtering. Gives the two pictures' roughness (the
// mean difference between vertical neighbours) and how many pixels differ between them.
struct StripeFrames {
  double linear = 0, anisotropic = 0;
  int differing = 0;
};

StripeFrames stripeFrames(float elevation) {
  Scene f;
  std::vector<uint8_t> rgba;
  for (int y = 0; y < 128; ++y) {
    const uint8_t c = y % 2 ? 255 : 0;
    for (int x = 0; x < 128; ++x) rgba.insert(rgba.end(), {c, c, c, 255});
  }
  f.writeFile("stripes.png", pngBytes(128, 128, rgba));
  f.writeModel("stripes.x", quadModel(6, 0, {1, 1, 1, 1, 0, 0, 0, "stripes.png"}));
  ControlState& s = f.state();
  s.models.boardMesh.init("models/stripes.x", "");
  s.rotationHorizontalAxis = elevation;
  auto roughness = [](const Image& image) {
    double sum = 0;
    for (int y = 0; y + 1 < image.height; ++y) {
      for (int x = 0; x < image.width; ++x)
        sum += std::abs(pixel(image, x, y)[1] - pixel(image, x, y + 1)[1]);
    }
    return sum / (image.width * (image.height - 1));
  };
  StripeFrames r;
  const Image linear = f.frame();
  s.anisotropyLevel = 32;
  const Image anisotropic = f.frame();
  r.linear = roughness(linear);
  r.anisotropic = roughness(anisotropic);
  for (int y = 0; y < linear.height; ++y) {
    for (int x = 0; x < linear.width; ++x)
      r.differing += pixel(linear, x, y) != pixel(anisotropic, x, y);
  }
  return r;
}

TEST(Frame, AnisotropicFilteringSmoothsGrazingViewsOnly) {
  const StripeFrames grazing = stripeFrames(0.3f);
  EXPECT_GT(grazing.linear, 10.0);
  EXPECT_LT(grazing.anisotropic, 0.5 * grazing.linear);
  // Straight down the footprint of a pixel is square: one tap, as linear filtering takes.
  const StripeFrames headOn = stripeFrames(static_cast<float>(M_PI / 2));
  EXPECT_GT(headOn.linear, 10.0);
  EXPECT_EQ(headOn.differing, 0);
}

TEST(SetupLights, TransparencyBlendIsReplacedBeforeAnythingDraws) {
  Scene f;
  ControlState& s = f.state();
  s.qTrans = true;
  f.board.SetupLights();
  Direct3DDevice8& d = f.device();
  EXPECT_EQ(d.GetRenderState(D3DRS_ALPHABLENDENABLE), 1u);
  EXPECT_EQ(d.GetRenderState(D3DRS_DESTBLEND), D3DBLEND_INVSRCALPHA);
  Image image = f.frame();
  expectColour(pixel(image, 48, 48), 0.5 * kUpFactor, 0.25 * kUpFactor, 0.6 * kUpFactor);
  // A frame leaves blending off with the shadow pass's factors.
  EXPECT_EQ(d.GetRenderState(D3DRS_ALPHABLENDENABLE), 0u);
  EXPECT_EQ(d.GetRenderState(D3DRS_SRCBLEND), D3DBLEND_ZERO);
  EXPECT_EQ(d.GetRenderState(D3DRS_DESTBLEND), D3DBLEND_SRCCOLOR);
}

}  // namespace
}  // namespace ostrel::testing
