#include "orvanta/editing/CropOp.h"

#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

CropOp* CropOp::create(DibMask mask) {
    return new CropOp(mask);
}

Dib* CropOp::doOp(Dib* dib, UndoOp** undo) {
    const CSize size = dib->getSize();
    const CRect picture(0, 0, size.cx, size.cy);
    const DibRect rect = mMask.get();
    const CPoint bottomRight = DibPoint(rect.R(), rect.B()).mapTo(picture);
    const CPoint topLeft = DibPoint(rect.L(), rect.T()).mapTo(picture);
    const int w = bottomRight.x - topLeft.x;
    const int h = bottomRight.y - topLeft.y;
    if (w <= 0 || h <= 0) return nullptr;
    DibWalker source(dib, rect);
    OwnedPtr<Dib> result(newOverwrittenDib(w, h, 3));
    DibWalker target(result.get());
    target.copyFrom(&source, false);
    if (undo) *undo = UndoOp::create(this, dib, false);
    return result.detach();
}

}  // namespace Orvanta
