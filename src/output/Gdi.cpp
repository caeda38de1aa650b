// Window device contexts over a Platform's picture, and an enhanced-metafile recorder that writes
// its records byte by byte, little-endian, whatever the host's byte order.

#include "output/Gdi.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <utility>
#include <vector>

namespace ostrel::output {

namespace {

constexpr uint32_t EMR_HEADER = 1;
constexpr uint32_t EMR_EOF = 14;
constexpr uint32_t EMR_SETSTRETCHBLTMODE = 21;
constexpr uint32_t EMR_BITBLT = 76;

constexpr uint32_t ENHMETA_SIGNATURE = 0x464D4520;  // " EMF"
constexpr uint32_t META_VERSION = 0x10000;
constexpr uint32_t kHeaderSize = 108;
constexpr uint32_t kEofSize = 20;
constexpr uint32_t kBitBltFixedSize = 100;  // the record up to its bitmap header
constexpr uint32_t kBitmapInfoSize = 40;
constexpr uint32_t DIB_RGB_COLORS = 0;
constexpr uint32_t BI_RGB = 0;
constexpr uint32_t kWhite = 0x00FFFFFF;  // a window context's background colour
constexpr uint64_t kMaxFileSize = std::numeric_limits<uint32_t>::max();

// Appends little-endian values.
class Writer {
 public:
  explicit Writer(std::vector<uint8_t>& out) : out_(out) {}
  void u16(uint16_t v) {
    out_.push_back(static_cast<uint8_t>(v));
    out_.push_back(static_cast<uint8_t>(v >> 8));
  }
  void u32(uint32_t v) {
    for (int shift = 0; shift < 32; shift += 8) out_.push_back(static_cast<uint8_t>(v >> shift));
  }
  void i32(int32_t v) { u32(static_cast<uint32_t>(v)); }
  void f32(float v) {
    uint32_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    u32(bits);
  }
  void rect(const RECT& r) {
    i32(r.left);
    i32(r.top);
    i32(r.right);
    i32(r.bottom);
  }

 private:
  std::vector<uint8_t>& out_;
};

struct Recording {
  std::FILE* file = nullptr;
  RECT frame;
  RECT bounds{0, 0, -1, -1};     // what was drawn, in reference pixels, inclusive; empty so far
  std::vector<uint8_t> records;  // every record between the header and the end record
  uint32_t recordCount = 0;

  Recording() = default;
  Recording(const Recording&) = delete;
  Recording& operator=(const Recording&) = delete;
  ~Recording() {
    if (file) std::fclose(file);
  }

