// The undo history of the picture under edit: records, redo, the undo limit and retired operations,
// revert and commit, refusals, and what the history says about the edits done.

#include "orvanta/editing/EditableDib.h"

#include <gtest/gtest.h>

#include <string>

#include "orvanta/editing/ColorizeOp.h"
#include "orvanta/editing/CropOp.h"
#include "orvanta/editing/DownsizeOp.h"
#include "orvanta/editing/MirrorOp.h"
#include "orvanta/editing/RotateOp.h"
#include "orvanta/editing/UndoOp.h"
#include "orvanta/foundation/Exception.h"
#include "orvanta/foundation/NotifierListener.h"
#include "orvanta/pixels/DibSection.h"
#include "tests/support/ExceptionMessage.h"
#include "tests/support/TestPictures.h"

using namespace Orvanta;
using OrvantaTest::messageOf;
using OrvantaTest::packedPixels;

namespace {

// An edit for the history's own rules: it adds `step` to every byte, and can be told to find
// nothing to do or to fail. Its record is the inverse edit.
class StepOp : public EditingOp {
public:
    static StepOp* create(int step, int opType = 8) { return new StepOp(step, opType); }
    Dib* doOp(Dib* dib, UndoOp** undo) override {
        if (throws) throw Exception(u"step failed");
        if (nothingToDo) return nullptr;
        DibSection* result = DibSection::create(*dib->getBitmapInfo());
        for (int i = 0; i < dib->getBitsSize(); ++i)
            result->getBits()[i] = static_cast<unsigned char>(dib->getBits()[i] + mStep);
        if (undo) *undo = UndoOp::create(this, StepOp::create(-mStep, getOpType()));
        return result;
    }
    bool nothingToDo = false, throws = false;

private:
    StepOp(int step, int opType) : EditingOp(opType), mStep(step) {}
    int mStep;
};

class CountingListener : public NotifierListener {
public:
    void onNotification(void*, const Notification& n) override { count += n.getCode() == 0; }
    int count = 0;
};

struct History : ::testing::Test {
    OwnedPtr<Dib> start{OrvantaTest::makePatternDib(9, 7, 3)};
    OwnedPtr<EditableDib> picture{new EditableDib(start)};

    void edit(int times) {
        for (int i = 1; i <= times; ++i) ASSERT_TRUE(doOp(StepOp::create(i)));
    }
    bool doOp(EditingOp* op) { return picture->doOp(OwnedPtr<EditingOp>(op)); }
};

}  // namespace

TEST_F(History, UndoRedoCommitAndRevertWalkTheEditsAndTellTheListeners) {
    CountingListener listener;
    picture->addListener(&listener);
    edit(3);
    const std::string edited = packedPixels(*picture);
    EXPECT_TRUE(picture->undo(true) && picture->undo(true) && picture->redo() && picture->redo());
    EXPECT_TRUE(!picture->redo() && packedPixels(*picture) == edited);
    picture->undo(true);
    picture->undo(false);
    EXPECT_EQ(picture->getRedoCount(), 0) << "undo without keeping clears redo, as a new edit would";
    EXPECT_TRUE(picture->undo(true) && !picture->undo(true) &&
                packedPixels(*picture) == packedPixels(*start));
    edit(2);
    picture->undo(true);
    const std::string present = packedPixels(*picture);
    picture->commit();
    EXPECT_EQ(listener.count, 13) << "each edit, undo and redo, and not commit";
    EXPECT_TRUE(!picture->isEdited() && picture->getRedoCount() == 1) << "commit keeps the redo list";
    picture->revert(false);
    EXPECT_EQ(packedPixels(*picture), present) << "the present is the new start";
    picture->removeListener(&listener);
}

TEST_F(History, NothingToDoAndFailuresLeaveTheHistoryAsItWas) {
    edit(2);
    picture->undo(true);
    const std::string before = packedPixels(*picture);
    OwnedPtr<StepOp> idle(StepOp::create(5)), failing(StepOp::create(5));
    idle->nothingToDo = true;
    failing->throws = true;
    EXPECT_FALSE(picture->doOp(idle));
    EXPECT_FALSE(picture->doOp(nullptr)) << "a RedeyeOp that could not be made is nothing to do";
    EXPECT_EQ(messageOf([&] { picture->doOp(failing); }), u"step failed");
    OwnedPtr<EditingOp> downsize(
        DownsizeOp::create(DownsizeOp::DownsizeMethodResample, CSize(3, 3), false, false));
    EXPECT_EQ(messageOf([&] { picture->doOp(downsize); }), u"EditingOp does not support undo");
    EXPECT_TRUE(picture->getUndoCount() == 1 && picture->getRedoCount() == 1);
    EXPECT_EQ(packedPixels(*picture), before);
    EXPECT_EQ(messageOf([] { EditableDib e(nullptr); }), u"Cannot construct an EditableDib from a NULL Dib");
}

TEST_F(History, LimitRetiresTheOldestRecordsAndRevertReplaysEverything) {
    edit(2);
    picture->setUndoLimit(2);
    edit(1);
    EXPECT_EQ(picture->getUndoCount(), 2) << "a lowered limit trims one record per push";
    edit(2);
    const std::string edited = packedPixels(*picture);
    EXPECT_EQ(picture->getRetiredCount(), 3);
    EXPECT_TRUE(picture->undo(true) && picture->undo(true) && !picture->undo(true));
    EXPECT_TRUE(picture->isEdited()) << "the retired edits are still done";
    picture->revert(true);
    EXPECT_EQ(packedPixels(*picture), packedPixels(*start));
    for (int i = 0; i < 5; ++i) ASSERT_TRUE(picture->redo());
    EXPECT_EQ(packedPixels(*picture), edited);
}

TEST_F(History, RotationSumAndKindsOfEdit) {
    picture->setUndoLimit(1);
    ASSERT_TRUE(doOp(RotateOp::create(90)) && doOp(RotateOp::create(270)));
    EXPECT_TRUE(picture->getRotation() == 0 && !picture->hasNonRotation());
    picture->undo(true);
    EXPECT_EQ(picture->getRotation(), 90) << "the 90 is retired, and still counts";
    ASSERT_TRUE(doOp(CropOp::create(DibMask(0, 0, picture->getSize(), DibRect(0.0, 0.0, 0.5, 0.5), 0))));
    ASSERT_TRUE(doOp(MirrorOp::create(true)));
    EXPECT_TRUE(picture->hasNonRotation() && !picture->hasPicFix()) << "the crop is retired";
    ASSERT_TRUE(doOp(StepOp::create(1, 4)));
    EXPECT_TRUE(picture->hasPicFix());
    // A colourise's type is the caller's choice; only a RotateOp turns the picture, and a lossless
    // turn alone would lose the colours.
    OwnedPtr<EditableDib> coloured(new EditableDib(start));
    ASSERT_TRUE(coloured->doOp(OwnedPtr<EditingOp>(ColorizeOp::create(0.9, 0.9, 0.92, 2))));
    ASSERT_TRUE(coloured->doOp(OwnedPtr<EditingOp>(RotateOp::create(90))));
    EXPECT_TRUE(coloured->getRotation() == 90 && coloured->hasNonRotation());
}
