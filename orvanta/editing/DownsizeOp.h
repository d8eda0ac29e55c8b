#pragma once
// DownsizeOp: scales a part of a picture (source, in fractions) to fit a target box (opType 5).
//
// Contract: the result is a new 3-byte picture of the part's size times Image::calcScale of that
// size into the target (at least one pixel each way); without allowEnlarge a part that fits keeps
// its size. It cannot be undone: *undo is set to null, so callers run it on a Dib directly, never
// through EditableDib. flagA is kept for the callers that pass it and changes nothing here.
//
// Methods: DownsizeMethodResample is the library's exact area-weighted resampler;
// DownsizeMethodStretch is the platform's filtered stretch; DownsizeMethodStretchIfWorking the
// stretch when a once-per-process probe found it drawing, else the resampler. Any other value gives
// a picture of the right size that nothing has drawn into.

#include "orvanta/editing/DibRect.h"
#include "orvanta/editing/EditingOp.h"
#include "orvanta/platform/CSize.h"

namespace Orvanta {

class DownsizeOp : public EditingOp {
public:
    enum DownsizeMethod : int {
        DownsizeMethodResample = 0,
        DownsizeMethodStretchIfWorking = 1,
        DownsizeMethodStretch = 2,
    };

    static DownsizeOp* create(DownsizeMethod method, CSize target, bool flagA, bool allowEnlarge,
                              DibRect source = DibRect(0.0, 0.0, 1.0, 1.0));
    // Whether the platform stretch draws on this machine; probed once, then remembered.
    static bool isStretchDIBitsOk();

    Dib* doOp(Dib* dib, UndoOp** undo) override;
    bool supportsUndo() override { return false; }

    DownsizeMethod getMethod() const { return mMethod; }
    CSize getTarget() const { return CSize(mTargetWidth, mTargetHeight); }
    const DibRect& getSource() const { return mSource; }

private:
    DownsizeOp(DownsizeMethod method, CSize target, bool flagA, bool allowEnlarge, DibRect source)
        : EditingOp(5),
          mTargetWidth(target.cx),
          mTargetHeight(target.cy),
          mFlagA(flagA),
          mAllowEnlarge(allowEnlarge),
          mSource(source),
          mMethod(method) {}

    int mTargetWidth;
    int mTargetHeight;
    bool mFlagA;
    bool mAllowEnlarge;
    DibRect mSource;
    DownsizeMethod mMethod;

    // 0 not yet probed, 1 the stretch works, 2 it does not.
    static int mgStretchState;
};

}  // namespace Orvanta