  void include(const RECT& r) {
    if (r.right < r.left || r.bottom < r.top) return;
    if (bounds.right < bounds.left) {
      bounds = r;
      return;
    }
    bounds = {std::min(bounds.left, r.left), std::min(bounds.top, r.top),
              std::max(bounds.right, r.right), std::max(bounds.bottom, r.bottom)};
  }
};

}  // namespace

struct DeviceContext {
  HWND window = nullptr;          // the window GetDC made it for; null for a metafile context
  ScreenMetrics metrics;          // of the screen, or of a metafile's reference device
  int32_t width = 0, height = 0;  // client size
  Image surface;                  // the window's picture when the context was made
  int32_t stretchMode = BLACKONWHITE;
  std::unique_ptr<Recording> recording;  // a metafile context's records
};

struct EnhMetaFile {
  std::vector<uint8_t> bytes;
};

namespace {

// The handles given out and not yet released, one set per kind.
template <class T>
struct Registry {
  std::mutex mutex;
  std::unordered_set<T*> live;
};

template <class T>
Registry<T>& registry() {
  static Registry<T> r;
  return r;
}

template <class T>
T* adopt(std::unique_ptr<T> object) {
  auto& r = registry<T>();
  std::lock_guard lock(r.mutex);
  r.live.insert(object.get());
  return object.release();
}

template <class T>
bool isLive(T* handle) {
  auto& r = registry<T>();
  std::lock_guard lock(r.mutex);
  return handle && r.live.count(handle) != 0;
}

// Takes back ownership of a live handle that passes the test; null otherwise.
template <class T, class Test>
std::unique_ptr<T> take(T* handle, Test test) {
  auto& r = registry<T>();
  std::lock_guard lock(r.mutex);
  if (!handle || r.live.count(handle) == 0 || !test(*handle)) return nullptr;
  r.live.erase(handle);
  return std::unique_ptr<T>(handle);
}

DeviceContext* liveMetafileDc(HDC hdc) {
  return isLive(hdc) && hdc->recording ? hdc : nullptr;
}
DeviceContext* liveWindowDc(HDC hdc) {
  return isLive(hdc) && hdc->window ? hdc : nullptr;
}

// The window's pixel at (x, y) as blue, green, red; black outside its client area and picture.
void sourcePixel(const DeviceContext& dc, int64_t x, int64_t y, uint8_t bgr[3]) {
  const Image& s = dc.surface;
  bgr[0] = bgr[1] = bgr[2] = 0;
  if (x < 0 || y < 0 || x >= std::min(dc.width, s.width) || y >= std::min(dc.height, s.height)) {
    return;
  }
  const uint8_t* p =
      &s.rgba[(static_cast<size_t>(y) * static_cast<size_t>(s.width) + static_cast<size_t>(x)) * 4];
  bgr[0] = p[2];
  bgr[1] = p[1];
  bgr[2] = p[0];
}

bool writeAll(std::FILE* file, const std::vector<uint8_t>& bytes) {
  return std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && std::fflush(file) == 0;
}

}  // namespace

HDC GetDC(HWND hWnd) {
  if (!hWnd) return nullptr;
  try {
    auto dc = std::make_unique<DeviceContext>();
    dc->window = hWnd;
    hWnd->surface().pictureSize(dc->width, dc->height);
    dc->width = std::max(dc->width, 0);
    dc->height = std::max(dc->height, 0);
    dc->metrics = hWnd->screenMetrics();
    dc->surface = hWnd->surface().windowImage();
    const Image& s = dc->surface;
    if (s.width < 0 || s.height < 0 ||
        s.rgba.size() < static_cast<size_t>(s.width) * static_cast<size_t>(s.height) * 4) {
      dc->surface = Image{};  // a picture that does not hold its pixels shows nothing
    }
    return adopt(std::move(dc));
  } catch (...) {
    return nullptr;
  }
}

int32_t ReleaseDC(HWND hWnd, HDC hdc) {
  auto dc = take(hdc, [hWnd](const DeviceContext& d) { return hWnd && d.window == hWnd; });
  return dc ? 1 : 0;
}

BOOL GetClientRect(HWND hWnd, RECT* rect) {
  if (!hWnd || !rect) return 0;
  int32_t width = 0, height = 0;
  try {
    hWnd->surface().pictureSize(width, height);
  } catch (...) {
    return 0;
  }
  *rect = RECT{0, 0, std::max(width, 0), std::max(height, 0)};
  return 1;
}

int32_t GetDeviceCaps(HDC hdc, int32_t index) {
  if (!isLive(hdc)) return 0;
  switch (index) {
    case HORZSIZE:
      return hdc->metrics.widthMm;
    case VERTSIZE:
      return hdc->metrics.heightMm;
    case HORZRES:
      return hdc->metrics.widthPixels;
    case VERTRES:
      return hdc->metrics.heightPixels;
    default:
      return 0;
  }
}

HDC CreateEnhMetaFileA(HDC hdcRef, const char* filename, const RECT* frame,
                       const char* description) {
  // The control never names its metafiles; a description is not supported.
  if (!liveWindowDc(hdcRef) || !filename || !frame || description) return nullptr;
  try {
    auto dc = std::make_unique<DeviceContext>();
    dc->metrics = hdcRef->metrics;
    dc->recording = std::make_unique<Recording>();
    dc->recording->frame = *frame;
    // The file is made (or emptied) now, so that a name that cannot be written fails here.
    dc->recording->file = std::fopen(filename, "wb");
    if (!dc->recording->file) return nullptr;
    return adopt(std::move(dc));
  } catch (...) {
    return nullptr;
  }
}

int32_t SetStretchBltMode(HDC hdc, int32_t mode) {
  if (!isLive(hdc) || mode < BLACKONWHITE || mode > HALFTONE) return 0;
  if (Recording* rec = hdc->recording.get()) {
    try {
      Writer w(rec->records);
      w.u32(EMR_SETSTRETCHBLTMODE);
      w.u32(12);
      w.u32(static_cast<uint32_t>(mode));
      ++rec->recordCount;
    } catch (...) {
      return 0;
    }
  }
  return std::exchange(hdc->stretchMode, mode);
}

BOOL BitBlt(HDC hdc, int32_t x, int32_t y, int32_t cx, int32_t cy, HDC hdcSrc, int32_t xSrc,
            int32_t ySrc, uint32_t rop) {
  DeviceContext* dest = liveMetafileDc(hdc);
  const DeviceContext* src = liveWindowDc(hdcSrc);
  if (!dest || !src || cx < 0 || cy < 0) return 0;
  Recording& rec = *dest->recording;

  // 24-bit rows, each padded to a multiple of 4 bytes.
  const uint64_t stride = (static_cast<uint64_t>(cx) * 3 + 3) & ~uint64_t{3};
  const uint64_t bitsSize = stride * static_cast<uint64_t>(cy);
  const uint64_t recordSize = kBitBltFixedSize + kBitmapInfoSize + bitsSize;
  if (recordSize + rec.records.size() + kHeaderSize + kEofSize > kMaxFileSize) return 0;

  // C++20 narrowing wraps, as the 32-bit fields of the record do.
  const RECT bounds{x, y, static_cast<int32_t>(int64_t{x} + cx - 1),
                    static_cast<int32_t>(int64_t{y} + cy - 1)};
  const size_t start = rec.records.size();
  try {
    rec.records.reserve(start + recordSize);
    Writer w(rec.records);
    w.u32(EMR_BITBLT);
    w.u32(static_cast<uint32_t>(recordSize));
    w.rect(bounds);
    w.i32(x);
    w.i32(y);
    w.i32(cx);
    w.i32(cy);
    w.u32(rop);
    w.i32(xSrc);
    w.i32(ySrc);
    for (float m : {1.0f, 0.0f, 0.0f, 1.0f, 0.0f, 0.0f}) w.f32(m);  // identity source transform
    w.u32(kWhite);
    w.u32(DIB_RGB_COLORS);
    w.u32(kBitBltFixedSize);
    w.u32(kBitmapInfoSize);
    w.u32(kBitBltFixedSize + kBitmapInfoSize);
    w.u32(static_cast<uint32_t>(bitsSize));

    // The bitmap header: a positive height means the bottom row comes first.
    w.u32(kBitmapInfoSize);
    w.i32(cx);
    w.i32(cy);
    w.u16(1);   // planes
    w.u16(24);  // bits per pixel
    w.u32(BI_RGB);
    w.u32(static_cast<uint32_t>(bitsSize));
    w.i32(0);  // pixels per metre, x and y
    w.i32(0);
    w.u32(0);  // colours used and important
    w.u32(0);

    uint8_t bgr[3];
    const size_t padding = static_cast<size_t>(stride - static_cast<uint64_t>(cx) * 3);
    for (int64_t row = int64_t{cy} - 1; row >= 0; --row) {
      for (int64_t col = 0; col < cx; ++col) {
        sourcePixel(*src, xSrc + col, ySrc + row, bgr);
        rec.records.insert(rec.records.end(), bgr, bgr + 3);
      }
      rec.records.insert(rec.records.end(), padding, uint8_t{0});
    }
  } catch (...) {
    rec.records.resize(start);
    return 0;
  }
  ++rec.recordCount;
  rec.include(bounds);
  return 1;
}

HENHMETAFILE CloseEnhMetaFile(HDC hdc) {
  auto dc = take(hdc, [](const DeviceContext& d) { return d.recording != nullptr; });
  if (!dc) return nullptr;
  Recording& rec = *dc->recording;
  try {
    auto mf = std::make_unique<EnhMetaFile>();
    std::vector<uint8_t>& bytes = mf->bytes;
    const uint64_t fileSize = uint64_t{kHeaderSize} + rec.records.size() + kEofSize;
    if (fileSize > kMaxFileSize) return nullptr;
    bytes.reserve(static_cast<size_t>(fileSize));
    const ScreenMetrics& m = dc->metrics;

    Writer w(bytes);
    w.u32(EMR_HEADER);
    w.u32(kHeaderSize);
    w.rect(rec.bounds);
    w.rect(rec.frame);
    w.u32(ENHMETA_SIGNATURE);
    w.u32(META_VERSION);
    w.u32(static_cast<uint32_t>(fileSize));
    w.u32(rec.recordCount + 2);  // with the header and the end record
    w.u16(1);                    // handles: only the reserved one
    w.u16(0);
    w.u32(0);  // no description
    w.u32(0);
    w.u32(0);  // no palette
    w.i32(m.widthPixels);
    w.i32(m.heightPixels);
    w.i32(m.widthMm);
    w.i32(m.heightMm);
    w.u32(0);  // no pixel format
    w.u32(0);
    w.u32(0);  // not OpenGL
    w.u32(static_cast<uint32_t>(m.widthMm) * 1000u);
    w.u32(static_cast<uint32_t>(m.heightMm) * 1000u);

    bytes.insert(bytes.end(), rec.records.begin(), rec.records.end());

    w.u32(EMR_EOF);
    w.u32(kEofSize);
    w.u32(0);   // no palette entries
    w.u32(16);  // where they would start
    w.u32(kEofSize);

    const bool written = writeAll(rec.file, bytes);
    const bool closed = std::fclose(std::exchange(rec.file, nullptr)) == 0;
    if (!written || !closed) return nullptr;
    return adopt(std::move(mf));
  } catch (...) {
    return nullptr;
  }
}

BOOL DeleteEnhMetaFile(HENHMETAFILE hemf) {
  return take(hemf, [](const EnhMetaFile&) { return true; }) ? 1 : 0;
}

}  // namespace ostrel::output
