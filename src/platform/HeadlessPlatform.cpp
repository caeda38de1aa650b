// The headless host's clocks, random source, message capture, metrics and window picture. Its
// OpenGL context and the reading back of presented frames live in HeadlessGraphics.cpp.

#include "ostrel/HeadlessPlatform.h"

#include <stb_image_write.h>

#include <chrono>
#include <cmath>

#include "graphics/d3d8types.h"
#include "ostrel/BoardRecords.h"
#include "platform/PlatformSources.h"
#include "platform/ShippedAssets.h"
#include "platform/StatusFramePainter.h"

namespace ostrel {

namespace {

constexpr double kSecondsPerDay = 86400.0;

}  // namespace

HeadlessPlatform::HeadlessPlatform(HeadlessOptions options)
    : options_(std::move(options)),
      random_(0x0571E1u),
      pictureWidth_(options_.pixelWidth),
      pictureHeight_(options_.pixelHeight) {}

void HeadlessPlatform::useManualClock(int32_t startMs, float startTimer) {
  manualClock_ = true;
  manualMs_ = startMs;
  manualTimer_ = startTimer;
}

void HeadlessPlatform::advance(int32_t ms) {
  if (!manualClock_) return;
  manualMs_ += ms;
  manualTimer_ = std::fmod(manualTimer_ + ms / 1000.0, kSecondsPerDay);
  if (manualTimer_ < 0) manualTimer_ += kSecondsPerDay;
}

void HeadlessPlatform::frameAdvanceMs(int32_t ms) {
  frameAdvanceMs_ = ms;
}

void HeadlessPlatform::seedRandom(uint32_t seed) {
  random_.seed(seed);
}

int32_t HeadlessPlatform::timeGetTime() {
  int64_t ms = manualMs_;
  if (!manualClock_) {
    ms = std::chrono::duration_cast<std::chrono::milliseconds>(
             std::chrono::steady_clock::now().time_since_epoch())
             .count();
  }
  // The platform's millisecond counter is 32 bits wide and wraps.
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(ms)));
}

float HeadlessPlatform::Timer() {
  if (manualClock_) return static_cast<float>(manualTimer_);
  return secondsSinceLocalMidnight();
}

float HeadlessPlatform::Rnd() {
  return unitFloat(random_());
}

ScreenMetrics HeadlessPlatform::screenMetrics() {
  return {options_.screenWidthMm, options_.screenHeightMm, options_.screenWidthPixels,
          options_.screenHeightPixels};
}

std::string HeadlessPlatform::AppPath() {
  return options_.appPath.empty() ? shippedAssetFolder() : options_.appPath;
}

float HeadlessPlatform::controlWidth() {
  return options_.pixelWidth * options_.twipsPerPixelX;
}
float HeadlessPlatform::controlHeight() {
  return options_.pixelHeight * options_.twipsPerPixelY;
}

void HeadlessPlatform::MsgBox(const std::string& text) {
  messages_.push_back(text);
}

// windowImage paints the labels as they stand whenever the window is looked at, so a label
// refreshed now shows in every later picture; there is no message loop to wait for.
void HeadlessPlatform::Refresh(const Label&) {}

void HeadlessPlatform::resizeControl(int pixelWidth, int pixelHeight) {
  options_.pixelWidth = pixelWidth;
  options_.pixelHeight = pixelHeight;
}

void HeadlessPlatform::loseDevice() {
  cooperativeLevel_ = graphics::D3DERR_DEVICELOST;
}
void HeadlessPlatform::makeDeviceResettable() {
  cooperativeLevel_ = graphics::D3DERR_DEVICENOTRESET;
}
int32_t HeadlessPlatform::cooperativeLevel() {
  return cooperativeLevel_;
}

void HeadlessPlatform::deviceWasReset() {
  ++resetCount_;
  if (cooperativeLevel_ == graphics::D3DERR_DEVICENOTRESET) cooperativeLevel_ = graphics::D3D_OK;
}

AdapterProfile HeadlessPlatform::adapterProfile() {
  AdapterProfile p;
  p.direct3DAvailable = options_.direct3DAvailable;
  p.checkDeviceTypeResult = options_.checkDeviceTypeResult;
  p.multisample4 = options_.multisample4;
  p.multisample6 = options_.multisample6;
  p.hardwareVertexProcessing = options_.hardwareVertexProcessing;
  p.softwareVertexProcessing = options_.softwareVertexProcessing;
  p.maxAnisotropy = options_.maxAnisotropy;
  p.displayWidth = options_.screenWidthPixels;
  p.displayHeight = options_.screenHeightPixels;
  return p;
}

void HeadlessPlatform::placePicture(int32_t widthPixels, int32_t heightPixels) {
  pictureWidth_ = widthPixels;
  pictureHeight_ = heightPixels;
}

void HeadlessPlatform::pictureSize(int32_t& widthPixels, int32_t& heightPixels) {
  widthPixels = pictureWidth_;
  heightPixels = pictureHeight_;
}

Image HeadlessPlatform::windowImage() const {
  Image image;
  if (presentedAny_) {
    image = presented_;
  } else {
    // Until the first Present the window shows the control's back colour.
    image = solidImage(pictureWidth_, pictureHeight_, backColor_ ? *backColor_ : 0);
  }
  if (frame_ && status_ && progress_) {
    paintStatusFrame(image, *frame_, *status_, *progress_, options_.twipsPerPixelX,
                     options_.twipsPerPixelY);
  }
  return image;
}

bool HeadlessPlatform::saveWindowPng(const std::string& path) const {
  Image image = windowImage();
  if (image.width <= 0 || image.height <= 0) return false;
  return stbi_write_png(path.c_str(), image.width, image.height, 4, image.rgba.data(),
                        image.width * 4) != 0;
}

void HeadlessPlatform::attachControl(const int32_t* backColor, const Label* frame,
                                     const Label* status, const Label* progress) {
  backColor_ = backColor;
  frame_ = frame;
  status_ = status;
  progress_ = progress;
}

void HeadlessPlatform::detachControl() {
  attachControl(nullptr, nullptr, nullptr, nullptr);
}

}  // namespace ostrel
