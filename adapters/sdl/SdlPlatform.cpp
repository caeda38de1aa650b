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
#include "ostrel/ctlBoard.h"

namespace ostrel {

namespace {

constexpr float kLogicalDpi = 96;
constexpr float kTwipsPerInch = 1440;
constexpr float kMaxScale = 4;
constexpr int32_t kDefaultBackColour = 0x404040;  // pic's own, until a control is attached

int32_t backColourOf(const ctlBoard* control) {
  return control ? control->BackColor() : kDefaultBackColour;
}

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

SdlPlatform::SdlPlatform(const std::string& title, int width, int height, float scale)
    : title_(title),
      scale_(scale > 0 ? scale : 0),
      gl_(std::make_unique<Gl>()),
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

void SdlPlatform::show() {
  if (!makeContextCurrent()) return;
  int dw = 0, dh = 0;
  drawableSize(dw, dh);
  {
    KeepGlState keep;
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    if (attachedControl() && attachedControl()->label1().Visible) {
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
      const int32_t colour = backColourOf(attachedControl());
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
    read = readFramebuffer(gl_->kept.framebuffer, gl_->kept.width, gl_->kept.height, image);
  }
  // Until the first Present the window shows the control's back colour.
  if (!read) image = solidImage(pictureWidth_, pictureHeight_, backColourOf(attachedControl()));
  paintStatusFrame(image, attachedControl(), twipsPerPixel(), twipsPerPixel());
  return image;
}

}  // namespace ostrel
