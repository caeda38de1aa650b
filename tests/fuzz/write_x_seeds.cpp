// Writes the seed corpora of the .x fuzz targets, shaped as the input of each target, from the
// sample files of every exporter shape: write_x_seeds DIR makes DIR/fuzz_xfile_text and so on.

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include "support/XFileSamples.h"

namespace fs = std::filesystem;
using namespace ostrel::testing;

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: %s DIR\n", argv[0]);
    return 2;
  }
  const fs::path root = argv[1];
  int written = 0;
  auto seed = [&](const std::string& target, const std::string& name, const std::string& bytes) {
    fs::create_directories(root / target);
    std::ofstream(root / target / name, std::ios::binary) << bytes;
    ++written;
  };
  for (const XSample& s : xSamples()) {
    const std::string form = s.bytes.substr(8, 4);
    const std::string floats = s.bytes.substr(12, 4);
    const std::string body = s.bytes.substr(16);
    if (form == "txt ") {
      seed("fuzz_xfile_text", s.name, body.substr(1));  // after the header line's end
      seed("fuzz_xfile_compressed", s.name, std::string(1, '\0') + body.substr(1));
    } else if (form == "bin ") {
      const char mode = floats == "0064" ? 1 : 0;
      seed("fuzz_xfile_binary", s.name, std::string(1, mode) + body);
      seed("fuzz_xfile_compressed", s.name, std::string(1, static_cast<char>(mode * 4 + 1)) + body);
    } else {
      seed("fuzz_xfile_compressed", "raw-" + s.name,
           std::string(1, static_cast<char>(form == "bzip" ? 3 : 2)) + body);
    }
  }
  std::printf("%d seeds in %s\n", written, root.c_str());
  return 0;
}
