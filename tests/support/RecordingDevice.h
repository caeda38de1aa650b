#pragma once
// A device that draws nothing and writes down what the frame asks of it: the calls in order, and
// each subset drawn with the blend state, world position and material it was drawn with. Meshes
// and textures are made from the real loaders' data, so a model set loads through it; cases that
// check what a frame asks of the device need no OpenGL context.

#include <array>
#include <cstring>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "graphics/d3d8.h"

namespace ostrel::testing {

class RecordingDevice;

// One DrawSubset with the state it met.
struct RecordedDraw {
  const graphics::Mesh* mesh = nullptr;
  uint32_t subset = 0;
  bool blending = false;
  uint32_t sourceBlend = 0, destinationBlend = 0;
  float x = 0, y = 0, z = 0;  // translation of the world transform
  D3DMATERIAL8 material;
};

class RecordingVertexBuffer : public graphics::VertexBuffer {
 public:
  explicit RecordingVertexBuffer(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
  void GetData(uint32_t offset, uint32_t size, uint32_t, void* data) override {
    check(offset, size);
    std::memcpy(data, bytes_.data() + offset, size);
  }
  void SetData(uint32_t offset, uint32_t size, uint32_t, const void* data) override {
    check(offset, size);
    std::memcpy(bytes_.data() + offset, data, size);
  }
  uint32_t GetSize() const override { return static_cast<uint32_t>(bytes_.size()); }

 private:
  void check(uint32_t offset, uint32_t size) const {
    if (static_cast<uint64_t>(offset) + size > bytes_.size()) {
      throw graphics::D3DError(graphics::D3DERR_INVALIDCALL, "past the end");
    }
  }
  std::vector<uint8_t> bytes_;
};

class RecordingMesh : public graphics::Mesh {
 public:
  RecordingMesh(RecordingDevice& device, graphics::MeshData data)
      : device_(device),
        data_(std::move(data)),
        buffer_(std::make_shared<RecordingVertexBuffer>(data_.vertices)) {}
  void DrawSubset(uint32_t subset) override;
  uint32_t GetFVF() const override { return data_.fvf; }
  uint32_t GetNumVertices() const override { return data_.vertexCount; }
  uint32_t GetNumFaces() const override { return static_cast<uint32_t>(data_.indices.size() / 3); }
  uint32_t GetNumSubsets() const override { return static_cast<uint32_t>(data_.subsets.size()); }
  std::shared_ptr<graphics::VertexBuffer> GetVertexBuffer() override { return buffer_; }

 private:
  RecordingDevice& device_;
  graphics::MeshData data_;
  std::shared_ptr<RecordingVertexBuffer> buffer_;
};

class RecordingTexture : public graphics::Texture {
 public:
  RecordingTexture(uint32_t width, uint32_t height) : width_(width), height_(height) {}
  uint32_t width() const override { return width_; }
  uint32_t height() const override { return height_; }

 private:
  uint32_t width_, height_;
};

class RecordingDevice : public graphics::Direct3DDevice8 {
 public:
  std::vector<std::string> calls;  // Clear, BeginScene, Draw, EndScene, Present, Reset
  std::vector<RecordedDraw> draws;
  int32_t cooperativeLevel = graphics::D3D_OK;  // what TestCooperativeLevel answers

  void record(const graphics::Mesh* mesh, uint32_t subset) {
    calls.push_back("Draw");
    RecordedDraw d;
    d.mesh = mesh;
    d.subset = subset;
    d.blending = GetRenderState(graphics::D3DRS_ALPHABLENDENABLE) != 0;
    d.sourceBlend = GetRenderState(graphics::D3DRS_SRCBLEND);
    d.destinationBlend = GetRenderState(graphics::D3DRS_DESTBLEND);
    const D3DMATRIX& world = transforms_[graphics::D3DTS_WORLD];
    d.x = world.m[3][0];
    d.y = world.m[3][1];
    d.z = world.m[3][2];
    d.material = material_;
    draws.push_back(d);
  }

  int32_t TestCooperativeLevel() override { return cooperativeLevel; }
  void Reset(graphics::D3DPRESENT_PARAMETERS&) override {
    calls.push_back("Reset");
    cooperativeLevel = graphics::D3D_OK;
  }
  void Clear(uint32_t, const graphics::D3DRECT*, uint32_t, uint32_t, float, uint32_t) override {
    calls.push_back("Clear");
  }
  void BeginScene() override { calls.push_back("BeginScene"); }
  void EndScene() override { calls.push_back("EndScene"); }
  void Present(const graphics::D3DRECT*, const graphics::D3DRECT*, uintptr_t,
               const void*) override {
    calls.push_back("Present");
  }

