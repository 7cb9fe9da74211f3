// CWnd: the operating system's functions on the window held.
#include <algorithm>
#include <cstdio>
#include <utility>

#include <dlgfw/module_state.h>
#include <dlgfw/wnd.h>

#include "framework/handle_maps.h"

namespace {

HWND HandleOrNull(const CWnd* pWnd) {
    return pWnd == nullptr ? nullptr : pWnd->m_hWnd;
}

void ReadText(HWND hWnd, CString& rString) {
    const int length = ::GetWindowTextLengthA(hWnd);
    const int read = ::GetWindowTextA(hWnd, rString.GetBuffer(length), length + 1);
    rString.ReleaseBuffer(read);
}

}  // namespace

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
    return ::SendMessageA(m_hWnd, message, wParam, lParam);
}
BOOL CWnd::PostMessage(UINT message, WPARAM wParam, LPARAM lParam) const {
    return ::PostMessageA(m_hWnd, message, wParam, lParam);
}
LRESULT CWnd::SendDlgItemMessage(int nID, UINT message, WPARAM wParam, LPARAM lParam) {
    return ::SendDlgItemMessageA(m_hWnd, nID, message, wParam, lParam);
}

void CWnd::SetWindowText(LPCSTR lpszString) {
    ::SetWindowTextA(m_hWnd, lpszString);
}
void CWnd::GetWindowText(CString& rString) const {
    ReadText(m_hWnd, rString);
}
int CWnd::GetWindowTextLength() const {
    return ::GetWindowTextLengthA(m_hWnd);
}

void CWnd::SetFont(CFont* pFont, BOOL bRedraw) {
    HGDIOBJ font = pFont == nullptr ? nullptr : pFont->m_hObject;
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(font), bRedraw);
}
CFont* CWnd::GetFont() const {
    return CFont::FromHandle(reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)));
}
HICON CWnd::SetIcon(HICON hIcon, BOOL bBigIcon) {
    return reinterpret_cast<HICON>(
        SendMessage(WM_SETICON, bBigIcon ? ICON_BIG : ICON_SMALL, reinterpret_cast<LPARAM>(hIcon)));
}

DWORD CWnd::GetStyle() const {
    return static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_STYLE));
}
BOOL CWnd::ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags) {
    const auto old = static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_EXSTYLE));
    const DWORD newValue = (old & ~dwRemove) | dwAdd;
    if (newValue == old) {
        return FALSE;
    }
    ::SetWindowLongPtrA(m_hWnd, GWL_EXSTYLE, static_cast<LONG_PTR>(newValue));
    if (nFlags != 0) {
        SetWindowPos(nullptr, 0, 0, 0, 0,
                     SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | nFlags);
    }
    return TRUE;
}

BOOL CWnd::IsWindowVisible() const {
    return ::IsWindowVisible(m_hWnd);
}
BOOL CWnd::ShowWindow(int nCmdShow) {
    return ::ShowWindow(m_hWnd, nCmdShow);
}
BOOL CWnd::IsWindowEnabled() const {
    return ::IsWindowEnabled(m_hWnd);
}
BOOL CWnd::EnableWindow(BOOL bEnable) {
    return ::EnableWindow(m_hWnd, bEnable);
}
CWnd* CWnd::SetActiveWindow() {
    return FromHandle(::SetActiveWindow(m_hWnd));
}
BOOL CWnd::SetForegroundWindow() {
    return ::SetForegroundWindow(m_hWnd);
}
CWnd* CWnd::SetFocus() {
    return FromHandle(::SetFocus(m_hWnd));
}
CWnd* CWnd::SetCapture() {
    return FromHandle(::SetCapture(m_hWnd));
}

void CWnd::MoveWindow(int x, int y, int nWidth, int nHeight, BOOL bRepaint) {
    ::MoveWindow(m_hWnd, x, y, nWidth, nHeight, bRepaint);
}
void CWnd::MoveWindow(LPCRECT lpRect, BOOL bRepaint) {
    MoveWindow(lpRect->left, lpRect->top, lpRect->right - lpRect->left,
               lpRect->bottom - lpRect->top, bRepaint);
}
BOOL CWnd::SetWindowPos(const CWnd* pWndInsertAfter, int x, int y, int cx, int cy, UINT nFlags) {
    return ::SetWindowPos(m_hWnd, HandleOrNull(pWndInsertAfter), x, y, cx, cy, nFlags);
}
void CWnd::GetWindowRect(LPRECT lpRect) const {
    ::GetWindowRect(m_hWnd, lpRect);
}
void CWnd::GetClientRect(LPRECT lpRect) const {
    ::GetClientRect(m_hWnd, lpRect);
}
void CWnd::ClientToScreen(LPPOINT lpPoint) const {
    ::ClientToScreen(m_hWnd, lpPoint);
}
void CWnd::ClientToScreen(LPRECT lpRect) const {
    ::MapWindowPoints(m_hWnd, nullptr, reinterpret_cast<LPPOINT>(lpRect), 2);
}
void CWnd::ScreenToClient(LPPOINT lpPoint) const {
    ::ScreenToClient(m_hWnd, lpPoint);
}
void CWnd::ScreenToClient(LPRECT lpRect) const {
    ::MapWindowPoints(nullptr, m_hWnd, reinterpret_cast<LPPOINT>(lpRect), 2);
}
int CWnd::SetWindowRgn(HRGN hRgn, BOOL bRedraw) {
    return ::SetWindowRgn(m_hWnd, hRgn, bRedraw);
}

