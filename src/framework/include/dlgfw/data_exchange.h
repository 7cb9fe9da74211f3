// Moving values between controls and members, for DoDataExchange (CWnd::UpdateData):
//
//     void CAskDlg::DoDataExchange(CDataExchange* pDX) {
//         CDialog::DoDataExchange(pDX);
//         DDX_Control(pDX, IDC_NAME, m_editName);
//         DDX_Text(pDX, IDC_NAME, m_strName);
//         DDV_MaxChars(pDX, m_strName, 20);
//     }
//
// A control that does not exist, or a text that does not read as the value asked for, ends the
// exchange: an exception of the framework's own unwinds DoDataExchange, and UpdateData returns
// FALSE. A wrong text is first told to the user in a message box; string resource
// AFX_IDP_PARSE_... of the resource chain, when there is one, is its text.
#pragma once

#include <dlgfw/string.h>
#include <dlgfw/wnd.h>

constexpr UINT AFX_IDP_PARSE_INT = 0xF110;
constexpr UINT AFX_IDP_PARSE_UINT = 0xF112;
constexpr UINT AFX_IDP_PARSE_STRING_SIZE = 0xF114;  // %d stands for the number of characters

class DLGFW_API CDataExchange {
public:
    CDataExchange(CWnd* pDlgWnd, BOOL bSaveAndValidate) noexcept
        : m_bSaveAndValidate(bSaveAndValidate), m_pDlgWnd(pDlgWnd) {}

    // The control's window, remembered as the one that Fail goes back to.
    HWND PrepareCtrl(int nIDC);
    HWND PrepareEditCtrl(int nIDC);
    // Puts the focus on the last control, selects its text when it is an edit, and ends the
    // exchange.
    [[noreturn]] void Fail();

    BOOL m_bSaveAndValidate;  // TRUE: controls to members
    CWnd* m_pDlgWnd;
    HWND m_hWndLastControl = nullptr;
    BOOL m_bEditLastControl = FALSE;
};

// Binds the object to the control, once.
DLGFW_API void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl);
DLGFW_API void DDX_Text(CDataExchange* pDX, int nIDC, CString& value);
DLGFW_API void DDX_Text(CDataExchange* pDX, int nIDC, int& value);
DLGFW_API void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value);
// BST_UNCHECKED, BST_CHECKED or BST_INDETERMINATE.
DLGFW_API void DDX_Check(CDataExchange* pDX, int nIDC, int& value);
// The index of the checked button within the group that begins with nIDC; -1 for none.
DLGFW_API void DDX_Radio(CDataExchange* pDX, int nIDC, int& value);
// Right behind the DDX_Text of the same value; also limits what the edit accepts.
DLGFW_API void DDV_MaxChars(CDataExchange* pDX, const CString& value, int nChars);
