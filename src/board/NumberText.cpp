#include "board/NumberText.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <string>

namespace ostrel::board {

namespace {
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
}  // namespace

float toSingle(double value) {
  if (std::isnan(value)) return 0;
  constexpr double kLargest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -kLargest, kLargest));
}

double leadingNumber(std::string_view text) {
  size_t i = 0;
  while (i < text.size() && (text[i] == ' ' || text[i] == '\t')) ++i;
  size_t start = i;
  if (i < text.size() && (text[i] == '+' || text[i] == '-')) ++i;
  size_t digits = 0;
  while (i < text.size() && isDigit(text[i])) ++i, ++digits;
  if (i < text.size() && text[i] == '.') {
    ++i;
    while (i < text.size() && isDigit(text[i])) ++i, ++digits;
  }
  if (digits == 0) return 0;
  // An exponent counts only when digits follow it.
  bool negativeExponent = false;
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    size_t j = i + 1;
    bool minus = j < text.size() && text[j] == '-';
    if (j < text.size() && (text[j] == '+' || minus)) ++j;
    if (j < text.size() && isDigit(text[j])) {
      negativeExponent = minus;
      while (j < text.size() && isDigit(text[j])) ++j;
      i = j;
    }
  }
  // from_chars reads the scanned characters whatever the host's locale says about decimal points.
  std::string_view number = text.substr(start, i - start);
  bool negative = number[0] == '-';
  if (number[0] == '+' || negative) number.remove_prefix(1);
  double value = 0;
#if defined(__cpp_lib_to_chars)
  auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
  (void)end;
  if (ec == std::errc::result_out_of_range) value = negativeExponent ? 0.0 : HUGE_VAL;
#else
  // A C++ library without floating-point from_chars (WebAssembly's): strtod there knows only the
  // "C" locale, whose decimal point is '.'.
  const std::string copy(number);
  errno = 0;
  value = std::strtod(copy.c_str(), nullptr);
  if (errno == ERANGE) value = negativeExponent ? 0.0 : HUGE_VAL;
#endif
  return negative ? -value : value;
}

std::string shortestText(double value) {
  if (!std::isfinite(value)) return {};
  char buffer[64];
#if defined(__cpp_lib_to_chars)
  auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
  return ec == std::errc() ? std::string(buffer, end) : std::string();
#else
  for (int digits = 1; digits <= 17; ++digits) {
    std::snprintf(buffer, sizeof buffer, "%.*g", digits, value);
    if (std::strtod(buffer, nullptr) == value) break;
  }
  return buffer;
#endif
}

}  // namespace ostrel::board
