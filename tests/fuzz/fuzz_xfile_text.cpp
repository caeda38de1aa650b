// Text .x files: the input is what follows the header line.

#include "XFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  ostrel::fuzzing::readX("xof 0303txt 0032\n" +
                         std::string(reinterpret_cast<const char*>(data), size));
  return 0;
}
