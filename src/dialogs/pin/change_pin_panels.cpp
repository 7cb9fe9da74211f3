#include "dialogs/pin/change_pin_panels.h"

#include <algorithm>
#include <vector>

#include "mvpingui/change_pin_dialog.h"

namespace {

std::vector<CChangePINDialog*> g_ChangePINDialogs;

}  // namespace

namespace mvp {

void AddChangePinPanel(CChangePINDialog* pPanel) {
    g_ChangePINDialogs.push_back(pPanel);
}

void RemoveChangePinPanel(const CChangePINDialog* pPanel) noexcept {
    std::erase(g_ChangePINDialogs, pPanel);
}

bool IsChangePinPanel(const CChangePINDialog* pPanel) noexcept {
    return std::ranges::find(g_ChangePINDialogs, pPanel) != g_ChangePINDialogs.end();
}

CChangePINDialog* FindChangePinPanel(HWND hHost) noexcept {
    const auto match =
        std::find_if(g_ChangePINDialogs.rbegin(), g_ChangePINDialogs.rend(),
                     [hHost](const CChangePINDialog* pPanel) {
                         // A panel without a window is nobody's: a null handle would match it.
                         return pPanel->m_hWnd != nullptr && ::GetParent(pPanel->m_hWnd) == hHost;
                     });
    return match != g_ChangePINDialogs.rend() ? *match : nullptr;
}

}  // namespace mvp
