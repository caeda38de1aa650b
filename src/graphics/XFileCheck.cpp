#include "graphics/XFileCheck.h"

#include <cctype>
#include <cstring>
#include <set>
#include <stdexcept>

namespace ostrel::graphics {

namespace {

struct Refused : std::runtime_error {
  using std::runtime_error::runtime_error;
};

enum class Kind { End, Word, Number, String, Open, Close, Semicolon, Comma };

struct Token {
  Kind kind = Kind::End;
  std::string text;
};

// Splits the file after its header into words, numbers, strings and the four delimiters, the
// way the model reader does; bytes that no .x file holds are refused.
class Tokens {
 public:
  explicit Tokens(const std::vector<uint8_t>& bytes) : b_(bytes), i_(16) { advance(); }

  const Token& peek() const { return current_; }
  Token next() {
    Token t = current_;
    advance();
    return t;
  }
  bool at(Kind k) const { return current_.kind == k; }
  bool atWord(const char* w) const { return current_.kind == Kind::Word && current_.text == w; }

 private:
  static bool space(uint8_t c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
  static bool delimiter(uint8_t c) { return c == ';' || c == ',' || c == '{' || c == '}'; }

  void advance() {
    for (;;) {
      while (i_ < b_.size() && space(b_[i_])) ++i_;
      if (i_ < b_.size() &&
          (b_[i_] == '#' || (b_[i_] == '/' && i_ + 1 < b_.size() && b_[i_ + 1] == '/'))) {
        while (i_ < b_.size() && b_[i_] != '\n') ++i_;
        continue;
      }
      break;
    }
    current_ = Token{};
    if (i_ >= b_.size()) return;
    const uint8_t c = b_[i_];
    if (delimiter(c)) {
      ++i_;
      current_.kind = c == ';'   ? Kind::Semicolon
                      : c == ',' ? Kind::Comma
                      : c == '{' ? Kind::Open
                                 : Kind::Close;
      return;
    }
    if (c == '"') {
      ++i_;
      while (i_ < b_.size() && b_[i_] != '"') {
        const uint8_t s = b_[i_];
        if (s < 0x20 || s >= 0x7F || delimiter(s)) throw Refused("odd byte in a string");
        current_.text.push_back(static_cast<char>(s));
        ++i_;
      }
      if (i_ >= b_.size()) throw Refused("string without its end");
      ++i_;
      current_.kind = Kind::String;
      return;
    }
    while (i_ < b_.size() && !space(b_[i_]) && !delimiter(b_[i_])) {
      const uint8_t s = b_[i_];
      if (s < 0x20 || s >= 0x7F || s == '"') throw Refused("odd byte in a word");
      current_.text.push_back(static_cast<char>(s));
      ++i_;
    }
    current_.kind = isNumber(current_.text) ? Kind::Number : Kind::Word;
  }

  static bool isNumber(const std::string& t) {
    size_t k = 0;
    if (k < t.size() && (t[k] == '-' || t[k] == '+')) ++k;
    size_t digits = 0;
    while (k < t.size() && std::isdigit(static_cast<unsigned char>(t[k]))) ++k, ++digits;
    if (k < t.size() && t[k] == '.') {
      ++k;
      while (k < t.size() && std::isdigit(static_cast<unsigned char>(t[k]))) ++k, ++digits;
    }
    if (digits == 0) return false;
    if (k < t.size() && (t[k] == 'e' || t[k] == 'E')) {
      ++k;
      if (k < t.size() && (t[k] == '-' || t[k] == '+')) ++k;
      size_t exponent = 0;
      while (k < t.size() && std::isdigit(static_cast<unsigned char>(t[k]))) ++k, ++exponent;
      if (exponent == 0) return false;
    }
    return k == t.size();
  }

  const std::vector<uint8_t>& b_;
  size_t i_;
  Token current_;
};

class Checker {
 public:
  explicit Checker(const std::vector<uint8_t>& bytes) : t_(bytes), size_(bytes.size()) {}

  void file() {
    while (!t_.at(Kind::End)) {
      if (t_.atWord("template")) {
        t_.next();
        templateBody();
      } else if (t_.atWord("Frame")) {
        t_.next();
        frame(0);
      } else if (t_.atWord("Mesh")) {
        t_.next();
        mesh();
      } else if (t_.atWord("Material")) {
        t_.next();
        globalMaterials_.insert(material());
      } else if (t_.atWord("AnimTicksPerSecond") || t_.atWord("AnimationSet")) {
        throw Refused("animations are not read");
      } else if (t_.at(Kind::Word)) {
        t_.next();
        unknown();
      } else {
        throw Refused("a data object expected");
      }
    }
    if (meshes_ == 0) throw Refused("no mesh");
  }

