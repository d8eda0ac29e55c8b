// The undo history of the picture under edit: records, redo, the undo limit and retired operations,
// revert and commit, and what the history says about the edits done.

#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/EditableDib.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/pixels/DibSection.h"
#include "orvanta/pixels/DibWalker.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::makePatternDib;
using OrvantaTest::messageOf;

namespace {

std::string bytesOf(Dib* dib) {
    return std::string(reinterpret_cast<char*>(dib->getBits()), dib->getBitsSize());
}

// An edit for the history's own rules: it adds `step` to every byte, and can be told to find
// nothing to do or to fail. Its record is the inverse edit.
class StepOp : public EditingOp {
public:
    static StepOp* create(int step, int opType = 8) { return new StepOp(step, opType); }
    Dib* doOp(Dib* dib, UndoOp** undo) override {
        ++runs;
        if (throws) throw Exception(u"step failed");
        if (nothingToDo) return nullptr;
        DibSection* result = DibSection::create(*dib->getBitmapInfo());
        for (int i = 0; i < dib->getBitsSize(); ++i)
            result->getBits()[i] = static_cast<unsigned char>(dib->getBits()[i] + mStep);
        if (undo) *undo = UndoOp::create(this, StepOp::create(-mStep, getOpType()));
        return result;
    }
    bool nothingToDo = false;
    bool throws = false;
    int runs = 0;

private:
    StepOp(int step, int opType) : EditingOp(opType), mStep(step) {}
    int mStep;
};

class CountingListener : public NotifierListener {
public:
    void onNotification(void* sender, const Notification& n) override {
        ++count;
        lastCode = n.getCode();
    }
    int count = 0;
    int lastCode = -1;
};

struct History : ::testing::Test {
    OwnedPtr<Dib> start{makePatternDib(9, 7, 3)};
    OwnedPtr<EditableDib> picture{new EditableDib(start)};

    void edit(int times) {
        for (int i = 1; i <= times; ++i) ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(StepOp::create(i))));
    }
};

}  // namespace

TEST(EditableDibBasics, NullPictureIsRefused) {
    EXPECT_EQ(messageOf([] { EditableDib e(nullptr); }), u"Cannot construct an EditableDib from a NULL Dib");
}

TEST(EditableDibBasics, ForwardsThePixelQuestions) {
    OwnedPtr<Dib> dib(makePatternDib(5, 4, 4));
    OwnedPtr<EditableDib> e(new EditableDib(dib));
    EXPECT_TRUE(e->isEditable());
    EXPECT_FALSE(dib->isEditable());
    EXPECT_FALSE(e->isEdited());
    EXPECT_EQ(e->getBits(), dib->getBits());
    EXPECT_EQ(e->getSize(), CSize(5, 4));
    EXPECT_EQ(e->getBitsSize(), dib->getBitsSize());
    EXPECT_EQ(e->getBitmapInfoHeader()->biBitCount, 32);
    EXPECT_TRUE(*e == *dib);
}

TEST(EditableDibBasics, DefaultInPlaceIsRefused) {
    OwnedPtr<Dib> dib(makePatternDib(2, 2, 3));
    OwnedPtr<EditingOp> op(RotateOp::create(90));
    EXPECT_FALSE(op->supportsInPlaceOp());
    EXPECT_EQ(messageOf([&] { op->doOpInPlace(dib, nullptr); }), u"EditingOp does not support InPlaceOp");
}

TEST_F(History, UndoAndRedoWalkTheEdits) {
    CountingListener listener;
    picture->addListener(&listener);
    edit(3);
    EXPECT_EQ(listener.count, 3);
    EXPECT_EQ(listener.lastCode, 0);
    const std::string edited = bytesOf(picture);
    EXPECT_TRUE(picture->undo(true));
    EXPECT_TRUE(picture->undo(true));
    EXPECT_EQ(picture->getUndoCount(), 1);
    EXPECT_EQ(picture->getRedoCount(), 2);
    EXPECT_TRUE(picture->redo());
    EXPECT_TRUE(picture->redo());
    EXPECT_FALSE(picture->redo());
    EXPECT_EQ(bytesOf(picture), edited);
    EXPECT_EQ(listener.count, 7);
    while (picture->undo(true)) {
    }
    EXPECT_EQ(bytesOf(picture), bytesOf(start));
    EXPECT_FALSE(picture->isEdited());
    picture->removeListener(&listener);
}

TEST_F(History, NothingToDoKeepsTheRedoList) {
    edit(2);
    picture->undo(true);
    OwnedPtr<StepOp> idle(StepOp::create(5));
    idle->nothingToDo = true;
    EXPECT_FALSE(picture->doOp(idle));
    EXPECT_EQ(picture->getRedoCount(), 1);
    EXPECT_EQ(picture->getUndoCount(), 1);
    // A real edit clears it.
    edit(1);
    EXPECT_EQ(picture->getRedoCount(), 0);
}

TEST_F(History, FailingEditChangesNothing) {
    edit(2);
    picture->undo(true);
    const std::string before = bytesOf(picture);
    OwnedPtr<StepOp> failing(StepOp::create(5));
    failing->throws = true;
    EXPECT_EQ(messageOf([&] { picture->doOp(failing); }), u"step failed");
    EXPECT_EQ(picture->getUndoCount(), 1);
    EXPECT_EQ(picture->getRedoCount(), 1);
    EXPECT_EQ(bytesOf(picture), before);
}

