// The D3DX loaders: .x models through Assimp after a check of the whole file, images through
// stb_image; with the buffers they fill, vertex format sizes and error names.

#include "graphics/ModelLoader.h"

#include <assimp/material.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <stb_image.h>

#include <algorithm>
#include <assimp/Importer.hpp>
#include <cctype>
#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <unordered_map>

#include "graphics/XFileCheck.h"
#include "graphics/d3d8.h"

namespace ostrel::graphics {

namespace {

// The whole file, or a raised failure when it cannot be read.
std::vector<uint8_t> readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  if (!in) throw D3DError(E_FAIL, "the file cannot be opened");
  std::vector<uint8_t> bytes((std::istreambuf_iterator<char>(in)),
                             std::istreambuf_iterator<char>());
  if (in.bad()) throw D3DError(E_FAIL, "the file cannot be read");
  return bytes;
}

D3DCOLORVALUE colour(const aiMaterial& m, const char* key, unsigned type, unsigned index,
                     float alpha) {
  aiColor4D c(0, 0, 0, alpha);
  if (aiGetMaterialColor(&m, key, type, index, &c) != AI_SUCCESS) return {0, 0, 0, alpha};
  return {c.r, c.g, c.b, c.a};
}

// The file's texture name of a material. The .x reader sorts names by their suffix into kinds
// (a name ending in "_normal" becomes a normal map and so on); any kind will do.
std::string textureName(const aiMaterial& m) {
  static const aiTextureType kinds[] = {
      aiTextureType_DIFFUSE,      aiTextureType_AMBIENT,    aiTextureType_SPECULAR,
      aiTextureType_EMISSIVE,     aiTextureType_NORMALS,    aiTextureType_HEIGHT,
      aiTextureType_LIGHTMAP,     aiTextureType_SHININESS,  aiTextureType_OPACITY,
      aiTextureType_DISPLACEMENT, aiTextureType_REFLECTION, aiTextureType_UNKNOWN};
  for (aiTextureType kind : kinds) {
    aiString name;
    if (m.GetTextureCount(kind) > 0 && m.GetTexture(kind, 0, &name) == AI_SUCCESS) {
      return name.C_Str();
    }
  }
  return {};
}

// One vertex as bytes in the layout of the format, for finding repeats.
struct VertexKey {
  std::string bytes;
  bool operator==(const VertexKey&) const = default;
};
struct VertexKeyHash {
  size_t operator()(const VertexKey& k) const { return std::hash<std::string>()(k.bytes); }
};

void walkNodes(const aiNode* node, const aiMatrix4x4& parent,
               std::vector<std::pair<unsigned, aiMatrix4x4>>& out, int depth) {
  if (!node || depth > 256) return;
  aiMatrix4x4 m = parent * node->mTransformation;
  for (unsigned i = 0; i < node->mNumMeshes; ++i) out.emplace_back(node->mMeshes[i], m);
  for (unsigned i = 0; i < node->mNumChildren; ++i)
    walkNodes(node->mChildren[i], m, out, depth + 1);
}

// Neighbours across each edge of each face, by vertex index.
std::vector<uint32_t> adjacencyOf(const std::vector<uint32_t>& indices) {
  size_t faces = indices.size() / 3;
  std::vector<uint32_t> adjacency(indices.size(), ~0u);
  std::map<std::pair<uint32_t, uint32_t>, uint32_t> edges;
  for (size_t f = 0; f < faces; ++f) {
    for (int e = 0; e < 3; ++e) {
      uint32_t a = indices[f * 3 + e], b = indices[f * 3 + (e + 1) % 3];
      auto it = edges.find({b, a});
      if (it != edges.end()) {
        uint32_t g = it->second / 3;
        adjacency[f * 3 + e] = g;
        adjacency[it->second] = static_cast<uint32_t>(f);
        edges.erase(it);
      } else {
        edges[{a, b}] = static_cast<uint32_t>(f * 3 + e);
      }
    }
  }
  return adjacency;
}

}  // namespace

