#include "platform/StatusFramePainter.h"

#include <algorithm>
#include <cmath>

#include "ostrel/ctlBoard.h"

namespace ostrel {

namespace {

// A system colour (0x80000000 and up) stands for the window background: white.
uint32_t opaqueColour(int32_t colour) {
  if (colour < 0) return 0xFFFFFF;
  return static_cast<uint32_t>(colour) & 0xFFFFFF;
}

void fillRect(Image& image, int left, int top, int width, int height, int32_t colour) {
  uint32_t c = opaqueColour(colour);
  int x0 = std::max(left, 0), y0 = std::max(top, 0);
  int x1 = std::min(left + width, image.width), y1 = std::min(top + height, image.height);
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      uint8_t* p = &image.rgba[(static_cast<size_t>(y) * image.width + x) * 4];
      p[0] = c & 0xFF;
      p[1] = (c >> 8) & 0xFF;
      p[2] = (c >> 16) & 0xFF;
      p[3] = 255;
    }
  }
}

}  // namespace

void paintStatusFrame(Image& image, const Label& frame, const Label& status, const Label& progress,
                      float twipsPerPixelX, float twipsPerPixelY) {
  // Hiding the frame hides everything in it.
  if (!frame.Visible || twipsPerPixelX <= 0 || twipsPerPixelY <= 0) return;
  auto px = [&](float twips) { return static_cast<int>(std::lround(twips / twipsPerPixelX)); };
  auto py = [&](float twips) { return static_cast<int>(std::lround(twips / twipsPerPixelY)); };
  int fx = px(frame.Left), fy = py(frame.Top), fw = px(frame.Width), fh = py(frame.Height);
  fillRect(image, fx, fy, fw, fh, frame.BackColor);
  // The fill lies under the text; children are clipped to the frame.
  if (progress.Visible && progress.Width > 0) {
    int w = std::min(px(progress.Width), fw - px(progress.Left));
    int h = std::min(py(progress.Height), fh - py(progress.Top));
    fillRect(image, fx + px(progress.Left), fy + py(progress.Top), w, h, progress.BackColor);
  }
  (void)status;
}

}  // namespace ostrel
