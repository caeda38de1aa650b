#include "graphics/gl/Device.h"

#include <algorithm>

#include "graphics/gl/Resources.h"

namespace ostrel::graphics::gl {

namespace {

bool formatHasAlpha(int32_t format) {
  return format == D3DFMT_A8R8G8B8;
}

}  // namespace

GlDevice::GlDevice(std::shared_ptr<GlContext> gl, Platform& window, const D3DPRESENT_PARAMETERS& p)
    : gl_(std::move(gl)), window_(window), parameters_(p) {
  buildBackBuffer();
  state_ = defaultState(parameters_, width_, height_);
}

GlDevice::~GlDevice() {
  if (gl_->makeCurrent()) dropBackBuffer();
}

void GlDevice::Reset(D3DPRESENT_PARAMETERS& p) {
  if (cooperativeLevelOf(window_) == D3DERR_DEVICELOST) {
    raise(D3DERR_DEVICELOST, "the device is lost and cannot be reset yet");
  }
  if (inScene_) raise(D3DERR_INVALIDCALL, "Reset inside a scene");
  gl_->requireCurrent();
  parameters_ = p;
  dropBackBuffer();
  buildBackBuffer();
  state_ = defaultState(parameters_, width_, height_);
  gl_->cache.forget();
  deviceWasResetOn(window_);
}

void GlDevice::Clear(uint32_t count, const D3DRECT* rects, uint32_t flags, uint32_t color, float z,
                     uint32_t) {
  gl_->requireCurrent();
  if (window_.surface().toolkitSharesContext()) gl_->cache.forget();
  GlStateCache& c = gl_->cache;
  DeviceCounters& n = gl_->counters;
  c.bindFramebuffer(framebuffer_);
  const bool colour = flags & D3DCLEAR_TARGET, depth = (flags & D3DCLEAR_ZBUFFER) && depth_;
  if (!colour && !depth) return;
  const GLbitfield mask = (colour ? GL_COLOR_BUFFER_BIT : 0) | (depth ? GL_DEPTH_BUFFER_BIT : 0);
  // A back buffer without alpha holds one there from its making and never writes it again.
  const bool hasAlpha = formatHasAlpha(parameters_.BackBufferFormat);
  c.setWrites(colour, hasAlpha, depth);
  const float alpha = hasAlpha ? ((color >> 24) & 0xFF) / 255.0f : 1.0f;
  c.setClear({{((color >> 16) & 0xFF) / 255.0f, ((color >> 8) & 0xFF) / 255.0f,
               (color & 0xFF) / 255.0f, alpha},
              std::clamp(z, 0.0f, 1.0f)});
  // A clear covers the viewport, or the given rectangles within it; the scissor only when that
  // is less than the whole back buffer.
  const D3DVIEWPORT8& v = state_.viewport;
  const int32_t w = static_cast<int32_t>(width_), h = static_cast<int32_t>(height_);
  bool scissor = false;
  auto counted = [&n] {
    ++n.stateChanges;
    ++n.glCalls;
  };
  auto clearArea = [&](int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
    x1 = std::max<int32_t>(x1, static_cast<int32_t>(v.X));
    y1 = std::max<int32_t>(y1, static_cast<int32_t>(v.Y));
    x2 = std::min<int32_t>(x2, static_cast<int32_t>(v.X + v.Width));
    y2 = std::min<int32_t>(y2, static_cast<int32_t>(v.Y + v.Height));
    if (x2 <= x1 || y2 <= y1) return;
    const bool whole = x1 == 0 && y1 == 0 && x2 == w && y2 == h;
    if (whole && scissor) {
      glDisable(GL_SCISSOR_TEST);
      counted();
      scissor = false;
    } else if (!whole) {
      if (!scissor) {
        glEnable(GL_SCISSOR_TEST);
        counted();
        scissor = true;
      }
      glScissor(x1, h - y2, x2 - x1, y2 - y1);
      counted();
    }
    glClear(mask);
    ++n.glCalls;
  };
  if (count == 0 || rects == nullptr) {
    clearArea(0, 0, w, h);
  } else {
    for (uint32_t i = 0; i < count; ++i)
      clearArea(rects[i].x1, rects[i].y1, rects[i].x2, rects[i].y2);
  }
  if (scissor) {
    glDisable(GL_SCISSOR_TEST);
    counted();
  }
}

void GlDevice::BeginScene() {
  if (inScene_) raise(D3DERR_INVALIDCALL, "BeginScene inside a scene");
  inScene_ = true;
}

void GlDevice::EndScene() {
  if (!inScene_) raise(D3DERR_INVALIDCALL, "EndScene outside a scene");
  inScene_ = false;
}

void GlDevice::Present(const D3DRECT*, const D3DRECT*, uintptr_t, const void*) {
  int32_t level = cooperativeLevelOf(window_);
  if (level == D3DERR_DEVICELOST || level == D3DERR_DEVICENOTRESET) {
    raise(D3DERR_DEVICELOST, "the device is lost");
  }
  gl_->requireCurrent();
  GLuint shown = framebuffer_;
  if (resolveFramebuffer_) {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    gl_->cache.bindFramebuffer(resolveFramebuffer_);
    GLint w = static_cast<GLint>(width_), h = static_cast<GLint>(height_);
    glBlitFramebuffer(0, 0, w, h, 0, 0, w, h, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    gl_->counters.glCalls += 2;
    shown = resolveFramebuffer_;
  }
  lastFrame_ = gl_->counters;
  gl_->counters = {};
  // The window restores the GL state it changes while presenting (the platform's contract), so
  // the cache stays valid across frames.
  window_.surface().presentFramebuffer(shown, static_cast<int32_t>(width_),
                                       static_cast<int32_t>(height_));
  gl_->makeCurrent();
}

void GlDevice::SetRenderState(uint32_t state, uint32_t value) {
  if (state >= state_.renderState.size()) raise(D3DERR_INVALIDCALL, "no such render state");
  state_.renderState[state] = value;
}

uint32_t GlDevice::GetRenderState(uint32_t state) const {
  if (state >= state_.renderState.size()) raise(D3DERR_INVALIDCALL, "no such render state");
  return state_.renderState[state];
}

void GlDevice::SetTextureStageState(uint32_t stage, uint32_t type, uint32_t value) {
  if (stage >= 8 || type >= 32) raise(D3DERR_INVALIDCALL, "no such texture stage state");
  state_.stageState[stage][type] = value;
}

uint32_t GlDevice::GetTextureStageState(uint32_t stage, uint32_t type) const {
  if (stage >= 8 || type >= 32) raise(D3DERR_INVALIDCALL, "no such texture stage state");
  return state_.stageState[stage][type];
}

void GlDevice::SetViewport(const D3DVIEWPORT8& v) {
  if (static_cast<uint64_t>(v.X) + v.Width > width_ ||
      static_cast<uint64_t>(v.Y) + v.Height > height_ || v.MinZ < 0 || v.MaxZ > 1 ||
      v.MinZ > v.MaxZ) {
    raise(D3DERR_INVALIDCALL, "viewport outside the back buffer");
  }
  state_.viewport = v;
}

void GlDevice::SetLight(uint32_t index, const D3DLIGHT8& light) {
  if (light.Type < D3DLIGHT_POINT || light.Type > D3DLIGHT_DIRECTIONAL) {
    raise(D3DERR_INVALIDCALL, "no such light type");
  }
  state_.lights[index] = light;
}

void GlDevice::GetLight(uint32_t index, D3DLIGHT8& light) const {
  auto it = state_.lights.find(index);
  if (it == state_.lights.end()) raise(D3DERR_INVALIDCALL, "no light at that index");
  light = it->second;
}

void GlDevice::LightEnable(uint32_t index, int32_t enable) {
  // Enabling a light never set gives it the default light: white, directional, along +z.
  if (enable && !state_.lights.count(index)) {
    D3DLIGHT8 l;
    l.Type = D3DLIGHT_DIRECTIONAL;
    l.Diffuse = {1, 1, 1, 0};
    l.Direction = {0, 0, 1};
    state_.lights[index] = l;
  }
  state_.lightEnabled[index] = enable != 0;
}

int32_t GlDevice::GetLightEnable(uint32_t index) const {
  auto it = state_.lightEnabled.find(index);
  if (it == state_.lightEnabled.end()) {
    if (!state_.lights.count(index)) raise(D3DERR_INVALIDCALL, "no light at that index");
    return 0;
  }
  return it->second ? 1 : 0;
}

void GlDevice::SetTexture(uint32_t stage, std::shared_ptr<Texture> texture) {
  if (stage >= state_.textures.size()) raise(D3DERR_INVALIDCALL, "no such texture stage");
  state_.textures[stage] = std::move(texture);
}

std::shared_ptr<Texture> GlDevice::GetTexture(uint32_t stage) const {
  if (stage >= state_.textures.size()) raise(D3DERR_INVALIDCALL, "no such texture stage");
  return state_.textures[stage];
}

void GlDevice::GetDeviceCaps(D3DCAPS8& caps) const {
  caps = D3DCAPS8{};
  caps.DeviceType = D3DDEVTYPE_HAL;
  caps.MaxTextureWidth = caps.MaxTextureHeight = kMaxTextureSide;
  caps.MaxAnisotropy = static_cast<uint32_t>(std::max(0, adapterOf(window_).maxAnisotropy));
  caps.MaxActiveLights = 8;
  caps.MaxSimultaneousTextures = 1;
}

std::shared_ptr<Mesh> GlDevice::CreateMesh(MeshData data) {
  gl_->requireCurrent();
  return std::make_shared<GlMesh>(shared_from_this(), gl_, std::move(data));
}

std::shared_ptr<Texture> GlDevice::CreateTexture(uint32_t w, uint32_t h, const uint8_t* rgba) {
  if (w == 0 || h == 0 || w > kMaxTextureSide || h > kMaxTextureSide) {
    raise(D3DERR_INVALIDCALL, "texture size out of range");
  }
  gl_->requireCurrent();
  return std::make_shared<GlTexture>(gl_, w, h, rgba);
}

DrawTarget GlDevice::target() const {
  return {framebuffer_, height_, depth_ != 0, formatHasAlpha(parameters_.BackBufferFormat)};
}

void GlDevice::prepareDraw(int vertexFlags) {
  const auto* tex = dynamic_cast<const GlTexture*>(state_.textures[0].get());
  const GLuint texture = tex && tex->context() == gl_.get() ? tex->name() : 0;
  const GlDrawState wanted = translate(state_, target(), vertexFlags, texture);
  gl_->cache.apply(wanted, gl_->program(wanted.program), gl_->sampler);
}

D3DMATRIX& GlDevice::transform(uint32_t state) {
  if (state == D3DTS_WORLD) return state_.world;
  if (state == D3DTS_VIEW) return state_.view;
  if (state == D3DTS_PROJECTION) return state_.projection;
  if ((state >= D3DTS_TEXTURE0 && state < D3DTS_TEXTURE0 + 8) ||
      (state > D3DTS_WORLD && state < 512)) {
    auto it = state_.otherTransforms.find(state);
    if (it == state_.otherTransforms.end()) {
      it = state_.otherTransforms.emplace(state, identityMatrix()).first;
    }
    return it->second;
  }
  raise(D3DERR_INVALIDCALL, "no such transform state");
}

void GlDevice::buildBackBuffer() {
  gl_->requireCurrent();
  gl_->prepare();
  uint32_t w = parameters_.BackBufferWidth, h = parameters_.BackBufferHeight;
  if (w == 0 || h == 0) {
    int32_t pw = 0, ph = 0;
    window_.surface().pictureSize(pw, ph);
    if (w == 0) w = static_cast<uint32_t>(std::max(pw, 1));
    if (h == 0) h = static_cast<uint32_t>(std::max(ph, 1));
  }
  GLint maxSize = 0;
  glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maxSize);
  if (w > static_cast<uint32_t>(maxSize) || h > static_cast<uint32_t>(maxSize)) {
    raise(D3DERR_OUTOFVIDEOMEMORY, "back buffer larger than the renderer allows");
  }
  width_ = w;
  height_ = h;
  // A device asked for more samples than the renderer has gets the most it has.
  samples_ = parameters_.MultiSampleType >= 2
                 ? std::min<int32_t>(parameters_.MultiSampleType, gl_->maxSamples)
                 : 0;
  if (samples_ < 2) samples_ = 0;
  GLsizei gw = static_cast<GLsizei>(w), gh = static_cast<GLsizei>(h);
  gl_->cache.forgetBindings();  // the framebuffer bindings change below
  glGenFramebuffers(1, &framebuffer_);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
  glGenRenderbuffers(1, &color_);
  glBindRenderbuffer(GL_RENDERBUFFER, color_);
  glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples_, GL_RGBA8, gw, gh);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_);
  if (parameters_.EnableAutoDepthStencil) {
    // 24 bits whatever the format asked: the markers lie a thousandth above the board.
    bool stencil = parameters_.AutoDepthStencilFormat == D3DFMT_D24S8;
    glGenRenderbuffers(1, &depth_);
    glBindRenderbuffer(GL_RENDERBUFFER, depth_);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples_,
                                     stencil ? GL_DEPTH24_STENCIL8 : GL_DEPTH_COMPONENT24, gw, gh);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER,
                              stencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                              GL_RENDERBUFFER, depth_);
  }
  bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  if (complete && samples_) {
    GLint got = 0;
    glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_SAMPLES, &got);
    samples_ = got;
    glGenFramebuffers(1, &resolveFramebuffer_);
    glBindFramebuffer(GL_FRAMEBUFFER, resolveFramebuffer_);
    glGenRenderbuffers(1, &resolveColor_);
    glBindRenderbuffer(GL_RENDERBUFFER, resolveColor_);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, gw, gh);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, resolveColor_);
    complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
  }
  if (complete) {
    // Alpha one everywhere, which draws and clears of a target without alpha then keep.
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    gl_->cache.forget();
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  if (!complete) {
    dropBackBuffer();
    raise(D3DERR_OUTOFVIDEOMEMORY, "the back buffer cannot be made");
  }
}

void GlDevice::dropBackBuffer() {
  GLuint fbos[] = {framebuffer_, resolveFramebuffer_};
  GLuint rbs[] = {color_, depth_, resolveColor_};
  gl_->cache.framebufferGone(framebuffer_);
  gl_->cache.framebufferGone(resolveFramebuffer_);
  glDeleteFramebuffers(2, fbos);
  glDeleteRenderbuffers(3, rbs);
  framebuffer_ = resolveFramebuffer_ = color_ = depth_ = resolveColor_ = 0;
}

}  // namespace ostrel::graphics::gl
