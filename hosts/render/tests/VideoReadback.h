#pragma once
// A film read back through FFmpeg's libraries: its size, the number of frames its decoder gives,
// and the last of them as RGBA; and a PNG file read back.

#include <string>

#include "ostrel/Platform.h"

namespace render::testing {

struct VideoReadback {
  bool ok = false;
  std::string codec;  // the decoder's name: h264, vp9, gif
  int width = 0, height = 0;
  int frames = 0;
  ostrel::Image last;
};

VideoReadback readVideo(const std::string& path);

// A PNG file as RGBA, and how many channels it has; empty when it does not decode.
ostrel::Image readPng(const std::string& path, int* channels = nullptr);

// The mean difference per channel of R, G and B, over two pictures of one size (-1 otherwise).
double meanDifference(const ostrel::Image& a, const ostrel::Image& b);

}  // namespace render::testing
