// CAboutDlg: the about box. It tells the name and version of the installed product, which it asks
// the Windows Installer for when it opens, and opens the credits document that the configuration
// names ("ThirdPartyLicenseFile"). It opens whatever is missing: the log says what could not be
// had. All calls are made on the thread that created the object.
#pragma once

#include <dlgfw/dialog.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/string.h>
#include <mvpingui/export.h>

class MVPINGUI_API CAboutDlg : public CDialog {
public:
    // nColorMode   0: the framework's colours; otherwise a background in the system's window colour
    // pParent      parent window, not owned; may be null
    // pszCaption   shown below the version, copied; may be null
    CAboutDlg(int nColorMode, CWnd* pParent, const char* pszCaption);

    // IDOK, IDCANCEL when the user closed it otherwise, or -1 when it could not be shown.
    INT_PTR DoModal() override;

protected:
    BOOL OnInitDialog() override;
    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    afx_msg void OnSysColorChange();
    afx_msg void OnBnClickedCredits();

    DECLARE_MESSAGE_MAP()

private:
    void ShowMark();

    CString m_strCaption;
    int m_nColorMode;
    CBrush m_brBackground;
    CFont m_boldFont;  // of the product's name
};
