#include "ui/richtext/control/html_host.h"

#include <dlgfw/message_map.h>

namespace mvp::test {

BEGIN_MESSAGE_MAP(HtmlHost, CWnd)
    ON_WM_ERASEBKGND()
    ON_WM_CTLCOLOR()
    ON_MESSAGE(kLinkMessage, &HtmlHost::OnLink)
END_MESSAGE_MAP()

HtmlHost::HtmlHost() {
    CreateEx(WS_EX_TOPMOST, AfxRegisterWndClass(0), "host", WS_POPUP | WS_VISIBLE, 40, 40, 300, 200,
             nullptr, nullptr);
}

HtmlHost::~HtmlHost() {
    m_pStatic.reset();
    HtmlHost::DestroyWindow();
}

CHtmlStatic& HtmlHost::Add(LPCSTR pszText, DWORD dwStyle, CHtmlStatic::Clock pfnClock) {
    m_pStatic = std::make_unique<CHtmlStatic>(m_shell, pfnClock);
    m_pStatic->Create(pszText, WS_CHILD | WS_VISIBLE | dwStyle, CRect(10, 20, 210, 100), this, 789);
    m_pStatic->SetLinkCallback(m_hWnd, kLinkMessage, 77);
    UpdateWindow();
    return *m_pStatic;
}

void HtmlHost::MoveTo(int nLink) {
    const RECT area = nLink == kNoLink ? RECT{199, 79, 199, 79} : LinkRect(nLink);
    CPoint point((area.left + area.right) / 2, (area.top + area.bottom) / 2);
    m_pStatic->ClientToScreen(&point);
    SetCursorPos(point.x, point.y);
    m_pStatic->SendMessage(WM_SETCURSOR, reinterpret_cast<WPARAM>(m_pStatic->m_hWnd),
                           MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
}

void HtmlHost::Click(int nPressed, int nReleased) {
    const auto in = [&](int nLink) {
        const RECT area = nLink == kNoLink ? RECT{190, 70, 200, 80} : LinkRect(nLink);
        return MAKELPARAM(area.left + 2, area.top + 2);
    };
    const HWND window = m_pStatic->m_hWnd;
    const LPARAM released = in(nReleased);
    ::SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, in(nPressed));
    ::SendMessageA(window, WM_LBUTTONUP, 0, released);
}

COLORREF HtmlHost::At(int x, int y) {
    m_pStatic->UpdateWindow();
    CClientDC dc(m_pStatic.get());
    return ::GetPixel(dc, x, y);
}

BOOL HtmlHost::OnEraseBkgnd(CDC* pDC) {
    CRect all;
    GetClientRect(&all);
    ::FillRect(*pDC, &all, m_background);
    ::FillRect(*pDC, CRect(200, 90, 210, 100), CBrush(kMark));
    return TRUE;
}

HBRUSH HtmlHost::OnCtlColor(CDC*, CWnd*, UINT) {
    return m_static;
}

LRESULT HtmlHost::OnLink(WPARAM wParam, LPARAM lParam) {
    m_aMessages.emplace_back(reinterpret_cast<const char*>(wParam));
    m_lParam = lParam;
    if (m_bDeletesControl) {
        m_pStatic.reset();
    }
    return 0;
}

}  // namespace mvp::test
