#include "graphics/ModelSet.h"

namespace ostrel::graphics {

namespace {

void loadHiddenMarker(clsMesh& marker, const char* model) {
  marker.init(model, std::string());
  marker.visible = false;
}

// A change of either piece image reloads both pieces and the shadow, on fresh objects.
void reloadPieces(ControlState& s) {
  s.models.pieceMesh[0] = clsMesh();
  s.models.pieceMesh[1] = clsMesh();
  s.models.shadowMesh = clsMesh();
  loadPieceMeshes(s);
}

void setPieceImage(ControlState& s, std::string& member, const std::string& name) {
  const bool changed = name != member;
  member = name;
  // White's visible flag says whether the pieces are loaded, whichever colour changed.
  if (s.models.pieceMesh[0].visible && changed) reloadPieces(s);
}

}  // namespace

void loadBoardAndMarkers(ControlState& s) {
  if (s.alternativeBoard.empty()) s.alternativeBoard = kDefaultBoardImage;
  s.models.boardMesh.init(kBoardModel, s.alternativeBoard);
  loadHiddenMarker(s.models.markerMesh[kHoverMarker], kHoverMarkerModel);
  // Each field marker holds its own copy of the model.
  for (int i = kFirstListMarker; i <= kLastListMarker; ++i) {
    loadHiddenMarker(s.models.markerMesh[static_cast<size_t>(i)], kFieldMarkerModel);
  }
  loadHiddenMarker(s.models.markerMesh[kLastMoveMarker], kLastMoveMarkerModel);
}

void loadPieceMeshes(ControlState& s) {
  Platform& platform = s.platform;
  const float full = progressFull(s);
  s.lblProgress.Left = 0;
  s.lblProgress.Top = 0;
  s.lblProgress.Width = full;
  s.lblProgress.Height = s.label1.Height - 2 * platform.TwipsPerPixelY();

  struct Colour {
    const char* model;
    const std::string& alternative;
    const char* defaultImage;
  };
  const Colour colours[2] = {{kWhitePieceModel, s.alternativePieceWhite, kDefaultWhiteImage},
                             {kBlackPieceModel, s.alternativePieceBlack, kDefaultBlackImage}};
  for (int i = 0; i < 2; ++i) {
    // The bar steps only while the status text is on show: half as white starts, all as black
    // starts.
    if (s.lblStatus.Visible) {
      s.lblProgress.Width = static_cast<float>(full * ((i + 1) / 2.0));
      s.lblProgress.Visible = true;
      platform.Refresh(s.lblProgress);
    }
    const Colour& colour = colours[i];
    const std::string image =
        colour.alternative.empty() ? std::string(colour.defaultImage) : colour.alternative;
    clsMesh& piece = s.models.pieceMesh[static_cast<size_t>(i)];
    piece.init(colour.model, image);
    piece.Translate(kPieceScale, 0, 0, 0);
  }
  s.models.shadowMesh.init(kShadowModel, kShadowImage, kShadowAlpha);
  s.models.shadowMesh.Translate(kShadowScale, 0, 0, 0);

  s.lblProgress.Visible = false;
  s.lblStatus.Visible = false;
  s.label1.Visible = false;
}

void setAlternativeBoard(ControlState& s, const std::string& name) {
  const bool changed = name != s.alternativeBoard;
  s.alternativeBoard = name;
  if (s.models.boardMesh.visible && changed) {
    // The old model and its textures go before the new load. An empty name here means the
    // texture named inside board.x.
    s.models.boardMesh = clsMesh();
    s.models.boardMesh.init(kBoardModel, s.alternativeBoard);
  }
}

void setAlternativePieceWhite(ControlState& s, const std::string& name) {
  setPieceImage(s, s.alternativePieceWhite, name);
}

void setAlternativePieceBlack(ControlState& s, const std::string& name) {
  setPieceImage(s, s.alternativePieceBlack, name);
}

}  // namespace ostrel::graphics
