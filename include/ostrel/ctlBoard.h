#pragma once
// The 3D draughts board control: the one object a host sees, its child objects, the records it
// keeps of the scene, and the events it raises.

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ostrel/DeviceError.h"
#include "ostrel/Platform.h"
#include "ostrel/Variant.h"

namespace ostrel {

struct D3DVECTOR {
  float x = 0, y = 0, z = 0;
};

struct D3DCOLORVALUE {
  float r = 0, g = 0, b = 0, a = 0;
};

struct D3DMATERIAL8 {
  D3DCOLORVALUE Diffuse, Ambient, Specular, Emissive;
  float Power = 0;
};

// Child objects of the control, sizes in twips, colours 0x00BBGGRR.
struct PictureBox {
  float Width = 0, Height = 0;
  bool Visible = true;
  int16_t MousePointer = 0;
};

struct Label {
  float Left = 0, Top = 0, Width = 0, Height = 0;
  bool Visible = true;
  std::string Caption;
  int32_t BackColor = 0, ForeColor = 0;
  std::string FontName;
  float FontSize = 0;
  int16_t FontWeight = 400;
  const Label* Parent = nullptr;  // the frame that holds this label; nullptr for the frame itself
};

struct TimerControl {
  int32_t Interval = 100;
  bool Enabled = false;
};

// Position record of one disc or shadow; no geometry of its own.
class cls3DobjectInfo {
 public:
  bool visible = false;
  float posX() const { return posX_; }
  float posY() const { return posY_; }
  float posZ() const { return posZ_; }
  // Absolute: stores x, height, y.
  void Translate(float x, float y, float z) {
    posX_ = x;
    posY_ = y;
    posZ_ = z;
  }

 private:
  float posX_ = 0, posY_ = 0, posZ_ = 0;
};

namespace graphics {
class Mesh;
class Texture;
}  // namespace graphics

// One renderable model: a .x file, its materials and textures, and one position.
class clsMesh {
 public:
  bool visible = false;  // gate of render; init sets it only when the load completed

  float posX() const { return posX_; }
  float posY() const { return posY_; }
  float posZ() const { return posZ_; }
  void posX(float value) { posX_ = value; }
  void posY(float value) { posY_ = value; }
  void posZ(float value) { posZ_ = value; }
  int32_t materialCount() const { return materialCount_; }

  // Loads baseDirectory + separator + filename. An empty diffuse means none was passed; a given
  // one sets the diffuse alpha of every material.
  void init(const Variant& filename, const Variant& alternativeTexture,
            const Variant& diffuse = Variant());
  void reScale(float factor);
  // Bakes a scale and a move into the vertices (only for the position-normal-texture format).
  void Translate(float scaleFactor, float x, float y, float z);
  void render();

  // Inspection.
  const D3DMATERIAL8& material(int32_t i) const { return materials_.at(static_cast<size_t>(i)); }
  bool hasTexture(int32_t i) const;
  bool hasMesh() const { return mesh_ != nullptr; }
  const graphics::Mesh* mesh() const { return mesh_.get(); }

