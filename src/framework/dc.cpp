#include <utility>

#include <dlgfw/dc.h>
#include <dlgfw/wnd.h>

#include "framework/handle_maps.h"

using dlgfw::DeviceContexts;

namespace {

HDC ContextOrNull(const CDC* pDC) {
    return pDC == nullptr ? nullptr : pDC->m_hDC;
}

HWND WindowOrNull(const CWnd* pWnd) {
    return pWnd == nullptr ? nullptr : pWnd->m_hWnd;
}

HRGN RegionOrNull(const CRgn* pRgn) {
    return pRgn == nullptr ? nullptr : static_cast<HRGN>(pRgn->m_hObject);
}

// Selects an object of one kind and returns the one before.
template <class Kind, class Handle>
Kind* Select(HDC hDC, const Kind* pObject) {
    if (pObject == nullptr)
        return nullptr;
    HGDIOBJ hOld = ::SelectObject(hDC, pObject->m_hObject);
    return Kind::FromHandle(static_cast<Handle>(hOld));
}

}  // namespace

CDC::~CDC() {
    DeleteDC();
}

CDC* CDC::FromHandle(HDC hDC) {
    return dlgfw::ObjectFromHandle<CDC>(DeviceContexts(), hDC);
}

BOOL CDC::Attach(HDC hDC) {
    if (hDC == nullptr)
        return FALSE;
    if (hDC == m_hDC)
        return TRUE;
    DeleteDC();
    DeviceContexts().Insert(hDC, this);
    m_hDC = hDC;
    return TRUE;
}

HDC CDC::Detach() {
    HDC hDC = std::exchange(m_hDC, nullptr);
    DeviceContexts().Erase(hDC, this);
    return hDC;
}

BOOL CDC::CreateCompatibleDC(CDC* pDC) {
    return Attach(::CreateCompatibleDC(ContextOrNull(pDC)));
}

BOOL CDC::CreateDC(LPCSTR lpszDriverName, LPCSTR lpszDeviceName, LPCSTR lpszOutput,
                   const void* lpInitData) {
    return Attach(::CreateDCA(lpszDriverName, lpszDeviceName, lpszOutput,
                              static_cast<const DEVMODEA*>(lpInitData)));
}

BOOL CDC::DeleteDC() {
    HDC hDC = Detach();
    return hDC != nullptr && ::DeleteDC(hDC);
}

int CDC::SaveDC() {
    return ::SaveDC(m_hDC);
}
BOOL CDC::RestoreDC(int nSavedDC) {
    return ::RestoreDC(m_hDC, nSavedDC);
}
int CDC::GetDeviceCaps(int nIndex) const {
    return ::GetDeviceCaps(m_hDC, nIndex);
}

CGdiObject* CDC::SelectStockObject(int nIndex) {
    return CGdiObject::FromHandle(::SelectObject(m_hDC, ::GetStockObject(nIndex)));
}

CPen* CDC::SelectObject(CPen* pPen) {
    return Select<CPen, HPEN>(m_hDC, pPen);
}
CBrush* CDC::SelectObject(CBrush* pBrush) {
    return Select<CBrush, HBRUSH>(m_hDC, pBrush);
}
CFont* CDC::SelectObject(CFont* pFont) {
    return Select<CFont, HFONT>(m_hDC, pFont);
}
CBitmap* CDC::SelectObject(CBitmap* pBitmap) {
    return Select<CBitmap, HBITMAP>(m_hDC, pBitmap);
}

int CDC::SelectObject(CRgn* pRgn) {
    return SelectClipRgn(pRgn);
}

CFont* CDC::GetCurrentFont() const {
    return CFont::FromHandle(static_cast<HFONT>(::GetCurrentObject(m_hDC, OBJ_FONT)));
}
CBitmap* CDC::GetCurrentBitmap() const {
    return CBitmap::FromHandle(static_cast<HBITMAP>(::GetCurrentObject(m_hDC, OBJ_BITMAP)));
}
CBrush* CDC::GetCurrentBrush() const {
    return CBrush::FromHandle(static_cast<HBRUSH>(::GetCurrentObject(m_hDC, OBJ_BRUSH)));
}
CPen* CDC::GetCurrentPen() const {
    return CPen::FromHandle(static_cast<HPEN>(::GetCurrentObject(m_hDC, OBJ_PEN)));
}

