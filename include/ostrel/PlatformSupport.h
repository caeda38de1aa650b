#pragma once
// Helpers for writing a Platform: what every shipped platform does the same way, available to a
// host's own platform from the installed package.

#include <cstdint>
#include <string>

#include "ostrel/Platform.h"

namespace ostrel {

// The folder that holds the shipped models/: the installed share/ostrel of the prefix the library
// lies in when there is one, else the source tree's assets. A good AppPath for most hosts.
std::string shippedAssetFolder();

// Seconds since local midnight, with the fraction of the current second: a Timer for most hosts.
float secondsSinceLocalMidnight();

// A uniform value in [0, 1) from 32 random bits: the top 24 are kept, so every value is exact in a
// float and below 1.
inline float unitFloat(uint32_t bits) {
  return static_cast<float>(bits >> 8) * (1.0f / 16777216.0f);
}

// A window picture of one colour (0x00BBGGRR), opaque: what a window shows before its first frame.
Image solidImage(int width, int height, int32_t colour);

// Paints the visible parts of a status frame over a window picture, placed and sized in twips.
void paintStatusFrame(Image& image, const Label& frame, const Label& status, const Label& progress,
                      float twipsPerPixelX, float twipsPerPixelY);
// The same for the frame of a control; nothing when control is nullptr.
void paintStatusFrame(Image& image, const ctlBoard* control, float twipsPerPixelX,
                      float twipsPerPixelY);

// Reads width x height pixels of a framebuffer object of the current OpenGL context into image,
// top row first and opaque. False when nothing could be read.
bool readFramebuffer(uint32_t framebuffer, int32_t width, int32_t height, Image& image);

// Call from a platform's destructor while its OpenGL context still exists: the GL objects that the
// control's device and meshes hold in it are deleted now, and their later release touches no GL.
void releaseGraphics(Platform& platform);

}  // namespace ostrel
