#pragma once
// A progress line for long work, on a terminal only: "ply 12 of 80, 15%, about 34 s left".
// Without a terminal (a pipe, a file, a build log) it writes nothing.

#include <chrono>
#include <cstdio>
#include <string>

namespace render {

class Progress {
 public:
  // `out` is shown to only when it is a terminal.
  Progress(std::FILE* out, size_t total);
  ~Progress();  // clears the line
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void update(size_t done);
  bool shown() const { return out_ != nullptr; }

  // The text of the line; no time estimate before the first ply is done.
  static std::string line(size_t done, size_t total, double elapsedSeconds);

 private:
  std::FILE* out_;
  size_t total_;
  std::chrono::steady_clock::time_point start_, lastShown_;
  size_t width_ = 0;  // of the longest line shown, to blank it out
};

}  // namespace render
