#pragma once
// PicFixOp: the one-click automatic picture fix (opType 4). It takes no parameter: a gamma lift for
// dark pictures and a contrast stretch for all are decided from the picture's own histogram of
// largest channels (PicFixCurve), and the curve is carried to each pixel with its colour
// (PicFixPixelMap).
//
// Contract: doOp returns a new picture of the input's form and records the input itself as the saved
// bitmap, usable in place. doOpInPlace changes the input's pixels; with undo, it first keeps a copy
// for the record. Both forms give the same colour bytes; a pixel's fourth byte is never written (so a
// new picture's are 0 while the in-place form keeps them). A 1-byte picture throws the
// pixel layer's Exception.

#include "orvanta/editing/EditingOp.h"

namespace Orvanta {

class DibWalker;

class PicFixOp : public EditingOp {
public:
    static PicFixOp* create();

    Dib* doOp(Dib* dib, UndoOp** undo) override;
    bool supportsInPlaceOp() override { return true; }
    void doOpInPlace(Dib* dib, UndoOp** undo) override;

private:
    PicFixOp() : EditingOp(4) {}

    // Measures source and writes the fixed pixels into dest, a view of the same size (it may be the
    // same memory).
    static void fix(const DibWalker& source, DibWalker& dest);
};

}  // namespace Orvanta
