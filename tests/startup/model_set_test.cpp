// The asset set as start-up loads it: which mesh gets which file, the progress bar's two steps,
// missing files, and the three image properties before and after start-up.

#include <stb_image_write.h>

#include <thread>

#include "StartupFixture.h"
#include "graphics/d3d8.h"

namespace {

using namespace startup_test;
using ostrel::ctlBoard;
using ostrel::HeadlessPlatform;
namespace gfx = ostrel::graphics;

TEST(ModelSet, StartUpLoadsEveryMeshAndHidesTheMarkers) {
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  const ostrel::ModelSet& m = board.models();
  EXPECT_TRUE(m.boardMesh.visible);
  EXPECT_TRUE(m.pieceMesh[0].visible);
  EXPECT_TRUE(m.pieceMesh[1].visible);
  EXPECT_TRUE(m.shadowMesh.visible);
  EXPECT_FALSE(m.pieceMesh[2].hasMesh()) << "slot 2 is never loaded";
  for (int i = 0; i <= 16; ++i) {
    EXPECT_TRUE(m.markerMesh[i].hasMesh()) << i;
    EXPECT_FALSE(m.markerMesh[i].visible) << i;
  }
  EXPECT_FALSE(m.markerMesh[17].hasMesh());
  // Each field marker holds its own copy of the model.
  for (int i = 2; i <= 15; ++i) EXPECT_NE(m.markerMesh[i].mesh(), m.markerMesh[1].mesh()) << i;
  // The shadow's materials all get the alpha 0.24; its scale and the pieces' are baked in.
  for (int32_t i = 0; i < m.shadowMesh.materialCount(); ++i) {
    EXPECT_FLOAT_EQ(m.shadowMesh.material(i).Diffuse.a, 0.24f);
  }
  EXPECT_EQ(board.alternativeBoard(), "board.jpg");
  EXPECT_EQ(board.alternativePieceWhite(), "");
  EXPECT_EQ(board.alternativePieceBlack(), "");
  // The status frame is gone once the pieces are in.
  EXPECT_FALSE(board.label1().Visible);
  EXPECT_FALSE(board.lblStatus().Visible);
  EXPECT_FALSE(board.lblProgress().Visible);
}

TEST(ModelSet, ModelDirIsEmptyOnAThreadThatNeverStarted) {
  std::string seen = "unset";
  std::thread([&] {
    HeadlessPlatform platform(quickOptions());
    ctlBoard board(platform);
    seen = board.modelDir();
  }).join();
  EXPECT_EQ(seen, "");
}

TEST(ModelSet, ProgressStepsAtEachPaintOfStartUp) {
  AssetFolder assets;
  RecordingPlatform platform(quickOptions());
  ctlBoard board(platform);
  platform.board = &board;
  board.setInitString("Loading the pieces");
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  ASSERT_EQ(platform.paints.size(), 2u);
  EXPECT_FLOAT_EQ(platform.paints[0].fillWidth, 2872.5f);
  EXPECT_FLOAT_EQ(platform.paints[1].fillWidth, 5745.0f);
  for (const FrameSeen& seen : platform.paints) {
    EXPECT_FLOAT_EQ(seen.fillHeight, 345.0f);
    EXPECT_TRUE(seen.fillVisible);
    EXPECT_TRUE(seen.statusVisible);
    EXPECT_TRUE(seen.frameVisible);
  }
  EXPECT_EQ(board.lblStatus().Caption, "Loading the pieces") << "init does not change the text";
  EXPECT_EQ(board.lblProgress().Left, 0.0f);
  EXPECT_EQ(board.lblProgress().Top, 0.0f);
}

TEST(ModelSet, HiddenStatusTextMeansNoProgressPaints) {
  AssetFolder assets;
  RecordingPlatform platform(quickOptions());
  ctlBoard board(platform);
  board.showProgressBar("quiet", false, 0);
  platform.board = &board;
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  EXPECT_TRUE(platform.paints.empty());
  EXPECT_FALSE(board.lblProgress().Visible);
  EXPECT_FLOAT_EQ(board.lblProgress().Width, 5745.0f) << "the full length is set all the same";
}

// The frame painted during start-up, as the user sees it: border, white frame, the blue fill to
// half its length, and the caption in its colour over the fill.
TEST(ModelSet, StartUpScreenshotShowsTheStatusFrame) {
  AssetFolder assets;
  RecordingPlatform platform(quickOptions(400, 300));
  ctlBoard board(platform);
  board.ambientBackColor(0x000000);
  platform.board = &board;
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  ASSERT_EQ(platform.paints.size(), 2u);
  const ostrel::Image& shot = platform.paints[0].window;
  ASSERT_EQ(shot.width, 400);
  auto rgb = [&](int x, int y) {
    const uint8_t* p = &shot.rgba[(static_cast<size_t>(y) * shot.width + x) * 4];
    return (p[0] << 16) | (p[1] << 8) | p[2];
  };
  // Frame 8..392 x 8..33 px; the client area starts one pixel in; half the fill is 191.5 px.
  EXPECT_EQ(rgb(4, 20), 0x000000) << "outside the frame: the back colour";
  EXPECT_EQ(rgb(150, 30), 0x0000FF) << "inside the fill, below the text";
  EXPECT_EQ(rgb(300, 20), 0xFFFFFF) << "beyond the half fill: the frame's white";
  EXPECT_EQ(rgb(395, 20), 0x000000) << "beyond the frame";
  // Caption pixels: strongly red with green and blue about half, as 0x8080FF reads.
  int caption = 0;
  for (int y = 9; y < 32; ++y) {
    for (int x = 9; x < 200; ++x) {
      const int c = rgb(x, y), r = c >> 16, g = (c >> 8) & 0xFF, b = c & 0xFF;
      caption += r > 200 && g > 90 && g < 170 && b > 90 && b < 170;
    }
  }
  EXPECT_GT(caption, 150) << "the caption is drawn in its colour";
  // The full bar at the second paint.
  EXPECT_EQ((platform.paints[1].window.rgba[(20 * 400 + 300) * 4 + 2]), 0xFF);
  EXPECT_EQ((platform.paints[1].window.rgba[(20 * 400 + 300) * 4 + 0]), 0x00);
  if (const char* dir = std::getenv("OSTREL_SCREENSHOT_DIR")) {
    const std::string path = std::string(dir) + "/startup-frame.png";
    EXPECT_NE(
        stbi_write_png(path.c_str(), shot.width, shot.height, 4, shot.rgba.data(), shot.width * 4),
        0);
  }
}

TEST(ModelSet, MissingShadowModelGivesOneMessageAndNoShadows) {
  AssetFolder assets;
  assets.remove("shadow.x");
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  ASSERT_EQ(platform.messages().size(), 1u);
  EXPECT_EQ(platform.messages()[0], "Model load failed: " + assets.path() + "/models/shadow.x");
  EXPECT_FALSE(board.models().shadowMesh.visible);
  EXPECT_TRUE(board.models().pieceMesh[1].visible);
  EXPECT_EQ(assets.logLines(), completeLog(quickOptions()));
}

TEST(ModelSet, MissingImageLeavesTheModelUndrawn) {
  AssetFolder assets;
  assets.remove("piecewhite.png");
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  ASSERT_EQ(platform.messages().size(), 1u);
  EXPECT_EQ(platform.messages()[0],
            "Texture load failed: " + assets.path() + "/models/piecewhite.png");
  EXPECT_FALSE(board.models().pieceMesh[0].visible);
  EXPECT_TRUE(board.models().pieceMesh[0].hasMesh());
  EXPECT_TRUE(board.models().pieceMesh[1].visible) << "black loads all the same";
  EXPECT_TRUE(board.models().shadowMesh.visible);

  // White failed, so a change of either image only stores: nothing reloads, nothing is said.
  board.alternativePieceBlack("nothing-here.png");
  EXPECT_EQ(board.alternativePieceBlack(), "nothing-here.png");
  EXPECT_EQ(platform.messages().size(), 1u);
  EXPECT_TRUE(board.models().pieceMesh[1].visible);
}

TEST(ModelSet, SettersBeforeStartUpOnlyStore) {
  AssetFolder assets;
  assets.copy("board.jpg", "other-board.jpg");
  assets.remove("board.jpg");
  assets.copy("pieceblack.png", "dark.png");
  assets.remove("pieceblack.png");
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  board.alternativeBoard("other-board.jpg");
  board.alternativePieceBlack("dark.png");
  EXPECT_FALSE(board.models().boardMesh.hasMesh());
  EXPECT_EQ(board.alternativeBoard(), "other-board.jpg");
  // Start-up picks the names up: the default images are gone, so only these can have loaded.
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  EXPECT_TRUE(platform.messages().empty()) << platform.messages().front();
  EXPECT_TRUE(board.models().boardMesh.visible);
  EXPECT_TRUE(board.models().pieceMesh[1].visible);
  EXPECT_EQ(board.alternativeBoard(), "other-board.jpg");
  EXPECT_EQ(board.alternativePieceBlack(), "dark.png");
}

TEST(ModelSet, PieceImageSetterReloadsOnlyOnAChange) {
  AssetFolder assets;
  assets.copy("piecewhite.png", "light.png");
  RecordingPlatform platform(quickOptions());
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  platform.board = &board;

  board.alternativePieceWhite("light.png");
  EXPECT_TRUE(board.models().pieceMesh[0].visible);
  EXPECT_TRUE(platform.paints.empty()) << "the frame is hidden: a reload shows nothing";
  // With the file gone, a reload would fail; the same value again must not reload.
  assets.remove("light.png");
  board.alternativePieceWhite("light.png");
  EXPECT_TRUE(platform.messages().empty());
  EXPECT_TRUE(board.models().pieceMesh[0].visible);

  // Back to empty: the default image, not the last one.
  board.alternativePieceWhite("");
  EXPECT_TRUE(platform.messages().empty()) << platform.messages().front();
  EXPECT_TRUE(board.models().pieceMesh[0].visible);
  EXPECT_TRUE(board.models().shadowMesh.visible);
  EXPECT_FLOAT_EQ(board.models().shadowMesh.material(0).Diffuse.a, 0.24f);

  // A host that shows the frame sees the reload step the bar, and the frame goes at the end.
  board.showProgressBar("Changing pieces", true, 0);
  platform.paints.clear();
  board.alternativePieceBlack("pieceblack.png");
  ASSERT_EQ(platform.paints.size(), 2u);
  EXPECT_FLOAT_EQ(platform.paints[0].fillWidth, 2872.5f);
  EXPECT_FLOAT_EQ(platform.paints[1].fillWidth, 5745.0f);
  EXPECT_FALSE(board.label1().Visible);
  EXPECT_FALSE(board.lblStatus().Visible);
}

TEST(ModelSet, BadPieceImageDropsThePiecesForGood) {
  AssetFolder assets;
  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  board.alternativePieceWhite("missing.png");
  ASSERT_EQ(platform.messages().size(), 1u);
  EXPECT_EQ(platform.messages()[0],
            "Texture load failed: " + assets.path() + "/models/missing.png");
  EXPECT_FALSE(board.models().pieceMesh[0].visible);
  EXPECT_EQ(board.alternativePieceWhite(), "missing.png") << "the bad name stays";
  // No setter brings white back: the test looks at white, which is not loaded now.
  board.alternativePieceWhite("");
  EXPECT_EQ(platform.messages().size(), 1u);
  EXPECT_FALSE(board.models().pieceMesh[0].visible);
}

TEST(ModelSet, EmptyBoardNameReloadsWithTheNameInsideTheModel) {
  AssetFolder assets;
  // A board model that names its own image "inner.jpg", and no "board.jpg" at all.
  std::string model = assets.read(assets.models() / "board.x");
  const size_t at = model.find("board.jpg");
  ASSERT_NE(at, std::string::npos) << "board.x names its image";
  model.replace(at, 9, "inner.jpg");
  assets.write(assets.models() / "board.x", model);
  assets.copy("board.jpg", "inner.jpg");
  assets.copy("board.jpg", "plain.jpg");
  assets.remove("board.jpg");

  HeadlessPlatform platform(quickOptions());
  ctlBoard board(platform);
  board.alternativeBoard("plain.jpg");
  ASSERT_EQ(board.init(false, 0, 1, assets.path()), std::optional<bool>(true));
  ASSERT_TRUE(platform.messages().empty()) << platform.messages().front();
  ASSERT_TRUE(board.models().boardMesh.visible);

  board.alternativeBoard("");
  EXPECT_TRUE(platform.messages().empty()) << "reloaded with inner.jpg, not board.jpg";
  EXPECT_TRUE(board.models().boardMesh.visible);
  EXPECT_EQ(board.alternativeBoard(), "");

  // A missing image: one message box, no board in the frames, and setters only store.
  board.alternativeBoard("gone.jpg");
  ASSERT_EQ(platform.messages().size(), 1u);
  EXPECT_EQ(platform.messages()[0], "Texture load failed: " + assets.path() + "/models/gone.jpg");
  EXPECT_FALSE(board.models().boardMesh.visible);
  board.alternativeBoard("plain.jpg");
  EXPECT_EQ(platform.messages().size(), 1u);
  EXPECT_FALSE(board.models().boardMesh.visible);
  EXPECT_EQ(board.alternativeBoard(), "plain.jpg");
}

}  // namespace
