// CDC and its kinds: device contexts to draw in.
//
//     CClientDC dc(&m_label);  // until it goes
//     CFont* pOldFont = dc.SelectObject(m_label.GetFont());
//     const CSize size = dc.GetTextExtent(m_strText);
//     dc.SelectObject(pOldFont);
//
// A context that was created or attached is deleted with its CDC, unless it is detached. The
// functions are those of the operating system on the context held.
#pragma once

#include <dlgfw/gdi_object.h>
#include <dlgfw/geometry.h>
#include <dlgfw/string.h>

class CWnd;

class DLGFW_API CDC {
public:
    CDC() noexcept = default;
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;
    virtual ~CDC();

    // The object attached to the context on this thread, or a temporary one (wnd.h).
    static CDC* FromHandle(HDC hDC);
    HDC GetSafeHdc() const noexcept { return m_hDC; }
    operator HDC() const noexcept { return m_hDC; }
    BOOL Attach(HDC hDC);
    HDC Detach();

    // A null pDC stands for the screen.
    BOOL CreateCompatibleDC(CDC* pDC);
    BOOL DeleteDC();

    // Each returns the object selected before, as a temporary where it is not the caller's own;
    // null on failure.
    CFont* SelectObject(CFont* pFont);
    CBitmap* SelectObject(CBitmap* pBitmap);

    COLORREF SetBkColor(COLORREF crColor);
    int SetBkMode(int nBkMode);
    COLORREF SetTextColor(COLORREF crColor);

    BOOL DrawIcon(int x, int y, HICON hIcon);
    BOOL BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc,
                DWORD dwRop);
    // The size of the text on one line, in the font selected.
    CSize GetTextExtent(LPCSTR lpszString, int nCount) const;
    CSize GetTextExtent(const CString& str) const;

    HDC m_hDC = nullptr;
};

// The client area of a window, or with null the whole screen, from construction to destruction.
class DLGFW_API CClientDC : public CDC {
public:
    explicit CClientDC(CWnd* pWnd);
    ~CClientDC() override;

private:
    HWND m_hWnd;
};

// What a WM_PAINT handler draws in.
class DLGFW_API CPaintDC : public CDC {
public:
    explicit CPaintDC(CWnd* pWnd);
    ~CPaintDC() override;

    PAINTSTRUCT m_ps;

private:
    HWND m_hWnd;
};
