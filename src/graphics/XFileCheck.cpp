#include "graphics/XFileCheck.h"

#include <cstring>
#include <set>
#include <utility>

#include "graphics/XFileCursor.h"
#include "graphics/XFileInflate.h"

namespace ostrel::graphics {

namespace {

// The reader recurses once per nested frame, and so do its later steps.
constexpr int kMaxFrameDepth = 200;
constexpr int kMaxSets = 8;  // texture coordinate and colour sets that a mesh may have

std::string number(uint64_t n) {
  return std::to_string(n);
}

// The file's objects, in the order and with the reading rules of the model reader.
class Checker {
 public:
  explicit Checker(XFileCursor& c) : c_(c) {}

  void file() {
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) break;
      if (t == "template") {
        templateObject();
      } else if (t == "Frame") {
        frame(1);
      } else if (t == "Mesh") {
        mesh();
      } else if (t == "AnimTicksPerSecond") {
        c_.head(nullptr);
        c_.integer();
        c_.closingBrace();
      } else if (t == "AnimationSet") {
        animationSet();
      } else if (t == "Material") {
        globalMaterials_.insert(material());
      } else if (t != "}") {
        c_.skipObject();
      }
    }
    for (const auto& [name, offset] : references_) {
      if (!globalMaterials_.count(name)) {
        throw XFileRefusal("a reference to the unknown material \"" + name + "\"", offset);
      }
    }
  }

 private:
  void templateObject() {
    c_.head(nullptr);
    c_.token();  // its GUID, whatever it is
    for (;;) {
      const std::string t = c_.token();
      if (t == "}") return;
      if (t.empty()) c_.refuse("the data ends inside a template");
    }
  }

