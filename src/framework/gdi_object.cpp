#include <cstdlib>
#include <cstring>
#include <utility>

#include <dlgfw/dc.h>
#include <dlgfw/gdi_object.h>
#include <dlgfw/module_state.h>

#include "framework/handle_maps.h"

using dlgfw::GdiObjects;
using dlgfw::ObjectFromHandle;

namespace {

HGDIOBJ HandleOrNull(const CGdiObject* pObject) {
    return pObject == nullptr ? nullptr : pObject->m_hObject;
}

LPCSTR ResourceName(UINT nID) {
    return MAKEINTRESOURCEA(nID);
}

}  // namespace

CGdiObject::~CGdiObject() {
    DeleteObject();
}

CGdiObject* CGdiObject::FromHandle(HGDIOBJ hObject) {
    return ObjectFromHandle<CGdiObject>(GdiObjects(), hObject);
}

BOOL CGdiObject::Attach(HGDIOBJ hObject) {
    if (hObject == nullptr)
        return FALSE;
    if (hObject == m_hObject)
        return TRUE;
    DeleteObject();
    GdiObjects().Insert(hObject, this);
    m_hObject = hObject;
    return TRUE;
}

HGDIOBJ CGdiObject::Detach() {
    HGDIOBJ hObject = std::exchange(m_hObject, nullptr);
    GdiObjects().Erase(hObject, this);
    return hObject;
}

BOOL CGdiObject::DeleteObject() {
    HGDIOBJ hObject = Detach();
    return hObject != nullptr && ::DeleteObject(hObject);
}

int CGdiObject::GetObject(int nCount, LPVOID lpObject) const {
    return ::GetObjectA(m_hObject, nCount, lpObject);
}

BOOL CGdiObject::CreateStockObject(int nIndex) {
    return Attach(::GetStockObject(nIndex));
}

CFont* CFont::FromHandle(HFONT hFont) {
    return ObjectFromHandle<CFont>(GdiObjects(), hFont);
}

BOOL CFont::CreateFontIndirect(const LOGFONTA* lpLogFont) {
    return Attach(::CreateFontIndirectA(lpLogFont));
}

BOOL CFont::CreateFont(int nHeight, int nWidth, int nEscapement, int nOrientation, int nWeight,
                       BYTE bItalic, BYTE bUnderline, BYTE cStrikeOut, BYTE nCharSet,
                       BYTE nOutPrecision, BYTE nClipPrecision, BYTE nQuality, BYTE nPitchAndFamily,
                       LPCSTR lpszFacename) {
    return Attach(::CreateFontA(nHeight, nWidth, nEscapement, nOrientation, nWeight, bItalic,
                                bUnderline, cStrikeOut, nCharSet, nOutPrecision, nClipPrecision,
                                nQuality, nPitchAndFamily, lpszFacename));
}

BOOL CFont::CreatePointFont(int nPointSize, LPCSTR lpszFaceName, CDC* pDC) {
    LOGFONTA logFont = {};
    logFont.lfCharSet = DEFAULT_CHARSET;
    logFont.lfHeight = nPointSize;
    if (lpszFaceName != nullptr)
        std::strncpy(logFont.lfFaceName, lpszFaceName, LF_FACESIZE - 1);
    return CreatePointFontIndirect(&logFont, pDC);
}

BOOL CFont::CreatePointFontIndirect(const LOGFONTA* lpLogFont, CDC* pDC) {
    const CClientDC screen(nullptr);
    HDC hDC = pDC != nullptr ? pDC->m_hDC : screen.m_hDC;
    LOGFONTA logFont = *lpLogFont;
    // From tenths of a point to logical units of the context, whatever its mapping mode is.
    POINT size = {0, ::MulDiv(::GetDeviceCaps(hDC, LOGPIXELSY), logFont.lfHeight, 720)};
    POINT origin = {0, 0};
    ::DPtoLP(hDC, &size, 1);
    ::DPtoLP(hDC, &origin, 1);
    logFont.lfHeight = -std::abs(size.y - origin.y);
    return CreateFontIndirect(&logFont);
}

int CFont::GetLogFont(LOGFONTA* pLogFont) const {
    return GetObject(sizeof(*pLogFont), pLogFont);
}

CBitmap* CBitmap::FromHandle(HBITMAP hBitmap) {
    return ObjectFromHandle<CBitmap>(GdiObjects(), hBitmap);
}

