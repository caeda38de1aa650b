// The device layer on OpenGL 3.3 core. The device keeps Direct3D's fixed-function state as plain
// data and turns it, at each draw, into the uniforms of one shader program (compiled in a variant
// per combination of states in use) and the GL blend,
// depth, cull and sampler state. Matrices stay row-vector and left-handed; the vertex shader maps
// Direct3D's clip depth 0..1 to GL's -1..1. GL state that was set is remembered, so a draw issues
// only the calls that change something.

#include <epoxy/gl.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "graphics/d3d8.h"
#include "graphics/gl/GlReadback.h"
#include "ostrel/Platform.h"
#include "ostrel/testing/DeviceProbes.h"

namespace ostrel::graphics {

namespace {

[[noreturn]] void raise(int32_t number, const std::string& text) {
  throw D3DError(number, text);
}

constexpr uint32_t kDisplayRefreshRate = 60;

// A platform that simulates an adapter answers the probes itself; every other one has an able
// adapter whose device is never lost.
AdapterProfile adapterOf(Platform& platform) {
  const auto* probes = dynamic_cast<const DeviceProbes*>(&platform);
  return probes ? probes->adapterProfile() : AdapterProfile{};
}
int32_t cooperativeLevelOf(Platform& platform) {
  const auto* probes = dynamic_cast<const DeviceProbes*>(&platform);
  return probes ? probes->cooperativeLevel() : 0;
}
void deviceWasResetOn(Platform& platform) {
  if (auto* probes = dynamic_cast<DeviceProbes*>(&platform)) probes->deviceWasReset();
}

// ---------------------------------------------------------------------------------------------
// The program: per-vertex lighting with one directional light, stage 0 colour and alpha
// operations in the fragment shader. One source, specialised by the preprocessor for the state
// of each draw, so that the software rasteriser runs no code for states that are off.

// What a program variant is made for.
struct ProgramKey {
  bool normals = false, colours = false, coords = false;  // what the vertices carry
  bool lighting = false, light0 = false;                  // D3DRS_LIGHTING, light 0 enabled
  bool texture = false;                                   // a texture on stage 0
  uint32_t colorOp = 0, alphaOp = 0;                      // stage 0 operations
  bool colorArg1Texture = false, colorArg2Texture = false;
  bool alphaArg1Texture = false, alphaArg2Texture = false;
  uint32_t anisotropy = 0;  // taps of anisotropic filtering, 2 to 16; 0 for plain filtering

