// The falling-pieces animation. A run keeps no flag: while it lasts fieldPiece and fieldKingTop
// hold -1 on every field, which is what keeps playback and the drag from lifting a disc.

#include "scene/Animation.h"

#include <cmath>

#include "ostrel/notation.h"
#include "scene/SceneConstants.h"
#include "scene/SceneSlots.h"

namespace ostrel::scene {

namespace {

constexpr int kSwaps = 1000;
constexpr double kDropHeight = 24;    // above the rest height, at the top of the column
constexpr double kLeaveColumn = 0.7;  // progress at which a piece starts out to its field
constexpr double kStagger = 40;       // a piece placed later is 1/80 of a time unit ahead

// A field number 1..50 drawn from two uniform numbers in [0, 1).
size_t randomField(Platform& platform) {
  const auto f = static_cast<int>(std::floor(platform.Rnd() * kFields + 1));
  return static_cast<size_t>(f < 1 ? 1 : (f > kFields ? kFields : f));
}

}  // namespace

void initAnimation(ControlState& s) {
  Scene& scene = s.scene;
  for (int i = 1; i <= kFields; ++i) scene.shuffleOrder[static_cast<size_t>(i)] = i;
  for (size_t i = 0; i < kFields; ++i) {
    scene.savedFieldPiece[i] = scene.fieldPiece[i];
    scene.savedFieldKingTop[i] = scene.fieldKingTop[i];
  }
  for (int n = 0; n < kSwaps; ++n) {
    const size_t a = randomField(s.platform);
    const size_t b = randomField(s.platform);
    std::swap(scene.shuffleOrder[a], scene.shuffleOrder[b]);
  }
}

void animation(ControlState& s, double dblTime) {
  Scene& scene = s.scene;
  for (int i = 0; i < kPlacedDiscs; ++i) scene.pieceObject[static_cast<size_t>(i)].visible = false;
  for (int i = 0; i < kShadowSlots; ++i) scene.shadowObject[static_cast<size_t>(i)].visible = false;

  int white = 0, black = 0;
  for (int i = 1; i <= kFields; ++i) {
    // An order that initAnimation has not filled can hold numbers that are no field; they have no
    // slot, and the place in the order is skipped.
    const int32_t f = scene.shuffleOrder[static_cast<size_t>(i)];
    const int32_t slot = fieldSlot(f);
    if (slot < 0) continue;
    scene.fieldPiece[static_cast<size_t>(slot)] = -1;
    scene.fieldKingTop[static_cast<size_t>(slot)] = -1;

    double p = ((white + black) / kStagger + 2 * (dblTime + 1)) / 4;
    if (p > 1) p = 1;
    if (!(p >= 0)) p = 0;  // below 0, and a time value that is no number
    const auto h = static_cast<float>(kDiscRestHeight + kDropHeight * (1 - p));
    float x = 0, y = 0;
    fieldToBoard(static_cast<int16_t>(f), x, y);
    double q = 0;
    if (p > kLeaveColumn) q = (p - kLeaveColumn) * (p - kLeaveColumn) / 0.3 / 0.3;

    // White pieces go out on q squared, black ones on q: black leaves the column earlier.
    const int16_t code = s.fieldCode[static_cast<size_t>(slot)];
    if ((code == kWhiteMan || code == kWhiteKing) && white < kDiscsPerColour) {
      cls3DobjectInfo& disc = scene.pieceObject[static_cast<size_t>(white)];
      disc.Translate(static_cast<float>(x * q * q), h, static_cast<float>(y * q * q));
      disc.visible = true;
      ++white;
    }
    if ((code == kBlackMan || code == kBlackKing) && black < kDiscsPerColour) {
      cls3DobjectInfo& disc = scene.pieceObject[static_cast<size_t>(kFirstBlackDisc + black)];
      disc.Translate(static_cast<float>(x * q), h, static_cast<float>(y * q));
      disc.visible = true;
      ++black;
    }
  }

  s.redraw();
}

void stopAnimation(ControlState& s) {
  for (size_t i = 0; i < kFields; ++i) {
    s.scene.fieldPiece[i] = s.scene.savedFieldPiece[i];
    s.scene.fieldKingTop[i] = s.scene.savedFieldKingTop[i];
  }
}

}  // namespace ostrel::scene
