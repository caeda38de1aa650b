// Triangle and quad meshes, and their output as DirectX .x text files.
//
// Coordinates are the file's own: left-handed, x right, y up, z away from the viewer.
// A front face lists its corners clockwise as seen from outside the solid, which makes
// (b - a) x (c - a) point outward for every corner triple a, b, c taken in order.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace makeassets {

struct Vec3 {
  double x = 0, y = 0, z = 0;
};

Vec3 operator+(Vec3 a, Vec3 b);
Vec3 operator-(Vec3 a, Vec3 b);
Vec3 operator*(Vec3 a, double s);
double dot(Vec3 a, Vec3 b);
Vec3 cross(Vec3 a, Vec3 b);
Vec3 normalize(Vec3 a);

struct Vertex {
  Vec3 pos;
  Vec3 normal;
  double u = 0, v = 0;  // v grows downward in the image
};

struct Material {
  std::string name;
  std::array<double, 4> diffuse{1, 1, 1, 1};  // faceColor, alpha included
  double power = 0;
  std::array<double, 3> specular{0, 0, 0};
  std::array<double, 3> emissive{0, 0, 0};
  std::string texture;  // TextureFilename; empty writes none
};

class MeshBuilder {
 public:
  uint32_t add(const Vertex& v);
  // Adds a polygon whose corners are already clockwise as seen from outside.
  void face(const std::vector<uint32_t>& corners, int material = 0);
  // Adds a polygon and orders its corners so that it faces the side its vertex normals
  // point to. Corners that repeat the previous position are dropped, so a quad that
  // closes to a point at a pole becomes a triangle. Degenerate polygons are skipped.
  void facing(std::vector<uint32_t> corners, int material = 0);

  const std::vector<Vertex>& vertices() const { return vertices_; }
  const std::vector<std::vector<uint32_t>>& faces() const { return faces_; }
  const std::vector<int>& faceMaterials() const { return materials_; }

 private:
  std::vector<Vertex> vertices_;
  std::vector<std::vector<uint32_t>> faces_;
  std::vector<int> materials_;
};

// Writes `mesh` inside one frame with an identity transform. Every vertex carries its own
// normal and texture coordinates, so MeshNormals has one normal per vertex and its faces
// repeat the mesh faces.
bool writeX(const std::string& path, const std::string& name, const MeshBuilder& mesh,
            const std::vector<Material>& materials);

}  // namespace makeassets
