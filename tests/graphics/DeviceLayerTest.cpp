// The device layer on its own: D3DX math, the loader's view of .x files, the probes and the
// device's states, back buffer and reset.

#include <gtest/gtest.h>

#include "support/GraphicsFixture.h"

namespace ostrel::testing {
namespace {

using namespace graphics;

TEST(D3DXMath, PerspectiveAndLookAtGiveThePlatformsMatrices) {
  D3DMATRIX p;
  D3DXMatrixPerspectiveFovLH(p, 0.2f, 0.75f, -2.4f, 8.7f);
  EXPECT_NEAR(p.m[0][0], 13.288858f, 1e-4);
  EXPECT_NEAR(p.m[1][1], 9.966644f, 1e-4);
  EXPECT_NEAR(p.m[2][2], 0.783784f, 1e-5);
  EXPECT_EQ(p.m[2][3], 1.0f);
  EXPECT_NEAR(p.m[3][2], 1.881081f, 1e-5);
  EXPECT_EQ(p.m[3][3], 0.0f);

  // Eye on +z looking at the origin, y up: view x is world -x, the origin lies 5 ahead.
  D3DMATRIX v;
  D3DXMatrixLookAtLH(v, {0, 0, 5}, {0, 0, 0}, {0, 1, 0});
  EXPECT_NEAR(v.m[0][0], -1.0f, 1e-6);
  EXPECT_NEAR(v.m[1][1], 1.0f, 1e-6);
  EXPECT_NEAR(v.m[2][2], -1.0f, 1e-6);
  EXPECT_NEAR(v.m[3][2], 5.0f, 1e-6);
}

TEST(D3DXMath, UnprojectUndoesProjectAndSpansNearToFar) {
  D3DMATRIX view, proj, world = identityMatrix();
  D3DXMatrixLookAtLH(view, {1, 12, -3}, {0, 0, 0}, {0, 1, 0});
  D3DXMatrixPerspectiveFovLH(proj, 0.5235983f, 0.75f, 1.0f, 1000.0f);
  D3DVIEWPORT8 vp{10, 20, 640, 480, 0.0f, 1.0f};
  D3DVECTOR screen, back;
  D3DXVec3Project(screen, {0.7f, 0.2f, -1.3f}, vp, proj, view, world);
  D3DXVec3Unproject(back, screen, vp, proj, view, world);
  EXPECT_NEAR(back.x, 0.7f, 1e-3);
  EXPECT_NEAR(back.y, 0.2f, 1e-3);
  EXPECT_NEAR(back.z, -1.3f, 1e-3);

  // Screen depth 0 lies on the near plane, 1 on the far plane.
  D3DVECTOR nearPoint, farPoint, eye{1, 12, -3}, d;
  D3DXVec3Unproject(nearPoint, {330, 260, 0}, vp, proj, view, world);
  D3DXVec3Unproject(farPoint, {330, 260, 1}, vp, proj, view, world);
  D3DXVec3Subtract(d, nearPoint, eye);
  EXPECT_NEAR(std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z), 1.0f, 1e-3);
  D3DXVec3Subtract(d, farPoint, eye);
  EXPECT_NEAR(std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z), 1000.0f, 0.5);
}

TEST(D3DXHelpers, VertexSizesAndErrorNames) {
  EXPECT_EQ(GetFVFVertexSize(0x112), 32u);
  EXPECT_EQ(GetFVFVertexSize(0x102), 20u);
  EXPECT_EQ(GetFVFVertexSize(0x1C4), 32u);  // XYZRHW, diffuse, specular, one pair
  EXPECT_EQ(GetFVFVertexSize(0x152), 36u);
  EXPECT_EQ(GetErrorString(D3DERR_DEVICELOST), "D3DERR_DEVICELOST");
  EXPECT_EQ(GetErrorString(D3DERR_NOTAVAILABLE), "D3DERR_NOTAVAILABLE");
}

TEST(Direct3DObject, AnswersTheAdapterProfile) {
  HeadlessOptions o;
  o.multisample4 = false;
  o.multisample6 = true;
  o.checkDeviceTypeResult = -7;
  GraphicsFixture f(32, 32, o);
  auto d3d = Direct3DCreate(f.platform);
  ASSERT_TRUE(d3d);
  EXPECT_NE(d3d->CheckDeviceMultiSampleType(0, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8, 1, 4), 0);
  EXPECT_EQ(d3d->CheckDeviceMultiSampleType(0, D3DDEVTYPE_HAL, D3DFMT_X8R8G8B8, 1, 6), 0);
  EXPECT_EQ(d3d->CheckDeviceType(0, D3DDEVTYPE_HAL, 22, 22, 1), -7);
  D3DDISPLAYMODE mode;
  d3d->GetAdapterDisplayMode(0, mode);
  EXPECT_EQ(mode.Width, 1920u);
  EXPECT_EQ(mode.Format, D3DFMT_X8R8G8B8);

  HeadlessOptions none;
  none.direct3DAvailable = false;
  HeadlessPlatform without(none);
  EXPECT_FALSE(Direct3DCreate(without));
}

