#pragma once
// .x files of the shapes that users bring from exporters and model collections, written here in
// each form the model reader takes: text, binary with 32- or 64-bit floats, and both of them
// MSZIP-compressed. Each draws a flat square facing up, 2 wide around the origin, or pieces of it.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace ostrel::testing {

enum class XForm { Text, Binary32, Binary64, TextZip, BinaryZip };

struct XMaterial {
  float r = 1, g = 1, b = 1, a = 1;
  float emissiveR = 0, emissiveG = 0, emissiveB = 0;
  std::string texture;  // empty: no TextureFilename
};

// Writes objects in one form; text and binary get the same calls.
class XWriter {
 public:
  explicit XWriter(XForm form);
  bool binary() const { return form_ != XForm::Text && form_ != XForm::TextZip; }

  void open(const std::string& type, const std::string& name = "");
  void close();
  void ints(const std::vector<uint32_t>& values);  // one list, closed by ';'
  void reals(const std::vector<double>& values);   // one vector or colour, closed by ';;'
  void string(const std::string& s);               // a quoted string and its ';'
  void text(const std::string& s);                 // text forms only: written as it is

  // Whole objects of a mesh, as exporters write them.
  void mesh(const std::string& name, const std::vector<std::array<double, 3>>& positions,
            const std::vector<std::vector<uint32_t>>& faces);  // leaves the mesh open
  void normals(const std::vector<std::array<double, 3>>& normals,
               const std::vector<std::vector<uint32_t>>& faces);
  void textureCoords(const std::vector<std::array<double, 2>>& uvs);
  void vertexColours(const std::vector<std::array<double, 4>>& rgba);
  void materials(const std::vector<uint32_t>& faceMaterials,
                 const std::vector<XMaterial>& materials);
  void transform(const std::array<double, 16>& matrix);
  void skinWeights(const std::string& bone, const std::vector<uint32_t>& vertices,
                   const std::vector<double>& weights);

  // The file: header and body, deflated into blocks for the compressed forms.
  std::string bytes() const;

 private:
  // Numbers as the file holds them: little-endian, as the machines that run the tests are.
  template <typename T>
  void raw(T v) {
    body_.append(reinterpret_cast<const char*>(&v), sizeof v);
  }
  void word(uint16_t w) { raw(w); }
  void dword(uint32_t d) { raw(d); }
  void list(const std::vector<std::vector<uint32_t>>& faces);
  template <size_t N>
  void vectors(const std::vector<std::array<double, N>>& items);

  XForm form_;
  std::string body_;
};

// MSZIP blocks as the compressed forms hold them, after the 16-byte header.
std::string deflateBlocks(const std::string& data);

struct XSample {
  std::string name;  // file name
  std::string bytes;
  std::string image;  // the file name under which the model's texture must lie; empty: none
};

// One sample per shape: exporter extras, binary 32 and 64, compressed text and binary, skinned,
// vertex colours, Windows texture names, several meshes under transformed frames.
std::vector<XSample> xSamples();

// A square in the given form with an optional texture name.
std::string squareModel(XForm form, const std::string& texture = "wood.png");

}  // namespace ostrel::testing
