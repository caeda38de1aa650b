// The parts of ostrel-render's game output that stand alone: the PNG writer, the GIF palette,
// the progress line, the game options and the choice of a film's format.

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>

#include "GameOptions.h"
#include "GifPalette.h"
#include "PngWriter.h"
#include "Progress.h"
#include "RenderProgram.h"
#include "VideoReadback.h"
#include "VideoWriter.h"

namespace {

namespace fs = std::filesystem;
using render::testing::meanDifference;
using render::testing::readPng;

ostrel::Image picture(int width, int height, const std::function<uint32_t(int x, int y)>& colour) {
  ostrel::Image image;
  image.width = width;
  image.height = height;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const uint32_t c = colour(x, y);
      image.rgba.insert(image.rgba.end(), {uint8_t(c >> 16), uint8_t(c >> 8), uint8_t(c), 255});
    }
  }
  return image;
}

// Smooth in every channel: far more colours than a GIF holds.
uint32_t gradient(int x, int y) {
  return uint32_t(x * 2) << 16 | uint32_t(y * 2) << 8 | uint32_t((x + y) & 0xFF);
}

using PngWriter = RenderProgram;

TEST_F(PngWriter, WritesRgbThatReadsBackAsGiven) {
  const ostrel::Image image = picture(61, 17, gradient);
  const std::string path = (dir_ / "a.png").string();
  std::string error;
  ASSERT_TRUE(render::writePng(path, image, error)) << error;
  int channels = 0;
  EXPECT_EQ(readPng(path, &channels).rgba, image.rgba);
  EXPECT_EQ(channels, 3) << "no alpha channel";
  EXPECT_EQ(names(), std::vector<std::string>{"a.png"}) << "nothing else left behind";
}

TEST_F(PngWriter, FailuresSayWhyAndLeaveNoFile) {
  std::string error;
  EXPECT_FALSE(render::writePng((dir_ / "no" / "a.png").string(), picture(4, 4, gradient), error));
  EXPECT_NE(error.find("cannot write"), std::string::npos) << error;
  EXPECT_FALSE(render::writePng((dir_ / "b.png").string(), ostrel::Image{}, error));
  if (::geteuid() != 0) {  // root writes anywhere
    fs::create_directories(dir_ / "locked");
    ::chmod((dir_ / "locked").c_str(), 0500);
    EXPECT_FALSE(
        render::writePng((dir_ / "locked" / "c.png").string(), picture(4, 4, gradient), error));
  }
  EXPECT_FALSE(fs::exists(dir_ / "b.png"));
  EXPECT_TRUE(!fs::exists(dir_ / "locked") || fs::is_empty(dir_ / "locked"));
}

// The picture in the colours of its own palette, and how many entries that palette has.
ostrel::Image throughPalette(const ostrel::Image& image, int& colours) {
  render::GifPalette palette(std::span(&image, 1));
  colours = palette.colourCount();
  std::vector<uint8_t> indices(image.rgba.size() / 4);
  palette.map(image, indices.data(), image.width);
  ostrel::Image mapped = image;
  for (size_t i = 0; i < indices.size(); ++i) {
    const uint32_t entry = palette.argb()[indices[i]];
    for (int c = 0; c < 4; ++c)
      mapped.rgba[i * 4 + c] = uint8_t(entry >> (c < 3 ? 16 - 8 * c : 24));
  }
  return mapped;
}

TEST(GifPalette, FewColoursAreKeptExactlyAndManyAreNear) {
  int colours = 0;
  const ostrel::Image few =
      picture(40, 40, [](int x, int y) { return 0x102030u * uint32_t((x / 5 + y / 5) % 8); });
  EXPECT_EQ(throughPalette(few, colours).rgba, few.rgba);
  EXPECT_EQ(colours, 8);
  // Colours apart in one channel only: each channel counts in the search for the nearest.
  for (const uint32_t step : {0x200000u, 0x002000u, 0x000020u}) {
    const ostrel::Image apart = picture(
        40, 40, [step](int x, int y) { return 0x101010u + step * uint32_t((x / 5 + y / 5) % 8); });
    EXPECT_EQ(throughPalette(apart, colours).rgba, apart.rgba) << std::hex << step;
  }
  const ostrel::Image many = picture(128, 128, gradient);
  const double error = meanDifference(throughPalette(many, colours), many);
  EXPECT_EQ(colours, 256);
  // 256 boxes over a cube of 256 levels a side: about 40 levels each way, so the mean error of
  // the nearest entry is a few levels.
  EXPECT_LT(error, 8.0);
  EXPECT_GT(error, 0.0);
}

