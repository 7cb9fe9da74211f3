// The three small dialogs around unlocking a card. Each is run with DoModal, which returns IDOK or
// IDCANCEL as the user closed it, and -1 when it could not be shown. All calls are made on the
// thread that created the object.
#pragma once

#include <dlgfw/dialog.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/string.h>
#include <mvpingui/detect_card_removed_dialog.h>
#include <mvpingui/export.h>

// The attempt failed: to unlock the card, or to give it its first PIN.
class MVPINGUI_API CUnlockFailedDlg : public CDialog {
public:
    // pParent    parent window, not owned; may be null
    // strMessage what happened and what to do, copied
    // nMode      1: title, heading and icon are those of a first PIN; else those of unlocking
    CUnlockFailedDlg(CWnd* pParent, const CString& strMessage, int nMode);

    INT_PTR DoModal() override;

protected:
    BOOL OnInitDialog() override;

private:
    CString m_strMessage;
    CFont m_boldFont;
    int m_nMode;
};

// The card is unlocked.
class MVPINGUI_API CUnlockSuccessDlg : public CDialog {
public:
    // pParent  parent window, not owned; may be null
    explicit CUnlockSuccessDlg(CWnd* pParent);

    INT_PTR DoModal() override;

protected:
    BOOL OnInitDialog() override;

private:
    CFont m_boldFont;
};

// A tool of the caller's is at the card. The notice ends with IDCANCEL when the card is removed.
class MVPINGUI_API CUnlockInitToolDlg : public VKDetectCardRemovedDlg {
public:
    // pParent    parent window, not owned; may be null
    // pszReader  the reader that holds the card; null or empty: any reader
    // nMode      0: the card is being unlocked; else it is being initialized
    CUnlockInitToolDlg(CWnd* pParent, const char* pszReader, int nMode);

protected:
    BOOL OnInitDialog() override;

private:
    int m_nMode;
};
