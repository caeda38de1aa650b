#include "graphics/gl/GlContext.h"

#include <vector>

#include "graphics/gl/GlReadback.h"

namespace ostrel::graphics::gl {

void raise(int32_t number, const std::string& text) {
  throw D3DError(number, text);
}

void clearErrors() {
  for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
  }
}

GlContext::~GlContext() {
  if (makeCurrent()) {
    programs_.release();
    if (sampler) glDeleteSamplers(1, &sampler);
  }
}

void GlContext::prepare() {
  if (prepared_) return;
  prepared_ = true;
  cache.forget();
  glGenSamplers(1, &sampler);
  glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
}

Program& GlContext::program(const ProgramKey& key) {
  bool compiled = false;
  Program& p = programs_.get(key, compiled);
  if (compiled) cache.noteProgram(p.id);
  return p;
}

namespace {

// Contexts known on this thread, one entry per platform.
std::vector<std::weak_ptr<GlContext>>& registry() {
  thread_local std::vector<std::weak_ptr<GlContext>> entries;
  return entries;
}

}  // namespace

std::shared_ptr<GlContext> contextFor(Platform& platform) {
  auto& entries = registry();
  std::erase_if(entries, [](const std::weak_ptr<GlContext>& w) { return w.expired(); });
  for (auto& w : entries) {
    auto s = w.lock();
    if (s && s->platform == &platform && s->alive) return s;
  }
  auto s = std::make_shared<GlContext>(platform);
  entries.push_back(s);
  return s;
}

bool readFramebufferBottomUp(uint32_t framebuffer, int32_t width, int32_t height,
                             std::vector<uint8_t>& rgba) {
  if (width <= 0 || height <= 0) return false;
  clearErrors();
  rgba.resize(static_cast<size_t>(width) * static_cast<size_t>(height) * 4);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
  glPixelStorei(GL_PACK_ALIGNMENT, 1);
  glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, rgba.data());
  return glGetError() == GL_NO_ERROR;
}

}  // namespace ostrel::graphics::gl

namespace ostrel::graphics {

void platformContextGoing(Platform& platform) {
  auto& entries = gl::registry();
  for (auto& w : entries) {
    if (auto s = w.lock(); s && s->platform == &platform) s->alive = false;
  }
  std::erase_if(entries, [&](const std::weak_ptr<gl::GlContext>& w) {
    auto s = w.lock();
    return !s || s->platform == &platform;
  });
}

}  // namespace ostrel::graphics
