#include "mvpingui/change_pin_dialog.h"

#include <array>
#include <cstring>
#include <new>

#include <dlgfw/data_exchange.h>
#include <dlgfw/geometry.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/pin/change_pin_panels.h"
#include "frame/log.h"
#include "frame/resource_module.h"
#include "mvpingui/policies_dialog.h"
#include "platform/handle.h"
#include "resources/resource_numbers.h"

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

constexpr char kConfigKey[] = R"(Software\Quillon\Veskara\PXRM)";
// What is offered for a value that is a number of four bytes when it is well.
constexpr DWORD kOfferedSize = 255;

std::uint32_t ReadSmallPinEntryPrevention() {
    mvp::RegistryKey key;
    if (RegOpenKeyExA(HKEY_LOCAL_MACHINE, kConfigKey, 0, KEY_READ, key.put()) != ERROR_SUCCESS)
        return 0;
    std::array<BYTE, kOfferedSize> data{};
    DWORD size = kOfferedSize;
    std::uint32_t value = 0;
    if (RegQueryValueExA(key.get(), "EnableSmallPINEntryPrevention", nullptr, nullptr, data.data(),
                         &size) == ERROR_SUCCESS)
        std::memcpy(&value, data.data(), sizeof value);
    return value;
}

void SetTextFromResource(CWnd& control, UINT nString) {
    CString text;
    if (mvp::LoadResourceString(nString, text))
        control.SetWindowText(text);
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
    if (m_hWnd != nullptr)
        DestroyWindow();
    DestroyPoliciesPanel();
    mvp::RemoveChangePinPanel(this);
    EraseAllPinBuffers();
}

int CChangePINDialog::LocCreate(CWnd* pParent) {
    const mvp::LogScope scope("CChangePINDialog::LocCreate");
    return CreateFromResourceModule(pParent);
}

void CChangePINDialog::DoDataExchange(CDataExchange* pDX) {
    CBaseDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_CURRENT_LABEL, m_labelPin);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_NEW_LABEL, m_labelNewPin);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_CONFIRM_LABEL, m_labelConfirm);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_CURRENT_EDIT, m_editPin);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_NEW_EDIT, m_editNewPin);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_CONFIRM_EDIT, m_editConfirm);
    DDX_Control(pDX, IDC_CHANGE_PIN_PANEL_INSTRUCTION, m_instruction);
}

BOOL CChangePINDialog::OnInitDialog() {
    const mvp::LogScope scope("CChangePINDialog::OnInitDialog");
    const BOOL result = CBaseDialog::OnInitDialog();
    SetTexts();
    CreatePoliciesPanel();
    // The window around the panel: not every system looks it up for a child that is brought
    // forward.
    ::SetForegroundWindow(::GetAncestor(m_hWnd, GA_ROOT));
    // The focus brings the first check of the rules, so that every icon is right before the user
    // types.
    (m_bAskCurrentPin ? m_editPin : m_editNewPin).SetFocus();
    UpdateWindow();
    return result;
}

void CChangePINDialog::SetTexts() {
    SetTextFromResource(m_instruction, IDS_CHANGE_PIN_INSTRUCTION);
    SetTextFromResource(m_labelPin, IDS_CHANGE_PIN_CURRENT_LABEL);
    SetTextFromResource(m_labelNewPin, IDS_CHANGE_PIN_NEW_LABEL);
    SetTextFromResource(m_labelConfirm, IDS_CHANGE_PIN_CONFIRM_LABEL);
    if (m_bAskCurrentPin)
        return;
    m_labelPin.ShowWindow(SW_HIDE);
    m_editPin.ShowWindow(SW_HIDE);
    SetTextFromResource(m_instruction, IDS_CHANGE_PIN_INSTRUCTION_NEW_ONLY);
}

