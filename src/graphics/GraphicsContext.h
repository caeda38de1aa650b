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
  Platform* platform = nullptr;  // the window system of the control that ran init last
  std::shared_ptr<Direct3D8> direct3D;
  std::shared_ptr<Direct3DDevice8> device;
  D3DPRESENT_PARAMETERS presentParameters;  // every Reset passes this same record
  std::string baseDirectory;                // folder of the log and of models/
};

GraphicsContext& graphicsContext();

}  // namespace ostrel::graphics
