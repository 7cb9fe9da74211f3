#include "richtext/control/html_static.h"

#include <algorithm>

#include <dlgfw/message_map.h>
#include <dlgfw/module_state.h>

#include "platform/handle.h"
#include "richtext/control/html_accessible.h"
#include "services/log.h"

using mvp::richtext::CHtmlAccessible;

namespace {

// Posted by the accessible object: follow the link of the number in wParam.
constexpr UINT kFollowMessage = CHtmlStatic::kHoverMessage + 1;
constexpr UINT_PTR kAnimationTimer = 1;
constexpr UINT kShortestAnimation = 20;  // milliseconds

// Changing letters' slant reaches a little over the sides of a link.
RECT WithOverhang(RECT area) {
    InflateRect(&area, (area.bottom - area.top) / 6, 0);
    return area;
}

void LogFailure(const char* pszFailure) noexcept {
    vklogLog(g_szLogTag, kLogError, "%s", pszFailure);
}

bool IsDown(int nKey) {
    return GetKeyState(nKey) < 0;
}

}  // namespace

BEGIN_MESSAGE_MAP(CHtmlStatic, CStatic)
    ON_WM_CREATE()
    ON_WM_DESTROY()
    ON_WM_PAINT()
    ON_WM_ERASEBKGND()
    ON_WM_SIZE()
    ON_WM_ENABLE()
    ON_WM_SYSCOLORCHANGE()
    ON_WM_TIMER()
    ON_WM_SETCURSOR()
    ON_WM_MOUSELEAVE()
    ON_WM_LBUTTONDOWN()
    ON_WM_LBUTTONUP()
    ON_WM_NCHITTEST()
    ON_WM_SETFOCUS()
    ON_WM_KILLFOCUS()
    ON_WM_KEYDOWN()
    ON_MESSAGE(WM_PRINTCLIENT, &CHtmlStatic::OnPrintClient)
    ON_MESSAGE(WM_SETTEXT, &CHtmlStatic::OnSetText)
    ON_MESSAGE(WM_SETFONT, &CHtmlStatic::OnSetFont)
    ON_MESSAGE(WM_GETDLGCODE, &CHtmlStatic::OnGetDlgCode)
    ON_MESSAGE(WM_CAPTURECHANGED, &CHtmlStatic::OnCaptureChanged)
    ON_MESSAGE(WM_GETOBJECT, &CHtmlStatic::OnGetObject)
    ON_MESSAGE(kHoverMessage, &CHtmlStatic::OnHover)
    ON_MESSAGE(kFollowMessage, &CHtmlStatic::OnFollow)
END_MESSAGE_MAP()

void CHtmlStatic::ReleaseAccessible::operator()(CHtmlAccessible* pAccessible) const noexcept {
    pAccessible->Disconnect();
    pAccessible->Release();
}

CHtmlStatic::CHtmlStatic(mvp::richtext::CShell& shell, Clock pfnClock)
    : m_drawer(&AfxFindResourceHandle, shell, &LogFailure), m_pfnClock(pfnClock) {}

// While the object is still whole: WM_DESTROY and the last repaints are its own.
CHtmlStatic::~CHtmlStatic() {
    CHtmlStatic::DestroyWindow();
}

// A control of a dialog has its text and its font before it is bound; one that is being created
// gets them later.
void CHtmlStatic::PreSubclassWindow() {
    CStatic::PreSubclassWindow();
    m_drawer.SetHoverCallback(m_hWnd, kHoverMessage, 0);
    CRect client;
    GetClientRect(&client);
    m_drawer.SetWidth(client.Width());
    CString strText;
    GetWindowText(strText);
    TakeText(strText);
    TakeFont(reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)));
    UseTextColor();
}

int CHtmlStatic::OnCreate(LPCREATESTRUCTA pCreate) {
    const int nResult = CStatic::OnCreate(pCreate);
    if (nResult == 0 && pCreate->lpszName != nullptr) {
        TakeText(pCreate->lpszName);
    }
    UseTextColor();
    return nResult;
}

void CHtmlStatic::OnDestroy() {
    m_pAccessible.reset();
    m_drawer.SetHoverCallback(nullptr, 0, 0);
    CStatic::OnDestroy();
}

void CHtmlStatic::Repaint() {
    if (m_hWnd != nullptr) {
        ::InvalidateRect(m_hWnd, nullptr, FALSE);
    }
}

void CHtmlStatic::TakeText(LPCSTR pszText) {
    m_nPressed = kNoLink;
    m_drawer.SetText(pszText != nullptr ? pszText : "");
    StartAnimation();
}

