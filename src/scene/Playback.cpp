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

struct TravellingPiece {
  cls3DobjectInfo* lower;
  cls3DobjectInfo* upper;  // nullptr for a man
  int stack;               // 2 for a man, 3 for a king: one disc more than the piece has
};

// Lifted at (x, y): the shadow stays on the board and moves out by one more disc than at rest.
void placeLifted(ControlState& s, const TravellingPiece& p, float x, float y) {
  translateIf(p.lower, x, kTravelHeight, y);
  translateIf(p.upper, x, kTravelTopHeight, y);
  translateIf(shadowAt(s, s.gesture.dragShadow), shadowX(x, p.stack), kShadowHeight,
              shadowY(y, p.stack));
}

void placeLanded(ControlState& s, const TravellingPiece& p, float x, float y) {
  translateIf(p.lower, x, kDiscRestHeight, y);
  translateIf(p.upper, x, kKingTopRestHeight, y);
  translateIf(shadowAt(s, s.gesture.dragShadow), shadowX(x, p.stack - 1), kShadowHeight,
              shadowY(y, p.stack - 1));
}

}  // namespace

void showMove(ControlState& s, std::string_view strMove) {
  setHighLightField(s, -1);

  const std::vector<int16_t> route = routeFields(normalMove(strMove));
  const int32_t source = fieldSlot(route.front());
  if (source < 0) return;
  const int16_t piece = s.scene.fieldPiece[static_cast<size_t>(source)];
  const int16_t top = s.scene.fieldKingTop[static_cast<size_t>(source)];
  if (piece < 0) return;
  if (route.size() < 2) return;

  const TravellingPiece travelling{discAt(s, piece), top >= 0 ? discAt(s, top) : nullptr,
                                   top >= 0 ? 3 : 2};
  s.gesture.dragShadow = s.scene.fieldShadow[static_cast<size_t>(source)];

  Platform& clock = s.platform;
  float tx = 0, ty = 0;
  int16_t destination = 0;
  for (size_t hop = 0; hop + 1 < route.size(); ++hop) {
    // Each hop starts exactly on the field the route names.
    float x = 0, y = 0;
    fieldToBoard(route[hop], x, y);
    destination = route[hop + 1];
    fieldToBoard(destination, tx, ty);
    placeLifted(s, travelling, x, y);

    const float dx = tx - x;
    const float dy = ty - y;
    const double distance = std::fabs(static_cast<double>(dx));
    double travelled = 0;
    int32_t last = clock.timeGetTime();
    // Only the x distance is tested: on a diagonal both axes arrive together. The time between
    // the two readings of one iteration is not counted.
    while (travelled < distance) {
      const double step = elapsedMs(last, clock.timeGetTime()) * kSpeed;
      last = clock.timeGetTime();
      x = static_cast<float>(x + sign(dx) * step);
      y = static_cast<float>(y + sign(dy) * step);
      travelled += step;
      // The end of a hop is never drawn on its own: the next hop or the landing follows.
      if (travelled < distance) {
        placeLifted(s, travelling, x, y);
        s.redraw();
      }
    }
  }

  placeLanded(s, travelling, tx, ty);
  setHighLightField(s, destination);
  s.redraw();
}

}  // namespace ostrel::scene
