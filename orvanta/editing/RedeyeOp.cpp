#include "orvanta/editing/RedeyeOp.h"

#include <algorithm>
#include <climits>

#include "orvanta/editing/RedeyeDetector.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/pixels/ByteDib.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

RedeyeOp* RedeyeOp::create(DibPoint click, int radius) {
    if (radius < 0 || radius > (INT_MAX - 1) / 2) return nullptr;
    const int side = 2 * radius + 1;
    OwnedPtr<Dib> mask1(ByteDib::create(side, side));
    OwnedPtr<Dib> mask2(ByteDib::create(side, side));
    if (!mask1 || !mask2) return nullptr;
    return new RedeyeOp(click, radius, mask1, mask2);
}

Dib* RedeyeOp::doOp(Dib* dib, UndoOp** undo) {
    if (undo) *undo = nullptr;
    const CSize size = dib->getSize();
    OwnedPtr<Dib> result(newOverwrittenDib(size.cx, size.cy, dib->getBytesPerPixel()));
    DibWalker whole(dib);
    DibWalker(result.get()).copyFrom(&whole, false);

    // The box of the radius around the clicked pixel, clipped to the picture; held in 64 bits since a
    // click far outside the picture maps to a pixel near the int limits.
    const long long px = truncToInt(size.cx * mClick.X());
    const long long py = truncToInt(size.cy * mClick.Y());
    const long long left = std::max(px - mRadius, 0LL), top = std::max(py - mRadius, 0LL);
    const long long right = std::min(px + mRadius + 1, static_cast<long long>(size.cx));
    const long long bottom = std::min(py + mRadius + 1, static_cast<long long>(size.cy));
    if (right <= left || bottom <= top) return nullptr;
    const CRect box(static_cast<int>(left), static_cast<int>(top), static_cast<int>(right),
                    static_cast<int>(bottom));

    DibWalker sourceBox(dib, box.left, box.top, box.width(), box.height());
    DibWalker destBox(result.get(), box.left, box.top, box.width(), box.height());
    DibWalker mask1(mMask1.get(), 0, 0, box.width(), box.height());
    DibWalker mask2(mMask2.get(), 0, 0, box.width(), box.height());
    mask1.fillSolid(0);
    mask2.fillSolid(0);

    const CRect found =
        RedeyeDetector::detect(sourceBox.getGrNav(), destBox.getGrNav(), static_cast<int>(px - left),
                               static_cast<int>(py - top), mask1.getGrNav(), mask2.getGrNav(), true, false);
    if (found == CRect()) return nullptr;
    if (undo) *undo = UndoOp::create(this, &sourceBox, box.topLeft());
    return result.detach();
}

}  // namespace Orvanta