 private:
  std::shared_ptr<graphics::Mesh> mesh_;
  std::vector<D3DMATERIAL8> materials_;
  std::vector<std::shared_ptr<graphics::Texture>> textures_;
  int32_t materialCount_ = 0;
  float posX_ = 0, posY_ = 0, posZ_ = 0;
};

// Where every disc and shadow stands, and which disc stands on which field (slot = field - 1).
struct Scene {
  std::array<cls3DobjectInfo, 49> pieceObject;   // 0..23 white, 24..47 black, 48 never drawn
  std::array<cls3DobjectInfo, 41> shadowObject;  // 0..39 used, 40 never drawn
  std::array<int16_t, 51> fieldPiece{};
  std::array<int16_t, 51> fieldKingTop{};
  std::array<int16_t, 51> fieldShadow{};
  std::array<int32_t, 52> shuffleOrder{};  // 1..50: the falling order of a build-up
  std::array<int16_t, 51> savedFieldPiece{};
  std::array<int16_t, 51> savedFieldKingTop{};
};

struct ModelSet {
  clsMesh boardMesh;
  std::array<clsMesh, 18> markerMesh;  // 0 hover, 1..15 fields, 16 last move, 17 unused
  std::array<clsMesh, 3> pieceMesh;    // 0 white, 1 black, 2 never loaded
  clsMesh shadowMesh;
};

struct MoveList {
  std::array<std::string, 257> moveList;  // normal forms; at most 256 are held
  int16_t moveCount = 0;
};

struct GestureState {
  bool rotatingBoard = false;
  bool draggingPiece = false;
  float lastMouseX = 0, lastMouseY = 0;    // twips, at the last press or rotation step
  float grabOffsetX = 0, grabOffsetY = 0;  // board units: press point minus the lifted disc
  int16_t dragPiece = 0, dragKingTop = 0, dragShadow = 0, dragSource = 0;
  std::array<bool, 51> legalTarget{};
  std::array<int16_t, 51> targetMove{};
};

// The host's listener. Every member has an empty default body; arguments go by reference.
class ctlBoardEvents {
 public:
  virtual ~ctlBoardEvents() = default;
  virtual void afterDraw(float& frameTime) { (void)frameTime; }
  virtual void debugMessage(std::string& s) { (void)s; }
  virtual void mouseDown(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                         int16_t& field) {
    (void)button, (void)Shift, (void)boardX, (void)boardY, (void)field;
  }
  virtual void mouseUp(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                       int16_t& field) {
    (void)button, (void)Shift, (void)boardX, (void)boardY, (void)field;
  }
  virtual void mouseMove(int16_t& button, int16_t& Shift, float& boardX, float& boardY,
                         int16_t& field) {
    (void)button, (void)Shift, (void)boardX, (void)boardY, (void)field;
  }
  virtual void moveDone(int16_t& moveIndex, std::string& move) { (void)moveIndex, (void)move; }
  virtual void afterUserRotation() {}
  virtual void KeyDown(int16_t& KeyCode, int16_t& Shift) { (void)KeyCode, (void)Shift; }
};

struct ControlState;

// Device failures. The entries that draw have no trap of their own: render, Paint, resize,
// Timer1_Timer (the deferred Reset), SetupLights, showMove, animation, screenDump, the mouse and
// key handlers, and the three image setters while they reload, throw ostrel::DeviceError when a
// device operation fails under them. The control stays usable: a later call draws again once the
// device is back. init traps its own failures and answers by its result.
class ctlBoard {
 public:
  explicit ctlBoard(Platform& platform);
  ~ctlBoard();
  ctlBoard(const ctlBoard&) = delete;
  ctlBoard& operator=(const ctlBoard&) = delete;
  void setEventSink(ctlBoardEvents* sink);  // nullptr: events go nowhere

  int32_t timerAfterLastRender() const;              // 1
  void timerAfterLastRender(int32_t value);          // 2
  bool highlightLastMove() const;                    // 3
  void highlightLastMove(bool value);                // 4
  void alternativeBoard(const std::string& s);       // 5
  void setHighLightField(int16_t hl);                // 6
  void alternativePieceWhite(const std::string& s);  // 7
  void alternativePieceBlack(const std::string& s);  // 8
  std::string modelDir() const;                      // 9
  std::string alternativeBoard() const;              // 10
  std::string alternativePieceWhite() const;         // 11
  std::string alternativePieceBlack() const;         // 12
  void field(int16_t index, int16_t value);          // 13
  bool userRotationEnabled() const;                  // 14
  void userRotationEnabled(bool value);              // 15
  bool userMoveEnabled() const;                      // 16
  void userMoveEnabled(bool value);                  // 17
  int32_t ambientBackColor() const;                  // 18
  void ambientBackColor(int32_t col);                // 19
  int16_t field(int16_t index) const;                // 20
  void rotationVerticalAxis(float value);            // 21
  float rotationVerticalAxis() const;                // 22
  void rotationHorizontalAxis(float value);          // 23
  float rotationHorizontalAxis() const;              // 24
  void viewingDistance(float value);                 // 25
  float viewingDistance() const;                     // 26
  void clearMoveList();                              // 27
  void addMoveList(const std::string& strMove);      // 28
  std::optional<bool> init(bool qTrans, int32_t qAA, int32_t qShadow,
                           const std::string& ap = {});  // 29
  void showProgressBar(const Variant& status, const Variant& visible,
                       const Variant& percentage);  // 30
  void initAnimation();                             // 31
  void stopAnimation();                             // 32
  void animation(double dblTime);                   // 33
  void drawBoard();                                 // 34
  void render();                                    // 35
  void setInitString(const std::string& v);         // 36
  void showMove(const std::string& strMove);        // 37
  D3DVECTOR vec3(float x, float y, float z) const;  // 38
  void SetupLights();                               // 39
  void resize();                                    // 40
  void screenDump(const std::string& filename);     // 41
  void setHLfields(const std::string& fields);      // 42

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
