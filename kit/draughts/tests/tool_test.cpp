// The commands of ostrel-draughts: what each writes and how each ends.

#include <gtest/gtest.h>

#include <sstream>

#include "Commands.h"

namespace ostrel::draughts::tool {
namespace {

struct Ran {
  int status;
  std::string out;
  std::string err;
};

Ran runTool(std::vector<std::string> arguments) {
  std::ostringstream out, err;
  const int status = run(arguments, out, err);
  return {status, out.str(), err.str()};
}

std::string pdn(const char* name) {
  return std::string(OSTREL_DRAUGHTS_PDN_DIR) + "/" + name;
}

TEST(Tool, PerftWritesOneLinePerDepthAndNothingElse) {
  Ran ran = runTool({"perft", "4"});
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.out, "1 9\n2 81\n3 658\n4 4265\n");
  EXPECT_NE(ran.err.find("depth 4"), std::string::npos);
  ran = runTool({"perft", "3", "W:W6,7,8,9,10:B41,42,43,44,45"});
  EXPECT_EQ(ran.out, "1 9\n2 81\n3 795\n");
}

TEST(Tool, CheckReplaysEveryGame) {
  const Ran ran = runTool({"check", pdn("games.pdn")});
  EXPECT_EQ(ran.status, 0) << ran.err;
  EXPECT_EQ(ran.out.substr(0, ran.out.find('\n') + 1),
            "game 1: Anna de Vries - Piet Bakker, 92 plies, 0-2\n");
  EXPECT_EQ(ran.out.substr(ran.out.rfind("game 8")),
            "game 8: Player 34 - Player 44, 12 plies, 2-0\n");
}

TEST(Tool, CheckNamesTheFirstBadMoveAndFails) {
  Ran ran = runTool({"check", pdn("bad/capture-not-taken.pdn")});
  EXPECT_EQ(ran.status, 1);
  EXPECT_EQ(ran.out, "game 1: A - B: line 4, column 40: \"10-14\" is not a legal move\n");
  ran = runTool({"check", pdn("bad/ambiguous.pdn")});
  EXPECT_EQ(ran.status, 1);
  EXPECT_NE(ran.out.find("game 1: ? - ?: line 3, column 4: \"14x2\" is ambiguous"),
            std::string::npos);
}

TEST(Tool, FenAfterAPly) {
  const Ran ran = runTool({"fen", pdn("games.pdn"), "3", "1"});
  EXPECT_EQ(ran.status, 0);
  EXPECT_EQ(ran.out, "B:WK2:B17,33\n");
  EXPECT_EQ(runTool({"fen", pdn("games.pdn"), "3", "8"}).status, 0) << "the last ply";
}

TEST(Tool, WrongInputSaysWhatAndFails) {
  struct Case {
    std::vector<std::string> arguments;
    int status;
    const char* says;
  };
  const Case cases[] = {
      {{}, 2, "usage"},
      {{"perft"}, 2, "usage"},
      {{"perft", "0"}, 2, "depth"},
      {{"perft", "2", "W:W51"}, 1, "column 4"},
      {{"check", pdn("none.pdn")}, 1, "cannot open"},
      {{"fen", pdn("games.pdn"), "9", "0"}, 1, "has 8 games"},
      {{"fen", pdn("games.pdn"), "3", "9"}, 1, "has 8 plies"},
      {{"fen", pdn("games.pdn"), "0", "0"}, 2, "GAME counts from 1"},
      {{"fly"}, 2, "usage"},
  };
  for (const Case& c : cases) {
    const Ran ran = runTool(c.arguments);
    EXPECT_EQ(ran.status, c.status) << ran.err;
    EXPECT_NE(ran.err.find(c.says), std::string::npos) << ran.err;
    EXPECT_EQ(ran.out, "");
  }
}

}  // namespace
}  // namespace ostrel::draughts::tool