XModelData readXModel(const std::vector<uint8_t>& bytes) {
  // The reader trusts what the file says; a file is checked in full before it gets there.
  if (const auto fault = checkXFile(bytes)) throw D3DError(D3DXERR_INVALIDDATA, fault->describe());
  Assimp::Importer importer;
  const aiScene* scene = nullptr;
  try {
    scene = importer.ReadFileFromMemory(bytes.data(), bytes.size(),
                                        aiProcess_ConvertToLeftHanded | aiProcess_Triangulate, "x");
  } catch (const std::exception& e) {
    throw D3DError(D3DXERR_INVALIDDATA, std::string("the model reader failed: ") + e.what());
  }
  if (!scene || !scene->mRootNode) {
    throw D3DError(D3DXERR_INVALIDDATA,
                   "the model reader refused it: " + std::string(importer.GetErrorString()));
  }
  if (scene->mNumMeshes == 0 || (scene->mFlags & AI_SCENE_FLAGS_INCOMPLETE)) {
    throw D3DError(D3DXERR_LOADEDMESHASNODATA, "no mesh in the file");
  }

  // The materials in file order. The reader makes a nameless stand-in for a mesh without a
  // material list; it counts as none.
  auto buffer = std::make_shared<D3DXBuffer>();
  for (unsigned i = 0; i < scene->mNumMaterials; ++i) {
    const aiMaterial& m = *scene->mMaterials[i];
    aiString name;
    if (scene->mNumMaterials == 1 && m.Get(AI_MATKEY_NAME, name) != AI_SUCCESS) break;
    D3DXMATERIAL x;
    x.MatD3D.Diffuse = colour(m, AI_MATKEY_COLOR_DIFFUSE, 1.0f);
    x.MatD3D.Ambient = {0, 0, 0, 0};
    x.MatD3D.Specular = colour(m, AI_MATKEY_COLOR_SPECULAR, 1.0f);
    x.MatD3D.Specular.a = 1.0f;
    x.MatD3D.Emissive = colour(m, AI_MATKEY_COLOR_EMISSIVE, 1.0f);
    x.MatD3D.Emissive.a = 1.0f;
    float power = 0;
    if (aiGetMaterialFloat(&m, AI_MATKEY_SHININESS, &power) == AI_SUCCESS) x.MatD3D.Power = power;
    x.TextureFilename = textureName(m);
    buffer->materials.push_back(std::move(x));
  }

  // Which meshes stand where: node transforms are baked into the vertices.
  std::vector<std::pair<unsigned, aiMatrix4x4>> placed;
  walkNodes(scene->mRootNode, aiMatrix4x4(), placed, 0);

  bool normals = true, coords = true, colours = false;
  bool any = false;
  for (const auto& [index, m] : placed) {
    if (index >= scene->mNumMeshes) continue;
    const aiMesh* mesh = scene->mMeshes[index];
    any = true;
    normals = normals && mesh->HasNormals();
    coords = coords && mesh->HasTextureCoords(0);
    colours = colours || mesh->HasVertexColors(0);
  }
  if (!any) throw D3DError(D3DXERR_LOADEDMESHASNODATA, "no mesh in the file");

  MeshData data;
  data.fvf = D3DFVF_XYZ | (normals ? D3DFVF_NORMAL : 0) | (colours ? D3DFVF_DIFFUSE : 0) |
             (coords ? D3DFVF_TEX1 : 0);
  const uint32_t stride = GetFVFVertexSize(data.fvf);
  size_t subsetCount = std::max<size_t>(buffer->materials.size(), 1);
  std::vector<std::vector<uint32_t>> subsetIndices(subsetCount);
  std::unordered_map<VertexKey, uint32_t, VertexKeyHash> seen;
  VertexKey key;
  key.bytes.resize(stride);

  for (const auto& [index, transform] : placed) {
    if (index >= scene->mNumMeshes) continue;
    const aiMesh* mesh = scene->mMeshes[index];
    size_t subset =
        buffer->materials.empty() ? 0 : std::min<size_t>(mesh->mMaterialIndex, subsetCount - 1);
    aiMatrix3x3 normalMatrix(transform);
    normalMatrix.Inverse().Transpose();
    std::vector<uint32_t> local(mesh->mNumVertices);
    for (unsigned v = 0; v < mesh->mNumVertices; ++v) {
      char* out = key.bytes.data();
      aiVector3D p = transform * mesh->mVertices[v];
      float pos[3] = {p.x, p.y, p.z};
      std::memcpy(out, pos, 12);
      out += 12;
      if (normals) {
        aiVector3D n = normalMatrix * mesh->mNormals[v];
        if (!transform.IsIdentity()) n.NormalizeSafe();
        float nv[3] = {n.x, n.y, n.z};
        std::memcpy(out, nv, 12);
        out += 12;
      }
      if (colours) {
        uint32_t argb = 0xFFFFFFFFu;
        if (mesh->HasVertexColors(0)) {
          const aiColor4D& c = mesh->mColors[0][v];
          auto byte = [](float f) {
            return static_cast<uint32_t>(
                std::lround(std::clamp(std::isnan(f) ? 0.0f : f, 0.0f, 1.0f) * 255.0f));
          };
          argb = byte(c.a) << 24 | byte(c.r) << 16 | byte(c.g) << 8 | byte(c.b);
        }
        std::memcpy(out, &argb, 4);
        out += 4;
      }
      if (coords) {
        float uv[2] = {mesh->mTextureCoords[0][v].x, mesh->mTextureCoords[0][v].y};
        std::memcpy(out, uv, 8);
      }
      auto [it, fresh] = seen.emplace(key, data.vertexCount);
      if (fresh) {
        data.vertices.insert(data.vertices.end(), key.bytes.begin(), key.bytes.end());
        ++data.vertexCount;
      }
      local[v] = it->second;
    }
    for (unsigned f = 0; f < mesh->mNumFaces; ++f) {
      const aiFace& face = mesh->mFaces[f];
      if (face.mNumIndices != 3) continue;  // points and lines are no faces
      bool inside = true;
      for (int k = 0; k < 3; ++k) inside = inside && face.mIndices[k] < mesh->mNumVertices;
      if (!inside) continue;
      for (int k = 0; k < 3; ++k) subsetIndices[subset].push_back(local[face.mIndices[k]]);
    }
  }

  for (auto& indices : subsetIndices) {
    MeshData::Range r;
    r.firstTriangle = static_cast<uint32_t>(data.indices.size() / 3);
    r.triangleCount = static_cast<uint32_t>(indices.size() / 3);
    data.indices.insert(data.indices.end(), indices.begin(), indices.end());
    data.subsets.push_back(r);
  }
  if (data.indices.empty()) throw D3DError(D3DXERR_LOADEDMESHASNODATA, "no triangle in the file");
  return {std::move(data), std::move(buffer)};
}

