// Compressed .x files. The first input byte chooses: bit 0 binary or text, bit 1 whether the
// rest is the block data as it stands (to reach the block reading) or the inflated data, which
// is deflated into blocks here (to reach the parser through the inflate), bit 2 64-bit floats.

#include "XFuzz.h"
#include "support/XFileSamples.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const uint8_t mode = data[0];
  std::string header = mode & 1 ? "xof 0303bzip" : "xof 0303tzip";
  header += mode & 4 ? "0064" : "0032";
  const std::string rest(reinterpret_cast<const char*>(data + 1), size - 1);
  ostrel::fuzzing::readX(header + (mode & 2 ? rest : ostrel::testing::deflateBlocks(rest)));
  return 0;
}
