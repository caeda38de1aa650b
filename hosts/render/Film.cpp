#include "Film.h"

#include <cmath>
#include <optional>

namespace render {

namespace {

// The build-up runs one unit of the animation's time a second: the column takes a second to
// fall to the spreading point and the last piece lands 2.5 s after the first one starts.
constexpr double kIntroUnitsPerSecond = 1.0;
constexpr double kIntroEnd = 1.0;  // from here on every piece rests on its field

void setPosition(ostrel::ctlBoard& board, const Position& position) {
  for (int16_t slot = 0; slot < 50; ++slot) {
    board.field(slot, position[static_cast<size_t>(slot)]);
  }
}

int piecesOn(const Position& position) {
  int pieces = 0;
  for (int16_t code : position) pieces += code != kEmpty;
  return pieces;
}

// Takes every frame the control presents. Each present moves the manual clock on by one frame's
// time, so showMove, which paces itself by the clock, advances 1/fps s per frame; a frame that
// is not taken (after the sink has given up) moves it as well, so a move always ends.
class FrameCapture : public ostrel::ctlBoardEvents {
 public:
  FrameCapture(ostrel::HeadlessPlatform& platform, int fps, const FrameSink& sink)
      : platform_(platform), fps_(fps), sink_(sink) {
    platform_.frameAdvanceMs(frameMs());
  }

  void afterDraw(float&) override {
    ++frames_;  // the present has moved the clock for this frame already
    platform_.frameAdvanceMs(frameMs());
    if (stopped_) return;
    last_ = platform_.windowImage();
    if (!sink_(*last_, 1)) stopped_ = true;
  }

  // The last picture again, for `frames` more frames.
  void hold(int frames) {
    if (frames <= 0 || !last_) return;
    const int64_t before = msAt(frames_);
    frames_ += frames;
    platform_.advance(static_cast<int32_t>(msAt(frames_) - before));
    platform_.frameAdvanceMs(frameMs());
    if (!stopped_ && !sink_(*last_, frames)) stopped_ = true;
  }
  bool stopped() const { return stopped_; }

 private:
  // Frame k stands at k/fps seconds, rounded to the clock's milliseconds without drifting.
  int64_t msAt(int64_t frame) const { return (frame * 1000 + fps_ / 2) / fps_; }
  // The length of the next frame.
  int32_t frameMs() const { return static_cast<int32_t>(msAt(frames_ + 1) - msAt(frames_)); }

  ostrel::HeadlessPlatform& platform_;
  const int fps_;
  const FrameSink& sink_;
  std::optional<ostrel::Image> last_;
  int64_t frames_ = 0;
  bool stopped_ = false;
};

// Shows the position as a host has it after a move, and holds it for the pause.
void showAndHold(ostrel::ctlBoard& board, FrameCapture& capture, const Position& position,
                 int pauseFrames) {
  setPosition(board, position);
  board.drawBoard();
  board.render();
  capture.hold(pauseFrames - 1);
}

void playIntro(ostrel::ctlBoard& board, const Position& start, int fps, FrameCapture& capture) {
  // The first frame shows every piece still at the top, the moment the last of them sets off.
  const double first = -1.0 - (std::max(piecesOn(start), 1) - 1) / 80.0;
  const auto steps = static_cast<int>(std::ceil((kIntroEnd - first) * fps / kIntroUnitsPerSecond));
  setPosition(board, start);
  board.drawBoard();
  board.initAnimation();
  for (int k = 0; k <= steps && !capture.stopped(); ++k) {
    board.animation(std::min(first + k * kIntroUnitsPerSecond / fps, kIntroEnd));
  }
  board.stopAnimation();
}

}  // namespace

bool playFilm(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform, const Position& start,
              std::span<const FilmPly> plies, const FilmSettings& settings, const FrameSink& sink,
              const PlyDone& plyDone) {
  const int pause =
      std::max(1, static_cast<int>(std::lround(settings.pauseSeconds * settings.fps)));
  FrameCapture capture(platform, settings.fps, sink);
  platform.useManualClock(0, 0.0f);
  board.highlightLastMove(true);
  board.setHighLightField(-1);
  board.setEventSink(&capture);

  if (settings.intro) playIntro(board, start, settings.fps, capture);
  showAndHold(board, capture, start, pause);
  for (size_t i = 0; i < plies.size() && !capture.stopped(); ++i) {
    board.showMove(plies[i].move);
    showAndHold(board, capture, plies[i].after, pause);
    if (plyDone) plyDone(i + 1);
  }
  board.setEventSink(nullptr);
  return !capture.stopped();
}

ostrel::Image drawStill(ostrel::ctlBoard& board, ostrel::HeadlessPlatform& platform,
                        const Position& position, int16_t lastField) {
  setPosition(board, position);
  board.drawBoard();
  board.highlightLastMove(true);
  board.setHighLightField(lastField > 0 ? lastField : -1);
  board.render();
  return platform.windowImage();
}

}  // namespace render
