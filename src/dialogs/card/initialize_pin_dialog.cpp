#include "mvpingui/initialize_pin_dialog.h"

#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/card/grown_dialog.h"
#include "dialogs/card/policy_values.h"
#include "mvpingui/display_unlock_code.h"
#include "mvpingui/policies_dialog.h"
#include "mvpingui/unlock_result_dialogs.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/error_text.h"
#include "services/format_text.h"
#include "services/log.h"
#include "services/notify_event.h"
#include "services/registry_value.h"
#include "services/wipe.h"

namespace {

constexpr UINT kDisplayPinPoliciesMessage = WM_USER + 1;
constexpr char kPasswordCharacter = '*';
// Of CUnlockFailedDlg: a first PIN could not be set.
constexpr int kInitializeMode = 1;
constexpr mvp::RulePanel::Layout kRuleLayout{0, 10, 20, 10};

bool ReadPolicy(const mvp::NumberSetting& setting, std::uint32_t& dwValue) {
    DWORD value = 0;
    mvp::RegistryRead read =
        mvp::ReadRegistry(mvp::ValueOf(setting), &value, sizeof value, REG_DWORD);
    // Of the right type, but not four bytes.
    if (read && read.size != sizeof value) {
        read.failed = mvp::RegistryStep::CheckType;
    }
    if (!read) {
        const long error =
            read.failed == mvp::RegistryStep::CheckType ? ERROR_INVALID_DATATYPE : read.error;
        vklogLog(g_szLogTag, kLogError,
                 read.failed == mvp::RegistryStep::OpenKey ? "RegOpenKeyEx returns the error %d"
                                                           : "RegQueryValueEx returns the error %d",
                 static_cast<int>(error));
        return false;
    }
    dwValue = value;
    return true;
}

}  // namespace

BEGIN_MESSAGE_MAP(CInitializePinDlg, VKDetectCardRemovedDlg)
    ON_EN_CHANGE(IDC_INITIALIZE_PIN_NEW_EDIT, &CInitializePinDlg::OnChangeEditNewPin)
    ON_EN_CHANGE(IDC_INITIALIZE_PIN_CONFIRM_EDIT, &CInitializePinDlg::OnChangeEditNewPin)
    ON_MESSAGE(kDisplayPinPoliciesMessage, &CInitializePinDlg::OnDisplayPINPolicies)
    ON_WM_MOVE()
END_MESSAGE_MAP()

CInitializePinDlg::CInitializePinDlg(CWnd* pParent, const PINPolicies* pPolicies, void* pContext,
                                     MvpInitializeCallback pfnInitialize,
                                     MvpNeverDisplayCallback pfnNeverDisplay,
                                     MvpGetUnlockCodeCallback pfnGetUnlockCode,
                                     const char* pszReader)
    : VKDetectCardRemovedDlg(IDD_INITIALIZE_PIN, pParent, pszReader),
      m_pContext(pContext),
      m_strReader(pszReader),
      m_pfnNeverDisplay(pfnNeverDisplay),
      m_pfnGetUnlockCode(pfnGetUnlockCode),
      m_pfnInitialize(pfnInitialize) {
    const mvp::LogScope scope("CInitializePinDlg::CInitializePinDlg");
    m_policies = mvp::EffectivePolicies(pPolicies, ReadPolicy);
}

CInitializePinDlg::~CInitializePinDlg() {
    const mvp::LogScope scope("CInitializePinDlg::~CInitializePinDlg");
    ErasePins();
}

void CInitializePinDlg::ErasePins() {
    HidePinFromMemory(m_strNewPin);
    HidePinFromMemory(m_strConfirmPin);
}

void CInitializePinDlg::DoDataExchange(CDataExchange* pDX) {
    VKDetectCardRemovedDlg::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_INITIALIZE_PIN_NEW_EDIT, m_editNewPin);
    DDX_Control(pDX, IDC_INITIALIZE_PIN_CONFIRM_EDIT, m_editConfirmPin);
    if (pDX->m_bSaveAndValidate &&
        (!m_editNewPin.ReadSecret(m_strNewPin) || !m_editConfirmPin.ReadSecret(m_strConfirmPin))) {
        pDX->Fail();
    }
}

BOOL CInitializePinDlg::OnInitDialog() {
    const mvp::LogScope scope("CInitializePinDlg::OnInitDialog");
    VKDetectCardRemovedDlg::OnInitDialog();
    m_rulePanel.Destroy();  // of a former DoModal
    m_boldFont.Attach(mvp::MakeHeadingBold(*this, IDC_INITIALIZE_PIN_HEADING).release());
    mvp::SetSmallIcon(*this, IDI_CARD_INITIALIZE);
    m_editNewPin.SetPasswordChar(kPasswordCharacter);
    m_editConfirmPin.SetPasswordChar(kPasswordCharacter);
    mvp::BringToFront(*this);
    PostMessage(kDisplayPinPoliciesMessage);
    return TRUE;
}

