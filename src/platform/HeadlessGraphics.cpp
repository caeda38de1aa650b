// The headless host's OpenGL side: a surfaceless EGL display with an OpenGL 3.3 core context,
// made on first use, and the reading back of each presented frame into the window picture.

#include <epoxy/egl.h>

#include <algorithm>
#include <cstring>
#include <mutex>

#include "graphics/gl/GlReadback.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/PlatformSupport.h"

namespace ostrel {

namespace {

// The surfaceless display is one per process. It is initialised on first use and stays so until
// the process ends: terminating it would unload the driver under the feet of any context another
// platform still holds, and initialising it again costs a driver load.
EGLDisplay sharedDisplay() {
  static std::once_flag once;
  static EGLDisplay display = EGL_NO_DISPLAY;
  std::call_once(once, [] {
    if (!epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_EXT_platform_base") ||
        !epoxy_has_egl_extension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless")) {
      return;
    }
    EGLDisplay d =
        eglGetPlatformDisplayEXT(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    EGLint major = 0, minor = 0;
    if (d != EGL_NO_DISPLAY && eglInitialize(d, &major, &minor)) display = d;
  });
  return display;
}

}  // namespace

struct HeadlessPlatform::Context {
  ~Context() {
    if (display == EGL_NO_DISPLAY) return;
    if (context != EGL_NO_CONTEXT) {
      if (eglGetCurrentContext() == context) {
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
      }
      eglDestroyContext(display, context);
    }
  }

  // An OpenGL 3.3 core context without a surface; false when the system has none to give.
  bool create() {
    display = sharedDisplay();
    if (display == EGL_NO_DISPLAY) return false;
    if (!eglBindAPI(EGL_OPENGL_API)) return false;
    EGLConfig config = EGL_NO_CONFIG_KHR;
    if (!epoxy_has_egl_extension(display, "EGL_KHR_no_config_context")) {
      const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
      EGLint found = 0;
      if (!eglChooseConfig(display, wanted, &config, 1, &found) || found == 0) return false;
    }
    const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                 3,
                                 EGL_CONTEXT_MINOR_VERSION,
                                 3,
                                 EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                 EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                 EGL_NONE};
    context = eglCreateContext(display, config, EGL_NO_CONTEXT, attributes);
    return context != EGL_NO_CONTEXT;
  }

  EGLDisplay display = EGL_NO_DISPLAY;
  EGLContext context = EGL_NO_CONTEXT;
  bool usable = false;
  std::vector<uint8_t> pixels;  // the last frame read back, bottom row first
};

HeadlessPlatform::~HeadlessPlatform() {
  // GL objects still held by meshes or devices die with the context, not after it.
  releaseGraphics(*this);
}

bool HeadlessPlatform::makeContextCurrent() {
  if (!context_) {
    context_ = std::make_shared<Context>();
    context_->usable = context_->create();
  }
  if (!context_->usable) return false;
  if (eglGetCurrentContext() == context_->context) return true;
  return eglMakeCurrent(context_->display, EGL_NO_SURFACE, EGL_NO_SURFACE, context_->context) ==
         EGL_TRUE;
}

void HeadlessPlatform::presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) {
  if (!makeContextCurrent()) return;
  std::vector<uint8_t>& source = context_->pixels;
  if (!graphics::gl::readFramebufferBottomUp(framebuffer, width, height, source)) return;

  // The window shows the frame stretched over pic's client area, top row first, opaque.
  const int32_t w = std::max(pictureWidth_, 0), h = std::max(pictureHeight_, 0);
  presented_.width = w;
  presented_.height = h;
  presented_.rgba.resize(static_cast<size_t>(w) * h * 4);
  const size_t sourceRow = static_cast<size_t>(width) * 4;
  for (int32_t y = 0; y < h; ++y) {
    const size_t fromTop = static_cast<size_t>(y) * height / h;
    const uint8_t* row = source.data() + (height - 1 - fromTop) * sourceRow;
    uint8_t* out = presented_.rgba.data() + static_cast<size_t>(y) * w * 4;
    if (w == width) {
      std::memcpy(out, row, sourceRow);
      continue;
    }
    for (int32_t x = 0; x < w; ++x) {
      std::memcpy(out + static_cast<size_t>(x) * 4, row + static_cast<size_t>(x) * width / w * 4,
                  4);
    }
  }
  // Alpha is the top byte of each little-endian pixel word.
  uint8_t* pixels = presented_.rgba.data();
  for (size_t i = 0; i < presented_.rgba.size(); i += 4) {
    uint32_t word;
    std::memcpy(&word, pixels + i, 4);
    word |= 0xFF000000u;
    std::memcpy(pixels + i, &word, 4);
  }
  presentedAny_ = true;
  ++presentCount_;
}

}  // namespace ostrel
