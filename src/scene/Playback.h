#pragma once
// Playing one move on the screen: the piece lifts, travels its route hop by hop at a constant
// speed and lands, and the last-move marker shows up on its last field.

#include <cstdint>
#include <string_view>
#include <vector>

#include "state/ControlState.h"

namespace ostrel::scene {

// One move played frame by frame. showMove runs it to the end at once; a host whose thread must
// not block (a web page, where a frame shows only once the script returns) advances it from its
// timer instead. Either way the clock readings, positions and frames come in the same order.
class MovePlayback {
 public:
  // Hides the last-move marker and finds the piece; nothing is drawn yet.
  MovePlayback(ControlState& s, std::string_view strMove);
  // Runs the move on until it has drawn one more frame: true after a travelling frame, false
  // once the piece has landed (the landing frame drawn) or when there was nothing to play.
  bool advance();

 private:
  void startHop();
  void placeLifted(float x, float y);
  void land();

  ControlState& s_;
  std::vector<int16_t> route_;
  cls3DobjectInfo* lower_ = nullptr;
  cls3DobjectInfo* upper_ = nullptr;  // nullptr for a man
  int stack_ = 2;                     // 2 for a man, 3 for a king: one disc more than it has
  size_t hop_ = 0;                    // the hop under way: from route_[hop_] to route_[hop_ + 1]
  bool inHop_ = false, done_ = false;
  float x_ = 0, y_ = 0, tx_ = 0, ty_ = 0, dx_ = 0, dy_ = 0;
  double distance_ = 0, travelled_ = 0;
  int32_t last_ = 0;  // the clock at the previous step, in milliseconds
};

// Plays strMove ("32-28", "26x37x48") on the scene records, drawing a frame for each step of
// the way, and returns once the piece has landed. The position and the per-field arrays are
// left as they were.
void showMove(ControlState& s, std::string_view strMove);

}  // namespace ostrel::scene
