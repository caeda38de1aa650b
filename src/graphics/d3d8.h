#pragma once
// The device layer: the Direct3D 8 objects and D3DX helpers that the control calls, in their
// automation form. A failure that Direct3D raises is thrown as D3DError; probes and
// TestCooperativeLevel answer with result codes (0 means yes). The one implementation draws with
// OpenGL 3.3 core (graphics/gl/); nothing outside that folder sees GL.

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <vector>

#include "graphics/d3d8types.h"

namespace ostrel {
class Platform;
}

namespace ostrel::graphics {

// A raised failure: its error number and the description that goes with it.
class D3DError : public std::exception {
 public:
  D3DError(int32_t number, std::string description)
      : number(number), description(std::move(description)) {}
  const char* what() const noexcept override { return description.c_str(); }

  int32_t number;
  std::string description;
};

class Direct3DDevice8;

// A loaded image on stage 0: RGBA8, one level, wrap addressing.
class Texture {
 public:
  virtual ~Texture() = default;
  virtual uint32_t width() const = 0;
  virtual uint32_t height() const = 0;
};

// The vertices of a mesh, read and written as raw bytes.
class VertexBuffer {
 public:
  virtual ~VertexBuffer() = default;
  // Copies size bytes from offset to data; throws D3DERR_INVALIDCALL past the end.
  virtual void GetData(uint32_t offset, uint32_t size, uint32_t flags, void* data) = 0;
  // Copies size bytes from data to offset; later draws use the new vertices.
  virtual void SetData(uint32_t offset, uint32_t size, uint32_t flags, const void* data) = 0;
  virtual uint32_t GetSize() const = 0;  // bytes
};

// Geometry with one subset per material; subset i is drawn by DrawSubset(i).
class Mesh {
 public:
  virtual ~Mesh() = default;
  // Draws the faces of subset i with the device's current state. A subset with no faces draws
  // nothing.
  virtual void DrawSubset(uint32_t subset) = 0;
  virtual uint32_t GetFVF() const = 0;
  virtual uint32_t GetNumVertices() const = 0;
  virtual uint32_t GetNumFaces() const = 0;
  virtual uint32_t GetNumSubsets() const = 0;
  virtual std::shared_ptr<VertexBuffer> GetVertexBuffer() = 0;
};

// What a mesh is made from: vertices in the layout of fvf, triangles as index triples, and for
// each subset its first triangle and triangle count.
struct MeshData {
  uint32_t fvf = 0;
  uint32_t vertexCount = 0;
  std::vector<uint8_t> vertices;  // vertexCount * GetFVFVertexSize(fvf) bytes
  std::vector<uint32_t> indices;  // three per triangle
  struct Range {
    uint32_t firstTriangle = 0, triangleCount = 0;
  };
  std::vector<Range> subsets;
};

// What a device sent to OpenGL. glCalls counts every call, the kinds before it included.
struct DeviceCounters {
  uint32_t drawCalls = 0;       // triangles drawn
  uint32_t programChanges = 0;  // another shader program put in use
  uint32_t stateChanges = 0;    // enables, blend, depth, viewport, bindings, sampler parameters
  uint32_t uniformUploads = 0;  // one per uniform set
  uint32_t bufferUploads = 0;   // vertex data sent after a change
  uint32_t glCalls = 0;
};

class Direct3DDevice8 {
 public:
  virtual ~Direct3DDevice8() = default;

  // 0, D3DERR_DEVICELOST or D3DERR_DEVICENOTRESET.
  virtual int32_t TestCooperativeLevel() = 0;
  // Rebuilds the back buffer (width and height 0: the window's size now) and restores the
  // states of a new device; meshes and textures stay. Throws D3DERR_DEVICELOST while the
  // device is lost and cannot be reset yet.
  virtual void Reset(D3DPRESENT_PARAMETERS& parameters) = 0;

