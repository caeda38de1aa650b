#include "graphics/Startup.h"

#include <exception>

#include "graphics/Frame.h"
#include "graphics/GraphicsContext.h"
#include "graphics/ModelSet.h"
#include "graphics/Resize.h"
#include "graphics/d3d8.h"

namespace ostrel::graphics {

namespace {

constexpr const char* kLogName = "/directxlog.txt";
constexpr const char* kFailureText =
    "Error occured while initialising directx. Make sure that directX 8 is installed.";

// The state of the first frame: the vertex format of the fixed-function vertices, depth test on,
// full ambient until the first frame's lights replace it.
constexpr uint32_t kDefaultVertexFormat =
    D3DFVF_XYZRHW | D3DFVF_DIFFUSE | D3DFVF_SPECULAR | D3DFVF_TEX1;  // 0x1C4
constexpr uint32_t kFullAmbient = 0xFFFFFFFF;

constexpr int32_t kSamplesGood = 4;
constexpr int32_t kSamplesBest = 6;
constexpr int16_t kAnisotropyGood = 2;
constexpr int16_t kAnisotropyBest = 32;

std::string versionText() {
  return std::to_string(OSTREL_VERSION_MAJOR) + "." + std::to_string(OSTREL_VERSION_MINOR) + "." +
         std::to_string(OSTREL_VERSION_PATCH);
}

// The diagnostic log of one start-up: one line per statement, each closed by CR LF. Writes
// nothing when it could not be opened; closes itself on every way out.
class DiagnosticLog {
 public:
  void open(const std::string& path) { open_ = openLogFile(path, file_); }
  void line(const std::string& text) {
    if (open_) file_ << text << "\r\n";
  }
  void close() {
    if (open_) file_.close();
    open_ = false;
  }

