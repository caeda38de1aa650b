#include "support/XFileSamples.h"

#include <zlib.h>

#include <cstdio>
#include <stdexcept>

namespace ostrel::testing {

namespace {

using Positions = std::vector<std::array<double, 3>>;
using Faces = std::vector<std::vector<uint32_t>>;

const Positions kSquare = {{-1, 0, -1}, {-1, 0, 1}, {1, 0, 1}, {1, 0, -1}};
const Faces kQuad = {{0, 1, 2, 3}};
const std::vector<std::array<double, 2>> kCorners = {{0, 1}, {0, 0}, {1, 0}, {1, 1}};

std::string real(double v) {
  char s[32];
  std::snprintf(s, sizeof s, "%.6f", v);
  return s;
}

// Numbers separated by commas.
template <typename Numbers>
std::string joined(const Numbers& values) {
  std::string out;
  for (double v : values) out += (out.empty() ? "" : ",") + real(v);
  return out;
}

std::array<double, 16> translation(double x, double y, double z) {
  return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
}

// The square with normals, texture coordinates and one material, left open for extras.
void square(XWriter& w, const std::string& texture, const Positions& at = kSquare) {
  w.mesh("Square", at, kQuad);
  w.normals({{0, 1, 0}}, {{0, 0, 0, 0}});
  w.textureCoords(kCorners);
  w.materials({0}, {XMaterial{.texture = texture}});
}

}  // namespace

XWriter::XWriter(XForm form) : form_(form) {}

void XWriter::open(const std::string& type, const std::string& name) {
  if (!binary()) {
    body_ += type + (name.empty() ? "" : " " + name) + " {\n";
    return;
  }
  for (const std::string& s : {type, name}) {
    if (s.empty()) continue;
    word(1);
    dword(static_cast<uint32_t>(s.size()));
    body_ += s;
  }
  word(0x0a);
}

void XWriter::close() {
  if (binary()) return word(0x0b);
  body_ += "}\n";
}

void XWriter::ints(const std::vector<uint32_t>& values) {
  if (binary()) {
    word(6);
    dword(static_cast<uint32_t>(values.size()));
    for (uint32_t v : values) dword(v);
    return;
  }
  for (size_t k = 0; k < values.size(); ++k) {
    body_ += std::to_string(values[k]) + (k + 1 < values.size() ? "," : ";\n");
  }
}

void XWriter::reals(const std::vector<double>& values) {
  if (binary()) {
    word(7);
    dword(static_cast<uint32_t>(values.size()));
    for (double v : values) form_ == XForm::Binary64 ? raw(v) : raw(static_cast<float>(v));
    return;
  }
  for (double v : values) body_ += real(v) + ";";
  body_ += ";\n";
}

void XWriter::string(const std::string& s) {
  if (!binary()) {
    body_ += "\"" + s + "\";\n";
    return;
  }
  word(2);
  dword(static_cast<uint32_t>(s.size()));
  body_ += s;
  word(0x14);
}

void XWriter::text(const std::string& s) {
  if (!binary()) body_ += s;
}

void XWriter::list(const Faces& faces) {
  if (binary()) {
    std::vector<uint32_t> all = {static_cast<uint32_t>(faces.size())};
    for (const auto& f : faces) {
      all.push_back(static_cast<uint32_t>(f.size()));
      all.insert(all.end(), f.begin(), f.end());
    }
    ints(all);
    return;
  }
  body_ += std::to_string(faces.size()) + ";\n";
  for (size_t k = 0; k < faces.size(); ++k) {
    body_ += std::to_string(faces[k].size()) + ";";
    for (size_t i = 0; i < faces[k].size(); ++i) {
      body_ += std::to_string(faces[k][i]) + (i + 1 < faces[k].size() ? "," : ";");
    }
    body_ += k + 1 < faces.size() ? ",\n" : ";\n";
  }
}

// Vectors in a list after their count: "x;y;z;," between them and ";;" after the last; binary:
// one float list.
template <size_t N>
void XWriter::vectors(const std::vector<std::array<double, N>>& items) {
  ints({static_cast<uint32_t>(items.size())});
  std::vector<double> all;
  for (const auto& item : items) all.insert(all.end(), item.begin(), item.end());
  if (binary()) return reals(all);
  for (size_t k = 0; k < items.size(); ++k) {
    for (double v : items[k]) body_ += real(v) + ";";
    body_ += k + 1 < items.size() ? ",\n" : ";\n";
  }
}

void XWriter::mesh(const std::string& name, const Positions& positions, const Faces& faces) {
  open("Mesh", name);
  vectors(positions);
  list(faces);
}

void XWriter::normals(const Positions& normals, const Faces& faces) {
  open("MeshNormals");
  vectors(normals);
  list(faces);
  close();
}

void XWriter::textureCoords(const std::vector<std::array<double, 2>>& uvs) {
  open("MeshTextureCoords");
  vectors(uvs);
  close();
}

// The standard syntax: "index;r;g;b;a;;," and ";;;" after the last.
void XWriter::vertexColours(const std::vector<std::array<double, 4>>& rgba) {
  open("MeshVertexColors");
  ints({static_cast<uint32_t>(rgba.size())});
  for (size_t k = 0; k < rgba.size(); ++k) {
    if (binary()) {
      ints({static_cast<uint32_t>(k)});
      reals({rgba[k][0], rgba[k][1], rgba[k][2], rgba[k][3]});
    } else {
      body_ += std::to_string(k) + ";";
      for (double v : rgba[k]) body_ += real(v) + ";";
      body_ += k + 1 < rgba.size() ? ";,\n" : ";;\n";
    }
  }
  close();
}

void XWriter::materials(const std::vector<uint32_t>& faceMaterials,
                        const std::vector<XMaterial>& list) {
  open("MeshMaterialList");
  std::vector<uint32_t> head = {static_cast<uint32_t>(list.size()),
                                static_cast<uint32_t>(faceMaterials.size())};
  head.insert(head.end(), faceMaterials.begin(), faceMaterials.end());
  if (binary()) {
    ints(head);
  } else {
    body_ += std::to_string(head[0]) + ";\n" + std::to_string(head[1]) + ";\n";
    for (size_t k = 0; k < faceMaterials.size(); ++k) {
      body_ += std::to_string(faceMaterials[k]) + (k + 1 < faceMaterials.size() ? ",\n" : ";;\n");
    }
  }
  for (const XMaterial& m : list) {
    open("Material");
    if (binary()) {
      reals({m.r, m.g, m.b, m.a, 5, 0, 0, 0, m.emissiveR, m.emissiveG, m.emissiveB});
    } else {
      reals({m.r, m.g, m.b, m.a});
      body_ += "5.000000;\n";
      reals({0, 0, 0});
      reals({m.emissiveR, m.emissiveG, m.emissiveB});
    }
    if (!m.texture.empty()) {
      open("TextureFilename");
      string(m.texture);
      close();
    }
    close();
  }
  close();
}

void XWriter::transform(const std::array<double, 16>& m) {
  open("FrameTransformMatrix");
  if (binary()) {
    reals(std::vector<double>(m.begin(), m.end()));
  } else {
    body_ += joined(m) + ";;\n";
  }
  close();
}

// The bone's vertices and weights, and its offset matrix (the identity).
void XWriter::skinWeights(const std::string& bone, const std::vector<uint32_t>& vertices,
                          const std::vector<double>& weights) {
  open("SkinWeights");
  string(bone);
  const auto identity = translation(0, 0, 0);
  if (binary()) {
    std::vector<uint32_t> head = {static_cast<uint32_t>(vertices.size())};
    head.insert(head.end(), vertices.begin(), vertices.end());
    ints(head);
    std::vector<double> all = weights;
    all.insert(all.end(), identity.begin(), identity.end());
    reals(all);
  } else {
    ints({static_cast<uint32_t>(vertices.size())});
    ints(vertices);
    body_ += joined(weights) + ";\n" + joined(identity) + ";;\n";
  }
  close();
}

std::string XWriter::bytes() const {
  static const char* const kHeaders[] = {"xof 0303txt 0032", "xof 0302bin 0032", "xof 0303bin 0064",
                                         "xof 0303tzip0032", "xof 0303bzip0032"};
  const std::string header = kHeaders[static_cast<int>(form_)];
  if (form_ == XForm::TextZip || form_ == XForm::BinaryZip) {
    return header + deflateBlocks(body_);
  }
  return header + (binary() ? "" : "\n") + body_;
}

std::string deflateBlocks(const std::string& data) {
  constexpr size_t kBlock = 32768;
  std::string out;
  auto word = [&](size_t w) {
    out.push_back(static_cast<char>(w & 0xFF));
    out.push_back(static_cast<char>(w >> 8 & 0xFF));
  };
  const size_t total = data.size() + 16;
  word(total & 0xFFFF);
  word(total >> 16);
  for (size_t at = 0; at < data.size(); at += kBlock) {
    const size_t n = std::min(kBlock, data.size() - at);
    z_stream z{};
    if (deflateInit2(&z, 9, Z_DEFLATED, -MAX_WBITS, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::runtime_error("no deflate");
    }
    // Each block may refer to the one before it.
    if (at > 0) {
      deflateSetDictionary(&z, reinterpret_cast<const Bytef*>(data.data() + at - kBlock),
                           static_cast<uInt>(kBlock));
    }
    std::string packed(deflateBound(&z, static_cast<uLong>(n)), '\0');
    z.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data() + at));
    z.avail_in = static_cast<uInt>(n);
    z.next_out = reinterpret_cast<Bytef*>(packed.data());
    z.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&z, Z_FINISH);
    packed.resize(packed.size() - z.avail_out);
    deflateEnd(&z);
    if (result != Z_STREAM_END) throw std::runtime_error("deflate did not finish");
    word(n);
    word(packed.size() + 2);
    out += "CK" + packed;
  }
  return out;
}

