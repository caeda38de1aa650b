// The pure steps of the GL backend, no GL context needed: from the fixed-function state to the GL
// state of a draw, and the shader text of WebGL 2 and of desktop GL, one program with two headers.
// (That the ES variants compile is checked in GlStateGlTest.cpp, through the renderer's ES
// compatibility.)

#include <gtest/gtest.h>

#include "FreshState.h"
#include "graphics/gl/FixedFunction.h"
#include "graphics/gl/Programs.h"

namespace ostrel::testing {
namespace {

using namespace graphics;
using gl::GlDrawState;

const gl::DrawTarget kTarget{7, 100, true, false};

TEST(Translate, FixedFunctionStatesBecomeTheirGlCounterparts) {
  struct Case {
    const char* what;
    void (*change)(gl::FixedFunctionState&);
    bool (*holds)(const GlDrawState&);
  };
  const Case cases[] = {
      {"defaults: depth LEQUAL with writes, back faces culled, no blending",
       [](gl::FixedFunctionState&) {},
       [](const GlDrawState& d) {
         return d.depth.test && d.depth.write && d.depth.func == GL_LEQUAL && d.raster.cull &&
                d.raster.cullFace == GL_BACK && !d.blend.enabled && !d.textured;
       }},
      {"marker blend: SRCALPHA, DESTCOLOR",
       [](gl::FixedFunctionState& s) {
         s.renderState[D3DRS_ALPHABLENDENABLE] = 1;
         s.renderState[D3DRS_SRCBLEND] = D3DBLEND_SRCALPHA;
         s.renderState[D3DRS_DESTBLEND] = D3DBLEND_DESTCOLOR;
       },
       [](const GlDrawState& d) {
         return d.blend.enabled && d.blend.src == GL_SRC_ALPHA && d.blend.dst == GL_DST_COLOR;
       }},
      {"CW culling culls GL's front faces; NONE culls nothing",
       [](gl::FixedFunctionState& s) { s.renderState[D3DRS_CULLMODE] = D3DCULL_CW; },
       [](const GlDrawState& d) { return d.raster.cull && d.raster.cullFace == GL_FRONT; }},
      {"no culling",
       [](gl::FixedFunctionState& s) { s.renderState[D3DRS_CULLMODE] = D3DCULL_NONE; },
       [](const GlDrawState& d) { return !d.raster.cull; }},
      {"viewport rows count from the bottom",
       [](gl::FixedFunctionState& s) { s.viewport = {10, 20, 50, 30, 0.25f, 0.75f}; },
       [](const GlDrawState& d) {
         return d.target.viewport == std::array<GLint, 4>{10, 50, 50, 30} &&
                d.target.depthRange == std::array<float, 2>{0.25f, 0.75f} &&
                d.target.framebuffer == 7;
       }},
      {"wireframe and GREATER",
       [](gl::FixedFunctionState& s) {
         s.renderState[D3DRS_FILLMODE] = 2;
         s.renderState[D3DRS_ZFUNC] = D3DCMP_GREATER;
       },
       [](const GlDrawState& d) {
         return d.raster.polygonMode == GL_LINE && d.depth.func == GL_GREATER;
       }},
      {"lighting off: no light uniforms read",
       [](gl::FixedFunctionState& s) { s.renderState[D3DRS_LIGHTING] = 0; },
       [](const GlDrawState& d) { return !d.lit && !d.lightOn && !d.program.lighting; }},
      {"light 0 enabled and directional: lit, direction towards the light in view space",
       [](gl::FixedFunctionState& s) {
         D3DLIGHT8 l;
         l.Type = D3DLIGHT_DIRECTIONAL;
         l.Direction = {0, -2, 0};
         s.lights[0] = l;
         s.lightEnabled[0] = true;
       },
       [](const GlDrawState& d) {
         return d.lightOn && d.program.light0 && d.uniforms.lightDir[1] == 1.0f;
       }},
  };
  for (const Case& c : cases) {
    gl::FixedFunctionState s = freshState();
    c.change(s);
    EXPECT_TRUE(c.holds(gl::translate(s, kTarget, gl::kNormals, 0))) << c.what;
  }
  // No depth buffer, no depth test; a texture only counts while stage 0 is on; anisotropy needs
  // both filters past POINT.
  gl::FixedFunctionState s = freshState();
  EXPECT_FALSE(gl::translate(s, {7, 100, false, false}, 0, 0).depth.test);
  EXPECT_TRUE(gl::translate(s, kTarget, gl::kCoords, 3).textured);
  s.stageState[0][D3DTSS_MINFILTER] = D3DTEXF_ANISOTROPIC;
  s.stageState[0][D3DTSS_MAXANISOTROPY] = 40;
  EXPECT_EQ(gl::translate(s, kTarget, gl::kCoords, 3).program.anisotropy, 0u);
  s.stageState[0][D3DTSS_MAGFILTER] = D3DTEXF_LINEAR;
  EXPECT_EQ(gl::translate(s, kTarget, gl::kCoords, 3).program.anisotropy, gl::kMaxAnisotropy);
  s.stageState[0][D3DTSS_COLOROP] = D3DTOP_DISABLE;
  EXPECT_FALSE(gl::translate(s, kTarget, gl::kCoords, 3).textured);
}

TEST(GlslEs, DialectsDifferOnlyInTheirHeader) {
  gl::ProgramKey key;
  key.colours = key.lighting = true;
  for (GLenum stage : {GL_VERTEX_SHADER, GL_FRAGMENT_SHADER}) {
    const std::string es = gl::shaderSource(gl::GlslDialect::Es300, stage, key);
    const std::string desktop = gl::shaderSource(gl::GlslDialect::Desktop330, stage, key);
    EXPECT_EQ(es.rfind("#version 300 es\n", 0), 0u);
    EXPECT_EQ(desktop.rfind("#version 330 core\n", 0), 0u);
    // Past the header both carry the same program text.
    const auto bodyOf = [](const std::string& s) { return s.substr(s.find("#define NORMALS")); };
    EXPECT_EQ(bodyOf(es), bodyOf(desktop));
  }
  // A D3DCOLOR's bytes come B, G, R, A: ES swaps them in the shader, desktop GL in the fetch.
  EXPECT_NE(gl::shaderSource(gl::GlslDialect::Es300, GL_VERTEX_SHADER, key).find("aColor.bgra"),
            std::string::npos);
  EXPECT_EQ(
      gl::shaderSource(gl::GlslDialect::Desktop330, GL_VERTEX_SHADER, key).find("aColor.bgra"),
      std::string::npos);
}

}  // namespace
}  // namespace ostrel::testing
