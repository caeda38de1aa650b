#pragma once
// A device that draws nothing and writes down what the frame asks of it: the calls in order and
// the mesh and subset of each draw. Meshes and textures are made from the real loaders' data, so
// a model set loads through it and the order of a frame's passes is seen without OpenGL.

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "graphics/d3d8.h"

namespace ostrel::testing {

class RecordingDevice;

// Bounds are the sanitizer's to check.
class RecordingVertexBuffer : public graphics::VertexBuffer {
 public:
  explicit RecordingVertexBuffer(std::vector<uint8_t> bytes) : bytes_(std::move(bytes)) {}
  void GetData(uint32_t offset, uint32_t size, uint32_t, void* data) override {
    std::memcpy(data, bytes_.data() + offset, size);
  }
  void SetData(uint32_t offset, uint32_t size, uint32_t, const void* data) override {
    std::memcpy(bytes_.data() + offset, data, size);
  }
  uint32_t GetSize() const override { return static_cast<uint32_t>(bytes_.size()); }

 private:
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
  std::vector<std::string> calls;  // Clear, BeginScene, Draw, EndScene, Present
  std::vector<std::pair<const graphics::Mesh*, uint32_t>> draws;  // mesh and subset

  int32_t TestCooperativeLevel() override { return graphics::D3D_OK; }
  void Reset(graphics::D3DPRESENT_PARAMETERS&) override {}
  void Clear(uint32_t, const graphics::D3DRECT*, uint32_t, uint32_t, float, uint32_t) override {
    calls.push_back("Clear");
  }
  void BeginScene() override { calls.push_back("BeginScene"); }
  void EndScene() override { calls.push_back("EndScene"); }
  void Present(const graphics::D3DRECT*, const graphics::D3DRECT*, uintptr_t,
               const void*) override {
    calls.push_back("Present");
  }

  // A frame reads back nothing but the caps: the states it sets are taken and forgotten.
  void SetRenderState(uint32_t, uint32_t) override {}
  uint32_t GetRenderState(uint32_t) const override { return 0; }
  void SetTextureStageState(uint32_t, uint32_t, uint32_t) override {}
  uint32_t GetTextureStageState(uint32_t, uint32_t) const override { return 0; }
  void SetVertexShader(uint32_t) override {}
  uint32_t GetVertexShader() const override { return 0; }
  void SetTransform(uint32_t, const D3DMATRIX&) override {}
  void GetTransform(uint32_t, D3DMATRIX& matrix) const override { matrix = identityMatrix(); }
  void SetViewport(const graphics::D3DVIEWPORT8&) override {}
  void GetViewport(graphics::D3DVIEWPORT8& viewport) const override {
    viewport = graphics::D3DVIEWPORT8();
  }
  void SetMaterial(const D3DMATERIAL8&) override {}
  void GetMaterial(D3DMATERIAL8& material) const override { material = D3DMATERIAL8(); }
  void SetLight(uint32_t, const graphics::D3DLIGHT8&) override {}
  void GetLight(uint32_t, graphics::D3DLIGHT8& light) const override {
    light = graphics::D3DLIGHT8();
  }
  void LightEnable(uint32_t, int32_t) override {}
  int32_t GetLightEnable(uint32_t) const override { return 0; }
  void SetTexture(uint32_t, std::shared_ptr<graphics::Texture>) override {}
  std::shared_ptr<graphics::Texture> GetTexture(uint32_t) const override { return nullptr; }

  void GetDeviceCaps(graphics::D3DCAPS8& caps) const override {
    caps = graphics::D3DCAPS8();
    caps.MaxAnisotropy = 16;
    caps.MaxTextureWidth = caps.MaxTextureHeight = graphics::kMaxTextureSide;
  }
  void GetBackBufferSize(uint32_t& width, uint32_t& height) const override { width = height = 0; }
  int32_t GetMultiSampleCount() const override { return 0; }

  std::shared_ptr<graphics::Mesh> CreateMesh(graphics::MeshData data) override {
    return std::make_shared<RecordingMesh>(*this, std::move(data));
  }
  std::shared_ptr<graphics::Texture> CreateTexture(uint32_t width, uint32_t height,
                                                   const uint8_t*) override {
    return std::make_shared<RecordingTexture>(width, height);
  }
};

inline void RecordingMesh::DrawSubset(uint32_t subset) {
  device_.calls.push_back("Draw");
  device_.draws.emplace_back(this, subset);
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
