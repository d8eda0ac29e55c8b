#pragma once
// EditableDib: the picture under edit. It answers every pixel question with its current Dib and
// keeps the history of what was done: undo records, operations to redo, and operations whose
// records fell off the old end of the history.
//
// Contract: doOp, undo and redo change the picture only once the operation has returned, so an
// operation that throws leaves the history as it was (except that undo with keepForRedo has already
// pushed on the redo list). An operation answering null means "nothing to do": doOp returns false
// and the redo list stays; so does no operation at all (a create that answered null). An operation that gives
// a picture but no undo record (DownsizeOp) throws Exception "EditingOp does not support undo" and changes
// nothing. At undo limit n (0: none) the history holds at most n records; what falls off keeps its operation
// in the retired list. Each successful doOp, undo and redo notifies the listeners with code 0; commit and
// revert notify nothing.

#include <deque>
#include <vector>

#include "orvanta/editing/EditingOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/OwnedPtr.h"
#include "orvanta/pixels/Dib.h"

namespace Orvanta {

class EditableDib : public Dib {
public:
    // Throws Exception "Cannot construct an EditableDib from a NULL Dib" for a null dib.
    explicit EditableDib(Dib* dib);
    ~EditableDib() override;

    BITMAPINFO* getBitmapInfo() const override { return mCurrent ? mCurrent->getBitmapInfo() : nullptr; }
    unsigned char* getBits() const override { return mCurrent ? mCurrent->getBits() : nullptr; }
    BITMAPINFOHEADER* getBitmapInfoHeader() const override {
        return mCurrent ? mCurrent->getBitmapInfoHeader() : nullptr;
    }
    int getBitsSize() const override { return mCurrent ? mCurrent->getBitsSize() : 0; }
    CSize getSize() const override { return mCurrent ? mCurrent->getSize() : CSize(0, 0); }

    void setUndoLimit(int limit) override { mUndoLimit = limit; }
    int getUndoLimit() const override { return mUndoLimit; }
    bool isEditable() const override { return true; }
    bool isEdited() const override { return !mUndoStack.empty() || !mRetiredOps.empty(); }
    int getUndoCount() const override { return static_cast<int>(mUndoStack.size()); }
    int getRedoCount() const override { return static_cast<int>(mRedoStack.size()); }
    int getRetiredCount() const override { return static_cast<int>(mRetiredOps.size()); }
    // Makes the present picture the new start: the history is folded, the redo list stays.
    void commit() override;
    // Goes back to the start in one step; with keepForRedo every edit can be replayed in its order.
    void revert(bool keepForRedo) override;
    void clearRedo() override;
    bool doOp(EditingOp* op) override;
    bool undo(bool keepForRedo) override;
    bool redo() override;
    int getLastOpType() const override;
    int getNextRedoOpType() const override;
    // The sum of the angles of every rotation done, modulo 360. A rotation is a RotateOp, whatever
    // type other operations were given; hasNonRotation tells whether any other operation was done.
    int getRotation() const override;
    bool hasNonRotation() const override;
    bool hasPicFix() const override;

    // The picture now, and the picture the history starts from.
    Dib* getCurrent() const { return mCurrent; }
    Dib* getOriginal() const { return mOriginal; }

private:
    void pushRecord(UndoOp* record);

    int mUndoLimit = 0;
    OwnedPtr<Dib> mCurrent;
    OwnedPtr<Dib> mOriginal;
    std::deque<OwnedPtr<UndoOp>> mUndoStack;
    std::vector<OwnedPtr<EditingOp>> mRedoStack;
    std::vector<OwnedPtr<EditingOp>> mRetiredOps;
};

}  // namespace Orvanta
