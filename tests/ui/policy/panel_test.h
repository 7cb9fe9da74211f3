// A rule panel in a host window, with the library attached.
#pragma once

#include <memory>
#include <string>

#include <dlgfw/dlgfw.h>
#include <gtest/gtest.h>

#include "mvpingui/policies_dialog.h"
#include "services/resource_module.h"
#include "support/log_recorder.h"
#include "ui/dialogs/attached_library.h"
#include "ui/policy/rule_lines.h"

namespace mvp::test {

struct PanelMargins {
    int nTop = 15;
    int nIndent = 0;
    int nSpacing = 6;
};

class HostedPanel {
public:
    explicit HostedPanel(const PwdRuleArgs* pRules, const PanelMargins& margins = {}) {
        EXPECT_TRUE(m_host.CreateEx(0, "STATIC", "host", WS_POPUP | WS_VISIBLE | WS_CLIPCHILDREN, 0,
                                    0, 600, 500, nullptr, nullptr));
        const RECT place = {12, 34, 999, 999};
        m_panel = std::make_unique<VKPoliciesDlg>(pRules, 0, &place, &m_host, margins.nTop,
                                                  margins.nIndent, margins.nSpacing);
        EXPECT_NE(m_panel->LocCreate(&m_host), 0);
    }
    HostedPanel(const HostedPanel&) = delete;
    HostedPanel& operator=(const HostedPanel&) = delete;
    ~HostedPanel() { m_panel->DestroyWindow(); }

    CWnd& Host() { return m_host; }
    VKPoliciesDlg& Panel() { return *m_panel; }
    HWND Handle() const { return m_panel->m_hWnd; }
    HWND Control(int nId) const { return ::GetDlgItem(m_panel->m_hWnd, nId); }

    bool Check(const char* pszOld, const char* pszValue, const char* pszNew,
               const char* pszConfirm) {
        return m_panel->VerifyAndUpdatePolicies(pszOld, pszValue, pszNew, pszConfirm);
    }

    // One letter for each line, from the top: '-' hidden, 's' satisfied, 'v' violated, '?' none of
    // these.
    std::string Lines() const {
        std::string lines;
        for (const RuleLine& line : kRuleLines)
            lines += LineState(line);
        return lines;
    }

    std::string Text(int nId) const {
        char text[256] = "";
        GetWindowTextA(Control(nId), text, sizeof text);
        return text;
    }

private:
    char LineState(const RuleLine& line) const {
        const HWND hIcon = Control(line.nIcon);
        const bool bVisible = IsWindowVisible(hIcon) != FALSE;
        if (bVisible != (IsWindowVisible(Control(line.nText)) != FALSE))
            return '?';
        if (!bVisible)
            return '-';
        auto* const hShown = reinterpret_cast<HICON>(SendMessageA(hIcon, STM_GETICON, 0, 0));
        if (hShown == LoadResourceIcon(IDI_RULE_SATISFIED, 16))
            return 's';
        return hShown == LoadResourceIcon(IDI_RULE_VIOLATED, 16) ? 'v' : '?';
    }

    CWnd m_host;
    std::unique_ptr<VKPoliciesDlg> m_panel;
};

}  // namespace mvp::test
