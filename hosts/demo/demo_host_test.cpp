// The demo host on the real offscreen control: the headless game's pictures and the control's
// fields after every ply, the review of a PDN game (arrow keys, playing on with a drag through the
// control's own gestures and the reply, choosing between captures that end alike, the headless
// replay) and the command line.

#include <gtest/gtest.h>
#include <stb_image.h>

#include <filesystem>
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

// The control shows the position: every field's code, and a disc at rest on each piece.
void expectBoardShows(const ostrel::ctlBoard& board, const Position& position) {
  for (int16_t slot = 0; slot < kFields; ++slot) {
    const int16_t code = position.squares[static_cast<size_t>(slot)];
    EXPECT_EQ(board.field(slot), code) << "field " << slot + 1;
    const int16_t piece = board.scene().fieldPiece[static_cast<size_t>(slot)];
    EXPECT_EQ(piece >= 0, code != 0) << "field " << slot + 1;
    if (piece < 0) continue;
    float x = 0, y = 0;
    ostrel::fieldToBoard(static_cast<int16_t>(slot + 1), x, y);
    const ostrel::cls3DobjectInfo& disc = board.scene().pieceObject[static_cast<size_t>(piece)];
    EXPECT_NEAR(disc.posX(), x, 1e-4) << "field " << slot + 1;
    EXPECT_NEAR(disc.posZ(), y, 1e-4) << "field " << slot + 1;
  }
}

// The control offers the game's legal moves to drag, in the control's own notation.
void expectOffered(const ostrel::ctlBoard& board, const DemoGame& game) {
  ASSERT_EQ(board.moves().moveCount, static_cast<int16_t>(game.game().moves().size()));
  for (size_t i = 0; i < game.game().moves().size(); ++i) {
    EXPECT_EQ(board.moves().moveList[i], controlText(game.game().moves()[i]));
  }
}

// The third game of the kit's file: a study from a set position, eight plies.
demo::Review study() {
  std::string error, warning;
  const std::optional<demo::Review> review = demo::loadReview(kGames, 3, error, warning);
  EXPECT_TRUE(review.has_value()) << error;
  EXPECT_TRUE(warning.empty()) << warning;
  return review.value_or(demo::Review());
}

// The demo's game on a started control that sends it its events.
class DemoOnBoard : public ::testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(live.started);
    live.board.setEventSink(&game);
  }
  void drag(const ostrel::testing::Blob& from, const ostrel::testing::Blob& to) {
    live.down(1, from);
    live.move(1, to);
    live.up(1, to);
  }
  void key(int16_t code) { live.board.pic_KeyDown(code, 0); }

  ostrel::testing::LiveBoard live;
  DemoGame game{live.board, 3, true};
};

