// What a frame asks of the device, recorded instead of drawn: the calls of a frame and the order
// of its passes, which no picture shows. (The blends, positions and the states that end a frame
// early are seen in the pictures of FrameGlTest.cpp.) The shipped models load through the
// recording device, so no OpenGL context is made.

#include <gtest/gtest.h>

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

TEST(RecordedFrame, PassesDrawWhatTheSceneShowsInOrder) {
  for (const int16_t qShadow : {0, 1}) {
    SCOPED_TRACE(qShadow);
    HeadlessPlatform platform;
    ctlBoard board{platform};
    ControlState& state = controlState(board);
    EventRecorder events{board};
    const auto device = std::make_shared<RecordingDevice>();
    graphics::GraphicsContext& context = graphics::graphicsContext();
    context.platform = &platform;
    context.baseDirectory = platform.AppPath();
    context.direct3D = std::make_shared<RecordingDirect3D>();
    context.device = device;
    state.qShadow = qShadow;
    graphics::fitPictureToControl(state);
    graphics::loadBoardAndMarkers(state);
    graphics::loadPieceMeshes(state);
    ASSERT_TRUE(board.models().pieceMesh[0].visible);
    for (const auto& [field, code] : {std::pair{31, kWhiteMan},
                                      {32, kWhiteMan},
                                      {33, kWhiteKing},
                                      {18, kBlackMan},
                                      {19, kBlackKing}}) {
      board.field(static_cast<int16_t>(field - 1), code);
    }
    board.drawBoard();
    board.setHLfields("7|12");
    board.highlightLastMove(true);
    board.setHighLightField(28);
    device->calls.clear();
    board.render();

    std::vector<std::string> calls = device->calls;
    std::erase(calls, "Draw");
    EXPECT_EQ(calls, (std::vector<std::string>{"Clear", "BeginScene", "EndScene", "Present"}));
    EXPECT_EQ(events.lines, (std::vector<std::string>{"afterDraw"}));

    // Each pass in turn, each mesh with one draw per material.
    const ModelSet& m = board.models();
    auto nameOf = [&](const graphics::Mesh* mesh) -> std::string {
      for (size_t i = 0; i < m.markerMesh.size(); ++i) {
        if (mesh == m.markerMesh[i].mesh()) return "marker " + std::to_string(i);
      }
      return mesh == m.boardMesh.mesh()      ? "board"
             : mesh == m.shadowMesh.mesh()   ? "shadow"
             : mesh == m.pieceMesh[0].mesh() ? "white"
             : mesh == m.pieceMesh[1].mesh() ? "black"
                                             : "?";
    };
    std::vector<std::string> passes;
    for (const auto& [mesh, subset] : device->draws) {
      const std::string name = nameOf(mesh);
      if (passes.empty() || passes.back() != name || subset == 0) passes.push_back(name);
    }
    // The opaque pieces first (white two men and a king, black a man and a king; a king is two
    // discs), so that nothing is shaded under them.
    std::vector<std::string> expected = {"white",    "white",    "white",    "white",
                                         "black",    "black",    "black",    "board",
                                         "marker 1", "marker 2", "marker 16"};
    if (qShadow == 1) expected.insert(expected.end(), 5, "shadow");
    EXPECT_EQ(passes, expected);
    context.platform = nullptr;
    context.baseDirectory.clear();
  }
}
