// ostrel-render with a PDN game, run as a program: films read back through FFmpeg's libraries,
// a picture per ply, and every kind of bad input.

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "RenderProgram.h"
#include "VideoReadback.h"

namespace {

namespace fs = std::filesystem;
using render::testing::meanDifference;
using render::testing::readPng;
using render::testing::readVideo;

// The first game has four plies with two captures, the second five; the third stops at a move that
// leaves a capture untaken, the fourth at a move that fits two captures.
constexpr const char* kGames = R"([Event "Short"]
[GameType "20"]
1. 32-28 19-23 2. 28x19 14x23 *

[Event "Second"]
1. 31-26 19-23 2. 26-21 16x27 3. 32x21 *

[Event "Stops"]
1. 32-28 19-23
2. 33-29 23x34 *

[FEN "W:WK14:B7,17,21,23,33"]
1. 14x2 *
)";

// Frames at 25 fps with a pause of 0.2 s (5 frames): the start, two plain moves of one square
// (4 frames of travel and the landing, then the pause) and two captures over two squares (7
// and the landing, then the pause).
constexpr int kShortGameFrames = 5 + 2 * (4 + 1 + 5) + 2 * (7 + 1 + 5);
constexpr const char* kFilmOptions = "--size 96 --aa 0 --fps 25 --pause 0.2";

class GameProgram : public RenderProgram {
 protected:
  void SetUp() override {
    RenderProgram::SetUp();
    std::ofstream(dir_ / "games.pdn") << kGames;
    std::ofstream(dir_ / "checkers.pdn") << "[GameType \"21\"]\n1. 22-18 *\n";
    std::ofstream(dir_ / "empty.pdn") << "";
  }
  std::string games() const { return path("games.pdn"); }
};

TEST_F(GameProgram, FilmsReadBackWithTheirSizeLengthAndLastPicture) {
  ASSERT_EQ(run("--pdn " + games() + " --size 96 --aa 0 --out " + path("final.png")), 0)
      << read("err.txt");
  const ostrel::Image final = readPng(path("final.png"));
  ASSERT_EQ(final.width, 96);
  struct Case {
    const char* file;
    const char* codec;
    double tolerance;  // mean difference per channel from the last ply's picture
  } const cases[] = {{"film.mp4", "h264", 6}, {"film.webm", "vp9", 6}, {"film.gif", "gif", 3}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.file);
    ASSERT_EQ(run("--pdn " + games() + " " + kFilmOptions + " --video " + path(c.file)), 0)
        << read("err.txt");
    EXPECT_EQ(read("err.txt"), "") << "no progress line without a terminal";
    EXPECT_NE(read("out.txt").find(std::to_string(kShortGameFrames) + " frames"), std::string::npos)
        << read("out.txt");
    const auto film = readVideo(path(c.file));
    ASSERT_TRUE(film.ok);
    EXPECT_EQ(film.codec, c.codec);
    EXPECT_EQ(film.frames, kShortGameFrames);
    const double difference = meanDifference(film.last, final);
    EXPECT_GE(difference, 0) << "a picture of the size asked for";
    EXPECT_LT(difference, c.tolerance);
  }
  EXPECT_EQ(names(), (std::vector<std::string>{"checkers.pdn", "empty.pdn", "err.txt", "film.gif",
                                               "film.mp4", "film.webm", "final.png", "games.pdn",
                                               "out.txt"}))
      << "no temporary file left";
}

TEST_F(GameProgram, APicturePerPlyAndOnePly) {
  ASSERT_EQ(run("--pdn " + games() + " --game 2 --size 64 --aa 0 --all-plies " + path("plies")), 0)
      << read("err.txt");
  EXPECT_EQ(names("plies"),
            (std::vector<std::string>{"ply-000.png", "ply-001.png", "ply-002.png", "ply-003.png",
                                      "ply-004.png", "ply-005.png"}));
  ASSERT_EQ(
      run("--pdn " + games() + " --game 2 --ply 3 --size 64 --aa 0 --out " + path("three.png")), 0)
      << read("err.txt");
  EXPECT_NE(read("out.txt").find("after ply 3"), std::string::npos) << read("out.txt");
  const ostrel::Image three = readPng(path("three.png"));
  ASSERT_EQ(three.width, 64);
  EXPECT_EQ(readPng(path("plies/ply-003.png")).rgba, three.rgba);
  EXPECT_NE(readPng(path("plies/ply-002.png")).rgba, three.rgba);
}

