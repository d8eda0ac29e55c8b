#pragma once
// RotateOp: turns a picture clockwise by 90, 180 or 270 degrees (opType 2).
//
// Contract: the result is a new 3-byte picture of the turned size; the undo record is the inverse
// rotation, so no pixels are kept. Any other angle is accepted here and fails when the operation
// runs, with the walker's Exception "Cannot rotate a DibWalker by other than 90, 180, or 270 degrees.".

#include "orvanta/editing/EditingOp.h"

namespace Orvanta {

class RotateOp : public EditingOp {
public:
    static RotateOp* create(int angle);

    Dib* doOp(Dib* dib, UndoOp** undo) override;
    int getAngle() const { return mAngle; }

private:
    explicit RotateOp(int angle) : EditingOp(2), mAngle(angle) {}

    int mAngle;
};

}  // namespace Orvanta
