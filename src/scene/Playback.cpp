// Move playback. Everything lives in locals for the length of the call except the shadow's slot,
// which goes into dragShadow, the member the drag uses for the same purpose.
//
// Two inputs lie outside the move grammar, and the call treats both like a source field without
// a disc: it ends after hiding the last-move marker, with nothing moved and no frame drawn.
//   - A source token outside 1..50 names no slot of the per-field arrays, so there is no disc to
//     look up (tokens that read as 0, negative numbers, 51 and up, text that is no number).
//   - A route of one token ("32", or "32X28", where the capital X is no separator) has no hop:
//     there is no last hop to land from and no destination to mark, and nothing is played.
// Every later token only goes through fieldToBoard, which gives a point for any number; a route
// through such a token sends the piece to that point beyond the board's edge.

#include "scene/Playback.h"

#include <cmath>
#include <string>
#include <vector>

#include "ostrel/notation.h"
#include "scene/Markers.h"
#include "scene/SceneConstants.h"
#include "scene/SceneSlots.h"

namespace ostrel::scene {

namespace {

// Board units covered along each axis per millisecond: one square of diagonal in 125 ms.
constexpr double kSpeed = 0.008;

// A travelling piece is one disc step above its rest height, with no arc and no easing.
constexpr float kTravelHeight = kKingTopRestHeight;  // 0.4365
constexpr float kTravelTopHeight =
    static_cast<float>(kRestHeight + kDiscStep + kDiscStep);  // 0.6465

// The numeric values of every token of a normal-form move, in order.
std::vector<int16_t> routeFields(const std::string& move) {
  std::vector<int16_t> fields;
  size_t start = 0;
  for (;;) {
    const size_t dash = move.find('-', start);
    const size_t end = dash == std::string::npos ? move.size() : dash;
    fields.push_back(tokenValue(std::string_view(move).substr(start, end - start)));
    if (dash == std::string::npos) break;
    start = dash + 1;
  }
  return fields;
}

// Milliseconds from one clock reading to a later one; the counter wraps at 32 bits.
int32_t elapsedMs(int32_t from, int32_t to) {
  return static_cast<int32_t>(static_cast<uint32_t>(to) - static_cast<uint32_t>(from));
}

int sign(float v) {
  return v > 0 ? 1 : (v < 0 ? -1 : 0);
}

}  // namespace

MovePlayback::MovePlayback(ControlState& s, std::string_view strMove) : s_(s) {
  setHighLightField(s, -1);
  done_ = true;  // until a disc is found to play
  route_ = routeFields(normalMove(strMove));
  const int32_t source = fieldSlot(route_.front());
  if (source < 0) return;
  const int16_t piece = s.scene.fieldPiece[static_cast<size_t>(source)];
  const int16_t top = s.scene.fieldKingTop[static_cast<size_t>(source)];
  if (piece < 0 || route_.size() < 2) return;
  lower_ = discAt(s, piece);
  upper_ = top >= 0 ? discAt(s, top) : nullptr;
  stack_ = top >= 0 ? 3 : 2;
  s.gesture.dragShadow = s.scene.fieldShadow[static_cast<size_t>(source)];
  done_ = false;
}

// Lifted at (x, y): the shadow stays on the board and moves out by one more disc than at rest.
void MovePlayback::placeLifted(float x, float y) {
  translateIf(lower_, x, kTravelHeight, y);
  translateIf(upper_, x, kTravelTopHeight, y);
  translateIf(shadowAt(s_, s_.gesture.dragShadow), shadowX(x, stack_), kShadowHeight,
              shadowY(y, stack_));
}

// Each hop starts exactly on the field the route names.
void MovePlayback::startHop() {
  fieldToBoard(route_[hop_], x_, y_);
  fieldToBoard(route_[hop_ + 1], tx_, ty_);
  placeLifted(x_, y_);
  dx_ = tx_ - x_;
  dy_ = ty_ - y_;
  distance_ = std::fabs(static_cast<double>(dx_));
  travelled_ = 0;
  last_ = s_.platform.timeGetTime();
  inHop_ = true;
}

void MovePlayback::land() {
  translateIf(lower_, tx_, kDiscRestHeight, ty_);
  translateIf(upper_, tx_, kKingTopRestHeight, ty_);
  translateIf(shadowAt(s_, s_.gesture.dragShadow), shadowX(tx_, stack_ - 1), kShadowHeight,
              shadowY(ty_, stack_ - 1));
  setHighLightField(s_, route_.back());
  s_.redraw();
  done_ = true;
}

bool MovePlayback::advance() {
  Platform& clock = s_.platform;
  while (!done_) {
    if (!inHop_) {
      if (hop_ + 1 >= route_.size()) {
        land();
        return false;
      }
      startHop();
    }
    // Only the x distance is tested: on a diagonal both axes arrive together. The time between
    // the two readings of one step is not counted.
    if (travelled_ >= distance_) {
      inHop_ = false;
      ++hop_;
      continue;
    }
    const double step = elapsedMs(last_, clock.timeGetTime()) * kSpeed;
    last_ = clock.timeGetTime();
    x_ = static_cast<float>(x_ + sign(dx_) * step);
    y_ = static_cast<float>(y_ + sign(dy_) * step);
    travelled_ += step;
    // The end of a hop is never drawn on its own: the next hop or the landing follows.
    if (travelled_ < distance_) {
      placeLifted(x_, y_);
      s_.redraw();
      return true;
    }
  }
  return false;
}

void showMove(ControlState& s, std::string_view strMove) {
  MovePlayback playback(s, strMove);
  while (playback.advance()) {
  }
}

}  // namespace ostrel::scene