void CWnd::UpdateWindow() {
    ::UpdateWindow(m_hWnd);
}
void CWnd::Invalidate(BOOL bErase) {
    ::InvalidateRect(m_hWnd, nullptr, bErase);
}
BOOL CWnd::RedrawWindow(LPCRECT lpRectUpdate, CRgn* prgnUpdate, UINT flags) {
    HGDIOBJ region = prgnUpdate == nullptr ? nullptr : prgnUpdate->m_hObject;
    return ::RedrawWindow(m_hWnd, lpRectUpdate, static_cast<HRGN>(region), flags);
}

UINT_PTR CWnd::SetTimer(UINT_PTR nIDEvent, UINT nElapse, TIMERPROC lpfnTimer) {
    return ::SetTimer(m_hWnd, nIDEvent, nElapse, lpfnTimer);
}
BOOL CWnd::KillTimer(UINT_PTR nIDEvent) {
    return ::KillTimer(m_hWnd, nIDEvent);
}

CWnd* CWnd::GetParent() const {
    return FromHandle(::GetParent(m_hWnd));
}
CWnd* CWnd::SetParent(CWnd* pWndNewParent) {
    return FromHandle(::SetParent(m_hWnd, HandleOrNull(pWndNewParent)));
}
CWnd* CWnd::FindWindow(LPCSTR lpszClassName, LPCSTR lpszWindowName) {
    return FromHandle(::FindWindowA(lpszClassName, lpszWindowName));
}

CWnd* CWnd::GetDlgItem(int nID) const {
    return FromHandle(::GetDlgItem(m_hWnd, nID));
}
void CWnd::SetDlgItemText(int nID, LPCSTR lpszString) {
    ::SetDlgItemTextA(m_hWnd, nID, lpszString);
}
int CWnd::GetDlgItemText(int nID, CString& rString) const {
    HWND item = ::GetDlgItem(m_hWnd, nID);
    if (item == nullptr) {
        rString.Empty();
    } else {
        ReadText(item, rString);
    }
    return rString.GetLength();
}
void CWnd::CheckDlgButton(int nIDButton, UINT nCheck) {
    ::CheckDlgButton(m_hWnd, nIDButton, nCheck);
}
UINT CWnd::IsDlgButtonChecked(int nIDButton) const {
    return ::IsDlgButtonChecked(m_hWnd, nIDButton);
}

int CWnd::MessageBox(LPCSTR lpszText, LPCSTR lpszCaption, UINT nType) {
    return ::MessageBoxA(m_hWnd, lpszText, lpszCaption, nType);
}

void CWnd::CenterWindow() {
    HWND center = ::GetWindow(m_hWnd, GW_OWNER);
    // A window that nobody sees is no place to be over.
    if (!::IsWindowVisible(center) || ::IsIconic(center)) {
        center = nullptr;
    }
    MONITORINFO monitor = {};
    monitor.cbSize = sizeof(monitor);
    ::GetMonitorInfoA(::MonitorFromWindow(center, center == nullptr ? MONITOR_DEFAULTTOPRIMARY
                                                                    : MONITOR_DEFAULTTONEAREST),
                      &monitor);
    const CRect rectArea(monitor.rcWork);
    CRect rectCenter(rectArea);
    if (center != nullptr) {
        ::GetWindowRect(center, rectCenter);
    }
    CRect rect;
    GetWindowRect(rect);
    // Within the area; where it is too large, its top left corner is what must be seen.
    const CPoint place(rectCenter.CenterPoint() - CSize(rect.Width() / 2, rect.Height() / 2));
    const int x =
        std::max<int>(std::min<int>(place.x, rectArea.right - rect.Width()), rectArea.left);
    const int y =
        std::max<int>(std::min<int>(place.y, rectArea.bottom - rect.Height()), rectArea.top);
    SetWindowPos(nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
}

LPCSTR AfxRegisterWndClass(UINT nClassStyle, HCURSOR hCursor, HBRUSH hbrBackground, HICON hIcon) {
    auto& name = dlgfw::ThreadState::Get().szWndClass;
    std::snprintf(name, sizeof(name), "dlgfw:%x:%p:%p:%p", nClassStyle,
                  static_cast<const void*>(hCursor), static_cast<const void*>(hbrBackground),
                  static_cast<const void*>(hIcon));
    WNDCLASSA windowClass = {};
    if (::GetClassInfoA(AfxGetInstanceHandle(), name, &windowClass)) {
        return name;
    }
    // Windows of the class get their object at creation, so the class itself knows no procedure of
    // ours and does no harm when it outlives this library.
    windowClass = {};
    windowClass.style = nClassStyle;
    windowClass.lpfnWndProc = &::DefWindowProcA;
    windowClass.hInstance = AfxGetInstanceHandle();
    windowClass.hIcon = hIcon;
    windowClass.hCursor = hCursor;
    windowClass.hbrBackground = hbrBackground;
    windowClass.lpszClassName = name;
    return ::RegisterClassA(&windowClass) != 0 ? name : nullptr;
}

CWaitCursor::CWaitCursor() : m_hOld(::GetCursor()) {
    ::SetCursor(::LoadCursorA(nullptr, IDC_WAIT));
}

CWaitCursor::~CWaitCursor() {
    ::SetCursor(m_hOld);
}
