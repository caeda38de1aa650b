#include <stb_truetype.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <iterator>
#include <string_view>

#include "ostrel/BoardRecords.h"
#include "ostrel/PlatformSupport.h"
#include "ostrel/ctlBoard.h"

namespace ostrel {

namespace {

constexpr float kTwipsPerPoint = 20;
constexpr int32_t kBorderColour = 0x505050;
constexpr uint32_t kEdgeColour = 0x200000;  // dark blue, 0x00BBGGRR
constexpr unsigned kEdgeStrength = 120;     // of 255

struct Rect {
  int left = 0, top = 0, right = 0, bottom = 0;  // right and bottom exclusive
  Rect intersect(const Rect& o) const {
    return {std::max(left, o.left), std::max(top, o.top), std::min(right, o.right),
            std::min(bottom, o.bottom)};
  }
  bool empty() const { return right <= left || bottom <= top; }
};

// A system colour (0x80000000 and up) stands for the window background: white.
uint32_t opaqueColour(int32_t colour) {
  if (colour < 0) return 0xFFFFFF;
  return static_cast<uint32_t>(colour) & 0xFFFFFF;
}

// Text in a system colour is drawn in the window text colour: black.
uint32_t textColour(int32_t colour) {
  if (colour < 0) return 0x000000;
  return static_cast<uint32_t>(colour) & 0xFFFFFF;
}

uint8_t* pixelAt(Image& image, int x, int y) {
  return &image.rgba[(static_cast<size_t>(y) * image.width + x) * 4];
}

void fillRect(Image& image, const Rect& area, int32_t colour) {
  uint32_t c = opaqueColour(colour);
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      uint8_t* p = pixelAt(image, x, y);
      p[0] = c & 0xFF;
      p[1] = (c >> 8) & 0xFF;
      p[2] = (c >> 16) & 0xFF;
      p[3] = 255;
    }
  }
}

// The caption's font, read once per process; ok stays false when the file is missing or bad.
struct CaptionFont {
  std::vector<unsigned char> data;
  stbtt_fontinfo info{};
  bool ok = false;

