// clsMesh: one model file with its materials and textures, a position, and its draw.

#include <algorithm>
#include <vector>

#include "board/NumberText.h"
#include "graphics/GraphicsContext.h"
#include "graphics/LoadFailureReport.h"
#include "graphics/TexturePath.h"
#include "graphics/d3d8.h"
#include "ostrel/BoardRecords.h"
#include "ostrel/Platform.h"

namespace ostrel {

namespace {

// The materials of the model being loaded; one per thread, used by every mesh in turn.
thread_local std::shared_ptr<graphics::D3DXBuffer> materialBuffer;

// The vertex that Translate works on: position, normal, one pair of texture coordinates.
struct meshVertex {
  float x, y, z, nx, ny, nz, tu, tv;
};
static_assert(sizeof(meshVertex) == 32);

constexpr uint32_t kTranslatableFormat =
    graphics::D3DFVF_XYZ | graphics::D3DFVF_NORMAL | graphics::D3DFVF_TEX1;

void showMessage(const std::string& text) {
  if (Platform* platform = graphics::messagePlatform()) platform->MsgBox(text);
}

}  // namespace

void clsMesh::init(const Variant& filename, const Variant& alternativeTexture,
                   const Variant& diffuse) {
  using namespace graphics;
  visible = false;
  GraphicsContext& context = graphicsContext();
  const std::string modelPath = context.baseDirectory + "/" + filename.toString();

  try {
    if (!context.device) throw D3DError(D3DERR_INVALIDCALL, "no device");
    std::shared_ptr<D3DXBuffer> adjacency;
    mesh_ = LoadMeshFromX(modelPath, D3DXMESH_MANAGED, *context.device, &adjacency, materialBuffer,
                          materialCount_);
  } catch (const std::exception& e) {  // a D3DError, or no memory for what the file asks
    reportLoadFailure(modelPath, e.what());
    showMessage("Model load failed: " + modelPath);
    return;
  }
  if (!mesh_) return;

  const size_t count = materialCount_ > 0 ? static_cast<size_t>(materialCount_) : 0;
  materials_.assign(count, D3DMATERIAL8{});
  textures_.assign(count, nullptr);
  const std::string alternative = alternativeTexture.toString();
  for (size_t i = 0; i < count; ++i) {
    D3DMATERIAL8& m = materials_[i];
    BufferGetMaterial(*materialBuffer, static_cast<int32_t>(i), m);
    // The file's ambient colour is never used: ambient light reflects the diffuse colour.
    m.Ambient = m.Diffuse;
    // The argument is an alpha for every material, whatever its name says.
    if (!diffuse.isEmpty()) m.Diffuse.a = board::toSingle(diffuse.leadingNumber());
    const std::string name = BufferGetTextureName(*materialBuffer, static_cast<int32_t>(i));
    // An alternative replaces a texture; it gives none to a material that has none.
    if (name.empty()) continue;
    const std::string image = alternative.empty() ? name : alternative;
    const std::string texturePath = context.baseDirectory + "/models/" + image;
    const std::string found = findTexture(context.baseDirectory + "/models", image);
    try {
      textures_[i] = CreateTextureFromFile(*context.device, found);
    } catch (const std::exception& e) {
      reportLoadFailure(texturePath,
                        found == texturePath ? e.what() : "as " + found + ": " + e.what());
      showMessage("Texture load failed: " + texturePath);
      return;
    }
  }
  materialBuffer.reset();
  visible = true;
}

void clsMesh::reScale(float) {}

void clsMesh::Translate(float scaleFactor, float x, float y, float z) {
  using namespace graphics;
  if (!mesh_) return;
  std::shared_ptr<VertexBuffer> buffer = mesh_->GetVertexBuffer();
  const uint32_t size = GetFVFVertexSize(mesh_->GetFVF());
  const uint32_t count = mesh_->GetNumVertices();
  if (mesh_->GetFVF() != kTranslatableFormat) return;

  std::vector<meshVertex> vertices(count);
  D3DVertexBuffer8GetData(*buffer, 0, size * count, 0, vertices.data());
  const double s = scaleFactor;
  for (meshVertex& v : vertices) {
    v.x = static_cast<float>(v.x * s + x - posX_);
    v.y = static_cast<float>(v.y * s + y - posY_);
    v.z = static_cast<float>(v.z * s + z - posZ_);
  }
  posX_ = x;
  posY_ = y;
  posZ_ = z;
  D3DVertexBuffer8SetData(*buffer, 0, size * count, 0, vertices.data());
}

void clsMesh::render() {
  using namespace graphics;
  if (!visible) return;
  const std::shared_ptr<Direct3DDevice8> device = graphicsContext().device;
  if (!device) return;
  D3DMATRIX world = identityMatrix();
  world.m[3][0] = posX_;
  world.m[3][1] = posY_;
  world.m[3][2] = posZ_;
  device->SetTransform(D3DTS_WORLD, world);
  const size_t count = std::min(materials_.size(), textures_.size());
  for (int32_t i = 0; i < materialCount_ && static_cast<size_t>(i) < count; ++i) {
    device->SetMaterial(materials_[static_cast<size_t>(i)]);
    device->SetTexture(0, textures_[static_cast<size_t>(i)]);
    // A mesh whose model failed to load has nothing to draw.
    if (mesh_) mesh_->DrawSubset(static_cast<uint32_t>(i));
  }
}

bool clsMesh::hasTexture(int32_t i) const {
  return i >= 0 && static_cast<size_t>(i) < textures_.size() &&
         textures_[static_cast<size_t>(i)] != nullptr;
}

}  // namespace ostrel
