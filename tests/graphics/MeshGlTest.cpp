// clsMesh on real files: loading with its two message boxes, materials and textures, the
// alternative texture where the file names one, the diffuse alpha, Translate's arithmetic, and bad
// input of every kind.

#include <gtest/gtest.h>

#include "support/GraphicsFixture.h"

namespace ostrel::testing {
namespace {

using namespace graphics;

struct MeshFixture : GraphicsFixture {
  MeshFixture() : GraphicsFixture(64, 64) { state().ambientBackColor = 0x102030; }
  // The message the last load showed, and whether it was the only new one.
  std::string lastMessage(size_t expectedCount) {
    EXPECT_EQ(platform.messages().size(), expectedCount);
    return platform.messages().empty() ? "" : platform.messages().back();
  }
  // True when the frame shows nothing but the background.
  bool empty() { return countNot(frame(), {0x10, 0x20, 0x30}) == 0; }
};

// Images that are missing or bad each give their message, never crash, and leave the mesh
// undrawn. (Bad model files are in ModelFilesGlTest.cpp.)
TEST(MeshLoad, MissingAndBadImages) {
  MeshFixture f;
  f.writeModel("good.x", quadModel(3, 0, {1, 1, 1, 1, 0, 0, 0, "img.png"}));
  // Names starting with "missing" are not written.
  const std::pair<std::string, std::string> images[] = {
      {"missing.png", ""},
      {"empty.png", ""},
      {"garbage.png", "GIF89a\x01\x00\x01\x00 nonsense"},
      {"signature.png", "\x89PNG\r\n\x1a\n not really"},
      {"cut.png", solidPng(1, 2, 3, 16).substr(0, 40)},
      {"wide.png", pngBytes(4097, 1, std::vector<uint8_t>(4097 * 4, 200))},  // past the limit
  };
  clsMesh& board = f.state().models.boardMesh;
  size_t count = 0;
  for (const auto& [name, bytes] : images) {
    SCOPED_TRACE(name);
    if (!name.starts_with("missing")) f.writeFile(name, bytes);
    board = clsMesh();
    board.init("models/good.x", name);
    EXPECT_EQ(f.lastMessage(++count), "Texture load failed: " + f.path(name));
    EXPECT_TRUE(board.hasMesh()) << "the geometry loaded, but the model is not drawn at all";
    EXPECT_FALSE(board.visible);
    EXPECT_TRUE(f.empty());
  }
}

TEST(MeshLoad, ThreeMaterialsWithAnAlternativeAndTheDiffuseAlpha) {
  MeshFixture f;
  f.writeModel("three.x", stripsModel({{0.5f, 0.5f, 0.5f, 0.3f, 0, 0, 0, "a.png"},
                                       {0.2f, 0.6f, 0.2f, 0.7f, 0, 0, 0, ""},
                                       {0.5f, 0.5f, 0.5f, 0.9f, 0, 0, 0, "b.png"}}));
  f.writeFile("alt.png", solidPng(250, 0, 0));  // a.png and b.png do not exist
  clsMesh& mesh = f.state().models.boardMesh;
  mesh.init("models/three.x", "alt.png");
  ASSERT_TRUE(mesh.visible);
  ASSERT_EQ(mesh.materialCount(), 3);
  // Ambient is the file's diffuse; with no diffuse argument the alpha stays the file's.
  EXPECT_FLOAT_EQ(mesh.material(1).Ambient.g, 0.6f);
  EXPECT_FLOAT_EQ(mesh.material(1).Ambient.a, 0.7f);
  EXPECT_FLOAT_EQ(mesh.material(2).Diffuse.a, 0.9f);

  // The outer strips show the alternative texture, the middle one its lit green material.
  Image image = f.frame();
  const auto left = f.at(image, -2, 0, 0), middle = f.at(image, 0, 0, 0);
  EXPECT_GT(left[0], 150);
  EXPECT_LT(left[1], 10);
  EXPECT_EQ(f.at(image, 2, 0, 0), left);
  EXPECT_GT(middle[1], 150);
  EXPECT_LT(middle[0], 150);

  // A diffuse argument sets the alpha of every material, after Ambient took the file's.
  clsMesh zero;
  zero.init("models/three.x", "alt.png", 0.0);
  EXPECT_FLOAT_EQ(zero.material(0).Diffuse.a, 0.0f);
  EXPECT_FLOAT_EQ(zero.material(1).Diffuse.a, 0.0f);
  EXPECT_FLOAT_EQ(zero.material(1).Diffuse.g, 0.6f);
  EXPECT_FLOAT_EQ(zero.material(1).Ambient.a, 0.7f);
}

TEST(MeshTranslate, BakesScaleAndMoveOnlyIntoTheFullVertexFormat) {
  MeshFixture f;
  f.writeModel("q.x", quadModel(1, 0.5f, {}));
  clsMesh mesh;
  mesh.init("models/q.x", "");
  ASSERT_TRUE(mesh.visible);
  auto vertices = [&] { return GraphicsFixture::vertices(*mesh.mesh()); };
  const std::vector<float> original = vertices();
  // A pure scale about the origin; then a move shifts the vertices by the difference to the old
  // position and stores the new one. Normals and texture coordinates stay.
  mesh.Translate(2, 0, 0, 0);
  EXPECT_EQ(mesh.posX(), 0.0f);
  mesh.Translate(1, 1, 2, 3);
  EXPECT_EQ((std::array{mesh.posX(), mesh.posY(), mesh.posZ()}), (std::array{1.0f, 2.0f, 3.0f}));
  const std::vector<float> moved = vertices();
  for (size_t i = 0; i < moved.size(); ++i) {
    const size_t k = i % 8;
    const float expected = k < 3 ? original[i] * 2 + static_cast<float>(k + 1) : original[i];
    EXPECT_FLOAT_EQ(moved[i], expected) << "float " << i;
  }
  // Setting a position changes no vertex.
  mesh.posX(7);
  EXPECT_EQ(vertices(), moved);

  // Without normals the format is 0x102, and Translate leaves model and position alone.
  XModel plain = quadModel(1, 0.5f, {});
  plain.normals.clear();
  f.writeModel("plain.x", plain);
  clsMesh flat;
  flat.init("models/plain.x", "");
  ASSERT_TRUE(flat.visible);
  ASSERT_EQ(flat.mesh()->GetFVF(), 0x102u);
  const std::vector<float> before = GraphicsFixture::vertices(*flat.mesh());
  flat.Translate(3, 1, 1, 1);
  EXPECT_EQ(GraphicsFixture::vertices(*flat.mesh()), before);
  EXPECT_EQ(flat.posX(), 0.0f);
}

TEST(MeshTranslate, BakedVerticesAreWhatTheNextFrameDraws) {
  MeshFixture f;
  f.writeModel("q.x", quadModel(0.5f, 0, {1, 1, 1, 1, 0, 0, 0, ""}));
  clsMesh& mesh = f.state().models.boardMesh;
  mesh.init("models/q.x", "");
  f.frame();
  mesh.Translate(1, 2, 0, 0);  // vertices moved by 2, world matrix by 2 again
  Image image = f.frame();
  EXPECT_EQ(f.at(image, 2, 0, 0)[0], 0x10);
  EXPECT_GT(f.at(image, 4, 0, 0)[0], 200);
}

TEST(MeshCulling, BackFacesAreCulled) {
  MeshFixture f;
  XModel quad = quadModel(2, 0, {1, 1, 1, 1, 0, 0, 0, ""});
  for (const std::vector<uint32_t>& face :
       {std::vector<uint32_t>{3, 2, 1, 0}, std::vector<uint32_t>{0, 1, 2, 3}}) {
    quad.faces = {face};
    f.writeModel("q.x", quad);
    f.state().models.boardMesh.init("models/q.x", "");
    EXPECT_EQ(f.empty(), face[0] == 3) << "turned away from the camera: culled";
  }
}

}  // namespace
}  // namespace ostrel::testing
