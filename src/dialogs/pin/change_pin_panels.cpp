#include "dialogs/pin/change_pin_panels.h"

#include <algorithm>
#include <vector>

#include "mvpingui/change_pin_dialog.h"

namespace {

struct LivePanel {
    CChangePINDialog* pPanel;
    HWND hWnd;  // null while there is none
};

std::vector<LivePanel> g_ChangePINDialogs;

}  // namespace

namespace mvp {

void AddChangePinPanel(CChangePINDialog* pPanel) {
    g_ChangePINDialogs.push_back({pPanel, nullptr});
}

void SetChangePinPanelWindow(const CChangePINDialog* pPanel, HWND hWnd) noexcept {
    const auto entry = std::ranges::find(g_ChangePINDialogs, pPanel, &LivePanel::pPanel);
    if (entry != g_ChangePINDialogs.end()) {
        entry->hWnd = hWnd;
    }
}

void RemoveChangePinPanel(const CChangePINDialog* pPanel) noexcept {
    std::erase_if(g_ChangePINDialogs,
                  [pPanel](const LivePanel& each) { return each.pPanel == pPanel; });
}

bool IsChangePinPanel(const CChangePINDialog* pPanel) noexcept {
    return std::ranges::find(g_ChangePINDialogs, pPanel, &LivePanel::pPanel) !=
           g_ChangePINDialogs.end();
}

CChangePINDialog* FindChangePinPanel(HWND hHost) noexcept {
    // A window that is not there has no parent: null would match it.
    if (hHost == nullptr) {
        return nullptr;
    }
    const auto match = std::find_if(g_ChangePINDialogs.rbegin(), g_ChangePINDialogs.rend(),
                                    [hHost](const LivePanel& each) {
                                        // The window of a panel whose thread has ended may be
                                        // another's by now.
                                        return ::GetParent(each.hWnd) == hHost &&
                                               CWnd::FromHandlePermanent(each.hWnd) == each.pPanel;
                                    });
    return match != g_ChangePINDialogs.rend() ? match->pPanel : nullptr;
}

}  // namespace mvp