COLORREF CDC::GetBkColor() const {
    return ::GetBkColor(m_hDC);
}
COLORREF CDC::SetBkColor(COLORREF crColor) {
    return ::SetBkColor(m_hDC, crColor);
}
int CDC::GetBkMode() const {
    return ::GetBkMode(m_hDC);
}
int CDC::SetBkMode(int nBkMode) {
    return ::SetBkMode(m_hDC, nBkMode);
}
COLORREF CDC::GetTextColor() const {
    return ::GetTextColor(m_hDC);
}
COLORREF CDC::SetTextColor(COLORREF crColor) {
    return ::SetTextColor(m_hDC, crColor);
}
UINT CDC::GetTextAlign() const {
    return ::GetTextAlign(m_hDC);
}
UINT CDC::SetTextAlign(UINT nFlags) {
    return ::SetTextAlign(m_hDC, nFlags);
}
int CDC::SetROP2(int nDrawMode) {
    return ::SetROP2(m_hDC, nDrawMode);
}
int CDC::SetStretchBltMode(int nStretchMode) {
    return ::SetStretchBltMode(m_hDC, nStretchMode);
}
int CDC::SetMapMode(int nMapMode) {
    return ::SetMapMode(m_hDC, nMapMode);
}

CPoint CDC::SetViewportOrg(int x, int y) {
    CPoint old;
    ::SetViewportOrgEx(m_hDC, x, y, &old);
    return old;
}
CPoint CDC::SetViewportOrg(POINT point) {
    return SetViewportOrg(point.x, point.y);
}

CPoint CDC::GetViewportOrg() const {
    CPoint point;
    ::GetViewportOrgEx(m_hDC, &point);
    return point;
}

CPoint CDC::SetWindowOrg(int x, int y) {
    CPoint old;
    ::SetWindowOrgEx(m_hDC, x, y, &old);
    return old;
}

CPoint CDC::SetBrushOrg(int x, int y) {
    CPoint old;
    ::SetBrushOrgEx(m_hDC, x, y, &old);
    return old;
}

BOOL CDC::LPtoDP(LPPOINT lpPoints, int nCount) const {
    return ::LPtoDP(m_hDC, lpPoints, nCount);
}
BOOL CDC::DPtoLP(LPPOINT lpPoints, int nCount) const {
    return ::DPtoLP(m_hDC, lpPoints, nCount);
}

