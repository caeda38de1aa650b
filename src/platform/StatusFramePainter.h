#pragma once
// Paints the visible parts of the control's status frame over a window picture.

#include "ostrel/Platform.h"

namespace ostrel {

void paintStatusFrame(Image& image, const Label& frame, const Label& status, const Label& progress,
                      float twipsPerPixelX, float twipsPerPixelY);

}  // namespace ostrel
