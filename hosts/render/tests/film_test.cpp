// Games played as films on a started control: how many frames the clock gives each move and
// pause, the position a host writes after each move, the build-up, and a sink that gives up.

#include "Film.h"

#include <gtest/gtest.h>

#include "GameRender.h"
#include "ostrel/draughts.h"

namespace {

namespace draughts = ostrel::draughts;

// A game from the position, its moves written as in a PDN file, as the program plays it.
render::GameLine lineOf(const char* fen, const std::string& moves) {
  const auto file = draughts::readPdn("[FEN \"" + std::string(fen) + "\"]\n" + moves + " *");
  EXPECT_TRUE(file.games.size() == 1 && !file.games[0].error) << fen << " " << moves;
  return file.games.empty() ? render::GameLine{} : render::lineOf(file.games[0], SIZE_MAX);
}

struct Delivery {
  ostrel::Image picture;
  int frames;
};

class Film : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    ostrel::HeadlessOptions o;
    o.pixelWidth = o.pixelHeight = 96;
    platform_ = new ostrel::HeadlessPlatform(o);
    board_ = new ostrel::ctlBoard(*platform_);
    started_ = board_->init(false, 0, 1).value_or(false) && platform_->messages().empty();
    board_->viewingDistance(render::kWholeBoardDistance);
  }
  static void TearDownTestSuite() {
    delete board_;
    delete platform_;
  }
  void SetUp() override { ASSERT_TRUE(started_); }

  std::vector<Delivery> play(const render::GameLine& line, render::FilmSettings settings) {
    std::vector<Delivery> got;
    EXPECT_TRUE(render::playFilm(*board_, *platform_, line.start, line.plies, settings,
                                 [&](const ostrel::Image& picture, int frames) {
                                   got.push_back({picture, frames});
                                   return true;
                                 }));
    return got;
  }
  static int frames(const std::vector<Delivery>& got) {
    int n = 0;
    for (const Delivery& d : got) n += d.frames;
    return n;
  }

  inline static ostrel::HeadlessPlatform* platform_ = nullptr;
  inline static ostrel::ctlBoard* board_ = nullptr;
  inline static bool started_ = false;
};

TEST_F(Film, EachMoveLastsItsOwnTimeAtTheFrameRate) {
  // At 25 fps a frame is 40 ms, and a piece covers 0.32 squares of its hop in it; the frame at
  // the end of a hop is never drawn, the landing is. Each pause shows the position after it.
  struct Case {
    const char* fen;
    const char* moves;
    int fps;
    double pause;
    int frames;
  } const cases[] = {
      {"W:W31-50:B1-20", "1. 32-28", 25, 0.2, 5 + (4 + 1) + 5},
      {"W:W31-50:B1-20", "1. 32-28", 20, 0.2, 4 + (3 + 1) + 4},    // 0.4 squares a frame
      {"W:W38:B33,23", "1. 38x18", 25, 0.2, 5 + (7 + 7 + 1) + 5},  // two hops of two squares
      {"W:WK46:B1", "1. 46-5", 25, 0.0, 1 + (29 + 1) + 1},  // nine squares; a pause of one frame
      {"W:WK46:B1", "1. 46-5", 25, 1.0, 25 + 30 + 25},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(std::string(c.fen) + " " + c.moves + " at " + std::to_string(c.fps) + " fps");
    render::FilmSettings settings;
    settings.fps = c.fps;
    settings.pauseSeconds = c.pause;
    EXPECT_EQ(frames(play(lineOf(c.fen, c.moves), settings)), c.frames);
  }
}

TEST_F(Film, TheHostsPositionFollowsEachLanding) {
  // What the film holds after a move is the position with the move made: captured pieces off,
  // a man on the far row crowned. The landing frame before it still shows the move alone.
  struct Case {
    const char* fen;
    const char* move;
    bool changesAfterLanding;
  } const cases[] = {
      {"W:W31-50:B1-20", "32-28", false},
      {"W:W38:B33,23", "38x18", true},  // two pieces taken
      {"W:W6:B45", "6-1", true},        // crowned
  };
  render::FilmSettings settings;
  settings.fps = 25;
  settings.pauseSeconds = 0.2;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.move);
    const render::GameLine line = lineOf(c.fen, std::string("1. ") + c.move);
    const auto got = play(line, settings);
    ASSERT_GE(got.size(), 4u);
    const ostrel::Image& landing = got[got.size() - 3].picture;
    const ostrel::Image& after = got[got.size() - 2].picture;
    EXPECT_EQ(got.back().frames, 4);
    EXPECT_EQ(got.back().picture.rgba, after.rgba);
    EXPECT_EQ(landing.rgba != after.rgba, c.changesAfterLanding);
    const ostrel::Image still =
        render::drawStill(*board_, *platform_, line.plies.back().after, line.lastFields.back());
    EXPECT_EQ(after.rgba, still.rgba) << "the film ends on the last ply's picture";
    // The film opens on the start position without a mark.
    EXPECT_EQ(got.front().picture.rgba, render::drawStill(*board_, *platform_, line.start, 0).rgba);
  }
}

TEST_F(Film, TheBuildUpComesFirst) {
  // One unit of the animation's time a second, from the moment the last piece sets off to the
  // moment all rest: 40 pieces take 2 + 39/80 s, a single piece 2 s, and the end frame is
  // drawn as well.
  struct Case {
    const char* fen;
    int introFrames;
  } const cases[] = {{"W:W31-50:B1-20", 63 + 1}, {"W:W50:B", 50 + 1}};
  render::FilmSettings settings;
  settings.fps = 25;
  settings.pauseSeconds = 0.2;
  settings.intro = true;
  for (const Case& c : cases) {
    SCOPED_TRACE(c.fen);
    const render::GameLine line = lineOf(c.fen, "");
    const auto got = play(line, settings);
    EXPECT_EQ(frames(got), c.introFrames + 5);
    const ostrel::Image still = render::drawStill(*board_, *platform_, line.start, 0);
    // At first every piece is up in the column, not on its field.
    EXPECT_NE(got.front().picture.rgba, still.rgba);
    EXPECT_EQ(got.back().picture.rgba, still.rgba);
  }
}

TEST_F(Film, ASinkThatFailsStopsTheFilm) {
  int calls = 0;
  const render::GameLine line = lineOf("W:W31-50:B1-20", "1. 32-28 19-23 2. 28x19");
  render::FilmSettings settings;
  settings.fps = 25;
  const bool finished = render::playFilm(*board_, *platform_, line.start, line.plies, settings,
                                         [&](const ostrel::Image&, int) { return ++calls < 3; });
  EXPECT_FALSE(finished);
  EXPECT_EQ(calls, 3);
}

}  // namespace
