#include "orvanta/editing/UndoOp.h"

#include "orvanta/foundation/Exception.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"

namespace Orvanta {

namespace {
// A new picture of the same form as dib (header and pixel size), holding a copy of its pixels.
DibSection* copyOf(Dib* dib) {
    DibSection* copy = DibSection::create(*dib->getBitmapInfo());
    if (!copy) throw Exception(u"Not enough memory for the edited picture.");
    OwnedPtr<Dib> guard(copy);
    DibWalker from(dib);
    DibWalker to(copy);
    to.copyFrom(&from, false);
    guard.detach();
    return copy;
}
}  // namespace

UndoOp* UndoOp::create(EditingOp* op, Dib* saved, bool inPlaceAllowed) {
    auto* record = new UndoOp(SavedBitmap, op);
    record->mSaved = saved;
    record->mInPlaceAllowed = inPlaceAllowed;
    return record;
}

UndoOp* UndoOp::create(EditingOp* op, DibWalker* region, CPoint at) {
    OwnedPtr<Dib> patch(newEditedDib(region->width(), region->height(), 3));
    DibWalker to(patch.get());
    to.copyFrom(region, false);
    auto* record = new UndoOp(SavedPatch, op);
    record->mSaved = patch;
    record->mX = at.x;
    record->mY = at.y;
    return record;
}

UndoOp* UndoOp::create(EditingOp* op, EditingOp* inverse) {
    auto* record = new UndoOp(InverseOp, op);
    record->mInverse = inverse;
    return record;
}

Dib* UndoOp::doOp(Dib* dib, UndoOp** redo) {
    switch (mMethod) {
        case SavedBitmap:
            if (redo) *redo = create(this, dib, true);
            return mSaved;
        case SavedPatch: {
            if (redo) *redo = nullptr;
            OwnedPtr<Dib> result(copyOf(dib));
            const CSize patchSize = mSaved->getSize();
            DibWalker from(mSaved.get());
            DibWalker to(result.get(), mX, mY, patchSize.cx, patchSize.cy);
            to.copyFrom(&from, false);
            return result.detach();
        }
        case InverseOp:
            if (redo) *redo = nullptr;
            return mInverse->doOp(dib, nullptr);
        default:
            throw Exception(u"Unknown UndoOp method.");
    }
}

void UndoOp::doOpInPlace(Dib* dib, UndoOp** redo) {
    if (!mSaved) throw Exception(u"EditingOp does not support InPlaceOp");
    if (redo) *redo = create(this, copyOf(dib), true);
    DibWalker from(mSaved.get());
    DibWalker to(dib);
    to.copyFrom(&from, false);
}

}  // namespace Orvanta
