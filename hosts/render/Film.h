#pragma once
// A game played on a started control as a film: the optional falling-pieces build-up, the
// start, and every move by showMove at the control's own pace, each followed by the position a
// host writes after it (captured pieces off, a crowned man) held for a pause. Frames are taken
// through the headless platform's manual clock, one every 1/fps seconds of the control's time.

#include <functional>
#include <span>
#include <string>

#include "Position.h"
#include "ostrel/HeadlessPlatform.h"
#include "ostrel/ctlBoard.h"

namespace render {

struct FilmPly {
  std::string move;  // as showMove takes it: "32-28", "28-19-8"
  Position after;    // the position once the move is made
};

struct FilmSettings {
  int fps = 30;
  double pauseSeconds = 1.0;  // after the start and after each move
  bool intro = false;         // the falling-pieces build-up first
};

// Receives each picture and the number of frames it lasts; false stops the film.
using FrameSink = std::function<bool(const ostrel::Image& picture, int frames)>;
// Told how many plies are done, after each one.
using PlyDone = std::function<void(size_t plies)>;

// False when the sink stopped the film.
bool playFilm(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform, const Position& start,
              std::span<const FilmPly> plies, const FilmSettings& settings, const FrameSink& sink,
              const PlyDone& plyDone = {});

// One still: the position with the last move's end marked (no mark when `lastField` is 0).
ostrel::Image drawStill(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform,
                        const Position& position, int16_t lastField);

}  // namespace render
