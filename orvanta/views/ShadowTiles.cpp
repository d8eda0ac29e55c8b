#include "orvanta/views/ShadowTiles.h"

#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/Canvas.h"

namespace Orvanta {

void drawShadowTiles(Platform::Canvas* dc, Dib* sheet, const CRect& r) {
    if (!sheet) return;
    const CSize size = sheet->getSize();
    const int tw = size.cx / 3, th = size.cy / 3;
    if (tw <= 0 || th <= 0) return;
    // StretchDIBits counts the source's y from the bottom row up.
    const auto tile = [&](int x, int y, int column, int row) {
        dc->stretchDIBits(x, y, tw, th, column * tw, size.cy - (row + 1) * th, tw, th, sheet->getBits(),
                          *sheet->getBitmapInfo());
    };
    for (int y = r.top; y < r.bottom; y += th) tile(r.right, y, 2, y == r.top ? 0 : 1);
    for (int x = r.left; x < r.right; x += tw) tile(x, r.bottom, x == r.left ? 0 : 1, 2);
    tile(r.right, r.bottom, 2, 2);
}

}  // namespace Orvanta
