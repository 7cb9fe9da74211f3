#include "mvpingui/reset_card_dialog.h"

#include <dlgfw/data_exchange.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/card/code_groups.h"
#include "dialogs/card/reset_fields.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/log.h"
#include "services/text_view.h"

namespace {

// What the route of the unlock code shows with a challenge; without one it shows the edit of the
// fixed code.
constexpr int kChallengePart[] = {
    IDC_RESET_CARD_CHALLENGE_LABEL, IDC_RESET_CARD_RESPONSE_LABEL, IDC_RESET_CARD_CHALLENGE,
    IDC_RESET_CARD_RESPONSE_EDIT,   IDC_RESET_CARD_RESPONSE_NOTE,  IDC_RESET_CARD_CHALLENGE_NOTE,
};

void EnableControl(CWnd& dialog, int nId, bool bEnable) {
    if (CWnd* control = dialog.GetDlgItem(nId)) {
        mvp::EnableIf(*control, bEnable);
    }
}

void ShowControl(CWnd& dialog, int nId, bool bShow) {
    if (CWnd* control = dialog.GetDlgItem(nId)) {
        mvp::ShowIf(*control, bShow);
    }
}

}  // namespace

BEGIN_MESSAGE_MAP(CResetCardDialog, CBaseDialog)
    ON_BN_CLICKED(IDC_RESET_CARD_PIN_ROUTE, &CResetCardDialog::OnRadioClicked)
    ON_BN_CLICKED(IDC_RESET_CARD_CODE_ROUTE, &CResetCardDialog::OnRadioClicked)
    ON_EN_CHANGE(IDC_RESET_CARD_PIN_EDIT, &CResetCardDialog::OnCheckOkButton)
    ON_EN_CHANGE(IDC_RESET_CARD_RESPONSE_EDIT, &CResetCardDialog::OnCheckOkButton)
    ON_EN_CHANGE(IDC_RESET_CARD_CODE_EDIT, &CResetCardDialog::OnCheckOkButton)
    ON_WM_DESTROY()
END_MESSAGE_MAP()

CResetCardDialog::CResetCardDialog(int nMode, const RECT* pPosition, CButton* pOkButton,
                                   CWnd* pParent)
    : CBaseDialog(IDD_RESET_CARD_PANEL, nMode, pPosition, pParent), m_pOkButton(pOkButton) {
    const mvp::LogScope scope("CResetCardDialog::CResetCardDialog");
}

CResetCardDialog::~CResetCardDialog() {
    const mvp::LogScope scope("CResetCardDialog::~CResetCardDialog");
    EraseSecrets();
}

void CResetCardDialog::EraseSecrets() {
    HidePinFromMemory(m_strResponse);
    HidePinFromMemory(m_strPin);
    HidePinFromMemory(m_strUnlockCode);
}

int CResetCardDialog::LocCreate(CWnd* pParent) {
    const mvp::LogScope scope("CResetCardDialog::LocCreate");
    return CreateFromResourceModule(pParent);
}

// An edit is set by its text alone when it is cleared: what was typed is never put back.
void CResetCardDialog::DoDataExchange(CDataExchange* pDX) {
    CBaseDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_RESET_CARD_RESPONSE_EDIT, m_editResponse);
    DDX_Control(pDX, IDC_RESET_CARD_PIN_EDIT, m_editPin);
    DDX_Control(pDX, IDC_RESET_CARD_CODE_EDIT, m_editUnlockCode);
    if (pDX->m_bSaveAndValidate &&
        (!m_editResponse.ReadSecret(m_strResponse) || !m_editPin.ReadSecret(m_strPin) ||
         !m_editUnlockCode.ReadSecret(m_strUnlockCode))) {
        pDX->Fail();
    }
}

