// PNG pictures of what stands on the screen, through the system's imaging component.
//
// A window is taken from the screen, not drawn anew: the picture shows what a user sees, with the
// tool tips and popups that lie over the window.
//
//     std::string strError;
//     if (!mvp::SaveWindowPng(hDlg, "dialog.png", strError))
//         ...
//
// The two that look at the screen take some 50 ms, to see that the picture has come to rest. All
// may be called from any thread. They return false with the reason in `strError`; a file that could
// not be completed is not left behind.
#pragma once

#include <windows.h>

#include <string>

namespace mvp {

bool SaveWindowPng(HWND hWnd, const std::string& strFile, std::string& strError);

// A picture drawn off the screen; the bitmap must not be selected anywhere. Takes no time to rest.
bool SaveBitmapPng(HBITMAP hBitmap, const std::string& strFile, std::string& strError);

// `rect` is in screen coordinates, clipped to the screen.
bool SaveScreenPng(const RECT& rect, const std::string& strFile, std::string& strError);

}  // namespace mvp
