#include "graphics/gl/Programs.h"

#include <algorithm>

#include "graphics/gl/GlContext.h"

namespace ostrel::graphics::gl {

namespace {

const char* kVertexShader = R"(
layout(location = 0) in vec3 aPos;
layout(location = 1) in vec3 aNormal;
layout(location = 2) in vec4 aColor;
layout(location = 3) in vec2 aUV;
uniform mat4 uWorldView;
uniform mat4 uProj;
uniform vec3 uLightDir;  // towards the light, view space
uniform vec3 uLightDiffuse;
uniform vec3 uLightAmbient;
uniform vec3 uGlobalAmbient;
uniform vec4 uMatDiffuse;
uniform vec3 uMatAmbient;
uniform vec3 uMatEmissive;
out vec4 vColor;
out vec2 vUV;
void main() {
  vec4 c = uProj * (uWorldView * vec4(aPos, 1.0));
  gl_Position = vec4(c.x, c.y, 2.0 * c.z - c.w, c.w);
#if LIGHTING
#if COLOURS
  vec4 cd = VERTEX_COLOUR;
#else
  vec4 cd = uMatDiffuse;
#endif
  vec3 rgb = uMatEmissive + uMatAmbient * uGlobalAmbient;
#if LIGHT0 && NORMALS
  vec3 n = mat3(uWorldView) * aNormal;
  rgb += uMatAmbient * uLightAmbient + cd.rgb * uLightDiffuse * max(dot(n, uLightDir), 0.0);
#elif LIGHT0
  rgb += uMatAmbient * uLightAmbient;
#endif
  vColor = clamp(vec4(rgb, cd.a), 0.0, 1.0);
#elif COLOURS
  vColor = VERTEX_COLOUR;
#else
  vColor = vec4(1.0);
#endif
#if COORDS
  vUV = aUV;
#else
  vUV = vec2(0.0);
#endif
}
)";

// COLOR and ALPHA are defined to the stage's expressions over t (the texel) and vColor.
//
// Anisotropic filtering without mipmaps: the pixel's footprint in the texture is the pair of
// texel-space derivatives; up to ANISOTROPY bilinear taps of level 0, as many as the footprint is
// longer than wide (and no more than it is texels long), are spread evenly along its longer axis
// and averaged. A footprint within one texel is magnified and takes one tap.
const char* kFragmentShader = R"(
in vec4 vColor;
in vec2 vUV;
uniform sampler2D uTex;
out vec4 fragColor;
#if ANISOTROPY
vec4 anisotropic(vec2 uv) {
  vec2 size = vec2(textureSize(uTex, 0));
  vec2 ax = dFdx(uv), ay = dFdy(uv);
  float lx = length(ax * size), ly = length(ay * size);
  float major = max(lx, ly), minor = max(min(lx, ly), 1e-6);
  float n = min(min(float(ANISOTROPY), ceil(major / minor - 0.01)), ceil(major - 0.01));
  if (n <= 1.0) return textureLod(uTex, uv, 0.0);
  vec2 step = (lx >= ly ? ax : ay) / n;
  vec2 at = uv - step * (0.5 * n - 0.5);
  vec4 sum = vec4(0.0);
  for (int i = 0; i < ANISOTROPY; ++i) {
    if (float(i) >= n) break;
    sum += textureLod(uTex, at + step * float(i), 0.0);
  }
  return sum / n;
}
#endif
void main() {
#if TEXTURE && ANISOTROPY
  vec4 t = anisotropic(vUV);
  fragColor = clamp(vec4(COLOR, ALPHA), 0.0, 1.0);
#elif TEXTURE
  vec4 t = texture(uTex, vUV);
  fragColor = clamp(vec4(COLOR, ALPHA), 0.0, 1.0);
#else
  fragColor = vColor;
#endif
}
)";

const char* header(GlslDialect dialect) {
  // GLSL ES has no BGRA vertex fetch: the shader swaps a D3DCOLOR's bytes itself.
  return dialect == GlslDialect::Es300 ? "#version 300 es\nprecision highp float;\nprecision highp "
                                         "int;\n#define VERTEX_COLOUR aColor.bgra\n"
                                       : "#version 330 core\n#define VERTEX_COLOUR aColor\n";
}

// The GLSL of one stage operation on its two arguments; anything else passes the diffuse colour.
std::string stageExpression(uint32_t op, bool arg1Texture, bool arg2Texture, const char* part) {
  const std::string a1 = std::string(arg1Texture ? "t" : "vColor") + part;
  const std::string a2 = std::string(arg2Texture ? "t" : "vColor") + part;
  switch (op) {
    case D3DTOP_SELECTARG1:
      return a1;
    case D3DTOP_SELECTARG2:
      return a2;
    case D3DTOP_MODULATE:
      return "(" + a1 + " * " + a2 + ")";
    case 5:
      return "(" + a1 + " * " + a2 + " * 2.0)";  // MODULATE2X
    case 6:
      return "(" + a1 + " * " + a2 + " * 4.0)";  // MODULATE4X
    case 7:
      return "(" + a1 + " + " + a2 + ")";  // ADD
    default:
      return std::string("vColor") + part;
  }
}

GLuint compileShader(GLenum type, const std::string& source) {
  GLuint shader = glCreateShader(type);
  const char* text = source.c_str();
  glShaderSource(shader, 1, &text, nullptr);
  glCompileShader(shader);
  GLint ok = 0;
  glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
  if (!ok) {
    char log[1024] = {};
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    glDeleteShader(shader);
    raise(D3DERR_NOTAVAILABLE, std::string("shader does not compile: ") + log);
  }
  return shader;
}

