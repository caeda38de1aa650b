// Seeded random texts over an alphabet rich in delimiters, digits, signs and blanks.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <random>
#include <string>

#include "ostrel/notation.h"

using namespace ostrel;

namespace {

std::string randomText(std::mt19937& rng, size_t maxLength) {
  static const std::string alphabet = "--||xxX 0123456789+-.eEab\t";
  std::uniform_int_distribution<size_t> length(0, maxLength);
  std::uniform_int_distribution<size_t> pick(0, alphabet.size() - 1);
  std::string text(length(rng), ' ');
  for (char& c : text) c = alphabet[pick(rng)];
  return text;
}

// Occurrences of a delimiter whose characters are all different (so no two can overlap).
int32_t occurrences(const std::string& text, const std::string& delimiter) {
  int32_t n = 0;
  for (size_t i = 0; i + delimiter.size() <= text.size(); ++i)
    n += text.compare(i, delimiter.size(), delimiter) == 0;
  return n;
}

}  // namespace

TEST(NotationProperties, TokensCountDelimitersAndJoinBackToTheText) {
  std::mt19937 rng(0x5eed1);
  for (int round = 0; round < 3000; ++round) {
    const std::string text = randomText(rng, 40);
    for (const std::string delimiter : {"-", "|", "x", "x-"}) {
      const int32_t count = countTokens(text, delimiter);
      ASSERT_EQ(count, occurrences(text, delimiter) + 1) << '"' << text << "\" " << delimiter;
      std::string joined;
      for (int32_t i = 1; i <= count; ++i) {
        if (i > 1) joined += delimiter;
        joined += getToken(text, delimiter, static_cast<int16_t>(i), 0);
      }
      ASSERT_EQ(joined, text) << delimiter;
      ASSERT_EQ(getToken(text, delimiter, 1, static_cast<int16_t>(count)), text);
      ASSERT_EQ(getToken(text, delimiter, static_cast<int16_t>(count + 1), 0), "");
    }
  }
}

TEST(NotationProperties, TokenValueReadsOnlyItsOwnCharacters) {
  std::mt19937 rng(0x5eed2);
  for (int round = 0; round < 3000; ++round) {
    const std::string token = randomText(rng, 12);
    // Digits right after the token would change its value if they were read.
    const std::string buffer = randomText(rng, 5) + token + "987e3";
    const std::string_view view =
        std::string_view(buffer).substr(buffer.size() - 5 - token.size(), token.size());
    // An exact-size heap copy with no terminator: reading past it is a fault under ASan.
    auto exact = std::make_unique<char[]>(std::max<size_t>(token.size(), 1));
    std::memcpy(exact.get(), token.data(), token.size());
    int16_t fromView = 0, fromExact = 0;
    ASSERT_NO_THROW(fromView = tokenValue(view));
    ASSERT_NO_THROW(fromExact = tokenValue(std::string_view(exact.get(), token.size())));
    ASSERT_EQ(fromView, fromExact) << '"' << token << '"';
  }
}
