#include "orvanta/editing/DibMask.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Orvanta {

namespace {

// a * b / c in whole numbers, truncated toward zero; a ratio with a zero part gives 0.
long long scaled(long long a, long long b, long long c) {
    return c == 0 ? 0 : a * b / c;
}

// The platform's rectangle intersection: the common part, or all zeros when there is none.
CRect intersectRect(CRect a, CRect b) {
    CRect r(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom));
    if (r.left >= r.right || r.top >= r.bottom) return CRect(0, 0, 0, 0);
    return r;
}

// Centres a span of size extent on its former centre (low + high) / 2 and pushes it inside 0..1.
void centreInside(double& low, double& high, double extent) {
    double start = (high + low) * 0.5 - extent * 0.5;
    if (start < 0.0)
        start = 0.0;
    else if (start + extent > 1.0)
        start = 1.0 - extent;
    low = start;
    high = start + extent;
}

// The new span of size extent about centre c for rotate(): the whole axis when it does not fit.
void spanAbout(double c, double extent, double& low, double& high) {
    if (extent >= 1.0) {
        low = 0.0;
        high = 1.0;
        return;
    }
    low = c - extent * 0.5;
    high = extent * 0.5 + c;
    if (low < 0.0) {
        high = high - low;
        low = 0.0;
    } else if (high > 1.0) {
        low = low - (high - 1.0);
        high = 1.0;
    }
}

}  // namespace

DibMask::DibMask(int a, int b, CSize size)
    : mWidth(size.cx), mHeight(size.cy), mAspectA(std::min(a, b)), mAspectB(std::max(a, b)) {
    initialize();
}

DibMask::DibMask(int a, int b, CSize size, DibRect rect, int lock)
    : mWidth(size.cx), mHeight(size.cy), mAspectA(std::min(a, b)), mAspectB(std::max(a, b)), mLock(lock) {
    set(rect);
}

DibMask::DibMask(int a, int b, CRect sel, CRect image, int lock)
    : mWidth(image.width()),
      mHeight(image.height()),
      mAspectA(std::min(a, b)),
      mAspectB(std::max(a, b)),
      mLock(lock) {
    set(sel, image);
}

void DibMask::initialize() {
    mLock = 0;
    mOrientationLocked = false;
    set(DibRect(0.1, 0.1, 0.9, 0.9));
}

void DibMask::set(DibRect r) {
    if (!(mLock & Left)) mRect.setL(r.L());
    if (!(mLock & Top)) mRect.setT(r.T());
    if (!(mLock & Right)) mRect.setR(r.R());
    if (!(mLock & Bottom)) mRect.setB(r.B());
    constrain();
}

void DibMask::set(CRect sel, CRect image) {
    if (image.right - image.left == 0 || image.bottom - image.top == 0)
        throw std::domain_error("Cannot set DibMask from empty rect.");
    // Dragging one edge across the other: a hold on the left edge becomes a hold on the right one.
    if (sel.left > sel.right) {
        std::swap(sel.left, sel.right);
        if (mLock & (Left | Right)) mLock ^= (Left | Right);
    }
    if (sel.top > sel.bottom) {
        std::swap(sel.top, sel.bottom);
        if (mLock & (Top | Bottom)) mLock ^= (Top | Bottom);
    }
    sel = intersectRect(sel, image);
    const DibPoint topLeft(CPoint(sel.left, sel.top), image);
    const DibPoint bottomRight(CPoint(sel.right, sel.bottom), image);
    if (!(mLock & Left)) mRect.setL(topLeft.X());
    if (!(mLock & Top)) mRect.setT(topLeft.Y());
    if (!(mLock & Right)) mRect.setR(bottomRight.X());
    if (!(mLock & Bottom)) mRect.setB(bottomRight.Y());
    constrain();
}

void DibMask::pixelSize(long long& w, long long& h) const {
    const CRect picture(0, 0, mWidth, mHeight);
    const CPoint topLeft = DibPoint(mRect.L(), mRect.T()).mapTo(picture);
    const CPoint bottomRight = DibPoint(mRect.R(), mRect.B()).mapTo(picture);
    w = static_cast<long long>(bottomRight.x) - topLeft.x;
    h = static_cast<long long>(bottomRight.y) - topLeft.y;
}

