#pragma once
// A game of a PDN file for the demo to step through.

#include <optional>
#include <string>
#include <vector>

#include "Game.h"

namespace demo {

struct Review {
  Position start;
  std::vector<Move> line;
  std::string players;  // "White - Black"
};

// Game `number` (from 1) of the file. nullopt and why when the file or the game cannot be had;
// a game that stops at a bad move gives the moves before it, and `warning` says where it stops.
std::optional<Review> loadReview(const std::string& path, int number, std::string& error,
                                 std::string& warning);

}  // namespace demo
