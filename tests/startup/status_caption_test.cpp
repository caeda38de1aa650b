// The caption of the status frame as the headless window paints it: in its colour, over the fill,
// clipped to the frame, and gone with the label or the frame.

#include <gtest/gtest.h>

#include "ostrel/ctlBoard.h"
#include "platform/StatusFramePainter.h"

namespace {

using ostrel::Image;
using ostrel::Label;

struct Frame {
  Label frame, status, progress;
  Frame() {
    frame.Left = 120;
    frame.Top = 120;
    frame.Width = 1500;  // 100 px: shorter than the caption
    frame.Height = 375;
    frame.BackColor = static_cast<int32_t>(0x80000005u);
    status.Left = 60;
    status.Width = 2310;
    status.Height = 285;
    status.ForeColor = 0x0000FF00;  // pure green, 0x00BBGGRR
    status.FontSize = 12;
    status.Caption = "Initialising Quorvan ";
    progress.Visible = false;
  }
};

Image blackWindow(int w, int h) {
  Image image;
  image.width = w;
  image.height = h;
  image.rgba.assign(static_cast<size_t>(w) * h * 4, 0);
  for (size_t i = 3; i < image.rgba.size(); i += 4) image.rgba[i] = 255;
  return image;
}

// Pixels of a rectangle whose green clearly beats red and blue.
int greenPixels(const Image& image, int x0, int y0, int x1, int y1) {
  int n = 0;
  for (int y = y0; y < y1; ++y) {
    for (int x = x0; x < x1; ++x) {
      const uint8_t* p = &image.rgba[(static_cast<size_t>(y) * image.width + x) * 4];
      n += p[1] > 150 && p[0] < 120 && p[2] < 120;
    }
  }
  return n;
}

TEST(StatusCaption, DrawnInItsColourAndClippedToTheFrame) {
  Frame f;
  Image image = blackWindow(300, 60);
  ostrel::paintStatusFrame(image, f.frame, f.status, f.progress, 15, 15);
  // The frame spans x 8..108; the caption starts 4 px into its client area.
  EXPECT_GT(greenPixels(image, 9, 9, 107, 32), 100);
  EXPECT_EQ(greenPixels(image, 108, 0, 300, 60), 0) << "nothing beyond the frame";
  // A 16 px high font: letters reach well below the label's first rows and stay above y 33.
  EXPECT_GT(greenPixels(image, 9, 20, 107, 26), 10);
  EXPECT_EQ(greenPixels(image, 0, 34, 300, 60), 0);
}

TEST(StatusCaption, ReadableOverTheFillAndGoneWhenHidden) {
  Frame f;
  f.frame.Width = 5775;
  f.progress.Visible = true;
  f.progress.Width = 5745;
  f.progress.Height = 345;
  f.progress.BackColor = 0x00FF0000;
  Image over = blackWindow(400, 60);
  ostrel::paintStatusFrame(over, f.frame, f.status, f.progress, 15, 15);
  EXPECT_GT(greenPixels(over, 9, 9, 250, 32), 100) << "the text lies on top of the fill";

  f.status.Visible = false;
  Image hidden = blackWindow(400, 60);
  ostrel::paintStatusFrame(hidden, f.frame, f.status, f.progress, 15, 15);
  EXPECT_EQ(greenPixels(hidden, 0, 0, 400, 60), 0);

  f.status.Visible = true;
  f.frame.Visible = false;
  Image none = blackWindow(400, 60);
  ostrel::paintStatusFrame(none, f.frame, f.status, f.progress, 15, 15);
  EXPECT_EQ(none.rgba, blackWindow(400, 60).rgba) << "hiding the frame hides all of it";
}

TEST(StatusCaption, OddTextAndTinyWindowsAreSafe) {
  Frame f;
  f.status.Caption = std::string("\xff\xfe broken \xe2\x82 utf-8 \xf0\x9f\x98\x80", 24);
  Image image = blackWindow(50, 10);  // the frame runs off the window's edge
  ostrel::paintStatusFrame(image, f.frame, f.status, f.progress, 15, 15);
  Image empty;
  ostrel::paintStatusFrame(empty, f.frame, f.status, f.progress, 15, 15);
  f.status.FontSize = 400;  // taller than the frame
  Image big = blackWindow(300, 60);
  ostrel::paintStatusFrame(big, f.frame, f.status, f.progress, 15, 15);
  EXPECT_EQ(greenPixels(big, 0, 34, 300, 60), 0);
}

}  // namespace
