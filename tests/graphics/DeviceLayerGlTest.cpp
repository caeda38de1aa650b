// The device layer on its own: D3DX math, the loader's frame transforms, and the device's
// states, back buffer and reset. The adapter's probes are start-up's checks.

#include <gtest/gtest.h>

#include "support/GraphicsFixture.h"

namespace ostrel::testing {
namespace {

using namespace graphics;

TEST(D3DXMath, PerspectiveLookAtAndProjectionRoundTrip) {
  D3DMATRIX p, v;
  D3DXMatrixPerspectiveFovLH(p, 0.2f, 0.75f, -2.4f, 8.7f);
  // Eye on +z looking at the origin, y up: view x is world -x, the origin lies 5 ahead.
  D3DXMatrixLookAtLH(v, {0, 0, 5}, {0, 0, 0}, {0, 1, 0});
  const std::tuple<float, float, double> expected[] = {
      {p.m[0][0], 13.288858f, 1e-4}, {p.m[1][1], 9.966644f, 1e-4}, {p.m[2][2], 0.783784f, 1e-5},
      {p.m[2][3], 1.0f, 0},          {p.m[3][2], 1.881081f, 1e-5}, {p.m[3][3], 0.0f, 0},
      {v.m[0][0], -1.0f, 1e-6},      {v.m[1][1], 1.0f, 1e-6},      {v.m[2][2], -1.0f, 1e-6},
      {v.m[3][2], 5.0f, 1e-6}};
  for (const auto& [got, want, tolerance] : expected) EXPECT_NEAR(got, want, tolerance);

  D3DMATRIX view, proj, world = identityMatrix();
  const D3DVECTOR eye{1, 12, -3};
  D3DXMatrixLookAtLH(view, eye, {0, 0, 0}, {0, 1, 0});
  D3DXMatrixPerspectiveFovLH(proj, 0.5235983f, 0.75f, 1.0f, 1000.0f);
  D3DVIEWPORT8 vp{10, 20, 640, 480, 0.0f, 1.0f};
  D3DVECTOR screen, back;
  D3DXVec3Project(screen, {0.7f, 0.2f, -1.3f}, vp, proj, view, world);
  D3DXVec3Unproject(back, screen, vp, proj, view, world);
  EXPECT_NEAR(back.x, 0.7f, 1e-3);
  EXPECT_NEAR(back.y, 0.2f, 1e-3);
  EXPECT_NEAR(back.z, -1.3f, 1e-3);
  // Screen depth 0 lies on the near plane, 1 on the far plane.
  for (auto [depth, distance, tolerance] : {std::tuple{0.0f, 1.0, 1e-3}, {1.0f, 1000.0, 0.5}}) {
    D3DVECTOR point, d;
    D3DXVec3Unproject(point, {330, 260, depth}, vp, proj, view, world);
    D3DXVec3Subtract(d, point, eye);
    EXPECT_NEAR(std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z), distance, tolerance);
  }
}

TEST(Device, ResetRestoresDefaultsAndFollowsThePicture) {
  GraphicsFixture f(50, 40);
  Direct3DDevice8& d = f.device();
  uint32_t w = 0, h = 0;
  d.GetBackBufferSize(w, h);
  EXPECT_EQ(std::pair(w, h), std::pair(50u, 40u));
  d.SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  d.SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
  d.SetTextureStageState(0, D3DTSS_MINFILTER, D3DTEXF_ANISOTROPIC);
  d.SetTransform(D3DTS_VIEW, D3DMATRIX{});

  f.platform.placePicture(70, 20);
  d.Reset(graphicsContext().presentParameters);
  EXPECT_EQ(f.platform.resetCount(), 1);
  d.GetBackBufferSize(w, h);
  EXPECT_EQ(std::pair(w, h), std::pair(70u, 20u));
  D3DVIEWPORT8 vp;
  d.GetViewport(vp);
  EXPECT_EQ(std::pair(vp.Width, vp.Height), std::pair(70u, 20u));
  for (auto [state, value] : {std::pair{D3DRS_CULLMODE, uint32_t{D3DCULL_CCW}},
                              {D3DRS_ZENABLE, 1u},
                              {D3DRS_ZFUNC, D3DCMP_LESSEQUAL},
                              {D3DRS_LIGHTING, 1u},
                              {D3DRS_AMBIENT, 0u},
                              {D3DRS_ALPHABLENDENABLE, 0u},
                              {D3DRS_SRCBLEND, D3DBLEND_ONE},
                              {D3DRS_DESTBLEND, D3DBLEND_ZERO}}) {
    EXPECT_EQ(d.GetRenderState(state), value) << "render state " << state;
  }
  EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_MINFILTER), D3DTEXF_POINT);
  EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_ALPHAARG1), D3DTA_TEXTURE);
  EXPECT_EQ(d.GetTextureStageState(0, D3DTSS_COLOROP), D3DTOP_MODULATE);
  D3DMATRIX view;
  d.GetTransform(D3DTS_VIEW, view);
  EXPECT_EQ(view.m[0][0], 1.0f);

  // A lost device cannot be reset.
  f.platform.loseDevice();
  EXPECT_THROW(d.Reset(graphicsContext().presentParameters), D3DError);
}

// Materials, subsets and their order are seen drawn in MeshGlTest.cpp; here what no frame shows.
TEST(Loader, FrameTransformsAreBakedInAndBuffersRefuseWhatLiesPastTheEnd) {
  GraphicsFixture f(32, 32);
  XModel plain = quadModel(1, 0, {});
  plain.normals.clear();
  plain.frameMatrix = {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 0.5f, -1, 1};
  f.writeModel("plain.x", plain);
  std::shared_ptr<D3DXBuffer> materials;
  int32_t count = 0;
  auto mesh =
      LoadMeshFromX(f.path("plain.x"), D3DXMESH_MANAGED, f.device(), nullptr, materials, count);
  ASSERT_TRUE(mesh);
  EXPECT_EQ(mesh->GetFVF(), 0x102u);
  std::vector<float> p = GraphicsFixture::vertices(*mesh);
  // Corner (-1, 0, -1) scaled by 2 in x and moved by (5, 0.5, -1).
  EXPECT_EQ(std::vector<float>(p.begin(), p.begin() + 3), (std::vector<float>{3.0f, 0.5f, -2.0f}));
  EXPECT_THROW(mesh->GetVertexBuffer()->GetData(4, 4 * 20, 0, p.data()), D3DError);
  EXPECT_THROW(BufferGetTextureName(*materials, count), D3DError);
}

}  // namespace
}  // namespace ostrel::testing
