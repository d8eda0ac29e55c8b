#pragma once
// CropOp: keeps the part of a picture that a crop selection covers (opType 6).
//
// Contract: the result is a new 3-byte picture of the selection's pixels; the undo record holds the
// input picture itself (not a copy) and cannot be used in place. The mask is the caller's, made for
// this picture: a selection reaching outside the picture throws the walker's Exception
// "Cannot construct DibWalker - subrect exceeds source rect.", and an empty one is "nothing to do"
// (null).

#include "orvanta/editing/DibMask.h"
#include "orvanta/editing/EditingOp.h"

namespace Orvanta {

class CropOp : public EditingOp {
public:
    static CropOp* create(DibMask mask);

    Dib* doOp(Dib* dib, UndoOp** undo) override;
    const DibMask& getMask() const { return mMask; }

private:
    explicit CropOp(const DibMask& mask) : EditingOp(6), mMask(mask) {}

    DibMask mMask;
};

}  // namespace Orvanta
