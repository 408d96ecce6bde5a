// Points, sizes and rectangles with arithmetic: plain values over POINT, SIZE and RECT, without further state.
// Any thread. Coordinates are what their user takes them for: pixels, or a DC's logical units. A rectangle includes its left and
// top and excludes its right and bottom; a function that asks for a normalised rectangle wants left <= right and top <= bottom.
#pragma once

#include "platform/win32.h"

class CPoint;

class CSize : public SIZE {
public:
    CSize() : SIZE{0, 0} {}
    CSize(int initCX, int initCY) : SIZE{initCX, initCY} {}
    CSize(SIZE initSize) : SIZE(initSize) {}
    CSize(POINT initPt) : SIZE{initPt.x, initPt.y} {}
    explicit CSize(DWORD dwSize) : SIZE{static_cast<SHORT>(LOWORD(dwSize)), static_cast<SHORT>(HIWORD(dwSize))} {}

    BOOL operator==(SIZE size) const { return cx == size.cx && cy == size.cy; }
    BOOL operator!=(SIZE size) const { return cx != size.cx || cy != size.cy; }
    void operator+=(SIZE size) { SetSize(cx + size.cx, cy + size.cy); }
    void operator-=(SIZE size) { SetSize(cx - size.cx, cy - size.cy); }
    void SetSize(int width, int height) { cx = width, cy = height; }

    CSize operator+(SIZE size) const { return {cx + size.cx, cy + size.cy}; }
    CSize operator-(SIZE size) const { return {cx - size.cx, cy - size.cy}; }
    CSize operator-() const { return {-cx, -cy}; }
    CPoint operator+(POINT point) const;
    CPoint operator-(POINT point) const;
};

class CPoint : public POINT {
public:
    CPoint() : POINT{0, 0} {}
    CPoint(int initX, int initY) : POINT{initX, initY} {}
    CPoint(POINT initPt) : POINT(initPt) {}
    CPoint(SIZE initSize) : POINT{initSize.cx, initSize.cy} {}
    // The coordinates of a mouse message's LPARAM, signed.
    explicit CPoint(LPARAM dwPoint)
        : POINT{static_cast<SHORT>(LOWORD(dwPoint)), static_cast<SHORT>(HIWORD(static_cast<DWORD>(dwPoint)))} {}

    void Offset(int xOffset, int yOffset) { x += xOffset, y += yOffset; }
    void Offset(POINT point) { Offset(point.x, point.y); }
    void Offset(SIZE size) { Offset(size.cx, size.cy); }
    void SetPoint(int X, int Y) { x = X, y = Y; }

    BOOL operator==(POINT point) const { return x == point.x && y == point.y; }
    BOOL operator!=(POINT point) const { return x != point.x || y != point.y; }
    void operator+=(SIZE size) { Offset(size.cx, size.cy); }
    void operator-=(SIZE size) { Offset(-size.cx, -size.cy); }
    void operator+=(POINT point) { Offset(point.x, point.y); }
    void operator-=(POINT point) { Offset(-point.x, -point.y); }

    CPoint operator+(SIZE size) const { return {x + size.cx, y + size.cy}; }
    CPoint operator-(SIZE size) const { return {x - size.cx, y - size.cy}; }
    CPoint operator-() const { return {-x, -y}; }
    CPoint operator+(POINT point) const { return {x + point.x, y + point.y}; }
    CSize operator-(POINT point) const { return {x - point.x, y - point.y}; }
};

inline CPoint CSize::operator+(POINT point) const { return {cx + point.x, cy + point.y}; }
inline CPoint CSize::operator-(POINT point) const { return {cx - point.x, cy - point.y}; }

