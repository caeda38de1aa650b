#pragma once
// The GL state of one draw as plain data, in groups that change together, and the cache of the
// same type that remembers what the context holds. A draw is made in two steps: translate (a pure
// function of the fixed-function state, in FixedFunction.h) gives the wanted GlDrawState, and
// apply() compares it with the cache group by group and calls GL only for what differs.

#include <array>
#include <cstdint>

#include "graphics/d3d8.h"
#include "graphics/gl/GlApi.h"
#include "graphics/gl/Programs.h"

namespace ostrel::graphics::gl {

struct TargetState {
  GLuint framebuffer = 0;
  std::array<GLint, 4> viewport{};  // x, y from the bottom, width, height
  std::array<float, 2> depthRange{0, 1};
  bool operator==(const TargetState&) const = default;
};

struct DepthState {
  bool test = false, write = true;
  GLenum func = GL_LESS;
  bool operator==(const DepthState&) const = default;
};

struct RasterState {
  bool cull = false;
  GLenum cullFace = GL_BACK, polygonMode = GL_FILL;
  bool operator==(const RasterState&) const = default;
};

struct BlendState {
  bool enabled = false;
  GLenum src = GL_ONE, dst = GL_ZERO;  // compared only while enabled
  bool alphaWrite = true;
  bool operator==(const BlendState&) const = default;
};

// Stage 0's texture and the sampler's filters and addressing; only for textured draws.
struct SamplerState {
  GLuint texture = 0;
  GLint minFilter = GL_NEAREST, magFilter = GL_NEAREST, wrapS = GL_REPEAT, wrapT = GL_REPEAT;
  bool operator==(const SamplerState&) const = default;
};

struct GlDrawState {
  TargetState target;
  DepthState depth;
  RasterState raster;
  BlendState blend;
  bool textured = false;
  SamplerState sampler;
  ProgramKey program;
  bool lit = false, lightOn = false;  // which uniforms the program reads
  UniformValues uniforms;
};

// The four values a clear uses, cached beside the draw state.
struct ClearState {
  std::array<float, 4> colour{};
  float depth = 1;
  bool operator==(const ClearState&) const = default;
};

// What the context holds. A group that is not `known` is set whole by the next apply; forget()
// makes every group unknown (after a context switch, a Reset, or foreign use of the context).
class GlStateCache {
 public:
  explicit GlStateCache(DeviceCounters& counters) : counters_(counters) {}

  void forget() { known_ = {}; }
  // Forgets only the framebuffer and texture bindings: a window rebinds them while presenting.
  void forgetBindings() { known_.framebuffer = known_.texture = false; }

  // Sets the context to `wanted`, the program's uniforms included, calling GL only for what
  // differs from the cache.
  void apply(const GlDrawState& wanted, Program& program, GLuint sampler);
  // The framebuffer that draws and clears go to.
  void bindFramebuffer(GLuint framebuffer);
  // Writes for a clear: colour (its alpha only when `alpha`) and depth, as asked.
  void setWrites(bool colour, bool alpha, bool depth);
  void setClear(const ClearState& clear);
  // A program that compiling has left in use.
  void noteProgram(GLuint id) {
    current_.programId = id;
    known_.program = true;
  }
  // Textures made or deleted outside apply.
  void noteTextureBound(GLuint name) {
    current_.sampler.texture = name;
    known_.texture = true;
  }
  void textureGone(GLuint name) {
    if (current_.sampler.texture == name) known_.texture = false;
  }
  void vertexArrayGone(GLuint vao) {
    if (current_.vertexArray == vao) known_.vertexArray = false;
  }
  void framebufferGone(GLuint fbo) {
    if (current_.target.framebuffer == fbo) known_.framebuffer = false;
  }
  // Binds a mesh's vertex array.
  void bindVertexArray(GLuint vao);

 private:
  struct Known {
    bool framebuffer = false, target = false, depth = false, raster = false, blend = false,
         texture = false, sampler = false, program = false, vertexArray = false, clear = false,
         once = false;
  };
  struct Current {
    TargetState target;
    DepthState depth;
    RasterState raster;
    BlendState blend;
    SamplerState sampler;
    GLuint programId = 0, vertexArray = 0;
    ClearState clear;
  };
  void applyTarget(const TargetState& t);
  void applyDepth(const DepthState& d);
  void applyRaster(const RasterState& r);
  void applyBlend(const BlendState& b);
  void applySampler(const SamplerState& s, GLuint sampler);
  template <typename Call>
  void setIf(bool differs, Call call) {
    if (!differs) return;
    call();
    changed();
  }
  void changed(uint32_t calls = 1) {
    counters_.stateChanges += calls;
    counters_.glCalls += calls;
  }

  DeviceCounters& counters_;
  Known known_;
  Current current_;
};

}  // namespace ostrel::graphics::gl
