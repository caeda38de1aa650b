#include "support/EventRecorder.h"

#include <stdexcept>

namespace ostrel::testing {

EventRecorder::EventRecorder(ctlBoard& board) : board_(&board) {
  board.setEventSink(this);
}

RecordedEvent& EventRecorder::record(const std::string& name) {
  RecordedEvent e;
  e.name = name;
  if (board_) {
    e.dragging = board_->gesture().draggingPiece;
    e.rotating = board_->gesture().rotatingBoard;
  }
  events.push_back(e);
  return events.back();
}

void EventRecorder::afterDraw(float& frameTime) {
  record("afterDraw").frameTime = frameTime;
  if (onAfterDraw) onAfterDraw(frameTime);
}

void EventRecorder::debugMessage(std::string& s) {
  record("debugMessage").text = s;
}

namespace {
void fill(RecordedEvent& e, int16_t button, int16_t shift, float x, float y, int16_t field) {
  e.button = button;
  e.shift = shift;
  e.boardX = x;
  e.boardY = y;
  e.field = field;
}
}  // namespace

void EventRecorder::mouseDown(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                              int16_t& field) {
  fill(record("mouseDown"), button, Shift, boardX, boardY, field);
}

void EventRecorder::mouseUp(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                            int16_t& field) {
  fill(record("mouseUp"), button, Shift, boardX, boardY, field);
}

void EventRecorder::mouseMove(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                              int16_t& field) {
  fill(record("mouseMove"), button, Shift, boardX, boardY, field);
}

void EventRecorder::moveDone(int16_t& moveIndex, std::string& move) {
  RecordedEvent& e = record("moveDone");
  e.moveIndex = moveIndex;
  e.text = move;
  e.moveIndexRef = &moveIndex;
  e.moveRef = &move;
  if (onMoveDone) onMoveDone(moveIndex, move);
}

void EventRecorder::afterUserRotation() {
  record("afterUserRotation");
}

void EventRecorder::KeyDown(int16_t& KeyCode, int16_t& Shift) {
  RecordedEvent& e = record("KeyDown");
  e.button = KeyCode;
  e.shift = Shift;
}

std::vector<std::string> EventRecorder::names(bool withFrames) const {
  std::vector<std::string> out;
  for (const RecordedEvent& e : events)
    if (withFrames || e.name != "afterDraw") out.push_back(e.name);
  return out;
}

std::vector<RecordedEvent> EventRecorder::named(const std::string& name) const {
  std::vector<RecordedEvent> out;
  for (const RecordedEvent& e : events)
    if (e.name == name) out.push_back(e);
  return out;
}

int EventRecorder::count(const std::string& name) const {
  return static_cast<int>(named(name).size());
}

const RecordedEvent& EventRecorder::last(const std::string& name) const {
  for (auto it = events.rbegin(); it != events.rend(); ++it)
    if (it->name == name) return *it;
  throw std::out_of_range("no event " + name);
}

}  // namespace ostrel::testing
