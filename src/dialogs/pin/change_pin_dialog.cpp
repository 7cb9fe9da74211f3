#include "mvpingui/change_pin_dialog.h"

#include <array>
#include <cstring>
#include <utility>

#include <dlgfw/data_exchange.h>
#include <dlgfw/geometry.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/injected_key_filter.h"
#include "dialogs/base/injected_key_notice.h"
#include "dialogs/base/optional_control.h"
#include "dialogs/pin/change_pin_panels.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/registry_value.h"
#include "services/resource_module.h"
#include "services/wipe.h"
#include "settings/settings.h"

BEGIN_MESSAGE_MAP(CChangePINDialog, CBaseDialog)
    ON_EN_CHANGE(IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, &CChangePINDialog::OnEnChangeEditPin)
    ON_EN_CHANGE(IDC_CHANGE_PIN_PANEL_NEW_EDIT, &CChangePINDialog::OnEnChangeEditPinNew)
    ON_EN_CHANGE(IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, &CChangePINDialog::OnEnChangeEditPinConfirm)
    ON_EN_SETFOCUS(IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, &CChangePINDialog::OnEnSetfocusEditPin)
    ON_EN_SETFOCUS(IDC_CHANGE_PIN_PANEL_NEW_EDIT, &CChangePINDialog::OnEnSetfocusEditPinNew)
    ON_EN_SETFOCUS(IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, &CChangePINDialog::OnEnSetfocusEditPinConfirm)
    ON_WM_DESTROY()
    ON_WM_MOVE()
END_MESSAGE_MAP()

namespace {

constexpr mvp::NumberSetting kPrevention = mvp::settings::kSmallPinEntryPrevention;

// A value of any type gives its first four bytes, and counts as zero beyond its end. One that is no
// number of four bytes may not mean what its author meant, and one that does not fit is ignored:
// the log tells of both.
std::uint32_t ReadSmallPinEntryPrevention() {
    std::array<BYTE, kPrevention.nCapacity> data{};
    const mvp::RegistryRead read =
        mvp::ReadRegistry(mvp::ValueOf(kPrevention), data.data(), kPrevention.nCapacity);
    if (read.error == ERROR_MORE_DATA) {
        mvp::LogIgnoredSetting(kPrevention, "larger than 255 bytes");
    }
    if (!read) {
        return kPrevention.nDefault;
    }
    std::uint32_t value = 0;
    std::memcpy(&value, data.data(), sizeof value);
    if (read.type != REG_DWORD || read.size != sizeof value) {
        vklogLog(g_szLogTag, kLogError,
                 "Setting is no REG_DWORD, its first bytes are followed as %u: %s\\%s", value,
                 kPrevention.pszKey, kPrevention.pszName);
    }
    return value;
}

void SetTextFromResource(CWnd& control, UINT nString) {
    CString text;
    if (mvp::LoadResourceString(nString, text)) {
        control.SetWindowText(text);
    }
}

}  // namespace

CChangePINDialog::CChangePINDialog(int /*nIgnored*/, int bUseWindowColor, bool bAskCurrentPin,
                                   const RECT* pPosition, const PwdRuleArgs* pRules,
                                   CButton* pOkButton, CWnd* pParent, int nTopMargin,
                                   int nLeftIndent, int nLineSpacing)
    : CBaseDialog(IDD_CHANGE_PIN_PANEL, bUseWindowColor, pPosition, pParent),
      m_bUseWindowColor(bUseWindowColor),
      m_pOkButton(pOkButton),
      m_nTopMargin(nTopMargin),
      m_nLeftIndent(nLeftIndent),
      m_nLineSpacing(nLineSpacing),
      m_bAskCurrentPin(bAskCurrentPin) {
    const mvp::LogScope scope("CChangePINDialog::CChangePINDialog");
    if (pRules != nullptr) {
        m_rules = *pRules;
        m_rules.dwUnused = 0;
    }
    m_dwSmallPINEntryPrevention = ReadSmallPinEntryPrevention();
    mvp::AddChangePinPanel(this);
}

CChangePINDialog::~CChangePINDialog() {
    const mvp::LogScope scope("CChangePINDialog::~CChangePINDialog");
    // While WM_DESTROY still finds this class's handler.
    if (m_hWnd != nullptr) {
        DestroyWindow();
    }
    m_rulePanel.Destroy();
    mvp::RemoveChangePinPanel(this);
    EraseAllPinBuffers();
}

int CChangePINDialog::LocCreate(CWnd* pParent) {
    const mvp::LogScope scope("CChangePINDialog::LocCreate");
    const int created = CreateFromResourceModule(pParent);
    if (created == 0) {
        EnableOk(false);
    }
    return created;
}

