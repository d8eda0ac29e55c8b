#include "orvanta/printing/PrintUnits.h"

#include "orvanta/foundation/MulDiv.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

namespace {

int dpiX(HDC dc) {
    return dc->getDeviceCaps(LOGPIXELSX);
}

int dpiY(HDC dc) {
    return dc->getDeviceCaps(LOGPIXELSY);
}

}  // namespace

Size inches1000thToPixels(HDC dc, const Size& size) {
    return Size(MulDiv(size.cx, dpiX(dc), 1000), MulDiv(size.cy, dpiY(dc), 1000));
}

CPoint inches1000thToPixels(HDC dc, const CPoint& point) {
    return CPoint(MulDiv(point.x, dpiX(dc), 1000), MulDiv(point.y, dpiY(dc), 1000));
}

CRect inches1000thToPixels(HDC dc, const CRect& rect) {
    return CRect(MulDiv(rect.left, dpiX(dc), 1000), MulDiv(rect.top, dpiY(dc), 1000),
                 MulDiv(rect.right, dpiX(dc), 1000), MulDiv(rect.bottom, dpiY(dc), 1000));
}

Size pixelsToInches1000th(HDC dc, const Size& size) {
    return Size(MulDiv(size.cx, 1000, dpiX(dc)), MulDiv(size.cy, 1000, dpiY(dc)));
}

CPoint pixelsToInches1000th(HDC dc, const CPoint& point) {
    return CPoint(MulDiv(point.x, 1000, dpiX(dc)), MulDiv(point.y, 1000, dpiY(dc)));
}

CRect pixelsToInches1000th(HDC dc, const CRect& rect) {
    return CRect(MulDiv(rect.left, 1000, dpiX(dc)), MulDiv(rect.top, 1000, dpiY(dc)),
                 MulDiv(rect.right, 1000, dpiX(dc)), MulDiv(rect.bottom, 1000, dpiY(dc)));
}

}  // namespace Orvanta
