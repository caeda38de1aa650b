#pragma once
// The Direct3D 8 device on OpenGL: keeps the fixed-function state as plain data, draws into a
// framebuffer object (multisampled when asked, resolved at Present) and counts what it sends.

#include <memory>

#include "graphics/d3d8.h"
#include "graphics/gl/FixedFunction.h"
#include "graphics/gl/GlApi.h"
#include "graphics/gl/GlContext.h"
#include "graphics/gl/Probes.h"

namespace ostrel::graphics::gl {

class GlDevice final : public Direct3DDevice8, public std::enable_shared_from_this<GlDevice> {
 public:
  GlDevice(std::shared_ptr<GlContext> gl, Platform& window, const D3DPRESENT_PARAMETERS& p);
  ~GlDevice() override;

  int32_t TestCooperativeLevel() override { return cooperativeLevelOf(window_); }
  void Reset(D3DPRESENT_PARAMETERS& p) override;
  void Clear(uint32_t count, const D3DRECT* rects, uint32_t flags, uint32_t color, float z,
             uint32_t) override;
  void BeginScene() override;
  void EndScene() override;
  void Present(const D3DRECT*, const D3DRECT*, uintptr_t, const void*) override;

  void SetRenderState(uint32_t state, uint32_t value) override;
  uint32_t GetRenderState(uint32_t state) const override;
  void SetTextureStageState(uint32_t stage, uint32_t type, uint32_t value) override;
  uint32_t GetTextureStageState(uint32_t stage, uint32_t type) const override;
  void SetVertexShader(uint32_t fvf) override { state_.vertexShader = fvf; }
  uint32_t GetVertexShader() const override { return state_.vertexShader; }

  void SetTransform(uint32_t state, const D3DMATRIX& matrix) override { transform(state) = matrix; }
  void GetTransform(uint32_t state, D3DMATRIX& matrix) const override {
    matrix = const_cast<GlDevice*>(this)->transform(state);
  }
  void SetViewport(const D3DVIEWPORT8& v) override;
  void GetViewport(D3DVIEWPORT8& v) const override { v = state_.viewport; }

  void SetMaterial(const D3DMATERIAL8& m) override { state_.material = m; }
  void GetMaterial(D3DMATERIAL8& m) const override { m = state_.material; }
  void SetLight(uint32_t index, const D3DLIGHT8& light) override;
  void GetLight(uint32_t index, D3DLIGHT8& light) const override;
  void LightEnable(uint32_t index, int32_t enable) override;
  int32_t GetLightEnable(uint32_t index) const override;
  void SetTexture(uint32_t stage, std::shared_ptr<Texture> texture) override;
  std::shared_ptr<Texture> GetTexture(uint32_t stage) const override;

  void GetDeviceCaps(D3DCAPS8& caps) const override;
  void GetBackBufferSize(uint32_t& w, uint32_t& h) const override {
    w = width_;
    h = height_;
  }
  int32_t GetMultiSampleCount() const override { return samples_; }
  DeviceCounters GetFrameCounters() const override { return lastFrame_; }

  std::shared_ptr<Mesh> CreateMesh(MeshData data) override;
  std::shared_ptr<Texture> CreateTexture(uint32_t w, uint32_t h, const uint8_t* rgba) override;

  // Sets everything a draw of vertices with those VertexFlags needs; meshes call it.
  void prepareDraw(int vertexFlags);

 private:
  D3DMATRIX& transform(uint32_t state);
  void buildBackBuffer();
  void dropBackBuffer();
  DrawTarget target() const;

  std::shared_ptr<GlContext> gl_;
  Platform& window_;
  D3DPRESENT_PARAMETERS parameters_;
  FixedFunctionState state_;
  uint32_t width_ = 0, height_ = 0;
  int32_t samples_ = 0;
  GLuint framebuffer_ = 0, color_ = 0, depth_ = 0, resolveFramebuffer_ = 0, resolveColor_ = 0;
  bool inScene_ = false;
  DeviceCounters lastFrame_;
};

}  // namespace ostrel::graphics::gl
