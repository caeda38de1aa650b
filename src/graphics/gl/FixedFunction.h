#pragma once
// Direct3D's fixed-function state as plain data, what a new device holds, and the pure step from
// it to the GL state of one draw.

#include <array>
#include <map>
#include <memory>

#include "graphics/d3d8.h"
#include "graphics/gl/DrawState.h"

namespace ostrel::graphics::gl {

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
FixedFunctionState defaultState(const D3DPRESENT_PARAMETERS& p, uint32_t width, uint32_t height);

// Where a draw goes.
struct DrawTarget {
  GLuint framebuffer = 0;
  uint32_t height = 0;  // of the back buffer, to count viewport rows from the bottom
  bool hasDepth = false, hasAlpha = false;
};

// What the vertices carry: 1 normals, 2 vertex colours, 4 texture coordinates.
enum VertexFlags : int { kNormals = 1, kColours = 2, kCoords = 4 };

constexpr uint32_t kMaxAnisotropy = 16;  // the most taps the anisotropic filter takes

// The GL state of a draw of vertices with `vertexFlags`, with `texture` the GL name of stage 0's
// texture (0 when none of this context is set).
GlDrawState translate(const FixedFunctionState& s, const DrawTarget& target, int vertexFlags,
                      GLuint texture);

}  // namespace ostrel::graphics::gl
