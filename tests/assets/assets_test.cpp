// Checks of the shipped asset set in assets/models: the geometry and images of every model fit
// where the control puts them. That each model and image loads is the model-set case's check.

#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <gtest/gtest.h>
#include <stb_image.h>

#include <assimp/Importer.hpp>
#include <cmath>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using V = aiVector3t<double>;

const fs::path kDir = fs::path(OSTREL_TESTS_DIR) / ".." / "assets" / "models";

// One model as the control holds it: the meshes per material joined again.
struct Model {
  std::vector<V> pos, normal, uv;
  std::vector<unsigned> tri;
  std::vector<std::string> textures;  // per material, empty if none
  std::vector<double> alpha;          // per material, the diffuse alpha
  V lo{1e9, 1e9, 1e9}, hi{-1e9, -1e9, -1e9};
  // Volume enclosed by a closed surface; positive when its faces look outward.
  double volume() const {
    double v = 0;
    for (size_t i = 0; i + 2 < tri.size(); i += 3)
      v += pos[tri[i]] * (pos[tri[i + 1]] ^ pos[tri[i + 2]]) / 6;
    return v;
  }
};

Model load(const std::string& name) {
  Assimp::Importer importer;
  const aiScene* scene = importer.ReadFile((kDir / name).string(),
                                           aiProcess_ConvertToLeftHanded | aiProcess_Triangulate);
  Model m;
  if (scene == nullptr) {
    ADD_FAILURE() << name << ": " << importer.GetErrorString();
    return m;
  }
  for (unsigned i = 0; i < scene->mNumMaterials; ++i) {
    aiString tex;
    const bool has = scene->mMaterials[i]->GetTexture(aiTextureType_DIFFUSE, 0, &tex) == AI_SUCCESS;
    m.textures.push_back(has ? tex.C_Str() : "");
    aiColor4D diffuse(0, 0, 0, 0);
    scene->mMaterials[i]->Get(AI_MATKEY_COLOR_DIFFUSE, diffuse);
    float opacity = diffuse.a;
    scene->mMaterials[i]->Get(AI_MATKEY_OPACITY, opacity);
    m.alpha.push_back(opacity);
  }
  for (unsigned k = 0; k < scene->mNumMeshes; ++k) {
    const aiMesh* mesh = scene->mMeshes[k];
    // That each mesh has normals and one pair of texture coordinates is start-up's check.
    if (!mesh->HasNormals() || mesh->GetNumUVChannels() != 1) continue;
    const auto base = static_cast<unsigned>(m.pos.size());
    for (unsigned i = 0; i < mesh->mNumVertices; ++i) {
      const V p = mesh->mVertices[i];
      m.pos.push_back(p);
      m.normal.push_back(mesh->mNormals[i]);
      m.uv.push_back(mesh->mTextureCoords[0][i]);
      m.lo = {std::min(m.lo.x, p.x), std::min(m.lo.y, p.y), std::min(m.lo.z, p.z)};
      m.hi = {std::max(m.hi.x, p.x), std::max(m.hi.y, p.y), std::max(m.hi.z, p.z)};
    }
    for (unsigned f = 0; f < mesh->mNumFaces; ++f) {
      EXPECT_EQ(mesh->mFaces[f].mNumIndices, 3u) << name;
      for (unsigned j = 0; j < 3 && j < mesh->mFaces[f].mNumIndices; ++j)
        m.tri.push_back(base + mesh->mFaces[f].mIndices[j]);
    }
  }
  return m;
}

struct Picture {
  int w = 0, h = 0;
  std::vector<unsigned char> rgb;
  // Mean of the three channels, 0..1, around (u, v) in a 5 x 5 pixel window.
  double grey(double u, double v) const {
    const int cx = static_cast<int>(u * w), cy = static_cast<int>(v * h);
    double sum = 0;
    int n = 0;
    for (int y = std::max(0, cy - 2); y <= std::min(h - 1, cy + 2); ++y) {
      for (int x = std::max(0, cx - 2); x <= std::min(w - 1, cx + 2); ++x, ++n) {
        const unsigned char* p = &rgb[(static_cast<size_t>(y) * w + x) * 3];
        sum += (p[0] + p[1] + p[2]) / (3 * 255.0);
      }
    }
    return sum / n;
  }
};

