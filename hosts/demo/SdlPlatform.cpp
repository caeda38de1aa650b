// The SDL window's platform: its context, its clocks and metrics, and the showing of frames. The
// window keeps the last presented picture in a texture of pic's size, so that an expose or a
// refresh of the status frame can show it again without a new frame of the control.

#include "SdlPlatform.h"

#include <SDL.h>
#include <epoxy/gl.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "graphics/d3d8.h"
#include "graphics/gl/GlReadback.h"
#include "ostrel/ctlBoard.h"
#include "platform/PlatformSources.h"
#include "platform/ShippedAssets.h"
#include "platform/StatusFramePainter.h"

namespace ostrel {

namespace {

constexpr float kFallbackDpi = 96;
constexpr int32_t kDefaultBackColour = 0x404040;  // pic's own, until a control is attached

// The GL state that showing a picture touches, put back as it was: the device layer keeps a
// cache of what it last set and is not told when a refresh paints between its calls.
class KeepGlState {
 public:
  KeepGlState() {
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture_);
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &unpack_);
    glGetIntegerv(GL_PACK_ALIGNMENT, &pack_);
    glGetBooleanv(GL_COLOR_WRITEMASK, mask_);
    scissor_ = glIsEnabled(GL_SCISSOR_TEST);
    glDisable(GL_SCISSOR_TEST);
  }
  ~KeepGlState() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(draw_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read_));
    glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(texture_));
    glPixelStorei(GL_UNPACK_ALIGNMENT, unpack_);
    glPixelStorei(GL_PACK_ALIGNMENT, pack_);
    glColorMask(mask_[0], mask_[1], mask_[2], mask_[3]);
    if (scissor_) glEnable(GL_SCISSOR_TEST);
  }
  KeepGlState(const KeepGlState&) = delete;
  KeepGlState& operator=(const KeepGlState&) = delete;

 private:
  GLint draw_ = 0, read_ = 0, texture_ = 0, unpack_ = 4, pack_ = 4;
  GLboolean mask_[4] = {GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
  GLboolean scissor_ = GL_FALSE;
};

}  // namespace

// A texture with a framebuffer around it, resized on demand.
struct TextureTarget {
  GLuint texture = 0, framebuffer = 0;
  int width = 0, height = 0;

  void fit(int w, int h) {
    if (texture && w == width && h == height) return;
    if (!texture) {
      glGenTextures(1, &texture);
      glGenFramebuffers(1, &framebuffer);
    }
    width = w;
    height = h;
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, w, h, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
  }
  void drop() {
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteTextures(1, &texture);
    texture = framebuffer = 0;
  }
};

struct SdlPlatform::Gl {
  TextureTarget kept;     // the last presented picture, pic-sized, bottom row first
  TextureTarget overlay;  // the picture with the status frame painted over it
};

