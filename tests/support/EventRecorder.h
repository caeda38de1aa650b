#pragma once
// A listener that writes each event of a control as one line, in order, as a host's handlers see
// it: "mouseDown <button> <shift> <field>", "moveDone <index> <move>", "KeyDown <key> <shift>",
// "afterDraw", "afterUserRotation", each followed by " dragging" or " rotating" while that flag
// of the gesture is set. It also keeps the board point of the last mouse event and what the
// arguments of the last moveDone referred to.

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "ostrel/ctlBoard.h"

namespace ostrel::testing {

using Lines = std::vector<std::string>;

class EventRecorder : public ctlBoardEvents {
 public:
  explicit EventRecorder(ctlBoard& board) : board_(board) { board.setEventSink(this); }

  void afterDraw(float& frameTime) override {
    frameTimes.push_back(frameTime);
    add("afterDraw");
    if (onAfterDraw) onAfterDraw();
  }
  void mouseDown(int16_t& b, int16_t& s, float& x, float& y, int16_t& f) override {
    mouse("mouseDown", b, s, x, y, f);
  }
  void mouseMove(int16_t& b, int16_t& s, float& x, float& y, int16_t& f) override {
    mouse("mouseMove", b, s, x, y, f);
  }
  void mouseUp(int16_t& b, int16_t& s, float& x, float& y, int16_t& f) override {
    mouse("mouseUp", b, s, x, y, f);
  }
  void moveDone(int16_t& index, std::string& move) override {
    add("moveDone " + std::to_string(index) + " " + move);
    indexRef = &index;
    moveRef = &move;
    if (onMoveDone) onMoveDone();
  }
  void afterUserRotation() override { add("afterUserRotation"); }
  void KeyDown(int16_t& key, int16_t& shift) override {
    add("KeyDown " + std::to_string(key) + " " + std::to_string(shift));
  }

  // The lines so far; the record starts afresh.
  Lines take() { return std::exchange(lines, {}); }

  Lines lines;
  std::vector<float> frameTimes;
  float boardX = 0, boardY = 0;
  int16_t field = 0;
  const void *indexRef = nullptr, *moveRef = nullptr;
  std::function<void()> onAfterDraw, onMoveDone;

 private:
  void mouse(const char* name, int16_t b, int16_t s, float x, float y, int16_t f) {
    boardX = x, boardY = y, field = f;
    add(std::string(name) + " " + std::to_string(b) + " " + std::to_string(s) + " " +
        std::to_string(f));
  }
  void add(std::string line) {
    if (board_.gesture().draggingPiece) line += " dragging";
    if (board_.gesture().rotatingBoard) line += " rotating";
    lines.push_back(std::move(line));
  }
  ctlBoard& board_;
};

}  // namespace ostrel::testing
