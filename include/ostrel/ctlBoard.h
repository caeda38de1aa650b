#pragma once
// The 3D draughts board control: the one object a host sees, its child objects, the records it
// keeps of the scene, and the events it raises.

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "ostrel/BoardRecords.h"
#include "ostrel/Platform.h"
#include "ostrel/Variant.h"

namespace ostrel {

struct ControlState;

class ctlBoard {
 public:
  explicit ctlBoard(Platform& platform);
  ~ctlBoard();
  ctlBoard(const ctlBoard&) = delete;
  ctlBoard& operator=(const ctlBoard&) = delete;
  void setEventSink(ctlBoardEvents* sink);  // nullptr: events go nowhere

  // The 42 entries in slot order; a property's getter and setter share its name.

  // Clock (timeGetTime, ms) at the end of the last complete frame; mouse moves within 15 ms of it
  // are dropped.
  int32_t timerAfterLastRender() const;      // 1
  void timerAfterLastRender(int32_t value);  // 2
  // Whether setHighLightField marks the last move.
  bool highlightLastMove() const;      // 3
  void highlightLastMove(bool value);  // 4
  // Image file (in the model folder) for the board; reloads the board when it changes.
  void alternativeBoard(const std::string& s);  // 5
  // Marks field hl as the last move when hl > 0 and highlightLastMove is on; hides the mark
  // otherwise.
  void setHighLightField(int16_t hl);  // 6
  // Image files for the white and the black pieces; reload the pieces when they change.
  void alternativePieceWhite(const std::string& s);  // 7
  void alternativePieceBlack(const std::string& s);  // 8
  // Folder the models are read from: the base directory + "/models", empty before init.
  std::string modelDir() const;               // 9
  std::string alternativeBoard() const;       // 10
  std::string alternativePieceWhite() const;  // 11
  std::string alternativePieceBlack() const;  // 12
  // Writes the code (FieldCode) of field slot index (0..50); drawBoard shows it.
  void field(int16_t index, int16_t value);  // 13
  // Whether the right button turns the view.
  bool userRotationEnabled() const;      // 14
  void userRotationEnabled(bool value);  // 15
  // Whether the left button may carry a piece along a listed move.
  bool userMoveEnabled() const;      // 16
  void userMoveEnabled(bool value);  // 17
  // Background colour of the frame, 0x00RRGGBB.
  int32_t ambientBackColor() const;    // 18
  void ambientBackColor(int32_t col);  // 19
  // Reads the code of field slot index; 0 outside 0..50.
  int16_t field(int16_t index) const;  // 20
  // The camera: azimuth and elevation in radians, and distance (limited to 0.1..800).
  void rotationVerticalAxis(float value);    // 21
  float rotationVerticalAxis() const;        // 22
  void rotationHorizontalAxis(float value);  // 23
  float rotationHorizontalAxis() const;      // 24
  void viewingDistance(float value);         // 25
  float viewingDistance() const;             // 26
  // The moves a user may make: emptied, then filled one move string at a time.
  void clearMoveList();                          // 27
  void addMoveList(const std::string& strMove);  // 28
  // Starts the graphics: log, device, models, first frame. true on success, false after a
  // reported failure, no value when no device could be had. ap: base directory (empty: the
  // application's folder).
  std::optional<bool> init(bool qTrans, int32_t qAA, int32_t qShadow,
                           const std::string& ap = {});  // 29
  // The status frame over the picture: text, shown or hidden, fill in percent.
  void showProgressBar(const Variant& status, const Variant& visible,
                       const Variant& percentage);  // 30
  // The falling-pieces build-up of the current position: prepare, give up, draw at a time.
  void initAnimation();            // 31
  void stopAnimation();            // 32
  void animation(double dblTime);  // 33
  // Places discs, shadows and markers from the field codes; draws nothing.
  void drawBoard();  // 34
  // Draws one frame and raises afterDraw.
  void render();  // 35
  // Text of the status frame.
  void setInitString(const std::string& v);  // 36
  // Plays a move string: the piece lifts, travels its route and lands; returns when it has.
  void showMove(const std::string& strMove);  // 37
  // A vector of three values.
  D3DVECTOR vec3(float x, float y, float z) const;  // 38
  // Material, light and filters of the frame.
  void SetupLights();  // 39
  // Follows a change of the control's size.
  void resize();  // 40
  // Draws a frame and saves what the window shows as an enhanced metafile.
  void screenDump(const std::string& filename);  // 41
  // Marks the fields of a "|" list, up to 15.
  void setHLfields(const std::string& fields);  // 42

  // Incoming platform events, on the control's thread.
  void Paint();
  void Timer1_Timer();
  void pic_MouseDown(int16_t Button, int16_t Shift, float X, float Y);  // X, Y in twips
  void pic_MouseMove(int16_t Button, int16_t Shift, float X, float Y);
  void pic_MouseUp(int16_t Button, int16_t Shift, float X, float Y);
  void pic_KeyDown(int16_t KeyCode, int16_t Shift);

  // Child objects.
  const PictureBox& pic() const;
  const Label& label1() const;
  const Label& lblStatus() const;
  const Label& lblProgress() const;
  const TimerControl& Timer1() const;
  int32_t BackColor() const;

  // Read-only inspection of the control's members.
  const Scene& scene() const;
  const ModelSet& models() const;
  const MoveList& moves() const;
  const GestureState& gesture() const;
  bool resizePending() const;
  float resizeTime() const;
  int16_t anisotropyLevel() const;

 private:
  friend ControlState& controlState(ctlBoard& board);
  std::unique_ptr<ControlState> s_;
};

}  // namespace ostrel
