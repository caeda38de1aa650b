// The asset set as start-up loads it: which mesh gets which file, a second start-up, the progress
// bar's two steps, missing files, and the three image properties before and after start-up. (The
// picture start-up draws is held to the pictures under reference/ by ReferenceFramesGlTest.cpp.)

#include "StartupFixture.h"
#include "graphics/d3d8.h"
#include "support/GraphicsFixture.h"
#include "support/LiveBoard.h"

namespace {

using namespace startup_test;

TEST(ModelSet, StartUpLoadsEveryModelWithItsImagesAndHidesTheMarkers) {
  Control s;
  ostrel::testing::openingPosition(s.board);
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  const Image shot = s.platform.windowImage();
  const auto corner = ostrel::testing::pixel(shot, 0, 0);
  ASSERT_GT(ostrel::testing::countNot(shot, {corner[0], corner[1], corner[2]}), 320 * 320 / 4)
      << "a picture to compare the second start-up's with";
  EXPECT_EQ(s.platform.messages(), Lines{});
  const ModelSet& m = s.models();
  const std::pair<const char*, const clsMesh*> meshes[] = {
      {"board.x", &m.boardMesh},    {"hl.x", &m.markerMesh[0]},   {"hl2.x", &m.markerMesh[1]},
      {"hl3.x", &m.markerMesh[16]}, {"white.x", &m.pieceMesh[0]}, {"black.x", &m.pieceMesh[1]},
      {"shadow.x", &m.shadowMesh}};
  for (const auto& [name, mesh] : meshes) {
    SCOPED_TRACE(name);
    ASSERT_TRUE(mesh->hasMesh());
    EXPECT_EQ(mesh->visible, name[0] != 'h');
    // Scaling needs position, normal and one pair of texture coordinates.
    EXPECT_EQ(mesh->mesh()->GetFVF(), 0x112u);
    ASSERT_GT(mesh->materialCount(), 0);
    EXPECT_EQ(mesh->mesh()->GetNumSubsets(), static_cast<uint32_t>(mesh->materialCount()));
    for (int32_t i = 0; i < mesh->materialCount(); ++i) EXPECT_TRUE(mesh->hasTexture(i)) << i;
  }
  for (int i = 0; i <= 16; ++i) {
    EXPECT_TRUE(m.markerMesh[i].hasMesh() && !m.markerMesh[i].visible) << i;
    // Each field marker holds its own copy of the model.
    EXPECT_TRUE(i < 2 || i > 15 || m.markerMesh[i].mesh() != m.markerMesh[1].mesh()) << i;
  }
  EXPECT_FALSE(m.markerMesh[17].hasMesh());
  EXPECT_FALSE(m.pieceMesh[2].hasMesh()) << "slot 2 is never loaded";
  for (int32_t i = 0; i < m.shadowMesh.materialCount(); ++i)
    EXPECT_FLOAT_EQ(m.shadowMesh.material(i).Diffuse.a, 0.24f);
  EXPECT_EQ(s.board.alternativeBoard(), "board.jpg");
  EXPECT_EQ(s.board.alternativePieceWhite() + s.board.alternativePieceBlack(), "");

  // A second start-up loads into the same mesh objects: pieces and shadows stand where they
  // stood, and the log is written afresh.
  s.assets.write("directxlog.txt", "stale\r\n");
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  EXPECT_EQ(s.assets.log(), logOf(quickOptions()));
  EXPECT_TRUE(s.platform.windowImage().rgba == shot.rgba);
}

// The frame painted during start-up as the user sees it, and the frame gone at the end.
TEST(ModelSet, ProgressStepsAtEachPaintOfStartUp) {
  Control s(quickOptions(400, 300));
  s.board.ambientBackColor(0x000000);
  s.board.setInitString("Loading the pieces");
  s.platform.board = &s.board;
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  ASSERT_EQ(s.platform.paints.size(), 2u);
  for (size_t i = 0; i < 2; ++i) {
    const FrameSeen& seen = s.platform.paints[i];
    EXPECT_FLOAT_EQ(seen.fillWidth, 2872.5f * (i + 1));
    EXPECT_FLOAT_EQ(seen.fillHeight, 345.0f);
    EXPECT_TRUE(seen.fillVisible && seen.statusVisible && seen.frameVisible);
    auto rgb = [&](int x, int y) {
      const uint8_t* p = &seen.window.rgba[(static_cast<size_t>(y) * 400 + x) * 4];
      return (p[0] << 16) | (p[1] << 8) | p[2];
    };
    // Frame 8..392 x 8..33 px, its client area one pixel in; half the fill is 191.5 px.
    EXPECT_EQ(rgb(4, 20), 0x000000) << "outside the frame: the back colour";
    EXPECT_EQ(rgb(150, 30), 0x0000FF) << "inside the fill, below the text";
    EXPECT_EQ(rgb(300, 20), i == 0 ? 0xFFFFFF : 0x0000FF) << "the frame's white beyond the fill";
    EXPECT_EQ(rgb(395, 20), 0x000000) << "beyond the frame";
  }
  EXPECT_EQ(s.board.lblStatus().Caption, "Loading the pieces") << "init does not change the text";
  EXPECT_FALSE(s.board.label1().Visible || s.board.lblStatus().Visible ||
               s.board.lblProgress().Visible);

  // With the status text hidden there is no progress paint; the full length is set all the same.
  Control quiet;
  quiet.board.showProgressBar("quiet", false, 0);
  quiet.platform.board = &quiet.board;
  ASSERT_EQ(quiet.init(), std::optional<bool>(true));
  EXPECT_TRUE(quiet.platform.paints.empty());
  EXPECT_FALSE(quiet.board.lblProgress().Visible);
  EXPECT_FLOAT_EQ(quiet.board.lblProgress().Width, 5745.0f);
}

TEST(ModelSet, MissingFileGivesOneMessageAndLeavesItsMeshUndrawn) {
  for (const char* file : {"shadow.x", "piecewhite.png"}) {
    SCOPED_TRACE(file);
    Control s;
    s.assets.remove(file);
    ASSERT_EQ(s.init(), std::optional<bool>(true));
    const bool shadow = file[0] == 's';
    EXPECT_EQ(s.platform.messages(), Lines{s.message(shadow ? "Model" : "Texture", file)});
    EXPECT_EQ(s.assets.log(), logOf(quickOptions()));
    const ModelSet& m = s.models();
    EXPECT_EQ(m.shadowMesh.visible, !shadow);
    EXPECT_EQ(m.pieceMesh[0].visible, shadow);
    EXPECT_TRUE(m.pieceMesh[0].hasMesh()) << "the model loaded, its image did not";
    EXPECT_TRUE(m.pieceMesh[1].visible);
    if (shadow) continue;
    // White failed, so a change of either image only stores: nothing reloads, nothing is said.
    s.board.alternativePieceBlack("nothing-here.png");
    EXPECT_EQ(s.board.alternativePieceBlack(), "nothing-here.png");
    EXPECT_EQ(s.platform.messages().size(), 1u);
    EXPECT_TRUE(m.pieceMesh[1].visible);
  }
}

// The three image properties: stored before start-up and picked up by it, reloading on a change
// after it, and stuck after a bad image.
TEST(ModelSet, ImagePropertiesBeforeAndAfterStartUp) {
  Control s;
  // A board model that names its own image "inner.jpg", and no "board.jpg" or "pieceblack.png":
  // only the names given can load.
  std::string model = s.assets.read("models/board.x");
  const size_t at = model.find("board.jpg");
  ASSERT_NE(at, std::string::npos) << "board.x names its image";
  s.assets.write("models/board.x", model.replace(at, 9, "inner.jpg"));
  s.assets.copy("board.jpg", "inner.jpg");
  s.assets.copy("board.jpg", "plain.jpg");
  s.assets.remove("board.jpg");
  s.assets.copy("pieceblack.png", "dark.png");
  s.assets.remove("pieceblack.png");
  s.assets.copy("piecewhite.png", "light.png");
  s.board.alternativeBoard("plain.jpg");
  s.board.alternativePieceBlack("dark.png");
  EXPECT_FALSE(s.models().boardMesh.hasMesh());
  ASSERT_EQ(s.init(), std::optional<bool>(true));
  const ModelSet& m = s.models();
  EXPECT_TRUE(m.boardMesh.visible && m.pieceMesh[1].visible);
  EXPECT_EQ(s.board.alternativeBoard(), "plain.jpg");
  EXPECT_EQ(s.board.alternativePieceBlack(), "dark.png");
  // An empty board name reloads with the name inside the model, not "board.jpg".
  s.board.alternativeBoard("");
  EXPECT_TRUE(m.boardMesh.visible);
  EXPECT_EQ(s.board.alternativeBoard(), "");

  s.platform.board = &s.board;
  s.board.alternativePieceWhite("light.png");
  EXPECT_TRUE(s.platform.paints.empty()) << "the frame is hidden: a reload shows nothing";
  // With the file gone, a reload would fail; the same value again must not reload.
  s.assets.remove("light.png");
  s.board.alternativePieceWhite("light.png");
  // Back to empty: the default image, not the last one.
  s.board.alternativePieceWhite("");
  EXPECT_EQ(s.platform.messages(), Lines{});
  EXPECT_TRUE(m.pieceMesh[0].visible && m.shadowMesh.visible);
  EXPECT_FLOAT_EQ(m.shadowMesh.material(0).Diffuse.a, 0.24f);

  // A host that shows the frame sees a reload step the bar, and the frame goes at the end.
  s.board.showProgressBar("Changing pieces", true, 0);
  s.platform.paints.clear();
  s.board.alternativePieceWhite("piecewhite.png");
  ASSERT_EQ(s.platform.paints.size(), 2u);
  EXPECT_FLOAT_EQ(s.platform.paints[0].fillWidth, 2872.5f);
  EXPECT_FLOAT_EQ(s.platform.paints[1].fillWidth, 5745.0f);
  EXPECT_FALSE(s.board.label1().Visible || s.board.lblStatus().Visible);

  // A bad image drops its model for good: the bad name stays, and no setter brings it back.
  s.board.alternativePieceWhite("missing.png");
  EXPECT_FALSE(m.pieceMesh[0].visible);
  EXPECT_EQ(s.board.alternativePieceWhite(), "missing.png");
  s.board.alternativePieceWhite("");
  EXPECT_FALSE(m.pieceMesh[0].visible);
  s.board.alternativeBoard("gone.jpg");
  s.board.alternativeBoard("plain.jpg");
  EXPECT_FALSE(m.boardMesh.visible);
  EXPECT_EQ(s.board.alternativeBoard(), "plain.jpg");
  EXPECT_EQ(s.platform.messages(),
            (Lines{s.message("Texture", "missing.png"), s.message("Texture", "gone.jpg")}));
}

}  // namespace
