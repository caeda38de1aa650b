// .x files as users bring them: every form and exporter shape loads as a board and a piece model
// and draws (a marker draws as a board does); broken ones are refused with the same message box as
// ever and a cause that a host can read; texture names written on Windows find their image. And
// clsMesh on them: bad images, materials and the alternative texture, the diffuse alpha,
// Translate's arithmetic and culling.

#include <gtest/gtest.h>

#include "graphics/TexturePath.h"
#include "graphics/XFileCheck.h"
#include "ostrel/LoadFailure.h"
#include "support/GraphicsFixture.h"
#include "support/XFileSamples.h"

namespace ostrel::testing {
namespace {

using namespace graphics;

struct ModelFiles : GraphicsFixture {
  ModelFiles() : GraphicsFixture(64, 64) { state().ambientBackColor = 0x102030; }
  bool background(const std::array<int, 4>& p) {
    return p[0] == 0x10 && p[1] == 0x20 && p[2] == 0x30;
  }
  // True when the frame shows nothing but the background.
  bool empty() { return countNot(frame(), {0x10, 0x20, 0x30}) == 0; }
  // Lit red: the red image on a white material, or red vertex colours as the diffuse colour
  // beside the white material's ambient.
  void expectRed(const std::array<int, 4>& p, const std::string& what) {
    EXPECT_GT(p[0], 120) << what;
    EXPECT_GT(p[0] - p[1], 60) << what;
  }
};

std::vector<uint8_t> bytesOf(const std::string& s) {
  return {s.begin(), s.end()};
}

TEST(ModelFiles, EveryShapeLoadsAsBoardAndPieceAndDraws) {
  for (const XSample& sample : xSamples()) {
    SCOPED_TRACE(sample.name);
    ModelFiles f;
    f.writeFile(sample.name, sample.bytes);
    if (!sample.image.empty()) f.writeFile(sample.image, solidPng(255, 0, 0));
    ModelSet& m = f.state().models;

    m.boardMesh.init("models/" + sample.name, "");
    ASSERT_TRUE(m.boardMesh.visible) << lastLoadFailure().cause;
    Image image = f.frame();
    f.expectRed(f.at(image, 0.5f, 0, 0.5f), "board");
    f.expectRed(f.at(image, -0.5f, 0, -0.5f), "board");
    EXPECT_TRUE(f.background(f.at(image, 0, 0, 1.6f))) << "nothing beyond the square";
    m.boardMesh = clsMesh();

    // A piece model is scaled to a fifth and drawn where its record stands.
    clsMesh& piece = m.pieceMesh[0];
    piece.init("models/" + sample.name, "");
    ASSERT_TRUE(piece.visible);
    piece.Translate(0.23f, 0, 0, 0);
    f.state().scene.pieceObject[0].visible = true;
    f.state().scene.pieceObject[0].Translate(2, 0, -1);
    image = f.frame();
    f.expectRed(f.at(image, 2.1f, 0, -1.1f), "piece");
    EXPECT_TRUE(f.background(f.at(image, 0, 0, 0)));
    EXPECT_EQ(piece.mesh()->GetFVF() == 0x112, sample.name != "colours.x") << "scaled or not";
    EXPECT_TRUE(f.platform.messages().empty());
  }
}

TEST(ModelFiles, CompressedFilesOfManyBlocksInflateAsTheReaderDoes) {
  // A grid of quads whose text runs over several 32 KB blocks.
  for (XForm form : {XForm::TextZip, XForm::BinaryZip}) {
    XWriter w(form);
    std::vector<std::array<double, 3>> positions;
    std::vector<std::vector<uint32_t>> faces;
    constexpr uint32_t n = 60;
    for (uint32_t i = 0; i <= n; ++i) {
      for (uint32_t j = 0; j <= n; ++j) positions.push_back({i / 30.0 - 1, 0, j / 30.0 - 1});
    }
    for (uint32_t i = 0; i < n; ++i) {
      for (uint32_t j = 0; j < n; ++j) {
        const uint32_t a = i * (n + 1) + j;
        faces.push_back({a, a + 1, a + n + 2, a + n + 1});
      }
    }
    w.mesh("Grid", positions, faces);
    w.close();
    const std::string bytes = w.bytes();
    ModelFiles f;
    f.writeFile("grid.x", bytes);
    clsMesh& board = f.state().models.boardMesh;
    board.init("models/grid.x", "");
    ASSERT_TRUE(board.visible) << lastLoadFailure().cause;
    EXPECT_EQ(board.mesh()->GetNumVertices(), (n + 1) * (n + 1));
  }
}

std::string replaced(std::string s, const std::string& from, const std::string& to) {
  const size_t at = s.find(from);
  if (at == std::string::npos) throw std::runtime_error("no " + from);
  return s.replace(at, from.size(), to);
}

std::string nested(int depth) {
  std::string s = "xof 0303txt 0032\n";
  for (int k = 0; k < depth; ++k) s += "Frame F {\n";
  return s + std::string(static_cast<size_t>(depth), '}');
}

TEST(ModelFiles, BrokenFilesAreRefusedWithTheirCause) {
  const std::string text = squareModel(XForm::Text);
  const std::string binary = squareModel(XForm::Binary32);
  const std::string zipped = squareModel(XForm::TextZip);
  std::string skinned;
  for (const XSample& s : xSamples()) {
    if (s.name == "skinned.x") skinned = s.bytes;
  }
  // The binary vertex count follows the name "Mesh", the name "Square", '{' and an int list.
  std::string hugeCount = binary;
  const size_t count = hugeCount.find("Square") + 6 + 2 + 6;
  hugeCount.replace(count, 4, std::string("\xff\xff\xff\x7f", 4));
  std::string longString = binary;
  longString.replace(longString.find("wood.png") - 4, 4, std::string("\x00\x00\x00\x80", 4));

  // Empty blocks: the reader would ask for a whole block of memory for each.
  std::string tiny = "xof 0303tzip0032" + std::string(6, '\0');
  for (int k = 0; k < 2000; ++k)
    tiny += std::string(
        "\x04\x00"
        "CK"
        "\x03\x00\x00\x00",
        8);

  struct Case {
    std::string name, bytes, cause;
  };
  const std::string good = quadModel(3, 0, {1, 1, 1, 1, 0, 0, 0, "img.png"}).text();
  const Case cases[] = {
      {"empty.x", "", "byte 0: shorter than the 16-byte header"},
      {"header.x", "xof 0303txt 0032\n", "the model reader refused it: No root node"},
      {"truncated.x", good.substr(0, good.size() * 2 / 3), "line 24: ',' or ';' expected"},
      {"garbage.x", "\x7f\x45\x4c\x46\x02\x01\x01 garbage \xff\xfe\xfd",
       "byte 0: no \"xof \" at the start"},
      {"noise.x", "xof 0303txt 0032\n{{{{ ;;;; }}}} Mesh Mesh Mesh -1;", "line 2: '{' expected"},
      // A count that lies; the model reader would trust it.
      {"huge.x", "xof 0303txt 0032\nMesh { 99999999; 1.0;2.0;3.0;; }",
       "line 2: the vertex count 99999999 is larger than the data"},
      {"faceindex.x", replaced(text, "4;0,1,2,3;", "4;0,1,2,4;"),
       "line 9: face 0 names vertex 4 of a mesh with 4 vertices"},
      {"nocorners.x", replaced(text, "1;\n4;0,1,2,3;;", "2;\n4;0,1,2,3;,\n0;;"),
       "line 10: face 1 has no corners"},
      {"skinindex.x", replaced(skinned, "\n0,1,2,3;", "\n0,1,9,3;"),
       "a skin weight names vertex 9 of a mesh with 4 vertices"},
      {"normalindex.x", replaced(text, "4;0,0,0,0;", "4;0,0,5,0;"),
       "normal face 0 names normal 5 of 1"},
      {"nomaterials.x", text.substr(0, text.find("Material {")) + "}\n}\n",
       "material index 0 in a list of 0 materials"},
      {"twolists.x",
       replaced(text, "MeshMaterialList", "MeshMaterialList {1;1;0;;{M}}\nMeshMaterialList"),
       "a second material list in one mesh"},
      {"colourcount.x",
       replaced(text, "MeshMaterialList", "MeshVertexColors {3;0;1;1;1;1;;;}\nMeshMaterialList"),
       "3 vertex colours for 4 vertices"},
      {"longname.x", replaced(nested(1), "F {", std::string(1500, 'n') + " {"),
       "line 2: a name longer than 1023 bytes"},
      {"deep.x", nested(300), "line 202: frames nested deeper than 200"},
      {"hugecount.x", hugeCount, "byte 40: the vertex count 2147483647 is larger than the data"},
      {"longstring.x", longString, "a string longer than the data"},
      {"nomagic.x", replaced(zipped, "CK", "CX"), "byte 22: a compressed block without \"CK\""},
      {"cutblock.x", zipped.substr(0, zipped.size() - 20), "a compressed block past the end"},
      {"tinyblocks.x", tiny, "byte 22: 2000 compressed blocks in 16022 bytes"},
      {"unknownform.x", replaced(text, "txt ", "abc "), "byte 8: the unknown form \"abc \""},
      {"floatsize.x", replaced(text, "0032", "0016"), "floats of neither 32 nor 64 bits"},
      {"comma.x", replaced(text, "5.000000;", "5.000000"), "',' or ';' expected"},
  };
  ModelFiles f;
  size_t boxes = 0;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    f.writeFile(c.name, c.bytes);
    clsMesh& board = f.state().models.boardMesh;
    board = clsMesh();
    board.init("models/" + c.name, "");
    EXPECT_FALSE(board.visible || board.hasMesh());
    ASSERT_EQ(f.platform.messages().size(), ++boxes);
    EXPECT_EQ(f.platform.messages().back(), "Model load failed: " + f.path(c.name));
    EXPECT_EQ(lastLoadFailure().file, f.path(c.name));
    EXPECT_NE(lastLoadFailure().cause.find(c.cause), std::string::npos) << lastLoadFailure().cause;
    // The check finds all but a file without a body, which the reader refuses on its own.
    if (const auto fault = checkXFile(bytesOf(c.bytes))) {
      EXPECT_EQ(lastLoadFailure().cause, fault->describe());
    }
    // A mesh that failed draws nothing and takes no Translate.
    EXPECT_TRUE(f.empty());
    board.Translate(2, 1, 1, 1);
    EXPECT_EQ(board.posX(), 0.0f);
  }
}

TEST(ModelFiles, AHostHookHearsEveryFailureBeforeItsMessageBox) {
  ModelFiles f;
  std::vector<std::string> heard;
  const size_t boxesBefore = f.platform.messages().size();
  LoadFailureHook previous = setLoadFailureHook([&](const LoadFailure& failure) {
    heard.push_back(failure.file + " | " + failure.cause);
    EXPECT_EQ(f.platform.messages().size(), boxesBefore + heard.size() - 1);
  });
  f.writeFile("square.x", squareModel(XForm::Text, "gone.png"));
  clsMesh mesh;
  mesh.init("models/square.x", "");
  mesh.init("models/absent.x", "");
  setLoadFailureHook(previous);
  mesh.init("models/absent.x", "");
  ASSERT_EQ(heard.size(), 2u);
  EXPECT_EQ(heard[0], f.path("gone.png") + " | the file cannot be opened");
  EXPECT_EQ(heard[1], f.path("absent.x") + " | the file cannot be opened");
  EXPECT_EQ(f.platform.messages().size(), boxesBefore + 3);
}

TEST(TexturePath, WindowsNamesFindTheirImageInTheModelsFolder) {
  ModelFiles f;
  f.writeFile("Wood.png", "x");
  f.writeFile("maps/Grain.PNG", "x");
  const std::string folder = f.folder / "models";
  const std::pair<std::string, std::string> cases[] = {
      {"Wood.png", "Wood.png"},
      {"wood.png", "Wood.png"},
      {".\\wood.png", "Wood.png"},
      {".\\.\\Wood.png", "Wood.png"},
      {"C:\\models\\WOOD.PNG", "Wood.png"},
      {"d:wood.png", "Wood.png"},
      {"\\\\server\\share\\Wood.png", "Wood.png"},
      {"maps\\grain.png", "maps/Grain.PNG"},
      {"maps/Grain.PNG", "maps/Grain.PNG"},
      {"C:\\elsewhere\\grain.png", "C:\\elsewhere\\grain.png"},  // not in the folder itself
      {"missing.png", "missing.png"},
      {"", ""},
  };
  for (const auto& [name, expected] : cases) {
    EXPECT_EQ(findTexture(folder, name), folder + "/" + expected) << name;
  }
}

// Images that are missing or bad each give their message, never crash, and leave the mesh
// undrawn. (Bad model files are above.)
TEST(MeshLoad, MissingAndBadImages) {
  ModelFiles f;
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
    ASSERT_EQ(f.platform.messages().size(), ++count);
    EXPECT_EQ(f.platform.messages().back(), "Texture load failed: " + f.path(name));
    EXPECT_TRUE(board.hasMesh()) << "the geometry loaded, but the model is not drawn at all";
    EXPECT_FALSE(board.visible);
    EXPECT_TRUE(f.empty());
  }
}

TEST(MeshLoad, ThreeMaterialsWithAnAlternativeAndTheDiffuseAlpha) {
  ModelFiles f;
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
  ModelFiles f;
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
  ModelFiles f;
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
  ModelFiles f;
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
