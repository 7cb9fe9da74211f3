// CCMLockedDlg: tells the user that the card manager of the card is blocked, in the configuration's
// words ("BlockedCardManagerMessage") or the library's own. The dialog is fitted to the text.
// DoModal returns IDOK, IDCANCEL when the user closed it otherwise or the card was removed, or -1
// when it could not be shown. All calls are made on the thread that created the object.
#pragma once

#include <dlgfw/string.h>
#include <mvpingui/detect_card_removed_dialog.h>

class MVPINGUI_API CCMLockedDlg : public VKDetectCardRemovedDlg {
public:
    // pParent    parent window, not owned; may be null
    // pszReader  the reader that holds the card; null or empty: any reader
    CCMLockedDlg(CWnd* pParent, const char* pszReader);

protected:
    BOOL OnInitDialog() override;
    void DoDataExchange(CDataExchange* pDX) override;
    // Shows the help topic; F1 does it.
    virtual void OnContextualHelp();
    afx_msg BOOL OnHelpInfo(HELPINFO* pHelpInfo);

    DECLARE_MESSAGE_MAP()

private:
    void AdjustWindow();
    int TextHeight(CWnd& text, int nWidth) const;

    CString m_strMessage;
};
