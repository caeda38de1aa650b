// The clock, the window picture read back from GL, and the end of a platform's context: what
// every platform does the same way.

#include <chrono>
#include <cmath>
#include <cstring>
#include <ctime>

#include "graphics/d3d8.h"
#include "graphics/gl/GlReadback.h"
#include "ostrel/PlatformSupport.h"

namespace ostrel {

float secondsSinceLocalMidnight() {
  auto now = std::chrono::system_clock::now();
  std::time_t t = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&t, &local);
  double fraction = std::chrono::duration<double>(now.time_since_epoch()).count();
  fraction -= std::floor(fraction);
  return static_cast<float>(local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + fraction);
}

bool readFramebuffer(uint32_t framebuffer, int32_t width, int32_t height, Image& image) {
  std::vector<uint8_t> bottomUp;
  if (!graphics::gl::readFramebufferBottomUp(framebuffer, width, height, bottomUp)) return false;
  image.width = width;
  image.height = height;
  image.rgba.resize(bottomUp.size());
  const size_t row = static_cast<size_t>(width) * 4;
  for (int32_t y = 0; y < height; ++y) {
    std::memcpy(image.rgba.data() + static_cast<size_t>(y) * row,
                bottomUp.data() + static_cast<size_t>(height - 1 - y) * row, row);
  }
  for (size_t i = 3; i < image.rgba.size(); i += 4) image.rgba[i] = 255;
  return true;
}

void releaseGraphics(Platform& platform) {
  graphics::platformContextGoing(platform);
}

}  // namespace ostrel