  uint32_t packed() const {
    auto bit = [](bool b, int at) { return static_cast<uint32_t>(b) << at; };
    return bit(normals, 0) | bit(colours, 1) | bit(coords, 2) | bit(lighting, 3) | bit(light0, 4) |
           bit(texture, 5) | bit(colorArg1Texture, 6) | bit(colorArg2Texture, 7) |
           bit(alphaArg1Texture, 8) | bit(alphaArg2Texture, 9) |
           (std::min<uint32_t>(colorOp, 31) << 10) | (std::min<uint32_t>(alphaOp, 31) << 15) |
           (std::min<uint32_t>(anisotropy, 31) << 20);
  }
};

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
  vec4 cd = aColor;
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
  vColor = aColor;
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

void clearErrors() {
  for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) {
  }
}

GLuint compileShader(GLenum type, const char* source) {
  GLuint shader = glCreateShader(type);
  glShaderSource(shader, 1, &source, nullptr);
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

constexpr GLuint kNone = ~0u;
constexpr uint32_t kMaxAnisotropy = 16;  // the most taps the anisotropic filter takes

// What was last set on the GL context, so that a draw skips calls that change nothing. Invalid
// after anything outside the device layer may have used the context. Values that a draw does not
// always set are compared without the flag; forget() puts impossible values into them.
struct GlCache {
  void forget() {
    vertexArray = texture = kNone;
    blendSrc = blendDst = kNone;
    minFilter = magFilter = wrapS = wrapT = -1;
  }
  bool valid = false;
  GLuint drawFramebuffer = 0, program = 0, vertexArray = kNone, texture = kNone;
  std::array<GLint, 4> viewport{};
  std::array<float, 2> depthRange{};
  bool depthTest = false, depthMask = false, cull = false, blend = false, alphaMask = false;
  GLenum depthFunc = 0, cullFace = 0, blendSrc = 0, blendDst = 0, polygonMode = 0;
  GLint minFilter = 0, magFilter = 0, wrapS = 0, wrapT = 0;
};

// One compiled variant, its uniform locations, and the last value given to each uniform.
struct Program {
  GLuint id = 0;
  GLint uWorldView = -1, uProj = -1, uLightDir = -1, uLightDiffuse = -1, uLightAmbient = -1,
        uGlobalAmbient = -1, uMatDiffuse = -1, uMatAmbient = -1, uMatEmissive = -1;
  bool valid = false;
  std::array<float, 16> worldView{}, projection{};
  std::array<float, 3> lightDir{}, lightDiffuse{}, lightAmbient{}, globalAmbient{};
  std::array<float, 4> matDiffuse{};
  std::array<float, 3> matAmbient{}, matEmissive{};
};

GLuint linkProgram(const ProgramKey& key) {
  std::string defines = "#version 330 core\n";
  auto define = [&](const char* name, const std::string& value) {
    defines += std::string("#define ") + name + " " + value + "\n";
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
  const std::string vsSource = defines + kVertexShader;
  const std::string fsSource = defines + kFragmentShader;
  GLuint vs = compileShader(GL_VERTEX_SHADER, vsSource.c_str());
  GLuint fs = 0;
  try {
    fs = compileShader(GL_FRAGMENT_SHADER, fsSource.c_str());
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

}  // namespace

// One per platform (and so per GL context): the program, the sampler and the cache of GL state.
// Devices, meshes and textures made in that context hold it; GL objects are deleted only while
// the platform's context lives.
struct GlShared {
  explicit GlShared(Platform& p) : platform(&p) {}
  ~GlShared() {
    if (makeCurrent()) {
      for (auto& [key, p] : programs) glDeleteProgram(p.id);
      if (sampler) glDeleteSamplers(1, &sampler);
    }
  }
  GlShared(const GlShared&) = delete;
  GlShared& operator=(const GlShared&) = delete;

  bool makeCurrent() { return alive && platform->surface().makeContextCurrent(); }
  void requireCurrent() {
    if (!makeCurrent()) raise(D3DERR_DEVICELOST, "the window's OpenGL context is gone");
  }

  // Once per context: the sampler of stage 0 and what the renderer offers.
  void prepare() {
    if (prepared) return;
    prepared = true;
    cache.valid = false;
    glGenSamplers(1, &sampler);
    glBindSampler(0, sampler);
    glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
  }

  // The variant for a key, compiled on first use.
  Program& program(const ProgramKey& key) {
    auto [it, fresh] = programs.try_emplace(key.packed());
    if (fresh) {
      Program& p = it->second;
      try {
        p.id = linkProgram(key);
      } catch (...) {
        programs.erase(it);
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
      cache.program = p.id;
    }
    return it->second;
  }

  Platform* platform;
  bool alive = true;
  bool prepared = false;
  GLuint sampler = 0;
  std::map<uint32_t, Program> programs;
  GLint maxSamples = 0;
  GlCache cache;
  const void* lastDevice = nullptr;  // whose state the programs' uniforms hold
};

namespace {

// Contexts known on this thread, one entry per platform.
std::vector<std::weak_ptr<GlShared>>& registry() {
  thread_local std::vector<std::weak_ptr<GlShared>> entries;
  return entries;
}

std::shared_ptr<GlShared> sharedFor(Platform& platform) {
  auto& entries = registry();
  std::erase_if(entries, [](const std::weak_ptr<GlShared>& w) { return w.expired(); });
  for (auto& w : entries) {
    auto s = w.lock();
    if (s && s->platform == &platform && s->alive) return s;
  }
  auto s = std::make_shared<GlShared>(platform);
  entries.push_back(s);
  return s;
}

// ---------------------------------------------------------------------------------------------
// Small GL state setters that consult the cache.

void setCap(GlCache& c, GLenum cap, bool& cached, bool value) {
  if (c.valid && cached == value) return;
  cached = value;
  if (value) {
    glEnable(cap);
  } else {
    glDisable(cap);
  }
}

void bindDrawFramebuffer(GlCache& c, GLuint fbo) {
  if (c.valid && c.drawFramebuffer == fbo) return;
  c.drawFramebuffer = fbo;
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, fbo);
}

void setDepthMask(GlCache& c, bool value) {
  if (c.valid && c.depthMask == value) return;
  c.depthMask = value;
  glDepthMask(value ? GL_TRUE : GL_FALSE);
}

void setAlphaMask(GlCache& c, bool value) {
  if (c.valid && c.alphaMask == value) return;
  c.alphaMask = value;
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, value ? GL_TRUE : GL_FALSE);
}

GLenum blendFactor(uint32_t d3d) {
  switch (d3d) {
    case D3DBLEND_ZERO:
      return GL_ZERO;
    case D3DBLEND_ONE:
      return GL_ONE;
    case D3DBLEND_SRCCOLOR:
      return GL_SRC_COLOR;
    case D3DBLEND_INVSRCCOLOR:
      return GL_ONE_MINUS_SRC_COLOR;
    case D3DBLEND_SRCALPHA:
      return GL_SRC_ALPHA;
    case D3DBLEND_INVSRCALPHA:
      return GL_ONE_MINUS_SRC_ALPHA;
    case D3DBLEND_DESTALPHA:
      return GL_DST_ALPHA;
    case D3DBLEND_INVDESTALPHA:
      return GL_ONE_MINUS_DST_ALPHA;
    case D3DBLEND_DESTCOLOR:
      return GL_DST_COLOR;
    case D3DBLEND_INVDESTCOLOR:
      return GL_ONE_MINUS_DST_COLOR;
    case D3DBLEND_SRCALPHASAT:
      return GL_SRC_ALPHA_SATURATE;
    default:
      return GL_ONE;
  }
}

GLenum compareFunc(uint32_t d3d) {
  switch (d3d) {
    case D3DCMP_NEVER:
      return GL_NEVER;
    case D3DCMP_LESS:
      return GL_LESS;
    case D3DCMP_EQUAL:
      return GL_EQUAL;
    case D3DCMP_LESSEQUAL:
      return GL_LEQUAL;
    case D3DCMP_GREATER:
      return GL_GREATER;
    case D3DCMP_NOTEQUAL:
      return GL_NOTEQUAL;
    case D3DCMP_GREATEREQUAL:
      return GL_GEQUAL;
    default:
      return GL_ALWAYS;
  }
}

GLint textureFilter(uint32_t d3d) {
  return d3d == D3DTEXF_POINT ? GL_NEAREST : GL_LINEAR;
}

GLint textureAddress(uint32_t d3d) {
  switch (d3d) {
    case D3DTADDRESS_MIRROR:
      return GL_MIRRORED_REPEAT;
    case D3DTADDRESS_CLAMP:
      return GL_CLAMP_TO_EDGE;
    default:
      return GL_REPEAT;
  }
}

std::array<float, 16> flat(const D3DMATRIX& m) {
  std::array<float, 16> r;
  std::memcpy(r.data(), &m.m[0][0], sizeof r);
  return r;
}

template <size_t N>
void setVec(GLint location, std::array<float, N>& cached, const std::array<float, N>& value,
            bool force) {
  if (!force && cached == value) return;
  cached = value;
  if constexpr (N == 3) glUniform3fv(location, 1, value.data());
  if constexpr (N == 4) glUniform4fv(location, 1, value.data());
  if constexpr (N == 16) glUniformMatrix4fv(location, 1, GL_FALSE, value.data());
}

std::array<float, 3> rgb(const D3DCOLORVALUE& c) {
  return {c.r, c.g, c.b};
}

// ---------------------------------------------------------------------------------------------
// Textures.

class GlTexture final : public Texture {
 public:
  GlTexture(std::shared_ptr<GlShared> gl, uint32_t w, uint32_t h, const uint8_t* rgba)
      : gl_(std::move(gl)), width_(w), height_(h) {
    clearErrors();
    glGenTextures(1, &name_);
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, name_);
    gl_->cache.texture = name_;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 0);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(w), static_cast<GLsizei>(h), 0,
                 GL_RGBA, GL_UNSIGNED_BYTE, rgba);
    if (glGetError() != GL_NO_ERROR) {
      glDeleteTextures(1, &name_);
      gl_->cache.texture = kNone;
      raise(D3DERR_OUTOFVIDEOMEMORY, "the texture does not fit");
    }
  }
  ~GlTexture() override {
    if (gl_->makeCurrent()) {
      if (gl_->cache.texture == name_) gl_->cache.texture = kNone;
      glDeleteTextures(1, &name_);
    }
  }
  uint32_t width() const override { return width_; }
  uint32_t height() const override { return height_; }
  GLuint name() const { return name_; }
  const GlShared* shared() const { return gl_.get(); }

 private:
  std::shared_ptr<GlShared> gl_;
  GLuint name_ = 0;
  uint32_t width_, height_;
};

// ---------------------------------------------------------------------------------------------
// Meshes.

// The vertices in memory; a write marks them for upload before the next draw.
struct VertexStore {
  std::vector<uint8_t> bytes;
  bool dirty = false;
};

class GlVertexBuffer final : public VertexBuffer {
 public:
  explicit GlVertexBuffer(std::shared_ptr<VertexStore> store) : store_(std::move(store)) {}
  void GetData(uint32_t offset, uint32_t size, uint32_t, void* data) override {
    check(offset, size);
    if (size) std::memcpy(data, store_->bytes.data() + offset, size);
  }
  void SetData(uint32_t offset, uint32_t size, uint32_t, const void* data) override {
    check(offset, size);
    if (!size) return;
    std::memcpy(store_->bytes.data() + offset, data, size);
    store_->dirty = true;
  }
  uint32_t GetSize() const override { return static_cast<uint32_t>(store_->bytes.size()); }

