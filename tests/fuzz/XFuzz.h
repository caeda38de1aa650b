#pragma once
// What the .x fuzz targets share: a file of one form goes through the check and, when it passes,
// through the model reader and the merge into one mesh, as a model load does (without the
// device, which adds nothing to the reading).

#include <cstdint>
#include <exception>
#include <string>
#include <vector>

#include "graphics/ModelLoader.h"
#include "graphics/XFileCheck.h"

namespace ostrel::fuzzing {

inline void readX(const std::string& file) {
  const std::vector<uint8_t> bytes(file.begin(), file.end());
  if (graphics::checkXFile(bytes)) return;
  try {
    graphics::readXModel(bytes);
  } catch (const std::exception&) {  // refused by the reader, or the merge found no triangle
  }
}

}  // namespace ostrel::fuzzing

// Assimp 5.2's .x reader loses the scene and the inflated data it was building when it gives up
// on a file; that memory is out of the library's reach. Other leaks are still reported. (Each
// target includes this header once.)
extern "C" const char* __lsan_default_suppressions() {
  return "leak:libassimp.so\n";
}
