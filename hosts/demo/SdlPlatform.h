#pragma once
// A Platform for one SDL2 window with an OpenGL 3.3 core context: pic is the window's whole
// client area, in drawable pixels, and the control's frames are shown stretched over it.

#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "ostrel/Platform.h"

struct SDL_Window;

namespace ostrel {

class SdlPlatform : public Platform {
 public:
  // Opens the window (SDL's video must be initialised) with its context. Check ok() after: a
  // system without a display, or without OpenGL 3.3, gives a platform that is not ok, and why.
  SdlPlatform(const std::string& title, int width, int height);
  ~SdlPlatform() override;
  SdlPlatform(const SdlPlatform&) = delete;
  SdlPlatform& operator=(const SdlPlatform&) = delete;

  bool ok() const { return window_ != nullptr && context_ != nullptr; }
  const std::string& error() const { return error_; }
  SDL_Window* window() const { return window_; }
  uint32_t windowId() const;
  void setTitle(const std::string& title);
  void seedRandom(uint32_t seed) { random_.seed(seed); }

  // Shows the last presented picture (the back colour before the first) and the status frame
  // again, as after an expose of the window.
  void repaint();
  bool presentedAny() const { return presentedAny_; }
  // Window coordinates (as SDL reports the mouse) to drawable pixels.
  void toDrawable(float& x, float& y) const;

  int32_t timeGetTime() override;
  float Timer() override;
  float Rnd() override;
  float TwipsPerPixelX() override { return kTwipsPerPixel; }
  float TwipsPerPixelY() override { return kTwipsPerPixel; }
  ScreenMetrics screenMetrics() override;
  std::string AppPath() override;
  float controlWidth() override;
  float controlHeight() override;
  void MsgBox(const std::string& text) override;
  void Refresh(const Label& label) override;

  AdapterProfile adapterProfile() override;
  bool makeContextCurrent() override;
  void placePicture(int32_t widthPixels, int32_t heightPixels) override;
  void pictureSize(int32_t& widthPixels, int32_t& heightPixels) override;
  void presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) override;
  Image windowImage() const override;
  void attachControl(const int32_t* backColor, const Label* frame, const Label* status,
                     const Label* progress) override;
  void detachControl() override;

 private:
  static constexpr float kTwipsPerPixel = 15;
  struct Gl;  // the GL objects that keep and show the window's picture

  void drawableSize(int& width, int& height) const;
  int displayIndex() const;  // the display the window stands on
  bool frameVisible() const;
  void show();  // the kept picture and the status frame to the window, then swap

  SDL_Window* window_ = nullptr;
  void* context_ = nullptr;  // SDL_GLContext
  std::string error_;
  std::unique_ptr<Gl> gl_;
  std::mt19937 random_;
  int32_t pictureWidth_ = 0, pictureHeight_ = 0;  // pic's client size in drawable pixels
  bool presentedAny_ = false;
  const int32_t* backColor_ = nullptr;
  const Label* frame_ = nullptr;
  const Label* status_ = nullptr;
  const Label* progress_ = nullptr;
};

}  // namespace ostrel
