#pragma once
// The clock and random readings that every shipped platform gives the same way.

#include <cstdint>

namespace ostrel {

// Seconds since local midnight, with the fraction of the current second.
float secondsSinceLocalMidnight();

// A uniform value in [0, 1) from 32 random bits: the top 24 are kept, so every value is exact in
// a float and below 1.
inline float unitFloat(uint32_t bits) {
  return static_cast<float>(bits >> 8) * (1.0f / 16777216.0f);
}

}  // namespace ostrel
