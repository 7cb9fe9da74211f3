// The resolution that a window is drawn in.
#pragma once

#include <windows.h>

#include "platform/handle.h"
#include "platform/resolution.h"

namespace mvp {

// In dots per inch, of the device that the window (null: the screen) is drawn on: 96 in a process
// that has not named its awareness, whose windows the system enlarges. It is the same for as long
// as the process lives. 96, too, where there is no device to ask.
inline int WindowDpi(HWND hWnd) noexcept {
    const WindowDc device(hWnd);
    const int dpi = device.get() != nullptr ? GetDeviceCaps(device.get(), LOGPIXELSY) : 0;
    return dpi > 0 ? dpi : kDesignDpi;
}

// `nPixels` of 96 dpi in that window.
inline int PixelsIn(HWND hWnd, int nPixels) noexcept {
    return PixelsAt(WindowDpi(hWnd), nPixels);
}

}  // namespace mvp
