#pragma once
// A headless platform whose OpenGL context can be taken away for a while, and whose manual clock
// notices a caller that waits on it forever.

#include <cstdint>

#include "ostrel/HeadlessPlatform.h"

namespace ostrel::testing {

class HostilePlatform : public HeadlessPlatform {
 public:
  using HeadlessPlatform::HeadlessPlatform;

  // The next `granted` requests for the context succeed, the ones after fail until
  // contextLost is set to false again. A negative count never fails.
  void loseContextAfter(int granted) {
    grantsLeft_ = granted;
    contextLost = false;
  }
  bool contextLost = false;

  bool makeContextCurrent() override {
    if (grantsLeft_ == 0) contextLost = true, grantsLeft_ = -1;
    if (grantsLeft_ > 0) --grantsLeft_;
    return !contextLost && HeadlessPlatform::makeContextCurrent();
  }

  // A caller that reads the clock this often without getting anywhere is stuck: from then on
  // each reading moves the clock a second ahead, so that the wait ends and the test can say so.
  static constexpr int64_t kStuckReads = 2'000'000;
  int64_t clockReads = 0;
  bool stuck = false;
  int32_t timeGetTime() override {
    if (++clockReads > kStuckReads) {
      stuck = true;
      advance(1000);
    }
    return HeadlessPlatform::timeGetTime();
  }

 private:
  int grantsLeft_ = -1;
};

}  // namespace ostrel::testing