BOOL CResetCardDialog::OnInitDialog() {
    // The exit's name is another panel's: log readers know it as it is.
    const mvp::LogScope scope("CResetCardDialog::OnInitDialog", "CChangePINDialog::OnInitDialog");
    const BOOL result = CBaseDialog::OnInitDialog();
    m_editResponse.ShowText();
    m_editUnlockCode.ShowText();
    mvp::KeepFromMirroring(GetDlgItem(IDC_RESET_CARD_CHALLENGE));
    m_editPin.Empty();
    m_editResponse.Empty();
    m_editUnlockCode.SetFocus();
    CheckDlgButton(IDC_RESET_CARD_PIN_ROUTE, BST_CHECKED);
    m_bPinMode = 1;
    return result;
}

// The fields stand between the radio buttons, each behind the one that names it. The system would
// take an arrow key from a radio button to a field and never to the other route.
BOOL CResetCardDialog::PreTranslateMessage(MSG* pMsg) {
    if (pMsg->message == WM_KEYDOWN && pMsg->wParam >= VK_LEFT && pMsg->wParam <= VK_DOWN) {
        CWnd* pinRoute = GetDlgItem(IDC_RESET_CARD_PIN_ROUTE);
        CWnd* codeRoute = GetDlgItem(IDC_RESET_CARD_CODE_ROUTE);
        if (pinRoute != nullptr && codeRoute != nullptr &&
            (pMsg->hwnd == pinRoute->m_hWnd || pMsg->hwnd == codeRoute->m_hWnd)) {
            CWnd* other = pMsg->hwnd == pinRoute->m_hWnd ? codeRoute : pinRoute;
            if (other->IsWindowEnabled()) {
                other->SendMessage(BM_CLICK);
            }
            return TRUE;
        }
    }
    return CBaseDialog::PreTranslateMessage(pMsg);
}

mvp::ResetField CResetCardDialog::ActiveField() const {
    return mvp::ActiveResetField(m_bPinMode != 0, m_bChallenge != 0);
}

CString& CResetCardDialog::ActiveText() {
    switch (ActiveField()) {
        case mvp::ResetField::Pin:
            return m_strPin;
        case mvp::ResetField::Response:
            return m_strResponse;
        case mvp::ResetField::UnlockCode:
            break;
    }
    return m_strUnlockCode;
}

CCapsLockSensitiveEdit& CResetCardDialog::ActiveEdit() {
    switch (ActiveField()) {
        case mvp::ResetField::Pin:
            return m_editPin;
        case mvp::ResetField::Response:
            return m_editResponse;
        case mvp::ResetField::UnlockCode:
            break;
    }
    return m_editUnlockCode;
}

void CResetCardDialog::FocusActiveEdit() {
    CCapsLockSensitiveEdit& active = ActiveEdit();
    // Without a window the focus would be taken from whoever has it.
    if (active.m_hWnd != nullptr) {
        active.SetFocus();
    }
}

void CResetCardDialog::SetChallenge(const char* pszChallenge) {
    const mvp::LogScope scope("CResetCardDialog::SetChallenge");
    mvp::Guarded(
        [&] {
            CheckWindow(1);
            CheckDlgButton(IDC_RESET_CARD_PIN_ROUTE, BST_CHECKED);
            EnableControl(*this, IDC_RESET_CARD_PIN_ROUTE, true);
            CheckDlgButton(IDC_RESET_CARD_CODE_ROUTE, BST_UNCHECKED);
            EnableControl(*this, IDC_RESET_CARD_CODE_ROUTE, true);
            const CString challenge(pszChallenge);
            m_bChallenge = challenge.IsEmpty() ? 0 : 1;
            if (m_bChallenge != 0) {
                SetDlgItemText(IDC_RESET_CARD_CHALLENGE,
                               mvp::GroupInFourGroups<CString>(mvp::View(challenge)));
            }
            ShowChallengePart(m_bChallenge != 0);
            OnRadioClicked();
        },
        mvp::LogException("CResetCardDialog::SetChallenge"));
}

void CResetCardDialog::ShowChallengePart(bool bShow) {
    ShowControl(*this, IDC_RESET_CARD_CODE_EDIT, !bShow);
    for (const int id : kChallengePart) {
        ShowControl(*this, id, bShow);
    }
}

