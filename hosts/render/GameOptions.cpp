#include "GameOptions.h"

#include <cmath>
#include <cstdlib>

#include "Position.h"
#include "VideoWriter.h"

namespace render {

namespace {

constexpr int kMaxFps = 120;
constexpr double kMaxPauseSeconds = 60;

}  // namespace

bool takeGameArguments(std::vector<std::string>& args, GameOptions& game, std::string& error) {
  std::vector<std::string> rest;
  bool needsPdn = false;
  std::string firstGameOption;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string& a = args[i];
    auto value = [&](std::string& out) { return optionValue(args, i, out, error); };
    auto number = [&](long long low, long long high, long long& out) {
      std::string v;
      if (!value(v)) return false;
      auto n = wholeNumber(v);
      if (!n || *n < low || *n > high) {
        error = a + " takes a whole number from " + std::to_string(low) + " to " +
                std::to_string(high) + ", not \"" + v + "\"";
        return false;
      }
      out = *n;
      return true;
    };
    long long n = 0;
    std::string v;
    if (a == "--pdn") {
      if (!value(game.pdn)) return false;
      if (game.pdn.empty()) {
        error = "--pdn needs a file name";
        return false;
      }
      continue;
    }
    if (a == "--game") {
      if (!number(1, 1 << 30, n)) return false;
      game.game = static_cast<int>(n);
    } else if (a == "--ply") {
      if (!number(0, 1 << 30, n)) return false;
      game.ply = static_cast<size_t>(n);
    } else if (a == "--all-plies") {
      if (!value(game.allPlies)) return false;
      if (game.allPlies.empty()) {
        error = "--all-plies needs a folder";
        return false;
      }
    } else if (a == "--video") {
      if (!value(game.video)) return false;
      if (!videoFormatOf(game.video)) {
        error = "--video writes .mp4, .webm or .gif files, not \"" + game.video + "\"";
        return false;
      }
    } else if (a == "--fps") {
      if (!number(1, kMaxFps, n)) return false;
      game.fps = static_cast<int>(n);
    } else if (a == "--pause") {
      if (!value(v)) return false;
      char* end = nullptr;
      const double seconds = std::strtod(v.c_str(), &end);
      if (v.empty() || end != v.c_str() + v.size() || !std::isfinite(seconds) || seconds < 0 ||
          seconds > kMaxPauseSeconds) {
        error = "--pause takes seconds from 0 to 60, not \"" + v + "\"";
        return false;
      }
      game.pauseSeconds = seconds;
    } else if (a == "--intro") {
      game.intro = true;
    } else {
      rest.push_back(a);
      continue;
    }
    if (!needsPdn) firstGameOption = a;
    needsPdn = true;
  }
  if (needsPdn && game.pdn.empty()) {
    error = firstGameOption + " needs a game: --pdn FILE";
    return false;
  }
  const bool film = !game.video.empty();
  if (!film && (game.intro || game.fps != GameOptions{}.fps ||
                game.pauseSeconds != GameOptions{}.pauseSeconds)) {
    error = "--fps, --pause and --intro shape a film: they need --video";
    return false;
  }
  args = std::move(rest);
  return true;
}

bool checkGameOptions(const Options& options, const GameOptions& game, std::string& error) {
  if (game.pdn.empty()) return true;
  if (options.position != startingPosition()) {
    error = "--pdn takes its positions from the game: no FEN position with it";
  } else if (!options.lastMove.empty()) {
    error = "--pdn marks each ply's last move itself: no --last-move with it";
  } else if (!options.emf.empty()) {
    error = "--emf saves a single position: not with --pdn";
  }
  return error.empty();
}

std::string gameUsage(std::string_view program) {
  std::string p(program);
  return "\n"
         "A game from a PDN file:\n"
         "  " +
         p +
         " --pdn FILE [--game N] [--ply K] [--all-plies DIR] [--video OUT]\n"
         "  --pdn FILE          reads the game from FILE (international draughts); with no\n"
         "                      --all-plies or --video it draws the position after the last\n"
         "                      ply, the last move marked, into --out\n"
         "  --game N            the Nth game of the file (default 1)\n"
         "  --ply K             the game up to ply K (0: the start; default the whole game)\n"
         "  --all-plies DIR     one picture per ply into DIR: ply-000.png (the start), ...\n"
         "  --video OUT         the game as a film, each move animated: OUT.mp4 (H.264),\n"
         "                      OUT.webm (VP9) or OUT.gif\n"
         "  --fps N             frames per second of the film (default 30)\n"
         "  --pause S           seconds each position stays after its move (default 1)\n"
         "  --intro             the film opens with the pieces falling into place\n"
         "A move that is not legal or not clear ends the game there: what comes before it is\n"
         "drawn, and the program says where it stopped and exits with 1.\n";
}

}  // namespace render
