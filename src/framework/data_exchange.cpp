#include <windows.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

#include <dlgfw/data_exchange.h>

#include "framework/wnd_access.h"

using dlgfw::ThreadState;

namespace {

// Ends an exchange. Thrown and caught in this library, through the DoDataExchange of others.
struct ExchangeFailed {};

// Notifications of the dialog's controls are not dispatched while this lives.
class NotificationLock {
public:
    explicit NotificationLock(HWND hWnd)
        : m_hWndOuter(std::exchange(ThreadState::Get().hWndLocked, hWnd)) {}
    NotificationLock(const NotificationLock&) = delete;
    NotificationLock& operator=(const NotificationLock&) = delete;
    ~NotificationLock() { ThreadState::Get().hWndLocked = m_hWndOuter; }

private:
    HWND m_hWndOuter;
};

void ReadText(HWND hWnd, CString& strText) {
    CWnd::FromHandle(hWnd)->GetWindowText(strText);
}

// Leaves a control that shows the text already as it is, caret and all.
void WriteText(HWND hWnd, const CString& strText) {
    CString strOld;
    ReadText(hWnd, strOld);
    if (strOld != strText)
        ::SetWindowTextA(hWnd, strText);
}

// Tells the user what is wrong and ends the exchange.
[[noreturn]] void Refuse(CDataExchange* pDX, UINT nIDPrompt, LPCSTR pszDefault, int nNumber = 0) {
    CString strPrompt(pszDefault);
    strPrompt.LoadString(nIDPrompt);
    CString strNumber;
    strNumber.Format("%d", nNumber);
    strPrompt.Replace("%d", strNumber);
    CString strCaption;
    pDX->m_pDlgWnd->GetWindowText(strCaption);
    pDX->m_pDlgWnd->MessageBox(strPrompt, strCaption, MB_ICONEXCLAMATION | MB_OK);
    pDX->Fail();
}

// The whole text, white space around it apart, as a decimal number within the bounds.
bool ParseNumber(CString& strText, long long nMin, long long nMax, long long& nValue) {
    strText.Trim();
    if (strText.IsEmpty())
        return false;
    char* pEnd = nullptr;
    errno = 0;
    nValue = std::strtoll(strText, &pEnd, 10);
    return *pEnd == '\0' && errno == 0 && nValue >= nMin && nValue <= nMax;
}

}  // namespace

BOOL CWnd::UpdateData(BOOL bSaveAndValidate) {
    if (m_hWnd == nullptr)
        return FALSE;
    CDataExchange dx(this, bSaveAndValidate);
    const NotificationLock lock(m_hWnd);
    try {
        DoDataExchange(&dx);
        return TRUE;
    } catch (const ExchangeFailed&) {
        return FALSE;
    } catch (...) {
        dlgfw::ReportException(0);
        return FALSE;
    }
}

void CWnd::DoDataExchange(CDataExchange*) {}

HWND CDataExchange::PrepareCtrl(int nIDC) {
    HWND hWndCtrl = ::GetDlgItem(m_pDlgWnd->m_hWnd, nIDC);
    if (hWndCtrl == nullptr)
        throw ExchangeFailed();
    m_hWndLastControl = hWndCtrl;
    m_bEditLastControl = FALSE;
    return hWndCtrl;
}

HWND CDataExchange::PrepareEditCtrl(int nIDC) {
    HWND hWndCtrl = PrepareCtrl(nIDC);
    m_bEditLastControl = TRUE;
    return hWndCtrl;
}

void CDataExchange::Fail() {
    if (m_bSaveAndValidate && m_hWndLastControl != nullptr) {
        ::SetFocus(m_hWndLastControl);
        if (m_bEditLastControl)
            ::SendMessageA(m_hWndLastControl, EM_SETSEL, 0, -1);
    }
    throw ExchangeFailed();
}

void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl) {
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (rControl.m_hWnd == nullptr && !rControl.SubclassWindow(hWndCtrl))
        pDX->Fail();
}

void DDX_Text(CDataExchange* pDX, int nIDC, CString& value) {
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        ReadText(hWndCtrl, value);
    else
        WriteText(hWndCtrl, value);
}

void DDX_Text(CDataExchange* pDX, int nIDC, int& value) {
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    CString strText;
    if (pDX->m_bSaveAndValidate) {
        ReadText(hWndCtrl, strText);
        long long nValue = 0;
        if (!ParseNumber(strText, INT_MIN, INT_MAX, nValue))
            Refuse(pDX, AFX_IDP_PARSE_INT, "Please enter an integer.");
        value = static_cast<int>(nValue);
    } else {
        strText.Format("%d", value);
        WriteText(hWndCtrl, strText);
    }
}

void DDX_Text(CDataExchange* pDX, int nIDC, UINT& value) {
    HWND hWndCtrl = pDX->PrepareEditCtrl(nIDC);
    CString strText;
    if (pDX->m_bSaveAndValidate) {
        ReadText(hWndCtrl, strText);
        long long nValue = 0;
        if (!ParseNumber(strText, 0, UINT_MAX, nValue))
            Refuse(pDX, AFX_IDP_PARSE_UINT, "Please enter a positive integer.");
        value = static_cast<UINT>(nValue);
    } else {
        strText.Format("%u", value);
        WriteText(hWndCtrl, strText);
    }
}

void DDX_Check(CDataExchange* pDX, int nIDC, int& value) {
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = static_cast<int>(::SendMessageA(hWndCtrl, BM_GETCHECK, 0, 0));
    else
        ::SendMessageA(hWndCtrl, BM_SETCHECK, static_cast<WPARAM>(value), 0);
}

void DDX_Radio(CDataExchange* pDX, int nIDC, int& value) {
    HWND hWndCtrl = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate)
        value = -1;
    int nButton = 0;
    do {
        if ((::SendMessageA(hWndCtrl, WM_GETDLGCODE, 0, 0) & DLGC_RADIOBUTTON) != 0) {
            if (!pDX->m_bSaveAndValidate)
                ::SendMessageA(hWndCtrl, BM_SETCHECK, nButton == value, 0);
            else if (::SendMessageA(hWndCtrl, BM_GETCHECK, 0, 0) != BST_UNCHECKED)
                value = nButton;
            ++nButton;
        }
        hWndCtrl = ::GetWindow(hWndCtrl, GW_HWNDNEXT);
    } while (hWndCtrl != nullptr && (::GetWindowLongPtrA(hWndCtrl, GWL_STYLE) & WS_GROUP) == 0);
}

void DDV_MaxChars(CDataExchange* pDX, const CString& value, int nChars) {
    if (pDX->m_bSaveAndValidate) {
        if (value.GetLength() > nChars)
            Refuse(pDX, AFX_IDP_PARSE_STRING_SIZE, "Please enter no more than %d characters.",
                   nChars);
    } else if (pDX->m_hWndLastControl != nullptr && pDX->m_bEditLastControl) {
        ::SendMessageA(pDX->m_hWndLastControl, EM_LIMITTEXT, static_cast<WPARAM>(nChars), 0);
    }
}