void CResetCardDialog::EnableCodeRoute(bool bEnable) {
    if (m_bChallenge == 0) {
        EnableControl(*this, IDC_RESET_CARD_CODE_EDIT, bEnable);
        return;
    }
    for (const int id : kChallengePart) {
        EnableControl(*this, id, bEnable);
    }
}

void CResetCardDialog::OnRadioClicked() {
    const mvp::LogScope scope("CResetCardDialog::OnRadioClicked");
    const bool pinMode = IsDlgButtonChecked(IDC_RESET_CARD_PIN_ROUTE) == BST_CHECKED;
    m_bPinMode = pinMode ? 1 : 0;
    // The active field first: a disabled edit that has the focus would take the keyboard with it.
    if (pinMode) {
        EnableControl(*this, IDC_RESET_CARD_PIN_EDIT, true);
        FocusActiveEdit();
        EnableCodeRoute(false);
    } else {
        EnableCodeRoute(true);
        FocusActiveEdit();
        EnableControl(*this, IDC_RESET_CARD_PIN_EDIT, false);
    }
    OnCheckOkButton();
}

void CResetCardDialog::OnCheckOkButton() {
    const mvp::LogScope scope("CResetCardDialog::OnCheckOkButton");
    if (m_pOkButton != nullptr) {
        const CCapsLockSensitiveEdit& active = ActiveEdit();
        mvp::EnableIf(*m_pOkButton, active.m_hWnd != nullptr && active.GetWindowTextLength() != 0);
    }
}

void CResetCardDialog::CheckWindow(int bClear) {
    const mvp::LogScope scope("CResetCardDialog::CheckWindow");
    mvp::Guarded(
        [&] {
            const CCapsLockSensitiveEdit& active = ActiveEdit();
            for (CCapsLockSensitiveEdit* edit : {&m_editPin, &m_editResponse, &m_editUnlockCode}) {
                if (edit->m_hWnd != nullptr && (edit != &active || bClear != 0)) {
                    edit->Empty();
                }
            }
            FocusActiveEdit();
            OnCheckOkButton();
            UpdateWindow();
        },
        mvp::LogException("CResetCardDialog::CheckWindow"));
}

void CResetCardDialog::DisablePIN() {
    const mvp::LogScope scope("CResetCardDialog::DisablePIN");
    mvp::Guarded(
        [this] {
            m_editPin.Empty();
            EnableControl(*this, IDC_RESET_CARD_PIN_EDIT, false);
            CheckDlgButton(IDC_RESET_CARD_PIN_ROUTE, BST_UNCHECKED);
            EnableControl(*this, IDC_RESET_CARD_PIN_ROUTE, false);
            CheckDlgButton(IDC_RESET_CARD_CODE_ROUTE, BST_CHECKED);
            EnableControl(*this, IDC_RESET_CARD_CODE_ROUTE, false);
            m_bPinMode = 0;
            OnRadioClicked();
        },
        mvp::LogException("CResetCardDialog::DisablePIN"));
}

CString CResetCardDialog::GetPin() {
    const mvp::LogScope scope("CResetCardDialog::GetPin");
    CString text;
    mvp::Guarded(
        [&] {
            if (m_hWnd != nullptr) {
                ActiveEdit().ReadSecret(text);
            } else {
                text = ActiveText();
            }
        },
        mvp::LogException("CResetCardDialog::GetPin"));
    return text;
}

// What stood in the fields stays with the object.
void CResetCardDialog::OnDestroy() {
    UpdateData(TRUE);
    CBaseDialog::OnDestroy();
}

void CResetCardDialog::ResetToolTip() {
    const mvp::LogScope scope("CResetCardDialog::ResetToolTip");
    m_editResponse.ResetToolTip();
    m_editPin.ResetToolTip();
    m_editUnlockCode.ResetToolTip();
}