void CChangePINDialog::CreatePoliciesPanel() {
    const CWnd* pPlace = GetDlgItem(IDC_CHANGE_PIN_PANEL_POLICIES_PLACE);
    const CRect place = pPlace != nullptr ? mvp::ClientRectOf(*this, *pPlace) : CRect(0, 0, 0, 0);
    m_pPoliciesDlg = new (std::nothrow) VKPoliciesDlg(&m_rules, m_bUseWindowColor, &place, this,
                                                      m_nTopMargin, m_nLeftIndent, m_nLineSpacing);
    if (m_pPoliciesDlg == nullptr || m_pPoliciesDlg->LocCreate(this) == 0)
        return;
    m_pPoliciesDlg->ShowWindow(SW_SHOW);
    m_pPoliciesDlg->UpdateWindow();
    CRect panel;
    m_pPoliciesDlg->GetWindowRect(&panel);
    ScreenToClient(&panel);
    ResizeDlg(0, 0, place.bottom - panel.bottom);
}

void CChangePINDialog::OnEnChangeEditPin() {
    const mvp::LogScope scope("CChangePINDialog::OnEnChangeEditPin");
    m_editPin.GetWindowText(m_csPin);
    OnEnChangeEditPinNew();
}

void CChangePINDialog::OnEnChangeEditPinConfirm() {
    const mvp::LogScope scope("CChangePINDialog::OnEnChangeEditPinConfirm");
    m_editConfirm.GetWindowText(m_csConfirmPin);
    OnEnChangeEditPinNew();
}

void CChangePINDialog::OnEnChangeEditPinNew() {
    const mvp::LogScope scope("CChangePINDialog::OnEnChangeEditPinNew");
    m_editNewPin.GetWindowText(m_csNewPin);
    VerifyAndUpdateAllPolicies(m_csNewPin);
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
    const mvp::LogScope scope("CChangePINDialog::VerifyAndUpdateAllPolicies");
    CString currentPin;
    CString newPin;
    CString confirmation;
    m_editPin.GetWindowText(currentPin);
    m_editNewPin.GetWindowText(newPin);
    m_editConfirm.GetWindowText(confirmation);
    vklogLog(g_szLogTag, kLogDetail, "m_pPoliciesDlg: %d",
             static_cast<int>(mvp::LowBits(m_pPoliciesDlg)));
    const bool verdict = m_pPoliciesDlg == nullptr || m_pPoliciesDlg->VerifyAndUpdatePolicies(
                                                          currentPin, value, newPin, confirmation);
    EnableOk(verdict && !(m_bAskCurrentPin && currentPin.IsEmpty()));
    for (CString* pText : {&currentPin, &newPin, &confirmation, &value})
        HidePinFromMemory(*pText);
    return verdict;
}

void CChangePINDialog::EnableOk(bool bEnable) {
    if (m_pOkButton != nullptr)
        m_pOkButton->EnableWindow(bEnable);
}

void CChangePINDialog::EraseAllPinBuffers() {
    const mvp::LogScope scope("CChangePINDialog::EraseAllPinBuffers");
    for (CString* pPin : {&m_csPin, &m_csNewPin, &m_csConfirmPin})
        HidePinFromMemory(*pPin);
}

void CChangePINDialog::ResetToolTip() {
    for (CCapsLockSensitiveEdit* pEdit : {&m_editPin, &m_editNewPin, &m_editConfirm})
        pEdit->ResetToolTip();
}

void CChangePINDialog::OnMove(int x, int y) {
    CBaseDialog::OnMove(x, y);
    ResetToolTip();
}

void CChangePINDialog::OnDestroy() {
    const mvp::LogScope scope("CChangePINDialog::OnDestroy");
    DestroyPoliciesPanel();
    CBaseDialog::OnDestroy();
}

void CChangePINDialog::DestroyPoliciesPanel() {
    if (m_pPoliciesDlg == nullptr)
        return;
    m_pPoliciesDlg->DestroyWindow();
    delete m_pPoliciesDlg;
    m_pPoliciesDlg = nullptr;
}
