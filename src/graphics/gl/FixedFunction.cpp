#include "graphics/gl/FixedFunction.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ostrel::graphics::gl {

namespace {

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

std::array<float, 3> rgb(const D3DCOLORVALUE& c) {
  return {c.r, c.g, c.b};
}

// Light 0, when it lights this draw.
const D3DLIGHT8* activeLight(const FixedFunctionState& s) {
  if (s.renderState[D3DRS_LIGHTING] == 0) return nullptr;
  const auto light = s.lights.find(0);
  const auto enabled = s.lightEnabled.find(0);
  if (light == s.lights.end() || enabled == s.lightEnabled.end() || !enabled->second) {
    return nullptr;
  }
  return light->second.Type == D3DLIGHT_DIRECTIONAL ? &light->second : nullptr;
}

ProgramKey programKey(const FixedFunctionState& s, int vertexFlags, bool textured, bool lightOn) {
  const auto& ts = s.stageState[0];
  ProgramKey key;
  key.normals = vertexFlags & kNormals;
  key.colours = vertexFlags & kColours;
  key.coords = vertexFlags & kCoords;
  key.lighting = s.renderState[D3DRS_LIGHTING] != 0;
  key.light0 = lightOn;
  key.texture = textured;
  if (!textured) return key;
  auto isTexture = [](uint32_t arg) { return (arg & 0xF) == D3DTA_TEXTURE; };
  key.colorOp = ts[D3DTSS_COLOROP];
  key.alphaOp = ts[D3DTSS_ALPHAOP];
  key.colorArg1Texture = isTexture(ts[D3DTSS_COLORARG1]);
  key.colorArg2Texture = isTexture(ts[D3DTSS_COLORARG2]);
  key.alphaArg1Texture = isTexture(ts[D3DTSS_ALPHAARG1]);
  key.alphaArg2Texture = isTexture(ts[D3DTSS_ALPHAARG2]);
  // Anisotropic filtering is done by the fragment shader, over bilinear taps: only when neither
  // filter is POINT. A level of 1 is plain bilinear filtering.
  const uint32_t minF = ts[D3DTSS_MINFILTER], magF = ts[D3DTSS_MAGFILTER];
  if ((minF == D3DTEXF_ANISOTROPIC || magF == D3DTEXF_ANISOTROPIC) && minF != D3DTEXF_POINT &&
      magF != D3DTEXF_POINT) {
    const uint32_t level = std::min<uint32_t>(ts[D3DTSS_MAXANISOTROPY], kMaxAnisotropy);
    key.anisotropy = level >= 2 ? level : 0;
  }
  return key;
}

UniformValues uniformValues(const FixedFunctionState& s, const D3DLIGHT8* light) {
  UniformValues u;
  D3DMATRIX worldView;
  D3DXMatrixMultiply(worldView, s.world, s.view);
  u.worldView = flat(worldView);
  u.projection = flat(s.projection);
  const D3DMATERIAL8& m = s.material;
  const uint32_t amb = s.renderState[D3DRS_AMBIENT];
  u.globalAmbient = {((amb >> 16) & 0xFF) / 255.0f, ((amb >> 8) & 0xFF) / 255.0f,
                     (amb & 0xFF) / 255.0f};
  u.matDiffuse = {m.Diffuse.r, m.Diffuse.g, m.Diffuse.b, m.Diffuse.a};
  u.matAmbient = rgb(m.Ambient);
  u.matEmissive = rgb(m.Emissive);
  if (light) {
    // The direction into view space (no translation), then reversed to point at the light.
    const auto& vm = s.view.m;
    const float dx = light->Direction.x, dy = light->Direction.y, dz = light->Direction.z;
    const float x = dx * vm[0][0] + dy * vm[1][0] + dz * vm[2][0];
    const float y = dx * vm[0][1] + dy * vm[1][1] + dz * vm[2][1];
    const float z = dx * vm[0][2] + dy * vm[1][2] + dz * vm[2][2];
    const float len = std::sqrt(x * x + y * y + z * z);
    if (len > 0) u.lightDir = {-x / len, -y / len, -z / len};
    u.lightDiffuse = rgb(light->Diffuse);
    u.lightAmbient = rgb(light->Ambient);
  }
  return u;
}

}  // namespace

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

GlDrawState translate(const FixedFunctionState& s, const DrawTarget& target, int vertexFlags,
                      GLuint texture) {
  const auto& rs = s.renderState;
  const auto& ts = s.stageState[0];
  GlDrawState d;

  // The viewport, with rows counted from the bottom as GL does.
  const D3DVIEWPORT8& v = s.viewport;
  d.target.framebuffer = target.framebuffer;
  d.target.viewport = {static_cast<GLint>(v.X),
                       static_cast<GLint>(target.height) - static_cast<GLint>(v.Y + v.Height),
                       static_cast<GLint>(v.Width), static_cast<GLint>(v.Height)};
  d.target.depthRange = {v.MinZ, v.MaxZ};

  d.depth.test = rs[D3DRS_ZENABLE] != 0 && target.hasDepth;
  d.depth.write = rs[D3DRS_ZWRITEENABLE] != 0;
  d.depth.func = compareFunc(rs[D3DRS_ZFUNC]);

  // Culling: CCW culls what is counter-clockwise on screen, CW what is clockwise.
  const uint32_t cull = rs[D3DRS_CULLMODE];
  d.raster.cull = cull == D3DCULL_CCW || cull == D3DCULL_CW;
  d.raster.cullFace = cull == D3DCULL_CW ? GL_FRONT : GL_BACK;
  // Fill mode: 1 points, 2 wireframe, 3 solid.
  const uint32_t fill = rs[D3DRS_FILLMODE];
  d.raster.polygonMode = fill == 1 ? GL_POINT : fill == 2 ? GL_LINE : GL_FILL;

  // A back buffer without alpha keeps its alpha at one.
  d.blend.enabled = rs[D3DRS_ALPHABLENDENABLE] != 0;
  d.blend.src = blendFactor(rs[D3DRS_SRCBLEND]);
  d.blend.dst = blendFactor(rs[D3DRS_DESTBLEND]);
  d.blend.alphaWrite = target.hasAlpha;

  d.textured = texture != 0 && ts[D3DTSS_COLOROP] != D3DTOP_DISABLE;
  if (d.textured) {
    d.sampler.texture = texture;
    d.sampler.minFilter = textureFilter(ts[D3DTSS_MINFILTER]);
    d.sampler.magFilter = textureFilter(ts[D3DTSS_MAGFILTER]);
    d.sampler.wrapS = textureAddress(ts[D3DTSS_ADDRESSU]);
    d.sampler.wrapT = textureAddress(ts[D3DTSS_ADDRESSV]);
  }

  const D3DLIGHT8* light = activeLight(s);
  d.lit = rs[D3DRS_LIGHTING] != 0;
  d.lightOn = light != nullptr;
  d.program = programKey(s, vertexFlags, d.textured, d.lightOn);
  d.uniforms = uniformValues(s, light);
  return d;
}

}  // namespace ostrel::graphics::gl