  // colour is 0xAARRGGBB. Rectangles limit the clear to their area; none means all of the
  // viewport.
  virtual void Clear(uint32_t count, const D3DRECT* rects, uint32_t flags, uint32_t color, float z,
                     uint32_t stencil) = 0;
  virtual void BeginScene() = 0;
  virtual void EndScene() = 0;
  // The whole back buffer to the device's window (all arguments none); throws
  // D3DERR_DEVICELOST on a lost device.
  virtual void Present(const D3DRECT* source = nullptr, const D3DRECT* dest = nullptr,
                       uintptr_t overrideWindow = 0, const void* dirtyRegion = nullptr) = 0;

  virtual void SetRenderState(uint32_t state, uint32_t value) = 0;
  virtual uint32_t GetRenderState(uint32_t state) const = 0;
  virtual void SetTextureStageState(uint32_t stage, uint32_t type, uint32_t value) = 0;
  virtual uint32_t GetTextureStageState(uint32_t stage, uint32_t type) const = 0;
  virtual void SetVertexShader(uint32_t fvf) = 0;
  virtual uint32_t GetVertexShader() const = 0;

  virtual void SetTransform(uint32_t state, const D3DMATRIX& matrix) = 0;
  virtual void GetTransform(uint32_t state, D3DMATRIX& matrix) const = 0;
  virtual void SetViewport(const D3DVIEWPORT8& viewport) = 0;
  virtual void GetViewport(D3DVIEWPORT8& viewport) const = 0;

  virtual void SetMaterial(const D3DMATERIAL8& material) = 0;
  virtual void GetMaterial(D3DMATERIAL8& material) const = 0;
  virtual void SetLight(uint32_t index, const D3DLIGHT8& light) = 0;
  virtual void GetLight(uint32_t index, D3DLIGHT8& light) const = 0;
  virtual void LightEnable(uint32_t index, int32_t enable) = 0;
  virtual int32_t GetLightEnable(uint32_t index) const = 0;
  // The device holds a reference while the texture is set; nullptr clears the stage.
  virtual void SetTexture(uint32_t stage, std::shared_ptr<Texture> texture) = 0;
  virtual std::shared_ptr<Texture> GetTexture(uint32_t stage) const = 0;

  virtual void GetDeviceCaps(D3DCAPS8& caps) const = 0;

  // Size of the back buffer and its samples per pixel (0 when not multisampled).
  virtual void GetBackBufferSize(uint32_t& width, uint32_t& height) const = 0;
  virtual int32_t GetMultiSampleCount() const = 0;
  // What the last Present's frame sent to OpenGL, counted from the Present before it.
  virtual DeviceCounters GetFrameCounters() const { return {}; }

