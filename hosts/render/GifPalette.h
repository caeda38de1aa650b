#pragma once
// A palette of 256 colours made for one whole film from pictures of it, and the mapping of each
// frame onto it: what a GIF needs, since it holds no more than 256 colours.

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "ostrel/Platform.h"

namespace render {

class GifPalette {
 public:
  static constexpr int kColours = 256;

  // Median cut over the colours of the samples, every pixel counted alike, so that colours
  // covering much of the picture (the board) get the finest steps.
  explicit GifPalette(std::span<const ostrel::Image> samples);

  // Opaque 0xAARRGGBB entries; entries past colourCount() are black and unused.
  const std::array<uint32_t, kColours>& argb() const { return argb_; }
  int colourCount() const { return count_; }
  // The nearest entry of every pixel, `stride` bytes from one row to the next.
  void map(const ostrel::Image& image, uint8_t* indices, int stride);

 private:
  std::array<uint32_t, kColours> argb_{};
  int count_ = 0;
  std::vector<int16_t> nearest_;  // by colour at 6 bits a channel; -1 until first needed
};

}  // namespace render
