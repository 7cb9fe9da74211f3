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

    HtmlHost();
    ~HtmlHost() override;

    // A control of 200 x 80 at (10, 20), with the link callback set to this window.
    CHtmlStatic& Add(LPCSTR pszText, DWORD dwStyle = 0,
                     CHtmlStatic::Clock pfnClock = &GetTickCount);

    // Where a link stands in the control: its first part.
    RECT LinkRect(int nLink) { return m_pStatic->Drawer().LinkRects(nLink).at(0); }
    // Moves the mouse to the middle of a link, or away with kNoLink.
    void MoveTo(int nLink);
    // Presses the button inside of a link, or beside all with kNoLink, and lets it go in another.
    void Click(int nPressed, int nReleased);
    void Click(int nLink) { Click(nLink, nLink); }
    // What has been painted at a point of the control.
    COLORREF At(int x, int y);

    RecordedShell m_shell;
    std::unique_ptr<CHtmlStatic> m_pStatic;
    std::vector<std::string> m_aMessages;
    LPARAM m_lParam = 0;             // of the last
    bool m_bDeletesControl = false;  // when a link is followed

protected:
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg HBRUSH OnCtlColor(CDC* pDC, CWnd* pWnd, UINT nCtlColor);
    afx_msg LRESULT OnLink(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    CBrush m_background{kBackground};
    CBrush m_static{kStatic};
};

}  // namespace mvp::test
