#pragma once
// One whole frame: clear, lights, camera, the board, marker, shadow and piece passes, Present,
// afterDraw. And what the frame sets up before the scene: the light, the filters, the camera and
// the projection.

#include "graphics/d3d8types.h"
#include "state/ControlState.h"

namespace ostrel::graphics {

// Draws a frame on the thread's device; quiet while there is no device or it is lost. A failing
// device operation goes to the caller.
void render(ControlState& s);

// Material, light 0, the blend states of qTrans, the texture filters and the ambient level. Does
// nothing without a device.
void setupLights(ControlState& s);

// The camera of the three view values: eye on a sphere around the origin, looking at it.
D3DMATRIX viewMatrixFor(float rotationHorizontalAxis, float rotationVerticalAxis,
                        float viewingDistance);
// The projection, with height over width as its aspect argument; false for a picture without
// width, which gives no aspect value.
bool projectionMatrixFor(float picWidth, float picHeight, D3DMATRIX& out);

}  // namespace ostrel::graphics
