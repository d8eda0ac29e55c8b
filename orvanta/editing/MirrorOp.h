#pragma once
// MirrorOp: reverses the order of the rows (vertical) or each row (not vertical) (opType 3).
//
// Contract: the result is a new 3-byte picture; the undo record is a second mirror of the same kind.

#include "orvanta/editing/EditingOp.h"

namespace Orvanta {

class MirrorOp : public EditingOp {
public:
    static MirrorOp* create(bool vertical);

    Dib* doOp(Dib* dib, UndoOp** undo) override;
    bool isVertical() const { return mVertical; }

private:
    explicit MirrorOp(bool vertical) : EditingOp(3), mVertical(vertical) {}

    bool mVertical;
};

}  // namespace Orvanta
