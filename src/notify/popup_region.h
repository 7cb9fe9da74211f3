// The shape of a notice: what is left of its skin without the transparent colour. Any thread.
#pragma once

#include <windows.h>

#include <memory>

#include "platform/handle.h"

namespace mvp {

// On the process's heap, which every language runtime frees alike: the pixels may be handed out.
struct FreePixels {
    void operator()(BYTE* pPixels) const noexcept { HeapFree(GetProcessHeap(), 0, pPixels); }
};
using Pixels = std::unique_ptr<BYTE[], FreePixels>;

// A bitmap's pixels, row by row from the top with nothing between, each as blue, green, red. Sets
// the width, rounded down to a multiple of 4, and the height. Null when there is no such bitmap,
// when it is narrower than 4 pixels, is selected somewhere, or when memory runs out.
Pixels Get24BitPixels(HBITMAP hBitmap, WORD& nWidth, WORD& nHeight) noexcept;

// The rectangle of the pixels without those of the colour; none without pixels or memory.
Region RegionOfPixels(const BYTE* pPixels, WORD nWidth, WORD nHeight, BYTE nRed, BYTE nGreen,
                      BYTE nBlue) noexcept;

// The bitmap's rectangle, as wide as above, without the pixels of the colour. None for the reasons
// above.
Region GenerateRegion(HBITMAP hBitmap, BYTE nRed, BYTE nGreen, BYTE nBlue) noexcept;

}  // namespace mvp
