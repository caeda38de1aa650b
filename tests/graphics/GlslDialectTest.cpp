// The shader text of WebGL 2 and of desktop GL: one program, two headers. (That ES variants
// compile is checked in GlStateGlTest.cpp, through the renderer's ES compatibility.)

#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <string>

#include "graphics/gl/Programs.h"

namespace ostrel::graphics::gl {
namespace {

TEST(GlslEs, DialectsDifferOnlyInTheirHeader) {
  ProgramKey key;
  key.colours = key.lighting = true;
  for (GLenum stage : {GL_VERTEX_SHADER, GL_FRAGMENT_SHADER}) {
    const std::string es = shaderSource(GlslDialect::Es300, stage, key);
    const std::string desktop = shaderSource(GlslDialect::Desktop330, stage, key);
    EXPECT_EQ(es.rfind("#version 300 es\n", 0), 0u);
    EXPECT_EQ(desktop.rfind("#version 330 core\n", 0), 0u);
    // Past the header both carry the same program text.
    const auto bodyOf = [](const std::string& s) { return s.substr(s.find("#define NORMALS")); };
    EXPECT_EQ(bodyOf(es), bodyOf(desktop));
  }
  // A D3DCOLOR's bytes come B, G, R, A: ES swaps them in the shader, desktop GL in the fetch.
  EXPECT_NE(shaderSource(GlslDialect::Es300, GL_VERTEX_SHADER, key).find("aColor.bgra"),
            std::string::npos);
  EXPECT_EQ(shaderSource(GlslDialect::Desktop330, GL_VERTEX_SHADER, key).find("aColor.bgra"),
            std::string::npos);
}

}  // namespace
}  // namespace ostrel::graphics::gl
