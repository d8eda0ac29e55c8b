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
    const double width = pixelSpan(r.left, r.right);
    const double height = pixelSpan(r.top, r.bottom);
    if (width == 0 || height == 0) throw std::domain_error("Cannot set DibPoint from empty rect.");
    mX = pixelSpan(r.left, p.x) / width;
    mY = pixelSpan(r.top, p.y) / height;
}

void DibPoint::set(CPoint p, CRect r, const DibRect& visible) {
    DibPoint inView(p, r);
    mX = inView.mX * (visible.R() - visible.L()) + visible.L();
    mY = inView.mY * (visible.B() - visible.T()) + visible.T();
}

CPoint DibPoint::mapTo(CRect r) const {
    const double w = pixelSpan(r.left, r.right);
    const double h = pixelSpan(r.top, r.bottom);
    return CPoint(truncToInt(w * mX + r.left), truncToInt(h * mY + r.top));
}

}  // namespace Orvanta
