#pragma once
// For tests of the control's start-up: how a simulated graphics adapter answers the device layer's
// probes, which device creations fail, and whether the device is lost. A platform that also
// derives from DeviceProbes is asked these; every other platform has an able adapter that is never
// lost. Hosts never need this header.

#include <cstdint>

namespace ostrel {

struct AdapterProfile {
  bool direct3DAvailable = true;         // false: Direct3DCreate gives none
  int32_t checkDeviceTypeResult = 0;     // what CheckDeviceType answers
  bool multisample4 = true;              // CheckDeviceMultiSampleType for 4 samples answers 0
  bool multisample6 = false;             // ... and for 6 samples
  bool hardwareVertexProcessing = true;  // false: a hardware-vertex CreateDevice fails
  bool softwareVertexProcessing = true;  // false: a software-vertex CreateDevice raises a failure
  int32_t maxAnisotropy = 16;            // MaxAnisotropy of GetDeviceCaps
};

class DeviceProbes {
 public:
  virtual ~DeviceProbes() = default;
  virtual AdapterProfile adapterProfile() const = 0;
  // What TestCooperativeLevel answers: 0, D3DERR_DEVICELOST or D3DERR_DEVICENOTRESET.
  virtual int32_t cooperativeLevel() const = 0;
  // A device Reset succeeded.
  virtual void deviceWasReset() = 0;
};

}  // namespace ostrel
