#include "Review.h"

#include <fstream>
#include <sstream>

namespace demo {

std::optional<Review> loadReview(const std::string& path, int number, std::string& error,
                                 std::string& warning) {
  std::ifstream in(path, std::ios::binary);
  if (!in) {
    error = "cannot open " + path;
    return std::nullopt;
  }
  std::ostringstream bytes;
  bytes << in.rdbuf();
  const ostrel::draughts::PdnFile file = ostrel::draughts::readPdn(bytes.str());
  if (number < 1 || static_cast<size_t>(number) > file.games.size()) {
    error = path + " has " + std::to_string(file.games.size()) + " games, not " +
            std::to_string(number);
    return std::nullopt;
  }
  const ostrel::draughts::PdnGame& game = file.games[static_cast<size_t>(number - 1)];
  if (game.error) {
    warning = path + ", game " + std::to_string(number) + " stops at " + game.error->describe() +
              "; the " + std::to_string(game.moves.size()) + " plies before it are shown";
  }
  Review review;
  review.start = game.start;
  for (const ostrel::draughts::PdnMove& move : game.moves) review.line.push_back(move.move);
  const std::string white = game.tag("White"), black = game.tag("Black");
  review.players = (white.empty() ? "?" : white) + " - " + (black.empty() ? "?" : black);
  return review;
}

}  // namespace demo
