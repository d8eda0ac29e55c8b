#include "orvanta/editing/EditableDib.h"

#include "orvanta/editing/RotateOp.h"
#include "orvanta/foundation/Exception.h"

namespace Orvanta {

namespace {
constexpr int kNotification = 0;
// An operation that cannot be undone (a downsize) is run on a Dib directly, never through the history.
constexpr const char16_t* kNoRecord = u"EditingOp does not support undo";

// The rotation an operation is, or null. Type 2 alone does not tell: a ColorizeOp's type is the
// caller's choice, and taking it for a turn would read an angle it does not have and let a save
// turn the file losslessly and drop the colour edit.
const RotateOp* asRotation(const EditingOp* op) {
    return dynamic_cast<const RotateOp*>(op);
}
}  // namespace

EditableDib::EditableDib(Dib* dib) {
    if (!dib) throw Exception(u"Cannot construct an EditableDib from a NULL Dib");
    mCurrent = dib;
    mOriginal = dib;
}

EditableDib::~EditableDib() {
    // Newest first, as every other emptying of the history.
    while (!mUndoStack.empty()) mUndoStack.pop_back();
    while (!mRetiredOps.empty()) mRetiredOps.pop_back();
    while (!mRedoStack.empty()) mRedoStack.pop_back();
}

void EditableDib::pushRecord(UndoOp* record) {
    mUndoStack.push_back(record);
    if (mUndoLimit >= 1 && static_cast<int>(mUndoStack.size()) > mUndoLimit) {
        // The oldest record gives up its saved pixels; its operation stays in the list of edits.
        mRetiredOps.push_back(mUndoStack.front()->getOriginalOp());
        mUndoStack.pop_front();
    }
}

bool EditableDib::doOp(EditingOp* op) {
    // No operation (a RedeyeOp that could not be made) is nothing to do.
    if (!op) return false;
    UndoOp* record = nullptr;
    OwnedPtr<Dib> result(op->doOp(mCurrent, &record));
    OwnedPtr<UndoOp> recordGuard(record);
    if (!result) return false;
    if (!record) throw Exception(kNoRecord);
    pushRecord(record);
    clearRedo();
    mCurrent = result;
    notify(kNotification);
    return true;
}

bool EditableDib::undo(bool keepForRedo) {
    if (mUndoStack.empty()) return false;
    OwnedPtr<UndoOp> record = mUndoStack.back();
    if (keepForRedo) mRedoStack.push_back(record->getOriginalOp());
    Dib* result = record->doOp(mCurrent, nullptr);
    if (!keepForRedo) clearRedo();
    mCurrent = result;
    mUndoStack.pop_back();
    notify(kNotification);
    return true;
}

bool EditableDib::redo() {
    if (mRedoStack.empty()) return false;
    OwnedPtr<EditingOp> op = mRedoStack.back();
    UndoOp* record = nullptr;
    OwnedPtr<Dib> result(op->doOp(mCurrent, &record));
    OwnedPtr<UndoOp> recordGuard(record);
    if (!result) return false;
    if (!record) throw Exception(kNoRecord);
    pushRecord(record);
    mRedoStack.pop_back();
    mCurrent = result;
    notify(kNotification);
    return true;
}

void EditableDib::revert(bool keepForRedo) {
    while (!mUndoStack.empty()) {
        if (keepForRedo) mRedoStack.push_back(mUndoStack.back()->getOriginalOp());
        mUndoStack.pop_back();
    }
    while (!mRetiredOps.empty()) {
        if (keepForRedo) mRedoStack.push_back(mRetiredOps.back());
        mRetiredOps.pop_back();
    }
    if (!keepForRedo) clearRedo();
    mCurrent = mOriginal;
}

void EditableDib::commit() {
    while (!mUndoStack.empty()) mUndoStack.pop_back();
    while (!mRetiredOps.empty()) mRetiredOps.pop_back();
    mOriginal = mCurrent;
}

void EditableDib::clearRedo() {
    while (!mRedoStack.empty()) mRedoStack.pop_back();
}

int EditableDib::getLastOpType() const {
    return mUndoStack.empty() ? 0 : mUndoStack.back()->getOriginalOpType();
}

int EditableDib::getNextRedoOpType() const {
    return mRedoStack.empty() ? 0 : mRedoStack.back()->getOpType();
}

int EditableDib::getRotation() const {
    int rotation = 0;
    for (const auto& record : mUndoStack)
        if (const RotateOp* rotate = asRotation(record->getOriginalOp()))
            rotation = (rotation + rotate->getAngle()) % 360;
    for (const auto& op : mRetiredOps)
        if (const RotateOp* rotate = asRotation(op)) rotation = (rotation + rotate->getAngle()) % 360;
    return rotation;
}

bool EditableDib::hasNonRotation() const {
    for (const auto& record : mUndoStack)
        if (!asRotation(record->getOriginalOp())) return true;
    for (const auto& op : mRetiredOps)
        if (!asRotation(op)) return true;
    return false;
}

bool EditableDib::hasPicFix() const {
    for (const auto& record : mUndoStack)
        if (record->getOriginalOpType() == 4) return true;
    for (const auto& op : mRetiredOps)
        if (op->getOpType() == 4) return true;
    return false;
}

}  // namespace Orvanta
