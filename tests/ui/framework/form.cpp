#include "ui/framework/form.h"

#include <dlgfw/message_map.h>

namespace mvp::test {

BEGIN_MESSAGE_MAP(FormDlg, CDialog)
    ON_BN_CLICKED(kFormButton, &FormDlg::OnButton)
    ON_WM_DESTROY()
END_MESSAGE_MAP()

FormDlg::FormDlg(CWnd* pParent, DWORD dwStyle) : m_template("Form", {0, 0, 180, 60}, dwStyle) {
    m_template.Add("EDIT", kFormEdit, "", {7, 7, 100, 14}, WS_BORDER | WS_TABSTOP)
        .Add("BUTTON", kFormButton, "&Go", {120, 7, 50, 14}, WS_TABSTOP)
        .Add("BUTTON", IDOK, "OK", {7, 40, 50, 14}, BS_DEFPUSHBUTTON | WS_TABSTOP)
        .Add("BUTTON", IDCANCEL, "Cancel", {67, 40, 50, 14}, WS_TABSTOP);
    InitModalIndirect(m_template.Get(), pParent);
}

BOOL FormDlg::OnInitDialog() {
    const BOOL setFocus = CDialog::OnInitDialog();
    if (m_onInit) {
        m_onInit();
    }
    return setFocus;
}

void FormDlg::OnButton() {
    // The dialog, and the function object in it, may go meanwhile.
    if (const auto onButton = m_onButton) {
        onButton();
    }
}

void FormDlg::OnDestroy() {
    if (m_onDestroy) {
        m_onDestroy();
    }
    CDialog::OnDestroy();
}

BOOL FormDlg::PreTranslateMessage(MSG* pMsg) {
    return (m_onPreTranslate && m_onPreTranslate(pMsg)) || CDialog::PreTranslateMessage(pMsg);
}

HostWnd::HostWnd() {
    CreateEx(0, nullptr, "host", WS_POPUP | WS_CAPTION | WS_VISIBLE, 100, 100, 700, 600, nullptr,
             nullptr);
}

}  // namespace mvp::test
