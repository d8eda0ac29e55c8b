#include "orvanta/editing/RotateOp.h"

#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

RotateOp* RotateOp::create(int angle) {
    return new RotateOp(angle);
}

Dib* RotateOp::doOp(Dib* dib, UndoOp** undo) {
    // The view turns without moving a pixel; the one copy through it does the work.
    DibWalker view(dib);
    view.rotate(this);
    OwnedPtr<Dib> result(newOverwrittenDib(view.width(), view.height(), 3));
    DibWalker(result.get()).copyFrom(&view, false);
    if (undo) *undo = UndoOp::create(this, RotateOp::create(360 - mAngle));
    return result.detach();
}

}  // namespace Orvanta
