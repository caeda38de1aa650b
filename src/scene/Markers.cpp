#include "scene/Markers.h"

#include <algorithm>

#include "ostrel/notation.h"
#include "scene/SceneConstants.h"

namespace ostrel::scene {

void placeMarker(clsMesh& marker, int16_t field, float height) {
  float x = 0, y = 0;
  fieldToBoard(field, x, y);
  marker.posX(static_cast<float>(x + kMarkerShiftX));
  marker.posY(height);
  marker.posZ(y);
  marker.visible = true;
}

void setHighLightField(ControlState& s, int16_t hl) {
  clsMesh& marker = s.models.markerMesh[kLastMoveMarker];
  if (hl > 0 && s.highlightLastMove) {
    placeMarker(marker, hl, kLastMoveMarkerHeight);
  } else {
    marker.visible = false;
  }
}

void setHLfields(ControlState& s, std::string_view fields) {
  for (int i = kFirstListMarker; i <= kLastListMarker; ++i) s.models.markerMesh[i].visible = false;
  if (fields.empty()) return;
  const int32_t names = std::min<int32_t>(countTokens(fields, "|"), kLastListMarker);
  for (int i = 1; i <= names; ++i) {
    const int16_t field = tokenValue(getToken(fields, "|", static_cast<int16_t>(i), 0));
    placeMarker(s.models.markerMesh[kFirstListMarker - 1 + i], field, kFieldMarkerHeight);
  }
}

void markOnlyMove(ControlState& s) {
  clsMesh& marker = s.models.markerMesh[kOnlyMoveMarker];
  if (s.moves.moveCount == 1) {
    const int16_t source = tokenValue(getToken(s.moves.moveList[0], "-", 1, 0));
    placeMarker(marker, source, kMoveMarkerHeight);
  } else {
    marker.visible = false;
  }
}

}  // namespace ostrel::scene
