// The screen dump: every record and field of the metafile, the frame rectangle's rounding, the
// names that cannot be written, the control's fresh frame, and the handles of the GDI layer.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <optional>

#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "output/ModPrintScreen.h"
#include "support/EventRecorder.h"
#include "support/TempFolder.h"

namespace ostrel {
namespace {

namespace fs = std::filesystem;
using namespace output;
using Words = std::vector<uint32_t>;

Words W(std::initializer_list<int64_t> values) {
  return Words(values.begin(), values.end());
}

// A metafile read back: its bytes and where each record starts, walked by the records' sizes.
struct Emf {
  std::vector<uint8_t> bytes;
  std::vector<size_t> at;
  uint32_t u32(size_t i) const {
    return bytes.at(i) | bytes.at(i + 1) << 8 | bytes.at(i + 2) << 16 |
           uint32_t(bytes.at(i + 3)) << 24;
  }
  Words words(size_t from, size_t n) const {
    Words out;
    for (size_t i = 0; i < n; ++i) out.push_back(u32(from + 4 * i));
    return out;
  }
};

std::optional<Emf> readEmf(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  Emf f{{std::istreambuf_iterator<char>(in), {}}, {}};
  for (size_t at = 0; at < f.bytes.size(); at += f.u32(at + 4)) {
    const uint32_t size = f.u32(at + 4);
    if (size < 8 || size % 4 || size > f.bytes.size() - at) return std::nullopt;
    f.at.push_back(at);
  }
  return f;
}

// Checks every record and field of the dump of client from a window that showed picture.
void expectDump(const std::string& path, const Image& picture, const RECT& c,
                std::initializer_list<int64_t> frame, const ScreenMetrics& m) {
  auto f = readEmf(path);
  ASSERT_TRUE(f && f->at.size() == 5) << path;
  const int64_t w = c.right - c.left, h = c.bottom - c.top, stride = (w * 3 + 3) / 4 * 4;
  const size_t b = f->at[2];
  EXPECT_EQ(f->words(0, 6), W({1, 108, 0, 0, w - 1, h - 1}));
  EXPECT_EQ(f->words(24, 4), W(frame));
  EXPECT_EQ(f->words(40, 17), W({0x464D4520, 0x10000, int64_t(f->bytes.size()), 5, 1, 0, 0, 0,
                                 m.widthPixels, m.heightPixels, m.widthMm, m.heightMm, 0, 0, 0,
                                 m.widthMm * 1000, m.heightMm * 1000}));
  EXPECT_EQ(f->words(108, 3), W({21, 12, 4}));  // HALFTONE
  EXPECT_EQ(
      f->words(b, 35),
      W({76, 140 + stride * h, 0,      0,          w - 1,      h - 1, 0,          0,          w,
         h,  0xCC0020,         c.left, c.top,      0x3F800000, 0,     0,          0x3F800000, 0,
         0,  0xFFFFFF,         0,      100,        40,         140,   stride * h, 40,         w,
         h,  1 | 24 << 16,     0,      stride * h, 0,          0,     0,          0}));
  std::vector<uint8_t> want;  // the client area of the picture, bottom row first, as BGR
  for (int y = c.bottom - 1; y >= c.top; --y) {
    for (int x = c.left; x < c.right; ++x)
      for (int k : {2, 1, 0}) want.push_back(picture.rgba[(size_t(y) * picture.width + x) * 4 + k]);
    want.resize(size_t(stride * (c.bottom - y)));  // rows padded with zeros to four bytes
  }
  EXPECT_TRUE(f->bytes.size() >= b + 140 + want.size() &&
              std::equal(want.begin(), want.end(), f->bytes.begin() + long(b + 140)));
  EXPECT_EQ(f->words(f->at[3], 3), W({21, 12, 1}));  // back to BLACKONWHITE
  EXPECT_EQ(f->words(f->at[4], 5), W({14, 20, 0, 16, 20}));
}

HeadlessOptions window(int w, int h, ScreenMetrics m = {508, 286, 1920, 1080}) {
  HeadlessOptions o;
  o.pixelWidth = w, o.pixelHeight = h;
  o.screenWidthMm = m.widthMm, o.screenHeightMm = m.heightMm;
  o.screenWidthPixels = m.widthPixels, o.screenHeightPixels = m.heightPixels;
  return o;
}

long entries(const testing::TempFolder& dir) {
  return std::distance(fs::directory_iterator(dir.path()), {});
}

// A window whose every pixel differs from its neighbours in each channel.
class PatternPlatform : public HeadlessPlatform {
 public:
  explicit PatternPlatform(HeadlessOptions o) : HeadlessPlatform(o), o_(o) {}
  Image windowImage() const override {
    Image image{o_.pixelWidth, o_.pixelHeight, {}};
    for (int y = 0; y < image.height; ++y)
      for (int x = 0; x < image.width; ++x)
        image.rgba.insert(image.rgba.end(), {uint8_t(x * 17 + y), uint8_t(y * 29 + x * 3),
                                             uint8_t((x * y) ^ 0x5A), 255});
    return image;
  }
  HeadlessOptions o_;
};

TEST(ScreenDump, PixelsKeepTheirPlaceAndFrameTiesRoundToEven) {
  testing::TempFolder dir;
  PatternPlatform odd(window(13, 7));              // rows padded to 40 bytes
  dir.write("pattern", std::string(100000, 'x'));  // replaced, not appended to
  DeleteEnhMetaFile(ModPrintScreen::writeWindowMetafile(&odd, dir / "pattern"));
  // 13 * 50700 / 1920 = 343.28, 7 * 28500 / 1080 = 184.72
  expectDump(dir / "pattern", odd.windowImage(), {0, 0, 13, 7}, {0, 0, 343, 185},
             odd.screenMetrics());
  EXPECT_EQ(entries(dir), 1);  // the name kept as given, no extension added

  PatternPlatform p(window(5, 6, {2, 3, 8, 16}));
  HDC hdc = GetDC(&p);
  DeleteEnhMetaFile(ModPrintScreen::writeDcMetafile(hdc, {1, 1, 3, 5}, dir / "ties.emf"));
  EXPECT_EQ(ReleaseDC(&p, hdc), 1);
  // 1 * 100 / 8 = 12.5, 3 * 100 / 8 = 37.5, 1 * 200 / 16 = 12.5, 5 * 200 / 16 = 62.5
  expectDump(dir / "ties.emf", p.windowImage(), {1, 1, 3, 5}, {12, 12, 38, 62}, p.screenMetrics());
}

TEST(ScreenDump, WhatCannotBeWrittenGivesNothing) {
  testing::TempFolder dir;
  HeadlessPlatform p;
  fs::create_directory(dir / "folder");
  for (const std::string& name : {dir / "missing/x.emf", std::string(), dir / "folder"}) {
    EXPECT_FALSE(ModPrintScreen::writeWindowMetafile(&p, name)) << name;
  }
  if (fs::exists("/dev/full")) {  // made, but the bytes find no room
    EXPECT_FALSE(ModPrintScreen::writeWindowMetafile(&p, "/dev/full"));
  }
  // Arithmetic that 32 bits cannot hold, or no resolution, makes no file.
  PatternPlatform huge(window(4, 4, {30000000, 286, 1920, 1080}));
  PatternPlatform flat(window(4, 4, {508, 286, 1920, 0}));
  EXPECT_FALSE(ModPrintScreen::writeWindowMetafile(&huge, dir / "huge.emf"));
  EXPECT_FALSE(ModPrintScreen::writeWindowMetafile(&flat, dir / "flat.emf"));
  EXPECT_EQ(entries(dir), 1);
  EXPECT_TRUE(fs::is_empty(dir / "folder"));
  // A file that cannot be written is left alone (root writes read-only files anyway).
  std::ofstream(dir / "locked.emf") << "keep";
  fs::permissions(dir / "locked.emf", fs::perms::owner_read);
  if (geteuid() != 0) {
    EXPECT_FALSE(ModPrintScreen::writeWindowMetafile(&p, dir / "locked.emf"));
    EXPECT_EQ(fs::file_size(dir / "locked.emf"), 4u);
  }
}

TEST(ScreenDump, ControlDumpsAFreshFrameAndGoesOnAfterBadNames) {
  testing::TempFolder dir;
  HeadlessPlatform p(window(96, 64));
  ctlBoard board(p);
  testing::EventRecorder events(board);
  std::vector<bool> seen;  // whether the dump's file is there when the frame before it is reported
  events.onAfterDraw = [&] { seen.push_back(fs::exists(dir / "frame.emf")); };
  board.ambientBackColor(0x00336699);
  for (const std::string& name : {std::string(), dir / "no/such.emf", dir.path()}) {
    board.screenDump(name);
  }
  // No device: the window shows the back colour, as blue, green, red in the bitmap.
  board.screenDump(dir / "before.emf");
  EXPECT_EQ(readEmf(dir / "before.emf")->words(260, 1), W({0x99336699}));
  EXPECT_EQ(entries(dir), 1);
  EXPECT_TRUE(p.messages().empty());

  ASSERT_EQ(board.init(false, 0, 0), std::optional<bool>(true));
  const int presents = p.presentCount();
  seen.clear();
  board.screenDump(dir / "frame.emf");
  EXPECT_EQ(p.presentCount(), presents + 1);
  EXPECT_EQ(seen, std::vector<bool>{false});  // the frame is reported before the file
  // 96 * 50700 / 1920 = 2535, 64 * 28500 / 1080 = 1688.9
  expectDump(dir / "frame.emf", p.windowImage(), {0, 0, 96, 64}, {0, 0, 2535, 1689},
             p.screenMetrics());
}

TEST(Gdi, HandlesAreCheckedAndReleasedOnce) {
  testing::TempFolder dir;
  HeadlessPlatform p, other;
  EXPECT_FALSE(GetDC(nullptr));
  HDC hdc = GetDC(&p);
  EXPECT_EQ(ReleaseDC(&other, hdc), 0);  // another window's: refused, still usable
  const RECT frame{0, 0, 10, 10};
  EXPECT_FALSE(CreateEnhMetaFileA(hdc, (dir / "d.emf").c_str(), &frame, "app\0title\0"));
  HDC mf = CreateEnhMetaFileA(hdc, (dir / "a.emf").c_str(), &frame, nullptr);
  EXPECT_EQ(GetDeviceCaps(mf, VERTSIZE), 286);  // the reference screen's
  EXPECT_EQ(SetStretchBltMode(mf, 5), 0);
  EXPECT_EQ(SetStretchBltMode(mf, COLORONCOLOR), BLACKONWHITE);
  EXPECT_EQ(BitBlt(hdc, 0, 0, 1, 1, mf, 0, 0, SRCCOPY), 0);  // only into a metafile
  EXPECT_EQ(ReleaseDC(&p, mf), 0);
  EXPECT_FALSE(CloseEnhMetaFile(hdc));
  HENHMETAFILE h = CloseEnhMetaFile(mf);
  EXPECT_TRUE(h);
  EXPECT_FALSE(CloseEnhMetaFile(mf));
  EXPECT_EQ(readEmf(dir / "a.emf")->words(108, 3), W({21, 12, 3}));
  EXPECT_EQ(DeleteEnhMetaFile(h), 1);
  EXPECT_EQ(DeleteEnhMetaFile(h), 0);
  EXPECT_EQ(ReleaseDC(&p, hdc), 1);
  EXPECT_EQ(ReleaseDC(&p, hdc), 0);
  EXPECT_EQ(GetDeviceCaps(hdc, HORZRES), 0);
}

}  // namespace
}  // namespace ostrel
