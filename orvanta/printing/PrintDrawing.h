#pragma once
// The two drawing helpers of printing. drawBox draws a rectangle the way print templates need it on
// any device: a width of 1 is a hairline of exactly one device dot closing the box on its right and
// bottom edges too (a stroked path), any other width a pen inside the frame (dotted) or centred on
// it (solid), over the rectangle with its right and bottom edges excluded. 0xFFFFFFFF as the fill or
// line colour means none. scaleDC maps everything drawn after it by one factor on both axes,
// kept to thousandths; 1.0 leaves the canvas alone.

#include "orvanta/platform/CRect.h"
#include "orvanta/platform/WinTypes.h"

namespace Orvanta::Platform {
class Canvas;
}  // namespace Orvanta::Platform

namespace Orvanta {

using HDC = Platform::Canvas*;

constexpr COLORREF kNoColor = 0xFFFFFFFF;

void drawBox(HDC dc, const CRect& rect, COLORREF fillColor, int width, COLORREF lineColor, bool dotted);
void scaleDC(HDC dc, double scale);

}  // namespace Orvanta
