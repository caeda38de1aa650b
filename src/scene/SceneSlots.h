#pragma once
// Checked access to the disc and shadow records by slot number. Slot numbers come from the
// per-field arrays, which a host's call order can leave stale; a number outside the records
// gives nullptr, and the caller then moves nothing.

#include <cstdint>

#include "scene/SceneConstants.h"
#include "state/ControlState.h"

namespace ostrel::scene {

// A disc that drawBoard can place: slots 0..47.
inline cls3DobjectInfo* discAt(ControlState& s, int32_t slot) {
  if (slot < 0 || slot >= kPlacedDiscs) return nullptr;
  return &s.scene.pieceObject[static_cast<size_t>(slot)];
}

// A shadow that drawBoard can place: slots 0..39.
inline cls3DobjectInfo* shadowAt(ControlState& s, int32_t slot) {
  if (slot < 0 || slot >= kShadowSlots) return nullptr;
  return &s.scene.shadowObject[static_cast<size_t>(slot)];
}

inline void translateIf(cls3DobjectInfo* object, float x, float height, float y) {
  if (object) object->Translate(x, height, y);
}

// Slot of a field number in the per-field arrays, or -1 for a number outside 1..50.
inline int32_t fieldSlot(int32_t field) {
  return field >= 1 && field <= kFields ? field - 1 : -1;
}

}  // namespace ostrel::scene
