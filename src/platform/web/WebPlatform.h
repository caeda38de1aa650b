#pragma once
// The board in a web page: a canvas with a WebGL 2 context stands for pic. Built only for
// WebAssembly.

#include <cstdint>
#include <random>
#include <string>

#include "ostrel/Platform.h"

namespace ostrel {

class WebPlatform : public Platform, public Surface {
 public:
  // canvasSelector names the canvas ("#board"); assetFolder is where the packed models lie.
  WebPlatform(std::string canvasSelector, std::string assetFolder);
  ~WebPlatform() override;
  WebPlatform(const WebPlatform&) = delete;
  WebPlatform& operator=(const WebPlatform&) = delete;

  // The canvas's laid-out size in CSS pixels and the page's device pixel ratio.
  void layout(double cssWidth, double cssHeight, double devicePixelRatio);
  // Twips are 1/1440 inch; a CSS pixel is 1/96 inch, whatever the device pixel ratio.
  static constexpr float kTwipsPerCssPixel = 15.0f;

  int32_t timeGetTime() override;
  float Timer() override;
  float Rnd() override;
  float TwipsPerPixelX() override;
  float TwipsPerPixelY() override;
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

  // Hands the control's status frame to the page when it changed: a frame is no part of the
  // WebGL picture but page elements over the canvas.
  void showStatusFrame();

 private:
  std::string canvas_, assets_;
  double cssWidth_ = 0, cssHeight_ = 0, ratio_ = 1;
  int32_t pictureWidth_ = 0, pictureHeight_ = 0;
  intptr_t context_ = 0;  // the WebGL context handle; 0 until made
  bool contextFailed_ = false;
  std::mt19937 random_;
  std::string statusShown_;  // what the page was last told of the status frame
};

}  // namespace ostrel
