#pragma once
// The graphics context: one copy per thread, shared by the controls of that thread. The last
// init on a thread replaces it for all of them.

#include <memory>
#include <string>

#include "graphics/d3d8types.h"

namespace ostrel {
class Platform;
}

namespace ostrel::graphics {

class Direct3D8;
class Direct3DDevice8;

struct GraphicsContext {
  Platform* platform = nullptr;  // the window system of the last init whose control still lives
  std::shared_ptr<Direct3D8> direct3D;
  std::shared_ptr<Direct3DDevice8> device;
  D3DPRESENT_PARAMETERS presentParameters;  // every Reset passes this same record
  std::string baseDirectory;                // folder of the log and of models/
};

GraphicsContext& graphicsContext();

// Where a mesh that fails to load shows its message box: the platform of the control whose load
// runs now, else that of the last init whose control still lives, else nowhere.
Platform* messagePlatform();

// Marks the loads of one control for as long as it lives on the stack.
class LoadingFor {
 public:
  explicit LoadingFor(Platform& platform);
  ~LoadingFor();
  LoadingFor(const LoadingFor&) = delete;
  LoadingFor& operator=(const LoadingFor&) = delete;

 private:
  Platform* previous_;
};

// A control is ending: its platform may go right after it, so the context forgets it.
void forgetPlatform(Platform& platform);

}  // namespace ostrel::graphics
