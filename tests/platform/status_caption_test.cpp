// The caption of the status frame as the headless window paints it: in its colour, over the fill,
// clipped to the frame, and gone with the label or the frame.

#include <gtest/gtest.h>

#include <cmath>

#include "ostrel/PlatformSupport.h"
#include "ostrel/ostrel.h"

namespace {

using ostrel::Image;
using ostrel::Label;

// The control's status frame at its design-time layout but 100 px wide, shorter than the caption,
// and with a pure green caption (0x00BBGGRR).
struct Frame {
  ostrel::HeadlessPlatform platform;
  ostrel::ctlBoard board{platform};
  Label frame = board.label1(), status = board.lblStatus(), progress = board.lblProgress();
  Frame() {
    frame.Width = 1500;
    status.ForeColor = 0x0000FF00;
  }
};

Image blackWindow(int w, int h) {
  Image image{w, h, std::vector<uint8_t>(static_cast<size_t>(w) * h * 4, 0)};
  for (size_t i = 3; i < image.rgba.size(); i += 4) image.rgba[i] = 255;
  return image;
}

// The frame painted over a black window of w x h pixels.
Image paint(const Frame& f, int w, int h) {
  Image image = blackWindow(w, h);
  ostrel::paintStatusFrame(image, f.frame, f.status, f.progress, 15, 15);
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

TEST(StatusCaption, InItsColourOverTheFillClippedToTheFrameAndGoneWithIt) {
  Frame f;
  const Image image = paint(f, 300, 60);
  // The frame spans x 8..108; the caption starts 4 px into its client area. A 16 px high font
  // reaches well below the label's first rows and stays above y 33.
  EXPECT_GT(greenPixels(image, 9, 9, 107, 32), 100);
  EXPECT_GT(greenPixels(image, 9, 20, 107, 26), 10);
  EXPECT_EQ(greenPixels(image, 108, 0, 300, 60), 0) << "nothing beyond the frame";
  EXPECT_EQ(greenPixels(image, 0, 34, 300, 60), 0);

  f.frame.Width = 5775;
  f.progress.Visible = true;
  f.progress.Width = 5745;
  f.progress.Height = 345;
  EXPECT_GT(greenPixels(paint(f, 400, 60), 9, 9, 250, 32), 100) << "the text lies over the fill";
  f.status.Visible = false;
  EXPECT_EQ(greenPixels(paint(f, 400, 60), 0, 0, 400, 60), 0);
  // A fill far longer than the frame, or of no finite length, is cut off by it like any other.
  const Image full = paint(f, 400, 60);
  for (const float width : {3.4e38f, 1e12f, -3.4e38f, INFINITY, NAN}) {
    f.progress.Width = width;
    const Image huge = paint(f, 400, 60);
    EXPECT_EQ(huge.rgba == full.rgba, width > 0) << width;
  }
  f.progress.Width = 5745;
  f.status.Visible = true;
  f.frame.Visible = false;
  EXPECT_EQ(paint(f, 400, 60).rgba, blackWindow(400, 60).rgba) << "hiding the frame hides all";

  // Odd text and tiny windows are safe.
  f.frame.Visible = true;
  f.status.Caption = std::string("\xff\xfe broken \xe2\x82 utf-8 \xf0\x9f\x98\x80", 24);
  paint(f, 50, 10);  // the frame runs off the window's edge
  paint(f, 0, 0);
  f.status.FontSize = 400;  // taller than the frame
  EXPECT_EQ(greenPixels(paint(f, 300, 60), 0, 34, 300, 60), 0);
}

}  // namespace
