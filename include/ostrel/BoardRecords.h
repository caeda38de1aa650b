#pragma once
// The plain records the control keeps and shows: field codes, vector and colour values, the child
// objects, the scene, the models, the move list, the gesture state, and the host's listener. Every
// part of the library may include this; only the facade ctlBoard.h adds the control itself.

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "ostrel/Variant.h"

namespace ostrel {

// Field numbers run 1..50. Per-field arrays have one slot more: slot k holds field k + 1, and
// slot 50 belongs to no field.
inline constexpr int kFields = 50;
inline constexpr int kFieldSlots = kFields + 1;

// What a field holds, as field() reads and writes it.
enum FieldCode : int16_t {
  kEmptyField = 0,
  kWhiteMan = 2,
  kBlackMan = 3,
  kWhiteKing = 4,
  kBlackKing = 5,
};

// A point or a direction; positions are written x, height, y.
struct D3DVECTOR {
  float x = 0, y = 0, z = 0;
};

// A colour with alpha, each part 0..1.
struct D3DCOLORVALUE {
  float r = 0, g = 0, b = 0, a = 0;
};

// How a surface answers the light.
struct D3DMATERIAL8 {
  D3DCOLORVALUE Diffuse, Ambient, Specular, Emissive;
  float Power = 0;
};

// Child objects of the control, sizes in twips, colours 0x00BBGGRR.

// The picture area the frames are drawn into.
struct PictureBox {
  float Width = 0, Height = 0;
  bool Visible = true;
  int16_t MousePointer = 0;
};

// A label of the status frame over the picture.
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

// The repeating timer that runs the deferred device reset.
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
// -1 in a per-field array means none.
struct Scene {
  std::array<cls3DobjectInfo, 49> pieceObject;         // 0..23 white, 24..47 black, 48 never drawn
  std::array<cls3DobjectInfo, 41> shadowObject;        // 0..39 used, 40 never drawn
  std::array<int16_t, kFieldSlots> fieldPiece{};       // disc (lower one of a king) on each field
  std::array<int16_t, kFieldSlots> fieldKingTop{};     // upper disc of a king on each field
  std::array<int16_t, kFieldSlots> fieldShadow{};      // shadow under each field's piece
  std::array<int32_t, kFields + 2> shuffleOrder{};     // 1..50: the falling order of a build-up
  std::array<int16_t, kFieldSlots> savedFieldPiece{};  // fieldPiece as a build-up began
  std::array<int16_t, kFieldSlots> savedFieldKingTop{};  // fieldKingTop as a build-up began
};

// Slots of markerMesh: the hover marker under a dragged piece, the slots that a field list or a
// drag's destinations fill, the only move's marker, the last move's.
inline constexpr int kHoverMarker = 0;
inline constexpr int kFirstListMarker = 1;
inline constexpr int kLastListMarker = 15;
inline constexpr int kOnlyMoveMarker = 1;
inline constexpr int kLastMoveMarker = 16;

// Every model the frame draws.
struct ModelSet {
  clsMesh boardMesh;                   // the board with its texture
  std::array<clsMesh, 18> markerMesh;  // 0 hover, 1..15 fields, 16 last move, 17 unused
  std::array<clsMesh, 3> pieceMesh;    // 0 white, 1 black, 2 never loaded
  clsMesh shadowMesh;                  // drawn once for each visible shadow record
};

// The moves on offer, as the host listed them.
struct MoveList {
  std::array<std::string, 257> moveList;  // normal forms; at most 256 are held
  int16_t moveCount = 0;                  // slots 0..moveCount - 1 are in use
};

// What the mouse is doing: turning the view, or carrying a piece.
struct GestureState {
  bool rotatingBoard = false;              // right button down: moves turn the view
  bool draggingPiece = false;              // left button down on a piece with a listed move
  float lastMouseX = 0, lastMouseY = 0;    // twips, at the last press or rotation step
  float grabOffsetX = 0, grabOffsetY = 0;  // board units: press point minus the lifted disc
  int16_t dragPiece = 0, dragKingTop = 0, dragShadow = 0;  // records carried (-1: none)
  int16_t dragSource = 0;                                  // slot of the field it came from
  std::array<bool, kFieldSlots> legalTarget{};    // slot: a listed move from the source ends here
  std::array<int16_t, kFieldSlots> targetMove{};  // slot: index of that move, -1 for none
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

}  // namespace ostrel
