// What a frame asks of the device, recorded instead of drawn: the order of the passes, the blend
// state of each, which records are drawn where, and the device states that end a frame early.
// The shipped models load through the recording device, so no OpenGL context is made.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "control/ControlAccess.h"
#include "graphics/GraphicsContext.h"
#include "graphics/ModelSet.h"
#include "graphics/Resize.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/notation.h"
#include "support/EventRecorder.h"
#include "support/RecordingDevice.h"

using namespace ostrel;
using namespace ostrel::testing;
using graphics::D3DBLEND_DESTCOLOR;
using graphics::D3DBLEND_SRCALPHA;
using graphics::D3DBLEND_SRCCOLOR;
using graphics::D3DBLEND_ZERO;

namespace {

// A control whose models are loaded on a recording device.
struct RecordedBoard {
  explicit RecordedBoard(int16_t qShadow) {
    graphics::GraphicsContext& context = graphics::graphicsContext();
    context.platform = &platform;
    context.baseDirectory = platform.AppPath();
    context.direct3D = std::make_shared<RecordingDirect3D>();
    context.device = device;
    state.qShadow = qShadow;
    graphics::fitPictureToControl(state);
    graphics::loadBoardAndMarkers(state);
    graphics::loadPieceMeshes(state);
  }
  ~RecordedBoard() {
    graphics::GraphicsContext& context = graphics::graphicsContext();
    context.platform = nullptr;
    context.baseDirectory.clear();
  }

  void place(const std::vector<std::pair<int, int16_t>>& codes) {
    for (const auto& [field, code] : codes) board.field(static_cast<int16_t>(field - 1), code);
    board.drawBoard();
  }

  // What each draw drew: "board", "marker <slot>", "shadow", "white", "black" or "?".
  std::string nameOf(const graphics::Mesh* mesh) const {
    const ModelSet& m = board.models();
    if (mesh == m.boardMesh.mesh()) return "board";
    for (size_t i = 0; i < m.markerMesh.size(); ++i) {
      if (mesh == m.markerMesh[i].mesh()) return "marker " + std::to_string(i);
    }
    if (mesh == m.shadowMesh.mesh()) return "shadow";
    if (mesh == m.pieceMesh[0].mesh()) return "white";
    if (mesh == m.pieceMesh[1].mesh()) return "black";
    return "?";
  }

  HeadlessPlatform platform;
  ctlBoard board{platform};
  ControlState& state = controlState(board);
  std::shared_ptr<RecordingDevice> device = std::make_shared<RecordingDevice>();
  EventRecorder events{board};
};

int count(const std::vector<std::string>& calls, const std::string& name) {
  return static_cast<int>(std::count(calls.begin(), calls.end(), name));
}

}  // namespace

