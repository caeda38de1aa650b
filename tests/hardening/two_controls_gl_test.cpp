// Two controls on one thread, each with its own platform: no order of ending controls and platforms
// leaves a dangling platform behind for a later message box.

#include <gtest/gtest.h>

#include <memory>

#include "ostrel/ostrel.h"
#include "support/Sized.h"

namespace ostrel::testing {
namespace {

struct Host {
  std::unique_ptr<HeadlessPlatform> platform;
  std::unique_ptr<ctlBoard> board;

  Host() : platform(std::make_unique<HeadlessPlatform>(sized(96, 72))), board(make()) {}
  std::unique_ptr<ctlBoard> make() {
    auto b = std::make_unique<ctlBoard>(*platform);
    platform->useManualClock(1000, 100);
    return b;
  }
  bool start() { return board->init(false, 0, 0).value_or(false); }
  size_t boxes() const { return platform->messages().size(); }
  void end() {
    board.reset();
    platform.reset();
  }
};

// A failed load reports on the platform of the control that loaded, even once the other control
// (with the shared device) has ended and every reload fails. A mesh that a host makes itself has no
// control: its box goes to the platform of the last init whose control still lives, and nowhere
// once none does.
TEST(TwoControls, FailedLoadsReportOnTheRightPlatform) {
  struct Case {
    const char* name;
    int endFirst, endSecond;  // 0 keep, 1 end the control, 2 end control and platform
    const char* image;        // what the first control loads; none: a host-made mesh fails
    const char* box;          // in the box that shows
    int expectOn;             // 0 nowhere, 1 first, 2 second
  };
  const Case cases[] = {
      {"the earlier control reloads", 0, 0, "missing-image.png", "missing-image.png", 1},
      {"second control ended", 0, 1, "piecewhite.png", "Model load failed: ", 1},
      {"second platform gone", 0, 2, "piecewhite.png", "Model load failed: ", 1},
      {"host mesh, both live: the last init", 0, 0, nullptr, "", 2},
      {"host mesh, last init's control ended", 0, 1, nullptr, "", 0},
      {"host mesh, last init's control and platform ended", 0, 2, nullptr, "", 0},
      {"host mesh, earlier control ended", 1, 0, nullptr, "", 2},
      {"host mesh, both ended, platforms kept", 1, 1, nullptr, "", 0},
      {"host mesh, everything ended", 2, 2, nullptr, "", 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Host hosts[2];
    ASSERT_TRUE(hosts[0].start());
    ASSERT_TRUE(hosts[1].start());
    const int ends[2] = {c.endFirst, c.endSecond};
    const size_t before[2] = {hosts[0].boxes(), hosts[1].boxes()};
    for (int i = 0; i < 2; ++i) {
      if (ends[i] >= 1) hosts[i].board.reset();
      if (ends[i] == 2) hosts[i].platform.reset();
    }
    if (c.image) {
      hosts[0].board->alternativeBoard(c.image);  // the board reloads, the image may fail
    } else {
      clsMesh mesh;
      mesh.init("models/no-such-model.x", "");
      EXPECT_FALSE(mesh.visible);
    }
    for (int i = 0; i < 2; ++i) {
      if (!hosts[i].platform) continue;
      const bool here = c.expectOn == i + 1;
      ASSERT_EQ(hosts[i].boxes(), before[i] + here) << "host " << i + 1;
      if (here) {
        EXPECT_NE(hosts[i].platform->messages().back().find(c.box), std::string::npos);
      }
    }
  }
}

}  // namespace
}  // namespace ostrel::testing
