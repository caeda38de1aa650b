// The status frame: design-time layout, the fill arithmetic and the order in which a showing
// reaches the screen.

#include <gtest/gtest.h>

#include <vector>

#include "ostrel/ostrel.h"

namespace {

using ostrel::ctlBoard;
using ostrel::HeadlessPlatform;
using ostrel::Label;

// Records what the frame looked like at each paint of a label.
struct PaintSeen {
  float fillWidth;
  bool fillVisible, statusVisible, frameVisible;
  std::string caption;
};

class RecordingPlatform : public HeadlessPlatform {
 public:
  const ctlBoard* board = nullptr;
  std::vector<PaintSeen> paints;
  void Refresh(const Label& label) override {
    ASSERT_NE(board, nullptr);
    EXPECT_EQ(&label, &board->lblProgress());
    paints.push_back({label.Width, label.Visible, board->lblStatus().Visible,
                      board->label1().Visible, board->lblStatus().Caption});
  }
};

TEST(StatusFrame, DesignTimeLayout) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  const Label& frame = board.label1();
  EXPECT_EQ(frame.Left, 120);
  EXPECT_EQ(frame.Top, 120);
  EXPECT_EQ(frame.Width, 5775);
  EXPECT_EQ(frame.Height, 375);
  EXPECT_TRUE(frame.Visible);
  EXPECT_EQ(static_cast<uint32_t>(frame.BackColor), 0x80000005u);
  EXPECT_EQ(board.lblStatus().Caption, "Initialising Quorvan ");
  EXPECT_EQ(board.lblStatus().ForeColor, 0x008080FF);
  EXPECT_EQ(board.lblStatus().FontName, "MS Sans Serif");
  EXPECT_EQ(board.lblStatus().FontWeight, 700);
  EXPECT_TRUE(board.lblStatus().Visible);
  EXPECT_FALSE(board.lblProgress().Visible);
  EXPECT_EQ(board.lblProgress().BackColor, 0x00FF0000);
  EXPECT_EQ(board.lblProgress().Width, 2535);
  EXPECT_EQ(board.Timer1().Interval, 100);
  EXPECT_FALSE(board.Timer1().Enabled);
  EXPECT_EQ(board.pic().Width, 6315);
  EXPECT_EQ(board.pic().Height, 4095);
}

TEST(StatusFrame, FillIsAShareOfTwoPixelsLessThanTheFrame) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  board.showProgressBar("half", true, 50);
  EXPECT_FLOAT_EQ(board.lblProgress().Width, 2872.5f);
  board.showProgressBar("none", true, 0);
  EXPECT_EQ(board.lblProgress().Width, 0);
  EXPECT_TRUE(board.label1().Visible);
  board.showProgressBar("all", true, 100);
  EXPECT_EQ(board.lblProgress().Width, 5745);
  EXPECT_TRUE(board.label1().Visible) << "the frame does not hide by itself at 100";
  board.showProgressBar("over", true, 150);
  EXPECT_FLOAT_EQ(board.lblProgress().Width, 8617.5f) << "full is no limit";
}

TEST(StatusFrame, FillFollowsTheScreensTwipsPerPixel) {
  ostrel::HeadlessOptions options;
  options.twipsPerPixelX = 12;
  HeadlessPlatform platform(options);
  ctlBoard board(platform);
  board.showProgressBar("", true, 100);
  EXPECT_EQ(board.lblProgress().Width, 5775 - 24);
}

TEST(StatusFrame, PercentageAsTextReadsItsLeadingNumber) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  board.showProgressBar("s", true, "30abc");
  EXPECT_FLOAT_EQ(board.lblProgress().Width, 0.3f * 5745);
  board.showProgressBar("s", true, "50");
  EXPECT_FLOAT_EQ(board.lblProgress().Width, 2872.5f);
  board.showProgressBar("s", true, "abc");
  EXPECT_EQ(board.lblProgress().Width, 0);
  board.showProgressBar("s", true, 12.5);
  EXPECT_FLOAT_EQ(board.lblProgress().Width, static_cast<float>(0.125 * 5745));
}

TEST(StatusFrame, FillIsPaintedBeforeTheFrameIsSwitched) {
  RecordingPlatform platform;
  ctlBoard board(platform);
  platform.board = &board;
  board.showProgressBar("Working", false, 40);
  ASSERT_EQ(platform.paints.size(), 1u);
  EXPECT_FALSE(board.label1().Visible);
  EXPECT_FALSE(board.lblStatus().Visible);
  EXPECT_FALSE(board.lblProgress().Visible);
  EXPECT_EQ(board.lblStatus().Caption, "Working") << "text is set while hidden";
  EXPECT_FLOAT_EQ(board.lblProgress().Width, 0.4f * 5745);

  board.showProgressBar("Working", true, 40);
  ASSERT_EQ(platform.paints.size(), 2u);
  const PaintSeen& seen = platform.paints[1];
  EXPECT_TRUE(seen.fillVisible);
  EXPECT_FLOAT_EQ(seen.fillWidth, 0.4f * 5745);
  EXPECT_EQ(seen.caption, "Working");
  EXPECT_FALSE(seen.statusVisible) << "the frame is still as it was at the paint";
  EXPECT_FALSE(seen.frameVisible);
  EXPECT_TRUE(board.label1().Visible);
  EXPECT_TRUE(board.lblStatus().Visible);
}

TEST(StatusFrame, InitStringSetsTheTextOnly) {
  RecordingPlatform platform;
  ctlBoard board(platform);
  platform.board = &board;
  board.showProgressBar("before", false, 10);
  platform.paints.clear();
  board.setInitString("Loading the board");
  EXPECT_EQ(board.lblStatus().Caption, "Loading the board");
  EXPECT_TRUE(platform.paints.empty());
  EXPECT_FALSE(board.label1().Visible);
  EXPECT_FALSE(board.lblStatus().Visible);
  board.showProgressBar("replaced", true, 10);
  EXPECT_EQ(board.lblStatus().Caption, "replaced");
}

TEST(StatusFrame, ShownFrameIsPaintedOverTheWindow) {
  HeadlessPlatform platform;
  ctlBoard board(platform);
  board.ambientBackColor(0x000000);
  board.showProgressBar("", true, 100);
  ostrel::Image shown = platform.windowImage();
  auto pixel = [&](int x, int y) {
    const uint8_t* p = &shown.rgba[(static_cast<size_t>(y) * shown.width + x) * 4];
    return (p[0] << 16) | (p[1] << 8) | p[2];
  };
  // The fill is pure blue from the frame's left edge; beyond the frame the back colour shows.
  EXPECT_EQ(pixel(10, 10), 0x0000FF);
  EXPECT_EQ(pixel(300, 300), 0x000000);
  board.showProgressBar("", false, 100);
  shown = platform.windowImage();
  EXPECT_EQ(pixel(10, 10), 0x000000);
}

}  // namespace
