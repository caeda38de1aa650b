#pragma once
// The MSZIP form of compressed .x files, inflated with zlib block by block the way the model
// reader does it, so that the check sees the very bytes that the reader will parse.

#include <cstdint>
#include <vector>

#include "graphics/XFileCursor.h"

namespace ostrel::graphics {

// The data after the 16-byte header. Throws XFileRefusal (offset into the file) for a block
// whose header, length or deflate stream is broken.
std::vector<uint8_t> inflateXFile(const std::vector<uint8_t>& file);

}  // namespace ostrel::graphics
