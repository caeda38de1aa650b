#pragma once
// A file written under a temporary name beside the one asked for and renamed into place only
// when it is complete: a failed or interrupted run leaves nothing under the name asked for.

#include <string>

namespace render {

class OutputFile {
 public:
  explicit OutputFile(std::string path);
  ~OutputFile();  // removes the temporary file unless it was committed
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  const std::string& path() const { return path_; }
  const std::string& tempPath() const { return temp_; }
  // Moves the temporary file to its name; false with the reason when that fails.
  bool commit(std::string& error);

 private:
  std::string path_, temp_;
  bool committed_ = false;
};

// "cannot write PATH: reason", the one wording for every output that fails.
std::string cannotWrite(const std::string& path, const std::string& reason);

}  // namespace render
