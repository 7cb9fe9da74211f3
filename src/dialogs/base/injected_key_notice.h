// The line of a dialog that tells of keys which a program has sent.
//
// It stands above the dialog's bottom row of buttons, which makes room when the line comes, and
// stays until the dialog goes. A panel in a window of the host's cannot ask that window for room,
// so it keeps some from the start. Dialogs of the window's own thread only.
#pragma once

#include <dlgfw/wnd.h>

#include "dialogs/base/key_origin.h"

namespace mvp {

// Keeps room for the line at the bottom of `panel`, which grows by it, where the policy may bring
// the line and the panel's parent is no dialog of the library's.
void ReserveInjectedKeyNotice(CWnd& panel, InjectedKeys policy) noexcept;

// Shows the line in the panel around the edit that keeps room for it, else in the outermost dialog
// around the edit, and tells assistive programs. A line that is there already stays as it is.
void ShowInjectedKeyNotice(HWND hEdit, InjectedKeys policy) noexcept;

}  // namespace mvp
