#pragma once
// ostrel-render's games: a PDN game drawn by one started control as a picture of one ply, a
// picture of every ply, or a film with its moves animated.

#include <optional>
#include <string>

#include "GameOptions.h"
#include "Position.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"
#include "ostrel/draughts.h"

namespace render {

// The control's field codes of a position.
Position codesOf(const ostrel::draughts::Position& position);

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
