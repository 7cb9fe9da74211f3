// The window class "VkProgressBar": a bar that shows that something is under way, without saying
// how far it has come. A train of chunks runs through it, one step per tick of the window's timer,
// as long as the window is enabled.
//
//     mvp::RegisterProgressBarClass(hInstance);
//     HWND hBar = CreateWindowExA(0, mvp::kProgressBarClass, "", WS_CHILD | WS_VISIBLE, ...);
//     SendMessageA(hBar, mvp::kProgressSetBlocks, 8, 0);
//     EnableWindow(hBar, FALSE);  // stands still, back at the start
//
// The class is global to the process, so that dialog templates of any module may name it. The bar
// follows the theme of the system unless its style has kProgressClassicLook.
#pragma once

#include <windows.h>

namespace mvp {

inline constexpr char kProgressBarClass[] = "VkProgressBar";

// Bit of the window style: no theme, whatever the system has.
inline constexpr DWORD kProgressClassicLook = 0x8000;

// Messages. Parameters that are not named are ignored.
inline constexpr UINT kProgressGetInterval = WM_USER;      // returns the milliseconds of a tick
inline constexpr UINT kProgressSetInterval = WM_USER + 1;  // wParam: milliseconds, 32 bits; returns
                                                           // 1, or 0 when there is no timer to have
inline constexpr UINT kProgressGetBlocks = WM_USER + 2;    // returns the number of chunks
inline constexpr UINT kProgressSetBlocks = WM_USER + 3;    // wParam: 1 to 20; returns 1, or 0 for
                                                         // any other number, which changes nothing

// The timer of every bar, and what a new bar starts with.
inline constexpr UINT_PTR kProgressTimer = 1;
inline constexpr UINT kProgressDefaultInterval = 18;
inline constexpr UINT kProgressDefaultBlocks = 5;

// Registers the class for `hInstance` (the host program's). False when the system refuses, for one
// because the class is registered already. Loads no library, so that it may be called while a
// library is being attached.
bool RegisterProgressBarClass(HINSTANCE hInstance) noexcept;

// To be called when no window of the class is left; while there is one, the class stays.
void UnregisterProgressBarClass(HINSTANCE hInstance) noexcept;

}  // namespace mvp
