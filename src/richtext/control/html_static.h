// CHtmlStatic: a static text that shows a rich text, owns its CHtmlDrawer, and lets the user follow
// its links with the mouse, the keyboard or a screen reader.
//
//     CHtmlStatic text;
//     text.Create("", WS_CHILD | WS_VISIBLE, rect, this, IDC_TEXT);
//     text.SetMargins(5, 5);
//     text.SetDrawingMode(CHtmlStatic::kTransparent);
//     text.SetLinkCallback(m_hWnd, WM_LINK, 0);
//     text.SetWindowText("Your card was <a msg=\"details\">removed</a>.");
//
// With WS_TABSTOP the links take the focus: Tab goes from link to link and on, Enter and Space
// follow the one that is framed.
#pragma once

#include <memory>

#include <dlgfw/controls.h>

#include "richtext/control/html_drawer.h"

namespace mvp::richtext {
class HtmlAccessible;
}

class CHtmlStatic : public CStatic {
public:
    // What is painted behind the text.
    // what the parent answers to WM_CTLCOLORSTATIC, or the dialog's colour
    static constexpr int kOpaque = 0;
    static constexpr int kTransparent = 1;  // the parent's own background
    enum class LinkKind { Msg, Href };

    // Sent to the control itself when the link under the mouse changes: wParam is the link's
    // number, or kNoLink.
    static constexpr UINT kHoverMessage = WM_APP + 100;

    // Milliseconds that only ever grow, but for beginning anew at 2^32.
    using Clock = DWORD(WINAPI*)();

    // Both must outlive the control. The clock moves the images of animated lists.
    explicit CHtmlStatic(mvp::richtext::Shell& shell = mvp::richtext::SystemShell(),
                         Clock pfnClock = &GetTickCount);
    ~CHtmlStatic() override;

    void SetMargins(int nX, int nY);
    // Of the text, of links, and of the link under the mouse.
    void SetColors(COLORREF text, COLORREF link, COLORREF hover);
    void SetDrawingMode(int nMode);
    // Null: the built-in sheet.
    void SetStyleSheet(LPCSTR pszSheet);
    // The control's text becomes one link. The texts go into the markup as they are.
    void SetLinkText(LinkKind kind, LPCSTR pszTarget, LPCSTR pszText);
    // See CHtmlDrawer::SetLinkCallback.
    void SetLinkCallback(HWND hWnd, UINT nMessage, LPARAM lParam);
    // See CHtmlDrawer::AllowImageList.
    void AllowImageList(HIMAGELIST hImageList);

    CHtmlDrawer& Drawer() { return m_drawer; }

protected:
    void PreSubclassWindow() override;

    afx_msg int OnCreate(LPCREATESTRUCTA pCreate);
    afx_msg void OnDestroy();
    afx_msg void OnPaint();
    afx_msg BOOL OnEraseBkgnd(CDC* pDC);
    afx_msg void OnSize(UINT nType, int cx, int cy);
    afx_msg void OnEnable(BOOL bEnable);
    afx_msg void OnSysColorChange();
    afx_msg void OnTimer(UINT_PTR nIDEvent);
    afx_msg BOOL OnSetCursor(CWnd* pWnd, UINT nHitTest, UINT nMessage);
    afx_msg void OnMouseLeave();
    afx_msg void OnLButtonDown(UINT nFlags, CPoint point);
    afx_msg void OnLButtonUp(UINT nFlags, CPoint point);
    afx_msg LRESULT OnNcHitTest(CPoint point);
    afx_msg void OnSetFocus(CWnd* pOldWnd);
    afx_msg void OnKillFocus(CWnd* pNewWnd);
    afx_msg void OnKeyDown(UINT nChar, UINT nRepCnt, UINT nFlags);
    afx_msg LRESULT OnPrintClient(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnSetText(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnSetFont(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnGetDlgCode(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnCaptureChanged(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnGetObject(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnHover(WPARAM wParam, LPARAM lParam);
    afx_msg LRESULT OnFollow(WPARAM wParam, LPARAM lParam);

    DECLARE_MESSAGE_MAP()

private:
    struct ReleaseAccessible {
        void operator()(mvp::richtext::HtmlAccessible* pAccessible) const noexcept;
    };

    void TakeText(LPCSTR pszText);
    void TakeFont(HFONT hFont);
    void UseTextColor();
    void StartAnimation();
    void DrawInto(HDC hDC, const RECT& dirty);
    void DrawBackground(HDC hDC, const RECT& area);
    void RepaintLink(int nLink);
    void MoveFocus(int nLink);
    // The next link that is to be seen, in a direction of 1 or -1; kNoLink behind the last.
    int NextLink(int nFrom, int nDirection);
    void Repaint();

    CHtmlDrawer m_drawer;
    std::unique_ptr<mvp::richtext::HtmlAccessible, ReleaseAccessible> m_pAccessible;
    int m_nDrawingMode = kOpaque;
    bool m_bOwnColor = false;
    COLORREF m_textColor = 0;
    int m_nPressed = kNoLink;  // the link the mouse went down on
    Clock m_pfnClock;
    DWORD m_nStarted = 0;  // when the animated images began
};
