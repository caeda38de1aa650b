// Random bytes as a model file and as an image file, loaded through clsMesh on the offscreen
// device: a load may fail with its message box, but never crashes or leaks.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "support/Sized.h"
#include "support/TempFolder.h"
#include "support/XFileSamples.h"

namespace {

using namespace ostrel;

// Failed loads show message boxes; a long run keeps none of them.
struct QuietPlatform : HeadlessPlatform {
  using HeadlessPlatform::HeadlessPlatform;
  void MsgBox(const std::string&) override {}
};

// One platform and device for the whole run, in a folder that goes at exit.
struct Rig {
  explicit Rig(const testing::TempFolder& folder)
      : folder(folder), platform(std::make_unique<QuietPlatform>(testing::sized(32, 32))) {
    graphics::GraphicsContext& context = graphics::graphicsContext();
    context.platform = platform.get();
    context.baseDirectory = folder.path();
    context.direct3D = graphics::Direct3DCreate(*platform);
    if (!context.direct3D) abort();
    graphics::D3DPRESENT_PARAMETERS& pp = context.presentParameters;
    pp.Windowed = 1;
    pp.EnableAutoDepthStencil = 1;
    pp.AutoDepthStencilFormat = graphics::D3DFMT_D16;
    pp.BackBufferFormat = graphics::D3DFMT_X8R8G8B8;
    context.device =
        context.direct3D->CreateDevice(0, graphics::D3DDEVTYPE_HAL, platform.get(),
                                       graphics::D3DCREATE_HARDWARE_VERTEXPROCESSING, pp);
    // A good model that names a texture, for the image half.
    folder.write("models/quad.x", testing::squareModel(testing::XForm::Text, "img.png"));
  }
  // Never destroyed: at exit the thread's graphics context goes before function statics do, so
  // the device and platform stay to the end of the process. Only the folder is removed then.
  ~Rig() = delete;
  void write(const std::string& name, const std::string& bytes) {
    folder.write("models/" + name, bytes);
  }
  const testing::TempFolder& folder;
  std::unique_ptr<QuietPlatform> platform;
};

Rig& rig() {
  static const testing::TempFolder folder;
  static Rig* r = new Rig(folder);
  return *r;
}

}  // namespace

// Assimp 5.2's .x reader loses the mesh it was parsing when a malformed file makes it give up;
// that memory is out of the library's reach. Other leaks are still reported.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libassimp.so\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Rig& r = rig();
  const std::string bytes(reinterpret_cast<const char*>(data), size);
  // As a model file.
  r.write("fuzz.x", bytes);
  {
    clsMesh mesh;
    mesh.init("models/fuzz.x", "");
    if (mesh.visible) {
      mesh.Translate(0.5f, 1, 2, 3);
      mesh.render();
    }
  }
  // As a text model with the right header, so that the parser itself is reached.
  r.write("fuzztext.x", "xof 0303txt 0032\n" + bytes);
  {
    clsMesh mesh;
    mesh.init("models/fuzztext.x", "");
  }
  // As the image of a good model.
  r.write("img.png", bytes);
  {
    clsMesh mesh;
    mesh.init("models/quad.x", "");
    if (mesh.visible) mesh.render();
  }
  return 0;
}
