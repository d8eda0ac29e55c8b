#pragma once
// PageGeometry: one page of a printer in pixels of the device asked for: the paper, the printable
// area measured from the paper's corner, how far a symmetric margin moved its left and top edges,
// and the resolution.

#include "orvanta/foundation/IOwned.h"

namespace Orvanta {

class PageGeometry : public IOwned {
public:
    static PageGeometry* create() { return new PageGeometry(); }

    int paperWidth = 0, paperHeight = 0;
    int left = 0, top = 0, right = 0, bottom = 0;
    int offsetX = 0, offsetY = 0;
    int dpiX = 0, dpiY = 0;

    int getPrintableWidth() const { return right - left; }
    int getPrintableHeight() const { return bottom - top; }

private:
    PageGeometry() = default;
};

}  // namespace Orvanta
