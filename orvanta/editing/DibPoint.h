#pragma once
// DibPoint: a position on a picture as fractions of its width and height, origin top left, y downward.
//
// Contract: plain copyable value, no clamping (a point may lie outside 0..1). Built from a pixel
// position in a displayed rectangle, an empty rectangle throws std::domain_error
// "Cannot set DibPoint from empty rect.". Comparison is exact.

#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/CRect.h"

namespace Orvanta {

class DibRect;

class DibPoint {
public:
    DibPoint() = default;
    DibPoint(double x, double y) : mX(x), mY(y) {}
    DibPoint(CPoint p, CRect r) { set(p, r); }
    DibPoint(CPoint p, CRect r, const DibRect& visible) { set(p, r, visible); }

    void set(double x, double y) {
        mX = x;
        mY = y;
    }
    // p as a fraction of r.
    void set(CPoint p, CRect r);
    // p in a view r that shows only the part visible of the picture.
    void set(CPoint p, CRect r, const DibRect& visible);

    // The pixel of r at this point, each axis truncated toward zero.
    CPoint mapTo(CRect r) const;

    double X() const { return mX; }
    double Y() const { return mY; }

    bool operator==(const DibPoint& other) const { return mX == other.mX && mY == other.mY; }
    bool operator!=(const DibPoint& other) const { return !(*this == other); }

private:
    double mX = 0.0;
    double mY = 0.0;
};

// Truncation toward zero of a double into an int, saturating outside the int range (NaN gives 0),
// so that a wild fraction maps to a far pixel instead of undefined behaviour.
int truncToInt(double value);

// high − low of two pixel positions, in a double: the difference of two ints need not fit one.
inline double pixelSpan(int low, int high) {
    return static_cast<double>(high) - low;
}

}  // namespace Orvanta
