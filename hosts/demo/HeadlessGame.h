#pragma once
// The demo without a window: the opponent plays both sides on an offscreen control (or a recorded
// game is stepped through) and every ply is written as a PNG picture, the last move marked.

#include <cstdint>
#include <functional>
#include <ostream>
#include <string>

#include "DemoGame.h"
#include "Review.h"

namespace demo {

struct HeadlessRun {
  int plies = 40;                // played at most; the game may end sooner
  std::string out = "out/demo";  // ply-000.png is the start, ply-001.png after the first ply, ...
  uint32_t seed = 1;
  int size = 640;                  // the pictures' width and height in pixels
  const Review* review = nullptr;  // a game to step through instead of the opponent's play
};

// Called after the start and after each ply has been written, with the number of plies so far.
using AfterPly = std::function<void(int ply, const ostrel::ctlBoard& board, const DemoGame& game)>;

// Plays and writes the game; tells on `log` what it wrote. 0 when every picture was written.
int playHeadless(const HeadlessRun& run, std::ostream& log, const AfterPly& afterPly = {});

// The file of a ply in the folder.
std::string plyFile(const std::string& folder, int ply);

}  // namespace demo
