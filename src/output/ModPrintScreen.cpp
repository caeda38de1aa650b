// The screen dump's steps over the window-system calls of output/Gdi.h.

#include "output/ModPrintScreen.h"

#include <cmath>
#include <cstdint>
#include <limits>

namespace ostrel::ModPrintScreen {

using namespace output;

namespace {

// Nearest integer, a tie going to the even neighbour, whatever the rounding mode.
double roundHalfEven(double q) {
  double r = std::floor(q);
  double fraction = q - r;
  if (fraction > 0.5 || (fraction == 0.5 && std::fmod(r, 2.0) != 0.0)) r += 1.0;
  return r;
}

// round(value * units / pixels): a 32-bit product, a division in double precision. false for
// what the 32-bit arithmetic cannot hold and for a division by zero.
bool scale(int32_t value, int32_t units, int32_t pixels, int32_t& result) {
  int32_t product = 0;
  if (__builtin_mul_overflow(value, units, &product) || pixels == 0) return false;
  double r = roundHalfEven(static_cast<double>(product) / pixels);
  if (r < std::numeric_limits<int32_t>::min() || r > std::numeric_limits<int32_t>::max()) {
    return false;
  }
  result = static_cast<int32_t>(r);
  return true;
}

// mm * 100 - 100: the screen's size in 0.01 mm, a millimetre short.
bool hundredths(int32_t mm, int32_t& units) {
  return !__builtin_mul_overflow(mm, 100, &units) && !__builtin_sub_overflow(units, 100, &units);
}

}  // namespace

HENHMETAFILE writeWindowMetafile(HWND hWnd, const std::string& filename) {
  HDC hdc = GetDC(hWnd);
  if (!hdc) return nullptr;
  RECT client;
  if (!GetClientRect(hWnd, &client)) {
    ReleaseDC(hWnd, hdc);
    return nullptr;
  }
  HENHMETAFILE result = writeDcMetafile(hdc, client, filename);
  ReleaseDC(hWnd, hdc);
  return result;
}

HENHMETAFILE writeDcMetafile(HDC hdc, const RECT& client, const std::string& filename) {
  const int32_t widthMm = GetDeviceCaps(hdc, HORZSIZE);
  const int32_t heightMm = GetDeviceCaps(hdc, VERTSIZE);
  const int32_t widthPixels = GetDeviceCaps(hdc, HORZRES);
  const int32_t heightPixels = GetDeviceCaps(hdc, VERTRES);

  // An overflow or a zero resolution is an arithmetic error: the dump ends before any file is
  // made. The copy's extent is worked out here too, so that nothing fails halfway.
  int32_t widthUnits = 0, heightUnits = 0, width = 0, height = 0;
  RECT frame;
  if (!hundredths(widthMm, widthUnits) || !hundredths(heightMm, heightUnits) ||
      !scale(client.left, widthUnits, widthPixels, frame.left) ||
      !scale(client.top, heightUnits, heightPixels, frame.top) ||
      !scale(client.right, widthUnits, widthPixels, frame.right) ||
      !scale(client.bottom, heightUnits, heightPixels, frame.bottom) ||
      __builtin_sub_overflow(client.right, client.left, &width) ||
      __builtin_sub_overflow(client.bottom, client.top, &height)) {
    return nullptr;
  }

  HDC mf = CreateEnhMetaFileA(hdc, filename.c_str(), &frame, nullptr);
  if (!mf) return nullptr;
  const int32_t old = SetStretchBltMode(mf, HALFTONE);
  BitBlt(mf, 0, 0, width, height, hdc, client.left, client.top, SRCCOPY);
  SetStretchBltMode(mf, old);
  return CloseEnhMetaFile(mf);
}

}  // namespace ostrel::ModPrintScreen