SdlPlatform::SdlPlatform(const std::string& title, int width, int height)
    : gl_(std::make_unique<Gl>()), random_(std::random_device{}()) {
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
  graphics::platformContextGoing(*this);
  if (context_) {
    if (makeContextCurrent()) {
      gl_->kept.drop();
      gl_->overlay.drop();
    }
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

void SdlPlatform::toDrawable(float& x, float& y) const {
  int ww = 0, wh = 0, dw = 0, dh = 0;
  if (!window_) return;
  SDL_GetWindowSize(window_, &ww, &wh);
  drawableSize(dw, dh);
  if (ww > 0) x = x * static_cast<float>(dw) / static_cast<float>(ww);
  if (wh > 0) y = y * static_cast<float>(dh) / static_cast<float>(wh);
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
    hdpi = vdpi = kFallbackDpi;
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
  return static_cast<float>(w) * kTwipsPerPixel;
}

float SdlPlatform::controlHeight() {
  int w = 0, h = 0;
  drawableSize(w, h);
  return static_cast<float>(h) * kTwipsPerPixel;
}

void SdlPlatform::MsgBox(const std::string& text) {
  std::fprintf(stderr, "ostrel-demo: %s\n", text.c_str());
  SDL_ShowSimpleMessageBox(SDL_MESSAGEBOX_INFORMATION, "ostrel-demo", text.c_str(), window_);
}

// The status frame reaches the window now: the loading of the models holds the thread, so no
// expose would come in time.
void SdlPlatform::Refresh(const Label&) {
  show();
}

void SdlPlatform::repaint() {
  show();
}

AdapterProfile SdlPlatform::adapterProfile() {
  AdapterProfile profile;
  SDL_DisplayMode mode{};
  const int display = displayIndex();
  if (SDL_GetCurrentDisplayMode(display, &mode) == 0 && mode.w > 0 && mode.h > 0) {
    profile.displayWidth = mode.w;
    profile.displayHeight = mode.h;
    if (mode.refresh_rate > 0) profile.refreshRate = mode.refresh_rate;
  }
  return profile;
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
  if (!makeContextCurrent() || width <= 0 || height <= 0) return;
  {
    KeepGlState keep;
    // Kept at pic's size, so that what the window shows is what windowImage reads.
    gl_->kept.fit(std::max(pictureWidth_, 1), std::max(pictureHeight_, 1));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, gl_->kept.framebuffer);
    glBlitFramebuffer(0, 0, width, height, 0, 0, gl_->kept.width, gl_->kept.height,
                      GL_COLOR_BUFFER_BIT, GL_LINEAR);
  }
  presentedAny_ = true;
  show();
}

bool SdlPlatform::frameVisible() const {
  return frame_ && frame_->Visible;
}

void SdlPlatform::show() {
  if (!makeContextCurrent()) return;
  int dw = 0, dh = 0;
  drawableSize(dw, dh);
  {
    KeepGlState keep;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    if (frameVisible()) {
      // The frame is painted over a copy of the picture, top row first: the blit turns it over.
      Image image = windowImage();
      if (image.width > 0 && image.height > 0) {
        gl_->overlay.fit(image.width, image.height);
        glBindTexture(GL_TEXTURE_2D, gl_->overlay.texture);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, image.width, image.height, GL_RGBA,
                        GL_UNSIGNED_BYTE, image.rgba.data());
        glBindFramebuffer(GL_READ_FRAMEBUFFER, gl_->overlay.framebuffer);
        glBlitFramebuffer(0, 0, image.width, image.height, 0, dh, dw, 0, GL_COLOR_BUFFER_BIT,
                          GL_LINEAR);
      }
    } else if (presentedAny_ && gl_->kept.texture) {
      glBindFramebuffer(GL_READ_FRAMEBUFFER, gl_->kept.framebuffer);
      glBlitFramebuffer(0, 0, gl_->kept.width, gl_->kept.height, 0, 0, dw, dh, GL_COLOR_BUFFER_BIT,
                        GL_LINEAR);
    } else {
      const int32_t colour = backColor_ ? *backColor_ : kDefaultBackColour;
      glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
      glClearColor((colour & 0xFF) / 255.0f, ((colour >> 8) & 0xFF) / 255.0f,
                   ((colour >> 16) & 0xFF) / 255.0f, 1.0f);
      glClear(GL_COLOR_BUFFER_BIT);
    }
  }
  SDL_GL_SwapWindow(window_);
}

Image SdlPlatform::windowImage() const {
  Image image;
  bool read = false;
  if (presentedAny_ && gl_->kept.texture && ok() &&
      (SDL_GL_GetCurrentContext() == context_ || SDL_GL_MakeCurrent(window_, context_) == 0)) {
    KeepGlState keep;
    std::vector<uint8_t> bottomUp;
    const int w = gl_->kept.width, h = gl_->kept.height;
    if (graphics::gl::readFramebufferBottomUp(gl_->kept.framebuffer, w, h, bottomUp)) {
      image.width = w;
      image.height = h;
      image.rgba.resize(bottomUp.size());
      const size_t row = static_cast<size_t>(w) * 4;
      for (int y = 0; y < h; ++y) {
        std::memcpy(image.rgba.data() + static_cast<size_t>(y) * row,
                    bottomUp.data() + static_cast<size_t>(h - 1 - y) * row, row);
      }
      for (size_t i = 3; i < image.rgba.size(); i += 4) image.rgba[i] = 255;
      read = true;
    }
  }
  if (!read) {
    // Until the first Present the window shows the control's back colour.
    image =
        solidImage(pictureWidth_, pictureHeight_, backColor_ ? *backColor_ : kDefaultBackColour);
  }
  if (frame_ && status_ && progress_) {
    paintStatusFrame(image, *frame_, *status_, *progress_, kTwipsPerPixel, kTwipsPerPixel);
  }
  return image;
}

void SdlPlatform::attachControl(const int32_t* backColor, const Label* frame, const Label* status,
                                const Label* progress) {
  backColor_ = backColor;
  frame_ = frame;
  status_ = status;
  progress_ = progress;
}

void SdlPlatform::detachControl() {
  attachControl(nullptr, nullptr, nullptr, nullptr);
}

}  // namespace ostrel
