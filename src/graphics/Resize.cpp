#include "graphics/Resize.h"

#include <cmath>

#include "graphics/Frame.h"
#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"

namespace ostrel::graphics {

namespace {

// The Reset waits until the size has stood still this long.
constexpr double kResetDelaySeconds = 0.5;

int32_t toPixels(float twips, float twipsPerPixel) {
  if (!(twipsPerPixel > 0)) return 0;
  return static_cast<int32_t>(std::lround(twips / twipsPerPixel));
}

}  // namespace

void fitPictureToControl(ControlState& s) {
  Platform& platform = s.platform;
  s.pic.Width = platform.controlWidth();
  s.pic.Height = platform.controlHeight();
  platform.surface().placePicture(toPixels(s.pic.Width, platform.TwipsPerPixelX()),
                                  toPixels(s.pic.Height, platform.TwipsPerPixelY()));
}

void resize(ControlState& s) {
  if (!graphicsContext().device) return;
  fitPictureToControl(s);
  s.resizeTime = s.platform.Timer();
  s.resizePending = true;
  // The back buffer keeps its size until the deferred Reset; Present stretches it meanwhile.
  render(s);
}

void timerTick(ControlState& s) {
  GraphicsContext& context = graphicsContext();
  if (!context.device || !s.resizePending) return;
  const double now = s.platform.Timer();
  // A reading below the time of the resize means the clock has passed midnight: that counts as
  // late enough.
  if (now >= s.resizeTime && now <= s.resizeTime + kResetDelaySeconds) return;
  // Cleared first, so that a failing Reset is not tried again at the next tick.
  s.resizePending = false;
  context.device->Reset(context.presentParameters);
  render(s);
}

}  // namespace ostrel::graphics
