#pragma once
// What the control needs of its host's window system: clocks, random numbers, screen metrics,
// message boxes, the status frame's painting, and the window that the picture box stands for
// with the OpenGL context that the device layer draws into.

#include <cstdint>
#include <string>
#include <vector>

namespace ostrel {

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

// How the adapter answers the device layer's probes, and which device creations fail.
struct AdapterProfile {
  bool direct3DAvailable = true;         // false: Direct3DCreate gives none
  int32_t checkDeviceTypeResult = 0;     // what CheckDeviceType answers
  bool multisample4 = true;              // CheckDeviceMultiSampleType for 4 samples answers 0
  bool multisample6 = false;             // ... and for 6 samples
  bool hardwareVertexProcessing = true;  // false: a hardware-vertex CreateDevice fails
  bool softwareVertexProcessing = true;  // false: a software-vertex CreateDevice raises a failure
  int32_t maxAnisotropy = 16;            // MaxAnisotropy of GetDeviceCaps
  int32_t displayWidth = 1920, displayHeight = 1080, refreshRate = 60;
  int32_t displayFormat = 22;  // D3DFMT_X8R8G8B8
};

class Platform {
 public:
  virtual ~Platform() = default;

  virtual int32_t timeGetTime() = 0;  // milliseconds, wrapping like the platform's
  virtual float Timer() = 0;          // seconds since midnight
  virtual float Rnd() = 0;            // uniform in [0, 1)
  virtual float TwipsPerPixelX() = 0;
  virtual float TwipsPerPixelY() = 0;
  virtual ScreenMetrics screenMetrics() = 0;
  virtual std::string AppPath() = 0;
  virtual float controlWidth() = 0;  // the control's size in twips, as the host laid it out
  virtual float controlHeight() = 0;
  virtual void MsgBox(const std::string& text) = 0;  // modal, OK only, the default title
  virtual void Refresh(const Label& label) = 0;  // paint that label (and what lies under it) now

  // --- The window that pic stands for, used by the library's device layer and screen dump. ---

  // Answers of the adapter probes; the default is an able adapter.
  virtual AdapterProfile adapterProfile() { return {}; }
  // Makes this window's OpenGL 3.3 core context current; false when there is none to be had.
  virtual bool makeContextCurrent() = 0;
  // The control gave pic this client size.
  virtual void placePicture(int32_t widthPixels, int32_t heightPixels) = 0;
  // pic's client size now, in pixels.
  virtual void pictureSize(int32_t& widthPixels, int32_t& heightPixels) = 0;
  // Shows a finished back buffer (a GL framebuffer object of the current context, not
  // multisampled) in the window, stretched over pic's client area. Leaves the context's GL state
  // as it found it, save the read framebuffer and the pack alignment: the device layer keeps
  // what it set from frame to frame.
  virtual void presentFramebuffer(uint32_t framebuffer, int32_t width, int32_t height) = 0;
  // What TestCooperativeLevel answers: 0, D3DERR_DEVICELOST or D3DERR_DEVICENOTRESET.
  virtual int32_t cooperativeLevel() { return 0; }
  // A device Reset succeeded.
  virtual void deviceWasReset() {}
  // What the window shows now: the last presented picture (the back colour before the first),
  // with the visible parts of the status frame over it.
  virtual Image windowImage() const = 0;
  // The control's back colour (0x00BBGGRR) and status frame, for painting the window.
  virtual void attachControl(const int32_t* backColor, const Label* frame, const Label* status,
                             const Label* progress) = 0;
  virtual void detachControl() = 0;
};

}  // namespace ostrel
