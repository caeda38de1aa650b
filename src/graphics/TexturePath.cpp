#include "graphics/TexturePath.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

namespace ostrel::graphics {

namespace fs = std::filesystem;

namespace {

bool isFile(const fs::path& p) {
  std::error_code ec;
  return fs::is_regular_file(p, ec);
}

std::string lowered(std::string s) {
  std::transform(s.begin(), s.end(), s.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return s;
}

// A file in p's folder whose name differs from p's only in case.
std::string anyCase(const fs::path& p) {
  const std::string wanted = lowered(p.filename().string());
  std::error_code ec;
  for (fs::directory_iterator it(p.parent_path(), ec), end; !ec && it != end; it.increment(ec)) {
    if (lowered(it->path().filename().string()) == wanted && isFile(it->path())) {
      return it->path().string();
    }
  }
  return {};
}

}  // namespace

std::string findTexture(const std::string& folder, const std::string& name) {
  const std::string joined = folder + "/" + name;
  if (isFile(joined)) return joined;
  std::string relative = name;
  std::replace(relative.begin(), relative.end(), '\\', '/');
  while (relative.starts_with("./")) relative.erase(0, 2);
  const bool drive = relative.size() >= 2 && relative[1] == ':' &&
                     std::isalpha(static_cast<unsigned char>(relative[0]));
  if (drive || relative.starts_with("/")) {
    relative = relative.substr(relative.find_last_of('/') == std::string::npos
                                   ? (drive ? 2 : 0)
                                   : relative.find_last_of('/') + 1);
  }
  if (relative.empty()) return joined;
  const fs::path candidate = fs::path(folder) / relative;
  if (isFile(candidate)) return candidate.string();
  const std::string found = anyCase(candidate);
  return found.empty() ? joined : found;
}

}  // namespace ostrel::graphics
