// Screen-to-board picking. The camera is read back from the device at every call: the view and
// projection that the last frame set, and the viewport. The world transform is the control's own
// stored copy, since the passes of a frame leave the device's world set to whatever they drew
// last.

#include "interaction/Picking.h"

#include <cmath>

#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"
#include "ostrel/notation.h"
#include "scene/SceneConstants.h"

namespace ostrel::interaction {

void screenToBoard(ControlState& s, float x, float y, float& boardX, float& boardY,
                   int16_t& field) {
  graphics::Direct3DDevice8* device = graphics::graphicsContext().device.get();
  if (!device) return;

  graphics::D3DVIEWPORT8 viewport;
  graphics::D3DMATRIX view, projection;
  device->GetViewport(viewport);
  device->GetTransform(graphics::D3DTS_VIEW, view);
  device->GetTransform(graphics::D3DTS_PROJECTION, projection);
  const graphics::D3DMATRIX world = s.worldMatrix;

  // Pixels are not rounded: a pointer between two pixels picks between them.
  const float px = x / s.platform.TwipsPerPixelX();
  const float py = y / s.platform.TwipsPerPixelY();

  D3DVECTOR nearPoint, farPoint, dir;
  graphics::D3DXVec3Unproject(nearPoint, D3DVECTOR{px, py, 0.0f}, viewport, projection, view,
                              world);
  graphics::D3DXVec3Unproject(farPoint, D3DVECTOR{px, py, 1.0f}, viewport, projection, view, world);
  graphics::D3DXVec3Subtract(dir, farPoint, nearPoint);

  // Measured back from the far point along the whole line: a point behind the camera (above the
  // horizon of a steep view) is returned like any other, and nothing is clamped to the board.
  if (dir.y != 0) {
    const double t = static_cast<double>(farPoint.y) - scene::kRestHeight;
    const auto x = static_cast<float>(farPoint.x - (t * dir.x) / dir.y);
    const auto y = static_cast<float>(farPoint.z - (t * dir.z) / dir.y);
    // A line that meets the plane nowhere in reach names no point and no field.
    if (!std::isfinite(x) || !std::isfinite(y)) {
      field = -1;
      return;
    }
    boardX = x;
    boardY = y;
  }
  boardToField(boardX, boardY, field);
}

bool fieldToScreen(ControlState& s, int16_t field, float& x, float& y) {
  graphics::Direct3DDevice8* device = graphics::graphicsContext().device.get();
  if (!device) return false;
  graphics::D3DVIEWPORT8 viewport;
  graphics::D3DMATRIX view, projection;
  device->GetViewport(viewport);
  device->GetTransform(graphics::D3DTS_VIEW, view);
  device->GetTransform(graphics::D3DTS_PROJECTION, projection);
  float boardX = 0, boardY = 0;
  fieldToBoard(field, boardX, boardY);
  D3DVECTOR screen;
  graphics::D3DXVec3Project(screen, D3DVECTOR{boardX, scene::kDiscRestHeight, boardY}, viewport,
                            projection, view, s.worldMatrix);
  x = screen.x * s.platform.TwipsPerPixelX();
  y = screen.y * s.platform.TwipsPerPixelY();
  return true;
}

}  // namespace ostrel::interaction