TEST(RecordedFrame, PassesDrawWhatTheSceneShowsInOrder) {
  for (const int16_t qShadow : {0, 1}) {
    SCOPED_TRACE(qShadow);
    RecordedBoard b(qShadow);
    ASSERT_TRUE(b.board.models().pieceMesh[0].visible);
    b.place(
        {{31, kWhiteMan}, {32, kWhiteMan}, {33, kWhiteKing}, {18, kBlackMan}, {19, kBlackKing}});
    b.board.setHLfields("7|12");
    b.board.highlightLastMove(true);
    b.board.setHighLightField(28);
    b.device->calls.clear();
    b.board.render();

    const std::vector<std::string>& calls = b.device->calls;
    ASSERT_GE(calls.size(), 4u);
    EXPECT_EQ(calls.front(), "Clear");
    EXPECT_EQ(calls[1], "BeginScene");
    EXPECT_EQ(calls[calls.size() - 2], "EndScene");
    EXPECT_EQ(calls.back(), "Present");
    EXPECT_EQ(count(b.events.lines, "afterDraw"), 1);

    // Each pass in turn, each mesh with one draw per material.
    std::vector<std::string> passes;
    for (const RecordedDraw& d : b.device->draws) {
      const std::string name = b.nameOf(d.mesh);
      if (passes.empty() || passes.back() != name || d.subset == 0) passes.push_back(name);
    }
    // The opaque pieces first (white two men and a king, black a man and a king; a king is two
    // discs), so that nothing is shaded under them.
    std::vector<std::string> expected = {"white",    "white",    "white",    "white",
                                         "black",    "black",    "black",    "board",
                                         "marker 1", "marker 2", "marker 16"};
    const int shadows = qShadow == 1 ? 5 : 0;
    for (int i = 0; i < shadows; ++i) expected.push_back("shadow");
    EXPECT_EQ(passes, expected);

    for (const RecordedDraw& d : b.device->draws) {
      const std::string name = b.nameOf(d.mesh);
      SCOPED_TRACE(name);
      if (name == "board" || name == "white" || name == "black") {
        EXPECT_FALSE(d.blending);
      } else if (name == "shadow") {
        EXPECT_TRUE(d.blending);
        EXPECT_EQ(d.sourceBlend, D3DBLEND_ZERO);
        EXPECT_EQ(d.destinationBlend, D3DBLEND_SRCCOLOR);
      } else {
        EXPECT_TRUE(d.blending);
        EXPECT_EQ(d.sourceBlend, D3DBLEND_SRCALPHA);
        EXPECT_EQ(d.destinationBlend, D3DBLEND_DESTCOLOR);
      }
    }

    // The last-move marker is drawn where field 28 is, 0.08 to the right of its disc point.
    float x, y;
    fieldToBoard(28, x, y);
    const auto last =
        std::find_if(b.device->draws.begin(), b.device->draws.end(),
                     [&](const RecordedDraw& d) { return b.nameOf(d.mesh) == "marker 16"; });
    ASSERT_NE(last, b.device->draws.end());
    EXPECT_FLOAT_EQ(last->x, x + 0.08f);
    EXPECT_FLOAT_EQ(last->z, y);
    // Every piece draw stands on a visible piece record.
    for (const RecordedDraw& d : b.device->draws) {
      const std::string name = b.nameOf(d.mesh);
      if (name != "white" && name != "black") continue;
      const auto& pieces = b.board.scene().pieceObject;
      EXPECT_TRUE(std::any_of(pieces.begin(), pieces.end(),
                              [&](const cls3DobjectInfo& p) {
                                return p.visible && p.posX() == d.x && p.posY() == d.y &&
                                       p.posZ() == d.z;
                              }))
          << d.x << " " << d.y << " " << d.z;
    }
  }
}

TEST(RecordedFrame, DeviceStateAndPictureDecideHowFarAFrameGoes) {
  struct Case {
    const char* name;
    int32_t cooperativeLevel;
    float pictureWidth;  // 0: a picture without width
    std::vector<std::string> calls;
    int afterDraws;
  } const cases[] = {
      {"able", graphics::D3D_OK, 1, {"Clear", "BeginScene", "EndScene", "Present"}, 1},
      {"lost", graphics::D3DERR_DEVICELOST, 1, {}, 0},
      {"resettable",
       graphics::D3DERR_DEVICENOTRESET,
       1,
       {"Reset", "Clear", "BeginScene", "EndScene", "Present"},
       1},
      {"no width", graphics::D3D_OK, 0, {"Clear"}, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    RecordedBoard b(1);
    b.place({});  // an empty board: the frame draws only the board
    b.device->calls.clear();
    b.device->cooperativeLevel = c.cooperativeLevel;
    if (c.pictureWidth == 0) b.state.pic.Width = 0;
    b.board.render();
    std::vector<std::string> calls;
    for (const std::string& call : b.device->calls) {
      if (call != "Draw") calls.push_back(call);
    }
    EXPECT_EQ(calls, c.calls);
    EXPECT_EQ(count(b.events.lines, "afterDraw"), c.afterDraws);
  }
}

// The scene's frames reach the frame code through the callback the control hands in.
TEST(RecordedFrame, PlaybackFramesGoThroughTheControl) {
  RecordedBoard b(1);
  b.platform.useManualClock(0, 0);  // it moves 16 ms at each frame asked for
  b.place({{32, kWhiteMan}});
  b.device->draws.clear();
  b.device->calls.clear();
  b.board.showMove("32-28");
  // 16 ms frames: eight on the way, then the landing (as the GL playback cases see it).
  EXPECT_EQ(count(b.device->calls, "Present"), 9);
  EXPECT_EQ(count(b.events.lines, "afterDraw"), 9);
  const auto piece =
      std::find_if(b.device->draws.rbegin(), b.device->draws.rend(),
                   [&](const RecordedDraw& d) { return b.nameOf(d.mesh) == "white"; });
  ASSERT_NE(piece, b.device->draws.rend());
  float x, y;
  fieldToBoard(28, x, y);
  EXPECT_FLOAT_EQ(piece->x, x);
  EXPECT_FLOAT_EQ(piece->y, 0.2265f);
  EXPECT_FLOAT_EQ(piece->z, y);
}