Picture decode(const std::string& name) {
  Picture pic;
  int channels = 0;
  unsigned char* data = stbi_load((kDir / name).string().c_str(), &pic.w, &pic.h, &channels, 3);
  if (data == nullptr) {
    ADD_FAILURE() << name << " does not decode";
    return pic;
  }
  pic.rgb.assign(data, data + static_cast<size_t>(pic.w) * pic.h * 3);
  stbi_image_free(data);
  return pic;
}

TEST(Assets, FacesAreClockwiseSeenFromWhereTheirNormalsPoint) {
  // (b - a) x (c - a) points out of a face whose corners run clockwise as seen from outside
  // in the file's left-handed coordinates.
  for (const char* name : {"board.x", "hl.x", "hl2.x", "hl3.x", "white.x", "black.x", "shadow.x"}) {
    const Model m = load(name);
    ASSERT_FALSE(m.tri.empty()) << name;
    int wrong = 0;
    for (size_t i = 0; i + 2 < m.tri.size(); i += 3) {
      const unsigned a = m.tri[i], b = m.tri[i + 1], c = m.tri[i + 2];
      wrong += ((m.pos[b] - m.pos[a]) ^ (m.pos[c] - m.pos[a])) *
                   (m.normal[a] + m.normal[b] + m.normal[c]) <=
               0;
    }
    EXPECT_EQ(wrong, 0) << name;
  }
}

TEST(Assets, BoardSurfaceSquaresAndImage) {
  const Model m = load("board.x");
  ASSERT_FALSE(m.pos.empty());
  double lo = 1e9, hi = -1e9;
  for (size_t i = 0; i < m.pos.size(); ++i) {
    const V p = m.pos[i];
    if (std::abs(p.x) < 5 - 1e-4 && std::abs(p.z) < 5 - 1e-4) {
      // Inside the field of squares nothing but the playing surface.
      EXPECT_NEAR(p.y, 0.2265, 1e-6);
      EXPECT_NEAR(m.normal[i].y, 1.0, 1e-6);
    }
    if (std::abs(p.y - 0.2265) < 1e-6 && m.normal[i].y > 0.999) {
      lo = std::min({lo, p.x, p.z});
      hi = std::max({hi, p.x, p.z});
    }
  }
  EXPECT_NEAR(lo, -5.0, 1e-6);
  EXPECT_NEAR(hi, 5.0, 1e-6);
  EXPECT_TRUE(m.hi.x > 5.2 && m.lo.x < -5.2);  // a frame around the squares
  EXPECT_LE(m.lo.y, 0.001);                    // and a body below them
  EXPECT_LT(m.hi.y, 0.2265 + 0.05);
  // A closed solid: the whole top's area times roughly its height.
  const double area = (m.hi.x - m.lo.x) * (m.hi.z - m.lo.z);
  EXPECT_NEAR(m.volume(), area * 0.2265, area * 0.02);

  // Through the board's own texture coordinates every dark square (column + row even) of the
  // image is darker than every light one.
  const Picture pic = decode("board.jpg");
  ASSERT_GT(pic.w, 0);
  auto grey = [&](double x, double z) {
    for (size_t i = 0; i + 2 < m.tri.size(); i += 3) {
      const V a = m.pos[m.tri[i]], b = m.pos[m.tri[i + 1]], c = m.pos[m.tri[i + 2]];
      if (std::abs(a.y - 0.2265) > 1e-6 || std::abs(b.y - a.y) > 1e-6 || std::abs(c.y - a.y) > 1e-6)
        continue;
      const double d = (b.x - a.x) * (c.z - a.z) - (c.x - a.x) * (b.z - a.z);
      if (std::abs(d) < 1e-12) continue;
      const double s = ((x - a.x) * (c.z - a.z) - (c.x - a.x) * (z - a.z)) / d;
      const double t = ((b.x - a.x) * (z - a.z) - (x - a.x) * (b.z - a.z)) / d;
      if (s < 0 || t < 0 || s + t > 1) continue;
      const V &ua = m.uv[m.tri[i]], &ub = m.uv[m.tri[i + 1]], &uc = m.uv[m.tri[i + 2]];
      const V uv = ua + s * (ub - ua) + t * (uc - ua);
      return pic.grey(uv.x, uv.y);
    }
    ADD_FAILURE() << "no surface at " << x << ", " << z;
    return -1.0;
  };
  double darkest = 0, lightest = 1;
  for (int row = 0; row < 10; ++row) {
    for (int col = 0; col < 10; ++col) {
      const double g = grey(col - 4.5, row - 4.5);
      (row + col) % 2 ? lightest = std::min(lightest, g) : darkest = std::max(darkest, g);
    }
  }
  EXPECT_LT(darkest + 0.15, lightest);
}

