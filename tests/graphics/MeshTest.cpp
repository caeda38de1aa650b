// clsMesh on real files: loading with its two message boxes, materials and textures, the
// alternative texture, the diffuse alpha, Translate's arithmetic, and bad input of every kind.

#include <gtest/gtest.h>

#include "support/GraphicsFixture.h"

namespace ostrel::testing {
namespace {

using namespace graphics;

struct MeshFixture : GraphicsFixture {
  MeshFixture() : GraphicsFixture(64, 64) { EXPECT_TRUE(startDevice()); }
  std::string base() { return folder.str(); }
  // Every vertex of a mesh in the 0x112 layout.
  std::vector<float> vertices(const clsMesh& mesh) {
    auto* m = const_cast<Mesh*>(mesh.mesh());
    std::vector<float> v(m->GetNumVertices() * 8);
    m->GetVertexBuffer()->GetData(0, static_cast<uint32_t>(v.size() * 4), 0, v.data());
    return v;
  }
};

TEST(MeshLoad, MissingModelAndMissingTextureEachGiveTheirMessage) {
  MeshFixture f;
  clsMesh missing;
  missing.init("models/none.x", "");
  ASSERT_EQ(f.platform.messages().size(), 1u);
  EXPECT_EQ(f.platform.messages()[0], "Model load failed: " + f.base() + "/models/none.x");
  EXPECT_FALSE(missing.visible);
  EXPECT_FALSE(missing.hasMesh());
  missing.render();
  missing.Translate(2, 1, 1, 1);
  EXPECT_EQ(missing.posX(), 0.0f);

  f.writeModel("q.x", quadModel(1, 0, {1, 1, 1, 1, 0, 0, 0, "gone.png"}));
  clsMesh untextured;
  untextured.init("models/q.x", "");
  ASSERT_EQ(f.platform.messages().size(), 2u);
  EXPECT_EQ(f.platform.messages()[1], "Texture load failed: " + f.base() + "/models/gone.png");
  // The geometry loaded, but the model is not drawn at all.
  EXPECT_TRUE(untextured.hasMesh());
  EXPECT_FALSE(untextured.visible);

  // The alternative names the texture wherever the file names one.
  f.writeFile("alt.png", solidPng(10, 20, 30));
  clsMesh alternative;
  alternative.init("models/q.x", "alt.png");
  EXPECT_EQ(f.platform.messages().size(), 2u);
  EXPECT_TRUE(alternative.visible);
  EXPECT_TRUE(alternative.hasTexture(0));
}

TEST(MeshLoad, BadFilesNeverCrashAndLeaveTheMeshUndrawn) {
  MeshFixture f;
  const std::string good = quadModel(3, 0, {1, 1, 1, 1, 0, 0, 0, "img.png"}).text();
  const std::vector<std::pair<std::string, std::string>> models = {
      {"empty.x", ""},
      {"truncated.x", good.substr(0, good.size() * 2 / 3)},
      {"garbage.x", "\x7f\x45\x4c\x46\x02\x01\x01 garbage \xff\xfe\xfd"},
      {"noise.x", "xof 0303txt 0032\n{{{{ ;;;; }}}} Mesh Mesh Mesh -1;"},
      // Well-formed text whose counts and indices lie; the model reader would trust them.
      {"nomaterial.x",
       "xof 0303txt 0032\nMesh {3;0.0;0.0;0.0;,0.0;0.0;1.0;,1.0;0.0;1.0;;\n"
       "1;3;0,1,2;;\nMeshMaterialList {1;1;0;;}\n}\n"},
      {"farindex.x",
       "xof 0303txt 0032\nMesh {3;0.0;0.0;0.0;,0.0;0.0;1.0;,1.0;0.0;1.0;;\n"
       "1;3;0,1,7;;\n}\n"},
      {"fewnormals.x",
       "xof 0303txt 0032\nMesh {3;0.0;0.0;0.0;,0.0;0.0;1.0;,1.0;0.0;1.0;;\n"
       "1;3;0,1,2;;\nMeshNormals {1;0.0;1.0;0.0;;1;3;0,0,1;;}\n}\n"},
      {"huge.x", "xof 0303txt 0032\nMesh { 99999999; 1.0;2.0;3.0;; }"},
  };
  const std::vector<std::pair<std::string, std::string>> images = {
      {"empty.png", ""},
      {"garbage.png", "GIF89a\x01\x00\x01\x00 nonsense"},
      {"cut.png", solidPng(1, 2, 3, 16).substr(0, 40)},
      {"wide.png", pngBytes(4097, 1, std::vector<uint8_t>(4097 * 4, 200))},  // past the limit
  };
  ControlState& s = f.state();
  s.ambientBackColor = 0x102030;
  for (const auto& [name, bytes] : models) {
    f.writeFile(name, bytes);
    const size_t before = f.platform.messages().size();
    s.models.boardMesh.init("models/" + name, "");
    ASSERT_EQ(f.platform.messages().size(), before + 1) << name;
    EXPECT_EQ(f.platform.messages().back(), "Model load failed: " + f.base() + "/models/" + name);
    EXPECT_FALSE(s.models.boardMesh.visible);
    EXPECT_EQ(countNot(f.frame(), {0x10, 0x20, 0x30}, 0), 0) << name;
  }
  f.writeModel("good.x", quadModel(3, 0, {1, 1, 1, 1, 0, 0, 0, "img.png"}));
  for (const auto& [name, bytes] : images) {
    f.writeFile(name, bytes);
    clsMesh& board = s.models.boardMesh = clsMesh();
    board.init("models/good.x", name);
    ASSERT_FALSE(f.platform.messages().empty());
    EXPECT_EQ(f.platform.messages().back(), "Texture load failed: " + f.base() + "/models/" + name);
    EXPECT_FALSE(board.visible);
    EXPECT_EQ(countNot(f.frame(), {0x10, 0x20, 0x30}, 0), 0) << name;
  }
}

TEST(MeshLoad, ThreeMaterialsWithAnAlternativeAndTheDiffuseAlpha) {
  MeshFixture f;
  XModel m;
  m.positions = {{-3, 0, -3}, {-3, 0, 3}, {-1, 0, 3}, {-1, 0, -3},
                 {1, 0, 3},   {1, 0, -3}, {3, 0, 3},  {3, 0, -3}};
  m.faces = {{0, 1, 2, 3}, {3, 2, 4, 5}, {5, 4, 6, 7}};
  m.faceMaterial = {0, 1, 2};
  m.normals.assign(8, {0, 1, 0});
  m.uvs.assign(8, {0.5f, 0.5f});
  m.materials = {{0.5f, 0.5f, 0.5f, 0.3f, 0, 0, 0, "a.png"},
                 {0.2f, 0.6f, 0.2f, 0.7f, 0, 0, 0, ""},
                 {0.5f, 0.5f, 0.5f, 0.9f, 0, 0, 0, "b.png"}};
  f.writeModel("three.x", m);
  f.writeFile("alt.png", solidPng(250, 0, 0));  // a.png and b.png do not exist
  ControlState& s = f.state();
  clsMesh& mesh = s.models.boardMesh;
  mesh.init("models/three.x", "alt.png");
  ASSERT_TRUE(mesh.visible);
  ASSERT_EQ(mesh.materialCount(), 3);
  EXPECT_TRUE(mesh.hasTexture(0));
  EXPECT_FALSE(mesh.hasTexture(1));
  EXPECT_TRUE(mesh.hasTexture(2));
  // Ambient is the file's diffuse; with no diffuse argument the alpha stays the file's.
  EXPECT_FLOAT_EQ(mesh.material(1).Ambient.g, 0.6f);
  EXPECT_FLOAT_EQ(mesh.material(1).Ambient.a, 0.7f);
  EXPECT_FLOAT_EQ(mesh.material(2).Diffuse.a, 0.9f);

  Image image = f.frame();
  int lx, ly, mx, my, rx, ry;
  f.pixelOf(-2, 0, 0, lx, ly);
  f.pixelOf(0, 0, 0, mx, my);
  f.pixelOf(2, 0, 0, rx, ry);
  EXPECT_GT(pixel(image, lx, ly)[0], 150);
  EXPECT_LT(pixel(image, lx, ly)[1], 10);
  EXPECT_EQ(pixel(image, rx, ry), pixel(image, lx, ly));
  EXPECT_GT(pixel(image, mx, my)[1], 150);  // untextured: its lit green material

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
  const std::vector<float> original = f.vertices(mesh);

  mesh.Translate(1, 0, 0, 0);
  EXPECT_EQ(f.vertices(mesh), original);
  mesh.Translate(2, 0, 0, 0);  // a pure scale about the origin
  std::vector<float> v = f.vertices(mesh);
  for (size_t i = 0; i < v.size(); i += 8) {
    EXPECT_FLOAT_EQ(v[i], original[i] * 2);
    EXPECT_FLOAT_EQ(v[i + 1], 1.0f);
    EXPECT_FLOAT_EQ(v[i + 4], 1.0f);  // normals and coordinates stay
    EXPECT_FLOAT_EQ(v[i + 7], original[i + 7]);
  }
  EXPECT_EQ(mesh.posX(), 0.0f);

  // A move shifts the vertices by the difference to the old position and stores the new one.
  mesh.Translate(1, 1, 2, 3);
  const std::vector<float> moved = f.vertices(mesh);
  for (size_t i = 0; i < v.size(); i += 8) {
    EXPECT_FLOAT_EQ(moved[i], v[i] + 1);
    EXPECT_FLOAT_EQ(moved[i + 1], v[i + 1] + 2);
    EXPECT_FLOAT_EQ(moved[i + 2], v[i + 2] + 3);
  }
  EXPECT_EQ(mesh.posZ(), 3.0f);
  mesh.Translate(1, mesh.posX(), mesh.posY(), mesh.posZ());
  EXPECT_EQ(f.vertices(mesh), moved);
  // Setting a position changes no vertex.
  mesh.posX(7);
  EXPECT_EQ(f.vertices(mesh), moved);

  // Without normals the format is 0x102, and Translate leaves model and position alone.
  XModel plain = quadModel(1, 0.5f, {});
  plain.normals.clear();
  f.writeModel("plain.x", plain);
  clsMesh flat;
  flat.init("models/plain.x", "");
  ASSERT_TRUE(flat.visible);
  ASSERT_EQ(flat.mesh()->GetFVF(), 0x102u);
  std::vector<float> before(4 * 5), after(4 * 5);
  const_cast<Mesh*>(flat.mesh())->GetVertexBuffer()->GetData(0, 80, 0, before.data());
  flat.Translate(3, 1, 1, 1);
  const_cast<Mesh*>(flat.mesh())->GetVertexBuffer()->GetData(0, 80, 0, after.data());
  EXPECT_EQ(before, after);
  EXPECT_EQ(flat.posX(), 0.0f);
}

TEST(MeshTranslate, BakedVerticesAreWhatTheNextFrameDraws) {
  MeshFixture f;
  f.state().ambientBackColor = 0;
  f.writeModel("q.x", quadModel(0.5f, 0, {1, 1, 1, 1, 0, 0, 0, ""}));
  clsMesh& mesh = f.state().models.boardMesh;
  mesh.init("models/q.x", "");
  f.frame();
  int px, py;
  f.pixelOf(2, 0, 0, px, py);
  EXPECT_EQ(pixel(f.frame(), px, py)[0], 0);
  mesh.Translate(1, 2, 0, 0);  // vertices moved by 2, world matrix by 2 again
  f.pixelOf(4, 0, 0, px, py);
  EXPECT_GT(pixel(f.frame(), px, py)[0], 200);
}

TEST(MeshCulling, BackFacesAreCulledAndTheCubeShowsItsLitTop) {
  MeshFixture f;
  f.state().ambientBackColor = 0;
  XModel reversed = quadModel(2, 0, {1, 1, 1, 1, 0, 0, 0, ""});
  reversed.faces = {{3, 2, 1, 0}};
  f.writeModel("back.x", reversed);
  ControlState& s = f.state();
  s.models.boardMesh.init("models/back.x", "");
  EXPECT_EQ(countNot(f.frame(), {0, 0, 0}, 0), 0);

  f.writeModel("cube.x", cubeModel(1, {0.4f, 0.4f, 0.4f, 1, 0, 0, 0, ""}));
  s.models.boardMesh.init("models/cube.x", "");
  Image image = f.frame();
  const int expected =
      static_cast<int>(std::lround(0.4 * (128.0 / 255 + 0.81 / std::sqrt(1.04)) * 255));
  EXPECT_NEAR(pixel(image, 32, 32)[0], expected, 2);
}

}  // namespace
}  // namespace ostrel::testing
