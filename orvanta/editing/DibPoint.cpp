#include "orvanta/editing/DibPoint.h"

#include <climits>
#include <stdexcept>

#include "orvanta/editing/DibRect.h"

namespace Orvanta {

int truncToInt(double value) {
    if (!(value == value)) return 0;
    if (value >= 2147483647.0) return INT_MAX;
    if (value <= -2147483648.0) return INT_MIN;
    return static_cast<int>(value);
}

void DibPoint::set(CPoint p, CRect r) {
    const int width = r.right - r.left;
    const int height = r.bottom - r.top;
    if (width == 0 || height == 0) throw std::domain_error("Cannot set DibPoint from empty rect.");
    mX = static_cast<double>(p.x - r.left) / static_cast<double>(width);
    mY = static_cast<double>(p.y - r.top) / static_cast<double>(height);
}

void DibPoint::set(CPoint p, CRect r, const DibRect& visible) {
    DibPoint inView(p, r);
    mX = inView.mX * (visible.R() - visible.L()) + visible.L();
    mY = inView.mY * (visible.B() - visible.T()) + visible.T();
}

CPoint DibPoint::mapTo(CRect r) const {
    const double w = r.right - r.left;
    const double h = r.bottom - r.top;
    return CPoint(truncToInt(w * mX + r.left), truncToInt(h * mY + r.top));
}

}  // namespace Orvanta
