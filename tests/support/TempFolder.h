#pragma once
// A folder under the system's temporary directory, removed with everything in it at the end.

#include <stdlib.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>

namespace ostrel::testing {

class TempFolder {
 public:
  TempFolder() {
    std::string pattern = (std::filesystem::temp_directory_path() / "ostrel-XXXXXX").string();
    if (!mkdtemp(pattern.data())) throw std::runtime_error("no temporary folder");
    path_ = pattern;
  }
  ~TempFolder() {
    std::error_code ec;
    std::filesystem::remove_all(path_, ec);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  std::string path() const { return path_.string(); }
  std::string operator/(const std::string& relative) const { return (path_ / relative).string(); }
  // Writes bytes to a file below the folder, making the folders on the way.
  void write(const std::string& relative, const std::string& bytes) const {
    std::filesystem::create_directories((path_ / relative).parent_path());
    std::ofstream(path_ / relative, std::ios::binary) << bytes;
  }
  // The bytes of a file below the folder; empty when there is none.
  std::string read(const std::string& relative) const {
    std::stringstream bytes;
    bytes << std::ifstream(path_ / relative, std::ios::binary).rdbuf();
    return bytes.str();
  }

 private:
  std::filesystem::path path_;
};

}  // namespace ostrel::testing
