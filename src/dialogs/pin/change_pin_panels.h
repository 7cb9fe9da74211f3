// The change-PIN panels that live in this process, in the order in which they were made.
//
// A host that embeds a panel in a window of its own names it by that window's handle only. Panels
// are made, found and destroyed on user-interface threads; there is no lock. The list knows the
// panels' windows itself: a thread that ended with a panel up has left an entry whose object may be
// gone, and whose window is.
#pragma once

#include <dlgfw/wnd.h>

class CChangePINDialog;

namespace mvp {

void AddChangePinPanel(CChangePINDialog* pPanel);
// Tells the list of the panel's window; null when that goes.
void SetChangePinPanelWindow(const CChangePINDialog* pPanel, HWND hWnd) noexcept;
void RemoveChangePinPanel(const CChangePINDialog* pPanel) noexcept;

// Whether the panel still lives.
bool IsChangePinPanel(const CChangePINDialog* pPanel) noexcept;

// The youngest panel whose window's parent is `hHost`; null when there is none. Null is no host.
CChangePINDialog* FindChangePinPanel(HWND hHost) noexcept;

}  // namespace mvp
