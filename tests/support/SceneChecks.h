#pragma once
// Where a disc, shadow or marker of the scene stands, checked against the point of a field.

#include <gtest/gtest.h>

#include "ostrel/notation.h"

namespace ostrel::testing {

// Visible on the point of a field moved `shift` along x (markers stand 0.08 to the right of the
// discs), at a height.
template <typename T>
void expectOn(const T& o, int field, float height, float shift = 0) {
  float x, y;
  fieldToBoard(static_cast<int16_t>(field), x, y);
  EXPECT_TRUE(o.visible) << field;
  EXPECT_FLOAT_EQ(o.posX(), x + shift) << field;
  EXPECT_FLOAT_EQ(o.posY(), height) << field;
  EXPECT_EQ(o.posZ(), y) << field;
}

}  // namespace ostrel::testing
