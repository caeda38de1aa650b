#pragma once
// An offscreen host: real OpenGL rendering through EGL (Mesa's software rasteriser where there is
// no GPU), a manual clock, a seeded random source and captured message boxes. Used by the tests,
// the command-line renderer and CI.

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "ostrel/Platform.h"
#include "ostrel/testing/DeviceProbes.h"

namespace ostrel {

struct HeadlessOptions {
  int pixelWidth = 640, pixelHeight = 480;  // the control's size
  float twipsPerPixelX = 15, twipsPerPixelY = 15;
  std::string appPath;  // empty: the folder that holds the shipped models/
  int32_t screenWidthMm = 508, screenHeightMm = 286;            // HORZSIZE, VERTSIZE
  int32_t screenWidthPixels = 1920, screenHeightPixels = 1080;  // HORZRES, VERTRES
  // How the simulated adapter answers the device layer's probes (see
  // ostrel/testing/DeviceProbes.h).
  bool direct3DAvailable = true;                   // false: Direct3DCreate gives none
  int32_t checkDeviceTypeResult = 0;               // what CheckDeviceType answers
  bool multisample4 = true, multisample6 = false;  // CheckDeviceMultiSampleType; a device asked
                                                   // for more samples than the renderer has gets
                                                   // the most it has
  bool hardwareVertexProcessing = true;            // false: the first CreateDevice fails
  bool softwareVertexProcessing = true;            // false: the second one raises a failure
  int32_t maxAnisotropy = 16;                      // MaxAnisotropy of GetDeviceCaps
};

// The platform is its own surface.
class HeadlessPlatform : public Platform, public Surface, public DeviceProbes {
 public:
  explicit HeadlessPlatform(HeadlessOptions options = {});
  ~HeadlessPlatform() override;
  HeadlessPlatform(const HeadlessPlatform&) = delete;
  HeadlessPlatform& operator=(const HeadlessPlatform&) = delete;

  // Clocks: real until useManualClock; then both start at the given readings and move together.
  void useManualClock(int32_t startMs, float startTimer);
  void advance(int32_t ms);
  // How far the manual clock moves at each frame asked for, drawn or not (default 16), so that
  // anything that waits for the clock across frames also ends when nothing can be drawn.
  void frameAdvanceMs(int32_t ms);
  void seedRandom(uint32_t seed);

  const std::vector<std::string>& messages() const { return messages_; }
  void resizeControl(int pixelWidth, int pixelHeight);
  void loseDevice();
  void makeDeviceResettable();
  int presentCount() const { return presentCount_; }
  int resetCount() const { return resetCount_; }
  bool saveWindowPng(const std::string& path) const;

  int32_t timeGetTime() override;
  float Timer() override;
  float Rnd() override;
  float TwipsPerPixelX() override { return options_.twipsPerPixelX; }
  float TwipsPerPixelY() override { return options_.twipsPerPixelY; }
  ScreenMetrics screenMetrics() override;
  std::string AppPath() override;
  float controlWidth() override;
  float controlHeight() override;
  void MsgBox(const std::string& text) override;
  void Refresh(const Label& label) override;

  Surface& surface() override { return *this; }

  bool makeContextCurrent() override;
  void placePicture(int32_t widthPixels, int32_t heightPixels) override;
  void pictureSize(int32_t& widthPixels, int32_t& heightPixels) override;
  void presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) override;
  Image windowImage() const override;

  AdapterProfile adapterProfile() const override;
  int32_t cooperativeLevel() const override;
  void deviceWasReset() override;
  void frameAsked() override;

 private:
  struct Context;  // the EGL display and context, made on first use

  HeadlessOptions options_;
  std::vector<std::string> messages_;
  int presentCount_ = 0, resetCount_ = 0;
  int32_t cooperativeLevel_ = 0;
  bool manualClock_ = false;
  int64_t manualMs_ = 0;    // manual timeGetTime reading
  double manualTimer_ = 0;  // manual Timer reading, seconds since midnight
  int32_t frameAdvanceMs_ = 16;
  std::mt19937 random_;
  int32_t pictureWidth_ = 0, pictureHeight_ = 0;  // pic's client size in pixels
  Image presented_;                               // the last presented picture, pic-sized
  bool presentedAny_ = false;
  std::shared_ptr<Context> context_;  // shared_ptr: the type is complete only in the graphics half
};

}  // namespace ostrel
