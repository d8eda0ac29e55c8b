#pragma once
// CRect: a rectangle in pixels; right and bottom are exclusive.

#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta {

struct CRect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;

    constexpr CRect() = default;
    constexpr CRect(int l, int t, int r, int b) : left(l), top(t), right(r), bottom(b) {}
    constexpr CRect(CPoint topLeft, CSize size)
        : left(topLeft.x), top(topLeft.y), right(topLeft.x + size.cx), bottom(topLeft.y + size.cy) {}

    constexpr int width() const { return right - left; }
    constexpr int height() const { return bottom - top; }
    constexpr CSize size() const { return CSize(width(), height()); }
    constexpr CPoint topLeft() const { return CPoint(left, top); }
    constexpr CPoint bottomRight() const { return CPoint(right, bottom); }
    constexpr bool isEmpty() const { return right <= left || bottom <= top; }
    constexpr bool contains(CPoint p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }

    friend constexpr bool operator==(const CRect&, const CRect&) = default;
};

}  // namespace Orvanta
