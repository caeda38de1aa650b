// Move strings, field lists and the field geometry of the board.
//
// Positions in the token scan count characters from 1, as the notation does: p is the position
// of a delimiter, and p = 1 - n stands for a delimiter imagined just before the text.

#include "ostrel/notation.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "board/NumberText.h"

namespace ostrel {

namespace {

// 1-based position of the first delimiter at or after position from, or 0 when there is none.
// An empty delimiter never matches, so a text searched with it is a single token.
int64_t findFrom(std::string_view text, std::string_view delimiter, int64_t from) {
  if (delimiter.empty() || from < 1) return 0;
  const auto start = static_cast<size_t>(from - 1);
  if (start > text.size()) return 0;
  const size_t found = text.find(delimiter, start);
  return found == std::string_view::npos ? 0 : static_cast<int64_t>(found) + 1;
}

// Rounds to the nearest whole number, ties to the even neighbour.
double roundHalfEven(double v) {
  const double lower = std::floor(v);
  const double diff = v - lower;
  if (diff < 0.5) return lower;
  if (diff > 0.5) return lower + 1.0;
  return std::fmod(lower, 2.0) == 0.0 ? lower : lower + 1.0;
}

}  // namespace

std::string getToken(std::string_view text, std::string_view delimiter, int16_t fromToken,
                     int16_t toToken) {
  int64_t from = fromToken;
  int64_t to = toToken;
  if (to == 0) to = from;
  if (from < 1) from = 1;
  if (from > to) return {};

  const auto n = static_cast<int64_t>(delimiter.size());
  const auto length = static_cast<int64_t>(text.size());
  int64_t start = length + 1;
  int64_t end = length;
  int64_t p = 1 - n;
  int64_t search = 1;
  int64_t t = 1;
  for (;;) {
    if (t == from) start = p + n;
    if (t == to + 1) {
      end = p - 1;
      break;
    }
    p = findFrom(text, delimiter, search);
    if (p == 0) {
      end = length;
      break;
    }
    search = p + n;
    ++t;
  }
  const int64_t count = end - start + 1;
  if (count <= 0 || start > length) return {};
  return std::string(text.substr(static_cast<size_t>(start - 1), static_cast<size_t>(count)));
}

int32_t countTokens(std::string_view text, std::string_view delimiter) {
  int64_t count = 0;
  int64_t p = 1;
  const auto n = static_cast<int64_t>(delimiter.size());
  while (p > 0) {
    p = findFrom(text, delimiter, p);
    ++count;
    if (p > 0) p += n;
  }
  return static_cast<int32_t>(std::min<int64_t>(count, std::numeric_limits<int32_t>::max()));
}

int16_t tokenValue(std::string_view token) {
  // A number beyond the 16-bit range is outside the notation; rather than fail, it is clamped to
  // -32768 or 32767. Everything that fits is rounded half to even.
  double v = board::leadingNumber(token);
  if (std::isnan(v)) return 0;
  v = std::clamp(v, -40000.0, 40000.0);
  v = std::clamp(roundHalfEven(v), -32768.0, 32767.0);
  return static_cast<int16_t>(v);
}

std::string normalMove(std::string_view strMove) {
  std::string out(strMove);
  std::replace(out.begin(), out.end(), 'x', '-');
  return out;
}

void fieldToBoard(int16_t field, float& x, float& y) {
  // The remainder keeps the sign of field - 1, so fields below 1 run on to the left of the board.
  const int c = (field - 1) % 5;
  const int a = 2 * c + 1;
  x = static_cast<float>(a - 4.57);
  // Rows 6-10, 16-20, ..., 46-50 begin with a dark square: one column further left.
  const bool darkFirst = field >= 6 && field <= 50 && ((field - 1) / 5) % 2 == 1;
  if (darkFirst) x = static_cast<float>(static_cast<double>(x) - 1.0);
  y = static_cast<float>(5.0 - std::floor((field - 1) / 5.0) - 0.5);
}

void boardToField(float x, float y, int16_t& field) {
  const auto col = static_cast<float>(std::floor(static_cast<double>(x) + 5.0));
  const auto row = static_cast<float>(std::floor(static_cast<double>(y) + 5.0));
  // Written so that NaN fails every test and lands on -1.
  if (!(col >= 0 && row >= 0 && col < 10 && row < 10)) {
    field = -1;
    return;
  }
  const int X = static_cast<int>(col);
  const int Y = static_cast<int>(row);
  if ((X + Y) % 2 != 0) {
    field = -1;
    return;
  }
  field = static_cast<int16_t>(5 * (9 - Y) + X / 2 + 1);
}

int32_t swapRedBlue(int32_t colour) {
  if (colour >= 0x1000000) return colour;
  // The masks take the low 24 bits, so a negative value swaps its low bytes too: -1 gives 0xFFFFFF.
  return (colour & 0xFF) * 65536 + (colour & 0xFF00) + (colour & 0xFF0000) / 65536;
}

}  // namespace ostrel
