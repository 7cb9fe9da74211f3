// CPoint, CSize and CRect: the operating system's POINT, SIZE and RECT with arithmetic. A CRect
// passes wherever an LPRECT or LPCRECT is asked for. A rectangle contains its left and top edges
// and not its right and bottom ones.
#pragma once

#include <dlgfw/afx_export.h>

class CPoint;

class CSize : public tagSIZE {
public:
    CSize() noexcept : CSize(0, 0) {}
    CSize(int initCX, int initCY) noexcept {
        cx = initCX;
        cy = initCY;
    }
    CSize(SIZE initSize) noexcept : CSize(initSize.cx, initSize.cy) {}
    explicit CSize(POINT initPt) noexcept : CSize(initPt.x, initPt.y) {}

    void SetSize(int nCX, int nCY) noexcept { *this = CSize(nCX, nCY); }
    bool operator==(SIZE size) const noexcept { return cx == size.cx && cy == size.cy; }
    bool operator!=(SIZE size) const noexcept { return !(*this == size); }
    void operator+=(SIZE size) noexcept {
        cx += size.cx;
        cy += size.cy;
    }
    void operator-=(SIZE size) noexcept {
        cx -= size.cx;
        cy -= size.cy;
    }
    CSize operator+(SIZE size) const noexcept { return {cx + size.cx, cy + size.cy}; }
    CSize operator-(SIZE size) const noexcept { return {cx - size.cx, cy - size.cy}; }
    CSize operator-() const noexcept { return {-cx, -cy}; }
};

class CPoint : public tagPOINT {
public:
    CPoint() noexcept : CPoint(0, 0) {}
    CPoint(int initX, int initY) noexcept {
        x = initX;
        y = initY;
    }
    CPoint(POINT initPt) noexcept : CPoint(initPt.x, initPt.y) {}
    explicit CPoint(SIZE initSize) noexcept : CPoint(initSize.cx, initSize.cy) {}
    // The two signed halves that mouse messages carry.
    explicit CPoint(LPARAM dwPoint) noexcept
        : CPoint(static_cast<short>(LOWORD(dwPoint)), static_cast<short>(HIWORD(dwPoint))) {}

    void SetPoint(int X, int Y) noexcept { *this = CPoint(X, Y); }
    void Offset(int xOffset, int yOffset) noexcept {
        x += xOffset;
        y += yOffset;
    }
    void Offset(POINT point) noexcept { Offset(point.x, point.y); }
    void Offset(SIZE size) noexcept { Offset(size.cx, size.cy); }
    bool operator==(POINT point) const noexcept { return x == point.x && y == point.y; }
    bool operator!=(POINT point) const noexcept { return !(*this == point); }
    void operator+=(SIZE size) noexcept { Offset(size); }
    void operator-=(SIZE size) noexcept { Offset(-size.cx, -size.cy); }
    void operator+=(POINT point) noexcept { Offset(point); }
    void operator-=(POINT point) noexcept { Offset(-point.x, -point.y); }
    CPoint operator+(SIZE size) const noexcept { return {x + size.cx, y + size.cy}; }
    CPoint operator-(SIZE size) const noexcept { return {x - size.cx, y - size.cy}; }
    CPoint operator+(POINT point) const noexcept { return {x + point.x, y + point.y}; }
    CSize operator-(POINT point) const noexcept { return {x - point.x, y - point.y}; }
    CPoint operator-() const noexcept { return {-x, -y}; }
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
    CRect(POINT topLeft, POINT bottomRight) noexcept
        : CRect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y) {}

    int Width() const noexcept { return right - left; }
    int Height() const noexcept { return bottom - top; }
    CSize Size() const noexcept { return {Width(), Height()}; }
    CPoint TopLeft() const noexcept { return {left, top}; }
    CPoint BottomRight() const noexcept { return {right, bottom}; }
    CPoint CenterPoint() const noexcept { return {(left + right) / 2, (top + bottom) / 2}; }
    operator LPRECT() noexcept { return this; }
    operator LPCRECT() const noexcept { return this; }

    BOOL IsRectEmpty() const noexcept { return ::IsRectEmpty(this); }
    BOOL IsRectNull() const noexcept { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    BOOL PtInRect(POINT point) const noexcept { return ::PtInRect(this, point); }
    BOOL EqualRect(LPCRECT lpRect) const noexcept { return ::EqualRect(this, lpRect); }

    void SetRect(int x1, int y1, int x2, int y2) noexcept { ::SetRect(this, x1, y1, x2, y2); }
    void SetRectEmpty() noexcept { ::SetRectEmpty(this); }
    void CopyRect(LPCRECT lpSrcRect) noexcept { ::CopyRect(this, lpSrcRect); }
    void InflateRect(int x, int y) noexcept { ::InflateRect(this, x, y); }
    void InflateRect(SIZE size) noexcept { InflateRect(size.cx, size.cy); }
    void InflateRect(int l, int t, int r, int b) noexcept {
        left -= l;
        top -= t;
        right += r;
        bottom += b;
    }
    void DeflateRect(int x, int y) noexcept { InflateRect(-x, -y); }
    void DeflateRect(SIZE size) noexcept { InflateRect(-size.cx, -size.cy); }
    void DeflateRect(int l, int t, int r, int b) noexcept { InflateRect(-l, -t, -r, -b); }
    void OffsetRect(int x, int y) noexcept { ::OffsetRect(this, x, y); }
    void OffsetRect(POINT point) noexcept { OffsetRect(point.x, point.y); }
    void OffsetRect(SIZE size) noexcept { OffsetRect(size.cx, size.cy); }
    void MoveToXY(int x, int y) noexcept { OffsetRect(x - left, y - top); }
    void NormalizeRect() noexcept {
        *this = CRect(left < right ? left : right, top < bottom ? top : bottom,
                      left < right ? right : left, top < bottom ? bottom : top);
    }
    BOOL IntersectRect(LPCRECT lpRect1, LPCRECT lpRect2) noexcept {
        return ::IntersectRect(this, lpRect1, lpRect2);
    }
    BOOL UnionRect(LPCRECT lpRect1, LPCRECT lpRect2) noexcept {
        return ::UnionRect(this, lpRect1, lpRect2);
    }

    bool operator==(const RECT& rect) const noexcept { return EqualRect(&rect) != FALSE; }
    bool operator!=(const RECT& rect) const noexcept { return !(*this == rect); }
    void operator+=(POINT point) noexcept { OffsetRect(point); }
    void operator+=(SIZE size) noexcept { OffsetRect(size); }
    void operator-=(POINT point) noexcept { OffsetRect(-point.x, -point.y); }
    void operator-=(SIZE size) noexcept { OffsetRect(-size.cx, -size.cy); }
    void operator&=(const RECT& rect) noexcept { IntersectRect(CRect(*this), &rect); }
    void operator|=(const RECT& rect) noexcept { UnionRect(CRect(*this), &rect); }
    CRect operator+(POINT point) const noexcept {
        CRect rect(*this);
        rect += point;
        return rect;
    }
    CRect operator-(POINT point) const noexcept {
        CRect rect(*this);
        rect -= point;
        return rect;
    }
    CRect operator&(const RECT& rect2) const noexcept {
        CRect rect(*this);
        rect &= rect2;
        return rect;
    }
    CRect operator|(const RECT& rect2) const noexcept {
        CRect rect(*this);
        rect |= rect2;
        return rect;
    }
};
