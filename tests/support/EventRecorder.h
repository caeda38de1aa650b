#pragma once
// A listener that records every event a control raises, in order, with its arguments and the
// state of the gesture flags at that moment. Hooks let a test act inside a handler, as a host
// would.

#include <functional>
#include <string>
#include <vector>

#include "ostrel/ctlBoard.h"

namespace ostrel::testing {

struct RecordedEvent {
  std::string name;               // "afterDraw", "mouseDown", "mouseMove", "mouseUp", "moveDone",
                                  // "afterUserRotation", "KeyDown", "debugMessage"
  int16_t button = 0, shift = 0;  // KeyDown: key code and shift
  float boardX = 0, boardY = 0;
  int16_t field = 0;
  int16_t moveIndex = 0;
  std::string text;       // moveDone's move, debugMessage's text
  float frameTime = 0;    // afterDraw
  bool dragging = false;  // gesture flags while the event ran (only with a board attached)
  bool rotating = false;
  int16_t* moveIndexRef = nullptr;  // moveDone's arguments as passed, to see what they refer to
  std::string* moveRef = nullptr;
};

class EventRecorder : public ctlBoardEvents {
 public:
  EventRecorder() = default;
  // Records and attaches itself as the board's sink.
  explicit EventRecorder(ctlBoard& board);

  void afterDraw(float& frameTime) override;
  void debugMessage(std::string& s) override;
  void mouseDown(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                 int16_t& field) override;
  void mouseUp(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
               int16_t& field) override;
  void mouseMove(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                 int16_t& field) override;
  void moveDone(int16_t& moveIndex, std::string& move) override;
  void afterUserRotation() override;
  void KeyDown(int16_t& KeyCode, int16_t& Shift) override;

  // Names of the events so far, in order, optionally without afterDraw.
  std::vector<std::string> names(bool withFrames = true) const;
  // The events of one name.
  std::vector<RecordedEvent> named(const std::string& name) const;
  int count(const std::string& name) const;
  const RecordedEvent& last(const std::string& name) const;  // throws when there is none
  void clear() { events.clear(); }

  std::vector<RecordedEvent> events;
  // Called inside the handler, after the event is recorded.
  std::function<void(int16_t& moveIndex, std::string& move)> onMoveDone;
  std::function<void(float& frameTime)> onAfterDraw;

 private:
  RecordedEvent& record(const std::string& name);
  const ctlBoard* board_ = nullptr;
};

}  // namespace ostrel::testing
