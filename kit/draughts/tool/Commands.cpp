#include "Commands.h"

#include <charconv>
#include <chrono>
#include <fstream>
#include <iomanip>
#include <optional>
#include <sstream>

#include "ostrel/draughts.h"

namespace ostrel::draughts::tool {

namespace {

std::optional<long> wholeNumber(const std::string& text, long low, long high) {
  long value = 0;
  const char* end = text.data() + text.size();
  auto [stop, ec] = std::from_chars(text.data(), end, value);
  if (text.empty() || ec != std::errc() || stop != end || value < low || value > high) {
    return std::nullopt;
  }
  return value;
}

std::optional<std::string> readFile(const std::string& path, std::ostream& err) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    err << "cannot open " << path << "\n";
    return std::nullopt;
  }
  std::ostringstream bytes;
  bytes << in.rdbuf();
  return bytes.str();
}

int perftCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() < 2 || args.size() > 3) return 2;
  const std::optional<long> depth = wholeNumber(args[1], 1, 20);
  if (!depth) {
    err << "perft: the depth must be a whole number from 1 to 20, not \"" << args[1] << "\"\n";
    return 2;
  }
  Position position = Position::start();
  if (args.size() == 3) {
    TextError error;
    if (!readFen(args[2], position, error)) {
      err << "perft: the FEN: " << error.describe() << "\n";
      return 1;
    }
  }
  for (int d = 1; d <= *depth; ++d) {
    const auto begun = std::chrono::steady_clock::now();
    const uint64_t count = perft(position, d);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - begun;
    out << d << ' ' << count << '\n' << std::flush;
    err << "depth " << d << ": " << std::fixed << std::setprecision(3) << took.count() << " s\n";
  }
  return 0;
}

std::string players(const PdnGame& game) {
  auto name = [&](const char* tag) {
    const std::string value = game.tag(tag);
    return value.empty() ? std::string("?") : value;
  };
  return name("White") + " - " + name("Black");
}

int checkCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 2) return 2;
  const std::optional<std::string> bytes = readFile(args[1], err);
  if (!bytes) return 1;
  const PdnFile file = readPdn(*bytes);
  if (file.games.empty()) {
    err << args[1] << ": no game in the file\n";
    return 1;
  }
  bool failed = false;
  for (const PdnGame& game : file.games) {
    out << "game " << game.number << ": " << players(game);
    if (game.error) {
      failed = true;
      out << ": " << game.error->describe() << "\n";
    } else {
      out << ", " << game.moves.size() << " plies, "
          << (game.result.empty() ? std::string("no result") : game.result) << "\n";
    }
  }
  return failed ? 1 : 0;
}

int fenCommand(const std::vector<std::string>& args, std::ostream& out, std::ostream& err) {
  if (args.size() != 4) return 2;
  const std::optional<long> number = wholeNumber(args[2], 1, 1000000000);
  const std::optional<long> ply = wholeNumber(args[3], 0, 1000000000);
  if (!number || !ply) {
    err << "fen: GAME counts from 1 and PLY from 0\n";
    return 2;
  }
  const std::optional<std::string> bytes = readFile(args[1], err);
  if (!bytes) return 1;
  const PdnFile file = readPdn(*bytes);
  if (static_cast<size_t>(*number) > file.games.size()) {
    err << args[1] << " has " << file.games.size() << " games, not " << *number << "\n";
    return 1;
  }
  const PdnGame& game = file.games[static_cast<size_t>(*number - 1)];
  if (static_cast<size_t>(*ply) > game.moves.size()) {
    err << "game " << *number << " has " << game.moves.size() << " plies"
        << (game.error ? " that can be played (" + game.error->describe() + ")" : std::string())
        << ", not " << *ply << "\n";
    return 1;
  }
  out << toFen(game.positionAfter(static_cast<size_t>(*ply))) << "\n";
  return 0;
}

}  // namespace

std::string usage() {
  return "usage: ostrel-draughts perft DEPTH [FEN]\n"
         "       ostrel-draughts check FILE.pdn\n"
         "       ostrel-draughts fen FILE.pdn GAME PLY\n"
         "\n"
         "perft  the number of move sequences of each length 1 to DEPTH from the start, or from\n"
         "       the FEN: one line \"DEPTH COUNT\" each; timings go to standard error\n"
         "check  replays every game of the file: one line per game, with its plies and result or\n"
         "       the first move that is not legal or not understood; fails if any game does\n"
         "fen    the FEN after PLY moves (0: the start) of game GAME (counted from 1)\n";
}

int run(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& err) {
  int status = 2;
  const std::string command = arguments.empty() ? "" : arguments[0];
  if (command == "perft") status = perftCommand(arguments, out, err);
  if (command == "check") status = checkCommand(arguments, out, err);
  if (command == "fen") status = fenCommand(arguments, out, err);
  if (command == "--help" || command == "-h") {
    out << usage();
    return 0;
  }
  if (status == 2) err << usage();
  return status;
}

}  // namespace ostrel::draughts::tool
