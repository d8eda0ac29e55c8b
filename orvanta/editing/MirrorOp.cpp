#include "orvanta/editing/MirrorOp.h"

#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

MirrorOp* MirrorOp::create(bool vertical) {
    return new MirrorOp(vertical);
}

Dib* MirrorOp::doOp(Dib* dib, UndoOp** undo) {
    DibWalker view(dib);
    view.mirror(mVertical);
    OwnedPtr<Dib> result(newOverwrittenDib(view.width(), view.height(), 3));
    DibWalker(result.get()).copyFrom(&view, false);
    if (undo) *undo = UndoOp::create(this, MirrorOp::create(mVertical));
    return result.detach();
}

}  // namespace Orvanta