 private:
  void check(uint32_t offset, uint32_t size) const {
    if (static_cast<uint64_t>(offset) + size > store_->bytes.size()) {
      raise(D3DERR_INVALIDCALL, "outside the vertex buffer");
    }
  }
  std::shared_ptr<VertexStore> store_;
};

class GlDevice;

class GlMesh final : public Mesh {
 public:
  GlMesh(std::shared_ptr<GlDevice> device, std::shared_ptr<GlShared> gl, MeshData data);
  ~GlMesh() override {
    if (gl_->makeCurrent()) {
      if (gl_->cache.vertexArray == vao_) gl_->cache.vertexArray = kNone;
      glDeleteVertexArrays(1, &vao_);
      glDeleteBuffers(1, &vbo_);
      glDeleteBuffers(1, &ibo_);
    }
  }
  void DrawSubset(uint32_t subset) override;
  uint32_t GetFVF() const override { return fvf_; }
  uint32_t GetNumVertices() const override { return vertexCount_; }
  uint32_t GetNumFaces() const override { return faceCount_; }
  uint32_t GetNumSubsets() const override { return static_cast<uint32_t>(subsets_.size()); }
  std::shared_ptr<VertexBuffer> GetVertexBuffer() override {
    return std::make_shared<GlVertexBuffer>(store_);
  }

  // Binds the vertex array, uploading vertices changed since the last draw.
  void bind() {
    GlCache& c = gl_->cache;
    if (c.vertexArray != vao_) {
      c.vertexArray = vao_;
      glBindVertexArray(vao_);
    }
    if (store_->dirty) {
      glBindBuffer(GL_ARRAY_BUFFER, vbo_);
      glBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(store_->bytes.size()),
                      store_->bytes.data());
      store_->dirty = false;
    }
  }
  int vertexFlags() const { return vertexFlags_; }

 private:
  std::shared_ptr<GlDevice> device_;
  std::shared_ptr<GlShared> gl_;
  std::shared_ptr<VertexStore> store_;
  uint32_t fvf_, vertexCount_, faceCount_;
  std::vector<MeshData::Range> subsets_;
  GLuint vao_ = 0, vbo_ = 0, ibo_ = 0;
  int vertexFlags_ = 0;  // 1 normals, 2 vertex colours, 4 texture coordinates
};

// ---------------------------------------------------------------------------------------------
// The device.

// Direct3D's fixed-function state, as plain data.
struct FixedFunctionState {
  std::array<uint32_t, 256> renderState{};
  std::array<std::array<uint32_t, 32>, 8> stageState{};
  D3DMATRIX world = identityMatrix(), view = identityMatrix(), projection = identityMatrix();
  std::map<uint32_t, D3DMATRIX> otherTransforms;
  D3DVIEWPORT8 viewport;
  D3DMATERIAL8 material;
  std::map<uint32_t, D3DLIGHT8> lights;
  std::map<uint32_t, bool> lightEnabled;
  std::array<std::shared_ptr<Texture>, 8> textures;
  uint32_t vertexShader = 0;
};

// What a new device has, and what Reset restores.
FixedFunctionState defaultState(const D3DPRESENT_PARAMETERS& p, uint32_t width, uint32_t height) {
  FixedFunctionState s;
  auto& rs = s.renderState;
  rs[D3DRS_ZENABLE] = p.EnableAutoDepthStencil ? D3DZB_TRUE : D3DZB_FALSE;
  rs[D3DRS_FILLMODE] = 3;  // solid
  rs[D3DRS_SHADEMODE] = D3DSHADE_GOURAUD;
  rs[D3DRS_ZWRITEENABLE] = 1;
  rs[D3DRS_SRCBLEND] = D3DBLEND_ONE;
  rs[D3DRS_DESTBLEND] = D3DBLEND_ZERO;
  rs[D3DRS_CULLMODE] = D3DCULL_CCW;
  rs[D3DRS_ZFUNC] = D3DCMP_LESSEQUAL;
  rs[D3DRS_LIGHTING] = 1;
  for (uint32_t stage = 0; stage < 8; ++stage) {
    auto& ts = s.stageState[stage];
    ts[D3DTSS_COLOROP] = stage == 0 ? D3DTOP_MODULATE : D3DTOP_DISABLE;
    ts[D3DTSS_COLORARG1] = D3DTA_TEXTURE;
    ts[D3DTSS_COLORARG2] = D3DTA_CURRENT;
    ts[D3DTSS_ALPHAOP] = stage == 0 ? D3DTOP_SELECTARG1 : D3DTOP_DISABLE;
    ts[D3DTSS_ALPHAARG1] = D3DTA_TEXTURE;
    ts[D3DTSS_ALPHAARG2] = D3DTA_CURRENT;
    ts[D3DTSS_ADDRESSU] = D3DTADDRESS_WRAP;
    ts[D3DTSS_ADDRESSV] = D3DTADDRESS_WRAP;
    ts[D3DTSS_MAGFILTER] = D3DTEXF_POINT;
    ts[D3DTSS_MINFILTER] = D3DTEXF_POINT;
    ts[D3DTSS_MIPFILTER] = D3DTEXF_NONE;
    ts[D3DTSS_MAXANISOTROPY] = 1;
  }
  s.viewport = D3DVIEWPORT8{0, 0, width, height, 0.0f, 1.0f};
  return s;
}