std::shared_ptr<Mesh> LoadMeshFromX(const std::string& path, uint32_t, Direct3DDevice8& device,
                                    std::shared_ptr<D3DXBuffer>* adjacency,
                                    std::shared_ptr<D3DXBuffer>& materials,
                                    int32_t& materialCount) {
  XModelData model = readXModel(readFile(path));
  if (adjacency) {
    *adjacency = std::make_shared<D3DXBuffer>();
    (*adjacency)->adjacency = adjacencyOf(model.mesh.indices);
  }
  auto mesh = device.CreateMesh(std::move(model.mesh));
  materialCount = static_cast<int32_t>(model.materials->materials.size());
  materials = std::move(model.materials);
  return mesh;
}

void BufferGetMaterial(const D3DXBuffer& buffer, int32_t index, D3DMATERIAL8& material) {
  if (index < 0 || static_cast<size_t>(index) >= buffer.materials.size()) {
    throw D3DError(D3DERR_INVALIDCALL, "no material at that index");
  }
  material = buffer.materials[static_cast<size_t>(index)].MatD3D;
}

std::string BufferGetTextureName(const D3DXBuffer& buffer, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= buffer.materials.size()) {
    throw D3DError(D3DERR_INVALIDCALL, "no material at that index");
  }
  return buffer.materials[static_cast<size_t>(index)].TextureFilename;
}

