// A question with up to three buttons, or a message with one.
#pragma once

#include <windows.h>

#include "pinentry/core/user_interface.h"

namespace pinentry {

// Returns IDOK, IDNO, IDCANCEL, or -1 when no window could be opened. hParent is disabled
// meanwhile; may be null.
int RunConfirmDialog(HWND hParent, const Confirmation& confirmation);

}  // namespace pinentry