bool formatHasAlpha(int32_t format) {
  return format == D3DFMT_A8R8G8B8;
}

class GlDevice final : public Direct3DDevice8, public std::enable_shared_from_this<GlDevice> {
 public:
  GlDevice(std::shared_ptr<GlShared> gl, Platform& window, const D3DPRESENT_PARAMETERS& p)
      : gl_(std::move(gl)), window_(window), parameters_(p) {
    buildBackBuffer();
    state_ = defaultState(parameters_, width_, height_);
  }
  ~GlDevice() override {
    if (gl_->makeCurrent()) dropBackBuffer();
  }

  int32_t TestCooperativeLevel() override { return cooperativeLevelOf(window_); }

  void Reset(D3DPRESENT_PARAMETERS& p) override {
    if (cooperativeLevelOf(window_) == D3DERR_DEVICELOST) {
      raise(D3DERR_DEVICELOST, "the device is lost and cannot be reset yet");
    }
    if (inScene_) raise(D3DERR_INVALIDCALL, "Reset inside a scene");
    gl_->requireCurrent();
    parameters_ = p;
    dropBackBuffer();
    buildBackBuffer();
    state_ = defaultState(parameters_, width_, height_);
    gl_->cache.valid = false;
    deviceWasResetOn(window_);
  }

  void Clear(uint32_t count, const D3DRECT* rects, uint32_t flags, uint32_t color, float z,
             uint32_t) override {
    gl_->requireCurrent();
    GlCache& c = gl_->cache;
    bindDrawFramebuffer(c, framebuffer_);
    GLbitfield mask = 0;
    if (flags & D3DCLEAR_TARGET) {
      setAlphaMask(c, true);
      float alpha =
          formatHasAlpha(parameters_.BackBufferFormat) ? ((color >> 24) & 0xFF) / 255.0f : 1.0f;
      glClearColor(((color >> 16) & 0xFF) / 255.0f, ((color >> 8) & 0xFF) / 255.0f,
                   (color & 0xFF) / 255.0f, alpha);
      mask |= GL_COLOR_BUFFER_BIT;
    }
    if ((flags & D3DCLEAR_ZBUFFER) && depth_) {
      setDepthMask(c, true);
      glClearDepth(std::clamp(z, 0.0f, 1.0f));
      mask |= GL_DEPTH_BUFFER_BIT;
    }
    if (!mask) return;
    // A clear covers the viewport, or the given rectangles within it.
    const D3DVIEWPORT8& v = state_.viewport;
    glEnable(GL_SCISSOR_TEST);
    auto clearArea = [&](int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
      x1 = std::max<int32_t>(x1, static_cast<int32_t>(v.X));
      y1 = std::max<int32_t>(y1, static_cast<int32_t>(v.Y));
      x2 = std::min<int32_t>(x2, static_cast<int32_t>(v.X + v.Width));
      y2 = std::min<int32_t>(y2, static_cast<int32_t>(v.Y + v.Height));
      if (x2 <= x1 || y2 <= y1) return;
      glScissor(x1, static_cast<GLint>(height_) - y2, x2 - x1, y2 - y1);
      glClear(mask);
    };
    if (count == 0 || rects == nullptr) {
      clearArea(0, 0, static_cast<int32_t>(width_), static_cast<int32_t>(height_));
    } else {
      for (uint32_t i = 0; i < count; ++i)
        clearArea(rects[i].x1, rects[i].y1, rects[i].x2, rects[i].y2);
    }
    glDisable(GL_SCISSOR_TEST);
  }

  void BeginScene() override {
    if (inScene_) raise(D3DERR_INVALIDCALL, "BeginScene inside a scene");
    inScene_ = true;
  }
  void EndScene() override {
    if (!inScene_) raise(D3DERR_INVALIDCALL, "EndScene outside a scene");
    inScene_ = false;
  }

  void Present(const D3DRECT*, const D3DRECT*, uintptr_t, const void*) override {
    int32_t level = cooperativeLevelOf(window_);
    if (level == D3DERR_DEVICELOST || level == D3DERR_DEVICENOTRESET) {
      raise(D3DERR_DEVICELOST, "the device is lost");
    }
    gl_->requireCurrent();
    GLuint shown = framebuffer_;
    if (resolveFramebuffer_) {
      glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
      glBindFramebuffer(GL_DRAW_FRAMEBUFFER, resolveFramebuffer_);
      GLint w = static_cast<GLint>(width_), h = static_cast<GLint>(height_);
      glBlitFramebuffer(0, 0, w, h, 0, 0, w, h, GL_COLOR_BUFFER_BIT, GL_NEAREST);
      shown = resolveFramebuffer_;
    }
    gl_->cache.valid = false;  // the window may use the context in its own way
    window_.surface().presentFramebuffer(shown, static_cast<int32_t>(width_),
                                         static_cast<int32_t>(height_));
    gl_->makeCurrent();
    gl_->cache.valid = false;
  }

  void SetRenderState(uint32_t state, uint32_t value) override {
    if (state >= state_.renderState.size()) raise(D3DERR_INVALIDCALL, "no such render state");
    state_.renderState[state] = value;
  }
  uint32_t GetRenderState(uint32_t state) const override {
    if (state >= state_.renderState.size()) raise(D3DERR_INVALIDCALL, "no such render state");
    return state_.renderState[state];
  }
  void SetTextureStageState(uint32_t stage, uint32_t type, uint32_t value) override {
    checkStage(stage, type);
    state_.stageState[stage][type] = value;
  }
  uint32_t GetTextureStageState(uint32_t stage, uint32_t type) const override {
    checkStage(stage, type);
    return state_.stageState[stage][type];
  }
  void SetVertexShader(uint32_t fvf) override { state_.vertexShader = fvf; }
  uint32_t GetVertexShader() const override { return state_.vertexShader; }

  void SetTransform(uint32_t state, const D3DMATRIX& matrix) override { transform(state) = matrix; }
  void GetTransform(uint32_t state, D3DMATRIX& matrix) const override {
    matrix = const_cast<GlDevice*>(this)->transform(state);
  }
  void SetViewport(const D3DVIEWPORT8& v) override {
    if (static_cast<uint64_t>(v.X) + v.Width > width_ ||
        static_cast<uint64_t>(v.Y) + v.Height > height_ || v.MinZ < 0 || v.MaxZ > 1 ||
        v.MinZ > v.MaxZ) {
      raise(D3DERR_INVALIDCALL, "viewport outside the back buffer");
    }
    state_.viewport = v;
  }
  void GetViewport(D3DVIEWPORT8& v) const override { v = state_.viewport; }

