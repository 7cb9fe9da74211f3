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

}  // namespace

CGdiObject::~CGdiObject() {
    DeleteObject();
}

BOOL CGdiObject::Attach(HGDIOBJ hObject) {
    if (hObject == nullptr) {
        return FALSE;
    }
    if (hObject == m_hObject) {
        return TRUE;
    }
    DeleteObject();
    GdiObjects().Insert(hObject, this);
    m_hObject = hObject;
    return TRUE;
}

HGDIOBJ CGdiObject::Detach() {
    HGDIOBJ object = std::exchange(m_hObject, nullptr);
    GdiObjects().Erase(object, this);
    return object;
}

BOOL CGdiObject::DeleteObject() {
    HGDIOBJ object = Detach();
    return object != nullptr && ::DeleteObject(object);
}

int CGdiObject::GetObject(int nCount, LPVOID lpObject) const {
    return ::GetObjectA(m_hObject, nCount, lpObject);
}

CFont* CFont::FromHandle(HFONT hFont) {
    return ObjectFromHandle<CFont>(GdiObjects(), hFont);
}

BOOL CFont::CreateFontIndirect(const LOGFONTA* lpLogFont) {
    return Attach(::CreateFontIndirectA(lpLogFont));
}

BOOL CFont::CreatePointFont(int nPointSize, LPCSTR lpszFaceName, CDC* pDC) {
    const CClientDC screen(nullptr);
    HDC dc = pDC != nullptr ? pDC->m_hDC : screen.m_hDC;
    LOGFONTA logFont = {};
    logFont.lfCharSet = DEFAULT_CHARSET;
    if (lpszFaceName != nullptr) {
        std::strncpy(logFont.lfFaceName, lpszFaceName, LF_FACESIZE - 1);
    }
    // From tenths of a point to logical units of the context, whatever its mapping mode is.
    POINT size = {0, ::MulDiv(::GetDeviceCaps(dc, LOGPIXELSY), nPointSize, 720)};
    POINT origin = {0, 0};
    ::DPtoLP(dc, &size, 1);
    ::DPtoLP(dc, &origin, 1);
    logFont.lfHeight = -std::abs(size.y - origin.y);
    return CreateFontIndirect(&logFont);
}

int CFont::GetLogFont(LOGFONTA* pLogFont) const {
    return GetObject(sizeof(*pLogFont), pLogFont);
}

CBitmap* CBitmap::FromHandle(HBITMAP hBitmap) {
    return ObjectFromHandle<CBitmap>(GdiObjects(), hBitmap);
}

BOOL CBitmap::LoadBitmap(UINT nIDResource) {
    LPCSTR name = MAKEINTRESOURCEA(nIDResource);
    return Attach(::LoadBitmapA(AfxFindResourceHandle(name, RT_BITMAP), name));
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

BOOL CBrush::CreateSolidBrush(COLORREF crColor) {
    return Attach(::CreateSolidBrush(crColor));
}

BOOL CRgn::CreateRectRgn(int x1, int y1, int x2, int y2) {
    return Attach(::CreateRectRgn(x1, y1, x2, y2));
}

int CRgn::CombineRgn(const CRgn* pRgn1, const CRgn* pRgn2, int nCombineMode) {
    return ::CombineRgn(*this, static_cast<HRGN>(HandleOrNull(pRgn1)),
                        static_cast<HRGN>(HandleOrNull(pRgn2)), nCombineMode);
}
