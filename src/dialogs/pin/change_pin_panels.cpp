#include "dialogs/pin/change_pin_panels.h"

#include <algorithm>
#include <vector>

#include "mvpingui/change_pin_dialog.h"

namespace {

std::vector<CChangePINDialog*>& Panels() {
    static std::vector<CChangePINDialog*> g_ChangePINDialogs;
    return g_ChangePINDialogs;
}

}  // namespace

namespace mvp {

void AddChangePinPanel(CChangePINDialog* pPanel) {
    Panels().push_back(pPanel);
}

void RemoveChangePinPanel(const CChangePINDialog* pPanel) noexcept {
    std::erase(Panels(), pPanel);
}

bool IsChangePinPanel(const CChangePINDialog* pPanel) noexcept {
    return std::ranges::find(Panels(), pPanel) != Panels().end();
}

CChangePINDialog* FindChangePinPanel(HWND hHost) noexcept {
    const auto match =
        std::find_if(Panels().rbegin(), Panels().rend(), [hHost](const CChangePINDialog* pPanel) {
            // A panel without a window is nobody's: a null handle would match it.
            return pPanel->m_hWnd != nullptr && ::GetParent(pPanel->m_hWnd) == hHost;
        });
    return match != Panels().rend() ? *match : nullptr;
}

}  // namespace mvp
