// What describes a bitmap of 24 bits a pixel, for tests that write bitmap files.
#pragma once

#include <windows.h>

namespace mvp::test {

inline BITMAPINFOHEADER TrueColorHeader(int nWidth, int nHeight) {
    BITMAPINFOHEADER info{};
    info.biSize = sizeof info;
    info.biWidth = nWidth;
    info.biHeight = nHeight;
    info.biPlanes = 1;
    info.biBitCount = 24;
    return info;
}

}  // namespace mvp::test
