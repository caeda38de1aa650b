#pragma once
// The fixed-function state of a new device with a depth buffer, on a 200 x 100 back buffer.

#include "graphics/gl/FixedFunction.h"

namespace ostrel::testing {

inline graphics::gl::FixedFunctionState freshState() {
  graphics::D3DPRESENT_PARAMETERS p{};
  p.EnableAutoDepthStencil = 1;
  return graphics::gl::defaultState(p, 200, 100);
}

}  // namespace ostrel::testing
