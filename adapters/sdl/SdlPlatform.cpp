// The SDL window's platform: its context, its clocks and metrics, and the showing of frames. The
// window keeps the last presented picture in a texture of pic's size, so that an expose or a
// refresh of the status frame can show it again without a new frame of the control.

#include "ostrel/sdl/SdlPlatform.h"

#include <SDL.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "ostrel/PlatformSupport.h"
#include "ostrel/WindowPicture.h"
#include "ostrel/ctlBoard.h"

namespace ostrel {

namespace {

constexpr float kLogicalDpi = 96;
constexpr float kTwipsPerInch = 1440;
constexpr float kMaxScale = 4;

}  // namespace

SdlPlatform::SdlPlatform(const std::string& title, int width, int height, float scale)
    : title_(title),
      scale_(scale > 0 ? scale : 0),
      picture_(std::make_unique<WindowPicture>()),
      random_(std::random_device{}()) {
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 3);
  SDL_GL_SetAttribute(SDL_GL_CONTEXT_PROFILE_MASK, SDL_GL_CONTEXT_PROFILE_CORE);
  SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
  SDL_GL_SetAttribute(SDL_GL_RED_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_GREEN_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_BLUE_SIZE, 8);
  SDL_GL_SetAttribute(SDL_GL_DEPTH_SIZE, 0);
  window_ =
      SDL_CreateWindow(title.c_str(), SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, width, height,
                       SDL_WINDOW_OPENGL | SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
  if (!window_) {
    error_ = std::string("no window: ") + SDL_GetError();
    return;
  }
  context_ = SDL_GL_CreateContext(window_);
  if (!context_) {
    error_ = std::string("no OpenGL 3.3 core context: ") + SDL_GetError();
  } else if (epoxy_gl_version() < 33) {
    error_ = "the OpenGL context is older than 3.3";
    SDL_GL_DeleteContext(context_);
    context_ = nullptr;
  }
  if (!context_) {
    SDL_DestroyWindow(window_);
    window_ = nullptr;
    return;
  }
  SDL_GL_SetSwapInterval(1);
  int w = 0, h = 0;
  drawableSize(w, h);
  pictureWidth_ = w;
  pictureHeight_ = h;
  show();
}

SdlPlatform::~SdlPlatform() {
  // GL objects still held by meshes or devices die with the context, not after it.
  releaseGraphics(*this);
  if (context_) {
    if (makeContextCurrent()) picture_->release();
    SDL_GL_MakeCurrent(window_, nullptr);
    SDL_GL_DeleteContext(context_);
  }
  if (window_) SDL_DestroyWindow(window_);
}

int SdlPlatform::displayIndex() const {
  return window_ ? std::max(SDL_GetWindowDisplayIndex(window_), 0) : 0;
}

uint32_t SdlPlatform::windowId() const {
  return window_ ? SDL_GetWindowID(window_) : 0;
}

void SdlPlatform::setTitle(const std::string& title) {
  if (window_) SDL_SetWindowTitle(window_, title.c_str());
}

void SdlPlatform::drawableSize(int& width, int& height) const {
  width = height = 0;
  if (window_) SDL_GL_GetDrawableSize(window_, &width, &height);
}

float SdlPlatform::scale() const {
  if (scale_ > 0) return scale_;
  int ww = 0, wh = 0, dw = 0, dh = 0;
  if (window_) SDL_GetWindowSize(window_, &ww, &wh);
  drawableSize(dw, dh);
  // Where the system scales windows itself, the drawable is larger than the window.
  if (ww > 0 && dw > ww) return static_cast<float>(dw) / static_cast<float>(ww);
  float dpi = 0;
  if (SDL_GetDisplayDPI(displayIndex(), nullptr, &dpi, nullptr) != 0 || !(dpi > 0)) return 1;
  // Monitors report their physical DPI: 92 or 108 is an unscaled display, 144 and 192 are not.
  return std::clamp(std::round(dpi / kLogicalDpi * 4) / 4, 1.0f, kMaxScale);
}

float SdlPlatform::twipsPerPixel() const {
  return kTwipsPerInch / (kLogicalDpi * scale());
}

float SdlPlatform::TwipsPerPixelX() {
  return twipsPerPixel();
}

float SdlPlatform::TwipsPerPixelY() {
  return twipsPerPixel();
}

void SdlPlatform::toTwips(float x, float y, float& X, float& Y) const {
  int ww = 0, wh = 0, dw = 0, dh = 0;
  if (window_) SDL_GetWindowSize(window_, &ww, &wh);
  drawableSize(dw, dh);
  // Window units to device pixels, then to twips.
  if (ww > 0) x = x * static_cast<float>(dw) / static_cast<float>(ww);
  if (wh > 0) y = y * static_cast<float>(dh) / static_cast<float>(wh);
  const float twips = twipsPerPixel();
  X = x * twips;
  Y = y * twips;
}

int32_t SdlPlatform::timeGetTime() {
  // SDL's tick counter is 32 bits of milliseconds and wraps, like the platform's.
  return static_cast<int32_t>(SDL_GetTicks());
}

float SdlPlatform::Timer() {
  return secondsSinceLocalMidnight();
}

float SdlPlatform::Rnd() {
  return unitFloat(random_());
}

ScreenMetrics SdlPlatform::screenMetrics() {
  const int display = displayIndex();
  SDL_Rect bounds{0, 0, 1920, 1080};
  SDL_GetDisplayBounds(display, &bounds);
  float hdpi = 0, vdpi = 0;
  if (SDL_GetDisplayDPI(display, nullptr, &hdpi, &vdpi) != 0 || !(hdpi > 0) || !(vdpi > 0)) {
    hdpi = vdpi = kLogicalDpi;
  }
  auto mm = [](int pixels, float dpi) {
    return static_cast<int32_t>(std::lround(static_cast<float>(pixels) * 25.4f / dpi));
  };
  return {mm(bounds.w, hdpi), mm(bounds.h, vdpi), bounds.w, bounds.h};
}

std::string SdlPlatform::AppPath() {
  return shippedAssetFolder();
}

float SdlPlatform::controlWidth() {
  int w = 0, h = 0;
  drawableSize(w, h);
  return static_cast<float>(w) * twipsPerPixel();
}

float SdlPlatform::controlHeight() {
  int w = 0, h = 0;
  drawableSize(w, h);
  return static_cast<float>(h) * twipsPerPixel();
}

void SdlPlatform::MsgBox(const std::string& text) {
  std::fprintf(stderr, "%s: %s\n", title_.c_str(), text.c_str());
  SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_INFORMATION, title_.c_str(), text.c_str(), window_);
}

