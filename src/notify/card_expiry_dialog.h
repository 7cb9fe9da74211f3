// The notice that a card, or certificates on it, expire soon or have expired.
#pragma once

#include <dlgfw/controls.h>
#include <dlgfw/image_list.h>

#include "mvpingui/base_dialog.h"
#include "mvpingui/card_expiry.h"
#include "notify/card_expiry_cancel.h"
#include "notify/card_expiry_rules.h"

// DoModal returns IDOK when the user has confirmed the reminder, IDCANCEL when he closed the notice
// or the info's cancel event did, and -1 when it could not be shown.
class CCardExpiryNotifyDlg : public CBaseDialog {
public:
    // pParent    parent window, not owned; may be null
    // strReader  the reader that holds the card
    // info       what is told; it outlives the dialog and does not change meanwhile
    CCardExpiryNotifyDlg(CWnd* pParent, const CString& strReader,
                         const VKExpiryNotificationInfo& info);
    ~CCardExpiryNotifyDlg() override;

    // What stood in the edit of the days when the user confirmed; before, the info's number.
    const CString& DelayText() const { return m_strDelay; }

protected:
    // The time by which things have expired; asked once, when the notice opens.
    virtual CTime Now() const;

    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnContextualHelp();
    afx_msg void OnClickedRemind();
    afx_msg BOOL OnHelpInfo(HELPINFO* pHelpInfo);
    afx_msg void OnDestroy();

    DECLARE_MESSAGE_MAP()

private:
    void SetUpReminder();
    bool ShowCard(CTime now);
    CString CardLine(bool bExpired, CTime expiry) const;
    void ShowSentence();
    bool ShowCertificates(CTime now);
    void MakeColumns();
    void FitColumns();
    int AddImage(UINT nIcon);
    bool AddRow(int nRow, CTime now);
    void ShowExpired();
    void Take(const mvp::FormStep& step);
    CFont* TextFont() const;

    const VKExpiryNotificationInfo& m_info;
    CString m_strDelay;
    CStatic m_cardLine;
    CListCtrl m_list;
    CSpinButtonCtrl m_spin;
    CImageList m_images;  // outlives the list, which only borrows it
    int m_nValidImage = I_IMAGENONE;
    int m_nExpiredImage = I_IMAGENONE;
    mvp::CancelWatch m_cancelWatch;
};
