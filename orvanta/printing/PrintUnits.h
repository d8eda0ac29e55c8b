#pragma once
// The units of printing: templates measure in thousandths of an inch, devices in pixels. Every
// conversion goes through a device context's resolution (LOGPIXELSX for x values and widths,
// LOGPIXELSY for y values and heights) and MulDiv, so values round to the nearest pixel or
// thousandth rather than truncate, and one template serves a screen at 96 and a printer at 1200.

#include "orvanta/foundation/Size.h"
#include "orvanta/platform/CPoint.h"
#include "orvanta/platform/CRect.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

using HDC = Platform::Canvas*;

Size inches1000thToPixels(HDC dc, const Size& size);
CPoint inches1000thToPixels(HDC dc, const CPoint& point);
CRect inches1000thToPixels(HDC dc, const CRect& rect);
Size pixelsToInches1000th(HDC dc, const Size& size);
CPoint pixelsToInches1000th(HDC dc, const CPoint& point);
CRect pixelsToInches1000th(HDC dc, const CRect& rect);

}  // namespace Orvanta
