// CChangePINDialogMain: the library's own modal frame around a CChangePINDialog, with OK and
// Cancel. It closes when the card is removed; a mandatory change cannot be left otherwise, unless
// the panel could not be made and there is nothing to enter.
#pragma once

#include <dlgfw/controls.h>
#include <dlgfw/string.h>

#include "dialogs/base/resource_dialog.h"
#include "mvpingui/pwd_rule_args.h"
#include "mvpingui/removal_watch.h"

class CChangePINDialog;

class CChangePINDialogMain : public mvp::ResourceDialog {
public:
    // The arguments are those of CChangePINDialog, and the reader that holds the card (null or
    // empty: any).
    CChangePINDialogMain(const PwdRuleArgs* pRules, int bUseWindowColor, bool bAskCurrentPin,
                         CWnd* pParent, int nTopMargin, int nLeftIndent, int nLineSpacing,
                         const char* pszReader);
    ~CChangePINDialogMain() override;

    // The panel, which keeps the PINs after the dialog has ended; null when it could not be made.
    const CChangePINDialog* Panel() const { return m_pPanel; }

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    afx_msg LRESULT OnCardEvent(WPARAM wParam, LPARAM lParam);
    afx_msg void OnDestroy();
    afx_msg void OnMove(int x, int y);

    DECLARE_MESSAGE_MAP()

private:
    void CreatePanel();
    void DoWithoutPanel();
    void ResizeDlg(int dx, int dy);
    bool IsButtonEnabled(int nId) const;

    PwdRuleArgs m_rules{0, 0, 0, 0, MVP_NO_PIN_LENGTH_RULE, MVP_NO_PIN_LENGTH_RULE, 0};
    CChangePINDialog* m_pPanel = nullptr;  // owned
    CButton m_okButton;
    int m_nTopMargin;
    int m_nLeftIndent;
    int m_nLineSpacing;
    int m_bUseWindowColor;
    bool m_bAskCurrentPin;
    CString m_strReader;
    mvp::RemovalWatch m_removalWatch;
};
