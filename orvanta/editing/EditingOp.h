#pragma once
// EditingOp: one edit of a picture, as an object.
//
// Contract: doOp never changes its input. It returns a new Dib at owner count 0 (or, for an undo
// record of a saved bitmap, that bitmap itself), or null when there was nothing to do; when undo is
// not null, *undo receives the record (at owner count 0) that restores the input, or null where the
// operation cannot be undone. doOpInPlace changes the input's own pixels; only operations that say
// supportsInPlaceOp() have it, the others throw Exception "EditingOp does not support InPlaceOp".
//
// opType: 1 undo record, 2 rotate, 3 mirror, 4 picture fix, 5 downsize, 6 crop, 7 red-eye,
// 8 colourise, 9 black and white, 10 sepia.

#include "orvanta/foundation/Owned.h"

namespace Orvanta {

class Dib;
class DibSection;
class UndoOp;

class EditingOp : public Owned<EditingOp> {
public:
    ~EditingOp() override = default;

    virtual Dib* doOp(Dib* dib, UndoOp** undo) = 0;
    virtual bool supportsInPlaceOp() { return false; }
    virtual bool supportsUndo() { return true; }
    virtual void doOpInPlace(Dib* dib, UndoOp** undo);

    int getOpType() const { return mOpType; }

protected:
    explicit EditingOp(int opType) : mOpType(opType) {}

private:
    int mOpType;
};

// The pixels of a new 3- or 4-channel picture for an operation's result; throws Exception
// "Not enough memory for the edited picture." when the block cannot be had, so that a failed
// allocation never reads as "nothing to do" and never loses the picture being edited.
DibSection* newEditedDib(int width, int height, int channels);
// The same for a result whose every pixel the operation writes before anything reads it: a
// 3-channel picture's block is then not cleared first (a 4-channel one is, as the operations write
// three bytes of each pixel and leave the fourth at 0).
DibSection* newOverwrittenDib(int width, int height, int channels);

}  // namespace Orvanta
