#include "orvanta/editing/DibRect.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

#include "orvanta/codecs/Image.h"

namespace Orvanta {

void DibRect::set(CRect inner, CRect outer) {
    const double width = pixelSpan(outer.left, outer.right);
    const double height = pixelSpan(outer.top, outer.bottom);
    if (width == 0 || height == 0) throw std::domain_error("Cannot set DibRect from empty rect.");
    mL = pixelSpan(outer.left, inner.left) / width;
    mT = pixelSpan(outer.top, inner.top) / height;
    mR = pixelSpan(outer.left, inner.right) / width;
    mB = pixelSpan(outer.top, inner.bottom) / height;
}

CRect DibRect::mapTo(CRect r) const {
    const double w = pixelSpan(r.left, r.right);
    const double h = pixelSpan(r.top, r.bottom);
    return CRect(truncToInt(w * mL + r.left), truncToInt(h * mT + r.top), truncToInt(w * mR + r.left),
                 truncToInt(h * mB + r.top));
}

CRect DibRect::mapFrom(CRect r) const {
    const double rw = mR - mL;
    const double rh = mB - mT;
    if (rw == 0.0 || rh == 0.0) return CRect(0, 0, 0, 0);
    const double w = pixelSpan(r.left, r.right);
    const double h = pixelSpan(r.top, r.bottom);
    // Truncated as ints would be, but summed before saturating: a sliver of the picture shown in r
    // puts the whole picture beyond the int range, and left + width must not wrap.
    const double width = std::trunc(w / rw);
    const double height = std::trunc(h / rh);
    const double left = std::trunc(r.left - mL * w / rw);
    const double top = std::trunc(r.top - mT * h / rh);
    return CRect(truncToInt(left), truncToInt(top), truncToInt(left + width), truncToInt(top + height));
}

namespace {
// Keeps the window [low, high) of one axis inside a scaled picture of size extent (whole: extentInt).
void keepInside(int& low, int& high, double extent, int extentInt) {
    if (low < 0) {
        high = high - low;
        low = 0;
        if (high > extent) high = extentInt;
    } else if (high > extent) {
        low = truncToInt(low - (high - extent));
        high = extentInt;
        if (low < 0) low = 0;
    }
}
}  // namespace

DibRect DibRect::computeVisibleRect(CSize view, CSize image, DibPoint center, double zoom) {
    if (zoom == 1.0) return DibRect(0.0, 0.0, 1.0, 1.0);
    const double scale = Image::calcScale(image, view, false, false) * zoom;
    const double scaledW = std::max(1.0, image.cx * scale);
    const double scaledH = std::max(1.0, image.cy * scale);
    const double windowW = std::min(scaledW, static_cast<double>(view.cx));
    const double windowH = std::min(scaledH, static_cast<double>(view.cy));
    const int wholeW = truncToInt(scaledW);
    const int wholeH = truncToInt(scaledH);
    const int cx = truncToInt(wholeW * center.X());
    const int cy = truncToInt(wholeH * center.Y());
    int left = truncToInt(cx - windowW * 0.5);
    int right = truncToInt(cx + windowW * 0.5);
    int top = truncToInt(cy - windowH * 0.5);
    int bottom = truncToInt(cy + windowH * 0.5);
    keepInside(left, right, scaledW, wholeW);
    keepInside(top, bottom, scaledH, wholeH);
    if (wholeW == 0 || wholeH == 0) throw std::domain_error("Cannot set DibRect from empty rect.");
    return DibRect(static_cast<double>(left) / wholeW, static_cast<double>(top) / wholeH,
                   static_cast<double>(right) / wholeW, static_cast<double>(bottom) / wholeH);
}

}  // namespace Orvanta