void CHtmlStatic::TakeFont(HFONT hFont) {
    LOGFONTA font{};
    if (hFont == nullptr) {
        hFont = static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
    }
    if (GetObjectA(hFont, sizeof font, &font) == sizeof font) {
        m_drawer.SetFont(font);
    }
}

void CHtmlStatic::UseTextColor() {
    const bool bEnabled = m_hWnd == nullptr || IsWindowEnabled();
    m_drawer.SetTextColor(!bEnabled     ? GetSysColor(COLOR_GRAYTEXT)
                          : m_bOwnColor ? m_textColor
                                        : GetSysColor(COLOR_WINDOWTEXT));
    Repaint();
}

void CHtmlStatic::SetMargins(int nX, int nY) {
    m_drawer.SetMargins(nX, nY);
    Repaint();
}

void CHtmlStatic::SetColors(COLORREF text, COLORREF link, COLORREF hover) {
    m_bOwnColor = true;
    m_textColor = text;
    m_drawer.SetLinkColors(link, hover);
    UseTextColor();
}

void CHtmlStatic::SetDrawingMode(int nMode) {
    m_nDrawingMode = nMode;
    Repaint();
}

void CHtmlStatic::SetStyleSheet(LPCSTR pszSheet) {
    m_drawer.SetStyleSheet(pszSheet);
    Repaint();
}

void CHtmlStatic::SetLinkText(LinkKind kind, LPCSTR pszTarget, LPCSTR pszText) {
    CString strMarkup;
    if (kind == LinkKind::Msg) {
        strMarkup.Format("<a msg=\"%s\">%s</a>", pszTarget, pszText);
    } else {
        strMarkup.Format("<a href=\"%s\">%s</a>", pszTarget, pszText);
    }
    SetWindowText(strMarkup);
}

void CHtmlStatic::SetLinkCallback(HWND hWnd, UINT nMessage, LPARAM lParam) {
    m_drawer.SetLinkCallback(hWnd, nMessage, lParam);
}

void CHtmlStatic::AllowImageList(HIMAGELIST hImageList) {
    m_drawer.AllowImageList(hImageList);
    StartAnimation();
    Repaint();
}

// The standard control would paint here and now, and in its own way.
LRESULT CHtmlStatic::OnSetText(WPARAM wParam, LPARAM lParam) {
    const LRESULT lResult = ::DefWindowProcA(m_hWnd, WM_SETTEXT, wParam, lParam);
    TakeText(reinterpret_cast<LPCSTR>(lParam));
    Repaint();
    NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, m_hWnd, OBJID_CLIENT, CHILDID_SELF);
    return lResult;
}

// The control keeps the handle, for WM_GETFONT; the text needs the description alone, so that it
// does not matter what becomes of the font.
LRESULT CHtmlStatic::OnSetFont(WPARAM wParam, LPARAM lParam) {
    CStatic::DefWindowProc(WM_SETFONT, wParam, FALSE);
    TakeFont(reinterpret_cast<HFONT>(wParam));
    if (LOWORD(lParam) != 0) {
        Repaint();
    }
    return 0;
}

void CHtmlStatic::OnEnable(BOOL) {
    UseTextColor();
}

void CHtmlStatic::OnSysColorChange() {
    CStatic::OnSysColorChange();
    UseTextColor();
}

void CHtmlStatic::OnSize(UINT nType, int cx, int cy) {
    CStatic::OnSize(nType, cx, cy);
    m_drawer.SetWidth(cx);  // links are asked for before anything is painted, too
    Repaint();
}

BOOL CHtmlStatic::OnEraseBkgnd(CDC*) {
    return TRUE;  // painted along with the text
}

// The parent draws its background as if it were its own turn, moved to where this window stands.
void CHtmlStatic::DrawBackground(HDC hDC, const RECT& area) {
    const HWND hParent = ::GetParent(m_hWnd);
    const int nSaved = SaveDC(hDC);
    if (m_nDrawingMode == kTransparent && hParent != nullptr) {
        POINT corner{};
        ::MapWindowPoints(m_hWnd, hParent, &corner, 1);
        IntersectClipRect(hDC, area.left, area.top, area.right, area.bottom);
        OffsetViewportOrgEx(hDC, -corner.x, -corner.y, nullptr);
        SetBrushOrgEx(hDC, -corner.x, -corner.y, nullptr);
        ::SendMessageA(hParent, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hDC), 0);
        ::SendMessageA(hParent, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(hDC), PRF_CLIENT);
    } else {
        HBRUSH hBrush = nullptr;
        if (hParent != nullptr) {
            hBrush = reinterpret_cast<HBRUSH>(::SendMessageA(hParent, WM_CTLCOLORSTATIC,
                                                             reinterpret_cast<WPARAM>(hDC),
                                                             reinterpret_cast<LPARAM>(m_hWnd)));
        }
        FillRect(hDC, &area, hBrush != nullptr ? hBrush : GetSysColorBrush(COLOR_BTNFACE));
    }
    RestoreDC(hDC, nSaved);
}