  void SetMaterial(const D3DMATERIAL8& m) override { state_.material = m; }
  void GetMaterial(D3DMATERIAL8& m) const override { m = state_.material; }
  void SetLight(uint32_t index, const D3DLIGHT8& light) override {
    if (light.Type < D3DLIGHT_POINT || light.Type > D3DLIGHT_DIRECTIONAL) {
      raise(D3DERR_INVALIDCALL, "no such light type");
    }
    state_.lights[index] = light;
  }
  void GetLight(uint32_t index, D3DLIGHT8& light) const override {
    auto it = state_.lights.find(index);
    if (it == state_.lights.end()) raise(D3DERR_INVALIDCALL, "no light at that index");
    light = it->second;
  }
  void LightEnable(uint32_t index, int32_t enable) override {
    // Enabling a light never set gives it the default light: white, directional, along +z.
    if (enable && !state_.lights.count(index)) {
      D3DLIGHT8 l;
      l.Type = D3DLIGHT_DIRECTIONAL;
      l.Diffuse = {1, 1, 1, 0};
      l.Direction = {0, 0, 1};
      state_.lights[index] = l;
    }
    state_.lightEnabled[index] = enable != 0;
  }
  int32_t GetLightEnable(uint32_t index) const override {
    auto it = state_.lightEnabled.find(index);
    if (it == state_.lightEnabled.end()) {
      if (!state_.lights.count(index)) raise(D3DERR_INVALIDCALL, "no light at that index");
      return 0;
    }
    return it->second ? 1 : 0;
  }
  void SetTexture(uint32_t stage, std::shared_ptr<Texture> texture) override {
    if (stage >= state_.textures.size()) raise(D3DERR_INVALIDCALL, "no such texture stage");
    state_.textures[stage] = std::move(texture);
  }
  std::shared_ptr<Texture> GetTexture(uint32_t stage) const override {
    if (stage >= state_.textures.size()) raise(D3DERR_INVALIDCALL, "no such texture stage");
    return state_.textures[stage];
  }

  void GetDeviceCaps(D3DCAPS8& caps) const override {
    caps = D3DCAPS8{};
    caps.DeviceType = D3DDEVTYPE_HAL;
    caps.MaxTextureWidth = caps.MaxTextureHeight = kMaxTextureSide;
    caps.MaxAnisotropy = static_cast<uint32_t>(std::max(0, adapterOf(window_).maxAnisotropy));
    caps.MaxActiveLights = 8;
    caps.MaxSimultaneousTextures = 1;
  }

  void GetBackBufferSize(uint32_t& w, uint32_t& h) const override {
    w = width_;
    h = height_;
  }
  int32_t GetMultiSampleCount() const override { return samples_; }

  std::shared_ptr<Mesh> CreateMesh(MeshData data) override {
    gl_->requireCurrent();
    return std::make_shared<GlMesh>(shared_from_this(), gl_, std::move(data));
  }
  std::shared_ptr<Texture> CreateTexture(uint32_t w, uint32_t h, const uint8_t* rgba) override {
    if (w == 0 || h == 0 || w > kMaxTextureSide || h > kMaxTextureSide) {
      raise(D3DERR_INVALIDCALL, "texture size out of range");
    }
    gl_->requireCurrent();
    return std::make_shared<GlTexture>(gl_, w, h, rgba);
  }

  // Sets everything a draw of that mesh needs; called by GlMesh::DrawSubset.
  void prepareDraw(GlMesh& mesh);

 private:
  void checkStage(uint32_t stage, uint32_t type) const {
    if (stage >= 8 || type >= 32) raise(D3DERR_INVALIDCALL, "no such texture stage state");
  }

  D3DMATRIX& transform(uint32_t state) {
    if (state == D3DTS_WORLD) return state_.world;
    if (state == D3DTS_VIEW) return state_.view;
    if (state == D3DTS_PROJECTION) return state_.projection;
    if ((state >= D3DTS_TEXTURE0 && state < D3DTS_TEXTURE0 + 8) ||
        (state > D3DTS_WORLD && state < 512)) {
      auto it = state_.otherTransforms.find(state);
      if (it == state_.otherTransforms.end()) {
        it = state_.otherTransforms.emplace(state, identityMatrix()).first;
      }
      return it->second;
    }
    raise(D3DERR_INVALIDCALL, "no such transform state");
  }

  void buildBackBuffer() {
    gl_->requireCurrent();
    gl_->prepare();
    uint32_t w = parameters_.BackBufferWidth, h = parameters_.BackBufferHeight;
    if (w == 0 || h == 0) {
      int32_t pw = 0, ph = 0;
      window_.surface().pictureSize(pw, ph);
      if (w == 0) w = static_cast<uint32_t>(std::max(pw, 1));
      if (h == 0) h = static_cast<uint32_t>(std::max(ph, 1));
    }
    GLint maxSize = 0;
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maxSize);
    if (w > static_cast<uint32_t>(maxSize) || h > static_cast<uint32_t>(maxSize)) {
      raise(D3DERR_OUTOFVIDEOMEMORY, "back buffer larger than the renderer allows");
    }
    width_ = w;
    height_ = h;
    // A device asked for more samples than the renderer has gets the most it has.
    samples_ = parameters_.MultiSampleType >= 2
                   ? std::min<int32_t>(parameters_.MultiSampleType, gl_->maxSamples)
                   : 0;
    if (samples_ < 2) samples_ = 0;
    GLsizei gw = static_cast<GLsizei>(w), gh = static_cast<GLsizei>(h);
    glGenFramebuffers(1, &framebuffer_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glGenRenderbuffers(1, &color_);
    glBindRenderbuffer(GL_RENDERBUFFER, color_);
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples_, GL_RGBA8, gw, gh);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_);
    if (parameters_.EnableAutoDepthStencil) {
      // 24 bits whatever the format asked: the markers lie a thousandth above the board.
      bool stencil = parameters_.AutoDepthStencilFormat == D3DFMT_D24S8;
      glGenRenderbuffers(1, &depth_);
      glBindRenderbuffer(GL_RENDERBUFFER, depth_);
      glRenderbufferStorageMultisample(
          GL_RENDERBUFFER, samples_, stencil ? GL_DEPTH24_STENCIL8 : GL_DEPTH_COMPONENT24, gw, gh);
      glFramebufferRenderbuffer(GL_FRAMEBUFFER,
                                stencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                                GL_RENDERBUFFER, depth_);
    }
    bool complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    if (complete && samples_) {
      GLint got = 0;
      glGetRenderbufferParameteriv(GL_RENDERBUFFER, GL_RENDERBUFFER_SAMPLES, &got);
      samples_ = got;
      glGenFramebuffers(1, &resolveFramebuffer_);
      glBindFramebuffer(GL_FRAMEBUFFER, resolveFramebuffer_);
      glGenRenderbuffers(1, &resolveColor_);
      glBindRenderbuffer(GL_RENDERBUFFER, resolveColor_);
      glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, gw, gh);
      glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER,
                                resolveColor_);
      complete = glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
    }
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    gl_->cache.valid = false;
    if (!complete) {
      dropBackBuffer();
      raise(D3DERR_OUTOFVIDEOMEMORY, "the back buffer cannot be made");
    }
  }

  void dropBackBuffer() {
    GLuint fbos[] = {framebuffer_, resolveFramebuffer_};
    GLuint rbs[] = {color_, depth_, resolveColor_};
    glDeleteFramebuffers(2, fbos);
    glDeleteRenderbuffers(3, rbs);
    if (gl_->cache.drawFramebuffer == framebuffer_) gl_->cache.valid = false;
    framebuffer_ = resolveFramebuffer_ = color_ = depth_ = resolveColor_ = 0;
  }

  std::shared_ptr<GlShared> gl_;
  Platform& window_;
  D3DPRESENT_PARAMETERS parameters_;
  FixedFunctionState state_;
  uint32_t width_ = 0, height_ = 0;
  int32_t samples_ = 0;
  GLuint framebuffer_ = 0, color_ = 0, depth_ = 0, resolveFramebuffer_ = 0, resolveColor_ = 0;
  bool inScene_ = false;
  friend class GlMesh;
};

