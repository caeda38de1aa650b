#pragma once
// Start-up of the graphics: the diagnostic log, the Direct3D object and its probes, the device
// with its fallback from hardware to software vertex processing, the loads, the first frame. And
// the end: dropping the device.

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>

#include "state/ControlState.h"

namespace ostrel::graphics {

class Direct3DDevice8;

// True when everything succeeded, false after a trapped failure (reported in a message box and the
// log), no value when start-up ended without a device and without a failure.
std::optional<bool> init(ControlState& s, bool qTrans, int32_t qAA, int32_t qShadow,
                         const std::string& ap);

// Opens path for writing, replacing any old file; false if that fails in any way, reporting
// nothing.
bool openLogFile(const std::string& path, std::ofstream& file);

// The states the first frame starts from.
void setDefaultRenderStates(Direct3DDevice8& device);

// Drops the thread's Direct3D object and device; drawing does nothing from then on.
void releaseDevice();

}  // namespace ostrel::graphics
