#include <utility>

#include <dlgfw/message_map.h>

#include "dialogs/base/control_place.h"
#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/resource_dialog.h"
#include "dialogs/base/window_fit.h"
#include "mvpingui/reset_card_dialog.h"
#include "resources/resource_numbers.h"
#include "services/card_removed_message.h"

BEGIN_MESSAGE_MAP(CResetCardDialogMain, CDialog)
    ON_WM_DESTROY()
    ON_WM_MOVE()
    ON_REGISTERED_MESSAGE(mvp::g_nCardRemovedMessage, &CResetCardDialogMain::OnCardEvent)
END_MESSAGE_MAP()

CResetCardDialogMain::CResetCardDialogMain(int nMode, CWnd* pParent, int nFirst, int nSecond,
                                           int nThird, const char* pszReader)
    : CDialog(IDD_RESET_CARD_MAIN, pParent),
      m_nFirst(nFirst),
      m_nSecond(nSecond),
      m_nThird(nThird),
      m_nMode(nMode),
      m_strReader(pszReader) {
    const mvp::LogScope scope("CResetCardDialogMain::CResetCardDialogMain");
}

CResetCardDialogMain::~CResetCardDialogMain() {
    const mvp::LogScope scope("CResetCardDialogMain::~CResetCardDialogMain");
    delete m_pResetCardDialog;
}

INT_PTR CResetCardDialogMain::DoModal() {
    const INT_PTR result =
        mvp::RunFromResourceModule(IDD_RESET_CARD_MAIN, "CResetCardDialogMain::DoModal",
                                   [this](HINSTANCE hModule) { return RunModalFrom(hModule); });
    // What was not confirmed is nobody's to read.
    if (result != IDOK && m_pResetCardDialog != nullptr) {
        m_pResetCardDialog->EraseSecrets();
    }
    return result;
}

BOOL CResetCardDialogMain::OnInitDialog() {
    const mvp::LogScope scope("CResetCardDialogMain::OnInitDialog");
    CDialog::OnInitDialog();
    vklogLog(g_szLogTag, kLogDetail, "Loading icon...");
    mvp::SetSmallIcon(*this, IDI_CARD_PIN);
    m_okButton.SubclassDlgItem(IDOK, this);
    CreatePanel();
    CString title;
    if (mvp::LoadResourceString(IDS_CARD_PIN_TITLE, title)) {
        SetWindowText(title);
    }
    UpdateWindow();
    m_removalWatch.Start(*this, m_strReader);
    // The panel has put the focus on its active field.
    return m_pResetCardDialog == nullptr ? TRUE : FALSE;
}

void CResetCardDialogMain::CreatePanel() {
    delete std::exchange(m_pResetCardDialog, nullptr);  // of a former DoModal
    const CRect place = mvp::PlaceOf(*this, IDC_RESET_CARD_PANEL_PLACE);
    m_pResetCardDialog = mvp::Guarded<CResetCardDialog*>(
        nullptr, [&] { return new CResetCardDialog(m_nMode, &place, &m_okButton, this); },
        mvp::LogException("CResetCardDialog::CResetCardDialog"));
    if (m_pResetCardDialog == nullptr || m_pResetCardDialog->LocCreate(this) == 0) {
        vklogLog(g_szLogTag, kLogError, "CResetCardDialogMain: the panel could not be created");
        delete std::exchange(m_pResetCardDialog, nullptr);
        return;
    }
    mvp::ShowPanel(*m_pResetCardDialog, GetDlgItem(IDC_RESET_CARD_PANEL_PLACE));
    ResizeDlg(0, place.bottom - mvp::ClientRectOf(*this, *m_pResetCardDialog).bottom);
    m_pResetCardDialog->CheckWindow(0);
}

void CResetCardDialogMain::ResizeDlg(int dx, int dy) {
    const mvp::LogScope scope("CResetCardDialogMain::ResizeDlg");
    MoveDlgItem(IDCANCEL, dx, dy);
    MoveDlgItem(IDOK, dx, dy);
    mvp::FitWindow(*this, {-dx, -dy}, {});
}

void CResetCardDialogMain::MoveDlgItem(int nId, int dx, int dy) {
    // The name of the operation that it is a step of.
    const mvp::LogScope scope("CResetCardDialogMain::ResizeDlg");
    mvp::MoveControl(*this, nId, -dx, -dy);
    if (CWnd* control = GetDlgItem(nId)) {
        control->RedrawWindow();
    }
}

void CResetCardDialogMain::OnOK() {
    const mvp::LogScope scope("CResetCardDialogMain::OnOK");
    // What has ended the dialog before stands. The command comes from anywhere, also while the
    // button is disabled.
    if ((m_nFlags & WF_CONTINUEMODAL) == 0 ||
        (m_okButton.m_hWnd != nullptr && !m_okButton.IsWindowEnabled())) {
        return;
    }
    CDialog::OnOK();
    // The panel keeps what its fields held; nothing that is typed from now on changes it.
    if (m_pResetCardDialog != nullptr) {
        m_pResetCardDialog->DestroyWindow();
    }
}

CString CResetCardDialogMain::GetPin() {
    const mvp::LogScope scope("CResetCardDialogMain::GetPin");
    return m_pResetCardDialog != nullptr ? m_pResetCardDialog->GetPin() : CString();
}

void CResetCardDialogMain::StopDetectingRemoveEvent() {
    const mvp::LogScope scope("CResetCardDialogMain::StopDetectingRemoveEvent");
    m_removalWatch.Stop();
}

LRESULT CResetCardDialogMain::OnCardEvent(WPARAM /*wParam*/, LPARAM /*lParam*/) {
    const mvp::LogScope scope("CResetCardDialogMain::OnCardEvent");
    // A message that was posted before the watch ended may still come after it.
    if (m_removalWatch) {
        EndDialog(IDCANCEL);
    }
    return 0;
}

void CResetCardDialogMain::OnDestroy() {
    const mvp::LogScope scope("CResetCardDialogMain::OnDestroy");
    StopDetectingRemoveEvent();
    CDialog::OnDestroy();
}

void CResetCardDialogMain::OnMove(int x, int y) {
    const mvp::LogScope scope("CResetCardDialogMain::OnMove");
    CDialog::OnMove(x, y);
    if (m_pResetCardDialog != nullptr) {
        m_pResetCardDialog->ResetToolTip();
    }
}