void GlDevice::prepareDraw(GlMesh& mesh) {
  GlShared& g = *gl_;
  GlCache& c = g.cache;
  const auto& rs = state_.renderState;
  const auto& ts = state_.stageState[0];

  // Stage 0 and lighting decide the program variant.
  const GlTexture* tex = dynamic_cast<const GlTexture*>(state_.textures[0].get());
  if (tex && tex->shared() != &g) tex = nullptr;  // made in another context
  const bool texOn = tex != nullptr && ts[D3DTSS_COLOROP] != D3DTOP_DISABLE;
  const bool lighting = rs[D3DRS_LIGHTING] != 0;
  const auto light = state_.lights.find(0);
  const auto enabled = state_.lightEnabled.find(0);
  const bool lightOn = lighting && light != state_.lights.end() &&
                       enabled != state_.lightEnabled.end() && enabled->second &&
                       light->second.Type == D3DLIGHT_DIRECTIONAL;
  ProgramKey key;
  key.normals = mesh.vertexFlags() & 1;
  key.colours = mesh.vertexFlags() & 2;
  key.coords = mesh.vertexFlags() & 4;
  key.lighting = lighting;
  key.light0 = lightOn;
  key.texture = texOn;
  if (texOn) {
    auto isTexture = [](uint32_t arg) { return (arg & 0xF) == D3DTA_TEXTURE; };
    key.colorOp = ts[D3DTSS_COLOROP];
    key.alphaOp = ts[D3DTSS_ALPHAOP];
    key.colorArg1Texture = isTexture(ts[D3DTSS_COLORARG1]);
    key.colorArg2Texture = isTexture(ts[D3DTSS_COLORARG2]);
    key.alphaArg1Texture = isTexture(ts[D3DTSS_ALPHAARG1]);
    key.alphaArg2Texture = isTexture(ts[D3DTSS_ALPHAARG2]);
    // Anisotropic filtering is done by the fragment shader, over bilinear taps: only when
    // neither filter is POINT. A level of 1 is plain bilinear filtering.
    const uint32_t minF = ts[D3DTSS_MINFILTER], magF = ts[D3DTSS_MAGFILTER];
    if ((minF == D3DTEXF_ANISOTROPIC || magF == D3DTEXF_ANISOTROPIC) && minF != D3DTEXF_POINT &&
        magF != D3DTEXF_POINT) {
      const uint32_t level = std::min<uint32_t>(ts[D3DTSS_MAXANISOTROPY], kMaxAnisotropy);
      key.anisotropy = level >= 2 ? level : 0;
    }
  }
  Program& program = g.program(key);
  if (!c.valid || c.program != program.id) {
    c.program = program.id;
    glUseProgram(program.id);
  }
  if (!c.valid) {
    c.forget();
    glFrontFace(GL_CW);  // Direct3D's front faces are clockwise as seen
    glBindSampler(0, g.sampler);
    glActiveTexture(GL_TEXTURE0);
  }
  bindDrawFramebuffer(c, framebuffer_);

  // The viewport, with rows counted from the bottom as GL does.
  const D3DVIEWPORT8& v = state_.viewport;
  std::array<GLint, 4> vp{static_cast<GLint>(v.X),
                          static_cast<GLint>(height_) - static_cast<GLint>(v.Y + v.Height),
                          static_cast<GLint>(v.Width), static_cast<GLint>(v.Height)};
  if (!c.valid || c.viewport != vp) {
    c.viewport = vp;
    glViewport(vp[0], vp[1], vp[2], vp[3]);
  }
  std::array<float, 2> dr{v.MinZ, v.MaxZ};
  if (!c.valid || c.depthRange != dr) {
    c.depthRange = dr;
    glDepthRange(dr[0], dr[1]);
  }

  // Depth.
  setCap(c, GL_DEPTH_TEST, c.depthTest, rs[D3DRS_ZENABLE] != 0 && depth_ != 0);
  setDepthMask(c, rs[D3DRS_ZWRITEENABLE] != 0);
  GLenum zf = compareFunc(rs[D3DRS_ZFUNC]);
  if (!c.valid || c.depthFunc != zf) {
    c.depthFunc = zf;
    glDepthFunc(zf);
  }

  // Culling: CCW culls what is counter-clockwise on screen, CW what is clockwise.
  uint32_t cull = rs[D3DRS_CULLMODE];
  setCap(c, GL_CULL_FACE, c.cull, cull == D3DCULL_CCW || cull == D3DCULL_CW);
  GLenum face = cull == D3DCULL_CW ? GL_FRONT : GL_BACK;
  if (!c.valid || c.cullFace != face) {
    c.cullFace = face;
    glCullFace(face);
  }

  // Fill mode: 1 points, 2 wireframe, 3 solid.
  GLenum mode = rs[D3DRS_FILLMODE] == 1 ? GL_POINT : rs[D3DRS_FILLMODE] == 2 ? GL_LINE : GL_FILL;
  if (!c.valid || c.polygonMode != mode) {
    c.polygonMode = mode;
    glPolygonMode(GL_FRONT_AND_BACK, mode);
  }

  // Blending; a back buffer without alpha keeps its alpha at one.
  setCap(c, GL_BLEND, c.blend, rs[D3DRS_ALPHABLENDENABLE] != 0);
  if (rs[D3DRS_ALPHABLENDENABLE]) {
    GLenum src = blendFactor(rs[D3DRS_SRCBLEND]), dst = blendFactor(rs[D3DRS_DESTBLEND]);
    if (c.blendSrc != src || c.blendDst != dst) {
      c.blendSrc = src;
      c.blendDst = dst;
      glBlendFunc(src, dst);
    }
  }
  setAlphaMask(c, formatHasAlpha(parameters_.BackBufferFormat));

  // Stage 0: the texture and its sampler.
  if (texOn) {
    GLuint name = tex->name();
    if (c.texture != name) {
      c.texture = name;
      glBindTexture(GL_TEXTURE_2D, name);
    }
    GLint minF = textureFilter(ts[D3DTSS_MINFILTER]), magF = textureFilter(ts[D3DTSS_MAGFILTER]);
    if (c.minFilter != minF) {
      c.minFilter = minF;
      glSamplerParameteri(g.sampler, GL_TEXTURE_MIN_FILTER, minF);
    }
    if (c.magFilter != magF) {
      c.magFilter = magF;
      glSamplerParameteri(g.sampler, GL_TEXTURE_MAG_FILTER, magF);
    }
    GLint ws = textureAddress(ts[D3DTSS_ADDRESSU]), wt = textureAddress(ts[D3DTSS_ADDRESSV]);
    if (c.wrapS != ws) {
      c.wrapS = ws;
      glSamplerParameteri(g.sampler, GL_TEXTURE_WRAP_S, ws);
    }
    if (c.wrapT != wt) {
      c.wrapT = wt;
      glSamplerParameteri(g.sampler, GL_TEXTURE_WRAP_T, wt);
    }
  }

  c.valid = true;

  // Uniforms.
  Program& u = program;
  const bool force = !u.valid;
  D3DMATRIX worldView;
  D3DXMatrixMultiply(worldView, state_.world, state_.view);
  setVec(u.uWorldView, u.worldView, flat(worldView), force);
  setVec(u.uProj, u.projection, flat(state_.projection), force);
  if (lighting) {
    const D3DMATERIAL8& m = state_.material;
    uint32_t amb = rs[D3DRS_AMBIENT];
    setVec(u.uGlobalAmbient, u.globalAmbient,
           {((amb >> 16) & 0xFF) / 255.0f, ((amb >> 8) & 0xFF) / 255.0f, (amb & 0xFF) / 255.0f},
           force);
    setVec(u.uMatDiffuse, u.matDiffuse, {m.Diffuse.r, m.Diffuse.g, m.Diffuse.b, m.Diffuse.a},
           force);
    setVec(u.uMatAmbient, u.matAmbient, rgb(m.Ambient), force);
    setVec(u.uMatEmissive, u.matEmissive, rgb(m.Emissive), force);
    if (lightOn) {
      const D3DLIGHT8& l = light->second;
      // The direction into view space (no translation), then reversed to point at the light.
      const auto& vm = state_.view.m;
      float dx = l.Direction.x, dy = l.Direction.y, dz = l.Direction.z;
      float x = dx * vm[0][0] + dy * vm[1][0] + dz * vm[2][0];
      float y = dx * vm[0][1] + dy * vm[1][1] + dz * vm[2][1];
      float z = dx * vm[0][2] + dy * vm[1][2] + dz * vm[2][2];
      float len = std::sqrt(x * x + y * y + z * z);
      std::array<float, 3> toLight{0, 0, 0};
      if (len > 0) toLight = {-x / len, -y / len, -z / len};
      setVec(u.uLightDir, u.lightDir, toLight, force);
      setVec(u.uLightDiffuse, u.lightDiffuse, rgb(l.Diffuse), force);
      setVec(u.uLightAmbient, u.lightAmbient, rgb(l.Ambient), force);
    }
  }
  u.valid = true;
}