std::shared_ptr<Texture> CreateTextureFromFile(Direct3DDevice8& device, const std::string& path) {
  std::vector<uint8_t> bytes = readFile(path);
  if (bytes.empty() || bytes.size() > 0x7FFFFFFF) {
    throw D3DError(D3DXERR_INVALIDDATA, "not an image");
  }
  int w = 0, h = 0, n = 0;
  int size = static_cast<int>(bytes.size());
  // Refuse absurd sizes before anything is decoded.
  if (!stbi_info_from_memory(bytes.data(), size, &w, &h, &n) || w <= 0 || h <= 0 ||
      static_cast<uint32_t>(w) > kMaxTextureSide || static_cast<uint32_t>(h) > kMaxTextureSide) {
    throw D3DError(D3DXERR_INVALIDDATA, "not an image");
  }
  stbi_uc* pixels = stbi_load_from_memory(bytes.data(), size, &w, &h, &n, 4);
  if (!pixels) {
    throw D3DError(D3DXERR_INVALIDDATA,
                   "the image cannot be decoded: " + std::string(stbi_failure_reason()));
  }
  std::shared_ptr<Texture> texture;
  try {
    texture = device.CreateTexture(static_cast<uint32_t>(w), static_cast<uint32_t>(h), pixels);
  } catch (...) {
    stbi_image_free(pixels);
    throw;
  }
  stbi_image_free(pixels);
  return texture;
}

uint32_t GetFVFVertexSize(uint32_t fvf) {
  uint32_t size = 0;
  switch (fvf & 0x00E) {
    case 0x002:
      size = 12;
      break;  // XYZ
    case 0x004:
      size = 16;
      break;  // XYZRHW
    case 0x006:
      size = 16;
      break;  // XYZB1
    case 0x008:
      size = 20;
      break;
    case 0x00A:
      size = 24;
      break;
    case 0x00C:
      size = 28;
      break;
    case 0x00E:
      size = 32;
      break;  // XYZB5
    default:
      break;
  }
  if (fvf & D3DFVF_NORMAL) size += 12;
  if (fvf & D3DFVF_PSIZE) size += 4;
  if (fvf & D3DFVF_DIFFUSE) size += 4;
  if (fvf & D3DFVF_SPECULAR) size += 4;
  uint32_t sets = (fvf & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
  for (uint32_t i = 0; i < sets && i < 8; ++i) {
    static const uint32_t kFloats[4] = {2, 3, 4, 1};
    size += 4 * kFloats[(fvf >> (16 + 2 * i)) & 3];
  }
  return size;
}

std::string GetErrorString(int32_t number) {
  static const std::map<int32_t, const char*> kNames = {
      {D3D_OK, "S_OK"},
      {D3DERR_DEVICELOST, "D3DERR_DEVICELOST"},
      {D3DERR_DEVICENOTRESET, "D3DERR_DEVICENOTRESET"},
      {D3DERR_NOTAVAILABLE, "D3DERR_NOTAVAILABLE"},
      {D3DERR_INVALIDCALL, "D3DERR_INVALIDCALL"},
      {D3DERR_NOTFOUND, "D3DERR_NOTFOUND"},
      {D3DERR_OUTOFVIDEOMEMORY, "D3DERR_OUTOFVIDEOMEMORY"},
      {D3DXERR_INVALIDMESH, "D3DXERR_INVALIDMESH"},
      {D3DXERR_INVALIDDATA, "D3DXERR_INVALIDDATA"},
      {D3DXERR_LOADEDMESHASNODATA, "D3DXERR_LOADEDMESHASNODATA"},
      {E_FAIL, "E_FAIL"},
      {E_OUTOFMEMORY, "E_OUTOFMEMORY"},
      {E_INVALIDARG, "E_INVALIDARG"},
  };
  auto it = kNames.find(number);
  return it == kNames.end() ? "Unknown error" : it->second;
}

void D3DVertexBuffer8GetData(VertexBuffer& buffer, uint32_t offset, uint32_t size, uint32_t flags,
                             void* data) {
  buffer.GetData(offset, size, flags, data);
}

void D3DVertexBuffer8SetData(VertexBuffer& buffer, uint32_t offset, uint32_t size, uint32_t flags,
                             const void* data) {
  buffer.SetData(offset, size, flags, data);
}

}  // namespace ostrel::graphics