TEST(Progress, TheLineCountsPliesAndEstimatesTheRest) {
  struct Case {
    size_t done, total;
    double seconds;
    const char* line;
  } const cases[] = {
      {0, 80, 0.0, "ply 0 of 80, 0%"},
      {20, 80, 5.0, "ply 20 of 80, 25%, about 15 s left"},
      {79, 80, 79.5, "ply 79 of 80, 98%, about 2 s left"},
      {80, 80, 99.0, "ply 80 of 80, 100%"},
      {0, 0, 0.0, "ply 0 of 0, 100%"},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(render::Progress::line(c.done, c.total, c.seconds), c.line);
  }
}

TEST(VideoFormat, ByExtensionInAnyCase) {
  EXPECT_EQ(render::videoFormatOf("a.mp4"), render::VideoFormat::Mp4);
  EXPECT_EQ(render::videoFormatOf("dir.x/A.WebM"), render::VideoFormat::WebM);
  EXPECT_EQ(render::videoFormatOf("film.GIF"), render::VideoFormat::Gif);
  for (const char* other : {"a.avi", "a.mp4.part", "mp4", "dir.mp4/film", "a.", ""}) {
    EXPECT_FALSE(render::videoFormatOf(other)) << other;
  }
}

TEST(GameArguments, TakenOutOfTheRest) {
  std::vector<std::string> args = {"--size",  "200", "--pdn",   "g.pdn",       "--game", "2",
                                   "--ply",   "7",   "--video", "f.GIF",       "--fps",  "12",
                                   "--pause", "0.5", "--intro", "--all-plies", "plies"};
  render::GameOptions game;
  std::string error;
  ASSERT_TRUE(render::takeGameArguments(args, game, error)) << error;
  // The values go where the program's runs show them (frames, plies, files); what is left here
  // is what the game does not take, and the build-up, which no run asks for.
  EXPECT_EQ(args, (std::vector<std::string>{"--size", "200"}));
  EXPECT_TRUE(game.intro);

  const std::vector<std::vector<std::string>> bad = {
      {"--pdn", ""},
      {"--pdn", "g.pdn", "--game", "0"},
      {"--pdn", "g.pdn", "--ply", "-1"},
      {"--pdn", "g.pdn", "--video", "f.gif", "--fps", "0"},
      {"--pdn", "g.pdn", "--video", "f.gif", "--fps", "500"},
      {"--pdn", "g.pdn", "--video", "f.gif", "--pause", "-1"},
      {"--pdn", "g.pdn", "--video", "f.gif", "--pause", "soon"},
      {"--pdn", "g.pdn", "--intro"},  // no film to open
      {"--video", "f.mp4"},           // no game
      {"--all-plies", "dir"},
      {"--pdn", "g.pdn", "--all-plies", ""},
  };
  for (auto b : bad) {
    const std::string shown = b.back();
    render::GameOptions g;
    EXPECT_FALSE(render::takeGameArguments(b, g, error)) << shown;
    EXPECT_FALSE(error.empty()) << shown;
  }
}

TEST(GameArguments, AGameExcludesASinglePositionsOptions) {
  render::GameOptions game;
  game.pdn = "g.pdn";
  std::string error;
  render::Options plain;
  EXPECT_TRUE(render::checkGameOptions(plain, game, error));
  render::Options fen = plain, move = plain, emf = plain;
  fen.position[0] = render::kWhiteKing;
  move.lastMove = "32-28";
  emf.emf = "x.emf";
  for (const render::Options& o : {fen, move, emf}) {
    error.clear();
    EXPECT_FALSE(render::checkGameOptions(o, game, error));
    EXPECT_FALSE(error.empty());
  }
  EXPECT_TRUE(render::checkGameOptions(move, render::GameOptions{}, error)) << "no game";
}

using VideoWriterFiles = RenderProgram;

TEST_F(VideoWriterFiles, AFrameOfAnotherSizeIsRefusedAndAFilmGivenUpLeavesNoFile) {
  std::string error;
  const ostrel::Image frame = picture(32, 32, gradient);
  auto writer = render::VideoWriter::open((dir_ / "x.gif").string(), render::VideoFormat::Gif, 32,
                                          32, 25, std::span(&frame, 1), error);
  ASSERT_TRUE(writer) << error;
  EXPECT_FALSE(writer->addFrame(picture(16, 32, gradient), 1, error));
  ASSERT_TRUE(writer->addFrame(frame, 3, error)) << error;
  EXPECT_TRUE(names().empty() || names().front().find(".part") != std::string::npos)
      << "nothing under the name before the end";
  writer.reset();  // given up: the partial file goes
  EXPECT_TRUE(names().empty());
}

}  // namespace
