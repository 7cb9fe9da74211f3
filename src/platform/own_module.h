// The binary that the calling code is part of: the library, or whatever program links this code.
#pragma once

#include <windows.h>

#include "platform/handle.h"

namespace mvp {

// Its instance handle, for windows that it creates.
HINSTANCE OwnModule() noexcept;

// A reference that keeps it loaded; null when the system has none to give.
ModuleHandle HoldOwnModule() noexcept;

}  // namespace mvp
