#include "board/NumberText.h"

#include <charconv>
#include <cmath>

namespace ostrel::board {

namespace {
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
}  // namespace

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
  auto [end, ec] = std::from_chars(number.data(), number.data() + number.size(), value);
  (void)end;
  if (ec == std::errc::result_out_of_range) value = negativeExponent ? 0.0 : HUGE_VAL;
  return negative ? -value : value;
}

}  // namespace ostrel::board
