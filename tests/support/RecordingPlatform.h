#pragma once
// A headless platform that records, once `board` is set, what the status frame looked like at each
// paint of its fill, with the window as it showed then.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ostrel/ostrel.h"

namespace ostrel::testing {

struct FrameSeen {
  float fillWidth = 0, fillHeight = 0;
  bool fillVisible = false, statusVisible = false, frameVisible = false;
  std::string caption;
  Image window;
};

class RecordingPlatform : public HeadlessPlatform {
 public:
  using HeadlessPlatform::HeadlessPlatform;
  const ctlBoard* board = nullptr;
  std::vector<FrameSeen> paints;
  void Refresh(const Label& label) override {
    HeadlessPlatform::Refresh(label);
    if (board == nullptr) return;
    EXPECT_EQ(&label, &board->lblProgress());
    paints.push_back({label.Width, label.Height, label.Visible, board->lblStatus().Visible,
                      board->label1().Visible, board->lblStatus().Caption, windowImage()});
  }
};

}  // namespace ostrel::testing
