#pragma once
// A Platform for one SDL2 window with an OpenGL 3.3 core context: pic is the window's whole client
// area, rendered at device pixels, and the control's frames are shown stretched over it. The
// twips per pixel follow the display's scale, so the status frame and the gestures keep their size
// on a HiDPI display.

#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "ostrel/Platform.h"

struct SDL_Window;

namespace ostrel {

class WindowPicture;

class SdlPlatform : public Platform, public Surface {
 public:
  // Opens the window (SDL's video must be initialised) with its context, width x height in SDL's
  // window units. scale: device pixels per logical pixel; 0 takes it from the display. Check ok()
  // after: a system without a display, or without OpenGL 3.3, gives a platform that is not ok, and
  // error() says why.
  SdlPlatform(const std::string& title, int width, int height, float scale = 0);
  ~SdlPlatform() override;
  SdlPlatform(const SdlPlatform&) = delete;
  SdlPlatform& operator=(const SdlPlatform&) = delete;

  bool ok() const { return window_ != nullptr && context_ != nullptr; }
  const std::string& error() const { return error_; }
  SDL_Window* window() const { return window_; }
  uint32_t windowId() const;
  void setTitle(const std::string& title);
  void seedRandom(uint32_t seed) { random_.seed(seed); }

  // Device pixels per logical pixel: the drawable's size against the window's where the system
  // scales windows itself, else the display's DPI against 96, in quarter steps.
  float scale() const;
  // Shows the last presented picture (the back colour before the first) and the status frame
  // again, as after an expose of the window.
  void repaint();
  bool presentedAny() const;
  // A point in window coordinates (as SDL reports the mouse) in twips of pic.
  void toTwips(float x, float y, float& X, float& Y) const;

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

 private:
  void drawableSize(int& width, int& height) const;
  float twipsPerPixel() const;
  int displayIndex() const;  // the display the window stands on
  void show();               // the kept picture and the status frame to the window, then swap

  SDL_Window* window_ = nullptr;
  void* context_ = nullptr;  // SDL_GLContext
  std::string error_;
  std::string title_;
  float scale_ = 0;  // as asked; 0: the display's
  std::unique_ptr<WindowPicture> picture_;
  std::mt19937 random_;
  int32_t pictureWidth_ = 0, pictureHeight_ = 0;  // pic's client size in device pixels
};

}  // namespace ostrel