BOOL CBitmap::LoadBitmap(LPCSTR lpszResourceName) {
    return Attach(
        ::LoadBitmapA(AfxFindResourceHandle(lpszResourceName, RT_BITMAP), lpszResourceName));
}

BOOL CBitmap::LoadBitmap(UINT nIDResource) {
    return LoadBitmap(ResourceName(nIDResource));
}

BOOL CBitmap::CreateBitmap(int nWidth, int nHeight, UINT nPlanes, UINT nBitcount,
                           const void* lpBits) {
    return Attach(::CreateBitmap(nWidth, nHeight, nPlanes, nBitcount, lpBits));
}

BOOL CBitmap::CreateBitmapIndirect(const BITMAP* lpBitmap) {
    return Attach(::CreateBitmapIndirect(lpBitmap));
}

BOOL CBitmap::CreateCompatibleBitmap(CDC* pDC, int nWidth, int nHeight) {
    return Attach(::CreateCompatibleBitmap(pDC->m_hDC, nWidth, nHeight));
}

int CBitmap::GetBitmap(BITMAP* pBitMap) const {
    return GetObject(sizeof(*pBitMap), pBitMap);
}

CBrush::CBrush(COLORREF crColor) {
    CreateSolidBrush(crColor);
}
CBrush::CBrush(CBitmap* pBitmap) {
    CreatePatternBrush(pBitmap);
}

CBrush* CBrush::FromHandle(HBRUSH hBrush) {
    return ObjectFromHandle<CBrush>(GdiObjects(), hBrush);
}

BOOL CBrush::CreateSolidBrush(COLORREF crColor) {
    return Attach(::CreateSolidBrush(crColor));
}

BOOL CBrush::CreateHatchBrush(int nIndex, COLORREF crColor) {
    return Attach(::CreateHatchBrush(nIndex, crColor));
}

BOOL CBrush::CreatePatternBrush(CBitmap* pBitmap) {
    return Attach(::CreatePatternBrush(*pBitmap));
}

BOOL CBrush::CreateSysColorBrush(int nIndex) {
    return Attach(::GetSysColorBrush(nIndex));
}

int CBrush::GetLogBrush(LOGBRUSH* pLogBrush) const {
    return GetObject(sizeof(*pLogBrush), pLogBrush);
}

CPen::CPen(int nPenStyle, int nWidth, COLORREF crColor) {
    CreatePen(nPenStyle, nWidth, crColor);
}

CPen* CPen::FromHandle(HPEN hPen) {
    return ObjectFromHandle<CPen>(GdiObjects(), hPen);
}

BOOL CPen::CreatePen(int nPenStyle, int nWidth, COLORREF crColor) {
    return Attach(::CreatePen(nPenStyle, nWidth, crColor));
}

int CPen::GetLogPen(LOGPEN* pLogPen) const {
    return GetObject(sizeof(*pLogPen), pLogPen);
}

CRgn* CRgn::FromHandle(HRGN hRgn) {
    return ObjectFromHandle<CRgn>(GdiObjects(), hRgn);
}

BOOL CRgn::CreateRectRgn(int x1, int y1, int x2, int y2) {
    return Attach(::CreateRectRgn(x1, y1, x2, y2));
}

BOOL CRgn::CreateRectRgnIndirect(LPCRECT lpRect) {
    return Attach(::CreateRectRgnIndirect(lpRect));
}

void CRgn::SetRectRgn(LPCRECT lpRect) {
    ::SetRectRgn(*this, lpRect->left, lpRect->top, lpRect->right, lpRect->bottom);
}

int CRgn::CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nCombineMode) {
    return ::CombineRgn(*this, static_cast<HRGN>(HandleOrNull(pRgn1)),
                        static_cast<HRGN>(HandleOrNull(pRgn2)), nCombineMode);
}

int CRgn::CopyRgn(const CRgn* pRgnSrc) {
    return CombineRgn(pRgnSrc, nullptr, RGN_COPY);
}

int CRgn::OffsetRgn(int x, int y) {
    return ::OffsetRgn(*this, x, y);
}

int CRgn::GetRgnBox(LPRECT lpRect) const {
    return ::GetRgnBox(*this, lpRect);
}

BOOL CRgn::EqualRgn(const CRgn* pRgn) const {
    return ::EqualRgn(*this, *pRgn);
}

BOOL CRgn::PtInRegion(POINT point) const {
    return ::PtInRegion(*this, point.x, point.y);
}
