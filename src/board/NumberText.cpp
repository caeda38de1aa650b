#include "board/NumberText.h"

#include <cstdlib>
#include <string>

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
  if (i < text.size() && (text[i] == 'e' || text[i] == 'E')) {
    size_t j = i + 1;
    if (j < text.size() && (text[j] == '+' || text[j] == '-')) ++j;
    if (j < text.size() && isDigit(text[j])) {
      while (j < text.size() && isDigit(text[j])) ++j;
      i = j;
    }
  }
  // strtod reads a terminated copy of exactly the scanned characters; it saturates on overflow.
  std::string number(text.substr(start, i - start));
  return std::strtod(number.c_str(), nullptr);
}

}  // namespace ostrel::board
