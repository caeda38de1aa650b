#pragma once
// Shader programs: one source for per-vertex lighting with one directional light and the stage 0
// colour and alpha operations, specialised by the preprocessor for the state of each draw, so
// that the software rasteriser runs no code for states that are off. The source carries no
// version line of its own: the dialect header in front of it makes it desktop GLSL 3.30 or
// GLSL ES 3.00.

#include <array>
#include <cstdint>
#include <map>
#include <string>

#include "graphics/d3d8.h"
#include "graphics/gl/GlApi.h"

namespace ostrel::graphics::gl {

enum class GlslDialect { Desktop330, Es300 };

// The dialect of the GL this build draws with: OpenGL ES 3.0 (WebGL 2) when OSTREL_GL_ES is set.
#ifdef OSTREL_GL_ES
inline constexpr GlslDialect kBuildDialect = GlslDialect::Es300;
// A D3DCOLOR vertex attribute is fetched as R, G, B, A bytes; the shader swaps them.
inline constexpr GLint kVertexColourSize = 4;
#else
inline constexpr GlslDialect kBuildDialect = GlslDialect::Desktop330;
// A D3DCOLOR vertex attribute is fetched in its memory order B, G, R, A.
inline constexpr GLint kVertexColourSize = GL_BGRA;
#endif

// What a program variant is made for.
struct ProgramKey {
  bool normals = false, colours = false, coords = false;  // what the vertices carry
  bool lighting = false, light0 = false;                  // D3DRS_LIGHTING, light 0 enabled
  bool texture = false;                                   // a texture on stage 0
  uint32_t colorOp = 0, alphaOp = 0;                      // stage 0 operations
  bool colorArg1Texture = false, colorArg2Texture = false;
  bool alphaArg1Texture = false, alphaArg2Texture = false;
  uint32_t anisotropy = 0;  // taps of anisotropic filtering, 2 to 16; 0 for plain filtering

  uint32_t packed() const;
  bool operator==(const ProgramKey&) const = default;
};

// The whole source of one stage (GL_VERTEX_SHADER or GL_FRAGMENT_SHADER) of a variant.
std::string shaderSource(GlslDialect dialect, GLenum stage, const ProgramKey& key);

// What a variant's uniforms hold, as plain values.
struct UniformValues {
  std::array<float, 16> worldView{}, projection{};
  std::array<float, 3> lightDir{}, lightDiffuse{}, lightAmbient{}, globalAmbient{};
  std::array<float, 4> matDiffuse{};
  std::array<float, 3> matAmbient{}, matEmissive{};
};

// One compiled variant, its uniform locations, and the last value given to each uniform.
struct Program {
  GLuint id = 0;
  GLint uWorldView = -1, uProj = -1, uLightDir = -1, uLightDiffuse = -1, uLightAmbient = -1,
        uGlobalAmbient = -1, uMatDiffuse = -1, uMatAmbient = -1, uMatEmissive = -1;
  bool uploaded = false;  // `last` holds what the uniforms hold
  UniformValues last;
};

// Links a program from its two stages; throws D3DError when they do not compile or link.
GLuint linkProgram(const std::string& vertexSource, const std::string& fragmentSource);

// The variants of one context, compiled on first use.
class ProgramSet {
 public:
  ProgramSet() = default;
  ProgramSet(const ProgramSet&) = delete;
  ProgramSet& operator=(const ProgramSet&) = delete;

  // The variant for a key; compiling it leaves it in use, which `compiled` learns.
  Program& get(const ProgramKey& key, bool& compiled);
  // Deletes every program; only while the context is current.
  void release();
  size_t size() const { return programs_.size(); }

 private:
  std::map<uint32_t, Program> programs_;
};

// Uploads the values of `wanted` that differ from what the program's uniforms hold; the light and
// material only when `lit`. Gives the number of uniforms uploaded.
uint32_t uploadUniforms(Program& program, const UniformValues& wanted, bool lit, bool lightOn);

}  // namespace ostrel::graphics::gl
