#include "mvpingui/unlock_result_dialogs.h"

#include <dlgfw/controls.h>

#include "dialogs/base/dialog_looks.h"
#include "dialogs/base/resource_dialog.h"
#include "resources/resource_numbers.h"

namespace {

// Of CUnlockFailedDlg: a first PIN could not be set.
constexpr int kInitializeMode = 1;
// Of CUnlockInitToolDlg.
constexpr int kUnlockMode = 0;

void SetTextIfThere(CWnd& window, UINT nString) {
    CString text;
    if (mvp::LoadResourceString(nString, text)) {
        window.SetWindowText(text);
    }
}

void SetHeading(CWnd& dialog, UINT nString) {
    if (CWnd* heading = dialog.GetDlgItem(IDC_UNLOCK_RESULT_HEADING)) {
        SetTextIfThere(*heading, nString);
    }
}

}  // namespace

CUnlockFailedDlg::CUnlockFailedDlg(CWnd* pParent, const CString& strMessage, int nMode)
    : CDialog(IDD_UNLOCK_FAILED, pParent), m_strMessage(strMessage), m_nMode(nMode) {
    const mvp::LogScope scope("CUnlockFailedDlg::CUnlockFailedDlg");
}

INT_PTR CUnlockFailedDlg::DoModal() {
    return mvp::RunFromResourceModule(IDD_UNLOCK_FAILED, "CUnlockFailedDlg::DoModal",
                                      [this](HINSTANCE hModule) { return RunModalFrom(hModule); });
}

BOOL CUnlockFailedDlg::OnInitDialog() {
    const mvp::LogScope scope("CUnlockFailedDlg::OnInitDialog");
    CDialog::OnInitDialog();
    m_boldFont.Attach(mvp::MakeHeadingBold(*this, IDC_UNLOCK_RESULT_HEADING).release());
    if (m_nMode == kInitializeMode) {
        SetTextIfThere(*this, IDS_INITIALIZE_FAILED_TITLE);
        SetHeading(*this, IDS_INITIALIZE_FAILED_HEADING);
    }
    const UINT icon = m_nMode == kInitializeMode ? IDI_CARD_INITIALIZE : IDI_CARD_UNLOCK;
    mvp::ShowIcon(*this, IDC_UNLOCK_RESULT_ICON, icon);
    mvp::SetSmallIcon(*this, icon);
    SetDlgItemText(IDC_UNLOCK_RESULT_MESSAGE, m_strMessage);
    mvp::BringToFront(*this);
    return TRUE;
}

CUnlockSuccessDlg::CUnlockSuccessDlg(CWnd* pParent) : CDialog(IDD_UNLOCK_SUCCESS, pParent) {
    const mvp::LogScope scope("CUnlockSuccessDlg::CUnlockSuccessDlg");
}

INT_PTR CUnlockSuccessDlg::DoModal() {
    return mvp::RunFromResourceModule(IDD_UNLOCK_SUCCESS, "CUnlockSuccessDlg::DoModal",
                                      [this](HINSTANCE hModule) { return RunModalFrom(hModule); });
}

BOOL CUnlockSuccessDlg::OnInitDialog() {
    const mvp::LogScope scope("CUnlockSuccessDlg::OnInitDialog");
    CDialog::OnInitDialog();
    mvp::ShowIcon(*this, IDC_UNLOCK_RESULT_ICON, IDI_CARD_UNLOCK);
    mvp::SetSmallIcon(*this, IDI_CARD_UNLOCK);
    m_boldFont.Attach(mvp::MakeHeadingBold(*this, IDC_UNLOCK_RESULT_HEADING).release());
    mvp::BringToFront(*this);
    return TRUE;
}

CUnlockInitToolDlg::CUnlockInitToolDlg(CWnd* pParent, const char* pszReader, int nMode)
    : VKDetectCardRemovedDlg(IDD_UNLOCK_INIT_TOOL, pParent, pszReader), m_nMode(nMode) {
    const mvp::LogScope scope("CUnlockInitToolDlg::CUnlockInitToolDlg");
}

BOOL CUnlockInitToolDlg::OnInitDialog() {
    const mvp::LogScope scope("CUnlockInitToolDlg::OnInitDialog");
    VKDetectCardRemovedDlg::OnInitDialog();
    mvp::ShowIcon(*this, IDC_UNLOCK_RESULT_ICON, IDI_CARD_PIN);
    if (m_nMode == kUnlockMode) {
        SetHeading(*this, IDS_UNLOCK_INIT_TOOL_HEADING);
    }
    mvp::BringToFront(*this);
    return TRUE;
}