  // Resource creation, used by the D3DX helpers. Throw D3DError on bad data.
  virtual std::shared_ptr<Mesh> CreateMesh(MeshData data) = 0;
  virtual std::shared_ptr<Texture> CreateTexture(uint32_t width, uint32_t height,
                                                 const uint8_t* rgba) = 0;
};

class Direct3D8 {
 public:
  virtual ~Direct3D8() = default;
  virtual void GetAdapterDisplayMode(uint32_t adapter, D3DDISPLAYMODE& mode) = 0;
  // 0 when the adapter offers that many samples per pixel.
  virtual int32_t CheckDeviceMultiSampleType(uint32_t adapter, int32_t deviceType,
                                             int32_t renderTargetFormat, int32_t windowed,
                                             int32_t multiSampleType) = 0;
  virtual int32_t CheckDeviceType(uint32_t adapter, int32_t deviceType, int32_t displayFormat,
                                  int32_t backBufferFormat, int32_t windowed) = 0;
  // A device drawing into window's picture. Throws D3DError when that kind of vertex
  // processing is not to be had.
  virtual std::shared_ptr<Direct3DDevice8> CreateDevice(uint32_t adapter, int32_t deviceType,
                                                        Platform* window, uint32_t behaviorFlags,
                                                        D3DPRESENT_PARAMETERS& parameters) = 0;
};

// The DirectX8 object's call: nullptr when the platform offers no Direct3D or no OpenGL context
// can be made current.
std::shared_ptr<Direct3D8> Direct3DCreate(Platform& platform);

// The platform's window and its OpenGL context are going: GL objects made in that context are
// forgotten from now on instead of deleted. Platforms call this before they destroy a context.
void platformContextGoing(Platform& platform);

// --- D3DX ---

// A material as a model file gives it, with the texture file name of that material (empty:
// none).
struct D3DXMATERIAL {
  D3DMATERIAL8 MatD3D;
  std::string TextureFilename;
};

// The buffers that LoadMeshFromX hands out.
struct D3DXBuffer {
  std::vector<D3DXMATERIAL> materials;
  std::vector<uint32_t> adjacency;  // three per face: the neighbour across each edge, or ~0
};

// Loads a text .x file: a mesh whose subset i holds the faces of material i, the materials in
// file order, and their number. Throws D3DError when the file cannot be read or holds no valid
// mesh.
std::shared_ptr<Mesh> LoadMeshFromX(const std::string& path, uint32_t options,
                                    Direct3DDevice8& device, std::shared_ptr<D3DXBuffer>* adjacency,
                                    std::shared_ptr<D3DXBuffer>& materials, int32_t& materialCount);
// Throws D3DERR_INVALIDCALL for an index outside the buffer.
void BufferGetMaterial(const D3DXBuffer& buffer, int32_t index, D3DMATERIAL8& material);
std::string BufferGetTextureName(const D3DXBuffer& buffer, int32_t index);
// A JPEG or PNG file as a texture. Throws D3DError when it cannot be read.
std::shared_ptr<Texture> CreateTextureFromFile(Direct3DDevice8& device, const std::string& path);
uint32_t GetFVFVertexSize(uint32_t fvf);
// The name of a result code, e.g. "D3DERR_DEVICELOST".
std::string GetErrorString(int32_t number);

// Copies size bytes of the buffer from offset into data, and back.
void D3DVertexBuffer8GetData(VertexBuffer& buffer, uint32_t offset, uint32_t size, uint32_t flags,
                             void* data);
void D3DVertexBuffer8SetData(VertexBuffer& buffer, uint32_t offset, uint32_t size, uint32_t flags,
                             const void* data);

// --- D3DX math; results in out, which is also returned. ---

D3DMATRIX* D3DXMatrixIdentity(D3DMATRIX& out);
D3DMATRIX* D3DXMatrixMultiply(D3DMATRIX& out, const D3DMATRIX& a, const D3DMATRIX& b);
// nullptr when m cannot be inverted; out is left alone then.
D3DMATRIX* D3DXMatrixInverse(D3DMATRIX& out, float* determinant, const D3DMATRIX& m);
D3DMATRIX* D3DXMatrixTranslation(D3DMATRIX& out, float x, float y, float z);
D3DMATRIX* D3DXMatrixLookAtLH(D3DMATRIX& out, const D3DVECTOR& eye, const D3DVECTOR& at,
                              const D3DVECTOR& up);
D3DMATRIX* D3DXMatrixPerspectiveFovLH(D3DMATRIX& out, float fovy, float aspect, float zn, float zf);
D3DVECTOR* D3DXVec3Unproject(D3DVECTOR& out, const D3DVECTOR& v, const D3DVIEWPORT8& viewport,
                             const D3DMATRIX& projection, const D3DMATRIX& view,
                             const D3DMATRIX& world);
D3DVECTOR* D3DXVec3Project(D3DVECTOR& out, const D3DVECTOR& v, const D3DVIEWPORT8& viewport,
                           const D3DMATRIX& projection, const D3DMATRIX& view,
                           const D3DMATRIX& world);
D3DVECTOR* D3DXVec3Subtract(D3DVECTOR& out, const D3DVECTOR& a, const D3DVECTOR& b);

}  // namespace ostrel::graphics
