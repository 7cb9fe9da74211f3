// The windows of a thread, seen from another one without a message to them: the answer comes also
// when the thread hangs.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace mvp {

// The visible top-level windows of the thread, in z-order.
std::vector<HWND> VisibleWindows(DWORD dwThreadId);

// The control of that number, the window's own before those within its panels; null: it has none.
HWND FindControl(HWND hWindow, int nId);

std::string ClassOf(HWND hWnd);
std::string TitleOf(HWND hWnd);

inline bool IsDialog(HWND hWnd) {
    return ClassOf(hWnd) == "#32770";
}

// Whether the window has been closed, or hidden on its way there.
inline bool IsGone(HWND hWnd) {
    return !IsWindow(hWnd) || !IsWindowVisible(hWnd);
}

}  // namespace mvp