template <size_t N>
bool upload(GLint location, std::array<float, N>& held, const std::array<float, N>& value,
            bool force) {
  if (!force && held == value) return false;
  held = value;
  if constexpr (N == 3) glUniform3fv(location, 1, value.data());
  if constexpr (N == 4) glUniform4fv(location, 1, value.data());
  if constexpr (N == 16) glUniformMatrix4fv(location, 1, GL_FALSE, value.data());
  return true;
}

}  // namespace

uint32_t ProgramKey::packed() const {
  auto bit = [](bool b, int at) { return static_cast<uint32_t>(b) << at; };
  return bit(normals, 0) | bit(colours, 1) | bit(coords, 2) | bit(lighting, 3) | bit(light0, 4) |
         bit(texture, 5) | bit(colorArg1Texture, 6) | bit(colorArg2Texture, 7) |
         bit(alphaArg1Texture, 8) | bit(alphaArg2Texture, 9) |
         (std::min<uint32_t>(colorOp, 31) << 10) | (std::min<uint32_t>(alphaOp, 31) << 15) |
         (std::min<uint32_t>(anisotropy, 31) << 20);
}

std::string shaderSource(GlslDialect dialect, GLenum stage, const ProgramKey& key) {
  std::string s = header(dialect);
  auto define = [&](const char* name, const std::string& value) {
    s += std::string("#define ") + name + " " + value + "\n";
  };
  define("NORMALS", key.normals ? "1" : "0");
  define("COLOURS", key.colours ? "1" : "0");
  define("COORDS", key.coords ? "1" : "0");
  define("LIGHTING", key.lighting ? "1" : "0");
  define("LIGHT0", key.light0 ? "1" : "0");
  define("TEXTURE", key.texture ? "1" : "0");
  define("ANISOTROPY", std::to_string(key.anisotropy));
  define("COLOR", stageExpression(key.colorOp, key.colorArg1Texture, key.colorArg2Texture, ".rgb"));
  define("ALPHA", stageExpression(key.alphaOp, key.alphaArg1Texture, key.alphaArg2Texture, ".a"));
  return s + (stage == GL_VERTEX_SHADER ? kVertexShader : kFragmentShader);
}

GLuint linkProgram(const std::string& vertexSource, const std::string& fragmentSource) {
  GLuint vs = compileShader(GL_VERTEX_SHADER, vertexSource);
  GLuint fs = 0;
  try {
    fs = compileShader(GL_FRAGMENT_SHADER, fragmentSource);
  } catch (...) {
    glDeleteShader(vs);
    throw;
  }
  GLuint p = glCreateProgram();
  glAttachShader(p, vs);
  glAttachShader(p, fs);
  glLinkProgram(p);
  glDeleteShader(vs);
  glDeleteShader(fs);
  GLint ok = 0;
  glGetProgramiv(p, GL_LINK_STATUS, &ok);
  if (!ok) {
    glDeleteProgram(p);
    raise(D3DERR_NOTAVAILABLE, "shader program does not link");
  }
  return p;
}

Program& ProgramSet::get(const ProgramKey& key, bool& compiled) {
  auto [it, fresh] = programs_.try_emplace(key.packed());
  compiled = fresh;
  if (!fresh) return it->second;
  Program& p = it->second;
  try {
    p.id = linkProgram(shaderSource(kBuildDialect, GL_VERTEX_SHADER, key),
                       shaderSource(kBuildDialect, GL_FRAGMENT_SHADER, key));
  } catch (...) {
    programs_.erase(it);
    throw;
  }
  auto loc = [&](const char* name) { return glGetUniformLocation(p.id, name); };
  p.uWorldView = loc("uWorldView");
  p.uProj = loc("uProj");
  p.uLightDir = loc("uLightDir");
  p.uLightDiffuse = loc("uLightDiffuse");
  p.uLightAmbient = loc("uLightAmbient");
  p.uGlobalAmbient = loc("uGlobalAmbient");
  p.uMatDiffuse = loc("uMatDiffuse");
  p.uMatAmbient = loc("uMatAmbient");
  p.uMatEmissive = loc("uMatEmissive");
  glUseProgram(p.id);
  glUniform1i(loc("uTex"), 0);
  return p;
}

void ProgramSet::release() {
  for (auto& [key, p] : programs_) glDeleteProgram(p.id);
  programs_.clear();
}

uint32_t uploadUniforms(Program& p, const UniformValues& v, bool lit, bool lightOn) {
  const bool force = !p.uploaded;
  UniformValues& h = p.last;
  uint32_t n = upload(p.uWorldView, h.worldView, v.worldView, force) +
               upload(p.uProj, h.projection, v.projection, force);
  if (lit) {
    n += upload(p.uGlobalAmbient, h.globalAmbient, v.globalAmbient, force) +
         upload(p.uMatDiffuse, h.matDiffuse, v.matDiffuse, force) +
         upload(p.uMatAmbient, h.matAmbient, v.matAmbient, force) +
         upload(p.uMatEmissive, h.matEmissive, v.matEmissive, force);
    if (lightOn) {
      n += upload(p.uLightDir, h.lightDir, v.lightDir, force) +
           upload(p.uLightDiffuse, h.lightDiffuse, v.lightDiffuse, force) +
           upload(p.uLightAmbient, h.lightAmbient, v.lightAmbient, force);
    }
  }
  p.uploaded = true;
  return n;
}

}  // namespace ostrel::graphics::gl