  void frame(int depth) {
    if (depth > kMaxFrameDepth) c_.refuse("frames nested deeper than " + number(kMaxFrameDepth));
    c_.head(nullptr);
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) c_.refuse("the data ends inside a frame");
      if (t == "}") return;
      if (t == "Frame") {
        frame(depth + 1);
      } else if (t == "FrameTransformMatrix") {
        c_.head(nullptr);
        for (int k = 0; k < 16; ++k) c_.real();
        c_.semicolon();
        c_.closingBrace();
      } else if (t == "Mesh") {
        mesh();
      } else {
        c_.skipObject();
      }
    }
  }

  void mesh() {
    c_.head(nullptr);
    const uint32_t vertices = c_.count(3, "the vertex count");
    for (uint32_t v = 0; v < vertices; ++v) c_.reals(3);
    const uint32_t faces = c_.count(1, "the face count");
    std::vector<uint32_t> faceSizes;
    for (uint32_t f = 0; f < faces; ++f) {
      const size_t start = c_.next();
      const uint32_t corners = c_.integer();
      // The reader's triangulation asserts on a face without corners.
      if (corners == 0) throw XFileRefusal("face " + number(f) + " has no corners", start);
      for (uint32_t k = 0; k < corners; ++k) {
        const size_t at = c_.next();
        const uint32_t index = c_.integer();
        if (index >= vertices) {
          throw XFileRefusal("face " + number(f) + " names vertex " + number(index) +
                                 " of a mesh with " + number(vertices) + " vertices",
                             at);
        }
      }
      c_.optionalSeparator();
      faceSizes.push_back(corners);
    }
    int coordinateSets = 0, colourSets = 0;
    bool materialList = false;
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) c_.refuse("the data ends inside a mesh");
      if (t == "}") return;
      if (t == "MeshNormals") {
        normals(faceSizes);
      } else if (t == "MeshTextureCoords") {
        c_.head(nullptr);
        if (++coordinateSets > kMaxSets) c_.refuse("more than 8 texture coordinate sets");
        perVertex(vertices, "texture coordinates");
        for (uint32_t v = 0; v < vertices; ++v) c_.reals(2);
        c_.closingBrace();
      } else if (t == "MeshVertexColors") {
        c_.head(nullptr);
        if (++colourSets > kMaxSets) c_.refuse("more than 8 vertex colour sets");
        perVertex(vertices, "vertex colours");
        for (uint32_t v = 0; v < vertices; ++v) {
          vertexIndex(vertices, "a vertex colour");
          c_.reals(4);
          c_.optionalByte(';', ',');
        }
        c_.closingBrace();
      } else if (t == "MeshMaterialList") {
        if (materialList) c_.refuse("a second material list in one mesh");
        materialList = true;
        materials(static_cast<uint32_t>(faceSizes.size()));
      } else if (t == "XSkinMeshHeader") {
        c_.head(nullptr);
        for (int k = 0; k < 3; ++k) c_.integer();
        c_.closingBrace();
      } else if (t == "SkinWeights") {
        skinWeights(vertices);
      } else {
        c_.skipObject();
      }
    }
  }

  void perVertex(uint32_t vertices, const char* what) {
    const size_t at = c_.next();
    const uint32_t n = c_.integer();
    if (n != vertices) {
      throw XFileRefusal(number(n) + " " + what + " for " + number(vertices) + " vertices", at);
    }
  }

  void vertexIndex(uint32_t vertices, const char* what) {
    const size_t at = c_.next();
    const uint32_t index = c_.integer();
    if (index >= vertices) {
      throw XFileRefusal(std::string(what) + " names vertex " + number(index) + " of a mesh with " +
                             number(vertices) + " vertices",
                         at);
    }
  }

  void normals(const std::vector<uint32_t>& faceSizes) {
    c_.head(nullptr);
    const uint32_t n = c_.count(3, "the normal count");
    for (uint32_t k = 0; k < n; ++k) c_.reals(3);
    size_t at = c_.next();
    if (c_.integer() != faceSizes.size()) {
      throw XFileRefusal("the normals' face count differs from the mesh's", at);
    }
    for (size_t f = 0; f < faceSizes.size(); ++f) {
      at = c_.next();
      if (c_.integer() != faceSizes[f]) {
        throw XFileRefusal("normal face " + number(f) + " has other corners than its face", at);
      }
      for (uint32_t k = 0; k < faceSizes[f]; ++k) {
        at = c_.next();
        const uint32_t index = c_.integer();
        if (index >= n) {
          throw XFileRefusal(
              "normal face " + number(f) + " names normal " + number(index) + " of " + number(n),
              at);
        }
      }
      c_.optionalSeparator();
    }
    c_.closingBrace();
  }

  void materials(uint32_t faces) {
    c_.head(nullptr);
    c_.integer();  // the count the file claims; the reader counts what follows
    size_t at = c_.next();
    const uint32_t indices = c_.integer();
    if (indices != faces && !(indices == 1 && faces > 0)) {
      throw XFileRefusal(number(indices) + " material indices for " + number(faces) + " faces", at);
    }
    std::vector<std::pair<uint32_t, size_t>> used;
    for (uint32_t k = 0; k < indices; ++k) {
      at = c_.next();
      used.emplace_back(c_.integer(), at);
    }
    c_.byteIf(';');
    uint32_t found = 0;
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) c_.refuse("the data ends inside a material list");
      if (t == "}") break;
      if (t == "{") {
        const size_t name = c_.next();
        references_.emplace_back(c_.token(), name);
        c_.closingBrace();
        ++found;
      } else if (t == "Material") {
        material();
        ++found;
      } else if (t != ";") {
        c_.skipObject();
      }
    }
    for (const auto& [index, offset] : used) {
      if (index >= found) {
        throw XFileRefusal(
            "material index " + number(index) + " in a list of " + number(found) + " materials",
            offset);
      }
    }
  }

  std::string material() {
    std::string name;
    c_.head(&name);
    c_.reals(4);
    c_.real();
    c_.reals(3);
    c_.reals(3);
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) c_.refuse("the data ends inside a material");
      if (t == "}") return name;
      if (t == "TextureFilename" || t == "TextureFileName" || t == "NormalmapFilename" ||
          t == "NormalmapFileName") {
        c_.head(nullptr);
        c_.quoted();
        c_.closingBrace();
      } else {
        c_.skipObject();
      }
    }
  }

  void skinWeights(uint32_t vertices) {
    c_.head(nullptr);
    c_.quoted();  // the bone's frame
    const uint32_t n = c_.count(2, "the weight count");
    for (uint32_t k = 0; k < n; ++k) vertexIndex(vertices, "a skin weight");
    for (uint32_t k = 0; k < n; ++k) c_.real();
    for (int k = 0; k < 16; ++k) c_.real();
    c_.semicolon();
    c_.closingBrace();
  }

  void animationSet() {
    c_.head(nullptr);
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) c_.refuse("the data ends inside an animation set");
      if (t == "}") return;
      if (t == "Animation") {
        animation();
      } else {
        c_.skipObject();
      }
    }
  }

  void animation() {
    c_.head(nullptr);
    for (;;) {
      const std::string t = c_.token();
      if (t.empty()) c_.refuse("the data ends inside an animation");
      if (t == "}") return;
      if (t == "AnimationKey") {
        animationKey();
      } else if (t == "{") {
        c_.token();  // the animated frame's name
        c_.closingBrace();
      } else {
        c_.skipObject();
      }
    }
  }

  void animationKey() {
    c_.head(nullptr);
    const uint32_t type = c_.integer();
    const uint32_t keys = c_.integer();
    for (uint32_t k = 0; k < keys; ++k) {
      c_.integer();  // time
      const size_t at = c_.next();
      const uint32_t values = c_.integer();
      const uint32_t expected = type == 0 ? 4 : type <= 2 ? 3 : type <= 4 ? 16 : 0;
      if (expected == 0) throw XFileRefusal("animation key type " + number(type), at);
      if (values != expected) {
        throw XFileRefusal(number(values) + " values in a key of type " + number(type), at);
      }
      if (type == 1 || type == 2) {
        c_.reals(3);
      } else {
        for (uint32_t v = 0; v < values; ++v) c_.real();
        c_.semicolon();
      }
      c_.separator();
    }
    c_.closingBrace();
  }

  XFileCursor& c_;
  std::set<std::string> globalMaterials_;
  std::vector<std::pair<std::string, size_t>> references_;
};

}  // namespace

