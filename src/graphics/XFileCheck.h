#pragma once
// A reading of a .x file's structure, done before the model reader sees the file. The reader
// (Assimp 5.2) trusts indices and counts: a skin weight or face index past the last vertex, a
// face list without materials, a count larger than the data, a name longer than its fixed
// buffer, a string whose length is negative or frames nested without end make it write or read
// out of bounds, allocate without limit or run out of stack. The check walks the file exactly as
// the reader does, in all three forms (text, binary with 32- or 64-bit floats, and both of them
// MSZIP-compressed), and refuses what would harm it and what it would refuse anyway; whatever
// else it reads past (templates, animation, skinning, exporters' own objects) passes.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace ostrel::graphics {

struct XFileFault {
  std::string what;              // what was wrong
  size_t offset = 0;             // byte of the file, or of the inflated data when `inflated`
  size_t line = 0;               // for text data: the line of that byte; 0 for binary data
  bool inflated = false;         // found in the data of a compressed file after inflating it
  std::string describe() const;  // "line 12: ...", "byte 80: ...", "inflated line 3: ..."
};

// Nothing when the reader may have the file.
std::optional<XFileFault> checkXFile(const std::vector<uint8_t>& bytes);

}  // namespace ostrel::graphics
