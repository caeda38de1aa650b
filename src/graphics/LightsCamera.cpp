// The light, filters and ambient level that each frame sets, and the camera and projection that
// it builds from the view values.

#include <cmath>

#include "graphics/Frame.h"
#include "graphics/GraphicsContext.h"
#include "graphics/d3d8.h"

namespace ostrel::graphics {

namespace {

// Decimal constants as the control writes them; each one is rounded to a Single where it is used.
constexpr double kPi = 3.14159;
constexpr float kNearPlane = 1.0f;
constexpr float kFarPlane = 1000.0f;
constexpr uint32_t kFrameAmbient = 0x808080;

D3DLIGHT8 sceneLight() {
  D3DLIGHT8 light;
  light.Type = D3DLIGHT_DIRECTIONAL;
  light.Diffuse = {0.81f, 0.81f, 0.81f, 0.0f};
  light.Direction = {0.2f, -1.0f, 0.0f};
  light.Range = 1000.0f;
  return light;
}

// The material left on the device: no mesh draws with it, each sets its own.
D3DMATERIAL8 restingMaterial() {
  D3DMATERIAL8 m;
  m.Diffuse = {1, 1, 0, 1};
  m.Ambient = {1, 1, 0, 1};
  return m;
}

}  // namespace

void setupLights(ControlState& s) {
  const auto& device = graphicsContext().device;
  if (!device) return;
  Direct3DDevice8& d = *device;
  d.SetMaterial(restingMaterial());
  d.SetLight(0, sceneLight());
  d.LightEnable(0, 1);
  d.SetRenderState(D3DRS_LIGHTING, 1);
  if (s.qTrans) {
    d.SetRenderState(D3DRS_SRCBLEND, D3DBLEND_SRCALPHA);
    d.SetRenderState(D3DRS_DESTBLEND, D3DBLEND_INVSRCALPHA);
    d.SetTextureStageState(0, D3DTSS_ALPHAARG1, D3DTA_DIFFUSE);
    d.SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
  }
  d.SetTextureStageState(0, D3DTSS_MINFILTER, D3DTEXF_LINEAR);
  d.SetTextureStageState(0, D3DTSS_MAGFILTER, D3DTEXF_LINEAR);
  if (s.anisotropyLevel > 0) {
    D3DCAPS8 caps;
    d.GetDeviceCaps(caps);
    // The level is what the device offers, or the asked level when the device offers more.
    int32_t level = static_cast<int32_t>(caps.MaxAnisotropy);
    if (level > s.anisotropyLevel) level = s.anisotropyLevel;
    d.SetTextureStageState(0, D3DTSS_MAGFILTER, D3DTEXF_ANISOTROPIC);
    d.SetTextureStageState(0, D3DTSS_MINFILTER, D3DTEXF_ANISOTROPIC);
    d.SetTextureStageState(0, D3DTSS_MAXANISOTROPY, static_cast<uint32_t>(level));
  }
  d.SetRenderState(D3DRS_AMBIENT, kFrameAmbient);
}

D3DMATRIX viewMatrixFor(float rotationHorizontalAxis, float rotationVerticalAxis,
                        float viewingDistance) {
  const double e = rotationHorizontalAxis, a = rotationVerticalAxis, d = viewingDistance;
  const D3DVECTOR p{0.0f, static_cast<float>(d * std::sin(e)), static_cast<float>(d * std::cos(e))};
  const D3DVECTOR eye{static_cast<float>(p.x * std::cos(a) - p.z * std::sin(a)), p.y,
                      static_cast<float>(p.x * std::sin(a) + p.z * std::cos(a))};
  // Past the top of the board the camera turns over, and so does up, keeping the picture upright.
  const float s = static_cast<float>(kPi / 2) < rotationHorizontalAxis ? -1.0f : 1.0f;
  D3DMATRIX view;
  D3DXMatrixLookAtLH(view, eye, D3DVECTOR{0, 0, 0}, D3DVECTOR{0, s, 0});
  return view;
}

bool projectionMatrixFor(float picWidth, float picHeight, D3DMATRIX& out) {
  if (picWidth == 0.0f) return false;
  // Height over width, as the control has always passed it: a square picture shows round discs.
  const float aspect = picHeight / picWidth;
  D3DXMatrixPerspectiveFovLH(out, static_cast<float>(kPi / 6), aspect, kNearPlane, kFarPlane);
  return true;
}

}  // namespace ostrel::graphics