LRESULT CInitializePinDlg::OnDisplayPINPolicies(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CInitializePinDlg::OnDisplayPINPolicies");
    if (m_rulePanel.Dialog() == nullptr) {
        if (GetDlgItem(IDC_INITIALIZE_PIN_POLICIES_PLACE) == nullptr) {
            return 0;
        }
        if (m_rulePanel.Create(*this, IDC_INITIALIZE_PIN_POLICIES_PLACE, mvp::RulesOf(m_policies),
                               kRuleLayout)) {
            mvp::GrowForPanel(*this, m_rulePanel.Height());
        }
    }
    if (m_rulePanel.Dialog() != nullptr) {
        m_rulePanel.Check({}, {}, {}, {});
        m_rulePanel.Show();
    }
    UpdateWindow();
    return 0;
}

// Reads the edits anew; whether OK may be obeyed.
bool CInitializePinDlg::IsAllowed() {
    return UpdateData(TRUE) && m_rulePanel.Dialog() != nullptr &&
           m_rulePanel.Check({}, m_strNewPin, m_strNewPin, m_strConfirmPin);
}

void CInitializePinDlg::OnChangeEditNewPin() {
    const mvp::LogScope scope("CInitializePinDlg::OnChangeEditNewPin");
    // What a running callback was given stays as it was.
    if (m_bInitializing) {
        return;
    }
    const bool allowed = IsAllowed();
    // While the user types they stand in the edits alone.
    mvp::Wipe(m_strNewPin);
    mvp::Wipe(m_strConfirmPin);
    if (CWnd* ok = GetDlgItem(IDOK)) {
        // A disabled button that has the focus would take the keyboard with it.
        if (!allowed && ::GetFocus() == ok->m_hWnd) {
            m_editNewPin.SetFocus();
        }
        mvp::EnableIf(*ok, allowed);
    }
    m_rulePanel.Update();
    UpdateWindow();
}

void CInitializePinDlg::OnOK() {
    const mvp::LogScope scope("CInitializePinDlg::OnOK");
    // What has ended the dialog before stands, a callback that serves messages is not called again
    // meanwhile, and the command comes from anywhere, also while the button is disabled.
    if ((m_nFlags & WF_CONTINUEMODAL) == 0 || m_bInitializing) {
        return;
    }
    if (!IsAllowed()) {
        ErasePins();
        return;
    }
    m_bInitializing = true;
    mvp::Guarded(
        [this] {
            const int result = Initialize();
            ErasePins();
            if (result == MVPINGUI_CARD_OK) {
                OnInitialized();
            } else {
                TellFailure(result);
            }
        },
        mvp::LogException("CInitializePinDlg::OnOK"));
    m_bInitializing = false;
    // The callback may have served messages: what was typed meanwhile is judged now.
    if ((m_nFlags & WF_CONTINUEMODAL) != 0) {
        OnChangeEditNewPin();
    }
}

int CInitializePinDlg::Initialize() {
    const CWaitCursor wait;
    const auto value = [](std::uint32_t dwValue) { return static_cast<int>(dwValue); };
    return mvp::Guarded(
        MVPINGUI_CARD_FAILED,
        [&] {
            return m_pfnInitialize == nullptr
                       ? MVPINGUI_CARD_FAILED
                       : m_pfnInitialize(
                             m_pContext, m_strNewPin, value(m_policies.MinimumPINLength),
                             value(m_policies.MaximumPINLength), value(m_policies.MaxPINTries),
                             value(m_policies.WeakPINAllowed), value(m_policies.ForceChangePIN),
                             value(m_policies.MaxPINUnlock));
        },
        mvp::LogException("CInitializePinDlg: the initialize callback"));
}

void CInitializePinDlg::OnInitialized() {
    // From here on a card that is pulled changes nothing: it has its PIN.
    StopDetectingRemoveEvent();
    const int accepted =
        DisplayUnlockCode(this, m_pContext, m_pfnGetUnlockCode, m_pfnNeverDisplay, m_strReader);
    m_bUnlockCodePending = accepted == 0 ? 1 : 0;
    NotifyEvent(kEventUnlockCodeShown, m_strReader, m_hWnd);
    EndDialog(IDOK);
}

void CInitializePinDlg::TellFailure(int nCode) {
    const CString text =
        mvp::FormatResourceText(IDS_INITIALIZE_FAILED_FORMAT, mvp::ErrorText(nCode));
    CUnlockFailedDlg(this, text, kInitializeMode).DoModal();
}

void CInitializePinDlg::ResetToolTip() {
    const mvp::LogScope scope("CInitializePinDlg::ResetToolTip");
    m_editNewPin.ResetToolTip();
    m_editConfirmPin.ResetToolTip();
}

void CInitializePinDlg::OnMove(int x, int y) {
    const mvp::LogScope scope("CInitializePinDlg::OnMove");
    VKDetectCardRemovedDlg::OnMove(x, y);
    ResetToolTip();
}
