// ostrel-render: its reading of positions, moves and options, and the program run end to end.

#include <gtest/gtest.h>
#include <stb_image.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Position.h"
#include "tests/RenderProgram.h"

namespace {

using render::kBlackKing;
using render::kBlackMan;
using render::kEmpty;
using render::kWhiteKing;
using render::kWhiteMan;

int16_t at(const render::Position& p, int field) {
  return p[static_cast<size_t>(field - 1)];
}

TEST(RenderPosition, StartingPositionInFen) {
  std::string error;
  auto p = render::parseFen("W:W31-50:B1-20", error);
  ASSERT_TRUE(p) << error;
  EXPECT_EQ(*p, render::startingPosition());
  EXPECT_EQ(at(*p, 1), kBlackMan);
  EXPECT_EQ(at(*p, 20), kBlackMan);
  EXPECT_EQ(at(*p, 21), kEmpty);
  EXPECT_EQ(at(*p, 30), kEmpty);
  EXPECT_EQ(at(*p, 31), kWhiteMan);
}

TEST(RenderPosition, KingsListsAndRangesInEitherOrder) {
  std::string error;
  auto p = render::parseFen("B:WK46,35-31:B1-5,K12,k 13", error);
  ASSERT_TRUE(p) << error;
  EXPECT_EQ(at(*p, 46), kWhiteKing);
  for (int f = 31; f <= 35; ++f) EXPECT_EQ(at(*p, f), kWhiteMan) << f;
  for (int f = 1; f <= 5; ++f) EXPECT_EQ(at(*p, f), kBlackMan) << f;
  EXPECT_EQ(at(*p, 12), kBlackKing);
  EXPECT_EQ(at(*p, 13), kBlackKing);
  EXPECT_EQ(at(*p, 6), kEmpty);
  EXPECT_EQ(at(*p, 50), kEmpty);
}

TEST(RenderPosition, WrappersBlanksAndAMissingSideAreTolerated) {
  std::string error;
  auto wrapped = render::parseFen(" [FEN \"W:W31-50:B1-20.\"] ", error);
  ASSERT_TRUE(wrapped) << error;
  EXPECT_EQ(*wrapped, render::startingPosition());
  auto bare = render::parseFen("W 31 - 33 , 40:B 1", error);
  ASSERT_TRUE(bare) << error;
  EXPECT_EQ(at(*bare, 32), kWhiteMan);
  EXPECT_EQ(at(*bare, 40), kWhiteMan);
  EXPECT_EQ(at(*bare, 1), kBlackMan);
  auto emptyBlack = render::parseFen("W:W:B", error);
  ASSERT_TRUE(emptyBlack) << error;
  EXPECT_EQ(*emptyBlack, render::Position{});
}

TEST(RenderPosition, BadPositionsAreRefusedWithAReason) {
  for (const char* bad :
       {"", "W", "W:W51", "W:W0", "X:W1", "W:Wabc", "W:W1-", "W:WK", "W:W1;2", "W:W-5"}) {
    std::string error;
    EXPECT_FALSE(render::parseFen(bad, error)) << bad;
    EXPECT_FALSE(error.empty()) << bad;
  }
}

TEST(RenderPosition, LastFieldOfAMove) {
  EXPECT_EQ(render::lastField("32-28"), 28);
  EXPECT_EQ(render::lastField("26x37x48"), 48);
  EXPECT_EQ(render::lastField(" 1-50 "), 50);
  EXPECT_FALSE(render::lastField("32-"));
  EXPECT_FALSE(render::lastField("32"));
  EXPECT_FALSE(render::lastField("32-51"));
  EXPECT_FALSE(render::lastField("e2-e4"));
  EXPECT_FALSE(render::lastField(""));
  EXPECT_TRUE(render::validFieldList("7|12"));
  EXPECT_TRUE(render::validFieldList("50"));
  EXPECT_FALSE(render::validFieldList("7||12"));
  EXPECT_FALSE(render::validFieldList("7|x"));
  EXPECT_FALSE(render::validFieldList(""));
}

TEST(RenderArguments, DefaultsAndEveryOption) {
  std::string error;
  auto d = render::parseArguments({}, error);
  ASSERT_TRUE(d) << error;
  EXPECT_EQ(d->width, d->height) << "square by default";
  EXPECT_EQ(d->position, render::startingPosition());
  EXPECT_FALSE(d->elevation);
  EXPECT_TRUE(d->shadows);

  auto o = render::parseArguments({"--size", "300", "--elevation", "0.9", "--azimuth", "-2.5",
                                   "--distance", "20", "--last-move", "32-28", "--mark", "7|12",
                                   "--aa", "0", "--no-shadows", "--out", "x.png", "W:WK46:B1"},
                                  error);
  ASSERT_TRUE(o) << error;
  EXPECT_EQ(o->width, 300);
  EXPECT_EQ(o->height, 300);
  EXPECT_FLOAT_EQ(*o->elevation, 0.9f);
  EXPECT_FLOAT_EQ(*o->azimuth, -2.5f);
  EXPECT_FLOAT_EQ(o->distance, 20.0f);
  EXPECT_EQ(o->lastMove, "32-28");
  EXPECT_EQ(o->marks, "7|12");
  EXPECT_EQ(o->antiAliasing, 0);
  EXPECT_FALSE(o->shadows);
  EXPECT_EQ(o->out, "x.png");
  EXPECT_EQ(at(o->position, 46), kWhiteKing);

  auto wide = render::parseArguments({"--width", "400", "--height", "200"}, error);
  ASSERT_TRUE(wide) << error;
  EXPECT_EQ(wide->width, 400);
  EXPECT_EQ(wide->height, 200);
}

TEST(RenderArguments, BadArgumentsAreNamed) {
  const std::vector<std::vector<std::string>> bad = {
      {"--size"},          {"--size", "0"},       {"--size", "big"},     {"--width", "99999"},
      {"--aa", "3"},       {"--elevation", "up"}, {"--last-move", "32"}, {"--mark", "7|"},
      {"--frobnicate"},    {"W:W1", "B:B2"},      {"--out", ""},         {"--fen", "W:W60"},
      {"--distance", "0"}, {"--anisotropy", "17"}};
  for (const auto& args : bad) {
    std::string error;
    EXPECT_FALSE(render::parseArguments(args, error)) << args[0];
    EXPECT_FALSE(error.empty()) << args[0];
  }
}

TEST_F(RenderProgram, BadArgumentsPrintTheUsageAndFail) {
  EXPECT_NE(run("--size nine"), 0);
  EXPECT_NE(read("err.txt").find("usage:"), std::string::npos);
  EXPECT_NE(run("W:W77"), 0);
  EXPECT_NE(read("err.txt").find("\"77\""), std::string::npos) << read("err.txt");
  EXPECT_EQ(run("--help"), 0);
  EXPECT_NE(read("out.txt").find("--last-move"), std::string::npos);
}

TEST_F(RenderProgram, WritesAPictureOfTheAskedSize) {
  const std::string out = (dir_ / "wide.png").string();
  ASSERT_EQ(run("--width 240 --height 160 --aa 0 --last-move 32-28 --mark '7|12' --out " + out), 0)
      << read("err.txt");
  int w = 0, h = 0, n = 0;
  stbi_uc* pixels = stbi_load(out.c_str(), &w, &h, &n, 4);
  ASSERT_NE(pixels, nullptr);
  EXPECT_EQ(w, 240);
  EXPECT_EQ(h, 160);
  // A board was drawn: the picture is not one flat colour.
  int differing = 0;
  for (int i = 1; i < w * h; ++i) differing += pixels[i * 4] != pixels[0];
  stbi_image_free(pixels);
  EXPECT_GT(differing, w * h / 4);
  EXPECT_NE(read("out.txt").find("wide.png"), std::string::npos);
}

TEST_F(RenderProgram, AModelFolderWithoutModelsFailsWithItsLog) {
  EXPECT_NE(run("--models " + dir_.string() + " --out " + (dir_ / "x.png").string()), 0);
  EXPECT_NE(read("err.txt").find("Model load failed"), std::string::npos) << read("err.txt");
}

TEST_F(RenderProgram, AlsoWritesTheMetafileUnderTheNameAsGiven) {
  const std::string emf = (dir_ / "dump").string();
  ASSERT_EQ(run("--size 64 --aa 0 --out " + (dir_ / "x.png").string() + " --emf " + emf), 0)
      << read("err.txt");
  // A header, two stretch modes, one copy of 64 rows of 64 24-bit pixels, the end record.
  EXPECT_EQ(std::filesystem::file_size(emf), 108u + 12 + 140 + 64 * 64 * 3 + 12 + 20);
  char head[44] = {};
  std::ifstream(emf, std::ios::binary).read(head, sizeof head);
  EXPECT_EQ(std::string(head + 40, 4), " EMF");
  EXPECT_NE(run("--size 32 --aa 0 --out " + (dir_ / "y.png").string() + " --emf " +
                (dir_ / "no" / "x.emf").string()),
            0);
  EXPECT_NE(read("err.txt").find("x.emf"), std::string::npos);
  std::string error;
  EXPECT_FALSE(render::parseArguments({"--emf", ""}, error));
}

}  // namespace