// Attribute layout of a vertex format: position, normal, diffuse colour, first coordinate set.
GlMesh::GlMesh(std::shared_ptr<GlDevice> device, std::shared_ptr<GlShared> gl, MeshData data)
    : device_(std::move(device)),
      gl_(std::move(gl)),
      store_(std::make_shared<VertexStore>()),
      fvf_(data.fvf),
      vertexCount_(data.vertexCount),
      faceCount_(static_cast<uint32_t>(data.indices.size() / 3)),
      subsets_(std::move(data.subsets)) {
  uint32_t stride = GetFVFVertexSize(fvf_);
  if ((fvf_ & 0x00E) != D3DFVF_XYZ || stride == 0) {
    raise(D3DXERR_INVALIDMESH, "vertex format without untransformed positions");
  }
  if (data.vertices.size() != static_cast<size_t>(vertexCount_) * stride ||
      data.indices.size() % 3 != 0) {
    raise(D3DXERR_INVALIDMESH, "vertex or index data of the wrong size");
  }
  for (uint32_t index : data.indices) {
    if (index >= vertexCount_) raise(D3DXERR_INVALIDMESH, "index past the last vertex");
  }
  for (const auto& r : subsets_) {
    if (static_cast<uint64_t>(r.firstTriangle) + r.triangleCount > faceCount_) {
      raise(D3DXERR_INVALIDMESH, "subset past the last face");
    }
  }
  store_->bytes = std::move(data.vertices);

  GlCache& c = gl_->cache;
  glGenVertexArrays(1, &vao_);
  glBindVertexArray(vao_);
  c.vertexArray = vao_;
  glGenBuffers(1, &vbo_);
  glBindBuffer(GL_ARRAY_BUFFER, vbo_);
  glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(store_->bytes.size()), store_->bytes.data(),
               GL_DYNAMIC_DRAW);
  glGenBuffers(1, &ibo_);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, ibo_);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER,
               static_cast<GLsizeiptr>(data.indices.size() * sizeof(uint32_t)), data.indices.data(),
               GL_STATIC_DRAW);

  size_t offset = 12;
  auto pointer = [&](size_t at) { return reinterpret_cast<const void*>(at); };
  GLsizei s = static_cast<GLsizei>(stride);
  glEnableVertexAttribArray(0);
  glVertexAttribPointer(0, 3, GL_FLOAT, GL_FALSE, s, pointer(0));
  if (fvf_ & D3DFVF_NORMAL) {
    glEnableVertexAttribArray(1);
    glVertexAttribPointer(1, 3, GL_FLOAT, GL_FALSE, s, pointer(offset));
    offset += 12;
    vertexFlags_ |= 1;
  }
  if (fvf_ & D3DFVF_PSIZE) offset += 4;
  if (fvf_ & D3DFVF_DIFFUSE) {
    // D3DCOLOR: 0xAARRGGBB, in memory B, G, R, A.
    glEnableVertexAttribArray(2);
    glVertexAttribPointer(2, GL_BGRA, GL_UNSIGNED_BYTE, GL_TRUE, s, pointer(offset));
    offset += 4;
    vertexFlags_ |= 2;
  }
  if (fvf_ & D3DFVF_SPECULAR) offset += 4;
  uint32_t sets = (fvf_ & D3DFVF_TEXCOUNT_MASK) >> D3DFVF_TEXCOUNT_SHIFT;
  if (sets > 0 && ((fvf_ >> 16) & 3) == 0) {  // the first set holds two floats
    glEnableVertexAttribArray(3);
    glVertexAttribPointer(3, 2, GL_FLOAT, GL_FALSE, s, pointer(offset));
    vertexFlags_ |= 4;
  }
}