 private:
  // Word or number that names an object, or nothing, then '{'. Gives the name.
  std::string head() {
    std::string name;
    if (t_.at(Kind::Word) || t_.at(Kind::Number)) name = t_.next().text;
    expect(Kind::Open, "'{' expected");
    return name;
  }

  void expect(Kind k, const char* what) {
    if (!t_.at(k)) throw Refused(what);
    t_.next();
  }
  void separator() {
    if (!t_.at(Kind::Semicolon) && !t_.at(Kind::Comma)) throw Refused("separator expected");
    t_.next();
  }
  void optionalSeparator() {
    if (t_.at(Kind::Semicolon) || t_.at(Kind::Comma)) t_.next();
  }
  // A whole number and its separator; counts can be no larger than the file.
  uint64_t count() {
    if (!t_.at(Kind::Number)) throw Refused("number expected");
    const std::string text = t_.next().text;
    for (char c : text) {
      if (!std::isdigit(static_cast<unsigned char>(c))) throw Refused("whole number expected");
    }
    if (text.size() > 12) throw Refused("number too large");
    const uint64_t value = std::stoull(text);
    if (value > size_) throw Refused("count larger than the file");
    separator();
    return value;
  }
  void real() {
    if (!t_.at(Kind::Number)) throw Refused("number expected");
    t_.next();
    separator();
  }
  void reals(int n) {
    for (int k = 0; k < n; ++k) real();
  }

  void templateBody() {
    head();
    while (!t_.at(Kind::Close)) {
      if (t_.at(Kind::End) || t_.at(Kind::Open)) throw Refused("template not closed");
      t_.next();
    }
    t_.next();
  }

  // Any other object: its braces must pair up, and it holds no strings.
  void unknown() {
    head();
    int depth = 1;
    while (depth > 0) {
      if (t_.at(Kind::End)) throw Refused("object not closed");
      if (t_.at(Kind::String)) throw Refused("string in an unknown object");
      if (t_.at(Kind::Open)) ++depth;
      if (t_.at(Kind::Close)) --depth;
      if (depth > 64) throw Refused("objects nested too deep");
      t_.next();
    }
  }

  void frame(int depth) {
    if (depth > 64) throw Refused("frames nested too deep");
    head();
    while (!t_.at(Kind::Close)) {
      if (t_.atWord("Frame")) {
        t_.next();
        frame(depth + 1);
      } else if (t_.atWord("FrameTransformMatrix")) {
        t_.next();
        head();
        reals(16);
        expect(Kind::Semicolon, "';' after the matrix expected");
        expect(Kind::Close, "'}' after the matrix expected");
      } else if (t_.atWord("Mesh")) {
        t_.next();
        mesh();
      } else if (t_.at(Kind::Word)) {
        t_.next();
        unknown();
      } else {
        throw Refused("a data object expected in a frame");
      }
    }
    t_.next();
  }

  void mesh() {
    head();
    const uint64_t vertices = count();
    if (vertices == 0) throw Refused("mesh without vertices");
    for (uint64_t v = 0; v < vertices; ++v) {
      reals(3);
      optionalSeparator();
    }
    const uint64_t faceCount = count();
    if (faceCount == 0) throw Refused("mesh without faces");
    std::vector<uint32_t> faceSizes;
    faceSizes.reserve(faceCount);
    for (uint64_t f = 0; f < faceCount; ++f) {
      const uint64_t n = count();
      if (n < 3) throw Refused("face with fewer than three corners");
      for (uint64_t k = 0; k < n; ++k) {
        if (count() >= vertices) throw Refused("face index past the last vertex");
      }
      optionalSeparator();
      faceSizes.push_back(static_cast<uint32_t>(n));
    }
    bool normals = false, coords = false, colours = false, materials = false;
    while (!t_.at(Kind::Close)) {
      if (t_.atWord("MeshNormals") && !normals) {
        t_.next();
        meshNormals(faceSizes);
        normals = true;
      } else if (t_.atWord("MeshTextureCoords") && !coords) {
        t_.next();
        meshTextureCoords(vertices);
        coords = true;
      } else if (t_.atWord("MeshVertexColors") && !colours) {
        t_.next();
        meshVertexColors(vertices);
        colours = true;
      } else if (t_.atWord("MeshMaterialList") && !materials) {
        t_.next();
        meshMaterialList(faceCount);
        materials = true;
      } else if (t_.atWord("VertexDuplicationIndices")) {
        t_.next();
        unknown();
      } else {
        throw Refused("unexpected object in a mesh");
      }
    }
    t_.next();
    ++meshes_;
  }

