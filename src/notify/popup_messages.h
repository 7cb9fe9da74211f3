// Messages that the popup sends to itself.
#pragma once

#include <windows.h>

namespace mvp {

// Hide, asked for on another thread.
constexpr UINT kHidePopupMessage = WM_APP + 1;

}  // namespace mvp