void CHtmlStatic::DrawInto(HDC hDC, const RECT& dirty) {
    RECT client{};
    ::GetClientRect(m_hWnd, &client);
    DrawBackground(hDC, dirty);
    m_drawer.Draw(hDC, client, dirty);
}

// Drawn aside and copied at once, so that no half-drawn text is seen.
void CHtmlStatic::OnPaint() {
    CPaintDC paint(this);
    const RECT dirty = paint.m_ps.rcPaint;
    if (IsRectEmpty(&dirty)) {
        return;
    }
    const int nWidth = dirty.right - dirty.left;
    const int nHeight = dirty.bottom - dirty.top;
    const mvp::Bitmap bitmap(CreateCompatibleBitmap(paint.m_hDC, nWidth, nHeight));
    const mvp::MemoryDc buffer(CreateCompatibleDC(paint.m_hDC));
    if (!bitmap || !buffer) {
        DrawInto(paint.m_hDC, dirty);
        return;
    }
    const mvp::DcSelection selection(buffer.get(), bitmap.get());
    SetViewportOrgEx(buffer.get(), -dirty.left, -dirty.top, nullptr);
    DrawInto(buffer.get(), dirty);
    BitBlt(paint.m_hDC, dirty.left, dirty.top, nWidth, nHeight, buffer.get(), dirty.left, dirty.top,
           SRCCOPY);
}

LRESULT CHtmlStatic::OnPrintClient(WPARAM wParam, LPARAM) {
    RECT client{};
    ::GetClientRect(m_hWnd, &client);
    DrawInto(reinterpret_cast<HDC>(wParam), client);
    return 0;
}

// The timer runs only while there is something to move.
void CHtmlStatic::StartAnimation() {
    if (m_hWnd == nullptr) {
        return;
    }
    const UINT nInterval = m_drawer.AnimationInterval();
    if (nInterval == 0) {
        KillTimer(kAnimationTimer);
        return;
    }
    m_nStarted = m_pfnClock();
    m_drawer.SetClock(0);
    SetTimer(kAnimationTimer, std::max(nInterval, kShortestAnimation));
}

void CHtmlStatic::OnTimer(UINT_PTR nIDEvent) {
    if (nIDEvent != kAnimationTimer) {
        CStatic::OnTimer(nIDEvent);
        return;
    }
    m_drawer.SetClock(m_pfnClock() - m_nStarted);
    for (const RECT& area : m_drawer.AnimatedRects()) {
        ::InvalidateRect(m_hWnd, &area, FALSE);
    }
}

void CHtmlStatic::RepaintLink(int nLink) {
    for (const RECT& area : m_drawer.LinkRects(nLink)) {
        const RECT wider = WithOverhang(area);
        ::InvalidateRect(m_hWnd, &wider, FALSE);
    }
}

// A static text lets the mouse through to its parent; its links must not.
LRESULT CHtmlStatic::OnNcHitTest(CPoint point) {
    const LRESULT lResult = CStatic::OnNcHitTest(point);
    return lResult == HTTRANSPARENT && m_drawer.LinkCount() > 0 ? HTCLIENT : lResult;
}

BOOL CHtmlStatic::OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT nMessage) {
    POINT point{};
    int nLink = kNoLink;
    if (nHitTest == HTCLIENT && GetCursorPos(&point)) {
        ScreenToClient(&point);
        nLink = m_drawer.LinkAt(point);
    }
    m_drawer.Track(nLink);
    if (nLink == kNoLink) {
        return CStatic::OnSetCursor(pWnd, nHitTest, nMessage);
    }
    TRACKMOUSEEVENT track = {sizeof track, TME_LEAVE, m_hWnd, 0};
    TrackMouseEvent(&track);
    ::SetCursor(LoadCursorA(nullptr, IDC_HAND));
    return TRUE;
}

void CHtmlStatic::OnMouseLeave() {
    m_drawer.Track(kNoLink);
}

LRESULT CHtmlStatic::OnHover(WPARAM wParam, LPARAM) {
    const int nBefore = m_drawer.SetHoverLink(static_cast<int>(wParam));
    if (nBefore != m_drawer.HoverLink()) {
        RepaintLink(nBefore);
        RepaintLink(m_drawer.HoverLink());
    }
    return 0;
}