TEST(Direct3DObject, CreateDeviceFailsForMissingVertexProcessing) {
  HeadlessOptions o;
  o.hardwareVertexProcessing = false;
  o.softwareVertexProcessing = false;
  o.maxAnisotropy = 1;
  GraphicsFixture f(32, 32, o);
  auto d3d = Direct3DCreate(f.platform);
  ASSERT_TRUE(d3d);
  D3DPRESENT_PARAMETERS pp;
  pp.EnableAutoDepthStencil = 1;
  for (uint32_t kind : {D3DCREATE_HARDWARE_VERTEXPROCESSING, D3DCREATE_SOFTWARE_VERTEXPROCESSING}) {
    try {
      d3d->CreateDevice(0, D3DDEVTYPE_HAL, &f.platform, kind, pp);
      ADD_FAILURE() << "created a device with flags " << kind;
    } catch (const D3DError& e) {
      EXPECT_EQ(e.number, D3DERR_NOTAVAILABLE);
    }
  }
}

TEST(Device, MultisamplingIsClampedAndResolvedAtPresent) {
  GraphicsFixture f(40, 30);
  ASSERT_TRUE(f.startDevice(6));
  // llvmpipe has four samples: a device asked for six gets four.
  EXPECT_EQ(f.device().GetMultiSampleCount(), 4);
  f.state().ambientBackColor = 0x203040;
  Image image = f.frame();
  ASSERT_EQ(image.width, 40);
  EXPECT_EQ(countNot(image, {0x20, 0x30, 0x40}, 0), 0);
}

