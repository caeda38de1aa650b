#pragma once
// What one platform's OpenGL context holds for the device layer: the program variants, the
// sampler of stage 0, the cache of GL state and the count of GL calls. Devices, meshes and
// textures made in that context share it; GL objects are deleted only while the context lives.

#include <memory>
#include <string>

#include "graphics/d3d8.h"
#include "graphics/gl/DrawState.h"
#include "graphics/gl/GlApi.h"
#include "graphics/gl/Programs.h"
#include "ostrel/Platform.h"

namespace ostrel::graphics::gl {

[[noreturn]] void raise(int32_t number, const std::string& text);
// Drops errors left by earlier calls, so that the next glGetError speaks of what follows.
void clearErrors();

class GlContext {
 public:
  explicit GlContext(Platform& p) : platform(&p) {}
  ~GlContext();
  GlContext(const GlContext&) = delete;
  GlContext& operator=(const GlContext&) = delete;

  bool makeCurrent() { return alive && platform->surface().makeContextCurrent(); }
  void requireCurrent() {
    if (!makeCurrent()) raise(D3DERR_DEVICELOST, "the window's OpenGL context is gone");
  }
  // Once per context: the sampler of stage 0 and what the renderer offers.
  void prepare();
  // The variant for a key, compiled on first use.
  Program& program(const ProgramKey& key);

  Platform* platform;
  bool alive = true;
  GLuint sampler = 0;
  GLint maxSamples = 0;
  DeviceCounters counters;  // since the last Present of any device of this context
  GlStateCache cache{counters};

 private:
  bool prepared_ = false;
  ProgramSet programs_;
};

// The context of a platform on this thread, made on first use.
std::shared_ptr<GlContext> contextFor(Platform& platform);

}  // namespace ostrel::graphics::gl