  void meshNormals(const std::vector<uint32_t>& faceSizes) {
    head();
    const uint64_t n = count();
    for (uint64_t v = 0; v < n; ++v) {
      reals(3);
      optionalSeparator();
    }
    if (count() != faceSizes.size()) throw Refused("normal faces do not match the faces");
    for (uint32_t size : faceSizes) {
      if (count() != size) throw Refused("normal face of another size");
      for (uint32_t k = 0; k < size; ++k) {
        if (count() >= n) throw Refused("normal index past the last normal");
      }
      optionalSeparator();
    }
    optionalSeparator();
    expect(Kind::Close, "'}' after the normals expected");
  }

  void meshTextureCoords(uint64_t vertices) {
    head();
    if (count() != vertices) throw Refused("texture coordinates do not match the vertices");
    for (uint64_t v = 0; v < vertices; ++v) {
      reals(2);
      optionalSeparator();
    }
    optionalSeparator();
    expect(Kind::Close, "'}' after the texture coordinates expected");
  }

  void meshVertexColors(uint64_t vertices) {
    head();
    const uint64_t n = count();
    for (uint64_t k = 0; k < n; ++k) {
      if (count() >= vertices) throw Refused("vertex colour past the last vertex");
      reals(4);
      optionalSeparator();
    }
    optionalSeparator();
    expect(Kind::Close, "'}' after the vertex colours expected");
  }

  void meshMaterialList(uint64_t faces) {
    head();
    const uint64_t n = count();
    if (n == 0) throw Refused("material list without materials");
    const uint64_t indices = count();
    if (indices != faces && indices != 1) throw Refused("material indices do not match the faces");
    for (uint64_t k = 0; k < indices; ++k) {
      if (count() >= n) throw Refused("material index past the last material");
    }
    uint64_t found = 0;
    while (!t_.at(Kind::Close)) {
      if (t_.at(Kind::Semicolon)) {
        t_.next();
      } else if (t_.atWord("Material")) {
        t_.next();
        material();
        ++found;
      } else if (t_.at(Kind::Open)) {
        t_.next();
        if (!t_.at(Kind::Word) && !t_.at(Kind::Number)) throw Refused("material name expected");
        if (!globalMaterials_.count(t_.next().text)) throw Refused("unknown material");
        expect(Kind::Close, "'}' after a material reference expected");
        ++found;
      } else {
        throw Refused("unexpected object in a material list");
      }
    }
    t_.next();
    if (found != n) throw Refused("material count does not match the materials");
  }

  std::string material() {
    std::string name = head();
    reals(4);
    optionalSeparator();
    real();
    reals(3);
    optionalSeparator();
    reals(3);
    optionalSeparator();
    while (!t_.at(Kind::Close)) {
      if (t_.atWord("TextureFilename") || t_.atWord("TextureFileName")) {
        t_.next();
        head();
        if (!t_.at(Kind::String)) throw Refused("texture file name expected");
        t_.next();
        optionalSeparator();
        expect(Kind::Close, "'}' after the texture file name expected");
      } else {
        throw Refused("unexpected object in a material");
      }
    }
    t_.next();
    return name;
  }

  Tokens t_;
  uint64_t size_;
  std::set<std::string> globalMaterials_;
  int meshes_ = 0;
};

}  // namespace

bool checkTextXFile(const std::vector<uint8_t>& bytes, std::string& why) {
  if (bytes.size() < 16 || std::memcmp(bytes.data(), "xof ", 4) != 0 ||
      std::memcmp(bytes.data() + 8, "txt ", 4) != 0) {
    why = "not a text .x file";
    return false;
  }
  try {
    Checker(bytes).file();
  } catch (const Refused& e) {
    why = e.what();
    return false;
  }
  return true;
}

}  // namespace ostrel::graphics
