#pragma once
// Where the shipped models lie, for platforms whose host names no folder of its own.

#include <string>

namespace ostrel {

// The folder that holds models/: the installed share/ostrel of the prefix the library lies in when
// there is one, else the source tree's assets.
std::string shippedAssetFolder();

}  // namespace ostrel
