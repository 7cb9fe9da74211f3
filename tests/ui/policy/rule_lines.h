// The lines of the rule panel as a test sees them, from outside, by the numbers of their controls.
#pragma once

#include <windows.h>

#include <array>

#include "mvpingui/pwd_rule_args.h"
#include "resources/resource_numbers.h"

namespace mvp::test {

struct RuleLine {
    const char* pszName;
    int nText;
    int nIcon;
    UINT nString;
};

// From the top of the screen.
inline constexpr std::array<RuleLine, 6> kRuleLines = {{
    {"MinPINLen", IDC_POLICIES_MIN_TEXT, IDC_POLICIES_MIN_ICON, IDS_POLICIES_MIN_FORMAT},
    {"MaxPINLen", IDC_POLICIES_MAX_TEXT, IDC_POLICIES_MAX_ICON, IDS_POLICIES_MAX_FORMAT},
    {"WeakPIN", IDC_POLICIES_WEAK_TEXT, IDC_POLICIES_WEAK_ICON, IDS_POLICIES_WEAK},
    {"PreventSamePIN", IDC_POLICIES_SAME_TEXT, IDC_POLICIES_SAME_ICON, IDS_POLICIES_SAME},
    {"AlphaPIN", IDC_POLICIES_ALPHA_TEXT, IDC_POLICIES_ALPHA_ICON, IDS_POLICIES_ALPHA},
    {"ConfirmPIN", IDC_POLICIES_CONFIRM_TEXT, IDC_POLICIES_CONFIRM_ICON, IDS_POLICIES_CONFIRM},
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

// In the client coordinates of `hParent`.
inline RECT RectIn(HWND hParent, HWND hWnd) {
    RECT rect;
    GetWindowRect(hWnd, &rect);
    MapWindowPoints(nullptr, hParent, reinterpret_cast<POINT*>(&rect), 2);
    return rect;
}

inline bool Overlap(const RECT& a, const RECT& b) {
    RECT common;
    return IntersectRect(&common, &a, &b) != FALSE;
}

}  // namespace mvp::test