TEST_F(GameProgram, AFaultyMoveEndsTheGameThereAndSaysWhere) {
  // Game 3 holds two good plies; its third leaves a capture untaken.
  EXPECT_EQ(run("--pdn " + games() + " --game 3 " + kFilmOptions + " --video " + path("stops.gif")),
            1);
  const std::string err = read("err.txt");
  EXPECT_NE(err.find("game 3 stops after ply 2: line 10, column 4"), std::string::npos) << err;
  const auto film = readVideo(path("stops.gif"));
  EXPECT_EQ(film.frames, 5 + 2 * (4 + 1 + 5));

  EXPECT_EQ(run("--pdn " + games() + " --game 3 --size 48 --aa 0 --all-plies " + path("p")), 1);
  EXPECT_EQ(names("p"), (std::vector<std::string>{"ply-000.png", "ply-001.png", "ply-002.png"}));
  // Asking for no more than the good plies is no fault.
  EXPECT_EQ(run("--pdn " + games() + " --game 3 --ply 2 --size 48 --aa 0 --out " + path("2.png")),
            0)
      << read("err.txt");

  // Game 4: "14x2" fits two captures with different pieces taken.
  EXPECT_EQ(run("--pdn " + games() + " --game 4 --size 48 --aa 0 --out " + path("amb.png")), 1);
  EXPECT_NE(read("err.txt").find("game 4 stops after ply 0: line 13"), std::string::npos)
      << read("err.txt");
  EXPECT_TRUE(fs::exists(path("amb.png")));
}

TEST_F(GameProgram, BadInputIsNamedAndLeavesNoFile) {
  std::ofstream(dir_ / "a-file") << "x";
  struct Case {
    std::string args;
    int status;
    const char* says;
    std::string absent;
  } const cases[] = {
      {"--pdn " + games() + " --video " + path("film.avi"), 2, ".mp4, .webm or .gif",
       path("film.avi")},
      {"--pdn " + games() + " --size 48 --video " + path("no/film.mp4"), 1, "cannot write",
       path("no")},
      {"--pdn " + games() + " --width 47 --height 48 --video " + path("odd.mp4"), 1, "even width",
       path("odd.mp4")},
      {"--pdn " + games() + " --game 5 --out " + path("x.png"), 1,
       "holds 4 games: there is no game 5", path("x.png")},
      {"--pdn " + games() + " --ply 5 --out " + path("x.png"), 1, "has 4 plies: there is no ply 5",
       path("x.png")},
      {"--pdn " + path("checkers.pdn") + " --video " + path("c.gif"), 1,
       "not international draughts", path("c.gif")},
      {"--pdn " + path("missing.pdn") + " --out " + path("x.png"), 1, "cannot read", path("x.png")},
      {"--pdn " + path("empty.pdn") + " --out " + path("x.png"), 1, "holds no game", path("x.png")},
      {"--pdn " + games() + " --size 48 --all-plies " + path("a-file"), 1, "cannot write", ""},
      {"--pdn " + games() + " W:W31:B1 --out " + path("x.png"), 2, "no FEN position",
       path("x.png")},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.args);
    EXPECT_EQ(run(c.args), c.status);
    EXPECT_NE(read("err.txt").find(c.says), std::string::npos) << read("err.txt");
    if (!c.absent.empty()) {
      EXPECT_FALSE(fs::exists(c.absent));
    }
  }
  EXPECT_EQ(names(), (std::vector<std::string>{"a-file", "checkers.pdn", "empty.pdn", "err.txt",
                                               "games.pdn", "out.txt"}))
      << "no temporary file left";
}

}  // namespace
