// The frame: four passes over the scene into the back buffer, then Present and afterDraw.

#include "graphics/Frame.h"

#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"

namespace ostrel::graphics {

namespace {

// Object slots below this one draw the white piece mesh, the others the black one.
constexpr size_t kFirstBlackObject = 24;
// Slots that a frame draws: shadows 0..39, pieces 0..47.
constexpr size_t kDrawnShadows = 40;
constexpr size_t kDrawnPieces = 48;

void drawAt(clsMesh& mesh, const cls3DobjectInfo& object) {
  mesh.posX(object.posX());
  mesh.posY(object.posY());
  mesh.posZ(object.posZ());
  mesh.render();
}

// The four passes, between BeginScene and EndScene. The opaque pieces go first: the board,
// markers and shadows then fail the depth test under them and are never shaded there, which
// the software rasteriser would otherwise do for every covered pixel. Each pass leaves the
// same pixels as it would in the order board, markers, shadows, pieces, but where a piece and
// the surface meet at the same depth (the last pass drawn wins those).
void drawScene(ControlState& s, Direct3DDevice8& d) {
  ModelSet& m = s.models;

  // Pieces: opaque, with the stage state the blended passes leave.
  d.SetRenderState(D3DRS_ALPHABLENDENABLE, 0);
  d.SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE);
  for (size_t i = 0; i < kDrawnPieces; ++i) {
    const cls3DobjectInfo& piece = s.scene.pieceObject[i];
    clsMesh& mesh = m.pieceMesh[i < kFirstBlackObject ? 0 : 1];
    if (piece.visible) drawAt(mesh, piece);
  }

  // Board: opaque.
  m.boardMesh.render();

  // Markers: source x source alpha + destination x destination.
  d.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
  d.SetRenderState(D3DRS_DESTBLEND, D3DBLEND_DESTCOLOR);
  d.SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
  for (size_t i = 0; i <= kLastMoveMarker; ++i) m.markerMesh[i].render();

  // Shadows: destination x source colour.
  d.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_ZERO);
  d.SetRenderState(D3DRS_DESTBLEND, D3DBLEND_SRCCOLOR);
  if (s.qShadow == 1) {
    for (size_t i = 0; i < kDrawnShadows; ++i) {
      const cls3DobjectInfo& shadow = s.scene.shadowObject[i];
      if (shadow.visible) drawAt(m.shadowMesh, shadow);
    }
  }
}

}  // namespace

void render(ControlState& s) {
  const float start = s.platform.Timer();
  s.platform.frameAsked();
  GraphicsContext& context = graphicsContext();
  if (!context.direct3D || !context.device) return;
  // Held for the whole frame: a handler may replace the context's device meanwhile.
  const std::shared_ptr<Direct3DDevice8> device = context.device;
  Direct3DDevice8& d = *device;

  const int32_t level = d.TestCooperativeLevel();
  if (level == D3DERR_DEVICELOST) return;
  if (level == D3DERR_DEVICENOTRESET) d.Reset(context.presentParameters);

  d.Clear(0, nullptr, D3DCLEAR_TARGET | D3DCLEAR_ZBUFFER, static_cast<uint32_t>(s.ambientBackColor),
          1.0f, 0);
  setupLights(s);

  s.worldMatrix = identityMatrix();
  d.SetTransform(D3DTS_WORLD, s.worldMatrix);
  s.viewMatrix = viewMatrixFor(s.rotationHorizontalAxis, s.rotationVerticalAxis, s.viewingDistance);
  d.SetTransform(D3DTS_VIEW, s.viewMatrix);
  // A picture without width gives no projection: the frame ends here, before the scene.
  if (!projectionMatrixFor(s.pic.Width, s.pic.Height, s.projectionMatrix)) return;
  d.SetTransform(D3DTS_PROJECTION, s.projectionMatrix);

  d.BeginScene();
  // A failure inside the scene still closes it, so that the next frame or Reset finds the
  // device usable once the context is back.
  try {
    drawScene(s, d);
  } catch (...) {
    try {
      d.EndScene();
    } catch (...) {  // the first failure is the one the caller hears of
    }
    throw;
  }
  d.EndScene();
  d.Present();

  const float end = s.platform.Timer();
  s.raiseAfterDraw(end - start);
  s.timerAfterLastRender = s.platform.timeGetTime();
}

}  // namespace ostrel::graphics
