#include "graphics/gl/DrawState.h"

namespace ostrel::graphics::gl {

namespace {

void enable(GLenum cap, bool on) {
  if (on) {
    glEnable(cap);
  } else {
    glDisable(cap);
  }
}

}  // namespace

void GlStateCache::bindFramebuffer(GLuint framebuffer) {
  if (known_.framebuffer && current_.target.framebuffer == framebuffer) return;
  current_.target.framebuffer = framebuffer;
  known_.framebuffer = true;
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
  changed();
}

void GlStateCache::applyTarget(const TargetState& t) {
  bindFramebuffer(t.framebuffer);
  TargetState& c = current_.target;
  const bool all = !known_.target;
  if (!all && c == t) return;
  if (all || c.viewport != t.viewport) {
    glViewport(t.viewport[0], t.viewport[1], t.viewport[2], t.viewport[3]);
    changed();
  }
  if (all || c.depthRange != t.depthRange) {
    glDepthRange(t.depthRange[0], t.depthRange[1]);
    changed();
  }
  c = t;
  known_.target = true;
}

void GlStateCache::applyDepth(const DepthState& d) {
  DepthState& c = current_.depth;
  const bool all = !known_.depth;
  if (!all && c == d) return;
  setIf(all || c.test != d.test, [&] { enable(GL_DEPTH_TEST, d.test); });
  setIf(all || c.write != d.write, [&] { glDepthMask(d.write ? GL_TRUE : GL_FALSE); });
  setIf(all || c.func != d.func, [&] { glDepthFunc(d.func); });
  c = d;
  known_.depth = true;
}

void GlStateCache::applyRaster(const RasterState& r) {
  RasterState& c = current_.raster;
  const bool all = !known_.raster;
  if (!all && c == r) return;
  setIf(all || c.cull != r.cull, [&] { enable(GL_CULL_FACE, r.cull); });
  setIf(all || c.cullFace != r.cullFace, [&] { glCullFace(r.cullFace); });
  setIf(all || c.polygonMode != r.polygonMode,
        [&] { glPolygonMode(GL_FRONT_AND_BACK, r.polygonMode); });
  c = r;
  known_.raster = true;
}

void GlStateCache::applyBlend(const BlendState& b) {
  BlendState& c = current_.blend;
  const bool all = !known_.blend;
  if (!all && c.enabled == b.enabled && c.alphaWrite == b.alphaWrite &&
      (!b.enabled || (c.src == b.src && c.dst == b.dst))) {
    return;
  }
  setIf(all || c.enabled != b.enabled, [&] { enable(GL_BLEND, b.enabled); });
  // Factors matter only while blending; a disabled draw leaves the last ones in place.
  if (b.enabled && (all || c.src != b.src || c.dst != b.dst)) {
    glBlendFunc(b.src, b.dst);
    changed();
    c.src = b.src;
    c.dst = b.dst;
  } else if (all) {
    c.src = c.dst = 0;  // unknown until a blended draw sets them
  }
  if (all || c.alphaWrite != b.alphaWrite) {
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, b.alphaWrite ? GL_TRUE : GL_FALSE);
    changed();
  }
  c.enabled = b.enabled;
  c.alphaWrite = b.alphaWrite;
  known_.blend = true;
}

void GlStateCache::applySampler(const SamplerState& s, GLuint sampler) {
  SamplerState& c = current_.sampler;
  if (!known_.texture || c.texture != s.texture) {
    glBindTexture(GL_TEXTURE_2D, s.texture);
    changed();
    c.texture = s.texture;
    known_.texture = true;
  }
  const bool all = !known_.sampler;
  if (!all && c == s) return;
  auto parameter = [&](GLenum name, GLint held, GLint value) {
    if (!all && held == value) return;
    glSamplerParameteri(sampler, name, value);
    changed();
  };
  parameter(GL_TEXTURE_MIN_FILTER, c.minFilter, s.minFilter);
  parameter(GL_TEXTURE_MAG_FILTER, c.magFilter, s.magFilter);
  parameter(GL_TEXTURE_WRAP_S, c.wrapS, s.wrapS);
  parameter(GL_TEXTURE_WRAP_T, c.wrapT, s.wrapT);
  c = s;
  known_.sampler = true;
}

void GlStateCache::apply(const GlDrawState& wanted, Program& program, GLuint sampler) {
  if (!known_.once) {
    // What no draw changes: set once per context, and again after the cache is forgotten.
    glFrontFace(GL_CW);  // Direct3D's front faces are clockwise as seen
    glBindSampler(0, sampler);
    glActiveTexture(GL_TEXTURE0);
    changed(3);
    known_.once = true;
  }
  if (!known_.program || current_.programId != program.id) {
    glUseProgram(program.id);
    current_.programId = program.id;
    known_.program = true;
    ++counters_.programChanges;
    ++counters_.glCalls;
  }
  applyTarget(wanted.target);
  applyDepth(wanted.depth);
  applyRaster(wanted.raster);
  applyBlend(wanted.blend);
  if (wanted.textured) applySampler(wanted.sampler, sampler);
  const uint32_t uploads = uploadUniforms(program, wanted.uniforms, wanted.lit, wanted.lightOn);
  counters_.uniformUploads += uploads;
  counters_.glCalls += uploads;
}

void GlStateCache::setWrites(bool colour, bool alpha, bool depth) {
  BlendState& b = current_.blend;
  if (colour && (!known_.blend || b.alphaWrite != alpha)) {
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, alpha ? GL_TRUE : GL_FALSE);
    changed();
    if (!known_.blend) {
      // The rest of the group stays unknown: blending is set whole by the next apply.
      b = BlendState{};
    }
    b.alphaWrite = alpha;
  }
  DepthState& d = current_.depth;
  if (depth && (!known_.depth || !d.write)) {
    glDepthMask(GL_TRUE);
    changed();
    d.write = true;
  }
}

void GlStateCache::setClear(const ClearState& clear) {
  const bool all = !known_.clear;
  ClearState& c = current_.clear;
  if (all || c.colour != clear.colour) {
    glClearColor(clear.colour[0], clear.colour[1], clear.colour[2], clear.colour[3]);
    changed();
  }
  setIf(all || c.depth != clear.depth, [&] { glClearDepth(clear.depth); });
  c = clear;
  known_.clear = true;
}

void GlStateCache::bindVertexArray(GLuint vao) {
  if (known_.vertexArray && current_.vertexArray == vao) return;
  glBindVertexArray(vao);
  changed();
  current_.vertexArray = vao;
  known_.vertexArray = true;
}

}  // namespace ostrel::graphics::gl
