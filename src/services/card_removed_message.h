// The window message through which the removal of a card reaches a dialog.
#pragma once

#include <windows.h>

namespace mvp {

// The identifier registered for "VKCardRemovedEvent" when the library was loaded. It is posted with
// wParam 1 and lParam 0.
extern const UINT g_nCardRemovedMessage;

}  // namespace mvp
