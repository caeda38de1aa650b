#pragma once
// The failure of a device operation that reaches the host. The drawing entries of ctlBoard have
// no trap of their own: when the device fails under them (a Reset that cannot be done, a lost
// OpenGL context in the middle of a frame), the entry ends and this travels to its caller.

#include <cstdint>
#include <stdexcept>
#include <string>

namespace ostrel {

class DeviceError : public std::runtime_error {
 public:
  DeviceError(int32_t number, const std::string& description)
      : std::runtime_error(description), number_(number) {}

  // The Direct3D result code, e.g. D3DERR_DEVICELOST (0x88760868) as a signed number.
  int32_t number() const noexcept { return number_; }
  // what() is the description.

 private:
  int32_t number_;
};

}  // namespace ostrel