void CChangePINDialog::DoDataExchange(CDataExchange* pDX) {
    CBaseDialog::DoDataExchange(pDX);
    mvp::BindIfThere(pDX, IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, m_labelPin);
    mvp::BindIfThere(pDX, IDC_CHANGE_PIN_PANEL_NEW_LABEL, m_labelNewPin);
    mvp::BindIfThere(pDX, IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, m_labelConfirm);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, m_editPin);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_NEW_EDIT, m_editNewPin);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, m_editConfirm);
    mvp::BindIfThere(pDX, IDC_CHANGE_PIN_PANEL_INSTRUCTION, m_instruction);
}

BOOL CChangePINDialog::OnInitDialog() {
    const mvp::LogScope scope("CChangePINDialog::OnInitDialog");
    return mvp::Guarded(
        FALSE,
        [this] {
            // Without its edits the panel is given up.
            const BOOL result = CBaseDialog::OnInitDialog();
            if (result) {
                SetUp();
            }
            return result;
        },
        [this] {
            mvp::LogException("CChangePINDialog::OnInitDialog")();
            EndDialog(-1);  // the window is given up
        });
}

void CChangePINDialog::SetUp() {
    mvp::SetChangePinPanelWindow(this, m_hWnd);
    SetTexts();
    CreatePoliciesPanel();
    mvp::ReserveInjectedKeyNotice(*this, mvp::ReadInjectedKeys());
    // The window around the panel: not every system looks it up for a child that is brought
    // forward.
    ::SetForegroundWindow(::GetAncestor(m_hWnd, GA_ROOT));
    // The focus brings the first check of the rules, so that every icon is right before the user
    // types.
    (m_bAskCurrentPin ? m_editPin : m_editNewPin).SetFocus();
    UpdateWindow();
}

void CChangePINDialog::SetTexts() {
    // Not shown: it is what a screen reader calls the panel.
    SetTextFromResource(*this, IDS_CARD_PIN_TITLE);
    SetTextFromResource(m_instruction, IDS_CHANGE_PIN_INSTRUCTION);
    SetTextFromResource(m_labelPin, IDS_CHANGE_PIN_CURRENT_LABEL);
    SetTextFromResource(m_labelNewPin, IDS_CHANGE_PIN_NEW_LABEL);
    SetTextFromResource(m_labelConfirm, IDS_CHANGE_PIN_CONFIRM_LABEL);
    if (m_bAskCurrentPin) {
        return;
    }
    m_labelPin.ShowWindow(SW_HIDE);
    m_editPin.ShowWindow(SW_HIDE);
    SetTextFromResource(m_instruction, IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY);
}

void CChangePINDialog::CreatePoliciesPanel() {
    constexpr int kPlace = IDC_CHANGE_PIN_PANEL_POLICIES_PLACE;
    if (!m_rulePanel.Create(*this, kPlace, m_rules,
                            {m_bUseWindowColor, m_nTopMargin, m_nLeftIndent, m_nLineSpacing})) {
        return;
    }
    m_rulePanel.Show();
    ResizeDlg(0, 0, -m_rulePanel.FitToPlaceholder(*this, kPlace).nHeight);
}

void CChangePINDialog::OnEnChangeEditPin() {
    const mvp::LogScope scope("CChangePINDialog::OnEnChangeEditPin");
    OnEnChangeEditPinNew();
}

void CChangePINDialog::OnEnChangeEditPinConfirm() {
    const mvp::LogScope scope("CChangePINDialog::OnEnChangeEditPinConfirm");
    OnEnChangeEditPinNew();
}

void CChangePINDialog::OnEnChangeEditPinNew() {
    const mvp::LogScope scope("CChangePINDialog::OnEnChangeEditPinNew");
    ErasePins();
    CString currentPin;
    CString newPin;
    ReadAndJudge("CChangePINDialog::OnEnChangeEditPinNew", currentPin, newPin);
}

// What was read before an exception may not be what stands in the edits: it is not handed out.
void CChangePINDialog::AfterException(const char* pszFunction) {
    mvp::LogException{pszFunction}();
    EraseAllPinBuffers();
    EnableOk(false);
}

void CChangePINDialog::OnEnSetfocusEditPin() {
    const mvp::LogScope scope("CChangePINDialog::OnEnSetfocusEditPin");
    OnEnChangeEditPin();
}

void CChangePINDialog::OnEnSetfocusEditPinNew() {
    const mvp::LogScope scope("CChangePINDialog::OnEnSetfocusEditPinNew");
    OnEnChangeEditPinNew();
}

void CChangePINDialog::OnEnSetfocusEditPinConfirm() {
    const mvp::LogScope scope("CChangePINDialog::OnEnSetfocusEditPinConfirm");
    OnEnChangeEditPinConfirm();
}

bool CChangePINDialog::VerifyAndUpdateAllPolicies(CString value) {
    CString currentPin;
    CString newPin;
    CString confirmation;
    if (!ReadEdits(currentPin, newPin, confirmation)) {
        mvp::LogException("CChangePINDialog::VerifyAndUpdateAllPolicies")();
        EnableOk(false);
        return false;
    }
    return Judge(currentPin, value, newPin, confirmation);
}

