#include "orvanta/printing/PrintDrawing.h"

#include "orvanta/platform/Canvas.h"

namespace Orvanta {

void drawBox(HDC dc, const CRect& rect, COLORREF fillColor, int width, COLORREF lineColor, bool dotted) {
    if (!dc) return;
    const int level = dc->save();
    if (width == 1) {
        // A closed path stroked with a one-dot pen covers its corner points: the box takes in its
        // right and bottom edges, unlike a filled rectangle.
        CRect box = rect;
        if (dotted) box = CRect(rect.left + 1, rect.top + 1, rect.right - 1, rect.bottom - 1);
        if (fillColor != kNoColor) dc->fillRect(box, fillColor);
        if (lineColor != kNoColor)
            dc->frameRect(CRect(box.left, box.top, box.right + 1, box.bottom + 1), lineColor, 1);
    } else {
        if (fillColor != kNoColor) dc->fillRect(rect, fillColor);
        if (lineColor != kNoColor && width > 1) {
            // An inside-frame pen stays within the rectangle; a plain one is centred on its edges.
            const CRect frame = dotted ? rect
                                       : CRect(rect.left - width / 2, rect.top - width / 2,
                                               rect.right + (width - 1) / 2, rect.bottom + (width - 1) / 2);
            dc->frameRect(frame, lineColor, width);
        }
    }
    dc->restore(level);
}

void scaleDC(HDC dc, double scale) {
    if (!dc || scale == 1.0) return;
    const int n = static_cast<int>(scale * 1000.0);
    dc->setMapScale(n / 1000.0);
}

}  // namespace Orvanta
