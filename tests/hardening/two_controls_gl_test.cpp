// Two controls on one thread, each with its own platform: a failed load reports on the platform of
// the control that loaded, and no order of ending controls and platforms leaves a dangling
// platform behind for a later message box.

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

// Once the other control has ended, the shared device is gone and every reload fails; the box
// must come up on the platform of the control whose image changed.
TEST(TwoControls, FailedReloadReportsOnItsOwnPlatform) {
  struct Case {
    const char* name;
    bool endSecondPlatform;
  };
  for (const Case& c : {Case{"second platform kept", false}, Case{"second platform gone", true}}) {
    SCOPED_TRACE(c.name);
    Host first, second;
    ASSERT_TRUE(first.start());
    ASSERT_TRUE(second.start());
    const size_t firstBefore = first.boxes();
    const size_t secondBefore = second.boxes();

    second.board.reset();
    if (c.endSecondPlatform) second.platform.reset();
    first.board->alternativeBoard("piecewhite.png");  // a good image: the reload fails anyway

    ASSERT_EQ(first.boxes(), firstBefore + 1);
    EXPECT_EQ(first.platform->messages().back().rfind("Model load failed: ", 0), 0u)
        << first.platform->messages().back();
    if (second.platform) {
      EXPECT_EQ(second.boxes(), secondBefore);
    }
  }
}

// The same with the first control the one that ran init last: the other control's reload still
// reports at home.
TEST(TwoControls, ReloadOfTheEarlierControlReportsAtHome) {
  Host first, second;
  ASSERT_TRUE(first.start());
  ASSERT_TRUE(second.start());
  const size_t secondBefore = second.boxes();
  first.board->alternativePieceBlack("missing-image.png");
  // The pieces reload on the second control's device; only the texture fails.
  ASSERT_FALSE(first.platform->messages().empty());
  EXPECT_NE(first.platform->messages().back().find("missing-image.png"), std::string::npos);
  EXPECT_EQ(second.boxes(), secondBefore);
}

// A mesh that a host makes itself has no control: its box goes to the platform of the last init
// whose control still lives, and nowhere once none does.
TEST(TwoControls, HostMadeMeshAfterItsControlEnded) {
  struct Case {
    const char* name;
    int endFirst, endSecond;  // 0 keep, 1 end the control, 2 end control and platform
    int expectOn;             // 0 nowhere, 1 first, 2 second
  };
  const Case cases[] = {
      {"both live: the last init", 0, 0, 2},
      {"last init's control ended", 0, 1, 0},
      {"last init's control and platform ended", 0, 2, 0},
      {"earlier control ended", 1, 0, 2},
      {"both ended, platforms kept", 1, 1, 0},
      {"everything ended", 2, 2, 0},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Host first, second;
    ASSERT_TRUE(first.start());
    ASSERT_TRUE(second.start());
    Host* hosts[2] = {&first, &second};
    const int ends[2] = {c.endFirst, c.endSecond};
    size_t before[2] = {first.boxes(), second.boxes()};
    for (int i = 0; i < 2; ++i) {
      if (ends[i] >= 1) hosts[i]->board.reset();
      if (ends[i] == 2) hosts[i]->platform.reset();
    }

    clsMesh mesh;
    mesh.init("models/no-such-model.x", "");
    EXPECT_FALSE(mesh.visible);
    for (int i = 0; i < 2; ++i) {
      if (!hosts[i]->platform) continue;
      EXPECT_EQ(hosts[i]->boxes(), before[i] + (c.expectOn == i + 1 ? 1 : 0)) << "host " << i + 1;
    }
  }
}

}  // namespace
}  // namespace ostrel::testing