  CaptionFont() {
    std::ifstream file(OSTREL_FONT_FILE, std::ios::binary);
    if (!file) return;
    data.assign(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
    if (data.empty()) return;
    const int offset = stbtt_GetFontOffsetForIndex(data.data(), 0);
    ok = offset >= 0 && stbtt_InitFont(&info, data.data(), offset) != 0;
  }
};

const CaptionFont& captionFont() {
  static const CaptionFont font;
  return font;
}

// Code points of UTF-8 text; a byte that starts no valid sequence stands for itself.
std::vector<int> codePoints(std::string_view text) {
  std::vector<int> out;
  for (size_t i = 0; i < text.size();) {
    const auto b = static_cast<unsigned char>(text[i]);
    int length = b < 0x80           ? 1
                 : (b >> 5) == 0x6  ? 2
                 : (b >> 4) == 0xE  ? 3
                 : (b >> 3) == 0x1E ? 4
                                    : 0;
    bool valid = length > 0 && i + length <= text.size();
    int cp = length == 1 ? b : length == 2 ? (b & 0x1F) : length == 3 ? (b & 0x0F) : (b & 0x07);
    for (int k = 1; valid && k < length; ++k) {
      const auto c = static_cast<unsigned char>(text[i + k]);
      valid = (c & 0xC0) == 0x80;
      cp = (cp << 6) | (c & 0x3F);
    }
    if (!valid) {
      out.push_back(b);
      ++i;
    } else {
      out.push_back(cp);
      i += static_cast<size_t>(length);
    }
  }
  return out;
}

// Coverage of a line of text, 0..255 per pixel, in a box whose top left lies at (left, top) on
// the image.
struct Coverage {
  int left = 0, top = 0, width = 0, height = 0;
  std::vector<uint8_t> alpha;
  uint8_t at(int x, int y) const {
    if (x < 0 || y < 0 || x >= width || y >= height) return 0;
    return alpha[static_cast<size_t>(y) * width + x];
  }
};

Coverage rasterise(const CaptionFont& font, std::string_view text, float pixelHeight, float originX,
                   int top) {
  const float scale = stbtt_ScaleForMappingEmToPixels(&font.info, pixelHeight);
  int ascent = 0, descent = 0, lineGap = 0;
  stbtt_GetFontVMetrics(&font.info, &ascent, &descent, &lineGap);
  const int baseline = static_cast<int>(std::lround(ascent * scale));
  const std::vector<int> cps = codePoints(text);

  float width = 0;
  for (size_t i = 0; i < cps.size(); ++i) {
    int advance = 0, bearing = 0;
    stbtt_GetCodepointHMetrics(&font.info, cps[i], &advance, &bearing);
    width += advance * scale;
    if (i + 1 < cps.size())
      width += stbtt_GetCodepointKernAdvance(&font.info, cps[i], cps[i + 1]) * scale;
  }
  Coverage cov;
  const int margin = 2;
  cov.left = static_cast<int>(std::floor(originX)) - margin;
  cov.top = top;
  cov.width = static_cast<int>(std::ceil(width)) + 2 * margin + 1;
  cov.height = static_cast<int>(std::lround((ascent - descent) * scale)) + margin;
  cov.alpha.assign(static_cast<size_t>(cov.width) * cov.height, 0);

  float penX = originX - cov.left;
  std::vector<unsigned char> glyph;
  for (size_t i = 0; i < cps.size(); ++i) {
    const float shift = penX - std::floor(penX);
    int x0 = 0, y0 = 0, x1 = 0, y1 = 0;
    stbtt_GetCodepointBitmapBoxSubpixel(&font.info, cps[i], scale, scale, shift, 0, &x0, &y0, &x1,
                                        &y1);
    const int gw = x1 - x0, gh = y1 - y0;
    if (gw > 0 && gh > 0) {
      glyph.assign(static_cast<size_t>(gw) * gh, 0);
      stbtt_MakeCodepointBitmapSubpixel(&font.info, glyph.data(), gw, gh, gw, scale, scale, shift,
                                        0, cps[i]);
      const int gx = static_cast<int>(std::floor(penX)) + x0, gy = baseline + y0;
      for (int y = 0; y < gh; ++y) {
        for (int x = 0; x < gw; ++x) {
          const int cx = gx + x, cy = gy + y;
          if (cx < 0 || cy < 0 || cx >= cov.width || cy >= cov.height) continue;
          uint8_t& a = cov.alpha[static_cast<size_t>(cy) * cov.width + cx];
          a = std::max(a, glyph[static_cast<size_t>(y) * gw + x]);
        }
      }
    }
    int advance = 0, bearing = 0;
    stbtt_GetCodepointHMetrics(&font.info, cps[i], &advance, &bearing);
    penX += advance * scale;
    if (i + 1 < cps.size()) {
      penX += stbtt_GetCodepointKernAdvance(&font.info, cps[i], cps[i + 1]) * scale;
    }
  }
  return cov;
}

void blend(uint8_t* p, uint32_t colour, unsigned alpha) {
  const unsigned channel[3] = {colour & 0xFF, (colour >> 8) & 0xFF, (colour >> 16) & 0xFF};
  for (int k = 0; k < 3; ++k) {
    p[k] = static_cast<uint8_t>((channel[k] * alpha + p[k] * (255 - alpha) + 127) / 255);
  }
}

void paintCaption(Image& image, const Label& status, const Rect& frame, const Rect& clip,
                  float twipsPerPixelX, float twipsPerPixelY) {
  const CaptionFont& font = captionFont();
  if (!font.ok || status.Caption.empty() || status.FontSize <= 0) return;
  const float pixelHeight = status.FontSize * kTwipsPerPoint / twipsPerPixelY;
  const float originX = frame.left + status.Left / twipsPerPixelX;
  const int top = frame.top + static_cast<int>(std::lround(status.Top / twipsPerPixelY));
  const Coverage cov = rasterise(font, status.Caption, pixelHeight, originX, top);

  const Rect box =
      Rect{cov.left, cov.top, cov.left + cov.width, cov.top + cov.height}.intersect(clip);
  const uint32_t colour = textColour(status.ForeColor);
  // A soft dark edge around the letters keeps the light caption readable on the white frame and
  // on the blue fill alike.
  for (int y = box.top; y < box.bottom; ++y) {
    for (int x = box.left; x < box.right; ++x) {
      unsigned edge = 0;
      for (int dy = -1; dy <= 1; ++dy) {
        for (int dx = -1; dx <= 1; ++dx) {
          edge = std::max<unsigned>(edge, cov.at(x - cov.left + dx, y - cov.top + dy));
        }
      }
      if (edge != 0) blend(pixelAt(image, x, y), kEdgeColour, edge * kEdgeStrength / 255);
    }
  }
  for (int y = box.top; y < box.bottom; ++y) {
    for (int x = box.left; x < box.right; ++x) {
      const unsigned a = cov.at(x - cov.left, y - cov.top);
      if (a != 0) blend(pixelAt(image, x, y), colour, a);
    }
  }
}

}  // namespace

