#pragma once
// The few window-system and drawing calls that the screen dump makes, done our own way: a window
// device context holds a snapshot of what the window shows, and an enhanced-metafile device
// context records what is drawn into it and writes the file when it is closed.
//
// Handles are owned objects. A handle is released exactly once (ReleaseDC, CloseEnhMetaFile,
// DeleteEnhMetaFile); a handle that is null, unknown or already released is refused with 0.

#include <cstdint>

#include "ostrel/Platform.h"

namespace ostrel::output {

struct DeviceContext;
struct EnhMetaFile;

using HWND = Platform*;  // the window that a Platform stands for
using HDC = DeviceContext*;
using HENHMETAFILE = EnhMetaFile*;
using BOOL = int32_t;

struct RECT {
  int32_t left = 0, top = 0, right = 0, bottom = 0;
};

// GetDeviceCaps indices.
constexpr int32_t HORZSIZE = 4;  // screen width, mm
constexpr int32_t VERTSIZE = 6;  // screen height, mm
constexpr int32_t HORZRES = 8;   // screen width, pixels
constexpr int32_t VERTRES = 10;  // screen height, pixels

// Stretch modes.
constexpr int32_t BLACKONWHITE = 1;
constexpr int32_t WHITEONBLACK = 2;
constexpr int32_t COLORONCOLOR = 3;
constexpr int32_t HALFTONE = 4;

constexpr uint32_t SRCCOPY = 0x00CC0020;

// A device context of the window's client area: what the window shows now, the client size and
// the metrics of the screen it is on. 0 when there is no window or its picture cannot be had.
HDC GetDC(HWND hWnd);
// Gives back a device context that GetDC made for this window: 1, or 0 when it is not one.
int32_t ReleaseDC(HWND hWnd, HDC hdc);
// The window's client area: left and top 0, right and bottom its width and height.
BOOL GetClientRect(HWND hWnd, RECT* rect);
// HORZSIZE, VERTSIZE, HORZRES or VERTRES of the screen that the context draws for; 0 otherwise.
// A metafile context answers for its reference device.
int32_t GetDeviceCaps(HDC hdc, int32_t index);

// Starts a metafile whose file is the given name, exactly as given. hdcRef is the reference
// device (its metrics size the file); frame is the picture's bounds in 0.01 mm, or null to take
// them from what is drawn; description is null or "app\0title\0\0". 0 when the file cannot be
// created or hdcRef is no window context.
HDC CreateEnhMetaFileA(HDC hdcRef, const char* filename, const RECT* frame,
                       const char* description);
// Sets how stretched bitmaps are reduced; the previous mode, or 0 for a bad context or mode.
int32_t SetStretchBltMode(HDC hdc, int32_t mode);
// Copies cx by cy pixels of hdcSrc from (xSrc, ySrc) to (x, y) of the metafile context hdc.
// Pixels outside the source's client area read as black.
BOOL BitBlt(HDC hdc, int32_t x, int32_t y, int32_t cx, int32_t cy, HDC hdcSrc, int32_t xSrc,
            int32_t ySrc, uint32_t rop);
// Ends the recording and writes the file. The context is released either way; the metafile's
// handle, or 0 when the file could not be written.
HENHMETAFILE CloseEnhMetaFile(HDC hdc);
// Releases the handle; the file stays on disk.
BOOL DeleteEnhMetaFile(HENHMETAFILE hemf);

}  // namespace ostrel::output
