// The facade a host sees: each entry stores or returns a member, or hands over to the subsystem
// that owns the behaviour.

#include "ostrel/ctlBoard.h"

#include <algorithm>

#include "board/MoveList.h"
#include "control/ControlAccess.h"
#include "control/StatusFrame.h"
#include "graphics/Frame.h"
#include "graphics/GraphicsContext.h"
#include "graphics/ModelSet.h"
#include "graphics/Resize.h"
#include "graphics/Startup.h"
#include "interaction/Gestures.h"
#include "interaction/Keyboard.h"
#include "ostrel/notation.h"
#include "output/ModPrintScreen.h"
#include "scene/Animation.h"
#include "scene/Markers.h"
#include "scene/Playback.h"
#include "scene/Population.h"
#include "state/ControlState.h"

namespace ostrel {

// The scene and the gestures draw through this callback; only the control knows the graphics.
ctlBoard::ctlBoard(Platform& platform)
    : s_(std::make_unique<ControlState>(platform, [this] { graphics::render(*s_); })) {
  platform.attachControl(&s_->backColor, &s_->label1, &s_->lblStatus, &s_->lblProgress);
}

ctlBoard::~ctlBoard() {
  graphics::releaseDevice();
  s_->platform.detachControl();
}

void ctlBoard::setEventSink(ctlBoardEvents* sink) {
  s_->events = sink;
}

int32_t ctlBoard::timerAfterLastRender() const {
  return s_->timerAfterLastRender;
}
void ctlBoard::timerAfterLastRender(int32_t value) {
  s_->timerAfterLastRender = value;
}
bool ctlBoard::highlightLastMove() const {
  return s_->highlightLastMove;
}
void ctlBoard::highlightLastMove(bool value) {
  s_->highlightLastMove = value;
}
void ctlBoard::setHighLightField(int16_t hl) {
  scene::setHighLightField(*s_, hl);
}

std::string ctlBoard::modelDir() const {
  const std::string& base = graphics::graphicsContext().baseDirectory;
  return base.empty() ? std::string() : base + "/models";
}

std::string ctlBoard::alternativeBoard() const {
  return s_->alternativeBoard;
}
std::string ctlBoard::alternativePieceWhite() const {
  return s_->alternativePieceWhite;
}
std::string ctlBoard::alternativePieceBlack() const {
  return s_->alternativePieceBlack;
}

void ctlBoard::field(int16_t index, int16_t value) {
  if (index >= 0 && index < kFieldSlots) s_->fieldCode[static_cast<size_t>(index)] = value;
}
int16_t ctlBoard::field(int16_t index) const {
  return index >= 0 && index < kFieldSlots ? s_->fieldCode[static_cast<size_t>(index)] : 0;
}

bool ctlBoard::userRotationEnabled() const {
  return s_->userRotationEnabled;
}
void ctlBoard::userRotationEnabled(bool value) {
  s_->userRotationEnabled = value;
}
bool ctlBoard::userMoveEnabled() const {
  return s_->userMoveEnabled;
}
void ctlBoard::userMoveEnabled(bool value) {
  s_->userMoveEnabled = value;
}

int32_t ctlBoard::ambientBackColor() const {
  return s_->ambientBackColor;
}
void ctlBoard::ambientBackColor(int32_t col) {
  s_->ambientBackColor = col;
  s_->backColor = swapRedBlue(col);
}

void ctlBoard::rotationVerticalAxis(float value) {
  s_->rotationVerticalAxis = value;
}
float ctlBoard::rotationVerticalAxis() const {
  return s_->rotationVerticalAxis;
}
void ctlBoard::rotationHorizontalAxis(float value) {
  s_->rotationHorizontalAxis = value;
}
float ctlBoard::rotationHorizontalAxis() const {
  return s_->rotationHorizontalAxis;
}
void ctlBoard::viewingDistance(float value) {
  s_->viewingDistance = std::clamp(value, 0.1f, 800.0f);
}
float ctlBoard::viewingDistance() const {
  return s_->viewingDistance;
}

void ctlBoard::clearMoveList() {
  board::clearMoves(s_->moves);
}
void ctlBoard::addMoveList(const std::string& strMove) {
  board::addMove(s_->moves, strMove);
}

void ctlBoard::showProgressBar(const Variant& status, const Variant& visible,
                               const Variant& percentage) {
  control::showProgressBar(*s_, status, visible, percentage);
}
void ctlBoard::setInitString(const std::string& v) {
  s_->lblStatus.Caption = v;
}

void ctlBoard::drawBoard() {
  scene::drawBoard(*s_);
}

D3DVECTOR ctlBoard::vec3(float x, float y, float z) const {
  return D3DVECTOR{x, y, z};
}

void ctlBoard::setHLfields(const std::string& fields) {
  scene::setHLfields(*s_, fields);
}

const PictureBox& ctlBoard::pic() const {
  return s_->pic;
}
const Label& ctlBoard::label1() const {
  return s_->label1;
}
const Label& ctlBoard::lblStatus() const {
  return s_->lblStatus;
}
const Label& ctlBoard::lblProgress() const {
  return s_->lblProgress;
}
const TimerControl& ctlBoard::Timer1() const {
  return s_->timer1;
}
int32_t ctlBoard::BackColor() const {
  return s_->backColor;
}

const Scene& ctlBoard::scene() const {
  return s_->scene;
}
const ModelSet& ctlBoard::models() const {
  return s_->models;
}
const MoveList& ctlBoard::moves() const {
  return s_->moves;
}
const GestureState& ctlBoard::gesture() const {
  return s_->gesture;
}
bool ctlBoard::resizePending() const {
  return s_->resizePending;
}
float ctlBoard::resizeTime() const {
  return s_->resizeTime;
}
int16_t ctlBoard::anisotropyLevel() const {
  return s_->anisotropyLevel;
}

// Entries of the other subsystems follow, each one body that hands over.

void ctlBoard::render() {
  graphics::render(*s_);
}
void ctlBoard::SetupLights() {
  graphics::setupLights(*s_);
}
void ctlBoard::Paint() {
  graphics::render(*s_);
}

void ctlBoard::alternativeBoard(const std::string& s) {
  graphics::setAlternativeBoard(*s_, s);
}
void ctlBoard::alternativePieceWhite(const std::string& s) {
  graphics::setAlternativePieceWhite(*s_, s);
}
void ctlBoard::alternativePieceBlack(const std::string& s) {
  graphics::setAlternativePieceBlack(*s_, s);
}
std::optional<bool> ctlBoard::init(bool qTrans, int32_t qAA, int32_t qShadow,
                                   const std::string& ap) {
  return graphics::init(*s_, qTrans, qAA, qShadow, ap);
}
void ctlBoard::resize() {
  graphics::resize(*s_);
}
// A disabled timer delivers no ticks.
void ctlBoard::Timer1_Timer() {
  if (s_->timer1.Enabled) graphics::timerTick(*s_);
}

void ctlBoard::showMove(const std::string& strMove) {
  scene::showMove(*s_, strMove);
}
void ctlBoard::initAnimation() {
  scene::initAnimation(*s_);
}
void ctlBoard::animation(double dblTime) {
  scene::animation(*s_, dblTime);
}
void ctlBoard::stopAnimation() {
  scene::stopAnimation(*s_);
}
void ctlBoard::pic_MouseDown(int16_t Button, int16_t Shift, float X, float Y) {
  interaction::pic_MouseDown(*s_, Button, Shift, X, Y);
}
void ctlBoard::pic_MouseMove(int16_t Button, int16_t Shift, float X, float Y) {
  interaction::pic_MouseMove(*s_, Button, Shift, X, Y);
}
void ctlBoard::pic_MouseUp(int16_t Button, int16_t Shift, float X, float Y) {
  interaction::pic_MouseUp(*s_, Button, Shift, X, Y);
}
void ctlBoard::pic_KeyDown(int16_t KeyCode, int16_t Shift) {
  interaction::pic_KeyDown(*s_, KeyCode, Shift);
}

// A fresh frame, then what the window shows as a metafile; a dump that fails says nothing.
void ctlBoard::screenDump(const std::string& filename) {
  render();
  output::HENHMETAFILE mf = ModPrintScreen::writeWindowMetafile(&s_->platform, filename);
  if (mf) output::DeleteEnhMetaFile(mf);
}

ControlState& controlState(ctlBoard& board) {
  return *board.s_;
}

}  // namespace ostrel
