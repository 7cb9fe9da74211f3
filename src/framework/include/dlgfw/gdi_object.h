// CGdiObject and its kinds (CFont, CBitmap, CBrush, CRgn): owners of drawing objects.
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

    HGDIOBJ GetSafeHandle() const noexcept { return m_hObject; }
    BOOL Attach(HGDIOBJ hObject);
    HGDIOBJ Detach();
    BOOL DeleteObject();

    // The number of bytes stored; with a null lpObject the number needed.
    int GetObject(int nCount, LPVOID lpObject) const;

    HGDIOBJ m_hObject = nullptr;
};

class DLGFW_API CFont : public CGdiObject {
public:
    static CFont* FromHandle(HFONT hFont);
    operator HFONT() const noexcept { return static_cast<HFONT>(m_hObject); }

    BOOL CreateFontIndirect(const LOGFONTA* lpLogFont);
    // nPointSize in tenths of a point, for pDC or, with null, the screen.
    BOOL CreatePointFont(int nPointSize, LPCSTR lpszFaceName, CDC* pDC = nullptr);
    int GetLogFont(LOGFONTA* pLogFont) const;
};

class DLGFW_API CBitmap : public CGdiObject {
public:
    static CBitmap* FromHandle(HBITMAP hBitmap);
    operator HBITMAP() const noexcept { return static_cast<HBITMAP>(m_hObject); }

    // From the first module of the resource chain that holds it.
    BOOL LoadBitmap(UINT nIDResource);
    BOOL CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight);
    int GetBitmap(BITMAP* pBitMap) const;
};

class DLGFW_API CBrush : public CGdiObject {
public:
    CBrush() noexcept = default;
    explicit CBrush(COLORREF crColor);
    operator HBRUSH() const noexcept { return static_cast<HBRUSH>(m_hObject); }

    BOOL CreateSolidBrush(COLORREF crColor);
};

class DLGFW_API CRgn : public CGdiObject {
public:
    operator HRGN() const noexcept { return static_cast<HRGN>(m_hObject); }

    BOOL CreateRectRgn(int x1, int y1, int x2, int y2);
    // NULLREGION, SIMPLEREGION, COMPLEXREGION or ERROR.
    int CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nCombineMode);
};
