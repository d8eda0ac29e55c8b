#pragma once
// DibRect: a rectangle on a picture in fractions of its size (left, top, right, bottom), origin top
// left, y downward. (0, 0, 1, 1) is the whole picture; the default is the empty (0, 0, 0, 0).
//
// Contract: plain copyable value, no clamping. Conversions from pixels throw std::domain_error
// "Cannot set DibRect from empty rect." for an empty outer rectangle and change nothing then.
// mapTo and mapFrom truncate toward zero and saturate at the int range, whatever the rectangles.

#include "orvanta/editing/DibPoint.h"
#include "orvanta/platform/CRect.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta {

class DibRect {
public:
    DibRect() = default;
    DibRect(double l, double t, double r, double b) : mL(l), mT(t), mR(r), mB(b) {}
    DibRect(CRect inner, CRect outer) { set(inner, outer); }

    void set(double l, double t, double r, double b) {
        mL = l;
        mT = t;
        mR = r;
        mB = b;
    }
    void set(const DibRect& other) { *this = other; }
    // Each edge of inner as a fraction of outer.
    void set(CRect inner, CRect outer);

    double L() const { return mL; }
    double T() const { return mT; }
    double R() const { return mR; }
    double B() const { return mB; }
    void setL(double v) { mL = v; }
    void setT(double v) { mT = v; }
    void setR(double v) { mR = v; }
    void setB(double v) { mB = v; }
    double width() const { return mR - mL; }
    double height() const { return mB - mT; }
    DibPoint center() const { return DibPoint((mR + mL) * 0.5, (mB + mT) * 0.5); }

    // The pixels of r that this part of the picture covers.
    CRect mapTo(CRect r) const;
    // Where the whole picture lies when this part of it is shown in r; empty when this has no area.
    CRect mapFrom(CRect r) const;

    // The part of a picture of size image that shows in view at zoom (1.0 = fitted), around center.
    static DibRect computeVisibleRect(CSize view, CSize image, DibPoint center, double zoom);

    bool operator==(const DibRect& o) const { return mL == o.mL && mT == o.mT && mR == o.mR && mB == o.mB; }
    bool operator!=(const DibRect& o) const { return !(*this == o); }

private:
    double mL = 0.0;
    double mT = 0.0;
    double mR = 0.0;
    double mB = 0.0;
};

}  // namespace Orvanta
