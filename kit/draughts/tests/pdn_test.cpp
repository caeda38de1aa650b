// PDN reading: the files that exercise every form, and the faults a reader must report.

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

#include "ostrel/draughts.h"

namespace ostrel::draughts {
namespace {

std::string fileText(const std::string& name) {
  std::ifstream in(std::string(OSTREL_DRAUGHTS_PDN_DIR) + "/" + name, std::ios::binary);
  EXPECT_TRUE(in.good()) << name;
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

TEST(Pdn, GamesOfEveryForm) {
  const PdnFile file = readPdn(fileText("games.pdn"));
  ASSERT_EQ(file.games.size(), 8u);
  const size_t plies[] = {92, 75, 8, 6, 12, 12, 12, 12};
  const char* results[] = {"0-2", "2-0", "*", "1-1", "1/2-1/2", "1-0", "0-1", "2-0"};
  for (size_t i = 0; i < file.games.size(); ++i) {
    const PdnGame& game = file.games[i];
    EXPECT_FALSE(game.error.has_value()) << "game " << i + 1 << ": " << game.error->describe();
    EXPECT_EQ(game.number, static_cast<int>(i) + 1);
    ASSERT_EQ(game.moves.size(), plies[i]) << "game " << i + 1;
    EXPECT_EQ(game.result, results[i]) << "game " << i + 1;
  }
  const PdnGame& first = file.games[0];
  EXPECT_EQ(first.tag("White"), "Anna de Vries");
  EXPECT_EQ(first.tag("Nothing"), "");
  EXPECT_EQ(first.comment, "An opening comment before the first move.");
  EXPECT_EQ(first.moves[0].comment, "A usual start.");
  EXPECT_EQ(first.moves[8].marks, "?!");
  EXPECT_EQ(first.moves[20].marks, "$2");
  ASSERT_EQ(first.moves[5].variations.size(), 1u);
  EXPECT_EQ(first.moves[5].variations[0], "3... 17-21 4. 32-28 {an alternative, never played}");
  // A variation inside a variation stays in its text.
  ASSERT_EQ(first.moves[30].variations.size(), 1u);
  EXPECT_EQ(first.moves[30].variations[0], "16. 33-29 (16. 34-30) 16... 19-23");
  EXPECT_EQ(first.moves[5].written, "22x31");
  EXPECT_EQ(first.moves[5].line, 11);
  // The game ends with white out of pieces, as its result says.
  const Position end = first.positionAfter(first.moves.size());
  EXPECT_TRUE(legalMoves(end).empty());
  EXPECT_EQ(end.toMove, Side::White);

  // Captures written as full paths; the ":" and "X" separators.
  EXPECT_EQ(file.games[1].moves[6].written, "27x18x29");
  EXPECT_EQ(file.games[1].moves[6].text, "27x29");
  EXPECT_EQ(file.games[5].moves[0].written, "31:27");
  EXPECT_EQ(file.games[6].moves[3].written, "16X27");
  // A set position; its first move only the whole path names.
  const PdnGame& study = file.games[2];
  EXPECT_EQ(toFen(study.start), "W:WK14:B7,17,21,23,33");
  EXPECT_EQ(study.moves[0].text, "14x32x16x2");
  EXPECT_EQ(toFen(study.positionAfter(1)), "B:WK2:B17,33");
  EXPECT_EQ(study.positionAfter(99), study.positionAfter(study.moves.size()));
  // Black to move first, numbered "30...".
  EXPECT_EQ(file.games[3].moves[0].written, "24x35");
  EXPECT_EQ(file.games[3].moves[0].move.takenCount, 14);
}

TEST(Pdn, ColumnAlignedLatin1WithCrlf) {
  const PdnFile file = readPdn(fileText("aligned-latin1-crlf.pdn"));
  ASSERT_EQ(file.games.size(), 1u);
  const PdnGame& game = file.games[0];
  ASSERT_FALSE(game.error.has_value()) << game.error->describe();
  EXPECT_EQ(game.tag("White"), "Jos\xc3\xa9 M\xc3\xbcller");
  EXPECT_EQ(game.tag("Event"), "Championnat r\xc3\xa9gional");
  EXPECT_EQ(game.moves.size(), 85u);
  EXPECT_EQ(game.result, "2-0");
  const PdnMove& padded = game.moves[21];
  EXPECT_EQ(padded.written, "4- 9");
  EXPECT_EQ(padded.text, "4-9");
  EXPECT_EQ(padded.line, 16);
  EXPECT_EQ(padded.column, 14);
}

TEST(Pdn, Utf8WithByteOrderMarkAndEscapeLine) {
  const PdnFile file = readPdn(fileText("utf8-bom.pdn"));
  ASSERT_EQ(file.games.size(), 1u);
  const PdnGame& game = file.games[0];
  ASSERT_FALSE(game.error.has_value()) << game.error->describe();
  EXPECT_EQ(game.tag("Black"), "J\xc3\xbcrgen Ko\xc5\x82odziej");
  EXPECT_EQ(game.moves.size(), 12u);
  EXPECT_EQ(game.moves.back().comment, "agreed: \xc2\xbd each");
  EXPECT_EQ(game.result, "1-1");
}

TEST(Pdn, ErrorsNameTheFirstFaultWithItsPlace) {
  const struct {
    const char* text;
    size_t game;  // counted from 0
    int line;
    int column;
    const char* message;
    size_t plies;  // read before the fault
  } cases[] = {
      {"1. 32-28 19-23 2. 32-27 *", 0, 1, 19, "not a legal move", 2},
      {"[FEN \"W:WK14:B7,17,21,23,33\"]\n1. 14x2 *", 0, 2, 4, "ambiguous", 0},
      {"[GameType \"21\"]\n1. 32-28 *", 0, 1, 12, "not international draughts", 0},
      {"[FEN \"W:W31-50:B1-20x\"]\n1. 32-28 *", 0, 1, 21, "the FEN tag", 0},
      {"1. 32-28 hello 19-23 *", 0, 1, 10, "\"hello\" is not understood", 1},
      {"1. 32-x *", 0, 1, 4, "a field number must follow", 0},
      {"1. 32-28 {never closed\n19-23\n", 0, 1, 10, "no closing \"}\"", 1},
      {"1. 32-28 (1... 19-23\n\n[White \"B\"]\n1. 33-28 *", 0, 1, 10, "no closing \")\"", 1},
      {"[White Anna]\n1. 32-28 *", 0, 1, 1, "[Name \"value\"]", 0},
      {"[FEN \"W:W46:B41,37\"]\n1. 46-41 *", 0, 2, 4, "has no move", 0},
      {"1. 32-28 2-0\n\n1. 32-28 19-23 2. 28x19 13-18 *", 1, 3, 25, "not a legal move", 3},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.text);
    const PdnFile file = readPdn(c.text);
    ASSERT_GT(file.games.size(), c.game);
    const PdnGame& game = file.games[c.game];
    ASSERT_TRUE(game.error.has_value());
    EXPECT_EQ(game.error->line, c.line) << game.error->describe();
    EXPECT_EQ(game.error->column, c.column) << game.error->describe();
    EXPECT_NE(game.error->message.find(c.message), std::string::npos) << game.error->message;
    EXPECT_EQ(game.moves.size(), c.plies);
  }
}

// A game ends where tags follow moves, and a faulty one leaves the next one whole.
TEST(Pdn, GamesEndAtTheNextTagsAndAFaultStaysInItsGame) {
  PdnFile file =
      readPdn("[Result \"1-1\"]\n1. 32-28 19-23\n[White \"B\"]\n1. 33-28 ; no result token\n");
  ASSERT_EQ(file.games.size(), 2u);
  EXPECT_EQ(file.games[0].moves.size(), 2u);
  EXPECT_EQ(file.games[0].result, "1-1");  // from the tag
  ASSERT_EQ(file.games[1].moves.size(), 1u);
  EXPECT_EQ(file.games[1].moves[0].comment, "no result token");
  EXPECT_EQ(file.games[1].result, "");

  file = readPdn(
      "[White \"A\"]\n1. 32-28 {open\n19-23\n\n[White \"B\"]\n1. 33-28 18-23 *\n{a note}\n");
  ASSERT_EQ(file.games.size(), 2u);
  EXPECT_TRUE(file.games[0].error.has_value());
  EXPECT_FALSE(file.games[1].error.has_value());
  EXPECT_EQ(file.games[1].tag("White"), "B");
  EXPECT_EQ(file.games[1].moves.size(), 2u);

  EXPECT_TRUE(readPdn("").games.empty());
  EXPECT_TRUE(readPdn("  \r\n{just a note}\n; and another\n").games.empty());
}

}  // namespace
}  // namespace ostrel::draughts
