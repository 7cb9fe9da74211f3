#include "platform/bitmap_pixels.h"

#include "platform/handle.h"

namespace mvp {

BITMAPINFO TopDownPixels(std::int32_t nWidth, std::int32_t nHeight, WORD nBits) noexcept {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = nWidth;
    info.bmiHeader.biHeight = -nHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = nBits;
    info.bmiHeader.biCompression = BI_RGB;
    return info;
}

bool ReadBitmapPixels(HBITMAP hBitmap, BITMAPINFO info, void* pPixels) noexcept {
    const WindowDc screen(nullptr);
    const int rows = -info.bmiHeader.biHeight;
    return GetDIBits(screen.get(), hBitmap, 0, static_cast<UINT>(rows), pPixels, &info,
                     DIB_RGB_COLORS) == rows;
}

}  // namespace mvp
