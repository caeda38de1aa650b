#pragma once
// Every member of the control in one plain record. The subsystem folders work on it through free
// functions; ctlBoard is the thin facade that a host sees.

#include <array>
#include <cstdint>
#include <functional>
#include <string>

#include "ostrel/BoardRecords.h"
#include "ostrel/Platform.h"
#include "state/Matrix.h"

namespace ostrel {

struct ControlState {
  ControlState(Platform& p, std::function<void()> redrawFrame);

  Platform& platform;
  ctlBoardEvents* events = nullptr;  // the host's listener; nullptr: events go nowhere
  // Draws one whole frame. The control hands it in, so that the scene and the gestures can show
  // what they changed without knowing the graphics.
  std::function<void()> redraw;

  // The position: a FieldCode per slot; slot k holds field k + 1, slot 50 belongs to no field.
  std::array<int16_t, kFieldSlots> fieldCode{};
  MoveList moves;
  Scene scene;
  ModelSet models;
  GestureState gesture;

  // View and behaviour, as the host sets them.
  float rotationHorizontalAxis = 0;  // camera elevation, radians
  float rotationVerticalAxis = 0;    // camera azimuth, radians
  float viewingDistance = 0;         // camera distance from the origin
  int32_t ambientBackColor = 0;      // clear colour, 0x00RRGGBB
  bool userRotationEnabled = false;
  bool userMoveEnabled = false;
  bool highlightLastMove = false;
  int32_t timerAfterLastRender = 0;  // clock at the end of the last complete frame, ms
  std::string alternativeBoard, alternativePieceWhite, alternativePieceBlack;

  // Quality from init.
  bool qTrans = false;
  int16_t qAA = 0;
  int16_t qShadow = 0;
  int16_t anisotropyLevel = 0;  // 0, 2 or 32

  // A device Reset owed after a resize.
  bool resizePending = false;
  float resizeTime = 0;  // Timer reading at the last resize

  // Child objects and the control's own back colour (0x00BBGGRR).
  PictureBox pic;
  Label label1, lblStatus, lblProgress;
  TimerControl timer1;
  int32_t backColor = 0;

  // Transforms of the last frame; picking reads worldMatrix from here.
  D3DMATRIX worldMatrix, viewMatrix, projectionMatrix;

  // Events, raised only when the host listens.
  void raiseAfterDraw(float frameTime);
  void raiseMouseDown(int16_t button, int16_t shift, float boardX, float boardY, int16_t field);
  void raiseMouseMove(int16_t button, int16_t shift, float boardX, float boardY, int16_t field);
  void raiseMouseUp(int16_t button, int16_t shift, float boardX, float boardY, int16_t field);
  void raiseAfterUserRotation();
  void raiseKeyDown(int16_t keyCode, int16_t shift);
};

// Full length of the status frame's fill in twips: two screen pixels less than the frame.
float progressFull(const ControlState& s);

}  // namespace ostrel
