#pragma once
// Paints the visible parts of the control's status frame over a window picture.

#include "ostrel/Platform.h"

namespace ostrel {

// A window picture of one colour (0x00BBGGRR), opaque: what a window shows before its first frame.
Image solidImage(int width, int height, int32_t colour);

void paintStatusFrame(Image& image, const Label& frame, const Label& status, const Label& progress,
                      float twipsPerPixelX, float twipsPerPixelY);

}  // namespace ostrel
