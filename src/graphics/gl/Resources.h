#pragma once
// Textures, vertex buffers and meshes of the GL device.

#include <cstdint>
#include <memory>
#include <vector>

#include "graphics/d3d8.h"
#include "graphics/gl/GlApi.h"
#include "graphics/gl/GlContext.h"

namespace ostrel::graphics::gl {

class GlDevice;

class GlTexture final : public Texture {
 public:
  GlTexture(std::shared_ptr<GlContext> gl, uint32_t w, uint32_t h, const uint8_t* rgba);
  ~GlTexture() override;
  uint32_t width() const override { return width_; }
  uint32_t height() const override { return height_; }
  GLuint name() const { return name_; }
  const GlContext* context() const { return gl_.get(); }

 private:
  std::shared_ptr<GlContext> gl_;
  GLuint name_ = 0;
  uint32_t width_, height_;
};

// The vertices in memory; a write marks them for upload before the next draw.
struct VertexStore {
  std::vector<uint8_t> bytes;
  bool dirty = false;
};

class GlVertexBuffer final : public VertexBuffer {
 public:
  explicit GlVertexBuffer(std::shared_ptr<VertexStore> store) : store_(std::move(store)) {}
  void GetData(uint32_t offset, uint32_t size, uint32_t, void* data) override;
  void SetData(uint32_t offset, uint32_t size, uint32_t, const void* data) override;
  uint32_t GetSize() const override { return static_cast<uint32_t>(store_->bytes.size()); }

 private:
  void check(uint32_t offset, uint32_t size) const;
  std::shared_ptr<VertexStore> store_;
};

class GlMesh final : public Mesh {
 public:
  GlMesh(std::shared_ptr<GlDevice> device, std::shared_ptr<GlContext> gl, MeshData data);
  ~GlMesh() override;
  void DrawSubset(uint32_t subset) override;
  uint32_t GetFVF() const override { return fvf_; }
  uint32_t GetNumVertices() const override { return vertexCount_; }
  uint32_t GetNumFaces() const override { return faceCount_; }
  uint32_t GetNumSubsets() const override { return static_cast<uint32_t>(subsets_.size()); }
  std::shared_ptr<VertexBuffer> GetVertexBuffer() override {
    return std::make_shared<GlVertexBuffer>(store_);
  }

  // Binds the vertex array, uploading vertices changed since the last draw.
  void bind();
  int vertexFlags() const { return vertexFlags_; }

 private:
  std::shared_ptr<GlDevice> device_;
  std::shared_ptr<GlContext> gl_;
  std::shared_ptr<VertexStore> store_;
  uint32_t fvf_, vertexCount_, faceCount_;
  std::vector<MeshData::Range> subsets_;
  GLuint vao_ = 0, vbo_ = 0, ibo_ = 0;
  int vertexFlags_ = 0;  // VertexFlags
};

}  // namespace ostrel::graphics::gl