  void SetRenderState(uint32_t state, uint32_t value) override { renderStates_[state] = value; }
  uint32_t GetRenderState(uint32_t state) const override { return lookUp(renderStates_, state); }
  void SetTextureStageState(uint32_t stage, uint32_t type, uint32_t value) override {
    stageStates_[{stage, type}] = value;
  }
  uint32_t GetTextureStageState(uint32_t stage, uint32_t type) const override {
    return lookUp(stageStates_, {stage, type});
  }
  void SetVertexShader(uint32_t fvf) override { fvf_ = fvf; }
  uint32_t GetVertexShader() const override { return fvf_; }

  void SetTransform(uint32_t state, const D3DMATRIX& matrix) override {
    transforms_[state] = matrix;
  }
  void GetTransform(uint32_t state, D3DMATRIX& matrix) const override {
    const auto found = transforms_.find(state);
    matrix = found == transforms_.end() ? identityMatrix() : found->second;
  }
  void SetViewport(const graphics::D3DVIEWPORT8& viewport) override { viewport_ = viewport; }
  void GetViewport(graphics::D3DVIEWPORT8& viewport) const override { viewport = viewport_; }

  void SetMaterial(const D3DMATERIAL8& material) override { material_ = material; }
  void GetMaterial(D3DMATERIAL8& material) const override { material = material_; }
  void SetLight(uint32_t index, const graphics::D3DLIGHT8& light) override {
    lights_[index] = light;
  }
  void GetLight(uint32_t index, graphics::D3DLIGHT8& light) const override {
    const auto found = lights_.find(index);
    light = found == lights_.end() ? graphics::D3DLIGHT8() : found->second;
  }
  void LightEnable(uint32_t index, int32_t enable) override { lightOn_[index] = enable; }
  int32_t GetLightEnable(uint32_t index) const override { return lookUp(lightOn_, index); }
  void SetTexture(uint32_t, std::shared_ptr<graphics::Texture> texture) override {
    texture_ = std::move(texture);
  }
  std::shared_ptr<graphics::Texture> GetTexture(uint32_t) const override { return texture_; }

  void GetDeviceCaps(graphics::D3DCAPS8& caps) const override {
    caps = graphics::D3DCAPS8();
    caps.MaxAnisotropy = 16;
    caps.MaxTextureWidth = caps.MaxTextureHeight = graphics::kMaxTextureSide;
  }
  void GetBackBufferSize(uint32_t& width, uint32_t& height) const override {
    width = viewport_.Width;
    height = viewport_.Height;
  }
  int32_t GetMultiSampleCount() const override { return 0; }

  std::shared_ptr<graphics::Mesh> CreateMesh(graphics::MeshData data) override {
    return std::make_shared<RecordingMesh>(*this, std::move(data));
  }
  std::shared_ptr<graphics::Texture> CreateTexture(uint32_t width, uint32_t height,
                                                   const uint8_t*) override {
    return std::make_shared<RecordingTexture>(width, height);
  }

 private:
  template <typename Map>
  static typename Map::mapped_type lookUp(const Map& map, const typename Map::key_type& key) {
    const auto found = map.find(key);
    return found == map.end() ? typename Map::mapped_type{} : found->second;
  }

  std::map<uint32_t, uint32_t> renderStates_;
  std::map<std::pair<uint32_t, uint32_t>, uint32_t> stageStates_;
  std::map<uint32_t, D3DMATRIX> transforms_;
  std::map<uint32_t, graphics::D3DLIGHT8> lights_;
  std::map<uint32_t, int32_t> lightOn_;
  graphics::D3DVIEWPORT8 viewport_;
  D3DMATERIAL8 material_;
  uint32_t fvf_ = 0;
  std::shared_ptr<graphics::Texture> texture_;
};

inline void RecordingMesh::DrawSubset(uint32_t subset) {
  device_.record(this, subset);
}

// The adapter behind the recording device; render only asks that it exists.
class RecordingDirect3D : public graphics::Direct3D8 {
 public:
  void GetAdapterDisplayMode(uint32_t, graphics::D3DDISPLAYMODE& mode) override {
    mode = graphics::D3DDISPLAYMODE();
  }
  int32_t CheckDeviceMultiSampleType(uint32_t, int32_t, int32_t, int32_t, int32_t) override {
    return graphics::D3D_OK;
  }
  int32_t CheckDeviceType(uint32_t, int32_t, int32_t, int32_t, int32_t) override {
    return graphics::D3D_OK;
  }
  std::shared_ptr<graphics::Direct3DDevice8> CreateDevice(
      uint32_t, int32_t, Platform*, uint32_t, graphics::D3DPRESENT_PARAMETERS&) override {
    return std::make_shared<RecordingDevice>();
  }
};

}  // namespace ostrel::testing