class CRect : public RECT {
public:
    CRect() : RECT{0, 0, 0, 0} {}
    CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    CRect(const RECT& srcRect) : RECT(srcRect) {}
    CRect(LPCRECT lpSrcRect) : RECT(*lpSrcRect) {}
    CRect(POINT point, SIZE size) : RECT{point.x, point.y, point.x + size.cx, point.y + size.cy} {}
    CRect(POINT topLeft, POINT bottomRight) : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    CSize Size() const { return {Width(), Height()}; }
    CPoint& TopLeft() { return *reinterpret_cast<CPoint*>(this); }
    CPoint& BottomRight() { return *(reinterpret_cast<CPoint*>(this) + 1); }
    const CPoint& TopLeft() const { return *reinterpret_cast<const CPoint*>(this); }
    const CPoint& BottomRight() const { return *(reinterpret_cast<const CPoint*>(this) + 1); }
    CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }

    operator LPRECT() { return this; }
    operator LPCRECT() const { return this; }

    // Empty: no width or no height, also when an edge is on the wrong side.
    BOOL IsRectEmpty() const { return right <= left || bottom <= top; }
    BOOL IsRectNull() const { return left == 0 && right == 0 && top == 0 && bottom == 0; }
    BOOL PtInRect(POINT point) const { return point.x >= left && point.x < right && point.y >= top && point.y < bottom; }
    BOOL EqualRect(LPCRECT lpRect) const { return *this == *lpRect; }

    void SetRect(int x1, int y1, int x2, int y2) { left = x1, top = y1, right = x2, bottom = y2; }
    void SetRect(POINT topLeft, POINT bottomRight) { SetRect(topLeft.x, topLeft.y, bottomRight.x, bottomRight.y); }
    void SetRectEmpty() { SetRect(0, 0, 0, 0); }
    void CopyRect(LPCRECT lpSrcRect) { *static_cast<RECT*>(this) = *lpSrcRect; }

    void InflateRect(int x, int y) { InflateRect(x, y, x, y); }
    void InflateRect(SIZE size) { InflateRect(size.cx, size.cy); }
    void InflateRect(LPCRECT lpRect) { InflateRect(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom); }
    void InflateRect(int l, int t, int r, int b) { left -= l, top -= t, right += r, bottom += b; }
    void DeflateRect(int x, int y) { InflateRect(-x, -y); }
    void DeflateRect(SIZE size) { InflateRect(-size.cx, -size.cy); }
    void DeflateRect(LPCRECT lpRect) { DeflateRect(lpRect->left, lpRect->top, lpRect->right, lpRect->bottom); }
    void DeflateRect(int l, int t, int r, int b) { InflateRect(-l, -t, -r, -b); }
    void OffsetRect(int x, int y) { SetRect(left + x, top + y, right + x, bottom + y); }
    void OffsetRect(SIZE size) { OffsetRect(size.cx, size.cy); }
    void OffsetRect(POINT point) { OffsetRect(point.x, point.y); }
    void MoveToX(int x) { right += x - left, left = x; }
    void MoveToY(int y) { bottom += y - top, top = y; }
    void MoveToXY(int x, int y) { MoveToX(x), MoveToY(y); }
    void MoveToXY(POINT point) { MoveToXY(point.x, point.y); }
    // Exchanges edges that stand on the wrong side.
    void NormalizeRect() {
        if (left > right) SetRect(right, top, left, bottom);
        if (top > bottom) SetRect(left, bottom, right, top);
    }

    // 0, with this rectangle empty, when nothing is left.
    BOOL IntersectRect(LPCRECT lpRect1, LPCRECT lpRect2) { return ::IntersectRect(this, lpRect1, lpRect2); }
    BOOL UnionRect(LPCRECT lpRect1, LPCRECT lpRect2) { return ::UnionRect(this, lpRect1, lpRect2); }
    // The first without the second, where that is a rectangle again; else the first.
    BOOL SubtractRect(LPCRECT lpRectSrc1, LPCRECT lpRectSrc2) { return ::SubtractRect(this, lpRectSrc1, lpRectSrc2); }

    void operator=(const RECT& srcRect) { CopyRect(&srcRect); }
    BOOL operator==(const RECT& rect) const {
        return left == rect.left && top == rect.top && right == rect.right && bottom == rect.bottom;
    }
    BOOL operator!=(const RECT& rect) const { return !(*this == rect); }
    void operator+=(POINT point) { OffsetRect(point); }
    void operator+=(SIZE size) { OffsetRect(size); }
    void operator+=(LPCRECT lpRect) { InflateRect(lpRect); }
    void operator-=(POINT point) { OffsetRect(-point.x, -point.y); }
    void operator-=(SIZE size) { OffsetRect(-size.cx, -size.cy); }
    void operator-=(LPCRECT lpRect) { DeflateRect(lpRect); }
    void operator&=(const RECT& rect) { IntersectRect(this, &rect); }
    void operator|=(const RECT& rect) { UnionRect(this, &rect); }

    CRect operator+(POINT point) const { return {left + point.x, top + point.y, right + point.x, bottom + point.y}; }
    CRect operator+(SIZE size) const { return *this + CPoint(size); }
    CRect operator+(LPCRECT lpRect) const {
        return {left - lpRect->left, top - lpRect->top, right + lpRect->right, bottom + lpRect->bottom};
    }
    CRect operator-(POINT point) const { return *this + CPoint(-point.x, -point.y); }
    CRect operator-(SIZE size) const { return *this + CPoint(-size.cx, -size.cy); }
    CRect operator-(LPCRECT lpRect) const {
        return {left + lpRect->left, top + lpRect->top, right - lpRect->right, bottom - lpRect->bottom};
    }
    CRect operator&(const RECT& rect2) const {
        CRect result;
        result.IntersectRect(this, &rect2);
        return result;
    }
    CRect operator|(const RECT& rect2) const {
        CRect result;
        result.UnionRect(this, &rect2);
        return result;
    }
    CRect MulDiv(int nMultiplier, int nDivisor) const {
        return {::MulDiv(left, nMultiplier, nDivisor), ::MulDiv(top, nMultiplier, nDivisor),
                ::MulDiv(right, nMultiplier, nDivisor), ::MulDiv(bottom, nMultiplier, nDivisor)};
    }
};