void CHtmlStatic::OnLButtonDown(UINT nFlags, CPoint point) {
    m_nPressed = m_drawer.LinkAt(point);
    if (m_nPressed == kNoLink) {
        CStatic::OnLButtonDown(nFlags, point);
        return;
    }
    if ((GetStyle() & WS_TABSTOP) != 0) {
        MoveFocus(m_nPressed);
        SetFocus();
    }
    SetCapture();
}

void CHtmlStatic::OnLButtonUp(UINT nFlags, CPoint point) {
    const int nPressed = m_nPressed;
    if (nPressed == kNoLink) {
        CStatic::OnLButtonUp(nFlags, point);
        return;
    }
    ReleaseCapture();  // and with it the press
    if (m_drawer.LinkAt(point) == nPressed) {
        m_drawer.FollowLink(nPressed);  // last: it may end this control
    }
}

LRESULT CHtmlStatic::OnCaptureChanged(WPARAM, LPARAM) {
    m_nPressed = kNoLink;
    return Default();
}

LRESULT CHtmlStatic::OnFollow(WPARAM wParam, LPARAM) {
    if (IsWindowEnabled()) {
        m_drawer.FollowLink(static_cast<int>(wParam));
    }
    return 0;
}

int CHtmlStatic::NextLink(int nFrom, int nDirection) {
    const int nCount = m_drawer.LinkCount();
    int nLink = nFrom == kNoLink && nDirection < 0 ? nCount - 1 : nFrom + nDirection;
    while (nLink >= 0 && nLink < nCount && m_drawer.LinkRects(nLink).empty()) {
        nLink += nDirection;
    }
    return nLink >= 0 && nLink < nCount ? nLink : kNoLink;
}

void CHtmlStatic::MoveFocus(int nLink) {
    const int nBefore = m_drawer.SetFocusLink(nLink);
    RepaintLink(nBefore);
    RepaintLink(m_drawer.FocusLink());
    if (::GetFocus() == m_hWnd && nLink != kNoLink) {
        NotifyWinEvent(EVENT_OBJECT_FOCUS, m_hWnd, OBJID_CLIENT, nLink + 1);
    }
}

void CHtmlStatic::OnSetFocus(CWnd* pOldWnd) {
    CStatic::OnSetFocus(pOldWnd);
    if (m_drawer.FocusLink() == kNoLink) {
        const bool bBackwards = IsDown(VK_TAB) && IsDown(VK_SHIFT);
        MoveFocus(NextLink(kNoLink, bBackwards ? -1 : 1));
    }
}

void CHtmlStatic::OnKillFocus(CWnd* pNewWnd) {
    CStatic::OnKillFocus(pNewWnd);
    MoveFocus(kNoLink);
}

// The dialog keeps the keys that mean nothing here: Tab behind the last link, Enter without one.
LRESULT CHtmlStatic::OnGetDlgCode(WPARAM, LPARAM lParam) {
    const LRESULT lResult = Default();
    const auto* pMsg = reinterpret_cast<const MSG*>(lParam);
    if (pMsg == nullptr || m_drawer.FocusLink() == kNoLink ||
        (pMsg->message != WM_KEYDOWN && pMsg->message != WM_CHAR)) {
        return lResult;
    }
    const bool bTakes = pMsg->wParam == VK_RETURN || pMsg->wParam == VK_SPACE ||
                        (pMsg->wParam == VK_TAB &&
                         NextLink(m_drawer.FocusLink(), IsDown(VK_SHIFT) ? -1 : 1) != kNoLink);
    return bTakes ? lResult | DLGC_WANTMESSAGE : lResult;
}

void CHtmlStatic::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    const int nLink = m_drawer.FocusLink();
    if (nChar == VK_TAB) {
        const int nNext = NextLink(nLink, IsDown(VK_SHIFT) ? -1 : 1);
        if (nNext != kNoLink) {
            MoveFocus(nNext);
        }
    } else if ((nChar == VK_RETURN || nChar == VK_SPACE) && nLink != kNoLink) {
        m_drawer.FollowLink(nLink);  // last: it may end this control
    } else {
        CStatic::OnKeyDown(nChar, nRepCnt, nFlags);
    }
}

LRESULT CHtmlStatic::OnGetObject(WPARAM wParam, LPARAM lParam) {
    if (static_cast<LONG>(lParam) != OBJID_CLIENT) {
        return Default();
    }
    if (!m_pAccessible) {
        m_pAccessible.reset(CHtmlAccessible::Create(m_hWnd, m_drawer, kFollowMessage));
    }
    return m_pAccessible ? mvp::richtext::AnswerGetObject(wParam, m_pAccessible.get()) : Default();
}
