// Dynamic values as the host hands them over.

#include "ostrel/Variant.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using ostrel::Variant;

TEST(Variant, TextNumberAndTruth) {
  const std::pair<Variant, const char*> texts[] = {
      {Variant(), ""}, {true, "True"},      {false, "False"},
      {42, "42"},      {int16_t{-7}, "-7"}, {2.5, "2.5"},
      {0.1, "0.1"},    {"abc", "abc"},      {std::string("x y"), "x y"}};
  for (const auto& [v, text] : texts) EXPECT_EQ(v.toString(), text);

  // An exponent without digits is not read; true reads -1.
  const std::pair<Variant, double> numbers[] = {
      {"30abc", 30}, {"abc", 0}, {"", 0},        {"  -2.5e1x", -25}, {"1e", 1},      {".5", 0.5},
      {"-", 0},      {".", 0},   {12.75, 12.75}, {true, -1},         {Variant(), 0}, {"1e-999", 0}};
  for (const auto& [v, number] : numbers) EXPECT_EQ(v.leadingNumber(), number) << v.toString();
  EXPECT_TRUE(std::isinf(Variant("1e999").leadingNumber()));

  const std::pair<Variant, bool> truths[] = {
      {true, true},   {false, false},   {-1, true},   {0, false},    {"True", true},
      {"true", true}, {"False", false}, {"-1", true}, {"no", false}, {Variant(), false}};
  for (const auto& [v, truth] : truths) EXPECT_EQ(v.toBool(), truth) << v.toString();
}

}  // namespace
