#pragma once
// What the control needs of its host. Two parts: the host services (clocks, random numbers, screen
// metrics, layout in twips, message boxes, the status frame's painting) are the Platform; the
// window area that pic stands for, with the OpenGL context the control draws into, is its Surface.
// One Platform per host window; docs/embedding.md tells the order in which the control calls them.

#include <cstdint>
#include <string>
#include <vector>

namespace ostrel {

class ctlBoard;
struct Label;

struct ScreenMetrics {
  int32_t widthMm = 0, heightMm = 0;          // physical size of the screen
  int32_t widthPixels = 0, heightPixels = 0;  // its resolution
};

// 8-bit RGBA rows, top row first.
struct Image {
  int width = 0, height = 0;
  std::vector<uint8_t> rgba;
};

// The window area that pic stands for. All sizes are in device pixels: on a scaled display the
// picture is rendered at the display's own resolution.
class Surface {
 public:
  virtual ~Surface() = default;

  // Makes the window's OpenGL 3.3 core context current; false when there is none to be had.
  virtual bool makeContextCurrent() = 0;
  // The control gave pic this client size (init and resize call it).
  virtual void placePicture(int32_t widthPixels, int32_t heightPixels) = 0;
  // pic's client size now.
  virtual void pictureSize(int32_t& widthPixels, int32_t& heightPixels) = 0;
  // Shows a finished back buffer in the window, stretched over pic's client area. framebuffer is a
  // GL framebuffer object of the current context, not multisampled, width x height pixels. Leaves
  // the context's GL state as it found it, save the read framebuffer and the pack alignment: the
  // device layer keeps what it set from frame to frame.
  virtual void presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) = 0;
  // What the window shows now: the last presented picture (the control's back colour before the
  // first), with the visible parts of the status frame over it. The screen dump reads it.
  virtual Image windowImage() const = 0;
  // True when the toolkit draws with the same OpenGL context between the control's frames (a
  // widget toolkit that composes the window itself): the device layer then sets its GL state anew
  // at the start of each frame instead of trusting what it set last.
  virtual bool toolkitSharesContext() const { return false; }
};

class Platform {
 public:
  virtual ~Platform() = default;

  virtual int32_t timeGetTime() = 0;   // milliseconds, wrapping like the platform's
  virtual float Timer() = 0;           // seconds since midnight
  virtual float Rnd() = 0;             // uniform in [0, 1)
  virtual float TwipsPerPixelX() = 0;  // 1440 / the display's pixels per logical inch
  virtual float TwipsPerPixelY() = 0;
  virtual ScreenMetrics screenMetrics() = 0;
  virtual std::string AppPath() = 0;  // the folder that holds models/
  virtual float controlWidth() = 0;   // the control's size in twips, as the host laid it out
  virtual float controlHeight() = 0;
  virtual void MsgBox(const std::string& text) = 0;  // modal, OK only, the default title
  virtual void Refresh(const Label& label) = 0;  // paint that label (and what lies under it) now

  // The window that pic stands for.
  virtual Surface& surface() = 0;

  // render was called: a frame was asked for, whether or not one gets drawn. A test clock
  // moves here, so playback ends even where nothing can be drawn.
  virtual void frameAsked() {}

  // The control that this window shows, set by its constructor and cleared (nullptr) by its
  // destructor: its BackColor, label1, lblStatus and lblProgress are what the window paints.
  virtual void attachControl(const ctlBoard* control) { control_ = control; }
  const ctlBoard* attachedControl() const { return control_; }

 private:
  const ctlBoard* control_ = nullptr;
};

}  // namespace ostrel
