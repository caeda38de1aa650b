#pragma once
// Saves what a window shows as an enhanced metafile: one bitmap copy of its client area, framed
// in real-world units from the screen's size. Knows nothing of the board.

#include <string>

#include "output/Gdi.h"

namespace ostrel::ModPrintScreen {

// The closed metafile of hWnd's client area, or 0 when there is no window context, no client
// area or no file. The caller releases the handle with DeleteEnhMetaFile.
output::HENHMETAFILE writeWindowMetafile(output::HWND hWnd, const std::string& filename);

// The closed metafile of the client rectangle of hdc, or 0.
output::HENHMETAFILE writeDcMetafile(output::HDC hdc, const output::RECT& client,
                                     const std::string& filename);

}  // namespace ostrel::ModPrintScreen
