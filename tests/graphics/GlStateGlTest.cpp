// The GL backend on a context: the cache that sends only what differs, the counters of what a
// frame sends, and the shader source that serves both desktop GLSL and GLSL ES.

#include <gtest/gtest.h>

#include <cstring>

#include "FreshState.h"
#include "graphics/GraphicsContext.h"
#include "graphics/gl/FixedFunction.h"
#include "graphics/gl/GlContext.h"
#include "support/GraphicsFixture.h"
#include "support/LiveBoard.h"

namespace ostrel::testing {
namespace {

using namespace graphics;
using gl::GlDrawState;

TEST(StateCache, ApplySendsOnlyTheGroupsThatDiffer) {
  GraphicsFixture f(32, 32);
  auto context = gl::contextFor(f.platform);
  ASSERT_TRUE(context->makeCurrent());
  gl::GlStateCache& cache = context->cache;
  const DeviceCounters& n = context->counters;
  gl::FixedFunctionState s = freshState();
  GlDrawState d = gl::translate(s, {0, 32, true, false}, gl::kNormals, 0);
  gl::Program& program = context->program(d.program);
  cache.forget();
  auto calls = [&](const GlDrawState& wanted) {
    const uint32_t before = n.glCalls;
    cache.apply(wanted, program, context->sampler);
    return n.glCalls - before;
  };
  EXPECT_GE(calls(d), 12u);  // everything, once
  EXPECT_EQ(calls(d), 0u);
  struct Step {
    const char* what;
    void (*change)(GlDrawState&);
    uint32_t calls;
  };
  const Step steps[] = {
      {"factors while blending is off", [](GlDrawState& w) { w.blend.src = GL_DST_COLOR; }, 0},
      {"blending on with new factors",
       [](GlDrawState& w) {
         w.blend.enabled = true;
         w.blend.src = GL_ZERO;
         w.blend.dst = GL_SRC_COLOR;
       },
       2},
      {"the same again", [](GlDrawState&) {}, 0},
      {"blending off", [](GlDrawState& w) { w.blend.enabled = false; }, 1},
      {"viewport", [](GlDrawState& w) { w.target.viewport[2] = 16; }, 1},
      {"depth function and culling",
       [](GlDrawState& w) {
         w.depth.func = GL_ALWAYS;
         w.raster.cull = false;
       },
       2},
      {"one uniform", [](GlDrawState& w) { w.uniforms.worldView[12] = 3; }, 1},
  };
  for (const Step& step : steps) {
    step.change(d);
    EXPECT_EQ(calls(d), step.calls) << step.what;
  }
  cache.forget();
  EXPECT_GE(calls(d), 10u) << "a forgotten cache sets every group again";
}

// A board of the shipped models with shadows, with or without pieces and markers.
struct Board : LiveBoard {
  explicit Board(bool full) : LiveBoard(160, 160, 1) {
    if (!full) return;
    openingPosition(board);
    board.setHLfields("21|22|23");
  }
  DeviceCounters counted() {
    board.render();
    return graphicsContext().device->GetFrameCounters();
  }
};

// Six counters of one width, nothing between them.
bool same(const DeviceCounters& a, const DeviceCounters& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TEST(FrameCounters, AnUnchangedSceneSendsNoRedundantState) {
  {
    Board empty(false);
    ASSERT_TRUE(empty.started);
    const DeviceCounters first = empty.counted(), second = empty.counted();
    EXPECT_GT(second.drawCalls, 0u);
    EXPECT_EQ(second.drawCalls, first.drawCalls);
    // One program, one texture and one state for the whole frame, set by the frame before.
    EXPECT_EQ(second.programChanges, 0u);
    EXPECT_EQ(second.stateChanges, 0u);
    EXPECT_EQ(second.uniformUploads, 0u);
    EXPECT_EQ(second.bufferUploads, 0u);
  }
  Board full(true);
  ASSERT_TRUE(full.started);
  full.board.render();
  const DeviceCounters second = full.counted(), third = full.counted();
  EXPECT_GT(second.drawCalls, 40u);
  // A world matrix for each draw, and the material only where the mesh changes.
  EXPECT_LE(second.uniformUploads, second.drawCalls + 16);
  EXPECT_EQ(second.bufferUploads, 0u);
  EXPECT_TRUE(same(second, third));
  EXPECT_GT(second.stateChanges, 0u);
  EXPECT_GE(second.glCalls, second.drawCalls + second.programChanges + second.stateChanges +
                                second.uniformUploads + second.bufferUploads)
      << "every kind is a GL call";
  // Taking a piece away takes its draws, and sends no vertices.
  full.board.field(0, 0);
  full.board.drawBoard();
  const DeviceCounters moved = full.counted();

  const clsMesh& piece = full.state().models.pieceMesh[1];
  ASSERT_TRUE(piece.hasMesh());
  EXPECT_LE(moved.drawCalls + piece.mesh()->GetNumSubsets(), second.drawCalls);
  EXPECT_EQ(moved.bufferUploads, 0u);
}

TEST(Shaders, EveryVariantOfAFrameCompilesAsGlslEs) {
  Board full(true);
  ASSERT_TRUE(full.started);
  full.board.render();
  if (!epoxy_has_gl_extension("GL_ARB_ES3_compatibility")) {
    GTEST_SKIP() << "the renderer takes no GLSL ES";
  }
  // The variants the shipped models use, and the plain ones.
  gl::ProgramKey lit;
  lit.normals = lit.coords = lit.lighting = lit.light0 = true;
  gl::ProgramKey textured = lit;
  textured.texture = true;
  textured.colorOp = D3DTOP_MODULATE;
  textured.alphaOp = D3DTOP_SELECTARG1;
  textured.colorArg1Texture = true;
  gl::ProgramKey anisotropic = textured;
  anisotropic.anisotropy = 16;
  for (const gl::ProgramKey& key : {gl::ProgramKey{}, lit, textured, anisotropic}) {
    for (gl::GlslDialect dialect : {gl::GlslDialect::Desktop330, gl::GlslDialect::Es300}) {
      const std::string vs = gl::shaderSource(dialect, GL_VERTEX_SHADER, key);
      const std::string fs = gl::shaderSource(dialect, GL_FRAGMENT_SHADER, key);
      GLuint program = 0;
      EXPECT_NO_THROW(program = gl::linkProgram(vs, fs)) << fs;
      glDeleteProgram(program);
    }
  }
  // A broken source is refused, not linked.
  EXPECT_THROW(gl::linkProgram("#version 330 core\nvoid main() { oops; }", "x"), D3DError);
}

}  // namespace
}  // namespace ostrel::testing
