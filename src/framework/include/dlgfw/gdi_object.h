// CGdiObject and its kinds (CFont, CBitmap, CBrush, CPen, CRgn): owners of drawing objects.
//
// An object that was created, loaded or attached is deleted with its CGdiObject; Detach gives the
// handle away. FromHandle lends an object for a handle of someone else: the one it is attached to
// on this thread, or a temporary one that owns nothing and goes away when the thread is idle
// (wnd.h).
//
// Functions that create return FALSE on failure. An object that already holds a handle deletes it
// first.
#pragma once

#include <dlgfw/afx_export.h>

class CDC;

class DLGFW_API CGdiObject {
public:
    CGdiObject() noexcept = default;
    CGdiObject(const CGdiObject&) = delete;
    CGdiObject& operator=(const CGdiObject&) = delete;
    virtual ~CGdiObject();

    static CGdiObject* FromHandle(HGDIOBJ hObject);

    HGDIOBJ GetSafeHandle() const noexcept { return m_hObject; }
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    BOOL DeleteObject();

    // The number of bytes stored; with a null lpObject the number needed.
    int GetObject(int nCount, LPVOID lpObject) const;
    BOOL CreateStockObject(int nIndex);

    HGDIOBJ m_hObject = nullptr;
};

class DLGFW_API CFont : public CGdiObject {
public:
    static CFont* FromHandle(HFONT hFont);
    operator HFONT() const noexcept { return static_cast<HFONT>(m_hObject); }

    BOOL CreateFontIndirect(const LOGFONTA* lpLogFont);
    BOOL CreateFont(int nHeight, int nWidth, int nEscapement, int nOrientation, int nWeight,
                    BYTE bItalic, BYTE bUnderline, BYTE cStrikeOut, BYTE nCharSet,
                    BYTE nOutPrecision, BYTE nClipPrecision, BYTE nQuality, BYTE nPitchAndFamily,
                    LPCSTR lpszFacename);
    // nPointSize in tenths of a point, for pDC or, with null, the screen.
    BOOL CreatePointFont(int nPointSize, LPCSTR lpszFaceName, CDC* pDC = nullptr);
    BOOL CreatePointFontIndirect(const LOGFONTA* lpLogFont, CDC* pDC = nullptr);
    int GetLogFont(LOGFONTA* pLogFont) const;
};

class DLGFW_API CBitmap : public CGdiObject {
public:
    static CBitmap* FromHandle(HBITMAP hBitmap);
    operator HBITMAP() const noexcept { return static_cast<HBITMAP>(m_hObject); }

    // From the first module of the resource chain that holds it.
    BOOL LoadBitmap(LPCSTR lpszResourceName);
    BOOL LoadBitmap(UINT nIDResource);
    BOOL CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitcount, const void* lpBits);
    BOOL CreateBitmapIndirect(const BITMAP* lpBitmap);
    BOOL CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight);
    int GetBitmap(BITMAP* pBitMap) const;
};

class DLGFW_API CBrush : public CGdiObject {
public:
    CBrush() noexcept = default;
    explicit CBrush(COLORREF crColor);
    explicit CBrush(CBitmap* pBitmap);
    static CBrush* FromHandle(HBRUSH hBrush);
    operator HBRUSH() const noexcept { return static_cast<HBRUSH>(m_hObject); }

    BOOL CreateSolidBrush(COLORREF crColor);
    BOOL CreateHatchBrush(int nIndex, COLORREF crColor);
    BOOL CreatePatternBrush(CBitmap* pBitmap);
    // Shared by the system; deleting it does no harm.
    BOOL CreateSysColorBrush(int nIndex);
    int GetLogBrush(LOGBRUSH* pLogBrush) const;
};

class DLGFW_API CPen : public CGdiObject {
public:
    CPen() noexcept = default;
    CPen(int nPenStyle, int nWidth, COLORREF crColor);
    static CPen* FromHandle(HPEN hPen);
    operator HPEN() const noexcept { return static_cast<HPEN>(m_hObject); }

    BOOL CreatePen(int nPenStyle, int nWidth, COLORREF crColor);
    int GetLogPen(LOGPEN* pLogPen) const;
};

class DLGFW_API CRgn : public CGdiObject {
public:
    static CRgn* FromHandle(HRGN hRgn);
    operator HRGN() const noexcept { return static_cast<HRGN>(m_hObject); }

    BOOL CreateRectRgn(int x1, int y1, int x2, int y2);
    BOOL CreateRectRgnIndirect(LPCRECT lpRect);
    void SetRectRgn(LPCRECT lpRect);
    // NULLREGION, SIMPLEREGION, COMPLEXREGION or ERROR.
    int CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nCombineMode);
    int CopyRgn(const CRgn* pRgnSrc);
    int OffsetRgn(int x, int y);
    int GetRgnBox(LPRECT lpRect) const;
    BOOL EqualRgn(const CRgn* pRgn) const;
    BOOL PtInRegion(POINT point) const;
};