bool CChangePINDialog::ReadEdits(CString& currentPin, CString& newPin,
                                 CString& confirmation) const {
    return m_editPin.ReadSecret(currentPin) && m_editNewPin.ReadSecret(newPin) &&
           m_editConfirm.ReadSecret(confirmation);
}

// One reading of each edit serves the check and the hand-over. Returns whether OK may be obeyed.
bool CChangePINDialog::ReadAndJudge(const char* pszFunction, CString& currentPin, CString& newPin) {
    return mvp::Guarded(
        false,
        [&] {
            CString confirmation;
            if (!ReadEdits(currentPin, newPin, confirmation)) {
                AfterException(pszFunction);
                return false;
            }
            const bool currentGiven = !m_bAskCurrentPin || !currentPin.IsEmpty();
            CString judgedCurrentPin = currentPin;
            CString judgedNewPin = newPin;
            CString value = newPin;
            return Judge(judgedCurrentPin, value, judgedNewPin, confirmation) && currentGiven;
        },
        [&] { AfterException(pszFunction); });
}

// Returns whether the rules are met, and overwrites the texts.
bool CChangePINDialog::Judge(CString& currentPin, CString& value, CString& newPin,
                             CString& confirmation) {
    const mvp::LogScope scope("CChangePINDialog::VerifyAndUpdateAllPolicies");
    vklogLog(g_szLogTag, kLogDetail, "m_pPoliciesDlg: %d",
             static_cast<int>(mvp::LowBits(m_rulePanel.Dialog())));
    const bool verdict = mvp::Guarded(
        false, [&] { return m_rulePanel.Check(currentPin, value, newPin, confirmation); },
        mvp::LogException("CChangePINDialog::VerifyAndUpdateAllPolicies"));
    // The host hears of it and may delete the panel: nothing of it is touched afterwards.
    EnableOk(verdict && !(m_bAskCurrentPin && currentPin.IsEmpty()));
    for (CString* text : {&currentPin, &newPin, &confirmation, &value}) {
        HidePinFromMemory(*text);
    }
    return verdict;
}

bool CChangePINDialog::ReadAndCheck() {
    const mvp::LogScope scope("CChangePINDialog::ReadAndCheck");
    // Told of its end, the panel has no rules any more.
    if (m_hWnd == nullptr || (m_nFlags & WF_DESTROYING) != 0) {
        return false;
    }
    ErasePins();
    CString currentPin;
    CString newPin;
    // The host may have deleted the panel meanwhile.
    if (!ReadAndJudge("CChangePINDialog::ReadAndCheck", currentPin, newPin) ||
        !mvp::IsChangePinPanel(this)) {
        return false;
    }
    m_csPin = std::move(currentPin);
    m_csNewPin = std::move(newPin);
    return true;
}

bool CChangePINDialog::ReadPins(CString& strCurrentPin, CString& strNewPin) const {
    return m_editPin.ReadSecret(strCurrentPin) && m_editNewPin.ReadSecret(strNewPin);
}

const CString& CChangePINDialog::CurrentPin() const {
    return Kept(m_csPin, m_editPin);
}

const CString& CChangePINDialog::NewPin() const {
    return Kept(m_csNewPin, m_editNewPin);
}

const CString& CChangePINDialog::Kept(CString& strPin, const CCapsLockSensitiveEdit& edit) const {
    if (m_hWnd != nullptr && strPin.IsEmpty()) {
        edit.ReadSecret(strPin);
    }
    return strPin;
}

void CChangePINDialog::EnableOk(bool bEnable) {
    if (m_pOkButton != nullptr) {
        mvp::EnableIf(*m_pOkButton, bEnable);
    }
}

void CChangePINDialog::EraseAllPinBuffers() {
    const mvp::LogScope scope("CChangePINDialog::EraseAllPinBuffers");
    for (CString* pin : {&m_csPin, &m_csNewPin}) {
        HidePinFromMemory(*pin);
    }
}

// While the user types, they stand in the edits alone.
void CChangePINDialog::ErasePins() {
    mvp::Wipe(m_csPin);
    mvp::Wipe(m_csNewPin);
}

void CChangePINDialog::ResetToolTip() {
    const mvp::LogScope scope("CChangePINDialog::ResetToolTip");
    for (CCapsLockSensitiveEdit* edit : {&m_editPin, &m_editNewPin, &m_editConfirm}) {
        edit->ResetToolTip();
    }
}

void CChangePINDialog::OnMove(int x, int y) {
    const mvp::LogScope scope("CChangePINDialog::OnMove");
    CBaseDialog::OnMove(x, y);
    ResetToolTip();
}

void CChangePINDialog::OnDestroy() {
    const mvp::LogScope scope("CChangePINDialog::OnDestroy");
    // What stood in the edits stays with the object.
    CurrentPin();
    NewPin();
    m_rulePanel.Destroy();
    mvp::SetChangePinPanelWindow(this, nullptr);
    CBaseDialog::OnDestroy();
}
