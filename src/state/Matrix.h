#pragma once
// The 4x4 matrix of the device layer: row-vector, left-handed, stored row by row (_11.._44),
// translation in _41.._43. The control keeps the last frame's transforms in this form.

namespace ostrel {

struct D3DMATRIX {
  float m[4][4] = {};
};

inline D3DMATRIX identityMatrix() {
  D3DMATRIX r;
  for (int i = 0; i < 4; ++i) r.m[i][i] = 1.0f;
  return r;
}

}  // namespace ostrel
