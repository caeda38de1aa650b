// The shader variants in the dialect of WebGL 2: every one compiles and links in a real
// OpenGL ES 3.0 context (Mesa's, through EGL), where the desktop dialect does not.

#include <epoxy/egl.h>
#include <epoxy/gl.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "graphics/d3d8.h"
#include "graphics/d3d8types.h"
#include "graphics/gl/Programs.h"

namespace ostrel::graphics::gl {
namespace {

// A surfaceless OpenGL ES 3.0 context, current while it lives.
class EsContext {
 public:
  EsContext() {
    if (!epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) return;
    display_ =
        eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    EGLint major = 0, minor = 0;
    if (display_ == EGL_NO_DISPLAY || !eglInitialize(display_, &major, &minor)) return;
    if (!eglBindAPI(EGL_OPENGL_ES_API)) return;
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_ES3_BIT, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint found = 0;
    if (!eglChooseConfig(display_, wanted, &config, 1, &found) || found == 0) return;
    const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION, 3, EGL_CONTEXT_MINOR_VERSION, 0,
                                 EGL_NONE};
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, attributes);
    current_ = context_ != EGL_NO_CONTEXT &&
               eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, context_) == EGL_TRUE;
  }
  ~EsContext() {
    if (context_ == EGL_NO_CONTEXT) return;
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
  }
  EsContext(const EsContext&) = delete;
  EsContext& operator=(const EsContext&) = delete;
  bool current() const { return current_; }

 private:
  EGLDisplay display_ = EGL_NO_DISPLAY;
  EGLContext context_ = EGL_NO_CONTEXT;
  bool current_ = false;
};

// The variants the frame asks for, and the corners of the key: every input, both lighting
// paths, a texture read plainly and anisotropically, each stage operation with texture arguments.
std::vector<ProgramKey> variants() {
  std::vector<ProgramKey> keys;
  for (int bits = 0; bits < 64; ++bits) {
    ProgramKey k;
    k.normals = bits & 1;
    k.colours = bits & 2;
    k.coords = bits & 4;
    k.lighting = bits & 8;
    k.light0 = bits & 16;
    k.texture = bits & 32;
    k.colorOp = D3DTOP_MODULATE;
    k.alphaOp = D3DTOP_SELECTARG1;
    k.colorArg1Texture = k.texture;
    k.alphaArg1Texture = k.texture;
    keys.push_back(k);
  }
  for (uint32_t op : {D3DTOP_DISABLE, D3DTOP_SELECTARG1, D3DTOP_SELECTARG2, D3DTOP_MODULATE}) {
    for (uint32_t anisotropy : {0u, 2u, 16u}) {
      ProgramKey k;
      k.coords = k.texture = true;
      k.colorOp = k.alphaOp = op;
      k.colorArg1Texture = k.alphaArg2Texture = true;
      k.anisotropy = anisotropy;
      keys.push_back(k);
    }
  }
  return keys;
}

TEST(GlslEs, EveryVariantLinksInAnEsContext) {
  EsContext es;
  if (!es.current()) GTEST_SKIP() << "no OpenGL ES 3.0 context from EGL here";
  ASSERT_LT(std::string(reinterpret_cast<const char*>(glGetString(GL_VERSION))).find("OpenGL ES"),
            std::string::npos);
  for (const ProgramKey& key : variants()) {
    SCOPED_TRACE(key.packed());
    GLuint program = 0;
    EXPECT_NO_THROW(program =
                        linkProgram(shaderSource(GlslDialect::Es300, GL_VERTEX_SHADER, key),
                                    shaderSource(GlslDialect::Es300, GL_FRAGMENT_SHADER, key)));
    glDeleteProgram(program);
  }
  // The context really takes ES only: the desktop dialect is refused there.
  EXPECT_THROW(linkProgram(shaderSource(GlslDialect::Desktop330, GL_VERTEX_SHADER, {}),
                           shaderSource(GlslDialect::Desktop330, GL_FRAGMENT_SHADER, {})),
               D3DError);
}

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
