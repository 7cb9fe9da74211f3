#include "mvpingui/policies_dialog.h"

#include <array>
#include <string_view>
#include <type_traits>

#include <dlgfw/geometry.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/optional_control.h"
#include "platform/barrier.h"
#include "platform/window_dpi.h"
#include "policy/pin_policy.h"
#include "policy/policy_layout.h"
#include "policy/rule_text.h"
#include "resources/resource_numbers.h"
#include "services/format_check.h"
#include "services/log.h"
#include "services/resource_module.h"
#include "services/text_view.h"

BEGIN_MESSAGE_MAP(VKPoliciesDlg, CBaseDialog)
    ON_WM_SYSCOLORCHANGE()
END_MESSAGE_MAP()

namespace {

constexpr int kIconSize = 16;
// What a length updater is given for a line that is not shown.
constexpr int kNoLength = -1;

// By mvp::IndexOf(rule).
constexpr std::array<int, mvp::kPinRuleCount> kIcons = {
    IDC_POLICIES_MIN_ICON,  IDC_POLICIES_MAX_ICON,   IDC_POLICIES_WEAK_ICON,
    IDC_POLICIES_SAME_ICON, IDC_POLICIES_ALPHA_ICON, IDC_POLICIES_CONFIRM_ICON,
};
constexpr std::array<int, mvp::kPinRuleCount> kTexts = {
    IDC_POLICIES_MIN_TEXT,  IDC_POLICIES_MAX_TEXT,   IDC_POLICIES_WEAK_TEXT,
    IDC_POLICIES_SAME_TEXT, IDC_POLICIES_ALPHA_TEXT, IDC_POLICIES_CONFIRM_TEXT,
};

HICON LoadIconFor(const CWnd* pParent, UINT nIcon) {
    const HWND parent = pParent != nullptr ? pParent->m_hWnd : nullptr;
    return mvp::LoadResourceIcon(nIcon, mvp::PixelsIn(parent, kIconSize));
}

constexpr unsigned TextBit(mvp::PinRule rule) {
    return 1U << mvp::IndexOf(rule);
}

CString FormatLength(UINT nFormat, int nLength) {
    CString format = mvp::ResourceString(nFormat);
    if (!mvp::TakesOneInteger(mvp::View(format))) {
        return format;
    }
    CString text;
    text.Format(format, nLength);
    return text;
}

}  // namespace

VKPoliciesDlg::VKPoliciesDlg(const PwdRuleArgs* pRules, int bUseWindowColor, const RECT* pPosition,
                             CWnd* pParent, int nTopMargin, int nLeftIndent, int nLineSpacing)
    : CBaseDialog(IDD_POLICIES, bUseWindowColor, pPosition, pParent),
      m_texts(std::make_unique<mvp::RuleText[]>(mvp::kPinRuleCount)),
      m_nTopMargin(nTopMargin),
      m_nLeftIndent(nLeftIndent),
      m_nLineSpacing(nLineSpacing),
      m_hSatisfied(LoadIconFor(pParent, IDI_RULE_SATISFIED)),
      m_hViolated(LoadIconFor(pParent, IDI_RULE_VIOLATED)) {
    const mvp::LogScope scope("VKPoliciesDlg::VKPoliciesDlg");
    const mvp::PinRules rules(pRules);
    m_dwMinPINLen = rules.dwMinPINLen;
    m_dwMaxPINLen = rules.dwMaxPINLen;
    m_bPreventWeakPIN = rules.bPreventWeakPIN;
    m_bPreventAlphaPIN = rules.bPreventAlphaPIN;
    m_bPreventSamePIN = rules.bPreventSamePIN;
}

VKPoliciesDlg::~VKPoliciesDlg() = default;

int VKPoliciesDlg::LocCreate(CWnd* pParent) {
    const mvp::LogScope scope("VKPoliciesDlg::LocCreate");
    return CreateFromResourceModule(pParent);
}

void VKPoliciesDlg::DoDataExchange(CDataExchange* pDX) {
    CBaseDialog::DoDataExchange(pDX);
    mvp::BindIfThere(pDX, IDC_POLICIES_BOX, m_groupBox);
    static_assert(std::extent_v<decltype(m_icons)> == mvp::kPinRuleCount);
    for (std::size_t i = 0; i < kIcons.size(); ++i) {
        mvp::BindIfThere(pDX, kIcons.at(i), m_icons[i]);
        mvp::BindIfThere(pDX, kTexts.at(i), m_texts[i]);
    }
}

BOOL VKPoliciesDlg::OnInitDialog() {
    const mvp::LogScope scope("VKPoliciesDlg::OnInitDialog");
    return mvp::Guarded(
        FALSE,
        [this] {
            const BOOL result = CBaseDialog::OnInitDialog();
            CString caption;
            if (mvp::LoadResourceString(IDS_POLICIES_BOX, caption)) {
                m_groupBox.SetWindowText(caption);
                // The panel itself is the group that a screen reader finds the lines in.
                SetWindowText(caption);
            }
            PutPoliciesInBox();
            return result;
        },
        [this] {
            mvp::LogException("VKPoliciesDlg::OnInitDialog")();
            EndDialog(-1);  // the window is given up
        });
}

