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

// Selects an object of one kind and returns the one before.
template <class Kind, class Handle>
Kind* Select(HDC hDC, const Kind* pObject) {
    if (pObject == nullptr) {
        return nullptr;
    }
    HGDIOBJ old = ::SelectObject(hDC, pObject->m_hObject);
    return Kind::FromHandle(static_cast<Handle>(old));
}

}  // namespace

CDC::~CDC() {
    DeleteDC();
}

CDC* CDC::FromHandle(HDC hDC) {
    return dlgfw::ObjectFromHandle<CDC>(DeviceContexts(), hDC);
}

BOOL CDC::Attach(HDC hDC) {
    if (hDC == nullptr) {
        return FALSE;
    }
    if (hDC == m_hDC) {
        return TRUE;
    }
    DeleteDC();
    DeviceContexts().Insert(hDC, this);
    m_hDC = hDC;
    return TRUE;
}

HDC CDC::Detach() {
    HDC dc = std::exchange(m_hDC, nullptr);
    DeviceContexts().Erase(dc, this);
    return dc;
}

BOOL CDC::CreateCompatibleDC(CDC* pDC) {
    return Attach(::CreateCompatibleDC(ContextOrNull(pDC)));
}

BOOL CDC::DeleteDC() {
    HDC dc = Detach();
    return dc != nullptr && ::DeleteDC(dc);
}

CFont* CDC::SelectObject(CFont* pFont) {
    return Select<CFont, HFONT>(m_hDC, pFont);
}
CBitmap* CDC::SelectObject(CBitmap* pBitmap) {
    return Select<CBitmap, HBITMAP>(m_hDC, pBitmap);
}

COLORREF CDC::SetBkColor(COLORREF crColor) {
    return ::SetBkColor(m_hDC, crColor);
}
int CDC::SetBkMode(int nBkMode) {
    return ::SetBkMode(m_hDC, nBkMode);
}
COLORREF CDC::SetTextColor(COLORREF crColor) {
    return ::SetTextColor(m_hDC, crColor);
}

BOOL CDC::DrawIcon(int x, int y, HICON hIcon) {
    return ::DrawIcon(m_hDC, x, y, hIcon);
}
BOOL CDC::BitBlt(int x, int y, int nWidth, int nHeight, CDC* pSrcDC, int xSrc, int ySrc,
                 DWORD dwRop) {
    return ::BitBlt(m_hDC, x, y, nWidth, nHeight, ContextOrNull(pSrcDC), xSrc, ySrc, dwRop);
}

CSize CDC::GetTextExtent(LPCSTR lpszString, int nCount) const {
    CSize size;
    ::GetTextExtentPoint32A(m_hDC, lpszString, nCount, &size);
    return size;
}
CSize CDC::GetTextExtent(const CString& str) const {
    return GetTextExtent(str, str.GetLength());
}

CClientDC::CClientDC(CWnd* pWnd) : m_hWnd(WindowOrNull(pWnd)) {
    Attach(::GetDC(m_hWnd));
}

CClientDC::~CClientDC() {
    if (m_hDC != nullptr) {
        ::ReleaseDC(m_hWnd, Detach());
    }
}

CPaintDC::CPaintDC(CWnd* pWnd) : m_ps(), m_hWnd(pWnd->m_hWnd) {
    Attach(::BeginPaint(m_hWnd, &m_ps));
}

CPaintDC::~CPaintDC() {
    Detach();
    ::EndPaint(m_hWnd, &m_ps);
}
