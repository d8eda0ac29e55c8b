#pragma once
// UndoOp: the record by which an edit is taken back, in the cheapest form that restores the picture.
//
// Contract: method 0 holds the earlier bitmap itself (shared by owner count, never copied here);
// method 1 a patch of pixels copied at creation, with where it goes; method 2 the inverse operation,
// no pixels at all. doOp on method 0 returns the saved bitmap itself; method 1 returns a new picture
// with the patch laid over a copy of its input; method 2 runs the inverse. A record of any other
// method throws Exception "Unknown UndoOp method.". original is the operation this record undoes.

#include "orvanta/editing/EditingOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"
#include "orvanta/platform/CPoint.h"

namespace Orvanta {

class DibWalker;

class UndoOp : public EditingOp {
public:
    enum Method : int { SavedBitmap = 0, SavedPatch = 1, InverseOp = 2 };

    static UndoOp* create(EditingOp* op, Dib* saved, bool inPlaceAllowed);
    static UndoOp* create(EditingOp* op, DibWalker* region, CPoint at);
    static UndoOp* create(EditingOp* op, EditingOp* inverse);
    ~UndoOp() override = default;

    Dib* doOp(Dib* dib, UndoOp** redo) override;
    bool supportsInPlaceOp() override { return mInPlaceAllowed; }
    // Copies the saved bitmap over dib; with redo, first keeps dib's present pixels for a redo.
    void doOpInPlace(Dib* dib, UndoOp** redo) override;
    virtual int getOriginalOpType() const { return mOriginal ? mOriginal->getOpType() : 0; }
    virtual EditingOp* getOriginalOp() const { return mOriginal; }

    int getMethod() const { return mMethod; }
    Dib* getSaved() const { return mSaved; }

private:
    UndoOp(int method, EditingOp* original) : EditingOp(1), mMethod(method), mOriginal(original) {}

    int mMethod;
    OwnedPtr<EditingOp> mOriginal;
    OwnedPtr<EditingOp> mInverse;
    OwnedPtr<Dib> mSaved;
    int mX = 0;
    int mY = 0;
    bool mInPlaceAllowed = false;
};

}  // namespace Orvanta