std::string XFileFault::describe() const {
  std::string where = inflated ? "inflated " : "";
  where += line > 0 ? "line " + number(line) : "byte " + number(offset);
  return where + ": " + what;
}

std::optional<XFileFault> checkXFile(const std::vector<uint8_t>& bytes) {
  XFileFault fault;
  if (bytes.size() < 16) {
    fault.what = "shorter than the 16-byte header";
    return fault;
  }
  if (std::memcmp(bytes.data(), "xof ", 4) != 0) {
    fault.what = "no \"xof \" at the start: not a .x file";
    return fault;
  }
  const std::string form(bytes.begin() + 8, bytes.begin() + 12);
  const bool binary = form == "bin " || form == "bzip";
  const bool compressed = form == "tzip" || form == "bzip";
  if (!binary && !compressed && form != "txt ") {
    fault.offset = 8;
    fault.what = "the unknown form \"" + form + "\"";
    return fault;
  }
  // The reader's own arithmetic, digits or not.
  unsigned bits = 0;
  for (size_t k = 12; k < 16; ++k) bits = bits * 10 + static_cast<unsigned>(bytes[k] - 48);
  if (bits != 32 && bits != 64) {
    fault.offset = 12;
    fault.what = "floats of neither 32 nor 64 bits";
    return fault;
  }
  std::vector<uint8_t> data;
  try {
    data = compressed ? inflateXFile(bytes) : std::vector<uint8_t>(bytes.begin() + 16, bytes.end());
  } catch (const XFileRefusal& e) {
    fault.offset = e.offset;
    fault.what = e.what();
    return fault;
  }
  XFileCursor cursor(std::move(data), binary, bits / 8);
  try {
    if (!compressed) cursor.skipLine();
    Checker(cursor).file();
  } catch (const XFileRefusal& e) {
    fault.what = e.what();
    fault.inflated = compressed;
    fault.offset = compressed ? e.offset : e.offset + 16;
    if (!binary) fault.line = cursor.lineOf(e.offset);
    return fault;
  }
  return std::nullopt;
}

}  // namespace ostrel::graphics
