// The headless host's OpenGL side. Until the device layer has a backend the platform offers no
// context, so the control finds no Direct3D object.

#include "ostrel/HeadlessPlatform.h"

namespace ostrel {

struct HeadlessPlatform::Context {};

HeadlessPlatform::~HeadlessPlatform() = default;

bool HeadlessPlatform::makeContextCurrent() { return false; }

void HeadlessPlatform::presentFramebuffer(uint32_t, int32_t, int32_t) {}

}  // namespace ostrel
