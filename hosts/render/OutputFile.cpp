#include "OutputFile.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace render {

OutputFile::OutputFile(std::string path)
    : path_(std::move(path)), temp_(path_ + "." + std::to_string(::getpid()) + ".part") {}

OutputFile::~OutputFile() {
  if (!committed_) std::remove(temp_.c_str());
}

bool OutputFile::commit(std::string& error) {
  if (std::rename(temp_.c_str(), path_.c_str()) != 0) {
    error = cannotWrite(path_, std::strerror(errno));
    return false;
  }
  committed_ = true;
  return true;
}

std::string cannotWrite(const std::string& path, const std::string& reason) {
  return "cannot write " + path + ": " + reason;
}

}  // namespace render
