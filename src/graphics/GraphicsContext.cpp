#include "graphics/GraphicsContext.h"

namespace ostrel::graphics {

namespace {
thread_local Platform* loadingPlatform = nullptr;
}

GraphicsContext& graphicsContext() {
  thread_local GraphicsContext context;
  return context;
}

Platform* messagePlatform() {
  return loadingPlatform ? loadingPlatform : graphicsContext().platform;
}

LoadingFor::LoadingFor(Platform& platform) : previous_(loadingPlatform) {
  loadingPlatform = &platform;
}

LoadingFor::~LoadingFor() {
  loadingPlatform = previous_;
}

void forgetPlatform(Platform& platform) {
  GraphicsContext& context = graphicsContext();
  if (context.platform == &platform) context.platform = nullptr;
}

}  // namespace ostrel::graphics