mvp::PinRules VKPoliciesDlg::Rules() const {
    mvp::PinRules rules;
    rules.dwMinPINLen = m_dwMinPINLen;
    rules.dwMaxPINLen = m_dwMaxPINLen;
    rules.bPreventWeakPIN = m_bPreventWeakPIN;
    rules.bPreventAlphaPIN = m_bPreventAlphaPIN;
    rules.bPreventSamePIN = m_bPreventSamePIN;
    return rules;
}

bool VKPoliciesDlg::VerifyAndUpdatePolicies(CString csOldValue, CString csValue, CString csNewValue,
                                            CString csConfirmValue) {
    const mvp::LogScope scope("VKPoliciesDlg::VerifyAndUpdatePolicies");
    const bool verdict = mvp::Guarded(
        false, [&] { return CheckAndShow(csOldValue, csValue, csNewValue, csConfirmValue); },
        mvp::LogException("VKPoliciesDlg::VerifyAndUpdatePolicies"));
    for (CString* textControl : {&csOldValue, &csValue, &csNewValue, &csConfirmValue}) {
        HidePinFromMemory(*textControl);
    }
    return verdict;
}

bool VKPoliciesDlg::CheckAndShow(const CString& csOldValue, const CString& csValue,
                                 const CString& csNewValue, const CString& csConfirmValue) {
    // In clear, as administrators who switch detail on expect; the reference warns of it.
    vklogLog(g_szLogTag, kLogDetail, "csOldValue: %s", static_cast<LPCSTR>(csOldValue));
    vklogLog(g_szLogTag, kLogDetail, "csValue: %s", static_cast<LPCSTR>(csValue));
    vklogLog(g_szLogTag, kLogDetail, "csNewValue: %s", static_cast<LPCSTR>(csNewValue));
    const mvp::PinCheck check =
        mvp::CheckPin(Rules(), {mvp::View(csOldValue), mvp::View(csValue), mvp::View(csNewValue),
                                mvp::View(csConfirmValue)});
    for (const mvp::PinRule rule : mvp::kPinCheckingOrder) {
        ShowRule(rule, check.State(rule) != mvp::RuleState::NotInForce,
                 check.State(rule) == mvp::RuleState::Satisfied, csValue);
    }
    if (m_hWnd != nullptr) {
        mvp::EnableIf(m_groupBox, true);
        mvp::ShowIf(*this, true);
    }
    return check.Verdict();
}

void VKPoliciesDlg::ShowRule(mvp::PinRule rule, bool bInForce, bool bSatisfied,
                             const CString& csValue) {
    switch (rule) {
        case mvp::PinRule::MinLength:
            SetMinPINLen(bInForce ? static_cast<int>(m_dwMinPINLen) : kNoLength, bInForce,
                         bSatisfied);
            break;
        case mvp::PinRule::MaxLength:
            SetMaxPINLen(bInForce ? static_cast<int>(m_dwMaxPINLen) : kNoLength, bInForce,
                         bSatisfied);
            break;
        case mvp::PinRule::NotWeak:
            SetWeakPIN(bInForce, bInForce && !IsPinWeak(csValue));
            break;
        case mvp::PinRule::NotSame:
            SetPreventSamePIN(bInForce, bSatisfied);
            break;
        case mvp::PinRule::DigitsOnly:
            SetAlphaPIN(bInForce, bInForce && !IsAlphaPinWeak(csValue));
            break;
        case mvp::PinRule::Confirmation:
            SetConfirmPIN(bSatisfied);
            break;
    }
}

bool VKPoliciesDlg::IsPinWeak(const CString& strPin) {
    const mvp::LogScope scope("VKPoliciesDlg::IsPinWeak");
    return mvp::IsPinWeak(mvp::View(strPin));
}

bool VKPoliciesDlg::IsAlphaPinWeak(const CString& strPin) {
    const mvp::LogScope scope("VKPoliciesDlg::IsAlphaPinWeak");
    return mvp::IsAlphaPinWeak(mvp::View(strPin));
}

void VKPoliciesDlg::SetMinPINLen(int nMin, bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetMinPINLen");
    if (!HasText(mvp::PinRule::MinLength)) {
        GiveText(mvp::PinRule::MinLength, FormatLength(IDS_POLICIES_MIN_FORMAT, nMin));
    }
    ShowLine(mvp::PinRule::MinLength, bShow, bSatisfied);
}

void VKPoliciesDlg::SetMaxPINLen(int nMax, bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetMaxPINLen");
    if (!HasText(mvp::PinRule::MaxLength)) {
        GiveText(mvp::PinRule::MaxLength, FormatLength(IDS_POLICIES_MAX_FORMAT, nMax));
    }
    ShowLine(mvp::PinRule::MaxLength, bShow, bSatisfied);
}

