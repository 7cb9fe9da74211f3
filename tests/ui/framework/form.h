// The dialog that these tests open: an edit, a button, OK and Cancel, and what each test does in
// its handlers.
#pragma once

#include <functional>

#include <dlgfw/dialog.h>

#include "support/dialog_template.h"

namespace mvp::test {

constexpr int kFormEdit = 1001;
constexpr int kFormButton = 1002;

class FormDlg : public CDialog {
public:
    explicit FormDlg(CWnd* pParent = nullptr, DWORD dwStyle = DialogTemplate::kPopup);

    // Called at the messages of these names, where set.
    std::function<void()> m_onInit;
    std::function<void()> m_onButton;
    std::function<void()> m_onDestroy;
    std::function<bool(MSG*)> m_onPreTranslate;

    BOOL PreTranslateMessage(MSG* pMsg) override;
    BOOL Open(CWnd* pParent) { return CreateIndirect(m_template.Get(), pParent); }  // modeless

protected:
    BOOL OnInitDialog() override;
    afx_msg void OnButton();
    afx_msg void OnDestroy();
    DECLARE_MESSAGE_MAP()

private:
    DialogTemplate m_template;
};

// A visible window of this thread to be a parent.
class HostWnd : public CWnd {
public:
    HostWnd();
};

}  // namespace mvp::test
