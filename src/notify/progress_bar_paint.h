// How the busy bar looks: as the theme says, or in the classic look.
#pragma once

#include <windows.h>

#include <cstdint>

namespace mvp {

// Draws the whole client area of `hWnd` on `hDC`, with a train of `nBlocks` chunks after
// `nPosition` ticks. `bMayUseTheme` false asks for the classic look; it is also what is drawn when
// the system or the program has no theme. Returns true when the train has left the bar.
// Call it from the window's thread, and not while a library is being attached: the first call loads
// the system's theme library.
bool DrawProgressBar(HWND hWnd, HDC hDC, bool bMayUseTheme, std::int32_t nPosition,
                     std::uint32_t nBlocks) noexcept;

}  // namespace mvp
