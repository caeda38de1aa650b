// The matrix and vector functions of D3DX: row vectors, left-handed, as the fixed-function
// pipeline defines them.

#include <cmath>
#include <utility>

#include "graphics/d3d8.h"

namespace ostrel::graphics {

D3DMATRIX* D3DXMatrixIdentity(D3DMATRIX& out) {
  out = identityMatrix();
  return &out;
}

D3DMATRIX* D3DXMatrixMultiply(D3DMATRIX& out, const D3DMATRIX& a, const D3DMATRIX& b) {
  D3DMATRIX r;
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      r.m[i][j] = a.m[i][0] * b.m[0][j] + a.m[i][1] * b.m[1][j] + a.m[i][2] * b.m[2][j] +
                  a.m[i][3] * b.m[3][j];
    }
  }
  out = r;
  return &out;
}

D3DMATRIX* D3DXMatrixInverse(D3DMATRIX& out, float* determinant, const D3DMATRIX& m) {
  // Gauss-Jordan elimination with partial pivoting, in double precision.
  double a[4][8];
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) {
      a[i][j] = m.m[i][j];
      a[i][j + 4] = i == j ? 1.0 : 0.0;
    }
  }
  double det = 1.0;
  for (int c = 0; c < 4; ++c) {
    int pivot = c;
    for (int r = c + 1; r < 4; ++r) {
      if (std::fabs(a[r][c]) > std::fabs(a[pivot][c])) pivot = r;
    }
    if (a[pivot][c] == 0.0) return nullptr;
    if (pivot != c) {
      for (int j = 0; j < 8; ++j) std::swap(a[c][j], a[pivot][j]);
      det = -det;
    }
    double p = a[c][c];
    det *= p;
    for (int j = 0; j < 8; ++j) a[c][j] /= p;
    for (int r = 0; r < 4; ++r) {
      if (r == c) continue;
      double f = a[r][c];
      if (f == 0.0) continue;
      for (int j = 0; j < 8; ++j) a[r][j] -= f * a[c][j];
    }
  }
  for (int i = 0; i < 4; ++i) {
    for (int j = 0; j < 4; ++j) out.m[i][j] = static_cast<float>(a[i][j + 4]);
  }
  if (determinant) *determinant = static_cast<float>(det);
  return &out;
}

D3DMATRIX* D3DXMatrixTranslation(D3DMATRIX& out, float x, float y, float z) {
  out = identityMatrix();
  out.m[3][0] = x;
  out.m[3][1] = y;
  out.m[3][2] = z;
  return &out;
}

namespace {

D3DVECTOR sub(const D3DVECTOR& a, const D3DVECTOR& b) {
  return {a.x - b.x, a.y - b.y, a.z - b.z};
}
D3DVECTOR cross(const D3DVECTOR& a, const D3DVECTOR& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
float dot(const D3DVECTOR& a, const D3DVECTOR& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
D3DVECTOR normalize(const D3DVECTOR& v) {
  float len = std::sqrt(dot(v, v));
  if (len == 0.0f) return v;
  return {v.x / len, v.y / len, v.z / len};
}

// (v, 1) times m, divided by w.
D3DVECTOR transformCoord(const D3DVECTOR& v, const D3DMATRIX& m) {
  float x = v.x * m.m[0][0] + v.y * m.m[1][0] + v.z * m.m[2][0] + m.m[3][0];
  float y = v.x * m.m[0][1] + v.y * m.m[1][1] + v.z * m.m[2][1] + m.m[3][1];
  float z = v.x * m.m[0][2] + v.y * m.m[1][2] + v.z * m.m[2][2] + m.m[3][2];
  float w = v.x * m.m[0][3] + v.y * m.m[1][3] + v.z * m.m[2][3] + m.m[3][3];
  if (w != 0.0f) return {x / w, y / w, z / w};
  return {x, y, z};
}

}  // namespace

D3DMATRIX* D3DXMatrixLookAtLH(D3DMATRIX& out, const D3DVECTOR& eye, const D3DVECTOR& at,
                              const D3DVECTOR& up) {
  D3DVECTOR z = normalize(sub(at, eye));
  D3DVECTOR x = normalize(cross(up, z));
  D3DVECTOR y = cross(z, x);
  out = D3DMATRIX{};
  out.m[0][0] = x.x;
  out.m[1][0] = x.y;
  out.m[2][0] = x.z;
  out.m[0][1] = y.x;
  out.m[1][1] = y.y;
  out.m[2][1] = y.z;
  out.m[0][2] = z.x;
  out.m[1][2] = z.y;
  out.m[2][2] = z.z;
  out.m[3][0] = -dot(x, eye);
  out.m[3][1] = -dot(y, eye);
  out.m[3][2] = -dot(z, eye);
  out.m[3][3] = 1.0f;
  return &out;
}

D3DMATRIX* D3DXMatrixPerspectiveFovLH(D3DMATRIX& out, float fovy, float aspect, float zn,
                                      float zf) {
  float yScale = 1.0f / std::tan(fovy / 2.0f);
  float xScale = yScale / aspect;
  float q = zf / (zf - zn);
  out = D3DMATRIX{};
  out.m[0][0] = xScale;
  out.m[1][1] = yScale;
  out.m[2][2] = q;
  out.m[2][3] = 1.0f;
  out.m[3][2] = -zn * q;
  return &out;
}

D3DVECTOR* D3DXVec3Unproject(D3DVECTOR& out, const D3DVECTOR& v, const D3DVIEWPORT8& viewport,
                             const D3DMATRIX& projection, const D3DMATRIX& view,
                             const D3DMATRIX& world) {
  D3DMATRIX wv, wvp, inverse;
  D3DXMatrixMultiply(wv, world, view);
  D3DXMatrixMultiply(wvp, wv, projection);
  if (!D3DXMatrixInverse(inverse, nullptr, wvp)) inverse = D3DMATRIX{};
  D3DVECTOR ndc;
  ndc.x = 2.0f * (v.x - static_cast<float>(viewport.X)) / static_cast<float>(viewport.Width) - 1.0f;
  ndc.y =
      1.0f - 2.0f * (v.y - static_cast<float>(viewport.Y)) / static_cast<float>(viewport.Height);
  ndc.z = (v.z - viewport.MinZ) / (viewport.MaxZ - viewport.MinZ);
  out = transformCoord(ndc, inverse);
  return &out;
}

D3DVECTOR* D3DXVec3Project(D3DVECTOR& out, const D3DVECTOR& v, const D3DVIEWPORT8& viewport,
                           const D3DMATRIX& projection, const D3DMATRIX& view,
                           const D3DMATRIX& world) {
  D3DMATRIX wv, wvp;
  D3DXMatrixMultiply(wv, world, view);
  D3DXMatrixMultiply(wvp, wv, projection);
  D3DVECTOR c = transformCoord(v, wvp);
  out.x = static_cast<float>(viewport.X) + (1.0f + c.x) * static_cast<float>(viewport.Width) / 2.0f;
  out.y =
      static_cast<float>(viewport.Y) + (1.0f - c.y) * static_cast<float>(viewport.Height) / 2.0f;
  out.z = viewport.MinZ + c.z * (viewport.MaxZ - viewport.MinZ);
  return &out;
}

D3DVECTOR* D3DXVec3Subtract(D3DVECTOR& out, const D3DVECTOR& a, const D3DVECTOR& b) {
  out = sub(a, b);
  return &out;
}

}  // namespace ostrel::graphics
