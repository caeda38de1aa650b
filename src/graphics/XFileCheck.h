#pragma once
// A strict reading of a text .x file's structure, done before the model reader sees the file.
// The reader trusts counts, indices and references; a file that lies about them can crash it or
// make it allocate what the file's size cannot justify. Only files that pass are read.

#include <cstdint>
#include <string>
#include <vector>

namespace ostrel::graphics {

// True when the whole file is a text .x file ("xof 0303txt 0032" and the like) made of templates,
// frames with transform matrices, meshes with normals, texture coordinates, vertex colours and
// material lists, materials with texture file names, and other objects with balanced braces;
// with every count matching its items and every index and reference pointing at something that
// exists. Otherwise false, with the reason in why.
bool checkTextXFile(const std::vector<uint8_t>& bytes, std::string& why);

}  // namespace ostrel::graphics