void paintStatusFrame(Image& image, const Label& frame, const Label& status, const Label& progress,
                      float twipsPerPixelX, float twipsPerPixelY) {
  // Hiding the frame hides everything in it.
  if (!frame.Visible || twipsPerPixelX <= 0 || twipsPerPixelY <= 0) return;
  if (image.width <= 0 || image.height <= 0) return;
  // Label sizes may be anything a host wrote; pixels stay far inside int so sums cannot overflow.
  auto pixels = [](double v) {
    return static_cast<int>(std::lround(std::isnan(v) ? 0.0 : std::clamp(v, -1e7, 1e7)));
  };
  auto px = [&](float twips) { return pixels(double{twips} / twipsPerPixelX); };
  auto py = [&](float twips) { return pixels(double{twips} / twipsPerPixelY); };
  const Rect window{0, 0, image.width, image.height};
  const int fx = px(frame.Left), fy = py(frame.Top);
  const Rect frameArea{fx, fy, fx + px(frame.Width), fy + py(frame.Height)};
  // Children are clipped to the frame, and everything to the window.
  const Rect clip = frameArea.intersect(window);
  if (clip.empty()) return;
  // A one-pixel border; the labels are placed in the client area inside it, where the full fill
  // (two pixels less than the frame each way) fits exactly.
  fillRect(image, clip, kBorderColour);
  const Rect client{frameArea.left + 1, frameArea.top + 1, frameArea.right - 1,
                    frameArea.bottom - 1};
  const Rect inner = client.intersect(clip);
  if (inner.empty()) return;
  fillRect(image, inner, frame.BackColor);
  // The fill lies under the text.
  if (progress.Visible && progress.Width > 0 && progress.Height > 0) {
    const int left = client.left + px(progress.Left), top = client.top + py(progress.Top);
    const Rect fill{left, top, left + px(progress.Width), top + py(progress.Height)};
    fillRect(image, fill.intersect(inner), progress.BackColor);
  }
  if (status.Visible) paintCaption(image, status, client, inner, twipsPerPixelX, twipsPerPixelY);
}

void paintStatusFrame(Image& image, const ctlBoard* control, float twipsPerPixelX,
                      float twipsPerPixelY) {
  if (control == nullptr) return;
  paintStatusFrame(image, control->label1(), control->lblStatus(), control->lblProgress(),
                   twipsPerPixelX, twipsPerPixelY);
}

Image solidImage(int width, int height, int32_t colour) {
  Image image;
  image.width = std::max(width, 0);
  image.height = std::max(height, 0);
  image.rgba.resize(static_cast<size_t>(image.width) * image.height * 4);
  for (size_t i = 0; i < image.rgba.size(); i += 4) {
    image.rgba[i] = static_cast<uint8_t>(colour & 0xFF);
    image.rgba[i + 1] = static_cast<uint8_t>((colour >> 8) & 0xFF);
    image.rgba[i + 2] = static_cast<uint8_t>((colour >> 16) & 0xFF);
    image.rgba[i + 3] = 255;
  }
  return image;
}

}  // namespace ostrel