std::string squareModel(XForm form, const std::string& texture) {
  XWriter w(form);
  square(w, texture);
  w.close();
  return w.bytes();
}

std::vector<XSample> xSamples() {
  std::vector<XSample> samples;
  {
    // An exporter's extras: templates, comments, key-value pairs, declared vertex data,
    // duplication indices, animation.
    XWriter w(XForm::Text);
    w.text(
        "// exported\ntemplate Frame {\n <3D82AB46-62DA-11cf-AB39-0020AF71E433>\n [...]\n}\n"
        "template KeyValuePair {\n <26e6b1c3-3d4d-4a1d-a437-b33668ffa1c2>\n STRING key;\n"
        " STRING value;\n}\nAnimTicksPerSecond {\n 4800;\n}\n# a comment\n");
    w.open("Frame", "Root");
    w.text("KeyValuePair {\n \"exporter\";\n \"any\";\n}\n");
    w.transform(translation(0, 0, 0));
    square(w, "wood.png");
    w.text(
        "VertexDuplicationIndices {\n 4;\n 4;\n 0,\n 1,\n 2,\n 3;\n}\n"
        "DeclData {\n 1;\n 2;0;5;1;;\n 4;\n 0,\n 0,\n 0,\n 0;\n}\n");
    w.close();
    w.close();
    w.text(
        "AnimationSet Idle {\n Animation {\n  { Root }\n  AnimationKey {\n   2;\n   2;\n"
        "   0;3;0.000000,0.000000,0.000000;;,\n   4800;3;0.000000,1.000000,0.000000;;;\n"
        "  }\n  AnimationKey {\n   0;\n   1;\n   0;4;1.000000,0.000000,0.000000,0.000000;;;\n"
        "  }\n }\n}\n");
    samples.push_back({"exporter.x", w.bytes(), "wood.png"});
  }
  samples.push_back({"binary32.x", squareModel(XForm::Binary32), "wood.png"});
  samples.push_back({"binary64.x", squareModel(XForm::Binary64), "wood.png"});
  samples.push_back({"tzip.x", squareModel(XForm::TextZip), "wood.png"});
  samples.push_back({"bzip.x", squareModel(XForm::BinaryZip), "wood.png"});
  for (XForm form : {XForm::Text, XForm::Binary32}) {
    // A skinned square under its bones' frames, drawn in its rest pose.
    XWriter w(form);
    w.open("Frame", "Armature");
    w.open("Frame", "Bone");
    w.transform(translation(0, 5, 0));
    w.close();
    square(w, "wood.png");
    w.open("XSkinMeshHeader");
    w.ints({2});
    w.ints({2});
    w.ints({1});
    w.close();
    w.skinWeights("Bone", {0, 1, 2, 3}, {1, 1, 0.5, 0.5});
    w.close();
    w.close();
    samples.push_back(
        {form == XForm::Text ? "skinned.x" : "skinnedbinary.x", w.bytes(), "wood.png"});
  }
  {
    XWriter w(XForm::Text);
    w.mesh("Coloured", kSquare, kQuad);
    w.normals({{0, 1, 0}}, {{0, 0, 0, 0}});
    w.vertexColours({{1, 0, 0, 1}, {1, 0, 0, 1}, {1, 0, 0, 1}, {1, 0, 0, 1}});
    w.materials({0}, {XMaterial{}});
    w.close();
    samples.push_back({"colours.x", w.bytes(), ""});
  }
  // Texture names written on Windows; the image lies in the models folder as "Wood.png".
  samples.push_back({"dotslash.x", squareModel(XForm::Text, ".\\\\wood.png"), "Wood.png"});
  samples.push_back(
      {"drive.x", squareModel(XForm::Text, "C:\\Models\\Maps\\WOOD.PNG"), "Wood.png"});
  {
    // Two halves of the square in meshes under nested, translated frames.
    XWriter w(XForm::Text);
    const Positions half = {{-0.5, 0, -1}, {-0.5, 0, 1}, {0.5, 0, 1}, {0.5, 0, -1}};
    w.open("Frame", "Outer");
    w.transform(translation(0.5, 0, 0));
    square(w, "wood.png", half);
    w.close();
    w.open("Frame", "Inner");
    w.transform(translation(-1, 0, 0));
    square(w, "wood.png", half);
    w.close();
    w.close();
    w.close();
    samples.push_back({"frames.x", w.bytes(), "wood.png"});
  }
  return samples;
}

}  // namespace ostrel::testing
