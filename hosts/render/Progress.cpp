#include "Progress.h"

#include <unistd.h>

#include <cmath>

namespace render {

namespace {

// Often enough to look alive, seldom enough to cost nothing.
constexpr std::chrono::milliseconds kInterval{100};

}  // namespace

Progress::Progress(std::FILE* out, size_t total)
    : out_(out && ::isatty(::fileno(out)) ? out : nullptr),
      total_(total),
      start_(std::chrono::steady_clock::now()),
      lastShown_(start_ - kInterval) {}

Progress::~Progress() {
  if (!out_ || width_ == 0) return;
  std::fprintf(out_, "\r%*s\r", static_cast<int>(width_), "");
  std::fflush(out_);
}

void Progress::update(size_t done) {
  if (!out_) return;
  const auto now = std::chrono::steady_clock::now();
  if (now - lastShown_ < kInterval && done < total_) return;
  lastShown_ = now;
  const std::string text = line(done, total_, std::chrono::duration<double>(now - start_).count());
  const size_t pad = width_ > text.size() ? width_ - text.size() : 0;
  width_ = std::max(width_, text.size());
  std::fprintf(out_, "\r%s%*s", text.c_str(), static_cast<int>(pad), "");
  std::fflush(out_);
}

std::string Progress::line(size_t done, size_t total, double elapsedSeconds) {
  const size_t percent = total ? done * 100 / total : 100;
  std::string text = "ply " + std::to_string(done) + " of " + std::to_string(total) + ", " +
                     std::to_string(percent) + "%";
  if (done > 0 && done < total) {
    const double left =
        elapsedSeconds / static_cast<double>(done) * static_cast<double>(total - done);
    text += ", about " + std::to_string(static_cast<long long>(std::ceil(left))) + " s left";
  }
  return text;
}

}  // namespace render