int CDC::GetClipBox(LPRECT lpRect) const {
    return ::GetClipBox(m_hDC, lpRect);
}
int CDC::SelectClipRgn(CRgn* pRgn) {
    return ::SelectClipRgn(m_hDC, RegionOrNull(pRgn));
}
int CDC::ExcludeClipRect(LPCRECT lpRect) {
    return ::ExcludeClipRect(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
}
int CDC::IntersectClipRect(LPCRECT lpRect) {
    return ::IntersectClipRect(m_hDC, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
}
BOOL CDC::RectVisible(LPCRECT lpRect) const {
    return ::RectVisible(m_hDC, lpRect);
}

CPoint CDC::MoveTo(int x, int y) {
    CPoint old;
    ::MoveToEx(m_hDC, x, y, &old);
    return old;
}
CPoint CDC::MoveTo(POINT point) {
    return MoveTo(point.x, point.y);
}
BOOL CDC::LineTo(int x, int y) {
    return ::LineTo(m_hDC, x, y);
}
BOOL CDC::LineTo(POINT point) {
    return LineTo(point.x, point.y);
}
BOOL CDC::Polyline(const POINT* lpPoints, int nCount) {
    return ::Polyline(m_hDC, lpPoints, nCount);
}
BOOL CDC::Polygon(const POINT* lpPoints, int nCount) {
    return ::Polygon(m_hDC, lpPoints, nCount);
}
BOOL CDC::Rectangle(int x1, int y1, int x2, int y2) {
    return ::Rectangle(m_hDC, x1, y1, x2, y2);
}
BOOL CDC::Rectangle(LPCRECT lpRect) {
    return Rectangle(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
}
BOOL CDC::Ellipse(int x1, int y1, int x2, int y2) {
    return ::Ellipse(m_hDC, x1, y1, x2, y2);
}
BOOL CDC::RoundRect(int x1, int y1, int x2, int y2, int x3, int y3) {
    return ::RoundRect(m_hDC, x1, y1, x2, y2, x3, y3);
}

void CDC::FillRect(LPCRECT lpRect, CBrush* pBrush) {
    ::FillRect(m_hDC, lpRect, *pBrush);
}
void CDC::FrameRect(LPCRECT lpRect, CBrush* pBrush) {
    ::FrameRect(m_hDC, lpRect, *pBrush);
}
void CDC::InvertRect(LPCRECT lpRect) {
    ::InvertRect(m_hDC, lpRect);
}

void CDC::FillSolidRect(LPCRECT lpRect, COLORREF clr) {
    const COLORREF clrOld = SetBkColor(clr);
    ::ExtTextOutA(m_hDC, 0, 0, ETO_OPAQUE, lpRect, nullptr, 0, nullptr);
    SetBkColor(clrOld);
}
void CDC::FillSolidRect(int x, int y, int cx, int cy, COLORREF clr) {
    FillSolidRect(CRect(CPoint(x, y), CSize(cx, cy)), clr);
}

BOOL CDC::FillRgn(CRgn* pRgn, CBrush* pBrush) {
    return ::FillRgn(m_hDC, *pRgn, *pBrush);
}
BOOL CDC::DrawEdge(LPRECT lpRect, UINT nEdge, UINT nFlags) {
    return ::DrawEdge(m_hDC, lpRect, nEdge, nFlags);
}
BOOL CDC::DrawFrameControl(LPRECT lpRect, UINT nType, UINT nState) {
    return ::DrawFrameControl(m_hDC, lpRect, nType, nState);
}
void CDC::DrawFocusRect(LPCRECT lpRect) {
    ::DrawFocusRect(m_hDC, lpRect);
}
BOOL CDC::DrawIcon(int x, int y, HICON hIcon) {
    return ::DrawIcon(m_hDC, x, y, hIcon);
}
BOOL CDC::DrawIcon(POINT point, HICON hIcon) {
    return DrawIcon(point.x, point.y, hIcon);
}
BOOL CDC::DrawIconEx(int x, int y, HICON hIcon, int cx, int cy, UINT nFlags) {
    return ::DrawIconEx(m_hDC, x, y, hIcon, cx, cy, 0, nullptr, nFlags);
}

BOOL CDC::PatBlt(int x, int y, int nWidth, int nHeight, DWORD dwRop) {
    return ::PatBlt(m_hDC, x, y, nWidth, nHeight, dwRop);
}
BOOL CDC::BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc,
                 DWORD dwRop) {
    return ::BitBlt(m_hDC, x, y, nWidth, nHeight, ContextOrNull(pSrcDC), xSrc, ySrc, dwRop);
}
BOOL CDC::StretchBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc,
                     int nSrcWidth, int nSrcHeight, DWORD dwRop) {
    return ::StretchBlt(m_hDC, x, y, nWidth, nHeight, ContextOrNull(pSrcDC), xSrc, ySrc, nSrcWidth,
                        nSrcHeight, dwRop);
}
COLORREF CDC::GetPixel(int x, int y) const {
    return ::GetPixel(m_hDC, x, y);
}
COLORREF CDC::SetPixel(int x, int y, COLORREF crColor) {
    return ::SetPixel(m_hDC, x, y, crColor);
}

BOOL CDC::TextOut(int x, int y, LPCSTR lpszString, int nCount) {
    return ::TextOutA(m_hDC, x, y, lpszString, nCount);
}
BOOL CDC::TextOut(int x, int y, const CString& str) {
    return ::TextOutA(m_hDC, x, y, str, str.GetLength());
}
BOOL CDC::ExtTextOut(int x, int y, UINT nOptions, LPCRECT lpRect, const CString& str,
                     const int* lpDxWidths) {
    return ::ExtTextOutA(m_hDC, x, y, nOptions, lpRect, str, static_cast<UINT>(str.GetLength()),
                         lpDxWidths);
}
int CDC::DrawText(LPCSTR lpszString, int nCount, LPRECT lpRect, UINT nFormat) {
    return ::DrawTextA(m_hDC, lpszString, nCount, lpRect, nFormat);
}
int CDC::DrawText(const CString& str, LPRECT lpRect, UINT nFormat) {
    return ::DrawTextA(m_hDC, str, str.GetLength(), lpRect, nFormat);
}

CSize CDC::GetTextExtent(LPCSTR lpszString, int nCount) const {
    CSize size;
    ::GetTextExtentPoint32A(m_hDC, lpszString, nCount, &size);
    return size;
}
CSize CDC::GetTextExtent(const CString& str) const {
    return GetTextExtent(str, str.GetLength());
}

BOOL CDC::GetTextMetrics(LPTEXTMETRICA lpMetrics) const {
    return ::GetTextMetricsA(m_hDC, lpMetrics);
}

int CDC::GetTextFace(CString& rString) const {
    const int nLength = ::GetTextFaceA(m_hDC, LF_FACESIZE, rString.GetBuffer(LF_FACESIZE));
    rString.ReleaseBuffer();
    return nLength;
}

CClientDC::CClientDC(CWnd* pWnd) : m_hWnd(WindowOrNull(pWnd)) {
    Attach(::GetDC(m_hWnd));
}

CClientDC::~CClientDC() {
    if (m_hDC != nullptr)
        ::ReleaseDC(m_hWnd, Detach());
}

CWindowDC::CWindowDC(CWnd* pWnd) : m_hWnd(WindowOrNull(pWnd)) {
    Attach(::GetWindowDC(m_hWnd));
}

CWindowDC::~CWindowDC() {
    if (m_hDC != nullptr)
        ::ReleaseDC(m_hWnd, Detach());
}

CPaintDC::CPaintDC(CWnd* pWnd) : m_ps(), m_hWnd(pWnd->m_hWnd) {
    Attach(::BeginPaint(m_hWnd, &m_ps));
}

CPaintDC::~CPaintDC() {
    Detach();
    ::EndPaint(m_hWnd, &m_ps);
}