// The status frame reaches the window now: the loading of the models holds the thread, so no
// expose would come in time.
void SdlPlatform::Refresh(const Label&) {
  show();
}

void SdlPlatform::repaint() {
  show();
}

bool SdlPlatform::makeContextCurrent() {
  if (!ok()) return false;
  if (SDL_GL_GetCurrentContext() == context_) return true;
  return SDL_GL_MakeCurrent(window_, context_) == 0;
}

void SdlPlatform::placePicture(int32_t widthPixels, int32_t heightPixels) {
  pictureWidth_ = widthPixels;
  pictureHeight_ = heightPixels;
}

void SdlPlatform::pictureSize(int32_t& widthPixels, int32_t& heightPixels) {
  widthPixels = pictureWidth_;
  heightPixels = pictureHeight_;
}

void SdlPlatform::presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) {
  if (!makeContextCurrent()) return;
  picture_->keep(framebuffer, width, height, pictureWidth_, pictureHeight_);
  show();
}

bool SdlPlatform::presentedAny() const {
  return picture_->presentedAny();
}

void SdlPlatform::show() {
  if (!makeContextCurrent()) return;
  int dw = 0, dh = 0;
  drawableSize(dw, dh);
  picture_->draw(0, dw, dh, attachedControl(), twipsPerPixel(), twipsPerPixel());
  SDL_GL_SwapWindow(window_);
}

Image SdlPlatform::windowImage() const {
  if (ok() &&
      (SDL_GL_GetCurrentContext() == context_ || SDL_GL_MakeCurrent(window_, context_) == 0)) {
    return picture_->image(pictureWidth_, pictureHeight_, attachedControl(), twipsPerPixel(),
                           twipsPerPixel());
  }
  return solidImage(pictureWidth_, pictureHeight_, WindowPicture::kDefaultBackColour);
}

}  // namespace ostrel
