// The demo host on the real offscreen control: the headless game's pictures and the control's
// fields after every ply, the user's drag through the control's own gestures and the reply, and
// the command line.

#include <gtest/gtest.h>
#include <stb_image.h>

#include <sstream>

#include "DemoGame.h"
#include "HeadlessGame.h"
#include "Options.h"
#include "ostrel/notation.h"
#include "support/LiveBoard.h"
#include "support/TempFolder.h"

namespace {

using demo::DemoGame;
using namespace ostrel::draughts;

// The control shows the game's position: every field's code, and a disc at rest on each piece.
void expectBoardShowsGame(const ostrel::ctlBoard& board, const demo::Game& game) {
  for (int16_t slot = 0; slot < 50; ++slot) {
    const int16_t code = game.position().squares[static_cast<size_t>(slot)];
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
        expectBoardShowsGame(board, game.game());
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

  std::vector<std::vector<unsigned char>> pictures;
  for (int ply = 0; ply <= 4; ++ply) {
    int w = 0, h = 0, n = 0;
    unsigned char* pixels = stbi_load(demo::plyFile(run.out, ply).c_str(), &w, &h, &n, 4);
    if (ply == 4) {
      EXPECT_EQ(pixels, nullptr) << "no picture beyond the plies asked for";
      break;
    }
    ASSERT_NE(pixels, nullptr) << "ply " << ply;
    EXPECT_EQ(w, 96);
    EXPECT_EQ(h, 96);
    pictures.emplace_back(pixels, pixels + static_cast<size_t>(w) * h * 4);
    stbi_image_free(pixels);
  }
  for (size_t i = 1; i < pictures.size(); ++i) {
    EXPECT_NE(pictures[i], pictures[i - 1]) << "ply " << i << " shows a move";
  }
}

TEST(DemoHost, TheUsersDragIsPlayedAndAnsweredAndTheNextMovesOffered) {
  ostrel::testing::LiveBoard live;
  ASSERT_TRUE(live.started);
  DemoGame game(live.board, 3, true);
  live.board.setEventSink(&game);
  game.startAtRest();
  ASSERT_EQ(game.phase(), DemoGame::Phase::UserToMove);
  ASSERT_EQ(live.board.moves().moveCount, static_cast<int16_t>(game.game().moves().size()));
  for (size_t i = 0; i < game.game().moves().size(); ++i) {
    EXPECT_EQ(live.board.moves().moveList[i], controlText(game.game().moves()[i]));
  }

  const ostrel::testing::Blob from = live.pieceBlob(32), to = live.fieldBlob(28);
  ASSERT_GT(from.count, 0);
  ASSERT_GT(to.count, 0);
  live.down(1, from);
  live.move(1, to);
  live.up(1, to);
  EXPECT_EQ(shortText(game.lastMove()), "32-28");
  EXPECT_EQ(game.phase(), DemoGame::Phase::OpponentToMove);
  EXPECT_EQ(live.board.moves().moveCount, 0) << "no drag while the opponent thinks";
  EXPECT_EQ(game.game().position().toMove, demo::Side::Black);
  expectBoardShowsGame(live.board, game.game());

  game.playOpponent();
  // A reply that offers a capture may leave the user one move only; the host plays that itself.
  EXPECT_TRUE(game.phase() == DemoGame::Phase::UserToMove ||
              game.phase() == DemoGame::Phase::UserOnlyMove);
  EXPECT_EQ(game.game().position().toMove, demo::Side::White);
  expectBoardShowsGame(live.board, game.game());
  EXPECT_EQ(live.board.moves().moveCount, static_cast<int16_t>(game.game().moves().size()));
}

TEST(DemoHost, CommandLine) {
  std::string error;
  auto options = demo::parseOptions(
      {"--headless", "--plies", "7", "--out", "d", "--seed", "4294967295"}, error);
  ASSERT_TRUE(options) << error;
  EXPECT_TRUE(options->headless);
  EXPECT_EQ(options->plies, 7);
  EXPECT_EQ(options->out, "d");
  EXPECT_EQ(options->seed, 4294967295u);
  EXPECT_EQ(demo::parseOptions({}, error)->plies, 40);

  const std::vector<std::vector<std::string>> wrong = {
      {"--plies"},       {"--plies", "x"},         {"--plies", "5x"},
      {"--plies", "-1"}, {"--seed", "4294967296"}, {"--out", ""},
      {"--window"}};
  for (const auto& arguments : wrong) {
    error.clear();
    EXPECT_FALSE(demo::parseOptions(arguments, error)) << arguments.front();
    EXPECT_FALSE(error.empty()) << arguments.front();
  }
}

}  // namespace
