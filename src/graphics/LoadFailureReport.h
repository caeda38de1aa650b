#pragma once
// The library's side of ostrel/LoadFailure.h: a failed load records its cause here.

#include <string>

namespace ostrel::graphics {

void reportLoadFailure(const std::string& file, const std::string& cause);

}  // namespace ostrel::graphics
