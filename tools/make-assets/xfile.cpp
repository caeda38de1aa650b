#include "xfile.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace makeassets {

Vec3 operator+(Vec3 a, Vec3 b) {
  return {a.x + b.x, a.y + b.y, a.z + b.z};
}
Vec3 operator-(Vec3 a, Vec3 b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
Vec3 operator*(Vec3 a, double s) {
  return {a.x * s, a.y * s, a.z * s};
}
double dot(Vec3 a, Vec3 b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vec3 cross(Vec3 a, Vec3 b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Vec3 normalize(Vec3 a) {
  const double len = std::sqrt(dot(a, a));
  return len > 0 ? a * (1.0 / len) : a;
}

uint32_t MeshBuilder::add(const Vertex& v) {
  vertices_.push_back(v);
  return static_cast<uint32_t>(vertices_.size() - 1);
}

void MeshBuilder::face(const std::vector<uint32_t>& corners, int material) {
  faces_.push_back(corners);
  materials_.push_back(material);
}

void MeshBuilder::facing(std::vector<uint32_t> corners, int material) {
  std::vector<uint32_t> kept;
  for (uint32_t c : corners) {
    const Vec3 p = vertices_[c].pos;
    if (!kept.empty()) {
      const Vec3 d = p - vertices_[kept.back()].pos;
      if (dot(d, d) < 1e-18) continue;
    }
    kept.push_back(c);
  }
  while (kept.size() > 1) {
    const Vec3 d = vertices_[kept.front()].pos - vertices_[kept.back()].pos;
    if (dot(d, d) >= 1e-18) break;
    kept.pop_back();
  }
  if (kept.size() < 3) return;
  // Newell's sum gives the polygon's outward direction for our clockwise convention.
  Vec3 area, normals;
  for (size_t i = 0; i < kept.size(); ++i) {
    const Vec3 a = vertices_[kept[i]].pos, b = vertices_[kept[(i + 1) % kept.size()]].pos;
    area = area + cross(a, b);
    normals = normals + vertices_[kept[i]].normal;
  }
  if (dot(area, area) < 1e-20) return;
  if (dot(area, normals) < 0) std::reverse(kept.begin(), kept.end());
  face(kept, material);
}

namespace {

std::string num(double v) {
  char buf[32];
  std::snprintf(buf, sizeof buf, "%.6f", std::abs(v) < 5e-7 ? 0.0 : v);
  return buf;
}

void writeFaces(std::ostream& out, const std::vector<std::vector<uint32_t>>& faces,
                const char* indent) {
  out << indent << faces.size() << ";\n";
  for (size_t f = 0; f < faces.size(); ++f) {
    out << indent << faces[f].size() << ";";
    for (size_t i = 0; i < faces[f].size(); ++i) out << (i ? "," : "") << faces[f][i];
    out << (f + 1 < faces.size() ? ";,\n" : ";;\n");
  }
}

}  // namespace

bool writeX(const std::string& path, const std::string& name, const MeshBuilder& mesh,
            const std::vector<Material>& materials) {
  std::ostringstream out;
  const auto& verts = mesh.vertices();
  out << "xof 0303txt 0032\n\n";
  out << "Frame " << name << "Frame {\n";
  out << " FrameTransformMatrix {\n";
  out << "  1.000000,0.000000,0.000000,0.000000,\n";
  out << "  0.000000,1.000000,0.000000,0.000000,\n";
  out << "  0.000000,0.000000,1.000000,0.000000,\n";
  out << "  0.000000,0.000000,0.000000,1.000000;;\n";
  out << " }\n\n";
  out << " Mesh " << name << " {\n";
  out << "  " << verts.size() << ";\n";
  for (size_t i = 0; i < verts.size(); ++i) {
    const Vec3 p = verts[i].pos;
    out << "  " << num(p.x) << ";" << num(p.y) << ";" << num(p.z)
        << (i + 1 < verts.size() ? ";,\n" : ";;\n");
  }
  writeFaces(out, mesh.faces(), "  ");

  out << "\n  MeshNormals {\n";
  out << "   " << verts.size() << ";\n";
  for (size_t i = 0; i < verts.size(); ++i) {
    const Vec3 n = normalize(verts[i].normal);
    out << "   " << num(n.x) << ";" << num(n.y) << ";" << num(n.z)
        << (i + 1 < verts.size() ? ";,\n" : ";;\n");
  }
  writeFaces(out, mesh.faces(), "   ");
  out << "  }\n";

  out << "\n  MeshTextureCoords {\n";
  out << "   " << verts.size() << ";\n";
  for (size_t i = 0; i < verts.size(); ++i) {
    out << "   " << num(verts[i].u) << ";" << num(verts[i].v)
        << (i + 1 < verts.size() ? ";,\n" : ";;\n");
  }
  out << "  }\n";

  out << "\n  MeshMaterialList {\n";
  out << "   " << materials.size() << ";\n";
  const auto& faceMaterials = mesh.faceMaterials();
  out << "   " << faceMaterials.size() << ";\n";
  for (size_t f = 0; f < faceMaterials.size(); ++f) {
    out << "   " << faceMaterials[f] << (f + 1 < faceMaterials.size() ? ",\n" : ";\n");
  }
  for (const Material& m : materials) {
    out << "\n   Material " << m.name << " {\n";
    out << "    " << num(m.diffuse[0]) << ";" << num(m.diffuse[1]) << ";" << num(m.diffuse[2])
        << ";" << num(m.diffuse[3]) << ";;\n";
    out << "    " << num(m.power) << ";\n";
    out << "    " << num(m.specular[0]) << ";" << num(m.specular[1]) << ";" << num(m.specular[2])
        << ";;\n";
    out << "    " << num(m.emissive[0]) << ";" << num(m.emissive[1]) << ";" << num(m.emissive[2])
        << ";;\n";
    if (!m.texture.empty()) {
      out << "    TextureFilename {\n";
      out << "     \"" << m.texture << "\";\n";
      out << "    }\n";
    }
    out << "   }\n";
  }
  out << "  }\n";
  out << " }\n";
  out << "}\n";

  std::ofstream file(path, std::ios::binary);
  file << out.str();
  return static_cast<bool>(file);
}

}  // namespace makeassets
