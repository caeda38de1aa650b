#include "graphics/gl/Resources.h"

#include <cstring>

#include "graphics/gl/Device.h"
#include "graphics/gl/FixedFunction.h"

namespace ostrel::graphics::gl {

GlTexture::GlTexture(std::shared_ptr<GlContext> gl, uint32_t w, uint32_t h, const uint8_t* rgba)
    : gl_(std::move(gl)), width_(w), height_(h) {
  clearErrors();
  glGenTextures(1, &name_);
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, name_);
  gl_->cache.noteTextureBound(name_);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(w), static_cast<GLsizei>(h), 0,
               GL_RGBA, GL_UNSIGNED_BYTE, rgba);
  if (glGetError() != GL_NO_ERROR) {
    glDeleteTextures(1, &name_);
    gl_->cache.textureGone(name_);
    raise(D3DERR_OUTOFVIDEOMEMORY, "the texture does not fit");
  }
}

GlTexture::~GlTexture() {
  if (gl_->makeCurrent()) {
    gl_->cache.textureGone(name_);
    glDeleteTextures(1, &name_);
  }
}

void GlVertexBuffer::GetData(uint32_t offset, uint32_t size, uint32_t, void* data) {
  check(offset, size);
  if (size) std::memcpy(data, store_->bytes.data() + offset, size);
}

void GlVertexBuffer::SetData(uint32_t offset, uint32_t size, uint32_t, const void* data) {
  check(offset, size);
  if (!size) return;
  std::memcpy(store_->bytes.data() + offset, data, size);
  store_->dirty = true;
}

void GlVertexBuffer::check(uint32_t offset, uint32_t size) const {
  if (static_cast<uint64_t>(offset) + size > store_->bytes.size()) {
    raise(D3DERR_INVALIDCALL, "outside the vertex buffer");
  }
}

// Attribute layout of a vertex format: position, normal, diffuse colour, first coordinate set.
GlMesh::GlMesh(std::shared_ptr<GlDevice> device, std::shared_ptr<GlContext> gl, MeshData data)
    : device_(std::move(device)),
      gl_(std::move(gl)),
      store_(std::make_shared<VertexStore>()),
      fvf_(data.fvf),
      vertexCount_(data.vertexCount),
      faceCount_(static_cast<uint32_t>(data.indices.size() / 3)),
      subsets_(std::move(data.subsets)) {
  uint32_t stride = GetFVFVertexSize(fvf_);
  if ((fvf_ & 0x00E) != D3DFVF_XYZ || stride == 0) {
    raise(D3DXERR_INVALIDMESH, "vertex format without untransformed positions");
  }
  if (data.vertices.size() != static_cast<size_t>(vertexCount_) * stride ||
      data.indices.size() % 3 != 0) {
    raise(D3DXERR_INVALIDMESH, "vertex or index data of the wrong size");
  }
  for (uint32_t index : data.indices) {
    if (index >= vertexCount_) raise(D3DXERR_INVALIDMESH, "index past the last vertex");
  }
  for (const auto& r : subsets_) {
    if (static_cast<uint64_t>(r.firstTriangle) + r.triangleCount > faceCount_) {
      raise(D3DXERR_INVALIDMESH, "subset past the last face");
    }
  }
  store_->bytes = std::move(data.vertices);

  glGenVertexArrays(1, &vao_);
  gl_->cache.bindVertexArray(vao_);
  glGenBuffers(1, &vbo_);
  glBindBuffer(GL_ARRAY_BUFFER, vbo_);
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(store_->bytes.size()), store_->bytes.data(),
               GL_DYNAMIC_DRAW);
  glGenBuffers(1, &ibo_);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, ibo_);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER,
               static_cast<GLsizeiptr>(data.indices.size() * sizeof(uint32_t)), data.indices.data(),
               GL_STATIC_DRAW);

  size_t offset = 12;
  auto pointer = [&](size_t at) { return reinterpret_cast<const void*>(at); };
  GLsizei s = static_cast<GLsizei>(stride);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, s, pointer(0));
  if (fvf_ & D3DFVF_NORMAL) {
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, s, pointer(offset));
    offset += 12;
    vertexFlags_ |= kNormals;
  }
  if (fvf_ & D3DFVF_PSIZE) offset += 4;
  if (fvf_ & D3DFVF_DIFFUSE) {
    // D3DCOLOR: 0xAARRGGBB, in memory B, G, R, A.
    glEnableVertexAttribArray(2);
    glVertexAttribPointer(2, kVertexColourSize, GL_UNSIGNED_BYTE, GL_TRUE, s, pointer(offset));
    offset += 4;
    vertexFlags_ |= kColours;
  }
  if (fvf_ & D3DFVF_SPECULAR) offset += 4;
  uint32_t sets = (fvf_ & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
  if (sets > 0 && ((fvf_ >> 16) & 3) == 0) {  // the first set holds two floats
    glEnableVertexAttribArray(3);
    glVertexAttribPointer(3, 2, GL_FLOAT, GL_FALSE, s, pointer(offset));
    vertexFlags_ |= kCoords;
  }
}

GlMesh::~GlMesh() {
  if (gl_->makeCurrent()) {
    gl_->cache.vertexArrayGone(vao_);
    glDeleteVertexArrays(1, &vao_);
    glDeleteBuffers(1, &vbo_);
    glDeleteBuffers(1, &ibo_);
  }
}

void GlMesh::bind() {
  gl_->cache.bindVertexArray(vao_);
  if (store_->dirty) {
    glBindBuffer(GL_ARRAY_BUFFER, vbo_);
    glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(store_->bytes.size()),
                    store_->bytes.data());
    store_->dirty = false;
    ++gl_->counters.bufferUploads;
    gl_->counters.glCalls += 2;
  }
}

void GlMesh::DrawSubset(uint32_t subset) {
  if (subset >= subsets_.size()) return;  // no faces carry that attribute
  const MeshData::Range& r = subsets_[subset];
  if (r.triangleCount == 0) return;
  gl_->requireCurrent();
  device_->prepareDraw(vertexFlags_);
  bind();
  glDrawElements(
      GL_TRIANGLES, static_cast<GLsizei>(r.triangleCount * 3), GL_UNSIGNED_INT,
      reinterpret_cast<const void*>(static_cast<size_t>(r.firstTriangle) * 3 * sizeof(uint32_t)));
  ++gl_->counters.drawCalls;
  ++gl_->counters.glCalls;
}

}  // namespace ostrel::graphics::gl
