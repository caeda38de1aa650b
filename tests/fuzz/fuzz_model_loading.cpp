// Random bytes as a model file and as an image file, loaded through clsMesh on the offscreen
// device: a load may fail with its message box, but never crashes or leaks.

#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "support/XFileSamples.h"

namespace {

using namespace ostrel;

// Failed loads show message boxes; a long run keeps none of them.
struct QuietPlatform : HeadlessPlatform {
  using HeadlessPlatform::HeadlessPlatform;
  void MsgBox(const std::string&) override {}
};

// One platform, device and folder for the whole run.
struct Rig {
  Rig() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ostrel-fuzz-XXXXXX").string();
    if (!mkdtemp(pattern.data())) abort();
    folder = pattern;
    std::filesystem::create_directories(folder / "models");
    HeadlessOptions o;
    o.pixelWidth = 32;
    o.pixelHeight = 32;
    platform = std::make_unique<QuietPlatform>(o);
    graphics::GraphicsContext& context = graphics::graphicsContext();
    context.platform = platform.get();
    context.baseDirectory = folder.string();
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
    std::ofstream(folder / "models" / "quad.x")
        << testing::squareModel(testing::XForm::Text, "img.png");
  }
  // Never destroyed: at exit the thread's graphics context goes before function statics do, so
  // the device and platform stay to the end of the process. Only the folder is removed then.
  ~Rig() = delete;
  std::filesystem::path folder;
  std::unique_ptr<QuietPlatform> platform;
};

struct FolderRemover {
  std::filesystem::path folder;
  ~FolderRemover() {
    std::error_code ec;
    std::filesystem::remove_all(folder, ec);
  }
};

Rig& rig() {
  static Rig* r = new Rig;
  static FolderRemover remover{r->folder};
  return *r;
}

void write(const std::filesystem::path& path, const uint8_t* data, size_t size) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
}

}  // namespace

// Assimp 5.2's .x reader loses the mesh it was parsing when a malformed file makes it give up;
// that memory is out of the library's reach. Other leaks are still reported.
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libassimp.so\n";
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Rig& r = rig();
  // As a model file.
  write(r.folder / "models" / "fuzz.x", data, size);
  {
    clsMesh mesh;
    mesh.init("models/fuzz.x", "");
    if (mesh.visible) {
      mesh.Translate(0.5f, 1, 2, 3);
      mesh.render();
    }
  }
  // As a text model with the right header, so that the parser itself is reached.
  std::string text = "xof 0303txt 0032\n";
  text.append(reinterpret_cast<const char*>(data), size);
  write(r.folder / "models" / "fuzztext.x", reinterpret_cast<const uint8_t*>(text.data()),
        text.size());
  {
    clsMesh mesh;
    mesh.init("models/fuzztext.x", "");
  }
  // As the image of a good model.
  write(r.folder / "models" / "img.png", data, size);
  {
    clsMesh mesh;
    mesh.init("models/quad.x", "");
    if (mesh.visible) mesh.render();
  }
  return 0;
}
