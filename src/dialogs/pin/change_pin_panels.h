// The change-PIN panels that live in this process, in the order in which they were made.
//
// A host that embeds a panel in a window of its own names it by that window's handle only. Panels
// are made, found and destroyed on user-interface threads; there is no lock.
#pragma once

#include <dlgfw/wnd.h>

class CChangePINDialog;

namespace mvp {

void AddChangePinPanel(CChangePINDialog* pPanel);
void RemoveChangePinPanel(const CChangePINDialog* pPanel) noexcept;

// Whether the panel still lives.
bool IsChangePinPanel(const CChangePINDialog* pPanel) noexcept;

// The youngest panel whose window's parent is `hHost`; null when there is none.
CChangePINDialog* FindChangePinPanel(HWND hHost) noexcept;

}  // namespace mvp
