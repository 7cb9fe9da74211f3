#include "mvpingui/policies_dialog.h"

#include <array>
#include <string_view>

#include <dlgfw/geometry.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/optional_control.h"
#include "platform/barrier.h"
#include "policy/integer_format.h"
#include "policy/pin_policy.h"
#include "policy/policy_layout.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/resource_module.h"

BEGIN_MESSAGE_MAP(VKPoliciesDlg, CBaseDialog)
    ON_WM_SYSCOLORCHANGE()
END_MESSAGE_MAP()

namespace {

constexpr int kIconSize = 16;
// What a length updater is given for a line that is not shown.
constexpr int kNoLength = -1;

struct LineControls {
    int nText;
    int nIcon;
};

// By mvp::IndexOf(rule).
constexpr std::array<LineControls, mvp::kPinRuleCount> kLines = {{
    {IDC_POLICIES_MIN_TEXT, IDC_POLICIES_MIN_ICON},
    {IDC_POLICIES_MAX_TEXT, IDC_POLICIES_MAX_ICON},
    {IDC_POLICIES_WEAK_TEXT, IDC_POLICIES_WEAK_ICON},
    {IDC_POLICIES_SAME_TEXT, IDC_POLICIES_SAME_ICON},
    {IDC_POLICIES_ALPHA_TEXT, IDC_POLICIES_ALPHA_ICON},
    {IDC_POLICIES_CONFIRM_TEXT, IDC_POLICIES_CONFIRM_ICON},
}};

std::string_view View(const CString& text) {
    return {static_cast<LPCSTR>(text), static_cast<std::size_t>(text.GetLength())};
}

CString FormatLength(UINT nFormat, int nLength) {
    CString format = mvp::ResourceString(nFormat);
    if (!mvp::TakesOneInteger(View(format)))
        return format;
    CString text;
    text.Format(format, nLength);
    return text;
}

}  // namespace

VKPoliciesDlg::VKPoliciesDlg(const PwdRuleArgs* pRules, int bUseWindowColor, const RECT* pPosition,
                             CWnd* pParent, int nTopMargin, int nLeftIndent, int nLineSpacing)
    : CBaseDialog(IDD_POLICIES, bUseWindowColor, pPosition, pParent),
      m_nTopMargin(nTopMargin),
      m_nLeftIndent(nLeftIndent),
      m_nLineSpacing(nLineSpacing),
      m_pParent(pParent),
      m_hSatisfied(mvp::LoadResourceIcon(IDI_RULE_SATISFIED, kIconSize)),
      m_hViolated(mvp::LoadResourceIcon(IDI_RULE_VIOLATED, kIconSize)) {
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
    mvp::BindIfThere(pDX, IDC_POLICIES_MIN_TEXT, m_minText);
    mvp::BindIfThere(pDX, IDC_POLICIES_MAX_TEXT, m_maxText);
    mvp::BindIfThere(pDX, IDC_POLICIES_WEAK_TEXT, m_weakText);
    mvp::BindIfThere(pDX, IDC_POLICIES_SAME_TEXT, m_sameText);
    mvp::BindIfThere(pDX, IDC_POLICIES_ALPHA_TEXT, m_alphaText);
    mvp::BindIfThere(pDX, IDC_POLICIES_CONFIRM_TEXT, m_confirmText);
}

