#include "dialogs/pin/change_pin_main_dialog.h"

#include <utility>

#include <dlgfw/geometry.h>
#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "mvpingui/change_pin_dialog.h"
#include "platform/barrier.h"
#include "resources/resource_numbers.h"
#include "services/card_removed_message.h"
#include "services/log.h"
#include "services/resource_module.h"

BEGIN_MESSAGE_MAP(CChangePINDialogMain, CDialog)
    ON_WM_DESTROY()
    ON_WM_MOVE()
    ON_REGISTERED_MESSAGE(mvp::g_nCardRemovedMessage, &CChangePINDialogMain::OnCardEvent)
END_MESSAGE_MAP()

CChangePINDialogMain::CChangePINDialogMain(const PwdRuleArgs* pRules, int bUseWindowColor,
                                           bool bAskCurrentPin, CWnd* pParent, int nTopMargin,
                                           int nLeftIndent, int nLineSpacing, const char* pszReader)
    : ResourceDialog(IDD_CHANGE_PIN_MAIN, pParent),
      m_nTopMargin(nTopMargin),
      m_nLeftIndent(nLeftIndent),
      m_nLineSpacing(nLineSpacing),
      m_bUseWindowColor(bUseWindowColor),
      m_bAskCurrentPin(bAskCurrentPin),
      m_strReader(pszReader) {
    const mvp::LogScope scope("CChangePINDialogMain::CChangePINDialogMain");
    if (pRules != nullptr) {
        m_rules = *pRules;
        m_rules.dwUnused = 0;
    }
}

CChangePINDialogMain::~CChangePINDialogMain() {
    const mvp::LogScope scope("CChangePINDialogMain::~CChangePINDialogMain");
    delete m_pPanel;
}

BOOL CChangePINDialogMain::OnInitDialog() {
    const mvp::LogScope scope("CChangePINDialogMain::OnInitDialog");
    CDialog::OnInitDialog();
    vklogLog(g_szLogTag, kLogDetail, "Loading icon...");
    mvp::SetSmallIcon(*this, IDI_CARD_PIN);
    m_okButton.SubclassDlgItem(IDOK, this);
    CWnd* cancel = GetDlgItem(IDCANCEL);
    if (m_rules.bCancelDisabled != 0 && cancel != nullptr) {
        cancel->EnableWindow(FALSE);
    }
    CreatePanel();
    CString title;
    if (mvp::LoadResourceString(IDS_CARD_PIN_TITLE, title)) {
        SetWindowText(title);
    }
    UpdateWindow();
    m_removalWatch.Start(*this, m_strReader);
    return TRUE;
}

void CChangePINDialogMain::CreatePanel() {
    const CRect place = mvp::PlaceOf(*this, IDC_CHANGE_PIN_MAIN_PANEL_PLACE);
    m_pPanel = mvp::Guarded<CChangePINDialog*>(
        nullptr,
        [&] {
            return new CChangePINDialog(0, m_bUseWindowColor, m_bAskCurrentPin, &place, &m_rules,
                                        &m_okButton, this, m_nTopMargin, m_nLeftIndent,
                                        m_nLineSpacing);
        },
        mvp::LogException("CChangePINDialog::CChangePINDialog"));
    if (m_pPanel == nullptr || m_pPanel->LocCreate(this) == 0) {
        DoWithoutPanel();
        return;
    }
    mvp::ShowPanel(*m_pPanel, GetDlgItem(IDC_CHANGE_PIN_MAIN_PANEL_PLACE));
    const CRect panel = mvp::ClientRectOf(*this, *m_pPanel);
    const auto fit = mvp::WindowFit::ToPlaceholder(place.bottom, panel.bottom);
    ResizeDlg(-fit.nWidth, -fit.nHeight);
    m_pPanel->SetFocus();
}

// Nothing can be entered, so nothing is confirmed, and the user can leave even a mandatory change.
void CChangePINDialogMain::DoWithoutPanel() {
    vklogLog(g_szLogTag, kLogError, "CChangePINDialogMain: the panel could not be created");
    delete std::exchange(m_pPanel, nullptr);
    m_okButton.EnableWindow(FALSE);
    m_rules.bCancelDisabled = 0;
    if (CWnd* cancel = GetDlgItem(IDCANCEL)) {
        cancel->EnableWindow(TRUE);
    }
}

void CChangePINDialogMain::ResizeDlg(int dx, int dy) {
    const mvp::LogScope scope("CChangePINDialogMain::ResizeDlg");
    mvp::FitWindow(*this, {-dx, -dy}, {IDCANCEL, IDOK});
}

// A button that the template lacks forbids nothing.
bool CChangePINDialogMain::IsButtonEnabled(int nId) const {
    const CWnd* button = GetDlgItem(nId);
    return button == nullptr || button->IsWindowEnabled();
}

void CChangePINDialogMain::OnOK() {
    const mvp::LogScope scope("CChangePINDialogMain::OnOK");
    // What has ended the dialog before stands: another OK judges nothing anew.
    if ((m_nFlags & WF_CONTINUEMODAL) == 0) {
        return;
    }
    // The command comes from anywhere: what counts is what stands in the edits now.
    if (!IsButtonEnabled(IDOK) || m_pPanel == nullptr || !m_pPanel->ReadAndCheck()) {
        return;
    }
    CDialog::OnOK();
    // The panel keeps what was judged; without its edits nothing comes after it.
    m_pPanel->DestroyWindow();
}

void CChangePINDialogMain::OnCancel() {
    const mvp::LogScope scope("CChangePINDialogMain::OnCancel");
    if (m_rules.bCancelDisabled == 0 && IsButtonEnabled(IDCANCEL)) {
        CDialog::OnCancel();
    }
}

LRESULT CChangePINDialogMain::OnCardEvent(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CChangePINDialogMain::OnCardEvent");
    m_rules.bCancelDisabled = 0;
    EndDialog(IDCANCEL);
    return 0;
}

void CChangePINDialogMain::OnDestroy() {
    const mvp::LogScope scope("CChangePINDialogMain::OnDestroy");
    CDialog::OnDestroy();
    m_removalWatch.Stop();
}

void CChangePINDialogMain::OnMove(int x, int y) {
    const mvp::LogScope scope("CChangePINDialogMain::OnMove");
    CDialog::OnMove(x, y);
    if (m_pPanel != nullptr) {
        m_pPanel->ResetToolTip();
    }
}
