#pragma once
// The shipped asset set: which model file and image feed which mesh, with the scale and alpha
// each one gets, the loads of start-up, and the three properties that swap an image at run time.

#include <string>

#include "state/ControlState.h"

namespace ostrel::graphics {

// Model files, relative to the base directory; images lie in its models/ folder.
inline constexpr const char* kBoardModel = "models/board.x";
inline constexpr const char* kHoverMarkerModel = "models/hl.x";
inline constexpr const char* kFieldMarkerModel = "models/hl2.x";
inline constexpr const char* kLastMoveMarkerModel = "models/hl3.x";
inline constexpr const char* kWhitePieceModel = "models/white.x";
inline constexpr const char* kBlackPieceModel = "models/black.x";
inline constexpr const char* kShadowModel = "models/shadow.x";

inline constexpr const char* kDefaultBoardImage = "board.jpg";
inline constexpr const char* kDefaultWhiteImage = "piecewhite.png";
inline constexpr const char* kDefaultBlackImage = "pieceblack.png";
inline constexpr const char* kShadowImage = "shadow2.png";

// Piece and shadow models are baked to their size on the board once per load.
inline constexpr float kPieceScale = 0.23f;
inline constexpr float kShadowScale = 0.28f;
// Diffuse alpha of every shadow material.
inline constexpr double kShadowAlpha = 0.24;

// The board (with alternativeBoard, made "board.jpg" first when empty) and the 17 markers, each
// marker hidden as soon as it is loaded.
void loadBoardAndMarkers(ControlState& s);

// White and black pieces and the shadow, with the two steps of the progress bar; hides the
// status frame at the end.
void loadPieceMeshes(ControlState& s);

// The image setters: store, and reload at once when the value changed and the model is loaded.
void setAlternativeBoard(ControlState& s, const std::string& name);
void setAlternativePieceWhite(ControlState& s, const std::string& name);
void setAlternativePieceBlack(ControlState& s, const std::string& name);

}  // namespace ostrel::graphics
