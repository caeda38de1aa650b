#pragma once
// Reading a presented back buffer for platforms that show it themselves. Declared without GL
// types so that platform code stays free of GL headers.

#include <cstdint>
#include <vector>

namespace ostrel::graphics::gl {

// Reads width x height RGBA8 pixels of framebuffer object `framebuffer` of the current context
// into rgba, as GL keeps them: bottom row first. rgba keeps its storage from call to call. False
// when nothing could be read.
bool readFramebufferBottomUp(uint32_t framebuffer, int32_t width, int32_t height,
                             std::vector<uint8_t>& rgba);

}  // namespace ostrel::graphics::gl
