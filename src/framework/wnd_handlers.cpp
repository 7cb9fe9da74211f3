// CWnd: its message map and the standard processing of each message.
#include <dlgfw/message_map.h>
#include <dlgfw/wnd.h>

#include "framework/wnd_access.h"

namespace {

// To every descendant that has an object on this thread.
void SendToDescendants(HWND hWnd, const MSG& message) {
    HWND next = nullptr;
    for (HWND child = ::GetTopWindow(hWnd); child != nullptr; child = next) {
        if (CWnd::FromHandlePermanent(child) != nullptr) {
            ::SendMessageA(child, message.message, message.wParam, message.lParam);
        }
        SendToDescendants(child, message);
        next = ::GetWindow(child, GW_HWNDNEXT);
    }
}

}  // namespace

BEGIN_MESSAGE_MAP(CWnd, CCmdTarget)
    ON_WM_NCDESTROY()
    ON_WM_SYSCOLORCHANGE()
    ON_WM_SETTINGCHANGE()
END_MESSAGE_MAP()

// The last message of a window. Nothing touches the object after PostNcDestroy.
void CWnd::OnNcDestroy() {
    const WndGuard guard(this);
    Default();
    if (!guard.IsAlive()) {
        return;
    }
    // The window keeps our procedure: should it not have been destroyed, that sees to its end.
    WndAccess::ForgetWindowProc(*this);
    Detach();
    PostNcDestroy();
}

int CWnd::OnCreate(LPCREATESTRUCTA) {
    return static_cast<int>(Default());
}
void CWnd::OnDestroy() {
    Default();
}
void CWnd::OnMove(int, int) {
    Default();
}
void CWnd::OnSize(UINT, int, int) {
    Default();
}
void CWnd::OnPaint() {
    Default();
}
BOOL CWnd::OnEraseBkgnd(CDC*) {
    return static_cast<BOOL>(Default());
}

HBRUSH CWnd::OnCtlColor(CDC*, CWnd* pWnd, UINT) {
    LRESULT result = 0;
    if (pWnd == nullptr || !pWnd->SendChildNotifyLastMsg(&result)) {
        result = Default();
    }
    return reinterpret_cast<HBRUSH>(result);
}

// The system tells top-level windows only.
void CWnd::OnSysColorChange() {
    SendCurrentToDescendants();
    Default();
}

void CWnd::OnSettingChange(UINT, LPCSTR) {
    SendCurrentToDescendants();
    Default();
}

void CWnd::SendCurrentToDescendants() {
    const MSG message = *GetCurrentMessage();
    if ((GetStyle() & WS_CHILD) == 0) {
        SendToDescendants(m_hWnd, message);
    }
}

void CWnd::OnSetFocus(CWnd*) {
    Default();
}
void CWnd::OnKillFocus(CWnd*) {
    Default();
}
void CWnd::OnKeyDown(UINT, UINT, UINT) {
    Default();
}
void CWnd::OnKeyUp(UINT, UINT, UINT) {
    Default();
}
void CWnd::OnTimer(UINT_PTR) {
    Default();
}
void CWnd::OnMouseLeave() {
    Default();
}
void CWnd::OnLButtonDown(UINT, CPoint) {
    Default();
}
void CWnd::OnLButtonUp(UINT, CPoint) {
    Default();
}
BOOL CWnd::OnSetCursor(CWnd*, UINT, UINT) {
    return static_cast<BOOL>(Default());
}
LRESULT CWnd::OnNcHitTest(CPoint) {
    return Default();
}
void CWnd::OnEnable(BOOL) {
    Default();
}
BOOL CWnd::OnHelpInfo(HELPINFO*) {
    return static_cast<BOOL>(Default());
}
