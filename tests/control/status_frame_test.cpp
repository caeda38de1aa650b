// The status frame: its first state, the fill arithmetic and the order in which a showing
// reaches the screen. Where the frame is painted is the start-up suites' check.

#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>

#include "ostrel/ostrel.h"
#include "support/RecordingPlatform.h"

namespace {

using namespace ostrel;
using ostrel::testing::FrameSeen;
using ostrel::testing::RecordingPlatform;

TEST(StatusFrame, FillIsAShareOfTwoPixelsLessThanTheFrame) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  EXPECT_TRUE(board.label1().Visible && board.lblStatus().Visible);
  EXPECT_FALSE(board.lblProgress().Visible);
  EXPECT_EQ(board.lblStatus().Caption, "Initialising Quorvan ");
  // The percentage is the leading number of its text form; 100 neither hides the frame nor is a
  // limit; what is no number, or infinite, reads as 0, and a length past a Single's range keeps the
  // longest.
  const std::pair<Variant, float> shares[] = {
      {50, 2872.5f},        {0, 0.0f},          {100, 5745.0f},    {150, 8617.5f},
      {"50", 2872.5f},      {"30abc", 1723.5f}, {"abc", 0.0f},     {12.5, 718.125f},
      {std::nan(""), 0.0f}, {HUGE_VAL, 0.0f},   {-HUGE_VAL, 0.0f}, {"nan", 0.0f},
      {"inf", 0.0f},        {"1e999", 0.0f},    {"-1e999", 0.0f},  {1e300, FLT_MAX},
      {-1e40, -FLT_MAX}};
  for (const auto& [percentage, width] : shares) {
    board.showProgressBar("s", true, 50);
    board.showProgressBar("s", true, percentage);
    EXPECT_FLOAT_EQ(board.lblProgress().Width, width) << percentage.toString();
    EXPECT_TRUE(board.label1().Visible);
  }
  // Two pixels of the screen's own size.
  HeadlessOptions options;
  options.twipsPerPixelX = 12;
  HeadlessPlatform coarse(options);
  ctlBoard other(coarse);
  other.showProgressBar("", true, 100);
  EXPECT_EQ(other.lblProgress().Width, 5775 - 24);
}

TEST(StatusFrame, FillIsPaintedBeforeTheFrameIsSwitchedAndInitStringSetsTheTextOnly) {
  RecordingPlatform platform;
  ctlBoard board(platform);
  platform.board = &board;
  board.showProgressBar("Working", false, 40);
  ASSERT_EQ(platform.paints.size(), 1u);
  EXPECT_FALSE(board.label1().Visible || board.lblStatus().Visible || board.lblProgress().Visible);
  EXPECT_EQ(board.lblStatus().Caption, "Working") << "text is set while hidden";
  board.setInitString("Loading the board");
  EXPECT_EQ(board.lblStatus().Caption, "Loading the board");
  EXPECT_EQ(platform.paints.size(), 1u);
  EXPECT_FALSE(board.label1().Visible || board.lblStatus().Visible);

  board.showProgressBar("Shown", true, 40);
  ASSERT_EQ(platform.paints.size(), 2u);
  const FrameSeen& seen = platform.paints[1];
  EXPECT_TRUE(seen.fillVisible);
  EXPECT_FLOAT_EQ(seen.fillWidth, 0.4f * 5745);
  EXPECT_EQ(seen.caption, "Shown");
  EXPECT_FALSE(seen.statusVisible || seen.frameVisible) << "the frame is as it was at the paint";
  EXPECT_TRUE(board.label1().Visible && board.lblStatus().Visible);
}

}  // namespace
