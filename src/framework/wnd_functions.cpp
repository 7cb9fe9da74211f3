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

BOOL ModifyStyleBits(HWND hWnd, int nIndex, DWORD dwRemove, DWORD dwAdd, UINT nFlags) {
    const auto dwOld = static_cast<DWORD>(::GetWindowLongPtrA(hWnd, nIndex));
    const DWORD dwNew = (dwOld & ~dwRemove) | dwAdd;
    if (dwNew == dwOld)
        return FALSE;
    ::SetWindowLongPtrA(hWnd, nIndex, static_cast<LONG_PTR>(dwNew));
    if (nFlags != 0)
        ::SetWindowPos(hWnd, nullptr, 0, 0, 0, 0,
                       SWP_NOSIZE | SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE | nFlags);
    return TRUE;
}

void ReadText(HWND hWnd, CString& rString) {
    const int nLength = ::GetWindowTextLengthA(hWnd);
    const int nRead = ::GetWindowTextA(hWnd, rString.GetBuffer(nLength), nLength + 1);
    rString.ReleaseBuffer(nRead);
}

// A child's parent, another window's owner.
HWND ParentOrOwner(HWND hWnd) {
    const bool bChild = (::GetWindowLongPtrA(hWnd, GWL_STYLE) & WS_CHILD) != 0;
    return bChild ? ::GetParent(hWnd) : ::GetWindow(hWnd, GW_OWNER);
}

void SendToDescendants(HWND hWnd, const MSG& message, BOOL bDeep, BOOL bOnlyPerm) {
    HWND hWndNext = nullptr;
    for (HWND hWndChild = ::GetTopWindow(hWnd); hWndChild != nullptr; hWndChild = hWndNext) {
        if (!bOnlyPerm || CWnd::FromHandlePermanent(hWndChild) != nullptr)
            ::SendMessageA(hWndChild, message.message, message.wParam, message.lParam);
        if (bDeep)
            SendToDescendants(hWndChild, message, bDeep, bOnlyPerm);
        hWndNext = ::GetWindow(hWndChild, GW_HWNDNEXT);
    }
}

HWND FindDescendant(HWND hWnd, int nID, BOOL bOnlyPerm) {
    HWND hWndItem = ::GetDlgItem(hWnd, nID);
    if (hWndItem != nullptr && (!bOnlyPerm || CWnd::FromHandlePermanent(hWndItem) != nullptr))
        return hWndItem;
    for (HWND hWndChild = ::GetTopWindow(hWnd); hWndChild != nullptr;
         hWndChild = ::GetWindow(hWndChild, GW_HWNDNEXT)) {
        if (HWND hWndFound = FindDescendant(hWndChild, nID, bOnlyPerm))
            return hWndFound;
    }
    return nullptr;
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
void CWnd::SendMessageToDescendants(UINT message, WPARAM wParam, LPARAM lParam, BOOL bDeep,
                                    BOOL bOnlyPerm) {
    SendToDescendants(m_hWnd, {nullptr, message, wParam, lParam, 0, {0, 0}}, bDeep, bOnlyPerm);
}

void CWnd::SetWindowText(LPCSTR lpszString) {
    ::SetWindowTextA(m_hWnd, lpszString);
}
int CWnd::GetWindowText(LPSTR lpszStringBuf, int nMaxCount) const {
    return ::GetWindowTextA(m_hWnd, lpszStringBuf, nMaxCount);
}
void CWnd::GetWindowText(CString& rString) const {
    ReadText(m_hWnd, rString);
}
int CWnd::GetWindowTextLength() const {
    return ::GetWindowTextLengthA(m_hWnd);
}

void CWnd::SetFont(CFont* pFont, BOOL bRedraw) {
    HGDIOBJ hFont = pFont == nullptr ? nullptr : pFont->m_hObject;
    SendMessage(WM_SETFONT, reinterpret_cast<WPARAM>(hFont), bRedraw);
}
CFont* CWnd::GetFont() const {
    return CFont::FromHandle(reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)));
}
HICON CWnd::SetIcon(HICON hIcon, BOOL bBigIcon) {
    return reinterpret_cast<HICON>(
        SendMessage(WM_SETICON, bBigIcon ? ICON_BIG : ICON_SMALL, reinterpret_cast<LPARAM>(hIcon)));
}
HICON CWnd::GetIcon(BOOL bBigIcon) const {
    return reinterpret_cast<HICON>(SendMessage(WM_GETICON, bBigIcon ? ICON_BIG : ICON_SMALL));
}

