// CPoint, CSize and CRect: the operating system's POINT, SIZE and RECT with a little arithmetic. A
// CRect passes wherever an LPRECT or LPCRECT is asked for. A rectangle contains its left and top
// edges and not its right and bottom ones.
#pragma once

#include <dlgfw/afx_export.h>

class CSize : public tagSIZE {
public:
    CSize() noexcept : CSize(0, 0) {}
    CSize(int initCX, int initCY) noexcept {
        cx = initCX;
        cy = initCY;
    }
    CSize(SIZE initSize) noexcept : CSize(initSize.cx, initSize.cy) {}

    bool operator==(SIZE size) const noexcept { return cx == size.cx && cy == size.cy; }
    bool operator!=(SIZE size) const noexcept { return !(*this == size); }
};

class CPoint : public tagPOINT {
public:
    CPoint() noexcept : CPoint(0, 0) {}
    CPoint(int initX, int initY) noexcept {
        x = initX;
        y = initY;
    }
    CPoint(POINT initPt) noexcept : CPoint(initPt.x, initPt.y) {}
    // The two signed halves that mouse messages carry.
    explicit CPoint(LPARAM dwPoint) noexcept
        : CPoint(static_cast<short>(LOWORD(dwPoint)), static_cast<short>(HIWORD(dwPoint))) {}

    bool operator==(POINT point) const noexcept { return x == point.x && y == point.y; }
    bool operator!=(POINT point) const noexcept { return !(*this == point); }
    CPoint operator-(SIZE size) const noexcept { return {x - size.cx, y - size.cy}; }
};

class CRect : public tagRECT {
public:
    CRect() noexcept : CRect(0, 0, 0, 0) {}
    CRect(int l, int t, int r, int b) noexcept {
        left = l;
        top = t;
        right = r;
        bottom = b;
    }
    CRect(const RECT& srcRect) noexcept
        : CRect(srcRect.left, srcRect.top, srcRect.right, srcRect.bottom) {}
    CRect(LPCRECT lpSrcRect) noexcept : CRect(*lpSrcRect) {}
    CRect(POINT point, SIZE size) noexcept
        : CRect(point.x, point.y, point.x + size.cx, point.y + size.cy) {}

    int Width() const noexcept { return right - left; }
    int Height() const noexcept { return bottom - top; }
    CSize Size() const noexcept { return {Width(), Height()}; }
    CPoint TopLeft() const noexcept { return {left, top}; }
    CPoint CenterPoint() const noexcept { return {(left + right) / 2, (top + bottom) / 2}; }
    operator LPRECT() noexcept { return this; }
    operator LPCRECT() const noexcept { return this; }

    BOOL PtInRect(POINT point) const noexcept { return ::PtInRect(this, point); }
    void OffsetRect(int x, int y) noexcept { ::OffsetRect(this, x, y); }

    bool operator==(const RECT& rect) const noexcept { return ::EqualRect(this, &rect) != FALSE; }
    bool operator!=(const RECT& rect) const noexcept { return !(*this == rect); }
};
