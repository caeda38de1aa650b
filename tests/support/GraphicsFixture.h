#pragma once
// A control on the real offscreen device, set up without start-up: the Direct3D object and a
// device go straight into the thread's graphics context, and the meshes are loaded by hand from
// small models that the test writes into a temporary folder.

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "control/ControlAccess.h"
#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/HeadlessPlatform.h"
#include "support/TempFolder.h"
#include "support/XFileSamples.h"

namespace ostrel::testing {

// A model in the text .x form: one Mesh, optionally inside a Frame with a transform.
struct XModel {
  std::vector<std::array<double, 3>> positions;
  std::vector<std::vector<uint32_t>> faces;
  std::vector<std::array<double, 3>> normals;  // per vertex, faces index them alike; empty: none
  std::vector<std::array<double, 2>> uvs;      // per vertex; empty: none
  std::vector<XMaterial> materials;            // empty: no material list
  std::vector<uint32_t> faceMaterial;          // one per face
  std::vector<double> frameMatrix;             // 16 values, row-vector form; empty: no frame
  std::string text() const;
};

// A horizontal square of half-size h at height y, facing up (clockwise seen from above), with
// texture coordinates 0..1 (v = 0 at the far edge, +z) and one material.
XModel quadModel(float h, float y, const XMaterial& material);
// Three strips 2 wide from x = -3 to 3, z from -3 to 3, facing up; the faces name the materials
// out of order: the left strip the third, the middle one the second, the right one the first.
XModel stripsModel(const std::vector<XMaterial>& materials);

// 8-bit RGBA as PNG bytes, and a solid colour.
std::string pngBytes(int width, int height, const std::vector<uint8_t>& rgba);
std::string solidPng(uint8_t r, uint8_t g, uint8_t b, int size = 4);

struct GraphicsFixture {
  // With a device unless withDevice is false.
  explicit GraphicsFixture(int width = 96, int height = 96, HeadlessOptions options = {},
                           bool withDevice = true);
  ~GraphicsFixture();

  ControlState& state() { return controlState(board); }
  graphics::Direct3DDevice8& device() { return *graphics::graphicsContext().device; }

  // The Direct3D object and a device as start-up makes them, in the graphics context with the
  // platform and base directory, and the render states start-up sets. False when there is none.
  bool startDevice(int32_t multiSampleType = 0);
  // Writes a model or image under models/ of the base directory.
  void writeModel(const std::string& name, const XModel& m) const { writeFile(name, m.text()); }
  void writeFile(const std::string& name, const std::string& bytes) const {
    folder.write("models/" + name, bytes);
  }
  std::string path(const std::string& name) const { return folder / ("models/" + name); }
  // Renders a frame and gives what the window shows.
  Image frame() {
    board.render();
    return platform.windowImage();
  }
  // The colour in an image of the window pixel where a world point appears in the last frame.
  std::array<int, 4> at(const Image& image, float x, float y, float z);
  // Every float of a mesh's vertex buffer.
  static std::vector<float> vertices(const graphics::Mesh& mesh);

  TempFolder folder;
  HeadlessPlatform platform;
  ctlBoard board;
};

// Red, green, blue and alpha of one pixel.
std::array<int, 4> pixel(const Image& image, int x, int y);
// How many pixels differ from `colour` in some channel.
int countNot(const Image& image, std::array<int, 3> colour);

}  // namespace ostrel::testing
