// Token helpers, the numeric value of a token, and the field geometry.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "ostrel/notation.h"

using namespace ostrel;

TEST(Tokens, GetTokenCountTokensAndNormalMoves) {
  struct Get {
    const char* text;
    int16_t from, to;
    const char* want;
  };
  const Get gets[] = {{"32-28", 1, 0, "32"},    {"32-28", 2, 0, "28"},    {"32-28", 3, 0, ""},
                      {"1-2-3-4", 2, 3, "2-3"}, {"1-2-3-4", 3, 9, "3-4"}, {"1-2", 0, 0, ""},
                      {"1-2", 0, 2, "1-2"},     {"", 1, 0, ""},           {"a--b", 2, 0, ""},
                      {"a--b", 3, 0, "b"},      {"1-2", -7, 1, "1"},      {"1-2", 2, 1, ""},
                      {"1-2", 1, 32767, "1-2"}, {"-", 2, 0, ""}};
  for (const Get& c : gets)
    EXPECT_EQ(getToken(c.text, "-", c.from, c.to), c.want) << c.text << " " << c.from << c.to;
  EXPECT_EQ(getToken("7<>8<>9", "<>", 2, 3), "8<>9");
  EXPECT_EQ(getToken("aaa", "aa", 2, 0), "a");  // the search goes on after the whole delimiter
  EXPECT_EQ(getToken("1-2", "", 1, 0), "1-2");  // an empty delimiter never matches

  // Empty tokens count; delimiters do not overlap.
  const std::tuple<const char*, const char*, int32_t> counts[] = {{"", "|", 1},     {"7", "|", 1},
                                                                  {"7|8|", "|", 3}, {"-", "-", 2},
                                                                  {"aaa", "aa", 2}, {"1-2", "", 1}};
  for (const auto& [text, delimiter, want] : counts)
    EXPECT_EQ(countTokens(text, delimiter), want) << text << " " << delimiter;

  // Only the lower-case x becomes a dash.
  const std::pair<const char*, const char*> moves[] = {
      {"26x37x48", "26-37-48"}, {"31X22", "31X22"}, {"1-2x3", "1-2-3"}};
  for (const auto& [move, want] : moves) EXPECT_EQ(normalMove(move), want);
}

TEST(Tokens, ValueIsTheLeadingNumberRoundedToAFieldNumber) {
  // The value comes from the token's own characters only: digits right after it change nothing,
  // and a copy of exactly its size, with no terminator, is read within its bounds.
  auto value = [](std::string_view token) {
    const std::string buffer = std::string(token) + "987e3";
    auto exact = std::make_unique<char[]>(std::max<size_t>(token.size(), 1));
    std::memcpy(exact.get(), token.data(), token.size());
    const int16_t v = tokenValue(std::string_view(exact.get(), token.size()));
    EXPECT_EQ(tokenValue(std::string_view(buffer).substr(0, token.size())), v) << token;
    return v;
  };
  using Value = std::pair<const char*, int16_t>;
  const Value numbers[] = {{"32", 32},  {"32abc", 32}, {"32X23", 32}, {"  7", 7},     {"\t7", 7},
                           {"", 0},     {"abc", 0},    {"-5", -5},    {"+5", 5},      {"7 8", 7},
                           {"2.5", 2},  {"3.5", 4},    {"-2.5", -2},  {"0.51", 1},    {".5", 0},
                           {"1e1", 10}, {"1e", 1},     {"1e+", 1},    {"1.5e1x", 15}, {"0x1A", 0},
                           {"inf", 0},  {"nan", 0}};
  for (const auto& [token, want] : numbers) EXPECT_EQ(value(token), want) << '"' << token;
  // Beyond 16 bits the value is held at the ends of the range.
  const Value beyond[] = {{"99999", 32767},     {"-99999", -32768}, {"32767.5", 32767},
                          {"-32768.5", -32768}, {"1e400", 32767},   {"-1e400", -32768},
                          {"1e-400", 0}};
  for (const auto& [token, want] : beyond) EXPECT_EQ(value(token), want) << '"' << token;
  EXPECT_EQ(tokenValue(std::string(5000, '9')), 32767);
}

TEST(FieldGeometry, EveryFieldSitsInItsSquareAndMapsBack) {
  // Rows that begin with a light square, then rows that begin with a dark one.
  const double rowX[2][5] = {{-3.57, -1.57, 0.43, 2.43, 4.43}, {-4.57, -2.57, -0.57, 1.43, 3.43}};
  for (int f = 1; f <= 50; ++f) {
    float x = 0, y = 0;
    fieldToBoard(static_cast<int16_t>(f), x, y);
    const int row = (f - 1) / 5;
    EXPECT_FLOAT_EQ(x, static_cast<float>(rowX[row % 2][(f - 1) % 5])) << f;
    EXPECT_FLOAT_EQ(y, 4.5f - static_cast<float>(row)) << f;
    // The whole square belongs to the field, also right of the disc point.
    for (auto [dx, dy] : {std::pair{0.0f, 0.0f}, {0.569f, 0.499f}, {-0.42f, -0.499f}}) {
      int16_t back = 0;
      boardToField(x + dx, y + dy, back);
      EXPECT_EQ(back, f) << dx << " " << dy;
    }
  }
  // Outside 1 to 50 the same arithmetic runs on, off the board.
  const std::tuple<int16_t, float, float> outside[] = {
      {0, -5.57f, 5.5f}, {-1, -7.57f, 5.5f}, {51, -3.57f, -5.5f}, {-32768, -11.57f, 6558.5f}};
  for (const auto& [field, wantX, wantY] : outside) {
    float x = 0, y = 0;
    fieldToBoard(field, x, y);
    EXPECT_FLOAT_EQ(x, wantX) << field;
    EXPECT_FLOAT_EQ(y, wantY) << field;
  }
}

TEST(FieldGeometry, BoardToFieldCornersEdgesAndLightSquares) {
  const float below5 = std::nextafter(5.0f, 0.0f), beyond5 = std::nextafter(-5.0f, -6.0f);
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const float inf = std::numeric_limits<float>::infinity();
  const std::tuple<float, float, int16_t> points[] = {
      {-5, -5, 46},         {4.99f, 4.99f, 5},   {0, 0, 23},           {-4.99f, 4.99f, -1},
      {4.99f, -4.99f, -1},  {5, 0, -1},          {-5.5f, -4.5f, -1},   {-4.5f, -4.5f, 46},
      {-4.01f, -4.01f, 46}, {below5, below5, 5}, {beyond5, -4.5f, -1}, {nan, 0, -1},
      {0, nan, -1},         {inf, 0, -1},        {-inf, -inf, -1},     {1e30f, 1e30f, -1}};
  for (const auto& [x, y, want] : points) {
    int16_t field = 99;
    boardToField(x, y, field);
    EXPECT_EQ(field, want) << x << ", " << y;
  }
}

TEST(SwapRedBlue, SwapsTheLowBytesBelowTheFlagRange) {
  using Swap = std::pair<int32_t, int32_t>;
  const Swap colours[] = {
      {0x404040, 0x404040}, {0x123456, 0x563412},   {0xFF, 0xFF0000},
      {0xFFFFFF, 0xFFFFFF}, {0x1000000, 0x1000000}, {0x7FFFFFFF, 0x7FFFFFFF},
      {-1, 0xFFFFFF},       {INT32_MIN, 0},         {int32_t(0x80000005u), 0x050000}};
  for (const auto& [in, out] : colours) EXPECT_EQ(swapRedBlue(in), out) << std::hex << in;
}