TEST(DemoHost, HeadlessGameWritesEveryPlyAndTheControlFollowsTheGame) {
  ostrel::testing::TempFolder folder;
  demo::HeadlessRun run;
  run.plies = 3;
  run.out = folder / "pictures";
  run.seed = 11;
  run.size = 96;
  std::ostringstream log;
  std::vector<int> seen;
  const int result = demo::playHeadless(
      run, log, [&](int ply, const ostrel::ctlBoard& board, const DemoGame& game) {
        seen.push_back(ply);
        expectBoardShows(board, game.game().position());
        EXPECT_EQ(game.game().position().toMove == demo::Side::White, ply % 2 == 0);
        EXPECT_EQ(board.moves().moveCount, 0) << "nothing is offered to drag";
        // The last move's field is marked; the start has none.
        const ostrel::clsMesh& marker = board.models().markerMesh[16];
        ASSERT_EQ(marker.visible, ply > 0);
        if (ply == 0) return;
        float x = 0, y = 0;
        ostrel::fieldToBoard(static_cast<int16_t>(game.lastMove().to()), x, y);
        EXPECT_NEAR(marker.posX(), x + 0.08f, 1e-4);
        EXPECT_NEAR(marker.posZ(), y, 1e-4);
      });
  ASSERT_EQ(result, 0) << log.str();
  EXPECT_EQ(seen, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_NE(log.str().find("ply 1: white "), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("ply 2: black "), std::string::npos) << log.str();

  std::vector<unsigned char> previous;
  for (int ply = 0; ply <= 3; ++ply) {
    int w = 0, h = 0, n = 0;
    unsigned char* pixels = stbi_load(demo::plyFile(run.out, ply).c_str(), &w, &h, &n, 4);
    ASSERT_NE(pixels, nullptr) << "ply " << ply;
    EXPECT_EQ(std::make_pair(w, h), std::make_pair(96, 96));
    std::vector<unsigned char> picture(pixels, pixels + static_cast<size_t>(w) * h * 4);
    stbi_image_free(pixels);
    EXPECT_NE(picture, previous) << "ply " << ply << " shows a move";
    previous = std::move(picture);
  }
  EXPECT_FALSE(std::filesystem::exists(demo::plyFile(run.out, 4))) << "none beyond the plies";
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

TEST_F(DemoOnBoard, ArrowsStepThroughTheGameAndADragPlaysOn) {
  const demo::Review review = study();
  game.review(review.start, review.line);
  EXPECT_EQ(game.phase(), DemoGame::Phase::Reviewing);
  expectBoardShows(live.board, review.start);
  // The side to move's moves are offered at every ply.
  expectOffered(live.board, game);

  Position expected = review.start;
  for (size_t ply = 0; ply < 3; ++ply) {
    key(demo::kKeyRight);
    expected = play(expected, review.line[ply]);
    ASSERT_EQ(game.game().ply(), ply + 1);
    expectBoardShows(live.board, expected);
  }
  key(demo::kKeyLeft);
  EXPECT_EQ(game.game().ply(), 2u);
  expectBoardShows(live.board, game.game().position());
  EXPECT_EQ(game.line().size(), 8u) << "the moves ahead stay to step forward again";
  key(demo::kKeyLeft);
  key(demo::kKeyLeft);
  key(demo::kKeyLeft);  // nothing before the start
  EXPECT_EQ(game.game().ply(), 0u);
  expectBoardShows(live.board, review.start);
  EXPECT_EQ(game.phase(), DemoGame::Phase::Reviewing);

  // Play on from ply 2 (white to move) with a move the game did not play: the user is white now
  // and the opponent answers.
  key(demo::kKeyRight);
  key(demo::kKeyRight);
  ASSERT_EQ(game.game().position().toMove, Side::White);
  const std::vector<Move>& moves = game.game().moves();
  const auto other = std::find_if(moves.begin(), moves.end(), [&](const Move& m) {
    return !m.sameMove(review.line[2]) && !m.isCapture();
  });
  ASSERT_NE(other, moves.end());
  const Move chosen = *other;
  drag(live.fieldBlob(chosen.from()), live.fieldBlob(chosen.to()));
  ASSERT_EQ(game.game().ply(), 3u);
  EXPECT_TRUE(game.lastMove().sameMove(chosen));
  EXPECT_EQ(game.line().size(), 3u) << "the rest of the recorded game is dropped";
  EXPECT_EQ(game.phase(), DemoGame::Phase::OpponentToMove);
  EXPECT_EQ(live.board.moves().moveCount, 0) << "no drag while the opponent thinks";
  expectBoardShows(live.board, game.game().position());
  game.playOpponent();
  EXPECT_EQ(game.game().ply(), 4u);
  // A reply that offers a capture may leave the user one move only; the host plays that itself.
  EXPECT_TRUE(game.phase() == DemoGame::Phase::UserToMove ||
              game.phase() == DemoGame::Phase::UserOnlyMove);
  EXPECT_EQ(game.game().position().toMove, Side::White);
  expectBoardShows(live.board, game.game().position());
  expectOffered(live.board, game);
}

TEST_F(DemoOnBoard, ADropThatFitsTwoCapturesIsChosenByAClickOrGivenUp) {
  const Position start = *parseFen("W:WK14:B7,17,21,23,33");
  game.review(start, {});
  const ostrel::testing::Blob from = live.fieldBlob(14), to = live.fieldBlob(2),
                              via21 = live.fieldBlob(21);

  auto drop = [&]() {
    drag(from, to);
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
  key(demo::kKeyEscape);
  EXPECT_NE(game.phase(), DemoGame::Phase::Choosing);
  expectBoardShows(live.board, start);
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
  expectBoardShows(live.board, game.game().position());
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
  Position expected = review.start;
  int plies = 0;
  const int result = demo::playHeadless(
      run, log, [&](int ply, const ostrel::ctlBoard& board, const DemoGame& game) {
        if (ply > 0) expected = play(expected, review.line[static_cast<size_t>(ply - 1)]);
        EXPECT_EQ(toFen(game.game().position()), toFen(expected)) << "ply " << ply;
        expectBoardShows(board, expected);
        plies = ply;
      });
  ASSERT_EQ(result, 0) << log.str();
  EXPECT_EQ(plies, 8) << log.str();
  EXPECT_NE(log.str().find("Study - Solver, 8 plies"), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("ply 1: white 14x32x16x2"), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("9 pictures"), std::string::npos) << log.str();
  EXPECT_NE(log.str().find("the end of the recorded game"), std::string::npos) << log.str();
}

TEST(DemoHost, CommandLine) {
  std::string error;
  auto options = demo::parseOptions({"--headless", "--plies", "7", "--out", "d", "--seed",
                                     "4294967295", "--pdn", "games.pdn", "--game", "3"},
                                    error);
  ASSERT_TRUE(options) << error;
  EXPECT_TRUE(options->headless);
  EXPECT_EQ(options->plies, 7);
  EXPECT_EQ(options->out, "d");
  EXPECT_EQ(options->seed, 4294967295u);
  EXPECT_EQ(options->pdn, "games.pdn");
  EXPECT_EQ(options->game, 3);
  EXPECT_EQ(demo::parseOptions({}, error)->game, 1);

  const std::vector<std::vector<std::string>> wrong = {{"--plies"},
                                                       {"--plies", "x"},
                                                       {"--plies", "5x"},
                                                       {"--plies", "-1"},
                                                       {"--seed", "4294967296"},
                                                       {"--out", ""},
                                                       {"--window"},
                                                       {"--pdn", ""},
                                                       {"--game", "0"}};
  for (const auto& arguments : wrong) {
    error.clear();
    EXPECT_FALSE(demo::parseOptions(arguments, error)) << arguments.back();
    EXPECT_FALSE(error.empty()) << arguments.back();
  }
}

}  // namespace
