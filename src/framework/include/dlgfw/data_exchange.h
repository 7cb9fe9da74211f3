// Moving values between controls and members, for DoDataExchange (CWnd::UpdateData):
//
//     void AskDlg::DoDataExchange(CDataExchange* pDX) {
//         CDialog::DoDataExchange(pDX);
//         DDX_Control(pDX, IDC_NAME, m_editName);
//         DDX_Text(pDX, IDC_NAME, m_strName);
//     }
//
// A control that does not exist ends the exchange: an exception of the framework's own unwinds
// DoDataExchange, and UpdateData returns FALSE.
#pragma once

#include <dlgfw/string.h>
#include <dlgfw/wnd.h>

class DLGFW_API CDataExchange {
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate) noexcept
        : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd) {}

    // The control's window.
    HWND PrepareCtrl(int nIDC);
    // Ends the exchange.
    [[noreturn]] void Fail();

    BOOL m_bSaveAndValidate;  // TRUE: controls to members
    CWnd* m_pDlgWnd;
};

// Binds the object to the control, once.
DLGFW_API void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
DLGFW_API void DDX_Text(CDataExchange* pDX, int nIDC, CString& value);
