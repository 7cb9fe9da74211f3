// The lines of the rule panel as a test sees them, from outside, by the numbers of their controls;
// and a panel in a host's window.
#pragma once

#include <windows.h>

#include <array>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "mvpingui/policies_dialog.h"
#include "resources/resource_numbers.h"
#include "support/control_layout.h"
#include "ui/dialogs/library_test.h"

namespace mvp::test {

struct RuleLine {
    int nText;
    int nIcon;
    UINT nString;
};

inline constexpr std::array<RuleLine, 6> kRuleLines = {{
    {IDC_POLICIES_MIN_TEXT, IDC_POLICIES_MIN_ICON, IDS_POLICIES_MIN_FORMAT},
    {IDC_POLICIES_MAX_TEXT, IDC_POLICIES_MAX_ICON, IDS_POLICIES_MAX_FORMAT},
    {IDC_POLICIES_WEAK_TEXT, IDC_POLICIES_WEAK_ICON, IDS_POLICIES_WEAK},
    {IDC_POLICIES_SAME_TEXT, IDC_POLICIES_SAME_ICON, IDS_POLICIES_SAME},
    {IDC_POLICIES_ALPHA_TEXT, IDC_POLICIES_ALPHA_ICON, IDS_POLICIES_ALPHA},
    {IDC_POLICIES_CONFIRM_TEXT, IDC_POLICIES_CONFIRM_ICON, IDS_POLICIES_CONFIRM},
}};

// Of the 32 subsets of the optional rules: bit i for the line i.
inline constexpr unsigned kRuleSubsets = 32;

constexpr bool IsInSubset(unsigned nSubset, std::size_t nLine) {
    return nLine == 5 || (nSubset >> nLine & 1u) != 0;
}

constexpr PwdRuleArgs RulesOfSubset(unsigned nSubset) {
    return {0,
            nSubset >> 4 & 1u,
            nSubset >> 2 & 1u,
            nSubset >> 3 & 1u,
            (nSubset & 1u) != 0 ? 4 : MVP_NO_PIN_LENGTH_RULE,
            (nSubset & 2u) != 0 ? 8 : MVP_NO_PIN_LENGTH_RULE,
            0};
}

struct PanelMargins {
    int nTop = 15;
    int nIndent = 0;
    int nSpacing = 6;
};

class HostedPanel {
public:
    explicit HostedPanel(const PwdRuleArgs* pRules, const PanelMargins& margins = {}) {
        const RECT place = {12, 34, 999, 999};
        m_panel = std::make_unique<VKPoliciesDlg>(pRules, 0, &place, &m_host, margins.nTop,
                                                  margins.nIndent, margins.nSpacing);
        EXPECT_NE(m_panel->LocCreate(&m_host), 0);
    }

    CWnd& Host() { return m_host; }
    VKPoliciesDlg& Panel() { return *m_panel; }
    HWND Handle() const { return m_panel->m_hWnd; }
    HWND Control(int nId) const { return ::GetDlgItem(m_panel->m_hWnd, nId); }
    CRect RectOf(int nId) const { return RectIn(Handle(), Control(nId)); }

    bool Check(const char* pszOld, const char* pszValue, const char* pszNew,
               const char* pszConfirm) {
        return m_panel->VerifyAndUpdatePolicies(pszOld, pszValue, pszNew, pszConfirm);
    }

    // One letter for each line, from the top: '-' hidden, 's' satisfied, 'v' violated, '?' none of
    // these.
    std::string Lines() const {
        std::string lines;
        for (const RuleLine& line : kRuleLines) {
            const HICON icon = IconOf(Control(line.nIcon));
            const bool visible = IsWindowVisible(Control(line.nIcon)) != FALSE;
            if (visible != (IsWindowVisible(Control(line.nText)) != FALSE)) {
                lines += '?';
            } else if (!visible) {
                lines += '-';
            } else if (icon == LoadResourceIcon(IDI_RULE_SATISFIED, 16)) {
                lines += 's';
            } else {
                lines += icon == LoadResourceIcon(IDI_RULE_VIOLATED, 16) ? 'v' : '?';
            }
        }
        return lines;
    }

    std::string Text(int nId) const { return test::Control::Of(Control(nId)).strText; }

private:
    HostWindow m_host;
    std::unique_ptr<VKPoliciesDlg> m_panel;
};

}  // namespace mvp::test
