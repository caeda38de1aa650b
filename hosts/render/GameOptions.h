#pragma once
// The options of ostrel-render that take a game from a PDN file: which game, up to which ply,
// and whether it becomes one picture, a picture per ply or a film.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Position.h"

namespace render {

struct GameOptions {
  std::string pdn;            // the PDN file; empty: no game, a single position
  int game = 1;               // counted from 1 in the file
  std::optional<size_t> ply;  // up to this ply; no value: the whole game
  std::string allPlies;       // a folder for ply-000.png, ply-001.png, ...
  std::string video;          // a .mp4, .webm or .gif file
  int fps = 30;
  double pauseSeconds = 1.0;
  bool intro = false;
};

// Takes the game options out of args and leaves the rest for parseArguments. False on a bad
// one; error says which.
bool takeGameArguments(std::vector<std::string>& args, GameOptions& game, std::string& error);

// Refuses what a game does not go with: a FEN position, --last-move, --emf.
bool checkGameOptions(const Options& options, const GameOptions& game, std::string& error);

std::string gameUsage(std::string_view program);

}  // namespace render
