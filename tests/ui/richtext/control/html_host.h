// The window that the tests' control stands in: it paints a pattern, records what the control tells
// it, and stands for the shell.
#pragma once

#include <memory>
#include <new>
#include <string>
#include <vector>

#include <dlgfw/wnd.h>

#include "richtext/control/html_static.h"

namespace mvp::test {

class RecordedShell : public richtext::Shell {
public:
    long long Open(const std::string& strTarget) override {
        if (m_bThrows) {
            throw std::bad_alloc();
        }
        m_aOpened.push_back(strTarget);
        return m_nResult;
    }
    std::string HtmlCommand() override { return m_strCommand; }
    bool Start(const std::string& strCommandLine) override {
        m_aStarted.push_back(strCommandLine);
        return true;
    }

    long long m_nResult = 33;
    bool m_bThrows = false;
    std::string m_strCommand = R"("C:\Programs\browser.exe" -new "%1")";
    std::vector<std::string> m_aOpened;
    std::vector<std::string> m_aStarted;
};

class HtmlHost : public CWnd {
public:
    static constexpr COLORREF kBackground = RGB(0, 128, 0);
    static constexpr COLORREF kStatic = RGB(200, 220, 240);
    static constexpr COLORREF kMark = RGB(255, 255, 0);  // from (190, 70) of the control on
    static constexpr UINT kLinkMessage = WM_USER + 200;

    HtmlHost() {
        CreateEx(WS_EX_TOPMOST, AfxRegisterWndClass(0), "host", WS_POPUP | WS_VISIBLE, 40, 40, 300,
                 200, nullptr, nullptr);
    }
    ~HtmlHost() override {
        m_pStatic.reset();
        HtmlHost::DestroyWindow();
    }

    // A control of 200 x 80 at (10, 20), with the link callback set to this window.
    CHtmlStatic& Add(LPCSTR pszText, DWORD dwStyle = 0,
                     CHtmlStatic::Clock pfnClock = &GetTickCount) {
        m_pStatic = std::make_unique<CHtmlStatic>(m_shell, pfnClock);
        m_pStatic->Create(pszText, WS_CHILD | WS_VISIBLE | dwStyle, CRect(10, 20, 210, 100), this,
                          789);
        m_pStatic->SetLinkCallback(m_hWnd, kLinkMessage, 77);
        UpdateWindow();
        return *m_pStatic;
    }

    // Where a link stands in the control: its first part; a place beside all with kNoLink.
    RECT LinkRect(int nLink) {
        return nLink == kNoLink ? RECT{190, 70, 199, 79}
                                : m_pStatic->Drawer().LinkRects(nLink).at(0);
    }
    // Moves the mouse to the middle of a link.
    void MoveTo(int nLink) {
        CPoint point = CRect(LinkRect(nLink)).CenterPoint();
        m_pStatic->ClientToScreen(&point);
        SetCursorPos(point.x, point.y);
        m_pStatic->SendMessage(WM_SETCURSOR, reinterpret_cast<WPARAM>(m_pStatic->m_hWnd),
                               MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    }
    // Presses the button inside of a link and lets it go in another. The control may go meanwhile.
    void Click(int nPressed, int nReleased) {
        const HWND window = m_pStatic->m_hWnd;
        const RECT from = LinkRect(nPressed);
        const RECT to = LinkRect(nReleased);
        ::SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(from.left + 2, from.top + 2));
        ::SendMessageA(window, WM_LBUTTONUP, 0, MAKELPARAM(to.left + 2, to.top + 2));
    }
    void Click(int nLink) { Click(nLink, nLink); }
    // What has been painted at a point of the control.
    COLORREF At(int x, int y) {
        m_pStatic->UpdateWindow();
        return ::GetPixel(CClientDC(m_pStatic.get()), x, y);
    }

    RecordedShell m_shell;
    std::unique_ptr<CHtmlStatic> m_pStatic;
    std::vector<std::string> m_aMessages;
    LPARAM m_lParam = 0;             // of the last
    bool m_bDeletesControl = false;  // when a link is followed

protected:
    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override {
        auto* const dc = reinterpret_cast<HDC>(wParam);
        switch (message) {
            case WM_ERASEBKGND:
                ::FillRect(dc, CRect(0, 0, 300, 200), m_background);
                ::FillRect(dc, CRect(200, 90, 210, 100), CBrush(kMark));
                return TRUE;
            case WM_CTLCOLORSTATIC:
                return reinterpret_cast<LRESULT>(m_static.m_hObject);
            case kLinkMessage:
                m_aMessages.emplace_back(reinterpret_cast<const char*>(wParam));
                m_lParam = lParam;
                if (m_bDeletesControl) {
                    m_pStatic.reset();
                }
                return 0;
            default:
                return CWnd::WindowProc(message, wParam, lParam);
        }
    }

private:
    CBrush m_background{kBackground};
    CBrush m_static{kStatic};
};

}  // namespace mvp::test
