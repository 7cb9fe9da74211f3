/* VKDetectCardRemovedDlg: the base of dialogs that concern one card. Such a dialog ends itself with
 * IDCANCEL when its card is removed from the reader. */
#pragma once

#include <dlgfw/string.h>
#include <mvpingui/base_dialog.h>
#include <mvpingui/removal_watch.h>

class MVPINGUI_API VKDetectCardRemovedDlg : public CBaseDialog {
public:
    // nTemplate  number of the dialog template in the resource module
    // pParent    parent window, not owned; may be null
    // pszReader  the reader that holds the card; null or empty: any reader
    VKDetectCardRemovedDlg(UINT nTemplate, CWnd* pParent, const char* pszReader);
    ~VKDetectCardRemovedDlg() override;

protected:
    // Starts to watch for the card's removal. Derived dialogs call it first in their own.
    BOOL OnInitDialog() override;

    // Ends the watch, once. A derived dialog that is about to end with success calls it, so that a
    // removal in the last moment does not turn success into cancel.
    void StopDetectingRemoveEvent();

    afx_msg LRESULT OnCardEvent(WPARAM wParam, LPARAM lParam);
    afx_msg void OnDestroy();

    DECLARE_MESSAGE_MAP()

private:
    CString m_strReader;
    mvp::RemovalWatch m_removalWatch;
};
