#include "support/GraphicsFixture.h"

#include <stb_image_write.h>

#include <algorithm>
#include <cmath>

#include "graphics/GraphicsContext.h"
#include "graphics/Startup.h"

namespace ostrel::testing {

std::string XModel::text() const {
  XWriter w(XForm::Text);
  if (!frameMatrix.empty()) {
    w.open("Frame", "Root");
    std::array<double, 16> m{};
    std::copy_n(frameMatrix.begin(), m.size(), m.begin());
    w.transform(m);
  }
  w.mesh("Model", positions, faces);
  if (!normals.empty()) w.normals(normals, faces);
  if (!uvs.empty()) w.textureCoords(uvs);
  if (!materials.empty()) w.materials(faceMaterial, materials);
  w.close();
  if (!frameMatrix.empty()) w.close();
  return w.bytes();
}

XModel quadModel(float h, float y, const XMaterial& material) {
  XModel m;
  m.positions = {{-h, y, -h}, {-h, y, h}, {h, y, h}, {h, y, -h}};
  m.faces = {{0, 1, 2, 3}};
  m.normals = {{0, 1, 0}, {0, 1, 0}, {0, 1, 0}, {0, 1, 0}};
  m.uvs = {{0, 1}, {0, 0}, {1, 0}, {1, 1}};
  m.materials = {material};
  m.faceMaterial = {0};
  return m;
}

XModel stripsModel(const std::vector<XMaterial>& materials) {
  XModel m;
  m.positions = {{-3, 0, -3}, {-3, 0, 3}, {-1, 0, 3}, {-1, 0, -3},
                 {1, 0, 3},   {1, 0, -3}, {3, 0, 3},  {3, 0, -3}};
  m.faces = {{2, 4, 5, 3}, {0, 1, 2, 3}, {4, 6, 7, 5}};
  m.faceMaterial = {1, 2, 0};
  m.normals.assign(8, {0, 1, 0});
  m.uvs.assign(8, {0.5f, 0.5f});
  m.materials = materials;
  return m;
}

std::string pngBytes(int width, int height, const std::vector<uint8_t>& rgba) {
  std::string bytes;
  stbi_write_png_to_func(
      [](void* context, void* data, int size) {
        static_cast<std::string*>(context)->append(static_cast<const char*>(data),
                                                   static_cast<size_t>(size));
      },
      &bytes, width, height, 4, rgba.data(), width * 4);
  return bytes;
}

std::string solidPng(uint8_t r, uint8_t g, uint8_t b, int size) {
  std::vector<uint8_t> rgba;
  for (int i = 0; i < size * size; ++i) rgba.insert(rgba.end(), {r, g, b, 255});
  return pngBytes(size, size, rgba);
}

GraphicsFixture::GraphicsFixture(int width, int height, HeadlessOptions options, bool withDevice)
    : platform((options.pixelWidth = width, options.pixelHeight = height, options)),
      board(platform) {
  platform.useManualClock(1000, 3600.0f);
  ControlState& s = state();
  s.pic.Width = static_cast<float>(width) * platform.TwipsPerPixelX();
  s.pic.Height = static_cast<float>(height) * platform.TwipsPerPixelY();
  platform.placePicture(width, height);
  // Start-up would have hidden the status frame by the first frame.
  s.label1.Visible = s.lblStatus.Visible = s.lblProgress.Visible = false;
  if (withDevice && !startDevice()) throw std::runtime_error("no Direct3D object");
}

GraphicsFixture::~GraphicsFixture() {
  graphics::GraphicsContext& context = graphics::graphicsContext();
  context.device.reset();
  context.direct3D.reset();
  context.platform = nullptr;
  context.baseDirectory.clear();
}

bool GraphicsFixture::startDevice(int32_t multiSampleType) {
  using namespace graphics;
  GraphicsContext& context = graphicsContext();
  context.platform = &platform;
  context.baseDirectory = folder.path();
  context.direct3D = Direct3DCreate(platform);
  if (!context.direct3D) return false;
  // Of start-up's parameters the device takes the depth buffer and the samples.
  D3DPRESENT_PARAMETERS& pp = context.presentParameters;
  pp = D3DPRESENT_PARAMETERS();
  pp.EnableAutoDepthStencil = 1;
  pp.MultiSampleType = multiSampleType;
  context.device = context.direct3D->CreateDevice(D3DADAPTER_DEFAULT, D3DDEVTYPE_HAL, &platform,
                                                  D3DCREATE_HARDWARE_VERTEXPROCESSING, pp);
  setDefaultRenderStates(*context.device);
  return true;
}

std::array<int, 4> GraphicsFixture::at(const Image& image, float x, float y, float z) {
  using namespace graphics;
  ControlState& s = state();
  D3DVIEWPORT8 viewport;
  device().GetViewport(viewport);
  D3DVECTOR p;
  D3DXVec3Project(p, D3DVECTOR{x, y, z}, viewport, s.projectionMatrix, s.viewMatrix, s.worldMatrix);
  return pixel(image, static_cast<int>(std::floor(p.x)), static_cast<int>(std::floor(p.y)));
}

std::vector<float> GraphicsFixture::vertices(const graphics::Mesh& mesh) {
  auto& m = const_cast<graphics::Mesh&>(mesh);
  std::vector<float> v(m.GetNumVertices() * graphics::GetFVFVertexSize(m.GetFVF()) / 4);
  m.GetVertexBuffer()->GetData(0, static_cast<uint32_t>(v.size() * 4), 0, v.data());
  return v;
}

std::array<int, 4> pixel(const Image& image, int x, int y) {
  if (x < 0 || y < 0 || x >= image.width || y >= image.height) return {-1, -1, -1, -1};
  const size_t i =
      (static_cast<size_t>(y) * static_cast<size_t>(image.width) + static_cast<size_t>(x)) * 4;
  return {image.rgba[i], image.rgba[i + 1], image.rgba[i + 2], image.rgba[i + 3]};
}

int countNot(const Image& image, std::array<int, 3> colour) {
  int n = 0;
  for (size_t i = 0; i + 3 < image.rgba.size(); i += 4) {
    n += image.rgba[i] != colour[0] || image.rgba[i + 1] != colour[1] ||
         image.rgba[i + 2] != colour[2];
  }
  return n;
}

}  // namespace ostrel::testing

// Assimp 5.2's .x reader loses the mesh it was parsing when a malformed file makes it give up
// (a few hundred bytes per failed load). The library cannot reach that memory; leak reports
// whose allocation lies in Assimp are left out, everything else is still reported.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libassimp.so\n";
}
