#pragma once
// Timing helpers shared by the benchmark programs: wall time of one call and the median of many.

#include <algorithm>
#include <chrono>
#include <ctime>
#include <vector>

namespace ostrel::bench {

using Clock = std::chrono::steady_clock;

inline double median(std::vector<double> v) {
  if (v.empty()) return 0;
  std::sort(v.begin(), v.end());
  const size_t n = v.size();
  return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

template <typename F>
double timedMs(F&& f) {
  const auto t0 = Clock::now();
  f();
  return std::chrono::duration<double, std::milli>(Clock::now() - t0).count();
}

// Processor time of the whole process, the renderer's threads included, in milliseconds. On a
// machine shared with other work it varies far less than wall time.
inline double processCpuMs() {
  timespec t{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
  return static_cast<double>(t.tv_sec) * 1e3 + static_cast<double>(t.tv_nsec) / 1e6;
}

}  // namespace ostrel::bench
