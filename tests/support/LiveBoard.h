#pragma once
// A control started on the real offscreen device with the shipped assets, a manual clock and a
// recorder of its events; and what the rendered picture shows of a field or a piece.

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "control/ControlAccess.h"
#include "ostrel/HeadlessPlatform.h"
#include "support/EventRecorder.h"

namespace ostrel::testing {

// The pixels in which two pictures differ, and their mean position.
struct Blob {
  int count = 0, width = 0;
  double x = 0, y = 0;
  std::vector<bool> in;
  bool contains(double px, double py) const;
};
Blob changed(const Image& before, const Image& after);

// Where a control's pictures (`frame` draws one) show a field's marker or a white man on a field,
// each put there for the purpose and taken away again.
Blob markerShown(ctlBoard& board, const std::function<Image()>& frame, int field);
Blob manShown(ctlBoard& board, const std::function<Image()>& frame, int field);

// The start of a game with the first moves of white on offer, drawn.
inline constexpr std::array<const char*, 8> kOpeningMoves = {"31-27", "31-26", "32-28", "32-27",
                                                             "33-29", "33-28", "34-30", "34-29"};
void openingPosition(ctlBoard& board);

struct LiveBoard {
  explicit LiveBoard(int width = 480, int height = 480, int32_t qShadow = 0);

  HeadlessPlatform platform;
  ctlBoard board;
  EventRecorder events{board};
  bool started = false;

  ControlState& state() { return controlState(board); }
  Image frame() {
    board.render();
    return platform.windowImage();
  }
  void setPosition(const std::vector<std::pair<int, int>>& pieces,
                   const std::vector<std::string>& moves = {});
  // Where the view draws a field's marker, or a white man on a field.
  Blob fieldBlob(int field) { return markerShown(board, frames(), field); }
  Blob pieceBlob(int field) { return manShown(board, frames(), field); }
  std::function<Image()> frames() {
    return [this] { return frame(); };
  }
  // Mouse events at a pixel, each after the time gate has opened.
  void down(int16_t button, double x, double y) { mouse(&ctlBoard::pic_MouseDown, button, x, y); }
  void move(int16_t buttons, double x, double y) { mouse(&ctlBoard::pic_MouseMove, buttons, x, y); }
  void up(int16_t button, double x, double y) { mouse(&ctlBoard::pic_MouseUp, button, x, y); }
  void down(int16_t button, const Blob& b) { down(button, b.x, b.y); }
  void move(int16_t buttons, const Blob& b) { move(buttons, b.x, b.y); }
  void up(int16_t button, const Blob& b) { up(button, b.x, b.y); }
  static float tw(double pixel) { return static_cast<float>((pixel + 0.5) * 15); }
  void mouse(void (ctlBoard::*event)(int16_t, int16_t, float, float), int16_t b, double x,
             double y) {
    platform.advance(20);
    (board.*event)(b, 0, tw(x), tw(y));
  }
};

}  // namespace ostrel::testing
