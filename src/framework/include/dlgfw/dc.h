// CDC and its kinds: device contexts to draw in.
//
//     void CBanner::OnPaint() {
//         CPaintDC dc(this);          // between BeginPaint and EndPaint
//         CFont* pOldFont = dc.SelectObject(&m_font);
//         dc.DrawText(m_strText, CRect(0, 0, 100, 20), DT_LEFT);
//         dc.SelectObject(pOldFont);
//     }
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
    BOOL CreateDC(LPCSTR lpszDriverName, LPCSTR lpszDeviceName, LPCSTR lpszOutput,
                  const void* lpInitData);
    BOOL DeleteDC();
    int SaveDC();
    BOOL RestoreDC(int nSavedDC);
    int GetDeviceCaps(int nIndex) const;

    // Each returns the object selected before, as a temporary where it is not the caller's own;
    // null on failure.
    CGdiObject* SelectStockObject(int nIndex);
    CPen* SelectObject(CPen* pPen);
    CBrush* SelectObject(CBrush* pBrush);
    CFont* SelectObject(CFont* pFont);
    CBitmap* SelectObject(CBitmap* pBitmap);
    // The region is copied; returns its complexity.
    int SelectObject(CRgn* pRgn);
    CFont* GetCurrentFont() const;
    CBitmap* GetCurrentBitmap() const;
    CBrush* GetCurrentBrush() const;
    CPen* GetCurrentPen() const;

    COLORREF GetBkColor() const;
    COLORREF SetBkColor(COLORREF crColor);
    int GetBkMode() const;
    int SetBkMode(int nBkMode);
    COLORREF GetTextColor() const;
    COLORREF SetTextColor(COLORREF crColor);
    UINT GetTextAlign() const;
    UINT SetTextAlign(UINT nFlags);
    int SetROP2(int nDrawMode);
    int SetStretchBltMode(int nStretchMode);
    int SetMapMode(int nMapMode);
    CPoint SetViewportOrg(int x, int y);
    CPoint SetViewportOrg(POINT point);
    CPoint GetViewportOrg() const;
    CPoint SetWindowOrg(int x, int y);
    CPoint SetBrushOrg(int x, int y);
    BOOL LPtoDP(LPPOINT lpPoints, int nCount = 1) const;
    BOOL DPtoLP(LPPOINT lpPoints, int nCount = 1) const;

    int GetClipBox(LPRECT lpRect) const;
    int SelectClipRgn(CRgn* pRgn);
    int ExcludeClipRect(LPCRECT lpRect);
    int IntersectClipRect(LPCRECT lpRect);
    BOOL RectVisible(LPCRECT lpRect) const;

    CPoint MoveTo(int x, int y);
    CPoint MoveTo(POINT point);
    BOOL LineTo(int x, int y);
    BOOL LineTo(POINT point);
    BOOL Polyline(const POINT* lpPoints, int nCount);
    BOOL Polygon(const POINT* lpPoints, int nCount);
    BOOL Rectangle(int x1, int y1, int x2, int y2);
    BOOL Rectangle(LPCRECT lpRect);
    BOOL Ellipse(int x1, int y1, int x2, int y2);
    BOOL RoundRect(int x1, int y1, int x2, int y2, int x3, int y3);
    void FillRect(LPCRECT lpRect, CBrush* pBrush);
    void FrameRect(LPCRECT lpRect, CBrush* pBrush);
    void InvertRect(LPCRECT lpRect);
    void FillSolidRect(LPCRECT lpRect, COLORREF clr);
    void FillSolidRect(int x, int y, int cx, int cy, COLORREF clr);
    BOOL FillRgn(CRgn* pRgn, CBrush* pBrush);
    BOOL DrawEdge(LPRECT lpRect, UINT nEdge, UINT nFlags);
    BOOL DrawFrameControl(LPRECT lpRect, UINT nType, UINT nState);
    void DrawFocusRect(LPCRECT lpRect);
    BOOL DrawIcon(int x, int y, HICON hIcon);
    BOOL DrawIcon(POINT point, HICON hIcon);
    BOOL DrawIconEx(int x, int y, HICON hIcon, int cx, int cy, UINT nFlags = DI_NORMAL);

    BOOL PatBlt(int x, int y, int nWidth, int nHeight, DWORD dwRop);
    BOOL BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc,
                DWORD dwRop);
    BOOL StretchBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc,
                    int nSrcWidth, int nSrcHeight, DWORD dwRop);
    COLORREF GetPixel(int x, int y) const;
    COLORREF SetPixel(int x, int y, COLORREF crColor);

    BOOL TextOut(int x, int y, LPCSTR lpszString, int nCount);
    BOOL TextOut(int x, int y, const CString& str);
    BOOL ExtTextOut(int x, int y, UINT nOptions, LPCRECT lpRect, const CString& str,
                    const int* lpDxWidths);
    // Returns the height of the text.
    int DrawText(LPCSTR lpszString, int nCount, LPRECT lpRect, UINT nFormat);
    int DrawText(const CString& str, LPRECT lpRect, UINT nFormat);
    CSize GetTextExtent(LPCSTR lpszString, int nCount) const;
    CSize GetTextExtent(const CString& str) const;
    BOOL GetTextMetrics(LPTEXTMETRICA lpMetrics) const;
    int GetTextFace(CString& rString) const;

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

// A whole window with its frame, or with null the whole screen.
class DLGFW_API CWindowDC : public CDC {
public:
    explicit CWindowDC(CWnd* pWnd);
    ~CWindowDC() override;

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
