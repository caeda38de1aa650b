#include "HeadlessGame.h"

#include <cstdio>
#include <filesystem>

#include "ostrel/HeadlessPlatform.h"

namespace demo {

std::string plyFile(const std::string& folder, int ply) {
  char name[32];
  std::snprintf(name, sizeof name, "ply-%03d.png", ply);
  return (std::filesystem::path(folder) / name).string();
}

int playHeadless(const HeadlessRun& run, std::ostream& log, const AfterPly& afterPly) {
  std::error_code ec;
  std::filesystem::create_directories(run.out, ec);
  if (ec) {
    log << "cannot make the folder " << run.out << ": " << ec.message() << "\n";
    return 1;
  }

  ostrel::HeadlessOptions options;
  options.pixelWidth = options.pixelHeight = run.size;
  // The real clock, so that showMove animates as it would in a window.
  ostrel::HeadlessPlatform platform(options);
  platform.seedRandom(run.seed);
  ostrel::ctlBoard board(platform);
  DemoGame game(board, run.seed, false);
  board.setEventSink(&game);

  const auto started = board.init(false, 1, 1);
  for (const std::string& message : platform.messages()) log << message << "\n";
  if (!started || !*started) {
    log << "the graphics did not start; see " << platform.AppPath() << "/directxlog.txt\n";
    return 1;
  }

  auto write = [&](int ply) {
    const std::string file = plyFile(run.out, ply);
    if (!platform.saveWindowPng(file)) {
      log << "cannot write " << file << "\n";
      return false;
    }
    if (afterPly) afterPly(ply, board, game);
    return true;
  };

  if (run.review) {
    game.review(run.review->start, run.review->line);
    log << run.review->players << ", " << run.review->line.size() << " plies\n";
  } else {
    game.startAtRest();
  }
  if (!write(0)) return 1;
  int ply = 0;
  auto step = [&]() {
    if (run.review) return game.stepForward();
    if (game.phase() != DemoGame::Phase::OpponentToMove) return false;
    game.playOpponent();
    return true;
  };
  while (ply < run.plies) {
    const bool whiteMoved = game.game().position().toMove == Side::White;
    const std::vector<Move> legal = game.game().moves();
    if (!step()) break;
    ++ply;
    if (!write(ply)) return 1;
    log << "ply " << ply << ": " << (whiteMoved ? "white " : "black ")
        << ostrel::draughts::moveText(game.lastMove(), legal) << "\n";
  }
  std::string state = "the game goes on";
  if (game.game().outcome() != Outcome::Playing) {
    state = outcomeText(game.game().outcome());
  } else if (run.review && game.game().ply() == run.review->line.size()) {
    state = "the end of the recorded game";
  }
  log << "wrote " << ply + 1 << " pictures to " << run.out << "; " << state << "\n";
  return 0;
}

}  // namespace demo