TEST(Device, ResetRestoresDefaultsAndFollowsThePicture) {
  GraphicsFixture f(50, 40);
  ASSERT_TRUE(f.startDevice());
  Direct3DDevice8& d = f.device();
  uint32_t w = 0, h = 0;
  d.GetBackBufferSize(w, h);
  EXPECT_EQ(w, 50u);
  EXPECT_EQ(h, 40u);
  d.SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  d.SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
  d.SetTextureStageState(0, D3DTSS_MINFILTER, D3DTEXF_ANISOTROPIC);
  d.SetTransform(D3DTS_VIEW, D3DMATRIX{});

  f.platform.placePicture(70, 20);
  d.Reset(graphicsContext().presentParameters);
  EXPECT_EQ(f.platform.resetCount(), 1);
  d.GetBackBufferSize(w, h);
  EXPECT_EQ(w, 70u);
  EXPECT_EQ(h, 20u);
  D3DVIEWPORT8 vp;
  d.GetViewport(vp);
  EXPECT_EQ(vp.Width, 70u);
  EXPECT_EQ(vp.Height, 20u);
  EXPECT_EQ(d.GetRenderState(D3DRS_CULLMODE), D3DCULL_CCW);
  EXPECT_EQ(d.GetRenderState(D3DRS_ZENABLE), 1u);
  EXPECT_EQ(d.GetRenderState(D3DRS_ZFUNC), D3DCMP_LESSEQUAL);
  EXPECT_EQ(d.GetRenderState(D3DRS_LIGHTING), 1u);
  EXPECT_EQ(d.GetRenderState(D3DRS_AMBIENT), 0u);
  EXPECT_EQ(d.GetRenderState(D3DRS_ALPHABLENDENABLE), 0u);
  EXPECT_EQ(d.GetRenderState(D3DRS_SRCBLEND), D3DBLEND_ONE);
  EXPECT_EQ(d.GetRenderState(D3DRS_DESTBLEND), D3DBLEND_ZERO);
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

TEST(Loader, SubsetsAreTheMaterialsInFileOrder) {
  GraphicsFixture f(32, 32);
  ASSERT_TRUE(f.startDevice());
  // Three strips; the faces list the materials out of order.
  XModel m;
  m.positions = {{-3, 0, -1}, {-3, 0, 1}, {-1, 0, 1}, {-1, 0, -1},
                 {1, 0, 1},   {1, 0, -1}, {3, 0, 1},  {3, 0, -1}};
  m.faces = {{2, 4, 5, 3}, {0, 1, 2, 3}, {4, 6, 7, 5}};
  m.faceMaterial = {1, 2, 0};
  m.normals.assign(8, {0, 1, 0});
  m.uvs.assign(8, {0.5f, 0.5f});
  m.materials = {{0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, "a.png"},
                 {0.9f, 0.8f, 0.7f, 1.0f, 0, 0, 0, ""},
                 {0.3f, 0.3f, 0.3f, 0.25f, 0, 0, 0, "b.png"}};
  f.writeModel("three.x", m);

  std::shared_ptr<D3DXBuffer> materials, adjacency;
  int32_t count = 0;
  auto mesh = LoadMeshFromX(f.folder.str() + "/models/three.x", D3DXMESH_MANAGED, f.device(),
                            &adjacency, materials, count);
  ASSERT_TRUE(mesh);
  ASSERT_EQ(count, 3);
  EXPECT_EQ(mesh->GetFVF(), 0x112u);
  EXPECT_EQ(mesh->GetNumFaces(), 6u);
  EXPECT_EQ(mesh->GetNumVertices(), 8u);
  D3DMATERIAL8 first;
  BufferGetMaterial(*materials, 0, first);
  EXPECT_FLOAT_EQ(first.Diffuse.r, 0.1f);
  EXPECT_FLOAT_EQ(first.Diffuse.a, 0.4f);
  EXPECT_FLOAT_EQ(first.Emissive.b, 0.7f);
  EXPECT_FLOAT_EQ(first.Emissive.a, 1.0f);
  EXPECT_FLOAT_EQ(first.Specular.a, 1.0f);
  EXPECT_FLOAT_EQ(first.Ambient.r, 0.0f);
  EXPECT_EQ(BufferGetTextureName(*materials, 0), "a.png");
  EXPECT_EQ(BufferGetTextureName(*materials, 1), "");
  EXPECT_EQ(BufferGetTextureName(*materials, 2), "b.png");
  EXPECT_THROW(BufferGetTextureName(*materials, 3), D3DError);

  // Positions keep the file's left-handed values: nothing is mirrored.
  std::vector<float> v(8 * 8);
  mesh->GetVertexBuffer()->GetData(0, 8 * 32, 0, v.data());
  float minX = 1e9f, maxZ = -1e9f;
  for (int i = 0; i < 8; ++i) {
    minX = std::min(minX, v[static_cast<size_t>(i) * 8]);
    maxZ = std::max(maxZ, v[static_cast<size_t>(i) * 8 + 2]);
    EXPECT_FLOAT_EQ(v[static_cast<size_t>(i) * 8 + 4], 1.0f);  // normal y
  }
  EXPECT_FLOAT_EQ(minX, -3.0f);
  EXPECT_FLOAT_EQ(maxZ, 1.0f);
}

TEST(Loader, FormatsFrameTransformsAndBadFiles) {
  GraphicsFixture f(32, 32);
  ASSERT_TRUE(f.startDevice());
  XModel plain = quadModel(1, 0, {});
  plain.normals.clear();
  plain.frameMatrix = {2, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 0.5f, -1, 1};
  f.writeModel("plain.x", plain);
  std::shared_ptr<D3DXBuffer> materials;
  int32_t count = 0;
  auto mesh = LoadMeshFromX(f.folder.str() + "/models/plain.x", D3DXMESH_MANAGED, f.device(),
                            nullptr, materials, count);
  EXPECT_EQ(mesh->GetFVF(), 0x102u);
  std::vector<float> v(4 * 5);
  mesh->GetVertexBuffer()->GetData(0, 4 * 20, 0, v.data());
  // Corner (-1, 0, -1) scaled by 2 in x and moved by (5, 0.5, -1).
  EXPECT_FLOAT_EQ(v[0], 3.0f);
  EXPECT_FLOAT_EQ(v[1], 0.5f);
  EXPECT_FLOAT_EQ(v[2], -2.0f);
  EXPECT_THROW(mesh->GetVertexBuffer()->GetData(4, 4 * 20, 0, v.data()), D3DError);

  const std::string text = quadModel(1, 0, {}).text();
  const std::vector<std::pair<std::string, std::string>> bad = {
      {"empty.x", ""},
      {"header.x", "xof 0303txt 0032\n"},
      {"truncated.x", text.substr(0, text.size() / 2)},
      {"garbage.x", std::string("\x01\xfe\x00\x7fxof garbage\xff", 17)},
      {"words.x", "xof 0303txt 0032\nMesh { 99999999; 1;2;3;; }"},
  };
  for (const auto& [name, bytes] : bad) {
    f.writeFile(name, bytes);
    EXPECT_THROW(LoadMeshFromX(f.folder.str() + "/models/" + name, D3DXMESH_MANAGED, f.device(),
                               nullptr, materials, count),
                 D3DError)
        << name;
  }
  EXPECT_THROW(LoadMeshFromX(f.folder.str() + "/models/none.x", D3DXMESH_MANAGED, f.device(),
                             nullptr, materials, count),
               D3DError);
  f.writeFile("bad.png", "\x89PNG\r\n\x1a\n not really");
  EXPECT_THROW(CreateTextureFromFile(f.device(), f.folder.str() + "/models/bad.png"), D3DError);
}

}  // namespace
}  // namespace ostrel::testing
