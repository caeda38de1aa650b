#pragma once
// Random values for the call-order run, many of them hostile: numbers that are no number or
// infinite, fields beyond the board, moves and lists that are no moves, images that do not exist.

#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>

#include "ostrel/Variant.h"

namespace ostrel::testing {

class HostileValues {
 public:
  explicit HostileValues(uint32_t seed) : random_(seed) {}

  bool chance(double p) { return std::uniform_real_distribution<double>(0, 1)(random_) < p; }
  int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(random_); }
  template <typename T, size_t N>
  const T& among(const T (&values)[N]) {
    return values[static_cast<size_t>(pick(static_cast<int>(N)))];
  }
  float anyFloat() {
    static const float values[] = {0,         -0.0f, 1,       -1,      0.05f,       0.1f,
                                   15,        800,   900,     1e-30f,  1e30f,       INFINITY,
                                   -INFINITY, NAN,   3.1416f, FLT_MAX, FLT_TRUE_MIN};
    if (chance(0.5)) return std::uniform_real_distribution<float>(-20000, 20000)(random_);
    return among(values);
  }
  double anyDouble() {
    static const double values[] = {0,   -1,       0.5,       1,      2,       1e308,
                                    NAN, INFINITY, -INFINITY, -1e308, 4.9e-324};
    if (chance(0.6)) return std::uniform_real_distribution<double>(-2, 3)(random_);
    return among(values);
  }
  int16_t anyInt16() {
    static const int16_t values[] = {0, 1, -1, 49, 50, 51, 255, -32768, 32767};
    if (chance(0.6)) return static_cast<int16_t>(pick(62) - 5);
    return among(values);
  }
  int32_t anyInt32() {
    using I = std::numeric_limits<int32_t>;
    static const int32_t values[] = {0, -1, 0x404040, 0xFFFFFF, 0x1000000, I::max(), I::min()};
    if (chance(0.5)) return static_cast<int32_t>(random_());
    return among(values);
  }
  std::string anyField() { return std::to_string(pick(56) - 2); }
  std::string anyMove() {
    if (chance(0.2))
      return among({"", "-", "--", "x", "1-", "-1", "32-", "abc", "1x2x", "0-0", "99999999999-1",
                    "32-28|19-23", " 32 - 28 ", "1-50-1-50", "\x01\xff-\x80", "32x28", "K46-5"});
    std::string move = anyField();
    for (int hops = 1 + pick(3); hops > 0; --hops) move += (chance(0.7) ? "-" : "x") + anyField();
    return move;
  }
  std::string anyFieldList() {
    if (chance(0.2)) return among({"", "|", "||", "a|b", "7|", "|12", "-1|51", "0"});
    std::string list = anyField();
    for (int n = pick(18); n > 0; --n) list += "|" + anyField();
    return list;
  }
  std::string anyImage() {
    return among({"", "board.jpg", "piecewhite.png", "pieceblack.png", "missing.png",
                  "../models/hl.png", "models/", "shadow2.png", "board.x"});
  }
  Variant anyVariant() {
    const int kind = pick(6);
    if (kind == 0) return Variant();
    if (kind == 1) return Variant(chance(0.5));
    if (kind == 2) return Variant(static_cast<int64_t>(anyInt32()));
    if (kind == 3) return Variant(anyDouble());
    if (kind == 4) return Variant(anyMove());
    return Variant(among({"50", "nan", "inf", "-1e999", "1e999", "True", "30abc"}));
  }

 protected:
  std::mt19937 random_;
};

}  // namespace ostrel::testing