DWORD CWnd::GetStyle() const {
    return static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_STYLE));
}
DWORD CWnd::GetExStyle() const {
    return static_cast<DWORD>(::GetWindowLongPtrA(m_hWnd, GWL_EXSTYLE));
}
BOOL CWnd::ModifyStyle(DWORD dwRemove, DWORD dwAdd, UINT nFlags) {
    return ModifyStyleBits(m_hWnd, GWL_STYLE, dwRemove, dwAdd, nFlags);
}
BOOL CWnd::ModifyStyleEx(DWORD dwRemove, DWORD dwAdd, UINT nFlags) {
    return ModifyStyleBits(m_hWnd, GWL_EXSTYLE, dwRemove, dwAdd, nFlags);
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
BOOL CWnd::IsIconic() const {
    return ::IsIconic(m_hWnd);
}
BOOL CWnd::IsZoomed() const {
    return ::IsZoomed(m_hWnd);
}
CWnd* CWnd::SetActiveWindow() {
    return FromHandle(::SetActiveWindow(m_hWnd));
}
BOOL CWnd::SetForegroundWindow() {
    return ::SetForegroundWindow(m_hWnd);
}
BOOL CWnd::BringWindowToTop() {
    return ::BringWindowToTop(m_hWnd);
}
CWnd* CWnd::SetFocus() {
    return FromHandle(::SetFocus(m_hWnd));
}
CWnd* CWnd::SetCapture() {
    return FromHandle(::SetCapture(m_hWnd));
}
CWnd* CWnd::GetActiveWindow() {
    return FromHandle(::GetActiveWindow());
}
CWnd* CWnd::GetForegroundWindow() {
    return FromHandle(::GetForegroundWindow());
}
CWnd* CWnd::GetFocus() {
    return FromHandle(::GetFocus());
}
CWnd* CWnd::GetCapture() {
    return FromHandle(::GetCapture());
}
CWnd* CWnd::GetDesktopWindow() {
    return FromHandle(::GetDesktopWindow());
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
void CWnd::MapWindowPoints(CWnd* pwndTo, LPPOINT lpPoint, UINT nCount) const {
    ::MapWindowPoints(m_hWnd, HandleOrNull(pwndTo), lpPoint, nCount);
}
void CWnd::MapWindowPoints(CWnd* pwndTo, LPRECT lpRect) const {
    MapWindowPoints(pwndTo, reinterpret_cast<LPPOINT>(lpRect), 2);
}
int CWnd::SetWindowRgn(HRGN hRgn, BOOL bRedraw) {
    return ::SetWindowRgn(m_hWnd, hRgn, bRedraw);
}
int CWnd::GetWindowRgn(HRGN hRgn) const {
    return ::GetWindowRgn(m_hWnd, hRgn);
}

CDC* CWnd::GetDC() {
    return CDC::FromHandle(::GetDC(m_hWnd));
}
CDC* CWnd::GetWindowDC() {
    return CDC::FromHandle(::GetWindowDC(m_hWnd));
}
int CWnd::ReleaseDC(CDC* pDC) {
    return pDC == nullptr ? 0 : ::ReleaseDC(m_hWnd, pDC->Detach());
}
void CWnd::UpdateWindow() {
    ::UpdateWindow(m_hWnd);
}
void CWnd::Invalidate(BOOL bErase) {
    InvalidateRect(nullptr, bErase);
}
void CWnd::InvalidateRect(LPCRECT lpRect, BOOL bErase) {
    ::InvalidateRect(m_hWnd, lpRect, bErase);
}
void CWnd::ValidateRect(LPCRECT lpRect) {
    ::ValidateRect(m_hWnd, lpRect);
}
BOOL CWnd::GetUpdateRect(LPRECT lpRect, BOOL bErase) {
    return ::GetUpdateRect(m_hWnd, lpRect, bErase);
}
BOOL CWnd::RedrawWindow(LPCRECT lpRectUpdate, CRgn* prgnUpdate, UINT flags) {
    HGDIOBJ hRgn = prgnUpdate == nullptr ? nullptr : prgnUpdate->m_hObject;
    return ::RedrawWindow(m_hWnd, lpRectUpdate, static_cast<HRGN>(hRgn), flags);
}
void CWnd::SetRedraw(BOOL bRedraw) {
    SendMessage(WM_SETREDRAW, bRedraw ? TRUE : FALSE);
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
BOOL CWnd::IsChild(const CWnd* pWnd) const {
    return ::IsChild(m_hWnd, HandleOrNull(pWnd));
}
CWnd* CWnd::GetWindow(UINT nCmd) const {
    return FromHandle(::GetWindow(m_hWnd, nCmd));
}
CWnd* CWnd::GetTopWindow() const {
    return FromHandle(::GetTopWindow(m_hWnd));
}
CWnd* CWnd::GetNextWindow(UINT nFlag) const {
    return GetWindow(nFlag);
}
CWnd* CWnd::GetLastActivePopup() const {
    return FromHandle(::GetLastActivePopup(m_hWnd));
}
CWnd* CWnd::GetTopLevelParent() const {
    HWND hWndTop = m_hWnd;
    for (HWND hWnd = m_hWnd; hWnd != nullptr; hWnd = ParentOrOwner(hWnd))
        hWndTop = hWnd;
    return FromHandle(hWndTop);
}
CWnd* CWnd::GetOwner() const {
    return m_hWndOwner != nullptr ? FromHandle(m_hWndOwner) : GetParent();
}
void CWnd::SetOwner(CWnd* pOwnerWnd) {
    m_hWndOwner = HandleOrNull(pOwnerWnd);
}
CWnd* CWnd::GetDescendantWindow(int nID, BOOL bOnlyPerm) const {
    return FromHandle(FindDescendant(m_hWnd, nID, bOnlyPerm));
}
CWnd* CWnd::FindWindow(LPCSTR lpszClassName, LPCSTR lpszWindowName) {
    return FromHandle(::FindWindowA(lpszClassName, lpszWindowName));
}

int CWnd::GetDlgCtrlID() const {
    return ::GetDlgCtrlID(m_hWnd);
}
int CWnd::SetDlgCtrlID(int nID) {
    return static_cast<int>(::SetWindowLongPtrA(m_hWnd, GWLP_ID, nID));
}
CWnd* CWnd::GetDlgItem(int nID) const {
    return FromHandle(::GetDlgItem(m_hWnd, nID));
}
void CWnd::GetDlgItem(int nID, HWND* phWnd) const {
    *phWnd = ::GetDlgItem(m_hWnd, nID);
}
void CWnd::SetDlgItemText(int nID, LPCSTR lpszString) {
    ::SetDlgItemTextA(m_hWnd, nID, lpszString);
}
int CWnd::GetDlgItemText(int nID, LPSTR lpStr, int nMaxCount) const {
    return static_cast<int>(::GetDlgItemTextA(m_hWnd, nID, lpStr, nMaxCount));
}
int CWnd::GetDlgItemText(int nID, CString& rString) const {
    HWND hWndItem = ::GetDlgItem(m_hWnd, nID);
    if (hWndItem == nullptr)
        rString.Empty();
    else
        ReadText(hWndItem, rString);
    return rString.GetLength();
}
void CWnd::SetDlgItemInt(int nID, UINT nValue, BOOL bSigned) {
    ::SetDlgItemInt(m_hWnd, nID, nValue, bSigned);
}
UINT CWnd::GetDlgItemInt(int nID, BOOL* lpTrans, BOOL bSigned) const {
    return ::GetDlgItemInt(m_hWnd, nID, lpTrans, bSigned);
}
void CWnd::CheckDlgButton(int nIDButton, UINT nCheck) {
    ::CheckDlgButton(m_hWnd, nIDButton, nCheck);
}
void CWnd::CheckRadioButton(int nIDFirstButton, int nIDLastButton, int nIDCheckButton) {
    ::CheckRadioButton(m_hWnd, nIDFirstButton, nIDLastButton, nIDCheckButton);
}
int CWnd::GetCheckedRadioButton(int nIDFirstButton, int nIDLastButton) const {
    for (int nID = nIDFirstButton; nID <= nIDLastButton; ++nID) {
        if (IsDlgButtonChecked(nID) != BST_UNCHECKED)
            return nID;
    }
    return 0;
}
UINT CWnd::IsDlgButtonChecked(int nIDButton) const {
    return ::IsDlgButtonChecked(m_hWnd, nIDButton);
}
CWnd* CWnd::GetNextDlgTabItem(CWnd* pWndCtl, BOOL bPrevious) const {
    return FromHandle(::GetNextDlgTabItem(m_hWnd, HandleOrNull(pWndCtl), bPrevious));
}
CWnd* CWnd::GetNextDlgGroupItem(CWnd* pWndCtl, BOOL bPrevious) const {
    return FromHandle(::GetNextDlgGroupItem(m_hWnd, HandleOrNull(pWndCtl), bPrevious));
}

int CWnd::MessageBox(LPCSTR lpszText, LPCSTR lpszCaption, UINT nType) {
    return ::MessageBoxA(m_hWnd, lpszText, lpszCaption, nType);
}

void CWnd::CenterWindow(CWnd* pAlternateOwner) {
    const bool bChild = (GetStyle() & WS_CHILD) != 0;
    HWND hWndCenter = pAlternateOwner != nullptr ? pAlternateOwner->m_hWnd : ParentOrOwner(m_hWnd);
    CRect rectCenter;
    CRect rectArea;
    if (bChild) {
        HWND hWndParent = ::GetParent(m_hWnd);
        ::GetClientRect(hWndParent, rectArea);
        ::GetClientRect(hWndCenter, rectCenter);
        ::MapWindowPoints(hWndCenter, hWndParent, reinterpret_cast<LPPOINT>(&rectCenter), 2);
    } else {
        // A window that nobody sees is no place to be over.
        if (!::IsWindowVisible(hWndCenter) || ::IsIconic(hWndCenter))
            hWndCenter = nullptr;
        MONITORINFO monitor = {};
        monitor.cbSize = sizeof(monitor);
        ::GetMonitorInfoA(
            ::MonitorFromWindow(hWndCenter, hWndCenter == nullptr ? MONITOR_DEFAULTTOPRIMARY
                                                                  : MONITOR_DEFAULTTONEAREST),
            &monitor);
        rectArea = monitor.rcWork;
        rectCenter = rectArea;
        if (hWndCenter != nullptr)
            ::GetWindowRect(hWndCenter, rectCenter);
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
    auto& szName = dlgfw::ThreadState::Get().szWndClass;
    std::snprintf(szName, sizeof(szName), "dlgfw:%x:%p:%p:%p", nClassStyle,
                  static_cast<const void*>(hCursor), static_cast<const void*>(hbrBackground),
                  static_cast<const void*>(hIcon));
    WNDCLASSA wndClass = {};
    if (::GetClassInfoA(AfxGetInstanceHandle(), szName, &wndClass))
        return szName;
    // Windows of the class get their object at creation, so the class itself knows no procedure of
    // ours and does no harm when it outlives this library.
    wndClass = {};
    wndClass.style = nClassStyle;
    wndClass.lpfnWndProc = &::DefWindowProcA;
    wndClass.hInstance = AfxGetInstanceHandle();
    wndClass.hIcon = hIcon;
    wndClass.hCursor = hCursor;
    wndClass.hbrBackground = hbrBackground;
    wndClass.lpszClassName = szName;
    return ::RegisterClassA(&wndClass) != 0 ? szName : nullptr;
}

CWaitCursor::CWaitCursor() : m_hOld(::GetCursor()) {
    Restore();
}

CWaitCursor::~CWaitCursor() {
    ::SetCursor(m_hOld);
}

void CWaitCursor::Restore() {
    ::SetCursor(::LoadCursorA(nullptr, IDC_WAIT));
}
