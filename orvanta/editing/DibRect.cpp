#include "orvanta/editing/DibRect.h"

#include <algorithm>
#include <stdexcept>

#include "orvanta/codecs/Image.h"

namespace Orvanta {

void DibRect::set(CRect inner, CRect outer) {
    const int width = outer.right - outer.left;
    const int height = outer.bottom - outer.top;
    if (width == 0 || height == 0) throw std::domain_error("Cannot set DibRect from empty rect.");
    mL = static_cast<double>(inner.left - outer.left) / static_cast<double>(width);
    mT = static_cast<double>(inner.top - outer.top) / static_cast<double>(height);
    mR = static_cast<double>(inner.right - outer.left) / static_cast<double>(width);
    mB = static_cast<double>(inner.bottom - outer.top) / static_cast<double>(height);
}

CRect DibRect::mapTo(CRect r) const {
    const double w = r.right - r.left;
    const double h = r.bottom - r.top;
    return CRect(truncToInt(w * mL + r.left), truncToInt(h * mT + r.top), truncToInt(w * mR + r.left),
                 truncToInt(h * mB + r.top));
}

CRect DibRect::mapFrom(CRect r) const {
    const double rw = mR - mL;
    const double rh = mB - mT;
    if (rw == 0.0 || rh == 0.0) return CRect(0, 0, 0, 0);
    const double w = r.right - r.left;
    const double h = r.bottom - r.top;
    const int width = truncToInt(w / rw);
    const int height = truncToInt(h / rh);
    const int left = truncToInt(r.left - mL * w / rw);
    const int top = truncToInt(r.top - mT * h / rh);
    return CRect(left, top, left + width, top + height);
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
