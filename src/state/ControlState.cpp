#include "state/ControlState.h"

#include <utility>

namespace ostrel {

namespace {

// Design-time layout of the child objects, in twips.
void layOutChildren(ControlState& s) {
  s.pic.Width = 6315;
  s.pic.Height = 4095;

  s.label1.Left = 120;
  s.label1.Top = 120;
  s.label1.Width = 5775;
  s.label1.Height = 375;
  s.label1.BackColor = static_cast<int32_t>(0x80000005u);  // the window background colour

  s.lblStatus.Parent = &s.label1;
  s.lblStatus.Left = 60;
  s.lblStatus.Top = 0;
  s.lblStatus.Width = 2310;
  s.lblStatus.Height = 285;
  s.lblStatus.ForeColor = 0x008080FF;
  s.lblStatus.FontName = "MS Sans Serif";
  s.lblStatus.FontSize = 12;
  s.lblStatus.FontWeight = 700;
  s.lblStatus.Caption = "Initialising Quorvan ";

  s.lblProgress.Parent = &s.label1;
  s.lblProgress.Left = 0;
  s.lblProgress.Top = 0;
  s.lblProgress.Width = 2535;
  s.lblProgress.Height = 315;
  s.lblProgress.Visible = false;
  s.lblProgress.BackColor = 0x00FF0000;

  s.timer1.Interval = 100;
  s.timer1.Enabled = false;
}

}  // namespace

ControlState::ControlState(Platform& p, std::function<void()> redrawFrame)
    : platform(p), redraw(std::move(redrawFrame)) {
  // 3.14159 / 2 and -3.14159 are worked in double and stored as Singles.
  rotationHorizontalAxis = static_cast<float>(3.14159 / 2);
  rotationVerticalAxis = static_cast<float>(-3.14159);
  viewingDistance = 15.0f;
  ambientBackColor = 0x404040;
  backColor = 0x404040;
  userRotationEnabled = true;
  userMoveEnabled = true;
  layOutChildren(*this);
}

void ControlState::raiseAfterDraw(float frameTime) {
  if (events) events->afterDraw(frameTime);
}

void ControlState::raiseMouseDown(int16_t button, int16_t shift, float boardX, float boardY,
                                  int16_t field) {
  if (events) events->mouseDown(button, shift, boardX, boardY, field);
}

void ControlState::raiseMouseMove(int16_t button, int16_t shift, float boardX, float boardY,
                                  int16_t field) {
  if (events) events->mouseMove(button, shift, boardX, boardY, field);
}

void ControlState::raiseMouseUp(int16_t button, int16_t shift, float boardX, float boardY,
                                int16_t field) {
  if (events) events->mouseUp(button, shift, boardX, boardY, field);
}

void ControlState::raiseAfterUserRotation() {
  if (events) events->afterUserRotation();
}

void ControlState::raiseKeyDown(int16_t keyCode, int16_t shift) {
  if (events) events->KeyDown(keyCode, shift);
}

float progressFull(const ControlState& s) {
  return s.label1.Width - 2 * s.platform.TwipsPerPixelX();
}

}  // namespace ostrel
