// The window picture of the windowed platforms. The GL state it touches is put back as it was: the
// device layer keeps a cache of what it last set and is not told when a window paints between its
// calls, and a toolkit may keep bindings of its own.

#include "ostrel/WindowPicture.h"

#include <algorithm>

#include "graphics/gl/GlApi.h"
#include "ostrel/PlatformSupport.h"
#include "ostrel/ctlBoard.h"

namespace ostrel {

namespace {

class KeepGlState {
 public:
  KeepGlState() {
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
    glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture_);
    glGetIntegerv(GL_UNPACK_ALIGNMENT, &unpack_);
    glGetIntegerv(GL_PACK_ALIGNMENT, &pack_);
    glGetIntegerv(GL_VIEWPORT, viewport_);
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
    glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
    glColorMask(mask_[0], mask_[1], mask_[2], mask_[3]);
    if (scissor_) glEnable(GL_SCISSOR_TEST);
  }
  KeepGlState(const KeepGlState&) = delete;
  KeepGlState& operator=(const KeepGlState&) = delete;

 private:
  GLint draw_ = 0, read_ = 0, texture_ = 0, unpack_ = 4, pack_ = 4;
  GLint viewport_[4] = {0, 0, 0, 0};
  GLboolean mask_[4] = {GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE};
  GLboolean scissor_ = GL_FALSE;
};

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
    if (framebuffer) glDeleteFramebuffers(1, &framebuffer);
    if (texture) glDeleteTextures(1, &texture);
    texture = framebuffer = 0;
    width = height = 0;
  }
};

int32_t backColourOf(const ctlBoard* control) {
  return control ? control->BackColor() : WindowPicture::kDefaultBackColour;
}

}  // namespace

struct WindowPicture::Gl {
  TextureTarget kept;     // the last presented picture, pic-sized, bottom row first
  TextureTarget overlay;  // the picture with the status frame painted over it
};

WindowPicture::WindowPicture() : gl_(std::make_unique<Gl>()) {}
WindowPicture::~WindowPicture() = default;

void WindowPicture::keep(uint32_t framebuffer, int32_t width, int32_t height, int32_t picWidth,
                         int32_t picHeight) {
  if (width <= 0 || height <= 0) return;
  KeepGlState keep;
  // Kept at pic's size, so that what the window shows is what image() reads.
  gl_->kept.fit(std::max(picWidth, 1), std::max(picHeight, 1));
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, gl_->kept.framebuffer);
  glBlitFramebuffer(0, 0, width, height, 0, 0, gl_->kept.width, gl_->kept.height,
                    GL_COLOR_BUFFER_BIT, GL_LINEAR);
  presentedAny_ = true;
}

void WindowPicture::draw(uint32_t target, int width, int height, const ctlBoard* control,
                         float twipsPerPixelX, float twipsPerPixelY) {
  KeepGlState keep;
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target);
  if (control && control->label1().Visible) {
    // The frame is painted over a copy of the picture, top row first: the blit turns it over.
    const Image picture =
        image(presentedAny_ ? gl_->kept.width : width, presentedAny_ ? gl_->kept.height : height,
              control, twipsPerPixelX, twipsPerPixelY);
    if (picture.width <= 0 || picture.height <= 0) return;
    gl_->overlay.fit(picture.width, picture.height);
    glBindTexture(GL_TEXTURE_2D, gl_->overlay.texture);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, picture.width, picture.height, GL_RGBA,
                    GL_UNSIGNED_BYTE, picture.rgba.data());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, gl_->overlay.framebuffer);
    glBlitFramebuffer(0, 0, picture.width, picture.height, 0, height, width, 0, GL_COLOR_BUFFER_BIT,
                      GL_LINEAR);
  } else if (presentedAny_ && gl_->kept.texture) {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, gl_->kept.framebuffer);
    glBlitFramebuffer(0, 0, gl_->kept.width, gl_->kept.height, 0, 0, width, height,
                      GL_COLOR_BUFFER_BIT, GL_LINEAR);
  } else {
    const int32_t colour = backColourOf(control);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClearColor((colour & 0xFF) / 255.0f, ((colour >> 8) & 0xFF) / 255.0f,
                 ((colour >> 16) & 0xFF) / 255.0f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT);
  }
}

Image WindowPicture::image(int32_t picWidth, int32_t picHeight, const ctlBoard* control,
                           float twipsPerPixelX, float twipsPerPixelY) const {
  Image picture;
  bool read = false;
  if (presentedAny_ && gl_->kept.texture) {
    KeepGlState keep;
    read = readFramebuffer(gl_->kept.framebuffer, gl_->kept.width, gl_->kept.height, picture);
  }
  // Until the first Present the window shows the control's back colour.
  if (!read) picture = solidImage(picWidth, picHeight, backColourOf(control));
  paintStatusFrame(picture, control, twipsPerPixelX, twipsPerPixelY);
  return picture;
}

void WindowPicture::release() {
  gl_->kept.drop();
  gl_->overlay.drop();
  presentedAny_ = false;
}

}  // namespace ostrel
