#pragma once
// Size: a width and a height, convertible to and from CSize.

#include <algorithm>

#include "orvanta/platform/CSize.h"

namespace Orvanta {

class Size : public CSize {
public:
    Size() = default;
    Size(int width, int height) : CSize(width, height) {}
    Size(const CSize& size) : CSize(size) {}

    void assign(const Size& size) { *this = size; }
    void assign(const CSize& size) {
        cx = size.cx;
        cy = size.cy;
    }
    void assign(int width, int height) {
        cx = width;
        cy = height;
    }

    int getWidth() const { return cx; }
    int getHeight() const { return cy; }
    int getLongest() const { return std::max(cx, cy); }
    int getShortest() const { return std::min(cx, cy); }

    // Each side times factor in double precision, truncated toward zero.
    void scale(double factor) {
        cx = static_cast<int>(cx * factor);
        cy = static_cast<int>(cy * factor);
    }

    // Equal as they stand, or with width and height swapped.
    bool hasSameDimensions(Size other) const {
        return (cx == other.cx && cy == other.cy) || (cx == other.cy && cy == other.cx);
    }

    bool operator==(const Size& other) const { return cx == other.cx && cy == other.cy; }
    bool operator==(const CSize& other) const { return cx == other.cx && cy == other.cy; }
};

}  // namespace Orvanta