TEST(Assets, PiecesStackExactlyAndFitASquare) {
  for (const char* name : {"white.x", "black.x"}) {
    SCOPED_TRACE(name);
    const Model m = load(name);
    ASSERT_FALSE(m.pos.empty());
    EXPECT_NEAR(m.lo.y, 0.0, 1e-6);
    EXPECT_NEAR(m.hi.y * 0.23, 0.21, 1e-4);
    const double radius = std::max({m.hi.x, -m.lo.x, m.hi.z, -m.lo.z}) * 0.23;
    EXPECT_TRUE(radius > 0.41 && radius < 0.43) << radius;
    // Closed and facing outward: close to a cylinder of that size, less its roundings.
    const double cylinder = M_PI * std::pow(radius / 0.23, 2) * m.hi.y;
    EXPECT_TRUE(m.volume() > 0.85 * cylinder && m.volume() < cylinder) << m.volume();
  }
  const Picture white = decode("piecewhite.png"), black = decode("pieceblack.png");
  ASSERT_EQ(white.w, 512);
  ASSERT_EQ(black.w, 512);
  // The middle of the top: ebony is dark but not black. How light and dark the men show is the
  // reference frames' check.
  EXPECT_GT(black.grey(0.58, 0.5), 0.05);
}

TEST(Assets, ShadowLiesJustAboveTheSurface) {
  const Model m = load("shadow.x");
  ASSERT_FALSE(m.pos.empty());
  for (size_t i = 0; i < m.pos.size(); ++i) {
    const double y = 0.0075 + 0.28 * m.pos[i].y;
    EXPECT_TRUE(y > 0.2265 && y < 0.2275) << y;
    EXPECT_NEAR(m.normal[i].y, 1.0, 1e-6);
  }
  const double side = (m.hi.x - m.lo.x) * 0.28;
  EXPECT_TRUE(side > 0.95 && side < 1.15) << side;
  const Picture pic = decode("shadow2.png");
  ASSERT_GT(pic.w, 0);
  // White all round the edge, so the quad's outline never shows.
  for (int i = 0; i < pic.w; ++i) {
    for (const int p : {i, (pic.h - 1) * pic.w + i, i * pic.w, i * pic.w + pic.w - 1})
      EXPECT_EQ(pic.rgb[p * 3] + pic.rgb[p * 3 + 1] + pic.rgb[p * 3 + 2], 3 * 255) << p;
  }
  EXPECT_TRUE(pic.grey(0.5, 0.5) > 0.4 && pic.grey(0.5, 0.5) < 0.6);
  EXPECT_LT(pic.grey(0.5, 0.5), pic.grey(0.5, 0.8));
}

TEST(Assets, MarkersLieFlatOnTheOrigin) {
  for (const char* name : {"hl.x", "hl2.x", "hl3.x"}) {
    SCOPED_TRACE(name);
    const Model m = load(name);
    ASSERT_FALSE(m.pos.empty());
    for (size_t i = 0; i < m.pos.size(); ++i) {
      EXPECT_NEAR(m.pos[i].y, 0.0, 1e-6);
      EXPECT_NEAR(m.normal[i].y, 1.0, 1e-6);
    }
    EXPECT_NEAR(m.lo.x + m.hi.x, 0.0, 1e-6);
    EXPECT_NEAR(m.lo.z + m.hi.z, 0.0, 1e-6);
    EXPECT_TRUE(m.hi.x - m.lo.x > 0.9 && m.hi.x - m.lo.x < 0.97) << m.hi.x - m.lo.x;
    for (double a : m.alpha) EXPECT_TRUE(a > 0.3 && a <= 1.0) << a;
    // The frame near the edge adds colour.
    EXPECT_GT(decode(m.textures.at(0)).grey(0.2, 0.055), 0.2);
  }
}

TEST(Assets, FolderStaysSmall) {
  uintmax_t total = 0;
  for (const auto& entry : fs::directory_iterator(kDir)) total += entry.file_size();
  EXPECT_LT(total, 3u * 1024 * 1024);
}

}  // namespace
