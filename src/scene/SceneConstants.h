#pragma once
// Heights and offsets of the scene, in board units. drawBoard, move playback, the falling-pieces
// animation and the drag all place discs, shadows and markers from these values.
//
// Positions are Singles; the offsets are worked in double and rounded to Single once, at the end,
// so that every part of the control puts a shadow or a marker on exactly the same spot.

namespace ostrel::scene {

// Disc budgets: slots 0..23 of pieceObject are white, 24..47 black; 40 shadow slots.
inline constexpr int kDiscsPerColour = 24;
inline constexpr int kFirstBlackDisc = 24;
inline constexpr int kPlacedDiscs = 48;
inline constexpr int kShadowSlots = 40;

// Height of a resting disc's centre, and of the board plane that picking meets. The arithmetic
// below starts from this double, so the rounded results are the decimal values themselves.
inline constexpr double kRestHeight = 0.2265;
// Height of one disc: a king's upper disc stands this much above the lower one.
inline constexpr double kDiscStep = 0.21;
// A shadow lies one disc step and this much more below the resting disc.
inline constexpr double kShadowGap = 0.009;
// Shadow shift per disc of stack height: these factors times kDiscStep.
inline constexpr double kShadowShiftX = 0.6;
inline constexpr double kShadowShiftY = -0.4;

inline constexpr float kDiscRestHeight = static_cast<float>(kRestHeight);                 // 0.2265
inline constexpr float kKingTopRestHeight = static_cast<float>(kRestHeight + kDiscStep);  // 0.4365
inline constexpr float kShadowHeight =
    static_cast<float>(kRestHeight - kDiscStep - kShadowGap);  // 0.0075

// Markers stand 0.08 to the right of a field's disc point, just above the resting discs.
inline constexpr double kMarkerShiftX = 0.08;
inline constexpr float kMoveMarkerHeight = 0.2275f;  // only move, drag destinations (slots 1..15)
inline constexpr float kLastMoveMarkerHeight = 0.228f;  // last move (slot 16)
inline constexpr float kFieldMarkerHeight = 0.2365f;    // host's fields, hover target (slot 0)

// Height of a disc stacked on one at height z (a king's upper disc).
constexpr float stackedHeight(float z) {
  return static_cast<float>(z + kDiscStep);
}

// Height of the shadow of a piece whose lower disc stands at height z. z enters as its distance
// from the rest height, so the shadow of a resting piece lies at exactly kShadowHeight.
constexpr float shadowHeight(float z) {
  return static_cast<float>(kRestHeight + (static_cast<double>(z) - kDiscRestHeight) - kDiscStep -
                            kShadowGap);
}
static_assert(shadowHeight(kDiscRestHeight) == kShadowHeight);
static_assert(stackedHeight(kDiscRestHeight) == kKingTopRestHeight);

// Shadow position of a stack of `discs` discs standing at board point (x, y).
constexpr float shadowX(float x, int discs) {
  return static_cast<float>(x + kShadowShiftX * (kDiscStep * discs));
}
constexpr float shadowY(float y, int discs) {
  return static_cast<float>(y + kShadowShiftY * (kDiscStep * discs));
}

}  // namespace ostrel::scene