BOOL VKPoliciesDlg::OnInitDialog() {
    const mvp::LogScope scope("VKPoliciesDlg::OnInitDialog");
    return mvp::Guarded(
        FALSE,
        [this] {
            const BOOL result = CBaseDialog::OnInitDialog();
            CString caption;
            if (mvp::LoadResourceString(IDS_POLICIES_BOX, caption))
                m_groupBox.SetWindowText(caption);
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
    const bool bVerdict = mvp::Guarded(
        false, [&] { return CheckAndShow(csOldValue, csValue, csNewValue, csConfirmValue); },
        mvp::LogException("VKPoliciesDlg::VerifyAndUpdatePolicies"));
    for (CString* pText : {&csOldValue, &csValue, &csNewValue, &csConfirmValue})
        HidePinFromMemory(*pText);
    return bVerdict;
}

bool VKPoliciesDlg::CheckAndShow(const CString& csOldValue, const CString& csValue,
                                 const CString& csNewValue, const CString& csConfirmValue) {
    // In clear, as administrators who switch detail on expect; the reference warns of it.
    vklogLog(g_szLogTag, kLogDetail, "csOldValue: %s", static_cast<LPCSTR>(csOldValue));
    vklogLog(g_szLogTag, kLogDetail, "csValue: %s", static_cast<LPCSTR>(csValue));
    vklogLog(g_szLogTag, kLogDetail, "csNewValue: %s", static_cast<LPCSTR>(csNewValue));
    const mvp::PinCheck check = mvp::CheckPin(
        Rules(), {View(csOldValue), View(csValue), View(csNewValue), View(csConfirmValue)});
    for (const mvp::PinRule rule : mvp::kPinCheckingOrder)
        ShowRule(rule, check.State(rule) != mvp::RuleState::NotInForce,
                 check.State(rule) == mvp::RuleState::Satisfied, csValue);
    if (m_hWnd != nullptr) {
        m_groupBox.EnableWindow(TRUE);
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
    return mvp::IsPinWeak(View(strPin));
}

bool VKPoliciesDlg::IsAlphaPinWeak(const CString& strPin) {
    const mvp::LogScope scope("VKPoliciesDlg::IsAlphaPinWeak");
    return mvp::IsAlphaPinWeak(View(strPin));
}

void VKPoliciesDlg::SetMinPINLen(int nMin, bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetMinPINLen");
    UpdateLine(m_minText, IDC_POLICIES_MIN_ICON, FormatLength(IDS_POLICIES_MIN_FORMAT, nMin), bShow,
               bSatisfied);
}

void VKPoliciesDlg::SetMaxPINLen(int nMax, bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetMaxPINLen");
    UpdateLine(m_maxText, IDC_POLICIES_MAX_ICON, FormatLength(IDS_POLICIES_MAX_FORMAT, nMax), bShow,
               bSatisfied);
}

void VKPoliciesDlg::SetWeakPIN(bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetWeakPIN");
    UpdateLine(m_weakText, IDC_POLICIES_WEAK_ICON, mvp::ResourceString(IDS_POLICIES_WEAK), bShow,
               bSatisfied);
}

void VKPoliciesDlg::SetPreventSamePIN(bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetPreventSamePIN");
    UpdateLine(m_sameText, IDC_POLICIES_SAME_ICON, mvp::ResourceString(IDS_POLICIES_SAME), bShow,
               bSatisfied);
}

void VKPoliciesDlg::SetAlphaPIN(bool bShow, bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetAlphaPIN");
    UpdateLine(m_alphaText, IDC_POLICIES_ALPHA_ICON, mvp::ResourceString(IDS_POLICIES_ALPHA), bShow,
               bSatisfied);
}

void VKPoliciesDlg::SetConfirmPIN(bool bSatisfied) {
    const mvp::LogScope scope("VKPoliciesDlg::SetConfirmPIN");
    UpdateLine(m_confirmText, IDC_POLICIES_CONFIRM_ICON, mvp::ResourceString(IDS_POLICIES_CONFIRM),
               true, bSatisfied);
}

void VKPoliciesDlg::UpdateLine(CStatic& text, int nIconControl, const CString& strText, bool bShow,
                               bool bSatisfied) {
    if (text.m_hWnd != nullptr) {
        CString current;
        text.GetWindowText(current);
        // A text that is set again is painted again, which flickers while the user types.
        if (current != strText)
            text.SetWindowText(strText);
        mvp::ShowIf(text, bShow);
    }
    CWnd* pIcon = m_hWnd != nullptr ? GetDlgItem(nIconControl) : nullptr;
    if (pIcon != nullptr)
        mvp::ShowIf(*pIcon, bShow);
    if (bShow)
        SetPolicyIcon(pIcon, bSatisfied ? m_hSatisfied : m_hViolated);
}

void VKPoliciesDlg::SetPolicyIcon(CWnd* pIconControl, HICON hIcon) {
    const mvp::LogScope scope("VKPoliciesDlg::SetPolicyIcon");
    if (pIconControl == nullptr)
        return;
    auto* const current = reinterpret_cast<HICON>(pIconControl->SendMessage(STM_GETICON));
    if (current == hIcon)
        return;
    pIconControl->SendMessage(STM_SETICON, reinterpret_cast<WPARAM>(hIcon));
    UpdateWindow();
}

void VKPoliciesDlg::PutPoliciesInBox() {
    vklogLog(g_szLogTag, kLogEntry, "VKPoliciesDlg::PutPoliciesInBox");
    const CWnd* pBox = GetDlgItem(IDC_POLICIES_BOX);
    if (pBox == nullptr)
        return;
    const CRect group = mvp::ClientRectOf(*this, *pBox);
    mvp::PolicyBox box{group.top, group.Height(), {}};
    for (std::size_t i = 0; i < kLines.size(); ++i) {
        const CWnd* pText = GetDlgItem(kLines.at(i).nText);
        const CWnd* pIcon = GetDlgItem(kLines.at(i).nIcon);
        if (pText == nullptr || pIcon == nullptr)
            return;
        const CRect text = mvp::ClientRectOf(*this, *pText);
        box.lines.at(i) = {text.left, text.Height(), mvp::ClientRectOf(*this, *pIcon).left};
    }
    const mvp::PolicyLayout layout =
        mvp::LayOutPolicies(box, Rules(), {m_nTopMargin, m_nLeftIndent, m_nLineSpacing});
    constexpr UINT kMoveOnly = SWP_NOSIZE | SWP_NOZORDER;
    for (const mvp::PlacedPolicyLine& line : layout.Lines()) {
        const LineControls& controls = kLines.at(mvp::IndexOf(line.rule));
        GetDlgItem(controls.nText)
            ->SetWindowPos(nullptr, line.nTextX, line.nTextY, 0, 0, kMoveOnly);
        GetDlgItem(controls.nIcon)
            ->SetWindowPos(nullptr, line.nIconX, line.nIconY, 0, 0, kMoveOnly);
    }
    ResizeDlg(0, 0, layout.Spare());
    ResizeDlg(IDC_POLICIES_BOX, 0, layout.Spare());
    vklogLog(g_szLogTag, kLogExit, "VKPoliciesDlg::PutPoliciesInBox");
}
