// The mouse gestures. A gesture begins on the press itself, with no threshold: a left press on a
// piece that a listed move starts from lifts it, and a right press starts turning the view. A
// release of any button ends whatever is under way. Only the two flags decide what a move or a
// release does; the Button of those events is passed on and nothing more.
//
// Two cases that the move list allows and that need a choice:
//   - A listed move that ends on its own source (a king's circular capture) makes the source a
//     legal target. A drop there keeps the piece on its field: the code is neither copied nor
//     cleared, since copying it onto itself and then clearing the source would leave the field
//     empty. moveDone is raised as for any accepted drop, and the host writes the captures.
//   - A press on a field that has a code and a listed move but no disc in fieldPiece (the host
//     has not run drawBoard since writing the code, a colour out of discs, or a falling-pieces
//     run) has nothing to lift. No drag starts: the press is one without a gesture, with no frame,
//     and the host sees mouseDown, and mouseUp on release.

#include "interaction/Gestures.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <string_view>

#include "board/MoveList.h"
#include "interaction/Picking.h"
#include "ostrel/notation.h"
#include "scene/Markers.h"
#include "scene/Population.h"
#include "scene/SceneConstants.h"
#include "scene/SceneSlots.h"

namespace ostrel::interaction {

namespace {

constexpr int16_t kLeftButton = 1;
constexpr int16_t kRightButton = 2;

constexpr float kDragHeight = static_cast<float>(scene::kRestHeight + kDragLift);  // 0.4765
constexpr float kDragTopHeight = scene::stackedHeight(kDragHeight);                // 0.6865

// Twips of pointer travel that turn the view by one radian.
constexpr double kTwipsPerRadian = 2000;

// First and last token of a normal-form move, as field numbers.
int16_t firstField(std::string_view move) {
  return tokenValue(move.substr(0, move.find('-')));
}
int16_t lastField(std::string_view move) {
  const size_t dash = move.rfind('-');
  return tokenValue(dash == std::string_view::npos ? move : move.substr(dash + 1));
}

int listedMoves(const ControlState& s) {
  return std::clamp<int>(s.moves.moveCount, 0, board::kMaxMoves);
}

// The press on field starts a drag only on a field where a listed move starts and a disc stands.
bool startsDrag(const ControlState& s, int16_t Button, int16_t field) {
  if (Button != kLeftButton || s.gesture.rotatingBoard || !s.userMoveEnabled) return false;
  if (s.moves.moveCount < 2 || field <= 0 || field > kFields) return false;
  const auto slot = static_cast<size_t>(field - 1);
  if (s.fieldCode[slot] == kEmptyField || !board::findMoveBySource(s.moves, field)) return false;
  const int16_t disc = s.scene.fieldPiece[slot];
  return disc >= 0 && disc < scene::kPlacedDiscs;
}

// Marks the destinations of every listed move from field, in list order, and records each of
// them as a legal target with the index of the last move that ends there. Only fifteen markers
// exist; destinations beyond them are legal all the same.
void markDestinations(ControlState& s, int16_t field) {
  GestureState& g = s.gesture;
  std::fill_n(g.legalTarget.begin(), kFields, false);
  std::fill_n(g.targetMove.begin(), kFields, int16_t{-1});
  int marker = 1;
  for (int i = 0; i < listedMoves(s); ++i) {
    const std::string& move = s.moves.moveList[static_cast<size_t>(i)];
    if (firstField(move) != field) continue;
    const int16_t dest = lastField(move);
    if (marker <= kLastListMarker) {
      scene::placeMarker(s.models.markerMesh[static_cast<size_t>(marker)], dest,
                         scene::kMoveMarkerHeight);
      ++marker;
    }
    const int32_t slot = scene::fieldSlot(dest);
    if (slot < 0) continue;  // a destination that is no field can never be under the piece
    g.legalTarget[static_cast<size_t>(slot)] = true;
    g.targetMove[static_cast<size_t>(slot)] = static_cast<int16_t>(i);
  }
}

void startDrag(ControlState& s, int16_t field, float boardX, float boardY) {
  GestureState& g = s.gesture;
  const auto slot = static_cast<size_t>(field - 1);
  g.draggingPiece = true;
  g.dragPiece = s.scene.fieldPiece[slot];
  g.dragKingTop = s.scene.fieldKingTop[slot];
  g.dragShadow = s.scene.fieldShadow[slot];
  // The piece keeps its place under the pointer instead of jumping to it.
  const cls3DobjectInfo& lower = s.scene.pieceObject[static_cast<size_t>(g.dragPiece)];
  g.grabOffsetX = boardX - lower.posX();
  g.grabOffsetY = boardY - lower.posZ();
  g.dragSource = static_cast<int16_t>(field - 1);
  markDestinations(s, field);
}

// Field under the carried piece (not under the pointer) for a pointer at (boardX, boardY).
int16_t fieldUnderPiece(const GestureState& g, float boardX, float boardY, float& px, float& py) {
  px = boardX - g.grabOffsetX;
  py = boardY - g.grabOffsetY;
  int16_t f = -1;
  boardToField(px, py, f);
  return f;
}

bool isLegalTarget(const GestureState& g, int16_t f) {
  return f > 0 && f <= kFields && g.legalTarget[static_cast<size_t>(f - 1)];
}

// One step of the drag: the piece follows the pointer, lifted, and the hover marker shows a
// legal target under it. Gives the field under the piece.
int16_t carryPiece(ControlState& s, float boardX, float boardY) {
  GestureState& g = s.gesture;
  float px = 0, py = 0;
  const int16_t f = fieldUnderPiece(g, boardX, boardY, px, py);
  clsMesh& hover = s.models.markerMesh[kHoverMarker];
  if (isLegalTarget(g, f)) {
    scene::placeMarker(hover, f, scene::kFieldMarkerHeight);
  } else {
    hover.visible = false;
  }
  scene::translateIf(scene::discAt(s, g.dragPiece), px, kDragHeight, py);
  // The shadow is shifted as for one disc more than the piece has, as if lifted by one disc.
  int level = 2;
  if (g.dragKingTop != -1) {
    level = 3;
    scene::translateIf(scene::discAt(s, g.dragKingTop), px, kDragTopHeight, py);
  }
  scene::translateIf(scene::shadowAt(s, g.dragShadow), scene::shadowX(px, level),
                     scene::kShadowHeight, scene::shadowY(py, level));
  s.redraw();
  return f;
}

// The drop of a carried piece on f, a legal target: the code moves from the source to f and the
// host learns which move was made.
void acceptDrop(ControlState& s, int16_t f) {
  GestureState& g = s.gesture;
  g.draggingPiece = false;
  const auto target = static_cast<size_t>(f - 1);
  const int32_t source = g.dragSource;
  if (source >= 0 && source < kFields && static_cast<size_t>(source) != target) {
    s.fieldCode[target] = s.fieldCode[static_cast<size_t>(source)];
    s.fieldCode[static_cast<size_t>(source)] = kEmptyField;
  }
  // Both arguments are the control's own slots, not copies.
  int16_t& moveIndex = g.targetMove[target];
  if (s.events && moveIndex >= 0 && moveIndex <= board::kMaxMoves) {
    s.events->moveDone(moveIndex, s.moves.moveList[static_cast<size_t>(moveIndex)]);
  }
}

}  // namespace

void hideDragMarkers(ControlState& s) {
  for (int i = kHoverMarker; i <= kLastListMarker; ++i)
    s.models.markerMesh[static_cast<size_t>(i)].visible = false;
}

void pic_MouseDown(ControlState& s, int16_t Button, int16_t Shift, float X, float Y) {
  GestureState& g = s.gesture;
  if (Button == kRightButton && s.userRotationEnabled && !g.draggingPiece) {
    g.rotatingBoard = true;
    s.pic.MousePointer = kRotatePointer;
  }

  float boardX = 0, boardY = 0;
  int16_t field = 0;
  screenToBoard(s, X, Y, boardX, boardY, field);

  if (startsDrag(s, Button, field)) {
    startDrag(s, field, boardX, boardY);
    // Lifts the piece at once, unless the time gate is closed; then the first frame shows the
    // markers with the piece still at rest.
    pic_MouseMove(s, Button, Shift, X, Y);
    s.redraw();
  }

  g.lastMouseX = X;
  g.lastMouseY = Y;
  s.raiseMouseDown(Button, Shift, boardX, boardY, field);
}

void pic_MouseMove(ControlState& s, int16_t Button, int16_t Shift, float X, float Y) {
  // The gate: a move within 15 ms of the end of the last frame is lost whole. Rotation works
  // from differences and the drag from the absolute position, so the next handled move catches
  // up. Widened so that any value a host stores in timerAfterLastRender is safe to add to.
  if (static_cast<int64_t>(s.platform.timeGetTime()) <=
      static_cast<int64_t>(s.timerAfterLastRender) + kMoveGateMs) {
    return;
  }

  GestureState& g = s.gesture;
  if (g.rotatingBoard) {
    // A sweep through the lower half of the picture turns the view the other way round. The
    // angles have no limits; only a position that is no number (which no window system sends)
    // leaves them as they are, so that the view is never lost.
    const int sign = s.pic.Height / 2 < Y ? -1 : 1;
    const auto azimuth =
        static_cast<float>(s.rotationVerticalAxis + ((X - g.lastMouseX) * sign) / kTwipsPerRadian);
    if (std::isfinite(azimuth)) {
      s.rotationVerticalAxis = azimuth;
      g.lastMouseX = X;
    }
    const auto elevation =
        static_cast<float>(s.rotationHorizontalAxis + (Y - g.lastMouseY) / kTwipsPerRadian);
    if (std::isfinite(elevation)) {
      s.rotationHorizontalAxis = elevation;
      g.lastMouseY = Y;
    }
    s.redraw();
  }

  // During a rotation this reads the camera just rendered.
  float boardX = 0, boardY = 0;
  int16_t field = 0;
  screenToBoard(s, X, Y, boardX, boardY, field);

  if (g.draggingPiece) field = carryPiece(s, boardX, boardY);

  s.raiseMouseMove(Button, Shift, boardX, boardY, field);
}

void pic_MouseUp(ControlState& s, int16_t Button, int16_t Shift, float X, float Y) {
  GestureState& g = s.gesture;
  if (g.rotatingBoard) {
    s.pic.MousePointer = kDefaultPointer;
    s.raiseAfterUserRotation();  // rotatingBoard is still set during the event
  }

  float boardX = 0, boardY = 0;
  int16_t field = 0;
  screenToBoard(s, X, Y, boardX, boardY, field);

  if (g.draggingPiece) {
    float px = 0, py = 0;
    field = fieldUnderPiece(g, boardX, boardY, px, py);
    if (isLegalTarget(g, field)) acceptDrop(s, field);
    // Accepted or refused, the scene is placed afresh from fieldCode with no animation: a refused
    // piece is back on its source in this same frame, and whatever the host changed in moveDone
    // is part of it.
    hideDragMarkers(s);
    scene::drawBoard(s);
    s.redraw();
  }

  g.rotatingBoard = false;
  g.draggingPiece = false;
  s.raiseMouseUp(Button, Shift, boardX, boardY, field);
}

}  // namespace ostrel::interaction
