// The demo's review of a PDN game on the real offscreen control: stepping with the arrow keys,
// playing on from a ply, choosing between captures that end alike, and the headless replay.

#include <gtest/gtest.h>

#include <sstream>

#include "DemoGame.h"
#include "HeadlessGame.h"
#include "Options.h"
#include "Review.h"
#include "ostrel/notation.h"
#include "support/LiveBoard.h"
#include "support/TempFolder.h"

namespace {

using demo::DemoGame;
using namespace ostrel::draughts;

const std::string kGames = std::string(OSTREL_DRAUGHTS_PDN_DIR) + "/games.pdn";

void expectFields(const ostrel::ctlBoard& board, const Position& position) {
  for (int16_t slot = 0; slot < kFields; ++slot) {
    EXPECT_EQ(board.field(slot), position.squares[static_cast<size_t>(slot)])
        << "field " << slot + 1;
  }
}

demo::Review study() {
  std::string error, warning;
  const std::optional<demo::Review> review = demo::loadReview(kGames, 3, error, warning);
  EXPECT_TRUE(review.has_value()) << error;
  EXPECT_TRUE(warning.empty()) << warning;
  return review.value_or(demo::Review());
}

void key(ostrel::testing::LiveBoard& live, int16_t code) {
  live.board.pic_KeyDown(code, 0);
}

TEST(DemoReview, LoadsAGameOfAFileOrSaysWhyNot) {
  const demo::Review review = study();
  EXPECT_EQ(review.players, "Study - Solver");
  EXPECT_EQ(toFen(review.start), "W:WK14:B7,17,21,23,33");
  EXPECT_EQ(review.line.size(), 8u);

  std::string error, warning;
  EXPECT_FALSE(demo::loadReview(kGames, 9, error, warning));
  EXPECT_NE(error.find("has 8 games, not 9"), std::string::npos) << error;
  EXPECT_FALSE(demo::loadReview(kGames + ".none", 1, error, warning));
  EXPECT_NE(error.find("cannot open"), std::string::npos) << error;
  const std::string bad = std::string(OSTREL_DRAUGHTS_PDN_DIR) + "/bad/capture-not-taken.pdn";
  const std::optional<demo::Review> partial = demo::loadReview(bad, 1, error, warning);
  ASSERT_TRUE(partial);
  EXPECT_EQ(partial->line.size(), 5u);
  EXPECT_NE(warning.find("line 4, column 40"), std::string::npos) << warning;
}

TEST(DemoReview, ArrowsStepThroughTheGameAndADragPlaysOn) {
  ostrel::testing::LiveBoard live;
  ASSERT_TRUE(live.started);
  DemoGame game(live.board, 5, true);
  live.board.setEventSink(&game);
  const demo::Review review = study();
  game.review(review.start, review.line);
  EXPECT_EQ(game.phase(), DemoGame::Phase::Reviewing);
  expectFields(live.board, review.start);
  // The side to move's moves are offered at every ply.
  EXPECT_EQ(live.board.moves().moveCount, 2);

  Position expected = review.start;
  for (size_t ply = 0; ply < 3; ++ply) {
    key(live, demo::kKeyRight);
    expected = play(expected, review.line[ply]);
    ASSERT_EQ(game.game().ply(), ply + 1);
    expectFields(live.board, expected);
  }
  key(live, demo::kKeyLeft);
  EXPECT_EQ(game.game().ply(), 2u);
  expectFields(live.board, game.game().position());
  EXPECT_EQ(game.line().size(), 8u) << "the moves ahead stay to step forward again";
  key(live, demo::kKeyLeft);
  key(live, demo::kKeyLeft);
  key(live, demo::kKeyLeft);  // nothing before the start
  EXPECT_EQ(game.game().ply(), 0u);
  expectFields(live.board, review.start);
  EXPECT_EQ(game.phase(), DemoGame::Phase::Reviewing);

  // Play on from ply 2 (white to move) with a move the game did not play: the user is white now
  // and the opponent answers.
  key(live, demo::kKeyRight);
  key(live, demo::kKeyRight);
  ASSERT_EQ(game.game().position().toMove, Side::White);
  const std::vector<Move>& moves = game.game().moves();
  const auto other = std::find_if(moves.begin(), moves.end(), [&](const Move& m) {
    return !m.sameMove(review.line[2]) && !m.isCapture();
  });
  ASSERT_NE(other, moves.end());
  const Move chosen = *other;
  const ostrel::testing::Blob from = live.fieldBlob(chosen.from()),
                              to = live.fieldBlob(chosen.to());
  live.down(1, from);
  live.move(1, to);
  live.up(1, to);
  ASSERT_EQ(game.game().ply(), 3u);
  EXPECT_TRUE(game.lastMove().sameMove(chosen));
  EXPECT_EQ(game.line().size(), 3u) << "the rest of the recorded game is dropped";
  EXPECT_EQ(game.phase(), DemoGame::Phase::OpponentToMove);
  game.playOpponent();
  EXPECT_EQ(game.game().ply(), 4u);
  EXPECT_EQ(game.game().position().toMove, Side::White);
  expectFields(live.board, game.game().position());
}

TEST(DemoReview, ADropThatFitsTwoCapturesIsChosenByAClickOrGivenUp) {
  ostrel::testing::LiveBoard live;
  ASSERT_TRUE(live.started);
  DemoGame game(live.board, 5, true);
  live.board.setEventSink(&game);
  const Position start = *parseFen("W:WK14:B7,17,21,23,33");
  game.review(start, {});
  const ostrel::testing::Blob from = live.fieldBlob(14), to = live.fieldBlob(2),
                              via21 = live.fieldBlob(21);

  auto drop = [&]() {
    live.down(1, from);
    live.move(1, to);
    live.up(1, to);
    ASSERT_EQ(game.phase(), DemoGame::Phase::Choosing);
    ASSERT_EQ(game.choices().size(), 2u);
    // The king stands where it was dropped, nothing is taken yet, and only 17 and 21 are marked.
    EXPECT_EQ(live.board.field(13), 0);
    EXPECT_EQ(live.board.field(1), WhiteKing);
    EXPECT_EQ(live.board.field(16), BlackMan);
    EXPECT_EQ(live.board.field(20), BlackMan);
    EXPECT_EQ(live.board.moves().moveCount, 0) << "nothing to drag while choosing";
    const auto& markers = live.board.models().markerMesh;
    std::vector<int16_t> marked;
    for (int i = 1; i <= 15; ++i) {
      if (!markers[static_cast<size_t>(i)].visible) continue;
      int16_t field = 0;
      ostrel::boardToField(markers[static_cast<size_t>(i)].posX() - 0.08f,
                           markers[static_cast<size_t>(i)].posZ(), field);
      marked.push_back(field);
    }
    EXPECT_EQ(marked, (std::vector<int16_t>{17, 21}));
  };

  drop();
  // Escape: the king goes back and the moves are offered again.
  key(live, demo::kKeyEscape);
  EXPECT_NE(game.phase(), DemoGame::Phase::Choosing);
  expectFields(live.board, start);
  EXPECT_EQ(live.board.moves().moveCount, 2);
  EXPECT_FALSE(live.board.models().markerMesh[1].visible);

  drop();
  // A click on a field that is not marked chooses nothing; one on 21 takes the route over 21.
  live.down(1, to);
  live.up(1, to);
  EXPECT_EQ(game.phase(), DemoGame::Phase::Choosing);
  live.down(1, via21);
  live.up(1, via21);
  ASSERT_EQ(game.game().ply(), 1u);
  EXPECT_EQ(pathText(game.lastMove()), "14x32x16x2");
  expectFields(live.board, game.game().position());
  EXPECT_EQ(live.board.field(20), 0);
  EXPECT_EQ(live.board.field(16), BlackMan);
  EXPECT_FALSE(live.board.models().markerMesh[1].visible);
  EXPECT_EQ(game.phase(), DemoGame::Phase::OpponentToMove);
}

TEST(DemoReview, HeadlessStepsThroughTheGame) {
  ostrel::testing::TempFolder folder;
  const demo::Review review = study();
  demo::HeadlessRun run;
  run.plies = 20;
  run.out = folder / "pictures";
  run.size = 96;
  run.review = &review;
  std::ostringstream log;
  std::vector<std::string> fens;
  const int result =
      demo::playHeadless(run, log, [&](int, const ostrel::ctlBoard& board, const DemoGame& game) {
        expectFields(board, game.game().position());
        fens.push_back(toFen(game.game().position()));
      });
  ASSERT_EQ(result, 0) << log.str();
  ASSERT_EQ(fens.size(), 9u) << log.str();
  for (size_t ply = 0; ply < fens.size(); ++ply) {
    Position expected = review.start;
    for (size_t i = 0; i < ply; ++i) expected = play(expected, review.line[i]);
    EXPECT_EQ(fens[ply], toFen(expected)) << "ply " << ply;
  }
  EXPECT_NE(log.str().find("Study - Solver, 8 plies"), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("ply 1: white 14x32x16x2"), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("9 pictures"), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("the end of the recorded game"), std::string::npos) << log.str();
}

TEST(DemoReview, CommandLine) {
  std::string error;
  auto options = demo::parseOptions({"--pdn", "games.pdn", "--game", "3"}, error);
  ASSERT_TRUE(options) << error;
  EXPECT_EQ(options->pdn, "games.pdn");
  EXPECT_EQ(options->game, 3);
  EXPECT_EQ(demo::parseOptions({}, error)->game, 1);
  for (const std::vector<std::string>& wrong :
       {std::vector<std::string>{"--pdn"}, {"--pdn", ""}, {"--game", "0"}, {"--game", "x"}}) {
    error.clear();
    EXPECT_FALSE(demo::parseOptions(wrong, error)) << wrong.back();
    EXPECT_FALSE(error.empty());
  }
}

}  // namespace