TEST_F(History, FailingUndoKeepsTheOperationInBothLists) {
    OwnedPtr<StepOp> failingInverse(StepOp::create(-1));
    failingInverse->throws = true;
    // An edit whose record runs the failing inverse.
    struct Edit : EditingOp {
        explicit Edit(EditingOp* inverse) : EditingOp(3), inverse(inverse) {}
        Dib* doOp(Dib* dib, UndoOp** undo) override {
            if (undo) *undo = UndoOp::create(this, inverse);
            return makePatternDib(3, 3, 3);
        }
        OwnedPtr<EditingOp> inverse;
    };
    ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(new Edit(failingInverse))));
    EXPECT_EQ(messageOf([&] { picture->undo(true); }), u"step failed");
    EXPECT_EQ(picture->getUndoCount(), 1);
    EXPECT_EQ(picture->getRedoCount(), 1);
}

TEST_F(History, UndoWithoutKeepingClearsRedo) {
    edit(3);
    picture->undo(true);
    picture->undo(false);
    EXPECT_EQ(picture->getRedoCount(), 0);
    EXPECT_EQ(picture->getUndoCount(), 1);
}

TEST_F(History, LimitRetiresTheOldestRecords) {
    picture->setUndoLimit(2);
    edit(5);
    EXPECT_EQ(picture->getUndoCount(), 2);
    EXPECT_EQ(picture->getRetiredCount(), 3);
    picture->undo(true);
    picture->undo(true);
    EXPECT_FALSE(picture->undo(true));
    EXPECT_TRUE(picture->isEdited());  // the retired edits are still done
}

TEST_F(History, RevertKeepsEveryEditForRedoInItsOrder) {
    picture->setUndoLimit(2);
    edit(5);
    const std::string edited = bytesOf(picture);
    picture->revert(true);
    EXPECT_EQ(picture->getRedoCount(), 5);
    EXPECT_EQ(picture->getUndoCount(), 0);
    EXPECT_EQ(picture->getRetiredCount(), 0);
    EXPECT_EQ(bytesOf(picture), bytesOf(start));
    for (int i = 0; i < 5; ++i) ASSERT_TRUE(picture->redo());
    EXPECT_EQ(bytesOf(picture), edited);
    EXPECT_EQ(picture->getUndoCount(), 2);
    EXPECT_EQ(picture->getRetiredCount(), 3);
    picture->revert(false);
    EXPECT_EQ(picture->getRedoCount(), 0);
    EXPECT_FALSE(picture->isEdited());
}

TEST_F(History, LoweringTheLimitTrimsOneRecordPerPush) {
    edit(4);
    picture->setUndoLimit(2);
    EXPECT_EQ(picture->getUndoCount(), 4);
    edit(1);
    EXPECT_EQ(picture->getUndoCount(), 4);
    EXPECT_EQ(picture->getRetiredCount(), 1);
}

TEST_F(History, CommitMakesThePresentTheStart) {
    CountingListener listener;
    picture->addListener(&listener);
    edit(3);
    picture->undo(true);
    const std::string present = bytesOf(picture);
    picture->commit();
    EXPECT_EQ(listener.count, 4);  // commit tells nobody
    EXPECT_FALSE(picture->isEdited());
    EXPECT_EQ(picture->getRedoCount(), 1);
    EXPECT_EQ(picture->getOriginal(), picture->getCurrent());
    picture->revert(false);
    EXPECT_EQ(bytesOf(picture), present);
    picture->removeListener(&listener);
}

TEST_F(History, RotationSumAndKindsOfEdit) {
    picture->setUndoLimit(1);
    ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(RotateOp::create(90))));
    ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(RotateOp::create(270))));
    EXPECT_EQ(picture->getRotation(), 0);
    EXPECT_FALSE(picture->hasNonRotation());
    EXPECT_EQ(picture->getLastOpType(), 2);
    picture->undo(true);
    EXPECT_EQ(picture->getRotation(), 90);  // the 90 is retired, and still counts
    EXPECT_EQ(picture->getNextRedoOpType(), 2);
    ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(
        CropOp::create(DibMask(0, 0, picture->getSize(), DibRect(0.0, 0.0, 0.5, 0.5), 0)))));
    ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(MirrorOp::create(true))));
    EXPECT_EQ(picture->getRetiredCount(), 2);
    EXPECT_TRUE(picture->hasNonRotation());  // the crop is retired
    EXPECT_FALSE(picture->hasPicFix());
    ASSERT_TRUE(picture->doOp(OwnedPtr<EditingOp>(StepOp::create(1, 4))));
    EXPECT_TRUE(picture->hasPicFix());
}

TEST_F(History, AnEditWithoutARecordIsRefused) {
    OwnedPtr<EditingOp> downsize(
        DownsizeOp::create(DownsizeOp::DownsizeMethodResample, CSize(3, 3), false, false));
    EXPECT_FALSE(downsize->supportsUndo());
    EXPECT_EQ(messageOf([&] { picture->doOp(downsize); }), u"EditingOp does not support undo");
    EXPECT_FALSE(picture->isEdited());
    EXPECT_EQ(picture->getCurrent(), start.get());
}

TEST_F(History, RotationUndoKeepsNoPixels) {
    OwnedPtr<EditingOp> rotate(RotateOp::create(90));
    UndoOp* raw = nullptr;
    OwnedPtr<Dib> turned(rotate->doOp(start, &raw));
    OwnedPtr<UndoOp> record(raw);
    EXPECT_EQ(record->getMethod(), UndoOp::InverseOp);
    EXPECT_EQ(record->getSaved(), nullptr);
    EXPECT_EQ(record->getOriginalOp(), rotate.get());
    UndoOp* redo = reinterpret_cast<UndoOp*>(1);
    OwnedPtr<Dib> back(record->doOp(turned, &redo));
    EXPECT_EQ(redo, nullptr);
    EXPECT_EQ(OrvantaTest::packedPixels(*back), OrvantaTest::packedPixels(*start));
}