void GlMesh::DrawSubset(uint32_t subset) {
  if (subset >= subsets_.size()) return;  // no faces carry that attribute
  const MeshData::Range& r = subsets_[subset];
  if (r.triangleCount == 0) return;
  gl_->requireCurrent();
  device_->prepareDraw(*this);
  bind();
  glDrawElements(
      GL_TRIANGLES, static_cast<GLsizei>(r.triangleCount * 3), GL_UNSIGNED_INT,
      reinterpret_cast<const void*>(static_cast<size_t>(r.firstTriangle) * 3 * sizeof(uint32_t)));
}

// ---------------------------------------------------------------------------------------------

class GlDirect3D8 final : public Direct3D8 {
 public:
  explicit GlDirect3D8(Platform& platform) : platform_(platform) {}

  void GetAdapterDisplayMode(uint32_t adapter, D3DDISPLAYMODE& mode) override {
    if (adapter != D3DADAPTER_DEFAULT) raise(D3DERR_INVALIDCALL, "no such adapter");
    const ScreenMetrics screen = platform_.screenMetrics();
    mode.Width = static_cast<uint32_t>(std::max(screen.widthPixels, 0));
    mode.Height = static_cast<uint32_t>(std::max(screen.heightPixels, 0));
    mode.RefreshRate = kDisplayRefreshRate;
    mode.Format = D3DFMT_X8R8G8B8;
  }

  int32_t CheckDeviceMultiSampleType(uint32_t adapter, int32_t, int32_t, int32_t,
                                     int32_t type) override {
    if (adapter != D3DADAPTER_DEFAULT) return D3DERR_INVALIDCALL;
    AdapterProfile p = adapterOf(platform_);
    if (type == D3DMULTISAMPLE_NONE) return D3D_OK;
    if (type == 4) return p.multisample4 ? D3D_OK : D3DERR_NOTAVAILABLE;
    if (type == 6) return p.multisample6 ? D3D_OK : D3DERR_NOTAVAILABLE;
    return D3DERR_NOTAVAILABLE;
  }

  int32_t CheckDeviceType(uint32_t adapter, int32_t, int32_t, int32_t, int32_t) override {
    if (adapter != D3DADAPTER_DEFAULT) return D3DERR_INVALIDCALL;
    return adapterOf(platform_).checkDeviceTypeResult;
  }

  std::shared_ptr<Direct3DDevice8> CreateDevice(uint32_t adapter, int32_t deviceType,
                                                Platform* window, uint32_t behaviorFlags,
                                                D3DPRESENT_PARAMETERS& parameters) override {
    if (adapter != D3DADAPTER_DEFAULT) raise(D3DERR_INVALIDCALL, "no such adapter");
    if (deviceType != D3DDEVTYPE_HAL) raise(D3DERR_NOTAVAILABLE, "only the HAL device exists");
    Platform& target = window ? *window : platform_;
    AdapterProfile p = adapterOf(target);
    uint32_t kinds =
        behaviorFlags & (D3DCREATE_SOFTWARE_VERTEXPROCESSING | D3DCREATE_HARDWARE_VERTEXPROCESSING |
                         D3DCREATE_MIXED_VERTEXPROCESSING);
    if (kinds == D3DCREATE_HARDWARE_VERTEXPROCESSING || kinds == D3DCREATE_MIXED_VERTEXPROCESSING) {
      if (!p.hardwareVertexProcessing) {
        raise(D3DERR_NOTAVAILABLE, "no hardware vertex processing on this adapter");
      }
    } else if (kinds == D3DCREATE_SOFTWARE_VERTEXPROCESSING) {
      if (!p.softwareVertexProcessing) {
        raise(D3DERR_NOTAVAILABLE, "no software vertex processing on this adapter");
      }
    } else {
      raise(D3DERR_INVALIDCALL, "exactly one kind of vertex processing must be asked for");
    }
    auto gl = sharedFor(target);
    return std::make_shared<GlDevice>(std::move(gl), target, parameters);
  }

 private:
  Platform& platform_;
};

}  // namespace

std::shared_ptr<Direct3D8> Direct3DCreate(Platform& platform) {
  if (!adapterOf(platform).direct3DAvailable) return nullptr;
  if (!platform.surface().makeContextCurrent()) return nullptr;
  if (epoxy_gl_version() < 33) return nullptr;
  return std::make_shared<GlDirect3D8>(platform);
}

void platformContextGoing(Platform& platform) {
  auto& entries = registry();
  for (auto& w : entries) {
    if (auto s = w.lock(); s && s->platform == &platform) s->alive = false;
  }
  std::erase_if(entries, [&](const std::weak_ptr<GlShared>& w) {
    auto s = w.lock();
    return !s || s->platform == &platform;
  });
}

namespace gl {

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

}  // namespace gl

}  // namespace ostrel::graphics
