#pragma once
// CPoint: a position in pixels, with the Windows field names.

namespace Orvanta {

struct CPoint {
    int x = 0;
    int y = 0;

    constexpr CPoint() = default;
    constexpr CPoint(int px, int py) : x(px), y(py) {}

    friend constexpr bool operator==(const CPoint&, const CPoint&) = default;
};

}  // namespace Orvanta
