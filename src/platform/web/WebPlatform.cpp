#include "platform/web/WebPlatform.h"

#include <GLES3/gl3.h>
#include <emscripten/emscripten.h>
#include <emscripten/html5.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "graphics/d3d8.h"
#include "ostrel/PlatformSupport.h"
#include "ostrel/ctlBoard.h"

namespace ostrel {

namespace {

// The page decides how a message box looks; window.alert when it has said nothing.
EM_JS(void, showMessageBox, (const char* canvas, const char* text), {
  const message = UTF8ToString(text);
  if (Module.onMessageBox) {
    Module.onMessageBox(UTF8ToString(canvas), message);
  } else {
    window.alert(message);
  }
});

// The status frame as page elements over the canvas: the page's script lays them out (places and
// sizes in CSS pixels, colours as CSS texts).
EM_JS(void, placeStatusFrame,
      (const char* canvas, int visible, double left, double top, double width, double height,
       const char* back, const char* text, const char* textColour, int textVisible, int fillVisible,
       double fillWidth, double fillHeight, const char* fillColour),
      {
        if (!Module.onStatusFrame) return;
        Module.onStatusFrame(UTF8ToString(canvas), {
          visible : !!visible,
          left : left,
          top : top,
          width : width,
          height : height,
          back : UTF8ToString(back),
          text : UTF8ToString(text),
          textColour : UTF8ToString(textColour),
          textVisible : !!textVisible,
          fillVisible : !!fillVisible,
          fillWidth : fillWidth,
          fillHeight : fillHeight,
          fillColour : UTF8ToString(fillColour)
        });
      });

// 0x00BBGGRR as a CSS colour; a system colour (0x80000000 and up) is the one given.
std::string cssColour(int32_t colour, const char* system) {
  if (colour < 0) return system;
  char text[8];
  std::snprintf(text, sizeof text, "#%02x%02x%02x", colour & 0xFF, (colour >> 8) & 0xFF,
                (colour >> 16) & 0xFF);
  return text;
}

// Rebinds a framebuffer target on leaving, so that presenting leaves GL as it found it.
class BindingKeeper {
 public:
  BindingKeeper() {
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
    scissor_ = glIsEnabled(GL_SCISSOR_TEST);
  }
  ~BindingKeeper() {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read_));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(draw_));
    if (scissor_) glEnable(GL_SCISSOR_TEST);
  }
  BindingKeeper(const BindingKeeper&) = delete;
  BindingKeeper& operator=(const BindingKeeper&) = delete;

 private:
  GLint read_ = 0, draw_ = 0;
  GLboolean scissor_ = GL_FALSE;
};

}  // namespace

WebPlatform::WebPlatform(std::string canvasSelector, std::string assetFolder)
    : canvas_(std::move(canvasSelector)),
      assets_(std::move(assetFolder)),
      random_(static_cast<uint32_t>(emscripten_get_now())) {}

WebPlatform::~WebPlatform() {
  releaseGraphics(*this);
  if (context_) emscripten_webgl_destroy_context(context_);
}

void WebPlatform::layout(double cssWidth, double cssHeight, double devicePixelRatio) {
  cssWidth_ = cssWidth;
  cssHeight_ = cssHeight;
  ratio_ = devicePixelRatio > 0 ? devicePixelRatio : 1;
}

int32_t WebPlatform::timeGetTime() {
  const double ms = std::floor(emscripten_get_now());
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<uint64_t>(ms)));
}

float WebPlatform::Timer() {
  return secondsSinceLocalMidnight();
}

float WebPlatform::Rnd() {
  return unitFloat(random_());
}

float WebPlatform::TwipsPerPixelX() {
  return static_cast<float>(kTwipsPerCssPixel / ratio_);
}

float WebPlatform::TwipsPerPixelY() {
  return TwipsPerPixelX();
}

ScreenMetrics WebPlatform::screenMetrics() {
  int width = 0, height = 0;
  emscripten_get_screen_size(&width, &height);
  // CSS pixels are 1/96 inch.
  return {static_cast<int32_t>(width * 25.4 / 96), static_cast<int32_t>(height * 25.4 / 96),
          static_cast<int32_t>(width * ratio_), static_cast<int32_t>(height * ratio_)};
}

std::string WebPlatform::AppPath() {
  return assets_;
}

float WebPlatform::controlWidth() {
  return static_cast<float>(cssWidth_ * kTwipsPerCssPixel);
}

