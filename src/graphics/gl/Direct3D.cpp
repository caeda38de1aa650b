// The Direct3D object on OpenGL: adapter answers from the platform, and devices.

#include <algorithm>

#include "graphics/d3d8.h"
#include "graphics/gl/Device.h"
#include "graphics/gl/GlApi.h"
#include "graphics/gl/GlContext.h"
#include "graphics/gl/Probes.h"

namespace ostrel::graphics {

namespace {

using gl::raise;

constexpr uint32_t kDisplayRefreshRate = 60;

class GlDirect3D8 final : public Direct3D8 {
 public:
  explicit GlDirect3D8(Platform& platform) : platform_(platform) {}

  void GetAdapterDisplayMode(uint32_t adapter, D3DDISPLAYMODE& mode) override {
    if (adapter != D3DADAPTER_DEFAULT) raise(D3DERR_INVALIDCALL, "no such adapter");
    const ScreenMetrics screen = platform_.screenMetrics();
    mode.Width = static_cast<uint32_t>(std::max(screen.widthPixels, 0));
    mode.Height = static_cast<uint32_t>(std::max(screen.heightPixels, 0));
    mode.RefreshRate = kDisplayRefreshRate;
    mode.Format = D3DFMT_X8R8G8B8;
  }

  int32_t CheckDeviceMultiSampleType(uint32_t adapter, int32_t, int32_t, int32_t,
                                     int32_t type) override {
    if (adapter != D3DADAPTER_DEFAULT) return D3DERR_INVALIDCALL;
    AdapterProfile p = adapterOf(platform_);
    if (type == D3DMULTISAMPLE_NONE) return D3D_OK;
    if (type == 4) return p.multisample4 ? D3D_OK : D3DERR_NOTAVAILABLE;
    if (type == 6) return p.multisample6 ? D3D_OK : D3DERR_NOTAVAILABLE;
    return D3DERR_NOTAVAILABLE;
  }

  int32_t CheckDeviceType(uint32_t adapter, int32_t, int32_t, int32_t, int32_t) override {
    if (adapter != D3DADAPTER_DEFAULT) return D3DERR_INVALIDCALL;
    return adapterOf(platform_).checkDeviceTypeResult;
  }

  std::shared_ptr<Direct3DDevice8> CreateDevice(uint32_t adapter, int32_t deviceType,
                                                Platform* window, uint32_t behaviorFlags,
                                                D3DPRESENT_PARAMETERS& parameters) override {
    if (adapter != D3DADAPTER_DEFAULT) raise(D3DERR_INVALIDCALL, "no such adapter");
    if (deviceType != D3DDEVTYPE_HAL) raise(D3DERR_NOTAVAILABLE, "only the HAL device exists");
    Platform& target = window ? *window : platform_;
    AdapterProfile p = adapterOf(target);
    uint32_t kinds =
        behaviorFlags & (D3DCREATE_SOFTWARE_VERTEXPROCESSING | D3DCREATE_HARDWARE_VERTEXPROCESSING |
                         D3DCREATE_MIXED_VERTEXPROCESSING);
    if (kinds == D3DCREATE_HARDWARE_VERTEXPROCESSING || kinds == D3DCREATE_MIXED_VERTEXPROCESSING) {
      if (!p.hardwareVertexProcessing) {
        raise(D3DERR_NOTAVAILABLE, "no hardware vertex processing on this adapter");
      }
    } else if (kinds == D3DCREATE_SOFTWARE_VERTEXPROCESSING) {
      if (!p.softwareVertexProcessing) {
        raise(D3DERR_NOTAVAILABLE, "no software vertex processing on this adapter");
      }
    } else {
      raise(D3DERR_INVALIDCALL, "exactly one kind of vertex processing must be asked for");
    }
    return std::make_shared<gl::GlDevice>(gl::contextFor(target), target, parameters);
  }

 private:
  Platform& platform_;
};

}  // namespace

std::shared_ptr<Direct3D8> Direct3DCreate(Platform& platform) {
  if (!adapterOf(platform).direct3DAvailable) return nullptr;
  if (!platform.surface().makeContextCurrent()) return nullptr;
  if (glVersion() < 33) return nullptr;
  return std::make_shared<GlDirect3D8>(platform);
}

}  // namespace ostrel::graphics
