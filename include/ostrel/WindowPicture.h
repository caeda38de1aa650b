#pragma once
// What a window that shows the control draws: the last presented frame, kept in a GL texture at
// pic's size, with the control's status frame over it; the control's back colour before the first
// frame. For platforms whose window has an OpenGL context of its own (SDL, Qt, a host's own): one
// WindowPicture per window, every call with that window's context current.

#include <cstdint>
#include <memory>

#include "ostrel/Platform.h"

namespace ostrel {

class WindowPicture {
 public:
  WindowPicture();
  ~WindowPicture();  // call release() first, with the context current
  WindowPicture(const WindowPicture&) = delete;
  WindowPicture& operator=(const WindowPicture&) = delete;

  // Keeps a presented frame (a framebuffer object of width x height), stretched to pic's size.
  void keep(uint32_t framebuffer, int32_t width, int32_t height, int32_t picWidth,
            int32_t picHeight);
  bool presentedAny() const { return presentedAny_; }
  // Draws the window picture into a framebuffer (0: the window's own) of width x height pixels.
  // Twips per pixel place the status frame of control (none when control is nullptr).
  void draw(uint32_t target, int width, int height, const ctlBoard* control, float twipsPerPixelX,
            float twipsPerPixelY);
  // The window picture at pic's size, top row first.
  Image image(int32_t picWidth, int32_t picHeight, const ctlBoard* control, float twipsPerPixelX,
              float twipsPerPixelY) const;
  // Drops the GL objects; the context must be current. Later calls make them anew.
  void release();

  static constexpr int32_t kDefaultBackColour = 0x404040;  // pic's own, without a control

 private:
  struct Gl;
  std::unique_ptr<Gl> gl_;
  bool presentedAny_ = false;
};

}  // namespace ostrel