float WebPlatform::controlHeight() {
  return static_cast<float>(cssHeight_ * kTwipsPerCssPixel);
}

void WebPlatform::MsgBox(const std::string& text) {
  showMessageBox(canvas_.c_str(), text.c_str());
}

void WebPlatform::Refresh(const Label&) {
  showStatusFrame();
}

void WebPlatform::showStatusFrame() {
  const ctlBoard* control = attachedControl();
  if (!control) return;
  const Label& frame = control->label1();
  const Label& status = control->lblStatus();
  const Label& fill = control->lblProgress();
  const double px = 1.0 / kTwipsPerCssPixel;
  const std::string back = cssColour(frame.BackColor, "#ffffff");
  const std::string ink = cssColour(status.ForeColor, "#000000");
  const std::string fillColour = cssColour(fill.BackColor, "#0000ff");
  // The same frame again is not laid out again.
  std::string key = std::to_string(frame.Visible) + std::to_string(status.Visible) +
                    std::to_string(fill.Visible) + std::to_string(fill.Width) + "|" +
                    std::to_string(fill.Height) + "|" + status.Caption + "|" + back + ink +
                    fillColour + std::to_string(frame.Left) + std::to_string(frame.Top);
  if (key == statusShown_) return;
  statusShown_ = std::move(key);
  placeStatusFrame(canvas_.c_str(), frame.Visible, frame.Left * px, frame.Top * px,
                   frame.Width * px, frame.Height * px, back.c_str(), status.Caption.c_str(),
                   ink.c_str(), status.Visible, fill.Visible, fill.Width * px, fill.Height * px,
                   fillColour.c_str());
}

bool WebPlatform::makeContextCurrent() {
  if (!context_ && !contextFailed_) {
    EmscriptenWebGLContextAttributes attributes;
    emscripten_webgl_init_context_attributes(&attributes);
    attributes.majorVersion = 2;
    attributes.minorVersion = 0;
    attributes.alpha = false;
    attributes.antialias = false;  // the device multisamples its own back buffer
    attributes.depth = false;
    // Frames are drawn on demand: the canvas keeps the last one until the next.
    attributes.preserveDrawingBuffer = true;
    context_ = emscripten_webgl_create_context(canvas_.c_str(), &attributes);
    contextFailed_ = context_ <= 0;
    if (contextFailed_) context_ = 0;
  }
  if (!context_) return false;
  if (emscripten_webgl_get_current_context() == context_) return true;
  return emscripten_webgl_make_context_current(context_) == EMSCRIPTEN_RESULT_SUCCESS;
}

void WebPlatform::placePicture(int32_t widthPixels, int32_t heightPixels) {
  pictureWidth_ = widthPixels;
  pictureHeight_ = heightPixels;
  emscripten_set_canvas_element_size(canvas_.c_str(), widthPixels, heightPixels);
}

void WebPlatform::pictureSize(int32_t& widthPixels, int32_t& heightPixels) {
  widthPixels = pictureWidth_;
  heightPixels = pictureHeight_;
}

void WebPlatform::presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) {
  if (!makeContextCurrent()) return;
  BindingKeeper keep;
  glDisable(GL_SCISSOR_TEST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
  glBlitFramebuffer(0, 0, width, height, 0, 0, pictureWidth_, pictureHeight_, GL_COLOR_BUFFER_BIT,
                    width == pictureWidth_ && height == pictureHeight_ ? GL_NEAREST : GL_LINEAR);
  showStatusFrame();
}

Image WebPlatform::windowImage() const {
  Image image;
  if (!context_ || emscripten_webgl_make_context_current(context_) != EMSCRIPTEN_RESULT_SUCCESS) {
    return image;
  }
  BindingKeeper keep;
  glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
  image.width = pictureWidth_;
  image.height = pictureHeight_;
  const size_t row = static_cast<size_t>(image.width) * 4;
  std::vector<uint8_t> bottomUp(row * image.height);
  glReadPixels(0, 0, image.width, image.height, GL_RGBA, GL_UNSIGNED_BYTE, bottomUp.data());
  image.rgba.resize(bottomUp.size());
  for (int y = 0; y < image.height; ++y) {
    std::copy_n(bottomUp.data() + (image.height - 1 - y) * row, row, image.rgba.data() + y * row);
  }
  const auto twipsPerPixel = static_cast<float>(kTwipsPerCssPixel / ratio_);
  paintStatusFrame(image, attachedControl(), twipsPerPixel, twipsPerPixel);
  return image;
}

}  // namespace ostrel