void DibMask::aspectFor(long long& aw, long long& ah) const {
    const int orientation = mOrientationLocked ? mLockedOrientation : getOrientation();
    aw = orientation == 1 ? mAspectA : mAspectB;
    ah = orientation == 1 ? mAspectB : mAspectA;
}

void DibMask::constrain() {
    if (isFree()) return;
    if (mLock == Top || mLock == Left || mLock == Bottom || mLock == Right) {
        constrainSide();
        return;
    }
    long long aw, ah, w, h;
    aspectFor(aw, ah);
    pixelSize(w, h);
    // Shrink to the ratio, never grow.
    if (w * ah <= h * aw)
        h = scaled(w, ah, aw);
    else
        w = scaled(h, aw, ah);
    const double fw = static_cast<double>(w) / mWidth;
    const double fh = static_cast<double>(h) / mHeight;
    double l = mRect.L(), t = mRect.T(), r = mRect.R(), b = mRect.B();
    if (mLock & Left) {
        r = l + fw;
    } else if (mLock & Right) {
        l = r - fw;
    } else {
        const double c = (r - l) * 0.5 + l;
        l = c - fw * 0.5;
        r = c + fw * 0.5;
    }
    if (mLock & Top) {
        b = t + fh;
    } else if (mLock & Bottom) {
        t = b - fh;
    } else {
        const double c = (b - t) * 0.5 + t;
        t = c - fh * 0.5;
        b = c + fh * 0.5;
    }
    mRect.set(l, t, r, b);
}

void DibMask::constrainSide() {
    long long aw, ah, w, h;
    aspectFor(aw, ah);
    pixelSize(w, h);
    // The axis being dragged rules; the other follows, up to the size of the picture.
    if (mLock == Left || mLock == Right) {
        h = scaled(w, ah, aw);
        if (h > mHeight) {
            h = mHeight;
            w = scaled(h, aw, ah);
        }
    } else {
        w = scaled(h, aw, ah);
        if (w > mWidth) {
            w = mWidth;
            h = scaled(w, ah, aw);
        }
    }
    const double fw = static_cast<double>(w) / mWidth;
    const double fh = static_cast<double>(h) / mHeight;
    double l = mRect.L(), t = mRect.T(), r = mRect.R(), b = mRect.B();
    if (mLock == Left || mLock == Right) {
        if (mLock == Left)
            r = l + fw;
        else
            l = r - fw;
        centreInside(t, b, fh);
    } else {
        if (mLock == Top)
            b = t + fh;
        else
            t = b - fh;
        centreInside(l, r, fw);
    }
    mRect.set(l, t, r, b);
}

void DibMask::rotate() {
    mLock = 0;
    mOrientationLocked = false;
    long long w, h;
    pixelSize(w, h);
    const double cx = (mRect.R() - mRect.L()) * 0.5 + mRect.L();
    const double cy = (mRect.B() - mRect.T()) * 0.5 + mRect.T();
    const double fw = static_cast<double>(h) / mWidth;
    const double fh = static_cast<double>(w) / mHeight;
    double l, t, r, b;
    spanAbout(cx, fw, l, r);
    spanAbout(cy, fh, t, b);
    set(DibRect(l, t, r, b));
}

int DibMask::getOrientation() const {
    if (isSquare()) return 0;
    long long w, h;
    pixelSize(w, h);
    return w <= h ? 1 : 0;
}

void DibMask::setOrientation(int orientation) {
    if (isSquare()) return;
    long long w, h;
    pixelSize(w, h);
    const int current = w > h ? 0 : 1;
    if (orientation != current) rotate();
}

bool DibMask::isLandscape() const {
    return isSquare() || getOrientation() == 0;
}

void DibMask::lockOrientation() {
    mOrientationLocked = true;
    mLockedOrientation = getOrientation();
}

int DibMask::hitTest(CPoint p, CRect r, int tolerance) const {
    const DibPoint d(p, r);
    int sides = 0;
    if (d.X() <= mRect.L() || p.x < r.left + tolerance)
        sides |= Left;
    else if (d.X() >= mRect.R() || p.x >= r.right - tolerance)
        sides |= Right;
    if (d.Y() <= mRect.T() || p.y < r.top + tolerance)
        sides |= Top;
    else if (d.Y() >= mRect.B() || p.y >= r.bottom - tolerance)
        sides |= Bottom;
    return sides;
}

}  // namespace Orvanta
