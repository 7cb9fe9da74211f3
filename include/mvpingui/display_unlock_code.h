/* Showing a card's unlock code to its user, once. */
#pragma once

#include <dlgfw/string.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/caps_lock_sensitive_edit.h>
#include <mvpingui/card_callbacks.h>
#include <mvpingui/detect_card_removed_dialog.h>

/* Fetches the card's unlock code and shows it, grouped for reading, unless the configuration's
 * "DisplayUnlockCode" is something else than 1.
 *
 * pParent          parent window, not owned; may be null
 * pContext         handed to the callbacks
 * pfnGetUnlockCode fetches the code; null counts as failure -1
 * pfnNeverDisplay  called when the user has accepted the code with the box ticked; may be null
 * pszReader        the reader that holds the card, whose removal closes the dialog; null or empty:
 *                  any reader
 *
 * Returns 1 when the user accepted the code with the box ticked, or the card has none, which he is
 * told; 0 otherwise: the code could not be fetched, which he is told, is not to be displayed, or
 * the dialog was closed without the box ticked. Never throws. On the thread of the user interface.
 */
extern "C" MVPINGUI_API int __cdecl DisplayUnlockCode(CWnd* pParent, void* pContext,
                                                      MvpGetUnlockCodeCallback pfnGetUnlockCode,
                                                      MvpNeverDisplayCallback pfnNeverDisplay,
                                                      const char* pszReader);

/* The panel with the code and the box, inside CDisplayUnlockCodeDlg. The code is overwritten with
 * the window's and the object's end. */
class MVPINGUI_API CDisplayUCChild : public CBaseDialog {
public:
    /* nMode          0: the framework's colours; else the system's window colour
     * pPosition      its left and top place the panel in the parent's client area; may be null
     * pszCode        what is shown, copied
     * pParent        the host, not owned */
    CDisplayUCChild(int nMode, const RECT* pPosition, const char* pszCode, CWnd* pParent);
    ~CDisplayUCChild() override;

    /* Creates the panel's window as a child of `pParent`, invisible. Nonzero on success. */
    int LocCreate(CWnd* pParent);

    /* 1 when the box is ticked, or missing; else 0. */
    int IsNeverDisplayChecked() const;

    /* Sets `strCode` to what the window shows. The caller overwrites it. */
    void TakeBack(CString& strCode) const;

protected:
    void DoDataExchange(CDataExchange* pDX) override;

private:
    CString m_strCode;
    CCapsLockSensitiveEdit m_editCode; /* read-only; overwrites what it shows */
};

/* Shows an unlock code until the user closes it or the card is removed. While it is open its parent
 * has the window property "DisplayUCodeWnd", whose value is the dialog's window handle. DoModal
 * returns IDOK when OK was pressed with the box ticked, or without the panel; else IDCANCEL; -1
 * when the dialog could not be shown. */
class MVPINGUI_API CDisplayUnlockCodeDlg : public VKDetectCardRemovedDlg {
public:
    /* pParent    parent window, not owned; may be null
     * pszCode    what is shown, copied
     * pszReader  the reader that holds the card; null or empty: any reader
     * nChildMode the panel's nMode */
    CDisplayUnlockCodeDlg(CWnd* pParent, const char* pszCode, const char* pszReader,
                          int nChildMode);
    ~CDisplayUnlockCodeDlg() override;

protected:
    BOOL OnInitDialog() override;
    void OnOK() override;
    afx_msg void OnDestroy();

    DECLARE_MESSAGE_MAP()

private:
    void CreatePanel();

    CDisplayUCChild* m_pDisplayUCChild = nullptr; /* owned */
    int m_nChildMode;
    CString m_strCode;
    HWND m_hPropertyWnd = nullptr; /* the parent that has the property; not owned */
    HWND m_hPreviousWnd = nullptr; /* what the property was before; not owned */
};
