#include <dlfcn.h>

#include <filesystem>

#include "ostrel/PlatformSupport.h"

namespace ostrel {

// The library may lie one to three levels below its prefix (lib, lib64, lib/<multiarch>).
std::string shippedAssetFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<void*>(&shippedAssetFolder), &info) != 0 && info.dli_fname) {
    std::error_code ec;
    auto libDir = std::filesystem::weakly_canonical(info.dli_fname, ec).parent_path();
    auto prefix = libDir;
    for (int level = 0; level < 3 && prefix.has_relative_path(); ++level) {
      prefix = prefix.parent_path();
      auto installed = prefix / OSTREL_INSTALL_DATADIR;
      if (std::filesystem::is_directory(installed / "models", ec)) return installed.string();
    }
  }
  return OSTREL_SOURCE_ASSETS;
}

}  // namespace ostrel
