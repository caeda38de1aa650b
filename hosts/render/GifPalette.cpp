#include "GifPalette.h"

#include <algorithm>

namespace render {

namespace {

// Colours are counted at 5 bits a channel: fine enough for 256 entries, small enough to sort.
constexpr int kBits = 5;
constexpr int kLevels = 1 << kBits;

struct Bin {
  uint64_t count = 0;
  uint64_t sum[3] = {0, 0, 0};  // of the full 8-bit values, for the mean
  uint8_t level[3] = {0, 0, 0};
};

struct Box {
  size_t first = 0, last = 0;  // a range of the bins, which splitting keeps sorted per box
  uint64_t count = 0;
  int axis = 0, range = 0;  // the widest channel and its width in levels
};

void measure(Box& box, const std::vector<Bin>& bins) {
  uint8_t lo[3] = {255, 255, 255}, hi[3] = {0, 0, 0};
  box.count = 0;
  for (size_t i = box.first; i < box.last; ++i) {
    box.count += bins[i].count;
    for (int c = 0; c < 3; ++c) {
      lo[c] = std::min(lo[c], bins[i].level[c]);
      hi[c] = std::max(hi[c], bins[i].level[c]);
    }
  }
  box.range = -1;
  for (int c = 0; c < 3; ++c) {
    if (hi[c] - lo[c] > box.range) {
      box.range = hi[c] - lo[c];
      box.axis = c;
    }
  }
}

// Populous wide boxes first; a box of one colour level cannot be split.
double splitPriority(const Box& box) {
  return box.range == 0 ? -1.0 : static_cast<double>(box.count) * box.range;
}

}  // namespace

GifPalette::GifPalette(std::span<const ostrel::Image> samples)
    : nearest_(size_t{1} << 18, int16_t{-1}) {
  std::vector<Bin> histogram(kLevels * kLevels * kLevels);
  for (const ostrel::Image& image : samples) {
    for (size_t p = 0; p + 3 < image.rgba.size(); p += 4) {
      const uint8_t* px = &image.rgba[p];
      Bin& bin =
          histogram[static_cast<size_t>(((px[0] >> 3) << 10) | ((px[1] >> 3) << 5) | (px[2] >> 3))];
      ++bin.count;
      for (int c = 0; c < 3; ++c) {
        bin.sum[c] += px[c];
        bin.level[c] = static_cast<uint8_t>(px[c] >> 3);
      }
    }
  }
  std::vector<Bin> bins;
  std::copy_if(histogram.begin(), histogram.end(), std::back_inserter(bins),
               [](const Bin& b) { return b.count > 0; });
  if (bins.empty()) bins.push_back(Bin{1, {0, 0, 0}, {0, 0, 0}});

  std::vector<Box> boxes(1);
  boxes[0].last = bins.size();
  measure(boxes[0], bins);
  while (boxes.size() < static_cast<size_t>(kColours)) {
    auto widest = std::max_element(boxes.begin(), boxes.end(), [](const Box& a, const Box& b) {
      return splitPriority(a) < splitPriority(b);
    });
    if (splitPriority(*widest) < 0) break;
    Box& box = *widest;
    const int axis = box.axis;
    std::sort(bins.begin() + static_cast<std::ptrdiff_t>(box.first),
              bins.begin() + static_cast<std::ptrdiff_t>(box.last),
              [axis](const Bin& a, const Bin& b) { return a.level[axis] < b.level[axis]; });
    // Cut at the median pixel, but never so that one side is empty.
    uint64_t seen = 0;
    size_t cut = box.first + 1;
    for (size_t i = box.first; i + 1 < box.last; ++i) {
      seen += bins[i].count;
      cut = i + 1;
      if (seen * 2 >= box.count) break;
    }
    Box upper;
    upper.first = cut;
    upper.last = box.last;
    box.last = cut;
    measure(box, bins);
    measure(upper, bins);
    boxes.push_back(upper);
  }

  count_ = static_cast<int>(boxes.size());
  for (size_t i = 0; i < boxes.size(); ++i) {
    uint64_t sum[3] = {0, 0, 0};
    for (size_t b = boxes[i].first; b < boxes[i].last; ++b) {
      for (int c = 0; c < 3; ++c) sum[c] += bins[b].sum[c];
    }
    uint32_t colour = 0xFF000000u;
    for (int c = 0; c < 3; ++c) {
      const uint64_t mean = (sum[c] + boxes[i].count / 2) / boxes[i].count;
      colour |= static_cast<uint32_t>(std::min<uint64_t>(mean, 255)) << (16 - 8 * c);
    }
    argb_[i] = colour;
  }
}

void GifPalette::map(const ostrel::Image& image, uint8_t* indices, int stride) {
  for (int y = 0; y < image.height; ++y) {
    const uint8_t* px = image.rgba.data() + static_cast<size_t>(y) * image.width * 4;
    uint8_t* out = indices + static_cast<ptrdiff_t>(y) * stride;
    for (int x = 0; x < image.width; ++x, px += 4) {
      const size_t key =
          static_cast<size_t>(((px[0] >> 2) << 12) | ((px[1] >> 2) << 6) | (px[2] >> 2));
      int16_t& entry = nearest_[key];
      if (entry < 0) {
        // The middle of the 6-bit cell stands for every colour in it.
        const int r = ((px[0] >> 2) << 2) + 2, g = ((px[1] >> 2) << 2) + 2,
                  b = ((px[2] >> 2) << 2) + 2;
        int best = 0, bestDistance = 1 << 30;
        for (int i = 0; i < count_; ++i) {
          const int dr = r - static_cast<int>((argb_[static_cast<size_t>(i)] >> 16) & 0xFF);
          const int dg = g - static_cast<int>((argb_[static_cast<size_t>(i)] >> 8) & 0xFF);
          const int db = b - static_cast<int>(argb_[static_cast<size_t>(i)] & 0xFF);
          const int distance = dr * dr + dg * dg + db * db;
          if (distance < bestDistance) {
            bestDistance = distance;
            best = i;
          }
        }
        entry = static_cast<int16_t>(best);
      }
      out[x] = static_cast<uint8_t>(entry);
    }
  }
}

}  // namespace render