 private:
  std::ofstream file_;
  bool open_ = false;
};

// A failure raised under the trap, with the three parts that the message box and the log show.
struct TrappedError {
  int32_t number = 0;
  std::string name, description;
  std::string text() const { return std::to_string(number) + " " + name + " " + description; }
};

// What start-up runs under the trap; returns no value for the endings without a failure.
std::optional<bool> startDevice(ControlState& s, DiagnosticLog& log) {
  GraphicsContext& context = graphicsContext();
  fitPictureToControl(s);

  context.direct3D = Direct3DCreate(s.platform);
  if (!context.direct3D) {
    log.line("DirectX create failed");
    return std::nullopt;
  }
  Direct3D8& d3d = *context.direct3D;
  log.line("DirectX create succeeded");
  log.line("Quality: ");

  D3DDISPLAYMODE mode;
  d3d.GetAdapterDisplayMode(D3DADAPTER_DEFAULT, mode);
  log.line("Mode.Format=" + std::to_string(mode.Format));
  log.line("Mode.Height=" + std::to_string(mode.Height));
  log.line("Mode.RefreshRate=" + std::to_string(mode.RefreshRate));
  log.line("Mode.Width=" + std::to_string(mode.Width));

  // Only the hardware device type is ever tried.
  const int32_t deviceType = D3DDEVTYPE_HAL;
  const int32_t samplesGood =
      d3d.CheckDeviceMultiSampleType(D3DADAPTER_DEFAULT, deviceType, mode.Format, 1, kSamplesGood);
  log.line("Multisampling 4: " + std::to_string(samplesGood));
  const int32_t samplesBest =
      d3d.CheckDeviceMultiSampleType(D3DADAPTER_DEFAULT, deviceType, mode.Format, 1, kSamplesBest);
  log.line("Multisampling 6: " + std::to_string(samplesBest));

  D3DPRESENT_PARAMETERS& pp = context.presentParameters;
  pp = D3DPRESENT_PARAMETERS();
  pp.Windowed = 1;
  const int32_t typeResult =
      d3d.CheckDeviceType(D3DADAPTER_DEFAULT, deviceType, mode.Format, mode.Format, pp.Windowed);
  if (typeResult != D3D_OK) {
    log.line("CheckDeviceType with error code " + std::to_string(typeResult));
    return std::nullopt;
  }

  // Back buffer size and window stay 0: the device takes pic's size and the window it is given.
  pp.SwapEffect = D3DSWAPEFFECT_COPY_VSYNC;
  pp.BackBufferFormat = mode.Format;
  pp.BackBufferCount = 1;
  pp.EnableAutoDepthStencil = 1;
  pp.AutoDepthStencilFormat = D3DFMT_D16;
  s.anisotropyLevel = 0;
  if (s.qAA > 1 && samplesBest == D3D_OK) {
    pp.MultiSampleType = kSamplesBest;
    pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
    s.anisotropyLevel = kAnisotropyBest;
  } else if (s.qAA > 0 && samplesGood == D3D_OK) {
    pp.MultiSampleType = kSamplesGood;
    pp.SwapEffect = D3DSWAPEFFECT_DISCARD;
    s.anisotropyLevel = kAnisotropyGood;
  } else {
    pp.MultiSampleType = D3DMULTISAMPLE_NONE;
  }

  log.line("trying hardware vertex");
  context.device.reset();
  try {
    // A failed hardware attempt is not reported: it only leaves the device unset.
    context.device = d3d.CreateDevice(D3DADAPTER_DEFAULT, deviceType, &s.platform,
                                      D3DCREATE_HARDWARE_VERTEXPROCESSING, pp);
  } catch (...) {
    context.device.reset();
  }
  if (!context.device) {
    context.device = d3d.CreateDevice(D3DADAPTER_DEFAULT, deviceType, &s.platform,
                                      D3DCREATE_SOFTWARE_VERTEXPROCESSING, pp);
  }
  if (!context.device) {
    log.line("Creating device failed");
    return std::nullopt;
  }
  log.line("Creating device succeeded");

  // A second start-up loads into fresh objects: the pieces' scratch positions of earlier frames
  // must not be baked into the new vertices by the scaling.
  s.models = ModelSet();
  loadBoardAndMarkers(s);
  log.line("board.x initialised");
  log.line("hl.x initialised");
  loadPieceMeshes(s);
  log.line("meshes loaded");
  setDefaultRenderStates(*context.device);
  log.line("device initialised");
  render(s);
  log.line("render succeeded");

  s.timer1.Enabled = true;
  log.line("DirectX succesful");
  return true;
}

}  // namespace

bool openLogFile(const std::string& path, std::ofstream& file) {
  try {
    file.open(path, std::ios::binary | std::ios::trunc);
    return file.is_open();
  } catch (...) {
    return false;
  }
}

void setDefaultRenderStates(Direct3DDevice8& device) {
  device.SetVertexShader(kDefaultVertexFormat);
  device.SetRenderState(D3DRS_ZENABLE, D3DZB_TRUE);
  device.SetRenderState(D3DRS_AMBIENT, kFullAmbient);
}

std::optional<bool> init(ControlState& s, bool qTrans, int32_t qAA, int32_t qShadow,
                         const std::string& ap) {
  s.qTrans = qTrans;
  s.qAA = static_cast<int16_t>(qAA);
  s.qShadow = static_cast<int16_t>(qShadow);

  GraphicsContext& context = graphicsContext();
  context.platform = &s.platform;
  context.baseDirectory = ap.empty() ? s.platform.AppPath() : ap;

  DiagnosticLog log;
  log.open(context.baseDirectory + kLogName);
  log.line("Ostrel " + versionText());
  log.line("initialising directX");

  std::optional<TrappedError> error;
  std::optional<bool> result;
  try {
    result = startDevice(s, log);
  } catch (const D3DError& e) {
    error = TrappedError{e.number, GetErrorString(e.number), e.description};
  } catch (const std::exception& e) {
    error = TrappedError{E_FAIL, GetErrorString(E_FAIL), e.what()};
  } catch (...) {
    error = TrappedError{E_FAIL, GetErrorString(E_FAIL), "unknown failure"};
  }
  if (error) {
    // Nothing that was made is released, and Timer1 stays off.
    s.platform.MsgBox(std::string(kFailureText) + "\r\nError code:" + error->text());
    result = false;
    log.line("DirectX error: " + error->text());
  }
  log.close();
  return result;
}

void releaseDevice() {
  GraphicsContext& context = graphicsContext();
  context.direct3D.reset();
  context.device.reset();
}

}  // namespace ostrel::graphics
