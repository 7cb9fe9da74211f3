// The pixels of a bitmap as plain memory, row by row from the top.
#pragma once

#include <windows.h>

#include <cstdint>

namespace mvp {

// Describes such memory. nBits: of a pixel, 24 (blue, green, red) or 32 (and a fourth byte).
BITMAPINFO TopDownPixels(std::int32_t nWidth, std::int32_t nHeight, WORD nBits) noexcept;

// Copies the bitmap's pixels, which must not be selected anywhere, into memory that is as large as
// `info` (of TopDownPixels) says; its rows each begin at a multiple of four bytes. False when not
// all rows could be read.
bool ReadBitmapPixels(HBITMAP hBitmap, BITMAPINFO info, void* pPixels) noexcept;

}  // namespace mvp
