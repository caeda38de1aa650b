// ostrel-render: its reading of positions, moves and options, and the program run end to end.

#include <gtest/gtest.h>
#include <stb_image.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "Position.h"
#include "support/XFileSamples.h"
#include "tests/RenderProgram.h"

namespace {

using render::kBlackKing;
using render::kBlackMan;
using render::kWhiteKing;
using render::kWhiteMan;

// A position with the given ranges of fields holding a code, every other field empty.
render::Position with(std::initializer_list<std::tuple<int, int, int16_t>> ranges) {
  render::Position p{};
  for (const auto& [from, to, code] : ranges)
    for (int f = from; f <= to; ++f) p[static_cast<size_t>(f - 1)] = code;
  return p;
}

TEST(RenderPosition, ReadsKingsListsRangesWrappersAndBlanks) {
  const render::Position start = with({{1, 20, kBlackMan}, {31, 50, kWhiteMan}});
  EXPECT_EQ(render::startingPosition(), start);
  const std::pair<const char*, render::Position> cases[] = {
      {"B:WK46,31-35:B1-5,K12,K 13",
       with({{46, 46, kWhiteKing}, {31, 35, kWhiteMan}, {1, 5, kBlackMan}, {12, 13, kBlackKing}})},
      {" [FEN \"W:W31-50:B1-20.\"] ", start},
      {"W:W:B", {}},
  };
  for (const auto& [fen, expected] : cases) {
    std::string error;
    const auto p = render::parseFen(fen, error);
    ASSERT_TRUE(p) << fen << ": " << error;
    EXPECT_EQ(*p, expected) << fen;
  }
}

// Positions that no game reaches or that the board cannot show, each with the reason given.
TEST(RenderPosition, ImpossiblePositionsAreRefusedWithTheirReason) {
  struct Case {
    const char* fen;
    const char* reason;  // a part of the message; empty: accepted
  };
  const Case cases[] = {
      {"", "empty"},
      {" [FEN \"\"] ", "empty"},
      {"W:W1-21:B50", "white has 21 pieces"},
      {"W:W50:B1-20,K21", "black has 21 pieces"},
      {"W:W1-20:B31-50", ""},
      {"W:WK1-12:B50", ""},
      {"W:WK1-12,13:B50", "white needs 25 discs (a king takes two)"},
      {"W:W50:BK1-5,6-19", ""},
      {"W:W50:BK1-5,K6-15", "black needs 30 discs"},
  };
  for (const Case& c : cases) {
    std::string error;
    const auto position = render::parseFen(c.fen, error);
    if (*c.reason == 0) {
      EXPECT_TRUE(position) << c.fen << ": " << error;
      continue;
    }
    EXPECT_FALSE(position) << c.fen;
    EXPECT_NE(error.find(c.reason), std::string::npos) << c.fen << ": " << error;
  }
}

TEST(RenderPosition, LastFieldOfAMoveAndFieldLists) {
  EXPECT_EQ(render::lastField("32-28"), 28);
  EXPECT_EQ(render::lastField("26x37x48"), 48);
  EXPECT_EQ(render::lastField(" 1-50 "), 50);
  for (const char* bad : {"32-", "32", "32-51", "e2-e4", ""}) EXPECT_FALSE(render::lastField(bad));
  EXPECT_TRUE(render::validFieldList("7|12"));
  EXPECT_TRUE(render::validFieldList("50"));
  for (const char* bad : {"7||12", "7|x", ""}) EXPECT_FALSE(render::validFieldList(bad));
}

TEST(RenderArguments, DefaultsAndEveryOption) {
  std::string error;
  auto d = render::parseArguments({}, error);
  ASSERT_TRUE(d) << error;
  EXPECT_EQ(d->position, render::startingPosition());
  EXPECT_FALSE(d->elevation) << "the control's own view";
  EXPECT_TRUE(d->shadows);

  auto o = render::parseArguments({"--size", "300", "--elevation", "0.9", "--azimuth", "-2.5",
                                   "--distance", "20", "--last-move", "32-28", "--mark", "7|12",
                                   "--aa", "0", "--no-shadows", "--out", "x.png", "W:WK46:B1"},
                                  error);
  ASSERT_TRUE(o) << error;
  EXPECT_FLOAT_EQ(*o->elevation, 0.9f);
  EXPECT_FLOAT_EQ(*o->azimuth, -2.5f);
  EXPECT_FLOAT_EQ(o->distance, 20.0f);
  EXPECT_EQ(o->lastMove, "32-28");
  EXPECT_EQ(o->marks, "7|12");
  EXPECT_EQ(o->antiAliasing, 0);
  EXPECT_FALSE(o->shadows);
  EXPECT_EQ(o->position[46 - 1], kWhiteKing);
}

TEST(RenderArguments, BadArgumentsAreNamed) {
  const std::vector<std::vector<std::string>> bad = {
      {"--size"},          {"--size", "0"},        {"--size", "big"},     {"--width", "99999"},
      {"--aa", "3"},       {"--elevation", "up"},  {"--last-move", "32"}, {"--mark", "7|"},
      {"--frobnicate"},    {"W:W1", "B:B2"},       {"--out", ""},         {"--fen", "W:W60"},
      {"--distance", "0"}, {"--anisotropy", "17"}, {"--emf", ""}};
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
  EXPECT_NE(read("err.txt").find("field 77 is not 1 to 50"), std::string::npos) << read("err.txt");
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
}

// A model folder of the user's: its models load; a broken marker model, loaded by fifteen marker
// meshes, gives its message and its cause once.
TEST_F(RenderProgram, AModelFolderAndTheCauseOfARefusal) {
  const std::filesystem::path models = dir_ / "models";
  std::filesystem::copy(OSTREL_SHIPPED_MODELS, models);
  const std::string args =
      "--size 48 --aa 0 --models " + dir_.string() + " --out " + (dir_ / "x.png").string();
  EXPECT_EQ(run(args), 0) << read("err.txt");
  std::string broken = ostrel::testing::squareModel(ostrel::testing::XForm::Text, "hl2.png");
  broken.replace(broken.find("4;0,1,2,3;"), 10, "4;0,1,2,7;");
  std::ofstream(models / "hl2.x", std::ios::binary) << broken;
  EXPECT_NE(run(args), 0);
  const std::string err = read("err.txt");
  const std::string message = "Model load failed: " + dir_.string() + "/models/hl2.x\n";
  ASSERT_NE(err.find(message), std::string::npos) << err;
  EXPECT_EQ(err.find(message, err.find(message) + 1), std::string::npos) << err;
  const std::string cause = "because line 9: face 0 names vertex 7 of a mesh with 4 vertices\n";
  ASSERT_NE(err.find(cause), std::string::npos) << err;
  EXPECT_EQ(err.find(cause, err.find(cause) + 1), std::string::npos) << err;
}

}  // namespace
