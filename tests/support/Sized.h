#pragma once
// The headless host's options for a control of a given size in pixels, all else as it comes.

#include "ostrel/HeadlessPlatform.h"

namespace ostrel::testing {

inline HeadlessOptions sized(int width, int height) {
  HeadlessOptions o;
  o.pixelWidth = width;
  o.pixelHeight = height;
  return o;
}

}  // namespace ostrel::testing
