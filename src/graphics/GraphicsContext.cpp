#include "graphics/GraphicsContext.h"

namespace ostrel::graphics {

GraphicsContext& graphicsContext() {
  thread_local GraphicsContext context;
  return context;
}

}  // namespace ostrel::graphics
