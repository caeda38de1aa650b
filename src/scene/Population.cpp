#include "scene/Population.h"

#include "ostrel/notation.h"
#include "scene/Markers.h"
#include "scene/SceneConstants.h"

namespace ostrel::scene {

namespace {

// Puts the next disc of a colour on a field: the lower disc always, the upper one of a king when
// the colour still has a slot after the lower one. `used` counts the colour's discs so far;
// `first` is the colour's first pieceObject slot. A colour out of discs places nothing.
void placePiece(ControlState& s, size_t slot, bool king, int& used, int first, float x, float y) {
  if (used >= kDiscsPerColour) return;
  cls3DobjectInfo& lower = s.scene.pieceObject[static_cast<size_t>(first + used)];
  lower.Translate(x, kDiscRestHeight, y);
  lower.visible = true;
  s.scene.fieldPiece[slot] = static_cast<int16_t>(first + used);
  ++used;
  if (king && used < kDiscsPerColour) {
    cls3DobjectInfo& upper = s.scene.pieceObject[static_cast<size_t>(first + used)];
    upper.Translate(x, kKingTopRestHeight, y);
    upper.visible = true;
    s.scene.fieldKingTop[slot] = static_cast<int16_t>(first + used);
    ++used;
  }
}

}  // namespace

void drawBoard(ControlState& s) {
  for (int i = 0; i < kPlacedDiscs; ++i)
    s.scene.pieceObject[static_cast<size_t>(i)].visible = false;
  for (int i = 0; i < kShadowSlots; ++i)
    s.scene.shadowObject[static_cast<size_t>(i)].visible = false;

  int white = 0, black = 0, shadows = 0;
  for (int f = 1; f <= kFields; ++f) {
    const auto slot = static_cast<size_t>(f - 1);
    const int16_t code = s.fieldCode[slot];
    s.scene.fieldPiece[slot] = -1;
    s.scene.fieldKingTop[slot] = -1;
    float x = 0, y = 0;
    fieldToBoard(static_cast<int16_t>(f), x, y);

    if (code == kWhiteMan || code == kWhiteKing) {
      placePiece(s, slot, code == kWhiteKing, white, 0, x, y);
    } else if (code == kBlackMan || code == kBlackKing) {
      placePiece(s, slot, code == kBlackKing, black, kFirstBlackDisc, x, y);
    }

    // Every occupied field gets a shadow while shadows last, with or without a disc; a king's is
    // shifted as for two discs. A field without one keeps its old fieldShadow entry.
    if (code > kEmptyField && shadows < kShadowSlots) {
      const int discs = (code == kWhiteKing || code == kBlackKing) ? 2 : 1;
      cls3DobjectInfo& shadow = s.scene.shadowObject[static_cast<size_t>(shadows)];
      shadow.visible = true;
      shadow.Translate(shadowX(x, discs), kShadowHeight, shadowY(y, discs));
      s.scene.fieldShadow[slot] = static_cast<int16_t>(shadows);
      ++shadows;
    }
  }

  markOnlyMove(s);
}

}  // namespace ostrel::scene
