#pragma once
// ostrel-render's games: a PDN game drawn by one started control as a picture of one ply, a
// picture of every ply, or a film with its moves animated.

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Film.h"
#include "GameOptions.h"
#include "Position.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/draughts.h"

namespace render {

// A game as the control plays it.
struct GameLine {
  Position start{};
  std::vector<FilmPly> plies;
  std::vector<int16_t> lastFields;  // where each ply ends
};

// The game's first `plies` plies (fewer when it has no more).
GameLine lineOf(const ostrel::draughts::PdnGame& game, size_t plies);

// One picture per ply into the folder, made if need be: ply-000.png for the start, each other
// with its last move marked. A progress line on a terminal. False with the reason on failure.
bool writeAllPlies(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform,
                   const GameLine& line, const std::string& dir, std::string& error);

// The game as a film into `path` (.mp4, .webm, .gif). The number of frames written; no value,
// and no file, on failure.
std::optional<int64_t> writeFilm(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform,
                                 const GameLine& line, const std::string& path,
                                 const FilmSettings& settings, std::string& error);

// Reads the game asked for. No value when the file cannot be read, holds no such game, or holds
// one that cannot be drawn (another kind of draughts, a FEN tag that is no position).
std::optional<ostrel::draughts::PdnGame> loadGame(const GameOptions& game, std::string& error);

// Draws the game as the options ask on a started control, prints what it wrote, and where a
// game with a faulty move stopped. Gives the exit status: 0, or 1 when something could not be
// written or the game stopped before what was asked.
int renderGame(const std::string& program, ostrel::ctlBoard& board,
               ostrel::HeadlessPlatform& platform, const Options& options, const GameOptions& game,
               const ostrel::draughts::PdnGame& pdn);

}  // namespace render
