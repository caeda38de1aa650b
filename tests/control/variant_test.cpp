// Dynamic values as the host hands them over.

#include "ostrel/Variant.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using ostrel::Variant;

TEST(Variant, TextForms) {
  EXPECT_EQ(Variant().toString(), "");
  EXPECT_EQ(Variant(true).toString(), "True");
  EXPECT_EQ(Variant(false).toString(), "False");
  EXPECT_EQ(Variant(42).toString(), "42");
  EXPECT_EQ(Variant(int16_t{-7}).toString(), "-7");
  EXPECT_EQ(Variant(2.5).toString(), "2.5");
  EXPECT_EQ(Variant(0.1).toString(), "0.1");
  EXPECT_EQ(Variant("abc").toString(), "abc");
  EXPECT_EQ(Variant(std::string("x y")).toString(), "x y");
}

TEST(Variant, LeadingNumber) {
  EXPECT_EQ(Variant("30abc").leadingNumber(), 30);
  EXPECT_EQ(Variant("abc").leadingNumber(), 0);
  EXPECT_EQ(Variant("").leadingNumber(), 0);
  EXPECT_EQ(Variant("  -2.5e1x").leadingNumber(), -25);
  EXPECT_EQ(Variant("1e").leadingNumber(), 1) << "an exponent without digits is not read";
  EXPECT_EQ(Variant(".5").leadingNumber(), 0.5);
  EXPECT_EQ(Variant("-").leadingNumber(), 0);
  EXPECT_EQ(Variant(".").leadingNumber(), 0);
  EXPECT_EQ(Variant(12.75).leadingNumber(), 12.75);
  EXPECT_EQ(Variant(true).leadingNumber(), -1);
  EXPECT_EQ(Variant().leadingNumber(), 0);
  EXPECT_TRUE(std::isinf(Variant("1e999").leadingNumber()));
  EXPECT_EQ(Variant("1e-999").leadingNumber(), 0);
}

TEST(Variant, Truth) {
  EXPECT_TRUE(Variant(true).toBool());
  EXPECT_FALSE(Variant(false).toBool());
  EXPECT_TRUE(Variant(-1).toBool());
  EXPECT_FALSE(Variant(0).toBool());
  EXPECT_TRUE(Variant("True").toBool());
  EXPECT_TRUE(Variant("true").toBool());
  EXPECT_FALSE(Variant("False").toBool());
  EXPECT_TRUE(Variant("-1").toBool());
  EXPECT_FALSE(Variant("no").toBool());
  EXPECT_FALSE(Variant().toBool());
}

}  // namespace
