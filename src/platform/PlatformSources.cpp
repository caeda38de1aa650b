#include "platform/PlatformSources.h"

#include <chrono>
#include <cmath>
#include <ctime>

namespace ostrel {

float secondsSinceLocalMidnight() {
  auto now = std::chrono::system_clock::now();
  std::time_t t = std::chrono::system_clock::to_time_t(now);
  std::tm local{};
  localtime_r(&t, &local);
  double fraction = std::chrono::duration<double>(now.time_since_epoch()).count();
  fraction -= std::floor(fraction);
  return static_cast<float>(local.tm_hour * 3600 + local.tm_min * 60 + local.tm_sec + fraction);
}

}  // namespace ostrel
