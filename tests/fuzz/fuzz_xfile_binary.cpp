// Binary .x files: the first input byte chooses 32- or 64-bit floats, the rest is the token
// stream after the header.

#include "XFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string header = data[0] & 1 ? "xof 0303bin 0064" : "xof 0302bin 0032";
  ostrel::fuzzing::readX(header + std::string(reinterpret_cast<const char*>(data + 1), size - 1));
  return 0;
}