void VKPoliciesDlg::SetWeakPIN(bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetWeakPIN");
    if (!HasText(mvp::PinRule::NotWeak)) {
        GiveText(mvp::PinRule::NotWeak, mvp::ResourceString(IDS_POLICIES_WEAK));
    }
    ShowLine(mvp::PinRule::NotWeak, bShow, bSatisfied);
}

void VKPoliciesDlg::SetPreventSamePIN(bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetPreventSamePIN");
    if (!HasText(mvp::PinRule::NotSame)) {
        GiveText(mvp::PinRule::NotSame, mvp::ResourceString(IDS_POLICIES_SAME));
    }
    ShowLine(mvp::PinRule::NotSame, bShow, bSatisfied);
}

void VKPoliciesDlg::SetAlphaPIN(bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetAlphaPIN");
    if (!HasText(mvp::PinRule::DigitsOnly)) {
        GiveText(mvp::PinRule::DigitsOnly, mvp::ResourceString(IDS_POLICIES_ALPHA));
    }
    ShowLine(mvp::PinRule::DigitsOnly, bShow, bSatisfied);
}

void VKPoliciesDlg::SetConfirmPIN(bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetConfirmPIN");
    if (!HasText(mvp::PinRule::Confirmation)) {
        GiveText(mvp::PinRule::Confirmation, mvp::ResourceString(IDS_POLICIES_CONFIRM));
    }
    ShowLine(mvp::PinRule::Confirmation, true, bSatisfied);
}

// The card's rules do not change, so neither do the texts: a line is given its own once. Not anew
// with each check: setting a text paints it, which flickers while the user types.
bool VKPoliciesDlg::HasText(mvp::PinRule rule) const {
    return m_hWnd == nullptr || (m_nTextsSet & TextBit(rule)) != 0;
}

void VKPoliciesDlg::GiveText(mvp::PinRule rule, const CString& strText) {
    m_texts[mvp::IndexOf(rule)].SetWindowText(strText);
    m_nTextsSet |= TextBit(rule);
}

void VKPoliciesDlg::ShowLine(mvp::PinRule rule, bool bShow, bool bSatisfied) {
    mvp::RuleText& text = m_texts[mvp::IndexOf(rule)];
    mvp::ShowIf(text, bShow);
    CStatic& icon = m_icons[mvp::IndexOf(rule)];
    mvp::ShowIf(icon, bShow);
    if (bShow) {
        SetPolicyIcon(icon.m_hWnd != nullptr ? &icon : nullptr,
                      bSatisfied ? m_hSatisfied : m_hViolated);
        text.Tell(bSatisfied);
    }
}

void VKPoliciesDlg::SetPolicyIcon(CWnd* pIconControl, HICON hIcon) {
    const mvp::LogScope scope("VKPoliciesDlg::SetPolicyIcon");
    if (pIconControl == nullptr) {
        return;
    }
    auto* const current = reinterpret_cast<HICON>(pIconControl->SendMessage(STM_GETICON));
    if (current == hIcon) {
        return;
    }
    pIconControl->SendMessage(STM_SETICON, reinterpret_cast<WPARAM>(hIcon));
    mvp::KeepFromMirroring(pIconControl);
    UpdateWindow();
}

void VKPoliciesDlg::PutPoliciesInBox() {
    vklogLog(g_szLogTag, kLogEntry, "VKPoliciesDlg::PutPoliciesInBox");
    if (m_groupBox.m_hWnd == nullptr) {
        return;
    }
    // By IndexOf, as the icons. The bound controls: every search for one by its number costs.
    const CRect group = mvp::ClientRectOf(*this, m_groupBox);
    mvp::PolicyBox box{group.top, group.Height(), {}};
    for (std::size_t i = 0; i < kTexts.size(); ++i) {
        if (m_texts[i].m_hWnd == nullptr || m_icons[i].m_hWnd == nullptr) {
            return;
        }
        const CRect text = mvp::ClientRectOf(*this, m_texts[i]);
        box.lines.at(i) = {text.left, text.Height(), mvp::ClientRectOf(*this, m_icons[i]).left};
    }
    const mvp::PolicyLayout layout = mvp::LayOutPolicies(
        box, Rules(), {m_nTopMargin, m_nLeftIndent, m_nLineSpacing}, mvp::WindowDpi(m_hWnd));
    constexpr UINT kMoveOnly = SWP_NOSIZE | SWP_NOZORDER;
    for (const mvp::PlacedPolicyLine& line : layout.Lines()) {
        const std::size_t index = mvp::IndexOf(line.rule);
        m_texts[index].SetWindowPos(nullptr, line.nTextX, line.nTextY, 0, 0, kMoveOnly);
        m_icons[index].SetWindowPos(nullptr, line.nIconX, line.nIconY, 0, 0, kMoveOnly);
    }
    ResizeDlg(0, 0, layout.Spare());
    ResizeDlg(IDC_POLICIES_BOX, 0, layout.Spare());
    vklogLog(g_szLogTag, kLogExit, "VKPoliciesDlg::PutPoliciesInBox");
}
