#include "richtext/control/html_static.h"

#include <algorithm>

#include <dlgfw/message_map.h>
#include <dlgfw/module_state.h>

#include "platform/handle.h"
#include "richtext/control/html_accessible.h"
#include "services/log.h"

using mvp::richtext::HtmlAccessible;

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

void CHtmlStatic::ReleaseAccessible::operator()(HtmlAccessible* pAccessible) const noexcept {
    pAccessible->Disconnect();
    pAccessible->Release();
}

CHtmlStatic::CHtmlStatic(mvp::richtext::Shell& shell, Clock pfnClock)
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
    CString text;
    GetWindowText(text);
    TakeText(text);
    TakeFont(reinterpret_cast<HFONT>(SendMessage(WM_GETFONT)));
    UseTextColor();
}

int CHtmlStatic::OnCreate(LPCREATESTRUCTA pCreate) {
    const int result = CStatic::OnCreate(pCreate);
    if (result == 0 && pCreate->lpszName != nullptr) {
        TakeText(pCreate->lpszName);
    }
    UseTextColor();
    return result;
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
    const bool enabled = m_hWnd == nullptr || IsWindowEnabled();
    m_drawer.SetTextColor(!enabled      ? GetSysColor(COLOR_GRAYTEXT)
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
    CString markup;
    if (kind == LinkKind::Msg) {
        markup.Format("<a msg=\"%s\">%s</a>", pszTarget, pszText);
    } else {
        markup.Format("<a href=\"%s\">%s</a>", pszTarget, pszText);
    }
    SetWindowText(markup);
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
    const LRESULT result = ::DefWindowProcA(m_hWnd, WM_SETTEXT, wParam, lParam);
    TakeText(reinterpret_cast<LPCSTR>(lParam));
    Repaint();
    NotifyWinEvent(EVENT_OBJECT_NAMECHANGE, m_hWnd, OBJID_CLIENT, CHILDID_SELF);
    return result;
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
    const HWND parent = ::GetParent(m_hWnd);
    const int saved = SaveDC(hDC);
    if (m_nDrawingMode == kTransparent && parent != nullptr) {
        POINT corner{};
        ::MapWindowPoints(m_hWnd, parent, &corner, 1);
        IntersectClipRect(hDC, area.left, area.top, area.right, area.bottom);
        OffsetViewportOrgEx(hDC, -corner.x, -corner.y, nullptr);
        SetBrushOrgEx(hDC, -corner.x, -corner.y, nullptr);
        ::SendMessageA(parent, WM_ERASEBKGND, reinterpret_cast<WPARAM>(hDC), 0);
        ::SendMessageA(parent, WM_PRINTCLIENT, reinterpret_cast<WPARAM>(hDC), PRF_CLIENT);
    } else {
        HBRUSH brush = nullptr;
        if (parent != nullptr) {
            brush = reinterpret_cast<HBRUSH>(::SendMessageA(parent, WM_CTLCOLORSTATIC,
                                                            reinterpret_cast<WPARAM>(hDC),
                                                            reinterpret_cast<LPARAM>(m_hWnd)));
        }
        FillRect(hDC, &area, brush != nullptr ? brush : GetSysColorBrush(COLOR_BTNFACE));
    }
    RestoreDC(hDC, saved);
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
    const int width = dirty.right - dirty.left;
    const int height = dirty.bottom - dirty.top;
    const mvp::Bitmap bitmap(CreateCompatibleBitmap(paint.m_hDC, width, height));
    const mvp::MemoryDc buffer(CreateCompatibleDC(paint.m_hDC));
    if (!bitmap || !buffer) {
        DrawInto(paint.m_hDC, dirty);
        return;
    }
    const mvp::DcSelection selection(buffer.get(), bitmap.get());
    SetViewportOrgEx(buffer.get(), -dirty.left, -dirty.top, nullptr);
    DrawInto(buffer.get(), dirty);
    BitBlt(paint.m_hDC, dirty.left, dirty.top, width, height, buffer.get(), dirty.left, dirty.top,
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
    const UINT interval = m_drawer.AnimationInterval();
    if (interval == 0) {
        KillTimer(kAnimationTimer);
        return;
    }
    m_nStarted = m_pfnClock();
    m_drawer.SetClock(0);
    SetTimer(kAnimationTimer, std::max(interval, kShortestAnimation));
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
    const LRESULT result = CStatic::OnNcHitTest(point);
    return result == HTTRANSPARENT && m_drawer.LinkCount() > 0 ? HTCLIENT : result;
}

BOOL CHtmlStatic::OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT nMessage) {
    POINT point{};
    int link = kNoLink;
    if (nHitTest == HTCLIENT && GetCursorPos(&point)) {
        ScreenToClient(&point);
        link = m_drawer.LinkAt(point);
    }
    m_drawer.Track(link);
    if (link == kNoLink) {
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
    const int before = m_drawer.SetHoverLink(static_cast<int>(wParam));
    if (before != m_drawer.HoverLink()) {
        RepaintLink(before);
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
    const int pressed = m_nPressed;
    if (pressed == kNoLink) {
        CStatic::OnLButtonUp(nFlags, point);
        return;
    }
    ReleaseCapture();  // and with it the press
    if (m_drawer.LinkAt(point) == pressed) {
        m_drawer.FollowLink(pressed);  // last: it may end this control
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
    const int count = m_drawer.LinkCount();
    int link = nFrom == kNoLink && nDirection < 0 ? count - 1 : nFrom + nDirection;
    while (link >= 0 && link < count && m_drawer.LinkRects(link).empty()) {
        link += nDirection;
    }
    return link >= 0 && link < count ? link : kNoLink;
}

void CHtmlStatic::MoveFocus(int nLink) {
    const int before = m_drawer.SetFocusLink(nLink);
    RepaintLink(before);
    RepaintLink(m_drawer.FocusLink());
    if (::GetFocus() == m_hWnd && nLink != kNoLink) {
        NotifyWinEvent(EVENT_OBJECT_FOCUS, m_hWnd, OBJID_CLIENT, nLink + 1);
    }
}

void CHtmlStatic::OnSetFocus(CWnd* pOldWnd) {
    CStatic::OnSetFocus(pOldWnd);
    if (m_drawer.FocusLink() == kNoLink) {
        const bool backwards = IsDown(VK_TAB) && IsDown(VK_SHIFT);
        MoveFocus(NextLink(kNoLink, backwards ? -1 : 1));
    }
}

void CHtmlStatic::OnKillFocus(CWnd* pNewWnd) {
    CStatic::OnKillFocus(pNewWnd);
    MoveFocus(kNoLink);
}

// The dialog keeps the keys that mean nothing here: Tab behind the last link, Enter without one.
LRESULT CHtmlStatic::OnGetDlgCode(WPARAM, LPARAM lParam) {
    const LRESULT result = Default();
    const auto* message = reinterpret_cast<const MSG*>(lParam);
    if (message == nullptr || m_drawer.FocusLink() == kNoLink ||
        (message->message != WM_KEYDOWN && message->message != WM_CHAR)) {
        return result;
    }
    const bool takes = message->wParam == VK_RETURN || message->wParam == VK_SPACE ||
                       (message->wParam == VK_TAB &&
                        NextLink(m_drawer.FocusLink(), IsDown(VK_SHIFT) ? -1 : 1) != kNoLink);
    return takes ? result | DLGC_WANTMESSAGE : result;
}

void CHtmlStatic::OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags) {
    const int link = m_drawer.FocusLink();
    if (nChar == VK_TAB) {
        const int next = NextLink(link, IsDown(VK_SHIFT) ? -1 : 1);
        if (next != kNoLink) {
            MoveFocus(next);
        }
    } else if ((nChar == VK_RETURN || nChar == VK_SPACE) && link != kNoLink) {
        m_drawer.FollowLink(link);  // last: it may end this control
    } else {
        CStatic::OnKeyDown(nChar, nRepCnt, nFlags);
    }
}

LRESULT CHtmlStatic::OnGetObject(WPARAM wParam, LPARAM lParam) {
    if (static_cast<LONG>(lParam) != OBJID_CLIENT) {
        return Default();
    }
    if (!m_pAccessible) {
        m_pAccessible.reset(HtmlAccessible::Create(m_hWnd, m_drawer, kFollowMessage));
    }
    return m_pAccessible ? mvp::AnswerGetObject(wParam, m_pAccessible.get()) : Default();
}
