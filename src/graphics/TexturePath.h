#pragma once
// Where the image that a model file or a host names lies. Model files from Windows name their
// images the Windows way: backslashes, ".\wood.png", "C:\models\wood.tga", and in any case.

#include <string>

namespace ostrel::graphics {

// The plain join of folder and name when that file exists. Otherwise, with backslashes read as
// separators: the name under the folder; for a name with a leading ".\", a drive letter or an
// absolute path, its file name in the folder; and failing that, a file of the same name in
// another case. The plain join when nothing is found, so that the load fails on it.
std::string findTexture(const std::string& folder, const std::string& name);

}  // namespace ostrel::graphics
