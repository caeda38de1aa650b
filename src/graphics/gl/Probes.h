#pragma once
// What the device layer asks of the adapter. A platform that simulates an adapter (the headless
// one, for tests) answers the probes itself; every other one has an able adapter whose device is
// never lost.

#include "ostrel/Platform.h"
#include "ostrel/testing/DeviceProbes.h"

namespace ostrel::graphics {

inline AdapterProfile adapterOf(Platform& platform) {
  const auto* probes = dynamic_cast<const DeviceProbes*>(&platform);
  return probes ? probes->adapterProfile() : AdapterProfile{};
}

inline int32_t cooperativeLevelOf(Platform& platform) {
  const auto* probes = dynamic_cast<const DeviceProbes*>(&platform);
  return probes ? probes->cooperativeLevel() : 0;
}

inline void deviceWasResetOn(Platform& platform) {
  if (auto* probes = dynamic_cast<DeviceProbes*>(&platform)) probes->deviceWasReset();
}

}  // namespace ostrel::graphics
