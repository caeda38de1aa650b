#pragma once
// Pictures to PNG files through libpng at its default compression.

#include <string>

#include "ostrel/Platform.h"

namespace render {

// Writes the picture as 8-bit RGB (the window is opaque, so its alpha is left out). The file
// appears under its name only when complete; false with the reason otherwise.
bool writePng(const std::string& path, const ostrel::Image& image, std::string& error);

}  // namespace render
