#include <windows.h>

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
    CString old;
    ReadText(hWnd, old);
    if (old != strText) {
        ::SetWindowTextA(hWnd, strText);
    }
}

}  // namespace

BOOL CWnd::UpdateData(BOOL bSaveAndValidate) {
    if (m_hWnd == nullptr) {
        return FALSE;
    }
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
    HWND control = ::GetDlgItem(m_pDlgWnd->m_hWnd, nIDC);
    if (control == nullptr) {
        Fail();
    }
    return control;
}

void CDataExchange::Fail() {
    throw ExchangeFailed();
}

void DDX_Control(CDataExchange* pDX, int nIDC, CWnd& rControl) {
    HWND control = pDX->PrepareCtrl(nIDC);
    if (rControl.m_hWnd == nullptr && !rControl.SubclassWindow(control)) {
        pDX->Fail();
    }
}

void DDX_Text(CDataExchange* pDX, int nIDC, CString& value) {
    HWND control = pDX->PrepareCtrl(nIDC);
    if (pDX->m_bSaveAndValidate) {
        ReadText(control, value);
    } else {
        WriteText(control, value);
    }
}
