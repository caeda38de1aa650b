#pragma once
// Plain value types and constants of the Direct3D-8-shaped device layer. Matrices are row-vector,
// left-handed, stored row by row (_11.._44), translation in _41.._43.

#include <cstdint>

#include "ostrel/BoardRecords.h"  // D3DVECTOR, D3DCOLORVALUE, D3DMATERIAL8
#include "state/Matrix.h"

namespace ostrel::graphics {

using ostrel::D3DCOLORVALUE;
using ostrel::D3DMATERIAL8;
using ostrel::D3DMATRIX;
using ostrel::D3DVECTOR;
using ostrel::identityMatrix;

struct D3DVIEWPORT8 {
  uint32_t X = 0, Y = 0, Width = 0, Height = 0;
  float MinZ = 0, MaxZ = 1;
};

struct D3DRECT {
  int32_t x1 = 0, y1 = 0, x2 = 0, y2 = 0;
};

struct D3DPRESENT_PARAMETERS {
  uint32_t BackBufferWidth = 0, BackBufferHeight = 0;
  int32_t BackBufferFormat = 0;
  uint32_t BackBufferCount = 0;
  int32_t MultiSampleType = 0;
  int32_t SwapEffect = 0;
  uintptr_t hDeviceWindow = 0;
  int32_t Windowed = 0;
  int32_t EnableAutoDepthStencil = 0;
  int32_t AutoDepthStencilFormat = 0;
  uint32_t Flags = 0, FullScreen_RefreshRateInHz = 0, FullScreen_PresentationInterval = 0;
};

struct D3DDISPLAYMODE {
  uint32_t Width = 0, Height = 0, RefreshRate = 0;
  int32_t Format = 0;
};

// The capabilities the control reads; the rest of the record is not modelled.
struct D3DCAPS8 {
  int32_t DeviceType = 0;
  uint32_t AdapterOrdinal = 0;
  uint32_t MaxTextureWidth = 0, MaxTextureHeight = 0;
  uint32_t MaxAnisotropy = 0;
  uint32_t MaxActiveLights = 0;
  uint32_t MaxSimultaneousTextures = 0;
};

struct D3DLIGHT8 {
  int32_t Type = 0;
  D3DCOLORVALUE Diffuse, Specular, Ambient;
  D3DVECTOR Position, Direction;
  float Range = 0, Falloff = 0;
  float Attenuation0 = 0, Attenuation1 = 0, Attenuation2 = 0;
  float Theta = 0, Phi = 0;
};

// Result codes.
constexpr int32_t D3D_OK = 0;
constexpr int32_t D3DERR_DEVICELOST = static_cast<int32_t>(0x88760868u);
constexpr int32_t D3DERR_DEVICENOTRESET = static_cast<int32_t>(0x88760869u);
constexpr int32_t D3DERR_NOTAVAILABLE = static_cast<int32_t>(0x8876086Au);
constexpr int32_t D3DERR_INVALIDCALL = static_cast<int32_t>(0x8876086Cu);
constexpr int32_t D3DERR_NOTFOUND = static_cast<int32_t>(0x88760866u);
constexpr int32_t D3DERR_OUTOFVIDEOMEMORY = static_cast<int32_t>(0x8876017Cu);
constexpr int32_t D3DXERR_INVALIDMESH = static_cast<int32_t>(0x88760B55u);
constexpr int32_t D3DXERR_INVALIDDATA = static_cast<int32_t>(0x88760B59u);
constexpr int32_t D3DXERR_LOADEDMESHASNODATA = static_cast<int32_t>(0x88760B5Au);
constexpr int32_t E_FAIL = static_cast<int32_t>(0x80004005u);
constexpr int32_t E_OUTOFMEMORY = static_cast<int32_t>(0x8007000Eu);
constexpr int32_t E_INVALIDARG = static_cast<int32_t>(0x80070057u);

// Adapters, device types, creation flags, formats, swap effects.
constexpr uint32_t D3DADAPTER_DEFAULT = 0;
constexpr int32_t D3DDEVTYPE_HAL = 1;
constexpr int32_t D3DDEVTYPE_REF = 2;
constexpr int32_t D3DDEVTYPE_SW = 3;
constexpr uint32_t D3DCREATE_SOFTWARE_VERTEXPROCESSING = 0x20;
constexpr uint32_t D3DCREATE_HARDWARE_VERTEXPROCESSING = 0x40;
constexpr uint32_t D3DCREATE_MIXED_VERTEXPROCESSING = 0x80;
constexpr int32_t D3DFMT_UNKNOWN = 0;
constexpr int32_t D3DFMT_A8R8G8B8 = 21;
constexpr int32_t D3DFMT_X8R8G8B8 = 22;
constexpr int32_t D3DFMT_R5G6B5 = 23;
constexpr int32_t D3DFMT_D24S8 = 75;
constexpr int32_t D3DFMT_D16 = 80;
constexpr int32_t D3DSWAPEFFECT_DISCARD = 1;
constexpr int32_t D3DSWAPEFFECT_FLIP = 2;
constexpr int32_t D3DSWAPEFFECT_COPY = 3;
constexpr int32_t D3DSWAPEFFECT_COPY_VSYNC = 4;
constexpr int32_t D3DMULTISAMPLE_NONE = 0;

// Clear flags.
constexpr uint32_t D3DCLEAR_TARGET = 1;
constexpr uint32_t D3DCLEAR_ZBUFFER = 2;
constexpr uint32_t D3DCLEAR_STENCIL = 4;

// Render states.
constexpr uint32_t D3DRS_ZENABLE = 7;
constexpr uint32_t D3DRS_FILLMODE = 8;
constexpr uint32_t D3DRS_SHADEMODE = 9;
constexpr uint32_t D3DRS_ZWRITEENABLE = 14;
constexpr uint32_t D3DRS_ALPHATESTENABLE = 15;
constexpr uint32_t D3DRS_SRCBLEND = 19;
constexpr uint32_t D3DRS_DESTBLEND = 20;
constexpr uint32_t D3DRS_CULLMODE = 22;
constexpr uint32_t D3DRS_ZFUNC = 23;
constexpr uint32_t D3DRS_ALPHABLENDENABLE = 27;
constexpr uint32_t D3DRS_SPECULARENABLE = 29;
constexpr uint32_t D3DRS_LIGHTING = 137;
constexpr uint32_t D3DRS_AMBIENT = 139;
constexpr uint32_t D3DRS_NORMALIZENORMALS = 143;

// Values of render states.
constexpr uint32_t D3DZB_FALSE = 0;
constexpr uint32_t D3DZB_TRUE = 1;
constexpr uint32_t D3DSHADE_FLAT = 1;
constexpr uint32_t D3DSHADE_GOURAUD = 2;
constexpr uint32_t D3DCULL_NONE = 1;
constexpr uint32_t D3DCULL_CW = 2;
constexpr uint32_t D3DCULL_CCW = 3;
constexpr uint32_t D3DCMP_NEVER = 1;
constexpr uint32_t D3DCMP_LESS = 2;
constexpr uint32_t D3DCMP_EQUAL = 3;
constexpr uint32_t D3DCMP_LESSEQUAL = 4;
constexpr uint32_t D3DCMP_GREATER = 5;
constexpr uint32_t D3DCMP_NOTEQUAL = 6;
constexpr uint32_t D3DCMP_GREATEREQUAL = 7;
constexpr uint32_t D3DCMP_ALWAYS = 8;
constexpr uint32_t D3DBLEND_ZERO = 1;
constexpr uint32_t D3DBLEND_ONE = 2;
constexpr uint32_t D3DBLEND_SRCCOLOR = 3;
constexpr uint32_t D3DBLEND_INVSRCCOLOR = 4;
constexpr uint32_t D3DBLEND_SRCALPHA = 5;
constexpr uint32_t D3DBLEND_INVSRCALPHA = 6;
constexpr uint32_t D3DBLEND_DESTALPHA = 7;
constexpr uint32_t D3DBLEND_INVDESTALPHA = 8;
constexpr uint32_t D3DBLEND_DESTCOLOR = 9;
constexpr uint32_t D3DBLEND_INVDESTCOLOR = 10;
constexpr uint32_t D3DBLEND_SRCALPHASAT = 11;

// Texture stage states and their values.
constexpr uint32_t D3DTSS_COLOROP = 1;
constexpr uint32_t D3DTSS_COLORARG1 = 2;
constexpr uint32_t D3DTSS_COLORARG2 = 3;
constexpr uint32_t D3DTSS_ALPHAOP = 4;
constexpr uint32_t D3DTSS_ALPHAARG1 = 5;
constexpr uint32_t D3DTSS_ALPHAARG2 = 6;
constexpr uint32_t D3DTSS_ADDRESSU = 13;
constexpr uint32_t D3DTSS_ADDRESSV = 14;
constexpr uint32_t D3DTSS_MAGFILTER = 16;
constexpr uint32_t D3DTSS_MINFILTER = 17;
constexpr uint32_t D3DTSS_MIPFILTER = 18;
constexpr uint32_t D3DTSS_MAXANISOTROPY = 21;
constexpr uint32_t D3DTOP_DISABLE = 1;
constexpr uint32_t D3DTOP_SELECTARG1 = 2;
constexpr uint32_t D3DTOP_SELECTARG2 = 3;
constexpr uint32_t D3DTOP_MODULATE = 4;
constexpr uint32_t D3DTA_DIFFUSE = 0;
constexpr uint32_t D3DTA_CURRENT = 1;
constexpr uint32_t D3DTA_TEXTURE = 2;
constexpr uint32_t D3DTADDRESS_WRAP = 1;
constexpr uint32_t D3DTADDRESS_MIRROR = 2;
constexpr uint32_t D3DTADDRESS_CLAMP = 3;
constexpr uint32_t D3DTEXF_NONE = 0;
constexpr uint32_t D3DTEXF_POINT = 1;
constexpr uint32_t D3DTEXF_LINEAR = 2;
constexpr uint32_t D3DTEXF_ANISOTROPIC = 3;

// Transform states.
constexpr uint32_t D3DTS_VIEW = 2;
constexpr uint32_t D3DTS_PROJECTION = 3;
constexpr uint32_t D3DTS_TEXTURE0 = 16;
constexpr uint32_t D3DTS_WORLD = 256;

// Light types.
constexpr int32_t D3DLIGHT_POINT = 1;
constexpr int32_t D3DLIGHT_SPOT = 2;
constexpr int32_t D3DLIGHT_DIRECTIONAL = 3;

// Flexible vertex format bits.
constexpr uint32_t D3DFVF_XYZ = 0x002;
constexpr uint32_t D3DFVF_XYZRHW = 0x004;
constexpr uint32_t D3DFVF_NORMAL = 0x010;
constexpr uint32_t D3DFVF_PSIZE = 0x020;
constexpr uint32_t D3DFVF_DIFFUSE = 0x040;
constexpr uint32_t D3DFVF_SPECULAR = 0x080;
constexpr uint32_t D3DFVF_TEX1 = 0x100;
constexpr uint32_t D3DFVF_TEXCOUNT_MASK = 0xF00;
constexpr uint32_t D3DFVF_TEXCOUNT_SHIFT = 8;

// The largest texture side the device takes; larger images are refused before they are decoded.
constexpr uint32_t kMaxTextureSide = 4096;

// Mesh options.
constexpr uint32_t D3DXMESH_MANAGED = 0x220;

}  // namespace ostrel::graphics
